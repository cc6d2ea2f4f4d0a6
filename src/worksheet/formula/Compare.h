#pragma once

#include <string>
#include <string_view>

#include "worksheet/formula/Operand.h"

/// How values compare with each other and with the criteria of SUMIF and its like.
namespace lodex::formula {

/// True when two numbers agree in their first 15 significant digits.
bool nearlyEqual(double a, double b);

/// a - b or a + b, and exactly 0 where the operands cancel to the last few bits.
double differenceOrZero(double a, double b);

/// Below, equal or above 0: numbers before text before truth values, text without case. An empty
/// value is 0, "" or FALSE, whichever the other one asks for. Neither may be an error.
int compareValues(const Operand& a, const Operand& b);

/// True when the text fits a pattern with "?" for any character, "*" for any characters and "~"
/// before one of them meant as it is; without case, the whole text.
bool matchesPattern(std::string_view text, std::string_view pattern);
bool hasWildcards(std::string_view pattern);
/// Byte position of the first place from byte `from` on where a pattern fits; npos if none.
size_t findPattern(std::string_view text, std::string_view pattern, size_t from);

/// A criterion such as ">=5", "<>", "Cu*" or a plain value, made ready for many cells.
class Criterion {
 public:
  Criterion(const Operand& condition, bool dates1904);
  bool matches(const Operand& value) const;
  /// True when it fits empty cells, so that areas must be visited whole.
  bool matchesEmpty() const { return matches(Operand()); }

 private:
  enum class Kind { Number, Text, Boolean, Error, Blank };
  bool compares(int order) const;
  Kind kind_ = Kind::Text;
  std::string_view operator_ = "=";
  double number_ = 0;
  ErrorCode error_{};
  std::string text_;
  bool wildcards_ = false;
  bool explicitOperator_ = false;
  bool dates1904_ = false;
};

}  // namespace lodex::formula
