#include "files/text_lines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "files/output_file.h"

namespace files {
namespace {

struct Descriptor {
  explicit Descriptor(int fd) : value(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (value >= 0) ::close(value);
  }
  int value;
};

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

std::string ReadWholeFile(const std::string& path) {
  // Without waiting: a pipe in place of the file would keep the program until somebody writes into it.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.value < 0) throw FileError(path, "cannot be opened", errno);
  struct stat about {};
  if (::fstat(file.value, &about) != 0) throw FileError(path, "cannot be read", errno);
  if (S_ISDIR(about.st_mode)) throw FileError(path, "is a folder, not a file", 0);
  if (!S_ISREG(about.st_mode)) throw FileError(path, "is a pipe or a device, not a file", 0);
  std::string text;
  text.reserve(static_cast<std::size_t>(about.st_size));
  char buffer[1 << 16];
  while (true) {
    const ssize_t got = ::read(file.value, buffer, sizeof buffer);
    if (got == 0) return text;
    if (got > 0) {
      text.append(buffer, static_cast<std::size_t>(got));
    } else if (errno != EINTR) {
      throw FileError(path, "cannot be read", errno);
    }
  }
}

LineWalker::LineWalker(std::string_view text) : rest_(text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (rest_.substr(0, kByteOrderMark.size()) == kByteOrderMark) rest_.remove_prefix(kByteOrderMark.size());
  const std::size_t control_z = rest_.find('\x1A');
  if (control_z != std::string_view::npos) rest_ = rest_.substr(0, control_z);
}

bool LineWalker::Next() {
  if (rest_.empty()) return false;
  const std::size_t end = rest_.find_first_of("\r\n");
  line_ = rest_.substr(0, end);
  ++number_;
  if (end == std::string_view::npos) {
    rest_ = {};
    return true;
  }
  const bool pair = rest_[end] == '\r' && end + 1 < rest_.size() && rest_[end + 1] == '\n';
  rest_.remove_prefix(end + (pair ? 2 : 1));
  return true;
}

void SplitItems(std::string_view line, std::vector<std::string_view>& items) {
  items.clear();
  std::size_t at = 0;
  while (true) {
    while (at < line.size() && IsBlank(line[at])) ++at;
    if (at == line.size()) return;
    const std::size_t begin = at;
    while (at < line.size() && !IsBlank(line[at])) ++at;
    items.push_back(line.substr(begin, at - begin));
  }
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string Printable(std::string_view text, std::size_t longest) {
  std::string out(text.substr(0, longest));
  for (char& c : out) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\t') {
      c = ' ';
    } else if (byte < 0x20 || byte == 0x7F) {
      c = '?';
    }
  }
  if (text.size() > longest) out += "...";
  return out;
}

}  // namespace files
