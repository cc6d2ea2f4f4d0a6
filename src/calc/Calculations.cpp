#include "calc/Calculations.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Text.h"
#include "calc/frmSelectElements.h"
#include "calc/frmSources.h"

namespace lodex {
namespace {

// Marks a job that pumps events as running, so that no second one starts inside of it.
class RunningMark {
 public:
  explicit RunningMark(bool& running) : running_(running) { running_ = true; }
  ~RunningMark() { running_ = false; }
  RunningMark(const RunningMark&) = delete;
  RunningMark& operator=(const RunningMark&) = delete;

 private:
  bool& running_;
};

}  // namespace

SourceSheets openSourceSheets(DataSheets& sheets) {
  SourceSheets sources;
  for (int number = 1; number <= sheets.DataSheetCount(); ++number) {
    frmDataIN& sheet = sheets.sheet(number);
    sources.push_back({number, sheet.caption(), &sheet.F1D, sheet.structure(), false, false});
  }
  return sources;
}

Calculations::Calculations(Form& shell, ImportContext& context, DataSheets& sheets)
    : lstCalc(shell, "lstCalc"),
      cmbRoutines(shell, "cmbRoutines"),
      chkAskRefs(shell, "chkAskRefs", "Ask when ambiguous"),
      cmdGroup(shell, "cmdGroup"),
      cmdCalculate(shell, "cmdCalculate", "Calculate"),
      shell_(shell),
      context_(context),
      sheets_(sheets) {
  cmdGroup.setCaption(context.session.record.DefaultCGroup);
  context_.session.setCommand(cmdGroup, [this] { ChangeGroup(); });
}

// --- Groups ---

bool Calculations::findGroupsFolder() {
  SessionRecord& record = context_.session.record;
  if (!record.CGroupsFolder.empty()) return true;
  const std::string folder = record.GeoPath + "\\C-Groups";
  if (!FileExists(folder)) {
    context_.session.dialogs().messageBox("Folder " + folder + " not found!");
    return false;
  }
  record.CGroupsFolder = folder;
  return true;
}

void Calculations::ChangeGroup() {
  if (running_ || !findGroupsFolder()) return;
  SessionRecord& record = context_.session.record;
  const std::vector<std::string> names = groupNames(record.CGroupsFolder);
  const auto chosen = context_.session.dialogs().selectFromList("Select calculation group", names);
  if (chosen && *chosen >= 0 && *chosen < static_cast<int>(names.size())) {
    record.CurrentCGroup = names[static_cast<size_t>(*chosen)];
    cmdGroup.setCaption(record.CurrentCGroup);
  }
  AlustaCALC(false);
}

void Calculations::AlustaCALC(bool clearList, UnreadableBook unreadable) {
  if (running_ || !findGroupsFolder()) return;
  SessionRecord& record = context_.session.record;
  if (clearList) lstCalc.clear();
  const auto folder = [&] { return record.CGroupsFolder + "\\" + record.CurrentCGroup; };
  if (!FileExists(folder())) {
    context_.session.dialogs().messageBox("Folders \n" + record.CGroupsFolder + "\n" +
                                          record.CurrentCGroup + "\n not found!");
    return;
  }
  if (record.CurrentCGroup.empty()) record.CurrentCGroup = record.DefaultCGroup;
  cmdGroup.setCaption(record.CurrentCGroup);
  group.load(folder(), unreadable);
  context_.session.notice(group.found());
  fillLists();
}

void Calculations::fillLists() {
  lstCalc.clear();
  cmbRoutines.clear();
  for (const std::string& name : group.MethodListOrder()) lstCalc.add(name);
  for (int number = 1; number <= group.count(); ++number) {
    cmbRoutines.add(group.method(number).name());
  }
}

// --- Item sources ---

SourceSheets Calculations::sourceSheets() const {
  SourceSheets sources = databaseTables ? databaseTables() : openSourceSheets(sheets_);
  for (SourceSheet& sheet : sources) {
    for (const int item : sheets_.lstSrcF.selectedItems()) {
      if (sheets_.lstSrcF.item(item) == sheet.caption) sheet.selected = true;
    }
  }
  return sources;
}

// What the map depends on: it is built anew when sheets or their ELEMENT rows are other ones.
std::string Calculations::selectionOf(const SourceSheets& sheets) {
  std::string selection;
  for (const SourceSheet& sheet : sheets) {
    if (!sheet.selected) continue;
    selection += std::to_string(sheet.number) + "\t" + sheet.caption;
    for (int column = 1; column <= sheet.cells->LastCol(); ++column) {
      selection += "\t" + sheet.text(sysrow::Element, column);
    }
    selection += "\n";
  }
  return selection;
}

void Calculations::Alusta(std::string_view item) {
  const SourceSheets sheets = sourceSheets();
  if (sheets.empty()) return;
  Session& session = context_.session;
  SourceRequest request;
  request.item = item;
  if (chkAskRefs.checked()) {
    request.ask = [&](const std::string& caption, const std::vector<std::string>& offers) {
      return askElements(session.dialogs(), caption, offers);
    };
  }
  request.missing = [&](const std::string& symbol) {
    session.log.LisaaLog("No source for item " + symbol);
  };
  buildSources(sheets_.F1Ref, sheets, context_.converter, request);
  builtFor_ = selectionOf(sheets);
  session.record.SourcesBuilt = true;
}

std::vector<int> Calculations::HaeRutiiniLista(std::string_view name) const {
  const SessionRecord& record = context_.session.record;
  CalculationGroup other;
  const bool loaded = group.count() > 0 && equalsNoCase(name, record.CurrentCGroup);
  if (!loaded) {
    other.load(record.CGroupsFolder + "\\" + std::string(name), UnreadableBook::Skip);
  }
  const CalculationGroup& methods = loaded ? group : other;
  std::vector<int> routines;
  for (int number = 1; number <= methods.count(); ++number) {
    const int mapSheet = mapSheetOf(sheets_.F1Ref, methods.method(number).name());
    for (int element = 1; element <= sourceRows; ++element) {
      if (sourcesOf(sheets_.F1Ref, mapSheet, element).empty()) continue;
      routines.push_back(number);
      break;
    }
  }
  return routines;
}

void Calculations::ShowSources() {
  if (running_) return;
  if (sheets_.F1Ref.LastRow(1) == 0) Alusta(allItems);
  std::vector<std::string> items = lstCalc.items();
  items.insert(items.begin(), std::string(allItems));
  frmSources form(context_.session, context_.tables,
                  {shell_, items, sheets_.F1Ref, sourceSheets(), [this] { Alusta(allItems); },
                   [this] { sourcesEdited(); }, group, &chkAskRefs});
  context_.session.dialogs().showModal(form);
}

void Calculations::sourcesEdited() {
  builtFor_ = selectionOf(sourceSheets());
  context_.session.record.SourcesBuilt = true;
}

void Calculations::ensureSources(const SourceSheets& sheets) {
  const bool built = context_.session.record.SourcesBuilt && sheets_.F1Ref.LastRow(1) > 0;
  if (!built || builtFor_ != selectionOf(sheets)) Alusta(allItems);
}

// --- The run ---

// Rows are found by the text of their identifier: it must not change under the search.
void Calculations::freezeIdentifiers() {
  for (int number = 1; number <= sheets_.DataSheetCount(); ++number) {
    Worksheet& cells = sheets_.sheet(number).F1D;
    const SheetStructure structure = sheets_.sheet(number).structure();
    const int column = structure.idColumn;
    if (column == 0 || structure.firstDataRow == 0 || column > cells.MaxCol()) continue;
    std::vector<int> rows;
    for (int row = structure.firstDataRow; row <= cells.LastRow(); ++row) {
      if (cells.HasFormula(cells.Sheet(), row, column)) rows.push_back(row);
    }
    if (rows.empty()) continue;
    sheets_.sheet(number).gridF1D.edit("Calculate", [&] {
      for (const int row : rows) cells.TextRC(row, column, cells.TextRC(row, column));
    });
  }
}

bool Calculations::keepResults() {
  const Worksheet& results = sheets_.result.F1D;
  if (results.NumSheets() == 1 && results.SheetName(1) == "Sheet1") return false;
  const Answer answer = context_.session.dialogs().messageBox(
      "Do you want to reset earlier results?", MessageButtons::YesNoCancel, MessageIcon::Question);
  return answer != Answer::Yes;
}

std::vector<const Worksheet*> Calculations::openTables() const {
  std::vector<const Worksheet*> tables;
  for (int number = 1; number <= sheets_.DataSheetCount(); ++number) {
    tables.push_back(&sheets_.sheet(number).F1D);
  }
  return tables;
}

void Calculations::Calculate() {
  if (running_) return;
  Session& session = context_.session;
  std::vector<std::string> methods;
  for (const int item : lstCalc.selectedItems()) methods.push_back(lstCalc.item(item));
  if (methods.empty()) {
    session.dialogs().messageBox("Select calculations!");
    return;
  }
  if (sheets_.lstSrcF.selectedItems().empty()) {
    session.dialogs().messageBox("Select data sources!");
    return;
  }
  std::optional<SheetStructure> kept;
  if (keepResults()) kept = resultStructureFrom(sheets_.result.structure());
  const RunningMark mark(running_);
  session.log.clear();
  freezeIdentifiers();
  const SourceSheets sheets = sourceSheets();
  ensureSources(sheets);
  const std::vector<const Worksheet*> tables = openTables();
  CalculationRequest request{
      group, methods, sheets, sheets_.F1Ref, context_.converter, sheets_.result.F1D, kept};
  request.log = [&](std::string_view line, LogKind kind) { session.log.LisaaLog(line, kind); };
  JobScope job(session);
  request.nextSample = [&](std::string_view text, int sample, int samples) {
    session.progress.bar.setMaximum(samples);
    session.progress.ShowProgress(text, sample);
    // A sheet that was closed or opened in between ends the run as well: rows are read from it.
    const bool stops = job.aborted(LogKind::Both);
    if (!stops && tables != openTables()) job.abort(LogKind::Both);
    return !stops && tables == openTables();
  };
  CalculationOutcome outcome;
  sheets_.result.gridF1D.replace([&] { outcome = runCalculation(request); });
  showResult(outcome, kept.value_or(resultStructure()));
}

void Calculations::showResult(const CalculationOutcome& outcome, const SheetStructure& structure) {
  frmCResult& result = sheets_.result;
  // The log has them already.
  context_.session.noticeLogged(outcome.outcome.found);
  result.setStructure(structure);
  result.setCaption(calculationResult);
  result.Varjaa(false);
  result.F1D.SetActiveCell(1, 1);
  result.show();
  sheets_.TarkastaJaLisaaListaan();
  if (outcome.ErrorCount > 0) {
    context_.session.log.show();
    context_.session.log.activate();
  }
}

}  // namespace lodex
