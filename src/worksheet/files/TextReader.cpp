#include "worksheet/files/TextReader.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

// The longest text a cell of the usual spreadsheet files holds. A quote that stays open longer than
// this is taken for a quote that somebody typed.
constexpr size_t longestQuoted = 32767;

bool isLineEnd(char c) {
  return c == '\n' || c == '\r';
}

// The end of a field that starts with a quote at `start`: the position after the closing quote, or
// npos if the field is not wholly enclosed.
size_t closingQuote(std::string_view text, size_t start, char separator) {
  const size_t limit = std::min(text.size(), start + 2 * longestQuoted);
  for (size_t pos = start + 1; pos < limit; ++pos) {
    if (text[pos] != '"') continue;
    const bool atEnd = pos + 1 == text.size();
    if (!atEnd && text[pos + 1] == '"') {
      ++pos;
    } else {
      return atEnd || text[pos + 1] == separator || isLineEnd(text[pos + 1])
                 ? pos + 1
                 : std::string_view::npos;
    }
  }
  return std::string_view::npos;
}

[[noreturn]] void failSize(const char* what, int limit) {
  throw FileError(std::string("the text has more ") + what + " than a sheet can hold (" +
                  std::to_string(limit) + ")");
}

}  // namespace

void failNul(int line) {
  throw FileError("line " + std::to_string(line) + " holds a NUL character, as no text does");
}

std::vector<std::string_view> textLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = std::min(text.find_first_of("\r\n", start), text.size());
    lines.push_back(text.substr(start, end - start));
    start = end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
  }
  return lines;
}

void splitCells(std::string_view text, char separator,
                const std::function<void(int, int, std::string_view)>& cell) {
  int row = 1;
  int column = 1;
  size_t pos = 0;
  // A separator at the very end is followed by an empty field, a line end is not.
  while (pos < text.size() || column > 1) {
    size_t end = std::string_view::npos;
    if (pos < text.size() && text[pos] == '"') end = closingQuote(text, pos, separator);
    if (end != std::string_view::npos) {
      cell(row, column, replaceAll(text.substr(pos + 1, end - pos - 2), "\"\"", "\""));
    } else {
      end = pos;
      while (end < text.size() && text[end] != separator && !isLineEnd(text[end])) ++end;
      cell(row, column, text.substr(pos, end - pos));
    }
    if (end == text.size()) return;
    if (text[end] == separator) {
      ++column;
      pos = end + 1;
    } else {
      ++row;
      column = 1;
      pos = end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
    }
  }
}

int readText(std::string_view bytes, Worksheet& into, char separator, int mostRows) {
  const std::string text = decodeText(bytes);
  if (const size_t nul = text.find('\0'); nul != std::string::npos) {
    failNul(static_cast<int>(textLines(std::string_view(text).substr(0, nul + 1)).size()));
  }
  CellStore& cells = into.cellsForReader(1);
  int rows = 0;
  splitCells(text, separator, [&](int row, int column, std::string_view field) {
    rows = row;
    if (row > mostRows) {
      if (mostRows == maxRows) failSize("rows", maxRows);
      return;
    }
    if (column > maxColumns) failSize("columns", maxColumns);
    cells.set(row, column, Value::stored(field));
  });
  return rows;
}

}  // namespace lodex
