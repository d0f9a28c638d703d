#include "basemaps/bbm_groups.h"

#include <algorithm>

#include "basemaps/base_map_forms.h"
#include "basemaps/catalogue.h"
#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/digitize.h"

namespace ormel {
namespace {

bool Holds(const Extents& box, double x, double y) {
  return y >= box.y_min && y <= box.y_max && x >= box.x_min && x <= box.x_max;
}

}  // namespace

void SelectBBMGroup(Ormel& ormel) {
  const Named named(ormel, "SelectBBMGroup");
  const auto& maps = BaseMapsOf(ormel).maps;
  if (std::none_of(maps.begin(), maps.end(), [](const auto& map) { return map->bbm != nullptr; }))
    return Inform(ormel, "Select", "No BBM Maps are loaded in current project!");
  ormel.view().ElemTurnOffSelection();
  BaseMapsOf(ormel).group.clear();
  BeginPlacing(ormel, Element::kBaseMapSelection, "Select BBM Group",
               "Click mouse on map to select a group of bbm maps");
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

void BBMSelect(Ormel& ormel) {
  const Named named(ormel, "BBMSelect");
  BaseMaps& all = BaseMapsOf(ormel);
  all.group.clear();
  for (const auto& map : all.maps) {
    const auto box = map->bbm != nullptr ? map->Bounds() : std::nullopt;
    if (box && Holds(*box, ormel.mouse.LastX, ormel.mouse.LastY)) all.group.push_back(map->name);
  }
  if (all.group.empty()) return;
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  BBMGroup form(ormel, all.group);
  ormel.ui().ShowForm(form);
  if (form.removed()) {
    Extents bounds;
    LoadBaseMaps(ormel, bounds);
  }
  if (form.Result == BBMGroup::kDone) EndPlacing(ormel);
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

std::vector<BbmOutline> BbmOutlines(Ormel& ormel) {
  std::vector<BbmOutline> outlines;
  if (ormel.mouse.MouseMode != MouseMode::kPlace || ormel.mouse.MouseElement != Element::kBaseMapSelection)
    return outlines;
  const BaseMaps& all = BaseMapsOf(ormel);
  for (const auto& map : all.maps)
    if (const auto box = map->bbm != nullptr ? map->Bounds() : std::nullopt)
      outlines.push_back({*box, std::find(all.group.begin(), all.group.end(), map->name) != all.group.end()});
  return outlines;
}

}  // namespace ormel
