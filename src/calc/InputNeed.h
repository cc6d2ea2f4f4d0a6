#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// What a method says of an input in column 4 of its Input sheet, words between commas:
/// "required", "optional" (counts as 0 where it is missing), "one of iron" (one input of the set
/// called iron is enough, and a 0 is none) and "as analysed" (columns with another form of the
/// element are not converted). Any other text says nothing: the formulas of the method decide.
struct InputNeed {
  enum class Kind { Unsaid, Required, OneOf, Optional };
  Kind kind = Kind::Unsaid;
  std::string set;  // for OneOf
  bool asAnalysed = false;
};

InputNeed parseNeed(std::string_view text);

/// What an output needs, from column 5 of the Output sheet: true for "needs MgO, iron" when one of
/// the names is among the missing ones, and for any other text when anything is missing.
bool needsMissing(std::string_view text, const std::vector<std::string>& missing);

}  // namespace lodex
