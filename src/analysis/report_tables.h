// Computed tables of a report that the store has no statement for.
#pragma once

#include <memory>

#include "analysis/calibration.h"
#include "analysis/solver_listing.h"

namespace ormel {

struct Ormel;
class Table;

/// Per string of line-sinks: `Label`, `Segments`, `Length` [map], `Discharge`, `LeastHead`, `MostHead`,
/// `LargestError`.  The last four are empty for strings of given discharge, which get no results.
std::shared_ptr<Table> StringsTable(Ormel& ormel);
/// Per domain: `Label`, `Vertices`, `Area`, `Conductivity`, `Base`, `Recharge` (positive into the aquifer),
/// `Porosity`, `LargestError` (of the head between its sides).
std::shared_ptr<Table> DomainsTable(Ormel& ormel);
/// Per kind of condition: `Condition`, `Count`, `Largest`, `Where`, `Unit`.
std::shared_ptr<Table> ConditionsTable(Ormel& ormel);
/// `Term`, `Discharge`.
std::shared_ptr<Table> BalanceTable(const SolverListing& listing);
/// `Condition`, `Largest`, `Where`: between the solver's control points.
std::shared_ptr<Table> ErrorsTable(Ormel& ormel, const SolverListing& listing);
/// `Statistic`, `Value`, `Unit`.
std::shared_ptr<Table> StatisticsTable(Ormel& ormel, const CalibrationData& data);
/// `Label`, `X`, `Y`, `ObsHead`, `ModelHead`, `Difference`, with captions and digits for the screen.
std::shared_ptr<Table> ResidualsTable(const Ormel& ormel, const CalibrationData& data);
/// `Label`, `Kind`, `Observed`, `Modeled`, `Difference`: where a discharge was observed.
std::shared_ptr<Table> FlowsTable(Ormel& ormel);
/// `Message`.
std::shared_ptr<Table> WarningsTable(const SolverListing& listing);
/// `Element`, `Label`, `X`, `Y`: every vertex of every string, domain and line in order.
std::shared_ptr<Table> VerticesTable(Ormel& ormel);
/// `Element`, `Label`, `Vertices`, `Coordinates`: one row for each string, domain and line, or for each
/// capture zone, with its vertices as a text "x y; x y" to two decimals [map length].
std::shared_ptr<Table> CoordinatesTable(Ormel& ormel, bool zones);

}  // namespace ormel
