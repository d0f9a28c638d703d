#include "exchange/export_job.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

namespace fs = std::filesystem;

FileDialog DialogOf(Ormel& ormel, const ExportTarget& target) {
  FileDialog dialog;
  dialog.title = target.title;
  dialog.default_extension = target.extension;
  dialog.filter = target.filter;
  dialog.directory = ReadDefaultDirectory(ormel, target.key);
  return dialog;
}

std::optional<std::string> AskFile(Ormel& ormel, const ExportTarget& target, const FileDialog& dialog) {
  auto path = ormel.ui().Ask(dialog);
  if (!path || path->empty()) return std::nullopt;
  WriteDefaultDirectory(ormel, target.key, GetPathFromFile(*path));
  return path;
}

}  // namespace

ExportJob::ExportJob(Ormel& ormel, std::string_view text, std::size_t total) : ormel_(ormel), total_(total) {
  PleaseWaitShow(ormel_, text);
}

ExportJob::~ExportJob() {
  PleaseWaitHide(ormel_);
}

void ExportJob::Step(std::size_t records) {
  constexpr std::size_t kStepsToTell = 2048;
  done_ += records;
  if (done_ < next_) return;
  next_ = done_ + kStepsToTell;
  if (ormel_.ui().CancelRequested()) throw ExportCancelled{};
  const double fraction =
      total_ > 0 ? std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_)) : -1.0;
  ormel_.ui().Progress(fraction, std::to_string(done_));
}

bool MayReplace(Ormel& ormel, const std::string& path, std::string_view abort) {
  if (!FileExists(path)) return true;
  if (AskYesNo(ormel, "File Exists",
               Lines({"File " + path + " already exists.", "Do you want to overwrite it?"}), Icon::kQuestion))
    return true;
  if (!abort.empty()) Inform(ormel, "Abort", abort);
  return false;
}

std::optional<std::string> AskExportFile(Ormel& ormel, const ExportTarget& target) {
  FileDialog dialog = DialogOf(ormel, target);
  dialog.save = true;
  if (!target.suffix.empty())
    dialog.file_name = ormel.project.OrmelBaseName + target.suffix + "." + std::string(target.extension);
  return AskFile(ormel, target, dialog);
}

std::optional<std::string> AskImportFile(Ormel& ormel, const ExportTarget& target) {
  return AskFile(ormel, target, DialogOf(ormel, target));
}

FileSet::FileSet(const std::string& path) : path_(path) {
  const std::string folder = GetPathFromFile(path), title = FileTitle(path);
  stem_ = folder + title.substr(0, title.rfind('.'));
  const std::string beside = TemporaryBeside(fs::absolute(path).string(), ".tmp");
  std::error_code error;
  if (!fs::create_directory(beside, error) || error)
    throw FileError(path, "cannot be created: " + error.message());
  folder_ = beside;
}

FileSet::~FileSet() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

std::string FileSet::Target(const std::string& extension) const {
  return stem_ + "." + extension;
}

std::string FileSet::Member(std::string_view extension) {
  const std::string name(extension);
  if (std::find(members_.begin(), members_.end(), name) == members_.end()) {
    const std::string target = Target(name);
    std::error_code ignored;
    if (fs::exists(target, ignored) && !FileExists(target))
      throw FileError(target, "cannot be written: it is no plain file");
    if (FileExists(target) && ::access(target.c_str(), W_OK) != 0)
      throw FileError(target, "cannot be written: it is read-only");
    members_.push_back(name);
  }
  return JoinPath(folder_, "export." + name);
}

void FileSet::Commit(const std::vector<std::string_view>& outdated) {
  for (const std::string& name : members_) {
    std::error_code error;
    fs::rename(Member(name), Target(name), error);
    if (error) throw FileError(Target(name), "cannot be put in place: " + error.message());
  }
  for (const std::string_view name : outdated) {
    std::error_code ignored;
    fs::remove(Target(std::string(name)), ignored);
  }
}

}  // namespace ormel
