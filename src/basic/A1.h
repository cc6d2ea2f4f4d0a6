#pragma once

#include <string>
#include <string_view>

/// Spreadsheet addresses. Rows and columns count from 1.
namespace lodex {

/// 1 gives "A", 26 "Z", 27 "AA", 16384 "XFD".
std::string columnLetters(int column);

/// The column of letters in any case; 0 if the text is no column name up to "XFD".
int columnOfLetters(std::string_view letters);

/// "B7" for row 7, column 2.
std::string cellAddress(int row, int column);

/// Reads a plain address such as "B7" or "$B$7"; false if the text is none.
bool parseCellAddress(std::string_view text, int& row, int& column);

}  // namespace lodex
