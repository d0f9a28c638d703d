// render
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <utility>

#include "core/layers.h"
#include "core/status.h"
#include "ormelcmd/options.h"
#include "ormelcmd/toolkit.h"
#include "qtdevice/write_picture.h"
#include "shell/open_steps.h"
#include "solver/result_files.h"
#include "solver/solve_stamp.h"
#include "store/database.h"
#include "text/numbers.h"
#include "text/strings.h"
#include "view/map_output.h"
#include "view/map_view_impl.h"

namespace ormel {
namespace {

constexpr double kYear = 365.0;  // days

struct RenderOptions {
  std::string path, picture, size = "1600x1200", window, legend_at, overlay = "strength";
  std::vector<std::string> layers;
  int dpi = 96;
  double time_tics = 2 * kYear, elevation_tics = 0.0;
  bool no_results = false;
  MapSheet output;
};

constexpr Layer kUsualSwitches[] = {Layer::kTestPoints, Layer::kWellLabels, Layer::kWhpas};

std::string LayerNames() {
  std::string names;
  for (const LayerRow& row : LayerRows()) {
    if (row.kind != LayerKind::kMap) continue;
    if (!names.empty()) names += ", ";
    names += row.name;
  }
  return names;
}

std::vector<Layer> WantedLayers(const RenderOptions& given) {
  std::vector<Layer> wanted;
  for (const std::string& text : given.layers)
    for (const std::string& name : ParseString(text, ',')) {
      const LayerRow* row = FindLayer(name);
      if (row == nullptr)
        throw UserError("there is no layer \"" + name + "\"; the layers are " + LayerNames());
      wanted.push_back(row->layer);
    }
  return wanted;
}

/// A layer that was named brings those that it is made of, and the one that it belongs to.
bool IsWanted(const std::vector<Layer>& wanted, const LayerRow& row) {
  const auto named = [&wanted](Layer layer) {
    return std::find(wanted.begin(), wanted.end(), layer) != wanted.end();
  };
  const bool with_parent = row.usual && named(row.parent);
  const bool with_part = std::any_of(wanted.begin(), wanted.end(), [&](Layer part) {
    return RowOf(part).parent == row.layer || RowOf(RowOf(part).parent).parent == row.layer;
  });
  return named(row.layer) || with_parent || with_part;
}

void SwitchLayers(Ormel& ormel, const RenderOptions& given, bool solved) {
  const std::vector<Layer> wanted = WantedLayers(given);
  LayerSwitches& layers = ormel.layers;
  if (wanted.empty()) {  // as the project opens, with what explains it
    for (const Layer layer : kUsualSwitches) layers.Switch(layer, true);
    for (const Layer layer : {Layer::kLinesinkVertices, Layer::kDomainVertices}) layers.Switch(layer, false);
  } else {
    for (const LayerRow& row : LayerRows())
      if (row.kind == LayerKind::kMap) layers.Switch(row.layer, IsWanted(wanted, row));
  }
  if (!solved)
    for (const Layer layer : {Layer::kContours, Layer::kPathlines, Layer::kResultsOverlay})
      layers.Switch(layer, false);
  layers.Switch(Layer::kEditorGrid, false);
  layers.Switch(Layer::kTimeTics, given.time_tics > 0.0);
  ormel.solution.TimeTicSpacing = given.time_tics;
  layers.Switch(Layer::kElevationTics, given.elevation_tics > 0.0);
  ormel.solution.ElevationTicSpacing = given.elevation_tics;
}

struct OverlayRow {
  const char *word, *mode, *value;  ///< what its full width stands for
};
constexpr OverlayRow kOverlays[] = {
    {"strength", "Strength", "Discharge"},     {"error", "Head Error", "[Error]"},
    {"baseflow", "Baseflow", "Baseflow"},      {"streamflow", "Streamflow", "Baseflow+Overlandflow"},
    {"recharging", "Recharging", "Discharge"}, {"percolating", "Percolating", "Discharge"}};

/// As the window's dialog would set it, the largest value at the full width.
OverlaySettings OverlayOf(Ormel& ormel, const std::string& word) {
  const OverlayRow& row = *std::find_if(std::begin(kOverlays), std::end(kOverlays),
                                        [&](const OverlayRow& r) { return r.word == word; });
  const double largest =
      ormel.db().Scalar("select max(abs(" + std::string(row.value) + ")) from LSResults").AsDouble();
  return {row.mode, largest > 0.0 ? largest : 1.0};
}

/// "1600x1200"
void ParseSize(const std::string& text, PictureSize& size) {
  constexpr int kLargest = 20000;
  const std::vector<std::string> sides = ParseString(text, 'x');
  try {
    if (sides.size() != 2) throw std::invalid_argument(text);
    size.width = std::stoi(sides[0]);
    size.height = std::stoi(sides[1]);
  } catch (const std::exception&) {
    throw UserError("--size takes WIDTHxHEIGHT in pixels, such as 1600x1200, not \"" + text + "\"");
  }
  if (size.width < 16 || size.height < 16 || size.width > kLargest || size.height > kLargest)
    throw UserError("--size: each side must be between 16 and 20000 pixels");
}

void ParseLegendPlace(const std::string& text, MapSheet& sheet) {
  constexpr std::array kCorners{
      std::pair{"lower-right", LegendCorner::kLowerRight}, std::pair{"upper-left", LegendCorner::kUpperLeft},
      std::pair{"lower-left", LegendCorner::kLowerLeft}, std::pair{"upper-right", LegendCorner::kUpperRight},
      std::pair{"beside", LegendCorner::kBeside}};
  if (text.empty()) return;
  sheet.legend = true;
  for (const auto& [name, corner] : kCorners)
    if (text == name) {
      sheet.legend_corner = corner;
      return;
    }
  const std::vector<std::string> shares = ParseString(text, ',');
  const auto is_share = [](const std::string& s) { return IsNumeric(s) && Val(s) >= 0.0 && Val(s) <= 1.0; };
  if (shares.size() != 2 || !is_share(shares[0]) || !is_share(shares[1]))
    throw UserError(
        "--legend-at takes lower-right, upper-left, lower-left, upper-right, beside or two shares from 0 to "
        "1 such as 0.7,0.05, not \"" +
        text + "\"");
  sheet.legend_at = {Val(shares[0]), Val(shares[1])};
}

int Render(const CommonOptions& common, RenderOptions given) {
  PictureSize size;
  ParseSize(given.size, size);
  size.dpi = given.dpi;
  if (!given.window.empty()) given.output.window = ParseWindow(given.window);
  WantedLayers(given);
  ParseLegendPlace(given.legend_at, given.output);
  BatchOptions options = MakeBatchOptions(common);
  // A map is only looked at: a project that cannot be written is drawn all the same.
  for (const char* title : {"File is Read-only!", "Can't open database"})
    options.answers.push_back({title, "Yes", true});
  Session session(std::move(options));
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  const std::string reason = given.no_results ? "" : RestoreSolve(ormel);
  if (!reason.empty())
    throw UserError("there are no valid results to draw: " + reason + "; run: ormelcmd solve \"" +
                    given.path + "\", or draw without them by --no-results");
  if (const std::string notice = OlderModelNotice(ormel); !notice.empty()) session.ui().Say(notice);
  SwitchLayers(ormel, given, !given.no_results);
  if (ormel.layers.On(
          Layer::kResultsOverlay))  // without the window's dialog: what each line-sink takes or gives
    session.view().state().overlay = OverlayOf(ormel, given.overlay);

  const Toolkit toolkit;
  bool drawn = false;
  const std::string failure = WritePicture(FullPath(ormel, given.picture), size, [&](DrawingDevice& device) {
    drawn = DrawMapOutput(ormel, session.view().state(), device, given.output);
    const std::vector<std::string>& faults = ResultFilesOf(ormel).faults();
    if (!faults.empty())
      throw UserError("no picture was written, since results are missing in it: " + faults.front());
  });
  if (!failure.empty()) throw UserError(failure);
  if (!drawn) throw UserError("the map found no room in a picture of this size");
  return session.Finish();
}

}  // namespace

void ShowUsualLayers(Ormel& ormel, bool solved) {
  SwitchLayers(ormel, RenderOptions{}, solved);
}

void AddRenderCommand(CLI::App& app, Program& program) {
  auto given = std::make_shared<RenderOptions>();
  CLI::App* command = app.add_subcommand("render", "Draw the map into a file");
  command->add_option("project", given->path, "The project")->required();
  command->add_option("picture", given->picture, "Path of the picture: .png, .svg or .pdf")->required();
  command->add_option("--size", given->size, "WIDTHxHEIGHT in pixels")->capture_default_str();
  command->add_option("--dpi", given->dpi, "Pixels per inch: weight of lines and letters")
      ->check(CLI::Range(20, 1200))
      ->capture_default_str();
  command->add_option("--window", given->window,
                      "left,bottom,right,top in map units; otherwise the project's window");
  command->add_option("--layers", given->layers, "Only these layers, separated by commas: " + LayerNames());
  std::set<std::string> overlays;
  for (const OverlayRow& row : kOverlays) overlays.insert(row.word);
  command
      ->add_option("--overlay", given->overlay, "What the layer overlay shows of head-specified line-sinks")
      ->check(CLI::IsMember(overlays))
      ->capture_default_str();
  command->add_option("--time-tics", given->time_tics, "Days between the marks on pathlines, 0 for none")
      ->capture_default_str();
  command->add_option("--elevation-tics", given->elevation_tics,
                      "Elevation between the marks on pathlines, 0 for none");
  command->add_option("--title", given->output.title, "Title above the map");
  command->add_flag("--legend", given->output.legend, "Legend of the layers shown");
  command->add_option(
      "--legend-at", given->legend_at,
      "Place of the legend: lower-right, upper-left, lower-left, upper-right, beside; or X,Y, its upper "
      "left corner as shares of the map; otherwise where it hides least of zones and wells");
  command->add_flag("--scale-bar", given->output.scale_bar, "Scale bar in map units");
  command->add_flag("--north-arrow", given->output.north_arrow, "North arrow");
  command->add_flag("--no-results", given->no_results, "Draw the elements only; the model may be unsolved");
  command->footer(
      "Contours and pathlines are drawn only while they belong to the model as it stands: a solve counts as\n"
      "long as the model is the one that was solved and the files of the run are those that it wrote.  The\n"
      "file <base name>.RUN beside them records both.  Windows, colours and margins may change.");
  command->callback(
      [&program, given] { program.run = [&program, given] { return Render(program.common, *given); }; });
}

}  // namespace ormel
