#include "worksheet/formula/FormulaCopy.h"

#include <array>

#include "basic/A1.h"
#include "basic/Limits.h"

namespace lodex::formula {
namespace {

constexpr std::array<bool, 256> makeWordBytes() {
  std::array<bool, 256> bytes{};
  for (int c = 0; c < 256; ++c) {
    bytes[static_cast<size_t>(c)] = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                                    (c >= 'a' && c <= 'z') || c == '_' || c == '.' || c == '$' ||
                                    c == '?' || c == '\\' || c >= 0x80;
  }
  return bytes;
}

constexpr std::array<bool, 256> wordBytes = makeWordBytes();

size_t wordEnd(std::string_view text, size_t pos) {
  while (pos < text.size() && wordBytes[static_cast<unsigned char>(text[pos])]) ++pos;
  return pos;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// "$AB$12" taken apart; row is 0 if the word is not a cell.
struct CellWord {
  std::string_view column;  // with its "$"
  bool rowAbsolute = false;
  int row = 0;
};

CellWord readCell(std::string_view word) {
  CellWord cell;
  size_t pos = word[0] == '$' ? 1 : 0;
  const size_t letters = pos;
  while (pos < word.size() && ((word[pos] | 0x20) >= 'a' && (word[pos] | 0x20) <= 'z')) ++pos;
  if (pos == letters || pos - letters > 3 || pos == word.size()) return cell;
  cell.column = word.substr(0, pos);
  cell.rowAbsolute = word[pos] == '$';
  if (cell.rowAbsolute) ++pos;
  if (word.size() - pos > 7 || pos == word.size()) return cell;
  int row = 0;
  for (; pos < word.size(); ++pos) {
    if (!isDigit(word[pos])) return cell;
    row = row * 10 + (word[pos] - '0');
  }
  const std::string_view name = cell.column.substr(letters);
  const bool inside = row <= maxRows && (name.size() < 3 || columnOfLetters(name) != 0);
  cell.row = inside ? row : 0;
  return cell;
}

}  // namespace

bool isCopyBelow(std::string_view above, std::string_view text, int rows) {
  size_t a = 0;
  size_t b = 0;
  while (a < above.size() && b < text.size()) {
    const char c = above[a];
    if (!wordBytes[static_cast<unsigned char>(c)]) {
      if (c != text[b]) return false;
      ++a;
      ++b;
      if (c != '"' && c != '\'') continue;
      // A quoted text; a doubled quote just begins the next one.
      const size_t close = above.find(c, a);
      if (close == std::string_view::npos) return false;
      const size_t length = close + 1 - a;
      if (text.substr(b, length) != above.substr(a, length)) return false;
      a += length;
      b += length;
      continue;
    }
    const size_t endA = wordEnd(above, a);
    const size_t endB = wordEnd(text, b);
    if (endB == b) return false;
    const std::string_view wordA = above.substr(a, endA - a);
    const std::string_view wordB = text.substr(b, endB - b);
    const char after = endA < above.size() ? above[endA] : '\0';
    const bool inRange = after == ':' || (a > 0 && above[a - 1] == ':');
    const bool plain = after == '(' || after == '!';
    // Sheets in a row, and whole rows, are left to the compiler.
    const bool rowNumber =
        isDigit(wordA.back()) && wordA.find_first_not_of("$0123456789") == std::string_view::npos;
    if (inRange && (after == '!' || rowNumber)) return false;
    const CellWord cellA = plain ? CellWord() : readCell(wordA);
    if (cellA.row == 0) {
      if (wordA != wordB) return false;
    } else {
      const CellWord cellB = readCell(wordB);
      const int expected = cellA.row + (cellA.rowAbsolute ? 0 : rows);
      if (cellB.row != expected || cellB.rowAbsolute != cellA.rowAbsolute ||
          cellB.column != cellA.column) {
        return false;
      }
    }
    a = endA;
    b = endB;
    if ((a < above.size()) != (b < text.size())) return false;
  }
  return a == above.size() && b == text.size();
}

}  // namespace lodex::formula
