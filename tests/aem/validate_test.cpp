// What is said about bad input before a solve.
#include <gtest/gtest.h>

#include "aem/models.h"

namespace aem_test {
namespace {

struct Bad {
  const char* name;
  void (*spoil)(aem::Model&);
  aem::Severity severity;
  const char* label;
  const char* part;  ///< of the text
};

class BadInput : public ::testing::TestWithParam<Bad> {};

TEST_P(BadInput, IsNamedByItsLabel) {
  aem::Model m = Base();
  GetParam().spoil(m);
  const std::vector<aem::Finding> findings = aem::Validate(m);
  bool found = false;
  for (const aem::Finding& f : findings)
    found = found || (f.severity == GetParam().severity && f.label == GetParam().label &&
                      f.text.find(GetParam().part) != std::string::npos);
  EXPECT_TRUE(found) << Said(findings);
  aem::Solution s(m);
  EXPECT_EQ(s.Refused(), GetParam().severity == aem::Severity::kFatal) << Said(s.Findings());
  s.Iterate(1);
  s.At({1.0, 2.0});
}

aem::Wall WallOf(const std::vector<Complex>& points, const std::string& label,
                 aem::WallKind kind = aem::WallKind::kOpen) {
  aem::Wall w;
  w.origin.label = label;
  w.kind = kind;
  for (std::size_t i = 0; i < points.size(); ++i)
    w.points.push_back({{label + "_" + std::to_string(i + 1), 0}, points[i]});
  return w;
}

using aem::Severity;
const Bad kBad[] = {
    {"thickness", [](aem::Model& m) { m.aquifer.thickness = 0.0; }, Severity::kFatal, "", "thickness"},
    {"no_reference", [](aem::Model& m) { m.aquifer.has_reference = false; }, Severity::kFatal, "",
     "reference"},
    {"nan",
     [](aem::Model& m) {
       m.wells.push_back({{"W", 1}, {NAN, 0}, 1, false, 1});
     },
     Severity::kFatal, "W", "number"},
    {"radius",
     [](aem::Model& m) {
       m.wells.push_back({{"W", 1}, {0, 0}, 0, false, 1});
     },
     Severity::kFatal, "W", "radius"},
    {"two_head_wells",
     [](aem::Model& m) {
       m.wells.push_back({{"V", 1}, {0, 0}, 1, true, 20});
       m.wells.push_back({{"W", 2}, {0.5, 0}, 1, true, 21});
     },
     Severity::kFatal, "W", "place of well V"},
    {"two_wells",
     [](aem::Model& m) {
       m.wells.push_back({{"V", 1}, {0, 0}, 1, false, 20});
       m.wells.push_back({{"W", 2}, {0, 0}, 1, false, 21});
     },
     Severity::kWarning, "W", "add up"},
    {"well_on_string",
     [](aem::Model& m) {
       m.wells.push_back({{"W", 1}, {5, 0}, 1, true, 20});
       m.line_sinks.push_back(HeadString({{-50, 0}, {50, 0}}, 22));
     },
     Severity::kFatal, "W", "LS_000001_1"},
    {"no_length",
     [](aem::Model& m) {
       m.line_sinks.push_back(HeadString({{5, 5}, {5, 5}, {50, 0}}, 22));
     },
     Severity::kWarning, "LS_000001_1", "no length"},
    {"same_segments",
     [](aem::Model& m) {
       m.line_sinks.push_back(HeadString({{0, 0}, {50, 0}}, 22, "A"));
       m.line_sinks.push_back(HeadString({{60, 0}, {20, 0}}, 22, "B"));
     },
     Severity::kFatal, "B_1", "A_1"},
    {"crossing",
     [](aem::Model& m) {
       m.line_sinks.push_back(HeadString({{-50, 0}, {50, 0}}, 22, "A"));
       m.line_sinks.push_back(HeadString({{0, -50}, {0, 50}}, 23, "B"));
     },
     Severity::kWarning, "B_1", "crosses"},
    {"self_crossing",
     [](aem::Model& m) {
       m.domains.push_back(Polygon({{0, 0}, {9, 9}, {9, 0}, {0, 7}}, "D"));
     },
     Severity::kFatal, "D", "itself"},
    {"no_area",
     [](aem::Model& m) {
       m.domains.push_back(Polygon({{0, 0}, {9, 9}}, "D"));
     },
     Severity::kWarning, "D", "left out"},
    {"on_a_line",
     [](aem::Model& m) {
       m.domains.push_back(Polygon({{0, 0}, {9, 9}, {4, 4}}, "D"));
       m.domains[0].recharge_sink = -0.01;
     },
     Severity::kWarning, "D", "left out"},
    {"closed_wall_without_area",
     [](aem::Model& m) {
       m.walls.push_back(WallOf({{0, 0}, {9, 9}}, "HB", aem::WallKind::kClosed));
     },
     Severity::kFatal, "HB", "no area"},
    {"wall_crosses_itself",
     [](aem::Model& m) {
       m.walls.push_back(WallOf({{0, 0}, {9, 9}, {9, 0}, {0, 7}}, "HB"));
     },
     Severity::kFatal, "HB", "itself"},
    {"wall_with_repeated_vertex",
     [](aem::Model& m) {
       m.walls.push_back(WallOf({{0, 0}, {9, 9}, {9, 9}, {20, 9}}, "HB"));
     },
     Severity::kWarning, "HB_3", "repeated"},
    {"wall_of_one_place",
     [](aem::Model& m) {
       m.walls.push_back(WallOf({{9, 9}, {9, 9}}, "HB"));
     },
     Severity::kWarning, "HB", "left out"},
    {"walls_that_differ_on_one_line",
     [](aem::Model& m) {
       m.walls.push_back(WallOf({{0, 0}, {50, 0}}, "HA"));
       m.walls.push_back(WallOf({{90, 30}, {80, 0}, {20, 0}}, "HB"));
       m.walls[1].conductivity = 0.1;
     },
     Severity::kFatal, "HB", "wall HA, which has another conductivity"},
    {"like_walls_on_one_line",
     [](aem::Model& m) {
       m.walls.push_back(WallOf({{0, 0}, {50, 0}}, "HA"));
       m.walls.push_back(WallOf({{80, 0}, {20, 0}}, "HB"));
     },
     Severity::kNote, "HB", "count as one"},
    {"well_on_string_by_discharge",
     [](aem::Model& m) {
       m.wells.push_back({{"W", 1}, {5, 0}, 1, false, 20});
       m.line_sinks.push_back(HeadString({{-50, 0}, {50, 0}}, 22));
     },
     Severity::kWarning, "W", "LS_000001_1"},
    {"string_crosses_itself",
     [](aem::Model& m) {
       m.line_sinks.push_back(HeadString({{0, 0}, {50, 50}, {50, 0}, {0, 40}}, 22, "A"));
       for (int i = 0; i < 3; ++i) m.line_sinks[0].segments[i].value = 22.0 + i;
     },
     Severity::kWarning, "A_3", "crosses"},
    {"transient_well_at_a_well",
     [](aem::Model& m) {
       m.wells.push_back({{"W", 1}, {0, 0}, 1, true, 20});
       m.theis.push_back({{"T", 2}, {0, 0}, 50.0, 0.0, 30.0, 1e-4, 0.2});
       m.theis.push_back({{"T", 3}, {0, 0}, -50.0, 9.0, 30.0, 1e-4, 0.2});
     },
     Severity::kWarning, "T", "place of well W"},
    {"two_head_disks",
     [](aem::Model& m) {
       m.disks.push_back({{"C", 1}, {0, 0}, 10, true, 20});
       m.disks.push_back({{"D", 2}, {0, 0}, 12, true, 21});
     },
     Severity::kFatal, "D", "place of C"},
    {"screen_upside_down",
     [](aem::Model& m) {
       m.partial_wells.push_back({{"P", 1}, {0, 0}, 5.0, 15.0, 0.2, false, 20});
     },
     Severity::kFatal, "P", "screen"},
    {"repeated",
     [](aem::Model& m) {
       m.domains.push_back(Polygon({{0, 0}, {9, 0}, {9, 0}, {9, 9}}, "D"));
     },
     Severity::kWarning, "D_3", "repeated"},
    {"conductivity",
     [](aem::Model& m) {
       m.domains.push_back(Polygon({{0, 0}, {9, 0}, {9, 9}}, "D"));
       m.domains[0].conductivity = -1.0;
     },
     Severity::kFatal, "D", "conductivity"},
    {"same_domains",
     [](aem::Model& m) {
       m.domains.push_back(Polygon({{0, 0}, {9, 0}, {9, 9}}, "C"));
       m.domains.push_back(Polygon({{9, 9}, {9, 0}, {0, 0}}, "D"));
       m.domains[0].conductivity = 1.0;
       m.domains[1].conductivity = 2.0;
     },
     Severity::kFatal, "D", "same ring"},
};

INSTANTIATE_TEST_SUITE_P(All, BadInput, ::testing::ValuesIn(kBad),
                         [](const auto& given) { return given.param.name; });

TEST(State, LoadsWhatItSavedAndRefusesTheRest) {
  aem::Model m = Base();
  m.line_sinks.push_back(HeadString({{-50, 0}, {50, 20}}, 22));
  aem::Solution s(m), t(m), other(Base());
  s.Iterate(1);
  const std::vector<std::byte> bytes = s.SaveState();
  ASSERT_TRUE(t.LoadState(bytes));
  EXPECT_EQ(s.At({3, 4}).head, t.At({3, 4}).head);
  EXPECT_FALSE(other.LoadState(bytes));
  EXPECT_FALSE(t.LoadState(std::span(bytes).first(bytes.size() - 1)));
  EXPECT_FALSE(t.LoadState({}));
}

}  // namespace
}  // namespace aem_test
