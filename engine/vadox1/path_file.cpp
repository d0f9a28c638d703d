#include "vadox1/path_file.h"

#include <fmt/format.h>

#include <initializer_list>
#include <iterator>
#include <string_view>

#include "files/numbers.h"

namespace vadox1 {
namespace {

constexpr int kField = 13;
constexpr int kDecimals = 8;

std::string Field(double value) {
  std::string text = files::FixedToFit(value, kField, kDecimals, false);
  return text.empty() ? fmt::format("{:.5E}", value) : text;
}

void AppendPoint(std::string& text, const aem::PathPoint& point) {
  std::string_view gap = "      ";
  for (const double value : {point.at.real(), point.at.imag(), point.elevation, point.time, point.head}) {
    fmt::format_to(std::back_inserter(text), "{}{:>13}", gap, Field(value));
    gap = " ";
  }
  text += "\r\n";
}

}  // namespace

std::string EndText(const aem::Path& path) {
  const std::string reason = aem::PathEndName(path.end);
  return path.label.empty() ? reason : reason + " " + path.label;
}

std::string PathText(std::span<const NamedPath> paths) {
  if (paths.empty()) return "* \r\n";
  std::string text;
  for (const NamedPath& named : paths) {
    const aem::PathPoint& first = named.path.points.front();
    text += fmt::format("START {:>13} {:>13} {:>13} {:>13} {}, {}\r\n", Field(first.at.real()),
                        Field(first.at.imag()), Field(first.elevation), Field(0.0), named.reason,
                        named.path.start.forward ? "forward" : "backward");
    for (const aem::PathPoint& point : named.path.points) AppendPoint(text, point);
    text += fmt::format("END   {}\r\n", EndText(named.path));
  }
  return text;
}

}  // namespace vadox1
