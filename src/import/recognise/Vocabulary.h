#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The words of laboratories: what a single cell or part of a heading means. All functions ignore
/// blanks at the ends; empty results mean "none of these".
namespace lodex {

/// What kind of quantity a unit measures.
enum class UnitKind { None, Concentration, Other };

struct UnitWord {
  UnitKind kind = UnitKind::None;
  /// "%", "ppm" or "ppb"; "" for units that the program cannot compute with.
  std::string unit;
};

/// The unit that a word or short text names, in brackets or without, in English, Finnish, Swedish,
/// German, Spanish or Russian: "wt.-%", "(mg/kg)", "G/T". "kg" and "m" are Other, and so are
/// concentrations without a factor to per cent, such as "oz/t".
UnitWord unitWord(std::string_view text);

/// The element, oxide or item that a text names, as the element tables spell it: "SIO2" gives
/// "SiO2", "Fe2O3(T)" gives "Fe2O3tot", "Total S" gives "S", "Na-23" gives "Na", "Rauta" gives
/// "Fe", "LOI@1000" gives "LOI". Empty for everything else, among it "No", which is a number and
/// never nobelium.
std::string analyteOf(std::string_view text);

/// True for what reads as a method: "ME-ICP61", "4A/OE", "XRF", "+511P".
bool isMethodText(std::string_view text);

/// True for a word that belongs to a method or tells the kind of determination, as part of a
/// heading: "ICP", "4AB1", "check".
bool isMethodWord(std::string_view word);

/// What a caption in the first columns says of its row, or a heading of its column.
enum class Caption {
  None,
  Analyte,
  Method,
  Unit,
  LowerLimit,
  UpperLimit,
  Sample,
  WeakSample,      // may name samples where nothing better does: "Comment", "Hole"
  Value,           // of a table with one analyte per row
  Qualifier,       // "<" of such a table
  QualityControl,  // a section of standards, blanks and repeats
  Statistic,       // a row of averages, deviations, limits
  RunningNumber,
  Description,  // of the sample: rock, mineral, date, remarks
};

Caption captionOf(std::string_view text);

/// True for sample names of standards, blanks, duplicates and repeats: "STD OREAS 503", "A12 DUP",
/// "BLANK-1".
bool isControlName(std::string_view name);

/// True for headings of uncertainties: "Cu Error1s", "Na23_ppm_Int2SE", "Fe +/-".
bool namesUncertainty(std::string_view heading);

}  // namespace lodex
