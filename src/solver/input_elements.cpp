#include "solver/input_elements.h"

#include <cmath>
#include <span>
#include <string>
#include <string_view>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "model/wells.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

InputVertex VertexOf(const Ormel& ormel, Seq seq, MapPoint at) {
  return {seq, WToM(ormel, at), at};
}

std::vector<InputVertex> VerticesOf(const Ormel& ormel, const VertexTable& vertices, Pid pid) {
  std::vector<InputVertex> list;
  for (const StringVertex& vertex : vertices.Of(pid)) list.push_back(VertexOf(ormel, vertex.seq, vertex.at));
  return list;
}

// --- wells ---

struct WellGroup {
  int head_specified, partial, pond, transient;
};
/// By WellKind.
constexpr std::array<WellGroup, kWellKinds> kWellGroups{
    {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 0, 1}, {0, 0, 1, 0}, {1, 0, 1, 0}}};

std::vector<WellInput> ReadGroup(Ormel& ormel, const WellGroup& group) {
  std::string sql =
      "select Vertices.X,Vertices.Y,Wells.* from Vertices inner join Wells on Vertices.VID = Wells.VID ";
  sql += "where Wells.HeadSpecified=" + std::to_string(group.head_specified) +
         " and Wells.PPWell=" + std::to_string(group.partial) +
         " and Wells.Pond=" + std::to_string(group.pond) +
         " and Wells.Transient=" + std::to_string(group.transient) + " order by Wells.VID;";
  RowReader rows(ormel.db(), sql);
  const int vid = rows.Column("VID");
  const int label = rows.Column("Label");
  const int cyclic = rows.Column("Cyclic");
  const int cycles = rows.Column("Cycles");
  const std::array numbers{rows.Column("Head"),       rows.Column("Radius"), rows.Column("TopElev"),
                           rows.Column("BottomElev"), rows.Column("Time"),   rows.Column("StartHead"),
                           rows.Column("SS")};
  std::vector<WellInput> wells;
  while (rows.Next()) {
    WellInput well;
    well.vid = rows.Long(vid);
    well.label = rows.Text(label);
    well.place = VertexOf(ormel, 0, {rows.Double(0), rows.Double(1)});
    const std::array targets{&well.head, &well.radius,     &well.top,    &well.bottom,
                             &well.time, &well.start_head, &well.storage};
    for (std::size_t i = 0; i < targets.size(); ++i) *targets[i] = rows.Double(numbers[i]);
    well.cyclic = rows.Bool(cyclic);
    well.cycles = rows.Long(cycles);
    wells.push_back(std::move(well));
  }
  return wells;
}

// --- line-sinks ---

/// Marks a string whose resistance no scenario changes.
constexpr std::string_view kNoScenario = "__NONE__";

double Distance(MapPoint a, MapPoint b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

/// What runs from the string's first end to its last in proportion to the length, at the middle of each
/// segment.
std::vector<double> SegmentValues(std::span<const InputVertex> vertices, double starting, double ending) {
  std::vector<double> values;
  double total = 0.0;
  for (std::size_t i = 1; i < vertices.size(); ++i)
    total += Distance(vertices[i - 1].on_map, vertices[i].on_map);
  double passed = 0.0;
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    const double length = Distance(vertices[i - 1].on_map, vertices[i].on_map);
    // In this order: another one gives another last digit in the deck where a value is half way.
    const double rise = total > 0.0 ? (ending - starting) * (passed + 0.5 * length) / total : 0.0;
    values.push_back(starting + rise);
    passed += length;
  }
  return values;
}

/// Reads strings by name; projects of older programs lack the fields of streams and scenarios.
std::vector<StringInput> ReadGroup(Ormel& ormel, const VertexTable& vertices, std::string_view condition) {
  RowReader rows(ormel.db(), "select * from LinesinkStrings where " + std::string(condition) + ";");
  const auto number = [&rows](std::string_view name) {
    const int column = rows.Column(name);
    return column < 0 ? 0.0 : rows.Double(column);
  };
  const auto flag = [&rows](std::string_view name) {
    const int column = rows.Column(name);
    return column >= 0 && rows.Bool(column);
  };
  const int scenario = rows.Column("ScenResistance");
  const int pid = rows.Column("PID");
  const int label = rows.Column("Label");
  const int location = rows.Column("AutoSWIZC");
  std::vector<StringInput> strings;
  while (rows.Next()) {
    StringInput s;
    s.pid = rows.Long(pid);
    s.label = rows.Text(label);
    s.resistance = number("Resistance");
    s.width = number("Width");
    s.depth = number("Depth");
    s.drain = flag("Drain");
    s.farfield = flag("Farfield");
    s.location = rows.Long(location);
    s.end_inflow = number("EndInflow");
    s.overland_flow = number("Overlandflow");
    s.end_stream = number("EndStream") == 1.0;
    if (scenario >= 0 && !rows.IsNull(scenario) && rows.Text(scenario) != kNoScenario)
      s.scenario = std::string(rows.Text(scenario));
    s.vertices = VerticesOf(ormel, vertices, s.pid);
    s.values = SegmentValues(s.vertices, number("StartingHead"), number("EndingHead"));
    strings.push_back(std::move(s));
  }
  return strings;
}

}  // namespace

void ReadDomains(Ormel& ormel, const VertexTable& vertices, SolverInput& input) {
  RowReader rows(ormel.db(), "select * from Inhomogeneities");
  const auto changed = [&rows](std::string_view value, std::string_view change) -> std::optional<double> {
    if (!rows.Bool(rows.Column(change))) return std::nullopt;
    return rows.Double(rows.Column(value));
  };
  const int pid = rows.Column("PID");
  const int label = rows.Column("Label");
  const int recharge = rows.Column("Recharge");
  while (rows.Next()) {
    DomainInput domain;
    domain.pid = rows.Long(pid);
    domain.label = rows.Text(label);
    domain.conductivity = changed("HydCond", "ChangeK");
    domain.base = changed("BottomElevation", "ChangeB");
    domain.head = changed("AverageHead", "ChangeA");
    domain.porosity = changed("Porosity", "ChangeP");
    domain.recharge = rows.Double(recharge);
    domain.vertices = VerticesOf(ormel, vertices, domain.pid);
    input.domains.push_back(std::move(domain));
  }
}

void ReadWalls(Ormel& ormel, const VertexTable& vertices, SolverInput& input) {
  RowReader rows(ormel.db(),
                 "select PID,Label,Closed,HydCond,Thickness,Porosity,BottomElevation from "
                 "NoFlowStrings");
  while (rows.Next()) {
    WallInput wall;
    wall.pid = rows.Long(0);
    wall.label = rows.Text(1);
    wall.closed = rows.Long(2);
    wall.conductivity = rows.Double(3);
    wall.thickness = rows.Double(4);
    wall.porosity = rows.Double(5);
    wall.bottom = rows.Double(6);
    wall.vertices = VerticesOf(ormel, vertices, wall.pid);
    input.walls.push_back(std::move(wall));
  }
}

void ReadWells(Ormel& ormel, SolverInput& input) {
  for (std::size_t kind = 0; kind < kWellKinds; ++kind)
    input.wells[kind] = ReadGroup(ormel, kWellGroups[kind]);
  for (WellInput& well : input.wells[static_cast<std::size_t>(WellKind::kDischarge)])
    well.image = IsMirror(well.label);
}

void ReadStrings(Ormel& ormel, const VertexTable& vertices, SolverInput& input) {
  input.by_discharge = ReadGroup(ormel, vertices, "HeadSpecified=0");
  input.by_head = ReadGroup(ormel, vertices, "HeadSpecified=1 and Routing=0");
  input.routed = ReadGroup(ormel, vertices, "HeadSpecified=1 and Routing=1");
}

}  // namespace ormel
