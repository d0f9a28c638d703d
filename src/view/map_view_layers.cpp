// The layer switches of a project, as its data and settings ask for them.
#include "core/command.h"
#include "core/ormel.h"
#include "core/user_interface.h"
#include "solver/result_files.h"
#include "store/database.h"
#include "view/map_view_impl.h"

namespace ormel {
namespace {

/// A switch that has something to show.  `fresh`: the project was just opened, so that its check is set anew;
/// otherwise the user's choice stays, and a layer that could show nothing before is switched on.
void Offer(MenuState& menus, LayerItem item, bool has, bool fresh, bool wanted = true) {
  const bool could = menus.Enabled("layermenu", item);
  menus.Enable("layermenu", item, has);
  if (!has)
    menus.Check("layermenu", item, false);
  else if (fresh || !could)
    menus.Check("layermenu", item, wanted);
}

/// Layers that show something of the project now.
bool Any(Database& db, const char* sql) {
  return db.Scalar(sql).AsLong() > 0;
}

void SetUpProjectDefaults(MenuState& menus) {
  menus.Check("TESTDISPLAY", kTestShow, true);
  menus.Check("TESTDISPLAY", kTestText, false);
  menus.Check("TESTDISPLAY", kTestScaledSymbols, false);
  menus.Check("TPSCALING", kTestScale5, true);
  menus.Check("TPSCALING", kTestScale10, false);
  menus.Check("TPSCALING", kTestScale20, false);
}

}  // namespace

/// Elements may have come or gone, a solution may have become valid.
void MapViewImpl::OfferLayers(bool fresh) {
  if (ormel_.project.db == nullptr) return;
  MenuState& menus = ormel_.menus;
  Database& db = ormel_.db();
  const bool solution = ormel_.solution.ValidSolution;
  const bool areas = Any(db, "select count(*) from WHPAs where T>1 or Type=3");
  const bool show_contours = db.Scalar("select CONTOURShow from Model").AsBool();
  const bool show_paths = db.Scalar("select TRACECompute from Model").AsBool();
  Offer(menus, kLayerElements, true, fresh);
  Offer(menus, kLayerContours, solution || areas, fresh, show_contours);
  Offer(menus, kLayerPathlines, solution || areas, fresh, show_paths);
  Offer(menus, kLayerTestPoints, db.RowCount("TestPoints") > 0, fresh);
  Offer(menus, kLayerResultsOverlay, solution, fresh, state_.overlay.LSMode != "off");
  Offer(menus, kLayerWhpas, db.RowCount("Capzones") > 0, fresh);
  Offer(menus, kLayerHydrographyLabels, Any(db, "select count(*) from TextLabels where LabelType=1"), fresh);
  Offer(menus, kLayerHypsographyLabels, Any(db, "select count(*) from TextLabels where LabelType>1"), fresh);
  menus.Check("PATHLINES", 0, menus.Checked("layermenu", kLayerPathlines));
}

void MapViewImpl::SetUpLayers() {
  const Named named(ormel_, "SetUpLayers");
  if (ormel_.project.db == nullptr) return;
  MenuState& menus = ormel_.menus;
  const bool fresh = layers_of_ != ormel_.project.DBName;
  layers_of_ = ormel_.project.DBName;
  if (fresh) {
    ResultFilesOf(ormel_).Clear();
    state_.overlay = {};
    SetUpProjectDefaults(menus);
  }
  OfferLayers(fresh);
  Database& db = ormel_.db();
  menus.Check("EDITORGRID", kGridShow, db.Scalar("select EDITGRIDShow from Model").AsBool());
  ormel_.mouse.Snap = db.Scalar("select EDITGRIDSnap from Model").AsBool();
  menus.Check("EDITORGRID", kGridSnap, ormel_.mouse.Snap);
  vg_.SetGridSpacing(db.Scalar("select EDITGRIDSpacing from Model").AsDouble());
  ormel_.ui().MenusChanged();
}

}  // namespace ormel
