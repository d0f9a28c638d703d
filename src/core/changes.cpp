#include "core/changes.h"

#include <algorithm>

#include "text/strings.h"

namespace ormel {

bool ChangeRecord::Touches(std::string_view table) const {
  return std::any_of(rows.begin(), rows.end(),
                     [table](const RowChange& row) { return EqualNoCase(row.table, table); });
}

void ChangeFeed::Subscribe(ChangeListener& listener) {
  listeners_.push_back(&listener);
}

void ChangeFeed::Unsubscribe(ChangeListener& listener) {
  std::erase(listeners_, &listener);
}

void ChangeFeed::Tell(const ChangeRecord& record) const {
  for (ChangeListener* listener : std::vector(listeners_)) listener->CommandEnded(record);
}

}  // namespace ormel
