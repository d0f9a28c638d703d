// Numbers that a user types into a box.
#pragma once

#include <optional>
#include <string>

#include "core/user_interface.h"

namespace ormel {

struct Ormel;

/// Is a text that is not wholly a number to be taken for what it reads as?  Enter says No.
bool AcceptAsNumber(Ormel& ormel, const std::string& field, const std::string& text);

/// The number that the user enters; nothing when the box was cancelled or left empty.  A text that is not
/// wholly a number is asked about, and the box comes again when the user does not mean it.  Too large a
/// number is nothing.
std::optional<double> AskNumber(Ormel& ormel, InputBox box);

}  // namespace ormel
