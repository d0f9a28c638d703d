#include "store/kept_copy.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "store/store_error.h"
#include "store/unfinished_file.h"
#include "text/files.h"

namespace ormel {
namespace {

bool Holds(const std::string& path, std::string_view bytes) {
  std::error_code error;
  if (std::filesystem::file_size(path, error) != bytes.size() || error) return false;
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {}) == bytes;
}

}  // namespace

std::string KeepCopy(const std::string& path, std::string_view bytes, std::string_view mark) {
  constexpr int kMost = 1000;
  const std::string stem =
      JoinPath(GetPathFromFile(path), std::filesystem::path(path).stem().string()) + "." + std::string(mark);
  for (int number = 1; number <= kMost; ++number) {
    const std::string name = stem + (number == 1 ? "" : "-" + std::to_string(number)) + ".orm";
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(name, error))) {
      if (Holds(name, bytes)) return name;
      continue;
    }
    UnfinishedFile copy(name);
    copy.Write(bytes);
    try {
      copy.Keep();
    } catch (const StoreError& e) {
      if (e.code() == StoreErrorCode::kFileExists) continue;  // of another program, just now
      throw;
    }
    return name;
  }
  throw StoreError(StoreErrorCode::kFileExists, "There are " + std::to_string(kMost) + " copies named \"" +
                                                    stem +
                                                    "-....orm\" already. Remove those that are not needed.");
}

std::string FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  if (!in.is_open() || in.bad())
    throw StoreError(StoreErrorCode::kBadPath, "The file \"" + path + "\" cannot be read.");
  return bytes;
}

}  // namespace ormel
