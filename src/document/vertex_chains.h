// The vertices of strings and domains, read at once.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

class Database;

/// Vertices of one polygon in their order.
std::vector<MapPoint> ChainOf(Database& db, Pid pid);

/// Vertices of all polygons whose `PID` stands in a table: one query for the whole kind.
class VertexChains {
 public:
  VertexChains(Database& db, std::string_view table);
  /// Empty for a polygon without vertices.
  std::span<const MapPoint> Of(Pid pid) const;

  struct Chain {
    Pid pid;
    std::size_t first, count;
  };
  const std::vector<Chain>& chains() const { return chains_; }  ///< by rising `PID`
  std::span<const MapPoint> Points(const Chain& chain) const {
    return {points_.data() + chain.first, chain.count};
  }

 private:
  std::vector<MapPoint> points_;
  std::vector<Chain> chains_;
};

}  // namespace ormel
