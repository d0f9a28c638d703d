// Domains with properties and recharge of their own.
#include <gtest/gtest.h>

#include "aem/models.h"

namespace aem_test {
namespace {

// A circle of another conductivity in uniform flow: inside the flow is uniform, 2 k1/(k1 + k0) times the
// outer one. The polygon of equal area differs from the circle by the square of its angle.
class CircleInUniformFlow : public ::testing::TestWithParam<double> {};

TEST_P(CircleInUniformFlow, AgreesWithClosedForm) {
  aem::Model m = Base();
  const double ratio = GetParam(), k = m.aquifer.conductivity * ratio;
  m.aquifer.uniform_flow = {0.5, 0.0};
  m.domains.push_back(Polygon(CircleRing({0, 0}, 100.0, 96)));
  m.domains[0].conductivity = k;
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  const double inside = 0.5 * 2.0 * ratio / (1.0 + ratio);
  EXPECT_NEAR(s.At({20, 30}).discharge.real(), inside, 2e-3 * inside);
  EXPECT_NEAR(s.At({-40, 10}).discharge.real(), inside, 2e-3 * inside);
  const Complex z{150, 80};
  const Complex outside = 0.5 * (1.0 + (ratio - 1.0) / (1.0 + ratio) * 1e4 / (z * z));
  EXPECT_NEAR(s.At(z).discharge.real(), outside.real(), 1e-3 * 0.5);
  EXPECT_NEAR(s.At(z).discharge.imag(), -outside.imag(), 1e-3 * 0.5);
  if (ratio >= 0.1) {
    EXPECT_LT(s.Check().domain_head_jump.value, 1e-4 * s.HeadRange());
  }
}

INSTANTIATE_TEST_SUITE_P(Ratios, CircleInUniformFlow, ::testing::Values(0.1, 10.0, 1e-6, 1e6));

TEST(Domains, RechargeOfAPolygonIsExact) {
  aem::Model m = Base(10.0, 100.0, 40.0);
  m.domains.push_back(Polygon(CircleRing({0, 0}, 100.0, 400)));
  m.domains[0].recharge_sink = -0.01;
  aem::Solution s(m);
  s.Iterate(1);
  const double r0 = std::abs(m.aquifer.reference_point), q = -0.01 * 1e4 / 2.0;
  const double at_reference = 0.5 * 10.0 * 1600.0;
  EXPECT_NEAR(s.At({0, 250}).potential, at_reference + q * std::log(250.0 / r0), 1e-6);
  EXPECT_NEAR(s.At({0, 0}).potential, at_reference + q * std::log(100.0 / r0) + 0.0025 * 1e4, 1e-3);
  EXPECT_NEAR(s.At({0, 50}).discharge.imag(), 0.005 * 50.0, 1e-6);
  // Divergence equals minus the net recharge.
  const double d = 0.5;
  const Complex z{30, 20};
  const double divergence =
      (s.At(z + d).discharge.real() - s.At(z - d).discharge.real() +
       s.At(z + Complex{0, d}).discharge.imag() - s.At(z - Complex{0, d}).discharge.imag()) /
      (2.0 * d);
  EXPECT_NEAR(divergence, -s.At(z).net_recharge, 1e-9);
}

TEST(Domains, EdgesSharedInPartAndRingsInsideOneAnother) {
  aem::Model m = Base(10.0, 20.0, 30.0);
  m.aquifer.uniform_flow = {0.5, 0.2};
  m.domains.push_back(Polygon({{0, 0}, {200, 0}, {200, 200}, {0, 200}}, "A"));
  m.domains.push_back(Polygon({{200, 50}, {350, 50}, {350, 150}, {200, 150}}, "B"));    // on half of A's edge
  m.domains.push_back(Polygon({{60, 60}, {60, 140}, {140, 140}, {140, 60}}, "C"));      // inside A, clockwise
  m.domains.push_back(Polygon({{350, 150}, {450, 150}, {450, 260}, {350, 260}}, "D"));  // touches B's corner
  for (int i = 0; i < 4; ++i) m.domains[i].conductivity = std::vector<double>{40.0, 2.0, 100.0, 0.5}[i];
  aem::Solution s(m);
  ASSERT_FALSE(s.Refused()) << Said(s.Findings());
  s.Iterate(1);
  EXPECT_EQ(s.At({100, 100}).conductivity, 100.0);
  EXPECT_EQ(s.At({30, 100}).conductivity, 40.0);
  EXPECT_LT(s.Check().domain_head_jump.value, 1e-3 * s.HeadRange());
  for (Complex edge :
       {Complex{200, 100}, Complex{200, 20}, Complex{100, 140}, Complex{350, 100}, Complex{400, 150}})
    for (Complex off : {Complex{1e-7, 0}, Complex{0, 1e-7}})
      EXPECT_NEAR(s.At(edge + off).head, s.At(edge - off).head, 1e-4 * s.HeadRange()) << edge;
  const auto results = s.Domains();
  EXPECT_NEAR(results[2].area, 6400.0, 1e-9);
  EXPECT_EQ(results[2].conductivity, 100.0);
  EXPECT_NEAR(results[2].vertices[0].factor, 60.0 / 140.0, 1e-12);
}

}  // namespace
}  // namespace aem_test
