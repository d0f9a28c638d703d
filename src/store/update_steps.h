// What each version changed, as a table; for update.cpp.
#pragma once

#include <span>
#include <string_view>

namespace ormel::update {

enum class Act {
  kAddFields,   // `fields` of `table`, with the types and defaults of the schema
  kDropFields,  // `fields`
  kMakeTable,   // as in the schema
  kDropTable,
  kRun,  // `sql` in SQLite's own dialect; "?" in it is the present directory
};

struct Action {
  Act act;
  std::string_view table;
  std::string_view fields = {};  ///< separated by ","; of kRun: the field that it is about
  std::string_view sql = {};
};

struct Step {
  int from = 0, to = 0;
  std::span<const Action> actions;
};

/// In their order; each begins where the one before ends.
std::span<const Step> Steps();

}  // namespace ormel::update
