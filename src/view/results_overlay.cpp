#include "view/results_overlay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"
#include "view/styles.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

constexpr double kWidest = 12.0, kThinnest = 2.0;

/// The choices of the dialog, in their order.
struct OverlayChoice {
  const char* mode;
  const char* control;
  const char* minimum;  ///< null for a mode that does not scale
  const char* maximum;
};
constexpr std::array kChoices{
    OverlayChoice{"Head Error", "LSSetting(0)", "select min([Error]) from LSResults;",
                  "select max([Error]) from LSResults;"},
    OverlayChoice{"Strength", "LSSetting(1)", "select min([Discharge]) from LSResults;",
                  "select max([Discharge]) from LSResults;"},
    OverlayChoice{"Recharging", "LSSetting(2)", nullptr, nullptr},
    OverlayChoice{"Percolating", "LSSetting(3)", nullptr, nullptr},
    OverlayChoice{"Baseflow", "LSSetting(4)", "select min([BaseFlow]) from LSResults;",
                  "select max([BaseFlow]) from LSResults;"},
    OverlayChoice{"Streamflow", "LSSetting(5)", "select min([BaseFlow]-[OverlandFlow]) from LSResults;",
                  "select max([BaseFlow]-[OverlandFlow]) from LSResults;"},
};

constexpr std::array kControls{
    ControlSpec{.name = "chkLSShow",
                .kind = ControlKind::kCheck,
                .caption = "Display Graphical Results Information",
                .group = "Head-Specified Linesinks"},
    ControlSpec{.name = "LSSetting(0)",
                .kind = ControlKind::kOption,
                .caption = "Percent Error",
                .group = "What to Display"},
    ControlSpec{.name = "LSSetting(1)",
                .kind = ControlKind::kOption,
                .caption = "Strength",
                .group = "What to Display"},
    ControlSpec{.name = "LSSetting(2)",
                .kind = ControlKind::kOption,
                .caption = "Highlight Recharging",
                .group = "What to Display"},
    ControlSpec{.name = "LSSetting(3)",
                .kind = ControlKind::kOption,
                .caption = "Highlight Percolating",
                .group = "What to Display"},
    ControlSpec{.name = "LSSetting(4)",
                .kind = ControlKind::kOption,
                .caption = "Baseflow",
                .group = "What to Display"},
    ControlSpec{.name = "LSSetting(5)",
                .kind = ControlKind::kOption,
                .caption = "Streamflow",
                .group = "What to Display"},
    ControlSpec{.name = "tbLSMin",
                .kind = ControlKind::kNumber,
                .caption = "Minimum from Model:",
                .group = "Scaling"},
    ControlSpec{.name = "tbLSMax",
                .kind = ControlKind::kNumber,
                .caption = "Maximum from Model:",
                .group = "Scaling"},
    ControlSpec{.name = "tbLSScaleMax",
                .kind = ControlKind::kNumber,
                .caption = "Maximum for Scaling:",
                .group = "Scaling"},
    ControlSpec{.name = "OK", .kind = ControlKind::kButton, .caption = "OK", .role = ButtonRole::kAccept},
    ControlSpec{
        .name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject},
};

OverlayLine Scaled(const OverlaySettings& settings, double value, StyleId style) {
  const double width = std::abs(value) * kWidest / settings.LSScaleMax + 0.05;
  return {StyleOf(style).color, std::clamp(width, kThinnest, 2.0 * kWidest)};
}

OverlayLine Thin(StyleId style) {
  return {StyleOf(style).color, kThinnest};
}

// One function a mode.
std::optional<OverlayLine> HeadError(const OverlaySettings& s, const LinesinkResult& row) {
  return Scaled(s, row.error, StyleId::kOverlayError);
}
std::optional<OverlayLine> Strength(const OverlaySettings& s, const LinesinkResult& row) {
  return Scaled(s, row.discharge, row.discharge >= 0.0 ? StyleId::kOverlayGains : StyleId::kOverlayLoses);
}
std::optional<OverlayLine> Baseflow(const OverlaySettings& s, const LinesinkResult& row) {
  if (row.discharge == 0.0) return Thin(StyleId::kOverlayNone);
  const StyleId style = row.baseflow == 0.0  ? StyleId::kOverlayDry
                        : row.baseflow < 0.0 ? StyleId::kOverlayLoses
                                             : StyleId::kOverlayGains;
  return Scaled(s, row.baseflow, style);
}
std::optional<OverlayLine> Streamflow(const OverlaySettings& s, const LinesinkResult& row) {
  if (row.discharge == 0.0) return Thin(StyleId::kOverlayNone);
  const double flow = row.baseflow + row.overlandflow;
  if (flow <= 0.0) return Thin(StyleId::kOverlayDry);
  return Scaled(s, flow, StyleId::kOverlayGains);
}
std::optional<OverlayLine> Percolating(const OverlaySettings&, const LinesinkResult& row) {
  const bool beneath_bed = row.resistance > 0.0 && row.calculated_head < row.specified_head - row.depth;
  return beneath_bed ? std::optional(Thin(StyleId::kOverlayMarked)) : std::nullopt;
}
std::optional<OverlayLine> Recharging(const OverlaySettings&, const LinesinkResult& row) {
  return row.discharge < 0.0 ? std::optional(Thin(StyleId::kOverlayMarked)) : std::nullopt;
}

/// Styles that the legend explains; kCount stands for none.
using Explained = std::array<StyleId, 4>;
constexpr StyleId kNo = StyleId::kCount;

struct Mode {
  std::string_view name;
  std::optional<OverlayLine> (*line)(const OverlaySettings&, const LinesinkResult&);
  Explained styles;
};
constexpr std::array kModes{
    Mode{"Head Error", HeadError, {StyleId::kOverlayError, kNo, kNo, kNo}},
    Mode{"Strength", Strength, {StyleId::kOverlayGains, StyleId::kOverlayLoses, kNo, kNo}},
    Mode{"Baseflow",
         Baseflow,
         {StyleId::kOverlayGains, StyleId::kOverlayLoses, StyleId::kOverlayNone, StyleId::kOverlayDry}},
    Mode{
        "Streamflow", Streamflow, {StyleId::kOverlayGains, StyleId::kOverlayNone, StyleId::kOverlayDry, kNo}},
    Mode{"Recharging", Recharging, {StyleId::kOverlayMarked, kNo, kNo, kNo}},
    Mode{"Percolating", Percolating, {StyleId::kOverlayMarked, kNo, kNo, kNo}}};

double FieldOf(const RowReader& rows, int column) {
  return column < 0 ? 0.0 : rows.Double(column);
}

}  // namespace

std::optional<OverlayLine> OverlayLineOf(const OverlaySettings& settings, const LinesinkResult& row) {
  for (const Mode& mode : kModes)
    if (mode.name == settings.LSMode) return mode.line(settings, row);
  return std::nullopt;
}

std::vector<StyleId> OverlayStyles(const OverlaySettings& settings) {
  std::vector<StyleId> styles;
  for (const Mode& mode : kModes)
    if (mode.name == settings.LSMode)
      std::copy_if(mode.styles.begin(), mode.styles.end(), std::back_inserter(styles),
                   [](StyleId style) { return style != kNo; });
  return styles;
}

void ModelDrawResultsOverlay(const MapCanvas& canvas, const OverlaySettings& settings) {
  const Named named(canvas.ormel, "ModelDrawResultsOverlay");
  if (settings.LSScaleMax == 0.0 || settings.LSMode == "off") return;
  RowReader rows(canvas.ormel.db(), "select * from LSResults;");
  const auto column = [&](std::string_view name) { return rows.Column(name); };
  const int x1 = column("X1"), y1 = column("Y1"), x2 = column("X2"), y2 = column("Y2");
  const int error = column("Error"), discharge = column("Discharge"), resistance = column("Resistance");
  const int specified = column("SpecifiedHead"), calculated = column("CalculatedHead");
  const int depth = column("Depth"), baseflow = column("Baseflow"), overland = column("Overlandflow");
  while (rows.Next()) {
    const LinesinkResult row{FieldOf(rows, error),      FieldOf(rows, discharge),  FieldOf(rows, baseflow),
                             FieldOf(rows, overland),   FieldOf(rows, resistance), FieldOf(rows, specified),
                             FieldOf(rows, calculated), FieldOf(rows, depth)};
    const auto line = OverlayLineOf(settings, row);
    if (!line) continue;
    canvas.vg.vgGDILine({rows.Double(x1), rows.Double(y1)}, {rows.Double(x2), rows.Double(y2)},
                        PenStyle::kSolid, line->width, line->color);
  }
}

ResultOverlay::ResultOverlay(Ormel& ormel, const OverlaySettings& settings) : Form(ormel) {
  InitControls();
  PutCheck("chkLSShow", settings.LSMode != "off");
  int chosen = 0;
  for (std::size_t i = 0; i < kChoices.size(); ++i)
    if (settings.LSMode == kChoices[i].mode) chosen = static_cast<int>(i);
  PutCheck(kChoices[static_cast<std::size_t>(chosen)].control, true);
  ReadRange(chosen);
  if (settings.LSScaleMax != 0.0) PutNumber("tbLSScaleMax", settings.LSScaleMax);
  OfferFields();
}

std::span<const ControlSpec> ResultOverlay::Controls() const {
  return kControls;
}

int ResultOverlay::Choice() const {
  for (std::size_t i = 0; i < kChoices.size(); ++i)
    if (Checked(kChoices[i].control)) return static_cast<int>(i);
  return 0;
}

OverlaySettings ResultOverlay::Settings() const {
  if (!Checked("chkLSShow")) return {"off", Number("tbLSScaleMax")};
  const OverlayChoice& choice = kChoices[static_cast<std::size_t>(Choice())];
  const double scale = Number("tbLSScaleMax");
  // A highlight does not scale, and is drawn whatever stands in the field.
  return {choice.mode, choice.minimum == nullptr && scale == 0.0 ? 1.0 : scale};
}

void ResultOverlay::ReadRange(int choice) {
  const OverlayChoice& chosen = kChoices[static_cast<std::size_t>(choice)];
  if (chosen.minimum == nullptr) return;
  Database& db = ormel().db();
  double low = 0.0, high = 0.0;
  if (db.Scalar("select count(*) from LSResults where SpecifiedHead>0;").AsLong() > 0) {
    low = db.Scalar(chosen.minimum).AsDouble();
    high = db.Scalar(chosen.maximum).AsDouble();
  }
  // Six digits: all of them would not fit the fields, and tell nothing more.
  const auto put = [this](std::string_view name, double value) {
    PutNumber(name, Rounded(value, std::abs(value) * 1e-3));
  };
  put("tbLSMin", low);
  put("tbLSMax", high);
  put("tbLSScaleMax", std::max(std::abs(low), std::abs(high)));
}

void ResultOverlay::OfferFields() {
  const bool on = Checked("chkLSShow");
  for (const OverlayChoice& choice : kChoices) Offer(choice.control, on);
  const bool scales = on && kChoices[static_cast<std::size_t>(Choice())].minimum != nullptr;
  Offer("tbLSMin", false);
  Offer("tbLSMax", false);
  Offer("tbLSScaleMax", scales);
}

void ResultOverlay::Changed(std::string_view name) {
  if (name.starts_with("LSSetting")) ReadRange(Choice());
  if (name.starts_with("LSSetting") || name == "chkLSShow") OfferFields();
}

void ResultOverlay::Pressed(std::string_view name) {
  if (name == "OK") {
    FillEmptyNumbers();
    const OverlaySettings settings = Settings();
    if (settings.LSMode != "off" && settings.LSScaleMax == 0.0)
      Inform(ormel(), "Error in Results overlay",
             Lines({"Scaling parameter is zero - line widths will not be plotted",
                    "Check the scaling in the results overlay settings box"}));
    Result = 1;
    Hide();
  } else if (name == "Cancel") {
    Result = 2;
    Hide();
  }
}

}  // namespace ormel
