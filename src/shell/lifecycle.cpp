#include "shell/lifecycle.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "analysis/calibration_form.h"
#include "basemaps/catalogue.h"
#include "core/command.h"
#include "core/directory_memory.h"
#include "core/layers.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/result_items.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/area_runs.h"
#include "model/delete.h"
#include "model/digitize.h"
#include "model/global_recharge.h"
#include "model/vertices.h"
#include "shell/integrity.h"
#include "shell/new_database_wizard.h"
#include "shell/open_steps.h"
#include "shell/project_copy.h"
#include "shell/project_settings.h"
#include "shell/recent_projects.h"
#include "solver/run.h"
#include "solver/solve_stamp.h"
#include "store/database.h"
#include "store/schema.h"
#include "store/store_error.h"
#include "store/view.h"
#include "text/files.h"

namespace ormel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFilter = "Project Database Files (*.orm)|*.orm";

void DisableMouse(Ormel& ormel) {
  ormel.mouse.MouseDisabled = true;
}
void EnableMouse(Ormel& ormel) {
  ormel.mouse.MouseDisabled = false;
}

std::string FolderOf(const std::string& path) {
  return fs::path(path).parent_path().string();
}

bool AskOverwrite(Ormel& ormel, const std::string& path) {
  return AskOkCancel(ormel, "File Exists", path + " already exists -- should I overwrite it?",
                     Icon::kWarning);
}

/// Tells why a project cannot have that name.
bool RefuseName(Ormel& ormel, const std::string& path, std::string_view title) {
  const std::string fault = FaultOfProjectName(path);
  if (!fault.empty()) Inform(ormel, title, fault, Icon::kWarning);
  return !fault.empty();
}

/// The file of another program's open project must not vanish under it.
bool IsFreeToReplace(Ormel& ormel, const std::string& path) {
  try {
    Database::Open(path, OpenMode::kReadOnly);
  } catch (const StoreError& e) {
    if (e.code() != StoreErrorCode::kInUse) return true;
    Inform(ormel, "File Exists", e.what(), Icon::kStop);
    return false;
  }
  return true;
}

bool IsSameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return a == b || (fs::equivalent(a, b, error) && !error);
}

void MakeProject(Ormel& ormel, const std::string& path, const NewDatabaseWizard& wizard) {
  const Named named(ormel, "DBNewDatabase");
  NewDatabaseOptions options;
  options.description = wizard.Description();
  options.BasemapMeters = wizard.BasemapMeters();
  options.ComputeMeters = wizard.ComputeMeters();
  options.file_title = FileTitle(path);
  options.working_directory = FolderOf(path);
  MakeProjectFile(path, options);
}

/// Areas that stand are shown.
void ShowStoredWhpas(Ormel& ormel) {
  ReadWhpaState(ormel);
  if (ormel.db().RowCount("WHPAs") == 0) return;
  ormel.layers.Switch(Layer::kWhpas, true);
  ormel.menus.Enable("WHPA", true);
}

void ResetSolution(Ormel& ormel) {
  const SolutionState fresh;
  ormel.solution.ValidSolution = false;
  ormel.solution.PathlinesValid = false;
  ormel.solution.GridValid = false;
  ormel.solution.ContoursValid = false;
  ormel.solution.results_drawn = false;
  ormel.solution.solved.reset();
  ormel.solution.OfOlderModel = false;
  ormel.solution.outdated_runs.clear();
  ormel.solution.traced_lines.clear();
  ormel.solution.SolutionTime = fresh.SolutionTime;
  EnableResultItems(ormel, false);
}

/// Everything behind the tests and the connection.
void LoadProject(Ormel& ormel, const std::string& path, bool isNew) {
  if (isNew) ShowNewProjectSettings(ormel);
  RepairBasePath(ormel);
  if (!Viewing(ormel)) TakeBackInterruptedRun(ormel);
  FindMissingBaseMaps(ormel);
  Extents maps;
  const bool has_maps = LoadBaseMaps(ormel, maps);
  LoadDataControls(ormel);
  ormel.view().SetUpLayers();
  ormel.view().ElemTurnOffSelection();
  RestoreWindows(ormel, has_maps, maps);
  ResetSolution(ormel);

  ormel.project.ProjectOpen = true;
  ormel.project.no_heads_told = true;  // the first redraw is part of opening
  EnableProjectCommands(ormel, true);
  ormel.view().TurnOnMenus();
  if (ormel.solution.restore_on_open) RestoreSolve(ormel);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  EnableMouse(ormel);
  for (int index = 0; index < 2; ++index) ormel.menus.Enable("SolverIntegrityCheck", index, true);
  ShowStoredWhpas(ormel);
  CALIBRATION_STATS(ormel, true);
  ormel.gui.VertexTolerance = DefaultVertexTolerance(ormel);
  ShowTitle(ormel);
  SelectStatus(ormel);
  NoteSolution(ormel);
  ormel.view().SetUpToolbar();
  DBIntegrity(ormel);
  ormel.project.no_heads_told = false;
  RememberProject(ormel, path);
  OfferRechargeDomain(ormel);
}

std::optional<std::string> AskForProject(Ormel& ormel) {
  FileDialog dialog;
  dialog.title = "Open Project Database";
  dialog.default_extension = "orm";
  dialog.filter = kFilter;
  dialog.directory = ReadDefaultDirectory(ormel, kOpenProjectPathKey);
  return ormel.ui().Ask(dialog);
}

}  // namespace

void ShowTitle(Ormel& ormel) {
  std::string title = kProgramTitle;
  if (ormel.project.ProjectOpen) title += " - " + FileTitle(ormel.project.DBName);
  if (ormel.project.ProjectOpen && Viewing(ormel)) title += " (view only)";
  ormel.ui().SetCaption(title);
}

void FileOpenProject(Ormel& ormel, const std::string& path, bool isNew) {
  const Named named(ormel, "FileOpenProject");
  DisableMouse(ormel);
  std::string chosen = path;
  if (chosen.empty()) {
    const std::optional<std::string> answer = AskForProject(ormel);
    if (!answer || answer->empty()) {
      EnableMouse(ormel);
      return;
    }
    chosen = *answer;
  }
  chosen = FullPath(ormel, chosen);
  if (ormel.project.ProjectOpen) FileCloseProject(ormel);
  WriteDefaultDirectory(ormel, kOpenProjectPathKey, FolderOf(chosen));
  ormel.layers.Switch(Layer::kWhpas, false);
  ormel.layers.Switch(Layer::kHaze, false);
  EnableMouse(ormel);
  bool view = false;
  if (!TestProjectFile(ormel, chosen, &view)) return;
  DisableMouse(ormel);
  if (!OpenConnection(ormel, chosen, &view)) return EnableMouse(ormel);
  // Only now: the folder of a file that was refused gets no memory of directories.
  WriteDefaultDirectory(ormel, kOpenProjectPathKey, FolderOf(chosen));
  try {
    LoadProject(ormel, chosen, isNew);
  } catch (...) {
    EnableMouse(ormel);
    ormel.project.ProjectOpen = false;
    DetachProject(ormel);
    ShowTitle(ormel);
    throw;
  }
}

void FileNewProject(Ormel& ormel) {
  const Named named(ormel, "FileNewProject");
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Create New Project Database";
  dialog.default_extension = "orm";
  dialog.filter = kFilter;
  dialog.directory = ReadDefaultDirectory(ormel, kNewProjectPathKey);
  const std::optional<std::string> answer = ormel.ui().Ask(dialog);
  if (!answer || answer->empty()) return;
  const std::string path = FullPath(ormel, *answer);
  if (RefuseName(ormel, path, "Create New Project Database")) return;
  if (FileExists(path) && !AskOverwrite(ormel, path))
    return Inform(ormel, kProgramTitle, "New file creation aborted");
  FileCloseProject(ormel);
  CloseAll(ormel);
  if (FileExists(path) && !IsFreeToReplace(ormel, path)) return;
  WriteDefaultDirectory(ormel, kNewProjectPathKey, FolderOf(path));

  NewDatabaseWizard wizard(ormel);
  ormel.ui().ShowForm(wizard);
  if (wizard.Result != NewDatabaseWizard::kOk) return FileCloseProject(ormel);
  MakeProject(ormel, path, wizard);
  FileOpenProject(ormel, path, true);
  ormel.view().SetUpToolbar();
}

void FileSaveAs(Ormel& ormel) {
  const Named named(ormel, "FileSaveAs");
  if (!ormel.project.ProjectOpen) return;
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Save As";
  dialog.default_extension = "gfl";  // of an older format; users' scripts and habits know it
  dialog.filter = kFilter;
  dialog.directory = ormel.project.folder;
  const std::optional<std::string> answer = ormel.ui().Ask(dialog);
  if (!answer || answer->empty()) return;
  const std::string target = FullPath(ormel, *answer);
  const std::string source = ormel.project.DBName;
  if (IsSameFile(source, target))
    return Inform(ormel, "Save As",
                  target + "\nis the open project itself.  Please choose another name for the duplicate.",
                  Icon::kWarning);
  if (RefuseName(ormel, target, "Save As")) return;
  if (FileExists(target)) {
    if (!AskOverwrite(ormel, target)) return;
    if (!IsFreeToReplace(ormel, target)) return;
  }
  std::string image;
  if (Viewing(ormel)) {
    CommitSoFar(ormel);
    image = ImageOf(ormel.db());
    ormel.project.view_edited = false;
  }
  FileCloseProject(ormel);
  std::string failure;
  try {
    if (image.empty())
      DuplicateProject(source, target);
    else
      DuplicateImage(image, source, target);
  } catch (const std::exception& e) {
    failure = e.what();
  }
  if (!failure.empty())
    Inform(ormel, "Save As", failure + "\nThe project has not been duplicated and is opened again.",
           Icon::kStop);
  FileOpenProject(ormel, failure.empty() ? target : source);
  ormel.view().SetUpToolbar();
}

void EnableProjectCommands(Ormel& ormel, bool on) {
  for (const int index : {2, 3, 4, 5, 6}) ormel.menus.Enable("FILE_CMDS", index, on);
  for (const int index : {0, 2, 3, 5}) ormel.menus.Enable("TOOLS_CMDS", index, on);
  ormel.menus.Enable("INSPECTORMENU", on);
  ormel.menus.Enable("SimpleWHPAMenu", on);
}

void OfferToKeepView(Ormel& ormel) {
  if (!std::exchange(ormel.project.view_edited, false)) return;
  if (AskYesNo(
          ormel, "View Only",
          "The project was open for viewing, and its changes are only in memory.\nKeep them in a duplicate?",
          Icon::kQuestion))
    FileSaveAs(ormel);
}

void FileCloseProject(Ormel& ormel) {
  const Named named(ormel, "FileCloseProject");
  OfferToKeepView(ormel);
  MenuState& menus = ormel.menus;
  ormel.view().ElemTurnOffSelection();
  CloseAll(ormel);
  ormel.layers.Switch(Layer::kPathlines, false);
  ormel.view().TurnOffMenus();
  ormel.view().SetUpToolbar();
  menus.Enable("FILEMENU", true);
  menus.Enable("HELPMENU", true);
  ormel.layers.Switch(Layer::kEditorGrid, false);
  menus.Check("EDITORGRID", kGridSnap, false);
  EnableProjectCommands(ormel, false);
  for (int index = 0; index < 2; ++index) menus.Check("SolverIntegrityCheck", index, false);
  for (const Layer layer : {Layer::kLinesinkVertices, Layer::kDomainVertices})
    ormel.layers.Switch(layer, false);
  ormel.project.folder.clear();  // the program's folder from now on
}

void CloseAll(Ormel& ormel) {
  const Named named(ormel, "CloseAll");
  if (ormel.project.ProjectOpen && ormel.mouse.MouseMode == MouseMode::kDigitize) AbandonDigitizing(ormel);
  if (ormel.project.ProjectOpen) {
    ormel.project.ProjectOpen = false;
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  }
  if (ormel.project.db != nullptr && ormel.project.db->IsOpen() && !Viewing(ormel)) DeleteOutdatedRuns(ormel);
  CloseBaseMaps(ormel);
  DetachProject(ormel);
  ResetSolution(ormel);
  ormel.view().ClearMouseMode();
  ormel.view().TurnOnMenus();
  ormel.menus.Enable("FILEMENU", true);
  ormel.menus.Enable("HELPMENU", true);
  ormel.view().SetUpToolbar();
  ShowTitle(ormel);
}

void FileProjectSettings(Ormel& ormel) {
  const Named named(ormel, "FileProjectSettings");
  if (!ormel.project.ProjectOpen) return;
  ProjectSettings form(ormel);
  const bool map_meters = ormel.project.BasemapMeters;
  const bool compute_meters = ormel.project.ComputeMeters;
  ormel.ui().ShowForm(form);
  if (form.Result != ProjectSettings::kOk) return;
  const bool units_changed =
      map_meters != ormel.project.BasemapMeters || compute_meters != ormel.project.ComputeMeters;
  if (form.Reload()) {
    const MapRect window = ormel.window.SolveWindow;
    Extents maps;
    LoadBaseMaps(ormel, maps);
    ormel.window.SolveWindow = window;
  } else if (!units_changed) {
    return;
  }
  LoadDataControls(ormel);
  ormel.view().SetUpLayers();
  ormel.view().ZoomActions(form.Reload() ? Zoom::kRedrawInPlace : Zoom::kRedraw);
}

}  // namespace ormel
