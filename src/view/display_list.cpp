#include "view/display_list.h"

namespace ormel {

void DisplayList::Shape(const DrawingDevice& like) {
  width_ = like.Width();
  height_ = like.Height();
  dpi_ = like.DpiY();
}

DrawCall& DisplayList::Add(DrawKind kind) {
  DrawCall& call = calls_.emplace_back();
  call.kind = kind;
  return call;
}

void DisplayList::Clear(Color background) {
  Add(DrawKind::kClear).fill = background;
}

void DisplayList::BeginLayer(std::string_view name) {
  Add(DrawKind::kLayer).text = name;
}

void DisplayList::Polyline(std::span<const DevicePoint> points, const Pen& pen) {
  DrawCall& call = Add(DrawKind::kPolyline);
  call.points.assign(points.begin(), points.end());
  call.pen = pen;
}

void DisplayList::FineLine(std::span<const FinePoint> points, const Pen& pen) {
  DrawCall& call = Add(DrawKind::kFineLine);
  call.fine.assign(points.begin(), points.end());
  call.pen = pen;
}

void DisplayList::Area(std::span<const FinePoint> points, Color fill, double opacity) {
  DrawCall& call = Add(DrawKind::kArea);
  call.fine.assign(points.begin(), points.end());
  call.fill = fill;
  call.opacity = opacity;
}

void DisplayList::Areas(std::span<const std::vector<FinePoint>> rings, Color fill, double opacity) {
  DrawCall& call = Add(DrawKind::kAreas);
  call.rings.assign(rings.begin(), rings.end());
  call.fill = fill;
  call.opacity = opacity;
}

void DisplayList::Picture(const std::shared_ptr<const Pixels>& pixels, const PicturePlace& place) {
  DrawCall& call = Add(DrawKind::kPicture);
  call.pixels = pixels;
  call.place = place;
}

void DisplayList::Polygon(std::span<const DevicePoint> points, const Pen& pen, Color fill) {
  DrawCall& call = Add(DrawKind::kPolygon);
  call.points.assign(points.begin(), points.end());
  call.pen = pen;
  call.fill = fill;
}

void DisplayList::Circle(DevicePoint centre, int radius, const Pen& pen, std::optional<Color> fill) {
  DrawCall& call = Add(DrawKind::kCircle);
  call.points = {centre};
  call.radius = radius;
  call.pen = pen;
  call.fill = fill;
}

void DisplayList::Text(DevicePoint at, std::string_view text, const TextStyle& style) {
  DrawCall& call = Add(DrawKind::kText);
  call.points = {at};
  call.text = text;
  call.style = style;
}

void DisplayList::Cover(const DeviceRect& rect, Color color, double opacity) {
  DrawCall& call = Add(DrawKind::kCover);
  call.rect = rect;
  call.fill = color;
  call.opacity = opacity;
}

void DisplayList::SetClip(const DeviceRect& rect) {
  Add(DrawKind::kSetClip).rect = rect;
}

void DisplayList::ClearClip() {
  Add(DrawKind::kClearClip);
}

void Replay(const std::vector<DrawCall>& calls, DrawingDevice& device) {
  for (const DrawCall& call : calls) {
    switch (call.kind) {
      case DrawKind::kClear:
        device.Clear(*call.fill);
        break;
      case DrawKind::kLayer:
        device.BeginLayer(call.text);
        break;
      case DrawKind::kPolyline:
        device.Polyline(call.points, call.pen);
        break;
      case DrawKind::kFineLine:
        device.FineLine(call.fine, call.pen);
        break;
      case DrawKind::kArea:
        device.Area(call.fine, *call.fill, call.opacity);
        break;
      case DrawKind::kAreas:
        device.Areas(call.rings, *call.fill, call.opacity);
        break;
      case DrawKind::kPicture:
        device.Picture(call.pixels, call.place);
        break;
      case DrawKind::kPolygon:
        device.Polygon(call.points, call.pen, *call.fill);
        break;
      case DrawKind::kCircle:
        device.Circle(call.points.front(), call.radius, call.pen, call.fill);
        break;
      case DrawKind::kText:
        device.Text(call.points.front(), call.text, call.style);
        break;
      case DrawKind::kCover:
        device.Cover(call.rect, *call.fill, call.opacity);
        break;
      case DrawKind::kSetClip:
        device.SetClip(call.rect);
        break;
      case DrawKind::kClearClip:
        device.ClearClip();
        break;
    }
  }
}

}  // namespace ormel
