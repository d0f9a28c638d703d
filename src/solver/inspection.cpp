#include "solver/inspection.h"

#include <algorithm>
#include <any>
#include <array>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/model_values.h"
#include "solver/extents.h"
#include "solver/inspection_deck.h"
#include "solver/inspection_forms.h"
#include "solver/outside_programs.h"
#include "solver/path_file.h"
#include "solver/run.h"
#include "solver/text_sink.h"
#include "store/database.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr const char* kFormName = "Inspector";

/// What a query asks and where its answer stands.
struct Query {
  const char* deck;
  const char* results;
  const char* wait_text;
  std::function<void(TextSink&)> write;
};

/// Runs a query.  False when there is no answer; the user has been told why.
bool RunQuery(Ormel& ormel, const Query& query) {
  RunPlan plan;
  plan.deck = plan.argument = query.deck;
  plan.wait_text = query.wait_text;
  plan.scratch = {ModelFile(ormel, query.results)};
  plan.write = [&query](TextSink& deck) {
    query.write(deck);
    return true;
  };
  const RunOutcome outcome = RunBy(ormel, plan);
  if (outcome.end == RunEnd::kNotStarted) TellStartFailed(ormel, outcome.process);
  if (outcome.end == RunEnd::kCancelled) Feedback(ormel, "The query was cancelled");
  return outcome.end == RunEnd::kDone;
}

// --- results at a point ---

void TellBadRecords(Ormel& ormel, std::string_view first_line) {
  Inform(ormel, "Internal error", Lines({first_line, "Cannot view model results"}), Icon::kStop);
}

/// The records of a query, as many as were asked for; none when that failed.
std::vector<PointRecord> Ask(Ormel& ormel, const PointQuery& query) {
  const auto write = [&](TextSink& deck) { WriteInspectDeck(ormel, deck, query); };
  if (!RunQuery(ormel, {kInspectDeck, kInspectResults, "Inspecting...", write})) return {};
  const std::string path = ModelFile(ormel, kInspectResults);
  const auto read = ReadPointRecords(path);
  if (const auto* damage = std::get_if<FileDamage>(&read)) {
    TellBadRecords(ormel, damage->Message());
    return {};
  }
  if (std::holds_alternative<BadRecord>(read)) {
    TellBadRecords(ormel, "Bad DATA record: Record in Vadox inspection file");
    return {};
  }
  const auto& records = std::get<std::vector<PointRecord>>(read);
  const std::size_t expected = query.star > 0.0 ? std::size_t{kStarPoints} : 1;
  if (records.size() == expected) return records;
  TellBadRecords(ormel, path + " holds " + std::to_string(records.size()) + " of " +
                            std::to_string(expected) + " records: was it cut off, is the disk full?");
  return {};
}

struct ReportLine {
  const char* label;
  double PointRecord::*value;
};
constexpr std::array kReport{ReportLine{"X       ", &PointRecord::x},
                             ReportLine{"Y       ", &PointRecord::y},
                             ReportLine{"Z       ", &PointRecord::z},
                             ReportLine{"Porosity", &PointRecord::porosity},
                             ReportLine{"Conductivity", &PointRecord::conductivity},
                             ReportLine{"Bottom Elev", &PointRecord::base},
                             ReportLine{"Net Recharge", &PointRecord::net_recharge},
                             ReportLine{"Head", &PointRecord::head},
                             ReportLine{"Velocity (X)", &PointRecord::velocity_x},
                             ReportLine{"Velocity (Y)", &PointRecord::velocity_y},
                             ReportLine{"Velocity (Z)", &PointRecord::velocity_z}};

void ShowReport(Ormel& ormel, PointRecord record) {
  static const NumberMask mask(" 0.0000E+00");
  record.x = MToW_X(ormel, record.x);
  record.y = MToW_Y(ormel, record.y);
  std::string text;
  for (const ReportLine& line : kReport) text += line.label + mask.Format(record.*line.value) + "\n";
  if (record.head == kNoHead)
    text += "\nNothing is computed at this point: the aquifer is dry there, or the region is ignored.\n";
  text += "\nAll data are in computational units, except\nthe x,y-coordinates, which are in map units.";
  if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) text += "\n\n" + notice;
  Inform(ormel, "Model Results", text);
}

/// With a star the deck needs a number for the height of the water table: the solver's own.
std::optional<double> WaterTable(Ormel& ormel, MapPoint at) {
  const std::vector<PointRecord> records = Ask(ormel, {.at = at});
  if (records.empty()) return std::nullopt;
  return records.front().z;
}

void Inspect(Ormel& ormel, MapPoint at) {
  const InspectorSettings& settings = InspectorSettingsOf(ormel);
  const bool check = ormel.menus.Checked("SolverIntegrityCheck");
  ModelRestoreModelOrigin(ormel);
  PointQuery query{.at = at};
  if (!settings.at_top) query.elevation = settings.Elevation;
  if (check) {
    query.star = settings.StepSize;
    if (settings.at_top) query.elevation = WaterTable(ormel, at);
    if (!query.elevation) return;
  }
  const std::vector<PointRecord> records = Ask(ormel, query);
  if (records.empty()) return;
  ShowReport(ormel, records.front());
  if (!check) return;
  std::array<PointRecord, kStarPoints> star;
  std::copy_n(records.begin(), star.size(), star.begin());
  SolverIntegrity form(ormel, CheckIntegrity(star, ReadModel(ormel)));
  ormel.ui().ShowForm(form);
}

// --- one streamline ---

/// The user's label of an element by that of the solver: "WL_000012" is a well, "LS_000345_0101" a string.
std::string LabelOf(Ormel& ormel, std::string_view solver_label) {
  struct Kind {
    std::string_view prefix;
    const char* sql;
  };
  constexpr std::array kKinds{Kind{"WL_", "select Label from Wells where VID=?"},
                              Kind{"LS_", "select Label from LinesinkStrings where PID=?"}};
  for (const Kind& kind : kKinds) {
    if (!solver_label.starts_with(kind.prefix)) continue;
    const double id = Val(solver_label.substr(kind.prefix.size(), 6));
    std::string label = ormel.db().Scalar(kind.sql, {static_cast<std::int64_t>(id)}).AsText();
    if (!label.empty()) return label;
  }
  return std::string(solver_label);
}

/// "well North" from "END   well WL_000012".
std::string EndOf(Ormel& ormel, std::string_view end_line) {
  const std::string_view reason = Trim(end_line.substr(std::min<std::size_t>(3, end_line.size())));
  const std::size_t blank = reason.rfind(' ');
  if (reason.empty() || blank == std::string_view::npos) return std::string(reason);
  return std::string(reason.substr(0, blank + 1)) + LabelOf(ormel, reason.substr(blank + 1));
}

void TellPath(Ormel& ormel, const Pathline& path) {
  static const NumberMask days("#,###,##0");
  const std::string end = EndOf(ormel, path.end);
  Feedback(ormel, "Streamline of " + days.Format(path.points.back().time) + " days" +
                      (end.empty() ? std::string() : ", ended by: " + end));
}

TracedLine OnTheMap(const Ormel& ormel, const Pathline& path) {
  TracedLine line;
  for (const PathPoint& point : path.points) {
    line.points.push_back(MToW(ormel, point.at));
    line.elevations.push_back(point.elevation);
    line.times.push_back(point.time);
  }
  return line;
}

void Trace(Ormel& ormel, MapPoint at) {
  const InspectorSettings& settings = InspectorSettingsOf(ormel);
  const ModelValues model = ReadModel(ormel);
  ModelRestoreModelOrigin(ormel);
  // A start above the water table begins at it.
  const double elevation = settings.at_top ? model.AquiferTop() : settings.Elevation;
  const auto write = [&](TextSink& deck) {
    WriteTraceDeck(ormel, deck, model, at, elevation, settings.trace_backwards);
  };
  if (!RunQuery(ormel, {kTraceDeck, kTracePaths, "Tracing...", write})) return;
  bool any = false;
  const ReadOutcome damage = ReadPathFile(ModelFile(ormel, kTracePaths), [&](const Pathline& path) {
    if (path.points.size() < 2) return;
    any = true;
    ormel.solution.traced_lines.push_back(OnTheMap(ormel, path));
    TellPath(ormel, path);
  });
  if (any) ormel.view().DrawTracedLines();
  if (damage)
    Inform(ormel, "Internal error", Lines({damage->Message(), "Cannot draw the streamline"}), Icon::kStop);
  else if (!any)
    Inform(ormel, "Instant Trace",
           Lines({"No streamline begins at this point.",
                  "The aquifer is dry there, the region is ignored, or the water stands still."}),
           Icon::kInformation);
}

}  // namespace

InspectorSettings& InspectorSettingsOf(Ormel& ormel) {
  std::any& memory = ormel.form_memory[kFormName];
  if (!memory.has_value()) memory = InspectorSettings{};
  return std::any_cast<InspectorSettings&>(memory);
}

void ShowInspector(Ormel& ormel) {
  Inspector form(ormel);
  ormel.ui().ShowForm(form);
}

void ModelInspectResults(Ormel& ormel, double x, double y) {
  RunCommand(ormel, "ModelInspectResults", [&] {
    const Named named(ormel, "ModelInspectResults");
    Inspect(ormel, {x, y});
  });
}

std::vector<InspectedValue> InspectPoint(Ormel& ormel, double x, double y) {
  std::vector<InspectedValue> values;
  RunCommand(ormel, "ModelInspectResults", [&] {
    const Named named(ormel, "ModelInspectResults");
    const InspectorSettings& settings = InspectorSettingsOf(ormel);
    ModelRestoreModelOrigin(ormel);
    PointQuery query{.at = {x, y}};
    if (!settings.at_top) query.elevation = settings.Elevation;
    std::vector<PointRecord> records = Ask(ormel, query);
    if (records.empty()) return;
    records.front().x = MToW_X(ormel, records.front().x);
    records.front().y = MToW_Y(ormel, records.front().y);
    for (const ReportLine& line : kReport)
      values.push_back({std::string(Trim(line.label)), records.front().*line.value});
  });
  return values;
}

void ModelTraceOneStreamline(Ormel& ormel, double x, double y) {
  RunCommand(ormel, "ModelTraceOneStreamline", [&] {
    const Named named(ormel, "ModelTraceOneStreamline");
    Trace(ormel, {x, y});
  });
}

void ClearTracedLines(Ormel& ormel) {
  ormel.solution.traced_lines.clear();
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

void SolverIntegrityCheck(Ormel& ormel) {
  ormel.menus.Check("SolverIntegrityCheck", !ormel.menus.Checked("SolverIntegrityCheck"));
}

}  // namespace ormel
