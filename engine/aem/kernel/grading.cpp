#include "aem/kernel/grading.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

namespace {

constexpr double kRatio = 0.2;  ///< each part towards a corner is this much of the one before

/// Number of divisions that a corner asks for: the sharper, the stronger is its singularity.
int Levels(EndShape e) {
  if (e.tip) return 0;
  const double turn = std::abs(e.turn);
  if (turn < 0.03) return 0;
  if (turn < 0.2) return 1;
  if (turn < 0.7) return 2;
  return turn < 1.9 ? 3 : 5;
}

std::vector<Part> Halved(const std::vector<Part>& parts) {
  std::vector<Part> halves;
  for (const Part& part : parts) {
    const double middle = 0.5 * (part.start + part.end);
    halves.push_back({part.start, middle, part.tip_at_start, false});
    halves.push_back({middle, part.end, false, part.tip_at_end});
  }
  return halves;
}

}  // namespace

std::vector<Part> Divide(EndShape start, EndShape end, const Order& order, double smallest) {
  const int most =
      smallest > 0.0 ? std::max(0, int(std::log(2.0 * std::min(smallest, 0.5)) / std::log(kRatio))) : 99;
  constexpr int kToPower = 4;
  const auto levels = [&](EndShape e) {
    if (e.power > 0.0) return std::min(kToPower, most);
    const int asked = Levels(e);
    return asked > 0 ? std::min({order.divisions, asked + order.beyond, most}) : 0;
  };
  const int left = levels(start), right = levels(end);
  std::vector<double> cuts{0.0};
  const bool both = (left > 0 || start.tip) && (right > 0 || end.tip);
  const double reach_left = both ? 0.5 : 1.0, reach_right = both ? 0.5 : 1.0;
  for (int k = left; k >= 1; --k) cuts.push_back(reach_left * std::pow(kRatio, k) * (both ? 1.0 : 1.5));
  if (both) cuts.push_back(0.5);
  for (int k = 1; k <= right; ++k)
    cuts.push_back(1.0 - reach_right * std::pow(kRatio, k) * (both ? 1.0 : 1.5));
  cuts.push_back(1.0);
  std::vector<Part> parts;
  for (std::size_t i = 0; i + 1 < cuts.size(); ++i) parts.push_back({cuts[i], cuts[i + 1], false, false});
  parts.front().tip_at_start = start.tip;
  parts.back().tip_at_end = end.tip;
  for (int k = 0; k < order.halvings && smallest < 0.1; ++k) parts = Halved(parts);
  return parts;
}

}  // namespace aem::detail
