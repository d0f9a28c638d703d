#include "shell/gui_options_form.h"

#include <array>

#include "core/command.h"
#include "core/coordinates.h"
#include "core/map_view.h"
#include "core/ormel.h"
#include "core/status.h"
#include "store/bulk.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr std::array kControls{
    ControlSpec{.name = "DataHazeLevel",
                .kind = ControlKind::kNumber,
                .caption = "Base Map Haze Level   (1 - 5 : 5 is most hazy"},
    ControlSpec{.name = "picColor", .kind = ControlKind::kColor, .caption = "Base Map Haze Color"},
    ControlSpec{.name = "DataLinesinkShadow",
                .kind = ControlKind::kNumber,
                .caption = "Linesink Shadow Width:            (0 to disable)",
                .range = {0.0, 1000.0}},
    ControlSpec{.name = "DataVertexTolerance",
                .kind = ControlKind::kNumber,
                .caption = "Vertex Overlap Tolerance:",
                .range = {0.0, 1e9}},
    ControlSpec{.name = "FontText", .kind = ControlKind::kFont, .caption = "Default Text Label Font"},
    kOkButton,
    kCancelButton,
};

}  // namespace

GUIOptions::GUIOptions(Ormel& controller) : OkCancelForm(controller) {
  InitControls();
  const GuiOptions& gui = controller.gui;
  PutNumber("DataHazeLevel", gui.haze_field);
  Mutable("picColor").color = gui.HazeColor;
  PutNumber("DataLinesinkShadow", gui.LinesinkShadow);
  PutNumber("DataVertexTolerance", gui.VertexTolerance);
  Unit("DataVertexTolerance", controller.project.BasemapMeters ? "Meters" : "Feet");
  RowReader model(controller.db(),
                  "select DefaultFont,DefaultFontSize,DefaultFontBold,DefaultFontItalic from Model");
  if (model.Next() && !model.Text(0).empty())
    font_ = {std::string(model.Text(0)), static_cast<int>(model.Long(1)), model.Bool(2), model.Bool(3)};
  ShowFontName();
}

std::span<const ControlSpec> GUIOptions::Controls() const {
  return kControls;
}

void GUIOptions::ShowFontName() {
  std::string text = font_.name + " " + std::to_string(font_.size);
  if (font_.bold) text += " bold";
  if (font_.italic) text += " italic";
  Put("FontText", text);
}

void GUIOptions::Changed(std::string_view name) {
  if (name == "DataHazeLevel") redraw_ = true;
}

void GUIOptions::OtherPressed(std::string_view name) {
  if (name == "picColor") {
    if (const auto color = ormel().ui().ChooseColor(State(name).color)) {
      redraw_ = redraw_ || !(*color == State(name).color);
      Mutable(name).color = *color;
    }
  } else if (name == "FontText") {
    if (const auto font = ormel().ui().ChooseFont(font_)) font_ = *font;
    ShowFontName();
  }
}

bool GUIOptions::Ok() {
  const double level = Number("DataHazeLevel");
  if (level > 5.0 || level < 1.0)
    return Refuse("DataHazeLevel", "Invalid Data",
                  Lines({"Invalid Haze Level!", "Please enter a new value."}));
  FillEmptyNumbers();
  GuiOptions& gui = ormel().gui;
  gui.haze_field = ToLong(level);
  gui.HazeColor = State("picColor").color;
  const bool shadow_changed = gui.LinesinkShadow != Number("DataLinesinkShadow");
  gui.LinesinkShadow = Number("DataLinesinkShadow");
  gui.VertexTolerance = Number("DataVertexTolerance");
  if (redraw_ || shadow_changed) ormel().view().ZoomActions(Zoom::kRedraw);
  StoreFont();
  return true;
}

void GUIOptions::StoreFont() {
  ormel().db().Execute(
      "update Model set DefaultFont=?, DefaultFontSize=?, DefaultFontBold=?, DefaultFontItalic=?",
      {font_.name, font_.size, font_.bold, font_.italic});
}

void ShowGUIOptions(Ormel& ormel) {
  GUIOptions form(ormel);
  ormel.ui().ShowForm(form);
}

}  // namespace ormel
