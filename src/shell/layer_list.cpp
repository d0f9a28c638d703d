#include "shell/layer_list.h"

#include <algorithm>
#include <array>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "shell/menus.h"

namespace ormel {
namespace {

struct SymbolRow {
  Layer layer;
  StyleId symbol;
};
constexpr std::array kSymbols{SymbolRow{Layer::kContours, StyleId::kContour},
                              SymbolRow{Layer::kPathlines, StyleId::kPathline},
                              SymbolRow{Layer::kTestPoints, StyleId::kTestPointAbove},
                              SymbolRow{Layer::kResultsOverlay, StyleId::kOverlayGains},
                              SymbolRow{Layer::kCapzones, StyleId::kCapzone},
                              SymbolRow{Layer::kHydrographyLabels, StyleId::kTextLabel},
                              SymbolRow{Layer::kHypsographyLabels, StyleId::kMapLabel},
                              SymbolRow{Layer::kLinesinkVertices, StyleId::kVertex},
                              SymbolRow{Layer::kDomainVertices, StyleId::kDomainVertex},
                              SymbolRow{Layer::kWhpas, StyleId::kWhpaCircle},
                              SymbolRow{Layer::kWellLabels, StyleId::kWellLabel},
                              SymbolRow{Layer::kUniformFlow, StyleId::kUniformFlow},
                              SymbolRow{Layer::kWells, StyleId::kWell},
                              SymbolRow{Layer::kLinesinks, StyleId::kLinesinkHead},
                              SymbolRow{Layer::kBarriers, StyleId::kBarrier},
                              SymbolRow{Layer::kDomains, StyleId::kDomain},
                              SymbolRow{Layer::kStreamBoundaries, StyleId::kStreamBoundary},
                              SymbolRow{Layer::kParticles, StyleId::kParticle},
                              SymbolRow{Layer::kFluxLines, StyleId::kFluxLine},
                              SymbolRow{Layer::kTextLabels, StyleId::kTextLabel},
                              SymbolRow{Layer::kTracedLines, StyleId::kTracedLine}};

std::optional<StyleId> SymbolOf(Layer layer) {
  for (const SymbolRow& row : kSymbols)
    if (row.layer == layer) return row.symbol;
  return std::nullopt;
}

/// The menu item that does more than switch; null for a layer without one.
const MenuItem* ItemOf(Layer layer) {
  for (const MenuItem& item : MenuItems())
    if (item.run != nullptr && LayerOf(item.control, item.index) == layer) return &item;
  return nullptr;
}

std::string CaptionOf(const LayerRow& row) {
  std::string text(row.caption);
  std::erase(text, '&');
  constexpr std::string_view kShow = "Show ", kMore = "...";
  if (text.starts_with(kShow)) text.erase(0, kShow.size());
  if (text.ends_with(kMore)) text.resize(text.size() - kMore.size());
  return text;
}

ListedLayer Listed(const Ormel& ormel, const LayerRow& row, int depth) {
  ListedLayer item{.layer = row.layer,
                   .depth = depth,
                   .caption = CaptionOf(row),
                   .symbol = SymbolOf(row.layer),
                   .on = ormel.layers.On(row.layer),
                   .offered = ormel.project.ProjectOpen && ormel.layers.Offered(row.layer),
                   .why = {}};
  if (const MenuItem* menu = ItemOf(row.layer); menu != nullptr) {
    item.offered = ItemEnabled(ormel, *menu);
    if (!item.offered) item.why = ItemTip(ormel, *menu);
  }
  return item;
}

void AddWithParts(const Ormel& ormel, const LayerRow& row, int depth, std::vector<ListedLayer>& list) {
  list.push_back(Listed(ormel, row, depth));
  for (const LayerRow& part : LayerRows())
    if (part.kind == LayerKind::kMap && part.parent == row.layer && part.layer != row.layer)
      AddWithParts(ormel, part, depth + 1, list);
}

}  // namespace

std::vector<ListedLayer> LayerList(const Ormel& ormel) {
  std::vector<ListedLayer> list;
  for (const LayerRow& row : LayerRows())
    if (row.kind == LayerKind::kMap && row.parent == row.layer) AddWithParts(ormel, row, 0, list);
  return list;
}

void SwitchLayer(Ormel& ormel, Layer layer) {
  if (const MenuItem* item = ItemOf(layer)) {
    Dispatch(ormel, item->control, item->index);
    return;
  }
  RunCommand(ormel, "SwitchLayer", [&] {
    ormel.layers.Toggle(layer);
    ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

}  // namespace ormel
