// What a printed map and a picture of the map show, and at which size.
#pragma once

#include "model/dialog.h"
#include "ormel/map_export.h"

namespace ormel {

/// The fields of what stands beside the map.
class ExtrasForm : public OkCancelForm {
 public:
  using OkCancelForm::OkCancelForm;
  MapExtras Extras() const;

 protected:
  void PutExtras(const MapExtras& extras);
};

/// Margins of the printed map, the box around it, and the paper.
class PrintSetup : public ExtrasForm {
 public:
  /// Shows the margins that the project holds.
  PrintSetup(Ormel& ormel, const MapExtras& extras, bool landscape);

  std::string Title() const override { return "Print Setup"; }
  std::string_view Name() const override { return "PrintSetup"; }
  std::span<const ControlSpec> Controls() const override;
  bool Landscape() const { return Checked("optLandscape"); }

 protected:
  /// Keeps the margins in the window state and in the project.
  bool Ok() override;

 private:
  void Store();
};

/// Size and resolution of a picture file.
class SaveMap : public ExtrasForm {
 public:
  SaveMap(Ormel& ormel, const MapExtras& extras, int width, int dpi);

  std::string Title() const override { return "Save Map As"; }
  std::string_view Name() const override { return "SaveMap"; }
  std::span<const ControlSpec> Controls() const override;
  int Width() const;  ///< pixels
  int Dpi() const;    ///< pixels an inch

 protected:
  bool Ok() override;
};

}  // namespace ormel
