// Number masks: fixed patterns by which numbers reach decks, text files and the screen.
//
// A mask is  <literal text> <integer part> [. <decimals>] [E+<exponent digits>] <literal text>.
//   0   a digit that is always printed
//   #   before the point: a digit that is printed when there is one; a zero integer part prints nothing
//       behind the point: trailing digits under '#' are dropped when they are zero
//   ,   inside the integer part: groups of three digits
//   E+  scientific notation, its sign always printed, at least as many exponent digits as zeros stand there
// Blanks, "_" and every other character in front of or behind the number stand as they are.
//
// Scientific masks give the mantissa as many integer digits as the mask has places before the point:
// "0.00E+00" one,
// "#0.00E+00" two, with an exponent one lower.  A value that rounds up to the next power of ten is
// renormalised (9.996 by "0.00E+00" is "1.00E+01").  Digits are those of the exact binary value, rounded half
// to even.
//
// A negative value has its minus sign directly before the number.  A value that rounds to zero has none.  The
// point is a point in every locale.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace ormel {

/// Thrown for a value that has no digits (infinite, not a number) and for a text that is no mask.
class FormatError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A mask taken apart once, for output of many numbers.
class NumberMask {
 public:
  /// Throws FormatError when `mask` holds no digit place.
  explicit NumberMask(std::string_view mask);

  /// Throws FormatError when `value` is infinite or not a number: such a value never reaches a file.
  std::string Format(double value) const;
  void AppendTo(std::string& out, double value) const;

 private:
  void AppendFixed(std::string& out, double value) const;
  void AppendScientific(std::string& out, double value) const;
  void AppendNumber(std::string& out, bool negative, std::string_view integer,
                    std::string_view decimals) const;

  std::string mask_;
  std::string prefix_, suffix_;
  int integer_places_ = 0;   // '#' and '0' before the point
  int integer_zeros_ = 0;    // digits always printed before the point
  int decimals_ = 0;         // '#' and '0' behind the point
  int decimal_zeros_ = 0;    // decimals that are always printed
  int exponent_digits_ = 0;  // 0: fixed notation
  bool point_ = false;
  bool grouping_ = false;
};

/// `value` by `mask`.  For many numbers of one mask keep a NumberMask.
std::string FormatMask(double value, std::string_view mask);

}  // namespace ormel
