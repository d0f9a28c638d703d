// Starting the two outside programs, and the files by which they tell how they fared.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/processes.h"
#include "core/run_files.h"
#include "solver/user_labels.h"

namespace ormel {

struct Ormel;

inline constexpr const char* kSolverProgram = "VADOX1.EXE";
inline constexpr const char* kContourProgram = "CONTOUR.EXE";

/// Tells the user when the program's folder does not hold the file.  True when it does.  The caller goes on
/// either way: the start that follows fails and tells why.
bool noexecutable(Ormel& ormel, std::string_view name);

/// Runs a program of the program's folder in the model folder and waits for it.  The wait box shows
/// `wait_text` and the progress that the program prints ("PROGRESS <percent> <text>"); its Cancel ends the
/// program.
ProcessResult WaitForTerm1(Ormel& ormel, std::string_view program, std::vector<std::string> arguments,
                           std::string_view wait_text);

/// The solver on a deck: its arguments are the size number and the deck's name.
ProcessResult RunSolver(Ormel& ormel, int size_number, std::string_view deck, std::string_view wait_text);

/// Tells why the solver did not start, and asks whether the solution should go.
void TellStartFailed(Ormel& ormel, const ProcessResult& result);

enum class ContourEnd { kDone, kCancelled, kFailed };
/// CONTOUR.EXE on `<stem>.GRD` with the levels of the settings.  kFailed when it could not be run or failed;
/// the user has been told.
ContourEnd RunContourProgram(Ormel& ormel, std::string_view stem);

/// True when the solver stopped before its end: VADOX.OPS is there, or the program crashed.  Tells the user
/// why and deletes VADOX.OPS.
bool TellFatalStop(Ormel& ormel, const ProcessResult& result, std::optional<NamedElement>* culprit = nullptr);

/// True when an error log says more than its first line "*".  A log that is not there says nothing.
bool ErrorLogSpeaks(const std::string& path);

}  // namespace ormel
