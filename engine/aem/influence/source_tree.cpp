#include "aem/influence/source_tree.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "aem/kernel/vectors.h"
#include "aem/system/equations.h"

namespace aem::detail {

namespace {
constexpr int kLeafSources = 10;
}

SourceTree::SourceTree(const System& system) : s_(system) {
  using Kind = Source::Kind;
  for (const JumpEdge& edge : s_.edges)
    if (edge.wall >= 0) parts_ = 2;
  for (std::size_t p = 0; p < s_.pieces.size(); ++p) {
    const Piece& piece = s_.pieces[p];
    if (!s_.terms[p].empty())
      sources_.push_back({Kind::kPiece, int(p), {piece.Middle(), 0.5 * piece.Length()}, 0, piece.size, 0, 0});
  }
  const auto add_wells = [&](const std::vector<WellSource>& list, Kind kind) {
    for (std::size_t i = 0; i < list.size(); ++i)
      if (list[i].unknown >= 0) sources_.push_back({kind, int(i), {list[i].at, list[i].radius}, 0, 1, 0, 0});
  };
  add_wells(s_.wells, Kind::kWell);
  add_wells(s_.partial_wells, Kind::kPartialWell);
  for (std::size_t i = 0; i < s_.disks.size(); ++i)
    if (s_.disks[i].unknown >= 0)
      sources_.push_back({Kind::kDisk, int(i), {s_.disks[i].at, s_.disks[i].radius}, 0, 1, 0, 0});
  nodes_.emplace_back();
  nodes_[0].last = int(sources_.size());
  if (!sources_.empty()) BuildNode(0);
  AttachControls();
  if (!sources_.empty()) Pair(0, 0);
}

void SourceTree::BuildNode(int index) {
  const int first = nodes_[index].first, last = nodes_[index].last;
  Box box;
  for (int i = first; i < last; ++i) box.Add(sources_[i].around.centre);
  Disc disc{box.Middle(), 1e-12};
  for (int i = first; i < last; ++i)
    disc.radius =
        std::max(disc.radius, std::abs(sources_[i].around.centre - disc.centre) + sources_[i].around.radius);
  nodes_[index].disc = disc;
  if (last - first <= kLeafSources) return;
  const bool wide = box.right - box.left > box.top - box.bottom;
  const int middle = (first + last) / 2;
  std::nth_element(sources_.begin() + first, sources_.begin() + middle, sources_.begin() + last,
                   [&](const Source& a, const Source& b) {
                     const Complex u = a.around.centre, v = b.around.centre;
                     return wide ? u.real() < v.real() : u.imag() < v.imag();
                   });
  const int child = int(nodes_.size());
  nodes_[index].child = child;
  nodes_.resize(nodes_.size() + 2);
  nodes_[child].first = first;
  nodes_[child].last = nodes_[child + 1].first = middle;
  nodes_[child + 1].last = last;
  BuildNode(child);
  BuildNode(child + 1);
}

/// Numbers strengths and control points along the tree.
void SourceTree::AttachControls() {
  std::vector<int> of_piece(s_.pieces.size(), -1), of_unknown(s_.x.size(), -1);
  first_strength_.assign(1, 0);
  leaf_of_.resize(sources_.size());
  for (std::size_t n = 0; n < nodes_.size(); ++n)
    if (nodes_[n].child < 0)
      for (int i = nodes_[n].first; i < nodes_[n].last; ++i) leaf_of_[i] = int(n);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    source.first = first_strength_.back();
    first_strength_.push_back(source.first + source.size);
    switch (source.kind) {
      case Source::Kind::kPiece:
        of_piece[source.index] = int(i);
        break;
      case Source::Kind::kWell:
        of_unknown[s_.wells[source.index].unknown] = int(i);
        break;
      case Source::Kind::kPartialWell:
        of_unknown[s_.partial_wells[source.index].unknown] = int(i);
        break;
      case Source::Kind::kDisk:
        of_unknown[s_.disks[source.index].unknown] = int(i);
        break;
    }
  }
  strengths_ = std::size_t(first_strength_.back());
  std::vector<std::vector<int>> lists(sources_.size());
  for (std::size_t q = 0; q < s_.controls.size(); ++q) {
    const Control& c = s_.controls[q];
    const int source = c.piece >= 0 ? of_piece[c.piece] : of_unknown[c.unknown];
    if (source >= 0) lists[source].push_back(int(q));
  }
  first_control_.assign(1, 0);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    sources_[i].first_control = int(control_order_.size());
    sources_[i].controls = int(lists[i].size());
    control_order_.insert(control_order_.end(), lists[i].begin(), lists[i].end());
    first_control_.push_back(int(control_order_.size()));
  }
}

void SourceTree::Pair(int target, int source) {
  Node &a = nodes_[target], &b = nodes_[source];
  if (target != source && Separated(a.disc, b.disc)) {
    a.far.push_back(source);
    return;
  }
  if (a.child < 0 && b.child < 0) {
    a.near.push_back(source);
    return;
  }
  const bool divide_target = b.child < 0 || (a.child >= 0 && a.disc.radius >= b.disc.radius);
  for (int k = 0; k < 2; ++k)
    divide_target ? Pair(nodes_[target].child + k, source) : Pair(target, nodes_[source].child + k);
}

double SourceTree::NearBytes() const {
  double numbers = 0.0;
  for (const Node& n : nodes_)
    for (int other : n.near)
      numbers += double(LastControl(n) - FirstControl(n)) *
                 double(LastStrength(nodes_[other]) - FirstStrength(nodes_[other]));
  return 8.0 * numbers + double(strengths_) * double(sizeof(Series));
}

int SourceTree::PartOf(const Source& source) const {
  return parts_ == 2 && source.kind == Source::Kind::kPiece &&
                 s_.pieces[source.index].kind == PieceKind::kDoublet
             ? 1
             : 0;
}

void SourceTree::MakeSeries(int i) {
  const Source& source = sources_[i];
  const Disc& disc = nodes_[leaf_of_[i]].disc;
  for (int n = 0; n < source.size; ++n) {
    Series& outer = outer_[source.first + n];
    outer = {};
    switch (source.kind) {
      case Source::Kind::kPiece:
        AddPieceSeries(s_.pieces[source.index], n, 1.0, disc, &outer);
        break;
      case Source::Kind::kWell:
      case Source::Kind::kPartialWell:
        AddPointSeries(source.around.centre, 1.0, disc, &outer);
        break;
      case Source::Kind::kDisk: {
        const double r = source.around.radius;
        AddPointSeries(source.around.centre, std::numbers::pi * r * r, disc, &outer);
        break;
      }
    }
  }
}

void SourceTree::FillNear(int index) {
  const Node& node = nodes_[index];
  const int rows = LastControl(node) - FirstControl(node);
  std::vector<std::size_t>& start = near_start_[index];
  start.assign(1, 0);
  for (int other : node.near)
    start.push_back(start.back() +
                    std::size_t(rows) * (LastStrength(nodes_[other]) - FirstStrength(nodes_[other])));
  near_[index].resize(start.back());
  std::array<double, kMaxBasis> seen;
  double* column = near_[index].data();
  for (int other : node.near)
    for (int i = nodes_[other].first; i < nodes_[other].last; ++i) {
      const Source& source = sources_[i];
      for (int r = 0; r < rows; ++r) {
        const Control& c = s_.controls[control_order_[FirstControl(node) + r]];
        switch (source.kind) {
          case Source::Kind::kPiece:
            PieceInfluence(s_, c, source.index, seen.data());
            break;
          case Source::Kind::kWell:
            seen[0] = PointInfluence(c, s_.wells[source.index]);
            break;
          case Source::Kind::kPartialWell:
            seen[0] = PointInfluence(c, s_.partial_wells[source.index]);
            break;
          case Source::Kind::kDisk:
            seen[0] = PointInfluence(c, s_.disks[source.index]);
            break;
        }
        for (int n = 0; n < source.size; ++n) column[std::size_t(n) * rows + r] = seen[n];
      }
      column += std::size_t(rows) * source.size;
    }
}

const double* SourceTree::NearBlock(int node, std::size_t k) const {
  return near_[node].data() + near_start_[node][k];
}

bool SourceTree::Assemble(const std::function<bool(double)>& go_on) {
  outer_.resize(strengths_);
  near_.resize(nodes_.size());
  near_start_.resize(nodes_.size());
  ParallelFor(s_.options.threads, sources_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) MakeSeries(int(i));
  });
  const std::size_t chunk = std::max<std::size_t>(64, nodes_.size() / 16);
  for (std::size_t start = 0; start < nodes_.size(); start += chunk) {
    const std::size_t count = std::min(chunk, nodes_.size() - start);
    ParallelFor(s_.options.threads, count, [&](std::size_t begin, std::size_t end) {
      for (std::size_t n = start + begin; n < start + end; ++n)
        if (nodes_[n].child < 0) FillNear(int(n));
    });
    if (!go_on(double(start + count) / double(nodes_.size()))) return false;
  }
  return true;
}

void SourceTree::Upward(const std::vector<double>& strength,
                        std::vector<std::array<Series, 2>>* outer) const {
  ParallelFor(s_.options.threads, nodes_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t n = begin; n < end; ++n) {
      const Node& node = nodes_[n];
      if (node.child >= 0) continue;
      for (int i = node.first; i < node.last; ++i) {
        Series& sum = (*outer)[n][PartOf(sources_[i])];
        for (int j = sources_[i].first; j < sources_[i].first + sources_[i].size; ++j)
          for (int k = 0; k <= kTerms; ++k) sum[k] += strength[j] * outer_[j][k];
      }
    }
  });
  for (std::size_t n = nodes_.size(); n-- > 0;)  // children stand behind their parents
    for (int k = 0; nodes_[n].child >= 0 && k < 2; ++k)
      for (int part = 0; part < parts_; ++part)
        Lift((*outer)[nodes_[n].child + k][part], nodes_[nodes_[n].child + k].disc, nodes_[n].disc,
             &(*outer)[n][part]);
}

void SourceTree::Downward(std::vector<std::array<Series, 2>>* local) const {
  for (std::size_t n = 0; n < nodes_.size(); ++n)
    for (int k = 0; nodes_[n].child >= 0 && k < 2; ++k)
      for (int part = 0; part < parts_; ++part)
        Inherit((*local)[n][part], nodes_[n].disc, nodes_[nodes_[n].child + k].disc,
                &(*local)[nodes_[n].child + k][part]);
}

namespace {

/// What a control point takes from the local series of all else and of the doublets.
double Taken(const Control& c, const std::array<Series, 2>& local, int parts, const Disc& disc) {
  switch (KindOf(c.condition)) {
    case FieldKind::kPotential: {
      double sum = EvaluateLocal(local[0], disc, c.at).omega.real();
      if (parts == 2) sum += EvaluateLocal(local[1], disc, c.at).omega.real();
      return sum;
    }
    case FieldKind::kNormalFlow:
      return -Dot(std::conj(EvaluateLocal(local[0], disc, c.at).w), c.toward);
    case FieldKind::kDoubletStream:
      return EvaluateLocal(local[1], disc, c.at).omega.imag();
  }
  return 0.0;
}

/// sum += block * values.
AEM_VECTOR_COPIES void AddColumns(const double* block, int rows, int columns, const double* values,
                                  double* sum) {
  for (int j = 0; j < columns; ++j, block += rows)
    for (int r = 0; r < rows; ++r) sum[r] += block[r] * values[j];
}

}  // namespace

void SourceTree::AtControls(int index, const std::array<Series, 2>& local,
                            const std::vector<double>& strength, std::vector<double>* field) const {
  const Node& node = nodes_[index];
  const int first = FirstControl(node), rows = LastControl(node) - first;
  thread_local std::vector<double> sum;
  sum.assign(rows, 0.0);
  const double* block = near_[index].data();
  for (int other : node.near) {
    const int from = FirstStrength(nodes_[other]), columns = LastStrength(nodes_[other]) - from;
    AddColumns(block, rows, columns, strength.data() + from, sum.data());
    block += std::size_t(rows) * columns;
  }
  for (int r = 0; r < rows; ++r) {
    const int q = control_order_[first + r];
    (*field)[q] = sum[r] + Taken(s_.controls[q], local, parts_, node.disc);
  }
}

void SourceTree::Field(const std::vector<double>& strength, std::vector<double>* field) const {
  std::vector<std::array<Series, 2>> outer(nodes_.size()), local(nodes_.size());
  Upward(strength, &outer);
  ParallelFor(s_.options.threads, nodes_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t n = begin; n < end; ++n)
      for (int other : nodes_[n].far)
        for (int part = 0; part < parts_; ++part)
          Transfer(outer[other][part], nodes_[other].disc, nodes_[n].disc, &local[n][part]);
  });
  Downward(&local);
  ParallelFor(s_.options.threads, nodes_.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t n = begin; n < end; ++n)
      if (nodes_[n].child < 0) AtControls(int(n), local[n], strength, field);
  });
}

void SourceTree::FarRow(int leaf, const Control& c, double* row) const {
  constexpr int kOrder = 3;
  const Node& node = nodes_[leaf];
  const FieldKind kind = KindOf(c.condition);
  const Complex d = c.at - node.disc.centre, q = node.disc.radius / d, log = std::log(d);
  for (int i = node.first; i < node.last; ++i) {
    const Source& source = sources_[i];
    const bool counts =
        kind == FieldKind::kPotential || (kind == FieldKind::kDoubletStream) == (PartOf(source) == 1);
    for (int j = source.first; j < source.first + source.size; ++j, ++row) {
      *row = 0.0;
      if (!counts) continue;
      const Series& outer = outer_[j];
      Complex value{}, derivative{};
      for (int k = kOrder; k >= 1; --k) {
        value = (value + outer[k]) * q;
        derivative = (derivative + double(k) * outer[k]) * q;
      }
      value += outer[0] * log;
      *row = kind == FieldKind::kPotential       ? value.real()
             : kind == FieldKind::kDoubletStream ? value.imag()
                                                 : Dot(std::conj((outer[0] - derivative) / d), c.toward);
    }
  }
}

}  // namespace aem::detail
