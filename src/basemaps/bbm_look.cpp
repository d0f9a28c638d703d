#include "basemaps/bbm_look.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr double kMetersPerFoot = 0.3048;

struct ThemePen {
  std::string_view theme;
  Color pen;
};
constexpr std::array kThemePens{ThemePen{"HYDR", Color{0xC0C000}}, ThemePen{"ROAD", QBColor(2)},
                                ThemePen{"MISC", QBColor(3)}, ThemePen{"HYPS", QBColor(6)}};

bool Between(std::int32_t value, std::int32_t low, std::int32_t high) {
  return value >= low && value <= high;
}

int ThemeOf(const BbmAttribute& attribute) {
  return attribute.major / 10;
}

/// The class of a line within a theme: of its first attribute of that theme.
std::int32_t ClassOf(const BbmObject& line, int theme) {
  const auto at = std::find_if(line.attributes.begin(), line.attributes.end(),
                               [theme](const BbmAttribute& a) { return ThemeOf(a) == theme; });
  return at == line.attributes.end() ? 0 : at->minor;
}

void LookOfContour(const BbmObject& line, const BbmLevel& level, BbmLook& look) {
  for (const BbmAttribute& a : line.attributes) {
    const bool meters = Between(a.major, 21, 23), feet = Between(a.major, 24, 25);
    if (!meters && !feet) continue;
    double value = a.minor;
    if (meters && !level.compute_meters) value /= kMetersPerFoot;
    if (feet && level.compute_meters) value *= kMetersPerFoot;
    look.label = Trim(NumberText(std::round(value * 100.0) / 100.0));
  }
}

void LookOfWater(const BbmObject& line, const BbmLevel& level, BbmLook& look) {
  constexpr std::array kHidden{419, 611, 612, 617, 601};
  for (const BbmAttribute& a : line.attributes) {
    if (a.major != 50) continue;
    const bool hidden = std::find(kHidden.begin(), kHidden.end(), a.minor) != kHidden.end();
    if (hidden || a.minor / 100 == 2 || (a.minor == 610 && level.Detail() < 2)) look.visible = false;
  }
}

/// The highest class of road names it.
std::string RoadLabel(const BbmObject& line) {
  std::string label;
  const auto holds = [&label](std::string_view text) { return label.find(text) != std::string::npos; };
  for (const BbmAttribute& a : line.attributes) {
    const std::string number = std::to_string(a.minor);
    if (a.major == 172) label = "I-" + number;
    if (a.major == 173 && !holds("I-")) label = "US-" + number;
    if (a.major == 174 && !holds("I-") && !holds("US")) label = "SR-" + number;
    if (a.major == 176 && !holds("I-") && !holds("US") && !holds("CR")) label = "CR-" + number;
  }
  return label;
}

double AngleOf(const BbmObject& line) {
  if (line.points.size() < 2) return 0.0;
  const double dx = static_cast<double>(line.points[1].x) - line.points[0].x;
  const double dy = static_cast<double>(line.points[1].y) - line.points[0].y;
  return dx == 0.0 ? 90.0 : std::atan(dy / dx) * 180.0 / 3.1415926;
}

void LookOfRoad(const BbmObject& line, const BbmLevel& level, BbmLook& look) {
  const std::int32_t road = ClassOf(line, 17);
  const int detail = level.Detail();
  const bool main = Between(road, 201, 204), second = Between(road, 205, 209);
  if (main && detail < 2) look.width = 2.0;
  if (second && detail == 0) look.width = 2.0;
  if (detail >= 1 && road == 402) look.visible = false;
  if (detail == 2 && Between(road, 210, 299)) look.visible = false;
  look.label = RoadLabel(line);
  look.angle = AngleOf(line);
}

void LookOfRailway(const BbmObject& line, const BbmLevel& level, BbmLook& look) {
  const std::int32_t railway = ClassOf(line, 18);
  look.color = QBColor(6);
  if (level.Detail() == 1) look.visible = railway == 602 || railway == 607;
  if (level.Detail() == 2) look.visible = false;
}

void LookOfTheme(const BbmObject& line, const BbmLevel& level, BbmLook& look) {
  switch (ThemeOf(line.attributes.front())) {
    case 2:
      return LookOfContour(line, level, look);
    case 5:
      return LookOfWater(line, level, look);
    case 17:
      return LookOfRoad(line, level, look);
    case 18:
      return LookOfRailway(line, level, look);
    case 19:
      look.dotted = Between(ClassOf(line, 19), 201, 300);
      return;
    default:
      return;
  }
}

BbmLook LookByCode(const BbmHeader& header, const BbmObject& line, Color& pen) {
  constexpr std::array kPens{QBColor(2), QBColor(3), QBColor(6), QBColor(5)};
  BbmLook look;
  const BbmAttribute code = line.attributes.empty() ? BbmAttribute{} : line.attributes.front();
  look.visible = code.major == 100 || code.major == 200 || code.major == 300;
  look.symbols = code.major == 300;
  if (code.major == 100) pen = QBColor(1);
  if (code.major == 200 && Between(code.minor, 0, 3)) pen = kPens[static_cast<std::size_t>(code.minor)];
  if (header.data_type == kBbmBlack) pen = QBColor(0);
  look.color = look.symbols ? kBbmSymbolColor : pen;
  return look;
}

}  // namespace

Color BbmFirstPen(const BbmHeader& header) {
  if (header.data_type != kBbmLineGraph) return QBColor(0);
  const std::string_view theme = std::string_view(header.description).substr(0, 4);
  const auto row = std::find_if(kThemePens.begin(), kThemePens.end(),
                                [theme](const ThemePen& pen) { return pen.theme == theme; });
  return row == kThemePens.end() ? QBColor(0) : row->pen;
}

BbmLook LookOfLine(const BbmHeader& header, const BbmObject& line, const BbmLevel& level, Color& pen) {
  BbmLook look;
  look.color = pen;
  switch (header.data_type) {
    case kBbmLineGraph:
      break;
    case kBbmCodes:
    case kBbmBlack:
      return LookByCode(header, line, pen);
    case kBbmPlain:
      return look;
    default:
      look.color = pen = QBColor(0);
      return look;
  }
  look.visible = !line.attributes.empty();
  if (look.visible) LookOfTheme(line, level, look);
  if (!look.visible) look.label.clear();
  return look;
}

bool IsWater(const BbmObject& area) {
  return std::any_of(area.attributes.begin(), area.attributes.end(),
                     [](const BbmAttribute& a) { return ThemeOf(a) == 5 && Between(a.minor, 101, 104); });
}

bool IsDrawnPoint(const BbmHeader& header, const BbmObject& point) {
  return header.data_type != kBbmLineGraph || !point.attributes.empty();
}

Color BbmStreamColor(int number) {
  return number == 15 ? QBColor(0) : QBColor(number);
}

double BbmStreamWidth(const BbmHeader& header, double width) {
  constexpr double kWidest = 40.0;
  const double dots = header.pixels_x > 0 ? header.pixels_x : 96.0;
  return std::clamp(width * 96.0 / dots, 1.0, kWidest);
}

}  // namespace ormel
