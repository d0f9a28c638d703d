// A project that the real programs solve: one confined aquifer, wells and what a test adds.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "model/geometry.h"
#include "model/model_values.h"
#include "model/uniform_flow.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "platform/posix_processes.h"
#include "solver/driver.h"
#include "solver/solver_bridge.h"
#include "support/test_project.h"
#include "whpa/outline_command.h"
#include "whpa/rings.h"
#include "whpa/run.h"

namespace ormel::test {

inline constexpr double kQ = 900, kThickness = 20, kPorosity = 0.25, kGradient = 0.002, kConductivity = 12;

inline double RingArea(const Ring& ring) {
  return std::abs(SignedArea<ModelPoint>(ring, ring.front()));
}

/// Solved by the programs beside this one.
struct SolvedProject : TestProject {
  PosixProcesses real{ORMEL_BIN_DIR};
  SolverBridge bridge{ormel, [](Ormel& o) { ModelRunWHPAs(o); }};

  explicit SolvedProject(bool basemap_meters = true, bool compute_meters = true)
      : TestProject(basemap_meters, compute_meters) {
    ormel.ports.processes = &real;
    ormel.ports.solver = &bridge;
    ormel.window.SolveWindow = {500000, 503000, 202000, 200000};
    Change([](ModelValues& model) {
      model.AQThickness = kThickness;
      model.AQHydCond = kConductivity;
      model.AQPorosity = kPorosity;
      model.SOLVERIterations = 2;
      model.TRACECompute = 0;
      model.ViewErrorLog = model.ViewMessageLog = 0;
    });
  }

  void Change(const std::function<void(ModelValues&)>& change) {
    ModelValues model = ReadModel(ormel);
    change(model);
    WriteModel(ormel, model);
  }

  void AddWell(const std::string& label, MapPoint at, double discharge = kQ) {
    WellRow row;
    row.Label = label;
    row.Head = discharge;
    row.Radius = 0.2;
    StoreWell(ormel, row, at);
  }

  /// Solves, and outlines the zones of all wells for these times.
  void Outline(const std::string& years) {
    ModelRunVadox(ormel, {});
    ASSERT_TRUE(ormel.solution.ValidSolution) << ui.LastText();
    ui.boxes.clear();
    ui.OnForm("OutlineCaptureZone", [&](Form& form) {
      form.SetText("tbTimes", years);
      form.Click("OK");
    });
    OutlineCaptureZone(ormel);
    EXPECT_TRUE(ui.boxes.empty()) << ui.LastText();
  }

  /// Vertices of a stored zone in map units.
  std::vector<ModelPoint> Zone(const std::string& label) {
    const Pid pid = ormel.db().Scalar("select PID from Capzones where Label=?", {label}).AsLong();
    std::vector<ModelPoint> ring;
    for (const MapPoint& p : PointsOf(ormel, pid)) ring.push_back({p.x, p.y});
    return ring;
  }
  double Area(const std::string& label) { return RingArea(Zone(label)); }
};

/// Distance of a point to a ring, negative outside of it.
inline double DepthInside(ModelPoint p, const std::vector<ModelPoint>& ring) {
  double nearest = 1e300;
  bool inside = false;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const ModelPoint a = ring[i], b = ring[(i + 1) % ring.size()];
    const double dx = b.x - a.x, dy = b.y - a.y, length2 = dx * dx + dy * dy;
    double t = length2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0.0;
    t = std::min(1.0, std::max(0.0, t));
    nearest = std::min(nearest, std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy));
    if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / dy * dx) inside = !inside;
  }
  return inside ? nearest : -nearest;
}

}  // namespace ormel::test
