// Pathlines as text (.PTH).
#pragma once

#include <span>
#include <string>

#include "aem/trace.h"

namespace vadox1 {

/// A traced path and why its particle was started.
struct NamedPath {
  aem::Path path;
  std::string reason;  ///< "point" or "well WL_000012, particle 3 of 20"
};

/// "END" lines tell the reason and the label: "END   well WL_000012".
std::string EndText(const aem::Path& path);

/// A START line (x, y, z, time 0 and the reason), a line a point, an END line for each path:
/// five fields of 13 characters at columns 7, 21, 35, 49 and 63: x, y, elevation, time since the start, head.
/// Fixed notation with as many decimals as fit.  Without any path the text is the one line "* ".
std::string PathText(std::span<const NamedPath> paths);

}  // namespace vadox1
