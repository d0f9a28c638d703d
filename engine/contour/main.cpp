#include <csignal>

#include "contour/contour_run.h"
#include "files/program_help.h"

constexpr const char* kHelp =
    "Usage: CONTOUR.EXE <stem> <min> <interval> <max>\n"
    "Reads the grid <stem>.GRD and writes its contour lines from <min> to <max>, <interval> apart, to "
    "<stem>.CTR.\n\n"
    "Exit status: 0 written, 1 stopped for the reason on standard error.\n";

int main(int argc, char** argv) {
  if (files::AnswersHelp(argc, argv, "CONTOUR.EXE", kHelp)) return 0;
  // A file size limit then shows as a failed write with its message instead of ending the program.
  std::signal(SIGXFSZ, SIG_IGN);
  return contour::RunContour({argv + 1, argv + argc});
}
