#include "chem/CompoundConverter.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Elements.h"
#include "chem/FormulaParser.h"

namespace lodex {
namespace {

constexpr int oxygen = 8;
constexpr int massMode = 3;
constexpr int uranium = 92;

struct Unit {
  const char* spelling;  // upper case
  const char* name;
  double perCent;  // 0 where the unit is not a mass fraction
};

constexpr Unit units[] = {
    {"WT.%", "%", 1},     {"WT-%", "%", 1},    {"WT%", "%", 1},      {"W-%", "%", 1},
    {"W%", "%", 1},       {"%", "%", 1},       {"PPM", "ppm", 1e-4}, {"PPB", "ppb", 1e-7},
    {"G/T", "g/t", 1e-4}, {"MG/L", "mg/l", 0},
};

const Unit* unitOf(std::string_view text) {
  for (const Unit& unit : units) {
    if (equalsNoCase(text, unit.spelling)) return &unit;
  }
  return nullptr;
}

// A text of a formula, perhaps a unit and perhaps a number, in any order.
struct Quantity {
  std::string formula;
  const Unit* unit = nullptr;
  std::optional<double> amount;
};

bool parseQuantity(std::string_view text, std::string_view separator, Quantity& quantity) {
  const auto pieces = separator.empty() ? std::vector<std::string>{std::string(text)}
                                        : split(trimBlanks(text), separator);
  for (const std::string& raw : pieces) {
    const std::string piece(trimBlanks(raw));
    if (piece.empty()) continue;
    if (const Unit* unit = unitOf(piece); unit && !quantity.unit) {
      quantity.unit = unit;
    } else if (const auto number = parseNumber(piece); number && !quantity.amount) {
      quantity.amount = number;
    } else if (quantity.formula.empty() && parseFormula(piece)) {
      quantity.formula = piece;
    } else {
      return false;
    }
  }
  return !quantity.formula.empty();
}

double massOf(const AtomCounts& counts) {
  double mass = 0;
  for (const auto& [number, atoms] : counts) mass += atoms * AtomicWeight(number);
  return mass;
}

double atomsOf(const AtomCounts& counts, int number) {
  for (const auto& [n, atoms] : counts) {
    if (n == number) return atoms;
  }
  return 0;
}

// Mass of the target per mass of the source, atom for atom of the first element of the target,
// oxygen aside, that both have.
std::optional<double> massRatio(std::string_view source, std::string_view target) {
  const auto from = parseFormula(source);
  const auto to = parseFormula(target);
  if (!from || !to) return std::nullopt;
  const bool onlyOxygen = to->size() == 1 && from->size() == 1;
  for (const auto& [number, atoms] : *to) {
    if (number == oxygen && !onlyOxygen) continue;
    const double shared = atomsOf(*from, number);
    if (shared > 0) return massOf(*to) / atoms / (massOf(*from) / shared);
  }
  return std::nullopt;
}

bool unitRatio(const Unit* from, const Unit* to, double& ratio) {
  ratio = 1;
  if (!from || !to || from->name == std::string_view(to->name)) return true;
  if (from->perCent == 0 || to->perCent == 0) return false;
  ratio = from->perCent / to->perCent;
  return true;
}

bool convert(int mode, const Quantity& from, const Quantity& to, double amount, double& value,
             double& factor) {
  double units = 1;
  const auto ratio = massRatio(from.formula, to.formula);
  if (mode != massMode || !ratio || !unitRatio(from.unit, to.unit, units)) return false;
  const double whole = *ratio * units;
  if (!std::isfinite(amount * whole)) return false;
  factor = whole;
  value = amount * whole;
  return true;
}

bool isSeparator(char c) {
  return c == ' ' || c == '_' || c == '/' || c == ',' || c == ';';
}

std::string_view withoutSeparators(std::string_view text) {
  while (!text.empty() && isSeparator(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSeparator(text.back())) text.remove_suffix(1);
  return text;
}

// Cuts a unit off the end of a heading, in brackets or not; the unit must be a word of its own.
const Unit* cutUnit(std::string_view& text) {
  std::string_view end = text;
  const bool bracketed = !end.empty() && (end.back() == ')' || end.back() == ']');
  if (bracketed) end.remove_suffix(1);
  for (const Unit& unit : units) {
    const std::string_view spelling = unit.spelling;
    if (end.size() <= spelling.size()) continue;
    const size_t start = end.size() - spelling.size();
    if (!equalsNoCase(end.substr(start), spelling)) continue;
    const char before = end[start - 1];
    const bool alone = bracketed ? before == '(' || before == '[' : true;
    if (!alone || (!bracketed && !isSeparator(before) && spelling != "%")) continue;
    text = withoutSeparators(end.substr(0, bracketed ? start - 1 : start));
    return &unit;
  }
  return nullptr;
}

// The first element that is not oxygen, or oxygen where there is no other.
const CompoundElement& mainElement(const std::vector<CompoundElement>& elements) {
  for (const CompoundElement& element : elements) {
    if (element.atomicNumber != oxygen) return element;
  }
  return elements.front();
}

bool isOxide(const std::vector<CompoundElement>& elements) {
  return elements.size() == 2 &&
         (elements[0].atomicNumber == oxygen) != (elements[1].atomicNumber == oxygen);
}

}  // namespace

bool CompoundConverter::IsCompound(std::string_view text) const {
  return parseFormula(text).has_value();
}

bool CompoundConverter::SolveCompound(std::string_view text,
                                      std::vector<CompoundElement>& elements) const {
  elements.clear();
  const auto counts = parseFormula(text);
  if (!counts) return false;
  const double mass = massOf(*counts);
  for (const auto& [number, atoms] : *counts) {
    const double weight = AtomicWeight(number);
    elements.push_back({ElementSymbols()[static_cast<size_t>(number)], number, atoms, weight,
                        atoms * weight / mass});
  }
  return true;
}

double CompoundConverter::MolarMass(std::string_view formula) const {
  const auto counts = parseFormula(formula);
  return counts ? massOf(*counts) : 0;
}

bool CompoundConverter::Convert2(int mode, std::string_view valueFormula,
                                 std::string_view targetFormula, double amount, double& value,
                                 double& factor) const {
  Quantity from, to;
  return parseQuantity(valueFormula, Separator, from) && !from.amount &&
         parseQuantity(targetFormula, Separator, to) && !to.amount &&
         convert(mode, from, to, amount, value, factor);
}

bool CompoundConverter::Convert2(int mode, std::string_view valueText, std::string_view targetText,
                                 double& value, double& factor) const {
  Quantity from, to;
  return parseQuantity(valueText, Separator, from) && from.amount &&
         parseQuantity(targetText, Separator, to) && !to.amount &&
         convert(mode, from, to, *from.amount, value, factor);
}

bool CompoundConverter::ConvertForm(std::string_view analysed, std::string_view wanted,
                                    double unitFactor, double& value) const {
  value *= unitFactor;
  const auto ratio = massRatio(analysed, wanted);
  if (ratio) value *= *ratio;
  return ratio.has_value();
}

bool CompoundConverter::ConvertText(std::string_view heading, HeadingItem& item) const {
  item = {};
  std::string_view rest = trimWhite(heading);
  const Unit* unit = cutUnit(rest);
  const size_t end = std::min(rest.size(), rest.find_first_of(" _/,;"));
  const std::string_view formula = rest.substr(0, end);
  const std::string_view method = withoutSeparators(rest.substr(end));
  std::vector<CompoundElement> elements;
  if (!SolveCompound(formula, elements) || method.find(' ') != std::string_view::npos) return false;

  const CompoundElement& main = mainElement(elements);
  // Nobody analyses a rock for later elements; "No" is a sample's number.
  if (main.atomicNumber > uranium) return false;
  item.formula = formula;
  item.symbol = main.symbol;
  item.method = method;
  item.unit = unit ? unit->name : "";
  item.atomicNumber = main.atomicNumber;
  item.atoms = main.atoms;
  item.atomicWeight = main.atomicWeight;
  item.molarMass = MolarMass(formula);
  item.massFraction = main.massFraction;
  item.isOxide = isOxide(elements);
  item.unitFactor = unit ? unit->perCent : 0;
  return true;
}

bool CationsPerOxygens(const std::vector<std::pair<std::string, double>>& oxideWeights,
                       double oxygens, std::vector<std::pair<std::string, double>>& cations) {
  cations.clear();
  const CompoundConverter converter;
  std::vector<std::pair<std::string, double>> moles;
  double oxygenMoles = 0;
  for (const auto& [formula, weight] : oxideWeights) {
    std::vector<CompoundElement> elements;
    if (!converter.SolveCompound(formula, elements) || !isOxide(elements)) return false;
    if (!(weight >= 0) || !std::isfinite(weight)) return false;
    const CompoundElement& cation = mainElement(elements);
    const double units = weight / converter.MolarMass(formula);
    const double oxygenAtoms = elements[0].atoms + elements[1].atoms - cation.atoms;
    moles.emplace_back(cation.symbol, units * cation.atoms);
    oxygenMoles += units * oxygenAtoms;
  }
  if (!(oxygenMoles > 0) || !(oxygens > 0) || !std::isfinite(oxygens)) return false;
  for (auto& [symbol, amount] : moles) amount *= oxygens / oxygenMoles;
  cations = std::move(moles);
  return true;
}

}  // namespace lodex
