#include "text/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "text/names.h"

namespace ormel {

namespace {

std::string Reason(int error) {
  return std::generic_category().message(error);
}

std::string Message(const std::string& file, const std::string& reason, std::size_t line) {
  return file + (line > 0 ? ", line " + std::to_string(line) : "") + ": " + reason;
}

[[noreturn]] void Fail(const std::string& file, const std::string& did_not, int error) {
  if (error == ENOSPC || error == EDQUOT || error == EFBIG)
    throw DiskFullError(file,
                        did_not + ": the disk is full or takes no more. Free some space and do it again.");
  throw FileError(file, did_not + ": " + Reason(error));
}

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }
  bool Close() { return ::close(std::exchange(fd_, -1)) == 0; }
  void Reset(int fd) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

/// Where a link leads, so that writing a linked file keeps the link.
std::string LinkTarget(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  const auto target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

void SyncFolder(const std::string& path) {
  const std::string folder = GetPathFromFile(path);
  const Descriptor handle(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle.get() >= 0) ::fsync(handle.get());  // not every file system can; the file itself is on the disk
}

}  // namespace

FileError::FileError(std::string file, std::string reason, std::size_t line)
    : std::runtime_error(Message(file, reason, line)),
      file_(std::move(file)),
      reason_(std::move(reason)),
      line_(line) {}

bool FileExists(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);  // nor is a pipe or a device one
}

std::string GetPathFromFile(std::string_view path) {
  const std::size_t last = path.rfind(kPathSeparator);
  return std::string(last == std::string_view::npos ? std::string_view() : path.substr(0, last + 1));
}

std::string FileTitle(std::string_view path) {
  return std::string(path.substr(path.rfind(kPathSeparator) + 1));
}

std::string BaseName(std::string_view path) {
  std::string title = FileTitle(path);
  return title.substr(0, title.find('.'));
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string out(folder);
  if (!out.empty() && out.back() != kPathSeparator) out += kPathSeparator;
  return out.append(name);
}

struct LineReader::File {
  Descriptor handle;
  std::array<char, 1U << 16U> buffer;
  std::size_t begin = 0;
  std::size_t end = 0;
};

LineReader::LineReader(const std::string& path) : path_(path), file_(std::make_unique<File>()) {
  // Without waiting: a pipe that nobody writes would be waited for, and a device may never end.
  file_->handle.Reset(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file_->handle.get() < 0) throw FileError(path_, "cannot be opened for reading: " + Reason(errno));
  struct stat info {};
  if (::fstat(file_->handle.get(), &info) == 0 && (S_ISFIFO(info.st_mode) || S_ISCHR(info.st_mode)))
    throw FileError(path_, "cannot be read: it is a pipe or a device and no plain file");
}

LineReader::~LineReader() = default;
LineReader::LineReader(LineReader&&) noexcept = default;
LineReader& LineReader::operator=(LineReader&&) noexcept = default;

/// True while there are unread bytes in the buffer.
bool LineReader::Fill() {
  File& file = *file_;
  if (file.begin < file.end) return true;
  ssize_t count = 0;
  do {
    count = ::read(file.handle.get(), file.buffer.data(), file.buffer.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) throw FileError(path_, "cannot be read: " + Reason(errno), line_number_ + 1);
  file.begin = 0;
  file.end = static_cast<std::size_t>(count);
  return count > 0;
}

bool LineReader::Next(std::string& line) {
  line.clear();
  if (!Fill()) return false;
  File& file = *file_;
  while (Fill()) {
    const std::string_view rest(file.buffer.data() + file.begin, file.end - file.begin);
    const std::size_t stop = rest.find_first_of("\r\n");
    const std::string_view part = rest.substr(0, stop);
    if (line.size() + part.size() > kMaxLine) {
      throw FileError(
          path_, "a line is longer than " + std::to_string(kMaxLine) + " characters; is this a text file?",
          line_number_ + 1);
    }
    line += part;
    file.begin += part.size();
    if (stop == std::string_view::npos) continue;
    const bool carriage_return = file.buffer[file.begin++] == '\r';
    if (carriage_return && Fill() && file.buffer[file.begin] == '\n') ++file.begin;
    break;
  }
  ++line_number_;
  return true;
}

struct TextFileWriter::File {
  Descriptor handle;
  std::string target;
  std::string temporary;
  std::string buffer;
};

TextFileWriter::TextFileWriter(const std::string& path) : path_(path), file_(std::make_unique<File>()) {
  constexpr int kTries = 100;
  File& file = *file_;
  file.target = LinkTarget(path);
  if (::access(file.target.c_str(), F_OK) == 0) {
    std::error_code ignored;
    if (std::filesystem::is_directory(file.target, ignored)) throw FileError(path_, "is a folder.");
    // Its name would be given to a plain file.
    if (!std::filesystem::is_regular_file(file.target, ignored))
      throw FileError(path_, "cannot be written: it is a pipe or a device and no plain file");
    if (::access(file.target.c_str(), W_OK) != 0)
      throw FileError(path_, "cannot be written: " + Reason(errno));
  }
  for (int i = 0; i < kTries && file.handle.get() < 0; ++i) {
    file.temporary = TemporaryBeside(file.target, ".tmp");
    file.handle.Reset(::open(file.temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.handle.get() < 0 && errno != EEXIST) break;
  }
  if (file.handle.get() < 0) {
    const int error = errno;
    file.temporary.clear();
    Fail(path_, "cannot be created", error);
  }
}

TextFileWriter::~TextFileWriter() {
  Discard();
}
TextFileWriter::TextFileWriter(TextFileWriter&&) noexcept = default;
TextFileWriter& TextFileWriter::operator=(TextFileWriter&& other) noexcept {
  if (this != &other) {
    Discard();
    path_ = std::move(other.path_);
    file_ = std::move(other.file_);
  }
  return *this;
}

void TextFileWriter::Line(std::string_view line) {
  Write(line);
  Write("\r\n");
}

void TextFileWriter::Write(std::string_view text) {
  constexpr std::size_t kFlushAt = 1U << 16U;
  file_->buffer += text;
  if (file_->buffer.size() >= kFlushAt) Flush();
}

void TextFileWriter::Flush() {
  std::string_view rest = file_->buffer;
  while (!rest.empty()) {
    const ssize_t count = ::write(file_->handle.get(), rest.data(), rest.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Fail(path_, "cannot be written", errno);
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
  file_->buffer.clear();
}

void TextFileWriter::Commit() {
  if (!file_) throw FileError(path_, "has been written already.");
  Flush();
  File& file = *file_;
  struct stat info {};
  if (::stat(file.target.c_str(), &info) == 0) ::fchmod(file.handle.get(), info.st_mode & 07777);
  if (::fsync(file.handle.get()) != 0 || !file.handle.Close()) {
    Fail(path_, "cannot be written", errno);
  }
  if (::rename(file.temporary.c_str(), file.target.c_str()) != 0) {
    Fail(path_, "cannot be put in place", errno);
  }
  SyncFolder(file.target);
  file_.reset();
}

void TextFileWriter::Discard() noexcept {
  if (file_ && !file_->temporary.empty()) ::unlink(file_->temporary.c_str());
  file_.reset();
}

}  // namespace ormel
