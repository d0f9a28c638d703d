// "Head Calibration Statistics": numbers, charts, residuals and observed discharges.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "analysis/calibration.h"
#include "core/form.h"

namespace ormel {

class CalibrationStats final : public Form {
 public:
  CalibrationStats(Ormel& ormel, CalibrationData data);
  std::string Title() const override { return "Head Calibration Statistics"; }
  std::string_view Name() const override { return "CalibrationStats"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;
  std::string PointText(std::string_view name, const ChartPick& pick) override;
  void PointPicked(std::string_view name, const ChartPick& pick) override;
  void CellEdited(std::string_view name, std::size_t row, std::size_t column, std::string_view text) override;

 private:
  enum class Graph { kFit, kOrder, kResidual, kFlow };
  void PutStatistics();
  void TellLeftOut();
  void FillFlows();
  void ShowGraph();
  Graph Chosen() const;
  std::string StatisticsText() const;
  void SaveGraph();

  CalibrationData data_;
  CalibrationStatistics statistics_;
  std::vector<ObservedFlow> flows_;
};

/// Selects a test point on the map and brings it into the window.
void ShowTestPoint(Ormel& ormel, const Residual& point);

/// The command `CALIBRATION_STATS`.  Silent, as a project opens, it only offers the menu item or lets it
/// rest: no form and no box.
void CALIBRATION_STATS(Ormel& ormel, bool silent = false);

}  // namespace ormel
