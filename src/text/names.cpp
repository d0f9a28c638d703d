#include "text/names.h"

#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

namespace ormel {

bool IsPlainName(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return false;
  for (const char c : name)
    if (c == kPathSeparator || static_cast<unsigned char>(c) < 0x20 || c == 0x7F) return false;
  return true;
}

std::string TemporaryBeside(const std::string& path, std::string_view end) {
  struct stat info {};
  std::string name;
  do {
    std::uint32_t random = 0;
    if (::getrandom(&random, sizeof(random), 0) != static_cast<ssize_t>(sizeof(random))) ++random;
    name = path + "." + std::to_string(::getpid()) + "-" + std::to_string(random);
    name += end;
  } while (::lstat(name.c_str(), &info) == 0);
  return name;
}

void RemoveLink(const std::string& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) ::unlink(path.c_str());
}

}  // namespace ormel
