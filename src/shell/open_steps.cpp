#include "shell/open_steps.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>

#include "core/ormel.h"
#include "core/processes.h"
#include "core/project.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "shell/check_project.h"
#include "shell/update.h"
#include "solver/extents.h"
#include "store/bulk.h"
#include "store/checksums.h"
#include "store/database.h"
#include "store/schema.h"
#include "store/store_error.h"
#include "store/update.h"
#include "store/view.h"
#include "text/files.h"

namespace ormel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCannotOpen = "Can't open database";
constexpr const char* kOffer = "Open it for viewing only?";

bool TestReadOnly(Ormel& ormel, const std::string& path, bool* view) {
  if (!IsReadOnly(path)) return true;
  constexpr const char* kTitle = "File is Read-only!";
  const std::string text = Lines({"Could not open project. The specified project database",
                                  "is read-only. You must disable the read-only attribute of",
                                  "the project file before before opening this project."});
  if (view == nullptr) {
    Inform(ormel, kTitle, text);
    return false;
  }
  *view = AskYesNo(ormel, kTitle, Lines({text, "", kOffer}), Icon::kQuestion);
  return *view;
}

/// Tells why the store refuses the file.  True when it can be viewed all the same and the user wants that.
bool OfferView(Ormel& ormel, const StoreError& refusal, bool* view) {
  const bool viewable =
      refusal.code() == StoreErrorCode::kInUse || refusal.code() == StoreErrorCode::kReadOnly;
  if (view == nullptr || *view || !viewable) {
    Inform(ormel, kCannotOpen, refusal.what(), Icon::kStop);
    return false;
  }
  *view = AskYesNo(ormel, kCannotOpen, Lines({refusal.what(), "", kOffer}), Icon::kQuestion);
  return *view;
}

/// A project that has none yet gets them.
void KeepChecksums(Ormel& ormel) {
  if (!ormel.db().HasTable("Checksums")) AcceptContents(ormel.db());
}

bool OfferNewDatabase(Ormel& ormel, const std::string& path) {
  if (const std::string fault = FaultOfProjectName(path); !fault.empty()) {
    Inform(ormel, "No Such File", path + "\nThe specified project database does not exist.  " + fault,
           Icon::kWarning);
    return false;
  }
  if (!AskYesNo(ormel, "No Such File",
                "The specified project database does not exist.  Create a new database?", Icon::kQuestion))
    return false;
  NewDatabaseOptions options;
  options.file_title = FileTitle(path);
  options.working_directory = fs::path(path).parent_path().string();
  options.BasemapMeters = ormel.project.BasemapMeters;
  options.ComputeMeters = ormel.project.ComputeMeters;
  try {
    DBNewDatabase(path, options);
  } catch (const StoreError& e) {
    Inform(ormel, kCannotOpen, e.what(), Icon::kStop);
    return false;
  }
  return true;
}

/// What something else than Ormel has changed, as a question; true when the user goes on with it.
bool AcceptForeign(Ormel& ormel, const std::vector<ChangedTable>& changed) {
  if (changed.empty()) return true;
  std::string text = "This project was changed by something else than Ormel since it was last saved:\n";
  for (const ChangedTable& one : changed) {
    text += one.table + ": ";
    text += one.rows_then == one.rows_now
                ? "contents of its " + std::to_string(one.rows_now) + " rows"
                : std::to_string(one.rows_then) + " rows then, " + std::to_string(one.rows_now) + " now";
    text += "\n";
  }
  text +=
      "If you changed it yourself by another program, answer Yes, and look at the model before you trust "
      "it.\n"
      "If not, a disk may have changed a number: answer No, and go on with a copy from before.\n"
      "Open it as it is?";
  return AskYesNo(ormel, "Changed Outside Ormel", text, Icon::kWarning);
}

/// Nothing when the file cannot be read as a project; the user has been told.
std::optional<std::int64_t> ReadVersion(Ormel& ormel, const std::string& path, bool* view) {
  const bool viewing = view != nullptr && *view;
  try {
    Database db = Database::Open(path, viewing ? OpenMode::kView : OpenMode::kReadOnly);
    const std::int64_t version = VersionOf(db);
    if (version != schema::kProjectVersion) return version;
    const std::vector<ChangedTable> changed = ForeignChanges(db);
    if (!AcceptForeign(ormel, changed)) return std::nullopt;
    if (!changed.empty() && !viewing && !IsReadOnly(path)) {
      db.Close();
      db = Database::Open(path);
      AcceptContents(db);
    }
    return version;
  } catch (const StoreError& e) {
    if (e.code() == StoreErrorCode::kDamaged && !viewing && !IsReadOnly(path)) {
      if (!OfferSalvage(ormel, path, e.what())) return std::nullopt;
    } else if (!OfferView(ormel, e, view)) {
      return std::nullopt;
    }
  }
  return ReadVersion(ormel, path, view);
}

bool TestVersion(Ormel& ormel, const std::string& path, std::int64_t version, bool view) {
  if (version > schema::kProjectVersion) {
    Inform(ormel, kCannotOpen,
           Lines({"The project database was written by a newer version of Ormel.",
                  "It is incompatible with this version.  Please update Ormel",
                  "before using this project database."}));
    return false;
  }
  if (version == schema::kProjectVersion) return true;
  if (view && IsReadOnly(path)) {
    Inform(ormel, "Must update",
           Lines({"Can't open this project database unless it is updated.",
                  "It is read-only: copy it to a folder of your own and open the copy."}),
           Icon::kStop);
    return false;
  }
  if (!AskYesNo(ormel, "Version Update",
                Lines({"The project database needs to be updated for use with this version of Ormel.",
                       "If you press Yes, the project will be updated.  This will make the project",
                       "incompatible with older versions of Ormel.",
                       "Do you wish to update the project database?"}),
                Icon::kQuestion)) {
    Inform(ormel, "Must update", "Can't open this project database unless it is updated.");
    return false;
  }
  return DBUpdate(ormel, path, version);
}

bool SameFolder(const std::string& a, const std::string& b) {
  const auto bare = [](std::string path) {
    while (path.size() > 1 && path.back() == kPathSeparator) path.pop_back();
    return path;
  };
  if (bare(a) == bare(b)) return true;
  std::error_code error;
  return fs::equivalent(a, b, error) && !error;
}

void Widen(Extents& full, const Extents& by) {
  full.x_min = std::min(full.x_min, by.x_min);
  full.x_max = std::max(full.x_max, by.x_max);
  full.y_min = std::min(full.y_min, by.y_min);
  full.y_max = std::max(full.y_max, by.y_max);
}

/// The model's extents for the map, without moving the origin that the last solve stored: saved results are
/// relative to it.
void WidenByModel(Ormel& ormel) {
  double x0 = 0.0;
  double y0 = 0.0;
  {
    RowReader origin(ormel.db(), "select SOLVERX0,SOLVERY0 from Model");
    if (origin.Next()) {
      x0 = origin.Double(0);
      y0 = origin.Double(1);
    }
  }
  ModelCheckExtents(ormel, false, false);
  ormel.db().Execute("update Model set SOLVERX0=?, SOLVERY0=?", {x0, y0});
  Widen(ormel.window.full, ormel.window.model);
}

/// The stored window; the print margins go to the controller.
MapRect ReadWindowAndMargins(Ormel& ormel) {
  RowReader model(ormel.db(),
                  "select WINDOWX1,WINDOWX2,WINDOWY1,WINDOWY2,MARGINLeft,MARGINRight,MARGINTop,MARGINBottom,"
                  "MARGINDrawBox from Model");
  if (!model.Next()) return {};
  MapWindow& window = ormel.window;
  window.margin_left = model.Double(4);
  window.margin_right = model.Double(5);
  window.margin_top = model.Double(6);
  window.margin_bottom = model.Double(7);
  window.margin_box = model.Long(8) != 0;
  return {model.Double(0), model.Double(1), model.Double(2), model.Double(3)};
}

}  // namespace

std::string FullPath(const Ormel& ormel, const std::string& path) {
  if (path.empty() || path.front() == kPathSeparator) return path;
  return fs::path(JoinPath(ormel.processes().CurrentDirectory(), path)).lexically_normal().string();
}

bool IsReadOnly(const std::string& path) {
  struct stat attributes {};
  if (stat(path.c_str(), &attributes) != 0) return false;
  return (attributes.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || access(path.c_str(), W_OK) != 0;
}

bool TestProjectFile(Ormel& ormel, const std::string& path, bool* view) {
  if (!TestReadOnly(ormel, path, view)) return false;
  if (!FileExists(path) && !OfferNewDatabase(ormel, path)) return false;
  return TestProjectVersion(ormel, path, view);
}

bool TestProjectVersion(Ormel& ormel, const std::string& path, bool* view) {
  const std::optional<std::int64_t> version = ReadVersion(ormel, path, view);
  return version && TestVersion(ormel, path, *version, view != nullptr && *view);
}

bool OpenConnection(Ormel& ormel, const std::string& path, bool* view) {
  try {
    const bool viewing = view != nullptr && *view;
    AttachProject(ormel, path, viewing);
    if (!viewing) KeepChecksums(ormel);
    return true;
  } catch (const StoreError& e) {
    if (!OfferView(ormel, e, view)) return false;
  }
  return OpenConnection(ormel, path, view);
}

void RepairBasePath(Ormel& ormel) {
  if (SameFolder(ormel.project.OrmelBasePath, ormel.project.folder)) return;
  if (!AskYesNo(ormel, kProgramTitle,
                Lines({"Your Project File and your Intermediate Model Files are not set in the same place!",
                       "This may cause problems. Would you like Ormel to set your Intermediate Model File "
                       "path to your project path?"}),
                Icon::kQuestion))
    return;
  std::string folder = ormel.project.folder;
  if (folder.size() > 1 && folder.back() == kPathSeparator) folder.pop_back();
  ormel.db().Execute("update Project set OrmelBasePath=?", {folder});
  ormel.project.OrmelBasePath = folder;
}

double PowerOfTen(double width) {
  return width > 0.0 ? std::pow(10.0, std::trunc(std::log10(width))) : 1.0;
}

void RestoreWindows(Ormel& ormel, bool has_maps, const Extents& maps) {
  MapWindow& window = ormel.window;
  const MapRect stored = ReadWindowAndMargins(ormel);
  const bool has_window = stored.x1 < stored.x2;
  if (has_maps) {
    window.full = maps;
    window.SolveWindow = has_window ? stored : WindowOf(maps);
    WidenByModel(ormel);
  } else if (has_window) {
    window.SolveWindow = stored;
    window.full = ExtentsOf(stored);
    WidenByModel(ormel);
  } else {
    window.full = {-100.0, 100.0, -100.0, 100.0};
    window.SolveWindow = WindowOf(window.full);
  }
  window.power_of_ten = PowerOfTen(window.SolveWindow.Width());
}

}  // namespace ormel
