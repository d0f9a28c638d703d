// sql, results
#include <CLI/CLI.hpp>
#include <array>
#include <fstream>
#include <iostream>
#include <memory>

#include "core/project.h"
#include "ormelcmd/options.h"
#include "ormelcmd/table.h"
#include "solver/solve_stamp.h"
#include "store/database.h"
#include "store/store_error.h"

namespace ormel {
namespace {

// sql -------------------------------------------------------------------------------------------------------

struct SqlOptions {
  std::string path, query;
  bool csv = false;
};

int Sql(const CommonOptions& common, const SqlOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenForReading(given.path);
  const TextTable table = ReadTable(session.ormel().db(), given.query);
  if (given.csv) {
    PrintCsv(std::cout, table);
  } else {
    PrintAligned(std::cout, table);
  }
  if (!std::cout.flush()) throw UserError("standard output took no more text");
  return session.Finish();
}

// results ---------------------------------------------------------------------------------------------------

struct ResultTable {
  std::string_view name, title, sql;
};

constexpr std::array kResultTables{
    ResultTable{"wells", "Wells",
                "select Label,X,Y,Radius,SpecifiedHead,Discharge,Head from WLResults order by VadoxLabel"},
    ResultTable{"linesinks", "Linesinks",
                "select Label,X1,Y1,X2,Y2,SpecifiedHead,CalculatedHead,Discharge,Width,Resistance,Depth,Error"
                " from LSResults order by VadoxLabel"},
    ResultTable{"testpoints", "Test points",
                "select Label,X,Y,ObsHead,ModelHead,Difference from TPResults order by VID"},
    ResultTable{"flux", "Flux inspection lines", "select Label,TotalFlux from FIResults order by PID"},
    ResultTable{"inhomogeneities", "Inhomogeneities",
                "select Label,X1,Y1,Conductivity,BottomElev,Porosity,ExtractRate,DomainArea,AvgPotJump"
                " from INResults order by VadoxLabel"},
    ResultTable{"barriers", "Barriers",
                "select Label,X1,Y1,XC,YC,StrPotJumpNode,ParabStrPotJump,DeltaFlowNode,DeltaFlowCntr"
                " from NFResults order by VadoxLabel"},
};

/// A head where there is no water is no number.
void NameDryHeads(TextTable& table) {
  constexpr std::string_view kDry = "-9999";
  const auto find = [&table](std::string_view name) {
    for (std::size_t i = 0; i < table.columns.size(); ++i)
      if (table.columns[i].name == name) return i;
    return table.columns.size();
  };
  const std::size_t difference = find("Difference");
  for (const std::size_t head : {find("Head"), find("CalculatedHead"), find("ModelHead")}) {
    if (head == table.columns.size()) continue;
    for (std::vector<std::string>& row : table.rows) {
      if (row[head] != kDry) continue;
      row[head] = "dry";
      if (difference < row.size()) row[difference].clear();
    }
  }
}

struct ResultsOptions {
  std::string path, table = "all";
  bool csv = false, stale = false;
  int digits = 8;
};

int Results(const CommonOptions& common, const ResultsOptions& given) {
  Session session(MakeBatchOptions(common));
  Ormel& ormel = session.ormel();
  session.OpenForReading(given.path);
  bool older = false;
  if (const std::string reason = WhyNotSolved(ormel, &older); !reason.empty()) {
    if (!given.stale)
      throw UserError("there are no valid results: " + reason + "; run: ormelcmd solve \"" + given.path +
                      "\"");
    session.ui().Say("these results are not valid: " + reason);
  } else if (older) {
    session.ui().Say("these results are of an older model: it has been changed since it was solved");
  }
  for (const ResultTable& entry : kResultTables) {
    if (given.table != "all" && given.table != entry.name) continue;
    TextTable table = ReadTable(ormel.db(), entry.sql, given.csv ? 0 : given.digits);
    NameDryHeads(table);
    if (given.table == "all") {
      if (table.rows.empty()) continue;
      std::cout << (given.csv ? "# " : "") << entry.title << '\n';
    }
    if (given.csv) {
      PrintCsv(std::cout, table);
    } else {
      PrintAligned(std::cout, table);
    }
    if (given.table == "all") std::cout << '\n';
  }
  if (!std::cout.flush()) throw UserError("standard output took no more text");
  return session.Finish();
}

}  // namespace

void AddQueryCommands(CLI::App& app, Program& program) {
  auto sql = std::make_shared<SqlOptions>();
  CLI::App* query = app.add_subcommand("sql", "Show the rows of a query; the project is not changed");
  query->add_option("project", sql->path, "The project")->required();
  query->add_option("query", sql->query, "A select statement, in the store's own dialect")->required();
  query->add_flag("--csv", sql->csv, "Comma-separated values with a heading line, numbers as stored");
  query->callback([&program, sql] { program.run = [&program, sql] { return Sql(program.common, *sql); }; });

  auto results = std::make_shared<ResultsOptions>();
  CLI::App* show = app.add_subcommand("results", "Show the results of the last solve");
  show->add_option("project", results->path, "The project")->required();
  show->add_option("--table", results->table, "Which results")
      ->check(
          CLI::IsMember({"all", "wells", "linesinks", "testpoints", "flux", "inhomogeneities", "barriers"}))
      ->capture_default_str();
  show->add_flag("--csv", results->csv, "Comma-separated values with a heading line, all digits");
  show->add_option("--digits", results->digits, "Significant digits of the aligned table")
      ->check(CLI::Range(1, 15))
      ->capture_default_str();
  show->add_flag("--stale", results->stale, "Show them although the model has changed since");
  show->footer(
      "A solve counts as long as the model is the one that was solved and the files of the run are those "
      "that\n"
      "it wrote: the file <base name>.RUN beside them records both.  Windows, colours and margins may "
      "change.");
  show->callback([&program, results] {
    program.run = [&program, results] { return Results(program.common, *results); };
  });
}

}  // namespace ormel
