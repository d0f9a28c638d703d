#include "files/output_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace files {
namespace {

constexpr std::size_t kBufferSize = 1 << 18;

/// Path of the temporary file that is open; a signal handler may read it at any time.
char open_path[4096] = "";

void Remember(const std::string& path) {
  open_path[0] = 0;
  if (path.size() >= sizeof open_path) return;
  std::memcpy(open_path + 1, path.c_str() + 1, path.size());
  open_path[0] = path[0];
}

std::string Sentence(const std::string& file, const std::string& what_happened, int error_number) {
  std::string text = fmt::format("The file \"{}\" {}", file, what_happened);
  if (error_number != 0) text += fmt::format(": {}", std::strerror(error_number));
  return text + ".";
}

}  // namespace

FileError::FileError(const std::string& file, const std::string& what_happened, int error_number)
    : std::runtime_error(Sentence(file, what_happened, error_number)),
      file_(file),
      error_number_(error_number) {}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  // The number of the process keeps two runs in one folder from writing into the same temporary file.
  temporary_ = fmt::format("{}.{}.tmp", path_, ::getpid());
  descriptor_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor_ < 0) throw FileError(path_, "cannot be written", errno);
  Remember(temporary_);
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
  open_path[0] = 0;
}

void RemoveOpenFile() noexcept {
  if (open_path[0] != 0) ::unlink(open_path);
}

void OutputFile::Write(std::string_view text) {
  buffer_.append(text);
  if (buffer_.size() >= kBufferSize) Flush();
}

void OutputFile::Flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      throw FileError(path_, "cannot be written in full", errno);
    }
  }
  buffer_.clear();
}

void OutputFile::Commit() {
  Flush();
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0) throw FileError(path_, "cannot be written in full", errno);
  if (::rename(temporary_.c_str(), path_.c_str()) != 0)
    throw FileError(path_, "cannot be put in place", errno);
  temporary_.clear();
}

void WriteWholeFile(const std::string& path, std::string_view text) {
  OutputFile out(path);
  out.Write(text);
  out.Commit();
}

}  // namespace files
