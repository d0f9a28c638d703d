// Results of head-specified line-sinks as a bar chart on the map.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/form.h"
#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

enum class StyleId : int;

/// What the overlay shows: "off", "Head Error", "Strength", "Baseflow", "Streamflow", "Recharging" or
/// "Percolating".
struct OverlaySettings {
  std::string LSMode = "off";
  double LSScaleMax = 0.0;  ///< value drawn at the full width
};

/// One row of the results of line-sinks.
struct LinesinkResult {
  double error = 0.0, discharge = 0.0, baseflow = 0.0, overlandflow = 0.0;
  double resistance = 0.0, specified_head = 0.0, calculated_head = 0.0, depth = 0.0;
};
struct OverlayLine {
  Color color;
  double width;  ///< pen width, 2 to 24
};
/// How the row is drawn; nothing when the mode leaves it out.
std::optional<OverlayLine> OverlayLineOf(const OverlaySettings& settings, const LinesinkResult& row);

/// What its lines look like, for the legend.
std::vector<StyleId> OverlayStyles(const OverlaySettings& settings);

void ModelDrawResultsOverlay(const MapCanvas& canvas, const OverlaySettings& settings);

/// "Results Overlay Selections".
class ResultOverlay final : public Form {
 public:
  ResultOverlay(Ormel& ormel, const OverlaySettings& settings);
  std::string Title() const override { return "Results Overlay Selections"; }
  std::string_view Name() const override { return "ResultOverlay"; }
  std::span<const ControlSpec> Controls() const override;

  /// As chosen; read when `Result` is 1.
  OverlaySettings Settings() const;

 private:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;
  /// Shows the values of the model for a choice.
  void ReadRange(int choice);
  void OfferFields();
  int Choice() const;
};

}  // namespace ormel
