// What the solved model says at any point of the map, and one streamline from it, without a solve.
//
// Each query is a small run of the solver on a loaded copy of the saved solution, which it leaves untouched.
// A query can be cancelled like a solve; then nothing is shown and nothing has changed.
#pragma once

#include <string>
#include <vector>

namespace ormel {

struct Ormel;

/// The instant inspector's settings; they last as long as the program runs.
struct InspectorSettings {
  double Elevation = 0.0;  ///< height at which to look, and from which to trace [computation length]
  bool at_top = true;      ///< look at the water table instead
  double StepSize = 1.0;   ///< width of the central differences [computation length], above 0
  bool trace_backwards = false;
};
InspectorSettings& InspectorSettingsOf(Ormel& ormel);

/// "Instant Inspector Settings...".
void ShowInspector(Ormel& ormel);

/// Shows the results at a map point in a box and, while "Solver Integrity Check" is on, the solver's values
/// beside central differences.
void ModelInspectResults(Ormel& ormel, double x, double y);

struct InspectedValue {
  std::string name;
  double value = 0.0;
};
/// The same as numbers, x and y in map units; none when the query failed, which the user has been told.
std::vector<InspectedValue> InspectPoint(Ormel& ormel, double x, double y);

/// Traces one path from a map point inside the present window, adds it to `solution.traced_lines` and draws
/// it; the feedback line tells its travel time and why it ends.
void ModelTraceOneStreamline(Ormel& ormel, double x, double y);

/// The lines that were traced leave the map.
void ClearTracedLines(Ormel& ormel);

/// Turns the check that goes with ModelInspectResults on or off.
void SolverIntegrityCheck(Ormel& ormel);

}  // namespace ormel
