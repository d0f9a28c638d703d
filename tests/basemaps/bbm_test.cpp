#include <gmock/gmock.h>

#include <fstream>

#include "basemaps/bbm_file.h"
#include "basemaps/bbm_look.h"
#include "basemaps/sample_bbm.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

using test::SampleContent;
using test::SampleLine;
using testing::ElementsAre;
using testing::HasSubstr;

class Bbm : public testing::Test {
 protected:
  BBMap Open(const std::string& bytes) {
    WriteBbm(path_, bytes);
    BBMap map;
    map.Connect(path_);
    return map;
  }
  std::string Refusal(const std::string& bytes) {
    try {
      Open(bytes);
      return "";
    } catch (const BbmError& e) {
      return e.what();
    }
  }
  test::TempDir dir_;
  std::string path_ = dir_ / "map.bbm";
};

std::string Patched(std::string bytes, std::size_t at, std::int32_t value) {
  for (unsigned i = 0; i < 4; ++i)
    bytes[at + i] = static_cast<char>(static_cast<std::uint32_t>(value) >> 8 * i);
  return bytes;
}

TEST_F(Bbm, ReadsBackEveryRecord) {
  const BbmContent content = SampleContent();
  const BBMap map = Open(BbmBytesOf(content));
  ASSERT_TRUE(map.connected());
  EXPECT_EQ(map.header().title, "ROADS");
  EXPECT_EQ(map.Bounds(), (Extents{0, 100, 0, 100}));
  BBMap::Reader reader(map);
  BbmObject object;
  for (std::size_t i = 0; i < content.lines.size(); ++i) {
    reader.ReadLine(map.lines()[i], object);
    EXPECT_EQ(object.points, content.lines[i].points);
    EXPECT_EQ(object.attributes, content.lines[i].attributes);
    EXPECT_EQ(object.extra, content.lines[i].extra);
  }
  reader.ReadPoint(map.points()[0], object);
  EXPECT_EQ(object.points, content.points[0].points);
  EXPECT_EQ(object.extra, content.points[0].extra);
  reader.ReadArea(map.areas()[0], object);
  EXPECT_EQ(object.lines, content.areas[0].lines);
  EXPECT_THAT(object.extra, ElementsAre(42));
  // The second line runs against the ring; the island is a ring of its own.
  const auto rings = reader.Rings(object);
  ASSERT_EQ(rings.size(), 2u);
  EXPECT_THAT(rings[0], ElementsAre(MapPoint{0, 0}, MapPoint{100, 0}, MapPoint{100, 100}, MapPoint{100, 100},
                                    MapPoint{0, 100}, MapPoint{0, 0}));
  EXPECT_EQ(rings[1].size(), 4u);
}

TEST_F(Bbm, RefusesWhatIsNotItsOwn) {
  const std::string good = BbmBytesOf(SampleContent());
  EXPECT_EQ(Refusal(good), "");
  EXPECT_EQ(Refusal("*BBN" + good.substr(4)), "Illegal BBM file header found in file " + path_ + " --.");
  EXPECT_EQ(Refusal(Patched(good, 12, 3)), "Illegal BBM version found in file " + path_ + ": 1.0.3");
  EXPECT_THAT(Refusal(Patched(good, 8, 1)), HasSubstr("1.1.2"));
  EXPECT_THAT(Refusal(Patched(good, 4, 2)), HasSubstr("2.0.2"));
  EXPECT_THAT(Refusal(Patched(good, 264, 0)), HasSubstr("multiplier"));
  BBMap none;
  none.Connect(dir_ / "none.bbm");
  EXPECT_FALSE(none.connected());
  EXPECT_THROW(none.Left(), BbmError);
}

TEST_F(Bbm, TakesWhatIsThereWhateverTheCountsSay) {
  const std::string good = BbmBytesOf(SampleContent());
  for (const std::int32_t count : {0, -5, 2'000'000'000}) {
    const BBMap map = Open(Patched(Patched(good, 268, count), 272, count));
    EXPECT_EQ(map.lines().size(), 3u) << count;
    EXPECT_EQ(map.points().size(), 2u) << count;
  }
  // Points take 60 and 52 bytes; behind them an unknown tag ends the scan, and what came before stays.
  const BBMap map = Open(Patched(good, kBbmHeaderSize + 56 + 48, 12345));
  EXPECT_EQ(map.points().size(), 2u);
  EXPECT_EQ(map.lines().size(), 0u);
}

TEST_F(Bbm, WalksAnOperationStream) {
  const BBMap map = Open(test::SampleStream());
  std::vector<std::string> seen;
  BBMap::Reader::Steps steps;
  steps.line = [&](std::span<const MapPoint> points, int color, double width) {
    seen.push_back("line " + std::to_string(points.size()) + " color " + std::to_string(color) + " width " +
                   std::to_string(static_cast<int>(width)));
  };
  steps.polygon = [&](std::span<const MapPoint> points, int color) {
    seen.push_back("polygon " + std::to_string(points.size()) + " color " + std::to_string(color));
  };
  BBMap::Reader(map).Walk(steps);
  // A line takes its pen when it is drawn, and that is when the next one begins.
  EXPECT_THAT(seen, ElementsAre("line 3 color 15 width 2", "line 2 color 15 width 2", "polygon 3 color 15",
                                "line 2 color 15 width 2"));
  EXPECT_EQ(BbmStreamColor(15), QBColor(0));
  EXPECT_THAT(map.InfoText(), HasSubstr("Logical Pixels X: 96"));
  const std::string cut = test::SampleStream();
  const BBMap shorter = Open(cut.substr(0, cut.size() - 4));
  EXPECT_THROW(BBMap::Reader(shorter).Walk(steps), BbmError);
}

struct LookCase {
  std::vector<BbmAttribute> attributes;
  const char* looks[3];  ///< at the three levels: "-" hidden, else width, "." when dotted, and label
};

std::string Described(const BbmLook& look) {
  if (!look.visible) return look.label.empty() ? "-" : "label of a hidden line";
  return std::to_string(static_cast<int>(look.width)) + (look.dotted ? "." : "") + look.label;
}

TEST(BbmLooks, FollowThemeAndDetail) {
  const LookCase cases[] = {
      {{}, {"-", "-", "-"}},
      {{{20, 0}, {21, 120}}, {"1120", "1120", "1120"}},
      {{{20, 0}, {24, 100}}, {"130.48", "130.48", "130.48"}},
      {{{50, 412}}, {"1", "1", "1"}},
      {{{50, 419}}, {"-", "-", "-"}},
      {{{50, 200}}, {"-", "-", "-"}},
      {{{50, 610}}, {"-", "-", "1"}},
      {{{170, 201}, {172, 80}}, {"2I-80", "2I-80", "1I-80"}},
      {{{170, 207}, {173, 6}, {174, 9}}, {"2US-6", "1US-6", "1US-6"}},
      {{{170, 210}, {176, 12}}, {"1CR-12", "1CR-12", "-"}},
      {{{170, 402}}, {"1", "-", "-"}},
      {{{180, 201}}, {"1", "-", "-"}},
      {{{180, 602}}, {"1", "1", "-"}},
      {{{190, 201}}, {"1.", "1.", "1."}},
      {{{190, 400}}, {"1", "1", "1"}},
  };
  const double spans[] = {1999.0, 2000.0, 3500.0};
  for (const LookCase& one : cases)
    for (int level = 0; level < 3; ++level) {
      BbmHeader header;
      Color pen = BbmFirstPen(header);
      const BbmObject line = SampleLine(one.attributes, {{0, 0}, {10, 10}});
      EXPECT_EQ(Described(LookOfLine(header, line, {spans[level], true}, pen)), one.looks[level])
          << (one.attributes.empty() ? 0 : one.attributes.front().major) << " at " << level;
    }
}

TEST(BbmLooks, FollowTheKindOfMap) {
  BbmHeader header;
  header.title = "HYDROGRAPHY";
  EXPECT_EQ(BbmFirstPen(header), QBColor(0));
  header.description = "HYDROGRAPHY";
  EXPECT_EQ(BbmFirstPen(header), Color{0xC0C000});
  const BbmLevel level{1000, false};
  const auto look = [&](std::int32_t type, std::vector<BbmAttribute> attributes) {
    header.data_type = type;
    Color pen = BbmFirstPen(header);
    return LookOfLine(header, SampleLine(std::move(attributes), {{0, 0}, {0, 10}}), level, pen);
  };
  EXPECT_EQ(look(kBbmCodes, {{100, 0}}).color, QBColor(1));
  EXPECT_EQ(look(kBbmCodes, {{200, 2}}).color, QBColor(6));
  EXPECT_TRUE(look(kBbmCodes, {{300, 0}}).symbols);
  EXPECT_FALSE(look(kBbmCodes, {{400, 0}}).visible);
  EXPECT_EQ(look(kBbmBlack, {{200, 2}}).color, QBColor(0));
  EXPECT_TRUE(look(kBbmPlain, {}).visible);
  // A vertical road, and contours in metres where the computation has feet.
  EXPECT_DOUBLE_EQ(look(kBbmLineGraph, {{170, 201}, {172, 5}}).angle, 90.0);
  EXPECT_EQ(look(kBbmLineGraph, {{22, 30}}).label, "98.43");
  EXPECT_EQ(look(kBbmLineGraph, {{25, 30}}).label, "30");
}

}  // namespace
}  // namespace ormel
