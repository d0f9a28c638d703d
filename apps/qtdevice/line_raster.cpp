#include "qtdevice/line_raster.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ormel {
namespace {

/// Distances and shares are counted in so many parts of a pixel, so that the walk across a line needs no
/// floating point.
constexpr int kFine = 6;
constexpr int kUnit = 255 << kFine;

/// The length of a right-angled triangle's long side to 4 percent.
int RoughHypot(int a, int b) {
  return std::max({a, b, (a + b) * 188 / 256});
}

int Floor(double v) {
  const int whole = static_cast<int>(v);
  return whole - (v < whole ? 1 : 0);
}

/// First and last pixel whose centres lie behind one place and not behind the other, within the limits: of
/// two neighbouring stretches every pixel belongs to one.
struct Pixels {
  Pixels(double from, double to, int low, int high)
      : first(from < low ? low : Floor(from + 0.5)), last(to > high ? high : Floor(to - 0.5)) {}
  int first, last;
};

/// The colour over the pixel, `share` of 255.
QRgb Mix(QRgb over, QRgb under, std::uint32_t share) {
  const std::uint32_t rest = 255 - share;
  const auto divided = [](std::uint32_t v) {  // both halves by 255, rounded
    v += 0x800080;
    return ((v + ((v >> 8) & 0xff00ff)) >> 8) & 0xff00ff;
  };
  const std::uint32_t red_blue = (over & 0xff00ff) * share + (under & 0xff00ff) * rest;
  const std::uint32_t green = ((over >> 8) & 0xff) * share + ((under >> 8) & 0xff) * rest;
  return 0xff000000U | divided(red_blue) | (divided(green) << 8);
}

}  // namespace

/// One straight piece of a line, walked along its longer side.
struct LineRaster::Step {
  Step(QPointF a, QPointF b)
      : from(a),
        to(b),
        upright(std::abs(b.y() - a.y()) > std::abs(b.x() - a.x())),
        back(Along(b) < Along(a)) {
    if (back) std::swap(from, to);
  }
  double Along(QPointF p) const { return upright ? p.y() : p.x(); }
  double Across(QPointF p) const { return upright ? p.x() : p.y(); }
  /// The walk goes on in the next step: then each column of pixels belongs to one of the two, and none is
  /// painted twice.
  bool GoesOnIn(const Step& next) const { return upright == next.upright && back == next.back; }
  void Join(Step& next) {
    (back ? round_from : round_to) = false;
    (next.back ? next.round_to : next.round_from) = false;
  }

  QPointF from, to;
  bool upright, back;
  bool round_from = true, round_to = true;
};

LineRaster::LineRaster(QImage& image)
    : pixels_(reinterpret_cast<QRgb*>(image.bits())),
      stride_(image.bytesPerLine() / static_cast<std::ptrdiff_t>(sizeof(QRgb))),
      whole_(image.rect()),
      clip_(whole_) {}

inline void LineRaster::Paint(QRgb* pixel, int share, QRgb color) {
  if (share <= 0) return;
  *pixel = share >= kUnit ? color : Mix(color, *pixel, static_cast<std::uint32_t>(share >> kFine));
}

/// `reach`: distance at which the share becomes 0.
void LineRaster::Walk(const Step& step, double reach, QRgb color) {
  const bool upright = step.upright;
  const double u0 = step.Along(step.from), v0 = step.Across(step.from);
  const double u = step.Along(step.to) - u0, v = step.Across(step.to) - v0;
  const double length = std::sqrt(u * u + v * v);
  const double cosine = length > 0.0 ? u / length : 1.0, sine = length > 0.0 ? v / length : 0.0;
  const double slope = sine / cosine, half = reach / cosine;  // half of the band, across the walk
  // Within these places a round end reaches into the band.
  const double near_from = step.round_from ? reach * std::abs(sine) : -reach;
  const double near_to = step.round_to ? u - reach * std::abs(sine) : u + reach;
  const int low_v = upright ? clip_.left() : clip_.top(), high_v = upright ? clip_.right() : clip_.bottom();
  const std::ptrdiff_t step_u = upright ? stride_ : 1, step_v = upright ? 1 : stride_;
  const int across = static_cast<int>(cosine * kUnit), forward = static_cast<int>(sine * kUnit);
  const int full = static_cast<int>(reach * kUnit), all = static_cast<int>(length * kUnit);

  const Pixels walk(u0 - (step.round_from ? reach : 0.0), u0 + u + (step.round_to ? reach : 0.0),
                    upright ? clip_.top() : clip_.left(), upright ? clip_.bottom() : clip_.right());
  for (int i = walk.first; i <= walk.last; ++i) {
    const double pu = i + 0.5 - u0;
    const double middle = v0 + std::clamp(pu, 0.0, u) * slope;
    const Pixels band(middle - half, middle + half, low_v, high_v);
    QRgb* pixel = pixels_ + i * step_u + band.first * step_v;
    const double pv = band.first + 0.5 - v0;
    int beside = static_cast<int>((pv * cosine - pu * sine) * kUnit);
    if (pu >= near_from && pu <= near_to) {
      for (int j = band.first; j <= band.last; ++j, pixel += step_v, beside += across)
        Paint(pixel, full - std::abs(beside), color);
      continue;
    }
    int done = static_cast<int>((pu * cosine + pv * sine) * kUnit);
    for (int j = band.first; j <= band.last; ++j, pixel += step_v, beside += across, done += forward) {
      const int beyond = std::max(step.round_from ? -done : 0, step.round_to ? done - all : 0);
      const int distance = std::abs(beside);
      Paint(pixel, full - (beyond > 0 ? RoughHypot(distance, beyond) : distance), color);
    }
  }
}

void LineRaster::Line(std::span<const QPointF> points, double width, QRgb color) {
  if (points.empty() || clip_.isEmpty()) return;
  const double reach = width / 2.0 + 0.5;
  color |= 0xff000000U;
  Step step(points.front(), points[points.size() > 1 ? 1 : 0]);
  for (std::size_t i = 2; i < points.size(); ++i) {
    Step next(points[i - 1], points[i]);
    if (step.GoesOnIn(next)) step.Join(next);
    Walk(step, reach, color);
    step = next;
  }
  Walk(step, reach, color);
}

void LineRaster::Disc(QPointF centre, double radius, QRgb color) {
  const double reach = radius + 0.5;
  color |= 0xff000000U;
  const Pixels rows(centre.y() - reach, centre.y() + reach, clip_.top(), clip_.bottom());
  for (int row = rows.first; row <= rows.last; ++row) {
    const double y = row + 0.5 - centre.y();
    const double half = std::sqrt(std::max(0.0, reach * reach - y * y));
    const Pixels columns(centre.x() - half, centre.x() + half, clip_.left(), clip_.right());
    for (int column = columns.first; column <= columns.last; ++column) {
      const double x = column + 0.5 - centre.x();
      Paint(pixels_ + row * stride_ + column, static_cast<int>((reach - std::sqrt(x * x + y * y)) * kUnit),
            color);
    }
  }
}

}  // namespace ormel
