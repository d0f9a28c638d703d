// The results tables as a user looks at them.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "core/quantities.h"

namespace ormel {

class Table;

struct ResultsColumn {
  const char* field = "";
  const char* caption = "";
  Quantity quantity = Quantity::kNone;
  const char* mask = "";  ///< empty for texts and whole numbers
};

struct ResultsTable {
  std::string_view name;  ///< in the store
  const char* caption = "";
  std::span<const ResultsColumn> columns;
};

/// Wells, line-sinks, inhomogeneities, barriers, test points, flux lines.
std::span<const ResultsTable> ResultsTables();

/// All rows, as they are now.  A field that an older project lacks is left out.  Heads of dry places read
/// "dry"; the specified head of an element that has none stays empty, as do the results of line-sinks of
/// given discharge, which the solver's records do not reach.
std::shared_ptr<Table> ReadResults(Ormel& ormel, const ResultsTable& results);

}  // namespace ormel
