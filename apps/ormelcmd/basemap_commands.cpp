// basemap add|list|show|hide|set|raise|lower|remove|info
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <utility>

#include "basemaps/catalogue.h"
#include "geo/geo_error.h"
#include "ormelcmd/options.h"
#include "ormelcmd/table.h"
#include "shell/open_steps.h"
#include "text/files.h"
#include "text/numbers.h"

namespace ormel {
namespace {

struct BaseMapOptions {
  std::string path, color, color_field, label_field;
  std::vector<std::string> maps;
  bool relative = false, all = false, csv = false, json = false;
};

/// Those of the project's maps that a name means: its whole name, or that of its file.
std::vector<BaseMapRow> Chosen(Ormel& ormel, const BaseMapOptions& given) {
  const std::vector<BaseMapRow> rows = ReadBaseMapRows(ormel);
  if (given.all) return rows;
  std::vector<BaseMapRow> chosen;
  for (const std::string& name : given.maps) {
    const std::size_t before = chosen.size();
    for (const BaseMapRow& row : rows)
      if (row.MapName == name || FileTitle(row.MapName) == name || row.MapName == FullPath(ormel, name))
        chosen.push_back(row);
    if (chosen.size() == before)
      throw UserError("the project has no base map \"" + name + "\"; nothing was changed");
  }
  if (chosen.empty()) throw UserError("name the base maps, or all of them by --all");
  return chosen;
}

void TakeLook(const BaseMapOptions& given, BaseMapRow& row) {
  if (!given.color.empty()) row.color = ParseColor(given.color);
  if (!given.color.empty()) row.UseColorField = false;
  if (!given.color_field.empty()) {
    row.ColorField = given.color_field == "none" ? kNoColorField : given.color_field;
    row.UseColorField = true;
  }
  if (!given.label_field.empty()) row.TextField = given.label_field == "none" ? "" : given.label_field;
}

/// Below the project's folder: the part of the path from there on.
std::string RelativeName(const Ormel& ormel, const std::string& full) {
  const std::string name =
      std::filesystem::path(full).lexically_relative(GetPathFromFile(ormel.project.DBName)).string();
  if (name.empty() || name.starts_with(".."))
    throw UserError(full + " does not lie in the project's folder or below; leave --relative out");
  return name;
}

void Add(Ormel& ormel, const BaseMapOptions& given) {
  for (const std::string& map : given.maps) {
    const std::string full = FullPath(ormel, map);
    if (!FileExists(full) && !std::filesystem::is_directory(full)) throw UserError(map + " does not exist");
    const std::string name = given.relative ? RelativeName(ormel, full) : full;
    if (!AddBaseMap(ormel, name)) throw UserError(map + " was not added");
    for (BaseMapRow& row : ReadBaseMapRows(ormel))
      if (row.MapName == name) {
        TakeLook(given, row);
        StoreBaseMapLook(ormel, row);
      }
  }
}

using Action = void (*)(Ormel&, const BaseMapOptions&);

void ForEach(Ormel& ormel, const BaseMapOptions& given, void (*change)(Ormel&, const std::string&)) {
  for (const BaseMapRow& row : Chosen(ormel, given)) change(ormel, row.MapName);
}

void ShowMaps(Ormel& ormel, const BaseMapOptions& given) {
  ForEach(ormel, given, [](Ormel& o, const std::string& name) { ShowBaseMap(o, name, true); });
}
void HideMaps(Ormel& ormel, const BaseMapOptions& given) {
  ForEach(ormel, given, [](Ormel& o, const std::string& name) { ShowBaseMap(o, name, false); });
}
void RaiseMaps(Ormel& ormel, const BaseMapOptions& given) {
  ForEach(ormel, given, [](Ormel& o, const std::string& name) { MoveBaseMap(o, name, true); });
}
void LowerMaps(Ormel& ormel, const BaseMapOptions& given) {
  ForEach(ormel, given, [](Ormel& o, const std::string& name) { MoveBaseMap(o, name, false); });
}
void RemoveMaps(Ormel& ormel, const BaseMapOptions& given) {
  ForEach(ormel, given, RemoveBaseMap);
}
void SetLook(Ormel& ormel, const BaseMapOptions& given) {
  for (BaseMapRow& row : Chosen(ormel, given)) {
    TakeLook(given, row);
    StoreBaseMapLook(ormel, row);
  }
}

int Edit(const CommonOptions& common, const BaseMapOptions& given, Action action) {
  Session session(MakeBatchOptions(common));
  session.OpenForEdit(given.path);
  session.Edit([&] { action(session.ormel(), given); });
  return session.Finish();
}

int List(const CommonOptions& common, const BaseMapOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenForReading(given.path);
  TextTable table;
  for (const char* name : {"Map", "Kind", "Shown", "Color", "ColorField", "LabelField", "File"})
    table.columns.push_back({name, false});
  for (const BaseMapRow& row : ReadBaseMapRows(session.ormel())) {
    const std::string path = BaseMapPath(session.ormel(), row.MapName);
    const bool there = FileExists(path) || std::filesystem::is_directory(path);
    char color[8];
    std::snprintf(color, sizeof color, "#%02X%02X%02X", RedOf(row.color), GreenOf(row.color),
                  BlueOf(row.color));
    table.rows.push_back({row.MapName, BaseMapKindText(BaseMapKindOf(row.MapName)), row.Show ? "yes" : "no",
                          color, row.ByField() ? row.ColorField : "", row.TextField,
                          there ? "found" : "missing"});
  }
  if (given.csv)
    PrintCsv(std::cout, table);
  else if (given.json)
    PrintJson(std::cout, table);
  else
    PrintAligned(std::cout, table);
  return session.Finish();
}

std::string ExtentText(const Extents& e) {
  return NumberText(e.x_min) + "," + NumberText(e.y_min) + "," + NumberText(e.x_max) + "," +
         NumberText(e.y_max);
}

void PrintRaster(const RasterMap& map) {
  const RasterInfo& about = map.info();
  std::cout << "Format:           " << about.format << "\nSize:             " << about.width << " x "
            << about.height << " pixels, " << about.bands.size()
            << " band(s)\nPlace:            " << (map.georeferenced() ? "known" : "not georeferenced")
            << "\nExtent:           " << ExtentText(map.bounds())
            << "\nOverviews:        " << about.overviews.size() << '\n';
}

void PrintVector(const VectorMap& map) {
  std::cout << "Format:           " << map.format() << "\nPoints:           " << map.point_count()
            << "\nExtent:           " << (map.bounds() ? ExtentText(*map.bounds()) : "none")
            << "\nFields:           ";
  for (const std::string& field : map.fields()) std::cout << field << ' ';
  std::cout << '\n';
}

int Info(const CommonOptions& /*common*/, const BaseMapOptions& given) {
  for (const std::string& name : given.maps) {
    if (!FileExists(name) && !std::filesystem::is_directory(name)) throw UserError(name + " does not exist");
    const BaseMapKind kind = BaseMapKindOf(name);
    try {
      if (kind == BaseMapKind::kBbm) {
        BBMap map;
        map.Connect(name);
        std::cout << map.InfoText() << "\nFound:            " << map.points().size() << " points, "
                  << map.lines().size() << " lines, " << map.areas().size() << " areas\n";
        continue;
      }
      std::cout << "Filename:         " << name << "\nKind:             " << BaseMapKindText(kind) << '\n';
      if (kind == BaseMapKind::kRaster)
        PrintRaster(RasterMap(name));
      else
        PrintVector(VectorMap(name, "", ""));
    } catch (const BbmError& e) {
      throw UserError(e.what());
    } catch (const GeoError& e) {
      throw UserError(e.what());
    }
  }
  return kExitOk;
}

struct EditRow {
  const char *name, *help;
  Action action;
  bool look, all;
};
constexpr EditRow kEdits[] = {
    {"add", "Add map files to the project", Add, true, false},
    {"set", "Colour, colour field and label field of maps", SetLook, true, true},
    {"show", "Show maps", ShowMaps, false, true},
    {"hide", "Hide maps; they stay in the project", HideMaps, false, true},
    {"raise", "Draw maps above the others of their kind", RaiseMaps, false, false},
    {"lower", "Draw maps below the others of their kind", LowerMaps, false, false},
    {"remove", "Remove maps from the project; their files stay", RemoveMaps, false, true},
};

void AddLookOptions(CLI::App& command, BaseMapOptions& given) {
  command.add_option("--color", given.color, "#RRGGBB: one colour for a vector file");
  command.add_option("--color-field", given.color_field,
                     "Field whose values are colour numbers, as CAD files count them; none for no field");
  command.add_option("--label-field", given.label_field,
                     "Field whose texts are the labels; none for no labels");
}

}  // namespace

void AddBaseMapCommands(CLI::App& app, Program& program) {
  CLI::App* group = app.add_subcommand("basemap", "Maps beneath the model: add, list, show, hide, remove");
  group->require_subcommand(1);
  for (const EditRow& row : kEdits) {
    auto given = std::make_shared<BaseMapOptions>();
    CLI::App* command = group->add_subcommand(row.name, row.help);
    command->add_option("project", given->path, "The project")->required();
    CLI::Option* maps = command->add_option("maps", given->maps, "Files, or names of the project's maps");
    if (row.all)
      command->add_flag("--all", given->all, "All maps of the project");
    else
      maps->required();
    if (row.look) AddLookOptions(*command, *given);
    if (row.action == Add)
      command->add_flag("--relative", given->relative,
                        "Name the file from the project's folder, so that both can be moved together");
    command->callback([&program, given, action = row.action] {
      program.run = [&program, given, action] { return Edit(program.common, *given, action); };
    });
  }
  auto given = std::make_shared<BaseMapOptions>();
  CLI::App* list = group->add_subcommand("list", "List the maps of the project, in the order of their rows");
  list->add_option("project", given->path, "The project")->required();
  list->add_flag("--csv", given->csv, "As CSV");
  list->add_flag("--json", given->json, "As JSON");
  list->callback(
      [&program, given] { program.run = [&program, given] { return List(program.common, *given); }; });
  auto asked = std::make_shared<BaseMapOptions>();
  CLI::App* info = group->add_subcommand("info", "What a map file holds; needs no project");
  info->add_option("maps", asked->maps, "Files")->required();
  info->callback(
      [&program, asked] { program.run = [&program, asked] { return Info(program.common, *asked); }; });
}

}  // namespace ormel
