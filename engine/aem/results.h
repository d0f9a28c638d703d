// What a solution answers, as plain data.  Units and signs as in solution.h.
#pragma once

#include <string>
#include <vector>

#include "aem/model.h"

namespace aem {

enum class PointStatus {
  kOk,
  kDry,      ///< head below the local base: head is kNotSet, discharge is not to be used
  kIgnored,  ///< on the ignored side of a wall: head is kNotSet, all flow is 0
};

struct PointState {
  PointStatus status = PointStatus::kIgnored;
  double potential = 0.0;     ///< [L3/d]
  double head = kNotSet;      ///< elevation [L]
  Complex discharge{};        ///< Qx + i Qy [L2/d]
  double base = 0.0;          ///< elevation [L]
  double thickness = 0.0;     ///< saturated [L]
  double conductivity = 0.0;  ///< [L/d]
  double porosity = 0.0;
  double net_recharge = 0.0;  ///< deck's sign, negative for infiltration [L/d]: div Q = -net_recharge
};

enum class SinkType { kNone, kWell, kPartialWell, kTheisWell, kLineSink };

/// A well: `index` in the model's list (for Theis wells of the first record of the label).
/// A line-sink: `index` is the string, `segment` the segment in it, `position` from 0 to 1 along the segment.
struct SinkHit {
  SinkType type = SinkType::kNone;
  int index = -1;
  int segment = -1;
  double position = 0.0;
  double distance = 0.0;  ///< from the well's centre or the segment [L]
};

enum class CrossingType { kNone, kLineSink, kDomainEdge, kWall };

/// `fraction` of the step at which the thing is met, 0 < fraction <= 1.  A place that is several things at
/// once is reported as a wall first, then as a line-sink, then as an edge.
struct Crossing {
  CrossingType type = CrossingType::kNone;
  int index = -1;         ///< string, domain or wall in the model's list
  int segment = -1;       ///< segment, or the edge that starts at this vertex
  double position = 0.0;  ///< from 0 to 1 along the segment
  double fraction = 1.0;
};

struct WellResult {
  double discharge = 0.0;  ///< [L3/d]
  double head = kNotSet;   ///< at the radius [L]; kNotSet where dry
  double specified_head = kNotSet;
  bool dry = false;
};

struct DiskResult {
  double rate = 0.0;       ///< [L/d]
  double discharge = 0.0;  ///< [L3/d]
  double head = kNotSet;   ///< at the centre
};

struct SegmentResult {
  double discharge = 0.0;            ///< of the whole segment [L3/d]
  double density = 0.0;              ///< mean [L2/d]
  double specified_head = kNotSet;   ///< stage at the middle
  double calculated_head = kNotSet;  ///< in the aquifer at the middle
  double error =
      0.0;  ///< of the element's condition in terms of head at points that are no control points [L]
  double width = 0.0;          ///< in force, after the location code [L]
  double baseflow = 0.0;       ///< flow carried at the segment's end [L3/d] less the overland part
  double overland_flow = 0.0;  ///< that has entered the stream up to the segment's end [L3/d]
  bool percolating = false;    ///< along more than half of its length
  bool switched_off = false;   ///< a drain that would give, a reach without water
};

struct StringResult {
  double discharge = 0.0;  ///< [L3/d]
  double outflow = 0.0;    ///< streams: what leaves the last vertex [L3/d]
  int flows_into = -1;     ///< streams: the string that takes the outflow, -1 none
  std::vector<SegmentResult> segments;
};

struct DomainVertexResult {
  Complex node, centre;         ///< vertex, and middle of the edge that starts there
  double jump_node = 0.0;       ///< of the potential, inside minus outside [L3/d]
  double jump_parabolic = 0.0;  ///< at the centre, beyond the mean of the two nodes [L3/d]
  double factor = 0.0;          ///< (k inside - k outside) / (k inside + k outside) at the edge
  double delta_node = 0.0;      ///< jump of head across the edge near the node, an error [L]
  double delta_centre = 0.0;    ///< the same at the centre [L]
};

struct DomainResult {
  double area = 0.0;       ///< [L2]
  double mean_jump = 0.0;  ///< of the potential along the ring, by length [L3/d]
  double conductivity = 0.0, base = 0.0,
         porosity = 0.0;       ///< in force just inside; the deck's or what surrounds it
  double recharge_sink = 0.0;  ///< deck's sign
  std::vector<DomainVertexResult> vertices;
};

struct WallVertexResult {
  Complex node, centre;
  double jump_node = 0.0;       ///< of the potential, left minus right [L3/d]
  double jump_parabolic = 0.0;  ///< [L3/d]
  /// Errors: mean flow per length beyond what the wall lets through, from left to right, across the half of
  /// the segment at its node and across the half around its centre [L2/d].
  double delta_flow_node = 0.0, delta_flow_centre = 0.0;
  double leakage = 0.0;  ///< that the wall lets through, from left to right, of the whole segment [L3/d]
};

/// One entry a vertex; an open wall has none for its last vertex.
struct WallResult {
  double leakage = 0.0;  ///< total, from left to right [L3/d]
  std::vector<WallVertexResult> vertices;
};

/// An error, and the element and the place that have it.
struct WorstError {
  double value = 0.0;
  std::string label;
  Complex at{};
};

/// Beyond these a solution is no solution: mean error of head along a whole segment or edge by the range of
/// heads, and mean flow through a wall that it should not let by, beside the undisturbed flow along it.
inline constexpr double kFailedHead = 0.05, kFailedLeakage = 0.5;

/// Errors at points that were no control points, and what they are measured by.
struct Checks {
  double head_range = 0.0;      ///< [L]
  WorstError line_sink_head;    ///< along head line-sinks without resistance [L]
  WorstError domain_head_jump;  ///< across domain edges [L]
  /// Of the wall that is worst beside its own undisturbed flow: mean flow per length across half an edge
  /// beyond what the wall lets through [L2/d].
  WorstError wall_leakage;
  double undisturbed_flow = 0.0;  ///< mean flow per length along that wall without walls and domains [L2/d]
  /// Means over whole segments, edges and walls, which kFailedHead and kFailedLeakage are for: errors beside
  /// a crossing of strings of unlike heads, or at a corner, hardly count in them.
  WorstError line_sink_mean, domain_mean;  ///< [L]
  WorstError wall_mean;                    ///< by that wall's undisturbed flow [-]
};

/// Flows of the whole model [L3/d], positive where water leaves the aquifer.  Transient wells live on
/// storage: they are told, and are no part of the throughflow and the error.
struct Balance {
  double wells = 0.0, partial_wells = 0.0, theis_wells = 0.0, disks = 0.0;
  double line_sinks_discharge = 0.0, line_sinks_head = 0.0, drains = 0.0, streams = 0.0;
  double recharge = 0.0;     ///< areas of domains
  double infinity = 0.0;     ///< by integration along a circle around everything
  double throughflow = 0.0;  ///< the sum of what enters
  double error = 0.0;        ///< the sum of all the above: 0 when the balance closes
};

}  // namespace aem
