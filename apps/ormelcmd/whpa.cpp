// whpa arbitrary, calculated, multiple, rerun
#include "ormelcmd/whpa.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <optional>

#include "core/map_view.h"
#include "model/digitize.h"
#include "model/model_values.h"
#include "solver/outside_programs.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "whpa/commands.h"
#include "whpa/rows.h"
#include "whpa/run.h"

namespace ormel {

void DialogValues::Set(const char* form, const char* control, const std::string& value) {
  ui_.Use({form, control, value, true});
}

void DialogValues::Set(const char* form, const char* control, double value) {
  Set(form, control, NumberText(value));
}

void DialogValues::SetWells(const char* form, const char* control, const std::vector<std::string>& wells,
                            const std::vector<std::string>& offered) {
  std::string list;
  for (const std::string& well : wells) {
    const auto found = std::find_if(offered.begin(), offered.end(),
                                    [&](const std::string& label) { return EqualNoCase(label, well); });
    if (found == offered.end())
      throw UserError("there is no well \"" + well + "\" that a protection area can be drawn for");
    if (!list.empty()) list += ',';
    // A comma parts the items of a list, so that a label with one goes by its place.
    const bool comma = well.find(',') != std::string::npos;
    list += comma ? std::to_string(found - offered.begin()) : well;
  }
  Set(form, control, list);
}

namespace {

struct WhpaOptions {
  std::string path;
  std::vector<std::string> wells;
  double radius = 0.0, radius_feet = 0.0;
  double time = 0.0, porosity = 0.0, thickness = 0.0, ambient = 0.0, direction = 0.0;
  std::vector<std::string> stream;  ///< the two points of a boundary
  double head = 0.0, conductivity = 0.0;
  bool outline = false;
};

using Fill = void (*)(DialogValues&, const WhpaOptions&, const std::vector<std::string>& offered);

void FillStream(DialogValues& values, const WhpaOptions& given) {
  const bool boundary = !given.stream.empty();
  values.Set("WHPAStream", boundary ? "optYesNo(0)" : "optYesNo(1)", "yes");
  if (!boundary) return;
  values.Set("WHPAStream", "DataHead", given.head);
  values.Set("WHPAStream", "DataConductivity", given.conductivity);
}

void FillArbitrary(DialogValues& values, const WhpaOptions& given, const std::vector<std::string>& offered) {
  values.SetWells("WHPAArbitrary", "listWell", given.wells, offered);
  if (given.radius_feet != 0.0) return values.Set("WHPAArbitrary", "DataRadius2", given.radius_feet);
  values.Set("WHPAArbitrary", "DataRadius", given.radius);
}

void FillCalculated(DialogValues& values, const WhpaOptions& given, const std::vector<std::string>& offered) {
  if (given.wells.size() != 1) throw UserError("--well takes one label here");
  const auto found = std::find_if(offered.begin(), offered.end(), [&](const std::string& label) {
    return EqualNoCase(label, given.wells.front());
  });
  if (found == offered.end())
    throw UserError("there is no well \"" + given.wells.front() +
                    "\" that a protection area can be drawn for");
  values.Set("WHPACalculated", "cmbWell", *found);
  values.Set("WHPACalculated", "DataTime", given.time);
  values.Set("WHPACalculated", "DataPorosity", given.porosity);
  values.Set("WHPACalculated", "DataThickness", given.thickness);
  values.Set("WHPACalculated", "DataAmbient", given.ambient);
  values.Set("WHPACentric", "DrawBack(0)", "yes");
  values.Set("WHPAEccentric", "DataDirectionFlow", given.direction);
  values.Set("WHPAUniform", "DataDirectionFlow", given.direction);
  values.Set("WHPACalculated", "chkOutline", given.outline ? "yes" : "no");
  FillStream(values, given);
}

void FillMultiple(DialogValues& values, const WhpaOptions& given, const std::vector<std::string>& offered) {
  values.SetWells("WHPAMultiple", "listWell", given.wells, offered);
  values.Set("WHPAMultiple", "DataPorosity", given.porosity);
  values.Set("WHPAMultiple", "DataThickness", given.thickness);
  values.Set("WHPAMultiple", "DataAmbientFlow", given.ambient);
  values.Set("WHPAMultiple", "DataDirectionFlow", given.direction);
  values.Set("WHPAMultiple", "chkOutline", given.outline ? "yes" : "no");
  FillStream(values, given);
}

void FillNothing(DialogValues&, const WhpaOptions&, const std::vector<std::string>&) {}

struct Kind {
  WhpaCommand command;
  const char* name;
  const char* rows;  ///< condition of the rows it makes
  Fill fill;
};
constexpr std::array kKinds{
    Kind{WhpaCommand::kArbitrary, "arbitrary", "Type=1", FillArbitrary},
    Kind{WhpaCommand::kCalculated, "calculated", "Type=2", FillCalculated},
    Kind{WhpaCommand::kMultiple, "multiple", "Type=3", FillMultiple},
    Kind{WhpaCommand::kRerun, "rerun", "T>1 or Type=3", FillNothing},
};

/// The clicks of --stream, when the dialogs ended in waiting for them.
void EnterBoundary(Ormel& ormel, const std::vector<MapPoint>& points) {
  for (int number = 1; number <= 2; ++number) {
    const MapPoint& at = points[static_cast<std::size_t>(number - 1)];
    ormel.mouse.LastX = at.x;
    ormel.mouse.LastY = at.y;
    ormel.mouse.LineInProgress = true;
    ElemAddStreamBoundaryVertex(ormel, number);
  }
  EndPlacing(ormel);
}

bool WaitsForBoundary(const Ormel& ormel) {
  return ormel.mouse.MouseMode == MouseMode::kDigitize &&
         ormel.mouse.MouseElement == Element::kStreamBoundary;
}

/// One line a row: well, and its circle or the file of its pathlines.
void PrintRows(Ormel& ormel, const Kind& kind) {
  const std::string traced = NumberText(ReadModel(ormel).TRACEMaxTime);
  for (const WhpaRow& row : ReadWhpaRows(ormel, kind.rows)) {
    std::cout << row.Well << ": ";
    if (row.Type != WhpaType::kArbitrary) std::cout << "T = " << NumberText(row.T) << ", ";
    if (row.Type == WhpaType::kMultiple || row.T > 1)
      std::cout << "pathlines in " << WhpaStem(ormel) << ".PTH, traced for " << traced << " days\n";
    else
      std::cout << "circle of radius " << NumberText(row.Radius) << " map units\n";
  }
}

bool HasPathlineRows(Ormel& ormel) {
  return ormel.db().Scalar("select count(*) from WHPAs where T>1 or Type=3").AsLong() > 0;
}

int RunWhpa(const CommonOptions& common, const WhpaOptions& given, const Kind& kind) {
  std::vector<MapPoint> stream;
  if (!given.stream.empty()) {
    stream = ParsePoints(given.stream, "--stream");
    if (stream.size() != 2) throw UserError("--stream takes two points \"x,y x,y\"");
    if (stream[0] == stream[1]) throw UserError("--stream: the two points must lie apart");
  }
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  std::vector<std::string> offered;
  for (const WhpaWell& well : EligibleWells(ormel)) offered.push_back(well.label);
  DialogValues values(session.ui());
  kind.fill(values, given, offered);
  WHPA(ormel, static_cast<int>(kind.command));
  const bool waits = WaitsForBoundary(ormel);
  if (waits) EnterBoundary(ormel, stream);
  int code = session.Finish();
  if (session.ui().CancelRequested()) throw UserError("the run was cancelled; the area has no pathlines");
  if (!stream.empty() && !waits && code == kExitOk)
    session.ui().Say("a circle was drawn: --stream concerns pathlines only, and was not used");
  const bool traced = kind.command != WhpaCommand::kArbitrary && HasPathlineRows(ormel);
  const bool failed = traced && !FileExists(ModelFile(ormel, WhpaStem(ormel) + ".PTH"));
  if (failed) {
    session.ui().Say("there are no pathlines of the area");
    return code == kExitOk || session.ui().failed() ? kExitSolver : code;
  }
  if (code == kExitOk && !common.quiet) PrintRows(ormel, kind);
  return code;
}

CLI::App* DefineKind(CLI::App& whpa, Program& program, const Kind& kind, const char* text,
                     const std::shared_ptr<WhpaOptions>& given) {
  CLI::App* command = whpa.add_subcommand(kind.name, text);
  command->add_option("project", given->path, "The project")->required();
  command->callback([&program, given, &kind] {
    program.run = [&program, given, &kind] { return RunWhpa(program.common, *given, kind); };
  });
  return command;
}

void AquiferOptions(CLI::App& command, WhpaOptions& given) {
  command.add_option("--porosity", given.porosity, "Aquifer porosity")->required();
  command.add_option("--thickness", given.thickness, "Aquifer thickness [length]")->required();
  command.add_option("--ambient", given.ambient, "Ambient flow per width [length^2/d]")
      ->capture_default_str();
  command.add_option("--direction", given.direction,
                     "Where the ambient flow goes, degrees counter-clockwise from east");
  CLI::Option* stream =
      command.add_option("--stream", given.stream, "Two points \"x,y x,y\" of a straight stream boundary");
  command.add_option("--head", given.head, "Head at the first point of the stream")->needs(stream);
  command.add_option("--conductivity", given.conductivity, "Hydraulic conductivity, for a stream [length/d]")
      ->needs(stream);
  command.add_flag("--outline", given.outline,
                   "Outline the area of the pathlines too, as a capture zone that is checked and stored");
}

void WellOption(CLI::App& command, WhpaOptions& given, const char* text) {
  command.add_option("--well", given.wells, text)->required()->allow_extra_args(false);
}

constexpr const char* kSeveral = "Label of a well; may be given several times";

}  // namespace

void AddWhpaCommands(CLI::App& app, Program& program) {
  CLI::App* whpa = app.add_subcommand("whpa", "Wellhead protection areas and capture zones");
  whpa->require_subcommand(1);
  whpa->fallthrough();
  whpa->footer(
      "Only steady wells with a given discharge can have an area.  Lengths are in computation units, time "
      "in\n"
      "days, positions in map units.  Areas of the same kind are replaced; a question about other areas is\n"
      "answered by --yes or --answer \"Warning=OK\".  Exit code 3: the solver failed.");

  auto circle = std::make_shared<WhpaOptions>();
  CLI::App* command = DefineKind(*whpa, program, kKinds[0], "Circles of a radius that you choose", circle);
  WellOption(*command, *circle, kSeveral);
  CLI::Option* radius = command->add_option("--radius", circle->radius, "Radius [m]");
  CLI::Option* feet = command->add_option("--radius-feet", circle->radius_feet, "Radius [ft]");
  feet->excludes(radius);
  command->require_option(3, 0);  // the project, a well and one radius

  auto one = std::make_shared<WhpaOptions>();
  command =
      DefineKind(*whpa, program, kKinds[1],
                 "One well: circle, shifted circle or pathlines, by its dimensionless time of travel", one);
  WellOption(*command, *one, "Label of the well");
  command->add_option("--time", one->time, "Time of travel [d]")->required();
  AquiferOptions(*command, *one);

  auto many = std::make_shared<WhpaOptions>();
  command = DefineKind(*whpa, program, kKinds[2], "Pathlines of several wells that compete", many);
  WellOption(*command, *many, kSeveral);
  AquiferOptions(*command, *many);

  DefineKind(*whpa, program, kKinds[3], "Trace the pathlines of the stored areas again",
             std::make_shared<WhpaOptions>());
  DefineOutline(*whpa, program);
}

}  // namespace ormel
