#pragma once

#include <string>
#include <vector>

#include "modal/LinearModels.h"
#include "modal/ModalData.h"
#include "modal/SetUp.h"
#include "modal/Watch.h"

namespace lodex {

/// One equation of a round with everything looked up. Indices count from 0.
struct PlannedEquation {
  std::string item;
  EquationKind kind = EquationKind::Assay;
  int element = -1;            // element row
  int method = -1;             // -1 when the assays have no such method
  int assay = -1;              // -1 when there is no such assay: its right-hand side is 0
  std::string expression;      // calculated X lines
  std::string coefficients;    // X lines: "Py=1, Ccp=0.5"
  std::vector<double> values;  // X lines from a file: the right-hand side per sample
};

struct PlannedMineral {
  std::string identifier;
  std::string kind, symbol, id;
  int number = -1;        // place in MinIDs
  int resultNumber = -1;  // the mineral whose column takes the amount; -1 for none
  bool sampleSpecific = false;
  std::string formula;  // formula rounds: the text after "###"
};

struct PlannedRound {
  int number = 0;
  EstimationModel model = EstimationModel::LeastSquare;
  bool isFormula = false;
  std::vector<PlannedEquation> equations;
  std::vector<PlannedMineral> minerals;
};

/// The rounds of a set-up ready to be calculated.
struct RoundPlan {
  std::vector<PlannedRound> rounds;
  bool perSample = false;  // some mineral has a composition of the sample's own

  /// Which assays feed an equation, by their index in ModalData::residuals.
  std::vector<bool> usedAssays(const ModalData& data) const;
};

/// Resolves the set-up against the assays and minerals. `F1MC` has its mineral headings already,
/// `F1X` is the sheet into which files of X lines are read. Reports equations
/// without an assay, assays without an equation, minerals in no round, symbols that two minerals
/// share, labels and models that do not fit, and samples that the file of an X line lacks. Throws
/// FileError for an X line whose file cannot be read, Error for a round that is too large to be
/// solved.
RoundPlan planRounds(const Worksheet& F1CalcOpt, const Worksheet& F1ELoc, const ModalData& data,
                     const ModalLists& lists, const Worksheet& F1MC, Worksheet& F1X,
                     const Watch& watch);

/// The coefficients of a round, stored column by column: equations x minerals, as mass fractions.
void fillCoefficients(const PlannedRound& round, const ModalData& data, std::vector<double>& a);

}  // namespace lodex
