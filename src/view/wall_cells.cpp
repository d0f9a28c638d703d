#include "view/wall_cells.h"

#include <algorithm>
#include <cmath>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "document/vertex_chains.h"
#include "solver/result_files.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// Two numbers of a line of a grid's head.
bool ReadPair(LineReader& reader, double& a, double& b) {
  std::string line;
  if (!reader.Next(line)) return false;
  std::vector<std::string> items;
  for (std::string& item : ParseString(line, ' '))
    if (!item.empty()) items.push_back(std::move(item));
  if (items.size() < 2) return false;
  a = Val(items[0]);
  b = Val(items[1]);
  return std::isfinite(a) && std::isfinite(b);
}

}  // namespace

WallCells::WallCells(Ormel& ormel, const std::string& stem) {
  if (ormel.db().RowCount("NoFlowStrings") == 0) return;
  if (!ReadGrid(ormel, ResultFileName(ormel, stem, ".GRD"))) return;
  const VertexChains chains(ormel.db(), "NoFlowStrings");
  RowReader rows(ormel.db(), "select PID,Closed from NoFlowStrings");
  while (rows.Next()) {
    const auto points = chains.Of(rows.Long(0));
    for (std::size_t i = 1; i < points.size(); ++i) AddWall(points[i - 1], points[i]);
    if (rows.Long(1) != 0 && points.size() > 2) AddWall(points.back(), points.front());
  }
}

/// Only the head: the first four lines.
bool WallCells::ReadGrid(const Ormel& ormel, const std::string& file) {
  if (!FileExists(file)) return false;
  LineReader reader(file);
  std::string kind;
  double columns = 0.0, rows = 0.0, x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
  const bool read = reader.Next(kind) && ReadPair(reader, columns, rows) && ReadPair(reader, x1, x2) &&
                    ReadPair(reader, y1, y2);
  if (!read || columns < 2.0 || rows < 2.0 || !(x1 < x2) || !(y1 < y2)) return false;
  corner_ = MToW(ormel, ModelPoint{x1, y1});
  width_ = (x2 - x1) / (columns - 1.0) / BasemapConvert(ormel);
  height_ = (y2 - y1) / (rows - 1.0) / BasemapConvert(ormel);
  return width_ > 0.0 && height_ > 0.0;
}

std::uint64_t WallCells::CellOf(MapPoint at) const {
  const auto place = [](double from, double to, double size) {
    const double cell = std::clamp(std::floor((to - from) / size), -1e9, 1e9);
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(cell));
  };
  return (static_cast<std::uint64_t>(place(corner_.x, at.x, width_)) << 32U) |
         place(corner_.y, at.y, height_);
}

/// Walks the wall in steps of an eighth of a cell, at most a million of them.
void WallCells::AddWall(MapPoint from, MapPoint to) {
  const double steps = 8.0 * std::max(std::abs(to.x - from.x) / width_, std::abs(to.y - from.y) / height_);
  if (!std::isfinite(steps)) return;
  const int count = static_cast<int>(std::clamp(std::ceil(steps), 1.0, 1e6));
  for (int i = 0; i <= count; ++i) {
    const double part = static_cast<double>(i) / count;
    cells_.insert(CellOf({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part}));
  }
}

}  // namespace ormel
