// The layer switches of a project, as its data and settings ask for them.
#include "basemaps/catalogue.h"
#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "solver/result_files.h"
#include "store/database.h"
#include "view/map_view_impl.h"

namespace ormel {

/// Elements may have come or gone, a solution may have become valid.
void MapViewImpl::OfferLayers(bool fresh) {
  if (ormel_.project.db == nullptr) return;
  const bool could = ormel_.layers.Offered(Layer::kResultsOverlay);
  ormel::OfferLayers(ormel_, fresh);
  // What the overlay shows is the view's own setting.
  if (!could && ormel_.layers.Offered(Layer::kResultsOverlay))
    ormel_.layers.Switch(Layer::kResultsOverlay, state_.overlay.LSMode != "off");
}

void MapViewImpl::SetUpLayers() {
  const Named named(ormel_, "SetUpLayers");
  if (ormel_.project.db == nullptr) return;
  const bool fresh = layers_of_ != ormel_.project.DBName;
  layers_of_ = ormel_.project.DBName;
  if (fresh) {
    ResultFilesOf(ormel_).Clear();
    state_.overlay = {};
  }
  OfferLayers(fresh);
  Database& db = ormel_.db();
  ormel_.layers.Switch(Layer::kEditorGrid, db.Scalar("select EDITGRIDShow from Model").AsBool());
  ormel_.mouse.Snap = db.Scalar("select EDITGRIDSnap from Model").AsBool();
  ormel_.menus.Check("EDITORGRID", kGridSnap, ormel_.mouse.Snap);
  vg_.SetGridSpacing(db.Scalar("select EDITGRIDSpacing from Model").AsDouble());
  ormel_.ui().MenusChanged();
}

std::optional<Extents> MapViewImpl::ShownMapExtents() {
  return ShownBaseMapExtents(ormel_);
}

}  // namespace ormel
