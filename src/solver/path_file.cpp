#include "solver/path_file.h"

#include <array>
#include <string_view>

#include "solver/columns.h"
#include "solver/guarded_read.h"

namespace ormel {
namespace {

constexpr std::array<std::size_t, 5> kFirstColumns{7, 21, 35, 49, 63};
constexpr std::size_t kFieldWidth = 13;

/// False when one of the five numbers is missing.
bool ReadPoint(std::string_view line, PathPoint& point) {
  const std::array<double*, 5> targets{&point.at.x, &point.at.y, &point.elevation, &point.time, &point.head};
  for (std::size_t i = 0; i < targets.size(); ++i) {
    const auto value = ColumnNumber(line, kFirstColumns[i], kFieldWidth);
    if (!value) return false;
    *targets[i] = *value;
  }
  return true;
}

ReadOutcome ReadLines(LineReader& lines, const std::function<void(const Pathline&)>& deliver) {
  Pathline current;
  bool begun = false;
  std::string line;
  while (lines.Next(line)) {
    const std::string_view text(line);
    if (text.starts_with("*")) continue;
    if (text.starts_with("STA")) {
      if (begun) return DamageAt(lines, "a path begins before the one above it has ended");
      begun = true;
      current.start = line;
      current.points.clear();
    } else if (text.starts_with("END")) {
      if (!begun) return DamageAt(lines, "a path ends that has not begun");
      begun = false;
      current.end = line;
      deliver(current);
    } else {
      if (!begun) return DamageAt(lines, "a point stands before the first START");
      PathPoint point;
      if (!ReadPoint(text, point)) return DamageAt(lines, "the point has fewer than five numbers");
      current.points.push_back(point);
    }
  }
  if (begun) return DamageAt(lines, "the file ends inside a path");
  return std::nullopt;
}

}  // namespace

ReadOutcome ReadPathFile(const std::string& path, const std::function<void(const Pathline&)>& pathline) {
  return ReadGuarded(path, [&](LineReader& lines) { return ReadLines(lines, pathline); });
}

}  // namespace ormel
