// The coarse level: mean densities of line-sinks by clusters, and the constant.
#include <algorithm>
#include <cmath>
#include <queue>

#include "aem/influence/preconditioner.h"

namespace aem::detail {

namespace {
/// Clusters: the more there are, the fewer steps; their system is factorised.
std::size_t Clusters(std::size_t unknowns) {
  return std::clamp<std::size_t>(unknowns / 12, 400, 1800);
}

/// The potential of a cluster far away, by the terms that a preconditioner needs.
double FarPotential(const Series& outer, const Disc& disc, Complex at) {
  constexpr int kOrder = 6;
  const Complex d = at - disc.centre, q = disc.radius / d;
  Complex value{};
  for (int k = kOrder; k >= 1; --k) value = (value + outer[k]) * q;
  return value.real() + outer[0].real() * 0.5 * std::log(std::norm(d));
}

}  // namespace

void Preconditioner::ChooseCoarse(const EquationParts& p) {
  const auto& nodes = p.tree.Nodes();
  const auto& sources = p.tree.Sources();
  const auto size = [&](int n) { return nodes[n].last - nodes[n].first; };
  const auto smaller = [&](int a, int b) { return size(a) < size(b); };
  std::priority_queue<int, std::vector<int>, decltype(smaller)> open(smaller);
  open.push(0);
  coarse_of_node_.assign(nodes.size(), -1);
  std::vector<int>& clusters = clusters_;
  const std::size_t most = Clusters(p.system.x.size());
  while (!open.empty()) {
    const int n = open.top();
    open.pop();
    if (nodes[n].child < 0 || open.size() + clusters.size() + 2 > most)
      clusters.push_back(n);
    else
      for (int k = 0; k < 2; ++k) open.push(nodes[n].child + k);
  }
  coarse_ = 1;
  for (int n : clusters) coarse_of_node_[n] = coarse_++;
  for (std::size_t n = 0; n < nodes.size(); ++n)  // children stand behind their parents
    for (int k = 0; k < 2 && nodes[n].child >= 0 && coarse_of_node_[n] >= 0; ++k)
      coarse_of_node_[nodes[n].child + k] = coarse_of_node_[n];
  coarse_of_unknown_.assign(p.system.x.size(), -1);
  coarse_of_unknown_[0] = 0;
  mean_strengths_.assign(sources.size(), -1);
  for (std::size_t i = 0; i < sources.size(); ++i) {
    if (sources[i].kind != SourceTree::Source::Kind::kPiece ||
        p.system.pieces[sources[i].index].kind != PieceKind::kSink)
      continue;
    for (const Term& t : p.system.terms[sources[i].index])
      if (t.coefficient[0] == 1.0) {
        coarse_of_unknown_[t.unknown] = coarse_of_node_[p.tree.LeafOf(int(i))];
        mean_strengths_[i] = sources[i].first;
      }
  }
}

double Preconditioner::CoarseTest(const EquationParts& p, int q, double* value) const {
  const LocalRow& local = p.local[q];
  for (int i = 0; i < local.count; ++i)
    if (coarse_of_unknown_[local.unknown[i]] > 0) {
      *value = local.value[i];
      return p.system.controls[q].weight * local.test[i];
    }
  return 0.0;
}

/// What is no influence over a distance: the constant, the strengths at the control points, and the equation
/// of the reference point.
void Preconditioner::AddOwnCoarse(const EquationParts& p, std::vector<double>* matrix) const {
  for (std::size_t q = 0; q < p.local.size(); ++q) {
    const Linearised& l = p.linear[q];
    if (p.local[q].unknown[0] == 0) {
      (*matrix)[0] += l.a + l.b;
      if (l.coupled >= 0)
        for (const auto& [i, c] : p.system.carried_terms[l.coupled])
          if (coarse_of_unknown_[i] > 0) (*matrix)[coarse_of_unknown_[i]] += l.scale * c;
      for (std::size_t i = 1; i < p.reference_row.size(); ++i)
        if (coarse_of_unknown_[i] > 0) (*matrix)[coarse_of_unknown_[i]] += l.a * p.reference_row[i];
      continue;
    }
    double value = 0.0;
    const double weight = CoarseTest(p, int(q), &value);
    if (weight == 0.0) continue;
    for (int i = 0; i < p.local[q].count; ++i)
      if (const int c = coarse_of_unknown_[p.local[q].unknown[i]]; c > 0) {
        (*matrix)[std::size_t(c) * coarse_] += weight * l.a;
        (*matrix)[std::size_t(c) * coarse_ + c] += weight * l.b * value;
      }
  }
}

void Preconditioner::PairLeaves(const EquationParts& p, int leaf, std::vector<double>* matrix) const {
  const auto& nodes = p.tree.Nodes();
  const SourceTree::Node& node = nodes[leaf];
  const int first = p.tree.FirstControl(node), rows = p.tree.LastControl(node) - first;
  std::vector<double> weight(rows);
  double value = 0.0;
  for (int r = 0; r < rows; ++r) {
    const int q = p.tree.ControlOrder()[first + r];
    weight[r] = CoarseTest(p, q, &value) * p.linear[q].a;
  }
  double* row = matrix->data() + std::size_t(coarse_of_node_[leaf]) * coarse_;
  for (std::size_t k = 0; k < node.near.size(); ++k) {
    const SourceTree::Node& other = nodes[node.near[k]];
    const double* block = p.tree.NearBlock(leaf, k);
    double sum = 0.0;
    for (int i = other.first; i < other.last; ++i) {
      if (mean_strengths_[i] < 0) continue;
      const double* column = block + std::size_t(mean_strengths_[i] - p.tree.FirstStrength(other)) * rows;
      for (int r = 0; r < rows; ++r) sum += weight[r] * column[r];
    }
    row[coarse_of_node_[node.near[k]]] += sum;
  }
}

void Preconditioner::PairCoarse(const EquationParts& p, int a, int b, bool separated,
                                std::vector<double>* matrix) const {
  const auto& nodes = p.tree.Nodes();
  separated = separated || (a != b && Separated(nodes[a].disc, nodes[b].disc));
  const bool low_a = coarse_of_node_[a] >= 0, low_b = coarse_of_node_[b] >= 0;
  if (separated && low_a && low_b) {
    if (mean_[a].weight != 0.0)
      (*matrix)[std::size_t(coarse_of_node_[a]) * coarse_ + coarse_of_node_[b]] +=
          mean_[a].weight * FarPotential(outer_[b], nodes[b].disc, mean_[a].centre);
    return;
  }
  const bool leaf_a = nodes[a].child < 0, leaf_b = nodes[b].child < 0;
  if (leaf_a && leaf_b) return;  // near: PairLeaves
  const bool divide_a =
      separated ? !low_a : leaf_b || (!leaf_a && nodes[a].disc.radius >= nodes[b].disc.radius);
  for (int k = 0; k < 2; ++k)
    divide_a ? PairCoarse(p, nodes[a].child + k, b, separated, matrix)
             : PairCoarse(p, a, nodes[b].child + k, separated, matrix);
}

void Preconditioner::FactorCoarse(const EquationParts& p) {
  const auto& nodes = p.tree.Nodes();
  outer_.assign(nodes.size(), Series{});
  mean_.assign(nodes.size(), {});
  for (std::size_t n = nodes.size(); n-- > 0;) {
    if (coarse_of_node_[n] < 0) continue;
    Mean& mean = mean_[n];
    const auto add = [&](double weight, Complex centre) {
      mean.weight += weight;
      mean.centre += weight * centre;
    };
    if (nodes[n].child < 0) {
      for (int i = nodes[n].first; i < nodes[n].last; ++i)
        if (mean_strengths_[i] >= 0)
          for (int k = 0; k <= kTerms; ++k) outer_[n][k] += p.tree.Outer(mean_strengths_[i])[k];
      double value = 0.0;
      for (int r = p.tree.FirstControl(nodes[n]); r < p.tree.LastControl(nodes[n]); ++r) {
        const int q = p.tree.ControlOrder()[r];
        add(CoarseTest(p, q, &value) * p.linear[q].a, p.system.controls[q].at);
      }
    } else {
      for (int child : {nodes[n].child, nodes[n].child + 1}) {
        Lift(outer_[child], nodes[child].disc, nodes[n].disc, &outer_[n]);
        add(mean_[child].weight, mean_[child].centre);
      }
    }
    mean.centre = mean.weight != 0.0 ? mean.centre / mean.weight : nodes[n].disc.centre;
  }
  std::vector<double> matrix(std::size_t(coarse_) * coarse_, 0.0);
  AddOwnCoarse(p, &matrix);
  // Rows belong to one cluster each.  Whether a pair at the brink of separation is met as near or far may
  // differ from the tree's own lists, which for a preconditioner is all the same.
  ParallelFor(threads_, clusters_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t c = begin; c < end; ++c) {
      std::vector<int> open{clusters_[c]};
      while (!open.empty()) {
        const int n = open.back();
        open.pop_back();
        if (nodes[n].child < 0)
          PairLeaves(p, n, &matrix);
        else
          open.insert(open.end(), {nodes[n].child, nodes[n].child + 1});
      }
      PairCoarse(p, clusters_[c], 0, false, &matrix);
    }
  });
  for (int c = 0; c < coarse_; ++c) {
    const double* row = matrix.data() + std::size_t(c) * coarse_;
    if (std::all_of(row, row + coarse_, [](double v) { return v == 0.0; }))
      matrix[std::size_t(c) * coarse_ + c] = 1.0;
  }
  SetDenseThreads(coarse_ < 700 ? 1 : threads_);
  factors_.Factor(std::move(matrix), std::size_t(coarse_));
}

}  // namespace aem::detail
