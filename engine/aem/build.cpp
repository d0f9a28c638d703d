// Turns the model into elements, unknowns and control points.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <thread>

#include "aem/arrangement.h"
#include "aem/strings.h"
#include "aem/system.h"
#include "aem/validate.h"

namespace aem::detail {

System::System(Model m, Options o) : model(std::move(m)), options(o) {
  if (options.threads <= 0) options.threads = std::max(1, int(std::thread::hardware_concurrency()));
  findings = Validate(model);
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

void BuildReference(System& s) {
  s.x.assign(1, 0.0);
  Control c;
  c.at = s.model.aquifer.reference_point;
  c.unknown = 0;
  c.head = s.model.aquifer.reference_head;
  s.controls.push_back(c);
}

void BuildWells(System& s) {
  for (const Well& well : s.model.wells) {
    WellSource source{well.at, well.radius, well.by_head ? 0.0 : well.value, -1};
    if (well.by_head) {
      source.unknown = s.NewUnknown();
      Control c;
      c.at = well.at;
      c.unknown = source.unknown;
      c.head = well.value;
      s.controls.push_back(c);
    }
    s.wells.push_back(source);
  }
}

void BuildDisks(System& s) {
  for (const SinkDisk& disk : s.model.disks) {
    DiskSource source{disk.at, disk.radius, disk.by_head ? 0.0 : disk.value, -1};
    if (disk.by_head) {
      source.unknown = s.NewUnknown();
      Control c;
      c.at = disk.at;
      c.unknown = source.unknown;
      c.head = disk.value;
      s.controls.push_back(c);
    }
    s.disks.push_back(source);
  }
}

void BuildAreas(System& s) {
  for (std::size_t d = 0; d < s.rings.size(); ++d)
    if (s.model.domains[d].recharge_sink != 0.0 && s.rings[d].size() >= 3)
      s.areas.emplace_back(s.rings[d], s.model.domains[d].recharge_sink);
}

}  // namespace

void System::Build() {
  extent = Extent(model);
  tolerance = 2e-7 * std::max({extent.Diagonal(), std::abs(extent.Middle()), 1e-3});
  origin = model.aquifer.reference_point;
  Arrangement arrangement = Arrange(*this);
  zones = Zones(model.aquifer, model.domains, rings);
  BuildReference(*this);
  BuildWells(*this);
  BuildDisks(*this);
  BuildAreas(*this);
  BuildStrings(*this);
  BuildJumps(*this, arrangement);
  for (Control& c : controls)
    if (c.condition != Condition::kEdge && c.condition != Condition::kWall) c.zone = ZoneAt(c.at, c.toward);
  SetCoefficients();
}

void System::SetCoefficients() {
  for (WellSource& w : wells)
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
