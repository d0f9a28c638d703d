#include "solver/contour_file.h"

#include <string_view>

#include "solver/columns.h"
#include "solver/guarded_read.h"

namespace ormel {
namespace {

ReadOutcome ReadLines(LineReader& lines, const std::function<void(const ContourLine&)>& polyline) {
  ContourLine current;
  bool begun = false;
  std::string line;
  while (lines.Next(line)) {
    if (std::string_view(line).starts_with("LEVEL")) {
      if (begun) polyline(current);
      const auto level = ColumnNumber(line, 6);
      if (!level) return DamageAt(lines, "the contour has no level");
      begun = true;
      current.level = *level;
      current.points.clear();
      continue;
    }
    if (!begun) return DamageAt(lines, "a point stands before the first LEVEL");
    const auto x = ColumnNumber(line, 7, 20);
    const auto y = ColumnNumber(line, 21, 34);
    if (!x || !y) return DamageAt(lines, "the point has no X and Y");
    if (current.points.size() == kMaxContourPoints)
      return DamageAt(lines, "the contour has more than " + std::to_string(kMaxContourPoints) + " points");
    current.points.push_back({*x, *y});
  }
  if (begun) polyline(current);
  return std::nullopt;
}

}  // namespace

ReadOutcome ReadContourFile(const std::string& path,
                            const std::function<void(const ContourLine&)>& polyline) {
  return ReadGuarded(path, [&](LineReader& lines) { return ReadLines(lines, polyline); });
}

}  // namespace ormel
