#include "store/unfinished_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "store/store_error.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

[[noreturn]] void Fail(const std::string& path, const char* what) {
  const int error = errno;
  const bool full = error == ENOSPC || error == EDQUOT || error == EFBIG;
  throw StoreError(full ? StoreErrorCode::kDiskFull : StoreErrorCode::kBadPath,
                   "The file \"" + path + "\" " + what + ": " + std::generic_category().message(error) +
                       (full ? ". Free some space and try again." : "."));
}

}  // namespace

UnfinishedFile::UnfinishedFile(const std::string& path)
    : path_(path), temporary_(TemporaryBeside(path, ".new")) {}

UnfinishedFile::~UnfinishedFile() {
  if (kept_) return;
  ::unlink(temporary_.c_str());
  ::unlink((temporary_ + "-journal").c_str());
}

void UnfinishedFile::Write(std::string_view bytes) {
  const int handle = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                            S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
  if (handle < 0) Fail(path_, "cannot be made");
  while (!bytes.empty()) {
    const ssize_t count = ::write(handle, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  const bool written = bytes.empty() && ::fsync(handle) == 0;
  const int error = errno;
  ::close(handle);
  errno = error;
  if (!written) Fail(path_, "cannot be written");
}

void UnfinishedFile::Keep() {
  // A link instead of a renaming: it fails where a file of that name has come up in the meantime.
  if (::link(temporary_.c_str(), path_.c_str()) != 0) {
    if (errno == EEXIST)
      throw StoreError(StoreErrorCode::kFileExists, "The file \"" + path_ + "\" exists already.");
    // A file system without links.
    if (::rename(temporary_.c_str(), path_.c_str()) != 0) Fail(path_, "cannot be put in place");
  }
  kept_ = true;
  ::unlink(temporary_.c_str());
  const std::string folder = GetPathFromFile(path_);
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle >= 0) {
    ::fsync(handle);
    ::close(handle);
  }
}

}  // namespace ormel
