// Tables of wells, test points and text labels as text: one record a line.
//
// Fields are divided by comma or blank, whichever gives the first line its fewest fields.  Lines without
// fields, those that begin with "*", and the words quit, end and exit are passed over.  The text of a record
// is all behind its numbers: between commas a text in quotation marks stays as it is, otherwise its fields
// are joined by blanks.  UTF-8, with or without a byte order mark; a point in numbers in every locale.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

enum class TableKind { kWells, kTestPoints, kTextLabels };

struct TableRecord {
  MapPoint at;
  double value = 0.0;                ///< head, discharge or observed head
  double radius = 0.0;               ///< of a well
  int label_type = 0;                ///< of a text label
  std::string text;                  ///< label
  std::size_t number = 0, line = 0;  ///< from 1
};

struct BadRecord {
  std::size_t number = 0, line = 0;
  std::string reason;
};

struct TableContent {
  bool delimiter_found = true;
  std::vector<TableRecord> records;
  std::vector<BadRecord> bad;
};

/// Reads a file as a whole.  Throws FileError with the line for what is no such text at all: bytes that are
/// not UTF-8, control characters, endless lines.
TableContent ReadTable(const std::string& path, TableKind kind);

/// A record as a line, as ReadTable takes it.
std::string TableLine(TableKind kind, const TableRecord& record);

}  // namespace ormel
