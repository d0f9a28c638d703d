#include "core/table_file.h"

#include <optional>

#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/publisher.h"
#include "core/status.h"
#include "core/table.h"
#include "core/user_interface.h"
#include "text/files.h"
#include "text/html.h"

namespace ormel {
namespace {

constexpr std::string_view kDirectoryKey = "Default Export Table path";

/// The dialog needs its title and kind of file.  Nothing: the user gave up.
std::optional<std::string> AskForFile(Ormel& ormel, FileDialog& dialog, std::string_view name) {
  dialog.save = true;
  dialog.directory = ReadDefaultDirectory(ormel, kDirectoryKey);
  dialog.file_name = std::string(name) + "." + dialog.default_extension;
  std::optional<std::string> path = ormel.ui().Ask(dialog);
  if (!path || path->empty()) return std::nullopt;
  if (FileExists(*path) &&
      !AskYesNo(ormel, "File Exists",
                Lines({"File " + *path + " already exists.", "Do you want to overwrite it?"}),
                Icon::kQuestion))
    return std::nullopt;
  return path;
}

std::string CellHtml(std::string_view kind, bool number, std::string_view text) {
  std::string html = EscapeHtml(text);
  if (const std::size_t line = html.find('\n'); line != std::string::npos) html.replace(line, 1, "<br>");
  const std::string tag(kind);
  return "<" + tag + " align=\"" + (number ? "right" : "left") + "\">" + html + "</" + tag + ">";
}

/// Remembers the folder for the next time.
void TellDone(Ormel& ormel, const Table& table, const char* what, const std::string& path) {
  WriteDefaultDirectory(ormel, kDirectoryKey, GetPathFromFile(path));
  Feedback(ormel, std::to_string(table.Rows()) + " rows " + what + " to " + path);
}

}  // namespace

void WriteCsv(const Table& table, const std::string& path) {
  TextFileWriter file(path);
  file.Line(table.CsvHeadings());
  for (std::size_t row = 0; row < table.Rows(); ++row) file.Line(table.CsvRow(row));
  file.Commit();
}

void SaveTable(Ormel& ormel, const Table& table, std::string_view name) {
  FileDialog dialog;
  dialog.title = "Save Table As";
  dialog.default_extension = "csv";
  dialog.filter = "Comma-Separated Values (*.csv)|*.csv";
  const auto path = AskForFile(ormel, dialog, name);
  if (!path) return;
  try {
    WriteCsv(table, *path);
    TellDone(ormel, table, "saved", *path);
  } catch (const FileError& failure) {
    Inform(ormel, dialog.title, Lines({"The table could not be saved.", failure.what()}), Icon::kStop);
  }
}

std::string TableHtml(const Table& table, std::string_view heading) {
  std::string html =
      "<html><head><meta charset=\"utf-8\"><style>body{font-family:sans-serif;font-size:8pt} "
      "th{border-bottom:1px solid black}</style></head><body>\n<h2>" +
      EscapeHtml(heading) + "</h2>\n<table cellspacing=\"0\" cellpadding=\"3\" width=\"100%\">\n<thead><tr>";
  for (const TableColumn& column : table.columns()) html += CellHtml("th", column.number, column.caption);
  html += "</tr></thead>\n<tbody>\n";
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    html += "<tr>";
    for (std::size_t i = 0; i < table.columns().size(); ++i)
      html += CellHtml("td", table.columns()[i].number, table.Text(row, i));
    html += "</tr>\n";
  }
  return html + "</tbody></table>\n</body></html>\n";
}

void PrintTable(Ormel& ormel, const Table& table, std::string_view name) {
  if (ormel.ports.publisher == nullptr) return;
  FileDialog dialog;
  dialog.title = "Print Table To";
  dialog.default_extension = "pdf";
  dialog.filter = "PDF Document (*.pdf)|*.pdf";
  const auto path = AskForFile(ormel, dialog, name);
  if (!path) return;
  PageStyle page;
  page.landscape = true;
  page.margin = 12.0;
  page.foot = std::string(name) + ", " + FileTitle(ormel.project.DBName);
  const std::string failure =
      ormel.ports.publisher->SavePdf(TableHtml(table, name), page, *path, [](double) { return true; });
  if (!failure.empty()) return Inform(ormel, dialog.title, failure, Icon::kWarning);
  TellDone(ormel, table, "printed", *path);
}

}  // namespace ormel
