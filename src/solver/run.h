// The one way in which an outside program is run: a solve, a reload, a protection area, an outline, a query.
//
// It waits for the folder, sets the old files aside, writes the deck, runs the solver with progress and
// Cancel, and lets the caller read the results.  When these count, rows and files replace the old ones
// together; otherwise rows, files, flags, windows and menus are as they were.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/processes.h"
#include "solver/kept_files.h"
#include "solver/user_labels.h"

namespace ormel {

struct Ormel;
class TextSink;

enum class RunEnd {
  kDone,
  kGivenUp,     ///< by the user, before anything ran
  kCancelled,   ///< by the user, while it ran
  kNotStarted,  ///< the solver could not be started; the caller tells why
  kStopped,     ///< the solver stopped before its end; the user has been told why
  kRefused,     ///< the results do not count; the user has been told why
};

struct RunPlan {
  std::string deck;      ///< name of the deck, in the model folder
  std::string argument;  ///< what the solver is told: the deck's name, with or without ".DAT"
  int size_number = 0;   ///< 0: counted when the deck has been written
  std::string wait_text;
  std::string writing_text{};  ///< shown while the deck is written; empty shows nothing
  std::vector<RunFile> files{};
  std::vector<std::string> scratch{};  ///< paths of files that are deleted first and never come back
  std::string results{};               ///< path of the file that must stand afterwards
  /// When the folder is this run's alone, before anything is set aside.  False: the run is given up.
  std::function<bool()> begin{};
  /// Writes the deck.  False: the user gives up.
  std::function<bool(TextSink&)> write;
  /// Reads the results into rows and state; kDone when they count, else kCancelled or kRefused.
  std::function<RunEnd()> accept{};
  /// After rows have reached the project's file, before the old files go: for what names the new ones.
  std::function<void()> record{};
};

struct RunOutcome {
  RunEnd end = RunEnd::kDone;
  ProcessResult process{};
  std::optional<NamedElement> culprit{};  ///< whom the solver's fatal message names first
};

/// Runs the solver by a plan.  What the present command has written so far is committed first and stays.  An
/// exception on the way restores as a failure does and goes on.
RunOutcome RunBy(Ormel& ormel, const RunPlan& plan);

/// What a run that was interrupted - a crash, a power cut - has set aside in the model folder comes back.
/// True when there was something.  Nothing while another program runs there.
bool TakeBackInterruptedRun(Ormel& ormel);

}  // namespace ormel
