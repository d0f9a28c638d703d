#include "shell/project_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "core/run_files.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

std::string SystemWords() {
  return std::error_code(errno, std::generic_category()).message();
}

class File {
 public:
  File(const std::string& path, int flags, mode_t mode = 0)
      : path_(path), fd_(open(path.c_str(), flags | O_CLOEXEC, mode)) {
    if (fd_ < 0) throw FileError(path, SystemWords());
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (fd_ >= 0) close(fd_);
  }
  std::size_t Read(char* data, std::size_t size) {
    ssize_t count = 0;
    do {
      count = read(fd_, data, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw FileError(path_, SystemWords());
    return static_cast<std::size_t>(count);
  }
  void Write(const char* data, std::size_t size) {
    while (size > 0) {
      const ssize_t count = write(fd_, data, size);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) throw FileError(path_, SystemWords());
      data += count;
      size -= static_cast<std::size_t>(count);
    }
  }
  void Finish() {
    if (fsync(fd_) != 0 || close(std::exchange(fd_, -1)) != 0) throw FileError(path_, SystemWords());
  }

 private:
  std::string path_;
  int fd_;
};

/// Removes a temporary file unless it has got its name.
class TemporaryName {
 public:
  explicit TemporaryName(std::string path) : path_(std::move(path)) {}
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;
  ~TemporaryName() {
    if (!path_.empty()) std::remove(path_.c_str());
  }
  const std::string& path() const { return path_; }
  void BecomeThe(const std::string& target) {
    if (std::rename(path_.c_str(), target.c_str()) != 0) throw FileError(target, SystemWords());
    path_.clear();
  }

 private:
  std::string path_;
};

void CopyBytes(const std::string& source, const std::string& target) {
  File in(source, O_RDONLY);
  File out(target, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
  std::array<char, 65536> buffer{};
  while (const std::size_t size = in.Read(buffer.data(), buffer.size())) out.Write(buffer.data(), size);
  out.Finish();
}

/// Base maps that were named from the old project's folder are named whole in another one.
void KeepBaseMaps(Database& db, const std::string& source, const std::string& target) {
  const std::string folder = GetPathFromFile(source);
  if (folder == GetPathFromFile(target)) return;
  for (const char* table : {"Basemaps", "MapLabels"})
    db.Execute("update " + std::string(table) +
                   " set MapName=? || MapName where MapName not like '/%' and MapName not like '_:%'",
               {folder});
}

/// Gives the finished copy a stem of its own and then its name.
void FinishCopy(TemporaryName& copy, const std::string& source, const std::string& target) {
  Database db = Database::Open(copy.path());
  KeepBaseMaps(db, source, target);
  db.Execute("update Project set OrmelBaseName=?",
             {FreeStem(GetPathFromFile(target), std::filesystem::path(target).stem().string())});
  db.Close();
  copy.BecomeThe(target);
}

}  // namespace

void DuplicateProject(const std::string& source, const std::string& target) {
  TemporaryName copy(TemporaryBeside(target, ".copy"));
  CopyBytes(source, copy.path());
  FinishCopy(copy, source, target);
}

void DuplicateImage(const std::string& image, const std::string& source, const std::string& target) {
  TemporaryName copy(TemporaryBeside(target, ".copy"));
  {
    File out(copy.path(), O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
    out.Write(image.data(), image.size());
    out.Finish();
  }
  FinishCopy(copy, source, target);
}

void MakeProjectFile(const std::string& path, const NewDatabaseOptions& options) {
  TemporaryName fresh(TemporaryBeside(path, ".new"));
  DBNewDatabase(fresh.path(), options);
  fresh.BecomeThe(path);
}

}  // namespace ormel
