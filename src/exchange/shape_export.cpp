#include "exchange/shape_export.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "core/command.h"
#include "core/ormel.h"
#include "core/project_crs.h"
#include "core/settings.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "exchange/dbf_writer.h"
#include "exchange/export_job.h"
#include "exchange/shape_file.h"
#include "model/geometry.h"
#include "text/files.h"
#include "text/masks.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr std::string_view kPathKey = "Default Export Shapefile path";

constexpr std::array kKinds{
    ShapeKind{1, "contours", Source::kContours, "Output ShapeFile name for contours", "_contours", kPathKey,
              ShapeType::kPolyLine, "LEVEL", "", "Contours Export Failed - "},
    ShapeKind{2, "pathlines", Source::kPaths, "Output ShapeFile name for path lines", "_paths", kPathKey,
              ShapeType::kPolyLine, "LABEL", "", "Path Export Failed - "},
    ShapeKind{2, "time-tics", Source::kTimeTics, "Output ShapeFile name for tick marks", "day-tics", kPathKey,
              ShapeType::kPoint, "T_Interval", "", "Time-of-Travel Tic Export Failed - "},
    ShapeKind{2, "elevation-tics", Source::kElevationTics, "Output ShapeFile name for tick marks",
              "elevation-tics", kPathKey, ShapeType::kPoint, "T_Interval", "",
              "Elevation Tic Export Failed - "},
    ShapeKind{3, "zones", Source::kZones, "Output ShapeFile name for well head protection areas", "_whps",
              kPathKey, ShapeType::kPolygon, "CapZone", "", "CapZone Export Failed - "},
    ShapeKind{5, "wells", Source::kWells, "Output ShapeFile name for point sinks", "_points", kPathKey,
              ShapeType::kPoint, "PointLabel", "Well-", "Well Export Failed - "},
    ShapeKind{5, "testpoints", Source::kTestPoints, "Output ShapeFile name for point sinks", "_points",
              kPathKey, ShapeType::kPoint, "PointLabel", "TestPoint-", "TestPoint Export Failed - "},
    ShapeKind{5, "particles", Source::kParticles, "Output ShapeFile name for point sinks", "_points",
              kPathKey, ShapeType::kPoint, "PointLabel", "ParticleElev-", "Particle Export Failed - "},
    ShapeKind{6, "inhomogeneities", Source::kDomains, "Output ShapeFile name for inhomogenieties", "_inhomos",
              kPathKey, ShapeType::kPolygon, "Inhomogenei", "", "Inhomogeneity Export Failed - "},
    ShapeKind{7, "linesinks", Source::kLinesinks, "Output ShapeFile name for line sinks", "_lines", kPathKey,
              ShapeType::kPolyLine, "Linesinks", "", "Linesink Export Failed - "},
    ShapeKind{8, "barriers", Source::kBarriers, "Output ShapeFile name for no-flow boundaries", "_noflows",
              kPathKey, ShapeType::kPolyLine, "NoFlowLines", "", "Noflow Barrier Export Failed - "}};

const ShapeKind& KindOf(Source source) {
  return *std::find_if(kKinds.begin(), kKinds.end(),
                       [source](const ShapeKind& kind) { return kind.source == source; });
}

std::string ValueOf(const ShapeKind& kind, const Figure& figure) {
  switch (kind.source) {
    case Source::kContours: {
      constexpr std::string_view kMask = "######.#0";
      const std::string text = FormatMask(figure.value, kMask);
      return std::string(kMask.size() - std::min(kMask.size(), text.size()), ' ') + text;
    }
    case Source::kTimeTics:
      return NumberText(figure.value) + " Days";
    case Source::kElevationTics:
      return NumberText(figure.value);
    case Source::kParticles:
      return std::string(kind.prefix) + NumberText(figure.value);
    default:
      return std::string(kind.prefix) + figure.label;
  }
}

std::vector<MapPoint> WithoutRepeats(std::span<const MapPoint> points, bool closed) {
  std::vector<MapPoint> kept(points.begin(), points.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  while (closed && kept.size() > 1 && kept.front() == kept.back()) kept.pop_back();
  return kept;
}

CPart PartOf(std::span<const MapPoint> points) {
  CPart part;
  for (const MapPoint& point : points) part.Add(CPoint(point.x, point.y));
  return part;
}

/// False when the figure has too few points for a shape of the type.
bool AddFigure(CShapeFile& file, const Figure& figure) {
  const ShapeType type = file.FileType();
  if (type == ShapeType::kPoint) {
    if (figure.points.empty()) return false;
    file.Add(CPoint(figure.points.front().x, figure.points.front().y));
    return true;
  }
  const bool ring = type == ShapeType::kPolygon;
  std::vector<MapPoint> points = WithoutRepeats(figure.points, figure.closed);
  if (points.size() < (ring ? 3U : 2U)) return false;
  if (ring && SignedArea(std::span<const MapPoint>(points), points.front()) > 0.0)
    std::reverse(points.begin(), points.end());
  if (ring || figure.closed) points.push_back(points.front());
  if (ring) {
    CPolygon shape;
    shape.Add(PartOf(points));
    file.Add(shape);
  } else {
    CPolyLine shape;
    shape.Add(PartOf(points));
    file.Add(shape);
  }
  return true;
}

struct Members {
  CShapeFile shapes;
  DbfColumn column;
};

void WriteTextFile(const std::string& path, std::string_view text) {
  TextFileWriter file(path);
  file.Write(text);
  file.Commit();
}

/// All figures of a kind into the file.  Of points the further kinds that are asked for, with words of their
/// own for a failure.
void AddKind(Ormel& ormel, const ShapeKind& kind, const ShapeOptions& options, Members& members,
             ShapeReport& report) {
  ExportJob job(ormel, "Writing Shapefile...", PointsToCome(ormel, kind.source));
  ReadFigures(ormel, kind.source, options.spacings, [&](const Figure& figure) {
    job.Step(std::max<std::size_t>(1, figure.points.size()));
    if (!AddFigure(members.shapes, figure)) {
      ++report.left_out;
      return;
    }
    members.column.values.push_back(ValueOf(kind, figure));
    ++report.written;
  });
}

void WriteAttributes(Ormel& ormel, const DbfColumn& column, const std::string& path) {
  const ClockTime now = ormel.clock().Now();
  const std::string result = WriteDBF(path, {column}, {now.year, now.month, now.day});
  constexpr std::string_view kFailed = "Export Failed - ";
  if (result.starts_with(kFailed)) throw FileError(path, result.substr(kFailed.size()));
}

/// The one that is given stands before the project's.
std::string PrjOf(const Ormel& ormel, const ShapeOptions& options) {
  if (!options.prj.empty()) return options.prj;
  const std::optional<Crs> crs = ProjectCrs(ormel);
  return crs ? crs->PrjWkt() : std::string();
}

}  // namespace

std::span<const ShapeKind> ShapeKinds() {
  return kKinds;
}

const ShapeKind* FindShapeKind(std::string_view word) {
  for (const ShapeKind& kind : kKinds)
    if (kind.word == word) return &kind;
  return nullptr;
}

ShapeReport WriteShapes(Ormel& ormel, const ShapeKind& kind, const ShapeOptions& options,
                        const std::string& path) {
  ShapeReport report;
  FileSet set(path);
  {
    Members members;
    members.column = {std::string(kind.column), 'C', {}, 1};
    set.Member("shx");
    members.shapes.SetFileSpec(set.Member("shp"), CShapeFile::CREATEIT, kind.type);
    AddKind(ormel, kind, options, members, report);
    if (kind.source == Source::kWells && options.test_points)
      AddKind(ormel, KindOf(Source::kTestPoints), options, members, report);
    if (kind.source == Source::kWells && options.particles)
      AddKind(ormel, KindOf(Source::kParticles), options, members, report);
    members.shapes.Flush();
    WriteAttributes(ormel, members.column, set.Member("dbf"));
  }
  WriteTextFile(set.Member("cpg"), "UTF-8");
  const std::string prj = PrjOf(ormel, options);
  if (!prj.empty()) WriteTextFile(set.Member("prj"), prj);
  set.Commit({"sbn", "sbx", "qix"});  // indices of the older shapes
  return report;
}

}  // namespace ormel
