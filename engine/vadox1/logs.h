// What the run has to say, gathered and written when the run ends, so that a log is whole or not there.
#pragma once

#include <string>
#include <string_view>

#include "aem/solution.h"
#include "vadox1/deck.h"

namespace vadox1 {

/// The three logs of a run.  A log without a file is dropped; "con" is standard output.
class Logs {
 public:
  /// From here on `log` goes to `file`; what went to another file before stays for that one.
  void Name(const LogCommand& command);

  void Error(std::string_view text);
  void Message(std::string_view text);
  void Echo(std::string_view text);
  /// A finding of the parser or the engine: warnings and fatal ones to the error log, all to the message log.
  /// `deck_lines` says whether its line number is one of the present deck.
  void Report(const aem::Finding& finding, bool deck_lines);

  /// Writes the log files.  An error log with nothing to say holds "*" alone.  Throws files::FileError.
  void Write();

 private:
  struct Channel {
    bool named = false;
    std::string file;
    std::string text;
  };
  Channel& Of(Log log) { return channels_[static_cast<int>(log)]; }
  void Say(Log log, std::string_view text);
  void WriteChannel(Log log);

  Channel channels_[3];
};

/// One line for a finding: "WL_000012 (line 31): ...".
std::string FindingText(const aem::Finding& finding, bool deck_lines);

}  // namespace vadox1
