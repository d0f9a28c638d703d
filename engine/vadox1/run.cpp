#include "vadox1/run.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include "files/numbers.h"
#include "files/output_file.h"
#include "files/text_lines.h"
#include "vadox1/deck.h"
#include "vadox1/logs.h"
#include "vadox1/session.h"

namespace vadox1 {

std::atomic<bool> interrupted{false};

namespace {

constexpr const char* kFatalFile = "VADOX.OPS";
constexpr std::string_view kDeckExtension = ".DAT";

/// Tells the user why the run stopped: in the file that is looked for, and on standard error.
void WriteFatal(const std::string& text) {
  std::string lines;
  for (const char c : text) {
    if (c == '\n') lines += '\r';
    lines += c;
  }
  if (!lines.ends_with("\n")) lines += "\r\n";
  std::fprintf(stderr, "%s\n", text.c_str());
  try {
    files::WriteWholeFile(kFatalFile, lines);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    // On a full disk even a few words may not fit: a file without words still says that the run failed.
    if (std::FILE* file = std::fopen(kFatalFile, "a")) std::fclose(file);
  }
}

/// The deck's file: the name with .DAT behind it, or the name as it stands when only that exists.
std::string DeckFile(const std::string& name) {
  const std::string with = files::WithExtension(name, kDeckExtension);
  if (::access(with.c_str(), F_OK) != 0 && ::access(name.c_str(), F_OK) == 0) return name;
  return with;
}

std::string StemOf(const std::string& deck_file) {
  const std::size_t extension = kDeckExtension.size();
  if (deck_file.size() > extension &&
      files::SameWord(std::string_view(deck_file).substr(deck_file.size() - extension), kDeckExtension)) {
    return deck_file.substr(0, deck_file.size() - extension);
  }
  return deck_file;
}

std::string FaultText(const std::string& file, const DeckFault& fault) {
  return fmt::format(
      "Line {} of \"{}\" cannot be used:\n{}\n{}.\nCheck the element or the setting that this line stands "
      "for and "
      "solve again.",
      fault.line, file, fault.text, fault.what);
}

void EchoDeck(std::string_view text, Logs& logs) {
  files::LineWalker lines(text);
  while (lines.Next()) logs.Echo(lines.line());
}

std::string ReadDeck(const std::string& file) {
  try {
    return files::ReadWholeFile(file);
  } catch (const files::FileError& error) {
    throw Fatal(std::string(error.what()) +
                "\nThe solver has no model to work on. Check the name of the project and its folder and "
                "solve again.");
  }
}

void RunDeck(const std::string& file, Logs& logs) {
  const std::string text = ReadDeck(file);
  Deck deck = ParseDeck(text);
  if (deck.fault) {
    // The logs are named before anything else, so that they can tell of the fault.
    for (const Command& command : deck.commands) {
      if (const auto* log = std::get_if<LogCommand>(&command.action)) logs.Name(*log);
    }
    for (const aem::Finding& finding : deck.findings) logs.Report(finding, true);
    EchoDeck(text, logs);
    throw Fatal(FaultText(file, *deck.fault));
  }
  EchoDeck(text, logs);
  Session(std::move(deck), logs, StemOf(file)).Run();
}

std::string FileWords(const files::FileError& error) {
  return std::string(error.what()) + "\nCheck that the folder can be written to and that the disk has room.";
}

/// Runs the deck and returns the words for the user when it did not end cleanly; the error log has them too.
std::string RunAndExplain(const std::string& file, Logs& logs, int& status) {
  status = kFatal;
  std::string words;
  try {
    RunDeck(file, logs);
    status = kClean;
    return {};
  } catch (const Interrupted& end) {
    status = kInterrupted;
    words = end.what();
  } catch (const files::FileError& error) {
    words = FileWords(error);
  } catch (const Fatal& error) {
    if (error.in_error_log()) return error.what();
    words = error.what();
  } catch (const std::bad_alloc&) {
    words =
        "The model needs more memory than this machine has. Close other programs, or use fewer elements or a "
        "coarser grid.";
  } catch (const std::exception& error) {
    words = fmt::format("The solver met an error of its own: {}. Keep the deck and report it.", error.what());
  }
  logs.Error(words);
  return words;
}

}  // namespace

namespace {
std::array<char, 4096> error_log_file{};  ///< for the handler of a signal, which may not ask an object
}

void RememberErrorLog(const std::string& file) noexcept {
  error_log_file[0] = '\0';
  if (file.empty() || file.size() >= error_log_file.size() || file == "con") return;
  std::memcpy(&error_log_file[1], file.c_str() + 1, file.size());  // with the zero at its end
  error_log_file[0] = file[0];
}

void EndAtOnce() noexcept {
  constexpr std::string_view kWords = "The run was interrupted before it was finished. Start it again.\r\n";
  files::RemoveOpenFile();
  for (const char* name : {kFatalFile, static_cast<const char*>(error_log_file.data())}) {
    if (*name == '\0') continue;
    const int file = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file >= 0 && ::write(file, kWords.data(), kWords.size()) >= 0) ::close(file);
  }
  ::_exit(kInterrupted);
}

int RunSolver(const std::vector<std::string>& arguments) {
  ::unlink(kFatalFile);
  if (arguments.size() < 2) {
    WriteFatal("The solver was started without a deck.\nUsage: VADOX1.EXE <size> <name of the deck>");
    return kFatal;
  }
  // A name with blanks that the caller did not quote arrives in pieces.
  std::string name = arguments[1];
  for (std::size_t i = 2; i < arguments.size(); ++i) name += " " + arguments[i];
  const std::string file = DeckFile(name);
  TellProgress(0, "Reading " + file);
  Logs logs;
  int status = kClean;
  std::string failure = RunAndExplain(file, logs, status);
  try {
    logs.Write();
  } catch (const files::FileError& error) {
    if (failure.empty()) failure = FileWords(error);
    status = kFatal;
  }
  if (status != kClean) {
    WriteFatal(failure);
    return status;
  }
  TellProgress(100, "Done");
  return kClean;
}

}  // namespace vadox1
