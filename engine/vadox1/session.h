// A run between its first command and its last: the solution in hand and the outputs asked of it.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "aem/solution.h"
#include "aem/trace_field.h"
#include "vadox1/deck.h"
#include "vadox1/logs.h"

namespace vadox1 {

/// The run cannot go on.  what() is the text for the user: what is wrong and what to do.
class Fatal : public std::runtime_error {
 public:
  explicit Fatal(const std::string& text, bool in_error_log = false)
      : std::runtime_error(text), in_error_log_(in_error_log) {}
  /// True when the error log has these words already.
  bool in_error_log() const { return in_error_log_; }

 private:
  bool in_error_log_;
};

/// The user ended the run.
class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("The run was interrupted before it was finished. Start it again.") {}
};

class Session {
 public:
  /// `deck_name` is the name of the deck without its extension; the listing is named after it.
  Session(Deck deck, Logs& logs, std::string deck_name);
  /// Runs the commands in their order.  Throws Fatal, Interrupted and files::FileError.
  void Run();

 private:
  void Do(const LogCommand& command);
  void Do(const LayoutCommand& command);
  void Do(const TimeCommand& command);
  void Do(const SolveCommand& command);
  void Do(const SaveCommand& command);
  void Do(const LoadCommand& command);
  void Do(const ExtractCommand& command);
  void Do(const GridCommand& command);
  void Do(const TraceCommand& command);
  void Do(const ZonesCommand& command);

  /// The solution, built from the deck's model when there is none yet.  Throws Fatal when the model is
  /// refused.
  aem::Solution& Solved();
  void Build(aem::Model model);
  void ReportFindings();
  void RefuseIfFatal();
  /// Message log and listing.
  void ReportSolve(const aem::IterationReport& report);
  aem::Window WindowOr(const aem::Window& window, const char* command) const;
  struct Starts;
  Starts CollectStarts(const TraceCommand& command);
  /// Tells how far the whole run is; throws Interrupted when the user asked to end it.
  void Progress(double share_of_command, const std::string& text);

  Deck deck_;
  Logs& logs_;
  std::string deck_name_;
  std::optional<aem::Solution> solution_;
  bool solved_ = false;       ///< iterated, or loaded
  bool from_file_ = false;    ///< line numbers of findings are those of another deck
  std::size_t reported_ = 0;  ///< findings of the solution that the logs have
  aem::Window layout_;
  double time_ = 0.0;
  double work_done_ = 0.0, work_now_ = 0.0, work_all_ = 1.0;  ///< in the weights of the commands
  int last_percent_ = -1;
  std::string last_text_;
};

/// The well or disk that stands at a place of the deck; null when none does.
const aem::TraceWell* WellAt(const std::vector<aem::TraceWell>& wells, aem::Complex at);

/// One line to standard output.
void TellProgress(int percent, const std::string& text);

}  // namespace vadox1
