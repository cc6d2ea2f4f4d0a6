#include "basic/Text.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

TEST(Text, CaseOfTheLettersItKnows) {
  const std::pair<const char*, const char*> pairs[] = {
      {"abcz", "ABCZ"}, {"äöåéñ", "ÄÖÅÉÑ"}, {"žšč", "ŽŠČ"}, {"żł", "ŻŁ"},
      {"αβω", "ΑΒΩ"},   {"дяё", "ДЯЁ"},     {"ÿ", "Ÿ"},
  };
  for (const auto& [lower, upper] : pairs) {
    EXPECT_EQ(toUpper(lower), upper);
    EXPECT_EQ(toLower(upper), lower);
    EXPECT_TRUE(equalsNoCase(lower, upper));
  }
  for (const char* same : {"µ", "×", "÷", "ß", "1_%", "東"}) EXPECT_EQ(toUpper(same), same);
}

TEST(Text, ComparesAndFindsWithoutCase) {
  EXPECT_LT(compareNoCase("abc", "ABD"), 0);
  EXPECT_GT(compareNoCase("abcd", "ABC"), 0);
  EXPECT_EQ(compareNoCase("", ""), 0);
  EXPECT_EQ(findNoCase("xÄby", "äB"), 1u);
  EXPECT_EQ(findNoCase("aXax", "AX", 1), 2u);
  EXPECT_EQ(findNoCase("abc", "d"), std::string_view::npos);
  EXPECT_EQ(findNoCase("abc", ""), 0u);
  EXPECT_TRUE(startsWithNoCase("Table1", "TABLE"));
  EXPECT_FALSE(startsWithNoCase("Tab", "TABLE"));
}

TEST(Text, SplitsAndJoins) {
  EXPECT_EQ(split("", ","), std::vector<std::string>{""});
  EXPECT_EQ(split(",a,,", ",").size(), 4u);
  EXPECT_EQ(join(split("a::b::", "::"), "-"), "a-b-");
  EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
  EXPECT_EQ(trimBlanks("  a \t "), "a \t");
  EXPECT_EQ(trimWhite("\r\n a \t"), "a");
  EXPECT_EQ(trimWhite(" \n"), "");
}

TEST(Text, MalformedUtf8) {
  struct Case {
    const char* name;
    std::string bytes;
    size_t characters;
  };
  for (const Case& row : std::initializer_list<Case>{{"cut short", "\xE2\x82", 2},
                                                     {"lone continuation",
                                                      "\x80"
                                                      "a",
                                                      2},
                                                     {"overlong", "\xC0\xAF", 2},
                                                     {"surrogate", "\xED\xA0\x80", 3},
                                                     {"beyond the last", "\xF4\x90\x80\x80", 4},
                                                     {"never a lead", "\xFF", 1}}) {
    SCOPED_TRACE(row.name);
    EXPECT_FALSE(isValidUtf8(row.bytes));
    EXPECT_EQ(characterCount(row.bytes), row.characters);
    EXPECT_EQ(decodeUtf8(row.bytes)[0], U'\xFFFD');
  }
  EXPECT_TRUE(isValidUtf8("\xEF\xBF\xBD µ 東 😀")) << "the replacement character itself is valid";
}

TEST(Text, ConvertsBetweenEncodings) {
  for (const char* text : {"", "Fe", "µ°±ä€", "東", "😀 x"}) {
    EXPECT_EQ(fromUtf16(toUtf16(text)), text);
    EXPECT_EQ(encodeUtf8(decodeUtf8(text)), text);
  }
  EXPECT_EQ(fromUtf16(u"\xD800"
                      u"a"),
            "\xEF\xBF\xBD"
            "a")
      << "half a pair";
  EXPECT_EQ(fromWindows1252("\x80\xB5\xE4"), "€µä");
  EXPECT_EQ(fromWindows1252("\x81"), "\xC2\x81") << "an undefined byte is not lost";
}

}  // namespace
}  // namespace lodex
