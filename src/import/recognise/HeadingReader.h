#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// What one heading says by itself.
struct HeadingFacts {
  std::string analyte;   // "Fe2O3tot"; "" when the heading names none or more than one
  std::string unit;      // "%", "ppm", "ppb"; "" for none
  std::string unitText;  // the unit as written, also one that the program cannot compute with
  std::string method;    // what is left, when it reads as a method
  bool isUncertainty = false;
};

/// Takes a heading apart: "Cu_ppm", "Cu (ppm)", "ME-ICP61_Cu_ppm", "Fe, %", "Au g/t", "SIO2(WT%)",
/// "Na23_ppm_m23", "Cu Concentration", "Total S %", "Co(ppm) XRF". Words that are neither analyte,
/// unit nor method, as in "As received" or "K feldspar %", make it no analyte.
HeadingFacts readHeading(std::string_view heading);

}  // namespace lodex
