// The dialogs about base maps.
#pragma once

#include <string>
#include <vector>

#include "basemaps/catalogue.h"
#include "model/dialog.h"

namespace ormel {

/// Which maps are shown.
class ViewGraphics final : public OkCancelForm {
 public:
  /// `raster`: the list that is in front at first.
  ViewGraphics(Ormel& ormel, bool raster);
  std::string Title() const override { return "Graphics Menu"; }
  std::string_view Name() const override { return "ViewGraphics"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  bool Ok() override;
  void Changed(std::string_view name) override;
  void OtherPressed(std::string_view name) override;

 private:
  void Fill();
  void ShowLists();
  void SelectAll(bool all);
  std::string_view List() const { return Checked("optType(0)") ? "RasterList" : "VectorList"; }
  std::string Chosen() const;
};

/// How vector maps are drawn: a fixed colour or a colour field, and labels.
class ViewShape final : public OkCancelForm {
 public:
  /// Opens with the map of that name, else with the first.
  ViewShape(Ormel& ormel, const std::string& name);
  std::string Title() const override { return "Shape file properties"; }
  std::string_view Name() const override { return "ViewShape"; }
  std::span<const ControlSpec> Controls() const override;

 protected:
  bool Ok() override;
  void Changed(std::string_view name) override;
  void OtherPressed(std::string_view name) override;

 private:
  void Load(std::size_t place);
  void Keep();
  std::vector<BaseMapRow> rows_;
  std::size_t place_ = 0;
};

/// The maps of a group that was selected on the map.
class BBMGroup final : public Form {
 public:
  static constexpr int kApply = 1, kDone = 3;
  BBMGroup(Ormel& ormel, std::vector<std::string> names);
  std::string Title() const override { return "Group of BBM Maps"; }
  std::string_view Name() const override { return "BBMGroup"; }
  std::span<const ControlSpec> Controls() const override;
  bool removed() const { return removed_; }

 protected:
  void Pressed(std::string_view name) override;

 private:
  void Remove();
  std::vector<std::string> names_;
  bool removed_ = false;
};

/// Shows the dialog and draws the map anew when it was accepted.
void ShowViewGraphics(Ormel& ormel, bool raster);

}  // namespace ormel
