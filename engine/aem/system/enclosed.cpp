#include "aem/system/enclosed.h"

#include <algorithm>
#include <cmath>

#include "aem/system/arrangement.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

/// Tight edges as pairs of directed ones: 2 e runs along edge e, 2 e + 1 against it.
class Faces {
 public:
  Faces(const System& s, const Arrangement& arrangement) : s_(s), a_(arrangement), leaving_(a_.nodes.size()) {
    for (std::size_t e = 0; e < a_.edges.size(); ++e) {
      if (a_.edges[e].wall < 0 || !IsTight(s_, a_.edges[e].wall)) continue;
      for (int way : {0, 1}) {
        const int directed = 2 * int(e) + way;
        const Complex along = a_.nodes[To(directed)] - a_.nodes[From(directed)];
        leaving_[From(directed)].emplace_back(std::arg(along), directed);
      }
    }
    for (auto& list : leaving_) std::sort(list.begin(), list.end());
  }

  std::vector<Enclosure> All() const {
    std::vector<Enclosure> all;
    std::vector<char> done(2 * a_.edges.size(), 0);
    for (const auto& list : leaving_)
      for (const auto& [angle, first] : list) {
        std::vector<int> walked;
        for (int d = first; done[d] == 0; d = Next(d)) {
          done[d] = 1;
          walked.push_back(d);
        }
        if (Enclosure found; Describe(walked, &found)) all.push_back(std::move(found));
      }
    std::stable_sort(all.begin(), all.end(), [](const Enclosure& a, const Enclosure& b) {
      return SignedArea(a.ring) < SignedArea(b.ring);
    });
    return all;
  }

 private:
  int From(int d) const { return d % 2 == 0 ? a_.edges[d / 2].from : a_.edges[d / 2].to; }
  int To(int d) const { return d % 2 == 0 ? a_.edges[d / 2].to : a_.edges[d / 2].from; }

  /// At its end the edge that lies next clockwise of the way back, so that the region stays on the left.
  int Next(int d) const {
    const auto& list = leaving_[To(d)];
    const auto back =
        std::find_if(list.begin(), list.end(), [&](const auto& l) { return l.second == (d ^ 1); });
    return back == list.begin() ? list.back().second : std::prev(back)->second;
  }

  /// False: the unbounded side of walls, or no area.
  bool Describe(const std::vector<int>& walked, Enclosure* found) const {
    double length = 0.0, longest = 0.0;
    for (int d : walked) {
      const Complex from = a_.nodes[From(d)], along = a_.nodes[To(d)] - from;
      found->ring.push_back(from);
      length += std::abs(along);
      if (std::find(walked.begin(), walked.end(), d ^ 1) != walked.end()) continue;
      found->way.emplace_back(d / 2, d % 2 == 0 ? 1.0 : -1.0);
      const int wall = a_.edges[d / 2].wall;
      if (std::find(found->walls.begin(), found->walls.end(), wall) == found->walls.end())
        found->walls.push_back(wall);
      if (std::abs(along) <= longest) continue;
      longest = std::abs(along);
      found->inside = from + 0.5 * along + 1e-6 * along * Complex{0.0, 1.0};
    }
    return walked.size() > 2 && SignedArea(found->ring) > 0.5 * s_.tolerance * length;
  }

  const System& s_;
  const Arrangement& a_;
  std::vector<std::vector<std::pair<double, int>>> leaving_;  ///< by node: angle and directed edge
};

}  // namespace

bool IsTight(const System& s, int wall) {
  const Wall& w = s.model.walls[wall];
  return w.conductivity == 0.0 || w.kind == WallKind::kKeepInside || w.kind == WallKind::kKeepOutside;
}

std::vector<Enclosure> FindEnclosures(const System& s, const Arrangement& arrangement) {
  return Faces(s, arrangement).All();
}

int EnclosureAt(const std::vector<Enclosure>& enclosures, Complex at) {
  for (std::size_t i = 0; i < enclosures.size(); ++i)
    if (Contains(enclosures[i].ring, at)) return int(i);
  return -1;
}

}  // namespace aem::detail
