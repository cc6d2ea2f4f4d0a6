#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "calc/CalculationGroup.h"
#include "calc/ItemSources.h"
#include "calc/ResultSheets.h"
#include "calc/SourceSheet.h"
#include "chem/CompoundConverter.h"
#include "session/Log.h"

namespace lodex {

/// A calculation: which methods run over the samples of which sheets, and where results go.
struct CalculationRequest {
  CalculationGroup& group;
  std::vector<std::string> methods;  // names, in the order of the list
  const SourceSheets& sheets;        // samples come from the selected ones
  const Worksheet& F1Ref;            // where items come from
  const CompoundConverter& converter;
  Worksheet& results;
  /// The structure of results that are there already, to add to them; empty to start anew.
  std::optional<SheetStructure> keptResults{};

  /// Gets the lines of the log, among them all that the outcome holds as findings.
  std::function<void(std::string_view line, LogKind kind)> log{};
  /// Called before each sample with its number, from 1, and the number of all; false ends the run.
  std::function<bool(std::string_view text, int sample, int samples)> nextSample{};
};

struct CalculationOutcome {
  Outcome outcome;
  int samples = 0;     // found
  int calculated = 0;  // through all methods
  int ErrorCount = 0;  // duplicates, and methods that failed on a sample
};

/// Runs the methods over all samples, in the order of their priorities. The results are workbook
/// sheets in the layout of ResultSheets, complete up to the last sample that was calculated.
CalculationOutcome runCalculation(const CalculationRequest& request);

/// Name and type of the identifier's field: of the first selected sheet that has them.
KeyField keyFieldOf(const SourceSheets& sheets);

}  // namespace lodex
