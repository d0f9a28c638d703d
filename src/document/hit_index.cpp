#include "document/hit_index.h"

#include <iterator>
#include <limits>
#include <vector>

#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/strings.h"

namespace ormel {

void HitIndex::Read(Ormel& ormel) {
  const std::uint64_t changes = ormel.db().change_count();
  // Within a command its changes may have been undone since: a rollback counts as no change.
  const bool same = read_ && connection_ == ormel.project.connections && changes_ == changes;
  if (same && !within_a_command_) return;
  within_a_command_ = within_a_command_ || (read_ && changes_ != changes);
  std::vector<Place> places;
  RowReader rows(ormel.db(), "select X,VID,Y from Vertices order by X,VID");
  while (rows.Next()) places.push_back({rows.Double(0), rows.Long(1), rows.Double(2)});
  places_ = std::set<Place>(places.begin(), places.end());
  read_ = true;
  connection_ = ormel.project.connections;
  changes_ = changes;
}

HitIndex::Hit HitIndex::Nearest(Ormel& ormel, MapPoint at) {
  Read(ormel);
  Hit best{-1, std::numeric_limits<double>::infinity()};
  const auto farther = [&](const Place& place) {
    const double dx = place.x - at.x;
    return dx * dx > best.distance_squared;
  };
  const auto look = [&](const Place& place) {
    const double dx = at.x - place.x, dy = at.y - place.y;
    const double distance = dx * dx + dy * dy;
    if (distance < best.distance_squared || (distance == best.distance_squared && place.vid < best.vid))
      best = {place.vid, distance};
  };
  const auto middle = places_.lower_bound({at.x, std::numeric_limits<Vid>::min(), 0.0});
  auto right = middle, left = middle;
  bool go_right = true, go_left = true;
  while (go_right || go_left) {
    go_right = go_right && right != places_.end() && !farther(*right);
    if (go_right) look(*right++);
    go_left = go_left && left != places_.begin() && !farther(*std::prev(left));
    if (go_left) look(*--left);
  }
  return best;
}

void HitIndex::Follow(const Ormel& ormel, const ChangeRecord& record) {
  read_ = read_ && !record.project_replaced && !within_a_command_;
  within_a_command_ = false;
  if (!read_) return;
  changes_ = ormel.db().change_count();
  for (const RowChange& change : record.rows) {
    if (!EqualNoCase(change.table, "Vertices")) continue;
    const auto place = [&](bool before) {
      return Place{change.Field("X", before).AsDouble(), change.row, change.Field("Y", before).AsDouble()};
    };
    if (change.before) places_.erase(place(true));
    if (change.after) places_.insert(place(false));
  }
}

}  // namespace ormel
