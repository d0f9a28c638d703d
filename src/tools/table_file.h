// Saves a table for other programs.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

struct Ormel;
class Table;

/// Writes comma-separated values (RFC 4180, UTF-8): the headings, then the rows in their present order,
/// numbers with all their digits.  Throws FileError.
void WriteCsv(const Table& table, const std::string& path);

/// Asks for a file and writes the table; `name` is offered.  A file that stands there is replaced only if the
/// user agrees; one that cannot be written is told with its reason.
void SaveTable(Ormel& ormel, const Table& table, std::string_view name);

}  // namespace ormel
