#pragma once

#include <string>
#include <string_view>

#include "chem/CompoundConverter.h"

namespace lodex {

/// What an item of a method or a column of a data sheet is: "FeOtot_XRF %" has the form "FeOtot",
/// the formula "FeO", the method "XRF" and is a total. So is "FeO" of the method "TOT".
struct ItemHeading {
  std::string form;
  std::string formula;    // the form without "tot"; "" when that is not a chemical formula
  std::string method;     // "" also for "TOT", which means none
  double unitFactor = 0;  // how many of its unit make one per cent; 0 for an unknown unit
  int element = 0;        // atomic number; 0 for an item that is not an element
  bool isOxide = false;
  bool isTotal = false;

  /// The same oxide in the same meaning: FeO is neither Fe2O3 nor FeOtot.
  bool sameForm(const ItemHeading& other) const;
};

/// Which characters end the element symbol at the head of an item: with Loose also "_" and "/".
enum class SymbolEnd { Strict, Loose };

/// Reads the heading of a method's item: "SiO2 %", "Ni_BM ppm", "LOI %".
ItemHeading itemHeading(std::string_view text, SymbolEnd end, const CompoundConverter& converter);

/// The same for a column of a data sheet, from its ELEMENT, METHOD and UNIT cells.
ItemHeading columnHeading(std::string_view element, std::string_view method, std::string_view unit,
                          const CompoundConverter& converter);

/// The ELEMENT and UNIT cells under which a column with this heading is read as the same item.
std::string elementCell(const ItemHeading& heading);
std::string unitCell(const ItemHeading& heading);

/// The factor that turns a number of a column into what the item asks for: units by their factors
/// to per cent, forms by their mass ratio. A factor says how many of a unit make one per cent, so a
/// number is divided by that of its column and multiplied by that of the item: a method that asks
/// for ppm gets ppm from a column in ppm as well as from one in %. Where one of the two has no
/// known unit the number is taken to be in the unit that is asked for; an unknown mass ratio
/// counts as 1.
double conversionFactor(const ItemHeading& column, const ItemHeading& item,
                        const CompoundConverter& converter);

}  // namespace lodex
