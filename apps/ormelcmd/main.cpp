// The commands of Ormel without a window: for scripts, batch runs and tests.
#include <CLI/CLI.hpp>
#include <iostream>

#include "ormelcmd/options.h"

namespace {

constexpr const char* kFooter =
    "Messages go to standard error, results to standard output.\n"
    "Questions of the program are answered by --answer, or all with --yes; a question that finds no answer\n"
    "gets No or Cancel, and the exit code is 1.  Nothing ever waits for an answer from the keyboard.\n"
    "Exit codes: 0 done; 1 refused, or a question without an answer; 2 wrong command line; 3 the solver\n"
    "failed.";

void AddCommonOptions(CLI::App& app, ormel::CommonOptions& common) {
  app.add_flag("-y,--yes", common.yes, "Answer Yes or OK to every question that --answer does not name");
  app.add_flag("-q,--quiet", common.quiet, "Leave out messages that only inform");
  app.add_option("--answer", common.answers,
                 "\"Title=Answer\": answer to the box, input box or file dialog of that title; may be given "
                 "several times")
      ->allow_extra_args(false);
  app.add_option("--set", common.settings,
                 "\"Form.control=value\": value of a control of a dialog; may be given several times")
      ->allow_extra_args(false);
}

int Run(int argc, char** argv) {
  CLI::App app{
      "Ormel, groundwater flow by analytic elements and time-of-travel capture zones: the commands\n"
      "of the desktop program without its window.",
      "ormelcmd"};
  ormel::Program program;
  app.footer(kFooter);
  app.set_version_flag("--version", "ormelcmd " + ormel::VersionText());
  app.require_subcommand(1);
  app.fallthrough();
  AddCommonOptions(app, program.common);
  ormel::AddProjectCommands(app, program);
  ormel::AddCareCommands(app, program);
  ormel::AddElementCommands(app, program);
  ormel::AddListCommands(app, program);
  ormel::AddSolveCommands(app, program);
  ormel::AddRenderCommand(app, program);
  ormel::AddQueryCommands(app, program);
  ormel::AddWhpaCommands(app, program);
  ormel::AddAnalysisCommands(app, program);
  ormel::AddExchangeCommands(app, program);
  ormel::AddBaseMapCommands(app, program);
  ormel::AddFeatureCommands(app, program);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);
    std::cerr << "ormelcmd: " << e.what() << "\nRun ormelcmd --help, or ormelcmd SUBCOMMAND --help.\n";
    return ormel::kExitUsage;
  }
  return program.run ? program.run() : ormel::kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const ormel::UserError& e) {
    std::cerr << "ormelcmd: " << e.what() << '\n';
    return ormel::kExitRefused;
  } catch (const std::exception& e) {
    std::cerr << "ormelcmd: " << e.what() << '\n';
    return ormel::kExitRefused;
  }
}
