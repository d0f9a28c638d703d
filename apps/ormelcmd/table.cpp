#include "ormelcmd/table.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

#include "store/bulk.h"
#include "store/database.h"
#include "text/csv.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

std::string Rounded(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

std::string CellText(const Value& value, int digits) {
  if (digits > 0 && std::holds_alternative<double>(value.data())) return Rounded(value.AsDouble(), digits);
  return value.AsText();
}

/// One line a row: line ends inside a value would tear the table.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return text;
}

void PrintCell(std::ostream& out, const std::string& text, std::size_t width, bool right, bool last) {
  const std::string blanks(width - std::min(width, TextLength(text)), ' ');
  if (right) out << blanks;
  out << text;
  if (!right && !last) out << blanks;
  if (!last) out << "  ";
}

}  // namespace

TextTable ReadTable(Database& database, std::string_view sql, int digits) {
  RowReader rows(database, sql);
  TextTable table;
  for (int i = 0; i < rows.ColumnCount(); ++i) table.columns.push_back({rows.ColumnName(i)});
  while (rows.Next()) {
    std::vector<std::string>& row = table.rows.emplace_back();
    for (int i = 0; i < rows.ColumnCount(); ++i) {
      const Value value = rows.Get(i);
      if (!value.IsNull() && !value.IsNumber()) table.columns[static_cast<std::size_t>(i)].number = false;
      row.push_back(CellText(value, digits));
    }
  }
  return table;
}

void PrintAligned(std::ostream& out, const TextTable& table) {
  std::vector<std::size_t> widths;
  for (const TextTable::Column& column : table.columns) widths.push_back(TextLength(column.name));
  for (const auto& row : table.rows)
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], TextLength(row[i]));
  const std::size_t count = table.columns.size();
  for (std::size_t i = 0; i < count; ++i)
    PrintCell(out, table.columns[i].name, widths[i], table.columns[i].number, i + 1 == count);
  out << '\n';
  for (std::size_t i = 0; i < count; ++i) out << std::string(widths[i], '-') << (i + 1 == count ? "" : "  ");
  out << '\n';
  for (const auto& row : table.rows) {
    for (std::size_t i = 0; i < count; ++i)
      PrintCell(out, OneLine(row[i]), widths[i], table.columns[i].number, i + 1 == count);
    out << '\n';
  }
}

void PrintCsv(std::ostream& out, const TextTable& table) {
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    out << (i == 0 ? "" : ",") << CsvField(table.columns[i].name);
  out << '\n';
  for (const auto& row : table.rows) {
    for (std::size_t i = 0; i < row.size(); ++i) out << (i == 0 ? "" : ",") << CsvField(row[i]);
    out << '\n';
  }
}

void PrintJson(std::ostream& out, const TextTable& table) {
  const auto quoted = [](const std::string& text) {
    std::string json = "\"";
    for (const char c : text) {
      if (c == '"' || c == '\\') json += '\\';
      if (static_cast<unsigned char>(c) >= 0x20) {
        json += c;
        continue;
      }
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
      json += code;
    }
    return json + "\"";
  };
  out << "[";
  for (std::size_t r = 0; r < table.rows.size(); ++r) {
    out << (r == 0 ? "\n  {" : ",\n  {");
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const std::string& cell = table.rows[r][i];
      const bool number = table.columns[i].number && IsNumeric(cell);
      out << (i == 0 ? "" : ", ") << quoted(table.columns[i].name) << ": "
          << (number                                    ? cell
              : cell.empty() && table.columns[i].number ? "null"
                                                        : quoted(cell));
    }
    out << "}";
  }
  out << (table.rows.empty() ? "]\n" : "\n]\n");
}

}  // namespace ormel
