#include "text/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "text/masks.h"

namespace ormel {
namespace {

TEST(Val, ReadsTheLeadingNumber) {
  const struct {
    const char* text;
    double value;
  } cases[] = {{"", 0},
               {"abc", 0},
               {"12abc", 12},
               {"  -3.5 m", -3.5},
               {"1 2", 12},
               {"1.5.2", 1.5},
               {".5", 0.5},
               {"+.5e1", 5},
               {"1e", 1},
               {"1e+", 1},
               {"1e+x", 1},
               {"1E5", 1e5},
               {"1.5d-3", 1.5e-3},
               {"2D+02", 200},
               {"1,5", 1},
               {"- 4", -4},
               {"--4", 0},
               {"-", 0},
               {".", 0},
               {"e5", 0},
               {"1e5e5", 1e5},
               {"\t7\r\n", 7},
               {"0x10", 0},
               {"inf", 0},
               {"nan", 0},
               {"1e-400", 0},
               {"000123", 123},
               {"0.1", 0.1},
               {"1 e 5", 1e5},
               {"1.e2", 100},
               {"1e0005", 1e5},
               {"WL_000012", 0},
               {"000012", 12},
               {" 1.70141E+38", 1.70141e38}};
  for (const auto& c : cases) EXPECT_EQ(Val(c.text), c.value) << '"' << c.text << '"';
  EXPECT_EQ(Val("-1e999"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Val(std::string(400, '9')), std::numeric_limits<double>::infinity());
  EXPECT_EQ(Val("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(IsNumeric, TakesWholeNumbersOnly) {
  for (const char* text : {"1", " 1 ", "-1.5", "+.5", "1.", "1e5", "1D-5", "0"})
    EXPECT_TRUE(IsNumeric(text)) << text;
  for (const char* text : {"", " ", ".", "-", "1x", "x1", "1e", "1 2", "1,5", "inf", "nan", "1e5.", "--1"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(NumberText, IsGeneralNotationOfFifteenDigits) {
  const struct {
    double value;
    const char* text;
  } cases[] = {{0, "0"},
               {-0.0, "0"},
               {1, "1"},
               {-12.5, "-12.5"},
               {0.1, "0.1"},
               {1.0 / 3, "0.333333333333333"},
               {100000, "100000"},
               {123456789012345, "123456789012345"},
               {1e15, "1E+15"},
               {1.5e-7, "1.5E-07"},
               {0.00001, "0.00001"},
               {587128.95, "587128.95"},
               {0.1 + 0.2, "0.3"},
               {999999999999999.9, "1E+15"},
               {-1e300, "-1E+300"}};
  for (const auto& c : cases) EXPECT_EQ(NumberText(c.value), c.text);
  EXPECT_EQ(RawNumber(5), " 5 ");
  EXPECT_EQ(RawNumber(-5.25), "-5.25 ");
  EXPECT_THROW(NumberText(std::nan("")), FormatError);
}

TEST(Rounded, DropsTheDigitsThatAPixelDoesNotTell) {
  struct Case {
    double value, step;
    const char* text;
  };
  for (const Case& c : {Case{1234.567891, 6.25, "1234.57"}, Case{-1234.567891, 1.0, "-1234.57"},
                        Case{1234.567891, 0.99, "1234.568"}, Case{4345678.9, 2500.0, "4345680"},
                        Case{0.1234567, 0.0, "0.1234567"}, Case{3.5, 1e-300, "3.5"}})
    EXPECT_EQ(NumberText(Rounded(c.value, c.step)), c.text) << c.value << " by " << c.step;
}

TEST(PrintZone, StartsEveryFourteenColumns) {
  const struct {
    const char* line;
    std::size_t columns;
  } cases[] = {{"", 14}, {" time ", 14}, {"1234567890123", 14}, {"12345678901234", 28}, {"\u00fc", 15}};
  for (const auto& c : cases) {
    std::string line = c.line;
    PrintZoneTab(line);
    EXPECT_EQ(line.size(), c.columns) << c.line;
  }
}

}  // namespace
}  // namespace ormel
