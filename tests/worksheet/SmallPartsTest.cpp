// Addresses, the sample table and the snapshot container.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/SampleTable.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

TEST(A1, ColumnsAndTheirLetters) {
  for (const auto& [column, letters] : std::initializer_list<std::pair<int, const char*>>{
           {1, "A"}, {26, "Z"}, {27, "AA"}, {702, "ZZ"}, {703, "AAA"}, {16384, "XFD"}}) {
    EXPECT_EQ(columnLetters(column), letters);
    EXPECT_EQ(columnOfLetters(letters), column);
  }
  EXPECT_EQ(columnOfLetters("xfd"), 16384);
  for (const char* bad : {"", "XFE", "AAAA", "A1", "Ä", "@", "A "}) {
    EXPECT_EQ(columnOfLetters(bad), 0) << bad;
  }
}

TEST(A1, Addresses) {
  int row = 0;
  int column = 0;
  EXPECT_TRUE(parseCellAddress("$b$07", row, column));
  EXPECT_EQ(cellAddress(row, column), "B7");
  EXPECT_TRUE(parseCellAddress("XFD1048576", row, column));
  for (const char* bad : {"", "B", "7", "B0", "B1048577", "XFE1", "B7x", "B-7", "B$",
                          "B99999999999", "$$B7", "B 7"}) {
    EXPECT_FALSE(parseCellAddress(bad, row, column)) << bad;
  }
}

TEST(SampleTable, SortsWithoutChangingTheOriginalOrder) {
  SampleTable table;
  table.Size(4, 2);
  for (int row = 1; row <= 4; ++row) table.Cell(2, row, std::to_string(row));
  table.Cell(1, 1, "b");
  table.Cell(1, 2, "a");
  table.Cell(1, 3, "b");
  table.SortBy(1);
  std::string sorted;
  for (int row = 1; row <= 4; ++row) sorted += table.SortedCell(2, row);
  EXPECT_EQ(sorted, "4213") << "empty first, equal rows in their order";
  EXPECT_EQ(table.Cell(1, 1), "b");
  table.Resize(5);
  EXPECT_EQ(table.RowCount(), 5);
  EXPECT_EQ(table.Cell(2, 4), "4");
  EXPECT_EQ(table.SortedCell(2, 1), "1") << "a new size ends the sorted order";
  table.Size(2, 2);
  EXPECT_EQ(table.Cell(1, 1), "");
  EXPECT_THROW(table.Cell(0, 1), Error);
  EXPECT_THROW(table.Cell(1, 3, "x"), Error);
  table.Size(0, 0);
  EXPECT_NO_THROW(table.SortBy(1));
}

Worksheet fullWorkbook() {
  Worksheet book;
  book.NumSheets(2);
  book.SheetName(1, "Sheet2b");
  book.SheetName(2, "Toinen");
  book.sheetVisibility(2, SheetVisibility::VeryHidden);
  book.Title("short name");
  book.dates1904(true);
  book.permissions().AllowDelete = false;
  book.Sheet(2);
  book.TextRC(1, 1, "00123");
  book.NumberRC(3, 2, 0.1 + 0.2);
  book.ValueSRC(2, 4, 1, Value::boolean(true));
  book.ValueSRC(2, 4, 2, Value::error(ErrorCode::Circular));
  book.setFormulaWithValue(2, 5, 1, "SUM(B1:B3)", Value::text("cached"));
  book.setArrayFormula(2, 6, 1, 7, 2, "B1:B2*2");
  book.setCachedValue(2, 7, 2, Value(9));
  CellFormat format;
  format.numberFormat = "0.000";
  format.wrap = true;
  book.setFormat(2, 9, 9, format);
  book.ColText(1, "col");
  book.RowText(2, "row");
  book.columnWidth(2, 3, 12.5);
  book.rowHidden(2, 8, true);
  book.FixedRows(1);
  book.SetSelection(2, 1, 3, 2);
  book.MaxRow(20);
  book.setDefinedNames({{"Iron", "Toinen!$A$1", 2, true}});
  return book;
}

TEST(Snapshot, GivesEverythingBack) {
  const Worksheet book = fullWorkbook();
  Worksheet back;
  back.ReadFromBlob(book.WriteToBlob());
  EXPECT_EQ(back.Title(), "short name");
  EXPECT_EQ(back.Sheet(), 2);
  EXPECT_EQ(back.SheetName(1), "Sheet2b");
  EXPECT_EQ(back.sheetVisibility(2), SheetVisibility::VeryHidden);
  EXPECT_TRUE(back.dates1904());
  EXPECT_FALSE(back.permissions().AllowDelete);
  for (int row = 1; row <= 9; ++row) {
    for (int column = 1; column <= 2; ++column) {
      EXPECT_EQ(back.ValueRC(row, column), book.ValueRC(row, column)) << row << "," << column;
      EXPECT_EQ(back.FormulaRC(row, column), book.FormulaRC(row, column));
      EXPECT_EQ(back.HasFormula(2, row, column), book.HasFormula(2, row, column));
    }
  }
  EXPECT_EQ(back.formatOf(2, 9, 9), book.formatOf(2, 9, 9));
  EXPECT_EQ(back.ColText(1), "col");
  EXPECT_EQ(back.RowText(2), "row");
  EXPECT_EQ(back.columnWidth(2, 3), 12.5);
  EXPECT_TRUE(back.rowHidden(2, 8));
  EXPECT_EQ(back.FixedRows(), 1);
  EXPECT_EQ(back.SelEndRow(), 3);
  EXPECT_EQ(back.MaxRow(), 20);
  ASSERT_EQ(back.definedNames().size(), 1u);
  EXPECT_TRUE(back.definedNames()[0].hidden);
  EXPECT_EQ(back.WriteToBlob(), book.WriteToBlob());
}

TEST(Snapshot, DamageIsNoticedAndChangesNothing) {
  const std::string blob = fullWorkbook().WriteToBlob();
  Worksheet book;
  book.TextRC(1, 1, "before");
  for (size_t cut = 0; cut < blob.size(); cut += 7) {
    EXPECT_THROW(book.ReadFromBlob(blob.substr(0, cut)), FileError) << cut;
    std::string flipped = blob;
    flipped[cut] = static_cast<char>(flipped[cut] ^ 0x10);
    EXPECT_THROW(book.ReadFromBlob(flipped), FileError) << cut;
  }
  EXPECT_EQ(book.TextRC(1, 1), "before");
}

TEST(WorksheetFiles, DetectsTypesFromContentNotFromNames) {
  const auto folder =
      std::filesystem::temp_directory_path() / ("lodex_kinds_" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder);
  const auto path = [&](const char* name) { return pathText(folder / name); };
  Worksheet book;
  book.TextRC(1, 1, "x");
  const std::pair<FileType, const char*> kinds[] = {{FileType::Text, "text.xls"},
                                                    {FileType::Excel, "excel.txt"},
                                                    {FileType::Native, "native.xls"},
                                                    {FileType::Xlsx, "new.xls"}};
  for (const auto& [type, name] : kinds) {
    book.Write(path(name), type);
    Worksheet back;
    EXPECT_EQ(back.Read(path(name)), type) << name;
    EXPECT_EQ(back.TextRC(1, 1), "x") << name;
  }
  Worksheet back;
  back.permissions().AllowDelete = false;
  back.Read(path("text.xls"));
  EXPECT_EQ(back.Title(), "text");
  EXPECT_FALSE(back.permissions().AllowDelete) << "a file does not change what the user may do";
  EXPECT_THROW(book.Write(path("x.ods"), FileType::Ods), FileError);

  struct Case {
    const char* name;
    std::string bytes;
    const char* reason;
  };
  const Case cases[] = {
      {"empty.txt", "", "the file is empty"},
      {"binary.xls",
       std::string("\x7F"
                   "ELF\0\0\0\1",
                   8),
       "it is not a workbook, and not a text"},
      {"nul.txt", std::string("a\tb\r\n1\t2\r\n3\t\0 Fe2O3 of a longer text", 38), "line 3"},
      {"broken.xlsx", "PK\x03\x04 nothing more", "the file is damaged"}};
  for (const Case& row : cases) {
    writeFileWhole(path(row.name), row.bytes);
    try {
      back.Read(path(row.name));
      ADD_FAILURE() << row.name << " was read";
    } catch (const FileError& error) {
      EXPECT_NE(std::string(error.what()).find(row.reason), std::string::npos) << error.what();
    }
  }
  EXPECT_THROW(back.Read(path("missing.xls")), FileError);
  EXPECT_THROW(back.Read(pathText(folder)), FileError);
  EXPECT_EQ(back.TextRC(1, 1), "x");
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace lodex
