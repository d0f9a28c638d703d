// Numbers at fixed columns of a line.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace ormel {

inline constexpr std::size_t kToLineEnd = static_cast<std::size_t>(-1);

/// The text from column `first` (the first is 1), at most `width` columns; "" behind the line's end.
std::string_view Columns(std::string_view line, std::size_t first, std::size_t width = kToLineEnd);

/// The number at the start of these columns, as Val reads it.  Nothing when no number begins there or it is
/// too large for a double.
std::optional<double> ColumnNumber(std::string_view line, std::size_t first, std::size_t width = kToLineEnd);

}  // namespace ormel
