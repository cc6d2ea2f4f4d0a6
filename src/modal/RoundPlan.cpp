#include "modal/RoundPlan.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/ReferenceTables.h"
#include "modal/AmountFormula.h"
#include "modal/AssaySheet.h"
#include "modal/StoredAssays.h"
#include "modal/frmSolve.h"

namespace lodex {
namespace {

// Numbers compare as numbers: sample "7" is also sample "7.0".
std::string sampleKey(std::string_view text) {
  const auto number = parseNumber(text);
  return number ? exactNumberText(*number) : std::string(trimBlanks(text));
}

std::vector<double> readXFile(const PlannedEquation& equation, const XLine& x,
                              const ModalLists& lists, Worksheet& F1X, Findings& found) {
  const std::string line = "Line " + equation.item + ": ";
  if (x.file.empty()) throw FileError(line + "it names no file");
  if (x.sampleColumn < 1 || x.valueColumn < 1) {
    throw FileError(line + "the columns of sample and value are not known");
  }
  F1X.Read(x.file);
  std::unordered_map<std::string, double> values;
  for (int row = 1; row <= F1X.LastRow(); ++row) {
    values.emplace(sampleKey(F1X.TextRC(row, x.sampleColumn)), F1X.NumberRC(row, x.valueColumn));
  }
  std::vector<double> out;
  for (const std::string& sample : lists.SampleIDs) {
    const auto hit = values.find(sampleKey(sample));
    out.push_back(hit == values.end() ? 0 : hit->second);
    if (hit == values.end()) {
      found.warn(line + "the file has no such sample: 0 is taken",
                 {.file = x.file, .record = sample});
    }
  }
  return out;
}

int methodIndex(const ModalData& data, int element, const std::string& method) {
  const auto& names = data.methodNames;
  const auto hit = std::find(names.begin(), names.end(), method);
  const int named = hit == names.end() ? -1 : static_cast<int>(hit - names.begin());
  const bool anyWillDo = method.empty() || method == firstMethod;
  if (!anyWillDo || data.assayOf(element, named) >= 0) return named;
  for (int k = 0; k < data.methods(); ++k) {
    if (data.assayOf(element, k) >= 0) return k;
  }
  return named;
}

// An item such as "SiO2 (12) / XRF" counts by its row, whatever its label says.
void reportLabel(const std::string& item, int row, const Worksheet& F1ELoc, Findings& found) {
  const std::string label(trimBlanks(std::string_view(item).substr(0, item.find('('))));
  if (label.empty() || row < 1 || row > F1ELoc.LastRow()) return;
  for (const int column :
       {eloc::Element, eloc::Form, eloc::MineralField, eloc::Oxide, eloc::Oxide2}) {
    const std::string name = F1ELoc.TextRC(row, column);
    if (label == name || label == name.substr(0, name.find(' '))) return;
  }
  found.warn("Equation " + item + " takes " + F1ELoc.TextRC(row, eloc::Element) + ", element row " +
             std::to_string(row) + ", not " + label);
}

void reportModel(const Worksheet& F1CalcOpt, const PlannedRound& round, int row, Findings& found) {
  const std::string model = F1CalcOpt.TextRC(row, setup::Model);
  const auto taken = static_cast<int>(round.model);
  if (model.empty() || parseInteger(model) == taken) return;
  found.warn("Estimation model " + model + " of round " + std::to_string(round.number) +
             " is not known: " + modelCaptions()[static_cast<size_t>(taken)] + " is taken");
}

// The solver's work space grows with the square of the larger side.
void requireSize(const PlannedRound& round) {
  const size_t side = std::max(round.equations.size(), round.minerals.size());
  if (round.isFormula || side <= static_cast<size_t>(frmSolve::largestSystem)) return;
  throw Error("Round " + std::to_string(round.number) + " has " +
              std::to_string(round.equations.size()) + " equations and " +
              std::to_string(round.minerals.size()) + " minerals: more than " +
              std::to_string(frmSolve::largestSystem) + " cannot be solved");
}

// An item of a database names table and field, which may hold slashes: "Cu (29) / A | Cu/AR/ppm".
std::string methodOf(const Worksheet& F1CalcOpt, int row, const std::string& item) {
  const bool isField = item.find(" | ") != std::string::npos;
  return isField ? methodOfStored(item) : F1CalcOpt.TextRC(row, setup::Method);
}

PlannedEquation planEquation(const Worksheet& F1CalcOpt, int row, const ModalData& data,
                             const ModalLists& lists, Worksheet& F1X, Findings& found) {
  PlannedEquation equation;
  equation.item = F1CalcOpt.TextRC(row, setup::Equation);
  equation.kind = equationKind(equation.item);
  const XLine x{parseInteger(F1CalcOpt.TextRC(row, setup::XKind)).value_or(0),
                F1CalcOpt.TextRC(row, setup::XFile),
                parseInteger(F1CalcOpt.TextRC(row, setup::XSampleColumn)).value_or(0),
                parseInteger(F1CalcOpt.TextRC(row, setup::XValueColumn)).value_or(0),
                F1CalcOpt.TextRC(row, setup::Text)};
  switch (equation.kind) {
    case EquationKind::Assay:
      equation.element = parseInteger(F1CalcOpt.TextRC(row, setup::ElementRow)).value_or(0) - 1;
      equation.method =
          methodIndex(data, equation.element, methodOf(F1CalcOpt, row, equation.item));
      equation.assay = data.assayOf(equation.element, equation.method);
      break;
    case EquationKind::XFile:
      equation.coefficients = x.text;
      equation.values = readXFile(equation, x, lists, F1X, found);
      break;
    case EquationKind::XCalculated: {
      // A set-up file keeps only the item, which holds the expression as well.
      const bool fromFile = !F1CalcOpt.HasContent(row, setup::XKind);
      const std::string text = fromFile ? equation.item.substr(2) : x.text;
      const Expression parts = splitExpression(text);
      equation.expression = parts.formula;
      equation.coefficients = parts.coefficients.empty() ? text : parts.coefficients;
      break;
    }
    case EquationKind::Formula:
      break;
  }
  return equation;
}

PlannedMineral planMineral(const Worksheet& F1CalcOpt, int row, const ModalLists& lists,
                           const Worksheet& F1MC, bool perSample) {
  PlannedMineral mineral;
  mineral.identifier = F1CalcOpt.TextRC(row, setup::Mineral);
  ParseMineralID(mineral.identifier, mineral.kind, mineral.symbol, mineral.id);
  mineral.number = MineralIndex(lists, mineral.id) - 1;
  const int column = MineralColumn(mineral.identifier, F1MC);
  mineral.resultNumber = perSample ? mineral.number : column == 0 ? -1 : column - 2;
  mineral.sampleSpecific = F1CalcOpt.NumberRC(row, setup::SampleSpecific) == 1;
  return mineral;
}

PlannedRound planRound(const Worksheet& F1CalcOpt, int number, const ModalData& data,
                       const ModalLists& lists, const Worksheet& F1MC, Worksheet& F1X,
                       bool perSample, Findings& found) {
  PlannedRound round;
  round.number = number;
  const RoundRows rows = findRound(F1CalcOpt, number);
  const int model = parseInteger(F1CalcOpt.TextRC(rows.first, setup::Model)).value_or(0);
  round.model = static_cast<EstimationModel>(std::clamp(model, 0, 3));
  for (int row = rows.first; row < rows.first + rows.count; ++row) {
    if (equationKind(F1CalcOpt.TextRC(row, setup::Equation)) == EquationKind::Formula) {
      round.isFormula = true;
    }
  }
  for (int row = rows.first; row < rows.first + rows.count; ++row) {
    const std::string item = F1CalcOpt.TextRC(row, setup::Equation);
    if (!item.empty() && !round.isFormula) {
      round.equations.push_back(planEquation(F1CalcOpt, row, data, lists, F1X, found));
    }
    if (!F1CalcOpt.HasContent(row, setup::Mineral)) continue;
    round.minerals.push_back(planMineral(F1CalcOpt, row, lists, F1MC, perSample));
    if (equationKind(item) == EquationKind::Formula) round.minerals.back().formula = item.substr(3);
  }
  return round;
}

void reportEquations(const RoundPlan& plan, const ModalData& data, Findings& found) {
  const std::vector<bool> used = plan.usedAssays(data);
  for (const PlannedRound& round : plan.rounds) {
    for (const PlannedEquation& equation : round.equations) {
      if (equation.kind != EquationKind::Assay || equation.assay >= 0) continue;
      found.warn("Equation " + equation.item + " of round " + std::to_string(round.number) +
                 " has no assay: 0 is taken for it");
    }
  }
  for (int assay = 0; assay < data.assays(); ++assay) {
    // Fields of a database that are not assays need no mention.
    if (used[static_cast<size_t>(assay)] || !data.isAssay(assay)) continue;
    found.note("Assay " + data.assayNames[static_cast<size_t>(assay)] + " feeds no equation");
  }
}

void reportMinerals(const RoundPlan& plan, const ModalLists& lists, Findings& found) {
  for (size_t i = 0; i < lists.MinLabels.size(); ++i) {
    const std::string& label = lists.MinLabels[i];
    bool inRound = false;
    for (const PlannedRound& round : plan.rounds) {
      for (const PlannedMineral& mineral : round.minerals) {
        inRound = inRound || mineral.number == static_cast<int>(i) || mineral.identifier == label;
      }
    }
    if (!inRound) found.warn("Mineral " + label + " is in no round");
    for (size_t j = 0; j < i; ++j) {
      if (lists.MinLabels[j] == label) continue;
      if (symbolOrText(lists.MinLabels[j]) == symbolOrText(label)) {
        found.warn("Minerals " + lists.MinLabels[j] + " and " + label + " share the symbol " +
                   symbolOrText(label));
      }
      if (lists.MinIDs[j] == lists.MinIDs[i]) {
        found.warn("Minerals " + lists.MinLabels[j] + " and " + label + " share the number " +
                   lists.MinIDs[i] + ": the composition of the first counts for both");
      }
    }
  }
  for (const PlannedRound& round : plan.rounds) {
    for (const PlannedMineral& mineral : round.minerals) {
      if (mineral.number >= 0) continue;
      found.error("Mineral " + mineral.identifier + " is not in the calculation");
    }
    if (!round.isFormula && (round.equations.empty() || round.minerals.empty())) {
      found.warn("Round " + std::to_string(round.number) + " has no " +
                 (round.equations.empty() ? "equations" : "minerals"));
    }
  }
}

}  // namespace

std::vector<bool> RoundPlan::usedAssays(const ModalData& data) const {
  std::vector<bool> used(static_cast<size_t>(data.assays()));
  for (const PlannedRound& round : rounds) {
    for (const PlannedEquation& equation : round.equations) {
      if (equation.assay >= 0) used[static_cast<size_t>(equation.assay)] = true;
    }
  }
  return used;
}

RoundPlan planRounds(const Worksheet& F1CalcOpt, const Worksheet& F1ELoc, const ModalData& data,
                     const ModalLists& lists, const Worksheet& F1MC, Worksheet& F1X,
                     const Watch& watch) {
  RoundPlan plan;
  for (int row = 1; row <= F1CalcOpt.LastRow(); ++row) {
    plan.perSample = plan.perSample || F1CalcOpt.NumberRC(row, setup::SampleSpecific) == 1 ||
                     F1CalcOpt.NumberRC(row, setup::Special) == 1;
  }
  for (const int number : roundNumbers(F1CalcOpt)) {
    watch.poll();
    plan.rounds.push_back(
        planRound(F1CalcOpt, number, data, lists, F1MC, F1X, plan.perSample, watch.found));
  }
  for (const PlannedRound& round : plan.rounds) {
    reportModel(F1CalcOpt, round, findRound(F1CalcOpt, round.number).first, watch.found);
    requireSize(round);
    for (const PlannedEquation& equation : round.equations) {
      if (equation.kind != EquationKind::Assay) continue;
      reportLabel(equation.item, equation.element + 1, F1ELoc, watch.found);
    }
  }
  reportEquations(plan, data, watch.found);
  reportMinerals(plan, lists, watch.found);
  return plan;
}

void fillCoefficients(const PlannedRound& round, const ModalData& data, std::vector<double>& a) {
  const size_t m = round.equations.size();
  a.assign(m * round.minerals.size(), 0.0);
  for (size_t j = 0; j < round.minerals.size(); ++j) {
    const PlannedMineral& mineral = round.minerals[j];
    for (size_t i = 0; i < m; ++i) {
      const PlannedEquation& equation = round.equations[i];
      double& coefficient = a[i + j * m];
      if (equation.kind != EquationKind::Assay) {
        coefficient = CoefficientOf(equation.coefficients, mineral.symbol);
        if (coefficient == 0 && i == j) coefficient = 1;
        continue;
      }
      if (mineral.number < 0 || equation.element < 0 || equation.element >= data.elements()) {
        continue;
      }
      const double content = data.composition(equation.element, mineral.number);
      if (std::isnan(content)) continue;
      const double fraction =
          equation.method < 0 ? 1
                              : data.extracted(equation.element, mineral.number, equation.method);
      coefficient = content * fraction / 100;
    }
  }
}

}  // namespace lodex
