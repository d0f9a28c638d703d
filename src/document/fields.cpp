#include "document/fields.h"

#include <algorithm>
#include <array>

#include "store/schema.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// A rule for the fields of a table whose names begin with `field`; the last rule that fits counts.
struct Rule {
  std::string_view table, field;
  FieldRole role;
};

constexpr FieldRole kShape{Role::kModel, Spoils::kSolution};
constexpr FieldRole kPlain{Role::kModel, Spoils::kNothing};
constexpr FieldRole kTraced{Role::kModel, Spoils::kPaths};
constexpr FieldRole kObserved{Role::kModel, Spoils::kRerun};
constexpr FieldRole kView{Role::kView, Spoils::kNothing};
constexpr FieldRole kResult{Role::kResult, Spoils::kNothing};
constexpr FieldRole kRun{Role::kRun, Spoils::kNothing};

constexpr std::array kRules{
    Rule{"Vertices", "", {Role::kModel, Spoils::kByOwner}},
    Rule{"Polygons", "", kPlain},
    Rule{"Wells", "", kShape},
    Rule{"Wells", "Setback", kPlain},
    Rule{"Wells", "PathlineColor", kPlain},
    Rule{"Wells", "NParticles", kTraced},
    Rule{"Wells", "StartElev", kTraced},
    Rule{"LinesinkStrings", "", kShape},
    Rule{"NoFlowStrings", "", kShape},
    Rule{"NoFlowStrings", "Color", kPlain},
    Rule{"NoFlowStrings", "Label", kPlain},
    Rule{"Inhomogeneities", "", kShape},
    Rule{"Inhomogeneities", "Color", kPlain},
    Rule{"Inhomogeneities", "Label", kPlain},
    Rule{"Particles", "", kTraced},
    Rule{"TestPoints", "", kObserved},
    Rule{"TestPoints", "Label", kPlain},
    Rule{"TestPoints", "ModelHead", kResult},
    Rule{"FluxInspect", "", kObserved},
    Rule{"FluxInspect", "Label", kPlain},
    Rule{"Capzones", "", kPlain},
    Rule{"TextLabels", "", kPlain},
    Rule{"WHPAs", "", kPlain},
    Rule{"Project", "", kView},
    Rule{"Project", "Description", kPlain},
    Rule{"Project", "OrmelBase", kRun},
    // Windows, margins, the editor's grid, and fields that nothing reads.
    Rule{"Model", "", kView},
    Rule{"Model", "AQ", kShape},
    Rule{"Model", "BasemapMeters", kShape},
    Rule{"Model", "ComputeMeters", kShape},
    Rule{"Model", "UNIFLOW", kShape},
    Rule{"Model", "CONTOUR", {Role::kRun, Spoils::kContours}},
    Rule{"Model", "TRACE", {Role::kRun, Spoils::kPaths}},
    Rule{"Model", "SOLVERIterations", {Role::kRun, Spoils::kRerun}},
    Rule{"Model", "SOLVERX0", kResult},
    Rule{"Model", "SOLVERY0", kResult},
    Rule{"Model", "ViewErrorLog", kRun},
    Rule{"Model", "ViewMessageLog", kRun},
    Rule{"Model", "DefaultFont", kPlain},
    Rule{"LSResults", "", kResult},
    Rule{"WLResults", "", kResult},
    Rule{"INResults", "", kResult},
    Rule{"NFResults", "", kResult},
    Rule{"TPResults", "", kResult},
    Rule{"FIResults", "", kResult},
    Rule{"Basemaps", "", kView},
    Rule{"MapLabels", "", kView},
    Rule{"SavedWindows", "", kView},
};

std::vector<std::string> FindUndoneTables() {
  std::vector<std::string> tables;
  for (const schema::Table& table : schema::Tables()) {
    const bool undone =
        std::any_of(table.fields.begin(), table.fields.end(),
                    [&](const schema::Field& field) { return RoleOf(table.name, field.name).Undone(); });
    if (undone) tables.emplace_back(table.name);
  }
  return tables;
}

}  // namespace

FieldRole RoleOf(std::string_view table, std::string_view field) {
  FieldRole role = kView;
  for (const Rule& rule : kRules)
    if (EqualNoCase(rule.table, table) && StartsWithNoCase(field, rule.field)) role = rule.role;
  return role;
}

const std::vector<std::string>& UndoneTables() {
  static const std::vector<std::string> tables = FindUndoneTables();
  return tables;
}

std::vector<std::string> FieldsThatSpoil(std::string_view table, Spoils what) {
  std::vector<std::string> fields;
  const schema::Table* found = schema::FindTable(table);
  if (found == nullptr) return fields;
  for (const schema::Field& field : found->fields)
    if (RoleOf(table, field.name).spoils == what) fields.emplace_back(field.name);
  return fields;
}

}  // namespace ormel
