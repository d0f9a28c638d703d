#include "basemaps/base_map_forms.h"

#include <algorithm>
#include <array>

#include "core/command.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::string_view kTypes = "Type", kColors = "Color";
constexpr std::string_view kNoField = "(none)";

constexpr std::array kGraphicsControls{
    ControlSpec{.name = "optType(0)", .kind = ControlKind::kOption, .caption = "Raster", .group = kTypes},
    ControlSpec{.name = "optType(1)", .kind = ControlKind::kOption, .caption = "Vector", .group = kTypes},
    ControlSpec{.name = "RasterList", .kind = ControlKind::kMultiList, .caption = "Raster maps shown"},
    ControlSpec{.name = "VectorList", .kind = ControlKind::kMultiList, .caption = "Vector maps shown"},
    ControlSpec{.name = "cmdSelect(0)", .kind = ControlKind::kButton, .caption = "Select All"},
    ControlSpec{.name = "cmdSelect(1)", .kind = ControlKind::kButton, .caption = "Unselect All"},
    ControlSpec{.name = "EditMap", .kind = ControlKind::kButton, .caption = "Shapefile settings"},
    kOkButton,
    kCancelButton,
};

constexpr std::array kShapeControls{
    ControlSpec{.name = "MapList", .kind = ControlKind::kCombo, .caption = "Map"},
    ControlSpec{.name = "OptColor(0)",
                .kind = ControlKind::kOption,
                .caption = "Pick a fixed color",
                .group = kColors},
    ControlSpec{.name = "picColor", .kind = ControlKind::kColor, .caption = "Color", .group = kColors},
    ControlSpec{
        .name = "cmdPickColor", .kind = ControlKind::kButton, .caption = "Choose Color", .group = kColors},
    ControlSpec{.name = "OptColor(1)",
                .kind = ControlKind::kOption,
                .caption = "Use a color field",
                .group = kColors},
    ControlSpec{.name = "ColorList", .kind = ControlKind::kCombo, .caption = "Color field", .group = kColors},
    ControlSpec{.name = "TextList", .kind = ControlKind::kCombo, .caption = "Label field"},
    kOkButton,
    kCancelButton,
    ControlSpec{.name = "Apply", .kind = ControlKind::kButton, .caption = "Apply Map Changes"},
};

constexpr std::array kGroupControls{
    ControlSpec{.name = "lblSelectedMaps",
                .kind = ControlKind::kLabel,
                .caption = "The selected group of maps contins the following bbms:"},
    ControlSpec{.name = "MapList", .kind = ControlKind::kList, .caption = ""},
    ControlSpec{.name = "lblMapNumber", .kind = ControlKind::kLabel, .caption = "Maps in Group"},
    ControlSpec{.name = "cmdHideShow(0)", .kind = ControlKind::kButton, .caption = "Hide Maps"},
    ControlSpec{.name = "cmdHideShow(1)", .kind = ControlKind::kButton, .caption = "Show Maps"},
    ControlSpec{.name = "cmdDelete", .kind = ControlKind::kButton, .caption = "Remove Maps"},
    ControlSpec{
        .name = "Apply", .kind = ControlKind::kButton, .caption = "Apply", .role = ButtonRole::kAccept},
    ControlSpec{.name = "Done",
                .kind = ControlKind::kButton,
                .caption = "Done Editing BBM Groups",
                .role = ButtonRole::kReject},
};

bool HasFields(const BaseMapRow& row) {
  const BaseMapKind kind = BaseMapKindOf(row.MapName);
  return kind == BaseMapKind::kShape || kind == BaseMapKind::kVector;
}

int PlaceOf(const std::vector<std::string>& items, const std::string& text) {
  const auto at = std::find(items.begin(), items.end(), text);
  return at == items.end() ? 0 : static_cast<int>(at - items.begin());
}

}  // namespace

// Which maps are shown --------------------------------------------------------------------------------------

ViewGraphics::ViewGraphics(Ormel& controller, bool raster) : OkCancelForm(controller) {
  InitControls();
  PutCheck(raster ? "optType(0)" : "optType(1)", true);
  Fill();
  ShowLists();
}

std::span<const ControlSpec> ViewGraphics::Controls() const {
  return kGraphicsControls;
}

void ViewGraphics::Fill() {
  for (const BaseMapRow& row : ReadBaseMapRows(ormel())) {
    const bool raster = BaseMapKindOf(row.MapName) == BaseMapKind::kRaster;
    ControlState& list = Mutable(raster ? "RasterList" : "VectorList");
    if (row.Show) list.selected.push_back(static_cast<int>(list.items.size()));
    list.items.push_back(row.MapName);
  }
}

void ViewGraphics::ShowLists() {
  Show("RasterList", Checked("optType(0)"));
  Show("VectorList", !Checked("optType(0)"));
  const std::vector<BaseMapRow> rows = ReadBaseMapRows(ormel());
  Offer("EditMap", !Checked("optType(0)") && std::any_of(rows.begin(), rows.end(), HasFields));
}

void ViewGraphics::SelectAll(bool all) {
  ControlState& list = Mutable(List());
  list.selected.clear();
  for (std::size_t i = 0; all && i < list.items.size(); ++i) list.selected.push_back(static_cast<int>(i));
}

void ViewGraphics::Changed(std::string_view name) {
  if (name.starts_with("optType")) ShowLists();
}

std::string ViewGraphics::Chosen() const {
  const ControlState& list = State("VectorList");
  return list.selected.empty() ? "" : list.items[static_cast<std::size_t>(list.selected.front())];
}

void ViewGraphics::OtherPressed(std::string_view name) {
  if (name == "cmdSelect(0)") SelectAll(true);
  if (name == "cmdSelect(1)") SelectAll(false);
  if (name != "EditMap") return;
  ViewShape form(ormel(), Chosen());
  ormel().ui().ShowForm(form);
}

bool ViewGraphics::Ok() {
  for (const char* name : {"RasterList", "VectorList"}) {
    const ControlState& list = State(name);
    for (std::size_t i = 0; i < list.items.size(); ++i) {
      const bool show =
          std::find(list.selected.begin(), list.selected.end(), static_cast<int>(i)) != list.selected.end();
      ShowBaseMap(ormel(), list.items[i], show);
    }
  }
  return true;
}

void ShowViewGraphics(Ormel& ormel, bool raster) {
  const Named named(ormel, "ViewGraphics");
  ViewGraphics form(ormel, raster);
  ormel.ui().ShowForm(form);
  if (form.Result == ViewGraphics::kOk) ormel.view().ZoomActions(Zoom::kRedrawInPlace);
}

// Colours and labels ----------------------------------------------------------------------------------------

ViewShape::ViewShape(Ormel& controller, const std::string& name) : OkCancelForm(controller) {
  InitControls();
  ControlState& list = Mutable("MapList");
  for (BaseMapRow& row : ReadBaseMapRows(controller))
    if (HasFields(row)) {
      list.items.push_back(row.MapName);
      rows_.push_back(std::move(row));
    }
  if (rows_.empty()) return;
  const auto place = static_cast<std::size_t>(PlaceOf(list.items, name));
  list.selected = {static_cast<int>(place)};
  list.text = list.items[place];
  Load(place);
}

std::span<const ControlSpec> ViewShape::Controls() const {
  return kShapeControls;
}

void ViewShape::Load(std::size_t place) {
  place_ = place;
  const BaseMapRow& row = rows_[place];
  std::vector<std::string> fields{std::string(kNoField)};
  const BaseMap* map = BaseMapsOf(ormel()).Find(row.MapName);
  if (map != nullptr && map->vector)
    fields.insert(fields.end(), map->vector->fields().begin(), map->vector->fields().end());
  const auto fill = [&](const char* name, const std::string& chosen) {
    ControlState& list = Mutable(name);
    list.items = fields;
    const int at = PlaceOf(fields, chosen);
    list.selected = {at};
    list.text = fields[static_cast<std::size_t>(at)];
  };
  fill("ColorList", row.ColorField);
  fill("TextList", row.TextField);
  Mutable("picColor").color = row.color;
  PutCheck("OptColor(0)", !row.ByField());
  PutCheck("OptColor(1)", row.ByField());
}

void ViewShape::Keep() {
  if (rows_.empty()) return;
  BaseMapRow& row = rows_[place_];
  const auto field = [&](const char* name) {
    const ControlState& list = State(name);
    const int at = list.selected.empty() ? 0 : list.selected.front();
    return at <= 0 ? std::string() : list.items[static_cast<std::size_t>(at)];
  };
  row.color = State("picColor").color;
  row.UseColorField = Checked("OptColor(1)");
  row.ColorField = field("ColorList").empty() ? kNoColorField : field("ColorList");
  row.TextField = field("TextList");
}

void ViewShape::Changed(std::string_view name) {
  if (name == "ColorList") {
    PutCheck("OptColor(0)", false);
    PutCheck("OptColor(1)", true);
  }
  if (name != "MapList") return;
  const std::vector<int>& selected = State("MapList").selected;
  if (selected.empty() || selected.front() < 0) return;
  Keep();
  Load(static_cast<std::size_t>(selected.front()));
}

void ViewShape::OtherPressed(std::string_view name) {
  if (name == "cmdPickColor" || name == "picColor") {
    if (const auto color = ormel().ui().ChooseColor(State("picColor").color)) {
      Mutable("picColor").color = *color;
      PutCheck("OptColor(0)", true);
      PutCheck("OptColor(1)", false);
    }
  }
  if (name != "Apply") return;
  Ok();
  ormel().view().ZoomActions(Zoom::kRedrawInPlace);
}

bool ViewShape::Ok() {
  Keep();
  for (const BaseMapRow& row : rows_) StoreBaseMapLook(ormel(), row);
  return true;
}

// A group ---------------------------------------------------------------------------------------------------

BBMGroup::BBMGroup(Ormel& controller, std::vector<std::string> names)
    : Form(controller), names_(std::move(names)) {
  InitControls();
  Mutable("MapList").items = names_;
  Caption("lblMapNumber", "Maps in Group: " + std::to_string(names_.size()));
}

std::span<const ControlSpec> BBMGroup::Controls() const {
  return kGroupControls;
}

void BBMGroup::Remove() {
  if (!AskYesNo(
          ormel(), "Remove Maps?",
          Lines({"Are you sure you want to remove", "the selected group of maps from", "the database?"}),
          Icon::kQuestion))
    return;
  for (const std::string& name : names_) RemoveBaseMap(ormel(), name);
  removed_ = true;
  Result = kApply;
  Hide();
}

void BBMGroup::Pressed(std::string_view name) {
  if (name == "cmdDelete") return Remove();
  if (name.starts_with("cmdHideShow"))
    for (const std::string& map : names_) ShowBaseMap(ormel(), map, name == "cmdHideShow(1)");
  if (name != "Apply" && name != "Done") return;
  Result = name == "Done" ? kDone : kApply;
  Hide();
}

}  // namespace ormel
