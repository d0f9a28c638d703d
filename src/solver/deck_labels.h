// Labels under which elements reach the solver and come back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ormel {

/// "WL_000012"
std::string VertexLabel(std::string_view prefix, std::int64_t id);
/// "LS_000345_0012"
std::string SegmentLabel(std::string_view prefix, std::int64_t pid, std::int64_t seq);

}  // namespace ormel
