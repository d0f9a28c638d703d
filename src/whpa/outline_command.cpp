#include "whpa/outline_command.h"

#include <algorithm>
#include <utility>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "solver/deck_blocks.h"
#include "solver/deck_labels.h"
#include "solver/extents.h"
#include "solver/outside_programs.h"
#include "solver/run.h"
#include "solver/text_sink.h"
#include "solver/zone_file.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "whpa/zone_checks.h"
#include "whpa/zone_store.h"

namespace ormel {
namespace {

constexpr const char* kDeckStem = "_OUTLINE";
constexpr const char* kZoneExtension = ".ZNS";

constexpr ControlSpec kControls[] = {
    {.name = "listWell", .kind = ControlKind::kMultiList, .caption = "Select Well(s)"},
    {.name = "tbTimes",
     .kind = ControlKind::kText,
     .caption = "Times of travel",
     .unit = "years",
     .tip = "One or several numbers, separated by blanks; a year has 365 days"},
    {.name = "tbTolerance",
     .kind = ControlKind::kNumber,
     .caption = "Tolerance",
     .unit = "percent of the zone's size",
     .tip = "The outline is off by no more than this"},
    {.name = "lblExplanation",
     .kind = ControlKind::kNote,
     .caption =
         "The outline encloses the ground from which water reaches the well within the time of travel. It "
         "is stored as a capture zone polygon; one of the same name is replaced."},
    {.name = "OK", .kind = ControlKind::kButton, .caption = "Outline", .role = ButtonRole::kAccept},
    {.name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject},
};

/// Names of the zones of each well: its label, unless that cut to the field's length meets another's.
std::vector<ZoneOwner> OwnersOf(const OutlineRequest& request) {
  std::vector<ZoneOwner> owners;
  const double longest = *std::max_element(request.years.begin(), request.years.end());
  for (const CaptureWell& well : request.wells) {
    const std::string label = ZoneLabel(well.label, longest);
    const bool taken = std::any_of(request.wells.begin(), request.wells.end(), [&](const CaptureWell& other) {
      return other.vid != well.vid && EqualNoCase(ZoneLabel(other.label, longest), label);
    });
    owners.push_back({well.label, taken ? VertexLabel("WL_", well.vid) : well.label});
  }
  return owners;
}

void WriteDeck(const Ormel& ormel, const OutlineRequest& request, TextSink& deck) {
  deck.Line(DeckHeadLine());
  for (const char* line : {" error temperror.log", " yes", " message tempmess.log", " yes", " echo nul",
                           " picture off", " quit", " "})
    deck.Line(line);
  deck.Line(" load " + ormel.project.OrmelBaseName);
  deck.Line(" time " + NumberText(ormel.solution.SolutionTime));
  WriteZonesBlock(ormel, deck, kDeckStem, request);
  deck.Line(" stop");
}

/// Runs the solver on its saved solution and reads what it outlined.  False, and the user has been told, when
/// it did not come to its end.
bool RunZones(Ormel& ormel, const OutlineRequest& request, std::vector<WellOutlines>& wells) {
  const std::string results = ModelFile(ormel, std::string(kDeckStem) + kZoneExtension);
  RunPlan plan;
  plan.deck = std::string(kDeckStem) + ".DAT";
  plan.argument = kDeckStem;
  plan.size_number = ormel.solution.size_number;
  plan.wait_text = request.wells.size() == 1
                       ? "Capture zone of " + request.wells.front().label
                       : "Capture zones of " + std::to_string(request.wells.size()) + " wells";
  plan.scratch = {results};
  plan.write = [&](TextSink& deck) {
    WriteDeck(ormel, request, deck);
    return true;
  };
  const RunOutcome outcome = RunBy(ormel, plan);
  if (outcome.end == RunEnd::kNotStarted)
    Inform(ormel, "Solver not started", outcome.process.failure, Icon::kStop);
  if (outcome.end != RunEnd::kDone) return false;
  if (const ReadOutcome damage = ReadZoneFile(results, wells)) {
    Inform(ormel, "Capture zone", damage->Message(), Icon::kStop);
    return false;
  }
  return true;
}

/// The request's well that a well of the file is; null when it was not asked for.
const CaptureWell* AskedFor(const OutlineRequest& request, const WellOutlines& outlines) {
  const auto found = std::find_if(request.wells.begin(), request.wells.end(), [&](const CaptureWell& well) {
    return EqualNoCase(VertexLabel("WL_", well.vid), outlines.label);
  });
  return found == request.wells.end() ? nullptr : &*found;
}

/// Stores what passes its checks and tells of the rest.
class Storing {
 public:
  Storing(Ormel& ormel, const OutlineRequest& request, const std::vector<ZoneOwner>& owners)
      : ormel_(ormel), request_(request), owners_(owners) {}

  int Store(const std::vector<WellOutlines>& wells) {
    const std::vector<RefusedZone> refused = CheckZones(wells);
    std::vector<char> answered(request_.wells.size(), 0);
    for (std::size_t w = 0; w < wells.size(); ++w) {
      const CaptureWell* well = AskedFor(request_, wells[w]);
      if (well == nullptr) continue;
      const auto place = static_cast<std::size_t>(well - request_.wells.data());
      answered[place] = 1;
      if (!wells[w].refused.empty()) Tell(well->label, wells[w].refused);
      for (std::size_t z = 0; z < wells[w].zones.size(); ++z) {
        const auto fault = std::find_if(refused.begin(), refused.end(), [&](const RefusedZone& zone) {
          return zone.well == w && zone.zone == z;
        });
        const ZoneOutline& zone = wells[w].zones[z];
        if (fault != refused.end()) {
          Tell(well->label + ", " + NumberText(zone.time / kDaysPerYear) + " years", fault->reason);
        } else {
          StoreZone(ormel_, owners_[place], wells[w], zone, request_.tolerance);
          ++stored_;
        }
      }
    }
    for (std::size_t i = 0; i < answered.size(); ++i)
      if (!answered[i]) Tell(request_.wells[i].label, "the solver found no such well that takes water.");
    TellAll();
    return stored_;
  }

 private:
  void Tell(const std::string& what, const std::string& why) {
    constexpr int kShown = 12;
    if (++told_ <= kShown) text_ += "\n" + what + ": " + why;
    if (told_ == kShown + 1) text_ += "\n...";
  }
  void TellAll() {
    if (told_ == 0) return;
    Inform(ormel_, "Capture zone",
           std::to_string(told_) + (told_ == 1 ? " outline was" : " outlines were") +
               " not stored, because a check failed:" + text_,
           Icon::kWarning);
  }

  Ormel& ormel_;
  const OutlineRequest& request_;
  const std::vector<ZoneOwner>& owners_;
  std::string text_;
  int told_ = 0, stored_ = 0;
};

void DeleteScratch(const Ormel& ormel) {
  for (const char* extension : {".DAT", ".OUT", kZoneExtension})
    DeleteTolerantly(ModelFile(ormel, std::string(kDeckStem) + extension));
}

}  // namespace

std::vector<CaptureWell> CaptureWells(Ormel& ormel) {
  RowReader rows(
      ormel.db(),
      "select Wells.Label,Wells.VID,Vertices.X,Vertices.Y,Wells.Radius,WLResults.VadoxLabel,"
      "WLResults.Discharge from Wells inner join Vertices on Vertices.VID=Wells.VID inner join WLResults "
      "on WLResults.VadoxLabel='WL_' || substr('000000' || Wells.VID, -max(6,length(Wells.VID))) where "
      "Wells.Pond=0 and Wells.Label not like 'Mirror_*' and WLResults.Discharge>0 order by Wells.Label");
  std::vector<CaptureWell> wells;
  while (rows.Next())
    wells.push_back({std::string(rows.Text(0)),
                     rows.Long(1),
                     {rows.Double(2), rows.Double(3)},
                     rows.Double(4),
                     rows.Double(6)});
  return wells;
}

void WriteZonesBlock(const Ormel& ormel, TextSink& deck, const std::string& stem,
                     const OutlineRequest& request, const std::vector<MapPoint>& boundary) {
  const auto place = [&ormel](MapPoint at) {
    const ModelPoint point = WToM(ormel, at);
    return " " + NumberText(point.x) + " " + NumberText(point.y);
  };
  deck.Line(" zones");
  deck.Line(" file " + stem);
  deck.Line(" y");
  deck.Line(" tolerance " + NumberText(request.tolerance));
  std::string times = " times";
  for (const double years : request.years) times += " " + NumberText(years * kDaysPerYear);
  deck.Line(times);
  for (const CaptureWell& well : request.wells) deck.Line(" well" + place(well.at));
  if (boundary.size() == 2) deck.Line(" boundary" + place(boundary[0]) + place(boundary[1]));
  deck.Line(" go");
  deck.Line(" quit");
}

int StoreOutlines(Ormel& ormel, const OutlineRequest& request, const std::vector<ZoneOwner>& owners,
                  const std::vector<WellOutlines>& wells) {
  return Storing(ormel, request, owners).Store(wells);
}

int OutlineCaptureZones(Ormel& ormel, const OutlineRequest& request) {
  const Named named(ormel, "OutlineCaptureZones");
  if (request.wells.empty() || request.years.empty()) return 0;
  ModelRestoreModelOrigin(ormel);
  noexecutable(ormel, kSolverProgram);
  std::vector<WellOutlines> wells;
  const int stored =
      RunZones(ormel, request, wells) ? StoreOutlines(ormel, request, OwnersOf(request), wells) : 0;
  DeleteScratch(ormel);
  return stored;
}

OutlineCaptureZoneForm::OutlineCaptureZoneForm(Ormel& ormel, std::vector<CaptureWell> wells)
    : Form(ormel), wells_(std::move(wells)) {
  InitControls();
  ControlState& list = Mutable("listWell");
  for (const CaptureWell& well : wells_) {
    list.selected.push_back(static_cast<int>(list.items.size()));
    list.items.push_back(well.label);
  }
  Put("tbTimes", "2 5 10");
  Put("tbTolerance", "0.2");
}

std::span<const ControlSpec> OutlineCaptureZoneForm::Controls() const {
  return kControls;
}

std::vector<double> OutlineCaptureZoneForm::Years() const {
  std::vector<double> years;
  // What is not wholly a number becomes a time that no check lets pass.
  for (const std::string& item : ParseString(Text("tbTimes"), ' '))
    years.push_back(IsNumeric(item) ? Val(item) : 0.0);
  return years;
}

bool OutlineCaptureZoneForm::Check() {
  if (State("listWell").selected.empty())
    return Refuse("listWell", "No Wells Selected", "No Wells are selected. Please select atleast one well.");
  const std::vector<double> years = Years();
  if (years.empty() || !std::all_of(years.begin(), years.end(), [](double y) { return y > 0; }))
    return Refuse(
        "tbTimes", "Bad Entry",
        "Times of travel must be numbers greater than 0, separated by blanks.\nPlease enter new values.");
  const double tolerance = Number("tbTolerance");
  if (!(tolerance > 0 && tolerance <= 10))
    return Refuse(
        "tbTolerance", "Bad Entry",
        "Tolerance must be greater than 0 and no larger than 10 percent.\nPlease enter a new value.");
  return true;
}

void OutlineCaptureZoneForm::Pressed(std::string_view name) {
  if (name == "OK" && !Check()) return;
  Result = name == "OK" ? 1 : 2;
  Hide();
}

OutlineRequest OutlineCaptureZoneForm::Request() const {
  OutlineRequest request;
  for (const int index : State("listWell").selected)
    request.wells.push_back(wells_[static_cast<size_t>(index)]);
  request.years = Years();
  request.tolerance = Number("tbTolerance") / 100;
  return request;
}

void OutlineCaptureZone(Ormel& ormel) {
  RunCommand(ormel, "OutlineCaptureZone", [&] {
    if (!ormel.solution.ValidSolution) {
      Inform(ormel, "Error", "No solution is present.  Solve the model and try again.", Icon::kWarning);
      return;
    }
    std::vector<CaptureWell> wells = CaptureWells(ormel);
    if (wells.empty()) {
      Inform(ormel, "Capture zone", "No well of the solved model takes water.", Icon::kInformation);
      return;
    }
    if (const std::string notice = OlderModelNotice(ormel); !notice.empty())
      Inform(ormel, "Capture zone", notice, Icon::kWarning);
    OutlineCaptureZoneForm form(ormel, std::move(wells));
    ormel.ui().ShowForm(form);
    if (form.Result != 1) return;
    const int stored = OutlineCaptureZones(ormel, form.Request());
    if (stored > 0) TurnOnLayer(ormel, Layer::kCapzones);
    Note(ormel, std::to_string(stored) + " capture zones outlined");
    ormel.view().ZoomActions(Zoom::kRedraw);
  });
}

}  // namespace ormel
