#include "modal/frmResult.h"

namespace lodex {

frmResult::frmResult() : Form("frmResult", "Lodex Geo - Modal Calculation Results") {
  const auto addGrid = [this](const char* name, Worksheet& sheet) {
    grids_.push_back(std::make_unique<Grid>(*this, name, sheet));
  };
  addGrid("F1MC", F1MC);
  addGrid("F1BulkC", F1BulkC);
  addGrid("F1R", F1R);
  addGrid("F1F", F1F);
  addGrid("F1D", F1D);
  addGrid("F1CV", F1CV);
  addGrid("F1N", F1N);
  addGrid("F1Ini", F1Ini);
  addGrid("F1Ini2", F1Ini2);
  addGrid("F1Kirja", F1Kirja);
  addGrid("F1Min", F1Min);
  addGrid("F1Min2", F1Min2);
  addGrid("F1MinB", F1MinB);
  addGrid("F1MinMax", F1MinMax);
  addGrid("F1Disso", F1Disso);
  addGrid("F1D2", F1D2);
  addGrid("F1MinChemPerSample", F1MinChemPerSample);
}

}  // namespace lodex
