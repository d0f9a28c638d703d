#include "model/undo.h"

#include "core/map_view.h"
#include "core/ormel.h"
#include "core/project.h"
#include "document/document.h"
#include "document/fingerprint.h"
#include "model/delete.h"
#include "model/digitize.h"
#include "model/validity.h"

namespace ormel {
namespace {

void Step(Ormel& ormel, ChangeRecord (Document::*go)()) {
  Document* document = ormel.ports.document;
  if (document == nullptr) return;
  // What is selected may be gone in a moment.
  ormel.view().ElemTurnOffSelection();
  const Fingerprint before = FingerprintOf(ormel);
  const ChangeRecord record = (document->*go)();
  if (record.rows.empty()) return;
  if (record.Touches("Project") || record.Touches("Model")) ReadProjectState(ormel);
  if (record.Touches("WHPAs")) ReadWhpaState(ormel);
  MatchSolution(ormel, before);
  ormel.view().SetUpLayers();
  ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

}  // namespace

void EditUndo(Ormel& ormel) {
  RunEdit(ormel, "EditUndo", [&] { Step(ormel, &Document::Undo); });
}

void EditRedo(Ormel& ormel) {
  RunEdit(ormel, "EditRedo", [&] { Step(ormel, &Document::Redo); });
}

}  // namespace ormel
