#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "import/DataSheetForm.h"

namespace lodex {

/// The name under which lists show the calculation results.
inline constexpr std::string_view calculationResult = "Calculation Result";

/// The one window of calculation results: a data sheet that is not in the list of data sheets. Its
/// rows are written by the calculation run.
class frmCResult : public DataSheetForm {
 public:
  explicit frmCResult(ImportContext& context)
      : DataSheetForm(context, "frmCResult", "Calculation Results") {}

  /// Columns of the current sheet that answer a request such as "Ni_XRF ppm": the item, the unit
  /// when the request names one, and the method, "TOT" standing for none. True when there are any.
  bool FindColumnC(std::string_view request, std::vector<ItemColumn>& columns) const;

 protected:
  IdentifyRules rules() const override;
  bool asksForFormulas() const override { return false; }
};

}  // namespace lodex
