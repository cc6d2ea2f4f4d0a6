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

/// The atomic number of exactly this symbol, case and all, H (1) to Lr (103); 0 if it is none.
int AtomicNumberOfSymbol(std::string_view symbol);

/// Standard atomic weight in g/mol of the elements 1 to 103, for elements without stable isotopes
/// the mass number of the longest-lived one; 0 for later ones. Source: IUPAC standard atomic
/// weights 2007, M. E. Wieser & M. Berglund, Pure Appl. Chem. 81 (2009) 2131-2156, the last table
/// that gives every element one value instead of an interval.
double AtomicWeight(int atomicNumber);

/// The same by symbol; 0 if it is none.
double AtomicWeight(std::string_view symbol);

}  // namespace lodex
