// The small decks of the instant inspector, and the records that answer a query.
//
// Each run loads the saved solution and writes files of its own: _INSPECT.DAT and _INSPECT.XTR, _TRACE.DAT
// and _TRACE.PTH, made anew each time.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/types.h"
#include "solver/file_damage.h"

namespace ormel {

struct Ormel;
struct ModelValues;
class TextSink;

inline constexpr const char* kInspectDeck = "_INSPECT.DAT";
inline constexpr const char* kInspectResults = "_INSPECT.XTR";
inline constexpr const char* kTraceDeck = "_TRACE.DAT";
inline constexpr const char* kTracePaths = "_TRACE.PTH";

struct PointQuery {
  MapPoint at;
  /// Height at which to look [computation length]; nothing: at the water table, or at the top of the aquifer
  /// where it is confined.
  std::optional<double> elevation{};
  /// Whole width of the star of six further points [computation length]; 0: no star.  Needs an elevation.
  double star = 0.0;
};

/// Points of a query with a star, in the order of the deck.
enum StarPoint : std::size_t { kCentre, kEast, kWest, kNorth, kSouth, kUp, kDown, kStarPoints };

/// What the model says at one point.  Computation units and days; x and y are model coordinates.
struct PointRecord {
  double x = 0.0, y = 0.0, z = 0.0;
  double porosity = 0.0, conductivity = 0.0;
  double base = 0.0;
  double net_recharge = 0.0;  ///< negative for infiltration: its negative is the divergence of the discharge
  double head = 0.0;
  double velocity_x = 0.0, velocity_y = 0.0, velocity_z = 0.0;
};

/// Head of a point where nothing is computed: dry, or inside an ignored region.
inline constexpr double kNoHead = -9999.0;

/// The deck of a query.  Needs the origin of the last solve (ModelRestoreModelOrigin).
void WriteInspectDeck(const Ormel& ormel, TextSink& deck, const PointQuery& query);
/// The deck of one path, traced inside the present window with the step and the longest time of the model
/// settings.
void WriteTraceDeck(const Ormel& ormel, TextSink& deck, const ModelValues& model, MapPoint at,
                    double elevation, bool backward);

/// A record that has fewer fields than it should have, or a field that is no number.
struct BadRecord {
  std::size_t line = 0;
};
/// The records of a results file in their order: those of test points, whatever else it holds.
std::variant<std::vector<PointRecord>, BadRecord, FileDamage> ReadPointRecords(const std::string& path);

}  // namespace ormel
