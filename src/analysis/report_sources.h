// The computed tables and values that a report's description can name.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/calibration.h"
#include "analysis/solver_listing.h"
#include "core/chart.h"
#include "store/value.h"

namespace ormel {

struct Ormel;
class Table;

/// What a report reads; parts that several of its tables need are read once.
class ReportSources {
 public:
  ReportSources(Ormel& ormel, bool results, std::string reason)
      : ormel_(ormel), results_(results), reason_(std::move(reason)) {}

  /// Null for a name that is none.  Tables: "zones", "areas", "strings", "domains", "conditions", "balance",
  /// "errors", "statistics", "flows", "warnings", "vertices".
  std::shared_ptr<Table> TableOf(std::string_view name);
  static std::string TableNames();
  /// Nothing for a name that is none.
  std::optional<Value> ValueOf(std::string_view name);
  static std::string ValueNames();
  /// A chart by its name, "fit", "order", "residuals" or "discharges"; nothing when it would have no points.
  std::optional<Chart> ChartOf(std::string_view name);

  Ormel& ormel() const { return ormel_; }
  bool results() const { return results_; }
  const std::string& reason() const { return reason_; }
  const CalibrationData& Calibration();
  const SolverListing& Listing();

 private:
  Ormel& ormel_;
  bool results_;
  std::string reason_;  ///< why there are no results
  std::optional<CalibrationData> calibration_;
  std::optional<SolverListing> listing_;
};

}  // namespace ormel
