#pragma once

#include <string>

#include "modal/AssaySheet.h"
#include "modal/MineralData.h"
#include "modal/frmResult.h"
#include "modal/frmSolve.h"
#include "session/Session.h"
#include "worksheet/Worksheet.h"

namespace lodex {

class Connection;
struct StoredSource;

/// Relative errors, in per cent, of a simulated run. While `start` is set the next run keeps the
/// sheets as they are in F1Ini2, F1Min2 and F1D2; every run perturbs from there.
struct ErrorSimulation {
  bool start = true;
  double assays = 0;
  double minerals = 0;
  double dissolution = 0;
};

/// What a modal calculation is made from.
struct ModalRequest {
  const Worksheet* F1CalcOpt = nullptr;
  AssaySheet assays;
  /// When set the assays come from a database in place of the sheet, by its method map.
  const StoredSource* stored = nullptr;
  const Worksheet* F1Ref = nullptr;
  const Worksheet* F1ELoc = nullptr;
  Connection* minerals = nullptr;  // the mineral database
  bool allTotal = false;           // every method dissolves everything
  int digits = 3;                  // decimals of the amounts
  std::string setUpName;
};

/// What a run does; the numbers are those that callers' texts use.
enum class ModalMode {
  Automated = -1,  // retrieve and solve, without windows
  Retrieve = 0,    // retrieve and solve
  SolveAgain = 1,  // solve with the data retrieved before
  Simulate = 2,    // solve with errors added to those data
};

/// Hidden sheets that the driver works in, so that they can be inspected.
struct ModalScratch {
  Worksheet F1X;         // file of the last X line
  Worksheet f1TempCalc;  // the last formula of a formula round
};

/// The modal calculation: fetches the assays and the mineral chemistry, finds round by round the
/// amounts of the round's minerals from what the rounds before leave unexplained, and fills the
/// sheets of `result`; `solver` shows the last round solved. Amounts are text rounded to the
/// decimals asked for.
///
/// Aborted by the session's abort flag, the run keeps the samples that went through all rounds;
/// the others are empty in all result sheets, and the reason names the last one kept. Failed, the
/// result sheets are empty. What was noticed is in the outcome alone: the caller hands it to the
/// session.
Outcome RetAndCalc(const ModalRequest& request, ModalMode mode, ModalLists& lists,
                   frmResult& result, frmSolve& solver, ModalScratch& scratch, Session& session,
                   ErrorSimulation* simulation = nullptr);

/// A normal deviate by the polar method of Marsaglia.
double GaussianDeviate(double mean, double sd);

}  // namespace lodex
