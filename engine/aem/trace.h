// Particle paths through the solved groundwater model, forward and backward in time, in three dimensions.
//
// Under the Dupuit approximation the horizontal velocity is the same at all depths: v = Q / (b n), with the
// discharge vector Q, the saturated thickness b and the porosity n.  The depth of a particle is its relative
// height s: 0 at the base, 1 at the water table (at the aquifer's top where it is confined).  s is the share
// of the flow that passes below the particle, so it stays through a change of thickness or of the base and
// changes by what enters or leaves at the top:
//   ds/dt = -s N / (b n),  N the infiltration less the areal extraction [L/d]          (own derivation from
//   continuity; the same field as Strack 1984, Water Resour. Res. 20(12), without its gradients of head and
//   base)
// At a line-sink that takes or gives, the flow on the far side is that on the near side less what the
// line-sink takes per length; s changes in the inverse proportion, and a particle with s above 1 behind it
// has been taken.
//
// Integration: Dormand and Prince 5(4) with error control (1980, J. Comput. Appl. Math. 6), each step bounded
// by TraceOptions::step.  Steps end exactly at domain edges, line-sinks, walls, wells' rims, boundaries and
// the window.
//
// Units and signs as in model.h.  All functions may be called from several threads at once.
#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "aem/model.h"
#include "aem/trace_field.h"

namespace aem {

/// Why a path ended.  Every path has one; none ends by a count of steps.
enum class PathEnd {
  kTime,          ///< the longest travel time
  kWell,          ///< at the rim of a well that takes it (or, backward, gave it)
  kSurfaceWater,  ///< at a line-sink or under a sink disk that takes it (or gave it)
  kBoundary,      ///< at a boundary line
  kWindow,        ///< at the window's edge, or started outside of it
  kWaterTable,    ///< at the top of the saturated aquifer
  kDry,           ///< where the aquifer falls dry
  kStagnation,    ///< where the water does not move
  kIgnored,       ///< at ground that the model leaves out
};
inline constexpr int kPathEnds = 9;

/// "time", "well", ... in the order of PathEnd.
const char* PathEndName(PathEnd end);

/// The flow in plan at a place of a path.
struct PathFlow {
  Complex velocity{};         ///< of the water, whichever way the path goes [L/d]
  double storage = 0.0;       ///< porosity times saturated thickness [L]
  double net_recharge = 0.0;  ///< deck's sign, negative for infiltration [L/d]
};

struct PathPoint {
  Complex at;
  double elevation = 0.0;
  double time = 0.0;  ///< since the start, never negative, backward too [d]
  double head = kNotSet;
  PathFlow flow{};                   ///< there
  std::optional<PathFlow> behind{};  ///< where a line is passed: beyond it, in the direction of the path
  /// At a line-sink that is passed: the flow behind it over the flow before it.
  double passing = 1.0;
};

struct PathStart {
  Complex at;
  double elevation = 0.0;  ///< taken within the saturated aquifer
  bool forward = true;
};

struct Path {
  PathStart start;
  std::vector<PathPoint> points;  ///< the start itself first
  PathEnd end = PathEnd::kTime;
  std::string label;  ///< of the well or line-sink at which it ended
};

/// An endless straight line.
struct EndlessLine {
  Complex through, and_through;
};

struct TraceOptions {
  double longest_time = 0.0;  ///< [d]
  double step = 0.0;          ///< longest step [L], above 0
  Window window;              ///< paths end on its edge; not set: no window
  std::vector<EndlessLine> boundaries;
  /// Error of a step: of its position, relative to `step`; a tenth of it, of the relative height.  With this
  /// one travel times are good to about 1e-5 at the default step.
  double tolerance = 1e-7;
  int threads = 0;  ///< 0: as many as the machine has
  /// When it becomes true the paths stop where they are; what TracePaths returns is then empty.
  const std::atomic<bool>* stop = nullptr;
};

/// One path.
Path TracePath(const TraceField& field, const PathStart& start, const TraceOptions& options);

/// Many paths on several threads; the result is in the order of the starts and does not depend on the number
/// of threads.  `progress` receives the number of paths done, from one thread at a time, and returns false to
/// stop: the result is then empty.
std::vector<Path> TracePaths(const TraceField& field, std::span<const PathStart> starts,
                             const TraceOptions& options,
                             const std::function<bool(std::size_t)>& progress = {});

/// Starts spread evenly around a well's rim, the first to the east: backward for a well that takes water,
/// forward for one that gives.
std::vector<PathStart> StartsAround(const TraceWell& well, int particles, double elevation);

}  // namespace aem
