// The map of the town painted for the window: a redraw takes under 100 ms on a screen of 1600 x 1000, and is
// measured on one of twice the density beside it.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include "core/layers.h"
#include "qtdevice/painter_device.h"
#include "solver/result_files.h"
#include "store/database.h"
#include "town.h"
#include "view/mouse.h"

namespace ormel {
namespace {

/// A window of 1600 x 1000 logical pixels.
class ImageSurface final : public MapSurface {
 public:
  explicit ImageSurface(int ratio) : size_(QSize(1600, 1000) * ratio), dpi_(96 * ratio) {}
  DrawingDevice* BeginPicture() override {
    std::swap(image_, spare_);
    if (image_.isNull()) image_ = QImage(size_, QImage::Format_RGB32);
    painter_ = std::make_unique<QPainter>(&image_);
    device_ = std::make_unique<QPainterDevice>(*painter_, size_, dpi_, dpi_);
    return device_.get();
  }
  void EndPicture() override {
    device_.reset();
    painter_.reset();
  }
  void Update() override {}
  const QImage& image() const { return image_; }

 private:
  QSize size_;
  int dpi_;
  QImage image_, spare_;
  std::unique_ptr<QPainter> painter_;
  std::unique_ptr<QPainterDevice> device_;
};

using PaintedTown = Town<ImageSurface>;

PaintedTown& TheTown(int ratio) {
  static int argc = 1;
  static char name[] = "bench_qtdevice";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static QGuiApplication application(argc, argv);
  static PaintedTown plain(1), dense(2);
  return ratio == 1 ? plain : dense;
}

struct Switch {
  const char* name;
  std::optional<Layer> layer;
};
/// What is shown beside the contours, which are always on: all, or one layer less, to tell what each costs.
constexpr Switch kShown[] = {{"all", std::nullopt},
                             {"without elements", Layer::kElements},
                             {"without contours", Layer::kContours},
                             {"without pathlines", Layer::kPathlines},
                             {"without tics", Layer::kTimeTics}};

/// Arguments: device pixels in a logical one; row of kShown.
void PaintTown(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  const Switch& shown = kShown[state.range(1)];
  state.SetLabel(shown.name);
  if (shown.layer) town.ormel.layers.Switch(*shown.layer, false);
  const long reads = ormel::ResultFilesOf(town.ormel).reads();
  for (auto _ : state) town.map.Redraw();
  if (shown.layer) town.ormel.layers.Switch(*shown.layer, true);
  if (ormel::ResultFilesOf(town.ormel).reads() != reads)
    state.SkipWithError("a redraw read a result file again");
}
BENCHMARK(PaintTown)
    ->ArgNames({"density", "shown"})
    ->ArgsProduct({{1, 2}, {0, 1, 2, 3, 4}})
    ->Unit(benchmark::kMillisecond);

/// The well labels beside all else.
void PaintTownWithLabels(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  town.ormel.layers.Switch(Layer::kWellLabels, true);
  for (auto _ : state) town.map.Redraw();
  town.ormel.layers.Switch(Layer::kWellLabels, false);
}
BENCHMARK(PaintTownWithLabels)->ArgName("density")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

/// A dotted editor grid whose lines stand five pixels apart.
void PaintTownWithGrid(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  town.ormel.db().Execute("update Model set EDITGRIDSpacing=50");
  town.ormel.layers.Switch(Layer::kEditorGrid, true);
  for (auto _ : state) town.map.Redraw();
  town.ormel.layers.Switch(Layer::kEditorGrid, false);
}
BENCHMARK(PaintTownWithGrid)->ArgName("density")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

/// Rivers and roads of a base map beneath all.
void DrawBase(const MapCanvas& canvas) {
  constexpr int kLines = 500, kPoints = 200;
  std::vector<MapPoint> line(kPoints);
  for (int i = 0; i < kLines; ++i) {
    for (int k = 0; k < kPoints; ++k)
      line[static_cast<std::size_t>(k)] = {kSide * k / kPoints,
                                           kSide * i / kLines + 60.0 * std::sin(k * 0.07 + i)};
    canvas.vg.vgGDIPolyline(line, PenStyle::kSolid, 1.0, QBColor(7));
  }
}

/// One frame of the window while a well is dragged: the pointer's move, the picture, the shapes above it.
/// 8 ms are asked for.
void DragAWell(benchmark::State& state) {
  PaintedTown& town = TheTown(1);
  Ormel& ormel = town.ormel;
  town.map.state().basemaps = DrawBase;
  town.map.Redraw();
  ormel.selection.SelectedType = Element::kWell;
  ormel.selection.vid = ormel.db().Scalar("select min(VID) from Wells").AsLong();
  ormel.selection.pid = kSinglePoint;
  ormel.mouse.MovePending = ormel.mouse.MoveActive = true;
  QImage window(QSize(1600, 1000), QImage::Format_RGB32);
  int step = 0;
  for (auto _ : state) {
    step = (step + 7) % 1000;
    Map_MouseMove(town.map, MouseButton::kLeft, 0, {step, 1000 - step});
    QPainter painter(&window);
    painter.drawImage(QPointF(0, 0), town.surface.image());
    QPainterDevice device(painter, window.size(), 96, 96);
    town.map.PaintOverlay(device);
  }
  town.map.ClearMouseMode();
  town.map.state().basemaps = {};
}
BENCHMARK(DragAWell)->Unit(benchmark::kMillisecond);

/// The well comes to rest: its row changes, and only its layer and those above are painted again.
void DropAWell(benchmark::State& state) {
  PaintedTown& town = TheTown(1);
  town.map.state().basemaps = DrawBase;
  town.map.Redraw();
  int step = 0;
  for (auto _ : state) {
    town.ormel.db().Execute("update Vertices set X=? where VID=(select min(VID) from Wells)",
                            {1000.0 + 10.0 * ++step});
    town.map.Redraw();
  }
  state.counters["layers reused"] = static_cast<double>(town.map.picture().reused());
  town.map.state().basemaps = {};
}
BENCHMARK(DropAWell)->Unit(benchmark::kMillisecond);

/// A tenth of the map fills the window: most of it lies outside.
void PaintTownClose(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  const MapRect full = town.ormel.window.SolveWindow;
  town.ormel.window.SolveWindow = {4500.0, 5500.0, 5500.0, 4500.0};
  for (auto _ : state) town.map.Redraw();
  town.ormel.window.SolveWindow = full;
}
BENCHMARK(PaintTownClose)->ArgName("density")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ormel
