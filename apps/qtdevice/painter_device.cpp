#include "qtdevice/painter_device.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainterPath>
#include <QPolygonF>
#include <QString>
#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "qtdevice/clipping.h"
#include "qtdevice/fonts.h"
#include "qtdevice/line_raster.h"

namespace ormel {
namespace {

constexpr double kReferenceDpi = 96.0;
constexpr double kWide = 2.5;          ///< pixels
constexpr int kLargeDisc = 64;         ///< pixels of radius; beyond it the painter is quicker
constexpr int kMargin = 256;           ///< pixels beyond the surface that are still painted
constexpr int kLargeRadius = 1 << 14;  ///< beyond it a circle is cut like a polygon

/// Dash patterns in pen widths.  The toolkit's own dots run together under antialiasing.
QList<qreal> DashPattern(PenStyle style) {
  switch (style) {
    case PenStyle::kDash:
      return {6, 4};
    case PenStyle::kDot:
      return {1, 3};
    case PenStyle::kDashDot:
      return {6, 3, 1, 3};
    case PenStyle::kSolid:
    case PenStyle::kNone:
      break;
  }
  return {};
}

/// The dashes of a line, each shorter by the round ends that it will get: a dot is a single point.
std::vector<QPolygonF> Dashes(const QPolygonF& line, const QList<qreal>& pattern, double width) {
  std::vector<QPolygonF> dashes;
  qsizetype part = 0;  // of the pattern; the even ones are drawn
  const auto length_of = [&](qsizetype i) { return (pattern[i] + (i % 2 == 0 ? -1.0 : 1.0)) * width; };
  double left = length_of(part);
  for (qsizetype i = 1; i < line.size(); ++i) {
    const QPointF step = line[i] - line[i - 1];
    const double length = std::hypot(step.x(), step.y());
    if (length == 0.0) continue;
    if (part % 2 == 0) dashes.push_back({line[i - 1]});
    double done = 0.0;
    for (; left <= length - done; left = length_of(part)) {
      done += left;
      const QPointF at = line[i - 1] + step * (done / length);
      if (part % 2 != 0)
        dashes.push_back({at});
      else if (left > 0.0)
        dashes.back().append(at);
      part = (part + 1) % pattern.size();
    }
    left -= length - done;
    if (part % 2 == 0 && dashes.back().back() != line[i]) dashes.back().append(line[i]);
  }
  return dashes;
}

QRectF RectOf(const DeviceRect& rect) {
  return QRectF(QPointF(rect.left, rect.top), QPointF(rect.right, rect.bottom)).normalized();
}

/// The painter's image, if its pixels are those of the painter's coordinates.
std::unique_ptr<LineRaster> RasterOf(const QPainter& painter) {
  auto* image = dynamic_cast<QImage*>(painter.device());
  const bool plain = image != nullptr && image->format() == QImage::Format_RGB32 &&
                     image->devicePixelRatio() == 1.0 && painter.worldTransform().isIdentity();
  return plain ? std::make_unique<LineRaster>(*image) : nullptr;
}

QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QColor ToQColor(Color color) {
  return QColor(RedOf(color), GreenOf(color), BlueOf(color));
}

Color FromQColor(const QColor& color) {
  return Rgb(color.red(), color.green(), color.blue());
}

QPainterDevice::QPainterDevice(QPainter& painter, QSize pixels, int dpi_x, int dpi_y)
    : painter_(painter),
      size_(pixels),
      bounds_(-kMargin, -kMargin, pixels.width() + 2.0 * kMargin, pixels.height() + 2.0 * kMargin),
      dpi_x_(dpi_x),
      dpi_y_(dpi_y),
      raster_(RasterOf(painter)) {
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::TextAntialiasing);
}

QPainterDevice::~QPainterDevice() = default;

double QPainterDevice::PenWidth(const Pen& pen) const {
  return std::max(1.0, pen.width) * std::max(1.0, dpi_x_ / kReferenceDpi);
}

bool QPainterDevice::Rastered(const Pen& pen) const {
  return raster_ != nullptr && pen.style != PenStyle::kNone && PenWidth(pen) <= LineRaster::kWidest;
}

QPointF QPainterDevice::ShiftOf(const Pen& pen) const {
  if (pen.style == PenStyle::kNone) return {};
  return std::lround(PenWidth(pen)) % 2 != 0 ? QPointF(0.5, 0.5) : QPointF();
}

void QPainterDevice::UsePen(const Pen& pen) {
  if (pen.style == PenStyle::kNone) return painter_.setPen(Qt::NoPen);
  const double width = PenWidth(pen);
  QPen qpen(ToQColor(pen.color), width);
  // Round joins cost more than the line itself and show only on wide ones.
  const bool wide = width > kWide;
  qpen.setJoinStyle(wide ? Qt::RoundJoin : Qt::BevelJoin);
  if (pen.style == PenStyle::kSolid) {
    qpen.setCapStyle(wide ? Qt::RoundCap : Qt::SquareCap);
  } else {
    qpen.setCapStyle(Qt::FlatCap);
    qpen.setDashPattern(DashPattern(pen.style));
  }
  painter_.setPen(qpen);
}

void QPainterDevice::Clear(Color background) {
  painter_.fillRect(QRect(QPoint(0, 0), size_), ToQColor(background));
}

void QPainterDevice::Polyline(std::span<const DevicePoint> points, const Pen& pen) {
  if (pen.style == PenStyle::kNone) return;
  for (QPolygonF& run : ClipPolyline(points, bounds_)) {
    run.translate(ShiftOf(pen));
    Stroke(run, pen);
  }
}

void QPainterDevice::Stroke(const QPolygonF& line, const Pen& pen) {
  if (Rastered(pen)) {
    const double width = PenWidth(pen);
    const QRgb color = ToQColor(pen.color).rgb();
    if (pen.style == PenStyle::kSolid) return raster_->Line(line, width, color);
    for (const QPolygonF& dash : Dashes(line, DashPattern(pen.style), width))
      raster_->Line(dash, width, color);
    return;
  }
  UsePen(pen);
  painter_.setBrush(Qt::NoBrush);
  if (line.size() == 1)
    painter_.drawPoint(line.front());
  else
    painter_.drawPolyline(line);
}

void QPainterDevice::FineLine(std::span<const FinePoint> points, const Pen& pen) {
  if (pen.style == PenStyle::kNone) return;
  for (QPolygonF& run : ClipFineLine(points, bounds_)) {
    run.translate(ShiftOf(pen));
    Stroke(run, pen);
  }
}

void QPainterDevice::Area(std::span<const FinePoint> points, Color fill, double opacity) {
  QPolygonF polygon;
  polygon.reserve(static_cast<qsizetype>(points.size()));
  for (const FinePoint& point : points) polygon.append(QPointF(point.x + 0.5, point.y + 0.5));
  QColor paint = ToQColor(fill);
  paint.setAlphaF(static_cast<float>(std::clamp(opacity, 0.0, 1.0)));
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(paint);
  painter_.drawPolygon(polygon);
}

void QPainterDevice::Areas(std::span<const std::vector<FinePoint>> rings, Color fill, double opacity) {
  QPainterPath path;
  path.setFillRule(Qt::OddEvenFill);
  for (const std::vector<FinePoint>& ring : rings) {
    QPolygonF polygon;
    polygon.reserve(static_cast<qsizetype>(ring.size()));
    for (const FinePoint& point : ring) polygon.append(QPointF(point.x + 0.5, point.y + 0.5));
    path.addPolygon(polygon);
    path.closeSubpath();
  }
  QColor paint = ToQColor(fill);
  paint.setAlphaF(static_cast<float>(std::clamp(opacity, 0.0, 1.0)));
  painter_.fillPath(path, paint);
}

void QPainterDevice::Picture(const std::shared_ptr<const Pixels>& pixels, const PicturePlace& place) {
  if (pixels == nullptr || pixels->width <= 0 || pixels->height <= 0) return;
  const QImage image(pixels->rgba.data(), pixels->width, pixels->height, 4 * pixels->width,
                     QImage::Format_RGBA8888);
  const FinePoint at = place.upper_left;
  const QPointF across(place.upper_right.x - at.x, place.upper_right.y - at.y);
  const QPointF down(place.lower_left.x - at.x, place.lower_left.y - at.y);
  const double width = pixels->width, height = pixels->height;
  painter_.save();
  // A pixel that is larger than the device's shows as the square that it is; smaller ones are mixed.
  const bool shrunk = std::hypot(across.x(), across.y()) < width;
  painter_.setRenderHint(QPainter::SmoothPixmapTransform, shrunk);
  painter_.setTransform(QTransform(across.x() / width, across.y() / width, down.x() / height,
                                   down.y() / height, at.x + 0.5, at.y + 0.5),
                        true);
  painter_.drawImage(QPointF(0, 0), image);
  painter_.restore();
}

void QPainterDevice::Polygon(std::span<const DevicePoint> points, const Pen& pen, Color fill) {
  QPolygonF polygon = ClipPolygon(points, bounds_);
  if (polygon.size() < 2) return;
  polygon.translate(ShiftOf(pen));
  UsePen(pen);
  painter_.setBrush(ToQColor(fill));
  painter_.drawPolygon(polygon);
}

void QPainterDevice::Circle(DevicePoint centre, int radius, const Pen& pen, std::optional<Color> fill) {
  radius = std::abs(radius);
  if (radius > kLargeRadius) {
    const std::vector<DevicePoint> points = CirclePoints(centre, radius);
    if (fill) {
      Polygon(points, pen, *fill);
    } else {
      Polyline(points, pen);
    }
    return;
  }
  const double across = 2.0 * radius;
  const QRectF box(centre.x - across / 2, centre.y - across / 2, across, across);
  if (!bounds_.intersects(box.adjusted(-1, -1, 1, 1))) return;
  const QPointF middle = QPointF(centre.x, centre.y) + ShiftOf(pen);
  if (!fill && Rastered(pen)) return Stroke(CircleLine(middle, radius), pen);
  if (fill && pen.style == PenStyle::kNone && raster_ && radius <= kLargeDisc)
    return raster_->Disc(middle, radius, ToQColor(*fill).rgb());
  UsePen(pen);
  painter_.setBrush(fill ? QBrush(ToQColor(*fill)) : QBrush(Qt::NoBrush));
  painter_.drawEllipse(middle, radius, radius);
}

/// Labels come in hundreds of one style, and to find a font is dear.
const QFont& QPainterDevice::FontOf(const TextStyle& style) const {
  const bool turned = style.angle != 0.0;
  const auto key = std::tie(style.font, style.height, style.bold, style.italic, turned);
  if (font_of_ && key == *font_of_) return font_;
  font_ = MapFont(style.font, style.bold, style.italic);
  font_.setPixelSize(std::max(1, style.height));
  if (turned) font_.setHintingPreference(QFont::PreferNoHinting);
  font_of_ = key;
  return font_;
}

void QPainterDevice::Text(DevicePoint at, std::string_view text, const TextStyle& style) {
  // A label reaches further than the margin only when its anchor lies out of the picture anyway.
  const QRectF reach = bounds_.adjusted(-size_.width(), -size_.height(), size_.width(), size_.height());
  if (text.empty() || !reach.contains(QPointF(at.x, at.y))) return;
  painter_.setFont(FontOf(style));
  double left = 0.0;
  if (style.align == TextAlign::kCentre) left = -TextWidth(text, style) / 2.0;
  if (style.align == TextAlign::kRight) left = -TextWidth(text, style);
  painter_.save();
  painter_.translate(at.x, at.y);
  painter_.rotate(-style.angle);
  if (style.halo) DrawHalo({left, 0.0}, ToQString(text));
  painter_.setPen(ToQColor(style.color));
  painter_.drawText(QPointF(left, 0.0), ToQString(text));
  painter_.restore();
}

void QPainterDevice::DrawHalo(QPointF at, const QString& text) {
  const double rim = 1.5 * std::max(1.0, dpi_x_ / kReferenceDpi);
  if (raster_ == nullptr) {  // a file: one outline, which stays one object
    QPainterPath letters;
    letters.addText(at, painter_.font(), text);
    return painter_.strokePath(letters,
                               QPen(Qt::white, 2.0 * rim, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  }
  painter_.setPen(Qt::white);  // letters from the painter's store are quicker than their outlines
  constexpr double kDiagonal = 0.7071;
  for (const QPointF side : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)}) {
    painter_.drawText(at + side * rim, text);
    painter_.drawText(at + QPointF(side.x() - side.y(), side.x() + side.y()) * (kDiagonal * rim), text);
  }
}

int QPainterDevice::TextWidth(std::string_view text, const TextStyle& style) const {
  const QFontMetricsF metrics(FontOf(style), painter_.device());
  return static_cast<int>(std::lround(metrics.horizontalAdvance(ToQString(text))));
}

void QPainterDevice::Cover(const DeviceRect& rect, Color color, double opacity) {
  QColor paint = ToQColor(color);
  paint.setAlphaF(static_cast<float>(std::clamp(opacity, 0.0, 1.0)));
  painter_.fillRect(RectOf(rect), paint);
}

void QPainterDevice::SetClip(const DeviceRect& rect) {
  painter_.setClipRect(RectOf(rect));
  if (raster_) raster_->SetClip(RectOf(rect).toRect());
}

namespace {

struct KeptImage final : KeptPicture {
  explicit KeptImage(QImage pixels) : image(std::move(pixels)) {}
  QImage image;
};

}  // namespace

std::shared_ptr<const KeptPicture> QPainterDevice::Keep() {
  if (raster_ == nullptr) return nullptr;  // only an image can be read back
  return std::make_shared<KeptImage>(static_cast<QImage*>(painter_.device())->copy());
}

bool QPainterDevice::Put(const KeptPicture& picture) {
  const auto* kept = dynamic_cast<const KeptImage*>(&picture);
  if (kept == nullptr || raster_ == nullptr || kept->image.size() != size_) return false;
  painter_.setCompositionMode(QPainter::CompositionMode_Source);
  painter_.drawImage(QPointF(0, 0), kept->image);
  painter_.setCompositionMode(QPainter::CompositionMode_SourceOver);
  return true;
}

void QPainterDevice::ClearClip() {
  painter_.setClipping(false);
  if (raster_) raster_->ClearClip();
}

}  // namespace ormel
