#include "whpa/run.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/image_wells.h"
#include "model/model_values.h"
#include "model/wells.h"
#include "solver/deck_blocks.h"
#include "solver/element_deck.h"
#include "solver/extents.h"
#include "solver/input.h"
#include "solver/outside_programs.h"
#include "solver/path_file.h"
#include "solver/run.h"
#include "solver/text_sink.h"
#include "solver/zone_file.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "whpa/outline_command.h"
#include "whpa/zone_store.h"

namespace ormel {
namespace {

constexpr double kDegree = 3.14159265358979 / 180.0;
constexpr int kLeastParticles = 15;
constexpr double kNoBoundaryConductivity = 1000000;  ///< so high that the water table stays level

/// Areas that are traced.
constexpr const char* kTracedRows = "WHPAs.T>1 or WHPAs.Type=3";

/// What the first row says of the boundary that all rows share.
struct Boundary {
  bool exists = false;
  MapPoint first, second;
  double head = 0.0, conductivity = 0.0;
  double thickness = 0.0, porosity = 0.0, ambient_flow = 0.0, direction = 0.0;
};

Boundary ReadBoundary(Ormel& ormel) {
  Boundary b;
  RowReader row(ormel.db(),
                std::string("select Point1X,Point1Y,Point2X,Point2Y,FirstHead,WHPAData,Thickness,Porosity,"
                            "AmbientFlow,Direction from WHPAs where ") +
                    kTracedRows);
  if (!row.Next()) return b;
  b.first = {row.Double(0), row.Double(1)};
  b.second = {row.Double(2), row.Double(3)};
  b.exists = b.first.x != 0 || b.first.y != 0 || b.second.x != 0 || b.second.y != 0;
  b.head = row.Double(4);
  b.conductivity = row.Double(5);
  b.thickness = row.Double(6);
  b.porosity = row.Double(7);
  b.ambient_flow = row.Double(8);
  b.direction = row.Double(9);
  return b;
}

AquiferBlock AquiferOf(const Ormel& ormel, const ModelValues& model, const Boundary& boundary) {
  AquiferBlock aquifer;
  aquifer.base = model.AQBase;
  aquifer.conductivity = boundary.exists ? boundary.conductivity : kNoBoundaryConductivity;
  aquifer.thickness = boundary.thickness;
  aquifer.porosity = boundary.porosity;
  const double angle = boundary.direction * kDegree;
  aquifer.uniform_flow = {boundary.ambient_flow * std::cos(angle), boundary.ambient_flow * std::sin(angle)};
  if (boundary.exists) {
    aquifer.reference = WToM(ormel, boundary.first);
    aquifer.reference_head = boundary.head;
    return aquifer;
  }
  const MapRect& window = ormel.window.SolveWindow;
  aquifer.reference = WToM(ormel, {window.Width() * 0.5, window.Height() * 0.5});
  aquifer.reference_head = model.AQBase + boundary.thickness * 10;
  return aquifer;
}

/// Left, top, right, bottom: the solver takes the corners in any order.
DeckWindow WindowOf(const Ormel& ormel) {
  const MapRect& window = ormel.window.SolveWindow;
  return {WToM_X(ormel, window.x1), WToM_Y(ormel, window.y1), WToM_X(ormel, window.x2),
          WToM_Y(ormel, window.y2)};
}

std::vector<WellInput> ReadWells(Ormel& ormel, const std::string& sql) {
  std::vector<WellInput> wells;
  RowReader rows(ormel.db(), sql);
  while (rows.Next()) {
    WellInput well;
    well.place.on_map = {rows.Double(0), rows.Double(1)};
    well.place.at = WToM(ormel, well.place.on_map);
    well.head = rows.Double(2);
    well.radius = rows.Double(3);
    well.vid = rows.Long(4);
    well.label = rows.Text(5);
    wells.push_back(std::move(well));
  }
  return wells;
}

/// The images of the areas' wells; one whose source or boundary is gone is none.
std::vector<WellInput> ReadImages(Ormel& ormel) {
  std::set<std::string> labels;
  for (const ImageSource& source : ImageSources(ormel)) labels.insert(FoldCase(MirrorLabel(source.well)));
  std::vector<WellInput> images = ReadWells(
      ormel,
      "select Vertices.X,Vertices.Y,Wells.Head,Wells.Radius,Wells.VID,Wells.Label from Wells inner join "
      "Vertices on Vertices.VID=Wells.VID where Wells.Label like 'Mirror_*' order by Wells.VID");
  std::erase_if(images, [&](const WellInput& image) { return !labels.contains(FoldCase(image.label)); });
  return images;
}

void WriteAreaWells(Ormel& ormel, TextSink& deck) {
  const std::vector<WellInput> wells = ReadWells(
      ormel,
      std::string(
          "select Vertices.X,Vertices.Y,Wells.Head,Wells.Radius,Wells.VID,Wells.Label from WHPAs inner "
          "join Wells on Wells.Label=WHPAs.Well inner join Vertices on "
          "Vertices.VID=Wells.VID where ") +
          kTracedRows + " order by WHPAs.rowid");
  if (ormel.db().Scalar(std::string("select count(*) from WHPAs where ") + kTracedRows).AsLong() == 0) return;
  deck.Line(" well ");
  deck.Line(" discharge ");
  WriteDischargeWells(deck, wells);
  WriteDischargeWells(deck, ReadImages(ormel));
  deck.Line(" quit ");
}

TraceBlock TraceOf(Ormel& ormel, const ModelValues& model, const Boundary& boundary) {
  TraceBlock trace;
  trace.longest_time = model.TRACEMaxTime;
  if (!ormel.solution.use_default_step) trace.step = model.TRACEStep;
  if (boundary.exists) trace.boundary = {WToM(ormel, boundary.first), WToM(ormel, boundary.second)};
  trace.particles = ReadParticles(ormel, false);
  RowReader rows(
      ormel.db(),
      "select Vertices.X,Vertices.Y,Wells.NParticles from Vertices inner join Wells on Vertices.VID "
      "= Wells.VID where Wells.Label not like 'Mirror_*' and exists (select 1 from WHPAs where "
      "WHPAs.Well=Wells.Label and not (WHPAs.T<1 and WHPAs.Type<>3)) order by Vertices.VID");
  while (rows.Next())
    trace.wells.push_back({WToM(ormel, {rows.Double(0), rows.Double(1)}), model.AQBase,
                           std::max<std::int64_t>(rows.Long(2), kLeastParticles)});
  return trace;
}

/// The traced areas that are to be outlined, for the time that paths are traced for.
OutlineRequest OutlinesAsked(Ormel& ormel, const ModelValues& model) {
  OutlineRequest request;
  if (model.TRACECompute == 0 || !(model.TRACEMaxTime > 0.0) || !ormel.db().HasField("WHPAs", "Outline"))
    return request;
  request.years = {model.TRACEMaxTime / kDaysPerYear};
  RowReader rows(
      ormel.db(),
      std::string("select Wells.Label,Wells.VID,Vertices.X,Vertices.Y,Wells.Radius,Wells.Head from "
                  "WHPAs inner join Wells on Wells.Label=WHPAs.Well inner join Vertices on "
                  "Vertices.VID=Wells.VID where WHPAs.Outline<>0 and Wells.Head>0 and (") +
          kTracedRows + ") order by WHPAs.rowid");
  while (rows.Next())
    request.wells.push_back({std::string(rows.Text(0)),
                             rows.Long(1),
                             {rows.Double(2), rows.Double(3)},
                             rows.Double(4),
                             rows.Double(5)});
  return request;
}

std::string OutlineFile(const Ormel& ormel, const std::string& stem) {
  return ModelFile(ormel, stem + ".ZNS");
}

/// Stored under names of their own beside the zones of the solved model.
void StoreAreaOutlines(Ormel& ormel, const std::string& stem) {
  const OutlineRequest request = OutlinesAsked(ormel, ReadModel(ormel));
  if (request.wells.empty()) return;
  std::vector<ZoneOwner> owners;
  for (const CaptureWell& well : request.wells) owners.push_back({well.label, well.label + " WHPA"});
  std::vector<WellOutlines> wells;
  const ReadOutcome damage = ReadZoneFile(OutlineFile(ormel, stem), wells);
  DeleteTolerantly(OutlineFile(ormel, stem));
  if (damage) {
    Inform(ormel, "Capture zone", damage->Message(), Icon::kStop);
    return;
  }
  if (StoreOutlines(ormel, request, owners, wells) > 0) TurnOnLayer(ormel, Layer::kCapzones);
}

std::vector<RunFile> FilesOf(const Ormel& ormel, const std::string& stem) {
  std::vector<RunFile> files;
  for (const char* extension : {".DAT", ".SOL", ".XTR", ".PTH", ".CTR", ".GRD"})
    files.push_back({ModelFile(ormel, stem + extension), RunFile::How::kSetAside});
  return files;
}

/// Without a stream boundary the deck asks for no grid, and there is nothing to contour.
RunEnd Contour(Ormel& ormel, const std::string& stem) {
  if (!FileExists(ModelFile(ormel, stem + ".GRD"))) return RunEnd::kDone;
  return RunContourProgram(ormel, stem) == ContourEnd::kCancelled ? RunEnd::kCancelled : RunEnd::kDone;
}

void ShowAreas(Ormel& ormel) {
  const ModelValues model = ReadModel(ormel);
  ormel.layers.Switch(Layer::kContours, model.CONTOURShow != 0);
  ormel.layers.Switch(Layer::kPathlines, model.TRACECompute != 0);
  if (ormel.db().RowCount("TestPoints") > 0) ormel.layers.Switch(Layer::kTestPoints, true);
  ormel.menus.Enable("WHPA", 3, true);
  ormel.layers.Switch(Layer::kWhpas, true);
  ormel.view().ZoomActions(Zoom::kRedraw);
}

/// A calculated area names its time of travel, but paths are traced for the longest time of the settings.
/// False when the user gives up.
bool AgreeOnTime(Ormel& ormel) {
  ModelValues model = ReadModel(ormel);
  if (model.TRACECompute == 0) return true;
  RowReader row(ormel.db(), "select Well,TimeOfTravel from WHPAs where Type=2 and T>1");
  if (!row.Next() || row.Double(1) == model.TRACEMaxTime || !(row.Double(1) > 0.0)) return true;
  const double time = row.Double(1);
  const Answer answer = ormel.ui().Ask(
      {"Time of Travel",
       Lines({"The area of the well '" + std::string(row.Text(0)) + "' was asked for a time of travel of " +
                  NumberText(time) + " days, but",
              "pathlines are traced for the maximum travel time of the model settings, which is " +
                  NumberText(model.TRACEMaxTime) + " days.",
              "Set the maximum travel time to " + NumberText(time) + " days?"}),
       Buttons::kYesNoCancel, Icon::kQuestion});
  if (answer == Answer::kYes) {
    model.TRACEMaxTime = time;
    WriteModel(ormel, model);
  }
  return answer == Answer::kYes || answer == Answer::kNo;
}

RunPlan PlanOf(Ormel& ormel, const std::string& stem) {
  RunPlan plan;
  plan.deck = stem + ".DAT";
  plan.argument = stem;
  plan.wait_text = "Calculating WHPA...";
  plan.writing_text = "Writing WHPAs to Solver...";
  plan.files = FilesOf(ormel, stem);
  plan.scratch = {ModelFile(ormel, "GRID__.DAT"), ModelFile(ormel, "GRID__.XTR"), OutlineFile(ormel, stem)};
  plan.write = [&ormel, stem](TextSink& deck) {
    ModelCheckExtents(ormel, false, false);
    WriteWhpaDeck(ormel, deck, stem);
    return true;
  };
  plan.accept = [&ormel, stem] { return Contour(ormel, stem); };
  return plan;
}

}  // namespace

std::string WhpaStem(Ormel& ormel) {
  const std::string stem = ormel.db().Scalar("select WHPAText from WHPAs").AsText();
  return stem == "NONE" ? std::string() : stem;
}

void WriteWhpaDeck(Ormel& ormel, TextSink& deck, const std::string& stem) {
  const ModelValues model = ReadModel(ormel);
  const Boundary boundary = ReadBoundary(ormel);
  const DeckWindow window = WindowOf(ormel);
  WriteHead(deck, {.error = "temperror.log", .message = "tempmess.log", .echo = "tempecho.log"});
  // The solver needs no units here: the code is that of a factor which is neither zero nor negative.
  WriteOriginAndTitle(deck, {ormel.window.model.x_min, ormel.window.model.y_min}, 1, stem);
  WriteAquifer(deck, AquiferOf(ormel, model, boundary));
  WriteLayout(deck, window);
  WriteAreaWells(ormel, deck);
  WriteLayout(deck, window);
  deck.Line(" time 0");
  WriteSolveAndSave(deck, 1, stem);
  WriteTime(deck, ormel.solution.SolutionTime);
  if (boundary.exists && model.CONTOURShow != 0)
    WriteGrid(deck, stem, window, model.CONTOURLevel != 40 ? 80 : 40);
  if (model.TRACECompute != 0) WriteTrace(deck, stem, TraceOf(ormel, model, boundary));
  if (const OutlineRequest request = OutlinesAsked(ormel, model); !request.wells.empty())
    WriteZonesBlock(
        ormel, deck, stem, request,
        boundary.exists ? std::vector<MapPoint>{boundary.first, boundary.second} : std::vector<MapPoint>{});
  deck.Line(" stop");
}

namespace {

struct CutPaths {
  std::size_t cut = 0, all = 0;
};

/// Paths that end at the window's edge: the area is larger than they show.
CutPaths CountCutPaths(const Ormel& ormel, const std::string& stem) {
  CutPaths paths;
  ReadPathFile(ModelFile(ormel, stem + ".PTH"), [&paths](const Pathline& path) {
    ++paths.all;
    if (path.end.find("window") != std::string::npos) ++paths.cut;
  });
  return paths;
}

/// True when the window is wider now and the run is to be made again.
bool OfferWiderWindow(Ormel& ormel, const CutPaths& paths) {
  if (paths.cut == 0) return false;
  const std::string cut = std::to_string(paths.cut) + " of " + std::to_string(paths.all);
  if (!AskYesNo(ormel, "Pathlines Cut",
                Lines({cut + " pathlines end at the edge of the window: the area is larger than they show.",
                       "Widen the window to twice its width and height and run again?"}),
                Icon::kQuestion)) {
    Feedback(ormel, cut + " pathlines end at the edge of the window");
    return false;
  }
  MapRect& window = ormel.window.SolveWindow;
  const double dx = 0.5 * window.Width(), dy = 0.5 * window.Height();
  window = {window.x1 - dx, window.x2 + dx, window.y1 + dy, window.y2 - dy};
  ormel.view().ZoomActions(Zoom::kApplyWindow, window);
  return true;
}

/// True when the run ended well.
bool RunOnce(Ormel& ormel, const std::string& stem) {
  const RunOutcome outcome = RunBy(ormel, PlanOf(ormel, stem));
  if (outcome.end == RunEnd::kNotStarted)
    Inform(ormel, "Solver not started", outcome.process.failure, Icon::kStop);
  if (outcome.end == RunEnd::kStopped) {
    ormel.solution.ValidSolution = false;
    OfferToShow(ormel, outcome.culprit);
  }
  if (outcome.end == RunEnd::kCancelled)
    Feedback(ormel, "The run was cancelled: pathlines and files are as they were before");
  if (outcome.end != RunEnd::kDone) return false;
  // Results are placed by the origin of the solved model; these have that of the areas' deck.
  const Extents solved = std::exchange(ormel.window.solved, ormel.window.model);
  StoreAreaOutlines(ormel, stem);
  ormel.window.solved = solved;
  ShowAreas(ormel);
  const ModelValues model = ReadModel(ormel);
  if (model.TRACECompute != 0) Feedback(ormel, "Pathlines of " + NumberText(model.TRACEMaxTime) + " days");
  return true;
}

}  // namespace

void ModelRunWHPAs(Ormel& ormel) {
  RunCommand(ormel, "ModelRunWHPAs", [&] {
    const std::string stem = WhpaStem(ormel);
    RemakeImageWells(ormel);
    if (!AgreeOnTime(ormel)) return;
    do {
      if (!RunOnce(ormel, stem)) return;
    } while (OfferWiderWindow(ormel, CountCutPaths(ormel, stem)));
    const std::string log = ModelFile(ormel, "temperror.log");
    if (ErrorLogSpeaks(log)) ormel.ui().ViewTextFile(log);
  });
}

}  // namespace ormel
