// The uniform flow: a regional gradient with a reference point of known head.  Its fields stand in `Model`,
// its reference point is the one vertex with PID -10.
#pragma once

#include <span>
#include <string>

#include "core/types.h"
#include "model/dialog.h"
#include "model/model_values.h"

namespace ormel {

class UniformFlow final : public OkCancelForm {
 public:
  /// Shows the stored values.
  explicit UniformFlow(Ormel& ormel);
  std::string Title() const override { return "Uniform Flow"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "UniformFlow"; }

  double Head() const { return Number("tbdata(0)"); }         ///< computation length unit
  double Gradient() const { return Number("tbdata(1)"); }     ///< [-]
  double Orientation() const { return Number("tbdata(2)"); }  ///< [degrees counter-clockwise from +x]

 protected:
  bool Ok() override;

 private:
  ModelValues model_;
};

/// Puts a uniform flow in force without a question; an earlier one is replaced.
void StoreUniformFlow(Ormel& ormel, MapPoint reference, double head, double gradient, double orientation);
/// The same without a new reference point.
void ChangeUniformFlow(Ormel& ormel, double head, double gradient, double orientation);
/// Zeroes the fields and deletes the reference point; nothing is asked, drawn or made invalid.
void RemoveUniformFlow(Ormel& ormel);

/// The menu command: the warning, then the click that places the reference point, or the removal.
void ElemUniformFlow(Ormel& ormel);
/// The dialog: for the last click, or (`edit_only`) for the flow that stands.
void ElemAddUniformFlow(Ormel& ormel, bool edit_only);

}  // namespace ormel
