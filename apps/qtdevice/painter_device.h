// A drawing device on any QPainter: the window's picture, a picture file, a printed page.
#pragma once

#include <QFont>
#include <QPainter>
#include <QPolygonF>
#include <QRectF>
#include <QSize>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

#include "core/types.h"
#include "view/drawing_device.h"

namespace ormel {

class LineRaster;

class QPainterDevice final : public DrawingDevice {
 public:
  /// Draws on `painter`, in whose present coordinates one unit is one device pixel and (0, 0) is the upper
  /// left corner of the surface.  `dpi_x` and `dpi_y` tell how many of these pixels make an inch: pens are
  /// widened by them, so that a line looks the same on a screen of any density and on paper.
  QPainterDevice(QPainter& painter, QSize pixels, int dpi_x, int dpi_y);
  ~QPainterDevice() override;

  int Width() const override { return size_.width(); }
  int Height() const override { return size_.height(); }
  int DpiX() const override { return dpi_x_; }
  int DpiY() const override { return dpi_y_; }

  void Clear(Color background) override;
  void Polyline(std::span<const DevicePoint> points, const Pen& pen) override;
  void FineLine(std::span<const FinePoint> points, const Pen& pen) override;
  void Area(std::span<const FinePoint> points, Color fill, double opacity) override;
  void Areas(std::span<const std::vector<FinePoint>> rings, Color fill, double opacity) override;
  void Picture(const std::shared_ptr<const Pixels>& pixels, const PicturePlace& place) override;
  void Polygon(std::span<const DevicePoint> points, const Pen& pen, Color fill) override;
  void Circle(DevicePoint centre, int radius, const Pen& pen, std::optional<Color> fill) override;
  void Text(DevicePoint at, std::string_view text, const TextStyle& style) override;
  int TextWidth(std::string_view text, const TextStyle& style) const override;
  void Cover(const DeviceRect& rect, Color color, double opacity) override;
  void SetClip(const DeviceRect& rect) override;
  void ClearClip() override;
  std::shared_ptr<const KeptPicture> Keep() override;
  bool Put(const KeptPicture& picture) override;

 private:
  double PenWidth(const Pen& pen) const;
  bool Rastered(const Pen& pen) const;
  /// What puts lines of this pen on whole pixels: one of odd width is crisp through the middle of a pixel,
  /// one of even width along its edge.
  QPointF ShiftOf(const Pen& pen) const;
  void UsePen(const Pen& pen);
  void Stroke(const QPolygonF& line, const Pen& pen);

  /// The paper that shows between a label and the lines beneath it.
  void DrawHalo(QPointF at, const QString& text);
  const QFont& FontOf(const TextStyle& style) const;

  QPainter& painter_;
  QSize size_;
  QRectF bounds_;  ///< figures are cut to this
  int dpi_x_, dpi_y_;
  mutable QFont font_;  ///< of the last label
  mutable std::optional<std::tuple<std::string, int, bool, bool, bool>> font_of_;
  std::unique_ptr<LineRaster> raster_;  ///< for the many lines of an image; null on other surfaces
};

QColor ToQColor(Color color);
Color FromQColor(const QColor& color);

}  // namespace ormel
