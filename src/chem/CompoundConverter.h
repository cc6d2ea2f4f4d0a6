#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lodex {

/// One element of a formula. In a solved compound each element appears once, in order of first
/// appearance.
struct CompoundElement {
  std::string symbol;
  int atomicNumber = 0;
  double atoms = 0;         // per formula unit
  double atomicWeight = 0;  // g/mol
  double massFraction = 0;  // 0 to 1
};

/// What a foreign heading says about its column.
struct HeadingItem {
  std::string formula;      // "Fe2O3"
  std::string symbol;       // "Fe": the first element that is not oxygen
  std::string method;       // "XRF", or ""
  std::string unit;         // "%", "ppm", "ppb", "g/t", "mg/l", or ""
  int atomicNumber = 0;     // of the symbol
  double atoms = 0;         // of the symbol per formula unit
  double atomicWeight = 0;  // of the symbol, g/mol
  double molarMass = 0;     // of the formula, g/mol
  double massFraction = 0;  // of the symbol in the formula, 0 to 1
  bool isOxide = false;     // two elements, one of them oxygen
  double unitFactor = 0;    // per cent in one unit: 1, 1e-4 for ppm; 0 without a unit
};

/// Understands chemical formulas: nested brackets, hydrates with ".", "·" or "*", decimal and
/// fractional numbers of atoms, subscript digits. Charges ("Fe3+", "SO4--", "PO4^3-") are
/// ignored. Case matters in symbols: "Co" is cobalt and "CO" carbon monoxide. Variables ("Fe1-xS")
/// and alternatives ("(Mg,Fe)O") have no definite mass and are not formulas.
class CompoundConverter {
 public:
  /// The text between a formula and its unit in a value or target of Convert2.
  std::string Separator = " ";

  bool IsCompound(std::string_view text) const;

  /// Parses a formula. False and an empty list when the text is none.
  bool SolveCompound(std::string_view text, std::vector<CompoundElement>& elements) const;

  /// Mass in g/mol; 0 when the text is not a formula.
  double MolarMass(std::string_view formula) const;

  /// Converts an amount between two formulas that share an element other than oxygen, by molar
  /// masses per atom of that element (so "Fe2O3" to "FeO" gives 0.8998). `value` is amount times
  /// factor. Either text may carry a unit ("FeO %", "ppm Sm2O3"); when both do, the factor also
  /// takes the amount from one unit to the other. False for a mode other than 3, when either text
  /// is not a formula, when they share no such element, or for mg/l against another unit.
  bool Convert2(int mode, std::string_view valueFormula, std::string_view targetFormula,
                double amount, double& value, double& factor) const;

  /// The same with the amount in the text, as in "1800 ppm Sm2O3".
  bool Convert2(int mode, std::string_view valueText, std::string_view targetText, double& value,
                double& factor) const;

  /// The conversion of a value that is read for a calculation: multiplies it by the factor of its
  /// unit and by the mass ratio from the form in which it was analysed ("Si") to the form that is
  /// asked for ("SiO2"). Where the ratio is unknown only the unit counts, and the answer is false.
  bool ConvertForm(std::string_view analysed, std::string_view wanted, double unitFactor,
                   double& value) const;

  /// Turns a heading such as "Fe2O3_XRF (wt%)" or "Cu, ppm" into an item. False and an empty item
  /// for anything not understood.
  bool ConvertText(std::string_view heading, HeadingItem& item) const;
};

/// The cations of a mineral analysis in oxides (formula and weight per cent), scaled to a number of
/// oxygens per formula unit, in the order given. The usual structural formula calculation, as in
/// Deer, Howie & Zussman, An Introduction to the Rock-Forming Minerals, Appendix 1. False and no
/// cations when a formula is not an oxide of one element, a weight is negative or not a number, or
/// nothing was analysed.
bool CationsPerOxygens(const std::vector<std::pair<std::string, double>>& oxideWeights,
                       double oxygens, std::vector<std::pair<std::string, double>>& cations);

}  // namespace lodex
