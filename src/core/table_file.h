// Saves a table for other programs.
#pragma once

#include <string>
#include <string_view>

#include "core/form.h"

namespace ormel {

/// The buttons of every form that shows a table.
inline constexpr ControlSpec kCopyButton{.name = "Copy",
                                         .kind = ControlKind::kButton,
                                         .caption = "&Copy",
                                         .tip = "The selected rows, or all of them, to the clipboard"};
inline constexpr ControlSpec kExportButton{.name = "Export",
                                           .kind = ControlKind::kButton,
                                           .caption = "&Save As CSV...",
                                           .tip = "The table in its present order, with all digits"};

/// Of forms whose tables go on paper.
inline constexpr ControlSpec kPrintButton{.name = "Print",
                                          .kind = ControlKind::kButton,
                                          .caption = "&Print to PDF...",
                                          .tip = "The table in its present order on pages"};

struct Ormel;
class Table;

/// Writes comma-separated values (RFC 4180, UTF-8): the headings, then the rows in their present order,
/// numbers with all their digits.  Throws FileError.
void WriteCsv(const Table& table, const std::string& path);

/// Asks for a file and writes the table; `name` is offered.  A file that stands there is replaced only if the
/// user agrees; one that cannot be written is told with its reason.
void SaveTable(Ormel& ormel, const Table& table, std::string_view name);

/// A document of HTML that shows the table as the screen does, below a heading.
std::string TableHtml(const Table& table, std::string_view heading);
/// Asks for a file and writes the table as pages of a PDF by the publisher; without one it does nothing.
/// Otherwise as SaveTable.
void PrintTable(Ormel& ormel, const Table& table, std::string_view name);

}  // namespace ormel
