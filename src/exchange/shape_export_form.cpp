// The dialog of the shapefile export, and its command.
#include <algorithm>
#include <array>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "exchange/export_job.h"
#include "exchange/shape_export.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::string_view kGroup = "What to Export ";

struct Option {
  std::string_view name, caption;
  int index;
  Source source;
};
constexpr std::array kOptions{Option{"Option1", "Contours", 1, Source::kContours},
                              Option{"Option2", "Path Lines, TicMarks", 2, Source::kPaths},
                              Option{"Option3", "WHP Areas", 3, Source::kZones},
                              Option{"Option5", "Wells, TestPoints, Particles", 5, Source::kWells},
                              Option{"Option6", "Inhomogeneities", 6, Source::kDomains},
                              Option{"Option7", "Line Sinks", 7, Source::kLinesinks},
                              Option{"Option8", "No Flow Boundaries", 8, Source::kBarriers}};

constexpr auto kControls = [] {
  std::array<ControlSpec, kOptions.size() + 2> controls{};
  for (std::size_t i = 0; i < kOptions.size(); ++i)
    controls[i] = {.name = kOptions[i].name,
                   .kind = ControlKind::kOption,
                   .caption = kOptions[i].caption,
                   .group = kGroup};
  controls[kOptions.size()] = kOkButton;
  controls[kOptions.size() + 1] = kCancelButton;
  return controls;
}();

std::string Told(const Ormel& ormel, const ShapeReport& report) {
  std::string text = Lines({"Export OK", std::to_string(report.written) + " shapes were written."});
  if (report.left_out > 0)
    text += "\n" + std::to_string(report.left_out) + " with too few points were left out.";
  if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) text += "\n" + notice;
  return text;
}

void ExportOne(Ormel& ormel, const ShapeKind& kind, const ShapeOptions& options) {
  const auto path = AskExportFile(
      ormel, {kind.key, kind.title, "shp", "Shapefiles (*.shp)|*.shp", std::string(kind.suffix)});
  if (!path || !MayReplace(ormel, *path, {})) return;
  try {
    const ShapeReport report = WriteShapes(ormel, kind, options, *path);
    Inform(ormel, kProgramTitle, Told(ormel, report), Icon::kNone);
  } catch (const ExportCancelled&) {
    Inform(ormel, kProgramTitle, "Export canceled by user");
  } catch (const std::exception& failure) {
    Inform(ormel, kProgramTitle, std::string(kind.failure) + failure.what(), Icon::kStop);
  }
}

double SpacingOf(const ShapeKind& mark, const ShapeOptions& options) {
  return mark.source == Source::kTimeTics ? options.spacings.days : options.spacings.elevation;
}

}  // namespace

ExportShapefile::ExportShapefile(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
  for (const Option& option : kOptions) Offer(option.name, HasAny(ormel, option.source));
}

std::span<const ControlSpec> ExportShapefile::Controls() const {
  return kControls;
}

bool ExportShapefile::Ok() {
  const auto* chosen = std::find_if(kOptions.begin(), kOptions.end(), [this](const Option& option) {
    return Checked(option.name) && State(option.name).enabled;
  });
  if (chosen == kOptions.end()) {
    Inform(ormel(), kProgramTitle, "Make a selection or cancel", Icon::kStop);
    return false;
  }
  Index = chosen->index;
  const auto also = [this](const char* what) {
    return AskYesNo(ormel(), kProgramTitle, std::string("Also Export ") + what + "?", Icon::kQuestion);
  };
  if (Index == 2) ExportTics = also("Time-of-Travel TickMarks");
  if (Index == 5 && HasAny(ormel(), Source::kTestPoints)) ExportTestPoints = also("TestPoints");
  if (Index == 5 && HasAny(ormel(), Source::kParticles)) ExportParticles = also("Particles");
  return true;
}

void ToolsExportShape(Ormel& ormel, int index, bool tics, const ShapeOptions& options) {
  const Named named(ormel, "ToolsExportShape");
  for (const ShapeKind& kind : ShapeKinds()) {
    const bool mark = kind.source == Source::kTimeTics || kind.source == Source::kElevationTics;
    if (kind.index != index || kind.source == Source::kTestPoints || kind.source == Source::kParticles ||
        (mark && !tics))
      continue;
    if (mark && !(SpacingOf(kind, options) > 0.0))
      Inform(ormel, kProgramTitle,
             std::string(kind.failure) + "no spacing is chosen.  View > Pathlines sets it.");
    else
      ExportOne(ormel, kind, options);
  }
}

void ExportShapefiles(Ormel& ormel) {
  const Named named(ormel, "ToolsExportShape");
  ExportShapefile form(ormel);
  ormel.ui().ShowForm(form);
  if (form.Result != OkCancelForm::kOk) return;
  ToolsExportShape(ormel, form.Index, form.ExportTics,
                   {MapTicSpacings(ormel), form.ExportTestPoints, form.ExportParticles, {}});
}

}  // namespace ormel
