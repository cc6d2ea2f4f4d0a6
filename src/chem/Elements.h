#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// The symbols by atomic number, H (1) to Lr (103), then "Unq", "Unp", "Unh"; index 0 is "".
const std::vector<std::string>& ElementSymbols();

/// The atomic number (1 to 106) of the element or oxide at the head of a name such as "Al2O3",
/// "Fe_XRF" or "Si %"; 0 if there is none. On return the text is trimmed and, where a symbol was
/// cut out, holds that symbol.
int ElementNumber(std::string& text);

/// The same for the modal calculation: "_" and "/" do not end a symbol.
int ElementNumberStrict(std::string& text);

}  // namespace lodex
