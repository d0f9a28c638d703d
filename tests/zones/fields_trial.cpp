#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include "zones/fields.h"
using namespace zones_test;
int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 20;
  const unsigned seed = argc > 2 ? std::atoi(argv[2]) : 1;
  const bool dump = argc > 3;
  auto run = [&](aem::Model m, std::vector<double> years, const char* name) {
    aem::Solution s(m);
    s.Iterate(1);
    aem::SolutionField f(s);
    zones::PlanField field(f, 0.0);
    std::vector<double> times;
    for (double y : years) times.push_back(y * 365);
    auto t0 = std::chrono::steady_clock::now();
    auto sources = Sources(field);
    auto all = zones::OutlineZones(field, sources, times, {});
    double dt = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    for (auto& w : all) {
      std::printf("%s %s Q %.0f tracks %d %s", name, w.source.label.c_str(), w.source.discharge, w.tracks,
                  w.failure.c_str());
      for (auto& z : w.zones) {
        const double ratio = z.area * kThickness * kPorosity / z.pumped;
        std::printf("  %s%.4f (bal %.1e ov %.1e n %zu h %zu)", std::fabs(ratio - 1) > 0.01 ? "****" : "",
                    ratio, z.balance, z.overlap, z.ring.size(), z.holes.size());
        if (dump) {
          std::FILE* out = std::fopen((std::string("/tmp/z_") + name + "_" + w.source.label + "_" +
                                       std::to_string(int(z.time / 365)) + ".txt")
                                          .c_str(),
                                      "w");
          for (auto p : z.ring) std::fprintf(out, "%.6f %.6f\n", p.real(), p.imag());
          std::fclose(out);
        }
      }
      std::printf("\n");
    }
    std::printf("   %.3f s\n", dt);
  };
  for (double q : {20., 50., 100., 300.}) {
    aem::Model m = Aquifer(0.004);
    AddWell(m, {0, 0}, q);
    run(m, {2, 5, 10, 20, 1000}, "single");
  }
  {
    aem::Model m = Aquifer(0.0);
    AddWell(m, {0, 0}, 500);
    run(m, {0.1, 1, 10, 100}, "circle");
  }
  {
    aem::Model m = Aquifer(0.0);
    AddWell(m, {-100, 0}, 500);
    AddWell(m, {100, 0}, 500);
    run(m, {1, 10, 100}, "pair");
  }
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> u(0, 1);
  for (int i = 0; i < count; ++i) {
    aem::Model m = Aquifer(0.01 * u(rng), 6.28 * u(rng));
    const int n = 2 + int(7 * u(rng));
    for (int k = 0; k < n; ++k) {
      double x = 1800 * u(rng), y = 1800 * u(rng);
      AddWell(m, {x, y}, std::pow(10.0, 3 * u(rng)), 0.05 + 0.4 * u(rng));
    }
    double t1 = std::pow(10.0, -1 + 3 * u(rng)), t2 = std::pow(10.0, -1 + 3 * u(rng)),
           t3 = std::pow(10.0, -1 + 3 * u(rng));
    std::vector<double> years{t1, t2, t3};
    std::sort(years.begin(), years.end());
    std::printf("grad %.4f years %.2f %.2f %.2f\n", std::abs(m.aquifer.uniform_flow) / 200, years[0],
                years[1], years[2]);
    run(m, years, ("field" + std::to_string(i)).c_str());
  }
}
