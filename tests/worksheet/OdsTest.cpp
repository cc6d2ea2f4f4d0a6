#include <gtest/gtest.h>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/ZipFile.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/ods/OdsParts.h"
#include "worksheet/files/ods/OdsReader.h"

namespace lodex {
namespace {

Worksheet readTables(const std::string& tables, const std::string& styles = "") {
  const std::string bytes = zipOf(
      {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
       {"content.xml", "<office:document-content><office:automatic-styles>" + styles +
                           "</office:automatic-styles><office:body><office:spreadsheet>" + tables +
                           "</office:spreadsheet></office:body></office:document-content>"}});
  const ZipArchive archive(bytes);
  EXPECT_TRUE(looksLikeOds(archive));
  Worksheet book;
  readOds(archive, bytes.size(), book);
  return book;
}

std::string cell(const std::string& attributes, const std::string& content = "") {
  return "<table:table-cell " + attributes + ">" + content + "</table:table-cell>";
}

TEST(OdsReader, Values) {
  const Worksheet book = readTables(
      "<table:table table:name=\"A\"><table:table-row>" +
      cell("office:value-type=\"string\"",
           "<office:annotation><text:p>note</text:p></office:annotation>"
           "<text:p>one<text:s "
           "text:c=\"2\"/><text:span>two</text:span></text:p><text:p>x</text:p>") +
      cell("office:value-type=\"float\" office:value=\"1.5\" table:number-columns-repeated=\"2\"",
           "<text:p>1,5</text:p>") +
      cell("office:value-type=\"date\" office:date-value=\"2024-03-09T06:00:00\"") +
      cell("office:value-type=\"time\" office:time-value=\"PT36H30M00S\"") +
      cell("office:value-type=\"boolean\" office:boolean-value=\"true\"") +
      cell("office:value-type=\"string\" office:string-value=\"\" calcext:value-type=\"error\" "
           "table:formula=\"of:=1/0\"",
           "<text:p>#DIV/0!</text:p>") +
      "</table:table-row><table:table-row table:number-rows-repeated=\"2\" "
      "table:visibility=\"collapse\">" +
      cell("office:value-type=\"percentage\" office:value=\"0.5\"") +
      "</table:table-row><table:table-row table:number-rows-repeated=\"1048573\">" +
      cell("table:number-columns-repeated=\"16384\"") +
      "</table:table-row></table:table><table:table table:name=\"B\"/>");
  EXPECT_EQ(book.NumSheets(), 2);
  EXPECT_EQ(book.SheetName(2), "B");
  EXPECT_EQ(book.TextRC(1, 1), "one  two\nx");
  EXPECT_EQ(book.NumberRC(1, 3), 1.5);
  EXPECT_EQ(book.NumberRC(1, 4), 45360.25);
  EXPECT_DOUBLE_EQ(book.NumberRC(1, 5), 1.5 + 0.5 / 24);
  EXPECT_EQ(book.ValueRC(1, 6), Value::boolean(true));
  EXPECT_EQ(book.ValueRC(1, 7), Value::error(ErrorCode::DivisionByZero));
  EXPECT_EQ(book.FormulaRC(1, 7), "1/0");
  EXPECT_EQ(book.NumberRC(3, 1), 0.5);
  EXPECT_TRUE(book.rowHidden(1, 3));
  EXPECT_EQ(book.LastRow(), 3);
  EXPECT_EQ(book.LastCol(), 7);
}

TEST(OdsReader, NumberFormats) {
  struct Case {
    const char* name;
    const char* style;
    const char* format;
  };
  const Case cases[] = {
      {"decimals",
       "<number:number-style style:name=\"N\"><number:number number:decimal-places=\"2\" "
       "number:min-integer-digits=\"1\"/></number:number-style>",
       "0.00"},
      {"groups",
       "<number:number-style style:name=\"N\"><number:number number:decimal-places=\"1\" "
       "number:min-integer-digits=\"1\" number:grouping=\"true\"/></number:number-style>",
       "#,##0.0"},
      {"percent",
       "<number:percentage-style style:name=\"N\"><number:number number:decimal-places=\"0\" "
       "number:min-integer-digits=\"1\"/><number:text>%</number:text></number:percentage-style>",
       "0%"},
      {"date",
       "<number:date-style style:name=\"N\"><number:day/><number:text>.</number:text>"
       "<number:month number:textual=\"true\"/><number:text> </number:text>"
       "<number:year number:style=\"long\"/></number:date-style>",
       "d\".\"mmm yyyy"},
      {"scientific",
       "<number:number-style style:name=\"N\"><number:scientific-number "
       "number:decimal-places=\"2\" "
       "number:min-integer-digits=\"1\" number:min-exponent-digits=\"2\"/></number:number-style>",
       "0.00E+00"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    const Worksheet book = readTables(
        "<table:table table:name=\"A\"><table:table-row>" +
            cell("office:value-type=\"float\" office:value=\"1\" table:style-name=\"ce\"") +
            "</table:table-row></table:table>",
        std::string(row.style) +
            "<style:style style:name=\"ce\" style:family=\"table-cell\" "
            "style:data-style-name=\"N\">"
            "<style:text-properties fo:font-weight=\"bold\"/></style:style>");
    EXPECT_EQ(book.formatOf(1, 1, 1).numberFormat, row.format);
    EXPECT_TRUE(book.formatOf(1, 1, 1).bold);
  }
}

TEST(OdsReader, Formulas) {
  struct Case {
    const char* file;
    const char* formula;
  };
  for (const Case& row :
       std::initializer_list<Case>{{"of:=SUM([.A1:.B2];[.C3])", "SUM(A1:B2,C3)"},
                                   {"of:=[$Sheet2.$A$1]*2", "Sheet2!$A$1*2"},
                                   {"of:=SUM([$'My sheet'.A1:.B2])", "SUM('My sheet'!A1:B2)"},
                                   {"of:=SUM([Sheet1.A1:Sheet1.B2])", "SUM(Sheet1!A1:B2)"},
                                   {"of:=IF([.A1]=\"a;[.B1]\";1;0)", "IF(A1=\"a;[.B1]\",1,0)"},
                                   {"of:=SUM({1;2|3;4})", "SUM({1,2;3,4})"},
                                   {"of:=COM.MICROSOFT.STDEV.S([.A1])", "STDEV.S(A1)"},
                                   {"of:=[.A1", "A1"},
                                   {"of:=\"open", "\"open"}}) {
    EXPECT_EQ(odsFormula(row.file), row.formula) << row.file;
  }
  EXPECT_EQ(odsReference("$Sheet1.$A$1:.$B$2"), "Sheet1!$A$1:$B$2");
}

TEST(OdsReader, RepetitionWithoutEndIsRefused) {
  EXPECT_THROW(readTables("<table:table table:name=\"A\"><table:table-row "
                          "table:number-rows-repeated=\"1000000\">" +
                          cell("office:value-type=\"float\" office:value=\"1\" "
                               "table:number-columns-repeated=\"16000\"") +
                          "</table:table-row></table:table>"),
               FileError);
}

}  // namespace
}  // namespace lodex
