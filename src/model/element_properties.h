// The fields of the elements that their dialogs can set: as the command line names them, and as a sheet of
// properties shows them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/form.h"
#include "core/types.h"

namespace ormel {

/// A field of the element's row and the control of its dialog.
struct Property {
  std::string_view name;
  std::string_view control;
  std::string_view off{};   ///< the option that stands for No, where No has one of its own
  std::string_view with{};  ///< the check box that must be on for the field
};

struct KindRow {
  Element element = Element::kNone;
  std::string_view name;   ///< "well"
  std::string_view text;   ///< for the help
  std::string_view label;  ///< field that names it; empty for particles and the uniform flow
  std::string_view form;   ///< its dialog
  std::span<const Property> properties;
};

std::span<const KindRow> KindRows();

/// Null for a kind without properties.
const KindRow* FindKindRow(Element element);

struct ControlSetting {
  std::string control, value;
};
/// What the dialog's controls get for a field's new value; nothing for a text where a number chooses one of
/// several controls.
std::vector<ControlSetting> SettingsOf(const Property& property, const std::string& value);
/// As a user does it: a text, a box or option ("yes", "true" or a number other than 0 mean on).
void SetControl(Form& form, const ControlSetting& setting);

}  // namespace ormel
