// "View Results Table": the results of the last solve as tables.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/form.h"

namespace ormel {

/// Each table is read when it is first looked at.
class ResultViewer final : public Form {
 public:
  explicit ResultViewer(Ormel& ormel);
  /// "Results Table", and while they are those of an older model that they are.
  std::string Title() const override;
  std::string_view Name() const override { return "ResultViewer"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  void Changed(std::string_view name) override;
  void Pressed(std::string_view name) override;

 private:
  void Show(std::size_t index);

  std::vector<std::shared_ptr<Table>> tables_;
  std::size_t shown_ = 0;
};

/// `RESULTS_TABLE`.
void ViewResultsTable(Ormel& ormel);

}  // namespace ormel
