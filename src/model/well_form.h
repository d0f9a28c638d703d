// The dialog of a well.
#pragma once

#include <span>
#include <string>

#include "model/dialog.h"
#include "model/wells.h"

namespace ormel {

class WellProperties final : public OkCancelForm {
 public:
  explicit WellProperties(Ormel& ormel);

  std::string Title() const override { return "Well Properties"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "WellProperties"; }

  /// Fills the fields and clears the flags; the label is the one that the dialog opens with.
  void Fill(const WellRow& row, MapPoint at);
  /// The fields as a row.
  WellRow Row() const;
  MapPoint At() const { return {X(), Y()}; }

  double X() const { return Number("tbData(0)"); }
  double Y() const { return Number("tbData(1)"); }
  /// -99 while no colour is chosen.
  std::int32_t PathlineColor() const;
  void SetPathlineColor(std::int32_t color);
  /// Negative while no particles are traced.
  int NParticles() const;
  void SetNParticles(int count);

  bool FormChanged() const { return form_changed_; }
  bool NeedRetrace() const { return need_retrace_; }
  bool NeedReloadPathlines() const { return need_reload_pathlines_; }

 protected:
  bool Ok() override;
  void Cancelled() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;

 private:
  void OfferFields();
  void ZeroEmptyFields();
  bool CheckTracing();

  std::string opened_label_;
  int pp_well_ = 0, transient_ = 0;  ///< kept and handed back unchanged
  bool form_changed_ = false, need_retrace_ = false, need_reload_pathlines_ = false;
};

}  // namespace ormel
