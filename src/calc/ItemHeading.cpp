#include "calc/ItemHeading.h"

#include <algorithm>
#include <array>

#include "basic/Text.h"
#include "chem/Elements.h"
#include "chem/Headings.h"

namespace lodex {
namespace {

// What laboratories write after an element or an oxide when they mean all of it.
constexpr std::array<std::string_view, 7> totalMarks = {"(TOTAL)", "(TOT)", "(T)", "TOTAL",
                                                        "TOT",     "T",     "*"};

// The text left of the unit.
std::string_view bodyOf(std::string_view heading) {
  size_t end = heading.size();
  for (const std::string_view unit : {"%", "PPM", "PPB", "G/T", "MG/L"}) {
    end = std::min(end, findNoCase(heading, unit));
  }
  return trimBlanks(heading.substr(0, end));
}

// Without what parts a heading from its unit: "LOI/%", "LOI (%)".
std::string_view withoutSeparator(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" _/([,") + 1);
}

std::string methodName(std::string_view text) {
  text.remove_prefix(std::min(text.size(), text.find_first_not_of(" _/")));
  return toUpper(withoutSeparator(text));
}

// "TOT" is not a method. On an oxide of iron it says that the column holds all iron.
void readMethod(ItemHeading& heading, std::string_view text) {
  heading.method = methodName(text);
  if (std::find(totalMarks.begin(), totalMarks.end(), heading.method) == totalMarks.end()) return;
  heading.method.clear();
  if (heading.formula == "FeO" || heading.formula == "Fe2O3") heading.isTotal = true;
}

// Takes the form apart: "FeOtot", "Fe2O3(T)" and "Fe2O3T" are totals.
void readForm(ItemHeading& heading, const CompoundConverter& converter) {
  if (converter.IsCompound(heading.form)) {
    heading.formula = heading.form;
    return;
  }
  const std::string upper = toUpper(heading.form);
  for (const std::string_view total : totalMarks) {
    if (!upper.ends_with(total)) continue;
    const std::string formula = heading.form.substr(0, heading.form.size() - total.size());
    if (!converter.IsCompound(formula)) return;
    heading.formula = formula;
    heading.isTotal = true;
    return;
  }
}

}  // namespace

bool ItemHeading::sameForm(const ItemHeading& other) const {
  return formula == other.formula && isTotal == other.isTotal;
}

ItemHeading itemHeading(std::string_view text, SymbolEnd end, const CompoundConverter& converter) {
  ItemHeading heading;
  HeadingFactor(text, heading.isOxide, heading.unitFactor);
  const std::string_view body = bodyOf(text);
  const size_t formEnd = std::min(body.size(), body.find_first_of(" _/"));
  heading.form = body.substr(0, formEnd);
  std::string symbol(text);
  heading.element = end == SymbolEnd::Strict ? ElementNumberStrict(symbol) : ElementNumber(symbol);
  if (heading.element == 0) {
    // Not a formula: "Structural height" and "LOI" are names.
    heading.form = withoutSeparator(body);
    return heading;
  }
  readForm(heading, converter);
  readMethod(heading, body.substr(formEnd));
  return heading;
}

ItemHeading columnHeading(std::string_view element, std::string_view method, std::string_view unit,
                          const CompoundConverter& converter) {
  ItemHeading heading;
  heading.form = trimBlanks(element);
  heading.unitFactor = DataUnitFactor(unit);
  readForm(heading, converter);
  readMethod(heading, method);
  if (!heading.formula.empty()) {
    std::string symbol = heading.formula;
    heading.element = ElementNumber(symbol);
    bool isOxide = false;
    double unused = 0;
    HeadingFactor(heading.formula, isOxide, unused);
    heading.isOxide = isOxide;
  }
  return heading;
}

std::string elementCell(const ItemHeading& heading) {
  return heading.isTotal ? heading.formula + "TOT" : heading.formula;
}

std::string unitCell(const ItemHeading& heading) {
  if (heading.unitFactor == 1) return "%";
  if (heading.unitFactor == 10000) return "ppm";
  return heading.unitFactor == 10000000 ? "ppb" : "";
}

double conversionFactor(const ItemHeading& column, const ItemHeading& item,
                        const CompoundConverter& converter) {
  const bool unitsKnown = column.unitFactor > 0 && item.unitFactor > 0;
  double factor = 1;
  const double units = unitsKnown ? item.unitFactor / column.unitFactor : 1;
  if (column.formula.empty() || item.formula.empty() || column.formula == item.formula) {
    return units;
  }
  converter.ConvertForm(column.formula, item.formula, units, factor);
  return factor;
}

}  // namespace lodex
