#include "exchange/surfer_export.h"

#include <cerrno>
#include <cmath>
#include <vector>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/run_files.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "exchange/export_job.h"
#include "solver/grid_file.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr ControlSpec kGridControls[] = {{.name = "lblExplanation",
                                          .kind = ControlKind::kNote,
                                          .caption = "The heads of the solution's grid, in map coordinates."},
                                         kOkButton,
                                         kCancelButton};

/// Half a side of the box that stands for a well: about its circle in a drawing [map units].
constexpr double kWellBox = 3.3;

const std::string& GridFile(const Ormel& ormel, std::string& file) {
  file = StemFile(ormel, ".GRD");
  return file;
}

std::string Range(double low, double high) {
  constexpr std::string_view kMask = "#######0.00";
  return "  " + FormatMask(low, kMask) + "  " + FormatMask(high, kMask);
}

/// Counts and values are looked at before a line is copied: half a grid is none.
GridHeader CheckedGrid(const std::string& source) {
  GridHeader header;
  const ReadOutcome damage = ReadGridFile(
      source, [&](const GridHeader& read) { header = read; }, [](std::size_t, std::span<const double>) {});
  if (damage) throw FileError(source, damage->reason, damage->line);
  return header;
}

std::string Scientific(double value) {
  std::string text = FormatMask(value, "0.000000E+00 ");
  for (char& c : text)
    if (c == 'E') c = 'e';
  return text;
}

/// One curve after the other.
class BoundaryLines {
 public:
  BoundaryLines(TextFileWriter& file, VectorMode mode) : file_(file), mode_(mode) {}

  void Curve(std::span<const MapPoint> points, bool closed) {
    const std::size_t count = points.size() + (closed ? 1 : 0);
    file_.Line(Lines_() ? FormatMask(static_cast<double>(count), "####0 ") + "  1"
                        : std::to_string(count) + " 1");
    for (const MapPoint& point : points) Point(point);
    if (closed) Point(points.front());
  }
  void Box(MapPoint centre) {
    file_.Line(" 5 1");
    const double left = centre.x - kWellBox, right = centre.x + kWellBox, bottom = centre.y - kWellBox,
                 top = centre.y + kWellBox;
    for (const MapPoint corner : {MapPoint{left, bottom}, MapPoint{left, top}, MapPoint{right, top},
                                  MapPoint{right, bottom}, MapPoint{left, bottom}})
      Point(corner);
  }

 private:
  bool Lines_() const { return mode_ == VectorMode::kContours || mode_ == VectorMode::kPathlines; }
  void Point(MapPoint at) {
    file_.Line(mode_ == VectorMode::kElements ? NumberText(at.x) + " " + NumberText(at.y)
                                              : Scientific(at.x) + Scientific(at.y));
  }
  TextFileWriter& file_;
  VectorMode mode_;
};

std::vector<Source> SourcesOf(VectorMode mode) {
  switch (mode) {
    case VectorMode::kContours:
      return {Source::kContours};
    case VectorMode::kPathlines:
      return {Source::kPaths};
    case VectorMode::kZones:
      return {Source::kZones};
    case VectorMode::kElements:
      break;
  }
  return {kElementOrder.begin(), kElementOrder.end()};
}

void TellFailure(Ormel& ormel, const char* what, const FileError& failure) {
  std::string text = std::to_string(errno) + " occurred during " + what + " file export\n" + failure.what();
  if (failure.line() > 0)
    text = "The error occured at or before reading line " + std::to_string(failure.line()) + "\n" + text;
  Inform(ormel, "I/O Error", text, Icon::kStop);
}

void WithNotice(Ormel& ormel, const char* title, std::string text) {
  if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) text += "\n" + notice;
  Inform(ormel, title, text);
}

}  // namespace

GridExport::GridExport(Ormel& ormel) : OkCancelForm(ormel) {
  InitControls();
}

std::span<const ControlSpec> GridExport::Controls() const {
  return kGridControls;
}

void WriteSurferGrid(Ormel& ormel, const std::string& path) {
  std::string source;
  if (!ormel.solution.ValidSolution)
    throw FileError(GridFile(ormel, source), "belongs to no solution on view; solve the model");
  const GridHeader header = CheckedGrid(GridFile(ormel, source));
  LineReader lines(source);
  TextFileWriter file(path);
  ExportJob job(ormel, "Writing Grid File...", header.rows * header.columns);
  std::string line;
  while (lines.Next(line)) {
    switch (lines.line_number()) {
      case 2:
        file.Line(std::to_string(header.columns) + " " + std::to_string(header.rows));
        break;
      case 3:
        file.Line(Range(MToW_X(ormel, header.x_min), MToW_X(ormel, header.x_max)));
        break;
      case 4:
        file.Line(Range(MToW_Y(ormel, header.y_min), MToW_Y(ormel, header.y_max)));
        break;
      default:
        file.Line(line);
    }
    job.Step();
  }
  file.Commit();
}

bool ToolsExportGrid(Ormel& ormel, const std::string& path) {
  const Named named(ormel, "ToolsExportGrid");
  try {
    if (!MayReplace(ormel, path, "Grid file export aborted")) return false;
    WriteSurferGrid(ormel, path);
    WithNotice(ormel, "Done", "Grid file export is complete");
    return true;
  } catch (const ExportCancelled&) {
    Inform(ormel, "Abort", "Grid file export aborted");
  } catch (const FileError& failure) {
    TellFailure(ormel, "grid", failure);
  }
  return false;
}

void ToolsExportGrid(Ormel& ormel) {
  const Named named(ormel, "ToolsExportGrid");
  GridExport form(ormel);
  ormel.ui().ShowForm(form);
  if (form.Result != OkCancelForm::kOk) return;
  const auto path = AskExportFile(
      ormel,
      {"Default Export Grid path", "Write SURFER(tm) Grid File", "GRD", "Grid Format Files|*.GRD", {}});
  if (path) ToolsExportGrid(ormel, *path);
}

VectorReport WriteBoundaryLines(Ormel& ormel, VectorMode mode, const std::string& path) {
  VectorReport report;
  TextFileWriter file(path);
  BoundaryLines lines(file, mode);
  for (const Source source : SourcesOf(mode)) {
    if ((source == Source::kContours || source == Source::kPaths) && !ormel.solution.ValidSolution)
      throw FileError(StemFile(ormel, source == Source::kContours ? ".CTR" : ".PTH"),
                      "belongs to no solution on view; solve the model");
    ExportJob job(ormel, "Writing Boundary Line File...", PointsToCome(ormel, source));
    ReadFigures(ormel, source, {}, [&](const Figure& figure) {
      job.Step(figure.points.size());
      if (figure.points.size() < (source == Source::kWells ? 1U : 2U)) {
        ++report.left_out;
        return;
      }
      if (source == Source::kWells)
        lines.Box(figure.points.front());
      else
        lines.Curve(figure.points, figure.closed);
      ++report.written;
    });
  }
  file.Commit();
  return report;
}

bool ToolsExportBLN(Ormel& ormel, VectorMode mode, const std::string& path) {
  const Named named(ormel, "ToolsExportBLN");
  try {
    if (mode == VectorMode::kZones && !HasAny(ormel, Source::kZones)) {
      Inform(ormel, "Can't Export", "No capture zones", Icon::kWarning);
      return false;
    }
    if (!MayReplace(ormel, path, "Boundary line file export aborted")) return false;
    const VectorReport report = WriteBoundaryLines(ormel, mode, path);
    std::string text = path + " has been written.";
    if (report.left_out > 0)
      text += "\n" + std::to_string(report.left_out) + " with too few points were left out.";
    WithNotice(ormel, kProgramTitle, text);
    return true;
  } catch (const ExportCancelled&) {
    Inform(ormel, "Abort", "Boundary line file export aborted");
  } catch (const FileError& failure) {
    TellFailure(ormel, "boundary line", failure);
  }
  return false;
}

void ToolsExportBLN(Ormel& ormel) {
  const Named named(ormel, "ToolsExportBLN");
  VectorExport form(ormel, "BLN");
  ormel.ui().ShowForm(form);
  if (form.Result != OkCancelForm::kOk) return;
  const auto path = AskExportFile(ormel, {"Default Export BLN path",
                                          "Write SURFER(tm) Boundary Line File",
                                          "BLN",
                                          "Boundary Line Files|*.BLN",
                                          {}});
  if (path) ToolsExportBLN(ormel, form.mode, *path);
}

}  // namespace ormel
