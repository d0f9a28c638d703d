// Random models with everything that bends, feeds or takes the flow.
#pragma once

#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "zones/fields.h"

namespace zones_test {

/// What a random model may hold.
enum Feature {
  kDomains,
  kBases,
  kRecharge,
  kOpenWall,
  kLeakyWall,
  kClosedWall,
  kStream,
  kBedStream,
  kDrain,
  kPond,
  kUnconfined,
  kGivingWell,
  kFeatures
};
inline constexpr std::array<const char*, kFeatures> kFeatureNames{
    "domains", "bases",      "recharge", "open wall", "leaky wall", "closed wall",
    "stream",  "bed stream", "drain",    "pond",      "unconfined", "giving well"};

class ModelMaker {
 public:
  explicit ModelMaker(unsigned seed) : random_(seed) {}

  /// With two or three features by turns, so that `count` models in a row hold all of them.
  aem::Model Make(unsigned turn) {
    features_.assign(kFeatures, false);
    features_[turn % kFeatures] = true;
    features_[std::size_t(Draw(0.0, kFeatures))] = true;
    if (turn % 2 == 0) features_[std::size_t(Draw(0.0, kFeatures))] = true;
    m_ = Aquifer(std::pow(10.0, Draw(-3.3, -2.2)), Draw(0.0, 2.0 * std::numbers::pi));
    m_.aquifer.reference_point = {20000.0, 9000.0};
    m_.aquifer.reference_head = 300.0;
    if (Has(kUnconfined)) MakeUnconfined();
    const int wells = 1 + int(Draw(0.0, 4.0));
    for (int i = 0; i < wells; ++i) PlaceWell(std::pow(10.0, Draw(1.6, 2.9)));
    if (Has(kGivingWell)) PlaceWell(-std::pow(10.0, Draw(1.6, 2.6)));
    if (Has(kDomains))
      for (int i = 0; i < 2; ++i) AddDomain(i);
    if (Has(kBases)) AddBase();
    if (Has(kRecharge)) AddRecharge();
    if (Has(kOpenWall)) AddWall(aem::WallKind::kOpen, 0.0);
    if (Has(kLeakyWall)) AddWall(aem::WallKind::kOpen, std::pow(10.0, Draw(-2.5, -0.5)));
    if (Has(kClosedWall)) AddWall(aem::WallKind::kClosed, std::pow(10.0, Draw(-2.0, -0.5)));
    if (Has(kStream)) AddStream(aem::LineSinkKind::kHead, 0.0);
    if (Has(kBedStream)) AddStream(aem::LineSinkKind::kHead, Draw(1.0, 40.0));
    if (Has(kDrain)) AddStream(aem::LineSinkKind::kDrain, 0.0);
    if (Has(kPond)) AddPond();
    return m_;
  }

  bool Has(Feature feature) const { return features_[feature]; }
  std::string Names() const {
    std::string names;
    for (std::size_t i = 0; i < kFeatures; ++i)
      if (features_[i]) names += (names.empty() ? "" : ", ") + std::string(kFeatureNames[i]);
    return names;
  }
  double Draw(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random_); }

 private:
  Complex Place() { return {Draw(-500.0, 500.0), Draw(-500.0, 500.0)}; }

  void MakeUnconfined() {
    m_.aquifer.thickness = 30.0;
    m_.aquifer.uniform_flow *= 1.5;
    m_.aquifer.reference_head = Draw(14.0, 24.0);
    m_.aquifer.reference_point = {3000.0, 2000.0};
  }

  void PlaceWell(double discharge) {
    for (;;) {
      const Complex at = Place();
      bool free = true;
      for (const aem::Well& well : m_.wells) free = free && std::abs(well.at - at) > 60.0;
      if (!free) continue;
      AddWell(m_, at, Has(kUnconfined) ? 0.4 * discharge : discharge);
      return;
    }
  }

  /// An irregular polygon.
  std::vector<aem::LabelledPoint> Blob(Complex centre, double radius, int sides, const std::string& label) {
    std::vector<aem::LabelledPoint> ring;
    const double start = Draw(0.0, 6.0);
    for (int i = 0; i < sides; ++i)
      ring.push_back(
          {{label + "_" + std::to_string(i + 1), 0},
           centre + std::polar(radius * Draw(0.75, 1.25), start + 2.0 * std::numbers::pi * i / sides)});
    return ring;
  }

  aem::Domain& NewDomain() {
    aem::Domain& domain = m_.domains.emplace_back();
    domain.origin.label = "IN_00000" + std::to_string(m_.domains.size());
    return domain;
  }

  /// Side by side, well apart.
  void AddDomain(int which) {
    aem::Domain& domain = NewDomain();
    domain.conductivity = kConductivity * std::pow(10.0, Draw(-0.7, 0.7));
    domain.porosity = Draw(0.1, 0.35);
    domain.ring = Blob({which == 0 ? -380.0 : 380.0, Draw(-300.0, 300.0)}, Draw(150.0, 270.0),
                       5 + int(Draw(0.0, 5.0)), domain.origin.label);
  }

  void AddBase() {
    aem::Domain& domain = NewDomain();
    domain.base = Draw(-4.0, 5.0);
    domain.ring = Blob({0.0, Draw(-500.0, 500.0) + (Has(kDomains) ? 1100.0 : 0.0)}, Draw(150.0, 300.0), 6,
                       domain.origin.label);
  }

  void AddRecharge() {
    aem::Domain& domain = NewDomain();
    domain.recharge_sink = -Draw(2e-4, 1.5e-3);
    domain.ring = Blob(Place() * 0.3, Draw(1600.0, 2200.0), 14, domain.origin.label);
  }

  std::vector<Complex> Bends(int pieces, double length) {
    std::vector<Complex> line{Place()};
    double way = Draw(0.0, 6.28);
    line[0] -= std::polar(0.5 * pieces * length, way);
    for (int i = 0; i < pieces; ++i) line.push_back(line.back() + std::polar(length, way += Draw(-0.4, 0.4)));
    return line;
  }

  bool NearWell(const std::vector<Complex>& line, double distance) const {
    for (const aem::Well& well : m_.wells)
      for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const Complex along = line[i + 1] - line[i], off = well.at - line[i];
        const double f = std::clamp((off * std::conj(along)).real() / std::norm(along), 0.0, 1.0);
        if (std::abs(off - f * along) < distance) return true;
      }
    return false;
  }

  void AddWall(aem::WallKind kind, double conductivity) {
    std::vector<Complex> line;
    do {
      line = Bends(1 + int(Draw(0.0, 4.0)), Draw(100.0, 250.0));
      if (kind != aem::WallKind::kClosed) continue;
      line.clear();
      for (const auto& point : Blob(Place(), Draw(100.0, 250.0), 6, "BA")) line.push_back(point.at);
    } while (NearWell(line, 15.0));
    aem::Wall& wall = m_.walls.emplace_back();
    wall.origin.label = "BA_00000" + std::to_string(m_.walls.size());
    wall.kind = kind;
    wall.conductivity = conductivity;
    for (std::size_t i = 0; i < line.size(); ++i)
      wall.points.push_back({{wall.origin.label + "_" + std::to_string(i + 1), 0}, line[i]});
  }

  /// Its stages lie near the heads that the wells' field has there.
  void AddStream(aem::LineSinkKind kind, double resistance) {
    std::vector<Complex> line;
    do line = Bends(8 + int(Draw(0.0, 8.0)), Draw(60.0, 120.0));
    while (NearWell(line, 12.0));
    aem::Solution before(m_);
    before.Iterate(3);
    double sum = 0.0;
    for (const Complex at : line) sum += before.At(at).head;
    const double stage = sum / double(line.size()) + Draw(-0.6, 0.9), slope = Draw(-2e-3, 2e-3);
    aem::LineSinkString& string = m_.line_sinks.emplace_back();
    string.origin.label = "LS_00000" + std::to_string(m_.line_sinks.size());
    string.kind = kind;
    string.resistance = resistance;
    string.width = resistance > 0.0 ? Draw(2.0, 15.0) : 0.0;
    string.depth = 2.0;
    for (std::size_t i = 0; i + 1 < line.size(); ++i)
      string.segments.push_back({{string.origin.label + "_" + std::to_string(i + 1), 0},
                                 line[i],
                                 line[i + 1],
                                 stage + slope * double(i) * std::abs(line[i + 1] - line[i])});
  }

  void AddPond() {
    const double radius = Draw(60.0, 160.0);
    m_.disks.push_back({{"PO_000001", 0}, Place(), radius, false, Draw(-8e-3, 6e-3)});
  }

  std::mt19937 random_;
  aem::Model m_;
  std::vector<bool> features_;
};

}  // namespace zones_test
