#include "solver/result_table.h"

#include <algorithm>

#include "solver/deck_writer.h"
#include "store/database.h"
#include "text/strings.h"

namespace ormel {

ResultTable::ResultTable(Database& db, std::string_view table, std::string_view key)
    : rows_(db.OpenRecordset("select * from " + std::string(table))) {
  const std::size_t label = rows_.FieldIndex(key);
  const bool heads = table == "LSResults";
  for (; rows_.HasRow(); rows_.MoveNext()) {
    Row row{rows_.GetBookmark()};
    if (heads) row.expected = rows_.Get("SpecifiedHead").AsDouble() != kNoSpecifiedHead;
    by_label_.try_emplace(FoldCase(rows_.Get(label).AsText()), row);
  }
}

bool ResultTable::Find(std::string_view label) {
  const auto found = by_label_.find(FoldCase(label));
  if (found == by_label_.end()) return false;
  found->second.met = true;
  rows_.SetBookmark(found->second.mark);
  return true;
}

std::size_t ResultTable::Unanswered() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      by_label_, [](const auto& entry) { return entry.second.expected && !entry.second.met; }));
}

}  // namespace ormel
