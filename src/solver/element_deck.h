// Writes the model as the element section of a solver deck.
#pragma once

#include <span>
#include <string>

#include "solver/input.h"

namespace ormel {

class TextSink;

/// Writes the element section.  It changes nothing but the sink.  `ForExport`: honours the resistances of
/// scenarios.  Linear in the number of vertices.
void ToolsWriteVadoxElements(const SolverInput& input, TextSink& deck, bool ForExport);
/// Plain wells of given discharge, one a line, without the lines around them.
void WriteDischargeWells(TextSink& deck, std::span<const WellInput> wells);
/// Extraction, grid and paths of a run.
void WriteOutput(const OutputInput& output, TextSink& deck);

/// Least number of iterations that the elements of a model ask for.
int RecommendedIterations(const SolverInput& input);

}  // namespace ormel
