#include <array>
#include <string>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/element_rows.h"
#include "exchange/export_job.h"
#include "exchange/table_exchange.h"
#include "text/files.h"

namespace ormel {
namespace {

struct TableExport {
  TableKind kind;
  Element element;
  bool head_specified;
  std::string_view key, title, extension, filter, plural;
};
constexpr std::string_view kWellsKey = "Default Export Wells path",
                           kWellsTitle = "Export Wells to Import Format File",
                           kWellsFilter = "Well Import Files (*.wl)|*.wl";
constexpr std::array kExports{
    TableExport{TableKind::kWells, Element::kWell, false, kWellsKey, kWellsTitle, "wl", kWellsFilter,
                "Discharge Specified Wells"},
    TableExport{TableKind::kWells, Element::kWell, true, kWellsKey, kWellsTitle, "wl", kWellsFilter,
                "Head Specified Wells"},
    TableExport{TableKind::kTestPoints, Element::kTestPoint, false, "Default Export Test Points path",
                "Export Test Points to Import Format File", "tp", "Test Point Import Files (*.tp)|*.tp",
                "Test Points"},
    // The extension of the dialog is that of the test points, as it always was.
    TableExport{TableKind::kTextLabels, Element::kTextLabel, false, "Default Export Labels path",
                "Export Text Labels to Import Format File", "tp", "Text Label Import Files (*.tx)|*.tx",
                "Text Labels"}};

std::vector<std::string> LinesOf(Ormel& ormel, const TableExport& what) {
  std::vector<std::string> lines;
  ReadElementRows(ormel, what.element, [&](const ElementRow& row) {
    if (row.points.empty()) return;
    if (what.kind == TableKind::kWells && row.head_specified != what.head_specified) return;
    TableRecord record;
    record.at = row.points.front();
    record.value = row.value;
    record.radius = row.radius;
    record.label_type = row.label_type;
    record.text = row.label;
    lines.push_back(TableLine(what.kind, record));
  });
  return lines;
}

void WriteLines(Ormel& ormel, const std::vector<std::string>& lines, const std::string& path) {
  TextFileWriter file(path);
  ExportJob job(ormel, "Writing Table...", lines.size());
  for (const std::string& line : lines) {
    file.Line(line);
    job.Step();
  }
  file.Commit();
}

}  // namespace

void EXPORTDB(Ormel& ormel, int index, const std::string& given) {
  const Named named(ormel, "EXPORTDB");
  const TableExport& what = kExports.at(static_cast<std::size_t>(index));
  const std::vector<std::string> lines = LinesOf(ormel, what);
  if (lines.empty())
    return Inform(ormel, kProgramTitle, "No " + std::string(what.plural) + " were found.", Icon::kWarning);
  std::string path = given;
  if (path.empty())
    path = AskExportFile(ormel, {what.key, what.title, what.extension, what.filter, {}}).value_or("");
  if (path.empty() || !MayReplace(ormel, path, {}))
    return Inform(ormel, kProgramTitle, "Export canceled by user");
  try {
    WriteLines(ormel, lines, path);
    Inform(ormel, kProgramTitle,
           std::to_string(lines.size()) + " " + std::string(what.plural) + " were written.");
  } catch (const ExportCancelled&) {
    Inform(ormel, kProgramTitle, "Export canceled by user");
  } catch (const FileError& failure) {
    Inform(ormel, kProgramTitle, Lines({"Error encountered writing " + path, failure.what()}), Icon::kStop);
  }
}

}  // namespace ormel
