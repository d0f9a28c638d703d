// update: what keeps a project's file in order
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "ormelcmd/options.h"
#include "shell/open_steps.h"
#include "shell/update.h"
#include "store/database.h"
#include "store/schema.h"
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

}  // namespace

void AddCareCommands(CLI::App& app, Program& program) {
  auto updated = std::make_shared<std::string>();
  CLI::App* update =
      app.add_subcommand("update", "Bring a project of an older version to the present one; a copy is kept");
  update->add_option("project", *updated, "The project")->required();
  update->callback([&program, updated] {
    program.run = [&program, updated] { return Update(program.common, *updated); };
  });
}

}  // namespace ormel
