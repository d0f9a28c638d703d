// Potential and discharge at a point.
#include <atomic>
#include <cmath>

#include "aem/field/area_field.h"
#include "aem/field/farfield.h"
#include "aem/field/fine_field.h"
#include "aem/parallel.h"
#include "aem/system/system.h"

namespace aem::detail {

namespace {

Side SideOf(const Piece& piece, Complex toward) {
  if (toward == Complex{}) return piece.kind == PieceKind::kDoublet ? Side::kLeft : Side::kMean;
  return {toward * std::conj(piece.to - piece.from), false};
}

}  // namespace

namespace {

/// A direction to the left of an edge; at its ends close to the edge, so that no other edge lies between.
Complex LeftOf(const JumpEdge& edge, Complex at) {
  const Complex along = edge.to - edge.from;
  const double position = Dot(at - edge.from, along) / std::norm(along);
  if (position < 1e-9) return along * std::polar(1.0, 0.05);
  if (position > 1.0 - 1e-9) return -along * std::polar(1.0, -0.05);
  return along * Complex{0.0, 1.0};
}

}  // namespace

Flow System::Around(Complex at) const {
  Flow sum = Background(at);
  for (const std::vector<WellSource>* list : {&wells, &partial_wells})
    for (const WellSource& w : *list) {
      const Flow f = WellInfluence(w, at);
      sum.omega += w.discharge * f.omega;
      sum.w += w.discharge * f.w;
    }
  return sum;
}

Flow System::Background(Complex at) const {
  const Complex uniform = model.aquifer.uniform_flow;
  Flow sum{x[0] - std::conj(uniform) * (at - origin), std::conj(uniform)};
  for (const DiskSource& d : disks) {
    if (far_areas && d.unknown < 0) continue;
    const Flow f = DiskInfluence(d, at);
    sum.omega += d.rate * f.omega;
    sum.w += d.rate * f.w;
  }
  if (far_areas) {
    const Flow f = far_areas->At(at);
    sum.omega += f.omega;
    sum.w += f.w;
    return sum;
  }
  for (const AreaSource& a : areas) {
    const Flow f = a.Influence(at);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

bool System::Ignored(Complex at) const {
  for (const IgnoredRegion& r : ignored)
    if (Contains(r.ring, at) == r.inside) return true;
  return false;
}

Flow System::Field(Complex at, Complex toward) const {
  Flow sum = SteadyField(at, toward);
  for (const auto& [record, conductivity] : theis) {
    const Flow f = TheisInfluence(record, conductivity, time, at);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

Flow System::PieceFlow(int p, Complex at, Complex toward) const {
  return Evaluate(pieces[p], &coefficients[p * kMaxBasis], moments[p], at, SideOf(pieces[p], toward));
}

void System::PrepareField() {
  constexpr std::size_t kPays = 120;  // sources from which the hierarchy is faster
  constexpr std::size_t kManyAreas = 12;
  if (!refused && !options.direct_summation && !far_areas && areas.size() + disks.size() > kManyAreas)
    far_areas = std::make_shared<AreaField>(areas, disks);
  far.reset();
  fine.reset();
  if (!refused && !options.direct_summation && pieces.size() + wells.size() + partial_wells.size() > kPays)
    far = std::make_shared<FarField>(*this);
}

void System::PrepareManyPoints() {
  if (!refused && !options.direct_summation && !fine) fine = std::make_shared<FineField>(*this);
}

Flow System::SteadyField(Complex at, Complex toward) const {
  if (fine) return fine->At(at, toward);
  if (far) {
    Flow sum = Background(at);
    const Flow f = far->At(at, toward);
    sum.omega += f.omega;
    sum.w += f.w;
    return sum;
  }
  Flow sum = Around(at);
  for (std::size_t p = 0; p < pieces.size(); ++p) {
    const Flow f = PieceFlow(int(p), at, toward);
    sum.omega += f.omega;
    sum.w += f.w;
  }
  return sum;
}

int System::EdgeAt(Complex at) const {
  if (edge_index.Empty()) return -1;
  thread_local std::vector<int> found;
  Box box;
  box.Add(at);
  edge_index.Find(box, &found);
  for (int e : found) {
    const Complex along = edges[e].to - edges[e].from;
    const Complex local = (2.0 * at - edges[e].from - edges[e].to) / along;
    const double rounding = 4e-15 * (std::abs(at.real()) + std::abs(at.imag())) / std::abs(along);
    if (std::abs(local.imag()) < 2e-12 + rounding && std::abs(local.real()) <= 1.0) return e;
  }
  return -1;
}

Zone System::ZoneAt(Complex at, Complex toward) const {
  const int e = EdgeAt(at);
  if (e < 0) return zones.At(at);
  const Complex along = edges[e].to - edges[e].from;
  const bool left = toward == Complex{} || Cross(along, toward) > 0.0;
  return left ? edges[e].left : edges[e].right;
}

PointState System::State(Complex at, Complex toward) const {
  PointState state;
  if (refused || Ignored(at)) return state;
  const int e = EdgeAt(at);
  if (e >= 0 && toward == Complex{}) toward = LeftOf(edges[e], at);
  const Zone zone = ZoneAt(at, toward);
  const Flow flow = Field(at, toward);
  state.potential = flow.omega.real();
  state.discharge = std::conj(flow.w);
  state.base = zone.base;
  state.conductivity = zone.conductivity;
  state.porosity = zone.porosity;
  state.thickness = zone.Thickness(state.potential);
  state.net_recharge = zones.Recharge(at);
  for (const DiskSource& d : disks)
    if (std::abs(at - d.at) < d.radius) state.net_recharge += d.rate;
  state.status = state.potential > 0.0 ? PointStatus::kOk : PointStatus::kDry;
  if (state.status == PointStatus::kOk) state.head = zone.Head(state.potential);
  return state;
}

void ParallelFor(int threads, std::size_t count, const std::function<void(std::size_t, std::size_t)>& body) {
  const std::size_t block = std::max<std::size_t>(1, std::min<std::size_t>(256, count / (4 * threads) + 1));
  if (threads <= 1 || count <= block) {
    body(0, count);
    return;
  }
  std::atomic<std::size_t> next{0};
  std::atomic<bool> stop{false};
  RunOnThreads(threads, &stop, [&] {
    while (!stop.load(std::memory_order_relaxed)) {
      const std::size_t begin = next.fetch_add(block);
      if (begin >= count) return;
      body(begin, std::min(count, begin + block));
    }
  });
}

}  // namespace aem::detail
