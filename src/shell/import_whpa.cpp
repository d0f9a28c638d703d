#include "shell/import_whpa.h"

#include <filesystem>
#include <optional>
#include <string>

#include "core/command.h"
#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "shell/lifecycle.h"
#include "shell/open_steps.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kPathKey = "Default WHPA Input Path";
constexpr std::size_t kDescriptionLimit = 255;

bool Confirmed(Ormel& ormel) {
  return AskOkCancel(ormel, "DLG Converter",
                     "Messaeg about importing WHPA 2.2 files bla bla bla.\n\n"
                     "Press OK to proceed or Cancel to abort the conversion process",
                     Icon::kNone);
}

/// The file to import; nothing when the user gives up.
std::optional<std::string> AskInputFile(Ormel& ormel) {
  constexpr int kTries = 100;  // a script could answer the same name for ever
  for (int i = 0; i < kTries; ++i) {
    FileDialog dialog;
    dialog.title = "Import WHPA File:";
    dialog.filter = "WHPA Input Files (*.in)|*.in";
    dialog.default_extension = "in";
    dialog.directory = ReadDefaultDirectory(ormel, kPathKey);
    const std::optional<std::string> answer = ormel.ui().Ask(dialog);
    if (!answer || answer->empty()) return std::nullopt;
    const std::string path = FullPath(ormel, *answer);
    if (FileExists(path)) return path;
    Inform(ormel, "File Not Found", "File does not exist!");
  }
  return std::nullopt;
}

/// The first line; the other lines are taken apart and say nothing that a project keeps.
std::string ReadTitle(const std::string& path) {
  LineReader lines(path);
  std::string title, line;
  if (!lines.Next(title)) return {};
  while (lines.Next(line)) ParseString(line, ' ');
  return std::string(TextLeft(title, kDescriptionLimit));
}

}  // namespace

void ImportWHPA(Ormel& ormel) {
  const Named named(ormel, "ImportWHPA");
  if (!Confirmed(ormel)) return;
  const std::optional<std::string> input = AskInputFile(ormel);
  if (!input) return;
  const std::string folder = std::filesystem::path(*input).parent_path().string();
  WriteDefaultDirectory(ormel, kPathKey, folder);
  NewDatabaseOptions options;
  options.description = ReadTitle(*input);
  const std::string project = std::filesystem::path(*input).replace_extension(".orm").string();
  if (FileExists(project)) {
    Inform(ormel, "Import WHPA File:",
           project +
               " exists already and was not changed.\nMove it, or rename the input file, and import again.",
           Icon::kWarning);
    return;
  }
  options.file_title = std::filesystem::path(project).filename().string();
  options.working_directory = folder;
  DBNewDatabase(project, options);
  FileCloseProject(ormel);
  FileOpenProject(ormel, project);
}

}  // namespace ormel
