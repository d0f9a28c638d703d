// whpa outline, list
#include <algorithm>
#include <iostream>
#include <memory>

#include "core/command.h"
#include "core/status.h"
#include "core/table.h"
#include "ormelcmd/table.h"
#include "ormelcmd/whpa.h"
#include "solver/solve_stamp.h"
#include "store/database.h"
#include "store/view.h"
#include "text/strings.h"
#include "tools/zone_table.h"
#include "whpa/outline_command.h"

namespace ormel {
namespace {

/// Those of `all` that are named, or all of them when none is.  Throws UserError for a name without a well.
template <class Well>
std::vector<Well> Chosen(const std::vector<Well>& all, const std::vector<std::string>& names,
                         const char* kind) {
  if (names.empty()) return all;
  std::vector<Well> chosen;
  for (const std::string& name : names) {
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&name](const Well& well) { return EqualNoCase(well.label, name); });
    if (found == all.end()) throw UserError("there is no " + std::string(kind) + " \"" + name + "\"");
    chosen.push_back(*found);
  }
  return chosen;
}

struct OutlineOptions {
  std::string path;
  std::vector<std::string> wells;
  std::vector<double> years{2.0, 5.0, 10.0};
  double tolerance = 0.002;
};

int Outline(const CommonOptions& common, const OutlineOptions& given) {
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  if (const std::string reason = RestoreSolve(ormel); !reason.empty())
    throw UserError("capture zones need a solved model: " + reason + "; run: ormelcmd solve \"" + given.path +
                    "\"");
  if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) session.ui().Say(notice);
  OutlineRequest request;
  request.wells = Chosen(CaptureWells(ormel), given.wells, "pumping well");
  request.years = given.years;
  request.tolerance = given.tolerance;
  if (request.wells.empty()) throw UserError("the model has no pumping well");
  int stored = 0;
  RunCommand(ormel, "OutlineCaptureZones", [&] { stored = OutlineCaptureZones(ormel, request); });
  if (session.ui().CancelRequested())
    throw UserError("cancelled; " + std::to_string(stored) + " capture zones are stored");
  if (stored < static_cast<int>(request.wells.size() * request.years.size())) {
    session.ui().Say("only " + std::to_string(stored) + " capture zones were outlined");
    return kExitSolver;
  }
  if (!common.quiet) session.ui().Say(std::to_string(stored) + " capture zones outlined");
  return session.Finish();
}

/// As the window shows it, headings in one line.
TextTable TextOf(const Table& table) {
  TextTable text;
  for (const TableColumn& column : table.columns()) {
    std::string caption = column.caption;
    std::replace(caption.begin(), caption.end(), '\n', ' ');
    text.columns.push_back({caption, column.number});
  }
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    std::vector<std::string> cells;
    for (std::size_t column = 0; column < table.columns().size(); ++column)
      cells.push_back(table.Text(row, column));
    text.rows.push_back(std::move(cells));
  }
  return text;
}

int List(const std::string& path) {
  Database db = Database::Open(path, kViewMode);
  const std::shared_ptr<Table> zones =
      ReadZoneTable(db, db.Scalar("select BasemapMeters from Model").AsBool());
  PrintAligned(std::cout, TextOf(*zones));
  const TextTable areas = ReadTable(db, "select Well,Type,Radius,TimeOfTravel,T from WHPAs order by Well", 8);
  if (!areas.rows.empty()) {
    std::cout << '\n';
    PrintAligned(std::cout, areas);
  }
  return kExitOk;
}

}  // namespace

void DefineOutline(CLI::App& whpa, Program& program) {
  auto outline = std::make_shared<OutlineOptions>();
  CLI::App* trace = whpa.add_subcommand("outline", "Outline the capture zones of a solved model");
  trace->add_option("project", outline->path, "The project")->required();
  trace->add_option("--well", outline->wells, "Label of a well, several times; otherwise every pumping well")
      ->allow_extra_args(false);
  trace->add_option("--years", outline->years, "Times of travel")
      ->check(CLI::Range(0.001, 100000.0))
      ->capture_default_str();
  trace->add_option("--tolerance", outline->tolerance, "Largest error of the line, in parts of a zone's size")
      ->check(CLI::Range(1e-5, 0.1))
      ->capture_default_str();
  trace->footer("Each zone becomes a polygon \"<well> <n> years\"; one of that label is replaced.");
  trace->callback([&program, outline] {
    program.run = [&program, outline] { return Outline(program.common, *outline); };
  });

  auto path = std::make_shared<std::string>();
  CLI::App* list = whpa.add_subcommand("list", "List capture zones and protection areas");
  list->add_option("project", *path, "The project")->required();
  list->callback([&program, path] { program.run = [path] { return List(*path); }; });
}

}  // namespace ormel
