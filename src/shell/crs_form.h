// Choosing a coordinate reference system from the list of those in use.
#pragma once

#include <vector>

#include "geo/crs.h"
#include "model/dialog.h"

namespace ormel {

class CrsForm final : public OkCancelForm {
 public:
  explicit CrsForm(Ormel& ormel);
  std::string Title() const override { return "Coordinate Reference System"; }
  std::string_view Name() const override { return "CrsForm"; }
  std::string_view HelpTopic() const override { return "ProjectSettings"; }
  std::span<const ControlSpec> Controls() const override;

  /// "EPSG:28992", of the chosen one.
  std::string Code() const;

 protected:
  bool Ok() override;
  void Changed(std::string_view name) override;

 private:
  void Fill();
  std::vector<CrsEntry> found_;
};

}  // namespace ormel
