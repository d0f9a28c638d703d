// How each element looks on the map.
//
// The routines for all elements of a kind read their tables with one query each and draw in the order of the
// element table; the routines for one element serve highlights and new elements.  Each is one of the system's
// procedures and names itself in a failure.
#pragma once

#include <string_view>

#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

/// Uniform flow; the elements while "Elements" is on; then, always, what observes and annotates.
void ElemDrawAll(const MapCanvas& canvas);
/// The selected element in the colour of the selection.
void DrawSelection(const MapCanvas& canvas);

void ElemDrawAllWells(const MapCanvas& canvas);
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

void ModelDrawAllCapzones(const MapCanvas& canvas);
void ModelDrawCapzone(const MapCanvas& canvas, Pid pid, DrawMode mode, bool vertices);

void ModelDrawAllText(const MapCanvas& canvas);

/// One element by the identity of its vertex (a point) or polygon (a string); nothing when it has no row.
void DrawOneElement(const MapCanvas& canvas, Element element, Vid vid, Pid pid, DrawMode mode);

}  // namespace ormel
