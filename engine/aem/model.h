// The input of the analytic element engine: what a deck says, as plain data.
//
// Lengths are computation units (metres or feet), time is days.  Discharge, sink density and sink-disk rate
// are positive when water leaves the aquifer.  `recharge_sink` keeps the sign of the deck: negative for
// infiltration.  Every element carries the label and the line of the deck it came from, so that a message can
// name both.
#pragma once

#include <complex>
#include <string>
#include <vector>

namespace aem {

/// A point or a vector of the plane, x + iy.
using Complex = std::complex<double>;

/// A value that a domain does not set, and the head that is reported where there is none.
inline constexpr double kNotSet = -9999.0;

/// Where an element stands in the deck: for messages only.
struct Origin {
  std::string label;
  int line = 0;
};

struct Aquifer {
  double base = 0.0;          ///< elevation of the base [L]
  double thickness = 1.0;     ///< top minus base [L]; the top is level everywhere
  double conductivity = 1.0;  ///< [L/d]
  double porosity = 0.2;      ///< [-]
  Complex uniform_flow{};     ///< discharge vector per width [L2/d]
  bool has_reference = false;
  Complex reference_point{};
  double reference_head = 0.0;  ///< elevation [L]
  int reference_line = 0;
};

struct Window {
  double left = 0.0, bottom = 0.0, right = 0.0, top = 0.0;
  bool set = false;
};

/// A vertical well of full depth.  By discharge [L3/d] or by head [L] at its radius.
struct Well {
  Origin origin;
  Complex at;
  double radius = 1.0;
  bool by_head = false;
  double value = 0.0;  ///< discharge or head
};

/// A partially penetrating well: screened from `bottom` to `top` (elevations).
struct PartialWell {
  Origin origin;
  Complex at;
  double top = 0.0, bottom = 0.0;
  double radius = 1.0;
  bool by_head = false;
  double value = 0.0;
};

/// One record of a transient well: `rate` is added from `time` on.  Records of one label are one well.
struct TheisRecord {
  Origin origin;
  Complex at;
  double rate = 0.0;
  double time = 0.0;
  double start_head = 0.0;
  double storage = 0.0;  ///< specific storage [1/L]
  double radius = 1.0;
};

/// A circular area sink: rate per area [L/d], or the head at its centre.
struct SinkDisk {
  Origin origin;
  Complex at;
  double radius = 1.0;
  bool by_head = false;
  double value = 0.0;
};

/// Which water a head line-sink exchanges its flow with, and how.
enum class LineSinkKind { kDischarge, kHead, kDrain, kStream };

/// Where a line-sink lies in the water body that it stands for; sets the effective width of the bed.
enum class BedLocation { kUnknown = 0, kCentreline = 1, kWaterEdge = 2 };

/// One segment of a string.  Discharge: `value` is the sink density [L2/d]; else the stage at its middle [L].
struct LineSinkSegment {
  Origin origin;
  Complex from, to;
  double value = 0.0;
};

/// A string of segments under one head line of the deck.  `kDischarge` strings are whatever stood together.
struct LineSinkString {
  Origin origin;
  LineSinkKind kind = LineSinkKind::kHead;
  double resistance = 0.0;  ///< of the bed [d]
  double width = 0.0;       ///< [L]
  double depth = 0.0;       ///< [L]
  BedLocation location = BedLocation::kUnknown;
  double inflow = 0.0;         ///< kStream: enters at the first vertex [L3/d]
  double overland_flow = 0.0;  ///< kStream: total of the string, spread by length [L3/d]
  bool ends = false;           ///< kStream: what leaves the last vertex leaves the model
  std::vector<LineSinkSegment> segments;
};

struct LabelledPoint {
  Origin origin;
  Complex at;
};

/// A polygon with its own properties; kNotSet where it keeps those around it.  The ring closes by itself.
struct Domain {
  Origin origin;
  double conductivity = kNotSet;
  double base = kNotSet;
  double average_head = kNotSet;  ///< where the iteration starts; changes no converged answer
  double recharge_sink = 0.0;     ///< [L/d], negative for infiltration
  double porosity = kNotSet;
  std::vector<LabelledPoint> ring;
};

enum class WallKind { kOpen, kClosed, kKeepOutside, kKeepInside };

/// A slurry wall.  `conductivity` 0 is impermeable; else leakage per length is conductivity/thickness times
/// the difference in head times the saturated thickness.
struct Wall {
  Origin origin;
  WallKind kind = WallKind::kOpen;
  double conductivity = 0.0;
  double thickness = 1.0;
  double porosity = 0.2;
  double bottom = kNotSet;
  std::vector<LabelledPoint> points;
};

struct Model {
  std::string title;
  Aquifer aquifer;
  Window layout;
  std::vector<Well> wells;
  std::vector<PartialWell> partial_wells;
  std::vector<TheisRecord> theis;
  std::vector<SinkDisk> disks;
  std::vector<LineSinkString> line_sinks;
  std::vector<Domain> domains;
  std::vector<Wall> walls;
};

}  // namespace aem
