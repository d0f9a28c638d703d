#include "view/restore_window_form.h"

#include <algorithm>
#include <array>
#include <string>

#include "core/coordinates.h"
#include "core/ormel.h"
#include "store/database.h"
#include "store/recordset.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr std::array kControls{
    ControlSpec{.name = "lstWindows", .kind = ControlKind::kList, .caption = "Saved Windows"},
    ControlSpec{.name = "txX1", .kind = ControlKind::kNumber, .caption = "Left", .range = kPlaces},
    ControlSpec{.name = "txX2", .kind = ControlKind::kNumber, .caption = "Right", .range = kPlaces},
    ControlSpec{.name = "txY1", .kind = ControlKind::kNumber, .caption = "Top", .range = kPlaces},
    ControlSpec{.name = "txY2", .kind = ControlKind::kNumber, .caption = "Bottom", .range = kPlaces},
    ControlSpec{.name = "Navigate(0)", .kind = ControlKind::kButton, .caption = "&Previous"},
    ControlSpec{.name = "Navigate(1)", .kind = ControlKind::kButton, .caption = "&Next"},
    ControlSpec{.name = "DeleteWindow", .kind = ControlKind::kButton, .caption = "&Delete"},
    ControlSpec{.name = "OK", .kind = ControlKind::kButton, .caption = "OK", .role = ButtonRole::kAccept},
    ControlSpec{
        .name = "Cancel", .kind = ControlKind::kButton, .caption = "Cancel", .role = ButtonRole::kReject},
};

}  // namespace

RestoreWindowForm::RestoreWindowForm(Ormel& ormel) : Form(ormel) {
  InitControls();
  for (const char* field : {"txX1", "txX2", "txY1", "txY2"}) Unit(field, MapLengthUnit(ormel));
  Load();
  if (!windows_.empty()) Pick(0);
}

std::span<const ControlSpec> RestoreWindowForm::Controls() const {
  return kControls;
}

MapRect RestoreWindowForm::Window() const {
  return {Number("txX1"), Number("txX2"), Number("txY1"), Number("txY2")};
}

void RestoreWindowForm::Load() {
  windows_.clear();
  std::vector<std::string> names;
  Recordset rows = ormel().db().OpenRecordset("select * from SavedWindows");
  for (; rows.HasRow(); rows.MoveNext()) {
    names.push_back(rows.Get<std::string>("Name"));
    windows_.push_back(
        {rows.Get<double>("X1"), rows.Get<double>("X2"), rows.Get<double>("Y1"), rows.Get<double>("Y2")});
  }
  ControlState& list = Mutable("lstWindows");
  list.items = std::move(names);
  list.selected.clear();
  const bool any = !windows_.empty();
  for (const char* name : {"Navigate(0)", "Navigate(1)", "DeleteWindow"}) Offer(name, any);
}

void RestoreWindowForm::Pick(int index) {
  const MapRect& window = windows_[static_cast<std::size_t>(index)];
  Mutable("lstWindows").selected = {index};
  // Fitting the window to the screen gives it digits that nobody can tell apart.
  const double pixel = window.Width() / 1000.0;
  PutNumber("txX1", Rounded(window.x1, pixel));
  PutNumber("txX2", Rounded(window.x2, pixel));
  PutNumber("txY1", Rounded(window.y1, pixel));
  PutNumber("txY2", Rounded(window.y2, pixel));
}

void RestoreWindowForm::Navigate(int step) {
  const auto& selected = State("lstWindows").selected;
  const int last = static_cast<int>(windows_.size()) - 1;
  if (last >= 0) Pick(std::clamp((selected.empty() ? 0 : selected.front()) + step, 0, last));
}

void RestoreWindowForm::DeleteWindow() {
  const auto& selected = State("lstWindows").selected;
  if (selected.empty()) return;
  const int index = selected.front();
  Recordset rows = ormel().db().OpenRecordset("select * from SavedWindows");
  for (int i = 0; i < index && rows.HasRow(); ++i) rows.MoveNext();
  if (rows.HasRow()) rows.Delete();
  Load();
  if (!windows_.empty()) Pick(std::min(index, static_cast<int>(windows_.size()) - 1));
}

void RestoreWindowForm::Changed(std::string_view name) {
  if (name == "lstWindows" && !State("lstWindows").selected.empty())
    Pick(State("lstWindows").selected.front());
}

void RestoreWindowForm::Pressed(std::string_view name) {
  if (name == "Navigate(0)") return Navigate(-1);
  if (name == "Navigate(1)") return Navigate(1);
  if (name == "DeleteWindow") return DeleteWindow();
  if (name == "OK") {
    FillEmptyNumbers();
    const MapRect window = Window();
    if (!(window.x1 < window.x2) || !(window.y2 < window.y1)) {
      Refuse("txX1", "Can't set window", "Selected window is too small");
      return;
    }
    Result = 1;
    Hide();
  } else if (name == "Cancel") {
    Result = 2;
    Hide();
  }
}

}  // namespace ormel
