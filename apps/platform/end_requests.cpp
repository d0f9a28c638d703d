#include "platform/end_requests.h"

#include <signal.h>

#include <initializer_list>

namespace ormel {
namespace {

volatile sig_atomic_t g_requested = 0;

void Note(int) {
  g_requested = 1;
}

}  // namespace

void WatchEndRequests() {
  for (const int number : {SIGTERM, SIGHUP}) signal(number, Note);
  signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is a failed write, which is told
}

bool EndRequested() {
  return g_requested != 0;
}

}  // namespace ormel
