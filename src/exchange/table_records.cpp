#include "exchange/table_records.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/form.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// A field before the text.
struct NumberField {
  const char* name;
  NumberRange range;
  bool above_zero = false, whole = false;
  void (*put)(TableRecord&, double);
};

constexpr NumberField kX{"X", kPlaces, false, false, [](TableRecord& r, double v) { r.at.x = v; }};
constexpr NumberField kY{"Y", kPlaces, false, false, [](TableRecord& r, double v) { r.at.y = v; }};
constexpr std::array kWellFields{
    kX, kY,
    NumberField{"the head or discharge", kDischarges, false, false,
                [](TableRecord& r, double v) { r.value = v; }},
    NumberField{"the radius", kSizes, true, false, [](TableRecord& r, double v) { r.radius = v; }}};
constexpr std::array kTestPointFields{
    kX, kY,
    NumberField{"the head", kElevations, false, false, [](TableRecord& r, double v) { r.value = v; }}};
constexpr std::array kLabelFields{
    kX, kY, NumberField{"the type", {0.0, 1.0}, false, true, [](TableRecord& r, double v) {
                          r.label_type = static_cast<int>(v);
                        }}};

struct Format {
  TableKind kind;
  std::span<const NumberField> numbers;
  std::size_t longest;  ///< text, in characters, as the store takes it
  std::size_t Fewest() const { return numbers.size() + 1; }
};
constexpr std::array kFormats{Format{TableKind::kWells, kWellFields, 64},
                              Format{TableKind::kTestPoints, kTestPointFields, 32},
                              Format{TableKind::kTextLabels, kLabelFields, 255}};

const Format& FormatOf(TableKind kind) {
  return *std::find_if(kFormats.begin(), kFormats.end(), [kind](const Format& f) { return f.kind == kind; });
}

bool IsSkipped(std::string_view first) {
  static constexpr std::array<std::string_view, 6> kWords{"quit", "Quit", "end", "End", "Exit", "exit"};
  return first.starts_with('*') || std::find(kWords.begin(), kWords.end(), first) != kWords.end();
}

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Takes the mark off; a line that cannot be of a text file ends the reading.
void CheckLine(const LineReader& lines, std::string& line) {
  const auto fail = [&](const char* reason) { throw FileError(lines.path(), reason, lines.line_number()); };
  if (lines.line_number() == 1 && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
  if (lines.line_number() == 1 && (line.starts_with("\xFF\xFE") || line.starts_with("\xFE\xFF")))
    fail("is text in UTF-16. Save it as UTF-8 and import it again.");
  if (std::any_of(line.begin(), line.end(),
                  [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\f'; }))
    fail("holds control characters and is no text file in UTF-8.");
  if (ToUtf8(line) != line)
    fail("holds characters that are not UTF-8. Save the file as UTF-8 and import it again.");
}

/// What stands behind the first `commas` commas.
std::string_view Behind(std::string_view line, std::size_t commas) {
  for (; commas > 0; --commas) line.remove_prefix(line.find(',') + 1);
  return line;
}

bool Unquote(std::string_view text, std::string& out) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return false;
  text = text.substr(1, text.size() - 2);
  out.clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"' && (++i == text.size() || text[i] != '"')) return false;  // marks stand in pairs
    out += text[i];
  }
  return true;
}

std::string TextOf(std::string_view line, const std::vector<std::string>& fields, std::size_t first,
                   char delimiter) {
  std::string text;
  if (delimiter == ',' && Unquote(Trim(Behind(line, first)), text)) return text;
  text.clear();
  for (std::size_t i = first; i < fields.size(); ++i) {
    if (i > first) text += ' ';
    text += Trim(fields[i]);
  }
  return text;
}

/// Empty when the record is good, else what is wrong with it.
std::string Parse(const Format& format, std::string_view line, const std::vector<std::string>& fields,
                  char delimiter, TableRecord& record) {
  if (fields.size() < format.Fewest())
    return "has " + std::to_string(fields.size()) + " fields, and at least " +
           std::to_string(format.Fewest()) + " are needed";
  for (std::size_t i = 0; i < format.numbers.size(); ++i) {
    const NumberField& field = format.numbers[i];
    const std::string_view text = Trim(fields[i]);
    const double value = Val(text);
    const std::string what = std::string(field.name) + " is \"" + std::string(TextLeft(text, 40)) + "\", ";
    if (!IsNumeric(text)) return what + "which is no number";
    if (!(value >= field.range.lowest && value <= field.range.largest)) return what + "which is out of range";
    if (field.above_zero && !(value > 0.0)) return what + "and must be above 0";
    if (field.whole && value != std::floor(value)) return what + "and must be 0 or 1";
    field.put(record, value);
  }
  record.text = TextOf(line, fields, format.numbers.size(), delimiter);
  if (TextLength(record.text) > format.longest)
    return "the text is longer than " + std::to_string(format.longest) + " characters";
  return {};
}

}  // namespace

TableContent ReadTable(const std::string& path, TableKind kind) {
  const Format& format = FormatOf(kind);
  TableContent content;
  LineReader lines(path);
  std::string line;
  char delimiter = 0;
  std::size_t number = 0;
  while (lines.Next(line)) {
    CheckLine(lines, line);
    if (delimiter == 0) {
      delimiter = ParseString(line, ',').size() >= format.Fewest()   ? ','
                  : ParseString(line, ' ').size() >= format.Fewest() ? ' '
                                                                     : '\0';
      if (delimiter == 0) break;
    }
    const std::vector<std::string> fields = ParseString(line, delimiter);
    if (fields.empty() || Trim(line).empty() || IsSkipped(Trim(fields.front()))) continue;
    TableRecord record;
    record.number = ++number;
    record.line = lines.line_number();
    const std::string fault = Parse(format, line, fields, delimiter, record);
    if (fault.empty())
      content.records.push_back(std::move(record));
    else
      content.bad.push_back({record.number, record.line, fault});
  }
  content.delimiter_found = delimiter != 0;
  return content;
}

std::string TableLine(TableKind kind, const TableRecord& record) {
  static const NumberMask kPlace("0.000000000E+00 "), kValue("0.00000E+00 "), kRadius("0.00000E+00");
  std::string line = kPlace.Format(record.at.x) + "," + kPlace.Format(record.at.y) + ",";
  line += kind == TableKind::kTextLabels ? std::to_string(record.label_type) : kValue.Format(record.value);
  if (kind == TableKind::kWells) line += "," + kRadius.Format(record.radius);
  std::string text = record.text;
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  // Only what would come back as another text goes in quotation marks.
  if (text.find(',') != std::string::npos || text.starts_with('"') || Trim(text) != text) {
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
    text = quoted + "\"";
  }
  return line + "," + text;
}

}  // namespace ormel
