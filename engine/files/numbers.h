// Numbers as the decks and grids write them: ".000000E+00", "-.5E+00", "  12.3456", "1.5D+02".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace files {

/// The value of `text` when all of it is one finite decimal number, else nothing.  Words such as "nan" and
/// "inf", hexadecimal forms and numbers beyond the range of a double are no numbers here.
std::optional<double> ReadNumber(std::string_view text);

/// The same for a whole number that fits 32 bits.  "12." and "1.2E+01" count as whole numbers.
std::optional<int> ReadWholeNumber(std::string_view text);

/// `value` in fixed notation with as many decimals (at most `most_decimals`) as leave the text no longer than
/// `width`; empty when even its whole part does not fit or it is not finite.  With `sign_always` a sign is
/// written before positive numbers too.  A value that rounds to zero is never written as negative zero.
std::string FixedToFit(double value, int width, int most_decimals, bool sign_always);

/// Case-insensitive comparison of ASCII words.
bool SameWord(std::string_view a, std::string_view b);

/// `name`, with `extension` (".SOL") behind it unless it already ends so in any case of letters.
std::string WithExtension(std::string_view name, std::string_view extension);

}  // namespace files
