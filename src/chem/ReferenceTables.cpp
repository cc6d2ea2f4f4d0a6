#include "chem/ReferenceTables.h"

#include <fmt/format.h>

#include "basic/Error.h"
#include "basic/Files.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

constexpr size_t maxFileBytes = 4 << 20;

enum class Headings { InRow1, AboveRow1 };
enum class FirstColumn { Cells, RowHeadings };

// What a file of a table has to look like: the heading of its first column and how many there are.
struct Layout {
  const char* file;
  const char* firstHeading;
  int columns;
  FirstColumn firstColumn = FirstColumn::Cells;
};

constexpr Layout key1Layouts[] = {
    {"Thesaurus", "Item", 7, FirstColumn::RowHeadings},
    {"Multiplier", "Item", 7, FirstColumn::RowHeadings},
    {"Unit", "Spelling 1", 6},
    {"Unit_Multipl", "Item", 6, FirstColumn::RowHeadings},
    {"METHOD", "Family", 7},
    {"Page", "Item", 8, FirstColumn::RowHeadings},
    {"Member", "Item", 22, FirstColumn::RowHeadings},
    {"Mineral", "Mineral", 7},
    {"listbox", "Index", 2},
};

// Fills the current sheet of `table` from a tab text whose first line is headings.
class TableReader {
 public:
  TableReader(Worksheet& table, const Layout& layout, Headings headings, const std::string& path)
      : table_(table),
        layout_(layout),
        path_(path),
        rowShift_(headings == Headings::AboveRow1 ? 1 : 0),
        columnShift_(layout.firstColumn == FirstColumn::RowHeadings ? 1 : 0) {}

  void read() {
    const std::string text = decodeText(readFile(path_, maxFileBytes));
    splitCells(text, '\t', [this](int row, int column, std::string_view cell) {
      if (cell.empty()) return;
      check(row, column, cell);
      place(row - rowShift_, column - columnShift_, cell);
    });
    if (headings_ != layout_.columns) {
      fail(fmt::format("{} headings instead of {}", headings_, layout_.columns));
    }
    if (table_.LastRow() + rowShift_ < 2) fail("no rows below the headings");
  }

 private:
  void check(int row, int column, std::string_view cell) {
    if (row == 1) headings_ = column;
    if (row == 1 && column == 1 && cell != layout_.firstHeading) {
      fail(fmt::format("its first heading is \"{}\" instead of \"{}\"", cell.substr(0, 40),
                       layout_.firstHeading));
    }
    if (column > layout_.columns) {
      fail(fmt::format("row {} has more than {} columns", row, layout_.columns));
    }
  }

  void place(int row, int column, std::string_view cell) {
    if (row == 0) {
      if (column > 0) table_.ColText(column, cell);
    } else if (column == 0) {
      table_.RowText(row, cell);
    } else {
      table_.TextRC(row, column, cell);
    }
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw FileError(fmt::format("Malformed reference table {}: {}", path_, reason));
  }

  Worksheet& table_;
  const Layout& layout_;
  const std::string& path_;
  int rowShift_;
  int columnShift_;
  int headings_ = 0;
};

Worksheet readTable(std::string_view folder, const Layout& layout, Headings headings) {
  Worksheet table;
  table.Title(layout.file);
  TableReader(table, layout, headings, fmt::format("{}/{}.txt", folder, layout.file)).read();
  return table;
}

Worksheet readKey1(std::string_view folder) {
  Worksheet workbook;
  workbook.Title("F1Key1");
  workbook.NumSheets(static_cast<int>(std::size(key1Layouts)));
  int sheet = 0;
  for (const Layout& layout : key1Layouts) {
    workbook.Sheet(++sheet);
    workbook.SheetName(sheet, layout.file);
    const std::string path = fmt::format("{}/F1Key1/{}.txt", folder, layout.file);
    TableReader(workbook, layout, Headings::AboveRow1, path).read();
  }
  workbook.Sheet(1);
  return workbook;
}

}  // namespace

void taulukot::load(std::string_view folder) {
  Worksheet data = readTable(folder, {"F1Data", "Atomic Number", 45}, Headings::InRow1);
  Worksheet elements = readTable(folder, {"F1El", "Element", 14}, Headings::InRow1);
  Worksheet locations = readTable(folder, {"F1ELoc", "Element", 15}, Headings::AboveRow1);
  F1Key1 = readKey1(folder);
  F1Data = std::move(data);
  F1El = std::move(elements);
  F1ELoc = std::move(locations);
}

}  // namespace lodex
