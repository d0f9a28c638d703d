// update, check: what keeps a project's file in order
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "core/command.h"
#include "ormelcmd/options.h"
#include "shell/check_project.h"
#include "shell/open_steps.h"
#include "shell/update.h"
#include "store/database.h"
#include "store/salvage.h"
#include "store/schema.h"
#include "store/store_error.h"
#include "store/update.h"
#include "text/files.h"

namespace ormel {
namespace {

std::int64_t VersionOfFile(const std::string& path) {
  return VersionOf(Database::Open(path, OpenMode::kReadOnly));
}

int Update(const CommonOptions& common, const std::string& given) {
  Session session(MakeBatchOptions(common));
  const std::string path = FullPath(session.ormel(), given);
  if (!FileExists(path)) throw UserError(given + " does not exist");
  const std::int64_t version = VersionOfFile(path);
  if (version == schema::kProjectVersion) {
    std::cout << given << ": has version " << version << " already\n";
    return session.Finish();
  }
  if (version > schema::kProjectVersion) {
    TestProjectVersion(session.ormel(), path);
    throw UserError(given + " was not updated");
  }
  if (!DBUpdate(session.ormel(), path, version)) throw UserError(given + " was not updated");
  std::cout << given << ": version " << version << " to " << VersionOfFile(path) << '\n';
  return session.Finish();
}

struct CheckOptions {
  std::string path;
  bool repair = false;
};

/// A file that cannot be opened as it is: salvaged with --repair, else told.
void SalvageIfDamaged(Ormel& ormel, const std::string& path, bool repair) {
  try {
    Database::Open(path, OpenMode::kReadOnly);
  } catch (const StoreError& e) {
    if (e.code() != StoreErrorCode::kDamaged && e.code() != StoreErrorCode::kNotAProject) throw;
    if (!repair) throw UserError(std::string(e.what()) + " --repair keeps it and reads what can be read.");
    const SalvageReport report = SalvageProject(FullPath(ormel, path));
    for (const SalvagedTable& table : report.tables)
      if (table.rows > 0 || table.spoilt > 0)
        std::cout << "read " << table.name << ": " << table.rows << " rows"
                  << (table.spoilt > 0 ? ", lost " + std::to_string(table.spoilt) : "")
                  << (table.pages_lost ? ", others may be missing" : "") << '\n';
    std::cout << "the damaged file is kept as " << report.copy << '\n';
  }
}

int Check(const CommonOptions& common, const CheckOptions& given) {
  Session session(MakeBatchOptions(common));
  if (!FileExists(FullPath(session.ormel(), given.path))) throw UserError(given.path + " does not exist");
  SalvageIfDamaged(session.ormel(), given.path, given.repair);
  if (given.repair) {
    session.OpenForEdit(given.path);
  } else {
    session.OpenForReading(given.path);
  }
  const std::vector<Fault> faults = FaultsOfProject(session.ormel());
  bool mendable = false;
  for (const Fault& fault : faults) {
    mendable = mendable || !fault.mend.empty();
    std::cout << fault.text;
    if (!fault.mend.empty()) std::cout << (given.repair ? ": " : "; --repair: ") << fault.mend;
    std::cout << '\n';
  }
  if (faults.empty()) std::cout << "Nothing is wrong with " << given.path << '\n';
  if (!given.repair || !mendable) return faults.empty() ? session.Finish() : kExitRefused;
  std::string copy;
  RunCommand(session.ormel(), "CheckProject", [&] { copy = MendProject(session.ormel()); });
  if (copy.empty()) throw UserError(given.path + " was not mended");
  std::cout << "mended; as it was before it is kept as " << copy << '\n';
  return FaultsOfProject(session.ormel()).empty() ? session.Finish() : kExitRefused;
}

}  // namespace

void AddCareCommands(CLI::App& app, Program& program) {
  auto updated = std::make_shared<std::string>();
  CLI::App* update =
      app.add_subcommand("update", "Bring a project of an older version to the present one; a copy is kept");
  update->add_option("project", *updated, "The project")->required();
  update->callback([&program, updated] {
    program.run = [&program, updated] { return Update(program.common, *updated); };
  });

  auto checked = std::make_shared<CheckOptions>();
  CLI::App* check = app.add_subcommand("check", "Say what is wrong with a project, and mend it on request");
  check->add_option("project", checked->path, "The project")->required();
  check->add_flag("--repair", checked->repair,
                  "Keep a copy, then mend what can be mended; of a damaged file, read what can be read");
  check->callback(
      [&program, checked] { program.run = [&program, checked] { return Check(program.common, *checked); }; });
}

}  // namespace ormel
