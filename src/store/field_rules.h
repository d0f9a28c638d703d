// The rules for the contents of fields, for those who look for contents that break them.
#pragma once

#include <string>

#include "store/schema.h"

namespace ormel::schema {

/// A condition of the store's dialect that holds for every content that the field can have.
std::string Condition(const Field& field);
/// The same in words.
std::string Rule(const Field& field);

}  // namespace ormel::schema
