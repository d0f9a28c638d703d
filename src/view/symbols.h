// How each element looks on the map.
//
// The routines for all elements of a kind read their tables with one query each and draw in the order of the
// element table; the routines for one element serve highlights and new elements.  Each is one of the system's
// procedures and names itself in a failure.
#pragma once

#include <span>
#include <string_view>

#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

/// The selected element in the colour of the selection.
void DrawSelection(const MapCanvas& canvas);

void ElemDrawAllWells(const MapCanvas& canvas);
/// The wells' names beside them, where there is room.
void ElemDrawAllWellLabels(const MapCanvas& canvas);
/// Keeps the labels that follow off the wells.
void ReserveWells(const MapCanvas& canvas);
/// `setback` and `radius` in computation units.  A well is never drawn smaller than kSmallestWell pixels, so
/// that it is found at every scale.
void ElemDrawWell(const MapCanvas& canvas, MapPoint at, double setback, double radius, DrawMode mode);
inline constexpr double kSmallestWell = 3.0;  ///< radius [pixels]

void ElemDrawAllLinesinks(const MapCanvas& canvas);
void ElemDrawLinesinkString(const MapCanvas& canvas, Pid pid, DrawMode mode);

void ElemDrawAllNoFlow(const MapCanvas& canvas);
void ElemDrawNoFlowString(const MapCanvas& canvas, Pid pid, bool closed, Color color, DrawMode mode);

void ElemDrawAllInhos(const MapCanvas& canvas);
void ElemDrawInho(const MapCanvas& canvas, Pid pid, Color color, DrawMode mode);

void ElemDrawUniformFlow(const MapCanvas& canvas, DrawMode mode);
void ElemDrawVertex(const MapCanvas& canvas, MapPoint at, DrawMode mode);

void ModelDrawAllTestPoints(const MapCanvas& canvas);
/// `difference` is the computed less the observed head [computation length].
void ModelDrawTestPoint(const MapCanvas& canvas, MapPoint at, std::string_view label, double obshead,
                        double difference, DrawMode mode);

void ModelDrawAllParticles(const MapCanvas& canvas);
void ModelDrawParticle(const MapCanvas& canvas, MapPoint at, DrawMode mode);

void ModelDrawAllFluxInspect(const MapCanvas& canvas);
void ModelDrawFluxInspect(const MapCanvas& canvas, Pid pid, DrawMode mode);

/// Labels that the user has placed, or those of a class of base map.  A label of the user vanishes when the
/// map is zoomed in past a tenth of the width at which it was placed.
enum class LabelClass { kUser, kHydrography, kHypsography };
void ModelDrawAllText(const MapCanvas& canvas, LabelClass wanted);

/// A mark on each of the points.
void MarkVertices(const MapCanvas& canvas, std::span<const MapPoint> points, Color color, double pen_width);

/// One element by the identity of its vertex (a point) or polygon (a string); nothing when it has no row.
void DrawOneElement(const MapCanvas& canvas, Element element, Vid vid, Pid pid, DrawMode mode);

}  // namespace ormel
