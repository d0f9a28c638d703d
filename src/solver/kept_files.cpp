#include "solver/kept_files.h"

#include <filesystem>
#include <system_error>

#include "text/files.h"

namespace ormel {
namespace {

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

}  // namespace

void KeptFiles::Move(const std::string& path, After after) {
  if (!FileExists(path)) {
    absent_.push_back(path);
    return;
  }
  MoveTolerantly(path, Companion(path));
  kept_.push_back({path, after});
}

void KeptFiles::Copy(const std::string& path) {
  if (!FileExists(path)) return;
  std::error_code failure;
  std::filesystem::copy_file(path, Companion(path), std::filesystem::copy_options::overwrite_existing,
                             failure);
  if (!failure) kept_.push_back({path, After::kGone});
}

void KeptFiles::Finish() noexcept {
  for (const Kept& kept : kept_) {
    if (kept.after == After::kBackIfMissing && !FileExists(kept.path))
      MoveTolerantly(Companion(kept.path), kept.path);
    else
      RemoveTolerantly(Companion(kept.path));
  }
  kept_.clear();
  absent_.clear();
}

void KeptFiles::Restore() noexcept {
  for (const std::string& path : absent_) RemoveTolerantly(path);
  for (const Kept& kept : kept_) MoveTolerantly(Companion(kept.path), kept.path);
  kept_.clear();
  absent_.clear();
}

}  // namespace ormel
