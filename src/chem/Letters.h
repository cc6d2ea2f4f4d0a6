#pragma once

namespace lodex {

/// The characters of symbols and formulas, whatever the locale.
inline bool isCapital(char c) {
  return c >= 'A' && c <= 'Z';
}
inline bool isSmall(char c) {
  return c >= 'a' && c <= 'z';
}
inline bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace lodex
