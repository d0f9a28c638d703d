#include "core/command.h"

#include <array>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "core/ormel.h"
#include "core/project.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/database.h"
#include "store/view.h"
#include "text/names.h"

namespace ormel {
namespace {

void BeginIfOpen(Ormel& ormel) {
  Database* db = ormel.project.db.get();
  if (db != nullptr && db->IsOpen() && !db->read_only() && ormel.command.transaction == nullptr)
    ormel.command.transaction = std::make_unique<Transaction>(*db);
}

/// The words of a failure; a title of its own where the cause is known and the user can help it.
struct Description {
  std::string text;
  const char* title = nullptr;
};

void ShowFailureBox(Ormel& ormel, std::string_view first_line, const Description& description) {
  PleaseWaitHide(ormel);
  if (description.title != nullptr) return Inform(ormel, description.title, description.text, Icon::kStop);
  std::string text(first_line);
  text += "\nOrmel may have become unstable.  For best results, exit Ormel and restart";
  text += "\nIf the problem persists, Contact the ZRB\n";
  text += description.text;
  Inform(ormel, "Unhandled Error -- Contact the ZRB", text);
}

/// Tells what the command that ends has changed.
void TellChanges(Ormel& ormel, std::string_view command, int connections) {
  if (ormel.changes.empty()) return;
  ChangeRecord record;
  record.command = command;
  record.project_replaced = ormel.project.connections != connections;
  Database* db = ormel.project.db.get();
  if (db != nullptr && db->IsOpen()) record.rows = db->TakeChanges();
  if (record.project_replaced) record.rows.clear();
  if (!record.rows.empty() && IsView(*db) && !std::exchange(ormel.project.view_edited, true))
    Inform(ormel, "View Only",
           "The project is open for viewing: what you change is kept only by Make Duplicate Database.",
           Icon::kWarning);
  ormel.changes.Tell(record);
}

void ShowFailure(Ormel& ormel, std::string_view procedure, const Description& description) {
  ShowFailureBox(ormel, "Unhandled error in " + std::string(procedure), description);
}

constexpr const char *kFull = "Disk Full", *kFile = "Project File";

/// Failures that come from outside and say themselves what to do: they are foreseen, whoever meets them.
struct Foreseen {
  StoreErrorCode code;
  const char* title;
};
constexpr std::array kForeseen{
    Foreseen{StoreErrorCode::kDiskFull, kFull}, Foreseen{StoreErrorCode::kWrongType, "Value Refused"},
    Foreseen{StoreErrorCode::kReadOnly, kFile}, Foreseen{StoreErrorCode::kInUse, kFile},
    Foreseen{StoreErrorCode::kDamaged, kFile},  Foreseen{StoreErrorCode::kBadPath, kFile},
    Foreseen{StoreErrorCode::kNotFound, kFile}, Foreseen{StoreErrorCode::kDisk, kFile}};

/// What failed, in the words of the exception in flight.
Description Describe(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const StoreError& e) {
    for (const Foreseen& one : kForeseen)
      if (one.code == e.code()) return {e.what(), one.title};
    return {e.what()};
  } catch (const DiskFullError& e) {
    return {e.what(), kFull};
  } catch (const std::exception& e) {
    return {e.what()};
  } catch (...) {
    return {"unknown failure"};
  }
}

}  // namespace

bool RunCommand(Ormel& ormel, std::string_view name, const std::function<void()>& body) {
  if (ormel.command.depth > 0) {
    const Named named(ormel, name);
    body();
    return true;
  }
  ++ormel.command.depth;
  ormel.command.failed_procedure.clear();
  const int connections = ormel.project.connections;
  std::exception_ptr failure;
  try {
    const Named named(ormel, name);
    BeginIfOpen(ormel);
    body();
    EndTransaction(ormel);
    TellChanges(ormel, name, connections);
  } catch (...) {
    failure = std::current_exception();
  }
  --ormel.command.depth;
  if (!failure) return true;

  Description description = Describe(failure);
  try {
    EndTransaction(ormel);  // what was written stays
    TellChanges(ormel, name, connections);
  } catch (const std::exception& e) {
    // A disk that takes no more says so twice.
    if (description.text != e.what()) description.text += std::string("\n") + e.what();
  }
  const std::string& failed = ormel.command.failed_procedure;
  ShowFailure(ormel, failed.empty() ? name : failed, description);
  return false;
}

void ShowFailure(Ormel& ormel, std::string_view procedure) {
  const Description description = Describe(std::current_exception());
  const std::string failed = std::exchange(ormel.command.failed_procedure, {});
  ShowFailure(ormel, failed.empty() ? procedure : failed, description);
}

void ShowFailureText(Ormel& ormel, std::string_view first_line) {
  const Description description = Describe(std::current_exception());
  ormel.command.failed_procedure.clear();
  ShowFailureBox(ormel, first_line, description);
}

Named::Named(Ormel& ormel, std::string_view name)
    : ormel_(ormel), name_(name), exceptions_(std::uncaught_exceptions()) {}

Named::~Named() {
  if (std::uncaught_exceptions() > exceptions_ && ormel_.command.failed_procedure.empty())
    ormel_.command.failed_procedure = name_;
}

void CommitSoFar(Ormel& ormel) {
  EndTransaction(ormel);
  if (ormel.command.depth > 0) BeginIfOpen(ormel);
}

void EndTransaction(Ormel& ormel) {
  if (ormel.command.transaction == nullptr) return;
  // Taken out first: a commit that fails must not be tried again by the wrapper.
  const std::unique_ptr<Transaction> transaction = std::move(ormel.command.transaction);
  transaction->Commit();
}

}  // namespace ormel
