// Random models of all kinds with jitter: each is right by its own refined solution, or refused, or marked.
// ORMEL_TRIAL=<models> makes a long run of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "aem/models.h"

namespace aem_test {
namespace {

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}

  aem::Model Make() {
    aem::Model m = Base(Power(0.5, 1.5), Uniform(10, 40), 35.0);
    m.layout = {-500, -500, 500, 500, true};
    m.aquifer.uniform_flow = {Uniform(-0.5, 0.5), Uniform(-0.5, 0.5)};
    for (int n = Whole(0, 2); n > 0; --n) AddDomain(&m);
    for (int n = Whole(0, 2); n > 0; --n) AddWall(&m);
    for (int n = Whole(1, 2); n > 0; --n) AddString(&m);
    for (int n = Whole(0, 2); n > 0; --n) {
      const bool by_head = Whole(0, 4) == 0;
      m.wells.push_back(
          {{"W", 1}, Place(13.7), 0.3, by_head, by_head ? Uniform(28, 36) : Uniform(-200, 400)});
    }
    if (Whole(0, 5) == 0)
      m.disks.push_back({{"D", 1}, Place(11.0), Uniform(10, 60), false, Uniform(-1e-2, 1e-2)});
    return m;
  }

 private:
  double Uniform(double a, double b) { return std::uniform_real_distribution<>(a, b)(random_); }
  double Power(double a, double b) { return std::pow(10.0, Uniform(a, b)); }
  int Whole(int a, int b) { return std::uniform_int_distribution<>(a, b)(random_); }
  /// A point of a lattice, moved by a hair.
  Complex Place(double aside = 0.0) {
    return {100.0 * Whole(-3, 3) + aside + Uniform(-0.02, 0.02),
            100.0 * Whole(-3, 3) + aside + Uniform(-0.02, 0.02)};
  }
  Complex Hair() { return {Uniform(-0.02, 0.02), Uniform(-0.02, 0.02)}; }

  void AddDomain(aem::Model* m) {
    const Complex a = Place(), size{100.0 * Whole(1, 3), 100.0 * Whole(1, 3)};
    std::vector<Complex> ring{a, a + size.real(), a + size, a + Complex{0, size.imag()}};
    for (Complex& p : ring) p += Hair();
    aem::Domain d = Polygon(ring, "IN" + std::to_string(m->domains.size()));
    const int kind = Whole(0, 3);
    if (kind != 0) d.conductivity = m->aquifer.conductivity * Power(-2, 2);
    if (kind == 0) d.recharge_sink = -Uniform(1e-4, 2e-3);
    if (kind == 1) d.base = Uniform(-5, 5);
    m->domains.push_back(d);
  }
  void AddWall(aem::Model* m) {
    aem::Wall w;
    w.origin = {"HB" + std::to_string(m->walls.size()), 1};
    w.conductivity = Whole(0, 2) == 0 ? Power(-3, 0) : 0.0;
    for (int n = Whole(2, 4); n > 0; --n) w.points.push_back({{"HB", 1}, Place()});
    m->walls.push_back(w);
  }
  void AddString(aem::Model* m) {
    std::vector<Complex> points;
    for (int n = Whole(2, 4); n > 0; --n) points.push_back(Place(Whole(0, 1) * 37.0));
    aem::LineSinkString s = HeadString(points, Uniform(28, 36), "LS" + std::to_string(m->line_sinks.size()));
    s.kind = std::vector{aem::LineSinkKind::kHead, aem::LineSinkKind::kHead, aem::LineSinkKind::kDrain,
                         aem::LineSinkKind::kStream, aem::LineSinkKind::kDischarge}[std::size_t(Whole(0, 4))];
    if (s.kind == aem::LineSinkKind::kDischarge)
      for (aem::LineSinkSegment& g : s.segments) g.value = Uniform(-0.5, 0.5);
    if (s.kind == aem::LineSinkKind::kStream) s.inflow = Uniform(0, 300);
    if (Whole(0, 1) == 0) {
      s.resistance = Power(-1, 2);
      s.width = Uniform(1, 10);
      s.depth = Uniform(0.5, 3);
    }
    m->line_sinks.push_back(s);
  }

  std::mt19937 random_;
};

/// The same with every segment of everything divided in three.
aem::Model Refined(aem::Model m) {
  const auto divide = [](std::vector<aem::LabelledPoint>* points, bool closed) {
    std::vector<aem::LabelledPoint> fine;
    for (std::size_t i = 0; i < points->size(); ++i) {
      fine.push_back((*points)[i]);
      if (!closed && i + 1 == points->size()) break;
      const Complex a = (*points)[i].at, b = (*points)[(i + 1) % points->size()].at;
      for (double t : {0.31, 0.68}) fine.push_back({(*points)[i].origin, a + t * (b - a)});
    }
    *points = fine;
  };
  for (aem::Domain& d : m.domains) divide(&d.ring, true);
  for (aem::Wall& w : m.walls) divide(&w.points, w.kind != aem::WallKind::kOpen);
  return m;
}

enum class Verdict { kRight, kRefused, kMarked, kWrong };

/// Marked is what the program would warn of or refuse to load.
bool Marked(const aem::Checks& c, const aem::IterationReport& report) {
  return !report.converged || c.line_sink_head.value > 0.01 * c.head_range ||
         c.domain_head_jump.value > 0.01 * c.head_range || c.wall_leakage.value > 0.01 * c.undisturbed_flow;
}

bool Contradicts(const aem::Solution& s) {
  return std::any_of(s.Findings().begin(), s.Findings().end(),
                     [](const aem::Finding& f) { return f.severity == aem::Severity::kWarning; });
}

Verdict Judge(unsigned seed, double* worst) {
  const aem::Model m = Maker(seed).Make();
  aem::Solution s(m);
  const aem::IterationReport report = s.Iterate(4);
  if (s.Refused()) return Verdict::kRefused;
  aem::Options options;
  options.accuracy = 1e-5;
  aem::Solution fine(Refined(m), options);
  fine.Iterate(4);
  const double range = s.HeadRange();
  std::mt19937 random(seed);
  std::uniform_real_distribution<> place(-450, 450);
  *worst = 0.0;
  for (int i = 0; i < 40; ++i) {
    const Complex z{place(random), place(random)};
    const aem::PointState a = s.At(z), b = fine.At(z);
    if (a.status != aem::PointStatus::kOk || b.status != aem::PointStatus::kOk) continue;
    *worst = std::max(*worst, std::abs(a.head - b.head) / range);
  }
  if (*worst < 1e-3) return Verdict::kRight;
  return Marked(s.Check(), report) || Contradicts(s) ? Verdict::kMarked : Verdict::kWrong;
}

TEST(Trial, RandomModelsAreRightOrSaidNotToBe) {
  const char* asked = std::getenv("ORMEL_TRIAL");
  const int models = asked != nullptr ? std::atoi(asked) : 12;
  const char* from = std::getenv("ORMEL_TRIAL_FROM");
  const int first = from != nullptr ? std::atoi(from) : 1;
  int counts[4] = {};
  for (int seed = first; seed < first + models; ++seed) {
    double worst = 0.0;
    const Verdict verdict = Judge(unsigned(seed), &worst);
    ++counts[int(verdict)];
    EXPECT_NE(verdict, Verdict::kWrong) << "model " << seed << ": " << worst << " of the range";
  }
  std::printf("%d models: %d right, %d refused, %d marked, %d wrong\n", models, counts[0], counts[1],
              counts[2], counts[3]);
}

}  // namespace
}  // namespace aem_test
