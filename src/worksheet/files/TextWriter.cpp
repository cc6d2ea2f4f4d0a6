#include "worksheet/files/TextWriter.h"

#include <algorithm>
#include <cstdint>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex {

void appendField(std::string& out, const std::string& field, char separator) {
  const bool special = std::any_of(field.begin(), field.end(), [&](char c) {
    return c == separator || c == '"' || c == '\r' || c == '\n';
  });
  out += special ? '"' + replaceAll(field, "\"", "\"\"") + '"' : field;
}

namespace {

// Lines of a text are all as long as the longest. Two cells at opposite corners of a sheet would
// take 17 GB of separators.
void checkFields(const Worksheet& sheet) {
  constexpr std::int64_t plenty = 100'000'000;
  const std::int64_t fields = static_cast<std::int64_t>(sheet.LastRow()) * sheet.LastCol();
  if (fields <= plenty) return;
  std::int64_t used = 0;
  sheet.cells(sheet.Sheet()).forEach([&](int, int, const Cell&) { ++used; });
  if (used >= fields / 100) return;
  throw FileError("Sheet " + sheet.SheetName(sheet.Sheet()) + " has " + std::to_string(used) +
                  " cells spread over " + std::to_string(sheet.LastRow()) + " rows and " +
                  std::to_string(sheet.LastCol()) + " columns: too wide apart for a text file");
}

}  // namespace

std::string writeText(const Worksheet& sheet, char separator) {
  std::string out;
  const int lastRow = sheet.LastRow();
  const int lastColumn = sheet.LastCol();
  checkFields(sheet);
  int row = 1;
  int column = 1;  // of the field that comes next
  const auto endLines = [&](int before) {
    for (; row < before; ++row, column = 1) {
      out.append(static_cast<size_t>(std::max(0, lastColumn - column)), separator);
      out += "\r\n";
    }
  };
  sheet.cells(sheet.Sheet()).forEachByRow([&](int at, int where, const Cell& cell) {
    if (cell.kind == ValueKind::Empty) return;
    endLines(at);
    out.append(static_cast<size_t>(where - column), separator);
    appendField(out, sheet.TextRC(at, where), separator);
    column = where;
  });
  endLines(lastRow + 1);
  if (out.empty()) return "\r\n";  // an empty sheet is still a readable file
  const bool ascii = std::all_of(out.begin(), out.end(), [](char c) { return (c & 0x80) == 0; });
  return ascii ? out : "\xEF\xBB\xBF" + out;
}

}  // namespace lodex
