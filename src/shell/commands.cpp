#include "shell/commands.h"

#include <string>
#include <string_view>
#include <vector>

#include "analysis/calibration_form.h"
#include "analysis/report_form.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "core/window_commands.h"
#include "exchange/dxf_export.h"
#include "exchange/feature_import.h"
#include "exchange/shape_export.h"
#include "exchange/surfer_export.h"
#include "exchange/table_exchange.h"
#include "model/barriers.h"
#include "model/delete.h"
#include "model/digitize.h"
#include "model/edit.h"
#include "model/inhomogeneities.h"
#include "model/linesinks.h"
#include "model/model_settings.h"
#include "model/move.h"
#include "model/observations.h"
#include "model/refine.h"
#include "model/several.h"
#include "model/undo.h"
#include "model/uniform_flow.h"
#include "shell/about.h"
#include "shell/check_project.h"
#include "shell/export_geopackage.h"
#include "shell/gui_options_form.h"
#include "shell/help.h"
#include "shell/import_whpa.h"
#include "shell/integrity.h"
#include "shell/lifecycle.h"
#include "shell/recent_projects.h"
#include "solver/driver.h"
#include "solver/extents.h"
#include "solver/inspection.h"
#include "solver/solve_stamp.h"
#include "text/files.h"
#include "tools/db_viewer.h"
#include "tools/result_viewer.h"
#include "tools/zone_table.h"
#include "view/map_view_impl.h"
#include "whpa/commands.h"
#include "whpa/outline_command.h"

namespace ormel::command {

void File(Ormel& ormel, int index) {
  switch (index) {
    case 0:
      return FileNewProject(ormel);
    case 1:
      return FileOpenProject(ormel, "");
    case 2:
      return FileSaveAs(ormel);
    case 3:
      return FileCloseProject(ormel);
    case 4:
      return FileProjectSettings(ormel);
    case 5:
      return ormel.ports.window->FilePrintSetup();
    case 6:
      return ormel.ports.window->FilePrint();
    case 7:
      return ormel.ports.window->Exit();
    default:
      Inform(ormel, kProgramTitle, "Internal Error in File Menu!");
  }
}

void Recent(Ormel& ormel, int index) {
  const std::vector<std::string> paths = RecentProjects(ormel);
  if (static_cast<std::size_t>(index) < paths.size())
    FileOpenProject(ormel, paths[static_cast<std::size_t>(index)]);
}

void SaveMapAs(Ormel& ormel, int /*index*/) {
  ormel.ports.window->SaveMapAs();
}

void Report(Ormel& ormel, int /*index*/) {
  std::string reason;
  if (!ormel.solution.ValidSolution) {
    reason = WhyNotSolved(ormel);
    if (reason.empty()) reason = "the saved solution has not been taken up; solve the model";
  }
  REPORT(ormel, reason);
}

void AddText(Ormel& ormel, int /*index*/) {
  ormel.view().ElemTurnOffSelection();
  BeginPlacing(ormel, Element::kTextLabel, "Add Text", "Click mouse at location for new text");
}

void DrawCapzone(Ormel& ormel, int /*index*/) {
  ModelAddCapzone(ormel);
}

void Undo(Ormel& ormel, int /*index*/) {
  EditUndo(ormel);
}

void Redo(Ormel& ormel, int /*index*/) {
  EditRedo(ormel);
}

void Edit(Ormel& ormel, int index) {
  switch (index) {
    case 1:
      return ElemSetProperties(ormel);
    case 2:
      return ElemBeginMove(ormel);
    case 3:
      return ElemDeleteElements(ormel);
    case 4:
      return ElemRefine(ormel);
    default:
      return;
  }
}

void DeleteAll(Ormel& ormel, int index) {
  DELETEALL(ormel, index);
}

void DeleteWhpas(Ormel& ormel, int index) {
  DeleteWHPA(ormel, index);
}

void Copy(Ormel& ormel, int /*index*/) {
  EditCopy(ormel);
}

void Paste(Ormel& ormel, int /*index*/) {
  EditPaste(ormel);
}

void SelectAll(Ormel& ormel, int /*index*/) {
  EditSelectAll(ormel);
}

void CopyImage(Ormel& ormel, int /*index*/) {
  ormel.ports.window->CopyImage();
}

void NewElement(Ormel& ormel, int index) {
  switch (index) {
    case 1:
      ormel.view().ElemTurnOffSelection();
      return BeginPlacing(ormel, Element::kWell, "Add Well", "Click mouse at location for new well");
    case 2:
      return ElemAddLinesinkString(ormel);
    case 3:
      return ElemAddNoFlowString(ormel);
    case 4:
      return ElemAddInhomogeneity(ormel);
    default:
      return;
  }
}

void UniformFlow(Ormel& ormel, int /*index*/) {
  ElemUniformFlow(ormel);
}

void Model(Ormel& ormel, int index) {
  switch (index) {
    case 1:
      ModelEditSettings(ormel);
      return ormel.view().SetUpLayers();
    case 2:
      ormel.solver().ModelRunVadox({.AskFirst = true, .ZoomAfter = true, .ViewLogs = true});
      return NoteSolution(ormel);
    case 3:
      return ormel.solver().ModelRunVadox({true, true, true, true, true});
    case 4:
      return BeginParticle(ormel);
    case 5:
      return BeginTestPoint(ormel);
    case 6:
      return ModelAddFluxInspect(ormel);
    default:
      return;
  }
}

void SolutionTime(Ormel& ormel, int /*index*/) {
  ormel::SolutionTime(ormel);
}

void ModelSize(Ormel& ormel, int /*index*/) {
  ModelGetSize(ormel, true);
}

void ResultsTable(Ormel& ormel, int /*index*/) {
  ViewResultsTable(ormel);
}

void CalibrationStatistics(Ormel& ormel, int /*index*/) {
  CALIBRATION_STATS(ormel);
}

void RunFile(Ormel& ormel, int index) {
  RUN_FILES(ormel, index);
}

void InterfaceOptions(Ormel& ormel, int /*index*/) {
  ShowGUIOptions(ormel);
}

void Whpa(Ormel& ormel, int index) {
  WHPA(ormel, index);
}

void ImportAreas(Ormel& ormel, int /*index*/) {
  ImportWHPA(ormel);
}

void ImportFeatures(Ormel& ormel, int /*index*/) {
  ToolsImportFeatures(ormel);
}

void ExportLayers(Ormel& ormel, int /*index*/) {
  ToolsExportGeoPackage(ormel);
}

void ImportTable(Ormel& ormel, int index) {
  switch (index) {
    case 0:
      return ToolsImportTX(ormel);
    case 1:
      return ToolsImportWL(ormel, false);
    case 2:
      return ToolsImportWL(ormel, true);
    default:
      return ToolsImportTP(ormel);
  }
}

void ExportFile(Ormel& ormel, int index) {
  switch (index) {
    case 0:
      return ToolsExportDXF(ormel);
    case 1:
      return ToolsExportBLN(ormel);
    case 2:
      return ToolsExportGrid(ormel);
    default:
      return ExportShapefiles(ormel);
  }
}

void ExportTable(Ormel& ormel, int index) {
  EXPORTDB(ormel, index);
}

void OutlineZone(Ormel& ormel, int index) {
  if (index == 1) return ViewZoneTable(ormel);
  OutlineCaptureZone(ormel);
}

void DatabaseViewer(Ormel& ormel, int /*index*/) {
  DBViewDatabase(ormel);
}

void Repair(Ormel& ormel, int /*index*/) {
  DBRepair(ormel);
}

void Check(Ormel& ormel, int /*index*/) {
  CheckProject(ormel);
}

void InspectorSettings(Ormel& ormel, int /*index*/) {
  ShowInspector(ormel);
}

void IntegrityCheck(Ormel& ormel, int /*index*/) {
  SolverIntegrityCheck(ormel);
}

void Zoom(Ormel& ormel, int index) {
  ZOOM_CMDS(ormel, index);
}

void Help(Ormel& ormel, int index) {
  switch (index) {
    case 0:
      return ormel.ui().ShowHelp(kContentsTopic);
    case 1:
      return ormel.ui().ShowHelp(kGuideTopic);
    case 2:
      return ormel.ui().ShowHelp(kTutorialTopic);
    case 4:
      return ormel.ports.window->ShowReleaseNotes();
    case 5:
      return ShowAbout(ormel);
    default:
      return;
  }
}

}  // namespace ormel::command
