// Base name and folder of the intermediate files, description, units and base maps of the open project.
#pragma once

#include "model/dialog.h"

namespace ormel {

class ProjectSettings : public OkCancelForm {
 public:
  /// Reads the open project.
  explicit ProjectSettings(Ormel& ormel);

  std::string Title() const override;
  std::string_view Name() const override { return "ProjectSettings"; }
  std::span<const ControlSpec> Controls() const override;

  /// The list of base maps has changed.
  bool Reload() const { return reload_; }
  bool ModelCompUnits() const { return Checked("CompUnits(0)"); }  ///< true for metres
  bool ModelMapUnits() const { return Checked("MapUnits(0)"); }    ///< true for metres
  const std::string& OrmelBaseName() const { return Text("BaseName"); }

 protected:
  bool Ok() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;

 private:
  void RefreshMapList();
  void RemoveMap();
  void TellCrs();
  bool CheckCrs();
  void Store();
  bool reload_ = false;
};

/// The settings as the last step of making a project.
void ShowNewProjectSettings(Ormel& ormel);

}  // namespace ormel
