// import-features, export geopackage
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "exchange/feature_import.h"
#include "exchange/geopackage_export.h"
#include "exchange/units.h"
#include "geo/geo_error.h"
#include "ormelcmd/options.h"
#include "shell/export_geopackage.h"
#include "shell/open_steps.h"
#include "solver/solve_stamp.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct ImportOptions {
  std::string path, file, layer, as, crs, vertex_unit, within;
  std::vector<std::string> fields, defaults, units;
  double tolerance = 0.0;
  std::size_t most = FeatureImport{}.most_vertices;
  bool heads = false, dry = false, list = false;
};

/// "Label=NAME" into one part of each property's source.
void PutAll(FeatureImport& request, const std::vector<std::string>& texts, const char* option,
            std::string PropertySource::*part) {
  for (const std::string& text : texts) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
      throw UserError(std::string(option) + " \"" + text + "\" is not of the form Property=value");
    const std::string name(Trim(std::string_view(text).substr(0, equals)));
    const auto properties = request.target->properties;
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [&](const TargetProperty& each) { return EqualNoCase(each.name, name); });
    if (found == properties.end())
      throw UserError(std::string(option) + ": " + std::string(request.target->name) +
                      " have no property \"" + name + "\"");
    request.properties[std::string(found->name)].*part = Trim(std::string_view(text).substr(equals + 1));
  }
}

int List(const std::string& file) {
  const VectorSource source(file);
  for (const VectorLayer& layer : source.layers()) {
    std::cout << layer.name << ": " << GeometryKindText(layer.kind) << ", " << layer.count << " features\n";
    for (const GeoField& field : layer.fields) std::cout << "  " << field.name << '\n';
  }
  return kExitOk;
}

FeatureImport RequestOf(const ImportOptions& given, const std::string& file) {
  FeatureImport request;
  request.file = file;
  request.layer = given.layer;
  request.target = FindFeatureTarget(given.as);
  const VectorSource source(file);
  const std::size_t layer = given.layer.empty() ? 0 : source.Find(given.layer);
  GuessProperties(request, source.layers()[layer]);
  PutAll(request, given.fields, "--field", &PropertySource::field);
  PutAll(request, given.defaults, "--default", &PropertySource::standard);
  PutAll(request, given.units, "--unit", &PropertySource::unit);
  request.crs = given.crs;
  request.tolerance = given.tolerance;
  request.most_vertices = given.most;
  request.heads_from_vertices = given.heads;
  request.vertex_unit = given.vertex_unit;
  if (!given.within.empty()) request.within = ExtentsOf(ParseWindow(given.within));
  return request;
}

int Import(const CommonOptions& common, const ImportOptions& given) {
  Session session(MakeBatchOptions(common));
  try {
    if (given.list) return List(FullPath(session.ormel(), given.file));
    if (given.as.empty())
      throw UserError("--as says what the features become; see ormelcmd import-features --help");
    session.OpenForEdit(given.path);
    const FeatureImport request = RequestOf(given, FullPath(session.ormel(), given.file));
    const ImportPlan plan = PlanImport(session.ormel(), request);
    std::cout << plan.Text() << '\n';
    if (plan.elements.empty()) throw UserError("nothing was imported");
    if (!given.dry) session.Edit([&] { CarryOut(session.ormel(), plan); });
  } catch (const GeoError& error) {
    throw UserError(error.what());
  } catch (const FeatureImportError& error) {
    throw UserError(error.what());
  }
  return session.Finish();
}

struct ExportOptions {
  std::string path, file;
  double time_tics = 0.0, elevation_tics = 0.0;
};

int Export(const CommonOptions& common, const ExportOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenForReading(given.path);
  Ormel& ormel = session.ormel();
  if (const std::string reason = RestoreSolve(ormel); !reason.empty())
    session.ui().Say("without results: " + reason);
  try {
    const ExportOutcome outcome =
        WriteGeoPackage(ormel, FullPath(ormel, given.file), given.time_tics, given.elevation_tics);
    std::cout << outcome.Text() << '\n';
    if (outcome.cancelled) return kExitRefused;
  } catch (const GeoError& error) {
    throw UserError(error.what());
  }
  return session.Finish();
}

void AddExport(CLI::App& app, Program& program) {
  const auto there = app.get_subcommands([](CLI::App* each) { return each->get_name() == "export"; });
  CLI::App* parent = there.empty() ? nullptr : there.front();
  if (parent == nullptr) {
    parent = app.add_subcommand("export", "Write the model or its results for other programs");
    parent->require_subcommand(1);
  }
  auto given = std::make_shared<ExportOptions>();
  CLI::App* command = parent->add_subcommand("geopackage", "Elements and results as layers with styles");
  command->add_option("project", given->path, "The project")->required();
  command->add_option("file", given->file, "The file, .gpkg")->required();
  command->add_option("--time-tics", given->time_tics, "Marks along the paths at multiples of this time [d]")
      ->check(CLI::NonNegativeNumber);
  command->add_option("--elevation-tics", given->elevation_tics, "Marks at multiples of this elevation")
      ->check(CLI::NonNegativeNumber);
  command->callback(
      [&program, given] { program.run = [&program, given] { return Export(program.common, *given); }; });
}

std::string TargetsText() {
  std::string text = "Properties, for --field, --default and --unit:\n";
  for (const FeatureTarget& target : FeatureTargets()) {
    text += "  " + std::string(target.name) + ":";
    for (const TargetProperty& property : target.properties) text += " " + std::string(property.name);
    text += '\n';
  }
  return text + "Fields named like a property are taken by themselves; --field Property= takes none.";
}

}  // namespace

void AddFeatureCommands(CLI::App& app, Program& program) {
  AddExport(app, program);
  auto given = std::make_shared<ImportOptions>();
  CLI::App* command = app.add_subcommand("import-features", "Features of a GIS layer become elements");
  command->add_option("project", given->path, "The project")->required();
  command
      ->add_option("file", given->file, "Shapefile, GeoPackage, GeoJSON, KML, DXF, CSV, file geodatabase ...")
      ->required();
  std::vector<std::string> targets;
  for (const FeatureTarget& target : FeatureTargets()) targets.emplace_back(target.name);
  command->add_option("--layer", given->layer, "Layer of the file; needed when it has several");
  command->add_option("--as", given->as, "What the features become")->check(CLI::IsMember(targets));
  command->add_option("--field", given->fields, "Property=FIELD of the layer")->allow_extra_args(false);
  command->add_option("--default", given->defaults, "Property=value where no field gives one")
      ->allow_extra_args(false);
  command->add_option("--unit", given->units, "Property=unit, as Rate=l/s; otherwise the project's units")
      ->allow_extra_args(false);
  command->add_option("--crs", given->crs, "Coordinate reference system in place of what the file says");
  command->add_option("--simplify", given->tolerance,
                      "Leave vertices out to within this distance [map units]");
  command->add_option("--most-vertices", given->most, "Lines with more are left out")->capture_default_str();
  command->add_flag("--heads-from-vertices", given->heads,
                    "Heads of linesinks from the elevations of their ends");
  command->add_option("--vertex-unit", given->vertex_unit, "Unit of these elevations: m or ft");
  command->add_option("--within", given->within, "left,bottom,right,top: only what touches it [map units]");
  command->add_flag("--dry-run", given->dry, "Only say what would come in");
  command->add_flag("--list", given->list, "Only list layers and fields of the file");
  command->footer(TargetsText());
  command->callback(
      [&program, given] { program.run = [&program, given] { return Import(program.common, *given); }; });
}

}  // namespace ormel
