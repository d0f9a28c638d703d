// Numbers as text and text as numbers, the same in every locale.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ormel {

/// General notation with up to 15 significant digits and no blanks: "0.5", "-12", "1E+15", "1.5E-07".
/// Fixed notation from 1E-5 up to below 1E+15.  Throws FormatError for infinite values and NaN.
std::string NumberText(double value);

/// The value rounded to a power of ten that is at most a hundredth of `step`: a position read off a picture
/// whose pixels are `step` wide, without the digits that the pixel does not tell.
double Rounded(double value, double step);

/// NumberText as a deck takes it: one blank in front when not negative, and one blank behind.
std::string RawNumber(double value);

/// Width of a print zone, in columns.
inline constexpr std::size_t kPrintZone = 14;

/// Fills `line` with blanks up to the start of the next print zone.  A line that ends exactly at a zone's
/// start gets a whole zone, so that two items never touch.
void PrintZoneTab(std::string& line);

/// The number at the start of `text`: sign, digits, point, exponent by e, E, d or D.  Blanks and tabs are
/// passed over wherever they stand; reading ends at the first other character.  "12abc" is 12, "1 2" is 12,
/// "abc" and "" are 0. Too large a number is an infinity with its sign.
double Val(std::string_view text);

/// True when the whole of `text`, blanks around it aside, is one number that Val reads to its end.
bool IsNumeric(std::string_view text);

}  // namespace ormel
