// The vertices of all polygons, read once.
#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "core/types.h"

namespace ormel {

class Database;

struct StringVertex {
  Seq seq = 0;
  MapPoint at;
};

class VertexTable {
 public:
  explicit VertexTable(Database& db);
  /// The vertices of a polygon by `Seq`; empty when it has none.  Valid as long as the table.
  std::span<const StringVertex> Of(Pid pid) const;

 private:
  struct Range {
    std::size_t first = 0, count = 0;
  };
  std::vector<StringVertex> vertices_;
  std::unordered_map<Pid, Range> ranges_;
};

}  // namespace ormel
