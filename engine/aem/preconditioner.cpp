#include "aem/preconditioner.h"

#include <algorithm>
#include <cmath>

namespace aem::detail {

namespace {
constexpr std::size_t kBlockUnknowns = 200;
}

Preconditioner::Preconditioner(const EquationParts& p) : threads_(p.system.options.threads) {
  scale_.assign(p.system.x.size(), 1.0);
  FindOwners(p);
  ChooseBlocks(p);
  SetDenseThreads(1);
  ParallelFor(threads_, blocks_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) Invert(p, &blocks_[i]);
  });
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
    if (owner_[unknown] >= 0) return;
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

void Preconditioner::ChooseBlocks(const EquationParts& p) {
  const auto& nodes = p.tree.Nodes();
  std::vector<int> open{0};
  while (!open.empty()) {
    const int n = open.back();
    open.pop_back();
    std::size_t count = 0;
    for (int i = nodes[n].first; i < nodes[n].last; ++i) count += owned_[i].size();
    if (count > kBlockUnknowns && nodes[n].child >= 0) {
      open.push_back(nodes[n].child);
      open.push_back(nodes[n].child + 1);
      continue;
    }
    Block block;
    block.node = n;
    for (int i = nodes[n].first; i < nodes[n].last; ++i)
      block.unknowns.insert(block.unknowns.end(), owned_[i].begin(), owned_[i].end());
    if (!block.unknowns.empty()) blocks_.push_back(std::move(block));
  }
}

/// Field at the node's control points from the node's strengths, rows of strengths.
void Preconditioner::LocalField(const EquationParts& p, const SourceTree::Node& top,
                                std::vector<double>* field) const {
  const auto& nodes = p.tree.Nodes();
  const int columns = p.tree.LastStrength(top) - p.tree.FirstStrength(top);
  field->resize(std::size_t(p.tree.LastControl(top) - p.tree.FirstControl(top)) * columns);
  std::vector<int> leaves, open{int(&top - nodes.data())};
  while (!open.empty()) {
    const int n = open.back();
    open.pop_back();
    if (nodes[n].child < 0)
      leaves.push_back(n);
    else
      open.insert(open.end(), {nodes[n].child, nodes[n].child + 1});
  }
  for (int a : leaves) {
    const int rows = p.tree.LastControl(nodes[a]) - p.tree.FirstControl(nodes[a]);
    const int above = p.tree.FirstControl(nodes[a]) - p.tree.FirstControl(top);
    for (int b : leaves) {
      const int left = p.tree.FirstStrength(nodes[b]) - p.tree.FirstStrength(top);
      const int width = p.tree.LastStrength(nodes[b]) - p.tree.FirstStrength(nodes[b]);
      const auto near = std::find(nodes[a].near.begin(), nodes[a].near.end(), b);
      const double* block = near == nodes[a].near.end()
                                ? nullptr
                                : p.tree.NearBlock(a, std::size_t(near - nodes[a].near.begin()));
      for (int r = 0; r < rows; ++r) {
        double* out = field->data() + std::size_t(above + r) * columns + left;
        if (block == nullptr)
          p.tree.FarRow(b, p.system.controls[p.tree.ControlOrder()[p.tree.FirstControl(nodes[a]) + r]], out);
        else
          for (int j = 0; j < width; ++j) out[j] = block[std::size_t(j) * rows + r];
      }
    }
  }
}

std::vector<double> Preconditioner::BlockMatrix(const EquationParts& p, const Block& block) const {
  const System& s = p.system;
  const SourceTree::Node& top = p.tree.Nodes()[block.node];
  const std::size_t n = block.unknowns.size();
  const int first = p.tree.FirstStrength(top), columns = p.tree.LastStrength(top) - first;
  std::vector<double> field, matrix(n * n, 0.0), row(n);
  LocalField(p, top, &field);
  thread_local std::vector<int> place;
  place.assign(s.x.size(), -1);
  for (std::size_t i = 0; i < n; ++i) place[block.unknowns[i]] = int(i);
  struct Entry {
    int place, strength;
    double factor;
  };
  std::vector<Entry> entries;
  for (int i = top.first; i < top.last; ++i) {
    const auto& source = p.tree.Sources()[i];
    if (source.kind != SourceTree::Source::Kind::kPiece) {
      entries.push_back({place[owned_[i][0]], source.first - first, 1.0});
      continue;
    }
    for (const Term& t : s.terms[source.index])
      for (int k = 0; k < source.size; ++k)
        if (place[t.unknown] >= 0 && t.coefficient[k] != 0.0)
          entries.push_back({place[t.unknown], source.first - first + k, t.coefficient[k]});
  }
  for (int r = p.tree.FirstControl(top); r < p.tree.LastControl(top); ++r) {
    const int q = p.tree.ControlOrder()[r];
    const Linearised& l = p.linear[q];
    const LocalRow& local = p.local[q];
    const double* from = field.data() + std::size_t(r - p.tree.FirstControl(top)) * columns;
    std::fill(row.begin(), row.end(), 0.0);
    for (const Entry& e : entries) row[e.place] += l.a * e.factor * from[e.strength];
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
  return matrix;
}

void Preconditioner::Invert(const EquationParts& p, Block* block) {
  const std::size_t n = block->unknowns.size();
  const std::vector<double> matrix = BlockMatrix(p, *block);
  block->inverse.resize(n * n);
  std::vector<double> diagonal(n);
  for (std::size_t i = 0; i < n; ++i) {
    double largest = 0.0;
    for (std::size_t j = 0; j < n; ++j) largest = std::max(largest, std::abs(matrix[i * n + j]));
    const double scale = largest > 0.0 ? 1.0 / largest : 1.0;
    scale_[block->unknowns[i]] = scale;
    diagonal[i] = scale * matrix[i * n + i];
    for (std::size_t j = 0; j < n; ++j) block->inverse[j * n + i] = float(scale * matrix[i * n + j]);
  }
  if (InvertSmall(&block->inverse, n)) return;
  // Neighbours that state one condition twice: each by itself then.
  std::fill(block->inverse.begin(), block->inverse.end(), 0.0F);
  for (std::size_t i = 0; i < n; ++i)
    block->inverse[i * n + i] = diagonal[i] != 0.0 ? float(1.0 / diagonal[i]) : 1.0F;
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
}

void Preconditioner::Apply(const std::vector<double>& from, std::vector<double>* to) const {
  to->assign(from.size(), 0.0);
  ParallelFor(threads_, blocks_.size(), [&](std::size_t begin, std::size_t end) {
    std::vector<float> in, sum;
    for (std::size_t b = begin; b < end; ++b) {
      const Block& block = blocks_[b];
      const std::size_t n = block.unknowns.size();
      sum.assign(n, 0.0F);
      for (std::size_t j = 0; j < n; ++j) {
        const float value = float(from[block.unknowns[j]]);
        const float* column = block.inverse.data() + j * n;
        for (std::size_t i = 0; i < n; ++i) sum[i] += column[i] * value;
      }
      for (std::size_t i = 0; i < n; ++i) (*to)[block.unknowns[i]] = sum[i];
    }
  });
  std::vector<double> coarse(coarse_, 0.0);
  for (std::size_t i = 0; i < from.size(); ++i)
    if (coarse_of_unknown_[i] >= 0) coarse[coarse_of_unknown_[i]] += from[i] / scale_[i];
  factors_.Solve(coarse.data());
  for (std::size_t i = 0; i < from.size(); ++i)
    if (coarse_of_unknown_[i] >= 0) (*to)[i] += coarse[coarse_of_unknown_[i]];
}

}  // namespace aem::detail
