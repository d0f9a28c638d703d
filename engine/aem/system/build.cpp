// Turns the model into elements, unknowns and control points.
#include <algorithm>
#include <cmath>

#include "aem/input/validate.h"
#include "aem/parallel.h"
#include "aem/system/arrangement.h"
#include "aem/system/ignored.h"
#include "aem/system/strings.h"
#include "aem/system/system.h"

namespace aem::detail {

System::System(Model m, Options o) : model(std::move(m)), options(o) {
  options.threads = ThreadCount(options.threads);
  findings = Validate(model);
  validated = findings.size();
  for (const Finding& f : findings) refused = refused || f.severity == Severity::kFatal;
  if (!refused) Build();
}

void System::Add(Severity severity, const Origin& of, std::string text) {
  findings.push_back({severity, of.label, of.line, std::move(text)});
  refused = refused || severity == Severity::kFatal;
}

int System::AddPiece(const Piece& piece, const PieceOwner& owner) {
  pieces.push_back(piece);
  owners.push_back(owner);
  terms.emplace_back();
  coefficients.resize(pieces.size() * kMaxBasis, 0.0);
  moments.emplace_back();
  return int(pieces.size()) - 1;
}

namespace {

void AddPoint(System& s, Complex at, int unknown, double head, Condition condition, int element = -1) {
  Control c;
  c.at = at;
  c.unknown = unknown;
  c.head = head;
  c.condition = condition;
  c.element = element;
  s.controls.push_back(c);
}

void BuildReference(System& s) {
  s.x.assign(1, 0.0);
  // Where a wall keeps its inside only, nothing comes from infinity and the heads inside fix the level. Where
  // the reference point lies within a wall that keeps its outside, the heads outside do, and nothing comes
  // from infinity either.
  const bool enclosed = KeepsInside(s);
  const bool left_out = s.Ignored(s.model.aquifer.reference_point);
  AddPoint(s, s.model.aquifer.reference_point, 0, s.model.aquifer.reference_head,
           enclosed   ? Condition::kNone
           : left_out ? Condition::kBalance
                      : Condition::kHead);
}

void BuildWells(System& s) {
  for (const Well& well : s.model.wells) {
    WellSource source{well.at, well.radius, well.by_head ? 0.0 : well.value, -1};
    if (s.Ignored(well.at)) {
      source.discharge = 0.0;
    } else if (well.by_head) {
      source.unknown = s.NewUnknown();
      AddPoint(s, well.at, source.unknown, well.value, Condition::kHead);
    }
    s.wells.push_back(source);
  }
  for (std::size_t i = 0; i < s.model.partial_wells.size(); ++i) {
    const PartialWell& well = s.model.partial_wells[i];
    WellSource source{well.at, well.radius, well.by_head ? 0.0 : well.value, -1};
    if (s.Ignored(well.at)) {
      source.discharge = 0.0;
    } else if (well.by_head) {
      source.unknown = s.NewUnknown();
      AddPoint(s, well.at, source.unknown, well.value, Condition::kScreen, int(i));
    }
    s.partial_wells.push_back(source);
  }
  for (const TheisRecord& record : s.model.theis)
    if (!s.Ignored(record.at)) s.theis.emplace_back(record, s.zones.At(record.at).conductivity);
}

void BuildDisks(System& s) {
  for (const SinkDisk& disk : s.model.disks) {
    DiskSource source{disk.at, disk.radius, disk.by_head ? 0.0 : disk.value, -1};
    if (s.Ignored(disk.at)) {
      source.rate = 0.0;
    } else if (disk.by_head) {
      source.unknown = s.NewUnknown();
      AddPoint(s, disk.at, source.unknown, disk.value, Condition::kHead);
    }
    s.disks.push_back(source);
  }
}

bool HasOneZone(Condition c) {
  return KindOf(c) == FieldKind::kPotential && c != Condition::kEdge && c != Condition::kWallHead;
}

}  // namespace

void System::Build() {
  StartOrders();
  Rebuild();
}

void System::Rebuild() {
  Clear();
  findings.resize(std::min(findings.size(), validated));
  BuildOnce();
  if (!refused) PrepareField();
}

void System::Clear() {
  wells.clear();
  partial_wells.clear();
  theis.clear();
  disks.clear();
  areas.clear();
  pieces.clear();
  owners.clear();
  terms.clear();
  coefficients.clear();
  moments.clear();
  edges.clear();
  features = {};
  end_power.clear();
  enclosures.clear();
  ignored.clear();
  edge_only.clear();
  segment_of.clear();
  segment_pieces.clear();
  segment_parts.clear();
  segment_cuts.clear();
  flag_of.clear();
  flags.clear();
  flows_into.clear();
  stream_order.clear();
  carried.clear();
  carried_given.clear();
  carried_terms.clear();
  switches.clear();
  loops.clear();
  x.clear();
  controls.clear();
}

void System::BuildOnce() {
  extent = Extent(model);
  tolerance = 2e-7 * std::max({extent.Diagonal(), std::abs(extent.Middle()), 1e-3});
  origin = model.aquifer.reference_point;
  Arrangement arrangement = Arrange(*this);
  zones = Zones(model.aquifer, model.domains, rings);
  enclosures = FindEnclosures(*this, arrangement);
  FindIgnored(*this);
  if (refused) return;
  BuildReference(*this);
  BuildWells(*this);
  BuildDisks(*this);
  BuildAreas(*this);
  if (refused) return;
  PlaceEdges(*this, &arrangement);
  PlanStrings(*this);
  if (refused) return;
  BuildJumps(*this, &arrangement);
  BuildStrings(*this);
  if (refused) return;
  for (Control& c : controls)
    if (HasOneZone(c.condition)) c.zone = ZoneAt(c.at, c.toward);
  WeighLoops(*this);
  SumDischarges();
  SetCoefficients();
}

void System::SumDischarges() {
  double given = 0.0;
  std::vector<std::pair<int, double>>& sum = carried_terms.back();
  const auto add = [&](int unknown, double factor, double value) {
    if (unknown >= 0)
      sum.emplace_back(unknown, factor);
    else
      given += factor * value;
  };
  for (const std::vector<WellSource>* list : {&wells, &partial_wells})
    for (const WellSource& w : *list) add(w.unknown, 1.0, w.discharge);
  for (const DiskSource& d : disks) add(d.unknown, M_PI * d.radius * d.radius, d.rate);
  for (const AreaSource& a : areas) given += a.Rate() * a.Area();
  for (std::size_t p = 0; p < pieces.size(); ++p) {
    if (pieces[p].kind != PieceKind::kSink) continue;
    if (terms[p].empty()) add(-1, pieces[p].Length(), coefficients[p * kMaxBasis]);
    for (const Term& t : terms[p])
      if (t.coefficient[0] != 0.0) add(t.unknown, t.coefficient[0] * pieces[p].Length(), 0.0);
  }
  carried_given.back() = given;
}

void System::SetCoefficients() {
  far.reset();
  fine.reset();
  for (std::vector<WellSource>* list : {&wells, &partial_wells})
    for (WellSource& w : *list)
      if (w.unknown >= 0) w.discharge = x[w.unknown];
  for (DiskSource& d : disks)
    if (d.unknown >= 0) d.rate = x[d.unknown];
  for (std::size_t p = 0; p < pieces.size(); ++p) {
    double* c = &coefficients[p * kMaxBasis];
    if (!terms[p].empty()) {
      std::fill(c, c + kMaxBasis, 0.0);
      for (const Term& t : terms[p])
        for (int n = 0; n < kMaxBasis; ++n) c[n] += t.coefficient[n] * x[t.unknown];
    }
    moments[p] = StrengthMoments(pieces[p], c);
  }
}

}  // namespace aem::detail
