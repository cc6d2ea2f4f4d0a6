#include "basic/A1.h"

#include <algorithm>

#include "basic/Limits.h"

namespace lodex {

std::string columnLetters(int column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26) {
    letters.push_back(static_cast<char>('A' + (column - 1) % 26));
  }
  std::reverse(letters.begin(), letters.end());
  return letters;
}

int columnOfLetters(std::string_view letters) {
  if (letters.empty() || letters.size() > 3) return 0;
  int column = 0;
  for (char c : letters) {
    const char upper = static_cast<char>(c & ~0x20);
    if (upper < 'A' || upper > 'Z') return 0;
    column = column * 26 + (upper - 'A' + 1);
  }
  return column <= maxColumns ? column : 0;
}

std::string cellAddress(int row, int column) {
  return columnLetters(column) + std::to_string(row);
}

bool parseCellAddress(std::string_view text, int& row, int& column) {
  size_t pos = 0;
  const auto skipDollar = [&] { pos += pos < text.size() && text[pos] == '$' ? 1 : 0; };
  skipDollar();
  const size_t lettersStart = pos;
  while (pos < text.size() && ((text[pos] | 0x20) >= 'a' && (text[pos] | 0x20) <= 'z')) ++pos;
  const int foundColumn = columnOfLetters(text.substr(lettersStart, pos - lettersStart));
  skipDollar();
  long foundRow = 0;
  const size_t digitsStart = pos;
  for (; pos < text.size() && text[pos] >= '0' && text[pos] <= '9' && foundRow <= maxRows; ++pos) {
    foundRow = foundRow * 10 + (text[pos] - '0');
  }
  const bool whole = pos == text.size() && pos > digitsStart;
  if (!whole || foundColumn == 0 || foundRow < 1 || foundRow > maxRows) return false;
  row = static_cast<int>(foundRow);
  column = foundColumn;
  return true;
}

}  // namespace lodex
