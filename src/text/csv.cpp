#include "text/csv.h"

#include "text/strings.h"

namespace ormel {

std::string CsvField(std::string_view text) {
  constexpr std::string_view kFormula = "=+-@";
  std::string out(text);
  const std::string_view bare = Trim(text);
  // Numbers, and lists of coordinates, hold nothing that could be called.
  const bool number = bare.find_first_not_of("0123456789+-., eE") == std::string_view::npos || bare == "-inf";
  if (!bare.empty() && kFormula.find(bare.front()) != std::string_view::npos && !number)
    out.insert(out.begin(), '\'');
  if (out.find_first_of(",\"\n\r") == std::string::npos) return out;
  std::string quoted = "\"";
  for (const char c : out) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace ormel
