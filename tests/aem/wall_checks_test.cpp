// Leakage of walls and flow across lines that start where pieces of a jump meet.
#include <gtest/gtest.h>

#include "aem/models.h"

namespace aem_test {
namespace {

aem::Wall WallAlong(const std::vector<Complex>& points) {
  aem::Wall w;
  w.origin = {"HB_000001_0000", 7};
  for (const Complex at : points) w.points.push_back({{}, at});
  return w;
}

aem::Model Flowing() {
  aem::Model m = Base();
  m.aquifer.uniform_flow = {0.5, 0.1};
  return m;
}

struct Shape {
  const char* name;
  std::vector<Complex> points;
  double allowed;  ///< of the undisturbed flow
};

class Leakage : public ::testing::TestWithParam<Shape> {};

TEST_P(Leakage, IsSmallBesideTheUndisturbedFlow) {
  aem::Model m = Flowing();
  m.walls.push_back(WallAlong(GetParam().points));
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  const aem::Checks checks = s.Check();
  EXPECT_NEAR(checks.undisturbed_flow, std::abs(m.aquifer.uniform_flow), 1e-12);
  EXPECT_LT(checks.wall_leakage.value, GetParam().allowed * checks.undisturbed_flow);
  EXPECT_GT(checks.wall_leakage.value, 0.0);
  // The check is no more than what flux lines along the halves say, and no less.
  double worst = 0.0;
  const std::vector<Complex>& p = GetParam().points;
  for (std::size_t i = 0; i + 1 < p.size(); ++i) {
    const Complex middle = 0.5 * (p[i] + p[i + 1]);
    for (const auto& half : {std::vector{p[i], middle}, std::vector{middle, p[i + 1]}})
      worst = std::max(worst, std::abs(s.Flux(half)) / std::abs(half[1] - half[0]));
  }
  EXPECT_NEAR(worst, checks.wall_leakage.value, 1e-12);
  const aem::WallResult wall = s.Walls()[0];
  for (const aem::WallVertexResult& v : wall.vertices) {
    EXPECT_LE(std::abs(v.delta_flow_node), worst * (1.0 + 1e-9));
    EXPECT_LE(std::abs(v.delta_flow_centre), 4.0 * worst);
  }
}

INSTANTIATE_TEST_SUITE_P(Shapes, Leakage,
                         ::testing::Values(Shape{"straight", {{0, -100}, {0, 100}}, 1e-5},
                                           Shape{"thirds", {{0, -100}, {0, -33}, {0, 33}, {0, 100}}, 1e-4},
                                           Shape{"bent", {{-80, -100}, {0, -40}, {0, 60}, {-70, 90}}, 2e-4},
                                           Shape{"right_angle", {{0, -100}, {0, 0}, {-100, 0}}, 4e-4},
                                           Shape{"acute", {{0, -100}, {0, 0}, {-20, -100}}, 1e-3}),
                         [](const auto& given) { return given.param.name; });

// Pieces of a jump that meet at a vertex have infinite stream functions there, which cancel.
TEST(Flux, FromAVertexOfAWallOrADomainIsThatFromBesideIt) {
  aem::Model m = Flowing();
  m.walls.push_back(WallAlong({{0, -100}, {0, 0}, {-100, 0}}));
  m.domains.push_back(Polygon({{100, 0}, {300, 0}, {300, 50}, {100, 200}}));
  m.domains[0].conductivity = 80.0;
  aem::Solution s(m);
  s.Iterate(1);
  const Complex away{60, -70}, beside{1e-6, -1e-6};
  for (Complex vertex :
       {Complex{0, 0}, Complex{0, -50}, Complex{0, -2}, Complex{100, 0}, Complex{300, 50}, Complex{200, 0}}) {
    const double flux = s.Flux(std::vector{vertex + beside, away});
    EXPECT_NEAR(s.Flux(std::vector{vertex, away}), flux, 1e-4) << vertex;
    EXPECT_NEAR(s.Flux(std::vector{away, vertex}), -flux, 1e-4) << vertex;
  }
}

// Where a wall crosses a domain's edge pieces are so short that a hair of them is below the coordinates'
// rounding.
TEST(Flux, FromWhereAWallCrossesADomain) {
  aem::Model m = Flowing();
  m.walls.push_back(WallAlong({{-344.7, -1023.8}, {-308.5, -930.6}, {-313.6, -830.7}, {-254.2, -750.3}}));
  m.walls[0].conductivity = 0.01;
  m.domains.push_back(
      Polygon({{-315.1, -950.8}, {-430.2, -975.5}, {-574.2, -835.6}, {-342.6, -748.0}, {-303.0, -835.6}}));
  m.domains[0].conductivity = 1.7;
  aem::Solution s(m);
  s.Iterate(2);
  const aem::Checks checks = s.Check();
  EXPECT_LT(checks.wall_leakage.value, 3e-3 * checks.undisturbed_flow);
}

TEST(Walls, ARepeatedVertexLeavesSegmentsTheirNumbers) {
  aem::Model m = Flowing();
  m.walls.push_back(WallAlong({{0, -100}, {0, -100}, {0, 0}, {0, 0}, {40, 100}}));
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  const aem::Crossing crossing = s.FirstCrossing({-50, 50}, {50, 50});
  EXPECT_EQ(crossing.segment, 3) << "the vertex before the crossed part is the second one at 0, 0";
  const auto vertices = s.Walls()[0].vertices;
  ASSERT_EQ(vertices.size(), 4u);
  EXPECT_NEAR(vertices[3].delta_flow_centre, 0.0, 1e-3);
  EXPECT_GT(std::abs(vertices[3].jump_node), 10.0);
  EXPECT_EQ(vertices[2].jump_node, 0.0);
}

}  // namespace
}  // namespace aem_test
