// The wells of an element section.
#pragma once

#include <array>
#include <vector>

#include "solver/input.h"

namespace ormel {

class TextSink;

void WriteWells(TextSink& deck, const std::array<std::vector<WellInput>, kWellKinds>& wells);

}  // namespace ormel
