// add well, barrier, inhomogeneity
#include <optional>

#include "model/barriers.h"
#include "model/inhomogeneities.h"
#include "model/well_form.h"
#include "model/wells.h"
#include "ormelcmd/add.h"

namespace ormel {

namespace {

struct WellOptions : Given {
  double rate = 0.0, head = 0.0, radius = 1.0, setback = 0.0, start_elevation = 0.0;
  int particles = 0;
  bool pond = false, by_head = false;
};

void AddWell(Session& session, const WellOptions& given) {
  Ormel& ormel = session.ormel();
  if (WellLimitReached(ormel, "You may not add any more.")) throw UserError("nothing was added");
  WellRow row;
  row.HeadSpecified = given.by_head;
  row.Head = given.by_head ? given.head : given.rate;
  row.Pond = given.pond;
  row.Radius = given.radius;
  row.Setback = given.setback;
  row.NParticles = given.particles;
  row.StartElev = given.start_elevation;
  if (!given.color.empty()) row.PathlineColor = ParseColor(given.color).value;
  WellProperties form(ormel);
  form.Fill(row, OnePoint(given));
  form.SetText("tbLabel", given.label);  // after Fill: the dialog opens as one of a new element
  PassDialog(form);
  StoreWell(ormel, form.Row(), FreePlace(session, form.At()));
}

}  // namespace

void DefineWell(CLI::App& add, Program& program) {
  auto given = std::make_shared<WellOptions>();
  CLI::App* command = add.add_subcommand("well", "A well, or with --pond a circular area sink");
  Define(command, program, given, AddWell);
  PointOption(command, *given, "Position x,y in map units");
  command->add_option("--label", given->label, "Name of the well")->required();
  CLI::Option* rate =
      command->add_option("--rate", given->rate, "Discharge, positive out of the aquifer [length^3/d]");
  CLI::Option* head = command->add_option("--head", given->head, "Specified head")->excludes(rate);
  command->add_option("--radius", given->radius, "Radius")->capture_default_str();
  command->add_option("--setback", given->setback, "Setback radius");
  command->add_option("--particles", given->particles, "Number of particles traced from the well");
  command->add_option("--start-elevation", given->start_elevation, "Starting elevation of the particles");
  ColorOption(command, *given, "Colour of its pathlines, #RRGGBB");
  command->add_flag("--pond", given->pond, "Use the circular area-sink function; --rate is per unit area");
  head->each([given](const std::string&) { given->by_head = true; });
}

namespace {

struct BarrierOptions : Given {
  bool closed = false, ignore_inside = false, ignore_outside = false;
};

void AddBarrier(Session& session, const BarrierOptions& given) {
  Ormel& ormel = session.ormel();
  BarrierRow row;
  if (!given.color.empty()) row.color = ParseColor(given.color);
  if (given.closed) row.Closed = BarrierClosed::kClosed;
  if (given.ignore_inside) row.Closed = BarrierClosed::kIgnoreInside;
  if (given.ignore_outside) row.Closed = BarrierClosed::kIgnoreOutside;
  const std::vector<MapPoint> points =
      Chain(given, row.Closed == BarrierClosed::kOpen ? 2 : 3, "a barrier of this kind");
  RefuseCrossing(points, row.Closed != BarrierClosed::kOpen);
  NoFlowString form(ormel);
  form.Fill(row);
  form.SetText("tbLabel", given.label);  // after Fill: the dialog opens as one of a new element
  PassDialog(form);
  StoreBarrier(ormel, form.Row(), points);
}

}  // namespace

void DefineBarrier(CLI::App& add, Program& program) {
  auto given = std::make_shared<BarrierOptions>();
  CLI::App* command = add.add_subcommand("barrier", "A line that flow does not cross");
  Define(command, program, given, AddBarrier);
  PointsOption(command, *given);
  command->add_option("--label", given->label, "Name of the barrier")->required();
  ColorOption(command, *given, "Colour, #RRGGBB");
  command->add_flag("--closed", given->closed, "It bounds a closed domain");
  CLI::Option* inside =
      command->add_flag("--ignore-inside", given->ignore_inside, "Closed; nothing is computed inside");
  command->add_flag("--ignore-outside", given->ignore_outside, "Closed; nothing is computed outside")
      ->excludes(inside);
}

namespace {

struct InhomogeneityOptions : Given {
  std::optional<double> conductivity, recharge, porosity, base, average_head;
};

void Take(const std::optional<double>& value, bool& change, double& field) {
  change = value.has_value();
  if (value) field = *value;
}

void AddInhomogeneity(Session& session, const InhomogeneityOptions& given) {
  Ormel& ormel = session.ormel();
  InhomogeneityRow row;
  if (!given.color.empty()) row.color = ParseColor(given.color);
  Take(given.conductivity, row.ChangeK, row.HydCond);
  Take(given.recharge, row.ChangeR, row.Recharge);
  Take(given.porosity, row.ChangeP, row.Porosity);
  Take(given.base, row.ChangeB, row.BottomElevation);
  Take(given.average_head, row.ChangeA, row.AverageHead);
  const std::vector<MapPoint> points = Chain(given, 3, "an inhomogeneity");
  RefuseCrossing(points, true);
  Inhomogeneity form(ormel);
  form.Fill(row);
  form.SetText("tbLabel", given.label);  // after Fill: the dialog opens as one of a new element
  PassDialog(form);
  StoreInhomogeneity(ormel, form.Row(), points);
}

}  // namespace

void DefineInhomogeneity(CLI::App& add, Program& program) {
  auto given = std::make_shared<InhomogeneityOptions>();
  CLI::App* command = add.add_subcommand(
      "inhomogeneity", "A domain with properties of its own; what is not named stays the aquifer's");
  Define(command, program, given, AddInhomogeneity);
  PointsOption(command, *given);
  command->add_option("--label", given->label, "Name of the domain")->required();
  ColorOption(command, *given, "Colour, #RRGGBB");
  command->add_option("--conductivity", given->conductivity, "Hydraulic conductivity [length/d]");
  command->add_option("--recharge", given->recharge, "Added recharge, positive into the aquifer [length/d]");
  command->add_option("--porosity", given->porosity, "Effective porosity");
  command->add_option("--base", given->base, "Elevation of the aquifer's base");
  command->add_option("--average-head", given->average_head, "Estimate of the average head");
}

}  // namespace ormel
