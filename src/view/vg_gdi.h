// The vector layer: the one place where world coordinates become positions on a device.
//
// World coordinates are map coordinates.  Device positions come from whole hundredths of a map unit, as
// 32-bit numbers; a window that this arithmetic cannot hold ends the zoom.  Rows grow downward, the world's y
// upward. The object holds the current target; one that is being drawn is finished before another is
// initialised.
//
// Lines and areas that leave the picture far behind are cut to its neighbourhood before they are rounded, so
// that a river that begins a continent away still crosses the view where it should.  What lies wholly outside
// the view is not passed to the device.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "core/types.h"
#include "view/drawing_device.h"

namespace ormel {

struct Ormel;

/// The symbols, by their code.  Their size is a fraction of a 10-point letter, whatever the zoom.
enum class VgSymbol : int {
  kFilledDiamond = 0,  ///< scaled
  kDiamond = 1,
  kCircleDiagonalCross = 2,
  kCircleUprightCross = 3,
  kDot = 4,
  kDiagonalCross = 5,
  kUprightCross = 6,
  kArrow = 7,  ///< `scale` is the angle in degrees, counter-clockwise from east
  kCircle = 8,
  kDoubleDiamond = 9,
  kDiamondWithLine = 10,  ///< scaled
};
inline constexpr int kVgSymbolCount = 11;

enum class VgInit {
  kDone,
  kUnchanged,  ///< a target or window without (or with inverted) width or height: the mapping stays as it was
  kOverflow,   ///< the window is too small or too large: the mapping stays as it was, the user was told
};

/// Margins of a printed page [inches].
struct PageMargins {
  double left = 1.0, right = 1.0, top = 1.0, bottom = 1.0;
};

struct VgText {
  std::string_view font = "Arial";
  int size = 10;  ///< tenths of the 10-point height: 10 is 10 points
  bool bold = false, italic = false;
  Color color{};
  double angle = 0.0;  ///< degrees, counter-clockwise
  int alignment = 0;   ///< 0 left, 1 and 4 centre, 2 right
  bool halo = false;   ///< a rim of paper around the letters
};

class VgGdi {
 public:
  /// `ormel` gives the boxes.
  explicit VgGdi(Ormel& ormel) : ormel_(ormel) {}

  // Starting.
  /// Makes the target current and widens the window, on its shorter side, to the target's shape.  Draws the
  /// editor grid if asked.
  VgInit vgGDIInitObject(DrawingDevice& target, MapRect& window, bool grid = false,
                         double grid_spacing = 0.0);
  /// The same on the page less the margins.
  VgInit vgGDIInitPrinter(DrawingDevice& page, MapRect& window, const PageMargins& margins, bool grid = false,
                          double grid_spacing = 0.0);
  /// The same on a part of the target, in its pixels.
  VgInit InitArea(DrawingDevice& target, const DeviceRect& area, MapRect& window, bool grid,
                  double grid_spacing);
  void SetRefreshTarget(std::function<void()> refresh) { refresh_ = std::move(refresh); }
  void vgGDIRefresh() const;
  /// Another device of the same shape takes the place of the target; the mapping stays.
  void Retarget(DrawingDevice& device) { target_ = &device; }
  /// The same for the length of a block.
  class Redirect;

  // World and device.
  DevicePoint vgGDIWorldToDevice(double x, double y);
  double vgGDIDeviceToWorldX(double column, bool snap) const;
  double vgGDIDeviceToWorldY(double row, bool snap) const;
  /// Nearest point of the editor grid.
  double Snap(double value) const;
  /// True when the box, in device positions, overlaps the visible rectangle.
  bool vgGDIInView(int left, int right, int bottom, int top) const;
  /// World width of one device column.
  double vgGDIPixelSize() const;

  // Drawing.
  void vgGDILine(MapPoint from, MapPoint to, PenStyle style, double width, Color color);
  void vgGDIPolyline(std::span<const MapPoint> points, PenStyle style, double width, Color color);
  /// A curve, at places between pixels.
  void vgGDIFineLine(std::span<const MapPoint> points, double width, Color color);
  /// The inside of a ring laid over the picture; opacity 0 to 1.
  void vgGDIArea(std::span<const MapPoint> ring, Color fill, double opacity);
  /// The inside of several rings together; those within others are holes.
  void vgGDIAreas(std::span<const std::span<const MapPoint>> rings, Color fill, double opacity);
  /// A picture by three of its corners.
  void vgGDIPicture(const std::shared_ptr<const Pixels>& pixels, MapPoint upper_left, MapPoint upper_right,
                    MapPoint lower_left);
  void vgGDIPolygon(std::span<const MapPoint> points, PenStyle style, double width, Color color, Color fill);
  void vgGDICircle(MapPoint centre, double radius, PenStyle style, double width, Color color,
                   std::optional<Color> fill = std::nullopt);
  void vgGDISymbol(MapPoint at, VgSymbol symbol, Color color, Color fill, double scale = 1.0,
                   double pen_width = 1.0);
  void vgGDItext(std::string_view text, MapPoint at, const VgText& how);
  /// The device rectangle that the text would cover; nothing when it would not be seen.
  std::optional<DeviceRect> TextBox(std::string_view text, MapPoint at, const VgText& how) const;
  void vgGDISetClipRegion(double x1, double y1, double x2, double y2);
  void ClearClipRegion();
  void BeginLayer(std::string_view name);

  // The present state.
  bool Ready() const { return target_ != nullptr && mapped_; }
  DrawingDevice* target() const { return target_; }
  int ScaleWidth() const { return scale_width_; }
  int ScaleHeight() const { return scale_height_; }
  int PointUnit() const { return point_unit_; }  ///< pixels of a 10-point size
  std::int32_t ExtentX() const { return extent_x_; }
  std::int32_t ExtentY() const { return extent_y_; }
  double GridSpacing() const { return grid_spacing_; }
  void SetGridSpacing(double spacing) { grid_spacing_ = spacing; }
  const DeviceRect& View() const { return view_; }
  /// The drawing area in world coordinates.
  MapRect World() const;

  /// A device position before it is rounded.
  using Spot = FinePoint;

 private:
  Spot Locate(MapPoint at) const;
  /// Fills `spots_`; false when nothing of the shape, drawn with this pen, can be seen.
  bool LocateAll(std::span<const MapPoint> points, double pen_width);
  template <class Line, class Add, class End>
  void FollowSpots(const Line& line, const Add& add, const End& end);
  void DrawGrid(const MapRect& window);
  void DrawGridLines(double from, double to, bool vertical, const MapRect& window, double spacing);
  void Emit(std::vector<DevicePoint>& line, const Pen& pen);
  void Overflow();
  TextStyle StyleFor(const VgText& how) const;

  Ormel& ormel_;
  DrawingDevice* target_ = nullptr;
  std::function<void()> refresh_;
  bool mapped_ = false, overflow_told_ = false;
  int scale_width_ = 0, scale_height_ = 0;
  int point_unit_ = 0;
  double world_x0_ = 0.0, world_y0_ = 0.0;
  std::int32_t extent_x_ = 0, extent_y_ = 0;  ///< hundredths of a map unit
  int device_left_ = 0, device_bottom_ = 0;
  DeviceRect view_;
  double grid_spacing_ = 0.0;
  DevicePoint last_;
  std::vector<Spot> spots_;
  bool spots_far_ = false;  ///< some of `spots_` lie far outside the view
  std::vector<DevicePoint> line_;
  std::vector<Spot> fine_;
};

class VgGdi::Redirect {
 public:
  Redirect(VgGdi& vg, DrawingDevice& device) : vg_(vg), former_(vg.target_) { vg.target_ = &device; }
  ~Redirect() { vg_.target_ = former_; }
  Redirect(const Redirect&) = delete;
  Redirect& operator=(const Redirect&) = delete;

 private:
  VgGdi& vg_;
  DrawingDevice* former_;
};

}  // namespace ormel
