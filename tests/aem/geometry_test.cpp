// Segments found by place.
#include "aem/kernel/geometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace aem::detail {
namespace {

TEST(SegmentIndex, FindsAllThatALineMeets) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> at(-1000.0, 1000.0), turn(0.0, 6.2832), size(0.5, 60.0);
  std::vector<std::pair<Complex, Complex>> segments;
  for (int i = 0; i < 3000; ++i) {
    const Complex a{at(random), at(random)};
    // A few are as long as the whole, as far rivers are.
    segments.emplace_back(a, a + std::polar(i % 500 == 0 ? 3000.0 : size(random), turn(random)));
  }
  const SegmentIndex index(segments);
  std::vector<int> found;
  std::size_t looked_at = 0;
  for (int i = 0; i < 600; ++i) {
    const Complex a{1.2 * at(random), 1.2 * at(random)};
    const Complex b = a + std::polar(i % 20 == 0 ? 5000.0 : 2.0 * size(random), turn(random));
    index.FindAlong(a, b, &found);
    if (i % 20 != 0) looked_at += found.size();
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
    for (int k = 0; k < 3000; ++k) {
      if (!Meet(a, b, segments[k].first, segments[k].second)) continue;
      EXPECT_TRUE(std::binary_search(found.begin(), found.end(), k)) << a << b << k;
    }
  }
  EXPECT_LT(looked_at, 600u * 120u) << "of 3,000 segments a line should look at few";
  // Along an axis and onto cells' borders, where rounding decides.
  const std::vector<std::pair<Complex, Complex>> grid{
      {{0, 0}, {10, 0}}, {{10, 0}, {10, 10}}, {{0, 10}, {10, 10}}};
  const SegmentIndex small(grid);
  small.FindAlong({10, -5}, {10, 5}, &found);
  EXPECT_TRUE(std::binary_search(found.begin(), found.end(), 0));
  small.FindAlong({5, 5}, {5, 10}, &found);
  EXPECT_TRUE(std::binary_search(found.begin(), found.end(), 2));
}

}  // namespace
}  // namespace aem::detail
