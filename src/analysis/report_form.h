// "Report": which sections, and by which description.
#pragma once

#include <string>

#include "analysis/report.h"
#include "model/dialog.h"

namespace ormel {

class ReportForm final : public OkCancelForm {
 public:
  /// `reason`: why there are no results to report, empty where there are.
  ReportForm(Ormel& ormel, const std::string& reason);
  std::string Title() const override { return "Report"; }
  std::string_view Name() const override { return "Report"; }
  std::span<const ControlSpec> Controls() const override;

  /// Without its path.
  ReportRequest Request() const;

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;

 private:
  /// Reads the description and offers its sections; tells what is amiss with it.
  bool LoadSections();
  void SaveCopy();

  struct Section {
    std::string id;
    bool on_request = false;
  };
  std::vector<Section> sections_;  ///< in the order of the list
  bool results_;
  std::string reason_;
};

/// The command `REPORT`: form, file dialog, report.  `reason` as above.
void REPORT(Ormel& ormel, const std::string& reason);

}  // namespace ormel
