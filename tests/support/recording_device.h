// A device that writes down what is drawn on it, and a surface of a map for tests.
#pragma once

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "view/display_list.h"
#include "view/map_view_impl.h"

namespace ormel::test {

/// "5" for a colour of the table of 16, else "r/g/b".
inline std::string ColorName(Color color) {
  for (int i = 0; i < 16; ++i)
    if (QBColor(i) == color) return std::to_string(i);
  std::ostringstream out;
  out << RedOf(color) << '/' << GreenOf(color) << '/' << BlueOf(color);
  return out.str();
}

/// One line of text a call:
///   [Layer]   line 5 w1.5 10,20 30,40   area 5 fill 7 ...   circle 5 at 10,20 r3 [fill 5]
///   text "12.3" at 10,20 1 h13 a45 centre Arial [bold] [italic]   cover ...   clear 15
inline std::string Describe(const DrawCall& call) {
  std::ostringstream out;
  const auto pen = [&] {
    out << ' ' << ColorName(call.pen.color);
    if (call.pen.width != 1.0) out << " w" << call.pen.width;
    if (call.pen.style != PenStyle::kSolid) out << " style" << static_cast<int>(call.pen.style);
  };
  const auto points = [&] {
    for (const DevicePoint& p : call.points) out << ' ' << p.x << ',' << p.y;
  };
  const auto rect = [&] {
    out << ' ' << call.rect.left << ',' << call.rect.top << ' ' << call.rect.right << ',' << call.rect.bottom;
  };
  switch (call.kind) {
    case DrawKind::kClear:
      out << "clear " << ColorName(*call.fill);
      break;
    case DrawKind::kLayer:
      out << '[' << call.text << ']';
      break;
    case DrawKind::kPolyline:
      out << "line";
      pen();
      points();
      break;
    case DrawKind::kFineLine:
      out << "line";
      pen();
      for (const FinePoint& p : call.fine) out << ' ' << std::lround(p.x) << ',' << std::lround(p.y);
      break;
    case DrawKind::kArea:
      out << "area " << ColorName(*call.fill) << " opacity " << call.opacity;
      for (const FinePoint& p : call.fine) out << ' ' << std::lround(p.x) << ',' << std::lround(p.y);
      break;
    case DrawKind::kAreas:
      out << "areas " << ColorName(*call.fill) << " opacity " << call.opacity;
      for (const std::vector<FinePoint>& ring : call.rings) {
        out << " ring";
        for (const FinePoint& p : ring) out << ' ' << std::lround(p.x) << ',' << std::lround(p.y);
      }
      break;
    case DrawKind::kPicture:
      out << "picture " << call.pixels->width << 'x' << call.pixels->height;
      for (const FinePoint& p : {call.place.upper_left, call.place.upper_right, call.place.lower_left})
        out << ' ' << p.x << ',' << p.y;
      break;
    case DrawKind::kPolygon:
      out << "area";
      pen();
      out << " fill " << ColorName(*call.fill);
      points();
      break;
    case DrawKind::kCircle:
      out << "circle";
      pen();
      out << " at";
      points();
      out << " r" << call.radius;
      if (call.fill) out << " fill " << ColorName(*call.fill);
      break;
    case DrawKind::kText:
      out << "text \"" << call.text << "\" at";
      points();
      out << ' ' << ColorName(call.style.color) << " h" << call.style.height;
      if (call.style.angle != 0.0) out << " a" << call.style.angle;
      if (call.style.align == TextAlign::kCentre) out << " centre";
      if (call.style.align == TextAlign::kRight) out << " right";
      out << ' ' << call.style.font;
      if (call.style.bold) out << " bold";
      if (call.style.italic) out << " italic";
      break;
    case DrawKind::kCover:
      out << "cover " << ColorName(*call.fill) << " opacity " << call.opacity;
      rect();
      break;
    case DrawKind::kSetClip:
      out << "clip";
      rect();
      break;
    case DrawKind::kClearClip:
      out << "no clip";
      break;
  }
  return out.str();
}

class RecordingDevice : public DisplayList {
 public:
  explicit RecordingDevice(int width = 400, int height = 400, int dpi = 96)
      : DisplayList(width, height, dpi) {}

  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const DrawCall& call : calls()) lines.push_back(Describe(call));
    return lines;
  }
  /// Names of the layers that drew something, in order.
  std::vector<std::string> LayersDrawn() const {
    std::vector<std::string> names;
    std::string current;
    for (const DrawCall& call : calls()) {
      if (call.kind == DrawKind::kLayer)
        current = call.text;
      else if (!current.empty() && (names.empty() || names.back() != current))
        names.push_back(current);
    }
    return names;
  }
  /// What was drawn in one layer, without its name.
  std::vector<std::string> Layer(const std::string& name) const {
    std::vector<std::string> lines;
    bool inside = false;
    for (const DrawCall& call : calls()) {
      if (call.kind == DrawKind::kLayer)
        inside = call.text == name;
      else if (inside)
        lines.push_back(Describe(call));
    }
    return lines;
  }
  bool Drew(const std::string& line) const {
    const auto lines = Lines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
};

/// 400 by 400 pixels: with the window -100 to 100 a map unit has two pixels.
class RecordingSurface : public MapSurface {
 public:
  DrawingDevice* BeginPicture() override {
    picture.Reset();
    ++pictures;
    return &picture;
  }
  void EndPicture() override { ++finished; }
  void Update() override { ++updates; }

  RecordingDevice picture;
  int pictures = 0, finished = 0, updates = 0;
};

}  // namespace ormel::test
