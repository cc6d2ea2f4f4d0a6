#include "modal/frmMinCalc.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/MapDatabase.h"
#include "db/OpenDatabase.h"
#include "modal/AmountFormula.h"

namespace lodex {
namespace {

constexpr const char* setUpFilter = "Mineral quantification files (*.mmq)|*.mmq|";
constexpr const char* xFileFilter =
    "Text file (*.txt)|*.txt|Excel file (*.xls)|*.xls|All files (*.*)|*.*";
constexpr int defaultDigits = 3;

std::string nameOfSetUp(std::string_view path) {
  const std::string name = fileNameOf(path);
  return name.substr(0, name.rfind('.'));
}

}  // namespace

frmMinCalc::frmMinCalc(Session& session, taulukot& tables, ModalLists& lists, frmResult& result,
                       frmSolve& solver)
    : Form("frmMinCalc", "Lodex Geo - Modal Calculations"),
      session_(session),
      tables_(tables),
      lists_(lists),
      result_(result),
      solver_(solver) {
  lstMinR.setToolTip("Check to use sample-specific compostion for mineral");
  chkAllTot.setToolTip("All methods are total assays");
  cmdOK.setEnabled(false);
  session_.setCommand(Command2, [this] { acceptMethod(); });
  session_.setCommand(cmdOpenXFile, [this] { openXFile(); });
  session_.setCommand(cmdXOK, [this] { acceptXLine(); });
  session_.setCommand(cmdCalc, [this] { calculate(); });
  session_.setCommand(
      cmdRun, [this] { RetAndCalc(retrieveData ? ModalMode::Retrieve : ModalMode::SolveAgain); });
  session_.setCommand(cmdReset, [this] { reset(); });
  session_.setCommand(cmdReport, [this] { report(); });
  session_.setCommand(mnuRequery, [this] {
    retrieveData = true;
    RetAndCalc(ModalMode::Retrieve);
  });
  session_.setCommand(mnuAddeq, [this] {
    const auto text = session_.dialogs().inputBox("Give eqation, e.g. 2.5*Py-Ccp", "Equation", "");
    if (text && !text->empty()) addEquation("###" + *text);
  });
  session_.setCommand(IsTotMinus100, [this] { addEquation("###100-TOT"); });
  keep(optX.onChange([this] { session_.run([this] { showXColumns(); }); }));
  reset();
}

// --- Elements and methods ---

void frmMinCalc::Alusta() {
  retrieveData = true;
  colours_.assign(static_cast<size_t>(tables_.F1ELoc.LastRow()), elementWithoutData);
  if (stored.database != nullptr) {
    Findings found;
    buildMethodMap(stored, tables_.F1ELoc, F1Ref, found);
    session_.notice(found);
    for (int row = 1; row <= F1Ref.LastRow(); ++row) {
      if (F1Ref.HasContent(row, 1)) colours_[static_cast<size_t>(row) - 1] = elementWithData;
    }
    return;
  }
  if (source.sheet == nullptr) return;
  for (int column = 1; column <= source.sheet->LastCol(); ++column) {
    if (column == source.idColumn) continue;
    const int row = describeColumn(source, column, tables_.F1ELoc).elementRow;
    if (row > 0) colours_[static_cast<size_t>(row) - 1] = elementWithData;
  }
}

int frmMinCalc::elementColour(int elementRow) const {
  const auto row = static_cast<size_t>(elementRow);
  return row >= 1 && row <= colours_.size() ? colours_[row - 1] : elementWithoutData;
}

void frmMinCalc::E(int elementRow) {
  if (elementColour(elementRow) == elementWithoutData) return;
  if (elementRow == selectedElement_ && lstMet.count() == 1) {
    lstMet.setCurrent(0);
    acceptMethod();
    return;
  }
  selectedElement_ = elementRow;
  lstMet.clear();
  if (stored.database != nullptr) {
    listFields(elementRow);
  } else {
    listMethods(elementRow);
  }
  if (lstMet.count() > 0) lstMet.setCurrent(0);
}

void frmMinCalc::listFields(int elementRow) {
  const DatabaseMap& map = stored.database->map;
  for (int column = 1; F1Ref.HasContent(elementRow, column); column += 2) {
    const int table = static_cast<int>(F1Ref.NumberRC(elementRow, column));
    const int field = static_cast<int>(F1Ref.NumberRC(elementRow, column + 1));
    lstMet.add(map.table(table) + " | " + map.F1Key2.TextRC(table, field));
  }
}

void frmMinCalc::listMethods(int elementRow) {
  for (int column = 1; column <= source.sheet->LastCol(); ++column) {
    if (column == source.idColumn) continue;
    const AssayColumn known = describeColumn(source, column, tables_.F1ELoc);
    if (known.elementRow != elementRow) continue;
    const bool isFirst = lstMet.count() == 0;
    if (!known.method.empty()) {
      lstMet.add(known.method);
    } else if (isFirst) {
      lstMet.add(firstMethod);
    }
  }
}

void frmMinCalc::acceptMethod() {
  if (selectedElement_ == 0 || lstMet.current() < 0) return;
  addEquation(assayItem(tables_.F1ELoc.TextRC(selectedElement_, eloc::Element), selectedElement_,
                        lstMet.item(lstMet.current())));
}

void frmMinCalc::addEquation(std::string_view item, const XLine& x) {
  lstElR.add(item);
  xLines_.push_back(x);
}

// --- The lists of a round ---

void frmMinCalc::addMineral(int index) {
  if (index < 0 || index >= lstMin.count()) return;
  lstMinR.add(lstMin.item(index));
  lstSpec.add("");
}

void frmMinCalc::removeMineral(int index) {
  if (index < 0 || index >= lstMinR.count()) return;
  lstMinR.remove(index);
  lstSpec.remove(index);
}

void frmMinCalc::removeEquation(int index) {
  if (index < 0 || index >= lstElR.count()) return;
  lstElR.remove(index);
  xLines_.erase(xLines_.begin() + index);
}

void frmMinCalc::StoreCurrentRound() {
  SetUpRound round;
  round.model = optMalli.selected();
  for (int i = 0; i < lstMinR.count(); ++i) {
    round.minerals.push_back({lstMinR.item(i), lstMinR.checked(i), lstSpec.checked(i)});
  }
  for (int i = 0; i < lstElR.count(); ++i) {
    round.equations.push_back({lstElR.item(i), xLines_[static_cast<size_t>(i)]});
  }
  storeRound(F1CalcOpt, txtRound.number(), round, txtDigits.text());
  labRounds.setCaption("Total number of rounds = " + std::to_string(roundCount(F1CalcOpt)));
}

void frmMinCalc::clearRoundLists() {
  lstMinR.clear();
  lstSpec.clear();
  lstElR.clear();
  xLines_.clear();
}

void frmMinCalc::HaeKierros() {
  clearRoundLists();
  const auto round = readRound(F1CalcOpt, txtRound.number());
  optMalli.select(0);
  if (round) optMalli.select(round->model);
  if (!round) return;
  for (const RoundMineral& mineral : round->minerals) {
    lstMinR.add(mineral.identifier, mineral.sampleSpecific);
    lstSpec.add("", mineral.special);
  }
  for (const RoundEquation& equation : round->equations) addEquation(equation.item, equation.x);
}

void frmMinCalc::UpDown1(int step) {
  StoreCurrentRound();
  txtRound.setNumber(std::max(1, txtRound.number() + step));
  HaeKierros();
}

// --- X lines ---

void frmMinCalc::showXColumns() {
  lstXCol.clear();
  if (optX.selected() == 1) {
    for (const std::string& mineral : lstMin.items()) lstXCol.add(mineral);
    return;
  }
  for (int column = 1; column <= scratch.F1X.LastCol(); ++column) {
    if (column == newX_.sampleColumn) continue;
    if (newX_.sampleColumn == 1 && scratch.F1X.LastCol() == 2) continue;
    lstXCol.add(scratch.F1X.TextRC(1, column));
  }
}

void frmMinCalc::openXFile() {
  const auto files = session_.dialogs().openFiles({"", xFileFilter, "", "", false});
  if (files.empty()) return;
  Worksheet read;  // a file that cannot be read leaves the panel as it was
  read.Read(files.front());
  scratch.F1X = std::move(read);
  newX_ = {0, files.front(), 0, 0, ""};
  for (int column = 1; column <= scratch.F1X.LastCol() && newX_.sampleColumn == 0; ++column) {
    if (scratch.F1X.TextRC(1, column) == "SampleNo") newX_.sampleColumn = column;
  }
  if (newX_.sampleColumn == 1 && scratch.F1X.LastCol() == 2) newX_.valueColumn = 2;
  showXColumns();
}

void frmMinCalc::pickXColumn(int index) {
  if (index < 0 || index >= lstXCol.count()) return;
  lstXCol.setCurrent(index);
  if (optX.selected() == 1) {
    txtEX.setText(txtEX.text() + lstXCol.item(index));
    return;
  }
  // The list leaves the sample column out.
  const bool afterSamples = newX_.sampleColumn > 0 && index + 1 >= newX_.sampleColumn;
  newX_.valueColumn = index + (afterSamples ? 2 : 1);
}

void frmMinCalc::acceptXLine() {
  XLine x = newX_;
  x.kind = optX.selected();
  x.text = txtEX.text();
  const int place = lstElR.count();
  if (x.text.empty() && place < lstMinR.count()) {
    x.text = symbolOrText(lstMinR.item(place)) + "=1";
  }
  if (x.kind == 1) {
    x.file.clear();
    x.sampleColumn = x.valueColumn = 0;
    addEquation("X:" + x.text, x);
  } else if (x.valueColumn > 0) {
    addEquation("X-" + scratch.F1X.TextRC(1, x.valueColumn), x);
  }
}

// --- Files and commands ---

void frmMinCalc::takeOpenSave() {
  ValmistaF1CalcOpt(F1OpenSave, F1CalcOpt);
  for (const std::string& remark : loadingRemarks(F1OpenSave, F1CalcOpt)) {
    session_.log.LisaaLog(remark);
  }
  collectMinerals(F1CalcOpt, lists_);
  const std::vector<std::string> idle = mineralsInNoRound(F1OpenSave, lists_);
  if (F1CalcOpt.LastRow() == 0) {
    for (const std::string& label : idle) addToLists(label, lists_);
  } else {
    for (const std::string& label : idle) {
      session_.log.LisaaLog("Mineral " + label + " is in no round");
    }
  }
  lstMin.clear();
  for (const std::string& label : lists_.MinLabels) lstMin.add(label);
  txtRound.setText("1");
  HaeKierros();
  const std::string digits = F1CalcOpt.TextRC(1, setup::Text);
  if (isNumericText(digits)) txtDigits.setText(digits);
  labRounds.setCaption("Total number of rounds = " + std::to_string(roundCount(F1CalcOpt)));
  retrieveData = true;
  cmdOK.setEnabled(true);
}

void frmMinCalc::OpenFile(std::string_view name, bool silent, bool& ok) {
  ok = false;
  std::string path(name);
  if (path.empty() && !silent) {
    const auto files = session_.dialogs().openFiles(
        {"Open Mineral Quantification Set-up -file", setUpFilter, "", "", false});
    if (files.empty()) return;
    path = files.front();
  }
  try {
    if (!path.empty()) F1OpenSave.Read(path);
    takeOpenSave();
    if (!path.empty()) setUpName = nameOfSetUp(path);
    ok = F1CalcOpt.LastRow() > 0;
  } catch (const Error&) {
    // A bad file leaves the form with what was read up to there, and `ok` false.
  }
}

void frmMinCalc::reset() {
  clearRoundLists();
  lstMet.clear();
  selectedElement_ = 0;
  F1CalcOpt = Worksheet();
  txtRound.setText("1");
  labRounds.setCaption("Total number of rounds = 0");
  Alusta();
}

void frmMinCalc::report() {
  const std::string text = setUpReport(F1CalcOpt, labRounds.caption());
  const Answer answer =
      session_.dialogs().messageBox(text + "\r\n\r\nDo you want to copy this to clipboard?",
                                    MessageButtons::YesNo, MessageIcon::Question);
  if (answer == Answer::Yes) session_.clipboard().setText(text);
}

void frmMinCalc::calculate() {
  StoreCurrentRound();
  RetAndCalc(retrieveData ? ModalMode::Retrieve : ModalMode::SolveAgain);
}

int frmMinCalc::decimals() {
  const auto given = parseInteger(txtDigits.text());
  if (!given && !txtDigits.text().empty()) {
    Findings found;
    found.warn("\"" + txtDigits.text() +
               "\" is not a number of decimals: " + std::to_string(defaultDigits) + " are taken");
    session_.notice(found);
  }
  return given.value_or(defaultDigits);
}

bool frmMinCalc::RetAndCalc(ModalMode mode) {
  ModalRequest request;
  request.F1CalcOpt = &F1CalcOpt;
  request.assays = source;
  if (stored.database != nullptr) {
    request.stored = &stored;
    request.F1Ref = &F1Ref;
  }
  request.F1ELoc = &tables_.F1ELoc;
  request.minerals = &minerals_;
  request.allTotal = chkAllTot.checked();
  request.digits = decimals();
  request.setUpName = setUpName;
  Outcome outcome;
  try {
    if (!minerals_.IsOpen()) {
      openDatabase(session_, minerals_, session_.ExpandPath(session_.record.MineralDbPath, ""));
    }
    outcome =
        lodex::RetAndCalc(request, mode, lists_, result_, solver_, scratch, session_, &simulation);
  } catch (const Error& failure) {
    outcome = {Ended::Failed, failure.what(), {}};
  }
  session_.notice(outcome.found);
  if (outcome.failed()) {
    session_.dialogs().messageBox(outcome.reason);
    return false;
  }
  if (outcome.done()) retrieveData = false;
  result_.lstFract.clear();
  for (const std::string& label : lists_.MinLabels) result_.lstFract.add(label);
  if (mode != ModalMode::Automated) result_.show();
  return true;
}

}  // namespace lodex
