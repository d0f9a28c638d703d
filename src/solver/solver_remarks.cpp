#include "solver/solver_remarks.h"

#include "core/ormel.h"
#include "core/run_files.h"
#include "solver/outside_programs.h"
#include "solver/user_labels.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {
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
