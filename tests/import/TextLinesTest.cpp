#include "import/TextLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

using testing::ElementsAre;

TEST(SplitRivi, CutsAtEverySeparator) {
  struct Case {
    const char* name;
    std::string line, separator;
    std::vector<std::string> fields;
  };
  const Case cases[] = {
      {"plain", "a,b,c", ",", {"a", "b", "c"}},
      {"separator at the end opens a field", "a,b,", ",", {"a", "b", ""}},
      {"neighbours give empty fields", "a,,b", ",", {"a", "", "b"}},
      {"without the separator", "a b", ",", {"a b"}},
      {"longer separator", "a::b:c", "::", {"a", "b:c"}},
      {"overlapping occurrences", "a:::b", "::", {"a", ":b"}},
      {"empty line", "", ",", {""}},
      {"no separator at all", "a,b", "", {"a,b"}},
      {"quotes mean nothing", "\"a,b\"", ",", {"\"a", "b\""}},
  };
  for (const Case& c : cases) EXPECT_EQ(SplitRivi(c.line, c.separator), c.fields) << c.name;
}

TEST(ProposedSplit, FindsTheColumnsOfAFile) {
  struct Case {
    const char* name;
    std::string text;
    std::string separator;
    std::vector<std::string> secondLine;
  };
  const Case cases[] = {
      {"comma with a quoted comment",
       "Sample,SiO2 %,Note\nA-1,50.1,\"coarse, dark\"\nA-2,49,x\n",
       ",",
       {"A-1", "50.1", "coarse, dark"}},
      {"semicolon with decimal commas",
       "Sample;SiO2;MgO\nA-1;50,1;7,2\nA-2;49,9;7,7\n",
       ";",
       {"A-1", "50,1", "7,2"}},
      {"title line above tabs",
       "Laboratory report, 2 samples\nA\tB\tC\n1\t2\t3\n",
       "\t",
       {"A", "B", "C"}},
      {"aligned, units after a blank",
       "Sample   SiO2 %   Au ppb\nA-1      50.10         2\n",
       "  ",
       {"A-1", "50.10", "2"}},
      {"aligned, narrow columns",
       "  No SiO2   MgO\n   1 50.10  7.20\n   2 149.9 17.70\n",
       " ",
       {"1", "50.10", "7.20"}},
      {"nothing to split", "A\nB\n", "", {"B"}},
  };
  for (const Case& c : cases) {
    const auto lines = textLines(c.text);
    const TextSplit split = proposedSplit(lines);
    EXPECT_EQ(split.separator, c.separator) << c.name;
    EXPECT_EQ(splitLine(lines[1], split), c.secondLine) << c.name;
  }
}

TEST(ForEachField, KeepsQuotedLineEndsAndEmptyLines) {
  std::vector<std::string> seen;
  const auto see = [&](int row, int column, std::string_view text) {
    seen.push_back(std::to_string(row) + "/" + std::to_string(column) + "=" + std::string(text));
  };
  forEachField("a,\"b\nc\"\n\nd", {",", false, true}, see);
  EXPECT_THAT(seen, ElementsAre("1/1=a", "1/2=b\nc", "2/1=", "3/1=d"));
  seen.clear();
  forEachField("a, \n\nd", {",", false, false}, see);
  EXPECT_THAT(seen, ElementsAre("1/1=a", "1/2= ", "2/1=", "3/1=d"));
}

TEST(ForEachField, KeepsThePlaceOfMissingValuesInAlignedText) {
  struct Case {
    const char* name;
    std::string text;
    std::string separator;
    std::vector<std::string> secondLine;
  };
  const Case cases[] = {
      {"missing in the middle",
       "No    Cu    Ni\nA-1         7\nA-2   5     8\n",
       "  ",
       {"A-1", "", "7"}},
      {"missing at the end", "No Cu Ni\nA   5\nB   6  8\n", " ", {"A", "5", ""}},
      {"letters of two bytes",
       "N\xC3\xA4yte  Cu  Ni\nO\xC3\xA4         7\n",
       "  ",
       {"O\xC3\xA4", "", "7"}},
      {"words under one heading", "Sample   Cu %\nA 1      5\n", "  ", {"A 1", "5"}},
      {"not aligned: by runs", "No  Cu  Ni\nA-100000  5  7\n", "  ", {"A-100000", "5", "7"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> second;
    forEachField(c.text, {c.separator, true, false}, [&](int row, int, std::string_view text) {
      if (row == 2) second.emplace_back(text);
    });
    EXPECT_EQ(second, c.secondLine) << c.name;
  }
}

TEST(UnevenLines, AreReportedTogether) {
  const Findings found = unevenLines("a,b\n1,2\n\n3\n4,5,6\n", {",", false, true});
  ASSERT_EQ(found.all().size(), 1U);
  EXPECT_EQ(describe(found.all()[0]),
            "row 4: The line has more or fewer fields than the first line, which has 2 (2 times)");
  EXPECT_EQ(found.all()[0].places[1].row, 5);
  EXPECT_FALSE(found.hasErrors());
}

TEST(WindowName, IsTheFileNameUpToItsFirstDot) {
  EXPECT_EQ(windowNameOf("/data/hole 17.2024.xls"), "hole 17");
  EXPECT_EQ(windowNameOf("C:\\data\\näyte.txt"), "näyte");
  EXPECT_EQ(windowNameOf("/data/.hidden"), ".hidden");
}

}  // namespace
}  // namespace lodex
