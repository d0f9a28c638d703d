#include "core/table_file.h"

#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/table.h"
#include "core/user_interface.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::string_view kDirectoryKey = "Default Export Table path";

}  // namespace

void WriteCsv(const Table& table, const std::string& path) {
  TextFileWriter file(path);
  file.Line(table.CsvHeadings());
  for (std::size_t row = 0; row < table.Rows(); ++row) file.Line(table.CsvRow(row));
  file.Commit();
}

void SaveTable(Ormel& ormel, const Table& table, std::string_view name) {
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Save Table As";
  dialog.default_extension = "csv";
  dialog.filter = "Comma-Separated Values (*.csv)|*.csv";
  dialog.directory = ReadDefaultDirectory(ormel, kDirectoryKey);
  dialog.file_name = std::string(name) + ".csv";
  const auto path = ormel.ui().Ask(dialog);
  if (!path || path->empty()) return;
  if (FileExists(*path) &&
      !AskYesNo(ormel, "File Exists",
                Lines({"File " + *path + " already exists.", "Do you want to overwrite it?"}),
                Icon::kQuestion))
    return;
  try {
    WriteCsv(table, *path);
    WriteDefaultDirectory(ormel, kDirectoryKey, GetPathFromFile(*path));
    Feedback(ormel, std::to_string(table.Rows()) + " rows saved to " + *path);
  } catch (const FileError& failure) {
    Inform(ormel, dialog.title, Lines({"The table could not be saved.", failure.what()}), Icon::kStop);
  }
}

}  // namespace ormel
