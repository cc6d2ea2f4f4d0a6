#include "worksheet/files/TextWriter.h"

#include <algorithm>

#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex {

void appendField(std::string& out, const std::string& field, char separator) {
  const bool special = std::any_of(field.begin(), field.end(), [&](char c) {
    return c == separator || c == '"' || c == '\r' || c == '\n';
  });
  out += special ? '"' + replaceAll(field, "\"", "\"\"") + '"' : field;
}

std::string writeText(const Worksheet& sheet, char separator) {
  std::string out;
  const int lastColumn = sheet.LastCol();
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    for (int column = 1; column <= lastColumn; ++column) {
      if (column > 1) out += separator;
      appendField(out, sheet.TextRC(row, column), separator);
    }
    out += "\r\n";
  }
  if (out.empty()) return "\r\n";  // an empty sheet is still a readable file
  const bool ascii = std::all_of(out.begin(), out.end(), [](char c) { return (c & 0x80) == 0; });
  return ascii ? out : "\xEF\xBB\xBF" + out;
}

}  // namespace lodex
