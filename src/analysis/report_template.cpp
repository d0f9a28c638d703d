#include "analysis/report_template.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::array<std::string_view, 6> kPictures{"map",   "zones",     "fit",
                                                    "order", "residuals", "discharges"};
constexpr std::array<std::string_view, 4> kPapers{"A4", "A3", "Letter", "Legal"};

/// Ends the parsing; its words go to the user.
class Fault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// "a | b | c": parts without blanks around them.  Fewer than `count` are filled up, more are a fault.
std::vector<std::string> Parts(std::string_view text, std::size_t count, std::string_view instruction) {
  std::vector<std::string> parts;
  for (const std::string& part : ParseString(text, '|')) parts.emplace_back(Trim(part));
  if (parts.size() > count)
    throw Fault(std::string(instruction) + " takes " + std::to_string(count) + " parts at most, parted by |");
  parts.resize(count);
  return parts;
}

bool IsSelect(std::string_view text) {
  return StartsWithNoCase(text, "select ") && text.find(';') == std::string_view::npos;
}

void SetFormat(ReportField& field, const std::string& quantity, const std::string& format) {
  const std::optional<Quantity> known = QuantityByName(quantity);
  if (!known) throw Fault("there is no quantity \"" + quantity + "\"; there are " + QuantityNames());
  field.quantity = *known;
  if (format.empty()) {
    field.format = NumberFormat::UsualFor(field.quantity);
    return;
  }
  const std::optional<NumberFormat> parsed = NumberFormat::Parse(format);
  if (!parsed) throw Fault("\"" + format + "\" is no format; use given, s4 (significant digits) or 0.00");
  field.format = *parsed;
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  ReportDescription Run() {
    std::string_view line;
    while (NextLine(line)) TakeLine(line);
    if (in_style_) throw Fault("@style has no @end");
    if (table_ != nullptr) throw Fault("@table has no @end");
    if (report_.sections.empty()) throw Fault("there is no @section");
    return std::move(report_);
  }
  std::size_t line() const { return line_; }

 private:
  bool NextLine(std::string_view& line) {
    if (at_ >= text_.size()) return false;
    const std::size_t end = std::min(text_.find('\n', at_), text_.size());
    line = text_.substr(at_, end - at_);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    at_ = end + 1;
    ++line_;
    return true;
  }

  void TakeLine(std::string_view line) {
    if (line.starts_with("@*")) return;
    if (!line.starts_with("@")) return TakeText(line);
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(1, end - 1), rest = Trim(line.substr(end));
    for (const Instruction& instruction : kInstructions) {
      if (instruction.word != word) continue;
      if (instruction.in_table != (table_ != nullptr) && word != "end")
        throw Fault(instruction.in_table ? "@" + std::string(word) + " stands inside of a @table"
                                         : "the @table before it has no @end");
      continues_ = nullptr;
      return (this->*instruction.take)(rest);
    }
    throw Fault("there is no instruction @" + std::string(word));
  }

  void TakeText(std::string_view line) {
    if (in_style_) {
      report_.style += std::string(line) + "\n";
    } else if (continues_ != nullptr) {
      *continues_ += " " + std::string(Trim(line));
    } else if (table_ != nullptr) {
      if (!Trim(line).empty()) throw Fault("a text cannot stand inside of a @table");
    } else if (!Trim(line).empty()) {
      Text(line);
    }
  }

  ReportSection& Section() {
    if (report_.sections.empty()) throw Fault("a text, table or picture stands before the first @section");
    return report_.sections.back();
  }

  void Text(std::string_view line) {
    std::vector<ReportBlock>& blocks = Section().blocks;
    if (blocks.empty() || !std::holds_alternative<ReportText>(blocks.back().content))
      blocks.push_back({line_, ReportText{}});
    auto& text = std::get<ReportText>(blocks.back().content);
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (line.substr(i).starts_with("{{")) {
        text.html += '{';
        ++i;
      } else if (line[i] == '{') {
        const std::size_t end = line.find('}', i);
        if (end == std::string_view::npos) throw Fault("a { has no } on its line; {{ gives a brace itself");
        text.html += '\x01' + std::to_string(text.fields.size()) + '\x02';
        text.fields.push_back(FieldOf(line.substr(i + 1, end - i - 1)));
        i = end;
      } else {
        text.html += line[i];
      }
    }
    text.html += '\n';
  }

  static ReportField FieldOf(std::string_view text) {
    const std::vector<std::string> parts = Parts(text, 3, "a value");
    ReportField field;
    field.what = parts[0];
    if (field.what.empty()) throw Fault("a value in braces has no name");
    if (StartsWithNoCase(field.what, "select") && !IsSelect(field.what))
      throw Fault("a value is a name or one select statement without a semicolon");
    SetFormat(field, parts[1], parts[2]);
    return field;
  }

  void Title(std::string_view rest) { report_.title = rest; }
  void Paper(std::string_view rest) {
    const std::vector<std::string> words = ParseString(rest, ' ');
    if (words.empty() || std::find(kPapers.begin(), kPapers.end(), words[0]) == kPapers.end())
      throw Fault("@paper takes A4, A3, Letter or Legal, then portrait or landscape, then the margin in mm");
    report_.page.paper = words[0];
    report_.page.landscape = words.size() > 1 && words[1] == "landscape";
    if (words.size() > 2) report_.page.margin = Val(words[2]);
    if (!(report_.page.margin >= 5.0 && report_.page.margin <= 60.0))
      throw Fault("the margin must be between 5 and 60 mm");
  }
  void Style(std::string_view) { in_style_ = true; }
  void SectionStart(std::string_view rest) {
    const std::vector<std::string> parts = Parts(rest, 3, "@section");
    if (parts[0].empty() || parts[0].find_first_of(" ,\"<>&") != std::string::npos)
      throw Fault("@section takes a name of one word, then | and its heading");
    for (const ReportSection& other : report_.sections)
      if (other.id == parts[0]) throw Fault("there are two sections \"" + parts[0] + "\"");
    if (!parts[2].empty() && parts[2] != "results" && parts[2] != "on request")
      throw Fault("the third part of @section can only be: results, or on request");
    report_.sections.push_back({parts[0], parts[1], parts[2] == "results", parts[2] == "on request", {}});
  }
  void TableStart(std::string_view rest) {
    Section().blocks.push_back({line_, ReportTable{}});
    table_ = &std::get<ReportTable>(report_.sections.back().blocks.back().content);
    table_->caption = rest;
  }
  void Select(std::string_view rest) {
    table_->query = "select " + std::string(rest);
    continues_ = &table_->query;
  }
  void Source(std::string_view rest) {
    table_->query = rest;
    table_->computed = true;
  }
  void Column(std::string_view rest) {
    const std::vector<std::string> parts = Parts(rest, 4, "@column");
    ReportField field;
    field.what = parts[0];
    field.heading = parts[1].empty() ? parts[0] : parts[1];
    if (field.what.empty()) throw Fault("@column has no field");
    field.wide = parts[3] == "wide";
    SetFormat(field, parts[2], field.wide ? "" : parts[3]);
    table_->columns.push_back(std::move(field));
  }
  void Empty(std::string_view rest) {
    table_->empty = rest;
    continues_ = &table_->empty;
  }
  void End(std::string_view) {
    if (in_style_) {
      in_style_ = false;
      return;
    }
    if (table_ == nullptr) throw Fault("@end has no @table or @style before it");
    if (table_->query.empty()) throw Fault("the table has neither @select nor @source");
    if (!table_->computed && !IsSelect(table_->query))
      throw Fault("the table's statement holds a semicolon; a table is one select");
    if (table_->columns.empty()) throw Fault("the table has no @column");
    table_ = nullptr;
  }
  void Picture(std::string_view rest) {
    const std::vector<std::string> parts = Parts(rest, 3, "@picture");
    ReportPicture picture;
    picture.what = parts[0];
    if (std::find(kPictures.begin(), kPictures.end(), picture.what) == kPictures.end())
      throw Fault("there is no picture \"" + picture.what +
                  "\"; there are map, zones, fit, order, residuals, discharges");
    const std::vector<std::string> sides = ParseString(parts[1], 'x');
    if (sides.size() == 2) {
      picture.width = static_cast<int>(Val(sides[0]));
      picture.height = static_cast<int>(Val(sides[1]));
    }
    if (picture.width < 100 || picture.height < 100 || picture.width > 3000 || picture.height > 3000)
      throw Fault("each side of a picture is between 100 and 3000");
    picture.caption = parts[2];
    Section().blocks.push_back({line_, std::move(picture)});
  }

  struct Instruction {
    std::string_view word;
    bool in_table;
    void (Parser::*take)(std::string_view);
  };
  static const std::array<Instruction, 11> kInstructions;

  std::string_view text_;
  std::size_t at_ = 0, line_ = 0;
  ReportDescription report_;
  ReportTable* table_ = nullptr;
  std::string* continues_ = nullptr;  ///< what lines without an instruction add to
  bool in_style_ = false;
};

const std::array<Parser::Instruction, 11> Parser::kInstructions{
    Parser::Instruction{"title", false, &Parser::Title},
    {"paper", false, &Parser::Paper},
    {"style", false, &Parser::Style},
    {"section", false, &Parser::SectionStart},
    {"table", false, &Parser::TableStart},
    {"picture", false, &Parser::Picture},
    {"select", true, &Parser::Select},
    {"source", true, &Parser::Source},
    {"column", true, &Parser::Column},
    {"empty", true, &Parser::Empty},
    {"end", true, &Parser::End}};

}  // namespace

std::variant<ReportDescription, FileDamage> ParseReport(std::string_view text, const std::string& name) {
  Parser parser(text);
  try {
    return parser.Run();
  } catch (const Fault& fault) {
    return FileDamage{FileDamage::Kind::kDamaged, name, parser.line(), fault.what()};
  }
}

}  // namespace ormel
