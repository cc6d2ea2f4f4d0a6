#pragma once

/// The bytes of names in formulas; all of UTF-8 outside ASCII counts as letters.
namespace lodex::formula {

inline bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
inline bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
inline bool isNameStart(char c) {
  return isLetter(c) || c == '_' || c == '\\' || static_cast<unsigned char>(c) >= 0x80;
}
inline bool isNamePart(char c) {
  return isNameStart(c) || isDigit(c) || c == '.' || c == '?';
}

}  // namespace lodex::formula
