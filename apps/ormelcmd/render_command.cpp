// render
#include <CLI/CLI.hpp>
#include <array>
#include <memory>

#include "core/menu_state.h"
#include "ormelcmd/options.h"
#include "ormelcmd/toolkit.h"
#include "qtdevice/write_picture.h"
#include "shell/open_steps.h"
#include "shell/solve_stamp.h"
#include "text/strings.h"
#include "view/map_output.h"
#include "view/map_view_impl.h"

namespace ormel {
namespace {

constexpr double kYear = 365.0;  // days

struct RenderOptions {
  std::string path, picture, size = "1600x1200", window;
  std::vector<std::string> layers;
  int dpi = 96;
  double time_tics = 2 * kYear, elevation_tics = 0.0;
  bool no_results = false;
  MapSheet output;
};

/// A layer by its name on the command line: the menu item that switches it.
struct LayerName {
  std::string_view name, control;
  int index;
  bool usual;    ///< drawn when --layers is not given, if there is anything to draw
  bool results;  ///< needs a solved model
};
constexpr std::array kLayers{
    LayerName{"elements", "layermenu", kLayerElements, true, false},
    LayerName{"contours", "layermenu", kLayerContours, true, true},
    LayerName{"pathlines", "layermenu", kLayerPathlines, true, true},
    LayerName{"testpoints", "TESTDISPLAY", kTestShow, true, false},
    LayerName{"welllabels", "ShowWellLabels", 0, true, false},
    LayerName{"whpas", "ShowWHPAs", 0, true, false},
    LayerName{"capzones", "layermenu", kLayerWhpas, true, false},
    LayerName{"hydrography", "layermenu", kLayerHydrographyLabels, true, false},
    LayerName{"linesinkvertices", "ShowVertices", kLinesinkVertices, false, false},
    LayerName{"domainvertices", "ShowVertices", kInhomogeneityVertices, false, false},
};

const LayerName* FindLayer(std::string_view name) {
  for (const LayerName& layer : kLayers)
    if (layer.name == name) return &layer;
  return nullptr;
}

std::string LayerNames() {
  std::string names;
  for (const LayerName& layer : kLayers) {
    if (!names.empty()) names += ", ";
    names += layer.name;
  }
  return names;
}

std::vector<std::string> WantedLayers(const RenderOptions& given) {
  std::vector<std::string> wanted;
  for (const std::string& text : given.layers)
    for (const std::string& name : ParseString(text, ',')) {
      if (FindLayer(name) == nullptr)
        throw UserError("there is no layer \"" + name + "\"; the layers are " + LayerNames());
      wanted.push_back(name);
    }
  return wanted;
}

void SwitchLayers(Ormel& ormel, const RenderOptions& given, bool solved) {
  const std::vector<std::string> wanted = WantedLayers(given);
  const auto named = [&wanted](const LayerName& layer) {
    return std::find(wanted.begin(), wanted.end(), layer.name) != wanted.end();
  };
  MenuState& menus = ormel.menus;
  for (const LayerName& layer : kLayers) {
    if (layer.control == "layermenu" && wanted.empty()) continue;  // as the project opens
    const bool on = wanted.empty() ? layer.usual : named(layer);
    menus.Check(layer.control, layer.index, on && (solved || !layer.results));
  }
  menus.Check("layermenu", kLayerTestPoints, menus.Checked("TESTDISPLAY", kTestShow));
  menus.Check("EDITORGRID", kGridShow, false);
  menus.Check("TMARKS", kTimeMarksShow, given.time_tics > 0.0);
  ormel.solution.TimeTicSpacing = given.time_tics;
  menus.Check("ZMARKS", kElevationMarksShow, given.elevation_tics > 0.0);
  ormel.solution.ElevationTicSpacing = given.elevation_tics;
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

int Render(const CommonOptions& common, RenderOptions given) {
  PictureSize size;
  ParseSize(given.size, size);
  size.dpi = given.dpi;
  if (!given.window.empty()) given.output.window = ParseWindow(given.window);
  WantedLayers(given);
  Session session(MakeBatchOptions(common));
  session.OpenProject(given.path);
  Ormel& ormel = session.ormel();
  const std::string reason = given.no_results ? "" : RestoreSolve(ormel);
  if (!reason.empty())
    throw UserError("there are no valid results to draw: " + reason + "; run: ormelcmd solve \"" +
                    given.path + "\", or draw without them by --no-results");
  SwitchLayers(ormel, given, !given.no_results);

  const Toolkit toolkit;
  bool drawn = false;
  const std::string failure = WritePicture(FullPath(ormel, given.picture), size, [&](DrawingDevice& device) {
    drawn = DrawMapOutput(ormel, session.view().state(), device, given.output);
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
  command->add_option("--time-tics", given->time_tics, "Days between the marks on pathlines, 0 for none")
      ->capture_default_str();
  command->add_option("--elevation-tics", given->elevation_tics,
                      "Elevation between the marks on pathlines, 0 for none");
  command->add_option("--title", given->output.title, "Title above the map");
  command->add_flag("--legend", given->output.legend, "Legend of the layers shown");
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
