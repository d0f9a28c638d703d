#include "shell/project_settings.h"

#include <array>
#include <filesystem>

#include "basemaps/catalogue.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/project_crs.h"
#include "core/user_interface.h"
#include "geo/geo_error.h"
#include "model/validity.h"
#include "shell/crs_form.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kMapFrame = "Distance units in Basemap Files";
constexpr std::string_view kCompFrame = "Units for Computations:";
constexpr std::string_view kInvalid = "Invalid Entry";

constexpr std::array kControls{
    ControlSpec{.name = "ProjectDesc", .kind = ControlKind::kMultiline, .caption = "Project Description"},
    ControlSpec{.name = "BaseName",
                .kind = ControlKind::kText,
                .caption = "Base Filename  (DOS)",
                .tip = "Stem of the intermediate model files",
                .longest = 255},
    ControlSpec{.name = "BasePath",
                .kind = ControlKind::kText,
                .caption = "Base Path",
                .tip = "Folder of the intermediate model files",
                .longest = 255},
    ControlSpec{.name = "MapUnits(0)", .kind = ControlKind::kOption, .caption = "Meters", .group = kMapFrame},
    ControlSpec{.name = "MapUnits(1)", .kind = ControlKind::kOption, .caption = "Feet", .group = kMapFrame},
    ControlSpec{
        .name = "CompUnits(0)", .kind = ControlKind::kOption, .caption = "Meters", .group = kCompFrame},
    ControlSpec{.name = "CompUnits(1)", .kind = ControlKind::kOption, .caption = "Feet", .group = kCompFrame},
    ControlSpec{.name = "CRS",
                .kind = ControlKind::kText,
                .caption = "Coordinate reference system",
                .tip = "Code as EPSG:28992, or WKT; empty when it is not known",
                .longest = 8000},
    ControlSpec{.name = "ChooseCRS",
                .kind = ControlKind::kButton,
                .caption = "Choose...",
                .tip = "Search the list of coordinate reference systems"},
    ControlSpec{.name = "CRSName", .kind = ControlKind::kLabel},
    ControlSpec{.name = "BaseMaps", .kind = ControlKind::kList, .caption = "Currently Used Base Maps"},
    ControlSpec{.name = "AddBBM",
                .kind = ControlKind::kButton,
                .caption = "Add Map...",
                .tip = "Add a base map to the project"},
    ControlSpec{.name = "Clear",
                .kind = ControlKind::kButton,
                .caption = "Remove Map",
                .tip = "Remove the selected basemap from the projext"},
    kOkButton,
    kCancelButton,
};

}  // namespace

ProjectSettings::ProjectSettings(Ormel& controller) : OkCancelForm(controller) {
  InitControls();
  const ProjectState& project = controller.project;
  Put("ProjectDesc", controller.db().Scalar("select Description from Project").AsText());
  Put("BaseName", project.OrmelBaseName);
  // As it is stored: "." moves about with the project.
  Put("BasePath", controller.db().Scalar("select OrmelBasePath from Project").AsText());
  Put("CRS", StoredCrs(controller));
  TellCrs();
  PutCheck(project.BasemapMeters ? "MapUnits(0)" : "MapUnits(1)", true);
  PutCheck(project.ComputeMeters ? "CompUnits(0)" : "CompUnits(1)", true);
  RefreshMapList();
}

std::string ProjectSettings::Title() const {
  const std::string& path = ormel().project.DBName;
  return path.empty() ? "Project Settings" : FileTitle(path) + " - Project Settings";
}

std::span<const ControlSpec> ProjectSettings::Controls() const {
  return kControls;
}

void ProjectSettings::RefreshMapList() {
  ControlState& list = Mutable("BaseMaps");
  list.items.clear();
  list.selected.clear();
  RowReader maps(ormel().db(), "select MapName from Basemaps");
  while (maps.Next()) list.items.emplace_back(maps.Text(0));
  Offer("Clear", !list.items.empty());
}

void ProjectSettings::RemoveMap() {
  const ControlState& list = State("BaseMaps");
  if (list.selected.empty()) return;
  const std::string name = list.items[static_cast<std::size_t>(list.selected.front())];
  RemoveBaseMap(ormel(), name);
  RefreshMapList();
  reload_ = true;
}

void ProjectSettings::OtherPressed(std::string_view name) {
  if (name == "Clear") RemoveMap();
  if (name == "AddBBM" && AddBaseMapsByDialog(ormel())) {
    RefreshMapList();
    reload_ = true;
  }
  if (name != "ChooseCRS") return;
  CrsForm form(ormel());
  ormel().ui().ShowForm(form);
  if (form.Result != CrsForm::kOk) return;
  Put("CRS", form.Code());
  TellCrs();
}

void ProjectSettings::Changed(std::string_view name) {
  if (name == "CRS") TellCrs();
}

void ProjectSettings::TellCrs() {
  std::string name;
  try {
    if (!Trim(Text("CRS")).empty()) name = Crs::Parse(Text("CRS")).name();
  } catch (const GeoError&) {
    name = "(not known)";
  }
  Caption("CRSName", name);
}

bool ProjectSettings::CheckCrs() {
  if (Trim(Text("CRS")).empty()) return true;
  try {
    const std::string fault = CrsFault(Crs::Parse(Text("CRS")), ModelMapUnits());
    return fault.empty() || Refuse("CRS", kInvalid, fault);
  } catch (const GeoError& error) {
    return Refuse("CRS", kInvalid,
                  std::string(error.what()) + "\nPlease enter another one, or choose one of the list.");
  }
}

bool ProjectSettings::Ok() {
  const std::string& stem = OrmelBaseName();
  if (Trim(stem).empty() || stem.find(kPathSeparator) != std::string::npos)
    return Refuse("BaseName", kInvalid,
                  "The base name of the model files cannot be empty and cannot hold a \"/\".\n"
                  "Please enter a new name.");
  std::error_code error;
  if (!std::filesystem::is_directory(ProjectFolder(ormel(), Text("BasePath")), error))
    return Refuse("BasePath", kInvalid,
                  "The folder " + Text("BasePath") + " does not exist.\nPlease enter a new folder.");
  if (TextLength(Text("ProjectDesc")) > schema::kDefaultTextSize)
    return Refuse("ProjectDesc", kInvalid,
                  "The description is longer than 255 characters.\nPlease enter a shorter one.");
  if (!CheckCrs()) return false;
  Store();
  return true;
}

void ProjectSettings::Store() {
  const ProjectState& project = ormel().project;
  const bool spoils = project.OrmelBaseName != OrmelBaseName() ||
                      project.OrmelBasePath != ProjectFolder(ormel(), Text("BasePath")) ||
                      project.ComputeMeters != ModelCompUnits() || project.BasemapMeters != ModelMapUnits();
  ormel().db().Execute("update Project set Description=?, OrmelBaseName=?, OrmelBasePath=?",
                       {Text("ProjectDesc"), OrmelBaseName(), Text("BasePath")});
  ormel().db().Execute("update Model set ComputeMeters=?, BasemapMeters=?",
                       {ModelCompUnits(), ModelMapUnits()});
  StoreCrs(ormel(), std::string(Trim(Text("CRS"))));
  ReadProjectState(ormel());
  if (spoils) InvalidateSolution(ormel(), false, false);
}

void ShowNewProjectSettings(Ormel& ormel) {
  ProjectSettings form(ormel);
  ormel.ui().ShowForm(form);
}

}  // namespace ormel
