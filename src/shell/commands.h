// The procedures behind the menu items.  Each gets the index of the item that was chosen.
#pragma once

namespace ormel {

struct Ormel;

namespace command {

// &Project
void File(Ormel& ormel, int index);
void Recent(Ormel& ormel, int index);
void SaveMapAs(Ormel& ormel, int index);
void Report(Ormel& ormel, int index);

// &Edit
void Undo(Ormel& ormel, int index);
void Redo(Ormel& ormel, int index);
void Edit(Ormel& ormel, int index);
void DeleteAll(Ormel& ormel, int index);
void DeleteWhpas(Ormel& ormel, int index);
void AddText(Ormel& ormel, int index);
void DrawCapzone(Ormel& ormel, int index);
void Copy(Ormel& ormel, int index);
void Paste(Ormel& ormel, int index);
void SelectAll(Ormel& ormel, int index);
void CopyImage(Ormel& ormel, int index);

// &View
void Layer(Ormel& ormel, int index);
void Pathlines(Ormel& ormel, int index);
void ClearTraces(Ormel& ormel, int index);
void TimeMarks(Ormel& ormel, int index);
void ElevationMarks(Ormel& ormel, int index);
void TestDisplay(Ormel& ormel, int index);
void TestScaling(Ormel& ormel, int index);
void ShowVertices(Ormel& ormel, int index);
void Graphics(Ormel& ormel, int index);
void BbmGroup(Ormel& ormel, int index);
void Haze(Ormel& ormel, int index);
void WellLabels(Ormel& ormel, int index);
void SimpleWhpas(Ormel& ormel, int index);
void Panel(Ormel& ormel, int index);

// E&lement
void NewElement(Ormel& ormel, int index);
void UniformFlow(Ormel& ormel, int index);

// &Model
void Model(Ormel& ormel, int index);
void SolutionTime(Ormel& ormel, int index);
void ModelSize(Ormel& ormel, int index);
void ResultsTable(Ormel& ormel, int index);
void CalibrationStatistics(Ormel& ormel, int index);
void RunFile(Ormel& ormel, int index);

// &Tools
void InterfaceOptions(Ormel& ormel, int index);
void Whpa(Ormel& ormel, int index);
void OutlineZone(Ormel& ormel, int index);
void ImportAreas(Ormel& ormel, int index);
void ImportFeatures(Ormel& ormel, int index);
void ExportLayers(Ormel& ormel, int index);
void ImportTable(Ormel& ormel, int index);
void ExportFile(Ormel& ormel, int index);
void ExportTable(Ormel& ormel, int index);
void DatabaseViewer(Ormel& ormel, int index);
void Repair(Ormel& ormel, int index);
void Check(Ormel& ormel, int index);
void InspectorSettings(Ormel& ormel, int index);
void IntegrityCheck(Ormel& ormel, int index);

// &Window
void Zoom(Ormel& ormel, int index);

// &Help
void Help(Ormel& ormel, int index);

}  // namespace command
}  // namespace ormel
