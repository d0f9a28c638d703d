// solve, deck
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "core/command.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "ormelcmd/options.h"
#include "shell/open_steps.h"
#include "solver/deck_export.h"
#include "solver/extents.h"
#include "solver/solve_stamp.h"
#include "solver/solver_remarks.h"
#include "store/database.h"
#include "text/files.h"

namespace ormel {
namespace {

struct SolveOptions {
  std::string path;
  int iterations = 0, continue_iterations = 0;
  bool reload = false;
};

void Report(Session& session) {
  Database& db = session.ormel().db();
  const auto count = [&db](const char* table) { return std::to_string(db.RowCount(table)); };
  std::string text = "solved " + session.ormel().project.DBName + ": results of " + count("WLResults") +
                     " wells, " + count("LSResults") + " linesinks and " + count("TPResults") +
                     " test points";
  session.ui().Say(text);
  if (const std::string notice = OlderModelNotice(session.ormel()); !notice.empty()) session.ui().Say(notice);
}

int Solve(const CommonOptions& common, const SolveOptions& given) {
  BatchOptions options = MakeBatchOptions(common);
  // The number of iterations that the program recommends is the one to take when nobody says another.
  options.answers.push_back({"Warning", given.iterations > 0 ? std::to_string(given.iterations) : "2", true});
  options.answers.push_back({"Continue Solution", std::to_string(given.continue_iterations), true});
  Session session(options);
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  const bool continues = given.continue_iterations > 0;
  const Value iterations_before = ormel.db().Scalar("select SOLVERIterations from Model");
  if (continues || given.reload) {
    const std::string reason = RestoreSolve(ormel);
    // A change of contour or tracing settings is what --reload is for: then only the saved solution counts.
    if (!reason.empty() && continues) throw UserError("there is no solution to go on from: " + reason);
  } else if (given.iterations > 0) {
    RunCommand(ormel, "solve",
               [&] { ormel.db().Execute("update Model set SOLVERIterations=?", {given.iterations}); });
  }
  ormel.solver().ModelRunVadox({.KeepSolution = given.reload, .ContinueSolve = continues});
  if (session.ui().CancelRequested()) {
    RunCommand(ormel, "solve",
               [&] { ormel.db().Execute("update Model set SOLVERIterations=?", {iterations_before}); });
    throw UserError("the solve was cancelled; the project is as it was");
  }
  if (!ormel.solution.ValidSolution) {
    session.Finish();
    session.ui().Say(given.path + " was not solved");
    return kExitSolver;
  }
  for (const std::string& remark : SolverRemarks(ormel)) session.ui().Say("solver: " + remark);
  if (!common.quiet) Report(session);
  return session.Finish();
}

struct DeckOptions {
  std::string path, deck;
};

int Deck(const CommonOptions& common, const DeckOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  const std::string target = FullPath(ormel, given.deck);
  const bool written = RunCommand(ormel, "ToolsExportVadox", [&] { ToolsExportVadox(ormel, target); });
  if (!written || !FileExists(target)) throw UserError(given.deck + " was not written");
  return session.Finish();
}

}  // namespace

void AddSolveCommands(CLI::App& app, Program& program) {
  auto solve = std::make_shared<SolveOptions>();
  CLI::App* run = app.add_subcommand("solve", "Solve the model and load its results");
  run->add_option("project", solve->path, "The project")->required();
  CLI::Option* iterations = run->add_option("--iterations", solve->iterations,
                                            "Number of iterations; kept in the project's settings")
                                ->check(CLI::Range(1, 32767));
  CLI::Option* more = run->add_option("--continue", solve->continue_iterations,
                                      "Go on from the saved solution by so many iterations")
                          ->check(CLI::Range(1, 32767))
                          ->excludes(iterations);
  run->add_flag("--reload", solve->reload,
                "Use the saved solution; make extraction, grid, contours and pathlines anew")
      ->excludes(iterations)
      ->excludes(more);
  run->footer(
      "Fewer than 2 iterations in the settings are raised to 2 unless --iterations says otherwise.\n"
      "The run is recorded in <base name>.RUN beside the solver's files, so that render, results and\n"
      "--continue know it later.  An interrupt (Ctrl+C) ends the solver and leaves the project as it was.\n"
      "Exit code 3: the solver failed; its own words have been printed.");
  run->callback(
      [&program, solve] { program.run = [&program, solve] { return Solve(program.common, *solve); }; });

  auto deck = std::make_shared<DeckOptions>();
  CLI::App* write = app.add_subcommand("deck", "Write the model as a solver deck");
  write->add_option("project", deck->path, "The project")->required();
  write->add_option("deck", deck->deck, "Path of the deck (.DAT)")->required();
  write->callback(
      [&program, deck] { program.run = [&program, deck] { return Deck(program.common, *deck); }; });
}

}  // namespace ormel
