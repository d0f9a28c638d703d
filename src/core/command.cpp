#include "core/command.h"

#include <exception>
#include <string>

#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/database.h"

namespace ormel {
namespace {

/// The transaction of a command.  Opened lazily by nobody: a command that runs while no project is open, and
/// one that opens or closes the project itself, has none for that stretch.
void CommitIfOpen(Ormel& ormel) {
  Database* db = ormel.project.db.get();
  if (db != nullptr && db->InTransaction()) db->Commit();
}

void BeginIfOpen(Ormel& ormel) {
  Database* db = ormel.project.db.get();
  if (db != nullptr && !db->InTransaction()) db->Begin();
}

void ShowFailure(Ormel& ormel, std::string_view procedure, const char* description) {
  std::string text = "Unhandled error in ";
  text += procedure;
  text += "\nOrmel may have become unstable.  For best results, exit Ormel and restart";
  text += "\nIf the problem persists, Contact the ZRB\n";
  text += description;
  PleaseWaitHide(ormel);
  Inform(ormel, "Unhandled Error -- Contact the ZRB", text);
}

/// What failed, in the words of the exception in flight.
std::string Describe(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& e) {
    return e.what();
  } catch (...) {
    return "unknown failure";
  }
}

}  // namespace

bool RunCommand(Ormel& ormel, std::string_view name, const std::function<void()>& body) {
  const bool outermost = ormel.failure.depth == 0;
  if (!outermost) {
    const Named named(ormel, name);
    body();
    return true;
  }
  ++ormel.failure.depth;
  ormel.failure.procedure.clear();
  std::exception_ptr failure;
  try {
    const Named named(ormel, name);
    BeginIfOpen(ormel);
    body();
    CommitIfOpen(ormel);
  } catch (...) {
    failure = std::current_exception();
  }
  --ormel.failure.depth;
  if (!failure) return true;

  std::string description = Describe(failure);
  try {
    CommitIfOpen(ormel);  // what was written stays
  } catch (const std::exception& e) {
    description += std::string("\n") + e.what();
  }
  ShowFailure(ormel, ormel.failure.procedure.empty() ? name : ormel.failure.procedure, description.c_str());
  return false;
}

Named::Named(Ormel& ormel, std::string_view name)
    : ormel_(ormel), name_(name), exceptions_(std::uncaught_exceptions()) {}

Named::~Named() {
  if (std::uncaught_exceptions() > exceptions_ && ormel_.failure.procedure.empty())
    ormel_.failure.procedure = name_;
}

void CommitSoFar(Ormel& ormel) {
  if (ormel.failure.depth == 0) return;
  CommitIfOpen(ormel);
  BeginIfOpen(ormel);
}

}  // namespace ormel
