// solve, deck
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <optional>

#include "core/command.h"
#include "core/solver_port.h"
#include "core/status.h"
#include "model/model_settings.h"
#include "ormelcmd/options.h"
#include "shell/open_steps.h"
#include "solver/deck_export.h"
#include "solver/extents.h"
#include "solver/inspection.h"
#include "solver/solve_stamp.h"
#include "solver/solver_remarks.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"

namespace ormel {
namespace {

struct SolveOptions {
  std::string path;
  std::optional<double> step, max_time, time;
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

/// What the run is to be traced with, through the checks of the settings dialog.
void PutTracing(Session& session, const SolveOptions& given) {
  if (!given.step && !given.max_time) return;
  ModelSettings form(session.ormel());
  form.Load();
  form.MarkShown();
  if (given.step) {
    form.SetChecked("chkDefaultStep", false);
    form.SetText("tbStepSize", NumberText(*given.step));
  }
  if (given.max_time) form.SetText("tbMaxTime", NumberText(*given.max_time));
  session.Edit([&form] {
    form.Click("OK");
    if (form.Result != ModelSettings::kOk) throw UserError("nothing was changed");
  });
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
  PutTracing(session, given);
  if (given.time) ormel.solution.SolutionTime = *given.time;
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
  if (given.time && *given.time != 0.0)
    session.ui().Say("the results are those at " + NumberText(*given.time) +
                     " days; they pass as those of the project only with --stale");
  return session.Finish();
}

// inspect, trace --------------------------------------------------------------------------------------------

struct PointOptions {
  std::string path;
  double x = 0.0, y = 0.0;
  std::optional<double> elevation;
  bool backward = false;
};

/// Opens a solved project and puts the options where the inspector looks.
void OpenSolved(Session& session, const PointOptions& given) {
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  if (const std::string reason = RestoreSolve(ormel); !reason.empty())
    throw UserError("there is no solution to look into: " + reason + "; run: ormelcmd solve \"" + given.path +
                    "\"");
  if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) session.ui().Say(notice);
  InspectorSettings& settings = InspectorSettingsOf(ormel);
  settings.at_top = !given.elevation;
  settings.Elevation = given.elevation.value_or(0.0);
  settings.trace_backwards = given.backward;
}

int Inspect(const CommonOptions& common, const PointOptions& given) {
  Session session(MakeBatchOptions(common));
  OpenSolved(session, given);
  const std::vector<InspectedValue> values = InspectPoint(session.ormel(), given.x, given.y);
  if (values.empty()) return kExitSolver;
  for (const InspectedValue& value : values)
    std::cout << value.name << ": " << NumberText(value.value) << '\n';
  return session.Finish();
}

int Trace(const CommonOptions& common, const PointOptions& given) {
  Session session(MakeBatchOptions(common));
  OpenSolved(session, given);
  Ormel& ormel = session.ormel();
  ModelTraceOneStreamline(ormel, given.x, given.y);
  if (ormel.solution.traced_lines.empty()) return kExitSolver;
  const TracedLine& line = ormel.solution.traced_lines.back();
  std::cout << "x,y,elevation,days\n";
  for (std::size_t i = 0; i < line.points.size(); ++i)
    std::cout << NumberText(line.points[i].x) << ',' << NumberText(line.points[i].y) << ','
              << NumberText(line.elevations[i]) << ',' << NumberText(line.times[i]) << '\n';
  session.ui().Say(ormel.feedback);
  return session.Finish();
}

CLI::App* DefinePoint(CLI::App& app, Program& program, const char* name, const char* text,
                      const std::shared_ptr<PointOptions>& given,
                      int (*run)(const CommonOptions&, const PointOptions&)) {
  CLI::App* command = app.add_subcommand(name, text);
  command->add_option("project", given->path, "The project, solved")->required();
  command->add_option("x", given->x, "Map units")->required();
  command->add_option("y", given->y, "Map units")->required();
  command->add_option("--elevation", given->elevation, "Elevation; otherwise the water table");
  command->callback([&program, given, run] {
    program.run = [&program, given, run] { return run(program.common, *given); };
  });
  return command;
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
  run->add_option("--step", solve->step, "Tracing step [length]; kept in the project's settings");
  run->add_option("--max-time", solve->max_time,
                  "Longest time of travel that is traced [d]; kept in the project's settings");
  run->add_option("--time", solve->time, "Time of the results, where the model has transient wells [d]")
      ->check(CLI::NonNegativeNumber);
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

  DefinePoint(app, program, "inspect", "What the solved model says at a point",
              std::make_shared<PointOptions>(), Inspect);
  const auto start = std::make_shared<PointOptions>();
  DefinePoint(app, program, "trace", "A streamline of the solved model from a point, as CSV", start, Trace)
      ->add_flag("--backward", start->backward, "To where the water comes from");

  auto deck = std::make_shared<DeckOptions>();
  CLI::App* write = app.add_subcommand("deck", "Write the model as a solver deck");
  write->add_option("project", deck->path, "The project")->required();
  write->add_option("deck", deck->deck, "Path of the deck (.DAT)")->required();
  write->callback(
      [&program, deck] { program.run = [&program, deck] { return Deck(program.common, *deck); }; });
}

}  // namespace ormel
