// Fields of comma-separated values.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

/// `text` as one field (RFC 4180).  A text that a spreadsheet would take for a formula, by its first sign = +
/// - or @, gets an apostrophe before it; a number stays a number.
std::string CsvField(std::string_view text);

}  // namespace ormel
