// The painter's device on an image: what a user sees of lines, symbols and labels, in pixels.
#include "qtdevice/painter_device.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "qtdevice/clipping.h"

namespace ormel {
namespace {

constexpr Color kBlack = Rgb(0, 0, 0);
constexpr Color kWhite = Rgb(255, 255, 255);
constexpr Color kRed = Rgb(255, 0, 0);

QImage Drawn(QSize size, int dpi, const std::function<void(DrawingDevice&)>& draw) {
  QImage image(size, QImage::Format_RGB32);
  QPainter painter(&image);
  QPainterDevice device(painter, size, dpi, dpi);
  device.Clear(kWhite);
  draw(device);
  return image;
}

/// The smallest rectangle around all that an eye can tell from white.
QRect Ink(const QImage& image) {
  QRect ink;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qGray(image.pixel(x, y)) < 240) ink |= QRect(x, y, 1, 1);
  return ink;
}

TEST(PainterDevice, HairlinesFillWholePixelsAndGrowWithTheDensity) {
  struct Case {
    int dpi, width;
  };
  for (const Case c : {Case{96, 1}, Case{192, 2}, Case{288, 3}}) {
    const QImage image = Drawn({40, 40}, c.dpi, [](DrawingDevice& device) {
      const std::vector<DevicePoint> line{{20, 0}, {20, 39}};
      device.Polyline(line, Pen{});
    });
    int dark = 0;
    for (int x = 0; x < 40; ++x) {
      const int grey = qRed(image.pixel(x, 20));
      EXPECT_TRUE(grey == 0 || grey == 255) << "grey edge in column " << x << " at " << c.dpi << " dpi";
      dark += grey == 0 ? 1 : 0;
    }
    EXPECT_EQ(dark, c.width) << c.dpi;
  }
}

/// The lines of an image have a rasterizer of their own: beside the toolkit's they may differ in the shade of
/// an edge, not in place, width or darkness.
TEST(PainterDevice, LinesOfAnImageLookAsThePainterDrawsThem) {
  std::vector<DevicePoint> spiral;
  for (int i = 0; i < 400; ++i)
    spiral.push_back({static_cast<int>(150 + i * 0.35 * std::cos(i * 0.08)),
                      static_cast<int>(150 + i * 0.35 * std::sin(i * 0.08))});
  const std::vector<DevicePoint> zigzag{{20, 280}, {60, 20}, {100, 280}, {280, 270}, {20, 260}, {290, 290}};
  for (const double width : {1.0, 1.5, 2.0, 3.0, 5.0})
    for (const std::vector<DevicePoint>& line : {spiral, zigzag}) {
      const auto draw = [&](DrawingDevice& device) {
        device.Polyline(line, Pen{PenStyle::kSolid, width, kBlack});
        device.Circle({150, 150}, 40, Pen{PenStyle::kSolid, width, kBlack}, std::nullopt);
        device.Circle({250, 40}, 12, Pen{PenStyle::kNone, width, kBlack}, kRed);
      };
      const QImage own = Drawn({300, 300}, 96, draw);
      QImage toolkit(300, 300, QImage::Format_ARGB32);  // a format that is left to the painter
      QPainter painter(&toolkit);
      QPainterDevice device(painter, {300, 300}, 96, 96);
      device.Clear(kWhite);
      draw(device);
      double own_ink = 0, toolkit_ink = 0;
      int off = 0;
      for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 300; ++x) {
          const int a = qGray(own.pixel(x, y)), b = qGray(toolkit.pixel(x, y));
          own_ink += 255 - a;
          toolkit_ink += 255 - b;
          off += std::abs(a - b) > 140 ? 1 : 0;
        }
      // The toolkit draws short steps of its thinnest line too faint.
      EXPECT_NEAR(own_ink / toolkit_ink, 1.0, width > 1.0 ? 0.02 : 0.2) << "width " << width;
      EXPECT_LT(off, 20) << "pixels differ at width " << width;
    }
}

TEST(PainterDevice, DashesOfAnImageHaveTheirPattern) {
  struct Case {
    PenStyle style;
    int dark, period;  ///< pixels of a line one pixel wide
  };
  for (const Case& c :
       {Case{PenStyle::kDot, 1, 4}, Case{PenStyle::kDash, 6, 10}, Case{PenStyle::kDashDot, 7, 13}})
    for (const int width : {1, 2}) {
      const QImage image = Drawn({400, 420}, 96 * width, [&](DrawingDevice& device) {
        const std::vector<DevicePoint> corner{{0, 10}, {389, 10}, {389, 419}};
        device.Polyline(corner, Pen{c.style, 1.0, kBlack});
      });
      int across = 0, down = 0;
      for (int i = 0; i < 380; ++i) {
        across += qRed(image.pixel(i, 10)) < 128 ? 1 : 0;
        down += qRed(image.pixel(389, 20 + i)) < 128 ? 1 : 0;
      }
      const double expected = 380.0 * c.dark / c.period;
      EXPECT_NEAR(across, expected, 0.1 * expected)
          << "style " << static_cast<int>(c.style) << " width " << width;
      EXPECT_NEAR(down, expected, 0.1 * expected)
          << "style " << static_cast<int>(c.style) << " width " << width;
    }
}

TEST(PainterDevice, LinesAndDiscsStayInsideTheClipAndTheImage) {
  std::mt19937 random(7);
  const auto any = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 300; ++round) {
    const QSize size(any(1, 90), any(1, 90));
    const int left = any(-20, 60), top = any(-20, 60);
    const DeviceRect clip{left, top, left + any(1, 60), top + any(1, 60)};
    const QImage image = Drawn(size, 96, [&](DrawingDevice& device) {
      device.SetClip(clip);
      for (int k = 0; k < 6; ++k) {
        std::vector<DevicePoint> line;
        const int reach = any(0, 3) == 0 ? 100000 : 150;
        for (int i = any(1, 40); i >= 0; --i) line.push_back({any(-reach, reach), any(-reach, reach)});
        device.Polyline(line, Pen{PenStyle::kSolid, any(1, 60) / 5.0, kBlack});
        device.Circle({any(-50, 140), any(-50, 140)}, any(0, 70), Pen{PenStyle::kNone, 1.0, kBlack}, kRed);
        device.Circle({any(-50, 140), any(-50, 140)}, any(0, 30000), Pen{}, std::nullopt);
      }
    });
    for (int y = 0; y < size.height(); ++y)
      for (int x = 0; x < size.width(); ++x)
        if (x < clip.left || x >= clip.right || y < clip.top || y >= clip.bottom) {
          ASSERT_EQ(image.pixel(x, y), qRgb(255, 255, 255)) << "round " << round << " at " << x << ',' << y;
        }
  }
}

TEST(PainterDevice, DottedLinesShowTheirDotsAndGaps) {
  const QImage image = Drawn({80, 9}, 96, [](DrawingDevice& device) {
    const std::vector<DevicePoint> line{{0, 4}, {79, 4}};
    device.Polyline(line, Pen{PenStyle::kDot, 1.0, kBlack});
  });
  int dots = 0, gaps = 0;
  for (int x = 0; x < 80; ++x) {
    dots += qRed(image.pixel(x, 4)) < 140 ? 1 : 0;
    gaps += qRed(image.pixel(x, 4)) == 255 ? 1 : 0;
  }
  EXPECT_GE(dots, 18);
  EXPECT_GE(gaps, 35);
}

TEST(PainterDevice, FarPointsNeitherHangNorBendTheLine) {
  constexpr int kFar = std::numeric_limits<int>::max();
  const QImage image = Drawn({100, 100}, 96, [](DrawingDevice& device) {
    const std::vector<DevicePoint> diagonal{{-kFar, -kFar}, {kFar, kFar}};
    device.Polyline(diagonal, Pen{PenStyle::kDot, 1.0, kBlack});
    const std::vector<DevicePoint> floor{{-kFar, 90}, {kFar, 90}, {kFar, kFar}, {-kFar, kFar}};
    device.Polygon(floor, Pen{PenStyle::kNone, 1.0, kBlack}, kRed);
    device.Circle({50 - kFar / 2, 50}, kFar / 2, Pen{}, std::nullopt);
  });
  int on_diagonal = 0;
  for (int i = 0; i < 80; ++i) on_diagonal += image.pixel(i, i) != qRgb(255, 255, 255) ? 1 : 0;
  EXPECT_GT(on_diagonal, 15);
  EXPECT_EQ(image.pixel(5, 95), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(5, 80), qRgb(255, 255, 255));
  EXPECT_LT(qRed(image.pixel(50, 30)), 128) << "the rim of the huge circle passes here";
}

TEST(PainterDevice, FiguresKeepTheirPlaceAndFill) {
  const QImage image = Drawn({60, 60}, 96, [](DrawingDevice& device) {
    device.Circle({20, 20}, 10, Pen{PenStyle::kSolid, 1.0, kBlack}, kRed);
    device.Circle({45, 20}, 10, Pen{PenStyle::kSolid, 1.0, kBlack}, std::nullopt);
    const std::vector<DevicePoint> square{{10, 40}, {20, 40}, {20, 50}, {10, 50}};
    device.Polygon(square, Pen{}, kRed);
  });
  EXPECT_EQ(image.pixel(20, 20), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(45, 20), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(15, 45), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(15, 40), qRgb(0, 0, 0));
  EXPECT_EQ(Ink(image), QRect(QPoint(10, 10), QPoint(55, 50)));
}

TEST(PainterDevice, LabelsStandByTheirAlignmentAndAngle) {
  struct Case {
    const char* what;
    TextAlign align;
    double angle;
    int left, top, right, bottom;  ///< where ink may be, a pixel of slack given
  };
  const Case cases[] = {
      {"left", TextAlign::kLeft, 0, 99, 85, 199, 101},
      {"right", TextAlign::kRight, 0, 1, 85, 101, 101},
      {"upward", TextAlign::kLeft, 90, 85, 1, 101, 101},
      {"downward", TextAlign::kLeft, 270, 99, 99, 115, 199},
  };
  for (const Case& c : cases) {
    const QRect ink = Ink(Drawn({200, 200}, 96, [&](DrawingDevice& device) {
      TextStyle style;
      style.align = c.align;
      style.angle = c.angle;
      device.Text({100, 100}, "HEAD 12.3", style);
    }));
    EXPECT_GT(std::max(ink.width(), ink.height()), 40) << c.what;
    EXPECT_TRUE(QRect(QPoint(c.left, c.top), QPoint(c.right, c.bottom)).contains(ink))
        << c.what << ": " << ink.left() << ' ' << ink.top() << ' ' << ink.right() << ' ' << ink.bottom();
  }
  TextStyle centred;
  centred.align = TextAlign::kCentre;
  const QRect ink = Ink(Drawn({200, 200}, 96, [&](DrawingDevice& device) {
    device.Text({100, 100}, "HEAD", centred);
  }));
  EXPECT_NEAR(ink.center().x(), 100, 2);
}

TEST(PainterDevice, CoverMixesColoursAndTheClipHolds) {
  const QImage image = Drawn({40, 40}, 96, [](DrawingDevice& device) {
    device.SetClip({10, 10, 30, 30});
    device.Cover({0, 0, 40, 40}, kBlack, 0.5);
    device.ClearClip();
    device.Cover({35, 35, 40, 40}, kBlack, 1.0);
  });
  EXPECT_NEAR(qRed(image.pixel(20, 20)), 128, 2);
  EXPECT_EQ(image.pixel(5, 20), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(37, 37), qRgb(0, 0, 0));
}

TEST(Clipping, ThinsALongLineButKeepsItsEnds) {
  std::vector<DevicePoint> line;
  for (int i = 0; i < 100; ++i) line.push_back({i, i % 2});
  const std::vector<QPolygonF> runs = ClipPolyline(line, QRectF(-10, -10, 200, 200));
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_LE(runs[0].size(), 52);
  EXPECT_EQ(runs[0].front(), QPointF(0, 0));
  EXPECT_EQ(runs[0].back(), QPointF(99, 1));
}

TEST(Clipping, CutsALineIntoTheRunsThatAreInside) {
  const std::vector<DevicePoint> zigzag{{-10, 5}, {5, 5}, {5, 5}, {5, 50}, {8, 50}, {8, 5}, {20, 5}};
  const std::vector<QPolygonF> runs = ClipPolyline(zigzag, QRectF(0, 0, 10, 10));
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[0], QPolygonF({{0, 5}, {5, 5}, {5, 10}}));
  EXPECT_EQ(runs[1], QPolygonF({{8, 10}, {8, 5}, {10, 5}}));
  const std::vector<DevicePoint> dot{{3, 3}, {3, 3}};
  EXPECT_EQ(ClipPolyline(dot, QRectF(0, 0, 10, 10)).size(), 1u);
}

TEST(PainterDevice, CurvesKeepPlacesBetweenPixels) {
  // A line that rises by one pixel in forty: rounded to pixels it has one step, between pixels none.
  const auto grey_at = [](bool fine) {
    const QImage image = Drawn({60, 20}, 96, [&](DrawingDevice& device) {
      if (fine)
        device.FineLine(std::vector<FinePoint>{{10, 10}, {30, 9.5}, {50, 9}}, Pen{});
      else
        device.Polyline(std::vector<DevicePoint>{{10, 10}, {30, 10}, {50, 9}}, Pen{});
    });
    return qRed(image.pixel(30, 9));
  };
  EXPECT_NEAR(grey_at(true), 127, 20) << "half of the line lies in each row";
  EXPECT_GT(grey_at(false), 220);
}

TEST(PainterDevice, AreasLetShineThroughAndHalosCoverLines) {
  const QImage image = Drawn({60, 60}, 96, [](DrawingDevice& device) {
    device.Polyline(std::vector<DevicePoint>{{0, 30}, {59, 30}}, Pen{});
    device.Area(std::vector<FinePoint>{{0, 0}, {20, 0}, {20, 60}, {0, 60}}, kRed, 0.2);
  });
  EXPECT_EQ(image.pixel(10, 10), qRgb(255, 204, 204));
  EXPECT_EQ(qBlue(image.pixel(10, 30)), 0) << "the line is still there";
  EXPECT_EQ(image.pixel(40, 10), qRgb(255, 255, 255));

  const auto ink_of_line = [](bool halo) {
    const QImage labelled = Drawn({120, 40}, 96, [&](DrawingDevice& device) {
      for (int y = 0; y < 40; y += 2) device.Polyline(std::vector<DevicePoint>{{0, y}, {119, y}}, Pen{});
      TextStyle style;
      style.height = 20;
      style.halo = halo;
      style.color = kWhite;  // only the lines leave ink
      device.Text({10, 28}, "12.5", style);
    });
    long ink = 0;
    for (int y = 0; y < 40; ++y)
      for (int x = 0; x < 120; ++x) ink += 255 - qRed(labelled.pixel(x, y));
    return ink;
  };
  EXPECT_LT(ink_of_line(true), ink_of_line(false) * 95 / 100);
}

TEST(PainterDevice, AKeptPictureComesBackPixelForPixel) {
  std::shared_ptr<const KeptPicture> kept;
  const QImage first = Drawn({50, 40}, 96, [&](DrawingDevice& device) {
    device.Polyline(std::vector<DevicePoint>{{0, 0}, {49, 39}}, Pen{});
    kept = device.Keep();
  });
  ASSERT_NE(kept, nullptr);
  const QImage second = Drawn({50, 40}, 96, [&](DrawingDevice& device) {
    device.Circle({20, 20}, 10, Pen{}, kRed);
    EXPECT_TRUE(device.Put(*kept));
  });
  EXPECT_EQ(first, second);
  Drawn({51, 40}, 96, [&](DrawingDevice& device) { EXPECT_FALSE(device.Put(*kept)) << "another size"; });
}

}  // namespace
}  // namespace ormel

int main(int argc, char** argv) {
  const QGuiApplication app(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
