// The layers of the map and the other switches of its picture, by name.
//
// A new layer is an enumerator here, its row in the table of layers.cpp, and a row with its drawing function
// in view/redraw.cpp.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "core/layer_switches.h"

namespace ormel {

struct Ormel;

enum class Layer : int {
  kElements,
  kContours,
  kPathlines,
  kTestPoints,
  kResultsOverlay,
  kCapzones,
  kHydrographyLabels,
  kHypsographyLabels,
  kLinesinkVertices,
  kDomainVertices,
  kWhpas,
  kWellLabels,
  kHaze,
  kBasemaps,
  kUniformFlow,
  kWells,
  kLinesinks,
  kBarriers,
  kDomains,
  kStreamBoundaries,
  kParticles,
  kFluxLines,
  kTextLabels,
  kTracedLines,
  kTimeTics,
  kElevationTics,
  kTestText,
  kTestScaled,
  kTestScale5,
  kTestScale10,
  kTestScale20,
  kEditorGrid,
  kToolbar,
  kManualRedraw,
  kCount
};

/// What a layer is for.
enum class LayerKind {
  kMap,     ///< something on the map: can be drawn by its name
  kDetail,  ///< how another layer is drawn
  kWindow,  ///< part of the window, not of the map
};

/// What a layer's switch stands on before it can be used.
enum class LayerNeeds {
  kNothing,
  kRows,             ///< the statement `rows` counts more than none
  kSolution,         ///< a valid solution
  kSolutionOrAreas,  ///< a valid solution, or traced protection areas, which have results of their own
};

struct LayerRow {
  Layer layer;
  std::string_view name;     ///< on a command line
  std::string_view caption;  ///< as menus and panels show it, "&" before its mnemonic
  std::string_view control;  ///< the menu item that switches it, "" when there is none
  int index = 0;
  Layer parent;  ///< drawn only while this one is on too; the layer itself when it depends on none
  LayerKind kind;
  bool usual;       ///< on in a project that opens, when it has something to show
  bool by_project;  ///< set anew for each project that opens; otherwise the user's choice stays
  LayerNeeds needs;
  const char* rows;    ///< counts what the project has of it; null when that is not asked
  const char* wanted;  ///< setting of the project that replaces `usual`; null for none
};

std::span<const LayerRow> LayerRows();
const LayerRow& RowOf(Layer layer);
/// By the name on a command line; null when there is none.
const LayerRow* FindLayer(std::string_view name);
/// The layer that a menu item switches.
std::optional<Layer> LayerOf(std::string_view control, int index);
/// An item of the menu of layers by its number, 1 to 13; nothing for those that are commands or submenus.
std::optional<Layer> layermenu(int index);

/// On, and so are the layers that it belongs to.
bool Shown(const Ormel& ormel, Layer layer);
/// Enabled and on: an element of the layer has been made.
void TurnOnLayer(Ormel& ormel, Layer layer);
/// Neither.
void TurnOffLayer(Ormel& ormel, Layer layer);
void SetLayer(Ormel& ormel, Layer layer, bool on);

/// Offers each layer that the open project has something for.  `fresh`: the project was just opened, and its
/// switches are set as they usually stand; otherwise the user's choice stays, and a layer that could show
/// nothing before is switched on.
void OfferLayers(Ormel& ormel, bool fresh);

/// Items of `layermenu`, by their number.
enum LayerItem : int {
  kLayerElements = 1,
  kLayerContours = 2,
  kLayerPathlines = 3,
  kLayerTestPoints = 4,
  kLayerResultsOverlay = 5,
  kLayerWhpas = 6,
  kLayerHydrographyLabels = 7,
  kLayerHypsographyLabels = 8,
  kLayerShowVertices = 9,
  kLayerToolbar = 10,
  kLayerRefresh = 11,
  kLayerManualRedraw = 12,
  kLayerBaseMap = 13,
};

}  // namespace ormel
