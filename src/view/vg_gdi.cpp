#include "view/vg_gdi.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "core/ormel.h"
#include "core/status.h"
#include "view/vg_clip.h"

namespace ormel {
namespace {

/// What lies further outside the view than this is cut away before rounding [pixels].
constexpr double kNeighbourhood = 16384.0;
/// A device gets at most this many points in one line.
constexpr std::size_t kLinePoints = 5000;
/// Lines of the editor grid closer than this would only paint the map grey: then every tenth is drawn, every
/// hundredth and so on [pixels, and parts of a 10-point size where that has more of them].
constexpr double kClosestGrid = 10.0, kClosestGridLetters = 0.75;
/// Points of a line closer than this in both directions are one [pixels].
constexpr int kShortestStep = 2;
constexpr double kShortestFineStep = 0.7;  ///< the same for lines between pixels
constexpr Color kGridColor = QBColor(7);

bool Fits32(double value) {
  return value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::int32_t>::max();
}

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

DevicePoint Round(VgGdi::Spot spot) {
  return {Round(spot.x), Round(spot.y)};
}

clip::Box Neighbourhood(const DeviceRect& view) {
  return {view.left - kNeighbourhood, view.top - kNeighbourhood, view.right + kNeighbourhood,
          view.bottom + kNeighbourhood};
}

/// Widens the shorter side; a window that fits already stays as it is to the last digit.
void FitToShape(MapRect& window, double width_inches, double height_inches) {
  const double rx = std::abs(window.x2 - window.x1) / width_inches;
  const double ry = std::abs(window.y1 - window.y2) / height_inches;
  if (std::abs(rx - ry) <= 1e-12 * std::max(rx, ry)) return;
  if (rx <= ry) {
    const double centre = (window.x1 + window.x2) * 0.5;
    const double half = 0.5 * (window.y1 - window.y2) * width_inches / height_inches;
    window.x2 = centre + half;
    window.x1 = centre - half;
  } else {
    const double centre = (window.y1 + window.y2) * 0.5;
    const double half = 0.5 * (window.x2 - window.x1) * height_inches / width_inches;
    window.y1 = centre + half;
    window.y2 = centre - half;
  }
}

}  // namespace

VgInit VgGdi::vgGDIInitObject(DrawingDevice& target, MapRect& window, bool grid, double grid_spacing) {
  return InitArea(target, {0, 0, target.Width(), target.Height()}, window, grid, grid_spacing);
}

VgInit VgGdi::vgGDIInitPrinter(DrawingDevice& page, MapRect& window, const PageMargins& margins, bool grid,
                               double grid_spacing) {
  const DeviceRect area{Round(margins.left * page.DpiX()), Round(margins.top * page.DpiY()),
                        page.Width() - Round(margins.right * page.DpiX()),
                        page.Height() - Round(margins.bottom * page.DpiY())};
  return InitArea(page, area, window, grid, grid_spacing);
}

VgInit VgGdi::InitArea(DrawingDevice& target, const DeviceRect& area, MapRect& window, bool grid,
                       double grid_spacing) {
  target_ = &target;
  overflow_told_ = false;
  const int width = area.right - area.left, height = area.bottom - area.top;
  point_unit_ = target.DpiY() * 10 / 72;
  grid_spacing_ = grid_spacing;
  if (width <= 0 || height <= 0 || !(window.x1 < window.x2) || !(window.y2 < window.y1))
    return VgInit::kUnchanged;

  MapRect fitted = window;
  FitToShape(fitted, static_cast<double>(width) / target.DpiX(), static_cast<double>(height) / target.DpiY());
  const double wide = std::round(fitted.Width() * 100.0), high = std::round(fitted.Height() * 100.0);
  const bool holds = Fits32(wide) && Fits32(high) && wide != 0.0 && high != 0.0 && std::isfinite(fitted.x1) &&
                     std::isfinite(fitted.y2);
  if (!holds) {
    Overflow();
    return VgInit::kOverflow;
  }
  window = fitted;
  scale_width_ = width;
  scale_height_ = height;
  world_x0_ = window.x1;
  world_y0_ = window.y2;
  extent_x_ = static_cast<std::int32_t>(wide);
  extent_y_ = static_cast<std::int32_t>(high);
  device_left_ = area.left;
  device_bottom_ = area.bottom;
  view_ = area;
  mapped_ = true;
  if (grid) DrawGrid(window);
  return VgInit::kDone;
}

void VgGdi::vgGDIRefresh() const {
  if (refresh_) refresh_();
}

void VgGdi::Overflow() {
  if (overflow_told_) return;  // one box a picture, not one a point
  overflow_told_ = true;
  Inform(ormel_, "Ormel", "Can't zoom in any further!\nOverflow");
}

void VgGdi::DrawGrid(const MapRect& window) {
  if (!(grid_spacing_ > 0.0)) {
    Inform(ormel_, "Illegal Value", "Internal Error in vgGDIInitObject -- illegal grid spacing!");
    return;
  }
  double spacing = grid_spacing_;
  const double closest = std::max(kClosestGrid, kClosestGridLetters * point_unit_) * vgGDIPixelSize();
  while (spacing < closest) spacing *= 10.0;
  BeginLayer("Editor Grid");
  DrawGridLines(window.x1, window.x2, true, window, spacing);
  DrawGridLines(window.y2, window.y1, false, window, spacing);
}

void VgGdi::DrawGridLines(double from, double to, bool vertical, const MapRect& window, double spacing) {
  const auto draw = [&](double at, PenStyle style) {
    const MapPoint a = vertical ? MapPoint{at, window.y2} : MapPoint{window.x1, at};
    const MapPoint b = vertical ? MapPoint{at, window.y1} : MapPoint{window.x2, at};
    vgGDILine(a, b, style, 1.0, kGridColor);
  };
  const double first = std::ceil(from / spacing), last = std::floor(to / spacing);
  for (double k = first; k <= last; k += 1.0) draw(k * spacing, PenStyle::kDot);
  if (from < 0.0 && to > 0.0) draw(0.0, PenStyle::kSolid);
}

VgGdi::Spot VgGdi::Locate(MapPoint at) const {
  return {device_left_ + (at.x - world_x0_) * 100.0 * scale_width_ / extent_x_,
          device_bottom_ - (at.y - world_y0_) * 100.0 * scale_height_ / extent_y_};
}

DevicePoint VgGdi::vgGDIWorldToDevice(double x, double y) {
  if (!mapped_) return last_;
  const Spot spot = Locate({x, y});
  if (Fits32(spot.x) && Fits32(spot.y))
    last_ = Round(spot);
  else
    Overflow();
  return last_;
}

double VgGdi::Snap(double value) const {
  if (!(grid_spacing_ > 0.0)) return value;
  return std::floor(value / grid_spacing_ + 0.5) * grid_spacing_;
}

double VgGdi::vgGDIDeviceToWorldX(double column, bool snap) const {
  if (!mapped_) return world_x0_;
  const double x = (column - device_left_) * extent_x_ / (scale_width_ * 100.0) + world_x0_;
  return snap ? Snap(x) : x;
}

double VgGdi::vgGDIDeviceToWorldY(double row, bool snap) const {
  if (!mapped_) return world_y0_;
  const double y = (device_bottom_ - row) * extent_y_ / (scale_height_ * 100.0) + world_y0_;
  return snap ? Snap(y) : y;
}

bool VgGdi::vgGDIInView(int left, int right, int bottom, int top) const {
  return left <= view_.right && right >= view_.left && top <= view_.bottom && bottom >= view_.top;
}

double VgGdi::vgGDIPixelSize() const {
  return mapped_ ? extent_x_ / (scale_width_ * 100.0) : 0.0;
}

MapRect VgGdi::World() const {
  return {world_x0_, world_x0_ + extent_x_ / 100.0, world_y0_ + extent_y_ / 100.0, world_y0_};
}

bool VgGdi::LocateAll(std::span<const MapPoint> points, double pen_width) {
  spots_.clear();
  if (!Ready() || points.empty()) return false;
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  double left = kInfinite, right = -kInfinite, top = kInfinite, bottom = -kInfinite;
  spots_.reserve(points.size());
  for (const MapPoint& point : points) {
    const Spot spot = Locate(point);
    if (!std::isfinite(spot.x) || !std::isfinite(spot.y)) continue;  // no place on any picture
    spots_.push_back(spot);
    left = std::min(left, spot.x);
    right = std::max(right, spot.x);
    top = std::min(top, spot.y);
    bottom = std::max(bottom, spot.y);
  }
  if (spots_.empty()) return false;
  const clip::Box near = Neighbourhood(view_);
  spots_far_ = left < near.left || right > near.right || top < near.top || bottom > near.bottom;
  const double ink = pen_width * target_->DpiX() / 96.0 + 1.0;
  return left - ink <= view_.right && right + ink >= view_.left && top - ink <= view_.bottom &&
         bottom + ink >= view_.top;
}

void VgGdi::vgGDILine(MapPoint from, MapPoint to, PenStyle style, double width, Color color) {
  const MapPoint ends[] = {from, to};
  vgGDIPolyline(ends, style, width, color);
}

/// Hands a line to the device in pieces that share their ends.
void VgGdi::Emit(std::vector<DevicePoint>& line, const Pen& pen) {
  if (line.size() == 1) line.push_back(line.front());  // shorter than a pixel: a dot
  for (std::size_t at = 0; at + 1 < line.size(); at += kLinePoints - 1) {
    const std::size_t count = std::min(kLinePoints, line.size() - at);
    target_->Polyline({line.data() + at, count}, pen);
  }
  line.clear();
}

/// Along the located spots, as far as they lie near the view: `add` takes each into `line`, `end` draws and
/// empties it.
template <class Line, class Add, class End>
void VgGdi::FollowSpots(const Line& line, const Add& add, const End& end) {
  if (!spots_far_) {
    for (const Spot& spot : spots_) add(spot);
    return end(spots_.back());
  }
  const clip::Box near = Neighbourhood(view_);
  Spot last{};
  for (std::size_t i = 1; i < spots_.size(); ++i) {
    const auto part = clip::Segment(near, spots_[i - 1], spots_[i]);
    if (!part) continue;
    if (!line.empty() && !near.Holds(spots_[i - 1])) end(last);  // the line came back from outside
    add(part->first);
    add(part->second);
    last = part->second;
  }
  if (!line.empty()) end(last);
}

void VgGdi::vgGDIPolyline(std::span<const MapPoint> points, PenStyle style, double width, Color color) {
  if (points.size() < 2 || !LocateAll(points, width)) return;
  const Pen pen{style, width, color};
  line_.clear();
  const auto add = [&](Spot spot) {
    const DevicePoint point = Round(spot);
    // Steps of a pixel would draw the stairs of the rounding instead of the line.
    const bool step = !line_.empty() && std::abs(point.x - line_.back().x) < kShortestStep &&
                      std::abs(point.y - line_.back().y) < kShortestStep;
    if (!step) line_.push_back(point);
  };
  const auto end = [&](Spot spot) {
    const DevicePoint point = Round(spot);
    if (line_.empty() || !(line_.back() == point)) line_.push_back(point);
    Emit(line_, pen);
  };
  FollowSpots(line_, add, end);
}

void VgGdi::vgGDIFineLine(std::span<const MapPoint> points, double width, Color color) {
  if (points.size() < 2 || !LocateAll(points, width)) return;
  const Pen pen{PenStyle::kSolid, width, color};
  fine_.clear();
  const auto add = [&](Spot spot) {
    const bool near = !fine_.empty() && std::abs(spot.x - fine_.back().x) < kShortestFineStep &&
                      std::abs(spot.y - fine_.back().y) < kShortestFineStep;
    if (!near) fine_.push_back(spot);
  };
  const auto end = [&](Spot spot) {
    if (fine_.empty() || !(fine_.back() == spot)) fine_.push_back(spot);
    if (fine_.size() == 1) fine_.push_back(fine_.front());
    target_->FineLine(fine_, pen);
    fine_.clear();
  };
  FollowSpots(fine_, add, end);
}

void VgGdi::vgGDIArea(std::span<const MapPoint> ring, Color fill, double opacity) {
  if (ring.size() < 3 || !LocateAll(ring, 1.0)) return;
  if (spots_far_) spots_ = clip::Area(Neighbourhood(view_), std::move(spots_));
  if (spots_.size() >= 3) target_->Area(spots_, fill, opacity);
}

void VgGdi::vgGDIAreas(std::span<const std::span<const MapPoint>> rings, Color fill, double opacity) {
  std::vector<std::vector<Spot>> located;
  for (const std::span<const MapPoint> ring : rings) {
    if (ring.size() < 3) continue;
    // A ring out of view may hold the view, or a hole that does: only what is cut to nothing counts for none.
    LocateAll(ring, 1.0);
    if (spots_far_) spots_ = clip::Area(Neighbourhood(view_), std::move(spots_));
    if (spots_.size() >= 3) located.push_back(std::move(spots_));
    spots_.clear();
  }
  if (!located.empty()) target_->Areas(located, fill, opacity);
}

void VgGdi::vgGDIPicture(const std::shared_ptr<const Pixels>& pixels, MapPoint upper_left,
                         MapPoint upper_right, MapPoint lower_left) {
  if (!Ready() || pixels == nullptr) return;
  const PicturePlace place{Locate(upper_left), Locate(upper_right), Locate(lower_left)};
  for (const Spot& spot : {place.upper_left, place.upper_right, place.lower_left})
    if (!std::isfinite(spot.x) || !std::isfinite(spot.y)) return;
  target_->Picture(pixels, place);
}

void VgGdi::vgGDIPolygon(std::span<const MapPoint> points, PenStyle style, double width, Color color,
                         Color fill) {
  if (points.size() < 3 || !LocateAll(points, width)) return;
  if (spots_far_) spots_ = clip::Area(Neighbourhood(view_), std::move(spots_));
  line_.clear();
  for (const Spot& spot : spots_) {
    const DevicePoint point = Round(spot);
    if (line_.empty() || !(line_.back() == point)) line_.push_back(point);
  }
  const Pen pen{style, width, color};
  if (line_.size() >= 3)
    target_->Polygon(line_, pen, fill);
  else if (!line_.empty())
    Emit(line_, pen);  // smaller than a pixel
}

void VgGdi::vgGDICircle(MapPoint centre, double radius, PenStyle style, double width, Color color,
                        std::optional<Color> fill) {
  if (!Ready()) return;
  const double pixels = std::abs(radius) * 100.0 * scale_width_ / extent_x_;
  if (!std::isfinite(pixels)) return;
  if (pixels > kNeighbourhood) {  // a device cannot be trusted with such a circle
    const auto sides = static_cast<std::size_t>(
        std::min(20000.0, std::ceil(std::numbers::pi / std::acos(1.0 - 0.25 / pixels))));
    std::vector<MapPoint> ring;
    for (std::size_t i = 0; i <= sides; ++i) {
      const double angle = 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(sides);
      ring.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
    }
    if (fill)
      vgGDIPolygon(ring, style, width, color, *fill);
    else
      vgGDIPolyline(ring, style, width, color);
    return;
  }
  const Spot at = Locate(centre);
  const double ink = pixels + width * target_->DpiX() / 96.0 + 1.0;
  const bool seen = at.x + ink >= view_.left && at.x - ink <= view_.right && at.y + ink >= view_.top &&
                    at.y - ink <= view_.bottom;
  if (seen) target_->Circle(Round(at), Round(pixels), {style, width, color}, fill);
}

TextStyle VgGdi::StyleFor(const VgText& how) const {
  TextStyle style;
  style.font = how.font;
  style.height = how.size * point_unit_ / 10;
  style.bold = how.bold;
  style.italic = how.italic;
  style.color = how.color;
  style.angle = how.angle;
  style.align = how.alignment == 1 || how.alignment == 4 ? TextAlign::kCentre
                : how.alignment == 2                     ? TextAlign::kRight
                                                         : TextAlign::kLeft;
  style.halo = how.halo;
  return style;
}

std::optional<DeviceRect> VgGdi::TextBox(std::string_view text, MapPoint at, const VgText& how) const {
  if (!Ready() || text.empty()) return std::nullopt;
  const TextStyle style = StyleFor(how);
  if (style.height <= 0) return std::nullopt;
  const double width = target_->TextWidth(text, style), height = style.height;
  const double left = style.align == TextAlign::kCentre  ? -width / 2.0
                      : style.align == TextAlign::kRight ? -width
                                                         : 0.0;
  const double angle = style.angle * std::numbers::pi / 180.0, c = std::cos(angle), s = std::sin(angle);
  const Spot spot = Locate(at);
  double x1 = 1e9, x2 = -1e9, y1 = 1e9, y2 = -1e9;
  for (const double u : {left, left + width})
    for (const double v : {-0.25 * height, 0.8 * height}) {  // below and above the baseline
      const double x = spot.x + u * c - v * s, y = spot.y - u * s - v * c;
      x1 = std::min(x1, x);
      x2 = std::max(x2, x);
      y1 = std::min(y1, y);
      y2 = std::max(y2, y);
    }
  if (!(x2 >= view_.left && x1 <= view_.right && y2 >= view_.top && y1 <= view_.bottom)) return std::nullopt;
  return DeviceRect{Round(x1), Round(y1), Round(x2), Round(y2)};
}

void VgGdi::vgGDItext(std::string_view text, MapPoint at, const VgText& how) {
  if (!Ready() || text.empty()) return;
  const TextStyle style = StyleFor(how);
  if (style.height <= 0) return;
  const double reach = static_cast<double>(style.height) * (static_cast<double>(text.size()) + 1.0);
  const Spot spot = Locate(at);
  const bool seen = spot.x + reach >= view_.left && spot.x - reach <= view_.right &&
                    spot.y + reach >= view_.top && spot.y - reach <= view_.bottom;
  if (seen) target_->Text(Round(spot), text, style);
}

void VgGdi::vgGDISetClipRegion(double x1, double y1, double x2, double y2) {
  if (!Ready()) return;
  const Spot a = Locate({std::min(x1, x2), std::max(y1, y2)}),
             b = Locate({std::max(x1, x2), std::min(y1, y2)});
  const clip::Box near = Neighbourhood(view_);
  target_->SetClip(
      {Round(std::clamp(a.x, near.left, near.right)), Round(std::clamp(a.y, near.top, near.bottom)),
       Round(std::clamp(b.x, near.left, near.right)), Round(std::clamp(b.y, near.top, near.bottom))});
}

void VgGdi::ClearClipRegion() {
  if (target_ != nullptr) target_->ClearClip();
}

void VgGdi::BeginLayer(std::string_view name) {
  if (target_ != nullptr) target_->BeginLayer(name);
}

}  // namespace ormel
