// add linesink, uniformflow
#include "model/linesinks.h"
#include "model/uniform_flow.h"
#include "ormelcmd/add.h"
#include "text/numbers.h"

namespace ormel {

namespace {

struct LinesinkOptions : Given {
  std::vector<double> heads, densities;
  double resistance = 0.0, width = 0.0, depth = 0.0, inflow = 0.0, overland = 0.0;
  bool drain = false, far_field = false, routed = false, end = false;
  std::string location = "unknown";
};

LinesinkLocation LocationOf(const std::string& word) {
  if (word == "centreline") return LinesinkLocation::kCentreline;
  return word == "boundary" ? LinesinkLocation::kBoundary : LinesinkLocation::kUnknown;
}

void AddLinesink(Session& session, const LinesinkOptions& given) {
  Ormel& ormel = session.ormel();
  if (given.heads.empty() == given.densities.empty())
    throw UserError("a linesink string needs either --heads or --densities");
  const std::vector<double>& ends = given.heads.empty() ? given.densities : given.heads;
  LinesinkRow row;
  row.Label = given.label;
  row.HeadSpecified = !given.heads.empty();
  row.StartingHead = ends.front();
  row.EndingHead = ends.back();
  row.Resistance = given.resistance;
  row.Width = given.width;
  row.Depth = given.depth;
  row.Drain = given.drain;
  row.Farfield = given.far_field;
  row.AutoSWIZC = LocationOf(given.location);
  row.Routing = given.routed;
  row.EndStream = given.end;
  row.EndInflow = given.inflow;
  row.Overlandflow = given.overland;
  const std::vector<MapPoint> points = Chain(given, 2, "a linesink string");
  RefuseCrossing(points, false);
  LinesinkString form(ormel);
  form.Fill(row, "");
  PassDialog(form);
  StoreLinesink(ormel, form.Row(), points);
}

}  // namespace

void DefineLinesink(CLI::App& add, Program& program) {
  auto given = std::make_shared<LinesinkOptions>();
  CLI::App* command = add.add_subcommand("linesink", "A stream, lake shore or drain; first point upstream");
  Define(command, program, given, AddLinesink);
  PointsOption(command, *given);
  command->add_option("--label", given->label, "Name of the string")->required();
  CLI::Option* heads =
      command->add_option("--heads", given->heads, "Heads at the first and the last point")->expected(1, 2);
  command
      ->add_option("--densities", given->densities,
                   "Sink densities at the first and the last point [length^2/d]")
      ->expected(1, 2)
      ->excludes(heads);
  command->add_option("--resistance", given->resistance, "Bottom resistance [d]");
  command->add_option("--width", given->width, "Width");
  command->add_option("--depth", given->depth, "Depth");
  command->add_option("--location", given->location, "Where the line runs")
      ->check(CLI::IsMember({"unknown", "centreline", "boundary"}))
      ->capture_default_str();
  command->add_flag("--drain", given->drain, "Use as drain element");
  CLI::Option* routed =
      command->add_flag("--routed", given->routed, "Follow the flow of the stream along the string");
  command->add_flag("--end-of-stream", given->end, "What the string carries goes no further")->needs(routed);
  command->add_option("--inflow", given->inflow, "Inflow at the upper end [length^3/d]")->needs(routed);
  command->add_option("--overland", given->overland, "Overland flow into the string [length^3/d]")
      ->needs(routed);
  command->add_flag("--far-field", given->far_field, "Treat as far-field: no resistance, width, depth");
}

namespace {

struct UniformFlowOptions : Given {
  double head = 0.0, gradient = 0.0, direction = 0.0;
};

void AddUniformFlow(Session& session, const UniformFlowOptions& given) {
  Ormel& ormel = session.ormel();
  UniformFlow form(ormel);
  form.SetText("tbdata(0)", NumberText(given.head));
  form.SetText("tbdata(1)", NumberText(given.gradient));
  form.SetText("tbdata(2)", NumberText(given.direction));
  PassDialog(form);
  StoreUniformFlow(ormel, OnePoint(given), form.Head(), form.Gradient(), form.Orientation());
}

}  // namespace

void DefineUniformFlow(CLI::App& add, Program& program) {
  auto given = std::make_shared<UniformFlowOptions>();
  CLI::App* command = add.add_subcommand(
      "uniformflow", "The regional gradient with its reference point; replaces an earlier one");
  Define(command, program, given, AddUniformFlow);
  PointOption(command, *given, "Reference point x,y in map units");
  command->add_option("--head", given->head, "Head at the reference point")->required();
  command->add_option("--gradient", given->gradient, "Gradient, not negative")->required();
  command
      ->add_option("--direction", given->direction,
                   "Direction of flow, degrees counter-clockwise from east, -180 to 180")
      ->required();
}

}  // namespace ormel
