// ormel: the desktop program.
#include <QString>
#include <QTimer>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/ormel.h"
#include "core/project.h"
#include "ormel/application.h"
#include "ormel/program.h"
#include "platform/end_requests.h"
#include "platform/file_settings.h"
#include "platform/posix_processes.h"
#include "platform/system_clock.h"

namespace {

constexpr std::string_view kUsage =
    "usage: ormel [project.orm]\n"
    "Opens the window, with the project when one is named.  For work without a window see ormelcmd.\n"
    "Exit code 4: there is no display to open a window on.\n";

constexpr int kNoDisplay = 4;
constexpr int kEndRequestPause = 100;  // milliseconds

/// The command line is one path; a shell may have cut it at its blanks.
std::string ProjectOf(int argc, char** argv) {
  std::string path;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) path += ' ';
    path += argv[i];
  }
  return path;
}

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::string(name) + '=' + value : std::string();
}

/// The toolkit ends a program that finds no display by an abort, after a page about its plug-ins.  Says what
/// is amiss instead.
void TellMissingDisplay(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (type != QtFatalMsg) {
    const bool of_the_platform = std::string_view(context.category).starts_with("qt.qpa.");
    if (!of_the_platform) std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    return;
  }
  if (!message.contains(QLatin1String("platform plugin"))) {
    std::fprintf(stderr, "ormel: %s\n", message.toUtf8().constData());
    return;
  }
  std::string where;
  for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"})
    if (where.empty()) where = Variable(name);
  std::fprintf(stderr,
               "ormel: no window can be opened: %s.\n"
               "Start it on a desktop or forward the display (ssh -X), or do the work without a window by "
               "ormelcmd.\n",
               where.empty() ? "there is no display, DISPLAY is not set"
                             : ("the display cannot be reached (" + where + ")").c_str());
  std::_Exit(kNoDisplay);
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
  qInstallMessageHandler(TellMissingDisplay);
  ormel::Application app(argc, argv);
  qInstallMessageHandler(nullptr);
  ormel::FileSettings settings;
  ormel::PosixProcesses processes;
  ormel::SystemClock clock;
  ormel::Program program({settings, processes, clock});
  app.SetController(&program.ormel);
  ormel::WatchEndRequests();
  QTimer end_requests;
  QObject::connect(&end_requests, &QTimer::timeout, [&program] {
    if (!ormel::EndRequested()) return;
    program.ormel.project.view_edited = false;  // nobody may be there to answer
    program.window.EndByRequest();
  });
  end_requests.start(kEndRequestPause);
  program.Start(ProjectOf(argc, argv));
  const int result = ormel::Application::exec();
  app.SetController(nullptr);
  return result;
}
