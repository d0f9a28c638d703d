// What the solver says about its solution: the water balance and the errors of its conditions in the listing,
// and its warnings.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ormel {

struct Ormel;

struct ListedNumber {
  std::string name;
  double value = 0.0;
};

/// A condition's largest error between the solver's control points.
struct ListedError {
  std::string condition;
  double largest = 0.0;
  std::string where;  ///< deck label, empty where all is met
};

struct SolverListing {
  std::string file;  ///< the listing that was read, empty when there is none
  std::vector<ListedNumber>
      balance;  ///< positive where water leaves the aquifer [L3/d]; sum and throughflow last
  std::optional<double> balance_error;  ///< over the throughflow
  std::vector<ListedError> errors;
  std::vector<std::string> warnings;  ///< lines of the error log
  bool has_log = false;
};

/// Reads the newest listing of the project's runs and its error log.  What is not there stays empty.
SolverListing ReadListing(Ormel& ormel);

}  // namespace ormel
