// Outside programs on a POSIX system.
#pragma once

#include <chrono>
#include <string>

#include "core/processes.h"

namespace ormel {

/// Starts a program by fork and exec, in its own process group and with the null device as input; its error
/// output stays ours.  A cancelled program gets an interrupt, and after the grace period it is killed with
/// its children.  A program never outlives Ormel.
class PosixProcesses : public Processes {
 public:
  PosixProcesses();
  /// Looks for the two outside programs in `program_folder` instead of the folder of the running program.
  explicit PosixProcesses(std::string program_folder);

  ProcessResult Run(const ProcessRequest& request, const std::function<void(const std::string&)>& line,
                    const std::function<bool()>& cancelled) override;
  std::shared_ptr<void> Lock(const std::string& path) override;
  std::string ProgramFolder() const override { return program_folder_; }
  std::string Environment(const std::string& name) const override;
  std::string CurrentDirectory() const override { return current_directory_; }

  /// Time between the interrupt and the kill.  Short, because a cancel is to be over in 0.2 s: what a killed
  /// program leaves is undone by the run that started it.
  std::chrono::milliseconds grace{120};

 private:
  std::string program_folder_, current_directory_;
};

/// Folder of the running program's file, without final separator.
std::string OwnProgramFolder();

}  // namespace ormel
