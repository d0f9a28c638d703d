// Cut and bit-flipped files: each is read to its end, or refused with a message, in bounded time and memory.
#include <gtest/gtest.h>

#include <random>

#include "basemaps/bbm_file.h"
#include "basemaps/bbm_look.h"
#include "basemaps/sample_bbm.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

/// Reads all that is in a map, as a drawing does.
void ReadAll(const BBMap& map) {
  BBMap::Reader reader(map);
  BbmObject object;
  Color pen = BbmFirstPen(map.header());
  if (map.header().operations()) {
    BBMap::Reader::Steps steps;
    steps.line = [](std::span<const MapPoint>, int, double) {};
    steps.polygon = [](std::span<const MapPoint>, int) {};
    return reader.Walk(steps);
  }
  for (const BbmRecord& record : map.points()) reader.ReadPoint(record, object);
  for (const BbmRecord& record : map.lines()) {
    reader.ReadLine(record, object);
    LookOfLine(map.header(), object, {1000, true}, pen);
  }
  for (const BbmRecord& record : map.areas()) {
    reader.ReadArea(record, object);
    const BbmObject area = object;
    reader.Rings(area);
  }
}

TEST(DamagedBbm, IsReadOrRefused) {
  const test::TempDir dir;
  const std::string path = dir / "map.bbm";
  const std::string records = BbmBytesOf(test::SampleContent()), stream = test::SampleStream();
  std::mt19937 random(17);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  int refused = 0;
  for (int i = 0; i < 500; ++i) {
    std::string bytes = i % 2 == 0 ? records : stream;
    if (i % 4 < 2) bytes.resize(below(bytes.size()));
    for (int flips = 0; i % 4 >= 2 && flips < 3; ++flips) {
      const std::size_t at = i < 100 ? below(bytes.size()) : 256 + below(bytes.size() - 256);
      bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
    }
    test::WriteAll(path, bytes);
    BBMap map;
    try {
      map.Connect(path);
      ReadAll(map);
    } catch (const BbmError& e) {
      ++refused;
      EXPECT_FALSE(std::string(e.what()).empty());
    }
  }
  EXPECT_GT(refused, 250);
}

TEST(DamagedBbm, OfAnotherLengthThanItsIndexIsNotRead) {
  const test::TempDir dir;
  const std::string path = dir / "map.bbm", bytes = BbmBytesOf(test::SampleContent());
  WriteBbm(path, bytes);
  BBMap map;
  map.Connect(path);
  WriteBbm(path, bytes.substr(0, bytes.size() - 8));
  EXPECT_THROW(ReadAll(map), BbmError);
  // An area that names one long line again and again would grow without limit.
  BbmContent content = test::SampleContent();
  content.lines[0].points.assign(10'000, {1, 1});
  content.areas[0].lines.assign(1'000, 1);
  WriteBbm(path, BbmBytesOf(content));
  map.Connect(path);
  EXPECT_THROW(ReadAll(map), BbmError);
}

}  // namespace
}  // namespace ormel
