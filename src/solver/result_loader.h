// Loads the solver's extraction file into the results tables.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ormel {

struct Ormel;

struct LoadReport {
  bool complete = false;      ///< the file was read to its end
  std::size_t lines = 0;      ///< lines read, comments too
  std::size_t records = 0;    ///< records that reached a table
  std::size_t bad = 0;        ///< records that were too short
  std::size_t broken = 0;     ///< records with a field that is no finite number
  std::size_t unknown = 0;    ///< records whose label no element of the project has
  std::string unknown_label;  ///< of the first of these
  bool cut = false;           ///< the last line has no end, or the solver's own mark of the end is missing
  bool other_origin = false;  ///< the file says that its coordinates have another origin than the run
  /// Deck labels of elements of the deck for which the file holds no record.
  std::vector<std::string> unanswered{};
};

/// Why results do not count, in a sentence; empty when they do.  An element that the solver says it left out
/// (`error_log` names its label) is no reason.
std::string FaultOf(const LoadReport& report, const std::string& error_log);

/// Reads `<stem>.XTR` of the project's model folder and fills the rows of `WLResults`, `LSResults`,
/// `INResults` and `NFResults` by their deck labels; makes `TPResults` anew and adds to `FIResults`.  A
/// record that is too short brings a box that asks whether to go on.  Linear in the size of the file. Records
/// of unknown labels are left out; both they and elements without a record are told in the second panel.
/// Throws FileError when the file cannot be opened or read.
LoadReport ModelLoadVadoxResults(Ormel& ormel);

}  // namespace ormel
