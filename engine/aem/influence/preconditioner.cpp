#include "aem/influence/preconditioner.h"

#include <algorithm>
#include <cmath>

#include "aem/kernel/vectors.h"

namespace aem::detail {

namespace {
constexpr std::size_t kBlockUnknowns = 120;  ///< of a cluster
constexpr std::size_t kRingUnknowns = 800;
constexpr std::size_t kOverlap = 120;  ///< and around it

void AddLeaves(const std::vector<SourceTree::Node>& nodes, int node, std::vector<int>* leaves) {
  if (nodes[node].child < 0) {
    leaves->push_back(node);
    return;
  }
  for (int k = 0; k < 2; ++k) AddLeaves(nodes, nodes[node].child + k, leaves);
}
}  // namespace

Preconditioner::Preconditioner(const EquationParts& p) : threads_(p.system.options.threads) {
  scale_.assign(p.system.x.size(), 1.0);
  FindOwners(p);
  ChooseRings(p);
  ChooseBlocks(p);
  SetDenseThreads(1);
  ParallelFor(threads_, blocks_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) Invert(p, &blocks_[i]);
  });
  for (Block& block : blocks_)
    for (std::size_t j = 0; j < block.unknowns.size(); ++j) {
      const float unscaled = float(1.0 / scale_[block.unknowns[j]]);
      for (std::size_t i = 0; i < block.own; ++i) block.inverse[j * block.own + i] *= unscaled;
    }
  ScaleReference(p);
  ChooseCoarse(p);
  FactorCoarse(p);
}

void Preconditioner::FindOwners(const EquationParts& p) {
  const System& s = p.system;
  const auto& sources = p.tree.Sources();
  owner_.assign(s.x.size(), -1);
  owned_.resize(sources.size());
  const auto own = [&](int unknown, std::size_t source) {
    if (owner_[unknown] >= 0) {
      const int leaf = p.tree.LeafOf(int(source));
      if (leaf != p.tree.LeafOf(owner_[unknown])) beyond_[unknown].push_back(leaf);
      return;
    }
    owner_[unknown] = int(source);
    owned_[source].push_back(unknown);
  };
  using Kind = SourceTree::Source::Kind;
  for (std::size_t i = 0; i < sources.size(); ++i) switch (sources[i].kind) {
      case Kind::kPiece:
        for (const Term& t : s.terms[sources[i].index]) own(t.unknown, i);
        break;
      case Kind::kWell:
        own(s.wells[sources[i].index].unknown, i);
        break;
      case Kind::kPartialWell:
        own(s.partial_wells[sources[i].index].unknown, i);
        break;
      case Kind::kDisk:
        own(s.disks[sources[i].index].unknown, i);
        break;
    }
}

void Preconditioner::ChooseRings(const EquationParts& p) {
  const System& s = p.system;
  in_ring_.assign(s.x.size(), 0);
  std::vector<std::vector<int>> unknowns(s.rings.size());
  for (const JumpEdge& edge : s.edges) {
    if (edge.wall >= 0 || edge.domain < 0) continue;
    for (int piece : edge.pieces)
      for (const Term& t : s.terms[piece])
        if (in_ring_[t.unknown] == 0) {
          in_ring_[t.unknown] = 1;
          unknowns[edge.domain].push_back(t.unknown);
        }
  }
  for (std::vector<int>& ring : unknowns) {
    if (ring.empty()) continue;
    if (ring.size() > kRingUnknowns) {
      for (int unknown : ring) in_ring_[unknown] = 0;
      continue;
    }
    Block block;
    for (int unknown : ring) block.leaves.push_back(p.tree.LeafOf(owner_[unknown]));
    std::sort(block.leaves.begin(), block.leaves.end());
    block.leaves.erase(std::unique(block.leaves.begin(), block.leaves.end()), block.leaves.end());
    block.own = ring.size();
    block.unknowns = std::move(ring);
    Complete(&block);
    blocks_.push_back(std::move(block));
  }
}

void Preconditioner::ChooseBlocks(const EquationParts& p) {
  const auto& nodes = p.tree.Nodes();
  std::vector<int> open{0};
  while (!open.empty()) {
    const int n = open.back();
    open.pop_back();
    std::size_t count = 0;
    for (int i = nodes[n].first; i < nodes[n].last; ++i) count += owned_[i].size();
    if (count == 0) continue;
    if (count > kBlockUnknowns && nodes[n].child >= 0) {
      open.push_back(nodes[n].child);
      open.push_back(nodes[n].child + 1);
      continue;
    }
    Block block;
    AddLeaves(nodes, n, &block.leaves);
    for (int leaf : block.leaves) AddUnknowns(p, leaf, &block);
    const auto own = std::stable_partition(block.unknowns.begin(), block.unknowns.end(),
                                           [&](int unknown) { return in_ring_[unknown] == 0; });
    block.own = std::size_t(own - block.unknowns.begin());
    if (block.own == 0) continue;
    Complete(&block);
    Overlap(p, &block);
    blocks_.push_back(std::move(block));
  }
}

void Preconditioner::Complete(Block* block) const {
  for (std::size_t i = 0; i < block->own; ++i)
    if (const auto found = beyond_.find(block->unknowns[i]); found != beyond_.end())
      for (int leaf : found->second)
        if (std::find(block->leaves.begin(), block->leaves.end(), leaf) == block->leaves.end())
          block->leaves.push_back(leaf);
}

bool Preconditioner::Within(int unknown, const Block& block) const {
  const auto found = beyond_.find(unknown);
  return found == beyond_.end() || std::all_of(found->second.begin(), found->second.end(), [&](int leaf) {
           return std::find(block.leaves.begin(), block.leaves.end(), leaf) != block.leaves.end();
         });
}

void Preconditioner::AddUnknowns(const EquationParts& p, int leaf, Block* block) const {
  const SourceTree::Node& node = p.tree.Nodes()[leaf];
  for (int i = node.first; i < node.last; ++i)
    block->unknowns.insert(block->unknowns.end(), owned_[i].begin(), owned_[i].end());
}

/// The leaves nearest to the cluster, as many as the block may hold.
void Preconditioner::Overlap(const EquationParts& p, Block* block) const {
  const auto& nodes = p.tree.Nodes();
  std::vector<std::pair<double, int>> around_it;
  for (int leaf : block->leaves)
    for (int other : nodes[leaf].near) {
      const Disc &a = nodes[leaf].disc, &b = nodes[other].disc;
      around_it.emplace_back(std::abs(a.centre - b.centre) - b.radius - a.radius, other);
    }
  std::sort(around_it.begin(), around_it.end());
  const std::size_t most = kBlockUnknowns + kOverlap;
  for (const auto& [distance, leaf] : around_it) {
    if (block->unknowns.size() > most) break;
    if (std::find(block->leaves.begin(), block->leaves.end(), leaf) != block->leaves.end()) continue;
    block->leaves.push_back(leaf);
    AddUnknowns(p, leaf, block);
  }
  // Half of a jump has no condition of its own: an unknown that reaches out of the block is left out.
  block->unknowns.erase(
      std::remove_if(block->unknowns.begin() + std::ptrdiff_t(block->own), block->unknowns.end(),
                     [&](int unknown) { return !Within(unknown, *block); }),
      block->unknowns.end());
}

/// Field at the leaves' control points from the leaves' strengths, rows of strengths.
void Preconditioner::LocalField(const EquationParts& p, const std::vector<int>& leaves,
                                std::vector<double>* field) const {
  const auto& nodes = p.tree.Nodes();
  const auto width = [&](int n) { return p.tree.LastStrength(nodes[n]) - p.tree.FirstStrength(nodes[n]); };
  const auto height = [&](int n) { return p.tree.LastControl(nodes[n]) - p.tree.FirstControl(nodes[n]); };
  int columns = 0, all = 0, above = 0;
  for (int n : leaves) {
    columns += width(n);
    all += height(n);
  }
  field->resize(std::size_t(all) * columns);
  for (int a : leaves) {
    const int rows = height(a);
    int left = 0;
    for (int b : leaves) {
      const auto near = std::find(nodes[a].near.begin(), nodes[a].near.end(), b);
      const double* block = near == nodes[a].near.end()
                                ? nullptr
                                : p.tree.NearBlock(a, std::size_t(near - nodes[a].near.begin()));
      for (int r = 0; r < rows; ++r) {
        double* out = field->data() + std::size_t(above + r) * columns + left;
        if (block == nullptr)
          p.tree.FarRow(b, p.system.controls[p.tree.ControlOrder()[p.tree.FirstControl(nodes[a]) + r]], out);
        else
          for (int j = 0; j < width(b); ++j) out[j] = block[std::size_t(j) * rows + r];
      }
      left += width(b);
    }
    above += rows;
  }
}

namespace {

/// What a strength of the block gives to one of its unknowns.
struct Share {
  int place, strength;
  double factor;
};

}  // namespace

std::vector<double> Preconditioner::BlockMatrix(const EquationParts& p, const Block& block) const {
  const System& s = p.system;
  const std::size_t n = block.unknowns.size();
  std::vector<double> field, matrix(n * n, 0.0), row(n);
  LocalField(p, block.leaves, &field);
  thread_local std::vector<int> place;
  place.resize(s.x.size(), -1);
  for (std::size_t i = 0; i < n; ++i) place[block.unknowns[i]] = int(i);
  std::vector<Share> shares;
  int columns = 0;
  for (int leaf : block.leaves)
    for (int i = p.tree.Nodes()[leaf].first; i < p.tree.Nodes()[leaf].last; ++i) {
      const auto& source = p.tree.Sources()[i];
      if (source.kind != SourceTree::Source::Kind::kPiece) {
        if (place[owned_[i][0]] >= 0) shares.push_back({place[owned_[i][0]], columns, 1.0});
      } else {
        for (const Term& t : s.terms[source.index])
          for (int k = 0; k < source.size; ++k)
            if (place[t.unknown] >= 0 && t.coefficient[k] != 0.0)
              shares.push_back({place[t.unknown], columns + k, t.coefficient[k]});
      }
      columns += source.size;
    }
  const double* from = field.data();
  for (int leaf : block.leaves)
    for (int r = p.tree.FirstControl(p.tree.Nodes()[leaf]); r < p.tree.LastControl(p.tree.Nodes()[leaf]);
         ++r, from += columns) {
      const int q = p.tree.ControlOrder()[r];
      const Linearised& l = p.linear[q];
      const LocalRow& local = p.local[q];
      std::fill(row.begin(), row.end(), 0.0);
      for (const Share& e : shares) row[e.place] += l.a * e.factor * from[e.strength];
      for (int i = 0; i < local.count; ++i)
        if (const int at = place[local.unknown[i]]; at >= 0) row[at] += l.b * local.value[i];
      for (int i = 0; i < local.count; ++i) {
        const int at = place[local.unknown[i]];
        const double weight = s.controls[q].weight * local.test[i];
        if (at < 0 || weight == 0.0) continue;
        double* out = matrix.data() + std::size_t(at) * n;
        for (std::size_t j = 0; j < n; ++j) out[j] += weight * row[j];
      }
    }
  for (const auto& loop : s.loops)
    for (const auto& [i, wi] : loop)
      for (const auto& [j, wj] : loop)
        if (place[i] >= 0 && place[j] >= 0)
          matrix[std::size_t(place[i]) * n + place[j]] += wi * wj / LoopScale(loop);
  for (int unknown : block.unknowns) place[unknown] = -1;
  return matrix;
}

void Preconditioner::Invert(const EquationParts& p, Block* block) {
  const std::size_t n = block->unknowns.size();
  const std::vector<double> matrix = BlockMatrix(p, *block);
  std::vector<float> columns(n * n), rows;
  std::vector<double> scale(n, 1.0);
  for (std::size_t i = 0; i < n; ++i) {
    double largest = 0.0;
    for (std::size_t j = 0; j < n; ++j) largest = std::max(largest, std::abs(matrix[i * n + j]));
    if (largest > 0.0) scale[i] = 1.0 / largest;
    if (i < block->own) scale_[block->unknowns[i]] = scale[i];
    for (std::size_t j = 0; j < n; ++j) columns[j * n + i] = float(scale[i] * matrix[i * n + j]);
  }
  if (!InvertRows(&columns, n, block->own, &rows)) {
    // Neighbours that state one condition twice: each by itself then.
    rows.assign(n * block->own, 0.0F);
    for (std::size_t i = 0; i < block->own; ++i)
      rows[i * n + i] = matrix[i * n + i] != 0.0 ? float(1.0 / (scale[i] * matrix[i * n + i])) : 1.0F;
  }
  block->inverse.resize(n * block->own);
  for (std::size_t j = 0; j < n; ++j)
    for (std::size_t i = 0; i < block->own; ++i)
      block->inverse[j * block->own + i] = rows[i * n + j] * float(scale[j]);  // of unscaled equations
}

/// The reference point's equation counts as much as that of a line-sink's mean head.
void Preconditioner::ScaleReference(const EquationParts& p) {
  double sum = 0.0, weight = 0.0;
  for (std::size_t q = 0; q < p.local.size(); ++q)
    if (p.system.controls[q].condition == Condition::kHead && p.system.controls[q].piece >= 0) {
      sum += p.system.controls[q].weight * scale_[p.local[q].unknown[0]];
      weight += p.system.controls[q].weight;
    }
  scale_[0] = weight > 0.0 ? sum / weight : 1.0;
  for (std::size_t q = 0; q < p.local.size(); ++q) {
    if (p.system.controls[q].condition != Condition::kBalance) continue;
    double largest = 1e-300;
    for (const auto& [i, c] : p.system.carried_terms.back()) largest = std::max(largest, std::abs(c));
    scale_[0] = 1.0 / largest;
  }
}

namespace {

/// sum += columns * values at the given places.
AEM_VECTOR_COPIES void AddColumns(const float* columns, std::size_t rows, const std::vector<int>& places,
                                  const double* values, float* sum) {
  for (int place : places) {
    const float value = float(values[place]);
    for (std::size_t i = 0; i < rows; ++i) sum[i] += columns[i] * value;
    columns += rows;
  }
}

}  // namespace

void Preconditioner::Apply(const std::vector<double>& from, std::vector<double>* to) const {
  to->assign(from.size(), 0.0);
  ParallelFor(threads_, blocks_.size(), [&](std::size_t begin, std::size_t end) {
    std::vector<float> sum;
    for (std::size_t b = begin; b < end; ++b) {
      const Block& block = blocks_[b];
      sum.assign(block.own, 0.0F);
      AddColumns(block.inverse.data(), block.own, block.unknowns, from.data(), sum.data());
      for (std::size_t i = 0; i < block.own; ++i) (*to)[block.unknowns[i]] = sum[i];
    }
  });
  std::vector<double> coarse(coarse_, 0.0);
  for (std::size_t i = 0; i < from.size(); ++i)
    if (coarse_of_unknown_[i] >= 0) coarse[coarse_of_unknown_[i]] += from[i] / scale_[i];
  factors_.Solve(&coarse);  // nothing where the coarse system is singular: blocks alone are slower, not wrong
  for (std::size_t i = 0; i < from.size(); ++i)
    if (coarse_of_unknown_[i] >= 0) (*to)[i] += coarse[coarse_of_unknown_[i]];
}

}  // namespace aem::detail
