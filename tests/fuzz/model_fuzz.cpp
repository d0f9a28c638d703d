// Decks all the way: what the parser lets through is validated, solved, asked and traced without a crash or a
// hang, and every answer is a finite number.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "aem/trace.h"
#include "vadox1/deck.h"
#include "vadox1/extraction.h"

namespace {

/// Small models only: the time goes into many of them.
bool Small(const aem::Model& model) {
  std::size_t pieces =
      model.wells.size() + model.partial_wells.size() + model.theis.size() + model.disks.size();
  for (const aem::LineSinkString& string : model.line_sinks) pieces += 4 * string.segments.size();
  for (const aem::Domain& domain : model.domains) pieces += 8 * domain.ring.size();
  for (const aem::Wall& wall : model.walls) pieces += 8 * wall.points.size();
  return pieces <= 120;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const vadox1::Deck deck = vadox1::ParseDeck({reinterpret_cast<const char*>(data), size});
  if (!Small(deck.model)) return 0;
  aem::Options options;
  options.threads = 1;
  options.extra_iterations = 3;
  aem::Solution solution(deck.model, options);
  if (!solution.Refused()) solution.Iterate(1);
  vadox1::ExtractCommand extract;
  extract.points = {{{0.0, 0.0}, {}, "A"}, {{150.0, 150.0}, 3.0, "B"}};
  for (const auto section :
       {vadox1::Section::kWellDischarge, vadox1::Section::kWellHead, vadox1::Section::kLineSinkDischarge,
        vadox1::Section::kLineSinkHead, vadox1::Section::kInhomogeneity}) {
    extract.sections.push_back(section);
  }
  std::vector<aem::Finding> findings;
  const std::string text = vadox1::ExtractionText(solution, extract, findings);
  // Labels come last, without a comma behind them.
  for (const char* bad : {"NAN,", "INF,"}) {
    if (!solution.Refused() && text.find(bad) != std::string::npos) std::abort();
  }
  const aem::SolutionField field(solution);
  aem::TraceOptions trace;
  trace.longest_time = 1000.0;
  trace.step = 20.0;
  trace.window = {-5000.0, -5000.0, 5000.0, 5000.0, true};
  for (const bool forward : {true, false}) aem::TracePath(field, {{120.0, 130.0}, 5.0, forward}, trace);
  return 0;
}
