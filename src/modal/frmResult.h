#pragma once

#include <memory>
#include <vector>

#include "form/Controls.h"
#include "form/Form.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// Everything that a modal calculation read and found, sheet by sheet, for the user to inspect.
/// Headings are in the column heads (ColText), so that row 1 is the first sample or the first
/// element of the element table F1ELoc. Amounts and compositions are in per cent.
class frmResult : public Form {
 public:
  frmResult();

  Worksheet F1Ini;     // sample x (sample number, then one column per assay): assays as read
  Worksheet F1R;       // the same: what the minerals leave unexplained
  Worksheet F1Kirja;   // element row x method: the F1Ini column of that assay; empty for none
  Worksheet F1Min;     // element row x mineral: composition; empty where unknown
  Worksheet F1MinB;    // F1Min as it was before solving
  Worksheet F1MinMax;  // element with data x (name, minerals ...): F1Min without its empty rows
  Worksheet F1Disso;   // element row x (mineral-1)*methods+method: fraction extracted
  Worksheet F1MinChemPerSample;  // sample and mineral x (sample, mineral, element rows ...)
  Worksheet F1MC;     // sample x (sample number, minerals ..., total): the modal composition
  Worksheet F1BulkC;  // sample x (sample number, elements ...): assays that the minerals make
  Worksheet F1N;      // sample x (sample number, note)
  Worksheet F1F;      // a fraction: some minerals recalculated to 100, with its chemistry
  Worksheet F1D;      // how one element divides among the minerals
  Worksheet F1CV;     // statistics of the error simulation
  Worksheet F1Ini2, F1Min2, F1D2;  // F1Ini, F1Min and F1Disso without simulated errors

  ListBox lstFract{*this, "lstFract"};
  /// 0 optResAbs, 1 optResRel: how F1R shows residuals.
  OptionButtons optRes{*this, "optRes", {"Absolute", "Relative"}};
  TextBox txtFrOtp{*this, "txtFrOtp"};
  Label labHeader{*this, "labHeader"};

  int distributionElement = 0;  // element row shown in F1D, 0 for none
  bool fractionShown = false;

  /// Columns of F1Ini that some equation of the last run took.
  std::vector<int> equationColumns;

 private:
  std::vector<std::unique_ptr<Grid>> grids_;
};

}  // namespace lodex
