// Rows of the results tables as they are before the solver has answered: labels and places, all else zero.
#include "solver/deck_sections.h"
#include "store/database.h"

namespace ormel {

ResultRows::ResultRows(Database& db, bool wells_and_linesinks)
    : inhomogeneities_(db, "INResults",
                       {"Label",
                        "VadoxLabel",
                        "Conductivity",
                        "BottomElev",
                        "ExtractRate",
                        "Porosity",
                        "DomainArea",
                        "AvgPotJump",
                        "X1",
                        "Y1",
                        "XC",
                        "YC",
                        "StrPotJumpNode",
                        "ParabStrPotJump",
                        "RealStrExtrNode",
                        "ImagStrExtrNode",
                        "RealStrExtrCntr",
                        "Tfac",
                        "DeltaPNode",
                        "DeltaPCntr"}),
      barriers_(db, "NFResults",
                {"Label", "VadoxLabel", "Conductivity", "Width", "Porosity", "WallBottomElev", "X1", "Y1",
                 "XC", "YC", "StrPotJumpNode", "ParabStrPotJump", "DeltaFlowCntr", "DeltaFlowNode"}) {
  if (!wells_and_linesinks) return;
  wells_.emplace(db, "WLResults",
                 std::initializer_list<std::string_view>{"Label", "VadoxLabel", "X", "Y", "SpecifiedHead",
                                                         "Radius", "Discharge", "Head"});
  linesinks_.emplace(
      db, "LSResults",
      std::initializer_list<std::string_view>{"Label", "VadoxLabel", "X1", "Y1", "X2", "Y2", "SpecifiedHead",
                                              "CalculatedHead", "Discharge", "Width", "Resistance", "Depth"});
}

void ResultRows::Well(const std::string& label, const std::string& deck_label, MapPoint at,
                      double specified_head) {
  if (wells_) wells_->Row(label, deck_label, at.x, at.y, specified_head, 0.0, 0.0, 0.0);
}

void ResultRows::Linesink(const std::string& label, const std::string& deck_label, MapPoint from, MapPoint to,
                          double specified_head) {
  if (linesinks_)
    linesinks_->Row(label, deck_label, from.x, from.y, to.x, to.y, specified_head, 0.0, 0.0, 0.0, 0.0, 0.0);
}

void ResultRows::Inhomogeneity(const std::string& label, const std::string& deck_label) {
  inhomogeneities_.Row(label, deck_label, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0,
                       0.0, 0.0, 0.0, 0.0, 0.0);
}

void ResultRows::Barrier(const std::string& label, const std::string& deck_label) {
  barriers_.Row(label, deck_label, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
}

}  // namespace ormel
