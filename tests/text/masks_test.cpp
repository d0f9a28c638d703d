#include "text/masks.h"

#include <gtest/gtest.h>

#include <limits>

namespace ormel {
namespace {

struct Case {
  double value;
  const char* mask;
  const char* text;
};

class MaskTest : public testing::TestWithParam<Case> {};

TEST_P(MaskTest, GivesTheText) {
  const Case& c = GetParam();
  EXPECT_EQ(FormatMask(c.value, c.mask), c.text) << c.value << " by \"" << c.mask << "\"";
}

INSTANTIATE_TEST_SUITE_P(
    Scientific, MaskTest,
    testing::Values(
        Case{0, "#.00000E+00 ", ".00000E+00 "}, Case{0, "#.000000E+00 ", ".000000E+00 "},
        Case{0, "0.00000E+00 ", "0.00000E+00 "}, Case{0, "##.000000E+00 ", ".000000E+00 "},
        Case{0, "#0.000000E+00 ", "0.000000E+00 "}, Case{-0.0, "0.000E+00", "0.000E+00"},
        Case{12345.678, "#.00000E+00 ", "1.23457E+04 "}, Case{-12345.678, "#.0000000E+00", "-1.2345678E+04"},
        Case{0.00123, "0.000E+00", "1.230E-03"}, Case{1, "#.000000E+00  ", "1.000000E+00  "},
        Case{-9999, "#.00000E+00 ", "-9.99900E+03 "},
        // two digits before the point: the exponent is one lower
        Case{12345.678, "#0.000000E+00 ", "12.345678E+03 "}, Case{5, "##.000000E+00 ", "50.000000E-01 "},
        Case{-0.25, "#0.000000E+00 ", "-25.000000E-02 "},
        // carries to the next power of ten
        Case{9.9999999, "0.000000E+00 ", "1.000000E+01 "}, Case{0.99999999, "#.00000E+00", "1.00000E+00"},
        Case{99.99999999, "#0.000000E+00 ", "10.000000E+01 "}, Case{-9.9996, "0.000E+00", "-1.000E+01"},
        Case{9.999999, "0.0E+00", "1.0E+01"},
        // exponents of more than two digits
        Case{1e-100, "#.00000E+00", "1.00000E-100"}, Case{1.5e300, "0.000E+00 ", "1.500E+300 "},
        Case{5e-324, "0.00E+00", "4.94E-324"}, Case{1.70141e38, "0.00000E+00", "1.70141E+38"},
        // a blank in front of the number, before its sign
        Case{12.5, " 0.0000E+00", " 1.2500E+01"}, Case{-12.5, " 0.0000E+00", " -1.2500E+01"},
        Case{123456789.123, "0.000000000E+00 ", "1.234567891E+08 "}));

INSTANTIATE_TEST_SUITE_P(
    Fixed, MaskTest,
    testing::Values(Case{0, "######0.00 ", "0.00 "}, Case{1234567.891, "######0.00 ", "1234567.89 "},
                    Case{123456789.5, "######0.00 ", "123456789.50 "}, Case{-0.001, "######0.00 ", "0.00 "},
                    Case{-0.006, "######0.00 ", "-0.01 "}, Case{0.25, "#.000000 ", ".250000 "},
                    Case{0, "#.000000 ", ".000000 "}, Case{-0.25, "#.000000 ", "-.250000 "},
                    Case{0.9999999, "#.000000 ", "1.000000 "}, Case{101.5, "#.000000 ", "101.500000 "},
                    Case{1, "#0.0", "1.0"}, Case{-1, "#0.0", "-1.0"}, Case{-3.5, " #######0.00", " -3.50"},
                    Case{1.005, "0.00", "1.00"},  // the double is below 1.005
                    Case{0.125, "0.00", "0.12"}, Case{0.375, "0.00", "0.38"}, Case{2.5, "0", "2"},
                    Case{1e22, "0.0", "10000000000000000000000.0"}, Case{0, "####0 ", "0 "}, Case{0, "#", ""},
                    Case{7, "#####.##", "7."}, Case{7.25, "#####.##", "7.25"}, Case{7.5, "######.#0", "7.50"},
                    Case{1234567.891, "#,###,##0.0", "1,234,567.9"}, Case{-999.96, "#,###,##0.0", "-1,000.0"},
                    Case{12, "#,###,##0.0", "12.0"}, Case{123456, "#,###,##0.0", "123,456.0"}));

INSTANTIATE_TEST_SUITE_P(Labels, MaskTest,
                         testing::Values(Case{345, "000000_", "000345_"}, Case{12, "0000", "0012"},
                                         Case{12345, "0000", "12345"}, Case{0, "000000", "000000"},
                                         Case{2147483647, "000000", "2147483647"},
                                         Case{-1, "000000", "-000001"}));

TEST(MaskRefusal, NumbersWithoutDigitsNeverReachAFile) {
  for (const double bad : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_THROW(FormatMask(bad, "0.00E+00"), FormatError);
    EXPECT_THROW(FormatMask(bad, "######0.00 "), FormatError);
  }
  for (const char* mask : {"", "abc", "E+", ".", ".00E+00"}) {
    EXPECT_THROW(NumberMask{mask}, FormatError) << mask;
  }
}

}  // namespace
}  // namespace ormel
