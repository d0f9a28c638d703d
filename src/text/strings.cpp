#include "text/strings.h"

#include <array>
#include <cstdint>

namespace ormel {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool IsContinuation(unsigned char c) {
  return (c & 0xC0U) == 0x80U;
}

/// Length in bytes of the character that starts at `text[i]`; a malformed byte is a character of its own.
std::size_t CharacterBytes(std::string_view text, std::size_t i) noexcept {
  const auto lead = static_cast<unsigned char>(text[i]);
  std::size_t length = 1;
  if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
  } else if (lead >= 0xE0 && lead < 0xF0) {
    length = 3;
  } else if (lead >= 0xC2 && lead < 0xE0) {
    length = 2;
  }
  if (length > text.size() - i) return 1;
  for (std::size_t k = 1; k < length; ++k) {
    if (!IsContinuation(static_cast<unsigned char>(text[i + k]))) return 1;
  }
  return length;
}

/// Lower case of a code point; letters without a partner stay.
std::uint32_t Lower(std::uint32_t c) noexcept {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  if (c >= 0xC0 && c <= 0xDE) return c == 0xD7 ? c : c + 32;
  if (c < 0x100 || c > 0x17E || c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149) return c;
  if (c == 0x178) return 0xFF;
  const bool odd_upper = (c >= 0x139 && c <= 0x148) || c >= 0x179;
  return (c % 2 == 1) == odd_upper ? c + 1 : c;
}

/// Code points of the bytes 0x80 to 0x9F in Windows-1252; the five unused ones give U+FFFD.
constexpr std::array<std::uint32_t, 32> kWindows1252{
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

void AppendUtf8(std::string& out, std::uint32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0U | (code >> 6U));
    out += static_cast<char>(0x80U | (code & 0x3FU));
  } else {
    out += static_cast<char>(0xE0U | (code >> 12U));
    out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    out += static_cast<char>(0x80U | (code & 0x3FU));
  }
}

constexpr std::uint32_t kMalformed = 0x110000;  // above every code point; the byte is added

/// Folded code point at `i`; moves `i` behind it.
std::uint32_t NextFolded(std::string_view text, std::size_t& i) noexcept {
  const auto lead = static_cast<unsigned char>(text[i]);
  if (lead < 0x80) {
    ++i;
    return Lower(lead);
  }
  const std::size_t length = CharacterBytes(text, i);
  if (length == 1) {
    ++i;
    return kMalformed + lead;
  }
  std::uint32_t code = lead & (0xFFU >> (length + 1));
  for (std::size_t k = 1; k < length; ++k) {
    code = (code << 6U) | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
  }
  i += length;
  return Lower(code);
}

/// Tests one character against the list that opens at `pattern[i]`; moves `i` behind its "]".
/// `closed` is false, and nothing moves, when the list has no end.
bool MatchList(std::string_view pattern, std::size_t& i, std::uint32_t c, bool& closed) noexcept {
  const std::size_t end = pattern.find(']', i + 1);
  closed = end != std::string_view::npos;
  if (!closed) return false;
  std::size_t k = i + 1;
  const bool negated = k < end && pattern[k] == '!';
  if (negated) ++k;
  bool found = false;
  const std::string_view list = pattern.substr(0, end);
  while (k < end) {
    const std::uint32_t low = NextFolded(list, k);
    std::uint32_t high = low;
    if (k + 1 < end && pattern[k] == '-') {
      ++k;
      high = NextFolded(list, k);
    }
    found = found || (c >= low && c <= high);
  }
  i = end + 1;
  return found != negated;
}

/// Tests the character at `text[t]` against the pattern's part at `p`, which is no star; moves both when it
/// fits.
bool MatchOne(std::string_view text, std::size_t& t, std::string_view pattern, std::size_t& p) noexcept {
  std::size_t next_text = t;
  std::size_t next_pattern = p;
  const std::uint32_t c = NextFolded(text, next_text);
  bool fits = false;
  bool closed = false;
  if (pattern[p] == '[') fits = MatchList(pattern, next_pattern, c, closed);
  if (!closed) {
    const char kind = pattern[p];
    const std::uint32_t wanted = NextFolded(pattern, next_pattern);
    fits = kind == '?' || (kind == '#' ? c >= '0' && c <= '9' : c == wanted);
  }
  if (!fits) return false;
  t = next_text;
  p = next_pattern;
  return true;
}

}  // namespace

std::vector<std::string> ParseString(std::string_view text, char separator) {
  std::vector<std::string> fields;
  if (separator == ' ') {
    std::size_t i = 0;
    while (i < text.size()) {
      while (i < text.size() && IsBlank(text[i])) ++i;
      const std::size_t start = i;
      while (i < text.size() && !IsBlank(text[i])) ++i;
      if (i > start) fields.emplace_back(text.substr(start, i - start));
    }
    return fields;
  }
  if (text.empty()) return fields;
  std::size_t start = 0;
  for (std::size_t end = text.find(separator); end != std::string_view::npos;
       end = text.find(separator, start)) {
    fields.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  fields.emplace_back(text.substr(start));
  return fields;
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string FoldCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    const std::uint32_t code = NextFolded(text, i);
    if (code < 0x180) {
      AppendUtf8(out, code);
    } else {
      out += text.substr(start, i - start);
    }
  }
  return out;
}

int CompareNoCase(std::string_view a, std::string_view b) noexcept {
  std::size_t i = 0;
  std::size_t k = 0;
  while (i < a.size() && k < b.size()) {
    const std::uint32_t x = NextFolded(a, i);
    const std::uint32_t y = NextFolded(b, k);
    if (x != y) return x < y ? -1 : 1;
  }
  return static_cast<int>(i < a.size()) - static_cast<int>(k < b.size());
}

bool EqualNoCase(std::string_view a, std::string_view b) noexcept {
  return CompareNoCase(a, b) == 0;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) noexcept {
  std::size_t i = 0;
  std::size_t k = 0;
  while (k < prefix.size()) {
    if (i >= text.size() || NextFolded(text, i) != NextFolded(prefix, k)) return false;
  }
  return true;
}

bool LikePattern(std::string_view text, std::string_view pattern) noexcept {
  std::size_t t = 0;
  std::size_t p = 0;
  std::size_t star = std::string_view::npos;  // where the pattern goes on behind the last star
  std::size_t star_text = 0;                  // where its run may end next
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = ++p;
      star_text = t;
    } else if (p < pattern.size() && MatchOne(text, t, pattern, p)) {
      continue;
    } else if (star != std::string_view::npos) {
      star_text += CharacterBytes(text, star_text);
      t = star_text;
      p = star;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

std::string SQLSafe(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (c == '\'') out += '\'';
    out += c;
  }
  return out;
}

std::string ToUtf8(std::string_view text) {
  bool valid = true;
  for (std::size_t i = 0; i < text.size() && valid;) {
    const std::size_t length = CharacterBytes(text, i);
    valid = length > 1 || static_cast<unsigned char>(text[i]) < 0x80;
    i += length;
  }
  if (valid) return std::string(text);
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(out, byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80U] : byte);
  }
  return out;
}

std::size_t TextLength(std::string_view text) noexcept {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); i += CharacterBytes(text, i)) ++count;
  return count;
}

std::string_view TextLeft(std::string_view text, std::size_t count) noexcept {
  std::size_t i = 0;
  while (i < text.size() && count > 0) {
    i += CharacterBytes(text, i);
    --count;
  }
  return text.substr(0, i);
}

}  // namespace ormel
