#include "shell/examples.h"

#include <exception>
#include <filesystem>

#include "core/ormel.h"
#include "core/processes.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "shell/lifecycle.h"
#include "shell/project_copy.h"
#include "store/database.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFolder = "Ormel Examples";

/// The line XDG_DOCUMENTS_DIR="$HOME/Dokumente" of the desktop's file of folders; empty without one.
std::string FolderOfDesktop(const Processes& processes, const std::string& home) {
  std::string config = processes.Environment("XDG_CONFIG_HOME");
  if (config.empty()) config = JoinPath(home, ".config");
  const std::string file = JoinPath(config, "user-dirs.dirs");
  if (!FileExists(file)) return {};
  constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=\"", kHome = "$HOME";
  LineReader lines(file);
  std::string line;
  while (lines.Next(line)) {
    std::string_view text = Trim(line);
    if (!text.starts_with(kKey)) continue;
    text.remove_prefix(kKey.size());
    text = text.substr(0, text.find('"'));
    if (!text.starts_with(kHome)) return std::string(text);
    return home + std::string(text.substr(kHome.size()));
  }
  return {};
}

bool IsFolder(const std::string& path) {
  std::error_code error;
  return !path.empty() && fs::is_directory(path, error);
}

std::string StemOf(const std::string& project) {
  return Database::Open(project, OpenMode::kReadOnly).Scalar("select OrmelBaseName from Project").AsText();
}

/// The solved example brings its results: files are known by what they hold, whatever their folder.
void CopyExample(const std::string& source, const std::string& target) {
  DuplicateProject(source, target);
  const std::string from = JoinPath(fs::path(source).parent_path().string(), StemOf(source));
  const std::string to = JoinPath(fs::path(target).parent_path().string(), StemOf(target));
  for (const char* extension : {".DAT", ".SOL", ".XTR", ".GRD", ".CTR", ".PTH", ".RUN"})
    if (FileExists(from + extension))
      fs::copy_file(from + extension, to + extension, fs::copy_options::overwrite_existing);
}

}  // namespace

std::string DocumentsFolder(const Ormel& ormel) {
  const std::string home = ormel.processes().Environment("HOME");
  if (!IsFolder(home)) return {};
  for (const std::string& folder : {FolderOfDesktop(ormel.processes(), home), JoinPath(home, "Documents")})
    if (IsFolder(folder)) return folder;
  return home;
}

void OpenExample(Ormel& ormel, std::string_view path) {
  const std::string documents = DocumentsFolder(ormel);
  const std::string folder = documents.empty() ? std::string() : JoinPath(documents, kFolder);
  const std::string copy = JoinPath(folder, FileTitle(std::string(path)));
  try {
    if (folder.empty()) throw FileError(std::string(path), "there is no home folder that takes a copy of it");
    fs::create_directories(folder);
    if (!FileExists(copy)) CopyExample(std::string(path), copy);
  } catch (const std::exception& e) {
    Inform(ormel, kProgramTitle, std::string(e.what()) + "\nThe example has not been opened.",
           Icon::kWarning);
    return;
  }
  FileOpenProject(ormel, copy);
  if (ormel.project.ProjectOpen) Feedback(ormel, "Your copy of the example: " + copy);
}

}  // namespace ormel
