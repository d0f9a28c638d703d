// Outlines against an independent construction: forward paths from a fine raster.  A place is inside when the
// water at its base reaches the well in time.  Where outline and raster can differ only by little, just
// beside the outline, pairs of places on both sides of it are asked besides.
//   trial_zone_raster [models] [first] [folder for pictures' data]
//   trial_zone_raster closed 0 [folder]       models with closed forms instead of random ones
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "aem/trace.h"
#include "zones/closed_models.h"
#include "zones/polygons.h"
#include "zones/random_models.h"

namespace zones_test {
namespace {

constexpr int kCells = 64;
constexpr int kProbes = 80;
/// Off the outline, in parts of the zone's width.
constexpr double kBeside = 0.01;

/// Where the water at a place goes, and when it arrives.
struct Goal {
  std::string well;
  double time = 0.0;
};

struct Box {
  double left = 1e30, bottom = 1e30, right = -1e30, top = -1e30;
  void Take(Complex p) {
    left = std::min(left, p.real()), right = std::max(right, p.real());
    bottom = std::min(bottom, p.imag()), top = std::max(top, p.imag());
  }
  void Grow(double part) {
    const double more = part * std::max(right - left, top - bottom);
    left -= more, right += more, bottom -= more, top += more;
  }
  Complex Cell(int i, int j, int cells) const {
    return {left + (right - left) * (i + 0.5) / cells, bottom + (top - bottom) * (j + 0.5) / cells};
  }
};

std::vector<Goal> Goals(const aem::SolutionField& field, const std::vector<Complex>& places, double time,
                        double step) {
  std::vector<aem::PathStart> starts;
  for (const Complex at : places) starts.push_back({at, -1e30, true});
  aem::TraceOptions options;
  options.longest_time = time;
  options.step = step;
  options.tolerance = 1e-6;
  std::vector<Goal> goals;
  for (const aem::Path& path : aem::TracePaths(field, starts, options))
    goals.push_back(path.end == aem::PathEnd::kWell ? Goal{path.label, path.points.back().time} : Goal{});
  return goals;
}

struct Tally {
  int models = 0, refused = 0, zones = 0, failures = 0, wrong = 0, silent = 0, honest = 0;
  double worst_difference = 0.0, worst_probe = 0.0, worst_balance = 0.0, seconds = 0.0;
};

struct Verdict {
  double difference = 0.0;  ///< cells that differ over cells of the zone
  double wrong_probes = 0.0;
};

class Model {
 public:
  Model(std::string name, const char* folder) : name_(std::move(name)), folder_(folder) {}

  void RunRandom(unsigned number, Tally* tally) {
    ModelMaker maker(1000 + number);
    const aem::Model model = maker.Make(number);
    std::printf("model %u: %s\n", number, maker.Names().c_str());
    const double radius = std::exp(maker.Draw(std::log(60.0), std::log(450.0)));
    // For the first well: times of a tenth, one and four times this volume.
    volume_ = kPorosity * kThickness * std::numbers::pi * radius * radius;
    Run(model, tally);
  }

  void RunClosed(const ClosedModel& closed, Tally* tally) {
    std::printf("%s\n", closed.name);
    times_ = closed.times;
    Run(closed.model, tally);
  }

 private:
  void Run(const aem::Model& model, Tally* tally) {
    aem::Solution solution(model);
    if (solution.Refused() || !solution.Iterate(4).converged) {
      ++tally->refused;
      std::printf("  not solved: %s\n",
                  solution.Findings().empty() ? "" : solution.Findings().front().text.c_str());
      return;
    }
    ++tally->models;
    solution.PrepareManyPoints();
    const aem::SolutionField field(solution);
    const zones::PlanField plan(field, 0.0);
    const std::vector<zones::Source> sources = Sources(plan);
    if (times_.empty()) {
      const double time = volume_ / sources[0].discharge;
      times_ = {0.1 * time, time, 4.0 * time};
    }
    const auto start = std::chrono::steady_clock::now();
    const auto results = zones::OutlineZones(plan, sources, times_, {});
    tally->seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    // The raster's paths follow the field without its cells: a taken up state has none.
    solution.LoadState(solution.SaveState());
    Compare(field, results, tally);
  }

  void Compare(const aem::SolutionField& field, const std::vector<zones::WellZones>& results, Tally* tally) {
    Box box;
    double step = 1e30;
    for (const zones::WellZones& well : results) {
      if (!well.failure.empty()) {
        ++tally->failures;
        std::printf("  %s Q %.0f: %s (%d tracks)\n", well.source.label.c_str(), well.source.discharge,
                    well.failure.c_str(), well.tracks);
      }
      for (const zones::Zone& zone : well.zones) {
        for (const Complex at : zone.ring) box.Take(at);
        step = std::min(step, std::sqrt(zone.area) * 3.0);
      }
    }
    if (box.left > box.right) return;
    box.Grow(0.06);
    step = std::max(step, 0.02 * std::max(box.right - box.left, box.top - box.bottom));
    std::vector<Complex> cells;
    for (int j = 0; j < kCells; ++j)
      for (int i = 0; i < kCells; ++i) cells.push_back(box.Cell(i, j, kCells));
    const std::vector<Goal> goals = Goals(field, cells, times_.back(), step);
    for (const zones::WellZones& well : results)
      for (const zones::Zone& zone : well.zones) {
        ++tally->zones;
        const Verdict verdict{Difference(well, zone, cells, goals), Probe(field, well, zone, step)};
        Judge(well, zone, verdict, tally);
        Save(well, zone, cells, goals, verdict);
      }
  }

  double Difference(const zones::WellZones& well, const zones::Zone& zone, const std::vector<Complex>& cells,
                    const std::vector<Goal>& goals) const {
    double own = 0.0, differ = 0.0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const bool inside = InZone(zone, cells[i]);
      own += inside;
      differ += inside != (goals[i].well == well.source.label && goals[i].time <= zone.time);
    }
    return differ / std::max(own, 100.0);
  }

  /// The share of places beside the outline that belong to the other side.
  double Probe(const aem::SolutionField& field, const zones::WellZones& well, const zones::Zone& zone,
               double step) const {
    const Polygon polygon(zone);
    const double length = polygon.Length(), off = kBeside * 2.0 * polygon.Area() / length;
    std::vector<Complex> places;
    double done = 0.0, next = 0.0;
    for (std::size_t i = 0; i < zone.ring.size(); ++i) {
      const Complex a = zone.ring[i], side = zone.ring[(i + 1) % zone.ring.size()] - a;
      for (; next <= done + std::abs(side); next += length / kProbes) {
        const Complex at = a + side * ((next - done) / std::abs(side));
        const Complex normal = Complex(0.0, off) * side / std::abs(side);
        places.insert(places.end(), {at + normal, at - normal});
      }
      done += std::abs(side);
    }
    const std::vector<Goal> goals = Goals(field, places, 1.001 * zone.time, step);
    double wrong = 0.0;
    for (std::size_t i = 0; i < places.size(); ++i) {
      const bool reaches = goals[i].well == well.source.label && goals[i].time <= zone.time;
      wrong += InZone(zone, places[i]) != reaches;
    }
    return wrong / double(places.size());
  }

  void Judge(const zones::WellZones& well, const zones::Zone& zone, const Verdict& verdict, Tally* tally) {
    const bool wrong = verdict.difference > 0.01 || verdict.wrong_probes > 0.05;
    const bool told = std::fabs(zone.balance) > 0.01;
    tally->wrong += wrong;
    tally->silent += wrong && !told;
    tally->honest += !wrong && told;
    tally->worst_difference = std::max(tally->worst_difference, verdict.difference);
    tally->worst_probe = std::max(tally->worst_probe, verdict.wrong_probes);
    if (!wrong) tally->worst_balance = std::max(tally->worst_balance, std::fabs(zone.balance));
    std::printf("  %s%s Q %.0f T %.0f: area %.0f differs %.4f probes %.3f balance %.1e holes %zu tracks %d",
                wrong  ? "WRONG "
                : told ? "BALANCE "
                       : "",
                well.source.label.c_str(), well.source.discharge, zone.time, zone.area, verdict.difference,
                verdict.wrong_probes, zone.balance, zone.holes.size(), well.tracks);
    const zones::Ledger& s = zone.supply;
    std::printf(" pores %.3f recharge %.3f surface %.3f edge %.3f left out %.1e\n", s.pores / zone.pumped,
                s.recharge / zone.pumped, s.surface / zone.pumped, s.edge / zone.pumped,
                s.left_out / zone.pumped);
  }

  /// For draw_zones.py: the difference first, then rings, then cells.
  void Save(const zones::WellZones& well, const zones::Zone& zone, const std::vector<Complex>& cells,
            const std::vector<Goal>& goals, const Verdict& verdict) const {
    if (folder_ == nullptr) return;
    const std::string name = std::string(folder_) + "/" + name_ + "_" + well.source.label + "_" +
                             std::to_string(int(zone.time)) + ".txt";
    std::FILE* out = std::fopen(name.c_str(), "w");
    if (out == nullptr) return;
    std::fprintf(out, "%.6f %.6f\n", verdict.difference, verdict.wrong_probes);
    std::fprintf(out, "ring\n");
    for (const Complex p : zone.ring) std::fprintf(out, "%.4f %.4f\n", p.real(), p.imag());
    for (const auto& hole : zone.holes) {
      std::fprintf(out, "ring\n");
      for (const Complex p : hole) std::fprintf(out, "%.4f %.4f\n", p.real(), p.imag());
    }
    std::fprintf(out, "cells\n");
    for (std::size_t i = 0; i < cells.size(); ++i)
      if (goals[i].well == well.source.label && goals[i].time <= zone.time)
        std::fprintf(out, "%.4f %.4f\n", cells[i].real(), cells[i].imag());
    std::fclose(out);
  }

  std::string name_;
  const char* folder_;
  double volume_ = 0.0;
  std::vector<double> times_;
};

}  // namespace
}  // namespace zones_test

int main(int argc, char** argv) {
  const unsigned count = argc > 1 ? unsigned(std::atoi(argv[1])) : 60;
  const unsigned first = argc > 2 ? unsigned(std::atoi(argv[2])) : 0;
  zones_test::Tally tally;
  const char* folder = argc > 3 ? argv[3] : nullptr;
  if (argc > 1 && std::string(argv[1]) == "closed")
    for (const zones_test::ClosedModel& closed : zones_test::ClosedModels())
      zones_test::Model(closed.name, folder).RunClosed(closed, &tally);
  for (unsigned i = first; i < first + count; ++i) {
    zones_test::Model("m" + std::to_string(i), folder).RunRandom(i, &tally);
    std::fflush(stdout);
  }
  std::printf("%d models (%d more not solved), %d zones in %.1f s; %d wells without a zone\n", tally.models,
              tally.refused, tally.zones, tally.seconds, tally.failures);
  std::printf("%d wrong, %d of them with a good balance; %d right with a bad one\n", tally.wrong,
              tally.silent, tally.honest);
  std::printf("worst: difference %.4f, probes %.4f, balance of right zones %.2e\n", tally.worst_difference,
              tally.worst_probe, tally.worst_balance);
  return tally.wrong + tally.honest > 0 ? 1 : 0;
}
