#include "vadox1/logs.h"

#include <fmt/format.h>

#include <cstdio>

#include "files/output_file.h"

namespace vadox1 {

void Logs::Name(const LogCommand& command) {
  Channel& channel = Of(command.log);
  if (channel.named && channel.file != command.file) WriteChannel(command.log);
  channel.file = command.file;
  channel.named = true;
}

void Logs::Error(std::string_view text) {
  Say(Log::kError, text);
}
void Logs::Message(std::string_view text) {
  Say(Log::kMessage, text);
}
void Logs::Echo(std::string_view text) {
  Say(Log::kEcho, text);
}

void Logs::Say(Log log, std::string_view text) {
  Channel& channel = Of(log);
  if (channel.file == "con") {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
    return;
  }
  if (channel.named && channel.file.empty()) return;
  for (const char c : text) {
    if (c == '\n' && !channel.text.ends_with('\r')) channel.text += '\r';
    channel.text += c;
  }
  if (!text.ends_with('\n')) channel.text += "\r\n";
}

void Logs::Report(const aem::Finding& finding, bool deck_lines) {
  const std::string text = FindingText(finding, deck_lines);
  if (finding.severity != aem::Severity::kNote) Error(text);
  Message(text);
}

void Logs::Write() {
  for (const Log log : {Log::kError, Log::kMessage, Log::kEcho}) WriteChannel(log);
}

void Logs::WriteChannel(Log log) {
  Channel& channel = Of(log);
  if (channel.named && !channel.file.empty() && channel.file != "con") {
    if (log == Log::kError && channel.text.empty()) channel.text = "*\r\n";
    files::WriteWholeFile(channel.file, channel.text);
  }
  channel.text.clear();
}

std::string FindingText(const aem::Finding& finding, bool deck_lines) {
  const bool line = deck_lines && finding.line > 0;
  if (finding.label.empty()) {
    return line ? fmt::format("Line {}: {}", finding.line, finding.text) : finding.text;
  }
  if (!line) return fmt::format("{}: {}", finding.label, finding.text);
  return fmt::format("{} (line {}): {}", finding.label, finding.line, finding.text);
}

}  // namespace vadox1
