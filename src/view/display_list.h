// A drawing device that keeps what is drawn on it, to be painted later: the shapes above the picture (rubber
// lines, highlights, temporary symbols), and the recorder of tests.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "view/drawing_device.h"

namespace ormel {

enum class DrawKind {
  kClear,
  kLayer,
  kPolyline,
  kFineLine,
  kArea,
  kAreas,
  kPicture,
  kPolygon,
  kCircle,
  kText,
  kCover,
  kSetClip,
  kClearClip
};

/// One call.  Which fields count depends on the kind.
struct DrawCall {
  DrawKind kind = DrawKind::kClear;
  std::vector<DevicePoint> points;            ///< the line or polygon; one point for circle and text
  std::vector<FinePoint> fine;                ///< of fine line and area
  std::vector<std::vector<FinePoint>> rings;  ///< of areas
  std::shared_ptr<const Pixels> pixels;       ///< of a picture, as is its place
  PicturePlace place;
  Pen pen;
  std::optional<Color> fill;  ///< of polygon and circle; the colour of clear and cover
  int radius = 0;
  std::string text;  ///< of text and layer
  TextStyle style;
  DeviceRect rect;  ///< of cover and clip
  double opacity = 1.0;
  friend bool operator==(const DrawCall&, const DrawCall&) = default;
};

/// Paints the calls on a device, in order.
void Replay(const std::vector<DrawCall>& calls, DrawingDevice& device);

class DisplayList : public DrawingDevice {
 public:
  DisplayList() = default;
  DisplayList(int width, int height, int dpi) : width_(width), height_(height), dpi_(dpi) {}
  /// Takes the size and the resolution of another device.
  void Shape(const DrawingDevice& like);

  int Width() const override { return width_; }
  int Height() const override { return height_; }
  int DpiX() const override { return dpi_; }
  int DpiY() const override { return dpi_; }
  void Clear(Color background) override;
  void BeginLayer(std::string_view name) override;
  void Polyline(std::span<const DevicePoint> points, const Pen& pen) override;
  void FineLine(std::span<const FinePoint> points, const Pen& pen) override;
  void Area(std::span<const FinePoint> points, Color fill, double opacity) override;
  void Areas(std::span<const std::vector<FinePoint>> rings, Color fill, double opacity) override;
  void Picture(const std::shared_ptr<const Pixels>& pixels, const PicturePlace& place) override;
  void Polygon(std::span<const DevicePoint> points, const Pen& pen, Color fill) override;
  void Circle(DevicePoint centre, int radius, const Pen& pen, std::optional<Color> fill) override;
  void Text(DevicePoint at, std::string_view text, const TextStyle& style) override;
  void Cover(const DeviceRect& rect, Color color, double opacity) override;
  void SetClip(const DeviceRect& rect) override;
  void ClearClip() override;

  const std::vector<DrawCall>& calls() const { return calls_; }
  std::vector<DrawCall> TakeCalls() { return std::exchange(calls_, {}); }
  bool empty() const { return calls_.empty(); }
  void Reset() { calls_.clear(); }
  /// Paints everything on another device, in order.
  void Replay(DrawingDevice& device) const { ormel::Replay(calls_, device); }

 private:
  DrawCall& Add(DrawKind kind);

  int width_ = 0, height_ = 0, dpi_ = 96;
  std::vector<DrawCall> calls_;
};

}  // namespace ormel
