#include "view/vg_clip.h"

namespace ormel::clip {
namespace {

using Spot = VgGdi::Spot;

/// One side of the box: the coordinate it bounds, its value and the side that stays.
struct Side {
  double Spot::*coordinate;
  double bound;
  bool keep_above;
  bool Inside(Spot p) const { return keep_above ? p.*coordinate >= bound : p.*coordinate <= bound; }
  Spot Cross(Spot a, Spot b) const {
    const double t = (bound - a.*coordinate) / (b.*coordinate - a.*coordinate);
    Spot p{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    p.*coordinate = bound;
    return p;
  }
};

std::vector<Spot> CutSide(const Side& side, const std::vector<Spot>& area) {
  std::vector<Spot> result;
  result.reserve(area.size() + 4);
  for (std::size_t i = 0; i < area.size(); ++i) {
    const Spot a = area[i == 0 ? area.size() - 1 : i - 1];
    const Spot b = area[i];
    if (side.Inside(a) != side.Inside(b)) result.push_back(side.Cross(a, b));
    if (side.Inside(b)) result.push_back(b);
  }
  return result;
}

}  // namespace

std::optional<std::pair<Spot, Spot>> Segment(const Box& box, Spot a, Spot b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double step[4] = {-dx, dx, -dy, dy};
  const double room[4] = {a.x - box.left, box.right - a.x, a.y - box.top, box.bottom - a.y};
  double first = 0.0, last = 1.0;
  for (int side = 0; side < 4; ++side) {
    if (step[side] == 0.0) {
      if (room[side] < 0.0) return std::nullopt;
      continue;
    }
    const double t = room[side] / step[side];
    if (step[side] < 0.0)
      first = t > first ? t : first;
    else
      last = t < last ? t : last;
  }
  if (first > last) return std::nullopt;
  return std::pair{Spot{a.x + dx * first, a.y + dy * first}, Spot{a.x + dx * last, a.y + dy * last}};
}

std::vector<Spot> Area(const Box& box, std::vector<Spot> area) {
  const Side sides[] = {{&Spot::x, box.left, true},
                        {&Spot::x, box.right, false},
                        {&Spot::y, box.top, true},
                        {&Spot::y, box.bottom, false}};
  for (const Side& side : sides) area = CutSide(side, area);
  return area;
}

}  // namespace ormel::clip
