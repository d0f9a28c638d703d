#include "exchange/dxf_export.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "exchange/dxf_writer.h"
#include "exchange/export_job.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr double kWellRadius = 3.3;  ///< [map units]

struct DxfMode {
  VectorMode mode;
  std::string_view layers;  ///< kind of the layer table
  std::vector<Source> sources;
  std::string_view title, refusal;  ///< when there is nothing
  std::string_view done;
};

const DxfMode& ModeOf(VectorMode mode) {
  static const std::array kModes{DxfMode{VectorMode::kContours,
                                         "Contours",
                                         {Source::kContours},
                                         "Can't export",
                                         "No Contours to be exported",
                                         "DXF contour file export is complete"},
                                 DxfMode{VectorMode::kPathlines,
                                         "Pathlines",
                                         {Source::kPaths, Source::kTimeTics, Source::kElevationTics},
                                         "Can't export",
                                         "No pathlines to be exported",
                                         "DXF pathline file export is complete"},
                                 DxfMode{VectorMode::kZones,
                                         "Capture Zones",
                                         {Source::kZones},
                                         "Can't Export",
                                         "No capture zones to be exported!\nNo Dxf file written!",
                                         "DXF capture zone file export is complete"},
                                 DxfMode{VectorMode::kElements,
                                         "Elements",
                                         {kElementOrder.begin(), kElementOrder.end()},
                                         "Can't Export",
                                         "No elements to be exported!\nNo Dxf file written!",
                                         "DXF element file export is complete"}};
  return kModes.at(static_cast<std::size_t>(mode));
}

bool IsCircle(Source source) {
  return source == Source::kWells || source == Source::kTimeTics || source == Source::kElevationTics;
}

std::string_view LayerOf(Source source, const Figure& figure) {
  switch (source) {
    case Source::kContours:
      return "Contours";
    case Source::kPaths:
      return "Pathlines";
    case Source::kTimeTics:
      return "Time Ticmarks";
    case Source::kElevationTics:
      return figure.up ? "Vertical Ticmarks Up" : "Vertical Ticmarks Down";
    case Source::kZones:
      return "Capture Zones";
    case Source::kWells:
      return "Wells";
    case Source::kDomains:
      return "Inhomogeneities";
    case Source::kLinesinks:
      return figure.drain            ? "Line-sinks (drains)"
             : figure.head_specified ? "Line-sinks (near field)"
                                     : "Line-sinks (discharge)";
    default:
      return "Horizontal Barriers";
  }
}

bool Drawable(Source source, const Figure& figure) {
  return figure.points.size() >= (IsCircle(source) ? 1U : figure.closed ? 3U : 2U);
}

double TicRadius(const Ormel& ormel) {
  constexpr double kAcross = 1342.0, kUp = 2105.0;
  const MapRect& window = ormel.window.SolveWindow;
  return std::min(window.Width() / kAcross, window.Height() / kUp);
}

class Entities {
 public:
  Entities(DxfWriter& dxf, double tic_radius) : dxf_(dxf), tic_radius_(tic_radius) {}

  void Write(Source source, const Figure& figure) {
    const std::string_view layer = LayerOf(source, figure);
    if (IsCircle(source)) {
      dxf_.WriteEntity("AcDbCircle", "CIRCLE", layer, handle_++);
      dxf_.WriteCircle(figure.points.front(), source == Source::kWells ? kWellRadius : tic_radius_);
      return;
    }
    dxf_.WriteEntity("AcDbPolyline", "LWPOLYLINE", layer, handle_++,
                     figure.points.size() + (figure.closed ? 1 : 0));
    for (const MapPoint& point : figure.points) dxf_.WriteVertex(point);
    if (figure.closed) dxf_.WriteVertex(figure.points.front());
  }

 private:
  DxfWriter& dxf_;
  double tic_radius_;
  std::uint64_t handle_ = kFirstHandle;
};

/// The same order in both passes: the first counts what the head of the file has to know.
template <class Each>
void ForEachFigure(Ormel& ormel, const DxfMode& mode, const TicSpacings& spacings, const Each& each) {
  for (const Source source : mode.sources) {
    if (source == Source::kTimeTics && !(spacings.days > 0.0)) continue;
    if (source == Source::kElevationTics && !(spacings.elevation > 0.0)) continue;
    ReadFigures(ormel, source, spacings, [&](const Figure& figure) { each(source, figure); });
  }
}

bool AnythingToExport(Ormel& ormel, const DxfMode& mode) {
  if (mode.mode != VectorMode::kElements)
    return HasAny(ormel, mode.sources.front()) &&
           (mode.mode != VectorMode::kPathlines || PointsToCome(ormel, Source::kPaths) > 0);
  return std::any_of(mode.sources.begin(), mode.sources.end(),
                     [&](Source source) { return HasAny(ormel, source); });
}

}  // namespace

VectorReport WriteDxf(Ormel& ormel, VectorMode choice, const TicSpacings& spacings, const std::string& path) {
  const DxfMode& mode = ModeOf(choice);
  VectorReport report;
  std::size_t points = 0;
  ForEachFigure(ormel, mode, spacings, [&](Source source, const Figure& figure) {
    points += figure.points.size();
    ++(Drawable(source, figure) ? report.written : report.left_out);
  });
  TextFileWriter file(path);
  DxfWriter dxf(file);
  dxf.WriteHeader(ExtentsOf(ormel.window.SolveWindow), HandleSeed(report.written));
  dxf.WriteClasses();
  dxf.WriteTables(mode.layers);
  dxf.WriteBlocks();
  dxf.WriteEntity("NONE", "Section Header");
  Entities entities(dxf, TicRadius(ormel));
  {
    ExportJob job(ormel, "Writing DXF File...", points);
    ForEachFigure(ormel, mode, spacings, [&](Source source, const Figure& figure) {
      job.Step(figure.points.size());
      if (Drawable(source, figure)) entities.Write(source, figure);
    });
  }
  dxf.WriteEntityEnd("Section End");
  dxf.WriteObjects();
  dxf.WriteEndOfFile();
  file.Commit();
  return report;
}

bool ToolsExportDXF(Ormel& ormel, VectorMode choice, const TicSpacings& spacings, const std::string& path) {
  const Named named(ormel, "ToolsExportDXF");
  const DxfMode& mode = ModeOf(choice);
  try {
    if (!AnythingToExport(ormel, mode)) {
      Inform(ormel, mode.title, mode.refusal, Icon::kWarning);
      return false;
    }
    if (!MayReplace(ormel, path, "DXF file export aborted")) return false;
    const VectorReport report = WriteDxf(ormel, choice, spacings, path);
    std::string text = Lines({mode.done, "DXF version AC1015 (Autocad 2000)"});
    if (report.left_out > 0)
      text += "\n" + std::to_string(report.left_out) + " with too few points were left out.";
    if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) text += "\n" + notice;
    Inform(ormel, "DXF Complete", text);
    return true;
  } catch (const ExportCancelled&) {
    Inform(ormel, "Abort", "DXF file export aborted");
  } catch (const FileError& failure) {
    Inform(ormel, "I/O Error",
           Lines({"Internal error " + std::to_string(errno) + " occurred during DXF file export",
                  failure.what()}),
           Icon::kStop);
  }
  return false;
}

void ToolsExportDXF(Ormel& ormel) {
  const Named named(ormel, "ToolsExportDXF");
  VectorExport form(ormel, "DXF");
  ormel.ui().ShowForm(form);
  if (form.Result != OkCancelForm::kOk) return;
  const auto path = AskExportFile(
      ormel, {"Default DXF conversion path", "Write DXF File", "DXF", "DXF Files (*.dxf)|*.DXF", {}});
  if (path) ToolsExportDXF(ormel, form.mode, MapTicSpacings(ormel), *path);
}

}  // namespace ormel
