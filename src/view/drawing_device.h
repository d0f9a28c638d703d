// What the vector layer draws on: a window, a picture file, a printed page, or a recorder in tests.
//
// All positions are device columns and rows, rows growing downward.  The caller has done the arithmetic from
// the world; a device only paints.  Calls paint at once and in order.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/pixels.h"
#include "core/types.h"

namespace ormel {

enum class PenStyle : int { kSolid = 0, kDash = 1, kDot = 2, kDashDot = 3, kNone = 5 };

/// A place between pixels.
struct FinePoint {
  double x = 0.0, y = 0.0;
  friend bool operator==(const FinePoint&, const FinePoint&) = default;
};

struct Pen {
  PenStyle style = PenStyle::kSolid;
  double width = 1.0;  ///< pixels at 96 dots per inch; a device of another resolution scales it
  Color color{};
  friend bool operator==(const Pen&, const Pen&) = default;
};

enum class TextAlign : int { kLeft = 0, kCentre = 1, kRight = 2 };

struct TextStyle {
  std::string font = "Arial";
  int height = 13;  ///< pixels
  bool bold = false, italic = false;
  Color color{};
  double angle = 0.0;  ///< degrees, counter-clockwise as seen on the map
  TextAlign align = TextAlign::kLeft;
  bool halo = false;  ///< a rim of paper around the letters, so that they are read over lines
  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

struct DeviceRect {
  int left = 0, top = 0, right = 0, bottom = 0;
  friend bool operator==(const DeviceRect&, const DeviceRect&) = default;
};

/// Where the corners of a picture lie on the device.
struct PicturePlace {
  FinePoint upper_left, upper_right, lower_left;
  friend bool operator==(const PicturePlace&, const PicturePlace&) = default;
};

/// The pixels of a device as they were.
struct KeptPicture {
  virtual ~KeptPicture() = default;
};

class DrawingDevice {
 public:
  virtual ~DrawingDevice() = default;

  virtual int Width() const = 0;   ///< pixels
  virtual int Height() const = 0;  ///< pixels
  virtual int DpiX() const = 0;
  virtual int DpiY() const = 0;

  virtual void Clear(Color background) = 0;
  /// The calls that follow belong to the named layer: for recorders and for files that have groups.
  virtual void BeginLayer(std::string_view /*name*/) {}
  /// An open line through at least two points.
  virtual void Polyline(std::span<const DevicePoint> points, const Pen& pen) = 0;
  /// The same at places between pixels, for curves: rounding them would make stairs.
  virtual void FineLine(std::span<const FinePoint> points, const Pen& pen) = 0;
  /// The inside of a closed shape laid over the picture; opacity 0 to 1.
  virtual void Area(std::span<const FinePoint> points, Color fill, double opacity) = 0;
  /// The inside of several closed shapes together, laid over the picture: rings within rings are holes.
  virtual void Areas(std::span<const std::vector<FinePoint>> rings, Color fill, double opacity) = 0;
  /// A picture at the device's resolution, in any scale and turn.
  virtual void Picture(const std::shared_ptr<const Pixels>& pixels, const PicturePlace& place) = 0;
  /// A closed shape through at least three points, the last joined to the first.
  virtual void Polygon(std::span<const DevicePoint> points, const Pen& pen, Color fill) = 0;
  /// A whole circle; filled when `fill` is given.
  virtual void Circle(DevicePoint centre, int radius, const Pen& pen, std::optional<Color> fill) = 0;
  /// `at` is the text's baseline start, middle or end, by the alignment.
  virtual void Text(DevicePoint at, std::string_view text, const TextStyle& style) = 0;
  /// Width of the text in pixels.  A device without fonts estimates it.
  virtual int TextWidth(std::string_view text, const TextStyle& style) const;
  /// A rectangle laid over the picture; opacity 0 to 1.
  virtual void Cover(const DeviceRect& rect, Color color, double opacity) = 0;
  virtual void SetClip(const DeviceRect& rect) = 0;
  virtual void ClearClip() = 0;

  /// What has been drawn so far, to begin with another time; null on a device that cannot tell.
  virtual std::shared_ptr<const KeptPicture> Keep() { return nullptr; }
  /// Begins with what was kept of a device of the same size.  False when that cannot be done.
  virtual bool Put(const KeptPicture& /*picture*/) { return false; }
};

/// 0.55 of the height a character: what the usual faces come to on average.
inline int DrawingDevice::TextWidth(std::string_view text, const TextStyle& style) const {
  int characters = 0;
  for (const char c : text) characters += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U ? 1 : 0;
  return characters * style.height * 11 / 20;
}

}  // namespace ormel
