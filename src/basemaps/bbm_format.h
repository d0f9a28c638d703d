// What a BBM map file holds: a header, then points, lines and areas in scaled whole numbers, or a stream of
// drawing operations.  All numbers are 32-bit, little-endian.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

inline constexpr char kBbmMagic[] = "*BBM";
inline constexpr std::size_t kBbmHeaderSize = 296;
inline constexpr std::size_t kBbmTextSize = 80;

/// Kinds of maps, `BbmHeader::data_type`.
enum BbmType : std::int32_t {
  kBbmLineGraph = -100000,   ///< the theme of the map is the first four characters of the description
  kBbmCodes = -100001,       ///< pens by the major codes 100, 200 and 300
  kBbmBlack = -100004,       ///< the same, with black lines
  kBbmPlain = -100005,       ///< lines plain and black; objects without attributes are drawn too
  kBbmOperations = -100006,  ///< a stream of drawing operations
};

enum BbmTag : std::int32_t { kBbmPoint = 0x7F00, kBbmLine = 0x7F01, kBbmArea = 0x7F02 };

/// Of an operation stream.
enum BbmOperation : std::int32_t {
  kBbmBegin = 0,    ///< x, y: a polyline begins
  kBbmAdd = 1,      ///< x, y: and goes on
  kBbmWidth = 2,    ///< pen width in pixels of the drawing's own device
  kBbmColor = 3,    ///< number of the table of 16
  kBbmPolygon = 4,  ///< count, then as many x, y: a filled polygon
  kBbmEnd = 999,
};

struct BbmHeader {
  std::int32_t major = 1, minor = 0, revision = 2;
  std::string title, source, description;  ///< at most 80 characters each
  std::int32_t data_type = kBbmLineGraph;
  std::int32_t projection = 0;
  std::int32_t multiplier = 1;              ///< coordinates are map units times this
  std::int32_t pixels_x = 0, pixels_y = 0;  ///< of an operation stream: pixels to the inch of its own device
  std::int32_t points = 0, lines = 0, areas = 0;  ///< of the others; as the file says, whatever it holds
  std::int32_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;    ///< bounding box, times `multiplier`
  bool operations() const { return data_type == kBbmOperations; }
};

/// A major code divided by ten is the theme: 2 contours, 5 water, 17 roads, 18 railways, 19 other lines of
/// traffic.  The minor code is the class within it.
struct BbmAttribute {
  std::int32_t major = 0, minor = 0;
  friend bool operator==(const BbmAttribute&, const BbmAttribute&) = default;
};

/// A point, line or area, in whole numbers as the file has it.
struct BbmObject {
  struct At {
    std::int32_t x = 0, y = 0;
    friend bool operator==(const At&, const At&) = default;
  };
  std::int32_t number = 0;  ///< from 1, within its kind
  std::vector<BbmAttribute> attributes;
  std::vector<At> points;  ///< one of a point, those of a line, none of an area
  /// Of an area: numbers of lines, negative for one that runs against the ring; 0 ends a ring.
  std::vector<std::int32_t> lines;
  std::vector<std::int32_t> extra;  ///< of a point or area, or `points.size()` times as many of a line
};

}  // namespace ormel
