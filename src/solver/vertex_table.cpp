#include "solver/vertex_table.h"

#include "store/bulk.h"
#include "store/database.h"

namespace ormel {

VertexTable::VertexTable(Database& db) {
  RowReader rows(db, "select PID,Seq,X,Y from Vertices where PID>=0 order by PID,Seq,VID");
  while (rows.Next()) {
    Range& range = ranges_[rows.Long(0)];
    if (range.count == 0) range.first = vertices_.size();
    ++range.count;
    vertices_.push_back({rows.Long(1), {rows.Double(2), rows.Double(3)}});
  }
}

std::span<const StringVertex> VertexTable::Of(Pid pid) const {
  const auto found = ranges_.find(pid);
  if (found == ranges_.end()) return {};
  return std::span(vertices_).subspan(found->second.first, found->second.count);
}

}  // namespace ormel
