// The description of a report: its sections with their texts, tables and pictures, in a text that a user can
// copy and change.
//
// Lines of HTML stand as they are; `{...}` in them is a value.  A line that begins with "@" is an instruction
// (docs/guide/report.md lists them).  Nothing of the report's words or columns is in the program's code.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "analysis/report_numbers.h"
#include "core/publisher.h"
#include "solver/file_damage.h"

namespace ormel {

/// Something counted or computed that a text holds or a column shows.
struct ReportField {
  std::string what;  ///< a value's name, a select statement, or a column of the table
  Quantity quantity = Quantity::kNone;
  NumberFormat format;
  std::string heading{};  ///< of a column
  bool wide = false;      ///< a column that takes most of its table's width
};

struct ReportText {
  std::string html;  ///< with `fields[i]` to be put in where "\x01<i>\x02" stands
  std::vector<ReportField> fields;
};

struct ReportTable {
  std::string caption;
  std::string query;  ///< a select statement, or the name of a computed table
  bool computed = false;
  std::vector<ReportField> columns;
  std::string empty;  ///< HTML in place of a table without rows
};

struct ReportPicture {
  std::string what;  ///< "map", "zones", "fit", "order", "residuals", "discharges"
  int width = 640, height = 480;
  std::string caption;
};

struct ReportBlock {
  std::size_t line = 0;  ///< of the description, from 1
  std::variant<ReportText, ReportTable, ReportPicture> content;
};

struct ReportSection {
  std::string id;
  std::string heading;
  bool needs_results = false;
  bool on_request = false;  ///< long: only in a report that asks for it
  std::vector<ReportBlock> blocks;
};

struct ReportDescription {
  std::string title;
  PageStyle page;
  std::string style;  ///< CSS
  std::vector<ReportSection> sections;
};

/// Takes a description apart.  `name` is that of its file, for what is amiss: an instruction that nobody
/// knows, a table without its end, a format that is none ...
std::variant<ReportDescription, FileDamage> ParseReport(std::string_view text, const std::string& name);

/// The description that the program brings.
std::string_view StandardReport();

}  // namespace ormel
