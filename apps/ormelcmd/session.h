// One run of the command line program: its controller, what stands outside, and the way a subcommand ends.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/ormel.h"
#include "core/publisher.h"
#include "platform/file_settings.h"
#include "platform/posix_processes.h"
#include "platform/system_clock.h"
#include "shell/batch_interface.h"

namespace ormel {

enum ExitCode : int { kExitOk = 0, kExitRefused = 1, kExitUsage = 2, kExitSolver = 3 };

/// A mistake of the user that ends the subcommand: printed behind the program's name.
class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class MapViewImpl;

/// Options that every subcommand takes.
struct CommonOptions {
  bool yes = false, quiet = false;
  std::vector<std::string> answers, settings;
};

/// Takes the options apart; throws UserError for one that is malformed.
BatchOptions MakeBatchOptions(const CommonOptions& common);

/// The composition of the program.
class Session {
 public:
  explicit Session(BatchOptions options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Ormel& ormel() { return ormel_; }
  BatchInterface& ui() { return ui_; }
  MapViewImpl& view() { return *view_; }

  /// The full open of the program, with all its tests and questions.  Throws UserError when it ends without
  /// an open project; the reason has been printed.
  void OpenProject(const std::string& path);
  /// Opens for an edit by script: the tests of the file, connection and recordsets, but no map.
  void OpenForEdit(const std::string& path);
  /// Opens to be looked at: the test of the version, and no lock for others.
  void OpenForReading(const std::string& path);
  /// Runs `body` as one command of the program: all of it is kept, or, when it throws UserError, none of it.
  void Edit(const std::function<void()>& body);
  /// 0, or 1 when a question found no answer or a failure was shown; tells of options that nothing asked for.
  int Finish();

 private:
  BatchInterface ui_;
  PosixProcesses processes_;
  FileSettings settings_;
  SystemClock clock_;
  Ormel ormel_;  // before those that listen to its changes
  std::unique_ptr<MapViewImpl> view_;
  std::unique_ptr<ormel::Solver> solver_;
  std::unique_ptr<Publisher> publisher_;
};

}  // namespace ormel
