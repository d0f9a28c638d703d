// The kinds of elements as the command line names them, and the fields that their dialogs can set.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"
#include "shell/batch_interface.h"

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

/// What the dialog's controls get for a field's new value.
std::vector<BatchSetting> SettingsOf(const KindRow& row, const Property& property, const std::string& value);

}  // namespace ormel
