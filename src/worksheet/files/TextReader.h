#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Limits.h"

/// Text files as laboratories and spreadsheet programs write them: any usual encoding, any line
/// end, cells between tabs.
namespace lodex {

class Worksheet;

/// False for bytes that hold what no text holds: NUL bytes that UTF-16 does not explain, or more
/// than a few control characters.
bool looksLikeText(std::string_view bytes);

/// The line, from 1, of the first NUL in bytes that would be a text without their few NULs; 0 for
/// all others.
int lineOfNul(std::string_view bytes);

/// Throws FileError naming the line that holds a NUL.
[[noreturn]] void failNul(int line);

/// Any text as UTF-8: by its byte order mark, as UTF-16 without one, as UTF-8 where it is valid, by
/// the detected encoding where there is enough to detect, otherwise as Windows-1252. A Ctrl-Z at
/// the end is cut.
std::string decodeText(std::string_view bytes);

/// The lines between CR, LF or CR LF, without them; the last line end opens no further line. The
/// pieces live as long as `text`.
std::vector<std::string_view> textLines(std::string_view text);

/// Calls cell(row, column, text) for every field of a UTF-8 text, empty ones too, row by row,
/// counted from 1. A field wholly in double quotes loses them, and its doubled quotes become
/// single ones; it may hold separators and line ends. A piece lives only during the call.
void splitCells(std::string_view text, char separator,
                const std::function<void(int row, int column, std::string_view text)>& cell);

/// Fills sheet 1 with one row per line, each field stored as TextRC stores it, and returns how many
/// rows the text has; rows after `mostRows` are only counted. Throws FileError when the text has
/// more rows (unless fewer are wanted) or columns than a sheet.
int readText(std::string_view bytes, Worksheet& into, char separator = '\t',
             int mostRows = maxRows);

}  // namespace lodex
