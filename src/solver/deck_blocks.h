// The command blocks of a deck.  Whatever is run - a solve, a protection area, a query - its deck is made of
// these and of the element section (element_deck.h).
//
// The deck is a wire format: line items are joined as they are, the blanks of keywords and masks included.
// Coordinates are model coordinates; lengths are in computation units, times in days.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

class TextSink;

/// "* Written by Ormel 1.0.0"
std::string DeckHeadLine();

/// The first lines of a run: the program, a comment, and the names of the logs.
struct DeckHead {
  std::string_view comment{};  ///< a line of its own, with its "*"
  std::string_view error = "error.log", message = "message.log", echo = "echo.log";
  bool picture_off = true;
};
void WriteHead(TextSink& deck, const DeckHead& head);

/// The origin of the model coordinates on the map, and the stem as the run's title.  `units`: 0 where a map
/// unit is longer than a computation unit, 2 where they are equal, else 1.
void WriteOriginAndTitle(TextSink& deck, MapPoint origin, int units, std::string_view title);

/// The four numbers of a window in the order in which the deck has them.
using DeckWindow = std::array<double, 4>;
void WriteLayout(TextSink& deck, const DeckWindow& window);

struct AquiferBlock {
  double base = 0.0, conductivity = 0.0, thickness = 0.0, porosity = 0.0;
  std::optional<ModelPoint> uniform_flow{};  ///< discharge per width [L2/d]
  ModelPoint reference;
  double reference_head = 0.0;
};
void WriteAquifer(TextSink& deck, const AquiferBlock& aquifer);

void WriteLoad(TextSink& deck, std::string_view stem);
/// " time " and the number right behind it.
void WriteTime(TextSink& deck, double time);
/// " time " and the number at the next print zone.
void WriteTimeAtZone(TextSink& deck, double time);
/// " solve " with a number of iterations, and the saving of the solution.
void WriteSolveAndSave(TextSink& deck, int iterations, std::string_view stem);

struct ExtractBlock {
  struct TestPoint {
    Vid vid = 0;
    ModelPoint at;
  };
  struct FluxLine {
    Pid pid = 0;
    std::vector<ModelPoint> vertices;
  };
  std::vector<TestPoint> test_points;
  std::vector<FluxLine> flux_lines;
};
/// Test points, all elements, flux inspection lines.
void WriteExtract(TextSink& deck, std::string_view stem, const ExtractBlock& extract);

/// `points`: nodes of a row.
void WriteGrid(TextSink& deck, std::string_view stem, const DeckWindow& window, int points);

struct TraceBlock {
  struct Particle {
    ModelPoint at;
    double elevation = 0.0;
    bool forward = false;
  };
  struct Well {
    ModelPoint at;
    double elevation = 0.0;
    std::int64_t particles = 0;  ///< evenly around its rim
  };
  double longest_time = 0.0;
  std::optional<double> step{};
  /// An endless straight line through two points at which paths end.
  std::optional<std::array<ModelPoint, 2>> boundary{};
  std::vector<Particle> particles{};
  std::vector<Well> wells{};
};
void WriteTrace(TextSink& deck, std::string_view stem, const TraceBlock& trace);

/// Records of single points into the file of that name.
struct QueryPoint {
  ModelPoint at;
  std::optional<double> elevation{};  ///< nothing: the water table
};
void WriteQuery(TextSink& deck, std::string_view file, const QueryPoint& point,
                const std::vector<std::array<double, 3>>& more);

/// One path into the file of that name.
struct StreamlineBlock {
  std::string_view file;
  double longest_time = 0.0, step = 0.0;
  ModelPoint from;
  double elevation = 0.0;
  bool backward = false;
};
void WriteStreamline(TextSink& deck, const StreamlineBlock& line);

}  // namespace ormel
