#include "zones/rings.h"

#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <utility>

namespace zones {
namespace {

constexpr double kPi = std::numbers::pi;
/// Lengths in parts of the zone's width (twice the area over the perimeter).
constexpr double kGrid = 1e-9;     ///< of coordinates while shapes are united
constexpr double kWritten = 1e-6;  ///< of the coordinates that are handed out
constexpr double kClosing = 1e-5;  ///< gaps narrower than twice this are closed
/// Lengths in parts of the width times the tolerance: by which a drawn line is off its curve, and below which
/// a vertex says nothing.
constexpr double kSagitta = 0.05, kSimplify = 0.05;
/// Holes of a smaller part of the ground are gaps between strips where the flow divides.
constexpr double kLeastHole = 1e-5;
/// Part of an area that a method of the geometry library may miss before another one is tried.
constexpr double kLost = 1e-3;
constexpr int kRimSides = 24;
/// Turn between two sides of the front up to which it is drawn as a curve [rad].
constexpr double kSmooth = 0.6;

/// The geometry library with a context of its own, so that threads do not share one.
class Geos {
 public:
  Geos() : context_(GEOS_init_r()) {}
  ~Geos() { GEOS_finish_r(context_); }
  Geos(const Geos&) = delete;
  Geos& operator=(const Geos&) = delete;
  GEOSContextHandle_t get() const { return context_; }

 private:
  GEOSContextHandle_t context_;
};

struct Destroy {
  GEOSContextHandle_t context = nullptr;
  void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(context, geometry); }
};
using Shape = std::unique_ptr<GEOSGeometry, Destroy>;

/// Shapes and what is done with them.  A null shape is a failure and stays one.
class Drawing {
 public:
  Shape Own(GEOSGeometry* geometry) const { return {geometry, Destroy{geos_.get()}}; }

  Shape Polygon(const std::vector<Complex>& ring) const {
    if (ring.size() < 3) return Own(nullptr);
    const unsigned size = static_cast<unsigned>(ring.size());
    GEOSCoordSequence* points = GEOSCoordSeq_create_r(geos_.get(), size + 1, 2);
    for (unsigned i = 0; i <= size; ++i) {
      const Complex at = ring[i % size];
      GEOSCoordSeq_setXY_r(geos_.get(), points, i, at.real(), at.imag());
    }
    GEOSGeometry* shell = GEOSGeom_createLinearRing_r(geos_.get(), points);
    return Own(shell == nullptr ? nullptr : GEOSGeom_createPolygon_r(geos_.get(), shell, nullptr, 0));
  }

  /// What a ring that may touch or cross itself encloses.  The library's first method now and then loses the
  /// whole of a ring that crosses itself by a hair: the one that keeps its area best is taken.
  Shape Valid(Shape shape) const {
    if (!shape || GEOSisValid_r(geos_.get(), shape.get()) == 1) return shape;
    const double area = Area(shape.get());
    Shape best = Own(nullptr);
    double least = std::numeric_limits<double>::max();
    for (const GEOSMakeValidMethods method : {GEOS_MAKE_VALID_STRUCTURE, GEOS_MAKE_VALID_LINEWORK}) {
      GEOSMakeValidParams* params = GEOSMakeValidParams_create_r(geos_.get());
      GEOSMakeValidParams_setMethod_r(geos_.get(), params, method);
      GEOSMakeValidParams_setKeepCollapsed_r(geos_.get(), params, 0);
      Shape valid = Own(GEOSMakeValidWithParams_r(geos_.get(), shape.get(), params));
      GEOSMakeValidParams_destroy_r(geos_.get(), params);
      if (!valid) continue;
      const double off = std::fabs(Area(valid.get()) - area);
      if (off < least) {
        best = std::move(valid);
        least = off;
      }
      if (least <= kLost * area) break;
    }
    return best;
  }

  /// Null where lines that nearly coincide defeat the library.
  Shape Union(const std::vector<Shape>& shapes, double grid) const {
    std::vector<GEOSGeometry*> copies;
    for (const Shape& shape : shapes)
      if (shape) copies.push_back(GEOSGeom_clone_r(geos_.get(), shape.get()));
    Shape all = Own(GEOSGeom_createCollection_r(geos_.get(), GEOS_GEOMETRYCOLLECTION, copies.data(),
                                                static_cast<unsigned>(copies.size())));
    return Own(GEOSUnaryUnionPrec_r(geos_.get(), all.get(), grid));
  }

  /// The shapes and what lies within `width` of any of them: each widened by itself, so that they overlap and
  /// no lines coincide, or all of them united first.
  Shape Widened(const std::vector<Shape>& shapes, double width, double grid, bool each) const {
    if (!each) return Buffer(Union(shapes, grid), width);
    std::vector<Shape> wide;
    for (const Shape& shape : shapes) wide.push_back(Buffer(shape, width));
    return Union(wide, grid);
  }

  Shape Buffer(const Shape& shape, double width) const {
    if (!shape) return Own(nullptr);
    // Mitred corners: closing a gap leaves the outline where it was.
    return Own(GEOSBufferWithStyle_r(geos_.get(), shape.get(), width, 4, GEOSBUF_CAP_ROUND,
                                     GEOSBUF_JOIN_MITRE, 2.0));
  }

  Shape Simplify(const Shape& shape, double distance) const {
    if (!shape) return Own(nullptr);
    // The library keeps rings from crossing, but for where a ring begins.
    Shape simple = Own(GEOSTopologyPreserveSimplify_r(geos_.get(), shape.get(), distance));
    if (simple && GEOSisValid_r(geos_.get(), simple.get()) == 1) return simple;
    return Own(GEOSGeom_clone_r(geos_.get(), shape.get()));
  }

  /// On a grid of decimal digits, so that what is written as text is what was checked.
  Shape Round(const Shape& shape, double grid) const {
    const double decimal = std::pow(10.0, std::floor(std::log10(grid)));
    return shape ? Own(GEOSGeom_setPrecision_r(geos_.get(), shape.get(), decimal, 0)) : Own(nullptr);
  }

  double Area(const GEOSGeometry* shape) const {
    double area = 0.0;
    GEOSArea_r(geos_.get(), shape, &area);
    return area;
  }
  double Length(const GEOSGeometry* shape) const {
    double length = 0.0;
    GEOSLength_r(geos_.get(), shape, &length);
    return length;
  }

  std::vector<const GEOSGeometry*> Polygons(const Shape& shape) const {
    std::vector<const GEOSGeometry*> polygons;
    if (!shape) return polygons;
    for (int i = 0; i < GEOSGetNumGeometries_r(geos_.get(), shape.get()); ++i) {
      const GEOSGeometry* part = GEOSGetGeometryN_r(geos_.get(), shape.get(), i);
      if (GEOSGeomTypeId_r(geos_.get(), part) == GEOS_POLYGON && GEOSisEmpty_r(geos_.get(), part) == 0)
        polygons.push_back(part);
    }
    return polygons;
  }

  bool Holds(const GEOSGeometry* polygon, Complex at) const {
    Shape point = Own(GEOSGeom_createPointFromXY_r(geos_.get(), at.real(), at.imag()));
    return GEOSContains_r(geos_.get(), polygon, point.get()) == 1;
  }

  std::vector<Complex> Outer(const GEOSGeometry* polygon) const {
    return Points(GEOSGetExteriorRing_r(geos_.get(), polygon));
  }
  std::vector<std::vector<Complex>> Holes(const GEOSGeometry* polygon) const {
    std::vector<std::vector<Complex>> holes;
    for (int i = 0; i < GEOSGetNumInteriorRings_r(geos_.get(), polygon); ++i)
      holes.push_back(Points(GEOSGetInteriorRingN_r(geos_.get(), polygon, i)));
    return holes;
  }

 private:
  /// Without the point that closes the ring.
  std::vector<Complex> Points(const GEOSGeometry* ring) const {
    const GEOSCoordSequence* points = GEOSGeom_getCoordSeq_r(geos_.get(), ring);
    unsigned size = 0;
    GEOSCoordSeq_getSize_r(geos_.get(), points, &size);
    std::vector<Complex> result;
    for (unsigned i = 0; i + 1 < size; ++i) {
      double x = 0.0, y = 0.0;
      GEOSCoordSeq_getXY_r(geos_.get(), points, i, &x, &y);
      result.emplace_back(x, y);
    }
    return result;
  }

  Geos geos_;
};

double SignedArea(const std::vector<Complex>& ring) {
  double twice = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Complex a = ring[i] - ring[0], b = ring[i + 1 == ring.size() ? 0 : i + 1] - ring[0];
    twice += a.real() * b.imag() - a.imag() * b.real();
  }
  return 0.5 * twice;
}

void Orient(std::vector<Complex>& ring, bool counter_clockwise) {
  if ((SignedArea(ring) > 0.0) != counter_clockwise) std::reverse(ring.begin(), ring.end());
}

/// A place of the front: the tip of a track, or a vertex of one that ended.
struct Tip {
  Complex at;
  bool moves = false;  ///< lies on the isochrone
};

/// Points between b and c on the smooth curve through the tips a, b, c, d (parametrised by chord lengths).
void Smooth(Complex a, Complex b, Complex c, Complex d, std::vector<Complex>* line) {
  const double ab = std::abs(b - a), bc = std::abs(c - b), cd = std::abs(d - c);
  if (!(ab > 0.0) || !(bc > 0.0) || !(cd > 0.0)) return;
  const auto turn = [](Complex u, Complex v) { return std::fabs(std::arg(v * std::conj(u))); };
  const double at_b = turn(b - a, c - b), at_c = turn(c - b, d - c);
  if (std::max(at_b, at_c) > kSmooth) return;
  const Complex u = (b - a) / ab, v = (c - b) / bc, w = (d - c) / cd;
  const Complex slope_b = bc * (u * bc + v * ab) / (ab + bc), slope_c = bc * (v * cd + w * bc) / (bc + cd);
  const int pieces = std::clamp(static_cast<int>((at_b + at_c) / 0.04), 1, 8);
  for (int i = 1; i < pieces; ++i) {
    const double f = double(i) / pieces, g = 1.0 - f;
    line->push_back(b * (g * g * (1.0 + 2.0 * f)) + c * (f * f * (1.0 + 2.0 * g)) + slope_b * (f * g * g) -
                    slope_c * (f * f * g));
  }
}

/// The front of the strips from track `first` to track `last` (indices run on beyond the end): tips on the
/// isochrone, and the ends of tracks that ended.
std::vector<Complex> Front(const Fan& fan, std::size_t first, std::size_t last, double time, bool closed) {
  const std::size_t size = fan.tracks().size();
  std::vector<Tip> tips;
  std::size_t hint = 0;
  for (std::size_t k = first; k <= last; ++k) {
    const Track& track = fan.tracks()[k % size];
    hint = 0;
    tips.push_back({track.At(time, &hint).at, track.MovesAt(time)});
  }
  if (closed) tips.pop_back();
  std::vector<Complex> line;
  const std::size_t count = tips.size();
  for (std::size_t i = 0; i < count; ++i) {
    line.push_back(tips[i].at);
    const bool inner = i >= 1 && i + 2 < count;
    if (!closed && !inner) continue;
    const Tip &a = tips[(i + count - 1) % count], &b = tips[i], &c = tips[(i + 1) % count],
              &d = tips[(i + 2) % count];
    if (a.moves && b.moves && c.moves && d.moves) Smooth(a.at, b.at, c.at, d.at, &line);
  }
  return line;
}

void Append(std::vector<Complex>& line, const std::vector<Complex>& more, bool reversed) {
  if (reversed) {
    line.insert(line.end(), more.rbegin(), more.rend());
  } else {
    line.insert(line.end(), more.begin(), more.end());
  }
}

/// Whether the strip is no longer whole at a time.
bool PartedBy(const Strip& strip, double time) {
  return strip.parted && strip.until < time;
}

/// Pieces of ground whose union is the zone: whole groups of strips between two partings, and the strips that
/// part, up to there.
std::vector<std::vector<Complex>> Pieces(const Fan& fan, double time, double sagitta) {
  const std::size_t size = fan.tracks().size();
  std::vector<std::size_t> partings;
  for (std::size_t i = 0; i < size; ++i)
    if (PartedBy(fan.strips()[i], time)) partings.push_back(i);
  std::vector<std::vector<Complex>> pieces;
  if (partings.empty()) {
    pieces.push_back(Front(fan, 0, size, time, true));
    return pieces;
  }
  for (std::size_t p = 0; p < partings.size(); ++p) {
    const std::size_t cut = partings[p];
    std::size_t next = p + 1 < partings.size() ? partings[p + 1] : partings.front() + size;
    const Track &a = fan.tracks()[cut], &b = fan.Next(cut);
    const double until = fan.strips()[cut].until;
    std::vector<Complex> sliver = a.Line(0.0, until, sagitta);
    Append(sliver, b.Line(0.0, until, sagitta), true);
    pieces.push_back(std::move(sliver));
    if (next == cut + 1) continue;
    std::vector<Complex> group = b.Line(0.0, time, sagitta);
    group.pop_back();
    Append(group, Front(fan, cut + 1, next, time, false), false);
    std::vector<Complex> back = fan.tracks()[next % size].Line(0.0, time, sagitta);
    back.pop_back();
    Append(group, back, true);
    pieces.push_back(std::move(group));
  }
  return pieces;
}

std::vector<Complex> Rim(const Source& source, double radius) {
  std::vector<Complex> ring;
  for (int i = 0; i < kRimSides; ++i)
    ring.push_back(source.at + std::polar(radius, 2.0 * kPi * i / kRimSides));
  return ring;
}

/// Holes that are no gaps: large ones, and those that hold another well.
std::vector<std::vector<Complex>> TrueHoles(const Drawing& drawing, const GEOSGeometry* polygon,
                                            const std::vector<Complex>& wells) {
  std::vector<std::vector<Complex>> holes;
  for (std::vector<Complex>& hole : drawing.Holes(polygon)) {
    const Shape shape = drawing.Polygon(hole);
    const bool large = std::fabs(SignedArea(hole)) > kLeastHole * drawing.Area(polygon);
    const bool held = std::any_of(wells.begin(), wells.end(),
                                  [&](Complex at) { return shape && drawing.Holds(shape.get(), at); });
    if (!large && !held) continue;
    Orient(hole, false);
    holes.push_back(std::move(hole));
  }
  return holes;
}

}  // namespace

Rings RingsOf(const Fan& fan, const Source& source, double time, double tolerance,
              const std::vector<Complex>& wells) {
  Rings rings;
  Drawing drawing;
  std::vector<Shape> shapes;
  double width = 0.0, ground = 0.0;
  // Drawn twice: coarsely for the width by which it is then drawn well.
  for (const double coarseness : {1.0, kSagitta * tolerance}) {
    const double sagitta = width > 0.0 ? coarseness * width : std::numeric_limits<double>::max();
    double area = 0.0, perimeter = 0.0;
    shapes.clear();
    for (const std::vector<Complex>& piece : Pieces(fan, time, sagitta)) {
      Shape shape = drawing.Polygon(piece);
      if (coarseness < 1.0) shape = drawing.Valid(std::move(shape));
      if (!shape) continue;
      area += drawing.Area(shape.get());
      perimeter += drawing.Length(shape.get());
      shapes.push_back(std::move(shape));
    }
    width = perimeter > 0.0 ? 2.0 * area / perimeter : 0.0;
    ground = area;
  }
  if (!(width > 0.0)) {
    rings.failure = "No ground lies between the paths.";
    return rings;
  }
  shapes.push_back(drawing.Polygon(Rim(source, fan.rim() * 1.01)));
  // The library can fail, or lose a part, where sides of tubes nearly coincide: what it lost shows in the
  // area, and then it is asked in another way.
  Shape all = drawing.Own(nullptr);
  const GEOSGeometry* main = nullptr;
  for (const bool each : {false, true}) {
    Shape drawn = drawing.Widened(shapes, kClosing * width, kGrid * width, each);
    drawn = drawing.Buffer(drawn, -kClosing * width);
    drawn = drawing.Round(drawing.Simplify(drawn, kSimplify * tolerance * width), kWritten * width);
    // Ground that does not hang together with the well's is left out, and missed by the balance.
    const GEOSGeometry* found = nullptr;
    for (const GEOSGeometry* polygon : drawing.Polygons(drawn))
      if (drawing.Holds(polygon, source.at)) found = polygon;
    if (found != nullptr && (main == nullptr || drawing.Area(found) > drawing.Area(main))) {
      all = std::move(drawn);
      main = found;
    }
    if (main != nullptr && drawing.Area(main) >= (1.0 - kLost) * ground) break;
  }
  if (main == nullptr) {
    rings.failure = "The outline does not hold the well.";
    return rings;
  }
  rings.outer = drawing.Outer(main);
  Orient(rings.outer, true);
  rings.holes = TrueHoles(drawing, main, wells);
  rings.area = SignedArea(rings.outer);
  for (const std::vector<Complex>& hole : rings.holes) rings.area += SignedArea(hole);
  return rings;
}

}  // namespace zones
