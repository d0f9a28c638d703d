// The commands of a run around the element section of its deck.
#pragma once

#include <string_view>

namespace ormel {

struct Ormel;
struct ModelValues;
class TextFileWriter;

/// The first line and the three logs.
void WriteRunHead(TextFileWriter& deck, std::string_view message_log);
/// " time " and the solution time [d], at the next print zone.
void WriteSolutionTime(const Ormel& ormel, TextFileWriter& deck);
/// " solve " with a number of iterations, and the saving of the solution.
void WriteSolveAndSave(const Ormel& ormel, TextFileWriter& deck, int iterations);
/// Test points, all elements, flux inspection lines.
void WriteExtract(Ormel& ormel, TextFileWriter& deck);
void WriteGrid(const Ormel& ormel, TextFileWriter& deck, const ModelValues& model);
/// The tracing step [computation length]: the default for the window, or the user's own.
double TracingStep(const Ormel& ormel, const ModelValues& model);
/// Particles at points and around wells; image wells trace nothing.
void WriteTrace(Ormel& ormel, TextFileWriter& deck, const ModelValues& model);

}  // namespace ormel
