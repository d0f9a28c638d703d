#include "solver/solver_remarks.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <string_view>

#include "core/ormel.h"
#include "core/run_files.h"
#include "solver/outside_programs.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct Labelled {
  std::string_view prefix;
  const char* query;  ///< of the label, by the number in the deck label
};
constexpr std::array kLabelled{
    Labelled{"WL_", "select Label from Wells where VID=?"},
    Labelled{"TP_", "select Label from TestPoints where VID=?"},
    Labelled{"LS_", "select Label from LinesinkStrings where PID=?"},
    Labelled{"IN_", "select Label from Inhomogeneities where PID=?"},
    Labelled{"HB_", "select Label from NoFlowStrings where PID=?"},
    Labelled{"FL_", "select Label from FluxInspect where PID=?"},
};
constexpr std::size_t kPrefix = 3;

/// How far a deck label reaches: "LS_000012" or "LS_000012_0003".
std::size_t EndOfLabel(std::string_view line, std::size_t at) {
  std::size_t end = at + kPrefix;
  while (end < line.size() && (std::isdigit(static_cast<unsigned char>(line[end])) != 0 || line[end] == '_'))
    ++end;
  return end;
}

std::string WithUserLabels(Ormel& ormel, const std::string& line) {
  std::string out;
  for (std::size_t i = 0; i < line.size();) {
    const Labelled* found = nullptr;
    for (const Labelled& one : kLabelled)
      if (std::string_view(line).substr(i).starts_with(one.prefix)) found = &one;
    const std::size_t end = found == nullptr ? i : EndOfLabel(line, i);
    if (end <= i + kPrefix) {
      out += line[i++];
      continue;
    }
    const std::string label = line.substr(i, end - i);
    const auto number =
        static_cast<std::int64_t>(Val(label.substr(kPrefix, label.find('_', kPrefix) - kPrefix)));
    const std::string user = ormel.db().Scalar(found->query, {number}).AsText();
    out += Trim(user).empty() ? label : user + " (" + label + ")";
    i = end;
  }
  return out;
}

}  // namespace

std::vector<std::string> SolverRemarks(Ormel& ormel, std::size_t most) {
  std::vector<std::string> remarks;
  const std::string log = ModelFile(ormel, "ERROR.LOG");
  if (!ErrorLogSpeaks(log)) return remarks;
  std::size_t more = 0;
  LineReader lines(log);
  for (std::string line; lines.Next(line);) {
    if (Trim(line).empty() || Trim(line) == "*") continue;
    if (remarks.size() < most)
      remarks.push_back(WithUserLabels(ormel, line));
    else
      ++more;
  }
  if (more > 0) remarks.push_back("and " + std::to_string(more) + " more: see " + log);
  return remarks;
}

}  // namespace ormel
