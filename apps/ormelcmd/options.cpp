#include "ormelcmd/options.h"

#include <cmath>

#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

double ParseNumber(std::string_view text, const std::string& what) {
  const double value = Val(text);
  if (!IsNumeric(text) || !std::isfinite(value))
    throw UserError(what + ": \"" + std::string(text) + "\" is not a number");
  return value;
}

}  // namespace

MapPoint ParsePoint(const std::string& text, const std::string& what) {
  const std::vector<std::string> parts = ParseString(text, ',');
  if (parts.size() != 2) throw UserError(what + ": \"" + text + "\" is not of the form x,y");
  return {ParseNumber(parts[0], what), ParseNumber(parts[1], what)};
}

std::vector<MapPoint> ParsePoints(const std::vector<std::string>& texts, const std::string& what) {
  std::vector<MapPoint> points;
  for (std::string text : texts) {
    for (char& c : text)
      if (c == ';') c = ' ';
    for (const std::string& point : ParseString(text, ' ')) points.push_back(ParsePoint(point, what));
  }
  return points;
}

MapRect ParseWindow(const std::string& text) {
  const std::vector<std::string> sides = ParseString(text, ',');
  if (sides.size() != 4) throw UserError("--window takes left,bottom,right,top");
  const MapPoint low = ParsePoint(sides[0] + "," + sides[1], "--window");
  const MapPoint high = ParsePoint(sides[2] + "," + sides[3], "--window");
  if (low.x >= high.x || low.y >= high.y)
    throw UserError("--window: left must be below right and bottom below top");
  return {low.x, high.x, high.y, low.y};
}

Color ParseColor(const std::string& text) {
  constexpr std::size_t kLength = 7;
  if (text.size() != kLength || text[0] != '#' ||
      text.find_first_not_of("0123456789abcdefABCDEF", 1) != std::string::npos)
    throw UserError("a colour is written #RRGGBB, not \"" + text + "\"");
  const int value = std::stoi(text.substr(1), nullptr, 16);
  return Rgb((value >> 16) & 0xff, (value >> 8) & 0xff, value & 0xff);
}

}  // namespace ormel
