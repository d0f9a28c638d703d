// Inhomogeneities: closed polygons with properties of their own.
#pragma once

#include <span>
#include <string>

#include "core/types.h"
#include "model/dialog.h"
#include "model/model_values.h"

namespace ormel {

inline constexpr double kNoAverageHead = -9999.0;  ///< no estimate

/// A row of `Inhomogeneities`.  A value counts only while its switch is set.
struct InhomogeneityRow {
  std::string Label{};
  double HydCond = 0.0;   ///< [length/d]
  double Recharge = 0.0;  ///< added recharge, positive into the aquifer [length/d]
  double Porosity = 0.0;
  double BottomElevation = 0.0;  ///< aquifer base inside
  double AverageHead = 0.0;
  Color color{};
  bool ChangeK = false, ChangeR = false, ChangeP = false, ChangeB = false, ChangeA = false;
};

class Inhomogeneity final : public OkCancelForm {
 public:
  explicit Inhomogeneity(Ormel& ormel);
  std::string Title() const override { return "Inhomogeneity Properties"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "Inhomogeneity"; }

  /// A switch that is clear lets its field show the model's value.
  void Fill(const InhomogeneityRow& row);
  InhomogeneityRow Row() const;
  /// A field or a switch has been changed.
  bool Invalidate() const { return invalidate_; }

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;
  std::string_view Advice() const override { return "Please restart Vadox"; }

 private:
  void OfferField(int index);
  bool AcceptConductivity();
  std::string opened_label_;
  ModelValues model_;
  bool invalidate_ = false;
};

/// False when there is no such domain; otherwise the bound recordset stands on it.
bool FindInhomogeneity(Ormel& ormel, Pid pid, InhomogeneityRow& found);
/// Adds a domain without a question: polygon, row and these vertices (the closing edge is not stored).
Pid StoreInhomogeneity(Ormel& ormel, const InhomogeneityRow& row, std::span<const MapPoint> points);
void ChangeInhomogeneity(Ormel& ormel, Pid pid, const InhomogeneityRow& row);
/// An average head that equals the aquifer's top says nothing: it becomes -9999 in the store.
void DropTrivialAverageHead(Ormel& ormel, Pid pid);

void ElemAddInhomogeneity(Ormel& ormel);
/// The last click as a vertex; a later click on the corner of another domain takes that corner exactly.
void ElemAddInhoVertex(Ormel& ormel, bool first);
void ElemEndInhomogeneity(Ormel& ormel);

}  // namespace ormel
