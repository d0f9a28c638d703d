// The program VADOX1.EXE as a function.
#pragma once

#include <atomic>
#include <string>
#include <vector>

namespace vadox1 {

/// Set by the handlers of SIGINT and SIGTERM: the run ends at the next chance, with its logs and without half
/// files.
extern std::atomic<bool> interrupted;

/// For a signal handler: ends a run that has not come to a chance to end by itself, without half files.
[[noreturn]] void EndAtOnce() noexcept;

/// The error log that EndAtOnce tells of the interruption; empty or "con": none.
void RememberErrorLog(const std::string& file) noexcept;

enum ExitStatus {
  kClean = 0,
  kFatal = 1,        ///< VADOX.OPS says why
  kInterrupted = 2,  ///< VADOX.OPS says so
};

/// `arguments` are <size> <name>.  Works in the present folder: reads the deck, runs its commands, writes
/// logs and outputs.  Progress goes to standard output, a line a step:
///   PROGRESS <percent, a whole number from 0 to 100> <text>
int RunSolver(const std::vector<std::string>& arguments);

}  // namespace vadox1
