// calibration, observe, report
#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <memory>

#include "analysis/calibration_charts.h"
#include "analysis/report.h"
#include "analysis/report_numbers.h"
#include "analysis/report_tables.h"
#include "core/project.h"
#include "core/publisher.h"
#include "core/table.h"
#include "ormelcmd/options.h"
#include "ormelcmd/table.h"
#include "ormelcmd/toolkit.h"
#include "shell/open_steps.h"
#include "solver/solve_stamp.h"
#include "store/database.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "view/map_view_impl.h"

namespace ormel {
namespace {

// calibration -----------------------------------------------------------------------------------------------

struct CalibrationOptions {
  std::string path, chart, graph = "fit";
  bool csv = false, stale = false;
};

TextTable TextOf(const Table& table, bool all_digits) {
  const NumberFormat rounded = *NumberFormat::Parse("s5");
  TextTable text;
  for (const TableColumn& column : table.columns()) text.columns.push_back({column.name, true});
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    std::vector<std::string>& cells = text.rows.emplace_back();
    for (std::size_t i = 0; i < text.columns.size(); ++i) {
      const Value& value = table.At(row, i);
      if (!value.IsNull() && !value.IsNumber()) text.columns[i].number = false;
      const bool measured = table.columns()[i].mask.empty() && std::holds_alternative<double>(value.data());
      if (all_digits) {
        cells.push_back(value.AsText());
      } else {
        cells.push_back(measured ? rounded.Text(value.AsDouble()) : table.Text(row, i));
      }
    }
  }
  return text;
}

void Print(const CalibrationOptions& given, const char* title, const Table& table) {
  if (table.Rows() == 0) return;
  std::cout << (given.csv ? "# " : "") << title << '\n';
  if (given.csv) {
    PrintCsv(std::cout, TextOf(table, true));
  } else {
    PrintAligned(std::cout, TextOf(table, false));
  }
  std::cout << '\n';
}

void TellLeftOut(Session& session, const char* why, const std::vector<std::string>& labels) {
  for (const std::string& label : labels) session.ui().Say("left out, " + std::string(why) + ": " + label);
}

Chart ChartOf(const Ormel& ormel, const std::string& graph, const CalibrationData& data,
              const std::vector<ObservedFlow>& flows) {
  if (graph == "discharges" && WithBoth(flows).empty())
    throw UserError("no discharge was observed that the solution has too; see ormelcmd observe --help");
  if (graph == "discharges") return FlowChart(ormel, flows);
  if (graph == "order") return OrderChart(ormel, data);
  return graph == "residuals" ? ResidualChart(ormel, data) : FitChart(ormel, data);
}

int Calibrate(const CommonOptions& common, const CalibrationOptions& given) {
  Session session(MakeBatchOptions(common));
  Ormel& ormel = session.ormel();
  session.OpenForReading(given.path);
  if (const std::string reason = WhyNotSolved(ormel); !reason.empty()) {
    if (!given.stale)
      throw UserError("there are no valid results: " + reason + "; run: ormelcmd solve \"" + given.path +
                      "\"");
    session.ui().Say("these results are not valid: " + reason);
  }
  const CalibrationData data = ReadCalibration(ormel);
  TellLeftOut(session, "dry in the model", data.dry);
  TellLeftOut(session, "without a result", data.unanswered);
  if (data.points.size() < kLeastPoints) throw UserError("Not enough test points for statistics");
  Print(given, "Statistics", *StatisticsTable(ormel, data));
  Print(given, "Test points", *ResidualsTable(ormel, data));
  Print(given, "Discharges", *FlowsTable(ormel));
  if (!std::cout.flush()) throw UserError("standard output took no more text");
  if (given.chart.empty()) return session.Finish();
  const Toolkit toolkit;
  const std::string failure = ormel.ports.publisher->SaveChart(
      ChartOf(ormel, given.graph, data, ReadObservedFlows(ormel)), FullPath(ormel, given.chart));
  if (!failure.empty()) throw UserError(failure);
  return session.Finish();
}

void AddCalibration(CLI::App& app, Program& program) {
  auto given = std::make_shared<CalibrationOptions>();
  CLI::App* command =
      app.add_subcommand("calibration", "Compare observed heads and discharges with the solution");
  command->add_option("project", given->path, "The project")->required();
  command->add_flag("--csv", given->csv, "Comma-separated values with heading lines, all digits");
  command->add_option("--chart", given->chart, "Draw a chart into a file: .png, .svg or .pdf");
  command->add_option("--graph", given->graph, "Which chart")
      ->check(CLI::IsMember({"fit", "order", "residuals", "discharges"}))
      ->capture_default_str();
  command->add_flag("--stale", given->stale, "Compare although the model has changed since the solve");
  command->footer("Differences are observed less modeled.  The median is the one in the strict sense.");
  command->callback(
      [&program, given] { program.run = [&program, given] { return Calibrate(program.common, *given); }; });
}

// observe ---------------------------------------------------------------------------------------------------

struct ObserveOptions {
  std::string path;
  std::vector<std::string> values;
};

void Observe(Ormel& ormel, const std::string& text) {
  const std::size_t equals = text.rfind('=');
  if (equals == std::string::npos) throw UserError("\"" + text + "\" is not of the form Label=discharge");
  const std::string label(Trim(std::string_view(text).substr(0, equals)));
  const std::string value(Trim(std::string_view(text).substr(equals + 1)));
  if (!value.empty() && !IsNumeric(value)) throw UserError(text + ": \"" + value + "\" is not a number");
  std::vector<ObservedFlow> found;
  for (const ObservedFlow& flow : ReadObservedFlows(ormel))
    if (EqualNoCase(flow.label, label)) found.push_back(flow);
  if (found.empty())
    throw UserError("there is no linesink string and no flux inspection line \"" + label + "\"");
  if (found.size() > 1)
    throw UserError("there are " + std::to_string(found.size()) + " strings and lines \"" + label +
                    "\"; give them different labels first");
  StoreObservedFlow(ormel, found.front().pid, value.empty() ? std::nullopt : std::optional(Val(value)));
}

int ObserveAll(const CommonOptions& common, const ObserveOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenForEdit(given.path);
  session.Edit([&] {
    for (const std::string& value : given.values) Observe(session.ormel(), value);
  });
  return session.Finish();
}

void AddObserve(CLI::App& app, Program& program) {
  auto given = std::make_shared<ObserveOptions>();
  CLI::App* command =
      app.add_subcommand("observe", "Give the observed discharge of linesink strings and flux lines");
  command->add_option("project", given->path, "The project")->required();
  command
      ->add_option("values", given->values,
                   "Label=discharge ... [length^3/d]; Label= takes the observation back")
      ->required();
  command->footer(
      "Positive is water that leaves the aquifer, and across a line what passes from its left to its right.\n"
      "The solution stays valid.");
  command->callback(
      [&program, given] { program.run = [&program, given] { return ObserveAll(program.common, *given); }; });
}

// report ----------------------------------------------------------------------------------------------------

struct ReportOptions {
  std::string path, file, description, save;
  std::vector<std::string> without, with;
  std::string window;
  bool no_results = false;
};

/// "map, zones" and "areas" as three names.
std::vector<std::string> NamesIn(const std::vector<std::string>& lists) {
  std::vector<std::string> all;
  for (const std::string& names : lists)
    for (const std::string& name : ParseString(names, ',')) all.emplace_back(Trim(name));
  return all;
}

int Report(const CommonOptions& common, const ReportOptions& given) {
  if (!given.save.empty()) {
    SaveStandardReport(given.save);
    if (given.path.empty()) return kExitOk;
  }
  if (given.path.empty() || given.file.empty())
    throw UserError("a report needs the project and the name of its file, .pdf or .html");
  ReportRequest request;
  request.without = NamesIn(given.without);
  request.with = NamesIn(given.with);
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  request.path = FullPath(ormel, given.file);
  request.description = given.description.empty() ? "" : FullPath(ormel, given.description);
  request.reason = given.no_results ? "they were not asked for" : RestoreSolve(ormel);
  request.results = request.reason.empty();
  if (!request.results && !given.no_results)
    throw UserError("there are no valid results to report: " + request.reason + "; run: ormelcmd solve \"" +
                    given.path + "\", or report without them by --no-results");
  if (!given.window.empty()) ormel.view().ZoomActions(Zoom::kApplyWindow, ParseWindow(given.window));
  ShowUsualLayers(ormel, request.results);
  const Toolkit toolkit;
  const ReportOutcome outcome = WriteReport(ormel, request);
  if (outcome.end == ReportEnd::kCancelled) throw UserError("the report was cancelled: no file was written");
  if (outcome.end == ReportEnd::kFailed) throw UserError(outcome.failure);
  return session.Finish();
}

void AddReport(CLI::App& app, Program& program) {
  auto given = std::make_shared<ReportOptions>();
  CLI::App* command = app.add_subcommand("report", "Write a report of the model and its results");
  command->add_option("project", given->path, "The project");
  command->add_option("file", given->file, "Path of the report: .pdf or .html");
  command
      ->add_option("--without", given->without,
                   "Sections to leave out, separated by commas; their names stand in the description")
      ->allow_extra_args(false);
  command
      ->add_option("--with", given->with,
                   "Sections that are written only on request: outlines (coordinates of the zones)")
      ->allow_extra_args(false);
  command->add_option("--description", given->description, "File that lays down texts and tables");
  command->add_option("--save-description", given->save,
                      "Write the standard description, to be changed there");
  command->add_option("--window", given->window,
                      "left,bottom,right,top of the map in map units; otherwise the project's window");
  command->add_flag("--no-results", given->no_results,
                    "The model may be unsolved; sections of results say so");
  command->callback(
      [&program, given] { program.run = [&program, given] { return Report(program.common, *given); }; });
}

}  // namespace

void AddAnalysisCommands(CLI::App& app, Program& program) {
  AddCalibration(app, program);
  AddObserve(app, program);
  AddReport(app, program);
}

}  // namespace ormel
