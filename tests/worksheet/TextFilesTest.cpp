#include <gtest/gtest.h>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/TextReader.h"
#include "worksheet/files/TextWriter.h"

namespace lodex {
namespace {

using namespace std::string_literals;

std::string wide(const std::string& text, bool little) {
  std::string bytes;
  for (char16_t unit : toUtf16(text)) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += little ? std::string{low, high} : std::string{high, low};
  }
  return bytes;
}

TEST(TextDecoding, FindsTheEncoding) {
  const std::string text = "Näyte\tFe µg/g\t±5 °C\r\n";
  std::string western;  // the same in Windows-1252
  for (char32_t c : decodeUtf8(text)) western += static_cast<char>(c);
  struct Case {
    const char* name;
    std::string bytes;
  };
  const Case cases[] = {
      {"UTF-8", text},
      {"UTF-8 with mark", "\xEF\xBB\xBF" + text},
      {"UTF-16 LE with mark", "\xFF\xFE" + wide(text, true)},
      {"UTF-16 BE with mark", "\xFE\xFF" + wide(text, false)},
      {"UTF-16 LE without mark", wide(text, true)},
      {"UTF-16 BE without mark", wide(text, false)},
      {"Windows-1252", western},
      {"Ctrl-Z at the end", text + "\x1A"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(looksLikeText(row.bytes));
    EXPECT_EQ(decodeText(row.bytes), text);
  }
}

// A long German table must not be taken for Hungarian or Korean because of its umlauts.
TEST(TextDecoding, UmlautsStayWestern) {
  std::string bytes, expected;
  for (int i = 0; i < 200; ++i) {
    bytes +=
        "Gr\xF6\xDF"
        "e \xB5m\t\xC4nderung \xB1"
        "5\xB0\tM\xE4rz \xFC"
        "ber\r\n";
    expected += "Größe µm\tÄnderung ±5°\tMärz über\r\n";
  }
  EXPECT_EQ(decodeText(bytes), expected);
}

TEST(TextDecoding, DetectsCyrillic) {
  std::string bytes, expected;
  for (int i = 0; i < 20; ++i) {
    // "Проба железа и меди из скважины" in Windows-1251.
    bytes +=
        "\xCF\xF0\xEE\xE1\xE0 \xE6\xE5\xEB\xE5\xE7\xE0 \xE8 \xEC\xE5\xE4\xE8 \xE8\xE7 "
        "\xF1\xEA\xE2\xE0\xE6\xE8\xED\xFB\r\n";
    expected += "Проба железа и меди из скважины\r\n";
  }
  EXPECT_EQ(decodeText(bytes), expected);
}

TEST(TextDecoding, BinaryIsNoText) {
  EXPECT_FALSE(looksLikeText("PK\x03\x04\0\0\0\0abc"s));
  EXPECT_FALSE(looksLikeText(std::string(100, '\x07')));
  EXPECT_TRUE(looksLikeText("one\ttwo\f\r\n"));
}

TEST(TextReader, SplitsLines) {
  const std::vector<std::string_view> expected{"a", "", "b", "c", "d"};
  EXPECT_EQ(textLines("a\r\n\nb\rc\nd\r\n"), expected);
  EXPECT_EQ(textLines("a\r\n\nb\rc\nd"), expected);
  EXPECT_TRUE(textLines("").empty());
  EXPECT_EQ(textLines("\n").size(), 1u);
}

std::string cellsOf(std::string_view text, char separator = '\t') {
  std::string out;
  splitCells(text, separator, [&](int row, int column, std::string_view cell) {
    out += std::to_string(row) + "," + std::to_string(column) + "=" + std::string(cell) + "|";
  });
  return out;
}

TEST(TextReader, SplitsCells) {
  struct Case {
    const char* name;
    const char* text;
    const char* cells;
  };
  const Case cases[] = {
      {"tabs only", "a b,c;d\te", "1,1=a b,c;d|1,2=e|"},
      {"empty cells", "\ta\t\r\nb", "1,1=|1,2=a|1,3=|2,1=b|"},
      {"mixed line ends", "a\rb\nc\r\nd", "1,1=a|2,1=b|3,1=c|4,1=d|"},
      {"empty line counts", "a\n\nb\n", "1,1=a|2,1=|3,1=b|"},
      {"quoted", "\"a\tb\"\t\"say \"\"x\"\"\"", "1,1=a\tb|1,2=say \"x\"|"},
      {"quoted over lines", "\"a\r\nb\"\tc\nd", "1,1=a\r\nb|1,2=c|2,1=d|"},
      {"quoted and empty", "\"\"\tb", "1,1=|1,2=b|"},
      {"quote inside", "5\" core\tb", "1,1=5\" core|1,2=b|"},
      {"quote that never closes", "\"a\tb\nc", "1,1=\"a|1,2=b|2,1=c|"},
      {"text after the closing quote", "\"a\" b\tc", "1,1=\"a\" b|1,2=c|"},
      {"tab at the very end", "a\t", "1,1=a|1,2=|"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(cellsOf(row.text), row.cells);
  }
  EXPECT_EQ(cellsOf("a,\"b,c\"", ','), "1,1=a|1,2=b,c|");
}

TEST(TextReader, StoresNumbersAndKeepsSpellings) {
  Worksheet sheet;
  readText("2.5\t00123\t12.0\t5E1\t<0.01\t-7\t1,5\n", sheet);
  const ValueKind kinds[] = {ValueKind::Number,      ValueKind::NumericText, ValueKind::NumericText,
                             ValueKind::NumericText, ValueKind::Text,        ValueKind::Number,
                             ValueKind::Text};
  for (int column = 1; column <= 7; ++column) {
    EXPECT_EQ(sheet.ValueRC(1, column).kind(), kinds[column - 1]) << "column " << column;
  }
  EXPECT_EQ(sheet.TextRC(1, 2), "00123");
  EXPECT_EQ(sheet.NumberRC(1, 4), 50);
}

TEST(TextReader, RefusesWhatNoSheetHolds) {
  Worksheet sheet;
  EXPECT_THROW(readText(std::string(maxColumns, '\t') + "x", sheet), FileError);
  EXPECT_THROW(readText(std::string(maxRows, '\n') + "x", sheet), FileError);
}

TEST(TextWriter, WhatIsWrittenReadsBack) {
  Worksheet sheet;
  sheet.TextRC(1, 1, "tab\there");
  sheet.TextRC(1, 3, "two\r\nlines");
  sheet.TextRC(2, 2, "a \"quote\"");
  sheet.TextRC(3, 1, "12.50");
  sheet.NumberRC(3, 2, -0.001);
  sheet.TextRC(3, 3, "µ°ä");
  Worksheet back;
  readText(writeText(sheet), back);
  ASSERT_EQ(back.LastRow(), 3);
  for (int row = 1; row <= 3; ++row) {
    for (int column = 1; column <= 3; ++column) {
      EXPECT_EQ(back.ValueRC(row, column), sheet.ValueRC(row, column)) << row << "," << column;
    }
  }
}

TEST(TextWriter, ShowsNumbersAsDisplayed) {
  Worksheet sheet;
  sheet.NumberRC(1, 1, 2.0 / 3);
  sheet.SetSelection(1, 1, 1, 1);
  sheet.NumberFormat("0.00");
  EXPECT_EQ(writeText(sheet), "0.67\r\n");
  EXPECT_EQ(writeText(Worksheet()), "\r\n");
}

}  // namespace
}  // namespace lodex
