#include "model/element_properties.h"

#include <algorithm>

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr Property kWell[] = {{"Label", "tbLabel"},
                              {"X", "tbData(0)"},
                              {"Y", "tbData(1)"},
                              {"HeadSpecified", "optHeadSpec(0)", "optHeadSpec(1)"},
                              {"Head", "tbData(2)"},
                              {"Radius", "tbData(3)"},
                              {"Pond", "chkPond"},
                              {"Setback", "tbData(10)"},
                              {"NParticles", "tbData(11)", "", "chkTrace"},
                              {"StartElev", "tbData(12)", "", "chkTrace"}};
constexpr Property kLinesink[] = {{"Label", "tbLabel"},
                                  {"HeadSpecified", "optHeadSpec(0)", "optHeadSpec(1)"},
                                  {"StartingHead", "tbData(0)"},
                                  {"EndingHead", "tbData(1)"},
                                  {"Resistance", "tbData(2)"},
                                  {"Width", "tbData(3)"},
                                  {"Depth", "tbData(4)"},
                                  {"Farfield", "chkFarField"},
                                  {"Drain", "chkDrain"},
                                  {"AutoSWIZC", "Auto(*)"},
                                  {"Routing", "chkRouting", "", "chkStream"},
                                  {"EndStream", "chkEndStream", "", "chkStream"},
                                  {"EndInflow", "tbInflow", "", "chkStream"},
                                  {"Overlandflow", "tbOverland", "", "chkStream"}};
constexpr Property kBarrier[] = {{"Label", "tbLabel"},
                                 {"ClosedDomain", "ClosedDomain"},
                                 {"IgnoreInside", "IgnoreInside", "", "ClosedDomain"},
                                 {"IgnoreOutside", "IgnoreOutside", "", "ClosedDomain"}};
constexpr Property kDomain[] = {{"Label", "tbLabel"},
                                {"ChangeK", "chkChangeK"},
                                {"HydCond", "tbData(0)", "", "chkChangeK"},
                                {"ChangeR", "chkChangeR"},
                                {"Recharge", "tbData(1)", "", "chkChangeR"},
                                {"ChangeP", "chkChangeP"},
                                {"Porosity", "tbData(2)", "", "chkChangeP"},
                                {"ChangeB", "chkChangeB"},
                                {"BottomElevation", "tbData(3)", "", "chkChangeB"},
                                {"ChangeA", "chkChangeA"},
                                {"AverageHead", "tbData(4)", "", "chkChangeA"}};
constexpr Property kTestPoint[] = {
    {"Label", "tbLabel"}, {"X", "tbX"}, {"Y", "tbY"}, {"ObsHead", "tbObsHead"}};
constexpr Property kParticle[] = {{"Forward", "chkDirection(1)", "chkDirection(0)"},
                                  {"SatdThick", "chkSatdThick"},
                                  {"Elevation", "tbElevation"}};
constexpr Property kText[] = {{"Text", "tbText"}, {"Hydrography", "chkLabelType(1)", "chkLabelType(0)"}};
constexpr Property kName[] = {{"Label", "tbLabel"}};
constexpr Property kFlow[] = {{"Head", "tbdata(0)"}, {"Gradient", "tbdata(1)"}, {"Orientation", "tbdata(2)"}};

constexpr KindRow kRows[] = {
    {Element::kWell, "well", "Wells and circular area sinks", "Label", "WellProperties", kWell},
    {Element::kLinesink, "linesink", "Streams, lake shores, drains", "Label", "LinesinkString", kLinesink},
    {Element::kBarrier, "barrier", "Lines that flow does not cross", "Label", "NoFlowString", kBarrier},
    {Element::kInhomogeneity, "inhomogeneity", "Domains with properties of their own", "Label",
     "Inhomogeneity", kDomain},
    {Element::kTestPoint, "testpoint", "Points with an observed head", "Label", "TestPointProperties",
     kTestPoint},
    {Element::kParticle, "particle", "Starting points of traced particles", "", "ParticleProperties",
     kParticle},
    {Element::kFluxLine, "fluxline", "Lines across which the flow is summed", "Label", "FluxInspectDialog",
     kName},
    {Element::kCapzone, "capturezone", "Outlines of capture zones", "Label", "FluxInspectDialog", kName},
    {Element::kTextLabel, "text", "Texts on the map", "Text", "TextLabelDialog", kText},
    {Element::kUniformFlow, "uniformflow", "The regional gradient", "", "UniformFlow", kFlow}};

bool IsYes(std::string_view text) {
  return EqualNoCase(text, "yes") || EqualNoCase(text, "true") || Val(text) != 0.0;
}

}  // namespace

std::span<const KindRow> KindRows() {
  return kRows;
}

const KindRow* FindKindRow(Element element) {
  const auto* found = std::find_if(std::begin(kRows), std::end(kRows),
                                   [element](const KindRow& row) { return row.element == element; });
  return found == std::end(kRows) ? nullptr : found;
}

std::vector<ControlSetting> SettingsOf(const Property& property, const std::string& value) {
  std::vector<ControlSetting> settings;
  if (!property.with.empty()) settings.push_back({std::string(property.with), "yes"});
  std::string control(property.control);
  if (const std::size_t star = control.find('*'); star != std::string::npos) {
    if (!IsNumeric(value)) return {};
    control.replace(star, 1, std::string(Trim(value)));
    settings.push_back({control, "yes"});
  } else if (!property.off.empty() && !IsYes(value)) {
    settings.push_back({std::string(property.off), "yes"});
  } else {
    settings.push_back({control, value});
  }
  return settings;
}

void SetControl(Form& form, const ControlSetting& setting) {
  for (const ControlSpec& spec : form.Controls()) {
    if (!EqualNoCase(spec.name, setting.control)) continue;
    if (spec.kind == ControlKind::kCheck || spec.kind == ControlKind::kOption)
      form.SetChecked(spec.name, IsYes(setting.value));
    else
      form.SetText(spec.name, setting.value);
    return;
  }
}

}  // namespace ormel
