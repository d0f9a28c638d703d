#include "document/vertex_chains.h"

#include <algorithm>
#include <string>

#include "store/bulk.h"
#include "store/database.h"

namespace ormel {

std::vector<MapPoint> ChainOf(Database& db, Pid pid) {
  std::vector<MapPoint> points;
  RowReader rows(db, "select X,Y from Vertices where PID=? order by Seq", {pid});
  while (rows.Next()) points.push_back({rows.Double(0), rows.Double(1)});
  return points;
}

VertexChains::VertexChains(Database& db, std::string_view table) {
  RowReader rows(db, "select PID,X,Y from Vertices where PID in (select PID from " + std::string(table) +
                         ") order by PID,Seq");
  while (rows.Next()) {
    const Pid pid = rows.Long(0);
    if (chains_.empty() || chains_.back().pid != pid) chains_.push_back({pid, points_.size(), 0});
    points_.push_back({rows.Double(1), rows.Double(2)});
    ++chains_.back().count;
  }
}

std::span<const MapPoint> VertexChains::Of(Pid pid) const {
  const auto it = std::lower_bound(chains_.begin(), chains_.end(), pid,
                                   [](const Chain& chain, Pid wanted) { return chain.pid < wanted; });
  if (it == chains_.end() || it->pid != pid) return {};
  return Points(*it);
}

}  // namespace ormel
