#include "core/project.h"

#include <array>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/project_crs.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "store/view.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

struct DataControl {
  std::unique_ptr<Recordset> BoundRecordsets::*recordset;
  std::string_view statement;
};

constexpr std::array kDataControls{
    DataControl{&BoundRecordsets::Vertices, "select * from Vertices;"},
    DataControl{&BoundRecordsets::Polygons, "select * from Polygons;"},
    DataControl{&BoundRecordsets::Wells, "select * from Wells;"},
    DataControl{&BoundRecordsets::LinesinkStrings, "select * from LinesinkStrings;"},
    DataControl{&BoundRecordsets::NoFlowStrings, "select * from NoFlowStrings;"},
    DataControl{&BoundRecordsets::Inho, "select * from Inhomogeneities;"},
    DataControl{&BoundRecordsets::TestPoints, "select * from TestPoints;"},
    DataControl{&BoundRecordsets::Particles, "select * from Particles;"},
    DataControl{&BoundRecordsets::TextLabels, "select * from TextLabels;"},
    DataControl{&BoundRecordsets::FluxInspectors, "select * from FluxInspect;"},
    DataControl{&BoundRecordsets::Capzones, "select * from Capzones;"},
};

/// A folder named relative to that of `file`, without final separator.
std::string FolderBeside(const std::string& file, const std::string& relative) {
  const std::filesystem::path folder =
      (std::filesystem::path(file).parent_path() / relative).lexically_normal();
  return (folder.has_filename() ? folder : folder.parent_path()).string();
}

/// Names of run files that lead out of the model folder: whoever made them so, a run would write, and a
/// deletion delete, files of others.  They are replaced before anything is done by them.
void MendNames(Ormel& ormel) {
  std::vector<std::string> bad;
  {
    RowReader stem(ormel.db(), "select OrmelBaseName from Project");
    if (stem.Next() && !IsPlainName(stem.Text(0))) bad.emplace_back(stem.Text(0));
  }
  if (!bad.empty()) ormel.db().Execute("update Project set OrmelBaseName=?", {ormel.project.OrmelBaseName});
  std::vector<std::string> runs;
  if (ormel.db().HasTable("WHPAs")) {
    RowReader rows(ormel.db(), "select distinct WHPAText from WHPAs");
    while (rows.Next())
      if (!rows.Text(0).empty() && !IsPlainName(rows.Text(0))) runs.emplace_back(rows.Text(0));
  }
  for (const std::string& run : runs) {
    ormel.db().Execute("update WHPAs set WHPAText='NONE' where WHPAText=?", {run});
    bad.push_back(run);
  }
  if (bad.empty()) return;
  std::string text = "This project names model files that are not in its model folder:\n";
  for (const std::string& name : bad) text += name + "\n";
  Inform(ormel, kProgramTitle,
         text + "Nothing there was touched.  The model's files are now named \"" +
             ormel.project.OrmelBaseName + "\"; solve again, and run the protection areas again.",
         Icon::kWarning);
}

}  // namespace

std::string ProjectFolder(const Ormel& ormel, const std::string& name) {
  const bool relative = !name.empty() && std::filesystem::path(name).is_relative();
  return relative ? FolderBeside(ormel.project.DBName, name) : name;
}

void ReadProjectState(Ormel& ormel) {
  ProjectState& project = ormel.project;
  RowReader names(ormel.db(), "select OrmelBaseName,OrmelBasePath from Project");
  if (names.Next()) {
    project.OrmelBaseName = SafeStem(names.Text(0), project.DBName);
    project.OrmelBasePath = names.Text(1);
    // A project that is meant to be moved about says "." for its own folder.
    if (std::filesystem::path(project.OrmelBasePath).is_relative())
      project.OrmelBasePath = FolderBeside(project.DBName, project.OrmelBasePath);
  }
  RowReader units(ormel.db(), "select ComputeMeters,BasemapMeters from Model");
  if (units.Next()) {
    project.ComputeMeters = units.Bool(0);
    project.BasemapMeters = units.Bool(1);
  }
  project.unit_suffix = project.BasemapMeters ? " m" : " ft";
  ReadProjectCrs(ormel);
}

bool Viewing(const Ormel& ormel) {
  return ormel.project.db != nullptr && IsView(*ormel.project.db);
}

void AttachProject(Ormel& ormel, const std::string& path, bool view) {
  auto db = std::make_unique<Database>(Database::Open(path, view ? OpenMode::kView : OpenMode::kReadWrite));
  if (!ormel.changes.tables.empty()) db->WatchChanges(ormel.changes.tables);
  ormel.project.db = std::move(db);
  ++ormel.project.connections;
  ormel.project.view_edited = false;
  ormel.project.DBName = path;
  ormel.project.folder = GetPathFromFile(path);
  ReadProjectState(ormel);
  MendNames(ormel);
  CommitSoFar(ormel);
  if (!view) ClearTemporariesOf(ormel.project.folder, {"Ormel"});  // of Ormel.def
}

void LoadDataControls(Ormel& ormel) {
  for (const DataControl& control : kDataControls)
    ormel.project.bound.*control.recordset =
        std::make_unique<Recordset>(ormel.db().OpenRecordset(control.statement));
}

void DetachProject(Ormel& ormel) {
  EndTransaction(ormel);
  for (const DataControl& control : kDataControls) (ormel.project.bound.*control.recordset).reset();
  if (ormel.project.db != nullptr) ormel.project.db->Close();
  ormel.project.db.reset();
  ++ormel.project.connections;
}

}  // namespace ormel
