// What a user may do to a drawing without changing what it says: move it, turn it, measure it in feet, draw
// it in another order or the other way round, or divide its segments.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "aem/models.h"

namespace aem_test {
namespace {

/// A river with a bed and one without, two domains that meet, one with a base of its own, a wall across an
/// edge, wells, a pond and rain, unconfined.
aem::Model Valley() {
  aem::Model m = Base(12.0, 40.0, 34.0);
  m.aquifer.reference_point = {6000, 2000};
  m.aquifer.uniform_flow = {-0.6, 0.2};
  m.line_sinks.push_back(
      HeadString({{-800, -300}, {-420, -260}, {-60, -330}, {330, -240}, {800, -310}}, 30.0, "A"));
  for (std::size_t i = 0; i < 4; ++i) m.line_sinks[0].segments[i].value = 30.0 + 0.3 * double(i);
  m.line_sinks.push_back(HeadString({{-700, 500}, {-100, 620}, {500, 540}}, 33.0, "B"));
  m.line_sinks[1].resistance = 3.0;
  m.line_sinks[1].width = 8.0;
  m.line_sinks[1].depth = 2.0;
  m.domains.push_back(Polygon({{-300, -100}, {100, -120}, {140, 260}, {-260, 300}}, "C"));
  m.domains[0].conductivity = 60.0;
  m.domains.push_back(Polygon({{100, -120}, {500, -90}, {460, 250}, {140, 260}}, "D"));
  m.domains[1].base = 6.0;
  m.domains[1].recharge_sink = -8e-4;
  aem::Wall wall;
  wall.origin.label = "E";
  for (Complex at : {Complex{-500, 100}, Complex{-330, 160}, Complex{-200, 120}})
    wall.points.push_back({{}, at});
  m.walls.push_back(wall);
  m.wells.push_back({{"F", 1}, {10, 60}, 0.3, false, 500.0});
  m.wells.push_back({{"G", 1}, {560, 420}, 0.3, true, 31.5});
  m.disks.push_back({{"H", 1}, {-620, 200}, 60.0, false, -4e-3});
  return m;
}

/// Every place by `place`, vectors by `turn`.
void Move(aem::Model* m, const std::function<Complex(Complex)>& place, Complex turn) {
  m->aquifer.uniform_flow *= turn;
  m->aquifer.reference_point = place(m->aquifer.reference_point);
  for (auto& w : m->wells) w.at = place(w.at);
  for (auto& d : m->disks) d.at = place(d.at);
  for (auto& s : m->line_sinks)
    for (auto& g : s.segments) {
      g.from = place(g.from);
      g.to = place(g.to);
    }
  for (auto& d : m->domains)
    for (auto& p : d.ring) p.at = place(p.at);
  for (auto& w : m->walls)
    for (auto& p : w.points) p.at = place(p.at);
  const Complex a = place({m->layout.left, m->layout.bottom}), b = place({m->layout.right, m->layout.top});
  m->layout = {std::min(a.real(), b.real()), std::min(a.imag(), b.imag()), std::max(a.real(), b.real()),
               std::max(a.imag(), b.imag()), true};
}

/// One length unit becomes `f` of them.
void Measure(aem::Model* m, double f) {
  Move(
      m, [f](Complex z) { return f * z; }, f * f);
  aem::Aquifer& a = m->aquifer;
  for (double* v : {&a.base, &a.thickness, &a.conductivity, &a.reference_head}) *v *= f;
  for (auto& w : m->wells) {
    w.radius *= f;
    w.value *= w.by_head ? f : f * f * f;
  }
  for (auto& d : m->disks) {
    d.radius *= f;
    d.value *= f;
  }
  for (auto& s : m->line_sinks) {
    s.width *= f;
    s.depth *= f;
    for (auto& g : s.segments) g.value *= f;
  }
  for (auto& d : m->domains) {
    if (d.conductivity != aem::kNotSet) d.conductivity *= f;
    if (d.base != aem::kNotSet) d.base *= f;
    d.recharge_sink *= f;
  }
}

void Reverse(aem::Model* m) {
  std::reverse(m->line_sinks.begin(), m->line_sinks.end());
  std::reverse(m->wells.begin(), m->wells.end());
  std::reverse(m->domains.begin(), m->domains.end());
  for (auto& s : m->line_sinks) {
    std::reverse(s.segments.begin(), s.segments.end());
    for (auto& g : s.segments) std::swap(g.from, g.to);
  }
  for (auto& d : m->domains) std::reverse(d.ring.begin(), d.ring.end());
  for (auto& w : m->walls) std::reverse(w.points.begin(), w.points.end());
}

/// Edges and walls in two; rivers keep theirs, whose stages follow the middles of segments.
void Halve(aem::Model* m) {
  const auto halve = [](std::vector<aem::LabelledPoint>* points, bool closed) {
    std::vector<aem::LabelledPoint> fine;
    for (std::size_t i = 0; i < points->size(); ++i) {
      fine.push_back((*points)[i]);
      if (closed || i + 1 < points->size())
        fine.push_back({{}, 0.5 * ((*points)[i].at + (*points)[(i + 1) % points->size()].at)});
    }
    *points = fine;
  };
  for (auto& d : m->domains) halve(&d.ring, true);
  for (auto& w : m->walls) halve(&w.points, false);
}

struct Change {
  const char* name;
  std::function<void(aem::Model*)> make;
  std::function<Complex(Complex)> place;
  double length;   ///< new units in one old
  double allowed;  ///< largest change of head by the range of heads
};

TEST(Invariance, HeadsDoNotChangeWithHowTheModelIsDrawn) {
  const auto same = [](Complex z) { return z; };
  const auto shift = [](Complex z) { return z + Complex{5e6, -5e6}; };
  const auto turn = [](Complex z) { return z * std::polar(1.0, 0.7); };
  const auto feet = [](Complex z) { return z / 0.3048; };
  const Change changes[] = {
      {"shift", [&](aem::Model* m) { Move(m, shift, 1.0); }, shift, 1.0, 1e-5},
      {"turn", [&](aem::Model* m) { Move(m, turn, std::polar(1.0, 0.7)); }, turn, 1.0, 1e-7},
      {"feet", [](aem::Model* m) { Measure(m, 1.0 / 0.3048); }, feet, 1.0 / 0.3048, 1e-7},
      {"order and orientation", Reverse, same, 1.0, 1e-7},
      {"division", Halve, same, 1.0, 1e-5},
  };
  aem::Solution plain(Valley());
  ASSERT_FALSE(plain.Refused()) << Said(plain.Findings());
  ASSERT_TRUE(plain.Iterate(4).converged);
  for (const Change& change : changes) {
    aem::Model m = Valley();
    change.make(&m);
    aem::Solution s(m);
    ASSERT_FALSE(s.Refused()) << change.name << Said(s.Findings());
    EXPECT_TRUE(s.Iterate(4).converged) << change.name;
    double worst = 0.0;
    for (double x = -750; x <= 750; x += 187)
      for (double y = -450; y <= 650; y += 157) {
        const double before = plain.At({x, y}).head, after = s.At(change.place({x, y})).head / change.length;
        worst = std::max(worst, std::abs(after - before) / plain.HeadRange());
      }
    EXPECT_LT(worst, change.allowed) << change.name;
    std::printf("%s: %.1e of the range\n", change.name, worst);
  }
}

}  // namespace
}  // namespace aem_test
