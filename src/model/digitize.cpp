#include "model/digitize.h"

#include <array>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "model/vertices.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr int kArrow = 0, kCross = 2;

struct PolygonElement {
  Element element;
  const char* table;
};
constexpr std::array kPolygonElements{
    PolygonElement{Element::kLinesink, "LinesinkStrings"}, PolygonElement{Element::kBarrier, "NoFlowStrings"},
    PolygonElement{Element::kInhomogeneity, "Inhomogeneities"},
    PolygonElement{Element::kFluxLine, "FluxInspect"}, PolygonElement{Element::kCapzone, "Capzones"}};

}  // namespace

bool RunEdit(Ormel& ormel, std::string_view name, const std::function<void()>& body) {
  return RunCommand(ormel, name, [&] {
    try {
      const Named named(ormel, name);
      body();
    } catch (...) {
      EndPlacing(ormel);
      throw;
    }
  });
}

MapPoint LastClick(const Ormel& ormel) {
  return {ormel.mouse.LastX, ormel.mouse.LastY};
}

void BeginPlacing(Ormel& ormel, Element element, std::string_view activity, std::string_view feedback) {
  ormel.view().TurnOffMenus();
  ormel.mouse.MouseMode = MouseMode::kPlace;
  ormel.mouse.MouseElement = element;
  ormel.mouse.cursor = kCross;
  Activity(ormel, activity);
  Feedback(ormel, feedback);
}

void LeaveMouseMode(Ormel& ormel) {
  ormel.mouse.MouseMode = MouseMode::kSelect;
  ormel.mouse.MouseElement = Element::kNone;
  ormel.mouse.CurrentPID = kNoPolygon;
  ormel.mouse.LineInProgress = false;
  ormel.mouse.cursor = kArrow;
  SelectStatus(ormel);
}

void EndPlacing(Ormel& ormel) {
  LeaveMouseMode(ormel);
  ormel.view().TurnOnMenus();
}

void BeginDigitizing(Ormel& ormel, Element element, std::string_view activity) {
  ormel.view().TurnOffMenus();
  ormel.mouse.MouseMode = MouseMode::kDigitize;
  ormel.mouse.MouseElement = element;
  ormel.mouse.LineInProgress = false;
  ormel.mouse.cursor = kCross;
  Activity(ormel, activity);
  Feedback(ormel, "Click mouse at vertices -- right-click to end");
}

void DigitizePolygon(Ormel& ormel, Pid pid) {
  ormel.mouse.CurrentPID = pid;
  ormel.mouse.NextSeq = 1;
}

Vid AddDigitizedVertex(Ormel& ormel, Element element, MapPoint at) {
  const Vid vid = ElemAddVertex(ormel, at, ormel.mouse.CurrentPID, kAutomaticSeq);
  ormel.mouse.LineInProgress = true;
  ormel.view().DrawElement(element, vid, ormel.mouse.CurrentPID, DrawMode::kNormal);
  return vid;
}

Pid EndDigitizing(Ormel& ormel) {
  const Pid pid = ormel.mouse.CurrentPID;
  LeaveMouseMode(ormel);
  return pid;
}

void AbandonDigitizing(Ormel& ormel) {
  const char* table = PolygonTable(ormel.mouse.MouseElement);
  const bool digitizing = ormel.mouse.MouseMode == MouseMode::kDigitize && table != nullptr;
  const Pid pid = EndDigitizing(ormel);
  if (digitizing && pid != kNoPolygon && VerticesOf(ormel, pid).empty())
    DeletePolygonElement(ormel, table, pid);
  ormel.view().TurnOnMenus();
}

const char* PolygonTable(Element element) {
  for (const PolygonElement& entry : kPolygonElements)
    if (entry.element == element) return entry.table;
  return nullptr;
}

}  // namespace ormel
