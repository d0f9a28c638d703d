#include "solver/kept_files.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

constexpr std::string_view kHeading = "* Ormel run journal 1";
constexpr std::string_view kCommitting = "committing";
constexpr std::array<std::string_view, 4> kHowNames{"aside", "replace", "copy", "words"};
constexpr std::string_view kNew = "new ";
constexpr std::string_view kOld = "old ";

std::string Companion(const std::string& path) {
  return path + ".before";
}

// Failures of these are no failures of the run: at worst an old file is lost that the run renews.
void MoveTolerantly(const std::string& from, const std::string& to) {
  std::error_code failure;
  std::filesystem::rename(from, to, failure);
}

void RemoveTolerantly(const std::string& path) {
  std::error_code failure;
  std::filesystem::remove(path, failure);
}

/// Also where a run has left an empty folder in the file's place, which no renaming replaces.
void MoveBack(const std::string& path) {
  std::error_code failure;
  if (std::filesystem::is_directory(path, failure)) RemoveTolerantly(path);
  MoveTolerantly(Companion(path), path);
}

}  // namespace

void KeptFiles::Keep(const std::string& journal, const std::vector<RunFile>& files) {
  std::vector<Kept> kept;
  kept.reserve(files.size());
  RemoveLink(journal);
  TextFileWriter out(journal);
  out.Line(kHeading);
  for (const RunFile& file : files) {
    kept.push_back({file.path, file.how, FileExists(file.path)});
    out.Line(std::string(kept.back().existed ? kOld : kNew) +
             std::string(kHowNames.at(static_cast<std::size_t>(file.how))) + " " + FileTitle(file.path));
  }
  out.Commit();
  journal_ = journal;
  kept_ = std::move(kept);
  for (const Kept& file : kept_) {
    if (!file.existed) continue;
    if (file.how != RunFile::How::kCopy) {
      MoveTolerantly(file.path, Companion(file.path));
      continue;
    }
    std::error_code failure;
    RemoveTolerantly(Companion(file.path));  // also a link, which the copy would follow
    std::filesystem::copy_file(file.path, Companion(file.path), failure);
    if (failure) RemoveTolerantly(Companion(file.path));
  }
}

void KeptFiles::Committing() noexcept {
  if (journal_.empty()) return;
  std::ofstream out(journal_, std::ios::binary | std::ios::app);
  out << kCommitting << "\r\n";
}

void KeptFiles::Finish() noexcept {
  for (const Kept& kept : kept_) {
    if (kept.how == RunFile::How::kReplace && !FileExists(kept.path))
      MoveTolerantly(Companion(kept.path), kept.path);
    else
      RemoveTolerantly(Companion(kept.path));
  }
  kept_.clear();
  if (!journal_.empty()) RemoveTolerantly(journal_);
  journal_.clear();
}

void KeptFiles::Restore(bool cancelled) noexcept {
  for (const Kept& kept : kept_) {
    const bool keep_new = kept.how == RunFile::How::kWords && !cancelled && FileExists(kept.path);
    if (keep_new)
      RemoveTolerantly(Companion(kept.path));
    else if (FileExists(Companion(kept.path)))
      MoveBack(kept.path);
    else if (!kept.existed)
      RemoveTolerantly(kept.path);
  }
  kept_.clear();
  if (!journal_.empty()) RemoveTolerantly(journal_);
  journal_.clear();
}

std::vector<KeptFiles::Kept> KeptFiles::ReadJournal(const std::string& journal, bool& committing) {
  std::vector<Kept> kept;
  LineReader lines(journal);
  std::string line;
  if (!lines.Next(line) || line != kHeading) return kept;
  while (lines.Next(line)) {
    if (line == kCommitting) committing = true;
    const bool existed = line.starts_with(kOld);
    if (!existed && !line.starts_with(kNew)) continue;
    for (std::size_t how = 0; how < kHowNames.size(); ++how) {
      const std::string_view rest = std::string_view(line).substr(kOld.size());
      if (!rest.starts_with(kHowNames.at(how))) continue;
      const std::string name(rest.substr(std::min(rest.size(), kHowNames.at(how).size() + 1)));
      // A journal names files beside it and no others, whoever wrote it.
      if (name.empty() || FileTitle(name) != name) continue;
      kept.push_back({JoinPath(GetPathFromFile(journal), name), static_cast<RunFile::How>(how), existed});
    }
  }
  return kept;
}

bool KeptFiles::Recover(const std::string& journal) noexcept {
  if (!FileExists(journal)) return false;
  try {
    KeptFiles files;
    bool committing = false;
    files.kept_ = ReadJournal(journal, committing);
    files.journal_ = journal;
    if (committing)
      files.Finish();
    else
      files.Restore(true);
    return true;
  } catch (const FileError&) {
    return false;  // an opening later tries again
  }
}

}  // namespace ormel
