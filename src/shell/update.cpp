#include "shell/update.h"

#include "core/command.h"
#include "core/ormel.h"
#include "core/processes.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/schema.h"
#include "store/store_error.h"
#include "store/update.h"
#include "text/files.h"

namespace ormel {

bool DBUpdate(Ormel& ormel, const std::string& path, std::int64_t version) {
  const Named named(ormel, "DBUpdate");
  UpdateReport report;
  try {
    const PleaseWait wait(ormel, "Updating " + FileTitle(path) + " from version " + std::to_string(version) +
                                     " to version " + std::to_string(schema::kProjectVersion));
    report = UpdateProject(path, ormel.processes().CurrentDirectory());
  } catch (const StoreError& e) {
    Inform(ormel, "Version Update", Lines({"Error occurred during database update", e.what()}), Icon::kStop);
    return false;
  }
  for (const UpdateNote& note : report.notes) Inform(ormel, note.title, note.text, Icon::kInformation);
  Note(ormel, "The project as it was is kept as " + FileTitle(report.copy));
  return true;
}

}  // namespace ormel
