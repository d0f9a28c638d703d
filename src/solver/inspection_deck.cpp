#include "solver/inspection_deck.h"

#include <array>
#include <cmath>
#include <string_view>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "model/model_values.h"
#include "solver/deck_sections.h"
#include "solver/deck_writer.h"
#include "solver/guarded_read.h"
#include "solver/run_deck.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::array<std::string_view, 8> kInspectHead{
    " error temperror.log", " yes", " message tempmess.log", " yes", " echo echo.log", " yes", " quit", " "};
constexpr std::array<std::string_view, 3> kInspectBlock{" extract ", " file _INSPECT.XTR", " y"};
constexpr std::array<std::string_view, 10> kTraceHead{"* Instant Trace",
                                                      " error temperr.log",
                                                      " yes",
                                                      " message tempmess.log",
                                                      " yes",
                                                      " echo tempecho.log",
                                                      " yes",
                                                      " picture off",
                                                      " quit",
                                                      " "};
constexpr std::array<std::string_view, 2> kBlockEnd{" quit ", " stop"};

template <std::size_t n>
void WriteLines(TextFileWriter& deck, const std::array<std::string_view, n>& lines) {
  for (const std::string_view line : lines) deck.Line(line);
}

void WriteLoad(const Ormel& ormel, TextFileWriter& deck) {
  deck.Line(" load " + ormel.project.OrmelBaseName);
  deck.Line(" time " + NumberText(ormel.solution.SolutionTime));
}

/// "  x y" and, where there is one, the elevation.
DeckLine PointLine(const Ormel& ormel, MapPoint at, std::optional<double> elevation) {
  static const NumberMask place_blank("0.0000000E+00 ");
  static const NumberMask place("0.0000000E+00");
  static const NumberMask height(" #######0.00");
  const ModelPoint model = WToM(ormel, at);
  DeckLine line("  ");
  line.Number(place_blank, model.x).Number(place, model.y);
  if (elevation) line.Number(height, *elevation);
  return line;
}

/// Unit steps of the star behind its centre.
struct Direction {
  int x, y, z;
};
constexpr std::array<Direction, kStarPoints - 1> kStar{
    {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}};

void WriteStar(const Ormel& ormel, TextFileWriter& deck, const PointQuery& query) {
  static const NumberMask mask("0.0000000E+00 ");
  const ModelPoint centre = WToM(ormel, query.at);
  const double d = 0.5 * query.star;
  for (const Direction& to : kStar)
    deck.Line(DeckLine("")
                  .Number(mask, centre.x + to.x * d)
                  .Text(" ")
                  .Number(mask, centre.y + to.y * d)
                  .Text(" ")
                  .Number(mask, *query.elevation + to.z * d)
                  .str());
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

void WriteInspectDeck(const Ormel& ormel, const PointQuery& query) {
  TextFileWriter deck(JoinPath(ormel.project.OrmelBasePath, kInspectDeck));
  deck.Line(DeckHeadLine());
  WriteLines(deck, kInspectHead);
  WriteLoad(ormel, deck);
  WriteLines(deck, kInspectBlock);
  deck.Line(PointLine(ormel, query.at, query.elevation).str());
  if (query.star > 0.0 && query.elevation) WriteStar(ormel, deck, query);
  WriteLines(deck, kBlockEnd);
  deck.Commit();
}

void WriteTraceDeck(const Ormel& ormel, const ModelValues& model, MapPoint at, double elevation,
                    bool backward) {
  static const NumberMask direction(" #0.0");
  TextFileWriter deck(JoinPath(ormel.project.OrmelBasePath, kTraceDeck));
  deck.Line(DeckHeadLine());
  WriteLines(deck, kTraceHead);
  WriteLoad(ormel, deck);
  WriteLayout(ormel, deck);
  deck.Line(" trace ");
  deck.Line(" picture off");
  deck.Line(" time " + NumberText(model.TRACEMaxTime));
  deck.Line(" step " + NumberText(TracingStep(ormel, model)));
  deck.Line(" file " + std::string(kTracePaths));
  deck.Line(" y");
  deck.Line(PointLine(ormel, at, elevation).Number(direction, backward ? -1.0 : 1.0).str());
  WriteLines(deck, kBlockEnd);
  deck.Commit();
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
