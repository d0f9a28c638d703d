// What a straight piece of a path meets first.  Internal to the tracer.
#pragma once

#include "aem/trace.h"
#include "aem/trace_step.h"

namespace aem::detail {

enum class EventKind { kNone, kWindow, kBoundary, kWell, kWaterTable, kCrossing, kRim };

struct Event {
  EventKind kind = EventKind::kNone;
  double fraction = 1.0;            ///< of the piece, 0 to 1
  Crossing crossing;                ///< kCrossing: a line-sink, a domain's edge or a wall
  const TraceWell* well = nullptr;  ///< kWell; kRim: the disk
};

/// What a piece of a path may meet.
struct Ahead {
  double direction = 1.0;  ///< +1 forward, -1 backward
  /// Whether water passes the top here, out of the aquifer in this direction.  Where none does, a relative
  /// height above 1 is an error of the numbers.
  bool top_open = false;
};

/// Wells count when they end a path in this direction: those that take water forward, that give it backward.
Event FirstEvent(const TraceField& field, const TraceOptions& options, const Ahead& ahead, const Place& from,
                 const Place& to);

bool Outside(const Window& window, Complex at);

/// The two ends of the segment or edge that is crossed.
struct Segment {
  Complex from, to;
};
Segment CrossedSegment(const Model& model, const Crossing& crossing);

}  // namespace aem::detail
