// new, set, window
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "core/command.h"
#include "core/map_view.h"
#include "core/run_files.h"
#include "model/global_recharge.h"
#include "model/model_settings.h"
#include "ormelcmd/options.h"
#include "shell/lifecycle.h"
#include "shell/open_steps.h"
#include "shell/project_copy.h"
#include "shell/project_settings.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

struct NewOptions {
  std::string path, description = "New Ormel Project", map_units = "meters", compute_units = "meters";
  bool overwrite = false, portable = false;
};

/// A project that names no folder of this machine: its model files are always beside it.
int NewPortable(const NewOptions& given) {
  if (const std::string fault = FaultOfProjectName(given.path); !fault.empty()) throw UserError(fault);
  if (FileExists(given.path) && !given.overwrite)
    throw UserError(given.path + " already exists; --overwrite replaces it");
  // Opened for a moment: a project that another program works on is not taken away from it.
  if (FileExists(given.path)) Database::Open(given.path).Close();
  NewDatabaseOptions options;
  options.description = given.description;
  options.BasemapMeters = given.map_units != "feet";
  options.ComputeMeters = given.compute_units != "feet";
  options.file_title = FileTitle(given.path);
  options.working_directory = ".";
  MakeProjectFile(given.path, options);
  return kExitOk;
}

int New(const CommonOptions& common, const NewOptions& given) {
  if (given.portable) return NewPortable(given);
  BatchOptions options = MakeBatchOptions(common);
  const auto set = [&options](const char* form, const std::string& control, const std::string& value) {
    options.settings.push_back({form, control, value});
  };
  options.answers.push_back({"Create New Project Database", given.path});
  if (given.overwrite) options.answers.push_back({"File Exists", "OK", true});
  set("NewDatabaseWizard", "tbDesc", given.description);
  set("NewDatabaseWizard", given.compute_units == "feet" ? "optCompute(0)" : "optCompute(1)", "yes");
  set("NewDatabaseWizard", given.map_units == "feet" ? "optBasemap(0)" : "optBasemap(1)", "yes");
  set("ProjectSettings", "ProjectDesc", given.description);
  Session session(options);
  RunCommand(session.ormel(), "FileNewProject", [&] { FileNewProject(session.ormel()); });
  const bool made = session.ormel().project.ProjectOpen;
  if (!made) throw UserError(given.path + " was not made");
  return session.Finish();
}

/// Fields of `Model` that the settings dialog checks, with their controls there.
struct SettingControl {
  std::string_view field, control;
};
constexpr SettingControl kSettingControls[] = {
    {"AQBase", "tbBase"},
    {"AQThickness", "tbThickness"},
    {"AQHydCond", "tbHydCond"},
    {"AQRecharge", "tbRecharge"},
    {"AQPorosity", "tbPorosity"},
    {"CONTOURShow", "chkContour"},
    {"CONTOURMinimum", "tbContourMin"},
    {"CONTOURMaximum", "tbContourMax"},
    {"CONTOURInterval", "tbContourInt"},
    {"CONTOURLevel", "tbContourLevel"},
    {"TRACECompute", "chkComputePaths"},
    {"TRACEStep", "tbStepSize"},
    {"TRACEMaxTime", "tbMaxTime"},
    {"SOLVERIterations", "tbIterations"},
    {"ViewErrorLog", "chkViewError"},
    {"ViewMessageLog", "chkViewMessage"},
};

/// Those of the project's settings; for the units the option that stands for True.
constexpr SettingControl kProjectControls[] = {
    {"Description", "ProjectDesc"},    {"OrmelBaseName", "BaseName"},
    {"OrmelBasePath", "BasePath"},     {"CRS", "CRS"},
    {"ComputeMeters", "CompUnits(0)"}, {"BasemapMeters", "MapUnits(0)"}};

/// Fields that are set without a dialog, with what they can mean.  All others are the program's own.
struct FreeField {
  std::string_view field;
  double lowest = 0.0, largest = 0.0;  ///< of a number
};
constexpr FreeField kFreeFields[] = {
    {"EDITGRIDShow", -1, 1},     {"EDITGRIDSnap", -1, 1},    {"EDITGRIDSpacing", 1e-6, 1e9},
    {"MARGINLeft", 0, 20},       {"MARGINRight", 0, 20},     {"MARGINTop", 0, 20},
    {"MARGINBottom", 0, 20},     {"MARGINDrawBox", 0, 1},    {"DefaultFont"},
    {"DefaultFontSize", 1, 400}, {"DefaultFontBold", -1, 1}, {"DefaultFontItalic", -1, 1}};

template <class Row, std::size_t kCount>
const Row* Find(const Row (&rows)[kCount], std::string_view field) {
  const auto found =
      std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.field == field; });
  return found == std::end(rows) ? nullptr : &*found;
}

struct Assignment {
  std::string table, field, value;
};

Assignment ParseAssignment(const std::string& text) {
  BatchSetting parts;
  if (!ParseBatchSetting(text, parts))
    throw UserError("\"" + text + "\" is not of the form Model.Field=value");
  const schema::Table* table = schema::FindTable(parts.form);
  if (table == nullptr || (table->name != "Model" && table->name != "Project"))
    throw UserError("only fields of Model and Project can be set, not of \"" + parts.form + "\"");
  const schema::Field* field = schema::FindField(*table, parts.control);
  if (field == nullptr)
    throw UserError("the table " + std::string(table->name) + " has no field \"" + parts.control + "\"");
  const FreeField* free = Find(kFreeFields, field->name);
  if (free == nullptr && Find(kSettingControls, field->name) == nullptr &&
      Find(kProjectControls, field->name) == nullptr) {
    const std::string name = std::string(table->name) + "." + std::string(field->name);
    if (field->name.starts_with("UNIFLOW"))
      throw UserError(name + " is set by: ormelcmd set uniformflow, or add uniformflow");
    if (field->name.starts_with("WINDOW")) throw UserError(name + " is set by: ormelcmd window");
    throw UserError(name + " is kept by the program");
  }
  const bool is_text = field->type == schema::FieldType::kText && field->name != "AQThickness";
  const bool is_boolean = field->type == schema::FieldType::kBoolean;
  if (is_boolean) {
    parts.value = EqualNoCase(parts.value, "true") || Val(parts.value) != 0.0 ? "-1" : "0";
  } else if (!is_text && !IsNumeric(parts.value)) {
    throw UserError(text + ": \"" + parts.value + "\" is not a number");
  }
  const double number = Val(parts.value);
  if (free != nullptr && !is_text && (number < free->lowest || number > free->largest))
    throw UserError(text + ": the value must be between " + NumberText(free->lowest) + " and " +
                    NumberText(free->largest));
  return {std::string(table->name), std::string(field->name), parts.value};
}

/// Puts the value into the dialog; false when the dialog has no control for the field.
bool PutIntoForm(ModelSettings& form, const Assignment& assignment) {
  for (const SettingControl& entry : kSettingControls) {
    if (entry.field != assignment.field) continue;
    if (entry.field == "CONTOURLevel") form.SetChecked("ContourDetail(2)", true);
    if (entry.control.starts_with("chk")) {
      form.SetChecked(entry.control, Val(assignment.value) != 0.0);
    } else {
      form.SetText(entry.control, assignment.value);
    }
    return true;
  }
  return false;
}

/// True when the project's settings took the value.
bool PutIntoForm(ProjectSettings& form, const Assignment& assignment) {
  const SettingControl* entry = Find(kProjectControls, assignment.field);
  if (entry == nullptr) return false;
  std::string control(entry->control);
  if (control.ends_with("(0)")) {
    if (Val(assignment.value) == 0.0) control.replace(control.size() - 2, 1, "1");
    form.SetChecked(control, true);
  } else {
    form.SetText(control, assignment.value);
  }
  return true;
}

template <class Settings>
void PressOk(Settings& form) {
  form.MarkShown();
  form.Click("OK");
  if (form.Result != Settings::kOk) throw UserError("nothing was changed");
}

void Apply(Ormel& ormel, const std::vector<std::string>& texts) {
  // What the dialogs do not hold first: they read the rest from the store.
  std::vector<Assignment> for_form;
  ProjectSettings project(ormel);
  bool in_project = false;
  for (const std::string& text : texts) {
    const Assignment assignment = ParseAssignment(text);
    const bool in_form =
        std::any_of(std::begin(kSettingControls), std::end(kSettingControls),
                    [&assignment](const SettingControl& entry) { return entry.field == assignment.field; });
    if (PutIntoForm(project, assignment)) {
      in_project = true;
      continue;
    }
    if (in_form) {
      for_form.push_back(assignment);
      continue;
    }
    Recordset row = ormel.db().OpenRecordset("select * from " + assignment.table);
    const bool is_number = schema::FindField(*schema::FindTable(assignment.table), assignment.field)->type !=
                           schema::FieldType::kText;
    row.Edit();
    row.Set(assignment.field, is_number ? Value(Val(assignment.value)) : Value(assignment.value));
    row.Update();
  }
  if (in_project) PressOk(project);
  if (for_form.empty()) return;
  ModelSettings form(ormel);
  form.Load();
  for (const Assignment& assignment : for_form) PutIntoForm(form, assignment);
  PressOk(form);
}

struct SetOptions {
  std::string path;
  std::vector<std::string> assignments;
};

int Set(const CommonOptions& common, const SetOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenForEdit(given.path);
  session.Edit([&] {
    Apply(session.ormel(), given.assignments);
    OfferRechargeDomain(session.ormel());
  });
  return session.Finish();
}

struct WindowOptions {
  std::string path, window;
  bool extents = false;
};

int Window(const CommonOptions& common, const WindowOptions& given) {
  MapRect rect;
  if (!given.extents) {
    rect = ParseWindow(given.window);
  }
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  RunCommand(session.ormel(), "ZOOM_CMDS_Click", [&] {
    session.ormel().view().ZoomActions(given.extents ? Zoom::kExtents : Zoom::kApplyWindow, rect);
  });
  return session.Finish();
}

}  // namespace

void AddProjectCommands(CLI::App& app, Program& program) {
  auto made = std::make_shared<NewOptions>();
  CLI::App* create = app.add_subcommand("new", "Make a new project");
  create->add_option("project", made->path, "Path of the new project (.orm)")->required();
  create->add_option("--description", made->description, "Description of the project")->capture_default_str();
  create->add_option("--map-units", made->map_units, "Length unit of the map")
      ->check(CLI::IsMember({"meters", "feet"}))
      ->capture_default_str();
  create->add_option("--units", made->compute_units, "Length unit of elevations, properties and rates")
      ->check(CLI::IsMember({"meters", "feet"}))
      ->capture_default_str();
  create->add_flag("--portable", made->portable,
                   "Name no folder in it: the model files are beside the project wherever it is moved");
  create->add_flag("--overwrite", made->overwrite, "Replace a project of that name");
  create->callback(
      [&program, made] { program.run = [&program, made] { return New(program.common, *made); }; });

  auto set = std::make_shared<SetOptions>();
  CLI::App* assign = app.add_subcommand(
      "set", "Set fields of the tables Model and Project, or of elements, with the checks of their dialogs");
  assign->add_option("project", set->path, "The project");
  assign->add_option("assignments", set->assignments, "Model.Field=value ...");
  AddSetKinds(*assign, program);
  assign->callback([&program, set, assign] {
    if (!assign->get_subcommands().empty()) return;
    if (set->path.empty()) throw CLI::RequiredError("project");
    if (set->assignments.empty()) throw CLI::RequiredError("assignments");
    program.run = [&program, set] { return Set(program.common, *set); };
  });

  auto window = std::make_shared<WindowOptions>();
  CLI::App* zoom = app.add_subcommand("window", "Set the map window that the project opens with");
  zoom->add_option("project", window->path, "The project")->required();
  CLI::Option* all = zoom->add_flag("--extents", window->extents, "The extents of the model");
  CLI::Option* sides =
      zoom->add_option("--window", window->window, "left,bottom,right,top in map units")->excludes(all);
  zoom->callback([&program, window, all, sides] {
    if (all->count() + sides->count() == 0) throw CLI::RequiredError("--extents or --window");
    program.run = [&program, window] { return Window(program.common, *window); };
  });
}

}  // namespace ormel
