// Lines that cross themselves, which the solver cannot use.
#pragma once

#include <set>
#include <span>
#include <string_view>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// Do the segments a-b and c-d cross, each on both sides of the other?  Touching is no crossing.
bool SegmentsCross(MapPoint a, MapPoint b, MapPoint c, MapPoint d);

/// Does any segment cross another?  `closed` adds the one from the last point to the first.
bool CrossesItself(std::span<const MapPoint> points, bool closed);

/// A ring: a domain, or a barrier that bounds one.
bool IsRing(Ormel& ormel, Element element, Pid pid);

/// True when a vertex of a stream, barrier or domain, put at `to`, would make it cross itself, or a domain
/// that shares the corner; the user has been told.
bool RefuseCrossingMove(Ormel& ormel, Element element, Pid pid, Vid vid, MapPoint to);
/// The same when these vertices go `by` as far: a domain that shares only a corner with what is moved is
/// pulled.
bool RefuseCrossingMoves(Ormel& ormel, const std::set<Vid>& vids, MapPoint by);
/// The same for a vertex that would follow the others of the polygon in digitizing.
bool RefuseCrossingVertex(Ormel& ormel, MapPoint at);
/// The same for the line that closes the ring in digitizing, which goes on.
bool RefuseCrossingEnd(Ormel& ormel, Element element);

}  // namespace ormel
