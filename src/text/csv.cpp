#include "text/csv.h"

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

std::string CsvField(std::string_view text) {
  constexpr std::string_view kFormula = "=+-@";
  std::string out(text);
  const std::string_view bare = Trim(text);
  const bool number = IsNumeric(bare) || bare == "-inf";
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
