#include <malloc.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "files/program_help.h"
#include "vadox1/run.h"

namespace {

constexpr suseconds_t kGrace = 150'000;  ///< microseconds that a run has to end by itself after a signal

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
  const itimerval grace{{0, 0}, {0, kGrace}};
  ::setitimer(ITIMER_REAL, &grace, nullptr);
  // A second signal ends the program at once.
  std::signal(signal, SIG_DFL);
}

}  // namespace

int main(int argc, char** argv) {
  if (files::AnswersHelp(argc, argv, "VADOX1.EXE", kHelp)) return 0;
#ifdef M_MMAP_THRESHOLD
  // Large arrays come and go with every round of a solution: their pages are kept for the next.
  ::mallopt(M_MMAP_THRESHOLD, 32 << 20);
  ::mallopt(M_TRIM_THRESHOLD, 1 << 30);
#endif
  std::signal(SIGINT, Interrupt);
  std::signal(SIGTERM, Interrupt);
  std::signal(SIGALRM, EndNow);
  // A reader of our progress that goes away, and a limit on file sizes, then show as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
#ifdef SIGXFSZ
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  const int status = vadox1::RunSolver({argv + 1, argv + argc});
  // All is written.  What libraries do at their end may wait for memory that there is not, for ever.
  std::fflush(nullptr);
  ::_exit(status);
}
