// The failure policy: one wrapper around every command.
//
// A command runs inside RunCommand.  It is one transaction of the project: what was written is committed at
// the end, also after a failure, and told to those who listen (core/changes.h).  An exception that reaches
// the wrapper becomes the failure box, which names the procedure that failed, files close by their
// destructors, and the program goes on.  Mistakes of the user that a procedure foresees are boxes of its own
// and never exceptions.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace ormel {

struct Ormel;

/// Runs `body` as the command `name`.  Inside another command it only names the procedure: the outer one
/// reports. True when the body came to its end.
bool RunCommand(Ormel& ormel, std::string_view name, const std::function<void()>& body);

/// Names a procedure for the failure box for as long as it runs.
class Named {
 public:
  Named(Ormel& ormel, std::string_view name);
  ~Named();
  Named(const Named&) = delete;
  Named& operator=(const Named&) = delete;

 private:
  Ormel& ormel_;
  std::string name_;
  int exceptions_;
};

/// In a catch block, for a procedure that ends there instead of its command: the failure box with the words
/// of the exception in flight and the name of the innermost procedure that it has left, else `procedure`.
void ShowFailure(Ormel& ormel, std::string_view procedure);
/// The same box with a first line of its own.
void ShowFailureText(Ormel& ormel, std::string_view first_line);

/// Commits what the present command has written so far and goes on: before an outside program reads the
/// project's files, before a wait that may be long, and after a command has opened a project.
void CommitSoFar(Ormel& ormel);

/// Commits and ends the command's transaction: before a command closes the project.
void EndTransaction(Ormel& ormel);

}  // namespace ormel
