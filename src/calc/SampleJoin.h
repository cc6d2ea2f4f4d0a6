#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "basic/Findings.h"
#include "calc/SourceSheet.h"
#include "worksheet/SampleTable.h"

namespace lodex {

/// The samples of the selected sheets, each once.
struct SampleJoin {
  SampleTable A1;  // every row with a sample: identifier, sheet number, row number
  SampleTable A2;  // every sample: identifier, then pairs of sheet number and row number
  int duplicates = 0;
};

/// Joins the rows of the selected sheets on their identifiers, as exact texts, by one sort. Of
/// several rows of a sample in one sheet the first is used, and `log` gets a line for each other.
/// Those rows are errors in `found`, and so are rows of numbers without an identifier.
SampleJoin joinSamples(const SourceSheets& sheets,
                       const std::function<void(std::string_view line)>& log, Findings& found);

}  // namespace lodex
