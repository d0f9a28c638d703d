#include "model/several.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "document/elements.h"
#include "model/crossing.h"
#include "model/digitize.h"
#include "model/image_wells.h"
#include "model/move.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "model/wells.h"

namespace ormel {
namespace {

bool AnyOf(const std::vector<ElementId>& ids, Element element) {
  return std::any_of(ids.begin(), ids.end(), [&](const ElementId& id) { return id.element == element; });
}

/// Labels of a class that is not shown cannot be pointed at either.
bool InSight(Ormel& ormel, const ElementId& id) {
  TextLabelRow label;
  if (id.element != Element::kTextLabel || !FindTextLabel(ormel, id.key, label)) return true;
  return label.type == LabelType::kPermanent || ormel.layers.On(Layer::kHydrographyLabels);
}

std::vector<ElementId> SightOnly(Ormel& ormel, std::vector<ElementId> ids) {
  std::erase_if(ids, [&](const ElementId& id) { return !InSight(ormel, id); });
  return ids;
}

/// What is in exactly one of the two.
std::vector<ElementId> Toggled(const std::vector<ElementId>& selected, const std::vector<ElementId>& others) {
  std::vector<ElementId> ids;
  std::set_symmetric_difference(selected.begin(), selected.end(), others.begin(), others.end(),
                                std::back_inserter(ids));
  std::erase_if(ids, [](const ElementId& id) { return !MayBeOneOfSeveral(id.element); });
  return ids;
}

/// The vertices that a move takes along, each once.
std::set<Vid> VerticesToMove(Ormel& ormel, const std::vector<ElementId>& ids) {
  std::set<Vid> vids;
  for (const ElementId& id : ids) {
    if (IsImageWell(ormel, id)) continue;
    for (const Vid vid : VertexIdsOf(ormel, id)) {
      vids.insert(vid);
      if (id.element != Element::kInhomogeneity) continue;
      const std::vector<Vid> shared = SharedCorners(ormel, vid);
      vids.insert(shared.begin(), shared.end());
    }
  }
  return vids;
}

/// The selected wells with a protection area, by their labels.
std::vector<std::string> WellsWithAreas(Ormel& ormel, const std::vector<ElementId>& ids) {
  std::vector<std::string> labels;
  WellRow row;
  for (const ElementId& id : ids)
    if (id.element == Element::kWell && FindWell(ormel, id.key, row) && !IsMirror(row.Label) &&
        HasProtectionArea(ormel, row.Label))
      labels.push_back(row.Label);
  return labels;
}

}  // namespace

void EditSelectAll(Ormel& ormel) {
  RunCommand(ormel, "EditSelectAll", [&] { SelectItems(ormel, SightOnly(ormel, AllElements(ormel))); });
}

void SelectWithin(Ormel& ormel, const Extents& box, bool add) {
  const std::vector<ElementId> found = SightOnly(ormel, ElementsWithin(ormel, box));
  SelectItems(ormel, add ? Toggled(SelectedElements(ormel), found) : found);
}

void ToggleSelected(Ormel& ormel, MapPoint at) {
  const ElementId found = ElementAt(ormel, at);
  if (found.element == Element::kNone || !MayBeOneOfSeveral(found.element)) return;
  SelectItems(ormel, Toggled(SelectedElements(ormel), {found}));
}

void MoveSelected(Ormel& ormel, MapPoint by) {
  const Named named(ormel, "MoveSelected");
  const std::vector<ElementId> ids = SelectedElements(ormel);
  const std::set<Vid> vids = VerticesToMove(ormel, ids);
  if (RefuseCrossingMoves(ormel, vids, by)) return;
  VertexRow vertex;
  for (const Vid vid : vids)
    if (FindVertex(ormel, vid, vertex)) PutVertex(ormel, vid, {vertex.at.x + by.x, vertex.at.y + by.y});
  for (const ElementId& id : ids) {
    if (id.element != Element::kTextLabel) continue;
    for (const MapPoint& at : PointsOf(ormel, id)) MoveTextLabel(ormel, id.key, {at.x + by.x, at.y + by.y});
  }
  if (AnyOf(ids, Element::kWell)) RemakeImageWells(ormel);
  if (AnyOf(ids, Element::kFluxLine)) TellFluxLineMoved(ormel);
}

void DeleteSelected(Ormel& ormel) {
  const std::vector<ElementId> ids = SelectedElements(ormel);
  const std::string question = "Delete the " + std::to_string(ids.size()) + " selected elements?";
  if (!AskOkCancel(ormel, "Confirm", question, Icon::kQuestion)) return;
  if (!AskToRemoveAreas(ormel, WellsWithAreas(ormel, ids))) return;
  for (const ElementId& id : ids) RemoveElement(ormel, id);
  ClearSelection(ormel);
  SelectStatus(ormel);
  // As with a line that is deleted alone.
  if (AnyOf(ids, Element::kFluxLine)) InvalidateSolution(ormel, true, true);
}

}  // namespace ormel
