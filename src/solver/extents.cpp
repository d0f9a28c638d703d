#include "solver/extents.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>

#include "core/command.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

/// Share of the squared diagonal of the display window below which a model is too small to be seen.
constexpr double kSmallShare = 0.0005;

void Grow(Extents& extents, const Extents& other) {
  extents.x_min = std::min(extents.x_min, other.x_min);
  extents.x_max = std::max(extents.x_max, other.x_max);
  extents.y_min = std::min(extents.y_min, other.y_min);
  extents.y_max = std::max(extents.y_max, other.y_max);
}

bool AnyHeadSpecified(Ormel& ormel, const char* table) {
  return ormel.db().Scalar(std::string("select count(*) from ") + table + " where HeadSpecified=1").AsLong() >
         0;
}

/// The head at the reference point of a model without uniform flow.
void SetReferenceHead(Ormel& ormel) {
  Database& db = ormel.db();
  double& head = ormel.window.ReferenceHead;
  if (AnyHeadSpecified(ormel, "LinesinkStrings")) {
    head = db.Scalar(
                 "select 0.5*avg(startinghead+endinghead) as AvgHead from LinesinkStrings "
                 "where HeadSpecified=1;")
               .AsDouble();
    return;
  }
  if (AnyHeadSpecified(ormel, "Wells")) {
    // Half the mean of the heads, not the mean: solutions that users keep were made with this number, and a
    // reference point ten half-diagonals away hardly feels it.
    head = db.Scalar("select 0.5*avg(head) as AvgHead from wells where HeadSpecified=1;").AsDouble();
    return;
  }
  const double top = db.Scalar("select AQBase from Model").AsDouble() +
                     db.Scalar("select AQThickness from Model").AsDouble();
  head = top;
  // Where the open computes its windows nobody has asked for a solution yet.
  if (!ormel.project.ProjectOpen || ormel.project.no_heads_told) return;
  ormel.project.no_heads_told = true;
  AskOkCancel(ormel, "Error",
              "No head-specified conditions exist.  Reference head will be set to aquifer top.", Icon::kNone);
}

Extents ExtentsOfVertices(Database& db) {
  RowReader rows(db, "select max(X) as MaxX,min(X) as MinX,Max(Y) as MaxY,min(Y) as MinY from Vertices;");
  rows.Next();
  return {rows.Double(1), rows.Double(0), rows.Double(3), rows.Double(2)};
}

/// Makes room for the circles of the protection areas that are shown.
void IncludeProtectionAreas(Ormel& ormel, Extents& model) {
  if (!ormel.layers.On(Layer::kWhpas)) return;
  Database& db = ormel.db();
  RowReader areas(db, "select * from WHPAs");
  const int well_column = areas.Column("Well");
  const int radius_column = areas.Column("Radius");
  RowReader place(db,
                  "select Vertices.X,Vertices.Y from Wells inner join Vertices on Vertices.VID=Wells.VID "
                  "where Wells.Label=?",
                  {""});
  while (areas.Next()) {
    const std::string well(areas.Text(well_column));
    place.Restart({well});
    if (!place.Next()) continue;  // the well is gone; its area is told of where areas are drawn
    const double x = place.Double(0);
    const double y = place.Double(1);
    const double r = areas.Double(radius_column);
    // Twice the radius where once is too little, so that the area keeps a margin.
    if (x - r < model.x_min) model.x_min = x - 2.0 * r;
    if (x + r > model.x_max) model.x_max = x + 2.0 * r;
    if (y - r < model.y_min) model.y_min = y - 2.0 * r;
    if (y + r > model.y_max) model.y_max = y + 2.0 * r;
  }
}

void ReplaceSmallExtents(Ormel& ormel) {
  Extents& model = ormel.window.model;
  const MapRect& window = ormel.window.SolveWindow;
  const double width = model.x_max - model.x_min;
  const double height = model.y_max - model.y_min;
  const double threshold =
      kSmallShare * (window.Width() * window.Width() + window.Height() * window.Height());
  if (width * width + height * height >= threshold) return;
  AskOkCancel(ormel, "Small Window",
              "Model extents are too small.  Extents will be set to the display window.", Icon::kNone);
  model = ExtentsOf(window);
}

void StoreOriginUnlessSolved(Ormel& ormel) {
  if (!ormel.solution.ValidSolution) StoreModelOrigin(ormel);
}

/// Vertices of each polygon.
std::unordered_map<std::int64_t, int> CountVertices(Database& db) {
  std::unordered_map<std::int64_t, int> counts;
  RowReader rows(db, "select PID,count(*) from Vertices where PID>=0 group by PID");
  while (rows.Next()) counts[rows.Long(0)] = static_cast<int>(rows.Long(1));
  return counts;
}

void CountWells(Database& db, ModelSize& size) {
  RowReader rows(db, "select HeadSpecified,PPWell,Transient from Wells");
  while (rows.Next()) {
    const bool head = rows.Bool(0);
    const bool partial = rows.Bool(1);
    if (partial)
      ++size.partially_penetrating_wells;
    else if (rows.Bool(2))
      ++size.transient_wells;
    else
      ++size.wells;
    size.well_equations += (head ? 1 : 0) + (partial ? 2 : 0);
  }
}

}  // namespace

void ModelCheckMapExtents(Ormel& ormel) {
  if (const auto maps = ormel.view().ShownMapExtents()) Grow(ormel.window.full, *maps);
}

void ModelCheckExtents(Ormel& ormel, bool /*StartFromEmpty*/, bool ReplaceMapExtents) {
  const Named named(ormel, "ModelCheckExtents");
  MapWindow& window = ormel.window;
  ModelCheckMapExtents(ormel);
  if (ormel.db().Scalar("select UNIFLOWCompute from Model").AsBool()) {
    window.model = ExtentsOf(window.SolveWindow);  // needs no closed model: what is seen is the model
  } else if (ormel.db().RowCount("Vertices") <= 1) {
    window.model = ExtentsOf(window.SolveWindow);
    StoreOriginUnlessSolved(ormel);
    return;
  } else {
    SetReferenceHead(ormel);
    window.model = ExtentsOfVertices(ormel.db());
  }
  IncludeProtectionAreas(ormel, window.model);
  ReplaceSmallExtents(ormel);
  if (ReplaceMapExtents)
    window.full = window.model;
  else
    Grow(window.full, window.model);
  StoreOriginUnlessSolved(ormel);
}

void FindMapExtents(Ormel& ormel) {
  constexpr double kFar = 1e30;
  Extents found{kFar, -kFar, kFar, -kFar};
  if (const auto maps = ormel.view().ShownMapExtents()) Grow(found, *maps);
  if (ormel.db().RowCount("Vertices") > 0) Grow(found, ExtentsOfVertices(ormel.db()));
  IncludeProtectionAreas(ormel, found);
  const double side = std::max(found.x_max - found.x_min, found.y_max - found.y_min);
  if (!(side > 0.0)) return;
  constexpr double kLeast = 0.05;  // share of the long side that a map on one line gets beside it
  const auto widen = [side](double& low, double& high) {
    if (high > low) return;
    low -= kLeast * side;
    high += kLeast * side;
  };
  widen(found.x_min, found.x_max);
  widen(found.y_min, found.y_max);
  ormel.window.full = found;
}

void StoreModelOrigin(Ormel& ormel) {
  ormel.db().Execute("update Model set SOLVERX0=?, SOLVERY0=?",
                     {ormel.window.model.x_min, ormel.window.model.y_min});
}

void ModelRestoreModelOrigin(Ormel& ormel) {
  RowReader rows(ormel.db(), "select SOLVERX0,SOLVERY0 from Model;");
  if (!rows.Next()) return;
  ormel.window.model.x_min = rows.Double(0);
  ormel.window.model.y_min = rows.Double(1);
}

int ModelSize::SizeNumber() const {
  constexpr int kAllowance = 25;
  constexpr int kLeast = 61;
  return std::max(kLeast,
                  2 * barrier_elements + linesinks + 2 * equation_elements + 1 + well_equations + kAllowance);
}

ModelSize CountModel(Ormel& ormel) {
  Database& db = ormel.db();
  ModelSize size;
  CountWells(db, size);
  const auto vertices = CountVertices(db);
  const auto vertices_of = [&vertices](std::int64_t pid) {
    const auto found = vertices.find(pid);
    return found == vertices.end() ? 0 : found->second;
  };
  RowReader strings(db, "select PID from LinesinkStrings");
  while (strings.Next()) {
    ++size.linesink_strings;
    size.linesinks += std::max(0, vertices_of(strings.Long(0)) - 1);
  }
  RowReader barriers(db, "select PID,Closed from NoFlowStrings");
  while (barriers.Next()) {
    ++size.barriers;
    const int n = vertices_of(barriers.Long(0));
    size.barrier_elements += barriers.Long(1) != 0 ? n : std::max(0, n - 1);
  }
  RowReader domains(db, "select PID,ChangeK,ChangeB from Inhomogeneities");
  while (domains.Next()) {
    ++size.inhomogeneities;
    const int n = vertices_of(domains.Long(0));
    size.inhomogeneity_elements += n;
    if (domains.Bool(1) || domains.Bool(2)) size.equation_elements += n;
  }
  return size;
}

int ModelGetSize(Ormel& ormel, bool ShowBox) {
  const Named named(ormel, "ModelGetSize");
  const ModelSize size = CountModel(ormel);
  ormel.solution.size_number = size.SizeNumber();
  if (ShowBox) {
    const auto line = [](const char* label, int number) { return label + std::to_string(number); };
    Inform(ormel, "Model Size",
           Lines({"Current model size:", line("Number of wells (2-D): ", size.wells),
                  line("Number of linesink strings: ", size.linesink_strings),
                  line("Number of linesinks: ", size.linesinks),
                  line("Number of inhomogeneities: ", size.inhomogeneities),
                  line("Number of inhomogeneity elements (line doublets): ", size.inhomogeneity_elements),
                  line("Number of barriers: ", size.barriers),
                  line("Number of barrier elements (line doublets): ", size.barrier_elements),
                  "Maximum number of wells (2-D) allowed:  2000",
                  "Line-sinks, inhomogeneities, barriers and equations have no fixed maximum:",
                  "50000 line-sinks with 500 wells have been solved within 1.2 GB of memory.",
                  line("Estimated number of equations is less than: ", size.SizeNumber())}));
  }
  return size.SizeNumber();
}

}  // namespace ormel
