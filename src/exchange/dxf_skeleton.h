// The parts of a drawing that are the same in every file, as lines of group code and value.
#pragma once

#include <string_view>

namespace ormel::dxf {

extern const std::string_view kHeaderHead, kHeaderTail;  ///< before and behind the extents
extern const std::string_view kHeaderEnd;                ///< behind the handle seed
extern const std::string_view kClasses;
extern const std::string_view kTablesHead, kTablesTail;  ///< before and behind the layers
extern const std::string_view kBlocks, kObjects;

}  // namespace ormel::dxf
