// The reverse-tracing run of the protection areas: a small stand-alone model of their wells.
#pragma once

#include <string>

namespace ormel {

struct Ormel;
class TextSink;

/// The present stem of the run's files (`WHPAText` of the first row); empty when there is none.
std::string WhpaStem(Ormel& ormel);

/// Writes the deck: one aquifer in uniform flow, a reference point, the areas' wells and their images, and
/// the trace.  Needs the extents of ModelCheckExtents.
void WriteWhpaDeck(Ormel& ormel, TextSink& deck, const std::string& stem);

/// Writes the deck, runs the solver and the contour program on it, and draws the areas.  The model's own
/// files and results stay as they are; so do those of the areas when the run is cancelled or fails.
void ModelRunWHPAs(Ormel& ormel);

}  // namespace ormel
