#include <unistd.h>

#include <csignal>

#include "files/program_help.h"
#include "vadox1/run.h"

namespace {

constexpr unsigned kGrace = 3;  ///< seconds that a run has to end with its logs, after one signal

constexpr const char* kHelp =
    "Usage: VADOX1.EXE <size> <name of the deck>\n"
    "Solves the model of the deck NAME.DAT in the present folder and writes what the deck asks for: "
    "solution,\n"
    "extraction, grid, paths and zones.  <size> is a number that older solvers took as their largest count "
    "of\n"
    "elements; this one has no such limit.\n\n"
    "Progress goes to standard output.  message.log, error.log and echo.log tell of the run, VADOX.OPS why "
    "it\n"
    "stopped.\n"
    "Exit status: 0 solved, 1 stopped for the reason in VADOX.OPS, 2 interrupted.\n";

void EndNow(int) {
  vadox1::EndAtOnce();
}

void Interrupt(int signal) {
  vadox1::interrupted.store(true);
  ::alarm(kGrace);
  // A second signal ends the program at once.
  std::signal(signal, SIG_DFL);
}

}  // namespace

int main(int argc, char** argv) {
  if (files::AnswersHelp(argc, argv, "VADOX1.EXE", kHelp)) return 0;
  std::signal(SIGINT, Interrupt);
  std::signal(SIGTERM, Interrupt);
  std::signal(SIGALRM, EndNow);
  // A reader of our progress that goes away, and a limit on file sizes, then show as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  return vadox1::RunSolver({argv + 1, argv + argc});
}
