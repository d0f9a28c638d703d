// add particles, testpoint, fluxline, text
#include <optional>

#include "model/observation_forms.h"
#include "model/observations.h"
#include "ormelcmd/add.h"
#include "store/database.h"

namespace ormel {

namespace {

struct ParticleOptions : Given {
  std::optional<double> elevation;
  bool backward = false;
};

void AddParticles(Ormel& ormel, const ParticleOptions& given) {
  ParticleRow row;
  row.Forward = !given.backward;
  row.SatdThick = !given.elevation.has_value();
  row.Elevation = given.elevation.value_or(0.0);
  for (const MapPoint& at : Chain(given, 1, "this")) StoreParticle(ormel, row, at);
}

}  // namespace

void DefineParticles(CLI::App& add, Program& program) {
  auto given = std::make_shared<ParticleOptions>();
  CLI::App* command = add.add_subcommand("particles", "Starting points of traced particles");
  Define(command, program, given, AddParticles);
  PointsOption(command, *given);
  command->add_option("--elevation", given->elevation,
                      "Starting elevation; else the top of the saturated thickness");
  command->add_flag("--backward", given->backward, "Trace backward in time");
}

namespace {

struct TestPointOptions : Given {
  double head = 0.0;
};

void AddTestPoint(Ormel& ormel, const TestPointOptions& given) {
  const TestPointRow row{given.label, given.head};
  TestPointProperties form(ormel);
  form.Fill(row, OnePoint(given));
  PassDialog(form);
  StoreTestPoint(ormel, form.Row(), form.At());
}

}  // namespace

void DefineTestPoint(CLI::App& add, Program& program) {
  auto given = std::make_shared<TestPointOptions>();
  CLI::App* command = add.add_subcommand("testpoint", "A point with an observed head");
  Define(command, program, given, AddTestPoint);
  PointOption(command, *given, "Position x,y in map units");
  command->add_option("--label", given->label, "Name of the test point")->required();
  command->add_option("--head", given->head, "Observed head")->required();
}

namespace {

void AddFluxLine(Ormel& ormel, const Given& given) {
  if (given.label.empty()) throw UserError("Label must be specified.");
  StoreFluxLine(ormel, given.label, Chain(given, 2, "a flux inspection line"));
}

}  // namespace

void DefineFluxLine(CLI::App& add, Program& program) {
  auto given = std::make_shared<Given>();
  CLI::App* command = add.add_subcommand("fluxline", "A line across which the flow is summed");
  Define(command, program, given, AddFluxLine);
  PointsOption(command, *given);
  command->add_option("--label", given->label, "Name of the line")->required();
}

namespace {

struct TextOptions : Given {
  int size = 10;
  bool bold = false, italic = false;
};

void AddTextLabel(Ormel& ormel, const TextOptions& given) {
  TextLabelRow row;
  row.Text = given.label;
  row.font.size = given.size;
  row.font.bold = given.bold;
  row.font.italic = given.italic;
  const double stored = ormel.db().Scalar("select WINDOWX2-WINDOWX1 from Model").AsDouble();
  row.ScalerX = stored > 0.0 ? stored : ormel.window.SolveWindow.Width();
  StoreTextLabel(ormel, row, OnePoint(given));
}

}  // namespace

void DefineText(CLI::App& add, Program& program) {
  auto given = std::make_shared<TextOptions>();
  CLI::App* command = add.add_subcommand("text", "A text on the map");
  Define(command, program, given, AddTextLabel);
  PointOption(command, *given, "Position x,y in map units");
  command->add_option("--text", given->label, "The text")->required();
  command->add_option("--size", given->size, "Size [points]")->capture_default_str();
  command->add_flag("--bold", given->bold, "Bold");
  command->add_flag("--italic", given->italic, "Italic");
}

}  // namespace ormel
