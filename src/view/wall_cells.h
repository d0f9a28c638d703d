// Where contours break: the cells of a run's grid that a wall passes through.
//
// A grid has one head a node.  Between two nodes on either side of a wall the head jumps, and all contours
// between the two heads run side by side along the wall, where there are none.  In such a cell nothing that
// comes from the grid can be believed, so that nothing is drawn there.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_set>

#include "core/types.h"

namespace ormel {

struct Ormel;

class WallCells {
 public:
  /// Walls are the barriers of the project; the cells are those of "<stem>.GRD".  Without either it is empty.
  WallCells(Ormel& ormel, const std::string& stem);

  bool empty() const { return cells_.empty(); }
  double CellSize() const { return std::max(width_, height_); }  ///< [map units]
  bool Holds(MapPoint at) const { return cells_.count(CellOf(at)) != 0; }

 private:
  std::uint64_t CellOf(MapPoint at) const;
  bool ReadGrid(const Ormel& ormel, const std::string& file);
  void AddWall(MapPoint from, MapPoint to);

  MapPoint corner_;
  double width_ = 0.0, height_ = 0.0;  ///< of a cell [map units]
  std::unordered_set<std::uint64_t> cells_;
};

}  // namespace ormel
