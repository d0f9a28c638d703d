// Points and rectangles of the three coordinate systems.  A type says which system a number belongs to; only
// core/coordinates (map and model) and the vector layer (device) turn one into another.
#pragma once

#include <cstdint>

namespace ormel {

/// Identity of a vertex (`Vertices.VID`).
using Vid = std::int64_t;
/// Identity of a string, domain or line (`Polygons.PID`), or one of the two special values below.
using Pid = std::int64_t;
/// Order of a vertex within its polygon; gaps are normal.
using Seq = std::int64_t;

inline constexpr Pid kSinglePoint = -1;        ///< `Vertices.PID` of a well, test point or particle
inline constexpr Pid kUniformFlowPoint = -10;  ///< `Vertices.PID` of the reference point of the uniform flow
inline constexpr Pid kNoPolygon = -1;          ///< no polygon is being digitized
inline constexpr Seq kAutomaticSeq = -1;       ///< take the next number of the sequence counter

/// Map coordinates [map units, `BasemapMeters`].
struct MapPoint {
  double x = 0.0, y = 0.0;
  friend bool operator==(const MapPoint&, const MapPoint&) = default;
};

/// Solver coordinates [computation units, `ComputeMeters`], relative to the model origin.
struct ModelPoint {
  double x = 0.0, y = 0.0;
  friend bool operator==(const ModelPoint&, const ModelPoint&) = default;
};

/// Column and row on a drawing device; rows grow downward.
struct DevicePoint {
  int x = 0, y = 0;
  friend bool operator==(const DevicePoint&, const DevicePoint&) = default;
};

/// A window on the map.  x1 is left, x2 right, y1 the top and y2 the bottom: x1 < x2 and y2 < y1.
struct MapRect {
  double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
  double Width() const { return x2 - x1; }
  double Height() const { return y1 - y2; }
  friend bool operator==(const MapRect&, const MapRect&) = default;
};

/// Extents of a model or of base maps: lower and upper bounds [map units].
struct Extents {
  double x_min = 0.0, x_max = 0.0, y_min = 0.0, y_max = 0.0;
  friend bool operator==(const Extents&, const Extents&) = default;
};

inline Extents ExtentsOf(const MapRect& r) {
  return {r.x1, r.x2, r.y2, r.y1};
}
inline MapRect WindowOf(const Extents& e) {
  return {e.x_min, e.x_max, e.y_max, e.y_min};
}

/// 24-bit colour as the store keeps it: red in the low byte, then green, then blue.
struct Color {
  std::int32_t value = 0;
  friend bool operator==(const Color&, const Color&) = default;
};

constexpr Color Rgb(int red, int green, int blue) {
  return {red | (green << 8) | (blue << 16)};
}
constexpr int RedOf(Color c) {
  return c.value & 0xff;
}
constexpr int GreenOf(Color c) {
  return (c.value >> 8) & 0xff;
}
constexpr int BlueOf(Color c) {
  return (c.value >> 16) & 0xff;
}

/// The classic table of 16 colours, by number 0 (black) to 15 (white).
constexpr Color QBColor(int index) {
  constexpr Color kTable[16] = {Rgb(0, 0, 0),       Rgb(0, 0, 128),   Rgb(0, 128, 0),   Rgb(0, 128, 128),
                                Rgb(128, 0, 0),     Rgb(128, 0, 128), Rgb(128, 128, 0), Rgb(192, 192, 192),
                                Rgb(128, 128, 128), Rgb(0, 0, 255),   Rgb(0, 255, 0),   Rgb(0, 255, 255),
                                Rgb(255, 0, 0),     Rgb(255, 0, 255), Rgb(255, 255, 0), Rgb(255, 255, 255)};
  return kTable[index & 15];
}

/// A well that keeps its pathlines in the system's colour.
inline constexpr std::int32_t kDefaultPathlineColor = -99;

/// Element codes, shared by `MouseElement` and `SelectedType`.
enum class Element : int {
  kNone = 0,
  kWell = 1,
  kLinesink = 2,
  kBarrier = 3,
  kUniformFlow = 4,
  kInhomogeneity = 5,
  kUniformFlowArrow = 10,
  kGridCorner = 11,
  kZoomRectangle = 20,
  kTestPoint = 21,
  kParticle = 22,
  kFluxLine = 23,
  kCapzone = 24,
  kTextLabel = 30,
  kRecentre = 31,
  kBaseMapSelection = 36,
  kStreamBoundary = 50,
  kWhpaBoundaryVertex = 51,
};

/// What a click on the map means.
enum class MouseMode : int { kSelect = 0, kPlace = 1, kRectangle = 3, kDigitize = 5 };

/// How an element is drawn.
enum class DrawMode : int { kNormal = 1, kSelected = 2, kErase = 3, kDryWell = 4, kImageWell = 5 };

}  // namespace ormel
