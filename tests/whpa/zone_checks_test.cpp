// Wrong zones are refused for what is wrong with them, and files of zones are read whole or not at all.
#include "whpa/zone_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>

#include "model/geometry.h"
#include "support/temp_dir.h"

namespace ormel {
namespace {

Ring Circle(ModelPoint centre, double radius) {
  Ring ring;
  for (int i = 0; i < 400; ++i) {
    const double angle = 2 * std::numbers::pi * i / 400;
    ring.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  return ring;
}

/// A circle that holds what the well takes, in an aquifer of porosity times thickness 1.
ZoneOutline CircleZone(ModelPoint centre, double discharge, double time) {
  ZoneOutline zone;
  zone.time = time;
  zone.pumped = discharge * time;
  zone.rings = {Circle(centre, std::sqrt(zone.pumped / std::numbers::pi))};
  zone.area = SignedArea<ModelPoint>(zone.rings[0], centre);
  zone.pores = zone.pumped;
  return zone;
}

WellOutlines Well(ModelPoint at, double discharge) {
  WellOutlines well{at, discharge, "WL_000001", {}, {}, {}};
  for (const double time : {100.0, 400.0}) well.zones.push_back(CircleZone(at, discharge, time));
  return well;
}

/// The reasons, "<well>/<zone> <words>".
std::string Faults(const std::vector<WellOutlines>& wells) {
  std::string text;
  for (const RefusedZone& zone : CheckZones(wells))
    text += std::to_string(zone.well) + "/" + std::to_string(zone.zone) + " " + zone.reason + "\n";
  return text;
}

TEST(ZoneChecks, PassWhatIsRightAndRefuseEachThingThatIsNot) {
  EXPECT_EQ(Faults({Well({0, 0}, 10), Well({200, 0}, 10)}), "");
  struct Case {
    const char* words;
    std::function<void(WellOutlines&)> spoil;
  };
  const Case cases[] = {
      {"crosses itself", [](WellOutlines& w) { std::swap(w.zones[1].rings[0][5], w.zones[1].rings[0][60]); }},
      {"wrong way round",
       [](WellOutlines& w) { std::reverse(w.zones[1].rings[0].begin(), w.zones[1].rings[0].end()); }},
      {"does not hold the well",
       [](WellOutlines& w) {
         w.at = {500, 500};
       }},
      {"no outline", [](WellOutlines& w) { w.zones[1].rings.clear(); }},
      {"do not agree", [](WellOutlines& w) { w.zones[1].area *= 0.98; }},
      {"do not agree", [](WellOutlines& w) { w.zones[1].pumped *= 1.02; }},
      {"do not agree", [](WellOutlines& w) { w.zones[1].pores *= 0.9; }},
      {"off by 3.0 percent", [](WellOutlines& w) { w.zones[1].pores *= 0.97, w.zones[1].balance = 0.03; }},
      {"off by 3.0 percent",
       [](WellOutlines& w) {
         w.zones[1].left_out = 0.03 * w.zones[1].pumped;  // told, but nobody's ground
         w.zones[1].pores -= w.zones[1].left_out;
       }},
      {"shorter time lies outside",
       [](WellOutlines& w) {
         w.zones[1].rings = {Circle({30, 0}, std::sqrt(4000 / std::numbers::pi))};
       }},
      {"does not hold the well",
       [](WellOutlines& w) {
         Ring hole = Circle({0, 0}, 3);
         std::reverse(hole.begin(), hole.end());
         w.zones[1].rings.push_back(hole);
       }},
  };
  for (const Case& c : cases) {
    std::vector<WellOutlines> wells{Well({0, 0}, 10)};
    c.spoil(wells[0]);
    const std::string faults = Faults(wells);
    EXPECT_NE(faults.find("0/1 "), std::string::npos) << c.words;
    EXPECT_NE(faults.find(c.words), std::string::npos) << faults;
  }
}

TEST(ZoneChecks, GroundOfTwoWellsMayMeetOnlyBeneathAStream) {
  std::vector<WellOutlines> wells{Well({0, 0}, 10), Well({60, 0}, 10)};
  // After 400 days the circles of radius 36 overlap, after 100 days they do not.
  const std::string faults = Faults(wells);
  EXPECT_NE(faults.find("0/1 it shares"), std::string::npos) << faults;
  EXPECT_NE(faults.find("1/1 it shares"), std::string::npos) << faults;
  EXPECT_EQ(faults.find("/0"), std::string::npos) << faults;
  wells[1].zones[1].shared = 0.5 * wells[1].zones[1].area;
  EXPECT_EQ(Faults(wells), "");
}

constexpr const char* kFile =
    "* 2 wells\r\nWELL 1 2 10 WL_000001\r\nENDS 32 time reached\r\nZONE 100 6 1000 990 5 3 1 1 0 0\r\nRING "
    "4\r\n"
    "0 0\r\n3 0\r\n3 2\r\n0 2\r\nRING 3\r\n1 1\r\n1 1.5\r\n2 1\r\nWELL 5 6 20 WL_000002\r\n"
    "REFUSED Its paths could not be told apart.\r\nDONE\r\n";

struct ZoneFile {
  test::TempDir folder;
  std::vector<WellOutlines> wells;
  ReadOutcome Read(const std::string& text) {
    const std::string path = folder / "zones.ZNS";
    std::ofstream(path, std::ios::binary) << text;
    return ReadZoneFile(path, wells);
  }
};

TEST(ZoneFile, IsReadWhole) {
  ZoneFile file;
  const ReadOutcome damage = file.Read(kFile);
  ASSERT_FALSE(damage) << damage->Message();
  ASSERT_EQ(file.wells.size(), 2U);
  EXPECT_EQ(file.wells[0].ends, (std::vector<std::pair<std::string, int>>{{"time reached", 32}}));
  ASSERT_EQ(file.wells[0].zones.size(), 1U);
  EXPECT_EQ(file.wells[0].zones[0].rings.size(), 2U);
  EXPECT_EQ(file.wells[0].zones[0].rings[0][2], (ModelPoint{3, 2}));
  EXPECT_EQ(file.wells[0].zones[0].surface, 3);
  EXPECT_EQ(file.wells[1].refused, "Its paths could not be told apart.");
}

TEST(ZoneFile, CutOrDamagedIsToldWithItsLine) {
  ZoneFile file;
  const std::string whole = kFile;
  for (std::size_t size = 0; size + 6 < whole.size(); ++size)
    EXPECT_TRUE(file.Read(whole.substr(0, size))) << "cut after " << size << " bytes";
  const std::pair<const char*, const char*> damages[] = {
      {"RING 4", "RING 400000000"}, {"RING 4", "RING -4"},      {"3 2\r\n", "3 nan\r\n"},
      {"3 2\r\n", "3\r\n"},         {"ZONE 100", "ZONE 1e999"}, {"ENDS 32", "ENDS 3.2"},
      {"WELL 1 2", "WELL 1 x"},     {"DONE\r\n", ""},           {"DONE\r\n", "DONE\r\nWELL 1 2 3 A\r\n"}};
  for (const auto& [from, to] : damages) {
    std::string text = whole;
    text.replace(text.find(from), std::string(from).size(), to);
    const ReadOutcome damage = file.Read(text);
    ASSERT_TRUE(damage) << to;
    EXPECT_NE(damage->Message().find("zones.ZNS, line "), std::string::npos) << damage->Message();
  }
}

}  // namespace
}  // namespace ormel
