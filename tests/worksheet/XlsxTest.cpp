#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/ZipFile.h"
#include "worksheet/files/BuiltinFormats.h"
#include "worksheet/files/PlainDecimal.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/files/xlsx/XlsxReader.h"

namespace lodex {
namespace {

// The name of a file that a test running beside this one does not have.
std::string ownName(const std::string& name) {
  return name + "_" + std::to_string(::getpid()) + ".xlsx";
}

std::string relation(const std::string& id, const std::string& type, const std::string& target) {
  return "<Relationship Id=\"" + id + "\" Type=\"http://x/relationships/" + type + "\" Target=\"" +
         target + "\"/>";
}

// A package with one sheet of the given rows, and whatever comes before them in the sheet.
std::string packageOf(const std::string& rows, const std::string& before = "",
                      const std::string& workbookExtra = "") {
  return zipOf({
      {"[Content_Types].xml", "<Types/>"},
      {"_rels/.rels", "<Relationships>" + relation("r1", "officeDocument", "xl/workbook.xml") +
                          "</Relationships>"},
      {"xl/workbook.xml",
       "<?xml version=\"1.0\"?><x:workbook xmlns:x=\"m\" xmlns:r=\"r\">" + workbookExtra +
           "<x:sheets><x:sheet name=\"Assays &amp; more\" sheetId=\"7\" r:id=\"rId1\"/></x:sheets>"
           "</x:workbook>"},
      {"xl/_rels/workbook.xml.rels",
       "<Relationships>" + relation("rId1", "worksheet", "/xl/worksheets/sheet1.xml") +
           relation("rId2", "sharedStrings", "sharedStrings.xml") +
           relation("rId3", "styles", "styles.xml") + "</Relationships>"},
      {"xl/sharedStrings.xml",
       "<sst><si><t>Fe</t></si><si><r><t>a</t></r><r><t xml:space=\"preserve\"> b</t></r>"
       "<rPh><t>no</t></rPh></si><si><t>two_x000D_\nlines _x0041 &#xB5;</t></si></sst>"},
      {"xl/styles.xml",
       "<styleSheet><numFmts><numFmt numFmtId=\"170\" formatCode=\"0.000\"/></numFmts>"
       "<fonts><font><sz val=\"11\"/><name val=\"Calibri\"/></font>"
       "<font><b/><i val=\"0\"/><sz val=\"11\"/><color rgb=\"FFFF0000\"/><name val=\"Calibri\"/>"
       "</font></fonts>"
       "<fills><fill><patternFill patternType=\"none\"/></fill>"
       "<fill><patternFill patternType=\"solid\"><fgColor "
       "indexed=\"13\"/></patternFill></fill></fills>"
       "<borders><border/><border><left style=\"medium\"/><bottom "
       "style=\"double\"/></border></borders>"
       "<cellStyleXfs><xf numFmtId=\"9\"/></cellStyleXfs>"
       "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"170\" fontId=\"1\" fillId=\"1\" borderId=\"1\">"
       "<alignment horizontal=\"right\" vertical=\"top\" wrapText=\"1\"/></xf>"
       "<xf numFmtId=\"14\"/></cellXfs></styleSheet>"},
      {"xl/worksheets/sheet1.xml",
       "<worksheet>" + before + "<sheetData>" + rows + "</sheetData></worksheet>"},
  });
}

Worksheet readPackage(const std::string& bytes) {
  Worksheet book;
  const ZipArchive archive(bytes);
  EXPECT_TRUE(looksLikeXlsx(archive));
  readXlsx(archive, bytes.size(), book);
  return book;
}

TEST(XlsxReader, ReadsEveryKindOfValue) {
  const Worksheet book = readPackage(packageOf(
      "<row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c><c r=\"B1\" t=\"s\"><v>1</v></c>"
      "<c r=\"C1\" t=\"s\"><v>2</v></c><c r=\"D1\" t=\"s\"><v>99</v></c></row>"
      "<row r=\"3\"><c r=\"A3\"><v>1.5E-3</v></c><c r=\"B3\" t=\"b\"><v>1</v></c>"
      "<c r=\"C3\" t=\"e\"><v>#N/A</v></c><c r=\"D3\" t=\"str\"><f>1&amp;2</f><v>12</v></c>"
      "<c r=\"E3\" t=\"inlineStr\"><is><r><t>in</t></r><r><t>line</t></r></is></c>"
      "<c r=\"F3\" t=\"d\"><v>2024-03-09T12:00:00</v></c><c r=\"G3\" t=\"str\"><f>1/0</f>"
      "<v>#DIV/0!</v></c></row>"
      "<row><c><v>4</v></c><c><v>5</v></c></row>"));
  EXPECT_EQ(book.SheetName(1), "Assays & more");
  EXPECT_EQ(book.TextRC(1, 1), "Fe");
  EXPECT_EQ(book.TextRC(1, 2), "a b");
  EXPECT_EQ(book.TextRC(1, 3), "two\r\nlines _x0041 µ");
  EXPECT_TRUE(book.ValueRC(1, 4).isEmpty());
  EXPECT_EQ(book.NumberRC(3, 1), 0.0015);
  EXPECT_EQ(book.ValueRC(3, 2), Value::boolean(true));
  EXPECT_EQ(book.ValueRC(3, 3), Value::error(ErrorCode::NotAvailable));
  EXPECT_EQ(book.ValueRC(3, 4), Value::text("12"));
  EXPECT_EQ(book.FormulaRC(3, 4), "1&2");
  EXPECT_EQ(book.TextRC(3, 5), "inline");
  EXPECT_EQ(book.NumberRC(3, 6), 45360.5);
  EXPECT_EQ(book.ValueRC(3, 7), Value::error(ErrorCode::DivisionByZero));
  // Rows and cells without addresses follow one another.
  EXPECT_EQ(book.NumberRC(4, 2), 5);
  EXPECT_EQ(book.LastRow(), 4);
}

// What other writers leave: an empty table of texts, a module without a part among the
// sheets, and paths parted by "\\".
TEST(XlsxReader, OpensUnusualPackages) {
  for (const std::string slash : {"/", "\\"}) {
    SCOPED_TRACE(slash);
    const auto path = [&](std::string text) { return replaceAll(text, "/", slash); };
    const Worksheet book = readPackage(zipOf({
        {path("_rels/.rels"), "<Relationships>" +
                                  relation("r1", "officeDocument", "xl/workbook.xml") +
                                  "</Relationships>"},
        {path("xl/workbook.xml"),
         "<workbook xmlns:r=\"r\"><sheets><sheet name=\"Module\" r:id=\"\"/>"
         "<sheet name=\"Data\" r:id=\"rId1\"/></sheets></workbook>"},
        {path("xl/_rels/workbook.xml.rels"),
         "<Relationships>" + relation("rId1", "worksheet", "sheet1.xml") +
             relation("rId2", "sharedStrings", "sharedStrings.xml") + "</Relationships>"},
        {path("xl/sharedStrings.xml"), "<?xml version=\"1.0\"?>\r\n<sst/>"},
        {path("xl/sheet1.xml"),
         "<worksheet><sheetData><row><c><v>3</v></c></row></sheetData></worksheet>"},
    }));
    EXPECT_EQ(book.NumSheets(), 1);
    EXPECT_EQ(book.SheetName(1), "Data");
    EXPECT_EQ(book.NumberRC(1, 1), 3);
  }
}

TEST(XlsxReader, SharedAndArrayFormulas) {
  const Worksheet book = readPackage(packageOf(
      "<row r=\"1\"><c r=\"B1\"><f t=\"shared\" ref=\"B1:B3\" si=\"0\">A1*$A$1</f><v>1</v></c>"
      "<c r=\"C1\"><f t=\"array\" ref=\"C1:C2\">A1:A2*2</f><v>2</v></c>"
      "<c r=\"D1\"><f>_xlfn.STDEV.S(A1:A2)</f></c></row>"
      "<row r=\"2\"><c r=\"B2\"><f t=\"shared\" si=\"0\"/><v>4</v></c><c r=\"C2\"><v>8</v></c>"
      "<c r=\"D2\"><f t=\"shared\" si=\"9\"/><v>7</v></c></row>"));
  EXPECT_EQ(book.FormulaRC(1, 2), "A1*$A$1");
  EXPECT_EQ(book.FormulaRC(2, 2), "A2*$A$1");
  EXPECT_EQ(book.NumberRC(2, 2), 4);
  EXPECT_EQ(book.FormulaRC(1, 3), "A1:A2*2");
  EXPECT_EQ(book.NumberRC(2, 3), 8);
  EXPECT_TRUE(book.HasFormula(1, 2, 3)) << "the block's second cell belongs to the formula";
  EXPECT_EQ(book.FormulaRC(1, 4), "STDEV.S(A1:A2)");
  // A shared formula whose first cell is missing leaves its value.
  EXPECT_FALSE(book.HasFormula(1, 2, 4));
  EXPECT_EQ(book.NumberRC(2, 4), 7);
}

TEST(XlsxReader, Appearance) {
  const Worksheet book = readPackage(packageOf(
      "<row r=\"1\" hidden=\"1\"><c r=\"A1\" s=\"1\"><v>2</v></c><c r=\"B1\" s=\"2\"><v>1</v></c>"
      "<c r=\"C1\" s=\"0\"><v>1</v></c><c r=\"D1\" s=\"1\"/></row>",
      "<sheetViews><sheetView><pane ySplit=\"2\" topLeftCell=\"A3\" state=\"frozen\"/>"
      "<selection pane=\"bottomLeft\" activeCell=\"B7\"/></sheetView></sheetViews>"
      "<cols><col min=\"2\" max=\"3\" width=\"20.7109375\" customWidth=\"1\"/>"
      "<col min=\"4\" max=\"4\" width=\"9\" hidden=\"1\"/></cols>",
      "<workbookPr date1904=\"1\"/>"));
  const CellFormat& format = book.formatOf(1, 1, 1);
  EXPECT_EQ(format.numberFormat, "0.000");
  EXPECT_TRUE(format.bold);
  EXPECT_FALSE(format.italic);
  EXPECT_EQ(format.fontColor, 0xFF0000);
  EXPECT_EQ(format.pattern, FillPattern::Solid);
  EXPECT_EQ(format.patternColor, 0xFFFF00);
  EXPECT_EQ(format.borderLeft, 2);
  EXPECT_EQ(format.borderBottom, 6);
  EXPECT_EQ(format.horizontal, HorizontalAlignment::Right);
  EXPECT_EQ(format.vertical, VerticalAlignment::Top);
  EXPECT_TRUE(format.wrap);
  EXPECT_EQ(book.formatOf(1, 1, 2).numberFormat, "m/d/yyyy");
  EXPECT_EQ(book.formatOf(1, 1, 3), CellFormat()) << "the default style is nothing special";
  EXPECT_TRUE(book.formatOf(1, 1, 4).bold) << "an empty cell keeps its format";
  EXPECT_EQ(book.LastCol(), 3);
  EXPECT_TRUE(book.rowHidden(1, 1));
  EXPECT_EQ(book.FixedRows(), 2);
  EXPECT_EQ(book.Row(), 7);
  EXPECT_DOUBLE_EQ(book.columnWidth(1, 3), 20);
  EXPECT_TRUE(book.columnHidden(1, 4));
  EXPECT_TRUE(book.dates1904());
}

TEST(XlsxReader, DamageIsAFileError) {
  const std::string good = packageOf("<row r=\"1\"><c r=\"A1\"><v>1</v></c></row>");
  struct Case {
    const char* name;
    std::string bytes;
  };
  const Case cases[] = {
      {"cut in half", good.substr(0, good.size() / 2)},
      {"not nested", packageOf("<row r=\"1\"><c r=\"A1\"></row></c>")},
      {"ends early", packageOf("<row r=\"1\"><c")},
      {"row outside the sheet", packageOf("<row r=\"1048577\"/>")},
      {"column outside the sheet", packageOf("<row r=\"1\"><c r=\"XFE1\"/></row>")},
      {"address of nothing", packageOf("<row r=\"1\"><c r=\"7\"/></row>")},
      {"array over a wrong block",
       packageOf("<row r=\"5\"><c r=\"B5\"><f t=\"array\" ref=\"B5:A1\">1</f></c></row>")},
      {"sheet without a part",
       zipOf({{"_rels/.rels", "<R>" + relation("r1", "officeDocument", "xl/workbook.xml") + "</R>"},
              {"xl/workbook.xml", "<workbook><sheet name=\"A\" r:id=\"r9\"/></workbook>"}})},
      {"another kind of document",
       zipOf(
           {{"_rels/.rels", "<R>" + relation("r1", "officeDocument", "word/document.xml") + "</R>"},
            {"word/document.xml", "<document/>"}})},
      {"binary workbook",
       zipOf({{"_rels/.rels", "<R>" + relation("r1", "officeDocument", "xl/workbook.bin") + "</R>"},
              {"xl/workbook.bin", "x"}})},
  };
  const auto path = std::filesystem::temp_directory_path() / ownName("lodex_damaged");
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    writeFileWhole(pathText(path), row.bytes);
    Worksheet book;
    book.TextRC(1, 1, "before");
    EXPECT_THROW(book.Read(pathText(path)), FileError);
    EXPECT_EQ(book.TextRC(1, 1), "before");
  }
  std::filesystem::remove(path);
}

// Found by the fuzzer: parts of a font, border or style outside of any.
TEST(XlsxReader, StylesOutOfPlaceAreIgnored) {
  for (const char* list : {"fonts", "fills", "borders", "cellXfs"}) {
    for (const char* parent : {"font", "fill", "border", "xf"}) {
      Worksheet book;
      const std::string document = std::string("<styleSheet><") + list + "><x><" + parent +
                                   "><name val=\"A\"/><left style=\"thin\"/><alignment/></" +
                                   parent + "></x></" + list + "></styleSheet>";
      EXPECT_TRUE(readXlsxStyles(document, {}, book).empty());
    }
  }
}

TEST(XlsxWriter, WhatIsWrittenReadsBack) {
  Worksheet book;
  book.NumSheets(3);
  book.SheetName(1, "Data 'raw' 1");
  book.SheetName(2, "Hidden");
  book.sheetVisibility(2, SheetVisibility::Hidden);
  book.sheetVisibility(3, SheetVisibility::VeryHidden);
  book.dates1904(true);
  book.Sheet(1);
  book.NumberRC(1, 1, 0.1 + 0.2);
  book.ValueSRC(1, 1, 2, Value::text("µ <&> \"x\" "));
  book.ValueSRC(1, 1, 3, Value::boolean(false));
  book.ValueSRC(1, 1, 4, Value::error(ErrorCode::DivisionByZero));
  book.setFormulaWithValue(1, 2, 1, "SUM(A1:A1)*2", Value(0.6));
  book.setFormulaWithValue(1, 2, 2, "\"a\"&\"b\"", Value::text("ab"));
  book.setFormulaWithValue(1, 2, 3, "A1>0", Value::boolean(true));
  book.setFormulaWithValue(1, 2, 4, "NA()", Value::error(ErrorCode::NotAvailable));
  book.setFormulaWithValue(1, 2, 5, "STDEV.S(A1:A2)", Value(0));
  book.setArrayFormula(1, 3, 1, 3, 2, "A1:B1*2");
  book.setCachedValue(1, 3, 1, Value(0.6));
  book.setCachedValue(1, 3, 2, Value::text("seven"));
  book.ValueSRC(1, 3, 3, Value::text("_x000D_\r\x01"));
  book.setFormulaWithValue(1, 4, 1, "\"TR\"&\"UE\"", Value::text("TRUE"));
  book.setFormulaWithValue(1, 4, 2, "#REF!", Value::error(ErrorCode::Ref));
  book.setFormulaWithValue(1, 4, 3, "\"a\r\nb\"", Value::text("a\r\nb"));
  CellFormat format;
  format.numberFormat = "0.000";
  format.bold = true;
  format.fontColor = 0;  // black, which is not "automatic"
  format.pattern = FillPattern::Solid;
  format.patternColor = 0xFFFF00;
  format.borderTop = 1;
  format.horizontal = HorizontalAlignment::Center;
  book.setFormat(1, 1, 1, format);
  book.setFormat(1, 9, 9, format);
  book.columnWidth(1, 2, 20);
  book.columnHidden(1, 3, true);
  book.rowHidden(1, 2, true);
  book.FixedRows(1);
  book.setDefinedNames(
      {{"Irons", "'Data ''raw'' 1'!$A$1:$A$2", 0, false}, {"Local", "Hidden!$A$1", 2, true}});

  const auto path = pathText(std::filesystem::temp_directory_path() / ownName("lodex_written"));
  book.Write(path, FileType::Xlsx);
  Worksheet back;
  EXPECT_EQ(back.Read(path), FileType::Xlsx);
  std::filesystem::remove(path);
  EXPECT_EQ(back.Title() + ".xlsx", ownName("lodex_written"));
  ASSERT_EQ(back.NumSheets(), 3);
  for (int sheet = 1; sheet <= 3; ++sheet) {
    EXPECT_EQ(back.SheetName(sheet), book.SheetName(sheet));
    EXPECT_EQ(back.sheetVisibility(sheet), book.sheetVisibility(sheet));
  }
  for (int row = 1; row <= 4; ++row) {
    for (int column = 1; column <= 5; ++column) {
      EXPECT_EQ(back.ValueRC(row, column), book.ValueRC(row, column)) << row << "," << column;
      EXPECT_EQ(back.HasFormula(1, row, column), book.HasFormula(1, row, column));
      EXPECT_EQ(back.FormulaRC(row, column), book.FormulaRC(row, column)) << row << "," << column;
    }
  }
  EXPECT_EQ(back.formatOf(1, 1, 1), format);
  EXPECT_EQ(back.formatOf(1, 9, 9), format);
  EXPECT_DOUBLE_EQ(back.columnWidth(1, 2), 20);
  EXPECT_TRUE(back.columnHidden(1, 3));
  EXPECT_TRUE(back.rowHidden(1, 2));
  EXPECT_EQ(back.FixedRows(), 1);
  EXPECT_TRUE(back.dates1904());
  ASSERT_EQ(back.definedNames().size(), 2u);
  for (const DefinedName& name : back.definedNames()) {
    EXPECT_EQ(name.sheet, name.name == "Local" ? 2 : 0);
    EXPECT_EQ(name.hidden, name.name == "Local");
    EXPECT_EQ(name.formula, name.name == "Local" ? "Hidden!$A$1" : "'Data ''raw'' 1'!$A$1:$A$2");
  }
}

TEST(XlsxWriter, PlainDecimalsBecomeNumbersThatShowTheirZeros) {
  struct Case {
    const char* text;
    const char* format;
  };
  for (const Case& row : std::initializer_list<Case>{{"12.50", "0.00"},
                                                     {"-3.0", "0.0"},
                                                     {"7", "0"},
                                                     {"0.10", "0.00"},
                                                     {"00123", ""},
                                                     {"5E1", ""},
                                                     {"+3.0", ""},
                                                     {".50", ""},
                                                     {"3.", ""},
                                                     {" 3.0", ""},
                                                     {"1234567890.123450", ""}}) {
    EXPECT_EQ(plainDecimalFormat(row.text), row.format) << row.text;
  }
  Worksheet book;
  book.TextRC(1, 1, "12.50");
  book.TextRC(2, 1, "00123");
  const auto path = pathText(std::filesystem::temp_directory_path() / ownName("lodex_decimals"));
  book.Write(path, FileType::Xlsx);
  book.Read(path);
  std::filesystem::remove(path);
  EXPECT_TRUE(book.ValueRC(1, 1).isNumber());
  EXPECT_EQ(book.TextRC(1, 1), "12.50");
  EXPECT_EQ(book.TextRC(2, 1), "00123");
}

TEST(XlsxWriter, RefusesWhatTheFormatCannotHold) {
  const auto path = pathText(std::filesystem::temp_directory_path() / ownName("lodex_refused"));
  Worksheet book;
  book.SheetName(1, "a/b");
  EXPECT_THROW(book.Write(path, FileType::Xlsx), FileError);
  book.SheetName(1, "Fine");
  book.ValueSRC(1, 1, 1, Value::text(std::string(40000, 'x')));
  EXPECT_THROW(book.Write(path, FileType::Xlsx), FileError);
  EXPECT_FALSE(pathExists(path)) << "a failed write leaves no file";
}

}  // namespace
}  // namespace lodex
