#include "shell/check_project.h"

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/crossing.h"
#include "model/validity.h"
#include "store/database.h"
#include "store/kept_copy.h"
#include "store/salvage.h"
#include "store/store_error.h"
#include "store/view.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr const char* kTitle = "Check Project";
constexpr std::size_t kTold = 25;  // lines in a box

}  // namespace

std::vector<Fault> FaultsOfProject(Ormel& ormel) {
  std::vector<Fault> faults = FindFaults(ormel.db());
  for (const StoredRing& ring : StoredDomains(ormel.db()))
    if (CrossesItself(ring.points, true))
      faults.push_back({"The boundary of the inhomogeneity \"" + ring.label +
                            "\" crosses itself: move a vertex, or draw it again",
                        ""});
  return faults;
}

std::string MendProject(Ormel& ormel) {
  CommitSoFar(ormel);
  const std::string copy = KeepCopy(ormel.db().path(), ImageOf(ormel.db()), "checked");
  Transaction all(ormel.db());
  try {
    MendFaults(ormel.db());
  } catch (...) {
    all.Rollback();
    throw;
  }
  all.Commit();
  return copy;
}

void CheckProject(Ormel& ormel) {
  const Named named(ormel, "CheckProject");
  const std::vector<Fault> faults = FaultsOfProject(ormel);
  if (faults.empty()) return Inform(ormel, kTitle, "Nothing is wrong with this project.", Icon::kInformation);
  std::string text;
  bool mendable = false;
  for (std::size_t i = 0; i < faults.size() && i < kTold; ++i) {
    text += faults[i].text + (faults[i].mend.empty() ? "" : " (" + faults[i].mend + ")") + "\n";
  }
  for (const Fault& fault : faults) mendable = mendable || !fault.mend.empty();
  if (faults.size() > kTold) text += "and " + std::to_string(faults.size() - kTold) + " more\n";
  if (!mendable || Viewing(ormel)) return Inform(ormel, kTitle, text, Icon::kWarning);
  if (!AskYesNo(
          ormel, kTitle,
          text + "\nMend what stands in brackets?  A copy of the project as it is will be kept beside it.",
          Icon::kWarning))
    return;
  const std::string copy = MendProject(ormel);
  LoadDataControls(ormel);
  InvalidateSolution(ormel, false, false);
  Inform(ormel, kTitle, "The project was mended.  As it was before it is kept as\n" + copy,
         Icon::kInformation);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

bool OfferSalvage(Ormel& ormel, const std::string& path, const std::string& refusal) {
  constexpr const char* kDamaged = "Damaged Project";
  if (!AskYesNo(ormel, kDamaged,
                Lines({refusal, "",
                       "Shall Ormel make the project anew of every row that can still be read?  "
                       "The damaged file is kept beside it."}),
                Icon::kStop))
    return false;
  try {
    const SalvageReport report = SalvageProject(path);
    const std::string losses = report.Losses();
    Inform(
        ormel, kDamaged,
        Lines({losses.empty() ? "Every row could be read." : losses,
               "The damaged file is kept as " + report.copy,
               "Look at the model before you trust it: a changed number cannot be told from a right one."}),
        Icon::kWarning);
    return true;
  } catch (const StoreError& e) {
    Inform(ormel, kDamaged, e.what(), Icon::kStop);
    return false;
  }
}

}  // namespace ormel
