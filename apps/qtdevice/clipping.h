// Figures cut to the neighbourhood of the drawing surface.
//
// Deep in a zoom the world-to-device arithmetic gives positions millions of pixels away.  A rasterizer is
// slow or wrong there, and a dashed pen walks the whole way, so figures are cut before they are painted.
#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <span>
#include <vector>

#include "core/types.h"
#include "view/drawing_device.h"

namespace ormel {

/// The runs of a polyline inside `bounds`, in order.  Repeated points are dropped, and of a long line those
/// that lie within a pixel of the one before; its end stays.  A line that is one point stays a run of one
/// point.
std::vector<QPolygonF> ClipPolyline(std::span<const DevicePoint> points, const QRectF& bounds);

/// The same for places between pixels; every point of the line stays.
std::vector<QPolygonF> ClipFineLine(std::span<const FinePoint> points, const QRectF& bounds);

/// The polygon cut to `bounds` (Sutherland and Hodgman 1974).  New edges run along the bounds, which are to
/// lie far enough outside the surface for the outline not to show there.
QPolygonF ClipPolygon(std::span<const DevicePoint> points, const QRectF& bounds);

/// A circle as a closed line that leaves it by at most an eighth of a pixel; `CirclePoints` in whole pixels.
QPolygonF CircleLine(QPointF centre, double radius);
std::vector<DevicePoint> CirclePoints(DevicePoint centre, int radius);

}  // namespace ormel
