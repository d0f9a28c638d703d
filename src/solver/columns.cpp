#include "solver/columns.h"

#include <cmath>

#include "text/numbers.h"

namespace ormel {
namespace {

bool BeginsNumber(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t+-.");
  return first != std::string_view::npos && text[first] >= '0' && text[first] <= '9';
}

}  // namespace

std::string_view Columns(std::string_view line, std::size_t first, std::size_t width) {
  if (line.size() < first) return {};
  return line.substr(first - 1, width);
}

std::optional<double> ColumnNumber(std::string_view line, std::size_t first, std::size_t width) {
  const std::string_view text = Columns(line, first, width);
  if (!BeginsNumber(text)) return std::nullopt;
  const double value = Val(text);
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace ormel
