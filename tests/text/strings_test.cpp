#include "text/strings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ormel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ParseString, SplitsAtSeparators) {
  EXPECT_THAT(ParseString("a,,b ,", ','), ElementsAre("a", "", "b ", ""));
  EXPECT_THAT(ParseString("one", ','), ElementsAre("one"));
  EXPECT_THAT(ParseString("", ','), IsEmpty());
  EXPECT_THAT(ParseString("      1.5      +2.5 ", ' '), ElementsAre("1.5", "+2.5"));
  EXPECT_THAT(ParseString("   ", ' '), IsEmpty());
}

TEST(Compare, IgnoresCaseOfLatinLetters) {
  const struct {
    const char* a;
    const char* b;
    int order;
  } cases[] = {{"Well", "wELL", 0},
               {"Brunnen S\u00dcD", "brunnen s\u00fcd", 0},
               {"\u0160", "\u0161", 0},
               {"\u0178", "\u00ff", 0},
               {"\u0141\u00f3d\u017a", "\u0142\u00d3D\u0179", 0},
               {"a", "b", -1},
               {"B", "a", 1},
               {"a", "ab", -1},
               {"", "", 0},
               {"\u00d7", "\u00f7", -1},
               {"\xff", "\xfe", 1},
               {"_", "A", -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(CompareNoCase(c.a, c.b), c.order) << c.a << " " << c.b;
    EXPECT_EQ(CompareNoCase(c.b, c.a), -c.order) << c.a << " " << c.b;
    EXPECT_EQ(FoldCase(c.a) == FoldCase(c.b), c.order == 0) << c.a << " " << c.b;
  }
  EXPECT_TRUE(StartsWithNoCase("Mirror_North", "MIRROR_"));
  EXPECT_FALSE(StartsWithNoCase("Mir", "Mirror_"));
}

TEST(Like, UnderstandsThePatterns) {
  const struct {
    const char* text;
    const char* pattern;
    bool fits;
  } cases[] = {{"Mirror_North", "mirror_*", true},
               {"Mirror", "Mirror_*", false},
               {"", "*", true},
               {"", "?", false},
               {"\u00dc", "?", true},
               {"\u00dc1", "\u00fc#", true},
               {"ab", "a#", false},
               {"WL_000012", "WL_000012*", true},
               {"aXbXc", "*x*c", true},
               {"aXbXc", "*x*d", false},
               {"50%", "50%", true},
               {"5000", "50%", false},
               {"b", "[a-c]", true},
               {"d", "[a-c]", false},
               {"d", "[!a-c]", true},
               {"a*b", "a[*]b", true},
               {"axb", "a[*]b", false},
               {"a[b", "a[b", true},
               {"a-", "a[-]", true}};
  for (const auto& c : cases)
    EXPECT_EQ(LikePattern(c.text, c.pattern), c.fits) << c.text << " like " << c.pattern;
}

TEST(Text, CountsCharactersNotBytes) {
  EXPECT_EQ(TextLength("Brunnen S\u00fcd"), 11U);
  EXPECT_EQ(TextLength("\xff\xfe\xc3"), 3U);
  EXPECT_EQ(TextLeft("\u00fc\u00fc\u00fc", 2), "\u00fc\u00fc");
  EXPECT_EQ(TextLeft("ab", 5), "ab");
  EXPECT_EQ(ToUtf8("S\u00fcd \u20ac"), "S\u00fcd \u20ac");
  EXPECT_EQ(ToUtf8("S\xfc"
                   "d \x80\x9f"),
            "S\u00fcd \u20ac\u0178");
  EXPECT_EQ(SQLSafe("O'Neill's"), "O''Neill''s");
  EXPECT_EQ(Trim(" \ta b\r\n"), "a b");
  EXPECT_EQ(Trim("  "), "");
}

}  // namespace
}  // namespace ormel
