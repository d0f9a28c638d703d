#include "whpa/outline_command.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/model_values.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "solver/deck_blocks.h"
#include "solver/deck_labels.h"
#include "solver/extents.h"
#include "solver/outside_programs.h"
#include "solver/path_file.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "whpa/outline.h"

namespace ormel {
namespace {

constexpr const char* kDeckStem = "_OUTLINE";
constexpr std::size_t kLabelLimit = 32;
/// A tip lies on a chord of its path: with this many steps a radius it is off by a 2000th of the radius, a
/// small part of the least tolerance that the dialog starts with.
constexpr double kStepsPerRadius = 16;

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
     .tip = "Particles are added until the outline moves less than this"},
    {.name = "lblExplanation",
     .kind = ControlKind::kNote,
     .caption =
         "The outline encloses the ground from which water reaches the well within the time of travel. It "
         "is stored as a capture zone polygon; one of the same name is replaced."},
    {.name = "OK", .kind = ControlKind::kButton, .caption = "Outline", .role = ButtonRole::kAccept},
    {.name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject},
};

/// Where the particle is at time `t`: on its path, or at its end when it ended before.
ModelPoint TipAt(const std::vector<PathPoint>& points, double t) {
  const auto after = std::lower_bound(points.begin(), points.end(), t,
                                      [](const PathPoint& p, double time) { return p.time < time; });
  if (after == points.end()) return points.back().at;
  if (after == points.begin()) return points.front().at;
  const PathPoint& a = *(after - 1);
  const PathPoint& b = *after;
  const double f = b.time > a.time ? (t - a.time) / (b.time - a.time) : 1.0;
  return {a.at.x + f * (b.at.x - a.at.x), a.at.y + f * (b.at.y - a.at.y)};
}

/// Traces the particles of one well by runs of the solver on its saved solution.
class WellTracer {
 public:
  WellTracer(Ormel& ormel, const ModelValues& model, const CaptureWell& well, std::vector<double> days)
      : ormel_(ormel), model_(model), well_(well), days_(std::move(days)) {
    SetWindowAndStep();
  }

  bool Trace(const std::vector<double>& angles, std::vector<Ray>& rays) {
    ++round_;
    WriteDeck(angles);
    DeleteTolerantly(ModelFile(ormel_, std::string(kDeckStem) + ".PTH"));
    const std::string wait = "Capture zone of " + well_.label + ": round " + std::to_string(round_) + ", " +
                             std::to_string(angles.size()) + " particles";
    const ProcessResult result = RunSolver(ormel_, ormel_.solution.size_number, kDeckStem, wait);
    if (result.cancelled) return false;
    if (!result.started) {
      Inform(ormel_, "Solver not started", result.failure, Icon::kStop);
      return false;
    }
    if (TellFatalStop(ormel_, result)) return false;
    return ReadRays(angles, rays);
  }

 private:
  /// A window far around the model, so that no path is cut, and a step fine against the smallest zone.
  void SetWindowAndStep() {
    const Extents& e = ormel_.window.solved;
    const double factor = BasemapConvert(ormel_);
    const double width = (e.x_max - e.x_min) * factor, height = (e.y_max - e.y_min) * factor;
    const double thickness = std::max(model_.AQThickness, 1e-6);
    const auto radius_after = [&](double days) {
      return std::sqrt(well_.discharge * days / (3.14159265358979 * model_.AQPorosity * thickness));
    };
    const double reach = 20 * (std::hypot(width, height) + radius_after(days_.back()));
    window_ = {-reach, -reach, width + reach, height + reach};
    step_ = std::max({radius_after(days_.front()) / kStepsPerRadius, well_.radius / 4, reach * 1e-5});
  }

  void WriteDeck(const std::vector<double>& angles) const {
    TextFileWriter deck(ModelFile(ormel_, std::string(kDeckStem) + ".DAT"));
    const auto lines = [&deck](std::initializer_list<std::string_view> texts) {
      for (const std::string_view text : texts) deck.Line(text);
    };
    deck.Line(DeckHeadLine());
    lines({" error temperror.log", " yes", " message tempmess.log", " yes", " echo nul", " picture off",
           " quit", " "});
    deck.Line(" load " + ormel_.project.OrmelBaseName);
    deck.Line(" time " + NumberText(ormel_.solution.SolutionTime));
    std::string window = " window";
    for (const double side : window_) window += " " + NumberText(side);
    lines({" layout ", window, " quit ", " trace", " picture off"});
    deck.Line(std::string(" file ") + kDeckStem);
    deck.Line(" y");
    deck.Line(" time " + NumberText(days_.back()));
    deck.Line(" step " + NumberText(step_));
    deck.Line(" points");
    const ModelPoint centre = WToM(ormel_, well_.at);
    // Just outside of the rim, at the base: what enters the aquifer above it has been in it for a shorter
    // time.
    const double radius = well_.radius * (1 + 1e-9);
    for (const double angle : angles)
      deck.Line(" " + NumberText(centre.x + radius * std::cos(angle)) + " " +
                NumberText(centre.y + radius * std::sin(angle)) + " " + NumberText(model_.AQBase) + " -1");
    lines({" quit", " go", " quit", " stop"});
    deck.Commit();
  }

  bool ReadRays(const std::vector<double>& angles, std::vector<Ray>& rays) const {
    rays.clear();
    const std::string file = ModelFile(ormel_, std::string(kDeckStem) + ".PTH");
    const ReadOutcome damage = ReadPathFile(file, [&](const Pathline& path) {
      if (path.points.empty() || rays.size() >= angles.size()) return;
      Ray ray;
      ray.angle = angles[rays.size()];
      for (const double t : days_) ray.tips.push_back(TipAt(path.points, t));
      ray.cut = path.end.find("window") != std::string::npos;
      rays.push_back(std::move(ray));
    });
    if (damage) {
      Inform(ormel_, "Capture zone", damage->Message(), Icon::kStop);
      return false;
    }
    if (rays.size() != angles.size()) {
      Inform(ormel_, "Capture zone",
             "The solver traced " + std::to_string(rays.size()) + " of " + std::to_string(angles.size()) +
                 " particles of the well '" + well_.label + "'.  Its capture zone was not outlined.",
             Icon::kStop);
      return false;
    }
    return true;
  }

  Ormel& ormel_;
  const ModelValues& model_;
  const CaptureWell& well_;
  std::vector<double> days_;
  std::array<double, 4> window_{};
  double step_ = 1.0;
  int round_ = 0;
};

std::string ZoneLabel(const std::string& well, double years) {
  const std::string suffix = " " + NumberText(years) + (years == 1.0 ? " year" : " years");
  const std::size_t room = kLabelLimit > suffix.size() ? kLabelLimit - suffix.size() : 0;
  return std::string(TextLeft(well, room)) + suffix;
}

/// A label cut to the field's length can meet that of another well.
std::string WellPart(const CaptureWell& well, const std::vector<CaptureWell>& all, double years) {
  const std::string label = ZoneLabel(well.label, years);
  for (const CaptureWell& other : all)
    if (other.vid != well.vid && EqualNoCase(ZoneLabel(other.label, years), label))
      return VertexLabel("WL_", well.vid);
  return well.label;
}

void StoreZone(Ormel& ormel, const std::string& label, const std::vector<ModelPoint>& ring) {
  std::vector<Pid> old;
  {
    RowReader rows(ormel.db(), "select PID from Capzones where Label=?", {label});
    while (rows.Next()) old.push_back(rows.Long(0));
  }
  for (const Pid pid : old) DeletePolygonElement(ormel, "Capzones", pid);
  std::vector<MapPoint> points;
  points.reserve(ring.size());
  for (const ModelPoint& point : ring) points.push_back(MToW(ormel, point));
  const Pid pid = AddPolygonWithVertices(ormel, true, points);
  ormel.db().Execute("insert into Capzones (Label,PID) values (?,?)", {label, pid});
}

/// False when the user cancelled or a run failed.
bool OutlineWell(Ormel& ormel, const ModelValues& model, const OutlineRequest& request,
                 const CaptureWell& well, int& stored) {
  std::vector<double> years = request.years;
  std::sort(years.begin(), years.end());
  std::vector<double> days;
  for (const double y : years) days.push_back(y * kDaysPerYear);
  OutlineOptions options;
  options.tolerance = request.tolerance;
  WellTracer tracer(ormel, model, well, days);
  const Outline outline = TraceOutline(
      days, [&tracer](const auto& angles, auto& rays) { return tracer.Trace(angles, rays); }, options);
  if (!outline.traced) return false;
  if (outline.cut || !outline.converged)
    Inform(
        ormel, "Capture zone",
        "The outline around the well '" + well.label +
            (outline.cut ? "' was cut off far outside of the model.  Look at the model's boundary conditions."
                         : "' still moves by more than the tolerance.  Check it against pathlines."),
        Icon::kWarning);
  for (std::size_t t = 0; t < years.size(); ++t) {
    const std::vector<ModelPoint>& ring = outline.rings[t];
    StoreZone(ormel, ZoneLabel(WellPart(well, request.wells, years[t]), years[t]),
              SimplifyRing(ring, 0.1 * request.tolerance * RingDiagonal(ring)));
    ++stored;
  }
  CommitSoFar(ormel);
  return true;
}

void DeleteScratch(const Ormel& ormel) {
  for (const char* extension : {".DAT", ".PTH", ".OUT"})
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

int OutlineCaptureZones(Ormel& ormel, const OutlineRequest& request) {
  const Named named(ormel, "OutlineCaptureZones");
  ModelRestoreModelOrigin(ormel);
  const ModelValues model = ReadModel(ormel);
  noexecutable(ormel, kSolverProgram);
  int stored = 0;
  for (const CaptureWell& well : request.wells)
    if (!OutlineWell(ormel, model, request, well, stored)) break;
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
  for (const std::string& item : ParseString(Text("tbTimes"), ' ')) years.push_back(Val(item));
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
    OutlineCaptureZoneForm form(ormel, std::move(wells));
    ormel.ui().ShowForm(form);
    if (form.Result != 1) return;
    const int stored = OutlineCaptureZones(ormel, form.Request());
    if (stored > 0) TurnOnLayer(ormel, kLayerWhpas);
    Note(ormel, std::to_string(stored) + " capture zones outlined");
    ormel.view().ZoomActions(Zoom::kRedraw);
  });
}

}  // namespace ormel
