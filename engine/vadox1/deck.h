// A solver deck as data: the model it describes and the commands to run, in their order.
//
// Lengths in computation units, times in days, signs as in aem/model.h.  File names stand as the deck gives
// them, with the extension of their kind added where it is missing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "aem/model.h"
#include "aem/solution.h"

namespace vadox1 {

/// Where the coordinates of the deck begin on the map; carried through to the listing and the solution file.
struct MapOrigin {
  double x = 0.0, y = 0.0;
  int units = 2;  ///< 0: map in smaller units than the computation, 1: in larger ones, 2: in the same
};

enum class Log { kError, kMessage, kEcho };

/// Names a log.  An empty file means that the log goes nowhere ("nul", "off"), "con" the console.
struct LogCommand {
  Log log = Log::kError;
  std::string file;
};
struct LayoutCommand {
  aem::Window window;
};
struct TimeCommand {
  double days = 0.0;
};
struct SolveCommand {
  int iterations = 1;
};
struct SaveCommand {
  std::string file;
};
struct LoadCommand {
  std::string file;
};

struct TestPoint {
  aem::Complex at;
  std::optional<double> elevation;
  std::string label;
};
struct FluxLine {
  aem::Origin origin;
  std::vector<aem::Complex> vertices;
};
enum class Section { kWellDischarge, kWellHead, kLineSinkDischarge, kLineSinkHead, kInhomogeneity };
struct ExtractCommand {
  std::string file;
  std::vector<TestPoint> points;
  std::vector<Section> sections;
  std::vector<FluxLine> flux_lines;
};

struct GridCommand {
  std::string file;
  aem::Window window;  ///< not set: that of the layout
  int columns = 40;    ///< below 2: no grid is made
};

/// One particle at a point, or several around the rim of the well that stands there.
struct PointStart {
  aem::Complex at;
  std::optional<double> elevation;  ///< without: the top of the saturated aquifer
  bool forward = true;
  int line = 0;
};
struct WellStart {
  aem::Complex at;
  double elevation = 0.0;
  int particles = 0;
  int line = 0;
};
struct BoundaryLine {
  aem::Complex from, to;
};
struct TraceCommand {
  std::string file;
  double time = 0.0;           ///< longest travel time; 0: no path is traced
  std::optional<double> step;  ///< without, or 0: a part of the window's diagonal
  std::vector<PointStart> points;
  std::vector<WellStart> wells;
  std::vector<BoundaryLine> boundaries;
};

/// A well whose capture zones are asked for.
struct ZoneWell {
  aem::Complex at;
  int line = 0;
};
struct ZonesCommand {
  std::string file;
  std::vector<double> times;        ///< ascending, above 0 [d]
  std::optional<double> tolerance;  ///< of an outline, in parts of the zone's size
  std::vector<ZoneWell> wells;
  std::vector<BoundaryLine> boundaries;
};

using Action = std::variant<LogCommand, LayoutCommand, TimeCommand, SolveCommand, SaveCommand, LoadCommand,
                            ExtractCommand, GridCommand, TraceCommand, ZonesCommand>;
struct Command {
  int line = 0;
  Action action;
};

/// Why a deck cannot be used: the line, its text and what is wrong with it.
struct DeckFault {
  int line = 0;
  std::string text;
  std::string what;
};

struct Deck {
  MapOrigin origin;
  aem::Model model;
  bool describes_model = false;  ///< an aquifer or an element stands in the deck
  std::vector<Command> commands;
  std::vector<aem::Finding> findings;  ///< what was left out, for the error log
  std::optional<DeckFault> fault;      ///< reading stopped here; commands and model hold what stood before
};

/// Reads a deck to its end, its `stop` or its first fault.  Never throws for what stands in the text.
Deck ParseDeck(std::string_view text);

}  // namespace vadox1
