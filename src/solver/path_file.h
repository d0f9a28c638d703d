// Reader of pathline files (*.PTH).
//
//   START ...      a path begins
//   (point)        x, y, elevation, time, head: 13 columns each, from columns 7, 21, 35, 49 and 63
//   END ...        the path is complete
//
// A line that begins with "*" is a comment.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/types.h"
#include "solver/file_damage.h"

namespace ormel {

struct PathPoint {
  ModelPoint at;
  double elevation = 0.0;  ///< [computation length]
  double time = 0.0;       ///< since the start, never negative [d]
  double head = 0.0;       ///< the fifth number of the line
};

struct Pathline {
  std::string start;  ///< the line that began it
  std::string end;    ///< the line that ended it, with the reason
  std::vector<PathPoint> points;
};

/// Calls `path` for each complete path in the file's order.  The path is the reader's own and is used again
/// for the next.  At damage, the complete paths before it have been delivered.
ReadOutcome ReadPathFile(const std::string& path, const std::function<void(const Pathline&)>& pathline);

}  // namespace ormel
