#include <array>
#include <cmath>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/project.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/element_rows.h"
#include "exchange/export_job.h"
#include "exchange/table_exchange.h"
#include "model/model_values.h"
#include "model/observations.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// What an import of one kind says, and where it looks.
struct TableImport {
  TableKind kind;
  Element element;
  std::string_view key, title, extension, filter, missing, progress;
  std::string_view read_in;       ///< behind the count of what came in
  std::string_view ignored;       ///< behind the count of what was there already
  std::string_view log, in_text;  ///< of points that were moved
};
constexpr std::array kImports{
    TableImport{TableKind::kWells, Element::kWell, "Default Import WL path", "Well File to be Imported", "wl",
                "Well Files (*.wl)|*.wl",
                // The words of the test points, as it always was.
                "The specified test point file does not exist. ", "Importing Wells... ",
                " wells were read in.", " were ignored because identical\nwells existed at those locations.",
                "WellVertices.log", "wells"},
    TableImport{TableKind::kTestPoints, Element::kTestPoint, "Default Import TP path",
                "Test Point File to be Imported", "tp", "Test Point Files (*.tp)|*.tp",
                "The specified test point file does not exist. ", "Importing Test Points... ",
                " Test Points were read in.",
                " were ignored because identical\nTest Points existed at those locations.", "TPVertices.log",
                "Test Points"},
    TableImport{TableKind::kTextLabels, Element::kTextLabel, "Default Import TX path",
                "Text Label File to be Imported", "tx", "Text Label Files (*.tx)|*.tx",
                "The specified text label file does not exist. ", "Importing Labels... ",
                " labels were read in.",
                " were skipped because identical\nlabels existed in those locations.", "", ""}};

const TableImport& ImportOf(TableKind kind) {
  return kImports.at(static_cast<std::size_t>(kind));
}

/// A place to the digits that tables are written with.
std::string PlaceKey(MapPoint at) {
  static const NumberMask kMask("0.000000000E+00 ");
  return kMask.Format(at.x) + kMask.Format(at.y);
}

/// The elements of the kind that the project has and the import adds.
class Present {
 public:
  Present(Ormel& ormel, const TableImport& what)
      : free_(ormel), tolerance_(ormel.gui.VertexTolerance), kind_(what.kind) {
    ReadElementRows(ormel, what.element, [this](const ElementRow& row) {
      if (!row.points.empty()) Add(row.points.front(), row.label, row.label_type);
    });
  }
  void Add(MapPoint at, const std::string& label, int type) {
    places_.insert(Key(at, label, type));
    by_label_[FoldCase(label)].push_back(at);
  }
  /// An element stands at that very place, or stands with this label where an earlier import of the record
  /// has moved it to.
  bool Has(const TableRecord& record) const {
    if (places_.contains(Key(record.at, record.text, record.label_type))) return true;
    if (kind_ == TableKind::kTextLabels) return false;
    const auto same = by_label_.find(FoldCase(record.text));
    if (same == by_label_.end()) return false;
    for (MapPoint at = record.at; free_.Taken(at); at = {at.x + tolerance_, at.y + tolerance_})
      for (const MapPoint other : same->second)
        if (std::abs(other.x - at.x) < tolerance_ && std::abs(other.y - at.y) < tolerance_) return true;
    return false;
  }
  MapPoint FreePlace(MapPoint at) { return free_.Find(at); }
  /// The label, with a number behind it where the kind's labels tell its elements apart.
  std::string FreeLabel(const std::string& label, std::size_t longest) const {
    std::string free = label;
    for (int number = 2; kind_ == TableKind::kWells && by_label_.contains(FoldCase(free)); ++number) {
      const std::string behind = " (" + std::to_string(number) + ")";
      free = std::string(TextLeft(label, longest - behind.size())) + behind;
    }
    return free;
  }

 private:
  std::string Key(MapPoint at, const std::string& label, int type) const {
    std::string key = PlaceKey(at);
    if (kind_ == TableKind::kTextLabels) key += std::to_string(type) + FoldCase(label);
    return key;
  }
  FreePlaces free_;
  double tolerance_;
  TableKind kind_;
  std::set<std::string> places_;
  std::unordered_map<std::string, std::vector<MapPoint>> by_label_;
};

struct ImportCount {
  std::size_t read = 0, ignored = 0, renamed = 0;
  std::vector<std::pair<MapPoint, MapPoint>> moved;  ///< from, to
};

/// Room for a label as it is known by; a well's field is longer for the labels of image wells.
constexpr std::size_t kLabelLength = 32;

void StoreLabel(Ormel& ormel, const ModelValues& model, const TableRecord& record) {
  TextLabelRow row;
  row.Text = record.text;
  row.font = {model.DefaultFont, model.DefaultFontSize, model.DefaultFontBold, model.DefaultFontItalic};
  row.type = static_cast<LabelType>(record.label_type);
  row.ScalerX = ormel.window.SolveWindow.Width();
  StoreTextLabel(ormel, row, record.at);
}

bool WellsAreFull(Ormel& ormel) {
  if (ormel.db().RowCount("Wells") < kWellLimit) return false;
  Inform(ormel, "Maximum well limit reached!",
         Lines({"Ormel only allows for up to 2000 wells in a single model.",
                "You may not add any more. No more wells will be imported."}),
         Icon::kWarning);
  return true;
}

void StoreRecord(Ormel& ormel, const TableImport& what, bool head_specified, const TableRecord& record,
                 Present& present, ImportCount& count) {
  const MapPoint at = present.FreePlace(record.at);
  if (at != record.at) count.moved.emplace_back(record.at, at);
  const std::string label = present.FreeLabel(record.text, kLabelLength);
  if (label != record.text) ++count.renamed;
  if (what.kind == TableKind::kWells)
    StoreWell(
        ormel,
        {.Label = label, .HeadSpecified = head_specified, .Head = record.value, .Radius = record.radius}, at);
  else
    StoreTestPoint(ormel, {label, record.value}, at);
  present.Add(at, label, 0);
}

/// False when the user has pressed Cancel; the project is then as it was.
bool StoreAll(Ormel& ormel, const TableImport& what, bool head_specified,
              const std::vector<TableRecord>& records, ImportCount& count) {
  Transaction all(ormel.db());
  try {
    ExportJob job(ormel, what.progress, records.size());
    const ModelValues model = ReadModel(ormel);
    Present present(ormel, what);
    for (const TableRecord& record : records) {
      job.Step();
      if (present.Has(record)) {
        ++count.ignored;
        continue;
      }
      if (what.kind == TableKind::kWells && WellsAreFull(ormel)) break;
      if (what.kind == TableKind::kTextLabels) {
        StoreLabel(ormel, model, record);
        present.Add(record.at, record.text, record.label_type);
      } else {
        StoreRecord(ormel, what, head_specified, record, present, count);
      }
      ++count.read;
    }
  } catch (const ExportCancelled&) {
    all.Rollback();
    for (Recordset* rows : {ormel.project.bound.Vertices.get(), ormel.project.bound.Wells.get(),
                            ormel.project.bound.TestPoints.get(), ormel.project.bound.TextLabels.get()})
      if (rows != nullptr) rows->Requery();
    return false;
  }
  all.Commit();
  return true;
}

/// Bad records are left out only if the user agrees, once for all of them.
bool GoOn(Ormel& ormel, const std::string& path, const TableContent& content) {
  if (content.bad.empty()) return true;
  const BadRecord& first = content.bad.front();
  std::string text = "Error in record " + std::to_string(first.number) + " bad syntax\n" + path + ", line " +
                     std::to_string(first.line) + ": " + first.reason;
  if (content.bad.size() > 1)
    text += "\n" + std::to_string(content.bad.size() - 1) + " more records are bad.";
  return AskYesNo(
      ormel, "Error in import",
      text + "\nContinue import?\nNo leaves the project as it is; Yes leaves the bad records out.",
      Icon::kWarning);
}

void WriteMoved(Ormel& ormel, const TableImport& what, const ImportCount& count) {
  if (count.moved.empty() || Viewing(ormel)) return;
  const std::string path = JoinPath(ormel.project.folder, what.log);
  TextFileWriter log(path);
  log.Line("Some of the " + std::string(what.in_text) + " you attempted to import contained vertices");
  log.Line("that were too close to existing vertices. They were moved slightly");
  log.Line("to avoid any potential problems. There original locations and new ");
  log.Line("locations are as follows:");
  log.Line("");
  std::string head = "Original Location";
  head.resize(36, ' ');
  log.Line(head + " | New Location");
  log.Line(std::string(73, '-'));
  for (const auto& [from, to] : count.moved) log.Line(MovedPointText(from, to));
  log.Commit();
  ormel.ui().ViewTextFile(path);
}

void TellDone(Ormel& ormel, const TableImport& what, const ImportCount& count, std::size_t bad) {
  std::string text = std::to_string(count.read) + std::string(what.read_in);
  if (count.ignored > 0) text += "\n" + std::to_string(count.ignored) + std::string(what.ignored);
  if (count.renamed > 0)
    text += "\n" + std::to_string(count.renamed) + " got a number behind their label, which was taken.";
  if (bad > 0) text += "\n" + std::to_string(bad) + " bad records were left out.";
  Inform(ormel, kProgramTitle, text);
}

void ShowLayers(Ormel& ormel, TableKind kind, const std::vector<TableRecord>& records) {
  if (kind == TableKind::kWells) TurnOnLayer(ormel, Layer::kWells);
  if (kind == TableKind::kTestPoints) TurnOnLayer(ormel, Layer::kTestPoints);
  if (kind != TableKind::kTextLabels) return;
  TurnOnLayer(ormel, Layer::kTextLabels);
  for (const TableRecord& record : records)
    if (static_cast<LabelType>(record.label_type) == LabelType::kHydrography)
      return TurnOnLayer(ormel, Layer::kHydrographyLabels);
}

void ImportFile(Ormel& ormel, const TableImport& what, bool head_specified, const std::string& path) {
  if (!FileExists(path)) return Inform(ormel, "No Such File", what.missing, Icon::kStop);
  TableContent content;
  try {
    content = ReadTable(path, what.kind);
  } catch (const FileError& failure) {
    return Inform(ormel, "Error in import", Lines({failure.what(), "Nothing was imported."}), Icon::kStop);
  }
  if (!content.delimiter_found)
    return Inform(ormel, "Error in import",
                  Lines({path + ", line 1:", "No valid file delimeter found!",
                         "Either file is not valid or is", "not comma or space delimeted."}),
                  Icon::kStop);
  if (!GoOn(ormel, path, content)) return;
  ImportCount count;
  if (!StoreAll(ormel, what, head_specified, content.records, count))
    return Inform(ormel, kProgramTitle, "The import was canceled. Nothing was imported.");
  if (count.read > 0) ShowLayers(ormel, what.kind, content.records);
  TellDone(ormel, what, count, content.bad.size());
  WriteMoved(ormel, what, count);
}

void Import(Ormel& ormel, TableKind kind, bool head_specified, std::string path) {
  const TableImport& what = ImportOf(kind);
  if (path.empty())
    path = AskImportFile(ormel, {what.key, what.title, what.extension, what.filter, {}}).value_or("");
  if (!path.empty()) ImportFile(ormel, what, head_specified, path);
}

}  // namespace

void ToolsImportWL(Ormel& ormel, bool headSpecified, const std::string& path) {
  const Named named(ormel, "ToolsImportWL");
  if (headSpecified &&
      !AskYesNo(ormel, "Head Specified Wells",
                Lines({"You selected to import pumping wells", "with a known HEAD, rather than",
                       "a known pumping rate.", "Do you want to proceed?"}),
                Icon::kQuestion))
    return;
  Import(ormel, TableKind::kWells, headSpecified, path);
}

void ToolsImportTP(Ormel& ormel, const std::string& path) {
  const Named named(ormel, "ToolsImportTP");
  Import(ormel, TableKind::kTestPoints, false, path);
}

void ToolsImportTX(Ormel& ormel, const std::string& path) {
  const Named named(ormel, "ToolsImportTX");
  Import(ormel, TableKind::kTextLabels, false, path);
}

}  // namespace ormel
