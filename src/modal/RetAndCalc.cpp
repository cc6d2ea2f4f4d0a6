#include "modal/RetAndCalc.h"

#include <algorithm>
#include <chrono>
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
#include "modal/Watch.h"
#include "session/AbortReason.h"

namespace lodex {
namespace {

constexpr int progressEnd = 10;
constexpr int shownCases = 256;  // right-hand sides of the last round that the solver form shows
constexpr int samplesPerBlock = 256;
constexpr std::chrono::milliseconds betweenPolls{50};

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
        session_(session),
        job_(session) {}

  Outcome run(ModalMode mode, ErrorSimulation* simulation);

 private:
  // What the solver form shows afterwards: the last round solved.
  struct Shown {
    int m = 0, n = 0;
    std::vector<double> a;
    std::vector<std::vector<double>> b, x, r;
  };
  // A round with the work space of its solver.
  struct Press {
    LinearModels models;
    std::vector<double> a, b, x;
  };

  void poll();
  void pollNow();
  void progress(std::string_view text, int value);
  void retrieve();
  void simulate(ErrorSimulation& simulation);
  void solve();
  void retrieveChemistry();
  void retrieveDissolution();
  void requireNumbers();
  void solveBatch();
  void solveBlock(int firstSample, int lastSample);
  void solvePerSample();
  void compileExpressions();
  void startPress(const PlannedRound& round, Press& press);
  void show(const PlannedRound& round, const Press& press);
  void solveCase(const PlannedRound& round, Press& press, int sample);
  void defineByFormula(const PlannedRound& round, int firstSample, int lastSample);
  void subtractRound(const PlannedRound& round, int firstSample, int lastSample);
  void useOwnChemistry(const PlannedRound& round, int sample, SampleChemistry& own);
  double rightHandSide(const PlannedRound& round, size_t equation, int sample);
  std::vector<double> amountsOf(int sample) const;
  void showLastPress();
  void writeResults();

  const ModalRequest& request_;
  const Worksheet& F1ELoc_;
  ModalLists& lists_;
  frmResult& result_;
  frmSolve& solver_;
  ModalScratch& scratch_;
  Session& session_;
  JobScope job_;

  std::optional<ModalData> data_;
  RoundPlan plan_;
  std::vector<Press> presses_;                // parallel to the rounds
  const PlannedRound* lastSolved_ = nullptr;  // the last round that is not a formula
  std::map<const PlannedEquation*, std::unique_ptr<CalculatedLine>> calculated_;
  std::vector<int> onlyText_;          // columns of F1Ini read just now that hold only text
  std::vector<std::string> messages_;  // per sample, from the solver
  std::vector<bool> ownComposition_;   // per mineral: F1Min was overwritten for the sample at hand
  Shown shown_;
  int finished_ = 0;  // samples that went through all rounds
  Outcome outcome_;
  const Watch watch_{outcome_.found, [this] { poll(); }};
  std::chrono::steady_clock::time_point nextPoll_;
};

Outcome Driver::run(ModalMode mode, ErrorSimulation* simulation) {
  try {
    if (mode == ModalMode::Automated || mode == ModalMode::Retrieve) retrieve();
    if (mode == ModalMode::Simulate && simulation != nullptr) simulate(*simulation);
    solve();
  } catch (const AbortRequested&) {
    // Before the first sample was solved.
    outcome_.ended = Ended::Aborted;
    outcome_.reason = "before any sample was calculated";
  } catch (const Error& error) {
    outcome_.ended = Ended::Failed;
    outcome_.reason = error.what();
  }
  return std::move(outcome_);
}

// --- Progress and abort ---

// Asking lets windows paint, so it is done only so often.
void Driver::poll() {
  if (std::chrono::steady_clock::now() >= nextPoll_) pollNow();
}

void Driver::pollNow() {
  session_.pumpEvents();
  nextPoll_ = std::chrono::steady_clock::now() + betweenPolls;
  if (!session_.progress.AbortFlag) return;
  job_.abort();
  throw AbortRequested();
}

void Driver::progress(std::string_view text, int value) {
  session_.progress.ShowProgress(text, value);
  pollNow();
}

// --- Retrieval ---

void Driver::retrieve() {
  progress("Retrieving methods ...", 2);
  clearSheet(result_.F1Ini);
  clearSheet(result_.F1Min);
  clearSheet(result_.F1Kirja);
  clearSheet(result_.F1MinMax);
  if (request_.stored != nullptr) {
    retrieveStoredAssays(*request_.stored, *request_.F1Ref, F1ELoc_, lists_, result_, watch_);
  } else {
    onlyText_ = retrieveAssays(request_.assays, F1ELoc_, lists_, result_, watch_);
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
                             outcome_.found);
  } catch (const Error&) {
    if (current >= 1 && current <= static_cast<int>(lists_.MinLabels.size())) {
      outcome_.found.error("No chemistry for " +
                           lists_.MinLabels[static_cast<size_t>(current) - 1]);
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
  perturb(result_.F1Ini2, 2, simulation.assays, result_.F1Ini, watch_);
  perturb(result_.F1Min2, 1, simulation.minerals, result_.F1Min, watch_);
  perturb(result_.F1D2, 1, simulation.dissolution, result_.F1Disso, watch_);
}

// --- Solving ---

void Driver::solve() {
  progress("Solving...", 6);
  result_.optRes.select(0);
  result_.F1MinB.CopyAll(result_.F1Min);
  solver_.resize(1, 1, 1);
  writeMineralHeadings(result_, lists_);

  data_.emplace(result_, lists_, F1ELoc_, watch_);
  messages_.assign(static_cast<size_t>(data_->samples()), "");
  plan_ =
      planRounds(*request_.F1CalcOpt, F1ELoc_, *data_, lists_, result_.F1MC, scratch_.F1X, watch_);
  result_.equationColumns.clear();
  const std::vector<bool> used = plan_.usedAssays(*data_);
  for (size_t k = 0; k < used.size(); ++k) {
    if (used[k]) result_.equationColumns.push_back(static_cast<int>(k) + 2);
  }
  requireNumbers();
  compileExpressions();
  try {
    plan_.perSample ? solvePerSample() : solveBatch();
  } catch (const AbortRequested&) {
    outcome_.ended = Ended::Aborted;
  }
  showLastPress();
  writeResults();
  if (outcome_.done()) return;
  const std::vector<std::string>& ids = lists_.SampleIDs;
  const std::string last = finished_ > 0 ? ids[static_cast<size_t>(finished_) - 1] : std::string();
  outcome_.reason = abortReason(last, finished_, static_cast<int>(ids.size()));
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

// Samples go through all rounds in blocks, so that an abort leaves whole samples.
void Driver::solveBatch() {
  presses_.resize(plan_.rounds.size());
  for (size_t r = 0; r < plan_.rounds.size(); ++r) {
    const PlannedRound& round = plan_.rounds[r];
    if (round.isFormula) continue;
    if (round.model == EstimationModel::WeighedLeastSquare && data_->samples() > 1) {
      outcome_.found.note("Round " + std::to_string(round.number) + ": " +
                          modelCaptions()[static_cast<size_t>(round.model)] +
                          " weighs by the assays of the first sample when all samples are solved "
                          "together");
    }
    startPress(round, presses_[r]);
    show(round, presses_[r]);
    lastSolved_ = &round;
  }
  for (int first = 0; first < data_->samples(); first += samplesPerBlock) {
    const int last = std::min(first + samplesPerBlock, data_->samples());
    solveBlock(first, last);
    finished_ = last;
  }
}

void Driver::solveBlock(int firstSample, int lastSample) {
  const std::string total = std::to_string(plan_.rounds.size());
  if (firstSample > 0) {
    progress("Solving sample " + std::to_string(firstSample + 1) + " / " +
                 std::to_string(data_->samples()) + " ...",
             7);
  }
  for (size_t r = 0; r < plan_.rounds.size(); ++r) {
    const PlannedRound& round = plan_.rounds[r];
    if (firstSample == 0) {
      progress("Solving round " + std::to_string(round.number) + " / " + total + " ...", 7);
    }
    if (round.isFormula) {
      defineByFormula(round, firstSample, lastSample);
    } else {
      for (int s = firstSample; s < lastSample; ++s) solveCase(round, presses_[r], s);
    }
    subtractRound(round, firstSample, lastSample);
  }
}

void Driver::solvePerSample() {
  const std::string total = std::to_string(data_->samples());
  ownComposition_.assign(static_cast<size_t>(data_->minerals()), false);
  if (request_.minerals == nullptr) throw Error("The mineral database is not open");
  SampleChemistry own(*request_.minerals);
  MineralChemistryWriter used(result_, lists_, F1ELoc_);
  Press press;
  for (int s = 0; s < data_->samples(); ++s) {
    if (s % samplesPerBlock == 0) {
      progress("Solving sample " + std::to_string(s + 1) + " / " + total + " ...", 7);
    }
    poll();
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
        startPress(round, press);
        show(round, press);
        lastSolved_ = &round;
        solveCase(round, press, s);
      }
      subtractRound(round, s, s + 1);
    }
    used.write(lists_.SampleIDs[static_cast<size_t>(s)]);
    finished_ = s + 1;
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
    if (!found) {
      outcome_.found.note("Mineral " + mineral.identifier +
                              " has no composition of its own: the general one is taken",
                          {.record = lists_.SampleIDs[static_cast<size_t>(sample)]});
      continue;
    }
    ownComposition_[place] = true;
    data_->readComposition(result_.F1Min, round.number - 1);
  }
}

void Driver::startPress(const PlannedRound& round, Press& press) {
  const auto m = round.equations.size();
  const auto n = round.minerals.size();
  fillCoefficients(round, *data_, press.a);
  press.models.start(round.model, static_cast<int>(m), static_cast<int>(n), press.a.data());
  press.b.assign(m, 0.0);
  press.x.assign(n, 0.0);
}

void Driver::show(const PlannedRound& round, const Press& press) {
  shown_ = {
      static_cast<int>(press.b.size()), static_cast<int>(press.x.size()), press.a, {}, {}, {}};
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
        outcome_.found.error("Line " + e.item + " gives " + expression.errorText() + ": 0 is taken",
                             {.record = lists_.SampleIDs[s]});
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

void Driver::solveCase(const PlannedRound& round, Press& press, int sample) {
  constexpr int casesPerPoll = 16;
  if (sample % casesPerPoll == 0) poll();
  const auto s = static_cast<size_t>(sample);
  for (size_t i = 0; i < press.b.size(); ++i) press.b[i] = rightHandSide(round, i, sample);
  const bool isShown = &round == lastSolved_ && shown_.b.size() < shownCases;
  if (isShown) shown_.r.emplace_back(press.b.size());
  const std::string_view message = press.models.solve(press.b.data(), press.x.data(),
                                                      isShown ? shown_.r.back().data() : nullptr);
  if (isShown) {
    shown_.b.push_back(press.b);
    shown_.x.push_back(press.x);
  }
  if (!message.empty()) {
    messages_[s] += message;
    outcome_.found.warn("Round " + std::to_string(round.number) + ":" + std::string(message),
                        {.record = lists_.SampleIDs[s]});
  }
  for (size_t j = 0; j < round.minerals.size(); ++j) {
    const int number = round.minerals[j].resultNumber;
    if (number >= 0) data_->amounts[static_cast<size_t>(number)][s] = press.x[j];
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
      poll();
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
          outcome_.found.error("Equation " + mineral.formula + " of " + mineral.identifier +
                                   " gives " + formula->errorText() + ": 0 is taken",
                               {.record = lists_.SampleIDs[static_cast<size_t>(s)]});
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

// An abort that comes only now drops the samples not yet written.
void Driver::writeResults() {
  session_.progress.ShowProgress("Fixing ...", 9);
  ResultWriter writer(result_, *data_, lists_, F1ELoc_,
                      {request_.digits, request_.setUpName, messages_});
  int written = 0;
  try {
    while (written < finished_) {
      if (outcome_.done()) pollNow();
      const int last = std::min(written + samplesPerBlock, finished_);
      writer.write(written, last);
      written = last;
    }
  } catch (const AbortRequested&) {
    outcome_.ended = Ended::Aborted;
    finished_ = written;
    keepChemistryOf(result_, lists_, finished_);
  }
  writer.finish();
}

}  // namespace

double GaussianDeviate(double mean, double sd) {
  return RandomGauss(mean, sd);
}

Outcome RetAndCalc(const ModalRequest& request, ModalMode mode, ModalLists& lists,
                   frmResult& result, frmSolve& solver, ModalScratch& scratch, Session& session,
                   ErrorSimulation* simulation) {
  for (Worksheet* sheet :
       {&result.F1N, &result.F1MinChemPerSample, &result.F1R, &result.F1MC, &result.F1BulkC}) {
    clearSheet(*sheet);
  }
  result.equationColumns.clear();
  Outcome outcome;
  {
    Driver driver(request, lists, result, solver, scratch, session);
    if (mode != ModalMode::Simulate) {
      session.progress.bar.setMaximum(progressEnd);
      session.progress.ShowProgress("Counting rounds...", 1);
    }
    outcome = driver.run(mode, simulation);
  }
  if (outcome.done()) session.progress.txtInfo.setCaption("Calculation ready!");
  if (outcome.aborted()) session.progress.txtInfo.setCaption("Aborted " + outcome.reason);
  return outcome;
}

}  // namespace lodex
