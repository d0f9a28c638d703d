#include "contour/contour_run.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <optional>

#include "files/numbers.h"
#include "files/output_file.h"
#include "files/text_lines.h"

namespace contour {
namespace {

constexpr int kColumns = 14;
constexpr int kDecimals = 6;

std::string PointLine(const Point& point) {
  const std::string x = files::FixedToFit(point.x, kColumns - 1, kDecimals, false);
  const std::string y = files::FixedToFit(point.y, kColumns - 1, kDecimals, true);
  if (x.empty() || y.empty()) {
    throw ContourError(
        fmt::format("The coordinates {:.6g}, {:.6g} are too large for a contour file. Check the "
                    "units and the extents of the model.",
                    point.x, point.y));
  }
  return fmt::format("      {:>14}{:>14}\r\n", x, y);
}

/// The decimals of a level show no trace of its multiplication: 0.30000000000000004 is written 0.3.
std::string LevelLine(double level) {
  return fmt::format("LEVEL {:.10g}\r\n", level + 0.0);
}

double NumberArgument(const std::string& text, const char* meaning) {
  const std::optional<double> value = files::ReadNumber(files::Trim(text));
  if (!value) throw ContourError(fmt::format("The contour {} must be a number, not \"{}\".", meaning, text));
  return *value;
}

Levels ReadLevels(const std::string& lowest, const std::string& step, const std::string& highest) {
  const Levels levels{NumberArgument(lowest, "minimum"), NumberArgument(step, "interval"),
                      NumberArgument(highest, "maximum")};
  if (!(levels.interval > 0.0)) throw ContourError("The contour interval must be greater than zero.");
  if (levels.last < levels.first) throw ContourError("The contour maximum lies below the contour minimum.");
  return levels;
}

void WriteContours(const std::string& stem, const Levels& levels) {
  const std::string grid_name = files::WithExtension(stem, ".GRD");
  const Grid grid = ReadSurferGrid(files::ReadWholeFile(grid_name), grid_name);
  files::OutputFile out(files::WithExtension(stem, ".CTR"));
  std::string text;
  TraceContours(grid, levels, [&](double level, const Polyline& line) {
    text.clear();
    AppendContour(text, level, line);
    out.Write(text);
  });
  out.Commit();
}

}  // namespace

void AppendContour(std::string& text, double level, const Polyline& line) {
  std::vector<std::string> points;
  for (const Point& point : line) {
    std::string written = PointLine(point);
    if (points.empty() || written != points.back()) points.push_back(std::move(written));
  }
  const std::string head = LevelLine(level);
  for (std::size_t first = 0; first + 1 < points.size(); first += kMostPoints - 1) {
    text += head;
    const std::size_t end = std::min(points.size(), first + kMostPoints);
    for (std::size_t i = first; i < end; ++i) text += points[i];
  }
}

int RunContour(const std::vector<std::string>& arguments) {
  if (arguments.size() < 4) {
    std::fputs("usage: CONTOUR.EXE <stem> <min> <interval> <max>\n", stderr);
    return 1;
  }
  // A stem with blanks that the caller did not quote arrives in pieces.
  const std::size_t first = arguments.size() - 3;
  std::string stem = arguments[0];
  for (std::size_t i = 1; i < first; ++i) stem += " " + arguments[i];
  std::string failure;
  try {
    WriteContours(stem, ReadLevels(arguments[first], arguments[first + 1], arguments[first + 2]));
    return 0;
  } catch (const std::exception& error) {
    failure = error.what();
  }
  // Contours of an earlier grid would be drawn as if they belonged to this one.
  ::unlink(files::WithExtension(stem, ".CTR").c_str());
  std::fprintf(stderr, "CONTOUR: %s No contours were written.\n", failure.c_str());
  return 1;
}

}  // namespace contour
