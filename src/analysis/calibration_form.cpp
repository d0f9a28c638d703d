#include "analysis/calibration_form.h"

#include <array>

#include "analysis/calibration_charts.h"
#include "analysis/cells.h"
#include "analysis/report_tables.h"
#include "core/command.h"
#include "core/directory_memory.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/publisher.h"
#include "core/quantities.h"
#include "core/status.h"
#include "core/table.h"
#include "core/table_file.h"
#include "core/user_interface.h"
#include "model/selection.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr const char* kMask = "###0.0";
constexpr std::string_view kSummary = "Statistics", kResiduals = "Residuals", kFlows = "Discharges";
constexpr std::string_view kNumbers = "Differences, Observed Less Modeled", kFit = "Fit", kCharts = "Chart";
constexpr std::string_view kDirectoryKey = "Default Export Chart path";
constexpr std::size_t kObservedColumn = 2;

constexpr ControlSpec Number(std::string_view name, std::string_view caption,
                             std::string_view group = kNumbers) {
  return {.name = name, .kind = kLabel, .caption = caption, .tab = kSummary, .group = group};
}
constexpr ControlSpec Choice(std::string_view name, std::string_view caption) {
  return {.name = name, .kind = kOption, .caption = caption, .tab = kSummary, .group = kCharts};
}
constexpr ControlSpec On(std::string_view tab, std::string_view name, ControlSpec spec) {
  spec.tab = tab;
  spec.name = name;
  return spec;
}

constexpr std::array kControls{
    Number("tbStats(0)", "Maximum Difference"),
    Number("tbStats(1)", "Minimum Difference"),
    Number("tbStats(2)", "Average Difference"),
    Number("tbStats(3)", "Median Difference"),
    Number("tbStats(4)", "Mean Absolute Difference"),
    Number("tbStats(5)", "Root-Mean-Square Difference"),
    Number("tbStats(6)", "Observations"),
    Number("lblMiddle", "Middle Difference", kFit),
    Number("lblDetermination", "Coefficient of Determination", kFit),
    Number("lblRange", "RMS over Range of Observed Heads", kFit),
    Choice("optGraph(0)", "&Modeled against observed"),
    Choice("optGraph(1)", "Differences in &order"),
    Choice("optGraph(2)", "Difference against observed &head"),
    Choice("optGraph(3)", "&Discharges"),
    ControlSpec{.name = "lblLeftOut", .kind = kNote, .tab = kSummary},
    ControlSpec{.name = "chart", .kind = kChart, .caption = "Chart", .tab = kSummary},
    ControlSpec{.name = "residuals", .kind = kTable, .caption = "Test Points", .tab = kResiduals},
    On(kResiduals, "Copy", kCopyButton),
    On(kResiduals, "Export", kExportButton),
    ControlSpec{.name = "flows",
                .kind = kTable,
                .caption = "Linesink Strings and Flux Inspection Lines",
                .tab = kFlows},
    ControlSpec{.name = "lblFlows",
                .kind = kNote,
                .caption = "Type an observed discharge over its cell, or empty the cell to take it back.  "
                           "Positive is water that leaves the aquifer, and across a line what passes from "
                           "its left to its right.",
                .tab = kFlows},
    On(kFlows, "CopyFlows", kCopyButton),
    On(kFlows, "ExportFlows", kExportButton),
    ControlSpec{.name = "EDIT_COPYDATA", .kind = kButton, .caption = "Copy Statistics to Clipboard"},
    ControlSpec{.name = "EDIT_COPYCHART", .kind = kButton, .caption = "&Copy Chart"},
    ControlSpec{.name = "SaveChart", .kind = kButton, .caption = "&Save Chart As..."},
    ControlSpec{.name = "Close", .kind = kButton, .caption = "Close", .role = ButtonRole::kReject}};

constexpr std::array<std::string_view, 4> kGraphs{"optGraph(0)", "optGraph(1)", "optGraph(2)", "optGraph(3)"};

std::string Joined(const std::vector<std::string>& labels) {
  constexpr std::size_t kNamed = 5;
  std::string text;
  for (std::size_t i = 0; i < labels.size() && i < kNamed; ++i) text += (i == 0 ? "" : ", ") + labels[i];
  return labels.size() > kNamed ? text + " and " + std::to_string(labels.size() - kNamed) + " more" : text;
}

}  // namespace

CalibrationStats::CalibrationStats(Ormel& ormel, CalibrationData data)
    : Form(ormel),
      data_(std::move(data)),
      statistics_(StatisticsOf(data_.points)),
      flows_(ReadObservedFlows(ormel)) {
  InitControls();
  PutStatistics();
  TellLeftOut();
  Mutable("residuals").table = ResidualsTable(ormel, data_);
  FillFlows();
  PutCheck(kGraphs.front(), true);
  ShowGraph();
}

std::span<const ControlSpec> CalibrationStats::Controls() const {
  return kControls;
}

void CalibrationStats::PutStatistics() {
  const CalibrationStatistics& s = statistics_;
  const std::array values{s.maximum, s.minimum, s.average, s.median, s.mean_absolute, s.root_mean_square};
  const std::string unit = UnitOf(ormel(), Quantity::kLength);
  for (std::size_t i = 0; i < values.size(); ++i) {
    Put(kControls[i].name, FormatMask(values[i], kMask));
    Unit(kControls[i].name, unit);
  }
  Put("tbStats(6)", std::to_string(s.count));
  // The box above takes a neighbour of the middle for some odd numbers of points.
  Show("lblMiddle", s.middle != s.median);
  Put("lblMiddle", FormatMask(s.middle, kMask));
  Unit("lblMiddle", unit);
  Put("lblDetermination", s.determination ? FormatMask(*s.determination, "0.000") : "none");
  Put("lblRange", s.range_percent ? FormatMask(*s.range_percent, "0.0") : "none");
  if (s.range_percent) Unit("lblRange", UnitOf(ormel(), Quantity::kPercent));
}

void CalibrationStats::TellLeftOut() {
  std::string text;
  if (!data_.dry.empty()) text += "Left out, dry in the model: " + Joined(data_.dry) + ".  ";
  if (!data_.unanswered.empty()) text += "Left out, without a result: " + Joined(data_.unanswered) + ".";
  Put("lblLeftOut", text);
  Show("lblLeftOut", !text.empty());
}

void CalibrationStats::FillFlows() {
  const auto discharge = [this](const char* caption) {
    return WithUnit(ormel(), caption, Quantity::kDischarge);
  };
  auto table = std::make_shared<Table>(
      std::vector<TableColumn>{{.name = "Label", .caption = "Label", .number = false},
                               {.name = "Kind", .caption = "Kind", .number = false},
                               {.name = "Observed", .caption = discharge("Observed")},
                               {.name = "Modeled", .caption = discharge("Modeled"), .mask = "0.000"},
                               {.name = "Difference", .caption = discharge("Difference"), .mask = "0.000"}});
  for (const ObservedFlow& flow : flows_) {
    const bool both = flow.observed && flow.modelled;
    table->AddRow({flow.label, flow.flux_line ? "flux line" : "linesink string", OrEmpty(flow.observed),
                   OrEmpty(flow.modelled),
                   When(both, flow.observed.value_or(0.0) - flow.modelled.value_or(0.0))});
  }
  ControlState& state = Mutable("flows");
  state.table = std::move(table);
  state.editable = true;
  Offer("optGraph(3)", !WithBoth(flows_).empty());
}

CalibrationStats::Graph CalibrationStats::Chosen() const {
  for (std::size_t i = 0; i < kGraphs.size(); ++i)
    if (Checked(kGraphs[i])) return static_cast<Graph>(i);
  return Graph::kFit;
}

void CalibrationStats::ShowGraph() {
  Chart chart;
  switch (Chosen()) {
    case Graph::kFit:
      chart = FitChart(ormel(), data_);
      break;
    case Graph::kOrder:
      chart = OrderChart(ormel(), data_);
      break;
    case Graph::kResidual:
      chart = ResidualChart(ormel(), data_);
      break;
    case Graph::kFlow:
      chart = FlowChart(ormel(), flows_);
      break;
  }
  ControlState& state = Mutable("chart");
  state.text.clear();
  state.chart = std::make_shared<const Chart>(std::move(chart));
}

void CalibrationStats::Changed(std::string_view name) {
  if (name.starts_with("optGraph")) return ShowGraph();
  if (name == "residuals" && State(name).selected.size() == 1) {
    const auto row = static_cast<std::size_t>(State(name).selected.front());
    ShowTestPoint(ormel(), data_.points[State(name).table->Source(row)]);
  }
}

std::string CalibrationStats::PointText(std::string_view /*name*/, const ChartPick& pick) {
  if (Chosen() == Graph::kFlow) {
    const ObservedFlow flow = WithBoth(flows_).at(pick.point);
    const std::string unit = " " + UnitOf(ormel(), Quantity::kDischarge);
    return Lines({flow.flux_line ? "Flux line information" : "Linesink information",
                  "Selected: " + flow.label,
                  "Observed discharge: " + FormatMask(*flow.observed, kMask) + unit,
                  "Modeled discharge: " + FormatMask(*flow.modelled, kMask) + unit,
                  "Difference: " + FormatMask(*flow.observed - *flow.modelled, kMask) + unit});
  }
  const Residual& point = data_.points.at(pick.point);
  return Lines({"Test point information", "Selected test point: " + point.label,
                "Observed head:       " + FormatMask(point.observed, kMask),
                "Modeled head:        " + FormatMask(point.modelled, kMask),
                "Difference:          " + FormatMask(point.difference, kMask)});
}

void CalibrationStats::PointPicked(std::string_view /*name*/, const ChartPick& pick) {
  if (Chosen() != Graph::kFlow) ShowTestPoint(ormel(), data_.points.at(pick.point));
}

void CalibrationStats::CellEdited(std::string_view name, std::size_t row, std::size_t column,
                                  std::string_view text) {
  if (name != "flows" || column != kObservedColumn) return;
  const std::string_view typed = Trim(text);
  if (!typed.empty() && !IsNumeric(typed)) {
    Refuse("flows", "Bad Entry",
           Lines({"An observed discharge must be a number.", "Please enter a new value."}));
    return;
  }
  ObservedFlow& flow = flows_[State(name).table->Source(row)];
  flow.observed = typed.empty() ? std::nullopt : std::optional(Val(typed));
  RunCommand(ormel(), "StoreObservedFlow", [&] { StoreObservedFlow(ormel(), flow.pid, flow.observed); });
  FillFlows();
  if (WithBoth(flows_).empty() && Chosen() == Graph::kFlow) PutCheck(kGraphs.front(), true);
  ShowGraph();
}

std::string CalibrationStats::StatisticsText() const {
  return Lines({"Number of Observations: " + Text("tbStats(6)"), "Maximum Difference: " + Text("tbStats(0)"),
                "Minimum Difference: " + Text("tbStats(1)"), "Average Difference (AD): " + Text("tbStats(2)"),
                "Median Difference (MAD): " + Text("tbStats(3)"),
                "Mean Absolute Difference: " + Text("tbStats(4)"), "RMS Difference: " + Text("tbStats(5)")}) +
         "\n";
}

void CalibrationStats::SaveGraph() {
  if (ormel().ports.publisher == nullptr) return;
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Save Chart As";
  dialog.default_extension = "png";
  dialog.filter = "PNG Picture (*.png)|*.png|SVG Drawing (*.svg)|*.svg|PDF Document (*.pdf)|*.pdf";
  dialog.directory = ReadDefaultDirectory(ormel(), kDirectoryKey);
  dialog.file_name = BaseName(FileTitle(ormel().project.DBName)) + " calibration.png";
  const auto path = ormel().ui().Ask(dialog);
  if (!path || path->empty()) return;
  if (FileExists(*path) &&
      !AskYesNo(ormel(), "File Exists",
                Lines({"File " + *path + " already exists.", "Do you want to overwrite it?"}),
                Icon::kQuestion))
    return;
  const std::string failure = ormel().ports.publisher->SaveChart(*State("chart").chart, *path);
  if (!failure.empty()) return Inform(ormel(), dialog.title, failure, Icon::kWarning);
  WriteDefaultDirectory(ormel(), kDirectoryKey, GetPathFromFile(*path));
  Feedback(ormel(), "The chart is in " + *path);
}

void CalibrationStats::Pressed(std::string_view name) {
  if (name == "Copy") return CopyTable("residuals");
  if (name == "Export") return SaveTable(ormel(), *State("residuals").table, "residuals");
  if (name == "CopyFlows") return CopyTable("flows");
  if (name == "ExportFlows") return SaveTable(ormel(), *State("flows").table, "discharges");
  if (name == "EDIT_COPYDATA") return ormel().ui().CopyText(StatisticsText());
  if (name == "EDIT_COPYCHART") return ormel().ui().CopyChart(*State("chart").chart);
  if (name == "SaveChart") return SaveGraph();
  if (name == "Close") Hide();
}

void ShowTestPoint(Ormel& ormel, const Residual& point) {
  RunCommand(ormel, "ShowTestPoint", [&] {
    const MapRect& window = ormel.window.SolveWindow;
    const bool in_view = point.at.x >= window.x1 && point.at.x <= window.x2 && point.at.y >= window.y2 &&
                         point.at.y <= window.y1;
    if (!in_view) {
      const double across = 0.5 * window.Width(), up = 0.5 * window.Height();
      ormel.view().ZoomActions(Zoom::kApplyWindow,
                               {point.at.x - across, point.at.x + across, point.at.y + up, point.at.y - up});
    }
    SelectVertex(ormel, point.vid);
  });
}

void CALIBRATION_STATS(Ormel& ormel, bool silent) {
  if (silent) return ormel.menus.Enable("CALIBRATION_STATS", ormel.solution.ValidSolution);
  if (!ormel.solution.ValidSolution) return;
  try {
    const Named named(ormel, "CALIBRATION_STATS");
    CalibrationData data = ReadCalibration(ormel);
    if (data.points.size() < kLeastPoints) {
      Inform(ormel, kProgramTitle, "Not enough test points for statistics", Icon::kInformation);
      return;
    }
    CalibrationStats form(ormel, std::move(data));
    ormel.ui().ShowForm(form);
  } catch (...) {
    ShowFailureText(ormel, "Unhandled error calculating statistics");
  }
}

}  // namespace ormel
