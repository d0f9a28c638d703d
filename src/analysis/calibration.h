// How well the solution meets the observed heads and discharges.
//
// Differences are observed less modelled.  Heads in computation units, discharges in their cube per day,
// positive when water leaves the aquifer (a string) or crosses to the right (a flux inspection line).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

struct Residual {
  std::string label;
  Vid vid = -1;
  MapPoint at;
  double observed = 0.0, modelled = 0.0, difference = 0.0;
};

struct CalibrationData {
  std::vector<Residual> points;  ///< by ascending difference
  /// Over all observed and modelled heads together.  The upper bound begins just below zero: where all heads
  /// are negative it stays there.
  double Max = -1e-30, Min = 1e+30;
  /// Rows of `TPResults` that hold no head of the solution and count nowhere: the aquifer is dry there, or
  /// the solver's file had no record.
  std::vector<std::string> dry, unanswered;
};

/// The test points of the last solve.
CalibrationData ReadCalibration(Ormel& ormel);

struct CalibrationStatistics {
  std::size_t count = 0;
  double maximum = 0.0, minimum = 0.0, average = 0.0;
  /// Of an odd number of points the one at half the number rounded to an even whole number, which for 3, 7,
  /// 11 ... points lies one above the middle.
  double median = 0.0;
  double middle = 0.0;  ///< the median in the strict sense
  double mean_absolute = 0.0, root_mean_square = 0.0;
  /// 1 - sum of squared differences / sum of squared deviations of the observed heads from their mean (Nash
  /// and Sutcliffe 1970); none where all observed heads are equal.
  std::optional<double> determination;
  /// root_mean_square over the range of the observed heads [percent]; none where the range is 0.
  std::optional<double> range_percent;
  double observed_range = 0.0;
};

inline constexpr std::size_t kLeastPoints = 2;

/// Of two points at least, by ascending difference.
CalibrationStatistics StatisticsOf(const std::vector<Residual>& points);

/// A string of line-sinks or a flux inspection line.
struct ObservedFlow {
  std::string label;
  Pid pid = kNoPolygon;
  bool flux_line = false;
  std::optional<double> observed;  ///< `Polygons.ObsDischarge`
  std::optional<double> modelled;  ///< none where the solution has none: strings of given discharge
};

/// All strings and flux inspection lines, by label.
std::vector<ObservedFlow> ReadObservedFlows(Ormel& ormel);
/// Stores or, by nothing, takes back the observed discharge of a string or line.  A project from before the
/// field gets it.  The solution stays valid: it does not depend on observations.
void StoreObservedFlow(Ormel& ormel, Pid pid, std::optional<double> observed);

}  // namespace ormel
