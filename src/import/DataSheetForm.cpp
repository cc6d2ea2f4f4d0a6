#include "import/DataSheetForm.h"

#include <algorithm>
#include <optional>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "form/WorksheetDialogs.h"
#include "import/SheetPaint.h"
#include "import/StructureEdit.h"
#include "import/frmSplitDialog.h"

namespace lodex {
namespace {

// A number outside of every sheet counts as absent.
int numberWithin(const TextBox& box, int last) {
  const int number = box.number();
  return number > 0 && number <= last ? number : 0;
}

// A file that says where columns go although it was never identified, such as a saved result, means
// what it says. Identification may overwrite what it wrote itself.
Descriptions descriptionsOf(Worksheet& cells) {
  SheetStructure found;
  findSystemRows({cells, found});
  const bool described = found.row(sysrow::Table) > 0 && found.row(sysrow::Field) > 0 &&
                         found.row(sysrow::Type) > 0 && found.row(sysrow::Identified) == 0;
  return described ? Descriptions::Keep : Descriptions::Rewrite;
}

// The same findings in places that name the sheet.
Findings onSheet(const Findings& found, const std::string& sheet) {
  Findings named;
  for (const Finding& finding : found.all()) {
    Place place = finding.places.front();
    place.sheet = sheet;
    named.add(finding.severity, finding.text, place, finding.count);
  }
  return named;
}

constexpr int pickFirstDataRow = 20;
constexpr int pickIdColumn = 21;
constexpr int pickMineralColumn = 22;
constexpr int thesaurusTab = 1;

}  // namespace

DataSheetForm::DataSheetForm(ImportContext& context, std::string_view name,
                             std::string_view caption)
    : Form(name, caption), context_(context) {
  for (int i = 0; i < systemRowCount; ++i) {
    const auto& texts = systemRowTexts[static_cast<size_t>(i)];
    const std::string number = std::to_string(i);
    txtH_.emplace_back(*this, "txtH" + number, texts.caption);
    txtH_.back().setText("0");
    addNumberButtons(i + 1, "H" + number, texts.label);
    if (texts.copied.empty()) continue;
    mnuCopyRow_.emplace_back(*this, "mnuCopyRow" + number, texts.copied);
  }
  for (TextBox* box : {&txtFDR, &txtID, &txtMinCol}) box->setText("0");
  addNumberButtons(pickFirstDataRow, "FDR", firstDataRowLabel);
  addNumberButtons(pickIdColumn, "ID", idColumnLabel);
  addNumberButtons(pickMineralColumn, "MinCol", mineralColumnLabel);
  shpGreen.setVisible(false);
  mnuPanel.setChecked(true);
  // No system row holds minerals, so this entry of the menu has nothing to copy.
  mnuCopyRowMineral.setEnabled(false);
  cmdSplit.setEnabled(false);
  cmdTranspose.setVisible(false);
  connectPanel();
  connectControls();
  connectHistory();
}

// An undo brings back the numbers of the structure and the cross-reference together with the cells.
void DataSheetForm::connectHistory() {
  const auto save = [this] {
    std::string numbers;
    const SheetStructure now = structure();
    for (const int row : now.rows) numbers += std::to_string(row) + ' ';
    for (const int number : {now.firstDataRow, now.idColumn, now.mineralColumn}) {
      numbers += std::to_string(number) + ' ';
    }
    return numbers + '\n' + F1Ref.WriteToBlob();
  };
  const auto restore = [this](const std::string& state) {
    const size_t end = state.find('\n');
    const std::vector<std::string> numbers = split(state.substr(0, end), " ");
    SheetStructure before;
    const auto number = [&](int i) {
      return parseInteger(numbers.at(static_cast<size_t>(i))).value_or(0);
    };
    for (int i = 0; i < systemRowCount; ++i) before.row(i) = number(i);
    before.firstDataRow = number(systemRowCount);
    before.idColumn = number(systemRowCount + 1);
    before.mineralColumn = number(systemRowCount + 2);
    setStructure(before);
    F1Ref.ReadFromBlob(state.substr(end + 1));
  };
  gridF1D.setSideState({save, restore});
  gridF1D.setStructureCommand([this](StructureCommand command) {
    switch (command) {
      case StructureCommand::InsertRows:
        return InsertRow();
      case StructureCommand::DeleteRows:
        return DeleteRow();
      case StructureCommand::InsertColumns:
        return InsertCol();
      case StructureCommand::DeleteColumns:
        return DeleteCol();
    }
  });
}

void DataSheetForm::addNumberButtons(int pickMode, const std::string& number,
                                     std::string_view label) {
  NumberButtons& buttons = numberButtons_.try_emplace(pickMode, *this, number, label).first->second;
  buttons.cmdPick.setCommand(
      [this, pickMode] { setPickMode(pickMode_ == pickMode ? 0 : pickMode); });
  session().setCommand(buttons.cmdUp, [this, pickMode] { stepNumber(pickMode, 1); });
  session().setCommand(buttons.cmdDown, [this, pickMode] { stepNumber(pickMode, -1); });
}

void DataSheetForm::connectPanel() {
  keep(txtH(sysrow::Element).onChange([this] {
    lblStatus.setCaption(statusGreen() ? "Identified" : "Not Identied");
    shpGreen.setVisible(statusGreen());
    shpRed.setVisible(!statusGreen());
  }));
  keep(picLe.onChange([this] { mnuPanel.setChecked(picLe.visible()); }));
  mnuPanel.setCommand([this] { picLe.setVisible(!picLe.visible()); });
  session().setCommand(gridF1D, [this](int row, int column) { clickGrid(row, column); });
  keep(gridF1D.onEdit([this] { Changed = true; }));
  cmdThesaurus.setCommand([this] { context_.thesaurus.show(); });
}

void DataSheetForm::connectControls() {
  keep(txtH(sysrow::Header).onChange([this] {
    cmdSplit.setEnabled(SystemRows(sysrow::Header) > 0);
  }));
  keep(txtID.onChange([this] {
    const int old = lastIdColumn_;
    lastIdColumn_ = IDColumn();
    if (!settingStructure_) CheckIDCOL(lastIdColumn_, old);
  }));
  keep(
      optOrientation.onChange([this] { cmdTranspose.setVisible(optOrientation.selected() == 1); }));
  keep(chkSysRows.onChange([this] {
    SheetStructure numbers = structure();
    hideSystemRows(described(numbers), chkSysRows.checked());
    gridF1D.refresh();
  }));

  const auto runAll = [this] {
    AjaTunnista({});
    bIdentified = true;
  };
  session().setCommand(cmdIdentify, runAll);
  session().setCommand(mnuIdentify, runAll);
  session().setCommand(cmdSplit, [this] { SplittaaOtsikko(true); });
  session().setCommand(cmdTranspose, [this] { Transpose(); });
  session().setCommand(mnuOpenData, [this] { openData(); });
  session().setCommand(mnuSaveFile, [this] { saveData(); });
  session().setCommand(mnuCopy, [this] { F1D.EditCopy(session().clipboard()); });
  session().setCommand(mnuPaste, [this] {
    gridF1D.edit("Paste", [this] {
      const WideLimits wide(F1D);
      F1D.EditPaste(session().clipboard());
    });
  });
  mnuSelectAll.setCommand([this] {
    if (F1D.LastRow() > 0) F1D.SetSelection(1, 1, F1D.LastRow(), F1D.LastCol());
    gridF1D.refresh();
  });
  session().setCommand(mnuCopyAll, [this] { CopyAllCells(); });
  session().setCommand(mnuNew, [this] { NewSheet(); });
  session().setCommand(mnuParse, [this] { Parse(); });
  session().setCommand(mnuInsertRow, [this] { InsertRow(); });
  session().setCommand(mnuDeleteRow, [this] { DeleteRow(); });
  session().setCommand(mnuInsertCol, [this] { InsertCol(); });
  session().setCommand(mnuDeleteCol, [this] { DeleteCol(); });
  session().setCommand(mnuFreeze, [this] { Freeze(true); });
  session().setCommand(mnuUnfreeze, [this] { Freeze(false); });
  for (int i = 0; i < static_cast<int>(mnuCopyRow_.size()); ++i) {
    session().setCommand(mnuCopyRow(i), [this, i] {
      gridF1D.edit("Copy row content", [this, i] {
        SheetStructure numbers = structure();
        copySystemRow(described(numbers), i, F1D.Row());
      });
    });
  }
}

// --- The numbers of the structure ---

SheetStructure DataSheetForm::structure() const {
  SheetStructure numbers;
  for (int i = 0; i < systemRowCount; ++i) numbers.row(i) = numberWithin(txtH(i), maxRows);
  numbers.firstDataRow = numberWithin(txtFDR, maxRows);
  numbers.idColumn = numberWithin(txtID, maxColumns);
  numbers.mineralColumn = numberWithin(txtMinCol, maxColumns);
  return numbers;
}

void DataSheetForm::setStructure(const SheetStructure& numbers) {
  settingStructure_ = true;
  for (int i = 0; i < systemRowCount; ++i) txtH(i).setNumber(numbers.row(i));
  txtFDR.setNumber(numbers.firstDataRow);
  txtID.setNumber(numbers.idColumn);
  txtMinCol.setNumber(numbers.mineralColumn);
  settingStructure_ = false;
}

TextBox* DataSheetForm::pickedBox(int pickMode) {
  if (pickMode >= 1 && pickMode <= systemRowCount) return &txtH(pickMode - 1);
  if (pickMode == pickFirstDataRow) return &txtFDR;
  if (pickMode == pickIdColumn) return &txtID;
  if (pickMode == pickMineralColumn) return &txtMinCol;
  return nullptr;
}

void DataSheetForm::setPickMode(int pickMode) {
  pickMode_ = pickMode;
  for (auto& [mode, buttons] : numberButtons_) buttons.cmdPick.setChecked(mode == pickMode);
  gridF1D.setPicking(pickMode != 0);
}

void DataSheetForm::clickGrid(int row, int column) {
  TextBox* box = pickedBox(pickMode_);
  const bool picksColumn = pickMode_ == pickIdColumn || pickMode_ == pickMineralColumn;
  setPickMode(0);
  if (box == nullptr) {
    if (tabLe.selected() == thesaurusTab && column > 0) addRule(column);
    return;
  }
  box->setNumber(std::max(0, picksColumn ? column : row));
  const int activeRow = std::clamp(row, 1, F1D.MaxRow());
  const int activeColumn = std::clamp(column, 1, F1D.MaxCol());
  F1D.SetSelection(activeRow, activeColumn, activeRow, activeColumn);
  gridF1D.refresh();
}

void DataSheetForm::addRule(int column) {
  SheetStructure numbers = structure();
  const std::string header = described(numbers).text(sysrow::Header, column);
  context_.thesaurus.AddRule(header);
  if (!header.empty()) context_.thesaurus.show();
}

void DataSheetForm::stepNumber(int pickMode, int by) {
  TextBox* box = pickedBox(pickMode);
  if (box == nullptr) return;
  box->setNumber(std::max(0, box->number() + by));
  Varjaa(false);
}

void DataSheetForm::setSheetNumber(int number) {
  if (number == sheetNumber_) return;
  sheetNumber_ = number;
  renumberReferences(F1Ref, number);
}

ItemSheet DataSheetForm::itemSheet() const {
  return {sheetNumber_, &F1D, SystemRows(sysrow::Element)};
}

// --- Identification ---

IdentifyRules DataSheetForm::rules() const {
  IdentifyRules rules;
  rules.unidentifiedTable =
      context_.unidentifiedTable.empty() ? "USERX" : context_.unidentifiedTable;
  if (context_.methodFromFileName) {
    rules.fileMethod = trimBlanks(split(caption(), "/").back());
  }
  return rules;
}

void DataSheetForm::logLines(const LogLines& lines) {
  if (!lines.empty()) session().log.LisaaLog(join(lines, "\r\n"));
  session().notice(onSheet(lines.found, caption()));
}

void DataSheetForm::runAutoIdentify(bool useThesaurus, const DescribedSheet& sheet, LogLines& log) {
  std::optional<ThesaurusIndex> thesaurus;
  if (useThesaurus) thesaurus.emplace(context_.thesaurus.F1Lib);
  if (sheet.structure.highestRow() == 0) descriptions_ = descriptionsOf(sheet.cells);
  autoIdentify(sheet, thesaurus ? &*thesaurus : nullptr, rules().fileMethod, log, descriptions_);
}

void DataSheetForm::AutoIdentify(bool useThesaurus) {
  LogLines log;
  gridF1D.edit("Identify", [&] {
    const WideLimits wide(F1D);
    SheetStructure numbers = structure();
    runAutoIdentify(useThesaurus, described(numbers), log);
    setStructure(numbers);
  });
  logLines(log);
}

bool DataSheetForm::mayReadFormulas(LogLines& log) {
  if (MineralAsked || MineralRead || !asksForFormulas() || !context_.HaeMinTieto) return false;
  MineralAsked = true;
  const std::string& name = session().record.MineralDbPath;
  const Answer answer = session().dialogs().messageBox(
      "Reading mineral formula information from the system database (" + name + ")?",
      MessageButtons::YesNoCancel, MessageIcon::Question, "");
  if (answer != Answer::Yes) return false;
  log.push_back("Reading mineral formula data from the system database " + name + ".");
  MineralRead = true;
  return true;
}

void DataSheetForm::runColumns(bool onlyNonX, const DescribedSheet& sheet, LogLines& log) {
  IdentifyRules rules = this->rules();
  rules.descriptions = descriptions_;
  ColumnIdentification columns(sheet, F1Ref, context_.tables.F1Data, context_.converter, rules,
                               log);
  columns.identifyElements(sheetNumber_, onlyNonX);
  columns.identifyFormulaItems(onlyNonX);
  if (sheet.structure.mineralColumn == 0 || !mayReadFormulas(log)) return;
  columns.addMineralFormulas(context_.HaeMinTieto);
  columns.identifyFormulaItems(onlyNonX);
}

void DataSheetForm::TunnistaSarakkeet(bool onlyNonX) {
  LogLines log;
  gridF1D.edit("Identify", [&] {
    const WideLimits wide(F1D);
    SheetStructure numbers = structure();
    runColumns(onlyNonX, described(numbers), log);
    setStructure(numbers);
  });
  logLines(log);
}

void DataSheetForm::runSteps(const IdentifyRequest& request, const DescribedSheet& sheet,
                             LogLines& log) {
  const SheetStructure& numbers = sheet.structure;
  if (sheet.has(sysrow::Identified) && !request.onlyNonX) {
    for (int column = 2; column <= F1D.LastCol(); ++column) {
      sheet.setText(sysrow::Identified, column, "");
    }
  }
  if (request.automatic) runAutoIdentify(request.useThesaurus, sheet, log);
  if (request.columns) runColumns(request.onlyNonX, sheet, log);
  if (request.columns && descriptions_ == Descriptions::Rewrite) {
    reportUnknownHeadings(sheet, log);
  }
  if (request.unidentifiedToUser) {
    IdentifyRules rules = this->rules();
    const bool keep = request.onlyNonX || descriptions_ == Descriptions::Keep;
    rules.descriptions = keep ? Descriptions::Keep : Descriptions::Rewrite;
    placeUnidentified(sheet, rules, log);
  }
  if (numbers.idColumn > 0) {
    nameIdField(sheet);
    lodex::CheckIDCOL(sheet, numbers.idColumn, 0, caption(), log);
  }
  if (numbers.mineralColumn > 0) sheet.setText(sysrow::Identified, numbers.mineralColumn, "MIN");
  cleanNames(sheet, log);
}

// Sheets of a workbook share their structure: each gets the same rows, the current sheet last,
// whose columns the cross-reference lists.
void DataSheetForm::runAllSheets(const IdentifyRequest& request, SheetStructure& numbers,
                                 LogLines& log) {
  const int current = F1D.Sheet();
  const SheetStructure before = numbers;
  for (int number = 1; before.highestRow() > 0 && number <= F1D.NumSheets(); ++number) {
    if (number == current || F1D.LastRow(number) == 0) continue;
    SheetStructure same = before;
    F1D.Sheet(number);
    F1D.MaxRow(maxRows);
    F1D.MaxCol(maxColumns);
    runSteps(request, described(same), log);
  }
  F1D.Sheet(current);
  F1D.MaxRow(maxRows);
  F1D.MaxCol(maxColumns);
  runSteps(request, described(numbers), log);
}

void DataSheetForm::AjaTunnista(const IdentifyRequest& request) {
  MineralAsked = false;
  if (!caption().empty()) F1Ref.SheetName(1, caption());
  const bool narrowed = F1D.MaxRow() < maxRows || F1D.MaxCol() < maxColumns;
  const int current = F1D.Sheet();
  LogLines log;
  SheetStructure numbers = structure();
  const auto finish = [&] {
    F1D.Sheet(current);
    setStructure(numbers);
    logLines(log);
    Varjaa(narrowed);
  };
  gridF1D.edit("Identify", [&] {
    try {
      runAllSheets(request, numbers, log);
    } catch (const Error&) {
      finish();
      throw;
    }
    finish();
  });
  picLe.setVisible(true);
}

void DataSheetForm::CheckIDCOL(int newColumn, int oldColumn) {
  LogLines log;
  gridF1D.edit("ID column", [&] {
    SheetStructure numbers = structure();
    lodex::CheckIDCOL(described(numbers), newColumn, oldColumn, caption(), log);
  });
  logLines(log);
}

void DataSheetForm::TutkiOtsikot() {
  LogLines log;
  const ThesaurusIndex thesaurus(context_.thesaurus.F1Lib);
  edit("Examine headings", [&](const DescribedSheet& sheet) {
    examineHeadings(sheet, thesaurus, context_.converter, log);
  });
  logLines(log);
}

void DataSheetForm::SplittaaOtsikko(bool showDialog) {
  if (showDialog) {
    SheetStructure numbers = structure();
    frmSplitDialog dialog(described(numbers).text(sysrow::Header, F1D.Col()), titleParts_);
    session().dialogs().showModal(dialog);
    titleParts_ = dialog.parts();
  }
  if (titleParts_.strSep2.empty()) return;
  edit("Split titles", [&](const DescribedSheet& sheet) { splitTitles(sheet, titleParts_); });
}

// --- Painting and editing ---

void DataSheetForm::Varjaa(bool resetLimits) {
  SheetStructure numbers = structure();
  paintStructure(F1D, numbers, optOrientation.selected() == 0, resetLimits);
  setStructure(numbers);
  gridF1D.refresh();
}

void DataSheetForm::edit(std::string_view name,
                         const std::function<void(const DescribedSheet&)>& change) {
  gridF1D.edit(name, [&] {
    {
      const WideLimits wide(F1D);
      SheetStructure numbers = structure();
      change(described(numbers));
      setStructure(numbers);
    }
    Varjaa(false);
  });
}

DataSheetForm::Span DataSheetForm::selectedRows() const {
  const int first = F1D.SelStartRow();
  return first < 1 ? Span{F1D.Row(), F1D.Row()} : Span{first, F1D.SelEndRow()};
}

DataSheetForm::Span DataSheetForm::selectedColumns() const {
  const int first = F1D.SelStartCol();
  return first < 1 ? Span{F1D.Col(), F1D.Col()} : Span{first, F1D.SelEndCol()};
}

void DataSheetForm::InsertRow() {
  const Span rows = selectedRows();
  edit("Insert rows",
       [rows](const DescribedSheet& sheet) { insertRows(sheet, rows.first, rows.count()); });
}

void DataSheetForm::DeleteRow() {
  const Span rows = selectedRows();
  edit("Delete rows",
       [rows](const DescribedSheet& sheet) { deleteRows(sheet, rows.first, rows.last); });
}

void DataSheetForm::InsertCol() {
  const Span columns = selectedColumns();
  edit("Insert columns", [&](const DescribedSheet& sheet) {
    insertColumns(sheet, F1Ref, columns.first, columns.count());
    redrawMarks(sheet, F1Ref, context_.tables.F1Data);
  });
}

void DataSheetForm::DeleteCol() {
  const Span columns = selectedColumns();
  edit("Delete columns", [&](const DescribedSheet& sheet) {
    deleteColumns(sheet, F1Ref, columns.first, columns.last);
    redrawMarks(sheet, F1Ref, context_.tables.F1Data);
  });
}

void DataSheetForm::Transpose() {
  gridF1D.edit("Transpose", [this] {
    transpose(F1D);
    SheetStructure numbers = structure();
    for (int i = sysrow::Element; i < systemRowCount; ++i) numbers.row(i) = 0;
    numbers.idColumn = 0;
    setStructure(numbers);
  });
}

void DataSheetForm::NewSheet() {
  constexpr int clearedHeadings = 100;
  gridF1D.edit("New", [this] {
    for (int i = 1; i <= clearedHeadings; ++i) {
      F1D.ColText(i, "");
      F1D.RowText(i, "");
    }
    if (F1D.LastRow() > 0) F1D.ClearRange(1, 1, F1D.LastRow(), F1D.LastCol());
    setStructure({});
  });
}

void DataSheetForm::CopyAllCells() {
  const int columns = std::max(1, F1D.LastCol());
  Worksheet headed;
  headed.CopyAll(F1D);
  const WideLimits wide(headed);
  headed.InsertRange(1, 1, 1, 1, Shift::Rows);
  for (int column = 1; column <= columns; ++column) {
    const std::string heading = F1D.ColText(column);
    headed.TextRC(1, column, heading.empty() ? columnLetters(column) : heading);
  }
  headed.SetSelection(1, 1, std::max(1, headed.LastRow()), columns);
  headed.EditCopy(session().clipboard());
}

void DataSheetForm::Freeze(bool freeze) {
  F1D.FixedRows(freeze ? structure().highestRow() : 0);
  gridF1D.refresh();
}

void DataSheetForm::Parse() {
  const std::string sample = F1D.TextRC(1, 1);
  frmSplitDialog dialog(sample, proposedSplit({sample}));
  session().dialogs().showModal(dialog);
  if (dialog.split().separator.empty()) return;
  gridF1D.edit("Parse", [&] {
    const WideLimits wide(F1D);
    for (int row = 1; row <= F1D.LastRow(); ++row) {
      int column = 0;
      for (const std::string& piece : splitLine(F1D.TextRC(row, 1), dialog.split())) {
        if (++column > maxColumns) break;
        F1D.TextRC(row, column, piece);
      }
    }
  });
}

void DataSheetForm::openData() {
  std::string path;
  if (!OpenFileDlg(session().dialogs(), "Open data File", path)) return;
  Worksheet read;  // a file that cannot be read leaves the sheet as it is
  read.Read(path);
  if (Changed &&
      session().dialogs().messageBox("The changes in " + caption() + " are lost. Go on?",
                                     MessageButtons::YesNo, MessageIcon::Question) != Answer::Yes) {
    return;
  }
  gridF1D.replace([&] {
    read.permissions() = F1D.permissions();
    F1D = std::move(read);
    F1Ref = Worksheet();
    setStructure({});
    forgetSource();
  });
  session().notice(F1D.ReadFindings());
  bIdentified = false;
  Changed = false;
}

void DataSheetForm::saveData() {
  std::string path;
  FileType type = FileType::Excel;
  if (!SaveFileDlg(session().dialogs(), "Save File", path, type)) return;
  F1D.Write(path, type);
  Changed = false;
}

}  // namespace lodex
