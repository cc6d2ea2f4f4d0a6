#include "modal/frmSolve.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lodex {
namespace {

void clearTo(Worksheet& sheet, int rows, int columns) {
  sheet = Worksheet();
  sheet.MaxRow(std::max(rows, 1));
  sheet.MaxCol(std::max(columns, 1));
}

}  // namespace

frmSolve::frmSolve(Dialogs& dialogs)
    : Form("frmSolve", "Solves a set of linear algebraic equations: A*X=B. R=Residual matrix"),
      dialogs_(dialogs) {
  resize(10, 10, 1);
  cmdSolve.setCommand([this] { solve(); });
}

void frmSolve::resize(int equations, int unknowns, int cases) {
  clearTo(f1A, equations, unknowns);
  clearTo(F1B, equations, cases);
  clearTo(F1X, unknowns, cases);
  clearTo(F1R, equations, cases);
}

void frmSolve::showCase(int equations, int unknowns) {
  txtARows.setNumber(equations);
  txtACols.setNumber(unknowns);
  txtCase.setText(unknowns > equations   ? "Underdetermined"
                  : unknowns < equations ? "Overdetermined"
                                         : "Exactly determined");
}

void frmSolve::solve() {
  const int m = f1A.MaxRow();
  const int n = f1A.MaxCol();
  const int cases = F1B.MaxCol();
  showCase(m, n);
  if (F1B.MaxRow() != m) {
    dialogs_.messageBox("A and B do not match");
    return;
  }
  if (m > largestSystem || n > largestSystem) {
    const std::string limit = std::to_string(largestSystem);
    dialogs_.messageBox("The system is too large: at most " + limit + " equations and " + limit +
                        " unknowns can be solved.");
    return;
  }

  std::vector<double> a(static_cast<size_t>(m) * static_cast<size_t>(n));
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) {
      a[static_cast<size_t>(i) + static_cast<size_t>(j) * m] = f1A.NumberRC(i + 1, j + 1);
    }
  }
  clearTo(F1X, n, cases);
  clearTo(F1R, m, cases);

  LinearModels models;
  models.start(static_cast<EstimationModel>(optMalli.selected()), m, n, a.data());
  std::vector<double> b(static_cast<size_t>(m)), x(static_cast<size_t>(n)), r(b.size());
  for (int c = 1; c <= cases; ++c) {
    for (int i = 0; i < m; ++i) b[static_cast<size_t>(i)] = F1B.NumberRC(i + 1, c);
    const std::string_view message = models.solve(b.data(), x.data(), r.data());
    if (!message.empty() && note) note(c, message);
    for (int j = 0; j < n; ++j) F1X.NumberRC(j + 1, c, x[static_cast<size_t>(j)]);
    for (int i = 0; i < m; ++i) F1R.NumberRC(i + 1, c, r[static_cast<size_t>(i)]);
  }
  gridX_.refresh();
  gridR_.refresh();
}

}  // namespace lodex
