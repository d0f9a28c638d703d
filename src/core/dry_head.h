// What a solver says of an aquifer without water.
#pragma once

namespace ormel {

/// A computed head below it says that the aquifer is dry [computation length].
inline constexpr double kDryHead = -1000.0;

}  // namespace ormel
