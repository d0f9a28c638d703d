// Loads the solver's extraction file into the results tables.
#pragma once

#include <cstddef>

namespace ormel {

struct Ormel;

struct LoadReport {
  bool complete = false;       ///< the file was read to its end
  std::size_t lines = 0;       ///< lines read, comments too
  std::size_t records = 0;     ///< records that reached a table
  std::size_t bad = 0;         ///< records that were too short
  std::size_t unknown = 0;     ///< records whose label no element of the project has
  std::size_t unanswered = 0;  ///< elements of the deck for which the file holds no record
};

/// Reads `<stem>.XTR` of the project's model folder and fills the rows of `WLResults`, `LSResults`,
/// `INResults` and `NFResults` by their deck labels; makes `TPResults` anew and adds to `FIResults`.  A
/// record that is too short brings a box that asks whether to go on.  Linear in the size of the file. Records
/// of unknown labels are left out; both they and elements without a record are told in the second panel.
/// Throws FileError when the file cannot be opened or read.
LoadReport ModelLoadVadoxResults(Ormel& ormel);

}  // namespace ormel
