#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// One element of a formula. In a solved compound each element stands once, in order of first
/// appearance.
struct CompoundElement {
  std::string symbol;
  int atomicNumber = 0;
  double atoms = 0;         // per formula unit
  double atomicWeight = 0;  // g/mol
  double massFraction = 0;  // 0 to 1
};

/// Understands chemical formulas: nested brackets, hydrates with "." or "·", charges (ignored),
/// decimal and fractional numbers of atoms.
class CompoundConverter {
 public:
  /// The text between formulas in a list of them.
  std::string Separator = " ";

  bool IsCompound(std::string_view text) const;

  /// Parses a formula. False and an empty list when the text is none.
  bool SolveCompound(std::string_view text, std::vector<CompoundElement>& elements) const;

  /// Mass in g/mol; 0 when the text is no formula.
  double MolarMass(std::string_view formula) const;

  /// Converts an amount between two formulas that share an element, by molar masses per atom of
  /// that element (so "Fe2O3" to "FeO" gives 0.8998). `value` is value times factor. False when
  /// either text is no formula or they share no cation.
  bool Convert2(int mode, std::string_view valueFormula, std::string_view targetFormula,
                double amount, double& value, double& factor) const;
};

}  // namespace lodex
