#include "solver/outside_programs.h"

#include <algorithm>

#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/model_values.h"
#include "model/validity.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr const char* kFatalFile = "VADOX.OPS";
constexpr std::string_view kProgressWord = "PROGRESS ";

void ShowProgress(Ormel& ormel, std::string_view line) {
  if (!line.starts_with(kProgressWord)) return;
  line.remove_prefix(kProgressWord.size());
  const std::size_t blank = line.find(' ');
  const double percent = Val(line.substr(0, blank));
  const std::string_view text = blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
  ormel.ui().Progress(std::clamp(percent / 100.0, 0.0, 1.0), text);
}

std::string ReadFatalText(const std::string& path) {
  std::string text = "Ormel Encountered a fatal error: \n\n";
  // A box holds no more, and whoever wrote the file may have written without end.
  constexpr std::size_t kMost = 8000;
  constexpr std::string_view kCut = "... (more in the message log)\n";
  LineReader lines(path);
  std::string line;
  try {
    while (text.size() < kMost && lines.Next(line)) text += line.substr(0, kMost) + "\n";
  } catch (const FileError& e) {
    text += e.what();
  }
  if (text.size() > kMost) text = text.substr(0, kMost).append("\n").append(kCut);
  return text;
}

/// How a program ended that said nothing itself.
std::string HowItEnded(const ProcessResult& result) {
  if (result.signal != 0) return "was stopped by signal " + std::to_string(result.signal);
  return "ended with code " + std::to_string(result.exit_code);
}

}  // namespace

bool noexecutable(Ormel& ormel, std::string_view name) {
  if (FileExists(JoinPath(ormel.processes().ProgramFolder(), name))) return true;
  Inform(ormel, kProgramTitle, std::string(name) + " does not exist in the ormel directory!", Icon::kStop);
  return false;
}

ProcessResult WaitForTerm1(Ormel& ormel, std::string_view program, std::vector<std::string> arguments,
                           std::string_view wait_text) {
  ProcessRequest request;
  request.program = JoinPath(ormel.processes().ProgramFolder(), program);
  request.arguments = std::move(arguments);
  request.folder = ormel.project.OrmelBasePath;
  const PleaseWait wait(ormel, wait_text);
  return ormel.processes().Run(
      request, [&ormel](const std::string& line) { ShowProgress(ormel, line); },
      [&ormel] { return ormel.ui().CancelRequested(); });
}

ProcessResult RunSolver(Ormel& ormel, int size_number, std::string_view deck, std::string_view wait_text) {
  return WaitForTerm1(ormel, kSolverProgram, {std::to_string(size_number), std::string(deck)}, wait_text);
}

void TellStartFailed(Ormel& ormel, const ProcessResult& result) {
  Inform(ormel, kProgramTitle,
         Lines({result.failure, JoinPath(ormel.processes().Environment("Vadox"), kSolverProgram)}),
         Icon::kStop);
  InvalidateSolution(ormel, true, false);
}

ContourEnd RunContourProgram(Ormel& ormel, std::string_view stem) {
  const ModelValues model = ReadModel(ormel);
  noexecutable(ormel, kContourProgram);
  const ProcessResult result =
      WaitForTerm1(ormel, kContourProgram,
                   {std::string(stem), NumberText(model.CONTOURMinimum), NumberText(model.CONTOURInterval),
                    NumberText(model.CONTOURMaximum)},
                   "Computing contours...");
  if (result.cancelled) return ContourEnd::kCancelled;
  const std::string name = kContourProgram;
  if (!result.started) {
    Inform(ormel, kProgramTitle,
           Lines({name + " could not be started, so that there are no contours:", result.failure}),
           Icon::kStop);
    return ContourEnd::kFailed;
  }
  if (result.signal == 0 && result.exit_code == 0) return ContourEnd::kDone;
  Inform(ormel, kProgramTitle,
         Lines({name + " " + HowItEnded(result) + ", so that there are no contours.",
                "Check the contour levels of the model settings and solve again."}),
         Icon::kStop);
  return ContourEnd::kFailed;
}

bool TellFatalStop(Ormel& ormel, const ProcessResult& result, std::optional<NamedElement>* culprit) {
  constexpr const char* kTitle = "Fatal execution error";
  const std::string path = ModelFile(ormel, kFatalFile);
  if (FileExists(path)) {
    Inform(ormel, kTitle, WithUserLabels(ormel, ReadFatalText(path), culprit), Icon::kStop);
    DeleteTolerantly(path);
    return true;
  }
  if (result.signal == 0 && result.exit_code == 0) return false;
  Inform(ormel, kTitle,
         Lines({"Ormel Encountered a fatal error: ", "",
                std::string(kSolverProgram) + " " + HowItEnded(result) + " without a message.",
                "No results were loaded.  The last lines of the message log may tell where it stopped."}),
         Icon::kStop);
  return true;
}

bool ErrorLogSpeaks(const std::string& path) {
  if (!FileExists(path)) return false;
  LineReader lines(path);
  std::string first;
  std::string second;
  if (!lines.Next(first)) return false;
  return lines.Next(second) || first != "*";
}

}  // namespace ormel
