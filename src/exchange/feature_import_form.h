// The dialog of "Import Features...".
#pragma once

#include <memory>
#include <optional>

#include "exchange/feature_import.h"
#include "model/dialog.h"

namespace ormel {

class FeatureImportForm final : public OkCancelForm {
 public:
  explicit FeatureImportForm(Ormel& ormel);
  std::string Title() const override { return "Import Features"; }
  std::string_view Name() const override { return "FeatureImportForm"; }
  std::span<const ControlSpec> Controls() const override;

  /// What the user accepted.
  const ImportPlan& Plan() const { return *plan_; }

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;
  void CellEdited(std::string_view name, std::size_t row, std::size_t column, std::string_view text) override;

 private:
  void Browse();
  void Open();
  void ShowLayer();
  void ShowMapping();
  FeatureImport Request() const;
  bool Check();
  void Forget();
  const VectorLayer* Layer() const;
  const FeatureTarget& Target() const;

  std::unique_ptr<VectorSource> source_;
  std::string fault_;  ///< why the file that is typed cannot be read
  std::optional<ImportPlan> plan_;
};

}  // namespace ormel
