#include "solver/inspection_deck.h"

#include <array>
#include <cmath>
#include <string_view>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "model/model_values.h"
#include "solver/deck_blocks.h"
#include "solver/guarded_read.h"
#include "solver/input.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// Unit steps of the star behind its centre.
struct Direction {
  int x, y, z;
};
constexpr std::array<Direction, kStarPoints - 1> kStar{
    {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}};

/// The points of the star around a centre.
std::vector<std::array<double, 3>> StarOf(ModelPoint centre, double elevation, double width) {
  std::vector<std::array<double, 3>> points;
  const double d = 0.5 * width;
  for (const Direction& to : kStar)
    points.push_back({centre.x + to.x * d, centre.y + to.y * d, elevation + to.z * d});
  return points;
}

/// Fields of a record, from 1.
struct RecordField {
  std::size_t number;
  double PointRecord::*value;
};
constexpr std::array kFields{RecordField{1, &PointRecord::x},
                             RecordField{2, &PointRecord::y},
                             RecordField{3, &PointRecord::z},
                             RecordField{4, &PointRecord::porosity},
                             RecordField{5, &PointRecord::conductivity},
                             RecordField{6, &PointRecord::base},
                             RecordField{7, &PointRecord::net_recharge},
                             RecordField{9, &PointRecord::head},
                             RecordField{12, &PointRecord::velocity_x},
                             RecordField{13, &PointRecord::velocity_y},
                             RecordField{14, &PointRecord::velocity_z}};
constexpr std::size_t kFewestFields = 15;

std::optional<PointRecord> ParseRecord(std::string_view text) {
  const std::vector<std::string> fields = ParseString(text, ',');
  if (fields.size() < kFewestFields) return std::nullopt;
  PointRecord record;
  for (const RecordField& field : kFields) {
    const std::string& item = fields[field.number - 1];
    const double value = Val(item);
    if (!IsNumeric(item) || !std::isfinite(value)) return std::nullopt;
    record.*field.value = value;
  }
  return record;
}

}  // namespace

void WriteInspectDeck(const Ormel& ormel, TextSink& deck, const PointQuery& query) {
  WriteHead(deck, {.error = "temperror.log", .message = "tempmess.log", .picture_off = false});
  WriteLoad(deck, ormel.project.OrmelBaseName);
  WriteTime(deck, ormel.solution.SolutionTime);
  const ModelPoint at = WToM(ormel, query.at);
  const bool star = query.star > 0.0 && query.elevation;
  WriteQuery(deck, kInspectResults, {at, query.elevation},
             star ? StarOf(at, *query.elevation, query.star) : std::vector<std::array<double, 3>>{});
}

void WriteTraceDeck(const Ormel& ormel, TextSink& deck, const ModelValues& model, MapPoint at,
                    double elevation, bool backward) {
  WriteHead(deck, {.comment = "* Instant Trace",
                   .error = "temperr.log",
                   .message = "tempmess.log",
                   .echo = "tempecho.log"});
  WriteLoad(deck, ormel.project.OrmelBaseName);
  WriteTime(deck, ormel.solution.SolutionTime);
  WriteLayout(deck, LayoutWindow(ormel));
  WriteStreamline(deck, {.file = kTracePaths,
                         .longest_time = model.TRACEMaxTime,
                         .step = TracingStep(ormel, model.TRACEStep),
                         .from = WToM(ormel, at),
                         .elevation = elevation,
                         .backward = backward});
}

std::variant<std::vector<PointRecord>, BadRecord, FileDamage> ReadPointRecords(const std::string& path) {
  std::vector<PointRecord> records;
  std::optional<BadRecord> bad;
  const ReadOutcome damage = ReadGuarded(path, [&](LineReader& lines) -> ReadOutcome {
    std::string line;
    while (!bad && lines.Next(line)) {
      if (!line.starts_with('@')) continue;
      if (const auto record = ParseRecord(std::string_view(line).substr(1)))
        records.push_back(*record);
      else
        bad = BadRecord{lines.line_number()};
    }
    return std::nullopt;
  });
  if (damage) return *damage;
  if (bad) return *bad;
  return records;
}

}  // namespace ormel
