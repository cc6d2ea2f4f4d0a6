#pragma once

#include <functional>
#include <string_view>

#include "form/Controls.h"
#include "form/Dialogs.h"
#include "form/Form.h"
#include "modal/LinearModels.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// The linear solver as a tool of its own, and the place where the last round of a modal
/// calculation can be inspected. The size of a matrix is the MaxRow by MaxCol of its sheet; empty
/// cells count as 0.
class frmSolve : public Form {
 public:
  explicit frmSolve(Dialogs& dialogs);

  Worksheet f1A;  // coefficients: equations x unknowns, mass fractions
  Worksheet F1B;  // right-hand sides: equations x cases
  Worksheet F1X;  // solutions: unknowns x cases
  Worksheet F1R;  // residuals B - A*X

  TextBox txtARows{*this, "txtARows"};
  TextBox txtACols{*this, "txtACols"};
  TextBox txtCase{*this, "txtCase"};
  OptionButtons optMalli{
      *this,
      "optMalli",
      {"Least Square (SV)", "Weighed Least Square (WSV)", "Non-negative Least Square (NNLS)",
       "Weighed Non-negative Least Square (WNNLS)"}};
  Button cmdSolve{*this, "cmdSolve", "Solve"};
  Label labSV{*this, "labSV",
              "SV: Press, W.H. et al. (1986): Numerical Recipes, singular value decomposition"};
  Label labNNLS{*this, "labNNLS",
                "NNLS: Lawson, C.L. & Hanson, R.J. (1974): Solving Least Squares Problems"};

  /// Receives what a solver has to say about a case (counted from 1).
  std::function<void(int caseNumber, std::string_view text)> note;

  /// Solves all cases of the sheets with the selected model.
  void solve();

  /// Empties the four sheets and gives them the sizes of a system.
  void resize(int equations, int unknowns, int cases);
  /// Shows the size of a system and what that makes of it.
  void showCase(int equations, int unknowns);

  /// The largest number of equations and of unknowns that `solve` takes.
  static constexpr int largestSystem = 2000;

 private:
  Grid gridA_{*this, "f1A", f1A};
  Grid gridB_{*this, "F1B", F1B};
  Grid gridX_{*this, "F1X", F1X};
  Grid gridR_{*this, "F1R", F1R};
  Dialogs& dialogs_;
};

}  // namespace lodex
