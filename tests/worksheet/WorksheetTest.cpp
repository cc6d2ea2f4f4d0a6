#include "worksheet/Worksheet.h"

#include <gtest/gtest.h>

#include <climits>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {
namespace {

// Fills from row 1, column 1: rows between "|", cells between ",".
Worksheet sheetOf(const std::string& text) {
  Worksheet sheet;
  int row = 0;
  for (const std::string& line : split(text, "|")) {
    ++row;
    int column = 0;
    for (const std::string& cell : split(line, ",")) sheet.EntryRC(row, ++column, cell);
  }
  return sheet;
}

std::string textOf(const Worksheet& sheet) {
  std::vector<std::string> lines;
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    std::vector<std::string> cells;
    for (int column = 1; column <= sheet.LastCol(); ++column) {
      cells.push_back(sheet.TextRC(row, column));
    }
    lines.push_back(join(cells, ","));
  }
  return join(lines, "|");
}

TEST(Worksheet, StartsEmpty) {
  const Worksheet book;
  EXPECT_EQ(book.NumSheets(), 1);
  EXPECT_EQ(book.SheetName(1), "Sheet1");
  EXPECT_EQ(book.LastRow(), 0);
  EXPECT_EQ(book.LastCol(), 0);
  EXPECT_EQ(book.TextRC(1, 1), "");
  EXPECT_EQ(book.NumberRC(1, 1), 0);
}

TEST(Worksheet, TextAndNumberAreTwoViews) {
  struct Case {
    const char* text;
    ValueKind kind;
    double number;
  };
  for (const Case& row : std::initializer_list<Case>{
           {"2.5", ValueKind::Number, 2.5},
           {"-7", ValueKind::Number, -7},
           {"1E+20", ValueKind::Number, 1e20},
           {"00123", ValueKind::NumericText, 123},
           {"12.0", ValueKind::NumericText, 12},
           {"5E1", ValueKind::NumericText, 50},
           {" 3 ", ValueKind::NumericText, 3},
           {"-0", ValueKind::NumericText, 0},
           {"0.00002", ValueKind::Number, 2e-5},
           {"0.000001", ValueKind::NumericText, 1e-6},
           {"1234567890.12345678", ValueKind::NumericText, 1234567890.12345678},
           {"1,5", ValueKind::Text, 0},
           {"TRUE", ValueKind::Text, 0},
           {"=A1", ValueKind::Text, 0},
           {"1e999", ValueKind::Text, 0},
           {"nan", ValueKind::Text, 0}}) {
    SCOPED_TRACE(row.text);
    Worksheet sheet;
    sheet.TextRC(1, 1, row.text);
    EXPECT_EQ(sheet.ValueRC(1, 1).kind(), row.kind);
    EXPECT_EQ(sheet.TextRC(1, 1), row.text);
    EXPECT_EQ(sheet.NumberRC(1, 1), row.number);
  }
  Worksheet sheet;
  sheet.NumberRC(1, 1, 2.5);
  EXPECT_EQ(sheet.TextRC(1, 1), "2.5");
  sheet.SetSelection(1, 1, 1, 1);
  sheet.NumberFormat("0.000");
  EXPECT_EQ(sheet.TextRC(1, 1), "2.500") << "text is shown under the cell's format";
}

TEST(Worksheet, EmptyTextEmptiesTheCell) {
  Worksheet sheet = sheetOf("a,b|c");
  sheet.TextRC(2, 1, "");
  EXPECT_EQ(sheet.LastRow(), 1);
  sheet.TextRC(1, 2, "");
  EXPECT_EQ(sheet.LastCol(), 1);
  sheet.ValueSRC(1, 5, 5, Value::text(""));
  EXPECT_EQ(sheet.LastRow(), 1);
  sheet.FormulaRC(1, 1, "");
  EXPECT_EQ(sheet.LastRow(), 0);
}

TEST(Worksheet, AnEntryReadsBackAsItself) {
  for (const char* entry : {"=A2*2", "2.5", "0.30000000000000004", "TRUE", "#N/A", "text", "'00123",
                            "'TRUE", "'=A1", "''quoted", "'#N/A"}) {
    Worksheet sheet;
    sheet.EntryRC(1, 1, entry);
    EXPECT_EQ(sheet.EntryRC(1, 1), entry);
    Worksheet copy;
    copy.EntryRC(1, 1, sheet.EntryRC(1, 1));
    EXPECT_EQ(copy.TextRC(1, 1), sheet.TextRC(1, 1)) << entry;
  }
  Worksheet sheet;
  sheet.EntryRC(1, 1, "'=A1");
  EXPECT_EQ(sheet.TextRC(1, 1), "=A1");
  sheet.EntryRC(1, 1, "=");
  EXPECT_EQ(sheet.TextRC(1, 1), "=") << "a lone sign is not a formula";
}

TEST(Worksheet, FormulaReadsWithoutItsSign) {
  Worksheet sheet;
  sheet.FormulaRC(1, 1, "=A2+1");
  EXPECT_EQ(sheet.FormulaRC(1, 1), "A2+1");
  sheet.NumberRC(2, 1, 2.5);
  EXPECT_EQ(sheet.FormulaRC(2, 1), "2.5") << "a plain value reads as its text";
}

TEST(Worksheet, PlacesOutsideOfTheSheetThrow) {
  Worksheet sheet;
  EXPECT_THROW(sheet.TextRC(0, 1), Error);
  EXPECT_THROW(sheet.TextRC(1, 0, "x"), Error);
  EXPECT_THROW(sheet.NumberRC(maxRows + 1, 1), Error);
  EXPECT_THROW(sheet.NumberRC(1, maxColumns + 1, 1), Error);
  EXPECT_THROW(sheet.TextSRC(2, 1, 1), Error);
  sheet.NumberRC(maxRows, maxColumns, 1);
  EXPECT_EQ(sheet.LastRow(), maxRows);
  sheet.ClearRange(1, 1, maxRows + 1, maxColumns + 1);
  EXPECT_EQ(sheet.LastRow(), 0);
  sheet.MaxRow(10);
  EXPECT_THROW(sheet.TextRC(11, 1), Error);
  try {
    sheet.TextRC(11, 2, "x");
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(),
                 "Row 11, column 2 lies outside of sheet Sheet1 (10 rows, 16384 columns)");
  }
}

TEST(Worksheet, Sheets) {
  Worksheet book;
  book.TextRC(1, 1, "first");
  book.InsertSheets(1, 2);
  EXPECT_EQ(book.NumSheets(), 3);
  EXPECT_EQ(book.Sheet(), 3) << "the current sheet stays the same one";
  EXPECT_EQ(book.TextRC(1, 1), "first");
  book.SheetName(1, "Input");
  EXPECT_THROW(book.SheetName(2, "INPUT"), Error);
  EXPECT_THROW(book.SheetName(2, ""), Error);
  EXPECT_NO_THROW(book.SheetName(1, "input")) << "a sheet may change its own spelling";
  EXPECT_EQ(book.SheetNumber("INPUT"), 1);
  EXPECT_EQ(book.SheetNumber("none"), 0);
  book.DeleteSheets(1, 1);
  EXPECT_EQ(book.Sheet(), 2);
  EXPECT_EQ(book.TextRC(1, 1), "first");
  EXPECT_THROW(book.DeleteSheets(2, 2), Error);
  book.DeleteSheets(1, 2);
  EXPECT_EQ(book.NumSheets(), 1);
  EXPECT_EQ(book.SheetName(1), "Sheet1");
  EXPECT_EQ(book.LastRow(), 0);
}

TEST(Worksheet, DeleteAndInsertRanges) {
  struct Case {
    const char* name;
    Shift shift;
    const char* deleted;   // after deleting row 2, column 2
    const char* inserted;  // after inserting there
  };
  const Case cases[] = {
      {"rows", Shift::Rows, "a,b,c|g,h,i", "a,b,c|,,|d,e,f|g,h,i"},
      {"columns", Shift::Columns, "a,c|d,f|g,i", "a,,b,c|d,,e,f|g,,h,i"},
      {"down", Shift::Down, "a,b,c|d,h,f|g,,i", "a,b,c|d,,f|g,e,i|,h,"},
      {"right", Shift::Right, "a,b,c|d,f,|g,h,i", "a,b,c,|d,,e,f|g,h,i,"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Worksheet sheet = sheetOf("a,b,c|d,e,f|g,h,i");
    sheet.DeleteRange(2, 2, 2, 2, row.shift);
    EXPECT_EQ(textOf(sheet), row.deleted);
    sheet = sheetOf("a,b,c|d,e,f|g,h,i");
    sheet.InsertRange(2, 2, 2, 2, row.shift);
    EXPECT_EQ(textOf(sheet), row.inserted);
  }
  Worksheet sheet = sheetOf("a|b|c");
  sheet.DeleteRange(2, 1, INT_MAX, 1, Shift::Rows);
  EXPECT_EQ(textOf(sheet), "a");
  EXPECT_THROW(sheet.DeleteRange(2, 1, 1, 1, Shift::Rows), Error);
  sheet.TextRC(maxRows, 1, "last");
  EXPECT_THROW(sheet.InsertRange(1, 1, 1, 1, Shift::Rows), Error);
  EXPECT_EQ(sheet.TextRC(maxRows, 1), "last");
}

TEST(Worksheet, WidthsAndHeadingsMoveWithTheirRowsAndColumns) {
  Worksheet sheet = sheetOf("a,b,c|d,e,f|g,h,i");
  sheet.columnWidth(1, 3, 20);
  sheet.columnHidden(1, 2, true);
  sheet.ColText(3, "third");
  sheet.rowHidden(1, 3, true);
  sheet.RowText(3, "row");
  sheet.DeleteRange(1, 2, 1, 2, Shift::Columns);
  EXPECT_EQ(sheet.columnWidth(1, 2), 20);
  EXPECT_FALSE(sheet.columnHidden(1, 2)) << "the hidden column is gone";
  EXPECT_EQ(sheet.ColText(2), "third");
  sheet.InsertRange(1, 1, 2, 1, Shift::Rows);
  EXPECT_TRUE(sheet.rowHidden(1, 5));
  EXPECT_EQ(sheet.RowText(5), "row");
  EXPECT_FALSE(sheet.rowHidden(1, 3));
  sheet.InsertRange(1, 1, 1, 1, Shift::Down);
  EXPECT_EQ(sheet.RowText(5), "row") << "only whole rows take their headings along";
}

TEST(Worksheet, CopyRange) {
  Worksheet source = sheetOf("1,2|3,4");
  source.SetSelection(1, 1, 1, 1);
  source.NumberFormat("0.0");
  Worksheet target;
  target.CopyRange(2, 2, 3, 3, source.SS(), 1, 1, 2, 2);
  EXPECT_EQ(textOf(target), ",,|,1.0,2|,3,4");
  target.CopyRange(1, 1, 4, 2, source.SS(), 1, 1, 2, 1);
  EXPECT_EQ(target.TextRC(4, 2), "3") << "a smaller source repeats";
  Worksheet same = sheetOf("1,2,3,4");
  same.CopyRange(1, 2, 1, 4, same.SS(), 1, 1, 1, 3);
  EXPECT_EQ(textOf(same), "1,1,2,3") << "overlapping, to the right";
  same.CopyRange(1, 1, 1, 3, same.SS(), 1, 2, 1, 4);
  EXPECT_EQ(textOf(same), "1,2,3,3") << "overlapping, to the left";
  same.CopyRange(1, 1, 2, 4, same.SS(), 1, 2, 1, 3);
  EXPECT_EQ(textOf(same), "2,3,2,3|2,3,2,3") << "repeated over itself";
}

TEST(Worksheet, FindReportsFirstOrLastHit) {
  const Worksheet sheet = sheetOf("S-1,s-1|S-10,x|S-1,12.5");
  EXPECT_EQ(sheet.Find("S-1", 1, 1, 1, 99, 1).found, 2);
  EXPECT_EQ(sheet.Find("S-1", 1, 1, 1, 99, 1).row, 1);
  EXPECT_EQ(sheet.Find("S-1", 1, 1, 1, 99, 1, {true, true, true}).row, 3);
  EXPECT_EQ(sheet.Find("S-1", 1, 1, 1, 99, 2, {true, false, false}).found, 3);
  EXPECT_EQ(sheet.Find("-1", 1, 1, 1, 99, 1, {false, true, false}).found, 3);
  EXPECT_EQ(sheet.Find("12.5", 1, 1, 1, 99, 9).column, 2);
  EXPECT_EQ(sheet.Find("none", 1, 1, 1, 99, 9).found, 0);
  EXPECT_EQ(sheet.Find("", 1, 1, 1, 99, 9).found, 0);
}

TEST(Worksheet, Sort) {
  Worksheet sheet = sheetOf("b,1|,2|10,3|A,4|9,5|TRUE,6|#N/A,7|b,8");
  sheet.Sort(1, 1, 8, 2, true, {{1, false}});
  EXPECT_EQ(textOf(sheet), "9,5|10,3|A,4|b,1|b,8|TRUE,6|#N/A,7|,2");
  sheet.Sort(1, 1, 8, 2, true, {{1, true}, {2, true}});
  EXPECT_EQ(textOf(sheet), "#N/A,7|TRUE,6|b,8|b,1|A,4|10,3|9,5|,2");
  Worksheet across = sheetOf("3,1,2|c,a,b");
  across.Sort(1, 1, 2, 3, false, {{1, false}});
  EXPECT_EQ(textOf(across), "1,2,3|a,b,c");
}

TEST(Worksheet, Clipboard) {
  Worksheet sheet = sheetOf("a,2|=A1,b");
  MemoryClipboard clipboard;
  sheet.TextRC(2, 2, "two\nlines");
  sheet.SetSelection(1, 1, 99, 99);
  sheet.EditCopy(clipboard);
  EXPECT_EQ(clipboard.text().substr(0, 5), "a\t2\r\n");
  Worksheet target = sheetOf("x,x|x,x|x,x");
  target.SetActiveCell(2, 1);
  target.EditPaste(clipboard);
  EXPECT_EQ(target.TextRC(2, 2), "2");
  EXPECT_EQ(target.TextRC(3, 2), "two\nlines") << "a cell of two lines stays one cell";
  clipboard.setText("\t=A1+1\n");
  target.SetActiveCell(1, 1);
  target.EditPasteValues(clipboard);
  EXPECT_EQ(target.TextRC(1, 1), "") << "an empty piece overwrites";
  EXPECT_FALSE(target.HasFormula(1, 1, 2));
  target.EditPaste(clipboard);
  EXPECT_TRUE(target.HasFormula(1, 1, 2));
  clipboard.setText("");
  target.SetActiveCell(2, 1);
  target.EditPaste(clipboard);
  EXPECT_EQ(target.TextRC(2, 1), "a") << "nothing to paste changes nothing";
  sheet.SetSelection(1, 1, 1, 2);
  sheet.EditCut(clipboard);
  EXPECT_EQ(sheet.TextRC(1, 1), "");
}

TEST(Worksheet, CopyAllIsIndependent) {
  Worksheet book = sheetOf("a,1");
  book.NumSheets(2);
  book.SheetName(2, "Second");
  book.Title("title");
  Worksheet copy;
  copy.CopyAll(book);
  book.TextRC(1, 1, "changed");
  EXPECT_EQ(copy.TextSRC(1, 1, 1), "a");
  EXPECT_EQ(copy.SheetName(2), "Second");
  EXPECT_EQ(copy.Title(), "title");
  copy.CopyAll(copy);
  EXPECT_EQ(copy.TextSRC(1, 1, 1), "a");
}

}  // namespace
}  // namespace lodex
