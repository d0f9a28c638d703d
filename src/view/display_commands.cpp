#include "view/display_commands.h"

#include <cmath>
#include <optional>
#include <string>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "store/database.h"
#include "text/numbers.h"
#include "view/map_view_impl.h"
#include "view/results_overlay.h"

namespace ormel {
namespace {

void AskSpacing(Ormel& ormel) {
  const double present = ormel.db().Scalar("select EDITGRIDSpacing from Model").AsDouble();
  const std::optional<std::string> text =
      ormel.ui().Ask(InputBox{"Editor Grid Settings", "Enter new grid spacing:", NumberText(present)});
  if (!text || text->empty()) return;
  const double spacing = Val(*text);
  if (!IsNumeric(*text) || !(spacing > 0.0) || !std::isfinite(spacing)) {
    Inform(ormel, "Illegal Value", "The grid spacing must be a number greater than 0.  It stays as it was.");
    return;
  }
  ormel.db().Execute("update Model set EDITGRIDSpacing=?", {spacing});
}

}  // namespace

void ResultsOverlayCommand(Ormel& ormel) {
  RunCommand(ormel, "layermenu_Click", [&] {
    auto* view = dynamic_cast<MapViewImpl*>(&ormel.view());
    if (view == nullptr) return;  // a test's map
    ResultOverlay form(ormel, view->state().overlay);
    ormel.ui().ShowForm(form);
    if (form.Result != 1) return;
    view->state().overlay = form.Settings();
    ormel.layers.Switch(Layer::kResultsOverlay, view->state().overlay.LSMode != "off");
    view->ZoomActions(Zoom::kRedrawInPlace);
  });
}

void EDITORGRID(Ormel& ormel, int index) {
  RunCommand(ormel, "EDITORGRID_Click", [&] {
    switch (index) {
      case kGridShow:
        ormel.db().Execute("update Model set EDITGRIDShow=?", {!ormel.layers.On(Layer::kEditorGrid)});
        break;
      case kGridSnap:
        ormel.db().Execute("update Model set EDITGRIDSnap=?",
                           {!ormel.menus.Checked("EDITORGRID", kGridSnap)});
        break;
      case kGridSettings:
        AskSpacing(ormel);
        break;
      default:
        return;
    }
    ormel.view().SetUpLayers();
    if (index != kGridSnap) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
  });
}

}  // namespace ormel
