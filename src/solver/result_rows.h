// Rows of the results tables as they are before the solver has answered: labels and places, all else zero.
#pragma once

#include <string>

#include "core/types.h"
#include "solver/input.h"
#include "store/bulk.h"

namespace ormel {

class Database;

/// `LSResults.SpecifiedHead` of a line-sink that has none.
inline constexpr double kNoSpecifiedHead = -999.0;

/// Adds rows under the labels of the deck; the loader fills them.
class ResultRows {
 public:
  explicit ResultRows(Database& db);
  void Well(const std::string& label, const std::string& deck_label, MapPoint at, double specified_head);
  void Linesink(const std::string& label, const std::string& deck_label, MapPoint from, MapPoint to,
                double specified_head);
  void Inhomogeneity(const std::string& label, const std::string& deck_label);
  void Barrier(const std::string& label, const std::string& deck_label);

 private:
  BulkInsert wells_, linesinks_, inhomogeneities_, barriers_;
};

/// Empties `WLResults`, `LSResults`, `INResults` and `NFResults` and adds a row for each element that the
/// deck of this input holds.
void SeedResultRows(Database& db, const SolverInput& input);

}  // namespace ormel
