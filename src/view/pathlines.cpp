#include "view/pathlines.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

#include "core/ask_number.h"
#include "core/command.h"
#include "core/coordinates.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "solver/pathline_tics.h"
#include "solver/result_files.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "view/outdated.h"
#include "view/styles.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

/// Wells that give their pathlines a colour, found by place.
class ColouredWells {
 public:
  explicit ColouredWells(Ormel& ormel) {
    RowReader rows(ormel.db(),
                   "select Vertices.X,Vertices.Y,Wells.Radius,Wells.PathlineColor from Wells,Vertices "
                   "where Wells.VID=Vertices.VID and Wells.PathlineColor<>-99 order by Wells.VID");
    const double to_map = 1.0 / BasemapConvert(ormel);
    while (rows.Next()) {
      const double reach = 2.1 * rows.Double(2) * to_map;
      wells_.push_back({{rows.Double(0), rows.Double(1)},
                        reach,
                        {static_cast<std::int32_t>(rows.Long(3))},
                        wells_.size()});
      widest_ = std::max(widest_, reach);
    }
    std::sort(wells_.begin(), wells_.end(), [](const Well& a, const Well& b) { return a.at.x < b.at.x; });
  }

  /// Of several wells that reach the point, the last one of the table.
  Color ColorAt(MapPoint start) const {
    const Well* found = nullptr;
    const auto first = std::lower_bound(wells_.begin(), wells_.end(), start.x - widest_,
                                        [](const Well& well, double x) { return well.at.x < x; });
    for (auto it = first; it != wells_.end() && it->at.x <= start.x + widest_; ++it)
      if (std::hypot(it->at.x - start.x, it->at.y - start.y) < it->reach &&
          (!found || found->order < it->order))
        found = &*it;
    return found ? found->color : StyleOf(StyleId::kPathline).color;
  }

 private:
  struct Well {
    MapPoint at;
    double reach;
    Color color;
    std::size_t order;
  };
  std::vector<Well> wells_;
  double widest_ = 0.0;
};

void DrawPaths(const MapCanvas& canvas, const PathSet& set, const ColouredWells& wells) {
  for (const PathSet::Path& path : set.paths) {
    const std::span<const MapPoint> points(set.points.data() + path.first, path.count);
    if (points.empty()) continue;
    canvas.vg.vgGDIFineLine(points, StyleOf(StyleId::kPathline).width,
                            ResultColor(canvas.ormel, wells.ColorAt(points.front())));
  }
}

void DrawTics(const MapCanvas& canvas, const std::vector<Tic>& tics, StyleId id) {
  const Style& style = StyleOf(id);
  const Color color = ResultColor(canvas.ormel, style.color);
  for (const Tic& tic : tics) canvas.vg.vgGDISymbol(tic.at, style.symbol, color, color);
  if (tics.size() >= kMostTics)
    Note(canvas.ormel, "Too many tic marks: only " + std::to_string(kMostTics) + " are drawn");
}

void DrawModelPaths(const MapCanvas& canvas, ResultFiles& files, const ColouredWells& wells) {
  Ormel& ormel = canvas.ormel;
  // Paths of a model that has changed since would tell a town the wrong water.
  if (!ormel.solution.ValidSolution) return;
  const auto set = files.Paths(ormel, ResultFileName(ormel, ormel.project.OrmelBaseName, ".PTH"));
  if (!set) return;
  if (ormel.layers.On(Layer::kPathlines)) DrawPaths(canvas, *set, wells);

  const MapRect window = canvas.vg.World();
  std::vector<Tic> times, elevations;
  if (ormel.layers.On(Layer::kTimeTics))
    times = TimeTics(*set, ormel.solution.TimeTicSpacing, &window, kMostTics);
  if (ormel.layers.On(Layer::kElevationTics))
    elevations = ElevationTics(*set, ormel.solution.ElevationTicSpacing, &window, kMostTics);
  DrawTics(canvas, times, StyleId::kTimeTic);
  DrawTics(canvas, elevations, StyleId::kElevationTic);

  if (!ormel.solution.PathlinesValid) Note(ormel, "Pathlines of an earlier trace");
}

std::optional<double> AskSpacing(Ormel& ormel, const InputBox& box) {
  const std::optional<std::string> text = ormel.ui().Ask(box);
  if (!text || text->empty()) return std::nullopt;
  if (IsNumeric(*text) && Val(*text) > 0.0 && std::isfinite(Val(*text))) return Val(*text);
  Inform(ormel, "Input error", "Illegal time mark value " + *text);
  return std::nullopt;
}

}  // namespace

void ModelDrawPathlines(const MapCanvas& canvas, ResultFiles& files) {
  Ormel& ormel = canvas.ormel;
  const Named named(ormel, "ModelDrawPathlines");
  const bool lines = ormel.layers.On(Layer::kPathlines);
  const bool any = lines || ormel.layers.On(Layer::kTimeTics) || ormel.layers.On(Layer::kElevationTics);
  if (!any) return;
  const ColouredWells wells(ormel);
  DrawModelPaths(canvas, files, wells);
  if (!ormel.layers.On(Layer::kWhpas)) return;
  for (const std::string& stem : WhpaStems(ormel)) {
    const auto set = files.Paths(ormel, ResultFileName(ormel, stem, ".PTH"));
    if (set) DrawPaths(canvas, *set, wells);
  }
}

void PATHLINES(Ormel& ormel) {
  RunCommand(ormel, "PATHLINES", [&] {
    const bool on = !ormel.layers.On(Layer::kPathlines);
    ormel.layers.Switch(Layer::kPathlines, on);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

void TMARKS(Ormel& ormel, int index) {
  RunCommand(ormel, "TMARKS", [&] {
    constexpr double kDays[] = {0.0, 365.0, 730.0, 1825.0};
    bool show = true;
    if (index == kTimeMarksShow) {
      show = !ormel.layers.On(Layer::kTimeTics);
    } else if (index == kTimeMarksCustom) {
      const auto days =
          AskSpacing(ormel, {"Time Mark Spacing", "Enter the spacing for the time tic-marks [days]:", "365"});
      if (!days) return;
      ormel.solution.TimeTicSpacing = *days;
    } else {
      ormel.solution.TimeTicSpacing = kDays[index];
    }
    if (show && !(ormel.solution.TimeTicSpacing > 0.0)) ormel.solution.TimeTicSpacing = kDays[1];
    ormel.layers.Switch(Layer::kTimeTics, show);
    for (int item = kTimeMarks1Year; item <= kTimeMarksCustom; ++item)
      if (index != kTimeMarksShow) ormel.menus.Check("TMARKS", item, item == index);
    WriteTicFiles(ormel);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

void ZMARKS(Ormel& ormel, bool ask) {
  RunCommand(ormel, "ZMARKS", [&] {
    double& spacing = ormel.solution.ElevationTicSpacing;
    bool show = true;
    if (ask || (!(spacing > 0.0) && !ormel.layers.On(Layer::kElevationTics))) {
      const auto entered = AskNumber(
          ormel, {"Elevation Tics", "Enter spacing for elevation tic marks: ", NumberText(spacing)});
      if (!entered) return;
      spacing = *entered;
      show = spacing > 0.0;
    } else {
      show = !ormel.layers.On(Layer::kElevationTics);
    }
    ormel.layers.Switch(Layer::kElevationTics, show);
    WriteTicFiles(ormel);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

}  // namespace ormel
