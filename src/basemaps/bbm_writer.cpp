#include "basemaps/bbm_writer.h"

#include <algorithm>

#include "basemaps/bbm_file.h"
#include "text/files.h"

namespace ormel {
namespace {

void PutInteger(std::string& out, std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  for (unsigned shift = 0; shift < 32; shift += 8) out.push_back(static_cast<char>(bits >> shift & 0xffU));
}

void PutHeader(std::string& out, const BbmHeader& h) {
  out += kBbmMagic;
  for (const std::int32_t value : {h.major, h.minor, h.revision}) PutInteger(out, value);
  for (std::string text : {h.title, h.source, h.description}) {
    text.resize(kBbmTextSize, ' ');
    out += text;
  }
  for (const std::int32_t value : {h.data_type, h.projection, h.multiplier}) PutInteger(out, value);
  if (h.operations())
    for (const std::int32_t value : {h.pixels_x, h.pixels_y, 0}) PutInteger(out, value);
  else
    for (const std::int32_t value : {h.points, h.lines, h.areas}) PutInteger(out, value);
  for (const std::int32_t value : {h.x1, h.y1, h.x2, h.y2}) PutInteger(out, value);
}

std::int32_t Size(std::size_t count) {
  return static_cast<std::int32_t>(count);
}

struct Box {
  BbmObject::At low{INT32_MAX, INT32_MAX}, high{INT32_MIN, INT32_MIN};
  void Widen(BbmObject::At at) {
    low = {std::min(low.x, at.x), std::min(low.y, at.y)};
    high = {std::max(high.x, at.x), std::max(high.y, at.y)};
  }
};

void PutAttributes(std::string& out, const BbmObject& object) {
  for (const BbmAttribute& a : object.attributes) {
    PutInteger(out, a.major);
    PutInteger(out, a.minor);
  }
}

void PutBox(std::string& out, const BbmObject& object, Box& whole) {
  Box box;
  for (const BbmObject::At& at : object.points) {
    box.Widen(at);
    whole.Widen(at);
  }
  if (object.points.empty()) box = {{0, 0}, {0, 0}};
  for (const std::int32_t side : {box.low.x, box.low.y, box.high.x, box.high.y}) PutInteger(out, side);
}

void PutPoint(std::string& out, const BbmObject& object, Box& whole) {
  if (object.points.size() != 1)
    throw BbmError("a point has " + std::to_string(object.points.size()) + " places");
  PutInteger(out, Size(object.extra.size()));
  PutInteger(out, Size(object.attributes.size()));
  PutBox(out, object, whole);
  PutInteger(out, object.points.front().x);
  PutInteger(out, object.points.front().y);
  PutAttributes(out, object);
  for (const std::int32_t value : object.extra) PutInteger(out, value);
}

void PutLine(std::string& out, const BbmObject& object, Box& whole) {
  const std::size_t count = object.points.size(), extra = count == 0 ? 0 : object.extra.size() / count;
  if (extra * count != object.extra.size())
    throw BbmError("a line of " + std::to_string(count) + " points has " +
                   std::to_string(object.extra.size()) + " extra values");
  for (const std::size_t number : {extra, object.attributes.size(), count}) PutInteger(out, Size(number));
  PutBox(out, object, whole);
  PutAttributes(out, object);
  auto value = object.extra.begin();
  for (const BbmObject::At& at : object.points) {
    PutInteger(out, at.x);
    PutInteger(out, at.y);
    for (std::size_t i = 0; i < extra; ++i) PutInteger(out, *value++);
  }
}

void PutArea(std::string& out, const BbmObject& object) {
  for (const std::size_t number : {object.extra.size(), object.attributes.size(), object.lines.size()})
    PutInteger(out, Size(number));
  PutAttributes(out, object);
  for (const std::int32_t line : object.lines) PutInteger(out, line);
  for (const std::int32_t value : object.extra) PutInteger(out, value);
}

void SetBox(BbmHeader& header, const Box& box, bool any) {
  if (!any) return;
  header.x1 = box.low.x;
  header.y1 = box.low.y;
  header.x2 = box.high.x;
  header.y2 = box.high.y;
}

}  // namespace

std::string BbmBytesOf(const BbmContent& content) {
  if (content.header.operations()) throw BbmError("an operation stream has no records");
  std::string records;
  Box whole;
  const auto start = [&](std::int32_t tag, std::size_t place) {
    PutInteger(records, tag);
    PutInteger(records, Size(place + 1));
  };
  for (std::size_t i = 0; i < content.points.size(); ++i) {
    start(kBbmPoint, i);
    PutPoint(records, content.points[i], whole);
  }
  for (std::size_t i = 0; i < content.lines.size(); ++i) {
    start(kBbmLine, i);
    PutLine(records, content.lines[i], whole);
  }
  for (std::size_t i = 0; i < content.areas.size(); ++i) {
    start(kBbmArea, i);
    PutArea(records, content.areas[i]);
  }
  BbmHeader header = content.header;
  header.points = Size(content.points.size());
  header.lines = Size(content.lines.size());
  header.areas = Size(content.areas.size());
  SetBox(header, whole, whole.low.x <= whole.high.x);
  std::string out;
  PutHeader(out, header);
  return out + records;
}

void BbmOperations::Widen(BbmObject::At at) {
  if (!any_) low_ = high_ = at;
  any_ = true;
  low_ = {std::min(low_.x, at.x), std::min(low_.y, at.y)};
  high_ = {std::max(high_.x, at.x), std::max(high_.y, at.y)};
}

void BbmOperations::Begin(BbmObject::At at) {
  Put({kBbmBegin, at.x, at.y}, at);
}

void BbmOperations::Add(BbmObject::At at) {
  Put({kBbmAdd, at.x, at.y}, at);
}

void BbmOperations::Width(std::int32_t value) {
  numbers_.push_back(kBbmWidth);
  numbers_.push_back(value);
}

void BbmOperations::Color(std::int32_t number) {
  numbers_.push_back(kBbmColor);
  numbers_.push_back(number);
}

void BbmOperations::Put(std::initializer_list<std::int32_t> numbers, BbmObject::At at) {
  numbers_.insert(numbers_.end(), numbers);
  Widen(at);
}

void BbmOperations::Polygon(const std::vector<BbmObject::At>& points) {
  numbers_.insert(numbers_.end(), {kBbmPolygon, Size(points.size())});
  for (const BbmObject::At& at : points) Put({at.x, at.y}, at);
}

std::string BbmOperations::Bytes(BbmHeader header) const {
  header.data_type = kBbmOperations;
  SetBox(header, {low_, high_}, any_);
  std::string out;
  PutHeader(out, header);
  for (const std::int32_t number : numbers_) PutInteger(out, number);
  PutInteger(out, kBbmEnd);
  return out;
}

void WriteBbm(const std::string& path, const std::string& bytes) {
  TextFileWriter file(path);  // takes any bytes
  file.Write(bytes);
  file.Commit();
}

}  // namespace ormel
