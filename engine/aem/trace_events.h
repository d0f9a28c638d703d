// What a straight piece of a path meets first.  Internal to the tracer.
#pragma once

#include "aem/trace.h"
#include "aem/trace_step.h"

namespace aem::detail {

enum class EventKind { kNone, kWindow, kBoundary, kWell, kWaterTable, kCrossing };

struct Event {
  EventKind kind = EventKind::kNone;
  double fraction = 1.0;  ///< of the piece, 0 to 1
  Crossing crossing;      ///< kCrossing: a line-sink, a domain's edge or a wall
  const TraceWell* well = nullptr;
};

/// Wells count when they end a path in this direction: those that take water forward, that give it backward.
Event FirstEvent(const TraceField& field, const TraceOptions& options, double direction, const Place& from,
                 const Place& to);

bool Outside(const Window& window, Complex at);

/// The two ends of the segment or edge that is crossed.
struct Segment {
  Complex from, to;
};
Segment CrossedSegment(const Model& model, const Crossing& crossing);

}  // namespace aem::detail
