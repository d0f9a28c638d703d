// ormel: the desktop program.
#include <cstdio>
#include <string>
#include <string_view>

#include "core/ormel.h"
#include "ormel/application.h"
#include "ormel/program.h"
#include "platform/file_settings.h"
#include "platform/posix_processes.h"
#include "platform/system_clock.h"

namespace {

constexpr std::string_view kUsage =
    "usage: ormel [project.orm]\n"
    "Opens the window, with the project when one is named.  For work without a window see ormelcmd.\n";

/// The command line is one path; a shell may have cut it at its blanks.
std::string ProjectOf(int argc, char** argv) {
  std::string path;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) path += ' ';
    path += argv[i];
  }
  return path;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view first = argc == 2 ? argv[1] : "";
  if (first == "--help" || first == "-h") {
    std::fputs(std::string(kUsage).c_str(), stdout);
    return 0;
  }
  if (first == "--version") {
    std::printf("%s %s\n", ormel::kProgramTitle, ormel::VersionText().c_str());
    return 0;
  }
  ormel::Application app(argc, argv);
  ormel::FileSettings settings;
  ormel::PosixProcesses processes;
  ormel::SystemClock clock;
  ormel::Program program({settings, processes, clock});
  app.SetController(&program.ormel);
  program.Start(ProjectOf(argc, argv));
  const int result = ormel::Application::exec();
  app.SetController(nullptr);
  return result;
}
