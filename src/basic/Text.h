#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Text is UTF-8 everywhere inside. Positions and lengths are in bytes unless a comment says
/// characters.
namespace lodex {

/// Upper and lower case of ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters; all else
/// stays. Independent of the locale.
std::string toUpper(std::string_view text);
std::string toLower(std::string_view text);

/// Comparison without case, by the letters toUpper knows. `compareNoCase` orders like strcmp.
bool equalsNoCase(std::string_view a, std::string_view b);
int compareNoCase(std::string_view a, std::string_view b);
bool startsWithNoCase(std::string_view text, std::string_view start);

/// Position of `part` in `text` from `from` on without regard to case; npos if absent.
size_t findNoCase(std::string_view text, std::string_view part, size_t from = 0);

/// Cuts blanks (only the character 32) at the ends.
std::string_view trimBlanks(std::string_view text);
std::string_view trimBlanksRight(std::string_view text);

/// Cuts blanks, tabs and line ends at both ends.
std::string_view trimWhite(std::string_view text);

/// Splits at every occurrence of a non-empty separator; n separators give n + 1 pieces and an
/// empty text gives one empty piece.
std::vector<std::string> split(std::string_view text, std::string_view separator);

std::string join(const std::vector<std::string>& pieces, std::string_view separator);
std::string replaceAll(std::string_view text, std::string_view what, std::string_view with);

/// Number of characters (code points) of a UTF-8 text.
size_t characterCount(std::string_view text);

/// The code points of a UTF-8 text; a malformed byte gives U+FFFD.
std::u32string decodeUtf8(std::string_view text);
std::string encodeUtf8(std::u32string_view text);
void appendUtf8(std::string& out, char32_t codePoint);
bool isValidUtf8(std::string_view text);
std::string fromUtf16(std::u16string_view text);
std::u16string toUtf16(std::string_view text);

/// Windows-1252 to UTF-8; the five undefined bytes map to their C1 controls, so nothing is lost.
std::string fromWindows1252(std::string_view bytes);

}  // namespace lodex
