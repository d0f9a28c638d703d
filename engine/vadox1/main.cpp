#include <unistd.h>

#include <csignal>

#include "vadox1/run.h"

namespace {

constexpr unsigned kGrace = 3;  ///< seconds that a run has to end with its logs, after one signal

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
