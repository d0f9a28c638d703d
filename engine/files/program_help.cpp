#include "files/program_help.h"

#include <cstdio>

namespace files {

bool AnswersHelp(int argc, const char* const* argv, std::string_view name, std::string_view help) {
  const std::string_view asked = argc == 2 ? argv[1] : "";
  if (asked == "--version") {
    std::printf("%.*s (Ormel) %s\n", static_cast<int>(name.size()), name.data(), ORMEL_VERSION);
    return true;
  }
  if (asked != "--help" && asked != "-h") return false;
  std::fwrite(help.data(), 1, help.size(), stdout);
  return true;
}

}  // namespace files
