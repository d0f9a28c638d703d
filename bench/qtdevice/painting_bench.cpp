// The map of the town painted for the window: a redraw takes under 100 ms on a screen of 1600 x 1000, and is
// measured on one of twice the density beside it.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <memory>
#include <utility>

#include "qtdevice/painter_device.h"
#include "town.h"

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
  const char* control;
  int index;
};
/// What is shown beside the contours, which are always on: all, or one layer less, to tell what each costs.
constexpr Switch kShown[] = {{"all", nullptr, 0},
                             {"without elements", "layermenu", kLayerElements},
                             {"without contours", "layermenu", kLayerContours},
                             {"without pathlines", "layermenu", kLayerPathlines},
                             {"without tics", "TMARKS", kTimeMarksShow}};

/// Arguments: device pixels in a logical one; row of kShown.
void PaintTown(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  const Switch& shown = kShown[state.range(1)];
  state.SetLabel(shown.name);
  if (shown.control != nullptr) town.ormel.menus.Check(shown.control, shown.index, false);
  const long reads = town.map.state().files.reads();
  for (auto _ : state) town.map.Redraw();
  if (shown.control != nullptr) town.ormel.menus.Check(shown.control, shown.index, true);
  if (town.map.state().files.reads() != reads) state.SkipWithError("a redraw read a result file again");
}
BENCHMARK(PaintTown)
    ->ArgNames({"density", "shown"})
    ->ArgsProduct({{1, 2}, {0, 1, 2, 3, 4}})
    ->Unit(benchmark::kMillisecond);

/// The well labels beside all else.
void PaintTownWithLabels(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  town.ormel.menus.Check("ShowWellLabels", 0, true);
  for (auto _ : state) town.map.Redraw();
  town.ormel.menus.Check("ShowWellLabels", 0, false);
}
BENCHMARK(PaintTownWithLabels)->ArgName("density")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

/// A dotted editor grid whose lines stand five pixels apart.
void PaintTownWithGrid(benchmark::State& state) {
  PaintedTown& town = TheTown(static_cast<int>(state.range(0)));
  town.ormel.db().Execute("update Model set EDITGRIDSpacing=50");
  town.ormel.menus.Check("EDITORGRID", kGridShow, true);
  for (auto _ : state) town.map.Redraw();
  town.ormel.menus.Check("EDITORGRID", kGridShow, false);
}
BENCHMARK(PaintTownWithGrid)->ArgName("density")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

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
