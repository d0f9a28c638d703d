// BBM maps made by hand: one with every record, one of every operation.
#pragma once

#include <string>

#include "basemaps/bbm_writer.h"

namespace ormel::test {

inline BbmObject SampleLine(std::vector<BbmAttribute> attributes, std::vector<BbmObject::At> points) {
  BbmObject line;
  line.attributes = std::move(attributes);
  line.points = std::move(points);
  return line;
}

/// A lake with an island: rings of the lines 1 and 2 (the second against its direction), and of line 3.
inline BbmContent SampleContent(std::int32_t type = kBbmLineGraph,
                                const std::string& description = "HYDROGRAPHY") {
  BbmContent content;
  content.header.title = "ROADS";  // the theme stands in the description, not here
  content.header.source = "hand";
  content.header.description = description;
  content.header.data_type = type;
  content.header.multiplier = 10;
  content.lines = {SampleLine({{50, 200}}, {{0, 0}, {1000, 0}, {1000, 1000}}),
                   SampleLine({{50, 412}}, {{0, 0}, {0, 1000}, {1000, 1000}}),
                   SampleLine({}, {{400, 400}, {600, 400}, {600, 600}, {400, 400}})};
  for (const std::int32_t value : {7, 8, 9}) content.lines[1].extra.push_back(value);
  BbmObject lake;
  lake.attributes = {{50, 101}};
  lake.lines = {1, -2, 0, 3};
  lake.extra = {42};
  content.areas = {lake};
  BbmObject spring;
  spring.points = {{500, 250}};
  spring.attributes = {{50, 300}};
  spring.extra = {1, 2};
  content.points = {spring, spring};
  content.points[1].attributes.clear();
  return content;
}

inline std::string SampleStream() {
  BbmOperations stream;
  stream.Color(4);
  stream.Width(2);
  stream.Begin({0, 0});
  stream.Add({100, 0});
  stream.Add({100, 100});
  stream.Color(15);
  stream.Begin({10, 10});
  stream.Add({20, 20});
  stream.Begin({30, 30});  // of one point: not drawn
  stream.Polygon({{40, 40}, {60, 40}, {60, 60}});
  stream.Begin({70, 70});
  stream.Add({80, 80});  // pending at the end
  BbmHeader header;
  header.multiplier = 10;
  header.pixels_x = header.pixels_y = 96;
  return stream.Bytes(header);
}

}  // namespace ormel::test
