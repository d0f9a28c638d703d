// Copy and paste of elements.
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "core/window_commands.h"
#include "document/element_text.h"
#include "model/dialog.h"
#include "model/digitize.h"
#include "model/observations.h"
#include "model/selection.h"
#include "model/several.h"
#include "model/vertices.h"
#include "model/wells.h"
#include "store/database.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr const char* kTitle = "Paste";

bool Metres(Ormel& ormel, const char* field) {
  return ormel.db().Scalar("select " + std::string(field) + " from Model").AsBool();
}

/// Nothing when the elements fit into the project, else why they do not.
std::string WhyNot(Ormel& ormel, const CopiedElements& copied) {
  if (copied.elements.empty()) return "The clipboard holds no elements.";
  if (copied.basemap_meters != Metres(ormel, "BasemapMeters") ||
      copied.compute_meters != Metres(ormel, "ComputeMeters"))
    return "The elements were copied in a project with other units of length.  Their numbers would mean "
           "something else here.  Nothing was pasted.";
  for (const CopiedElement& element : copied.elements) {
    if (element.kind->element != Element::kWell) continue;
    if (IsMirror(element.Label()))
      return "The well \"" + element.Label() + "\" is the image of another one.  Nothing was pasted.";
    for (const CopiedField& field : element.fields)
      if (EqualNoCase(field.name, "Radius") && !(field.value.AsDouble() > 0.0))
        return "The radius of the well \"" + element.Label() + "\" is not above 0.  Nothing was pasted.";
  }
  return {};
}

bool WellsFit(Ormel& ormel, const CopiedElements& copied) {
  std::int64_t wells = ormel.db().RowCount("Wells");
  for (const CopiedElement& element : copied.elements) {
    if (element.kind->element != Element::kWell) continue;
    // Each as if it were added alone: the one above the limit is still accepted.
    if (wells++ <= kWellLimit) continue;
    Inform(ormel, "Maximum well limit reached!",
           Lines({"Ormel only allows for up to 2000 wells in a single model.", "Nothing was pasted."}));
    return false;
  }
  return true;
}

MapPoint Moved(MapPoint at, MapPoint by) {
  return {at.x + by.x, at.y + by.y};
}

bool AllFree(const FreePlaces& places, const CopiedElements& copied, MapPoint by) {
  for (const CopiedElement& element : copied.elements)
    for (const MapPoint& at : element.points)
      if (element.kind->shape != Shape::kFree && places.Taken(Moved(at, by))) return false;
  return true;
}

/// The middle of all points.
MapPoint MiddleOf(const CopiedElements& copied) {
  Extents box{HUGE_VAL, -HUGE_VAL, HUGE_VAL, -HUGE_VAL};
  for (const CopiedElement& element : copied.elements) {
    for (const MapPoint& at : element.points) {
      box = {std::min(box.x_min, at.x), std::max(box.x_max, at.x), std::min(box.y_min, at.y),
             std::max(box.y_max, at.y)};
    }
  }
  return {0.5 * (box.x_min + box.x_max), 0.5 * (box.y_min + box.y_max)};
}

/// The way from where they were copied to a place where no vertex lies on another one: where they were, when
/// that is in the window, else its middle; then in steps to the lower right.  False when all are taken.
bool FindPlace(Ormel& ormel, const CopiedElements& copied, MapPoint& by) {
  constexpr int kMostSteps = 500;
  const MapRect& window = ormel.window.SolveWindow;
  const MapPoint middle = MiddleOf(copied);
  by = {};
  if (middle.x < window.x1 || middle.x > window.x2 || middle.y < window.y2 || middle.y > window.y1)
    by = {0.5 * (window.x1 + window.x2) - middle.x, 0.5 * (window.y1 + window.y2) - middle.y};
  const double step = 0.02 * std::min(window.Width(), window.Height());
  const FreePlaces places(ormel);
  for (int i = 0; i < kMostSteps; ++i, by = Moved(by, {step, -step}))
    if (AllFree(places, copied, by)) return true;
  return false;
}

std::vector<ElementId> Add(Ormel& ormel, CopiedElements& copied, MapPoint by) {
  std::vector<ElementId> ids;
  for (CopiedElement& element : copied.elements) {
    for (MapPoint& at : element.points) at = Moved(at, by);
    if (element.kind->unique_label) element.SetLabel(FreeLabel(ormel, element.kind->table, element.Label()));
    ids.push_back(AddElement(ormel, element));
  }
  return ids;
}

void AfterPaste(Ormel& ormel, const CopiedElements& copied) {
  bool flux = false, particles = false;
  for (const CopiedElement& element : copied.elements) {
    flux = flux || element.kind->element == Element::kFluxLine;
    particles = particles || element.kind->element == Element::kParticle;
  }
  TurnOnLayer(ormel, Layer::kElements);
  if (particles) PathlinesOutdated(ormel);
  if (flux)
    Inform(ormel, "Please Note", "To inspect results for the new inspection line, you must re-run the model");
}

void Paste(Ormel& ormel, const std::string& text) {
  CopiedElements copied;
  try {
    copied = ReadElementText(text);
  } catch (const ElementTextError& error) {
    return Inform(ormel, kTitle,
                  "The elements on the clipboard cannot be read, " + std::string(error.what()) +
                      ".  Nothing was pasted; copy them again.");
  }
  if (const std::string why = WhyNot(ormel, copied); !why.empty()) return Inform(ormel, kTitle, why);
  if (!WellsFit(ormel, copied)) return;
  MapPoint by;
  if (!FindPlace(ormel, copied, by))
    return Inform(ormel, kTitle,
                  "There is no place in view where no vertex would lie on another one.  Nothing was pasted; "
                  "move the window and paste again.");
  std::vector<ElementId> ids;
  Transaction all(ormel.db());
  try {
    ids = Add(ormel, copied, by);
  } catch (...) {
    all.Rollback();
    throw;
  }
  all.Commit();
  SelectItems(ormel, ids);
  Feedback(ormel,
           std::to_string(ids.size()) + (ids.size() == 1 ? " element was" : " elements were") + " pasted");
  AfterPaste(ormel, copied);
}

}  // namespace

void EditCopy(Ormel& ormel) {
  RunCommand(ormel, "EditCopy", [&] {
    std::vector<ElementId> ids = SelectedElements(ormel);
    std::erase_if(
        ids, [&](const ElementId& id) { return !MayBeOneOfSeveral(id.element) || IsImageWell(ormel, id); });
    if (ids.empty()) return Inform(ormel, "Copy", "No element is selected that can be copied.");
    ormel.ui().CopyText(ElementsAsText(ormel, ids));
    Feedback(ormel,
             std::to_string(ids.size()) + (ids.size() == 1 ? " element was" : " elements were") + " copied");
  });
}

void EditPaste(Ormel& ormel) {
  RunEdit(ormel, "EditPaste", [&] {
    const std::string text =
        ormel.ports.window == nullptr ? std::string() : ormel.ports.window->ClipboardText();
    if (!IsElementText(text)) return Inform(ormel, kTitle, "The clipboard holds no elements.");
    Paste(ormel, text);
  });
}

}  // namespace ormel
