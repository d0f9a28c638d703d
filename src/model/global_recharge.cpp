#include "model/global_recharge.h"

#include <algorithm>
#include <array>
#include <string>

#include "core/command.h"
#include "core/ormel.h"
#include "core/quantities.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/dialog.h"
#include "model/inhomogeneities.h"
#include "model/model_values.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr double kRim = 0.1;  ///< of the longer side, between the model and the domain's edge

/// Around all vertices, or the window where there are none.
MapRect AroundTheModel(Ormel& ormel) {
  MapRect box = ormel.window.SolveWindow;
  RowReader rows(ormel.db(), "select min(X),max(X),max(Y),min(Y),count(*) from Vertices");
  if (rows.Next() && rows.Long(4) > 0) box = {rows.Double(0), rows.Double(1), rows.Double(2), rows.Double(3)};
  double rim = kRim * std::max(box.Width(), box.Height());
  if (!(rim > 0.0)) rim = kRim * std::max(ormel.window.SolveWindow.Width(), 1.0);
  return {box.x1 - rim, box.x2 + rim, box.y1 + rim, box.y2 - rim};
}

void MakeDomain(Ormel& ormel, ModelValues model) {
  const MapRect box = AroundTheModel(ormel);
  InhomogeneityRow row;
  row.Label = FreeLabel(ormel, "Inhomogeneities", "Recharge");
  row.HydCond = model.AQHydCond;
  row.Recharge = model.AQRecharge;
  row.Porosity = model.AQPorosity;
  row.BottomElevation = model.AQBase;
  row.AverageHead = kNoAverageHead;
  row.color = Rgb(0, 128, 64);
  row.ChangeR = true;
  ormel.db().Execute("update Inhomogeneities set Recharge=0 where ChangeR=0");
  const std::array corners{MapPoint{box.x1, box.y2}, MapPoint{box.x2, box.y2}, MapPoint{box.x2, box.y1},
                           MapPoint{box.x1, box.y1}};
  StoreInhomogeneity(ormel, row, corners);
  model.AQRecharge = 0.0;
  WriteModel(ormel, model);
}

}  // namespace

bool OfferRechargeDomain(Ormel& ormel) {
  const ModelValues model = ReadModel(ormel);
  if (model.AQRecharge == 0.0) return false;
  bool made = false;
  RunCommand(ormel, "OfferRechargeDomain", [&] {
    const std::string rate = NumberText(model.AQRecharge) + " " + UnitOf(ormel, Quantity::kRate);
    if (!AskYesNo(
            ormel, "Recharge Rate",
            Lines(
                {"The recharge rate of the aquifer is " + rate +
                     ", but by itself it acts nowhere: an inhomogeneity that does not change recharge takes "
                     "it as its own, and the ground outside of inhomogeneities gets none.",
                 "",
                 "Ormel can make one recharge domain around the whole model that carries this rate, and set "
                 "the rate of the aquifer to zero.  Where domains overlap their rates add up.",
                 "", "Make the recharge domain?"}),
            Icon::kWarning))
      return;
    MakeDomain(ormel, model);
    made = true;
  });
  return made;
}

}  // namespace ormel
