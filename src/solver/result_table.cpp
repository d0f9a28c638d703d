#include "solver/result_table.h"

#include <algorithm>

#include "solver/deck_labels.h"
#include "solver/result_rows.h"
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
    row.label = rows_.Get(label).AsText();
    if (table == "TPResults") row.label = VertexLabel("TP_", rows_.Get(label).AsLong());
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

void ResultTable::AddUnanswered(std::vector<std::string>& labels) const {
  const std::size_t first = labels.size();
  for (const auto& [label, row] : by_label_)
    if (row.expected && !row.met) labels.push_back(row.label);
  std::sort(labels.begin() + static_cast<std::ptrdiff_t>(first), labels.end());
}

}  // namespace ormel
