// import wells|testpoints|labels, export shapefile|dxf|bln|grid|wells|testpoints|labels
#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

#include "core/command.h"
#include "core/user_interface.h"
#include "exchange/dxf_export.h"
#include "exchange/export_job.h"
#include "exchange/shape_export.h"
#include "exchange/surfer_export.h"
#include "exchange/table_exchange.h"
#include "ormelcmd/options.h"
#include "shell/open_steps.h"
#include "solver/solve_stamp.h"

namespace ormel {
namespace {

struct ExchangeOptions {
  std::string path, file, what, prj;
  bool heads = false, test_points = false, particles = false;
  TicSpacings spacings;
};

/// The words that name one of the entries of a table.
template <class Table>
std::vector<std::string> WordsOf(const Table& table) {
  std::vector<std::string> words;
  for (const auto& row : table) words.emplace_back(row.word);
  return words;
}

// import ----------------------------------------------------------------------------------------------------

using ImportFile = void (*)(Ormel&, const ExchangeOptions&, const std::string& file);

int Import(const CommonOptions& common, const ExchangeOptions& given, ImportFile import) {
  BatchOptions options = MakeBatchOptions(common);
  options.answers.push_back({"Head Specified Wells", "Yes", true});  // --heads has said so
  Session session(options);
  session.OpenForEdit(given.path);
  const std::string file = FullPath(session.ormel(), given.file);
  session.Edit([&] { import(session.ormel(), given, file); });
  return session.Finish();
}

struct ImportRow {
  const char *name, *text;
  ImportFile run;
};
constexpr ImportRow kImports[] = {
    {"wells", "Wells: x, y, discharge (or head), radius, label",
     [](Ormel& ormel, const ExchangeOptions& given, const std::string& file) {
       ToolsImportWL(ormel, given.heads, file);
     }},
    {"testpoints", "Test points: x, y, observed head, label",
     [](Ormel& ormel, const ExchangeOptions&, const std::string& file) { ToolsImportTP(ormel, file); }},
    {"labels", "Text labels: x, y, type (0 or 1), text",
     [](Ormel& ormel, const ExchangeOptions&, const std::string& file) { ToolsImportTX(ormel, file); }}};

// export ----------------------------------------------------------------------------------------------------

using ExportFile = void (*)(Session&, const ExchangeOptions&, const std::string& file);

VectorMode ModeOf(const std::string& word) {
  const auto* row = std::find_if(kVectorChoices.begin(), kVectorChoices.end(),
                                 [&](const VectorChoice& choice) { return choice.word == word; });
  return static_cast<VectorMode>(row - kVectorChoices.begin());
}

bool IsResult(Source source) {
  return source == Source::kContours || source == Source::kPaths || source == Source::kTimeTics ||
         source == Source::kElevationTics;
}

void NeedSolution(Session& session, const ExchangeOptions& given) {
  if (const std::string reason = RestoreSolve(session.ormel()); !reason.empty())
    throw UserError("there are no valid results: " + reason + "; run: ormelcmd solve \"" + given.path + "\"");
}

void ExportShape(Session& session, const ExchangeOptions& given, const std::string& file) {
  Ormel& ormel = session.ormel();
  const ShapeKind& kind = *FindShapeKind(given.what);
  if (IsResult(kind.source)) NeedSolution(session, given);
  if (kind.source == Source::kTimeTics && !(given.spacings.days > 0.0))
    throw UserError("time-tics need --time-tics DAYS");
  if (kind.source == Source::kElevationTics && !(given.spacings.elevation > 0.0))
    throw UserError("elevation-tics need --elevation-tics LENGTH");
  ShapeOptions options{given.spacings, given.test_points, given.particles, {}};
  if (!given.prj.empty()) {
    std::ifstream in(FullPath(ormel, given.prj), std::ios::binary);
    if (!in) throw UserError(given.prj + " cannot be read");
    options.prj.assign(std::istreambuf_iterator<char>(in), {});
  }
  if (!MayReplace(ormel, file, {})) throw UserError("nothing was written");
  try {
    const ShapeReport report = WriteShapes(ormel, kind, options, file);
    std::string text = std::to_string(report.written) + " shapes were written to " + given.file;
    if (report.left_out > 0)
      text += "; " + std::to_string(report.left_out) + " with too few points were left out";
    session.ui().Say(text);
  } catch (const ExportCancelled&) {
    throw UserError("the export was cancelled; nothing was written");
  }
}

void Written(bool done) {
  if (!done) throw UserError("nothing was written");
}

void ExportDxf(Session& session, const ExchangeOptions& given, const std::string& file) {
  const VectorMode mode = ModeOf(given.what);
  if (mode == VectorMode::kContours || mode == VectorMode::kPathlines) NeedSolution(session, given);
  Written(ToolsExportDXF(session.ormel(), mode, given.spacings, file));
}

void ExportBln(Session& session, const ExchangeOptions& given, const std::string& file) {
  const VectorMode mode = ModeOf(given.what);
  if (mode == VectorMode::kContours || mode == VectorMode::kPathlines) NeedSolution(session, given);
  Written(ToolsExportBLN(session.ormel(), mode, file));
}

void ExportGrid(Session& session, const ExchangeOptions& given, const std::string& file) {
  NeedSolution(session, given);
  Written(ToolsExportGrid(session.ormel(), file));
}

struct ExportRow {
  const char *name, *text;
  ExportFile run;
};
constexpr ExportRow kExports[] = {
    {"shapefile", "A shapefile of elements or results", ExportShape},
    {"dxf", "A drawing of contours, pathlines, zones or elements", ExportDxf},
    {"bln", "Boundary lines of contours, pathlines, zones or elements", ExportBln},
    {"grid", "The grid of heads in map coordinates", ExportGrid},
    {"wells", "Wells as the import reads them",
     [](Session& session, const ExchangeOptions& given, const std::string& file) {
       EXPORTDB(session.ormel(), given.heads ? 1 : 0, file);
     }},
    {"testpoints", "Test points as the import reads them",
     [](Session& session, const ExchangeOptions&, const std::string& file) {
       EXPORTDB(session.ormel(), 2, file);
     }},
    {"labels", "Text labels as the import reads them",
     [](Session& session, const ExchangeOptions&, const std::string& file) {
       EXPORTDB(session.ormel(), 3, file);
     }}};

int Export(const CommonOptions& common, const ExchangeOptions& given, ExportFile write) {
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  const std::string file = FullPath(session.ormel(), given.file);
  std::optional<UserError> refused;
  RunCommand(session.ormel(), "export", [&] {
    try {
      write(session, given, file);
    } catch (const UserError& e) {
      refused = e;
    }
  });
  if (refused) throw UserError(*refused);
  return session.Finish();
}

void AddWhat(CLI::App& command, ExchangeOptions& given, std::vector<std::string> words) {
  command.add_option("--what", given.what, "What to export")
      ->required()
      ->check(CLI::IsMember(std::move(words)));
}

void AddExportOptions(CLI::App& command, ExchangeOptions& given, std::string_view name) {
  if (name == "shapefile") {
    AddWhat(command, given, WordsOf(ShapeKinds()));
    command.add_flag("--with-testpoints", given.test_points, "Test points in the file of the wells too");
    command.add_flag("--with-particles", given.particles, "Particles in the file of the wells too");
    command.add_option("--prj", given.prj,
                       "File with the coordinate reference system as WKT, to be put beside as .prj");
  }
  if (name == "dxf" || name == "bln") AddWhat(command, given, WordsOf(kVectorChoices));
  if (name == "shapefile" || name == "dxf") {
    command.add_option("--time-tics", given.spacings.days, "Spacing of marks of time along paths [d]");
    command.add_option("--elevation-tics", given.spacings.elevation,
                       "Spacing of marks of elevation along paths [length]");
  }
  if (name == "wells") command.add_flag("--heads", given.heads, "Head-specified wells");
}

CLI::App& Group(CLI::App& app, const char* name, const char* text) {
  for (CLI::App* there : app.get_subcommands([name](const CLI::App* one) { return one->get_name() == name; }))
    return *there;
  CLI::App* group = app.add_subcommand(name, text);
  group->require_subcommand(1);
  group->fallthrough();
  return *group;
}

}  // namespace

void AddExchangeCommands(CLI::App& app, Program& program) {
  CLI::App& import = Group(app, "import", "Read elements from files of other programs");
  for (const ImportRow& row : kImports) {
    auto given = std::make_shared<ExchangeOptions>();
    CLI::App* command = import.add_subcommand(row.name, row.text);
    command->add_option("project", given->path, "The project")->required();
    command->add_option("file", given->file, "Table, divided by commas or blanks, UTF-8")->required();
    if (std::string_view(row.name) == "wells")
      command->add_flag("--heads", given->heads, "Head-specified wells: the third column is the head");
    command->callback([&program, given, run = row.run] {
      program.run = [&program, given, run] { return Import(program.common, *given, run); };
    });
  }
  CLI::App& output = Group(app, "export", "Write elements and results for other programs");
  for (const ExportRow& row : kExports) {
    auto given = std::make_shared<ExchangeOptions>();
    CLI::App* command = output.add_subcommand(row.name, row.text);
    command->add_option("project", given->path, "The project")->required();
    command->add_option("file", given->file, "The file to write")->required();
    AddExportOptions(*command, *given, row.name);
    command->callback([&program, given, run = row.run] {
      program.run = [&program, given, run] { return Export(program.common, *given, run); };
    });
  }
}

}  // namespace ormel
