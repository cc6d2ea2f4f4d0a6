// Functions newer than the file format carry a prefix in it that no user writes.
#include <algorithm>

#include "basic/Text.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/formula/Functions.h"

namespace lodex {
namespace {

bool isNameByte(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '_' || (c & 0x80) != 0;
}

// The formula with each name of a function rewritten; texts and quoted sheet names stay.
template <typename Rewrite>
std::string withFunctionNames(std::string_view formula, Rewrite rewrite) {
  std::string out;
  for (size_t pos = 0; pos < formula.size();) {
    const char c = formula[pos];
    size_t end = pos + 1;
    if (c == '"' || c == '\'') {
      end = std::min(formula.find(c, end), formula.size() - 1) + 1;
    } else if (isNameByte(c)) {
      while (end < formula.size() && isNameByte(formula[end])) ++end;
    }
    const std::string_view part = formula.substr(pos, end - pos);
    if (isNameByte(c) && end < formula.size() && formula[end] == '(')
      out += rewrite(part);
    else
      out += part;
    pos = end;
  }
  return out;
}

std::string nameInFile(std::string_view name) {
  const formula::FunctionInfo* function = formula::findFunction(toUpper(name));
  std::string stored(function == nullptr ? "" : formula::xlsxPrefix(*function));
  return stored += name;
}

}  // namespace

std::string xlsxFormula(std::string_view text) {
  if (text.find("_x") == std::string_view::npos) return std::string(text);
  return xlsxText(withFunctionNames(text, formula::withoutPrefix));
}

std::string xlsxFileFormula(std::string_view formula) {
  return withFunctionNames(formula, nameInFile);
}

}  // namespace lodex
