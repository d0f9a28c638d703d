#include "model/digitize.h"

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "document/document.h"
#include "document/kinds.h"
#include "model/vertices.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr int kArrow = 0, kCross = 2;

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

Vid AddDigitizedVertex(Ormel& ormel, MapPoint at) {
  const Vid vid = ElemAddVertex(ormel, at, ormel.mouse.CurrentPID, kAutomaticSeq);
  ormel.mouse.LineInProgress = true;
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

bool TakeBackVertex(Ormel& ormel) {
  return RunEdit(ormel, "TakeBackVertex", [&] {
    Document* document = ormel.ports.document;
    if (document == nullptr || document->UndoPart().rows.empty()) return;
    const std::vector<VertexRow> left = VerticesOf(ormel, ormel.mouse.CurrentPID);
    ormel.mouse.LineInProgress = !left.empty();
    ormel.mouse.NextSeq = left.empty() ? 1 : left.back().seq + 100;
  });
}

const char* PolygonTable(Element element) {
  const ElementKind* kind = FindKind(element);
  return kind != nullptr && kind->Polygon() ? kind->table.data() : nullptr;
}

}  // namespace ormel
