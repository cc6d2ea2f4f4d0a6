#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "basic/Text.h"
#include "calc/CalculationGroup.h"
#include "calc/Calculations.h"
#include "import/ImportFixture.h"

namespace lodex {

/// A method workbook to be written: rows of entries separated by "|", as they would be typed.
struct TestMethod {
  std::vector<std::string> list{};
  std::vector<std::string> links{};
  std::vector<std::string> input{};  // from row 2 on
  std::vector<std::string> map{};
  std::vector<std::string> output{};
};

inline void enterRows(Worksheet& book, int sheet, int firstRow,
                      const std::vector<std::string>& rows) {
  for (size_t r = 0; r < rows.size(); ++r) {
    const auto cells = split(rows[r], "|");
    for (size_t c = 0; c < cells.size(); ++c) {
      // As a text cell: no spreadsheet takes the first "'" of an entry for part of the text.
      const std::string entry = cells[c].starts_with("'") ? "'" + cells[c] : cells[c];
      book.EntrySRC(sheet, firstRow + static_cast<int>(r), static_cast<int>(c) + 1, entry);
    }
  }
}

inline Worksheet methodBook(const TestMethod& method) {
  Worksheet book;
  book.NumSheets(5);
  const char* names[] = {"List", "Links", "Input", "Map", "Output"};
  for (int sheet = 1; sheet <= 5; ++sheet) book.SheetName(sheet, names[sheet - 1]);
  enterRows(book, 1, 1, method.list);
  enterRows(book, 2, 1, method.links);
  enterRows(book, 3, 2, method.input);
  enterRows(book, 4, 1, method.map);
  enterRows(book, 5, 1, method.output);
  return book;
}

/// A folder of calculation groups, data sheets and the calculations over them.
class CalcFixture : public ImportFixture {
 protected:
  CalcFixture() {
    session.record.CGroupsFolder = groups.string();
    session.record.DefaultCGroup = "TEST";
    std::filesystem::create_directories(groups / "TEST");
  }

  void writeMethod(const std::string& file, const TestMethod& method) {
    const bool isNew = file.ends_with("xlsx");
    methodBook(method).Write((groups / "TEST" / file).string(),
                             isNew ? FileType::Xlsx : FileType::Excel);
  }

  /// A data sheet with its system rows HEADER, ELEMENT, METHOD, UNIT in rows 1 to 4, identifiers in
  /// column 2 and data from row 5 on. It is selected for calculations.
  frmDataIN& addSheet(const std::string& name, const std::vector<std::string>& rows) {
    frmDataIN& sheet = sheets.newSheet("New Data ");
    sheet.setCaption(name);
    fill(sheet.F1D, rows);
    SheetStructure structure;
    for (int row = 0; row < 4; ++row) structure.row(row) = row + 1;
    structure.firstDataRow = 5;
    structure.idColumn = 2;
    sheet.setStructure(structure);
    sheets.TarkastaJaLisaaListaan();
    sheets.lstSrcF.selectAll(true);
    return sheet;
  }

  void loadAndRun() {
    calculations.AlustaCALC(true);
    calculations.lstCalc.selectAll(true);
    calculations.Calculate();
  }

  /// A sheet of the result, from its first data row and column on: one text per row.
  std::vector<std::string> resultRows(const std::string& name) {
    Worksheet& book = sheets.result.F1D;
    book.Sheet(book.SheetNumber(name));
    std::vector<std::string> rows;
    for (int row = resultrow::firstData; row <= book.LastRow(); ++row) {
      rows.push_back(rowText(book, row).substr(1));
    }
    return rows;
  }

  std::filesystem::path groups = folder / "groups";
  Calculations calculations{shell, context, sheets};
};

}  // namespace lodex
