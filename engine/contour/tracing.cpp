#include "contour/tracing.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace contour {
namespace {

using EdgeId = std::uint64_t;

/// An edge of the grid that a line crosses inside one cell.  Crossings 2k and 2k + 1 are the two ends of the
/// k-th piece of line.
struct Crossing {
  EdgeId edge = 0;
  std::uint32_t partner = kNone;  ///< the crossing of the same edge in the neighbouring cell
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
};

struct IndexRange {
  long long first = 0, last = -1;  ///< empty when last < first
};

class Tracer {
 public:
  Tracer(const Grid& grid, const Levels& levels) : grid_(grid), levels_(levels) { FindRange(); }

  void Run(const std::function<void(double, const Polyline&)>& line) {
    CountCells();
    // Cells are sorted by level in batches, so that memory stays bounded however many levels a cell holds.
    constexpr std::size_t kBatch = 1u << 24;
    long long first = range_.first;
    while (first <= range_.last) {
      long long last = first;
      std::size_t total = CellsAt(first);
      while (last < range_.last && total + CellsAt(last + 1) <= kBatch) total += CellsAt(++last);
      SortCells({first, last}, total);
      for (long long index = first; index <= last; ++index) TraceLevel(index, first, line);
      first = last + 1;
    }
  }

 private:
  std::size_t Node(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(grid_.columns) +
           static_cast<std::size_t>(column);
  }
  EdgeId HorizontalEdge(int column, int row) const { return 2 * Node(column, row); }
  EdgeId VerticalEdge(int column, int row) const { return 2 * Node(column, row) + 1; }

  /// Index of the first level above `value`, limited to `range`.
  long long FirstAbove(double value, const IndexRange& range) const {
    const double steps = (value - levels_.first) / levels_.interval;
    if (!(steps > static_cast<double>(range.first) - 1.0)) return range.first;
    if (!(steps < static_cast<double>(range.last) + 1.0)) return range.last + 1;
    auto index = static_cast<long long>(std::floor(steps));
    while (index > range.first && levels_.At(index - 1) > value) --index;
    while (index <= range.last && levels_.At(index) <= value) ++index;
    return std::clamp(index, range.first, range.last + 1);
  }

  void FindRange() {
    double low = kBlank, high = -kBlank;
    for (std::size_t node = 0; node < grid_.values.size(); ++node) {
      if (grid_.Blanked(node)) continue;
      low = std::min(low, grid_.values[node]);
      high = std::max(high, grid_.values[node]);
    }
    if (low > high) return;
    const double steps = std::floor((levels_.last - levels_.first) / levels_.interval + 1e-6);
    // Level numbers near the data must be exact whole numbers in a double.
    const double from = std::max(0.0, std::floor((low - levels_.first) / levels_.interval) - 1.0);
    const double to = std::min(steps, std::ceil((high - levels_.first) / levels_.interval) + 1.0);
    if (!(to >= from)) return;
    if (to - from > static_cast<double>(kMostLevels) || to > 1e15) {
      throw ContourError(
          fmt::format("More than {} contour levels lie between the lowest head, {:.6g}, and the "
                      "highest, {:.6g}. Choose a larger contour interval than {:.6g}.",
                      kMostLevels, low, high, levels_.interval));
    }
    range_ = {static_cast<long long>(from), static_cast<long long>(to)};
  }

  std::array<double, 4> Corners(int column, int row) const {
    return {grid_.values[Node(column, row)], grid_.values[Node(column + 1, row)],
            grid_.values[Node(column + 1, row + 1)], grid_.values[Node(column, row + 1)]};
  }

  bool CellBlanked(int column, int row) const {
    return grid_.Blanked(Node(column, row)) || grid_.Blanked(Node(column + 1, row)) ||
           grid_.Blanked(Node(column, row + 1)) || grid_.Blanked(Node(column + 1, row + 1));
  }

  /// Levels that cross the cell: above its lowest corner, not above its highest.
  IndexRange LevelsOf(int column, int row, const IndexRange& within) const {
    if (CellBlanked(column, row)) return {};
    const std::array<double, 4> corner = Corners(column, row);
    const auto [low, high] = std::minmax_element(corner.begin(), corner.end());
    return {FirstAbove(*low, within), FirstAbove(*high, within) - 1};
  }

  template <class Visit>
  void ForEachCell(Visit visit) const {
    for (int row = 0; row + 1 < grid_.rows; ++row) {
      for (int column = 0; column + 1 < grid_.columns; ++column) visit(column, row);
    }
  }

  std::size_t CellsAt(long long index) const {
    return counts_[static_cast<std::size_t>(index - range_.first)];
  }

  /// How many cells each level crosses.
  void CountCells() {
    if (range_.last < range_.first) return;
    std::vector<long long> change(static_cast<std::size_t>(range_.last - range_.first) + 2, 0);
    ForEachCell([&](int column, int row) {
      const IndexRange levels = LevelsOf(column, row, range_);
      if (levels.last < levels.first) return;
      ++change[static_cast<std::size_t>(levels.first - range_.first)];
      --change[static_cast<std::size_t>(levels.last - range_.first) + 1];
    });
    counts_.resize(change.size() - 1);
    long long running = 0;
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      running += change[i];
      counts_[i] = static_cast<std::size_t>(running);
    }
  }

  void SortCells(const IndexRange& batch, std::size_t total) {
    starts_.assign(static_cast<std::size_t>(batch.last - batch.first) + 2, 0);
    for (std::size_t i = 0; i + 1 < starts_.size(); ++i) {
      starts_[i + 1] = starts_[i] + CellsAt(batch.first + static_cast<long long>(i));
    }
    cells_.resize(total);
    std::vector<std::size_t> fill(starts_.begin(), starts_.end() - 1);
    ForEachCell([&](int column, int row) {
      const IndexRange levels = LevelsOf(column, row, range_);
      const long long first = std::max(levels.first, batch.first), last = std::min(levels.last, batch.last);
      for (long long index = first; index <= last; ++index) {
        cells_[fill[static_cast<std::size_t>(index - batch.first)]++] = {column, row};
      }
    });
  }

  void AddPiece(EdgeId from, EdgeId to) {
    crossings_.push_back({from});
    crossings_.push_back({to});
  }

  void AddPieces(int column, int row, double level) {
    const std::array<double, 4> corner = Corners(column, row);
    const std::array<EdgeId, 4> edge = {HorizontalEdge(column, row), VerticalEdge(column + 1, row),
                                        HorizontalEdge(column, row + 1), VerticalEdge(column, row)};
    std::array<EdgeId, 4> crossed{};
    std::size_t count = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      if ((corner[i] >= level) != (corner[(i + 1) % 4] >= level)) crossed[count++] = edge[i];
    }
    if (count == 2) {
      AddPiece(crossed[0], crossed[1]);
    } else if (count == 4) {
      // The corner between edges 3 and 0 is corner 0.  It is cut off when the centre is on the other side.
      const double centre = 0.25 * (corner[0] + corner[1] + corner[2] + corner[3]);
      const bool cut_first = (corner[0] >= level) != (centre >= level);
      AddPiece(edge[3], cut_first ? edge[0] : edge[2]);
      AddPiece(edge[1], cut_first ? edge[2] : edge[0]);
    }
  }

  /// Finds for every crossing the one that continues it in the neighbouring cell.
  void JoinPieces() {
    std::vector<std::uint32_t> order(crossings_.size());
    for (std::uint32_t i = 0; i < order.size(); ++i) order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](std::uint32_t a, std::uint32_t b) { return crossings_[a].edge < crossings_[b].edge; });
    for (std::size_t i = 0; i + 1 < order.size(); ++i) {
      if (crossings_[order[i]].edge != crossings_[order[i + 1]].edge) continue;
      crossings_[order[i]].partner = order[i + 1];
      crossings_[order[i + 1]].partner = order[i];
      ++i;
    }
  }

  Point At(EdgeId edge, double level) const {
    const auto node = static_cast<std::size_t>(edge / 2);
    const bool vertical = edge % 2 == 1;
    const auto columns = static_cast<std::size_t>(grid_.columns);
    const std::size_t column = node % columns, row = node / columns;
    const double a = grid_.values[node], b = grid_.values[vertical ? node + columns : node + 1];
    const double t = std::clamp((level - a) / (b - a), 0.0, 1.0);
    const double dx = (grid_.right - grid_.left) / (grid_.columns - 1);
    const double dy = (grid_.top - grid_.bottom) / (grid_.rows - 1);
    return {grid_.left + dx * (static_cast<double>(column) + (vertical ? 0.0 : t)),
            grid_.bottom + dy * (static_cast<double>(row) + (vertical ? t : 0.0))};
  }

  /// Walks from the crossing `start` into its piece and on until an end or back to the start.
  Polyline Follow(std::uint32_t start, double level, std::vector<bool>& used) const {
    Polyline line = {At(crossings_[start].edge, level)};
    std::uint32_t at = start;
    while (true) {
      used[at / 2] = true;
      const std::uint32_t far = at ^ 1u;
      line.push_back(At(crossings_[far].edge, level));
      at = crossings_[far].partner;
      if (at == Crossing::kNone || used[at / 2]) return line;
    }
  }

  void TraceLevel(long long index, long long batch_first,
                  const std::function<void(double, const Polyline&)>& line) {
    const double level = levels_.At(index);
    crossings_.clear();
    const auto slot = static_cast<std::size_t>(index - batch_first);
    for (std::size_t i = starts_[slot]; i < starts_[slot + 1]; ++i) {
      AddPieces(cells_[i].first, cells_[i].second, level);
    }
    JoinPieces();
    std::vector<bool> used(crossings_.size() / 2, false);
    // Open lines first, from one of their ends; what is left then is closed.
    for (const bool open : {true, false}) {
      for (std::uint32_t i = 0; i < crossings_.size(); ++i) {
        if (used[i / 2] || (open && crossings_[i].partner != Crossing::kNone)) continue;
        line(level, Follow(i, level, used));
      }
    }
  }

  const Grid& grid_;
  const Levels& levels_;
  IndexRange range_;
  std::vector<std::size_t> counts_;  ///< cells crossed, by level
  std::vector<std::size_t> starts_;  ///< of the batch: where a level's cells begin in cells_
  std::vector<std::pair<int, int>> cells_;
  std::vector<Crossing> crossings_;
};

}  // namespace

void TraceContours(const Grid& grid, const Levels& levels,
                   const std::function<void(double level, const Polyline& line)>& line) {
  Tracer(grid, levels).Run(line);
}

}  // namespace contour
