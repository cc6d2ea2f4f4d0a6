// Functions younger than the file format carry a prefix in it that no user writes.
#include <algorithm>
#include <array>

#include "basic/Text.h"
#include "worksheet/files/xlsx/XlsxParts.h"

namespace lodex {
namespace {

bool isNameByte(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '_';
}

// The younger functions: those with a point in their names, but for a few, and these.
bool isYounger(const std::string& name) {
  constexpr std::array<std::string_view, 4> oldWithPoint{"ERROR.TYPE", "ISO.CEILING",
                                                         "NETWORKDAYS.INTL", "WORKDAY.INTL"};
  constexpr std::array<std::string_view, 33> younger{
      "ACOT",      "ACOTH",     "ARABIC",     "BASE",        "BITAND", "BITLSHIFT",   "BITOR",
      "BITRSHIFT", "BITXOR",    "CONCAT",     "COMBINA",     "COT",    "COTH",        "CSC",
      "CSCH",      "DAYS",      "DECIMAL",    "FORMULATEXT", "GAMMA",  "GAUSS",       "IFNA",
      "IFS",       "ISFORMULA", "ISOWEEKNUM", "MAXIFS",      "MINIFS", "NUMBERVALUE", "PHI",
      "SEC",       "SWITCH",    "TEXTJOIN",   "UNICHAR",     "XOR"};
  if (name.find('.') != std::string::npos) {
    return std::find(oldWithPoint.begin(), oldWithPoint.end(), name) == oldWithPoint.end();
  }
  return std::find(younger.begin(), younger.end(), name) != younger.end();
}

}  // namespace

std::string xlsxFormula(std::string_view text) {
  std::string formula(text);
  if (formula.find("_x") == std::string::npos) return formula;
  for (const char* prefix : {"_xlfn.", "_xlws.", "_xlpm.", "_xludf."}) {
    formula = replaceAll(formula, prefix, "");
  }
  return xlsxText(formula);
}

std::string xlsxFileFormula(std::string_view formula) {
  std::string out;
  for (size_t pos = 0; pos < formula.size();) {
    const char c = formula[pos];
    size_t end = pos + 1;
    if (c == '"' || c == '\'') {
      end = std::min(formula.find(c, end), formula.size() - 1) + 1;
    } else if (isNameByte(c)) {
      while (end < formula.size() && isNameByte(formula[end])) ++end;
      const std::string name = toUpper(formula.substr(pos, end - pos));
      if (end < formula.size() && formula[end] == '(' && isYounger(name)) out += "_xlfn.";
    }
    out += formula.substr(pos, end - pos);
    pos = end;
  }
  return out;
}

}  // namespace lodex
