// The window's picture after changes, painted in part, against one that is painted whole.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <memory>

#include "core/layers.h"
#include "qtdevice/painter_device.h"
#include "support/test_project.h"
#include "view/map_view_impl.h"

namespace ormel::test {
namespace {

class ImageSurface final : public MapSurface {
 public:
  DrawingDevice* BeginPicture() override {
    image = QImage(QSize(300, 300), QImage::Format_RGB32);
    painter_ = std::make_unique<QPainter>(&image);
    device_ = std::make_unique<QPainterDevice>(*painter_, image.size(), 96, 96);
    return device_.get();
  }
  void EndPicture() override {
    device_.reset();
    painter_.reset();
  }
  void Update() override {}
  QImage image;

 private:
  std::unique_ptr<QPainter> painter_;
  std::unique_ptr<QPainterDevice> device_;
};

struct PaintedProject : TestProject {
  ImageSurface surface;
  MapViewImpl map{ormel, &surface};
  PaintedProject() {
    ormel.ports.view = &map;
    ormel.window.SolveWindow = {-100.0, 100.0, 100.0, -100.0};
    map.SetUpLayers();
  }
  /// What a view without a memory would show.
  QImage Whole() {
    ImageSurface fresh;
    MapViewImpl other(ormel, &fresh);
    other.state().basemaps = map.state().basemaps;
    other.Redraw();
    return fresh.image;
  }
};

TEST(PictureCache, ShowsWhatAWholeRedrawShows) {
  PaintedProject t;
  Database& db = t.ormel.db();
  const auto vertex = [&](double x, double y, Pid pid) {
    db.Execute("insert into Vertices (PID,Seq,X,Y) values (?,?,?,?)", {pid, std::int64_t{1}, x, y});
    return db.Scalar("select max(VID) from Vertices").AsLong();
  };
  const Vid well = vertex(0, 0, kSinglePoint);
  db.Execute("insert into Wells (VID,Label,Radius,Setback) values (?,'North',20,0)", {well});
  db.Execute("insert into LinesinkStrings (PID,Label) values (1,'river')");
  const Vid bend = vertex(-90, -50, 1);
  vertex(90, 60, 1);
  t.map.state().basemaps = [](const MapCanvas& c) {
    c.vg.vgGDILine({-100, 0}, {100, 5}, PenStyle::kSolid, 3.0, QBColor(8));
  };
  t.ormel.layers.Switch(Layer::kWellLabels, true);
  t.map.Redraw();
  EXPECT_EQ(t.map.picture().reused(), 0U);
  const auto move = [&](Vid vid, double x) { db.Execute("update Vertices set X=? where VID=?", {x, vid}); };
  std::size_t reused = 0;
  for (const double x : {10.0, 20.0, 30.0, 40.0}) {
    move(well, x);
    t.map.Redraw();
    EXPECT_EQ(t.surface.image, t.Whole()) << "well at " << x;
    reused = std::max(reused, t.map.picture().reused());
  }
  EXPECT_GT(reused, 3U) << "what lies beneath the wells is not painted again";
  move(bend, -60);  // below the wells: less can be taken over
  t.map.Redraw();
  EXPECT_EQ(t.surface.image, t.Whole()) << "river";
  EXPECT_LT(t.map.picture().reused(), reused);
  move(well, 0);
  t.map.Redraw();
  t.ormel.layers.Switch(Layer::kLinesinks, false);
  t.map.Redraw();
  EXPECT_EQ(t.surface.image, t.Whole()) << "a layer less";
  t.ormel.window.SolveWindow = {-50.0, 50.0, 50.0, -50.0};
  t.map.Redraw();
  EXPECT_EQ(t.surface.image, t.Whole()) << "another window";
  t.map.Redraw();
  EXPECT_EQ(t.surface.image, t.Whole()) << "nothing has changed";
}

}  // namespace
}  // namespace ormel::test
