// The commands of a deck: layout, solving, extraction, grid and tracing.

#include <algorithm>
#include <cmath>
#include <utility>

#include "vadox1/parser.h"

namespace vadox1 {

/// Two opposite corners, in whichever order.
aem::Window Parser::ReadWindow() const {
  const aem::Complex a = Point(1), b = Point(3);
  aem::Window window;
  window.left = std::min(a.real(), b.real());
  window.right = std::max(a.real(), b.real());
  window.bottom = std::min(a.imag(), b.imag());
  window.top = std::max(a.imag(), b.imag());
  window.set = true;
  if (!(window.right > window.left) || !(window.top > window.bottom)) {
    throw UnusableLine{"The window has no width or no height; zoom to the model and solve again"};
  }
  return window;
}

void Parser::LayoutWindow() {
  const aem::Window window = ReadWindow();
  if (!solution_begun_) deck_.model.layout = window;
  Add(LayoutCommand{window});
}

void Parser::Time() {
  Add(TimeCommand{Number(1)});
}

void Parser::Solve() {
  solution_begun_ = true;
  Add(SolveCommand{std::max(1, Whole(1))});
}

void Parser::Save() {
  Add(SaveCommand{FileName(".SOL")});
}

void Parser::Load() {
  if (deck_.describes_model) {
    throw UnusableLine{"A saved solution cannot be loaded into a deck that describes elements of its own"};
  }
  solution_begun_ = true;
  Add(LoadCommand{FileName(".SOL")});
}

// --- extraction ---

void Parser::ExtractBlock() {
  extract_ = {};
  Enter(Level::kExtract);
}

void Parser::ExtractFile() {
  extract_.file = FileName(".XTR");
}

void Parser::WellSection() {
  const bool discharge = SameItem(1, "discharge");
  if (!discharge && !SameItem(1, "head")) throw UnusableLine{"Behind \"well\" must stand discharge or head"};
  extract_.sections.push_back(discharge ? Section::kWellDischarge : Section::kWellHead);
}

void Parser::LineSinkSection() {
  const bool discharge = SameItem(1, "discharge");
  if (!discharge && !SameItem(1, "head"))
    throw UnusableLine{"Behind \"linesink\" must stand discharge or head"};
  extract_.sections.push_back(discharge ? Section::kLineSinkDischarge : Section::kLineSinkHead);
}

void Parser::InhomogeneitySection() {
  extract_.sections.push_back(Section::kInhomogeneity);
}

void Parser::AddTestPoint() {
  TestPoint point;
  point.at = Point(0);
  if (items_.size() > 2) {
    point.elevation = ElevationItem(2);
    point.label = Label(point.elevation ? 3 : 2).label;
  }
  extract_.points.push_back(std::move(point));
}

void Parser::FluxLineHead() {
  FluxLine line;
  line.origin = Label(1);
  extract_.flux_lines.push_back(std::move(line));
  Enter(Level::kFlux);
}

void Parser::AddFluxVertex() {
  extract_.flux_lines.back().vertices.push_back(Point(0));
}

/// A line without vertices has no "quit" of its own: the one that comes is that of the extraction.
void Parser::CloseFlux() {
  Enter(Level::kExtract);
  if (extract_.flux_lines.back().vertices.empty()) Quit();
}

// --- grid ---

void Parser::GridBlock() {
  grid_ = {};
  grid_ready_ = false;
  Enter(Level::kGrid);
}

void Parser::GridWindow() {
  grid_.window = ReadWindow();
}

void Parser::HorizontalPoints() {
  grid_.columns = Whole(1);
  if (grid_.columns < 0) throw UnusableLine{"The number of horizontal points must not be below zero"};
}

void Parser::Go() {
  grid_ready_ = true;
}

void Parser::SurferFile() {
  if (!grid_ready_) throw UnusableLine{"\"go\" must stand before \"surfer\""};
  grid_.file = FileName(".GRD");
  Add(grid_);
}

// --- tracing ---

void Parser::TraceBlock() {
  trace_ = {};
  trace_pending_ = trace_timed_ = false;
  Enter(Level::kTrace);
}

void Parser::TraceFile() {
  trace_.file = FileName(".PTH");
}

void Parser::TraceTime() {
  trace_.time = Number(1);
  if (!(trace_.time >= 0.0)) throw UnusableLine{"The longest travel time must not be below zero"};
  trace_timed_ = true;
}

void Parser::TraceStep() {
  trace_.step = Number(1);
  if (!(*trace_.step >= 0.0)) throw UnusableLine{"The step must not be below zero"};
}

void Parser::AddPoint() {
  PointStart start;
  start.at = Point(0);
  start.line = line_;
  if (items_.size() > 2) start.elevation = Number(2);
  if (items_.size() > 3) {
    const double direction = Number(3);
    if (direction == 0.0) throw UnusableLine{"The direction must be 1 (forward) or -1 (backward)"};
    start.forward = direction > 0.0;
  }
  trace_.points.push_back(start);
  trace_pending_ = true;
}

void Parser::TraceWell() {
  WellStart start;
  start.at = Point(1);
  start.elevation = Number(3);
  start.particles = Whole(4);
  start.line = line_;
  if (start.particles < 1) throw UnusableLine{"The number of particles must be 1 at least"};
  trace_.wells.push_back(start);
  trace_pending_ = true;
}

BoundaryLine Parser::ReadBoundary() const {
  const BoundaryLine line{Point(1), Point(3)};
  if (line.from == line.to) throw UnusableLine{"The two points of the boundary are one and the same"};
  return line;
}

void Parser::Boundary() {
  trace_.boundaries.push_back(ReadBoundary());
}

void Parser::RunTrace() {
  if (trace_.file.empty()) throw UnusableLine{"\"file\" must stand before the paths are traced"};
  if (!trace_timed_) throw UnusableLine{"\"time\" must stand before the paths are traced"};
  Add(trace_);
  trace_pending_ = false;
}

// --- capture zones ---

void Parser::ZonesBlock() {
  zones_ = {};
  Enter(Level::kZones);
}

void Parser::ZoneTimes() {
  zones_.times.clear();
  for (std::size_t item = 1; item < items_.size(); ++item) {
    const double time = Number(item);
    if (!(time > 0.0)) throw UnusableLine{"A time of travel must be greater than zero"};
    zones_.times.push_back(time);
  }
  std::sort(zones_.times.begin(), zones_.times.end());
  zones_.times.erase(std::unique(zones_.times.begin(), zones_.times.end()), zones_.times.end());
}

void Parser::ZoneTolerance() {
  zones_.tolerance = Number(1);
  if (!(*zones_.tolerance > 0.0 && *zones_.tolerance <= 0.1))
    throw UnusableLine{"The tolerance must be above zero and not above 0.1"};
}

void Parser::RunZones() {
  if (zones_.file.empty()) throw UnusableLine{"\"file\" must stand before the zones are outlined"};
  if (zones_.times.empty()) throw UnusableLine{"\"times\" must stand before the zones are outlined"};
  Add(zones_);
  zones_.wells.clear();
}

}  // namespace vadox1
