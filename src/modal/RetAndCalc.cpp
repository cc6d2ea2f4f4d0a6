#include "modal/RetAndCalc.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "chem/Headings.h"
#include "chem/ReferenceTables.h"
#include "modal/AmountFormula.h"
#include "modal/ModalData.h"
#include "modal/ModalSheets.h"
#include "modal/RoundPlan.h"
#include "modal/SetUp.h"
#include "modal/StoredAssays.h"

namespace lodex {
namespace {

constexpr int progressEnd = 10;
constexpr int shownCases = 256;  // right-hand sides of the last round that the solver form shows
constexpr int samplesPerPoll = 256;

// The expression of a calculated X line with the sheet that it is calculated in.
struct CalculatedLine {
  CalculatedLine(const std::string& expression, const std::vector<std::string>& labels)
      : formula(F1Apu, expression, labels, AmountFormula::Layout::Row,
                AmountFormula::Totals::Allowed) {}
  Worksheet F1Apu;
  AmountFormula formula;
};

class Driver {
 public:
  Driver(const ModalRequest& request, ModalLists& lists, frmResult& result, frmSolve& solver,
         ModalScratch& scratch, Session& session)
      : request_(request),
        F1ELoc_(*request.F1ELoc),
        lists_(lists),
        result_(result),
        solver_(solver),
        scratch_(scratch),
        session_(session) {}

  void retrieve();
  void simulate(ErrorSimulation& simulation);
  void solve();

  void progress(std::string_view text, int value) {
    session_.progress.ShowProgress(text, value);
    session_.pumpEvents();
  }

 private:
  // One press of the solver for a round: what the solver form shows afterwards.
  struct Shown {
    int m = 0, n = 0;
    std::vector<double> a;
    std::vector<std::vector<double>> b, x, r;
  };

  void log(const std::string& text) { session_.log.LisaaLog(text, LogKind::Log); }
  bool aborted();
  void retrieveChemistry();
  void retrieveDissolution();
  void requireNumbers();
  void solveBatch();
  void solvePerSample();
  void compileExpressions();
  void startPress(const PlannedRound& round);
  void solveCase(const PlannedRound& round, int sample);
  void defineByFormula(const PlannedRound& round, int firstSample, int lastSample);
  void subtractRound(const PlannedRound& round, int firstSample, int lastSample);
  void useOwnChemistry(const PlannedRound& round, int sample, SampleChemistry& own);
  double rightHandSide(const PlannedRound& round, size_t equation, int sample);
  std::vector<double> amountsOf(int sample) const;
  void showLastPress();
  void fix();

  const ModalRequest& request_;
  const Worksheet& F1ELoc_;
  ModalLists& lists_;
  frmResult& result_;
  frmSolve& solver_;
  ModalScratch& scratch_;
  Session& session_;

  std::optional<ModalData> data_;
  RoundPlan plan_;
  LinearModels models_;
  std::vector<double> a_, b_, x_;
  std::map<const PlannedEquation*, std::unique_ptr<CalculatedLine>> calculated_;
  std::vector<int> onlyText_;          // columns of F1Ini read just now that hold only text
  std::vector<std::string> messages_;  // per sample, from the solver
  std::vector<bool> ownComposition_;   // per mineral: F1Min was overwritten for the sample at hand
  Shown shown_;
};

bool Driver::aborted() {
  session_.pumpEvents();
  if (!session_.progress.AbortFlag) return false;
  session_.log.LisaaLog("!! Aborted !!");
  session_.progress.AbortFlag = false;
  return true;
}

// --- Retrieval ---

void Driver::retrieve() {
  progress("Retrieving methods ...", 2);
  clearSheet(result_.F1Ini);
  clearSheet(result_.F1Min);
  clearSheet(result_.F1Kirja);
  clearSheet(result_.F1MinMax);
  const auto tell = [this](const std::string& text) { log(text); };
  if (request_.stored != nullptr) {
    retrieveStoredAssays(*request_.stored, *request_.F1Ref, F1ELoc_, lists_, result_, tell);
  } else {
    onlyText_ = retrieveAssays(request_.assays, F1ELoc_, lists_, result_, tell);
  }
  retrieveChemistry();
  retrieveDissolution();
}

void Driver::retrieveChemistry() {
  if (request_.minerals == nullptr) throw Error("The mineral database is not open");
  const std::string total = std::to_string(lists_.MinIDs.size());
  int current = 0;
  try {
    const auto show = [&](int mineral) {
      current = mineral;
      progress("Retrieving mineral/phase " + std::to_string(mineral) + " of " + total + " ...", 4);
    };
    RetrieveMineralChemistry(*request_.minerals, lists_, F1ELoc_, result_.F1Min, show,
                             [this](const std::string& text) { log(text); });
  } catch (const Error&) {
    if (current >= 1 && current <= static_cast<int>(lists_.MinLabels.size())) {
      log("No chemistry for " + lists_.MinLabels[static_cast<size_t>(current) - 1]);
    }
    throw;
  }
  fillMinMax(result_, lists_, F1ELoc_);
}

void Driver::retrieveDissolution() {
  clearSheet(result_.F1Disso);
  progress("Retrieving dissolution data of minerals", 5);
  std::optional<Dissolution> table;
  if (!request_.allTotal) table.emplace(*request_.minerals);
  std::vector<std::string> methods;
  while (!result_.F1Kirja.ColText(static_cast<int>(methods.size()) + 1).empty()) {
    methods.push_back(result_.F1Kirja.ColText(static_cast<int>(methods.size()) + 1));
  }
  int column = 0;
  for (const std::string& label : lists_.MinLabels) {
    std::string kind, symbol, id;
    ParseMineralID(label, kind, symbol, id);
    progress("Retrieving dissolution data of mineral " + label, 5);
    for (const std::string& method : methods) {
      progress("Retrieving dissolution data " + method, 5);
      const double fraction = table ? table->fraction(kind, symbol, id, method) : 1;
      result_.F1Disso.ColText(++column, label + " " + method);
      for (int e = 1; e <= F1ELoc_.LastRow(); ++e) result_.F1Disso.NumberRC(e, column, fraction);
    }
  }
}

void Driver::simulate(ErrorSimulation& simulation) {
  if (simulation.start) {
    result_.F1Ini2.CopyAll(result_.F1Ini);
    result_.F1Min2.CopyAll(result_.F1Min);
    result_.F1D2.CopyAll(result_.F1Disso);
    simulation.start = false;
  }
  perturb(result_.F1Ini2, 2, simulation.assays, result_.F1Ini);
  perturb(result_.F1Min2, 1, simulation.minerals, result_.F1Min);
  perturb(result_.F1D2, 1, simulation.dissolution, result_.F1Disso);
}

// --- Solving ---

void Driver::solve() {
  progress("Solving...", 6);
  result_.optRes.select(0);
  result_.F1MinB.CopyAll(result_.F1Min);
  solver_.resize(1, 1, 1);
  clearSheet(result_.F1R);
  clearSheet(result_.F1MC);
  clearSheet(result_.F1BulkC);
  writeMineralHeadings(result_, lists_);

  data_.emplace(result_, lists_, F1ELoc_);
  messages_.assign(static_cast<size_t>(data_->samples()), "");
  plan_ = planRounds(*request_.F1CalcOpt, F1ELoc_, *data_, lists_, result_.F1MC, scratch_.F1X,
                     [this](const std::string& text) { log(text); });
  result_.equationColumns.clear();
  const std::vector<bool> used = plan_.usedAssays(*data_);
  for (size_t k = 0; k < used.size(); ++k) {
    if (used[k]) result_.equationColumns.push_back(static_cast<int>(k) + 2);
  }
  requireNumbers();
  compileExpressions();
  session_.progress.ShowStop(true);
  if (plan_.perSample) {
    solvePerSample();
  } else {
    solveBatch();
  }
  session_.progress.ShowStop(false);
  showLastPress();
  fix();
}

// Assays of nothing but text, such as numbers with decimal commas, would pass for samples of
// nothing.
void Driver::requireNumbers() {
  const std::vector<int>& used = result_.equationColumns;
  const bool none = !used.empty() && std::all_of(used.begin(), used.end(), [this](int column) {
    return std::find(onlyText_.begin(), onlyText_.end(), column) != onlyText_.end();
  });
  if (none) throw Error("The assays of all equations are text: there is no number among them");
}

void Driver::solveBatch() {
  const std::string total = std::to_string(plan_.rounds.size());
  for (const PlannedRound& round : plan_.rounds) {
    progress("Solving round " + std::to_string(round.number) + " / " + total + " ...", 7);
    if (round.isFormula) {
      defineByFormula(round, 0, data_->samples());
    } else {
      if (round.model == EstimationModel::WeighedLeastSquare && data_->samples() > 1) {
        log("Round " + std::to_string(round.number) + ": " +
            modelCaptions()[static_cast<size_t>(round.model)] +
            " weighs by the assays of the first sample when all samples are solved together");
      }
      startPress(round);
      for (int s = 0; s < data_->samples(); ++s) {
        if (s % samplesPerPoll == 0 && aborted()) return;
        solveCase(round, s);
      }
    }
    subtractRound(round, 0, data_->samples());
    if (aborted()) return;
  }
}

void Driver::solvePerSample() {
  const std::string total = std::to_string(data_->samples());
  ownComposition_.assign(static_cast<size_t>(data_->minerals()), false);
  if (request_.minerals == nullptr) throw Error("The mineral database is not open");
  SampleChemistry own(*request_.minerals);
  MineralChemistryWriter used(result_, lists_, F1ELoc_);
  for (int s = 0; s < data_->samples(); ++s) {
    if (s % samplesPerPoll == 0) {
      progress("Solving sample " + std::to_string(s + 1) + " / " + total + " ...", 7);
    }
    if (aborted()) return;
    restoreColumns(result_.F1MinB, ownComposition_, result_.F1Min);
    for (int mineral = 0; mineral < data_->minerals(); ++mineral) {
      if (ownComposition_[static_cast<size_t>(mineral)]) {
        data_->readComposition(result_.F1Min, mineral);
      }
    }
    ownComposition_.assign(ownComposition_.size(), false);
    for (const PlannedRound& round : plan_.rounds) {
      if (round.isFormula) {
        defineByFormula(round, s, s + 1);
      } else {
        useOwnChemistry(round, s, own);
        startPress(round);
        solveCase(round, s);
      }
      subtractRound(round, s, s + 1);
    }
    used.write(lists_.SampleIDs[static_cast<size_t>(s)]);
  }
}

// The sample's own composition goes into the column that is numbered like the round.
void Driver::useOwnChemistry(const PlannedRound& round, int sample, SampleChemistry& own) {
  for (const PlannedMineral& mineral : round.minerals) {
    if (!mineral.sampleSpecific || round.number > data_->minerals()) continue;
    const auto place = static_cast<size_t>(round.number) - 1;
    const bool found = own.overwrite(mineral.kind, mineral.symbol, lists_.MinIDs[place],
                                     lists_.SampleIDs[static_cast<size_t>(sample)], F1ELoc_,
                                     result_.F1Min, round.number);
    if (!found) continue;
    ownComposition_[place] = true;
    data_->readComposition(result_.F1Min, round.number - 1);
  }
}

void Driver::startPress(const PlannedRound& round) {
  const auto m = round.equations.size();
  const auto n = round.minerals.size();
  fillCoefficients(round, *data_, a_);
  models_.start(round.model, static_cast<int>(m), static_cast<int>(n), a_.data());
  b_.assign(m, 0.0);
  x_.assign(n, 0.0);
  shown_ = {static_cast<int>(m), static_cast<int>(n), a_, {}, {}, {}};
  solver_.optMalli.select(static_cast<int>(round.model));
}

void Driver::compileExpressions() {
  for (const PlannedRound& round : plan_.rounds) {
    for (const PlannedEquation& equation : round.equations) {
      if (equation.kind != EquationKind::XCalculated) continue;
      calculated_[&equation] =
          std::make_unique<CalculatedLine>(equation.expression, lists_.MinLabels);
    }
  }
}

double Driver::rightHandSide(const PlannedRound& round, size_t equation, int sample) {
  const PlannedEquation& e = round.equations[equation];
  const auto s = static_cast<size_t>(sample);
  switch (e.kind) {
    case EquationKind::XFile:
      return e.values[s];
    case EquationKind::XCalculated: {
      AmountFormula& expression = calculated_.at(&e)->formula;
      const double value = expression.evaluate(amountsOf(sample));
      if (expression.failed()) {
        session_.log.LisaaLog("Line " + e.item + " gives " + expression.errorText(), LogKind::Log,
                              true);
      }
      const bool noNegative = round.model == EstimationModel::NonNegative ||
                              round.model == EstimationModel::WeighedNonNegative;
      return noNegative && value < 0 ? 0 : value;
    }
    default: {
      if (e.assay < 0) return 0;
      const double residual = data_->residuals[static_cast<size_t>(e.assay)][s];
      return std::isnan(residual) ? 0 : residual;
    }
  }
}

void Driver::solveCase(const PlannedRound& round, int sample) {
  const auto s = static_cast<size_t>(sample);
  for (size_t i = 0; i < b_.size(); ++i) b_[i] = rightHandSide(round, i, sample);
  const bool show = shown_.b.size() < shownCases;
  if (show) shown_.r.emplace_back(b_.size());
  const std::string_view message =
      models_.solve(b_.data(), x_.data(), show ? shown_.r.back().data() : nullptr);
  if (show) {
    shown_.b.push_back(b_);
    shown_.x.push_back(x_);
  }
  if (!message.empty()) messages_[s] += message;
  for (size_t j = 0; j < round.minerals.size(); ++j) {
    const int number = round.minerals[j].resultNumber;
    if (number >= 0) data_->amounts[static_cast<size_t>(number)][s] = x_[j];
  }
}

std::vector<double> Driver::amountsOf(int sample) const {
  std::vector<double> amounts;
  for (const std::vector<double>& mineral : data_->amounts) {
    const double amount = mineral[static_cast<size_t>(sample)];
    amounts.push_back(std::isnan(amount) ? 0 : amount);
  }
  return amounts;
}

void Driver::defineByFormula(const PlannedRound& round, int firstSample, int lastSample) {
  for (const PlannedMineral& mineral : round.minerals) {
    if (mineral.resultNumber < 0 || mineral.formula.empty()) continue;
    const auto number = static_cast<size_t>(mineral.resultNumber);
    const bool isRest = mineral.formula == "100-TOT";
    std::optional<AmountFormula> formula;
    if (!isRest) {
      formula.emplace(scratch_.f1TempCalc, mineral.formula, lists_.MinLabels,
                      AmountFormula::Layout::Column, AmountFormula::Totals::Unknown);
    }
    for (int s = firstSample; s < lastSample; ++s) {
      std::vector<double> amounts = amountsOf(s);
      double value = 0;
      if (isRest) {
        amounts[number] = 0;
        double sum = 0;
        for (const double amount : amounts) sum += amount;
        value = sum > 100 ? 0 : 100 - sum;
      } else {
        value = formula->evaluate(amounts);
        if (formula->failed()) {
          session_.log.LisaaLog("Equation " + mineral.formula + " of " + mineral.identifier +
                                    " gives " + formula->errorText(),
                                LogKind::Log, true);
        }
      }
      data_->amounts[number][static_cast<size_t>(s)] = value;
    }
  }
}

void Driver::subtractRound(const PlannedRound& round, int firstSample, int lastSample) {
  for (const PlannedMineral& mineral : round.minerals) {
    if (mineral.resultNumber < 0 || mineral.number < 0) continue;
    data_->subtract(mineral.number, mineral.resultNumber, firstSample, lastSample);
  }
}

void Driver::showLastPress() {
  const int cases = static_cast<int>(shown_.b.size());
  if (shown_.m == 0 || shown_.n == 0 || cases == 0) return;
  solver_.resize(shown_.m, shown_.n, cases);
  solver_.showCase(shown_.m, shown_.n);
  for (int j = 0; j < shown_.n; ++j) {
    for (int i = 0; i < shown_.m; ++i) {
      solver_.f1A.NumberRC(i + 1, j + 1,
                           shown_.a[static_cast<size_t>(i) + static_cast<size_t>(j) * shown_.m]);
    }
  }
  const auto fill = [](Worksheet& sheet, const std::vector<std::vector<double>>& columns) {
    for (size_t c = 0; c < columns.size(); ++c) {
      for (size_t i = 0; i < columns[c].size(); ++i) {
        sheet.NumberRC(static_cast<int>(i) + 1, static_cast<int>(c) + 1, columns[c][i]);
      }
    }
  };
  fill(solver_.F1B, shown_.b);
  fill(solver_.F1X, shown_.x);
  fill(solver_.F1R, shown_.r);
}

void Driver::fix() {
  progress("Fixing ...", 9);
  writeResiduals(result_, *data_, lists_);
  writeAmounts(result_, *data_, lists_, request_.digits);
  writeNotes(result_, lists_, request_.setUpName, messages_);
  writeBulkChemistry(result_, lists_, F1ELoc_);
}

}  // namespace

double GaussianDeviate(double mean, double sd) {
  return RandomGauss(mean, sd);
}

void RetAndCalc(const ModalRequest& request, int mode, ModalLists& lists, frmResult& result,
                frmSolve& solver, ModalScratch& scratch, Session& session,
                ErrorSimulation* simulation) {
  Driver driver(request, lists, result, solver, scratch, session);
  clearSheet(result.F1N);
  clearSheet(result.F1MinChemPerSample);
  if (mode != modalMode::Simulate) {
    session.progress.bar.setMaximum(progressEnd);
    driver.progress("Counting rounds...", 1);
  }
  try {
    if (mode <= 0) driver.retrieve();
    if (mode == modalMode::Simulate && simulation != nullptr) driver.simulate(*simulation);
    driver.solve();
  } catch (...) {
    session.progress.ShowProgress("", 0);
    throw;
  }
  session.progress.ShowProgress("", 0);
  session.progress.txtInfo.setCaption("Calculation ready!");
}

}  // namespace lodex
