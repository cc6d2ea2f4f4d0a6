#include "modal/ResultBook.h"

#include <algorithm>

#include "basic/Text.h"
#include "chem/ReferenceTables.h"

namespace lodex {
namespace {

constexpr int residualDigits = 3;

// "0.000" for 3 decimals.
std::string decimalFormat(int digits) {
  if (digits <= 0) return "0";
  return "0." + std::string(static_cast<size_t>(std::min(digits, 30)), '0');
}

int addSheet(Worksheet& book, const char* name) {
  const int number =
      book.SheetName(1) == "Sheet1" && book.LastRow(1) == 0 ? 1 : book.NumSheets() + 1;
  if (number > 1) book.InsertSheets(number, 1);
  book.SheetName(number, name);
  book.Sheet(number);
  return number;
}

// Copies a sheet of results below a row with its headings. Text that is a number becomes one, shown
// with `digits` decimals after the first column.
void addResult(Worksheet& book, const char* name, const Worksheet& source, int digits) {
  const int sheet = addSheet(book, name);
  int columns = source.LastCol();
  while (!source.ColText(columns + 1).empty()) ++columns;
  for (int c = 1; c <= columns; ++c) book.TextRC(1, c, source.ColText(c));
  for (int c = 1; c <= columns; ++c) {
    for (int r = 1; r <= source.LastRow(); ++r) {
      const Value value = source.ValueRC(r, c);
      if (value.isEmpty()) continue;
      const bool isNumber = c > 1 && value.kind() == ValueKind::NumericText;
      book.ValueSRC(sheet, r + 1, c, isNumber ? Value(value.asNumber()) : value);
    }
  }
  if (columns > 1 && source.LastRow() > 0) {
    book.changeFormat(2, 2, source.LastRow() + 1, columns,
                      [&](CellFormat& format) { format.numberFormat = decimalFormat(digits); });
  }
  book.FixedRows(1);
}

void addDissolution(Worksheet& book, const frmResult& result, const ModalLists& lists,
                    const Worksheet& F1ELoc) {
  const int sheet = addSheet(book, "Dissolution");
  book.TextRC(1, 1, "Element");
  const int columns = result.F1Disso.LastCol();
  for (int c = 1; c <= columns; ++c) book.TextRC(1, c + 1, result.F1Disso.ColText(c));
  int row = 1;
  for (int e = 1; e <= F1ELoc.LastRow(); ++e) {
    bool used = false;
    for (size_t i = 1; i <= lists.MinIDs.size(); ++i) {
      used = used || result.F1Min.HasContent(e, static_cast<int>(i));
    }
    if (!used) continue;
    book.TextRC(++row, 1, F1ELoc.TextRC(e, eloc::Element));
    for (int c = 1; c <= columns; ++c) {
      book.NumberSRC(sheet, row, c + 1, result.F1Disso.NumberRC(e, c));
    }
  }
  book.FixedRows(1);
}

// Lines of text, split at tabs.
void addLines(Worksheet& book, const char* name, const char* heading, const std::string& text) {
  const int sheet = addSheet(book, name);
  int row = 0;
  if (heading != nullptr) book.TextRC(++row, 1, heading);
  for (const std::string& line : split(text, "\r\n")) {
    ++row;
    int column = 0;
    for (const std::string& piece : split(line, "\t")) {
      ++column;
      if (!piece.empty()) book.ValueSRC(sheet, row, column, Value::text(piece));
    }
  }
}

}  // namespace

Worksheet resultBook(const frmResult& result, const ModalLists& lists, const Worksheet& F1ELoc,
                     const std::string& setUpReport, const std::string& log, int digits) {
  Worksheet book;
  addResult(book, "Mode", result.F1MC, digits);
  addResult(book, "BulkChem", result.F1BulkC, residualDigits);
  addResult(book, "Residual", result.F1R, residualDigits);
  addResult(book, "Assays", result.F1Ini, residualDigits);
  addResult(book, "Notes", result.F1N, 0);
  addResult(book, "Chemistry", result.F1MinMax, residualDigits);
  addDissolution(book, result, lists, F1ELoc);
  // The report's own heading line goes to row 1 so that the rounds below are a table.
  const size_t table = setUpReport.find("Round\t");
  addLines(book, "SetUp", nullptr,
           table == std::string::npos ? setUpReport : setUpReport.substr(table));
  addLines(book, "Log", "Log", log);
  book.Sheet(1);
  return book;
}

}  // namespace lodex
