#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "worksheet/Worksheet.h"

namespace lodex {

/// A formula over mineral amounts, such as "2.5*Py-Ccp". Minerals are named by symbol or by full
/// identifier, as whole words, so that "Po" is not found in "Poly"; "@" and "Total", where allowed,
/// mean the sum of all minerals.
class AmountFormula {
 public:
  /// Where the scratch sheet keeps the amounts: mineral n in row n of column 1 with the formula in
  /// (1,2), or in column n + 1 of row 1 with the formula in (1,1).
  enum class Layout { Column, Row };
  enum class Totals { Allowed, Unknown };

  /// `labels` are the identifiers of all minerals; `scratch` is cleared and must outlive this.
  AmountFormula(Worksheet& scratch, std::string_view text, const std::vector<std::string>& labels,
                Layout layout, Totals totals);

  /// The value for one sample, `amounts` in the order of the labels; 0 where the formula fails.
  double evaluate(const std::vector<double>& amounts);

  /// True when the last value was an error, whose text `errorText` gives.
  bool failed() const { return !errorText_.empty(); }
  const std::string& errorText() const { return errorText_; }

 private:
  Worksheet* scratch_;
  Layout layout_;
  std::string errorText_;
};

/// The formula's text with each mineral replaced by the reference of its cell.
std::string withReferences(std::string_view text, const std::vector<std::string>& labels,
                           AmountFormula::Layout layout, AmountFormula::Totals totals);

/// The symbol of an identifier, or the whole text when it has none.
std::string symbolOrText(std::string_view identifier);

/// The number after `symbol` and "=" in a text such as "Py=1, Ccp=0.5", up to the next blank or
/// comma; 0 when there is none.
double CoefficientOf(std::string_view text, std::string_view symbol);

/// A calculation such as "Py=2*Ccp": the expression after "=" and the coefficient text "Py=1".
/// Without "=" the whole text is the expression and there are no coefficients.
struct Expression {
  std::string formula;
  std::string coefficients;
};
Expression splitExpression(std::string_view text);

}  // namespace lodex
