// A controller with fake ports and a new project in a folder of its own.
#pragma once

#include <string>

#include "core/project.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/recordset.h"
#include "store/schema.h"
#include "support/fakes.h"
#include "support/temp_dir.h"

namespace ormel::test {

struct TestProject : TestController {
  TempDir dir;

  /// Map and computation in metres unless told otherwise.
  explicit TestProject(bool basemap_meters = true, bool compute_meters = true) {
    NewDatabaseOptions options;
    options.BasemapMeters = basemap_meters;
    options.ComputeMeters = compute_meters;
    options.file_title = "town.orm";
    options.working_directory = dir.path().string();
    DBNewDatabase(dir / "town.orm", options);
    AttachProject(ormel, dir / "town.orm");
    LoadDataControls(ormel);
    ormel.project.ProjectOpen = true;
    processes.program_folder = dir.path().string();
    processes.current_directory = dir.path().string();
  }
  ~TestProject() { DetachProject(ormel); }

  double Number(std::string_view sql) { return ormel.db().Scalar(sql).AsDouble(); }
  std::string Text(std::string_view sql) { return ormel.db().Scalar(sql).AsText(); }
};

}  // namespace ormel::test
