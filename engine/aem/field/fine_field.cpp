#include "aem/field/fine_field.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "aem/system/system.h"

namespace aem::detail {

namespace {

constexpr double kClear = 2.5;
/// Of Cauchy's integral.
constexpr int kSamples = 32;
/// A cell with so few sources near is not divided.
constexpr std::size_t kFewNear = 1;
/// Below a cell of FarField.
constexpr int kDeepest = 7;
/// Some 600 bytes each: beyond, cells stay undivided.
constexpr std::size_t kMostCells = 400'000;
/// Of the flow in a cell: last terms that together give less are left out.
constexpr double kSmallTerms = 1e-11;

/// Roots of unity of order kSamples.
struct Circle {
  std::array<Complex, kSamples> at;
  Circle() {
    for (int i = 0; i < kSamples; ++i) at[i] = std::polar(1.0, 2.0 * std::numbers::pi * i / kSamples);
  }
};
const Circle& Unit() {
  static const Circle circle;
  return circle;
}

}  // namespace

struct FineField::Cell {
  Complex centre;
  double half = 0.0;  ///< of a side
  int level = 0;
  int terms = kTerms;
  double rate = 0.0;
  Series local{};
  std::vector<int> near;
  std::array<std::atomic<Cell*>, 4> children{};

  ~Cell() {
    for (std::atomic<Cell*>& child : children) delete child.load();
  }
  Disc Around() const { return {centre, half * std::numbers::sqrt2}; }
  bool Divisible() const { return near.size() > kFewNear && level < kDeepest; }
  /// Last terms that nothing shows of.
  void DropSmallTerms() {
    double all = 0.0, dropped = 0.0;
    for (int n = 1; n <= kTerms; ++n) all += n * std::abs(local[n]);
    terms = kTerms;
    while (terms > 1 && (dropped += terms * std::abs(local[terms])) <= kSmallTerms * all) --terms;
  }
  Flow Far(Complex at) const {
    const double scale = 1.0 / (half * std::numbers::sqrt2);
    const Complex off = at - centre, v = off * scale;
    Complex value{}, slope{};
    for (int n = terms; n >= 1; --n) {
      slope = slope * v + double(n) * local[n];
      value = (value + local[n]) * v;
    }
    return {value + local[0] + 0.25 * rate * std::norm(off), -slope * scale - 0.5 * rate * std::conj(off)};
  }
};

FineField::FineField(const System& system) : s_(system), far_(system.far) {
  if (!far_) far_ = std::make_shared<FarField>(s_);
  first_area_ = far_->Sources();
  first_disk_ = first_area_ + int(s_.areas.size());
  past_ = first_disk_ + int(s_.disks.size());
  tops_ = std::make_unique<std::atomic<Cell*>[]>(far_->Cells());
}

FineField::~FineField() {
  for (std::size_t i = 0; i < far_->Cells(); ++i) delete tops_[i].load();
}

Flow FineField::One(int source, Complex at, Complex toward) const {
  if (source < first_area_) return far_->One(source, at, toward);
  if (source < first_disk_) return s_.areas[source - first_area_].Influence(at);
  const DiskSource& disk = s_.disks[source - first_disk_];
  const Flow f = DiskInfluence(disk, at);
  return {disk.rate * f.omega, disk.rate * f.w};
}

double FineField::Distance(int source, Complex at) const {
  if (source < first_area_) return far_->Distance(source, at);
  if (source >= first_disk_) {
    const DiskSource& disk = s_.disks[source - first_disk_];
    return std::abs(std::abs(at - disk.at) - disk.radius);
  }
  const std::vector<Complex>& ring = s_.areas[source - first_area_].Ring();
  double least = 1e300;
  for (std::size_t i = 0; i < ring.size(); ++i)
    least = std::min(least, NearestOnSegment(ring[i], ring[(i + 1) % ring.size()], at).distance);
  return least;
}

double FineField::RateAt(int source, Complex at) const {
  if (source < first_area_) return 0.0;
  if (source < first_disk_) {
    const AreaSource& area = s_.areas[source - first_area_];
    return Contains(area.Ring(), at) ? area.Rate() : 0.0;
  }
  const DiskSource& disk = s_.disks[source - first_disk_];
  return std::abs(at - disk.at) < disk.radius ? disk.rate : 0.0;
}

void FineField::Absorb(Cell& cell, const std::vector<int>& sources, bool background) const {
  if (sources.empty() && !background) return;
  double rate = 0.0;
  for (const int i : sources) rate += RateAt(i, cell.centre);
  if (background)
    for (int i = first_area_; i < past_; ++i) rate += RateAt(i, cell.centre);
  std::vector<int> left_out;
  if (background) {
    for (const int i : cell.near)
      if (i >= first_area_) left_out.push_back(i);
    for (const int i : left_out) rate -= RateAt(i, cell.centre);
  }
  const auto given = [&](Complex at) {
    Flow sum = background ? s_.Background(at) : Flow{};
    for (const int i : sources) {
      const Flow f = One(i, at, {});
      sum.omega += f.omega;
      sum.w += f.w;
    }
    for (const int i : left_out) {
      const Flow f = One(i, at, {});
      sum.omega -= f.omega;
      sum.w -= f.w;
    }
    return sum;
  };
  const double r = cell.Around().radius;
  const std::array<Complex, kSamples>& unit = Unit().at;
  std::array<Complex, kSamples> w;
  for (int j = 0; j < kSamples; ++j)
    w[j] = given(cell.centre + r * unit[j]).w + 0.5 * rate * r * std::conj(unit[j]);
  for (int n = 0; n < kTerms; ++n) {
    Complex sum{};
    for (int j = 0; j < kSamples; ++j) sum += w[j] * unit[(kSamples - n) * j % kSamples];
    cell.local[n + 1] -= r / (kSamples * (n + 1.0)) * sum;
  }
  cell.local[0] += given(cell.centre).omega.real();
  cell.rate += rate;
}

FineField::Cell* FineField::MakeTop(int leaf) const {
  auto cell = std::make_unique<Cell>();
  cell->centre = far_->CellDisc(leaf).centre;
  cell->half = far_->CellDisc(leaf).radius / std::numbers::sqrt2;
  cell->local = far_->Local(leaf);
  const double clear = kClear * cell->Around().radius;
  std::vector<int> far;
  for (const int i : far_->Near(leaf)) (Distance(i, cell->centre) >= clear ? far : cell->near).push_back(i);
  for (int i = first_area_; i < past_; ++i)
    if (Distance(i, cell->centre) < clear) cell->near.push_back(i);
  Absorb(*cell, far, true);
  cell->DropSmallTerms();
  return cell.release();
}

FineField::Cell* FineField::MakeChild(const Cell& parent, int quarter) const {
  auto cell = std::make_unique<Cell>();
  cell->half = 0.5 * parent.half;
  const Complex shift =
      cell->half * Complex{(quarter & 1) != 0 ? 1.0 : -1.0, (quarter & 2) != 0 ? 1.0 : -1.0};
  cell->centre = parent.centre + shift;
  cell->level = parent.level + 1;
  Inherit(parent.local, parent.Around(), cell->Around(), &cell->local);
  // |z - c|^2 about the new centre.
  cell->rate = parent.rate;
  cell->local[0] += 0.25 * parent.rate * std::norm(shift);
  cell->local[1] += 0.5 * parent.rate * std::conj(shift) * cell->Around().radius;
  const double clear = kClear * cell->Around().radius;
  std::vector<int> far;
  for (const int i : parent.near) (Distance(i, cell->centre) >= clear ? far : cell->near).push_back(i);
  Absorb(*cell, far, false);
  cell->DropSmallTerms();
  return cell.release();
}

FineField::Cell* FineField::Top(int leaf) const {
  std::atomic<Cell*>& top = tops_[leaf];
  if (Cell* known = top.load(std::memory_order_acquire)) return known;
  const std::lock_guard lock(making_[leaf % making_.size()]);
  if (Cell* known = top.load(std::memory_order_acquire)) return known;
  Cell* made = MakeTop(leaf);
  ++count_;
  top.store(made, std::memory_order_release);
  return made;
}

FineField::Cell* FineField::Child(Cell& parent, int quarter) const {
  std::atomic<Cell*>& child = parent.children[quarter];
  if (Cell* known = child.load(std::memory_order_acquire)) return known;
  if (count_.load(std::memory_order_relaxed) >= kMostCells) return nullptr;
  const std::lock_guard lock(making_[(reinterpret_cast<std::uintptr_t>(&parent) >> 7) % making_.size()]);
  if (Cell* known = child.load(std::memory_order_acquire)) return known;
  Cell* made = MakeChild(parent, quarter);
  ++count_;
  child.store(made, std::memory_order_release);
  return made;
}

Flow FineField::At(Complex at, Complex toward) const {
  const int leaf = far_->LeafAt(at);
  if (leaf < 0) {
    Flow sum = s_.Background(at);
    const Flow f = far_->At(at, toward);
    return {sum.omega + f.omega, sum.w + f.w};
  }
  Cell* cell = Top(leaf);
  while (cell->Divisible()) {
    const Complex o = at - cell->centre;
    Cell* child = Child(*cell, (o.real() >= 0.0 ? 1 : 0) + (o.imag() >= 0.0 ? 2 : 0));
    if (child == nullptr) break;
    cell = child;
  }
  Flow sum = cell->Far(at);
  for (const int i : cell->near) {
    const Flow f = One(i, at, toward);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

}  // namespace aem::detail
