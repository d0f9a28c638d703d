#include "vadox1/extraction.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <set>

#include "vadox1/records.h"

namespace vadox1 {
namespace {

using aem::Complex;
using aem::kNotSet;

constexpr const char* kEnd = "\r\n";

/// A head for a record: a dry place has none.
double HeadOrNone(double head, bool dry) {
  return dry ? kNotSet : head;
}

class Extraction {
 public:
  Extraction(const aem::Solution& solution, std::vector<aem::Finding>& findings)
      : solution_(solution), model_(solution.GetModel()), findings_(findings) {}

  std::string Text(const ExtractCommand& command) {
    Comment(fmt::format("Results of {} at time {:.10g} d", model_.title, solution_.Time()));
    if (!command.points.empty()) TestPoints(command.points);
    for (const Section section : command.sections) WriteSection(section);
    if (!command.flux_lines.empty()) FluxLines(command.flux_lines);
    Comment("End of results");  // who reads the file knows by it that nothing was cut off
    return std::move(text_);
  }

 private:
  void Comment(const std::string& text) { text_ += "* " + text + kEnd; }
  void Header(const std::string& text) { text_ += "! " + text + kEnd; }

  void WriteSection(Section section) {
    switch (section) {
      case Section::kWellDischarge:
        return DischargeWells();
      case Section::kWellHead:
        return HeadWells();
      case Section::kLineSinkDischarge:
        return DischargeLineSinks();
      case Section::kLineSinkHead:
        return HeadLineSinks();
      case Section::kInhomogeneity:
        Domains();
        return Walls();
    }
  }

  void TestPoints(const std::vector<TestPoint>& points);
  void TestPointRecord(const TestPoint& point, const aem::PointState& plan);
  double VerticalVelocity(const aem::PointState& state, double elevation, double added) const;

  template <class Well>
  void WellRecords(const std::vector<Well>& wells, const std::vector<aem::WellResult>& results,
                   bool by_head) {
    for (std::size_t i = 0; i < wells.size() && i < results.size(); ++i) {
      if (wells[i].by_head != by_head) continue;
      const aem::WellResult& result = results[i];
      Record record(' ');
      record.Add(wells[i].at.real()).Add(wells[i].at.imag()).Add(wells[i].radius).Add(result.discharge);
      const double head = HeadOrNone(result.head, result.dry);
      if (by_head) {
        // The second number is what has to be added to the specified head to give the head that was reached.
        record.Add(wells[i].value).Add(head - wells[i].value);
      } else {
        record.Add(head);
      }
      text_ += record.Add(wells[i].origin.label).Line();
    }
  }

  void DischargeWells();
  void HeadWells();
  void DischargeLineSinks();
  void HeadLineSinks();
  void HeadSegments(std::size_t string, const aem::StringResult& result);
  void SinkDisks(bool by_head);
  void Domains();
  void Walls();
  void FluxLines(const std::vector<FluxLine>& lines);

  const aem::Solution& solution_;
  const aem::Model& model_;
  std::vector<aem::Finding>& findings_;
  std::string text_;
};

// --- test points ---

void Extraction::TestPoints(const std::vector<TestPoint>& points) {
  std::vector<Complex> places(points.size());
  std::vector<aem::PointState> states(points.size());
  std::transform(points.begin(), points.end(), places.begin(),
                 [](const TestPoint& point) { return point.at; });
  solution_.Evaluate(places, states);
  Comment(
      "Test points: x, y, z, porosity, conductivity, base, net recharge, potential, head, discharge x and y, "
      "velocity x, y and z, label");
  for (std::size_t i = 0; i < points.size(); ++i) TestPointRecord(points[i], states[i]);
}

void Extraction::TestPointRecord(const TestPoint& point, const aem::PointState& plan) {
  aem::PointState state = plan;
  const bool wet = state.status == aem::PointStatus::kOk && state.thickness > 0.0;
  double z = point.elevation.value_or(state.base + state.thickness);
  Complex velocity{};
  double velocity_z = 0.0;
  if (wet) {
    z = std::clamp(z, state.base, state.base + state.thickness);
    double added = 0.0;
    state = solution_.AtElevation(point.at, z, &added);
    velocity = state.discharge / (state.thickness * state.porosity);
    velocity_z = VerticalVelocity(plan, z, added);
  } else {
    state.head = kNotSet;
    state.discharge = {};
    findings_.push_back(
        {aem::Severity::kNote, point.label, 0,
         fmt::format("The test point at {:.6g}, {:.6g} is {}.", point.at.real(), point.at.imag(),
                     state.status == aem::PointStatus::kDry ? "dry" : "in an ignored region")});
  }
  Record record('@');
  record.Add(point.at.real()).Add(point.at.imag()).Add(z).Add(state.porosity).Add(state.conductivity);
  record.Add(state.base).Add(state.net_recharge).Add(state.potential).Add(state.head);
  record.Add(state.discharge.real()).Add(state.discharge.imag());
  record.Add(velocity.real()).Add(velocity.imag()).Add(velocity_z).Add(point.label);
  text_ += record.Line();
}

/// Upward velocity from continuity.  grad b is that of the head where the aquifer is unconfined: -Q / (k b).
double Extraction::VerticalVelocity(const aem::PointState& state, double elevation, double added) const {
  const double s = (elevation - state.base) / state.thickness;
  double upward = s * state.net_recharge;  // s times -div Q
  const double top = model_.aquifer.base + model_.aquifer.thickness;
  const bool unconfined = state.head < top;
  if (unconfined) {
    const double b = state.thickness;
    upward -= s * std::norm(state.discharge) / (state.conductivity * b * b);
  }
  return (upward + added) / state.porosity;
}

// --- wells ---

void Extraction::DischargeWells() {
  Header("discharge specified wells");
  WellRecords(model_.wells, solution_.Wells(), false);
  Header("discharge specified partially penetrating wells");
  WellRecords(model_.partial_wells, solution_.PartialWells(), false);
  Header("Theis wells");
  // One record a label, at the place of the label's first record.
  const std::vector<aem::WellResult> results = solution_.TheisWells();
  std::set<std::string> seen;
  std::size_t next = 0;
  for (const aem::TheisRecord& well : model_.theis) {
    if (!seen.insert(well.origin.label).second || next == results.size()) continue;
    const aem::WellResult& result = results[next++];
    Record record(' ');
    record.Add(well.at.real()).Add(well.at.imag()).Add(well.radius).Add(result.discharge);
    text_ += record.Add(HeadOrNone(result.head, result.dry)).Add(well.origin.label).Line();
  }
  SinkDisks(false);
}

void Extraction::HeadWells() {
  Header("head specified wells");
  WellRecords(model_.wells, solution_.Wells(), true);
  Header("head specified partially penetrating wells");
  WellRecords(model_.partial_wells, solution_.PartialWells(), true);
  SinkDisks(true);
}

void Extraction::SinkDisks(bool by_head) {
  const std::vector<aem::DiskResult> results = solution_.Disks();
  for (std::size_t i = 0; i < model_.disks.size() && i < results.size(); ++i) {
    const aem::SinkDisk& disk = model_.disks[i];
    if (disk.by_head != by_head) continue;
    Comment(
        fmt::format("Sink disk {}: centre {:.10g}, {:.10g}; radius {:.10g}; rate {:.10g}; discharge {:.10g}; "
                    "head at the centre {:.10g}",
                    disk.origin.label, disk.at.real(), disk.at.imag(), disk.radius, results[i].rate,
                    results[i].discharge, results[i].head));
  }
}

// --- line-sinks
// -------------------------------------------------------------------------------------------------

void Extraction::DischargeLineSinks() {
  Header("discharge specified line sinks");
  const std::vector<aem::StringResult> results = solution_.LineSinks();
  for (std::size_t i = 0; i < model_.line_sinks.size() && i < results.size(); ++i) {
    const aem::LineSinkString& string = model_.line_sinks[i];
    if (string.kind != aem::LineSinkKind::kDischarge) continue;
    for (std::size_t k = 0; k < string.segments.size() && k < results[i].segments.size(); ++k) {
      const aem::LineSinkSegment& segment = string.segments[k];
      const aem::SegmentResult& result = results[i].segments[k];
      Record record(' ');
      record.Add(segment.from.real()).Add(segment.from.imag()).Add(segment.to.real()).Add(segment.to.imag());
      record.Add(result.discharge).Add(result.calculated_head);
      text_ += record.Add(segment.origin.label).Line();
    }
  }
}

void Extraction::HeadSegments(std::size_t index, const aem::StringResult& result) {
  const aem::LineSinkString& string = model_.line_sinks[index];
  const bool drain = string.kind == aem::LineSinkKind::kDrain;
  for (std::size_t k = 0; k < string.segments.size() && k < result.segments.size(); ++k) {
    const aem::LineSinkSegment& segment = string.segments[k];
    const aem::SegmentResult& reach = result.segments[k];
    Record record(' ');
    record.Add(segment.from.real()).Add(segment.from.imag()).Add(segment.to.real()).Add(segment.to.imag());
    record.Add(reach.specified_head).Add(reach.calculated_head).Add(reach.discharge);
    record.Add(reach.width).Add(string.resistance).Add(string.depth);
    if (!drain) record.Add(reach.baseflow).Add(reach.overland_flow);
    text_ += record.Add(reach.error).Add(segment.origin.label).Line();
  }
}

void Extraction::HeadLineSinks() {
  const std::vector<aem::StringResult> results = solution_.LineSinks();
  for (const bool drains : {false, true}) {
    Header(drains ? "drains" : "head specified line sinks");
    for (std::size_t i = 0; i < model_.line_sinks.size() && i < results.size(); ++i) {
      const aem::LineSinkKind kind = model_.line_sinks[i].kind;
      if (kind == aem::LineSinkKind::kDischarge || (kind == aem::LineSinkKind::kDrain) != drains) continue;
      if (kind == aem::LineSinkKind::kStream) {
        Comment(fmt::format("Stream {}: takes {:.10g} from the aquifer, {:.10g} leaves its last vertex",
                            model_.line_sinks[i].origin.label, results[i].discharge, results[i].outflow));
      }
      HeadSegments(i, results[i]);
    }
  }
}

// --- domains and walls ---

void Extraction::Domains() {
  Header("transmissivity inhomogeneities");
  const std::vector<aem::DomainResult> results = solution_.Domains();
  for (std::size_t i = 0; i < model_.domains.size() && i < results.size(); ++i) {
    const aem::Domain& domain = model_.domains[i];
    const aem::DomainResult& result = results[i];
    Record head(' ');
    head.Add(static_cast<int>(i) + 1).Add(result.conductivity).Add(result.base).Add(result.recharge_sink);
    head.Add(result.porosity).Add(result.area).Add(result.mean_jump).Add(domain.origin.label);
    text_ += head.Line();
    for (std::size_t k = 0; k < domain.ring.size() && k < result.vertices.size(); ++k) {
      const aem::DomainVertexResult& vertex = result.vertices[k];
      Record record(' ');
      record.Add(static_cast<int>(k) + 1);
      record.Add(vertex.node.real())
          .Add(vertex.node.imag())
          .Add(vertex.centre.real())
          .Add(vertex.centre.imag());
      record.Add(vertex.jump_node).Add(vertex.jump_parabolic);
      // Recharge is modelled by area elements, not by extraction along the edges: those three strengths are
      // zero.
      record.Add(0.0).Add(0.0).Add(0.0);
      record.Add(vertex.factor).Add(vertex.delta_node).Add(vertex.delta_centre);
      text_ += record.Add(domain.ring[k].origin.label).Line();
    }
  }
}

void Extraction::Walls() {
  Header("slurry walls");
  const std::vector<aem::WallResult> results = solution_.Walls();
  for (std::size_t i = 0; i < model_.walls.size() && i < results.size(); ++i) {
    const aem::Wall& wall = model_.walls[i];
    Record head(' ');
    head.Add(static_cast<int>(i) + 1).Add(wall.conductivity).Add(wall.thickness).Add(wall.porosity);
    text_ += head.Add(wall.bottom).Add(results[i].leakage).Add(wall.origin.label).Line();
    for (std::size_t k = 0; k < wall.points.size() && k < results[i].vertices.size(); ++k) {
      const aem::WallVertexResult& vertex = results[i].vertices[k];
      Record record(' ');
      record.Add(static_cast<int>(k) + 1);
      record.Add(vertex.node.real())
          .Add(vertex.node.imag())
          .Add(vertex.centre.real())
          .Add(vertex.centre.imag());
      record.Add(vertex.jump_node).Add(vertex.jump_parabolic);
      record.Add(vertex.delta_flow_centre).Add(vertex.delta_flow_node);
      text_ += record.Add(wall.points[k].origin.label).Line();
    }
  }
}

// --- flux ---

void Extraction::FluxLines(const std::vector<FluxLine>& lines) {
  Header("flux inspection lines");
  for (const FluxLine& line : lines) {
    if (line.vertices.size() < 2) {
      findings_.push_back(
          {aem::Severity::kWarning, line.origin.label, line.origin.line,
           "The flux inspection line has fewer than two vertices and was left out. Draw it again."});
      continue;
    }
    Record record(' ');
    text_ += record.Add(line.origin.label).Add(solution_.Flux(line.vertices)).Line();
  }
}

}  // namespace

std::string ExtractionText(const aem::Solution& solution, const ExtractCommand& command,
                           std::vector<aem::Finding>& findings) {
  return Extraction(solution, findings).Text(command);
}

}  // namespace vadox1
