// Topics of the user guide.
#pragma once

#include <string_view>

namespace ormel {

inline constexpr std::string_view kContentsTopic = "";
inline constexpr std::string_view kGuideTopic = "guide";        ///< context 10000
inline constexpr std::string_view kTutorialTopic = "tutorial";  ///< context 10300

}  // namespace ormel
