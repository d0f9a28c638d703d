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

void AddParticles(Session& session, const ParticleOptions& given) {
  Ormel& ormel = session.ormel();
  ParticleRow row;
  row.Forward = !given.backward;
  row.SatdThick = !given.elevation.has_value();
  row.Elevation = given.elevation.value_or(0.0);
  ParticleProperties form(ormel);
  form.Fill(row);
  PassDialog(form);
  for (const MapPoint& at : Chain(given, 1, "this")) StoreParticle(ormel, form.Row(), FreePlace(session, at));
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

void AddTestPoint(Session& session, const TestPointOptions& given) {
  Ormel& ormel = session.ormel();
  const TestPointRow row{given.label, given.head};
  TestPointProperties form(ormel);
  form.Fill(row, OnePoint(given));
  PassDialog(form);
  StoreTestPoint(ormel, form.Row(), FreePlace(session, form.At()));
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

void AddFluxLine(Session& session, const Given& given) {
  Ormel& ormel = session.ormel();
  FluxInspectDialog form(ormel, "Flux Inspection Line Properties", given.label);
  PassDialog(form);
  StoreFluxLine(ormel, form.Label(), Chain(given, 2, "a flux inspection line"));
}

void AddCaptureZone(Session& session, const Given& given) {
  Ormel& ormel = session.ormel();
  FluxInspectDialog form(ormel, "Capzone Properties", given.label);
  PassDialog(form);
  StoreCapzone(ormel, form.Label(), Chain(given, 3, "a capture zone"));
}

}  // namespace

void DefineFluxLine(CLI::App& add, Program& program) {
  auto given = std::make_shared<Given>();
  CLI::App* command = add.add_subcommand("fluxline", "A line across which the flow is summed");
  Define(command, program, given, AddFluxLine);
  PointsOption(command, *given);
  command->add_option("--label", given->label, "Name of the line")->required();
}

void DefineCaptureZone(CLI::App& add, Program& program) {
  auto given = std::make_shared<Given>();
  CLI::App* command = add.add_subcommand("capturezone", "The outline of a capture zone");
  Define(command, program, given, AddCaptureZone);
  PointsOption(command, *given);
  command->add_option("--label", given->label, "Name of the zone")->required();
}

namespace {

struct TextOptions : Given {
  int size = 10;
  bool bold = false, italic = false, hydrography = false;
};

void AddTextLabel(Session& session, const TextOptions& given) {
  Ormel& ormel = session.ormel();
  TextLabelRow row;
  row.Text = given.label;
  row.font.size = given.size;
  row.font.bold = given.bold;
  row.font.italic = given.italic;
  if (given.hydrography) row.type = LabelType::kHydrography;
  if (given.label.empty()) throw UserError("a text without letters is nothing to see; nothing was added");
  TextLabelDialog form(ormel);
  form.Fill(row);
  PassDialog(form);
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
  command->add_flag("--hydrography", given->hydrography, "A label of the hydrography, shown with these");
  command->add_flag("--bold", given->bold, "Bold");
  command->add_flag("--italic", given->italic, "Italic");
}

}  // namespace ormel
