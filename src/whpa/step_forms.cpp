#include "whpa/step_forms.h"

#include <cmath>

#include "core/ormel.h"
#include "core/user_interface.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr ControlSpec kDraw{
    .name = "DrawBack(0)", .kind = ControlKind::kButton, .caption = "Draw", .role = ButtonRole::kAccept};
constexpr ControlSpec kBack{
    .name = "DrawBack(1)", .kind = ControlKind::kButton, .caption = "Back", .role = ButtonRole::kReject};
constexpr ControlSpec kDirection{.name = "DataDirectionFlow",
                                 .kind = ControlKind::kNumber,
                                 .caption = "Direction of Flow",
                                 .unit = "Degrees",
                                 .tip = "Where the ambient flow goes, counter-clockwise from east",
                                 .range = kDegrees};
constexpr ControlSpec kTravelTime{.name = "lblT", .kind = ControlKind::kLabel, .caption = "T = "};

constexpr ControlSpec kCentricControls[] = {
    {.name = "lblRange", .kind = ControlKind::kLabel, .caption = "(T < 0.1)"},
    {.name = "lblWHPARadius", .kind = ControlKind::kLabel, .caption = "WHPA Radius = "},
    kTravelTime,
    kDraw,
    kBack,
};

constexpr ControlSpec kEccentricControls[] = {
    {.name = "lblRange", .kind = ControlKind::kLabel, .caption = "(0.1 < T < 1)"},
    {.name = "lblWHPARadiusValue", .kind = ControlKind::kLabel, .caption = "WHPA Radius"},
    {.name = "lblShift", .kind = ControlKind::kLabel, .caption = "Shift in opposite direction of flow"},
    kTravelTime,
    kDirection,
    kDraw,
    kBack,
};

constexpr ControlSpec kUniformControls[] = {
    {.name = "lblRange", .kind = ControlKind::kLabel, .caption = "(T > 1)"},
    kTravelTime,
    kDirection,
    {.name = "ContinueBack(0)",
     .kind = ControlKind::kButton,
     .caption = "Continue",
     .role = ButtonRole::kAccept},
    {.name = "ContinueBack(1)", .kind = ControlKind::kButton, .caption = "Back", .role = ButtonRole::kReject},
};

constexpr ControlSpec kStreamControls[] = {
    {.name = "optYesNo(0)",
     .kind = ControlKind::kOption,
     .caption = "Yes",
     .group = "Do you want to use a Stream Boundary"},
    {.name = "optYesNo(1)",
     .kind = ControlKind::kOption,
     .caption = "No",
     .group = "Do you want to use a Stream Boundary"},
    {.name = "DataHead",
     .kind = ControlKind::kNumber,
     .caption = "Head at first point",
     .range = kElevations},
    {.name = "DataConductivity",
     .kind = ControlKind::kNumber,
     .caption = "Hydraulic Conductivity",
     .range = {0.0, 1e7}},
    {.name = "lblExplanation",
     .kind = ControlKind::kNote,
     .caption = "Explanation: You will define the (infinitely long) straight stream boundary by entering 2 "
                "points on the map with the mouse cursor (left click)."},
    kDraw,
    kBack,
};

std::string Rounded(double value, int places) {
  const double scale = std::pow(10.0, places);
  return NumberText(std::nearbyint(value * scale) / scale);
}

std::string TravelTimeText(double T) {
  return "T = " + Rounded(T, 4);
}

const char* MapUnit(const Ormel& ormel) {
  return ormel.project.BasemapMeters ? "m" : "ft";
}

}  // namespace

WHPACentric::WHPACentric(Ormel& ormel, double radius, double T) : Form(ormel) {
  InitControls();
  Caption("lblWHPARadius", "WHPA Radius = " + Rounded(radius, 2));
  Unit("lblWHPARadius", MapUnit(ormel));
  Caption("lblT", TravelTimeText(T));
}

std::span<const ControlSpec> WHPACentric::Controls() const {
  return kCentricControls;
}

void WHPACentric::Pressed(std::string_view name) {
  DrawOrCancel = name == "DrawBack(0)";
  Hide();
}

WHPAEccentric::WHPAEccentric(Ormel& ormel, double radius, double shift, double T, double direction)
    : Form(ormel) {
  InitControls();
  Put("lblWHPARadiusValue", Rounded(radius, 2));
  Put("lblShift", Rounded(shift, 2));
  for (const char* name : {"lblWHPARadiusValue", "lblShift"}) Unit(name, MapUnit(ormel));
  Caption("lblT", TravelTimeText(T));
  PutNumber("DataDirectionFlow", direction);
}

std::span<const ControlSpec> WHPAEccentric::Controls() const {
  return kEccentricControls;
}

void WHPAEccentric::Pressed(std::string_view name) {
  DrawOrCancel = name == "DrawBack(0)";
  Hide();
}

WHPAStream::WHPAStream(Ormel& ormel) : Form(ormel) {
  InitControls();
  const bool meters = ormel.project.ComputeMeters;
  PutCheck("optYesNo(1)", true);
  Put("DataHead", "0");
  Put("DataConductivity", "0");
  Unit("DataHead", meters ? "m" : "ft");
  Unit("DataConductivity", meters ? "m/day" : "ft/day");
  ShowBoundaryControls(false);
}

std::span<const ControlSpec> WHPAStream::Controls() const {
  return kStreamControls;
}

void WHPAStream::ShowBoundaryControls(bool on) {
  for (const char* name : {"DataHead", "DataConductivity", "lblExplanation"}) Show(name, on);
}

void WHPAStream::Changed(std::string_view name) {
  if (name.starts_with("optYesNo")) ShowBoundaryControls(Checked("optYesNo(0)"));
}

void WHPAStream::Pressed(std::string_view name) {
  DrawOrCancel = name == "DrawBack(0)";
  if (DrawOrCancel) Draw = Checked("optYesNo(0)");
  Hide();
}

WHPAUniform::WHPAUniform(Ormel& ormel, double T, double direction) : Form(ormel), stream(ormel) {
  InitControls();
  Caption("lblT", TravelTimeText(T));
  PutNumber("DataDirectionFlow", direction);
}

std::span<const ControlSpec> WHPAUniform::Controls() const {
  return kUniformControls;
}

void WHPAUniform::Pressed(std::string_view name) {
  if (name == "ContinueBack(1)") {
    GoBack = true;
    Hide();
    return;
  }
  FillEmptyNumbers();
  ormel().ui().ShowForm(stream);
  if (stream.DrawOrCancel) Hide();
}

}  // namespace ormel
