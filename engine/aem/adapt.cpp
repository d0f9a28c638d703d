// The order of each line: as high as its own errors ask for.
//
// There are more control points than unknowns, and the conditions hold in the mean; by how much they fail at
// the points themselves tells, without further evaluation, where the strength asks for more than its
// polynomial gives.  Small models begin with full order.
#include <algorithm>
#include <cmath>

#include "aem/influence/influence.h"
#include "aem/system/equations.h"
#include "aem/system/strings.h"

namespace aem::detail {

namespace {

constexpr std::size_t kSmall = 40;          ///< lines up to which all have full order at least
constexpr std::size_t kUnknowns = 700'000;  ///< what some 4 GiB hold
/// The largest error of head between control points by the largest defect at them, as measured; at most.
constexpr double kAlongSinks = 1.0, kAlongEdges = 3.0;

std::size_t Lines(const Model& m) {
  std::size_t count = 0;
  for (const LineSinkString& s : m.line_sinks) count += s.segments.size();
  for (const Domain& d : m.domains) count += d.ring.size();
  return count;
}

/// Difference of head by which a condition fails at a control point [L]; 0 where it says nothing of heads.
double HeadDefect(const Control& c, const Linearised& l, double field, double strength) {
  const double defect = std::abs(l.a * field + l.b * strength - l.r);
  switch (c.condition) {
    case Condition::kHead:
    case Condition::kResistance:
      return l.a == 0.0 ? 0.0 : defect / c.zone.Slope(field);
    case Condition::kEdge: {
      const double left = c.zone.Slope(field + 0.5 * strength), right = c.right.Slope(field - 0.5 * strength);
      return defect * (left + right) / (left * right);
    }
    default:
      return 0.0;
  }
}

struct Defects {
  std::vector<std::vector<double>> of_segment;
  std::vector<double> of_edge;
};

Defects Largest(const System& s, const std::vector<Linearised>& linear, const std::vector<double>& field,
                const std::vector<double>& strength) {
  Defects d;
  for (const LineSinkString& string : s.model.line_sinks)
    d.of_segment.emplace_back(string.segments.size(), 0.0);
  d.of_edge.assign(s.edges.size(), 0.0);
  for (std::size_t q = 0; q < s.controls.size(); ++q) {
    const Control& c = s.controls[q];
    if (c.piece < 0 || s.owners[c.piece].law) continue;  // a higher order leaves a law as it is
    const PieceOwner& o = s.owners[c.piece];
    double& largest = o.edge >= 0 ? d.of_edge[o.edge] : d.of_segment[o.string][o.segment];
    largest = std::max(largest, HeadDefect(c, linear[q], field[q], strength[q]));
  }
  return d;
}

/// Levels up: one, and one more for every factor of four beyond what is allowed.
bool Raise(double defect, double allowed, unsigned char* order) {
  if (defect <= allowed || *order >= kHighestOrder) return false;
  const int steps = 1 + int(0.5 * std::log2(std::min(defect / allowed, 1e4)));
  *order = static_cast<unsigned char>(std::min(kHighestOrder, *order + steps));
  return true;
}

double HeadRangeAtControls(const System& s, const std::vector<double>& field,
                           const std::vector<double>& strength) {
  double low = 1e300, high = -1e300;
  for (std::size_t q = 0; q < s.controls.size(); ++q) {
    const Control& c = s.controls[q];
    if (!TellsHead(c.condition)) continue;
    const bool both = c.condition == Condition::kEdge || c.condition == Condition::kWallHead;
    const double head = c.zone.Head(both ? field[q] + 0.5 * strength[q] : field[q]);
    low = std::min(low, head);
    high = std::max(high, head);
  }
  return std::max(high - low, 0.0);
}

}  // namespace

void System::StartOrders() {
  const std::size_t lines = Lines(model);
  orders.start = lines <= kSmall ? kFullOrder : lines <= 10 * kSmall ? 1 : 0;
  orders.of_segment.clear();
  for (const LineSinkString& s : model.line_sinks)
    orders.of_segment.emplace_back(s.segments.size(), static_cast<unsigned char>(orders.start));
  orders.of_edge.clear();
}

std::vector<unsigned char> System::SaveOrders() const {
  std::vector<unsigned char> all;
  for (const auto& list : orders.of_segment) all.insert(all.end(), list.begin(), list.end());
  all.insert(all.end(), orders.of_edge.begin(), orders.of_edge.end());
  return all;
}

bool System::LoadOrders(const std::vector<unsigned char>& all) {
  Orders next = orders;
  std::size_t count = next.of_edge.size();
  for (const auto& list : next.of_segment) count += list.size();
  if (all.size() != count ||
      std::any_of(all.begin(), all.end(), [](unsigned char o) { return o > kHighestOrder; }))
    return false;
  auto from = all.begin();
  const auto take = [&](std::vector<unsigned char>* list) {
    std::copy_n(from, list->size(), list->begin());
    from += std::ptrdiff_t(list->size());
  };
  for (auto& list : next.of_segment) take(&list);
  take(&next.of_edge);
  orders = std::move(next);
  return true;
}

bool System::RaiseOrders(const std::vector<Linearised>& linear, const std::vector<double>& field,
                         const std::vector<double>& strength) {
  if (x.size() > kUnknowns) return false;
  const double allowed = options.accuracy * HeadRangeAtControls(*this, field, strength);
  const Defects defects = Largest(*this, linear, field, strength);
  // What is hardly beyond is raised with the rest, but is not worth another solution by itself.
  constexpr double kWorth = 2.0;
  bool worth = false;
  Orders next = orders;
  const auto raise = [&](double defect, unsigned char* order) {
    const bool raised = Raise(defect, allowed, order);
    worth = worth || (raised && defect > kWorth * allowed);
  };
  for (std::size_t k = 0; k < defects.of_segment.size(); ++k)
    for (std::size_t i = 0; i < defects.of_segment[k].size(); ++i)
      raise(kAlongSinks * defects.of_segment[k][i], &next.of_segment[k][i]);
  for (std::size_t e = 0; e < defects.of_edge.size(); ++e)
    raise(kAlongEdges * defects.of_edge[e], &next.of_edge[e]);
  if (worth) orders = std::move(next);
  return worth;
}

}  // namespace aem::detail
