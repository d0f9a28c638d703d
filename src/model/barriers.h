// Horizontal barriers: polylines that flow does not cross.
#pragma once

#include <span>
#include <string>

#include "core/types.h"
#include "model/dialog.h"

namespace ormel {

/// `NoFlowStrings.Closed`.
enum class BarrierClosed : int {
  kOpen = 0,
  kClosed = 1,         ///< bounds a domain
  kIgnoreInside = 2,   ///< the region inside is ignored
  kIgnoreOutside = 3,  ///< the region outside is ignored
};

/// What the user sets of a row of `NoFlowStrings`; conductivity, thickness, porosity and bottom are fixed.
struct BarrierRow {
  std::string Label{};
  Color color{};
  BarrierClosed Closed = BarrierClosed::kOpen;
};

class NoFlowString final : public OkCancelForm {
 public:
  explicit NoFlowString(Ormel& ormel);
  std::string Title() const override { return "Barrier Properties"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "NoFlowString"; }

  void Fill(const BarrierRow& row);
  BarrierRow Row() const;

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;
  std::string_view Advice() const override { return "Please restart Vadox"; }

 private:
  void OfferRegions();
  std::string opened_label_;
};

/// False when there is no such barrier; otherwise the bound recordset stands on it.
bool FindBarrier(Ormel& ormel, Pid pid, BarrierRow& found);
/// Adds a barrier without a question: polygon, row and these vertices.
Pid StoreBarrier(Ormel& ormel, const BarrierRow& row, std::span<const MapPoint> points);
void ChangeBarrier(Ormel& ormel, Pid pid, const BarrierRow& row);

/// The dialog, then vertices by clicks.
void ElemAddNoFlowString(Ormel& ormel);
/// The last click as a vertex.
void ElemAddNoFlowVertex(Ormel& ormel, bool first);
/// The right click that ends the barrier.
void ElemEndNoFlowString(Ormel& ormel);

}  // namespace ormel
