// Small text helpers.  Texts are UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ormel {

/// Splits a line into fields.  A blank as separator stands for any run of blanks and tabs, and blanks at both
/// ends count for nothing; every other separator parts exactly where it stands ("1,,2" has three fields). An
/// empty line has no field.
std::vector<std::string> ParseString(std::string_view text, char separator);

/// Without blanks, tabs and line ends at both ends.
std::string_view Trim(std::string_view text);

/// Lower case for ASCII and the Latin letters with diacritics (Latin-1, Latin Extended-A).
std::string FoldCase(std::string_view text);

/// Order without regard to case, by code point of the folded text: below 0, 0 or above 0.
int CompareNoCase(std::string_view a, std::string_view b) noexcept;
bool EqualNoCase(std::string_view a, std::string_view b) noexcept;
bool StartsWithNoCase(std::string_view text, std::string_view prefix) noexcept;

/// Does `text` fit `pattern` as a whole, without regard to case?  "*" any run, "?" one character, "#" one
/// digit,
/// "[a-d]" one of a list, "[!a-d]" none of it; "[*]" is a plain star.
bool LikePattern(std::string_view text, std::string_view pattern) noexcept;

/// Doubles every "'", so that the text can stand inside a quoted SQL literal.
std::string SQLSafe(std::string_view text);

/// `text` as it is when it is UTF-8, otherwise read as Windows-1252: older files come in that.
std::string ToUtf8(std::string_view text);

/// Characters (code points), not bytes.  Malformed bytes count one each.
std::size_t TextLength(std::string_view text) noexcept;
/// The first `count` characters.
std::string_view TextLeft(std::string_view text, std::size_t count) noexcept;

}  // namespace ormel
