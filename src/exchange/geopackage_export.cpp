#include "exchange/geopackage_export.h"

#include <array>
#include <cmath>
#include <functional>
#include <optional>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "core/project_crs.h"
#include "core/user_interface.h"
#include "document/element_rows.h"
#include "document/kinds.h"
#include "exchange/figures.h"
#include "exchange/result_sources.h"
#include "geo/geopackage.h"
#include "solver/path_file.h"
#include "solver/result_files.h"
#include "store/bulk.h"
#include "store/database.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr LayerColor kBlack{0, 0, 0, 255}, kWhite{255, 255, 255, 255}, kBlue{0, 0, 255, 255},
    kPurple{128, 0, 128, 255}, kRed{128, 0, 0, 255}, kGreen{0, 128, 0, 255}, kBright{0, 0, 255, 255},
    kNavy{0, 0, 128, 255}, kClear{255, 255, 255, 0}, kPale{0, 0, 255, 40}, kGrey{128, 128, 128, 40},
    kWarm{255, 0, 0, 40};

LayerStyle LineStyle(LayerColor color, double width) {
  LayerStyle style;
  style.line = color;
  style.width = width;
  return style;
}
LayerStyle AreaStyle(LayerColor line, LayerColor fill) {
  LayerStyle style = LineStyle(line, 0.4);
  style.fill = fill;
  return style;
}
LayerStyle MarkerStyle(const char* marker, LayerColor color, double size) {
  LayerStyle style = LineStyle(color, 0.2);
  style.fill = color;
  style.marker = marker;
  style.size = size;
  return style;
}
LayerStyle Labelled(LayerStyle style, const char* field) {
  style.label_field = field;
  return style;
}

/// A layer of elements of a kind: those whose `filter` is `value`, or all.
struct ElementLayer {
  Element element;
  const char *name, *title;
  GeometryKind geometry;
  LayerStyle style;
  const char* filter = "";
  int value = 0;
  /// A field that holds different things, and what it is called here.
  const char *field = "", *called = "";
};

std::vector<ElementLayer> ElementLayers() {
  using enum GeometryKind;
  return {
      {Element::kInhomogeneity, "inhomogeneities", "Inhomogeneities", kPolygon,
       Labelled(AreaStyle(kBlack, kGrey), "Label")},
      {Element::kCapzone, "capture_zones", "Capture zones", kPolygon,
       Labelled(AreaStyle(kBright, kPale), "Label")},
      {Element::kLinesink, "linesinks", "Linesinks, head specified", kLine,
       Labelled(LineStyle(kBlue, 0.6), "Label"), "HeadSpecified", 1},
      {Element::kLinesink, "discharge_linesinks", "Linesinks, discharge specified", kLine,
       Labelled(LineStyle(kPurple, 0.6), "Label"), "HeadSpecified", 0, "StartingHead", "Density"},
      {Element::kBarrier, "barriers", "Horizontal barriers", kLine, LineStyle(kBlack, 0.8)},
      {Element::kFluxLine, "flux_lines", "Flux inspection lines", kLine,
       Labelled(LineStyle(kPurple, 0.3), "Label")},
      {Element::kWell, "wells", "Wells, discharge specified", kPoint,
       Labelled(MarkerStyle("circle", kPurple, 2.5), "Label"), "HeadSpecified", 0, "Head", "Rate"},
      {Element::kWell, "head_wells", "Wells, head specified", kPoint,
       Labelled(MarkerStyle("circle", kNavy, 2.5), "Label"), "HeadSpecified", 1},
      {Element::kTestPoint, "test_points", "Test points", kPoint,
       Labelled(MarkerStyle("triangle", kRed, 2.0), "Label")},
      {Element::kParticle, "particles", "Particles", kPoint, MarkerStyle("cross2", kRed, 2.0)},
      {Element::kTextLabel, "text_labels", "Text labels", kPoint,
       Labelled(MarkerStyle("circle", kClear, 0.5), "Text")},
  };
}

/// A table of results, each row a segment or a place.
struct ResultLayer {
  const char *table, *name, *title;
  const char *x1, *y1, *x2, *y2;  ///< fields; no x2 for a place
  LayerStyle style;
};

std::vector<ResultLayer> ResultLayers() {
  return {
      {"LSResults", "linesink_results", "Results of linesinks", "X1", "Y1", "X2", "Y2",
       LineStyle(kBlue, 0.4)},
      {"INResults", "inhomogeneity_results", "Results of inhomogeneities", "X1", "Y1", nullptr, nullptr,
       MarkerStyle("square", kBlack, 1.5)},
      {"NFResults", "barrier_results", "Results of barriers", "X1", "Y1", nullptr, nullptr,
       MarkerStyle("square", kBlack, 1.5)},
      {"WLResults", "well_results", "Results of wells", "X", "Y", nullptr, nullptr,
       Labelled(MarkerStyle("circle", kPurple, 2.5), "Discharge")},
      {"TPResults", "test_point_results", "Results of test points", "X", "Y", nullptr, nullptr,
       Labelled(MarkerStyle("triangle", kGreen, 2.0), "Difference")},
  };
}

FieldKind KindOf(const schema::Field& field) {
  using enum schema::FieldType;
  if (field.type == kText || field.type == kDate) return FieldKind::kText;
  return field.type == kDouble ? FieldKind::kReal : FieldKind::kInteger;
}

GeoValue ValueOf(const Value& value, FieldKind kind) {
  if (value.IsNull()) return {};
  if (kind == FieldKind::kText) return value.AsText();
  if (kind == FieldKind::kReal) return value.AsDouble();
  return value.AsLong();
}

/// Layers come into the file with their first feature.
class Exporter {
 public:
  Exporter(Ormel& ormel, const GeoPackageExport& request)
      : ormel_(ormel), request_(request), writer_(request.path, ProjectCrs(ormel)) {}

  ExportOutcome Run();

 private:
  using Part = GeoPart::Role;

  void Begin(NewLayer layer) {
    layer_ = std::move(layer);
    begun_ = false;
  }
  void Add(const GeoFeature& feature) {
    if (!begun_) {
      writer_.Layer(layer_);
      outcome_.layers.emplace_back(layer_.name, 0);
      begun_ = true;
    }
    writer_.Add(feature);
    ++outcome_.layers.back().second;
    constexpr std::size_t kReportEvery = 1000;
    if (++written_ % kReportEvery != 0) return;
    ormel_.ui().Progress(-1.0, "Writing " + layer_.title + "...");
    outcome_.cancelled = outcome_.cancelled || ormel_.ui().CancelRequested();
  }
  bool Stopped() const { return outcome_.cancelled; }

  std::vector<const schema::Field*> FieldsOf(std::string_view table, std::string_view key) const;
  void Elements(const ElementLayer& of);
  void Results(const ResultLayer& of);
  void Contours();
  void Pathlines();
  void AreaPathlines();
  void Tics();
  void Circles();

  Ormel& ormel_;
  const GeoPackageExport& request_;
  GeoPackageWriter writer_;
  NewLayer layer_;
  bool begun_ = false;
  std::size_t written_ = 0;
  ExportOutcome outcome_;
};

std::vector<const schema::Field*> Exporter::FieldsOf(std::string_view table, std::string_view key) const {
  std::vector<const schema::Field*> fields;
  const schema::Table* found = schema::FindTable(table);
  if (found == nullptr || !ormel_.db().HasTable(table)) return fields;
  for (const schema::Field& field : found->fields)
    if (!EqualNoCase(field.name, key) && ormel_.db().HasField(table, field.name)) fields.push_back(&field);
  return fields;
}

/// "[Label],[Head]"
std::string Listed(const std::vector<const schema::Field*>& fields) {
  std::string list;
  for (const schema::Field* field : fields)
    list += (list.empty() ? "[" : ",[") + std::string(field->name) + "]";
  return list;
}

void AddValues(RowReader& row, const std::vector<const schema::Field*>& fields, GeoFeature& feature) {
  const bool found = row.Next();
  for (std::size_t i = 0; i < fields.size(); ++i)
    feature.values.push_back(found ? ValueOf(row.Get(static_cast<int>(i)), KindOf(*fields[i])) : GeoValue{});
}

void Exporter::Elements(const ElementLayer& of) {
  const ElementKind& kind = *FindKind(of.element);
  const std::string key = kind.KeyField();
  const auto fields = FieldsOf(kind.table, key);
  const auto zones = of.element == Element::kCapzone ? FieldsOf("Zones", "PID") : decltype(fields){};
  NewLayer layer{.name = of.name, .title = of.title, .kind = of.geometry, .style = of.style};
  layer.fields.push_back({"ormel_id", FieldKind::kInteger});
  for (const schema::Field* field : fields)
    layer.fields.push_back(
        {EqualNoCase(field->name, of.field) ? of.called : std::string(field->name), KindOf(*field)});
  for (const schema::Field* field : zones)
    layer.fields.push_back({"zone_" + std::string(field->name), KindOf(*field)});
  Begin(std::move(layer));
  const std::string where =
      *of.filter != '\0' ? " and " + std::string(of.filter) + "=" + std::to_string(of.value) : "";
  RowReader row(ormel_.db(), "select " + Listed(fields) + " from " + std::string(kind.table) + " where " +
                                 key + "=?" + where);
  std::optional<RowReader> making;
  const std::string makings = "Zones";
  if (!zones.empty())
    making.emplace(ormel_.db(), "select " + Listed(zones) + " from " + makings + " where PID=?");
  const std::size_t fewest = of.geometry == GeometryKind::kPoint  ? 1
                             : of.geometry == GeometryKind::kLine ? 2
                                                                  : 3;
  ReadElementRows(ormel_, of.element, [&](const ElementRow& element) {
    if (Stopped() || element.points.size() < fewest) return;
    row.Restart({element.key});
    if (!row.Next()) return;  // of another layer
    GeoFeature feature;
    feature.values.emplace_back(element.key);
    for (std::size_t i = 0; i < fields.size(); ++i)
      feature.values.push_back(ValueOf(row.Get(static_cast<int>(i)), KindOf(*fields[i])));
    if (making) {
      making->Restart({element.key});
      AddValues(*making, zones, feature);
    }
    GeoPart part;
    part.role = of.geometry == GeometryKind::kPoint  ? Part::kPoint
                : of.geometry == GeometryKind::kLine ? Part::kLine
                                                     : Part::kOuterRing;
    for (const MapPoint at : element.points) part.points.push_back({at.x, at.y});
    feature.parts.push_back(std::move(part));
    Add(feature);
  });
}

void Exporter::Results(const ResultLayer& of) {
  const auto fields = FieldsOf(of.table, "");
  if (fields.empty()) return;
  const bool segment = of.x2 != nullptr;
  NewLayer layer{.name = of.name,
                 .title = of.title,
                 .kind = segment ? GeometryKind::kLine : GeometryKind::kPoint,
                 .style = of.style};
  for (const schema::Field* field : fields)
    layer.fields.push_back({std::string(field->name), KindOf(*field)});
  Begin(std::move(layer));
  std::string places = std::string(of.x1) + "," + of.y1;
  if (segment) places += std::string(",") + of.x2 + "," + of.y2;
  RowReader rows(ormel_.db(), "select " + places + "," + Listed(fields) + " from " + of.table);
  const int first = segment ? 4 : 2;
  while (rows.Next() && !Stopped()) {
    GeoFeature feature;
    GeoPart part{.role = segment ? Part::kLine : Part::kPoint};
    for (int i = 0; i < first; i += 2) part.points.push_back({rows.Double(i), rows.Double(i + 1)});
    feature.parts.push_back(std::move(part));
    for (std::size_t i = 0; i < fields.size(); ++i)
      feature.values.push_back(ValueOf(rows.Get(first + static_cast<int>(i)), KindOf(*fields[i])));
    Add(feature);
  }
}

void Exporter::Contours() {
  if (!ormel_.solution.ContoursValid) return;
  Begin({.name = "contours",
         .title = "Head contours",
         .kind = GeometryKind::kLine,
         .fields = {{"level", FieldKind::kReal}},
         .style = Labelled(LineStyle(kNavy, 0.25), "level")});
  ReadFigures(ormel_, Source::kContours, {}, [&](const Figure& contour) {
    if (Stopped() || contour.points.size() < 2) return;
    GeoPart part{.role = Part::kLine};
    for (const MapPoint at : contour.points) part.points.push_back({at.x, at.y});
    Add({0, {std::move(part)}, {contour.value}});
  });
}

void Exporter::Pathlines() {
  if (!ormel_.solution.PathlinesValid) return;
  Begin({.name = "pathlines",
         .title = "Pathlines, with days as measure",
         .kind = GeometryKind::kLine,
         .has_z = true,
         .has_m = true,
         .fields = {{"label", FieldKind::kText},
                    {"start", FieldKind::kText},
                    {"direction", FieldKind::kText},
                    {"end", FieldKind::kText},
                    {"days", FieldKind::kReal},
                    {"years", FieldKind::kReal},
                    {"start_elevation", FieldKind::kReal},
                    {"end_elevation", FieldKind::kReal}},
         .style = LineStyle(kRed, 0.25)});
  constexpr std::size_t kReason = 6;  // the column from which the END line tells why
  PathLabels labels(ormel_);
  const std::string file = ResultFileName(ormel_, ormel_.project.OrmelBaseName, ".PTH");
  const ReadOutcome read = ReadPathFile(file, [&](const Pathline& path) {
    const std::string label = labels.Of(path.start);
    if (Stopped() || path.points.size() < 2) return;
    GeoPart part{.role = Part::kLine, .has_z = true};
    for (const PathPoint& point : path.points) {
      const MapPoint at = MToW(ormel_, point.at);
      part.points.push_back({at.x, at.y, point.elevation, point.time});
    }
    const double days = path.points.back().time;
    const std::string end = path.end.size() > kReason ? std::string(Trim(path.end.substr(kReason))) : "";
    const std::string start = path.start.find("well") != std::string::npos ? "well" : "point";
    const bool backward = path.start.find("backward") != std::string::npos;
    Add({0,
         {std::move(part)},
         {label, start, std::string(backward ? "backward" : "forward"), end, days, days / 365.0,
          path.points.front().elevation, path.points.back().elevation}});
  });
  if (read) throw FileError(file, "is damaged and was not exported: " + read->Message());
}

void Exporter::AreaPathlines() {
  Begin({.name = "area_pathlines",
         .title = "Pathlines of protection areas, with days as measure",
         .kind = GeometryKind::kLine,
         .has_z = true,
         .has_m = true,
         .fields = {{"run", FieldKind::kText}, {"days", FieldKind::kReal}},
         .style = LineStyle({255, 0, 0, 255}, 0.25)});
  for (const std::string& stem : WhpaStems(ormel_)) {
    const std::string file = ResultFileName(ormel_, stem, ".PTH");
    if (!FileExists(file)) continue;
    const auto set = WholePaths(ormel_, file);
    for (const PathSet::Path& path : set->paths) {
      if (Stopped()) return;
      if (path.count < 2) continue;
      GeoPart part{.role = Part::kLine, .has_z = true};
      for (std::size_t i = path.first; i < path.first + path.count; ++i)
        part.points.push_back({set->points[i].x, set->points[i].y, set->elevations[i], set->times[i]});
      Add({0, {std::move(part)}, {stem, set->times[path.first + path.count - 1]}});
    }
  }
}

void Exporter::Tics() {
  if (!ormel_.solution.PathlinesValid) return;
  const auto write = [&](Source source, const char* name, const char* title, const char* field,
                         const char* marker) {
    Begin({.name = name,
           .title = title,
           .kind = GeometryKind::kPoint,
           .fields = {{field, FieldKind::kReal}},
           .style = Labelled(MarkerStyle(marker, kBlack, 1.5), field)});
    ReadFigures(ormel_, source, {request_.time_tics, request_.elevation_tics}, [&](const Figure& tic) {
      if (Stopped()) return;
      const MapPoint at = tic.points.front();
      Add({0, {{.role = Part::kPoint, .points = {{at.x, at.y}}}}, {tic.value}});
    });
  };
  write(Source::kTimeTics, "time_tics", "Times along pathlines", "days", "circle");
  write(Source::kElevationTics, "elevation_tics", "Elevations along pathlines", "elevation", "cross");
}

void Exporter::Circles() {
  constexpr int kCorners = 180;
  Begin({.name = "protection_areas",
         .title = "Simple wellhead protection areas",
         .kind = GeometryKind::kPolygon,
         .fields = {{"well", FieldKind::kText}, {"type", FieldKind::kInteger}, {"radius", FieldKind::kReal}},
         .style = Labelled(AreaStyle({255, 0, 0, 255}, kWarm), "well")});
  for (const ExportedCircle& circle : request_.circles) {
    if (!(circle.radius > 0.0)) continue;
    GeoPart part{.role = Part::kOuterRing};
    for (int i = 0; i < kCorners; ++i) {
      const double angle = 2.0 * 3.14159265358979323846 * i / kCorners;
      part.points.push_back({circle.centre.x + circle.radius * std::cos(angle),
                             circle.centre.y + circle.radius * std::sin(angle)});
    }
    Add({0, {std::move(part)}, {circle.well, std::int64_t{circle.type}, circle.radius}});
  }
}

ExportOutcome Exporter::Run() {
  for (const ElementLayer& layer : ElementLayers()) Elements(layer);
  Circles();
  if (ormel_.solution.ValidSolution) {
    for (const ResultLayer& layer : ResultLayers()) Results(layer);
    Contours();
    Pathlines();
    Tics();
    AreaPathlines();
  } else {
    outcome_.remarks.emplace_back("There are no valid results: only the model was written.");
  }
  if (!ProjectCrs(ormel_)) outcome_.remarks.emplace_back("The coordinate reference system is not known.");
  if (!Stopped()) writer_.Commit();
  return std::move(outcome_);
}

}  // namespace

std::string ExportOutcome::Text() const {
  if (cancelled) return "The export was cancelled: no file was written.";
  std::string text;
  for (const auto& [name, count] : layers) text += name + ": " + std::to_string(count) + "\n";
  for (const std::string& remark : remarks) text += remark + "\n";
  return text.empty() ? "The project holds nothing to export." : text.substr(0, text.size() - 1);
}

ExportOutcome ExportGeoPackage(Ormel& ormel, const GeoPackageExport& request) {
  return Exporter(ormel, request).Run();
}

}  // namespace ormel
