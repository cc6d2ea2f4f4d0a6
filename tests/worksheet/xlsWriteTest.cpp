#include <gtest/gtest.h>

#include "basic/Error.h"
#include "worksheet/files/xls/OleFile.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/xlsBytes.h"

namespace lodex {
namespace {

using namespace xlstest;

Worksheet throughFile(const Worksheet& sheet) {
  return readBytes(writeXls(sheet));
}

TEST(XlsWriter, BringsFormulasBackAsTheyWere) {
  const struct {
    const char* formula;
    const char* read;  // null: the same
  } cases[] = {
      {"SUM(A1:E1)", nullptr},
      {"A1+B1*2-C1/D1^2&\"x\"", nullptr},
      {"IF(A1>2,\"big\",\"small \"\"q\"\"\")", nullptr},
      {"-A1%", nullptr},
      {"1-(2-3)", nullptr},
      {"2^-3", nullptr},
      {"IF(A1,,2)", nullptr},
      {"SUM(A1:A3,,2)", nullptr},
      {"$A$1+A$2+$A3", nullptr},
      {"'Data & more, x'!B2*2", nullptr},
      {"SUM('Main:Ää''k'!A1)", nullptr},
      {"Main!#REF!+#REF!", nullptr},
      {"SUM((A1:B2,C3:D4))", nullptr},
      {"SUM(A1:C3 B2:D4)", nullptr},
      {"SUM(A1:INDEX(A1:A5,3))", nullptr},
      {"SUM(A:A,$1:2)", nullptr},
      {"SUM({1,-2.5;\"t\",TRUE}*2)", nullptr},
      {"MATCH(\"b\",{\"a\",\"β\";#N/A,1},0)", nullptr},
      {"Rate*2+Later", nullptr},
      {"Main!Local+1", nullptr},
      {"IFERROR(1/0,STDEV.S(A1:A3))", nullptr},
      {"EDATE(38425,1)", nullptr},
      {"MyFunction(1,2)", "MYFUNCTION(1,2)"},
      {"nobody+1", nullptr},
      {"65535+65536-1.5E-10", nullptr},
      {"NOW()*0", nullptr},
      {"A1;", ""},
      {"A70000", ""},
      {"IW1", ""},
      {"[Other.xls]Tab!A1", nullptr},
      {"SUM('C:\\data\\[Other 2.xls]Tab:Zab'!$A$1:B2)+EDATE(1,2)", nullptr},
      {"'\\\\server\\share\\[a.xls]T t'!A1+'..\\[b.xls]T'!A1", nullptr},
      {"'http://example.org/[c.xls]T'!A1", nullptr},
      {"'[MTX\3DATA]'!topic.a+FIXED(1.5)", nullptr},
      {"[Other.xls]!Rate*[Other.xls]Tab!Rate", nullptr},
      {"SUM(1,2,3,4,5,6,7,8,9,0,1,2,3,4,5,6,7,8,9,0,1,2,3,4,5,6,7,8,9,0,1)", ""},
      {"ROUND(1)", ""},
  };
  Worksheet sheet;
  sheet.NumSheets(3);
  sheet.SheetName(1, "Main");
  sheet.SheetName(2, "Data & more, x");
  sheet.SheetName(3, "Ää'k");
  sheet.setDefinedNames({{"Rate", "Main!$A$1*Later", 0, false},
                         {"Later", "{1,2}", 0, true},
                         {"Local", "'Ää''k'!$B$2", 1, false},
                         {"Print_Area", "Main!$A$1:$G$12", 1, false},
                         {"Gone", "[x.xls]T!A1", 0, false}});
  int row = 0;
  for (const auto& c : cases) {
    ++row;
    sheet.setFormulaWithValue(2, row, 1, c.formula, Value(row * 1.5));
  }
  const Worksheet copy = throughFile(sheet);
  row = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.formula);
    ++row;
    const std::string expected = c.read == nullptr ? c.formula : c.read;
    EXPECT_EQ(copy.HasFormula(2, row, 1), !expected.empty());
    if (!expected.empty()) {
      EXPECT_EQ(copy.FormulaSRC(2, row, 1), expected);
    }
    EXPECT_EQ(copy.NumberSRC(2, row, 1), row * 1.5) << "the value stays in any case";
  }
  ASSERT_EQ(copy.definedNames().size(), 5u);
  for (size_t i = 0; i < 4; ++i) {
    const DefinedName& before = sheet.definedNames()[i];
    const DefinedName& after = copy.definedNames()[i];
    SCOPED_TRACE(before.name);
    EXPECT_EQ(after.name, before.name);
    EXPECT_EQ(after.formula, before.formula);
    EXPECT_EQ(after.sheet, before.sheet);
    EXPECT_EQ(after.hidden, before.hidden);
  }
  EXPECT_EQ(copy.definedNames()[4].formula, "[x.xls]T!A1");
}

// On sheets of 256 columns PRA1 is a name; elsewhere it would be a cell.
TEST(XlsWriter, NamesThatLookLikeCellsComeBackMarked) {
  Worksheet sheet;
  sheet.NumberRC(1, 1, 2.5);
  sheet.setDefinedNames({{"PRA1", "Sheet1!$A$1", 0, false}, {"PRA_1", "Sheet1!$A$1", 0, false}});
  const Worksheet copy = throughFile(sheet);
  ASSERT_EQ(copy.definedNames().size(), 2u);
  EXPECT_EQ(copy.definedNames()[0].name, "_PRA1");
  EXPECT_EQ(copy.definedNames()[1].name, "PRA_1");
}

// The token classes decide what other programs compute.
TEST(XlsWriter, GivesOperandsTheirClass) {
  const struct {
    const char* formula;
    std::string code;
  } cases[] = {
      {"A1", bytes({0x44, 0, 0, 0, 0xC0})},
      {"ABS(A1)", bytes({0x44, 0, 0, 0, 0xC0, 0x41, 24, 0})},
      {"ROWS(A1:B2)", bytes({0x25, 0, 0, 1, 0, 0, 0xC0, 1, 0xC0, 0x41, 76, 0})},
      {"SUMPRODUCT(A1:B2*2)",
       bytes({0x65, 0, 0, 1, 0, 0, 0xC0, 1, 0xC0, 0x1E, 2, 0, 0x05, 0x42, 1, 228, 0})},
      {"MAX(INDEX($A$1:$B$2,1,1))", bytes({0x25, 0, 0, 1,    0, 0,  0, 1,    0, 0x1E, 1, 0,
                                           0x1E, 1, 0, 0x22, 3, 29, 0, 0x42, 1, 7,    0})},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.formula);
    Worksheet sheet;
    sheet.setFormulaWithValue(1, 1, 1, c.formula, Value(1.0));
    const auto stream = ole::readStream(writeXls(sheet), {"Workbook"});
    ASSERT_TRUE(stream.has_value());
    EXPECT_NE(stream->bytes.find(u16(static_cast<unsigned>(c.code.size())) + c.code),
              std::string::npos);
  }
}

TEST(XlsWriter, BringsValuesBack) {
  Worksheet sheet;
  const Value values[] = {Value(0.0),
                          Value(-0.0),
                          Value(1e300),
                          Value(0.1),
                          Value(123.45),
                          Value(-536870912.0),
                          Value(536870912.0),
                          Value(1.0 / 3),
                          Value::boolean(true),
                          Value::boolean(false),
                          Value::error(ErrorCode::NotAvailable),
                          Value::error(ErrorCode::Null),
                          Value::text("Öljy β 漢字 😀"),
                          Value::text("a\nb"),
                          Value::text("12.50"),
                          Value::text("42"),
                          Value::numericText(SharedText("00123")),
                          Value::numericText(SharedText("5E1")),
                          Value::numericText(SharedText("-0.0"))};
  int row = 0;
  for (const Value& value : values) {
    sheet.ValueSRC(1, ++row, 1, value);
    sheet.setFormulaWithValue(1, row, 2, "A" + std::to_string(row), value);
  }
  const Worksheet copy = throughFile(sheet);
  row = 0;
  for (const Value& value : values) {
    SCOPED_TRACE(value.asText());
    ++row;
    EXPECT_EQ(copy.ValueSRC(1, row, 1), value);
    EXPECT_EQ(copy.ValueSRC(1, row, 2).asText(), value.asText());
  }
  EXPECT_EQ(copy.LastRow(), row);
}

TEST(XlsWriter, TurnsSpelledDecimalsIntoNumbersThatLookTheSame) {
  const struct {
    const char* text;
    const char* ownFormat;
    const char* format;  // null: stays text
  } cases[] = {{"12.50", "General", "0.00"},   {"-0.750", "General", "0.000"},
               {"12.50", "0.0", "0.0"},        {"12.50", "@", nullptr},
               {"012.50", "General", nullptr}, {".50", "General", nullptr},
               {"12.", "General", nullptr},    {"1.0E1", "General", nullptr},
               {"+1.50", "General", nullptr},  {"1234567890123.450", "General", nullptr}};
  Worksheet sheet;
  int row = 0;
  for (const auto& c : cases) {
    sheet.ValueSRC(1, ++row, 1, Value::numericText(SharedText(c.text)));
    CellFormat format;
    format.numberFormat = c.ownFormat;
    sheet.setFormat(1, row, 1, format);
  }
  const Worksheet copy = throughFile(sheet);
  row = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text) + " as " + c.ownFormat);
    ++row;
    const Value value = copy.ValueSRC(1, row, 1);
    if (c.format == nullptr) {
      EXPECT_EQ(value, Value::numericText(SharedText(c.text)));
      continue;
    }
    EXPECT_EQ(value, Value(Value::text(c.text).asNumber()));
    EXPECT_EQ(copy.formatOf(1, row, 1).numberFormat, c.format);
  }
}

TEST(XlsWriter, BringsLooksAndSheetsBack) {
  Worksheet sheet;
  sheet.NumSheets(3);
  sheet.SheetName(1, "A name of 31 letters, all taken");
  sheet.SheetName(2, "a_b_c");
  sheet.SheetName(3, "a/b:c");
  sheet.sheetVisibility(3, SheetVisibility::VeryHidden);
  sheet.Sheet(2);
  sheet.FixedRows(3);
  sheet.columnWidth(2, 2, 25.5);
  sheet.columnHidden(2, 4, true);
  sheet.rowHidden(2, 9, true);
  sheet.dates1904(true);
  CellFormat look;
  look.numberFormat = "#,##0.00;[Red]-#,##0.00";
  look.fontName = "Courier New";
  look.fontSize = 14.5;
  look.bold = look.italic = look.underline = look.strikeout = true;
  look.pattern = FillPattern::Solid;
  look.horizontal = HorizontalAlignment::Center;
  look.vertical = VerticalAlignment::Top;
  look.wrap = true;
  look.locked = false;
  look.formulaHidden = true;
  look.borderLeft = 1;
  look.borderBottom = 6;
  // More colours than the palette has room for beside its own.
  for (int i = 0; i < 40; ++i) {
    look.patternColor = 0x10203 * (i + 1);
    look.fontColor = 0xFF0000;
    sheet.setFormat(2, i + 1, 1, look);
  }
  sheet.NumberSRC(2, 1, 1, 5);
  const Worksheet copy = throughFile(sheet);
  EXPECT_EQ(copy.SheetName(1), "A name of 31 letters, all taken");
  EXPECT_EQ(copy.SheetName(2), "a_b_c");
  EXPECT_EQ(copy.SheetName(3), "a_b_c~2");
  EXPECT_EQ(copy.sheetVisibility(3), SheetVisibility::VeryHidden);
  EXPECT_EQ(copy.Sheet(), 2);
  EXPECT_EQ(copy.FixedRows(), 3);
  EXPECT_EQ(copy.columnWidth(2, 2), 25.5);
  EXPECT_TRUE(copy.columnHidden(2, 4));
  EXPECT_TRUE(copy.rowHidden(2, 9));
  EXPECT_TRUE(copy.dates1904());
  EXPECT_EQ(copy.LastRow(), 1);
  for (int i = 0; i < 40; ++i) {
    look.patternColor = 0x10203 * (i + 1);
    EXPECT_EQ(copy.formatOf(2, i + 1, 1), look) << i;
  }
}

TEST(XlsWriter, PutsAVisibleSheetInFront) {
  Worksheet sheet;
  sheet.NumSheets(2);
  sheet.sheetVisibility(1, SheetVisibility::Hidden);
  EXPECT_EQ(throughFile(sheet).Sheet(), 2);
  sheet.sheetVisibility(2, SheetVisibility::Hidden);
  const Worksheet copy = throughFile(sheet);
  EXPECT_EQ(copy.sheetVisibility(1), SheetVisibility::Visible);
  EXPECT_EQ(copy.sheetVisibility(2), SheetVisibility::Hidden);
}

TEST(XlsWriter, BringsArrayFormulasBack) {
  Worksheet sheet;
  sheet.setArrayFormula(1, 1, 3, 1, 3, "SUM(A1:A3*B1:B3)");
  sheet.setArrayFormula(1, 2, 3, 3, 4, "TRANSPOSE(A1:B2)");
  sheet.setCachedValue(1, 3, 4, Value(7.0));
  const Worksheet copy = throughFile(sheet);
  EXPECT_EQ(copy.FormulaRC(1, 3), "SUM(A1:A3*B1:B3)");
  ASSERT_NE(copy.cells(1).at(1, 3).formula->array, nullptr);
  for (int row : {2, 3}) {
    for (int column : {3, 4}) {
      ASSERT_TRUE(copy.HasFormula(1, row, column));
      const auto& block = copy.cells(1).at(row, column).formula->array;
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(block->row, 2);
      EXPECT_EQ(block->column, 3);
      EXPECT_EQ(block->rows, 2);
      EXPECT_EQ(block->columns, 2);
    }
  }
  EXPECT_EQ(copy.NumberRC(3, 4), 7);
}

TEST(XlsWriter, SpreadsLongTextsOverRecords) {
  Worksheet sheet;
  std::string wide;
  for (int i = 0; i < 12000; ++i) wide += i % 7 == 0 ? "漢" : "x";
  int row = 0;
  for (size_t length : {8190u, 8210u, 8216u, 8217u, 8218u, 8219u, 8220u, 20000u, 32767u}) {
    ++row;
    sheet.TextSRC(1, row, 1, std::string(length, static_cast<char>('a' + row)));
  }
  sheet.TextSRC(1, ++row, 1, wide);
  sheet.setFormulaWithValue(1, ++row, 1, "A10", Value::text(wide));
  const Worksheet copy = throughFile(sheet);
  for (int r = 1; r <= row; ++r) {
    EXPECT_EQ(copy.TextRC(r, 1), sheet.TextRC(r, 1)) << r;
  }
}

TEST(XlsWriter, RefusesWhatTheFormatCannotHold) {
  for (auto [row, column] : {std::pair(65537, 1), std::pair(1, 257)}) {
    Worksheet sheet;
    sheet.NumberRC(row, column, 1);
    try {
      writeXls(sheet);
      ADD_FAILURE() << row;
    } catch (const FileError& error) {
      EXPECT_NE(std::string(error.what()).find("65536 rows and 256 columns"), std::string::npos);
    }
  }
  const auto refusal = [](const Worksheet& sheet) -> std::string {
    try {
      writeXls(sheet);
    } catch (const FileError& error) {
      return error.what();
    }
    return "";
  };
  Worksheet text;
  text.TextRC(2, 2, std::string(32768, 'x'));
  EXPECT_EQ(refusal(text), "Cell B2 of sheet Sheet1 holds a longer text than an .xls file can");
  Worksheet name;
  name.SheetName(1, std::string(32, 'n'));
  EXPECT_NE(refusal(name).find("longer than the 31 characters"), std::string::npos);
  Worksheet largest;
  largest.NumberRC(65536, 256, 1);
  EXPECT_EQ(throughFile(largest).NumberRC(65536, 256), 1);
}

}  // namespace
}  // namespace lodex
