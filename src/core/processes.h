// Outside programs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ormel {

struct ProcessRequest {
  std::string program;                 ///< full path
  std::vector<std::string> arguments;  ///< passed as they are, never through a shell
  std::string folder;                  ///< working folder of the program
};

struct ProcessResult {
  bool started = false;
  bool cancelled = false;
  int exit_code = 0;    ///< meaningless after a signal
  int signal = 0;       ///< not 0 when the program was killed by one
  std::string failure;  ///< why it did not start, in the system's words
};

class Processes {
 public:
  virtual ~Processes() = default;

  /// Starts the program and waits.  `line` gets each line of its standard output; `cancelled` is asked
  /// several times a second, and once it says true the program is ended cleanly (and, if it does not listen,
  /// for good).
  virtual ProcessResult Run(const ProcessRequest& request,
                            const std::function<void(const std::string&)>& line,
                            const std::function<bool()>& cancelled) = 0;
  /// Holds the lock of a file, which is made for it, as long as the result lives; null while another program
  /// holds it.  The lock goes with its holder's end, whatever that is.  A folder that takes no file has no
  /// lock.
  virtual std::shared_ptr<void> Lock(const std::string& /*path*/) { return std::make_shared<int>(0); }
  /// The folder that Ormel's own program and the two outside programs stand in, without final separator.
  virtual std::string ProgramFolder() const = 0;
  /// Value of an environment variable, empty when there is none.
  virtual std::string Environment(const std::string& name) const = 0;
  /// The present working directory: a variable of the program, never changed for the process.
  virtual std::string CurrentDirectory() const = 0;
};

}  // namespace ormel
