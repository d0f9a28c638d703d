#include <csignal>

#include "contour/contour_run.h"

int main(int argc, char** argv) {
  // A file size limit then shows as a failed write with its message instead of ending the program.
  std::signal(SIGXFSZ, SIG_IGN);
  return contour::RunContour({argv + 1, argv + argc});
}
