#include "import/DataSheets.h"

#include <algorithm>
#include <map>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/DatabaseKinds.h"
#include "import/BelowDetection.h"
#include "import/DecimalCommas.h"

namespace lodex {
namespace {

constexpr std::string_view openFilter =
    "Microsoft excel (4 or 5) files (*.xls)|*.xls|Microsoft Access database (*.mdb)|*.mdb|Tab "
    "delimited text (*.txt)|*.txt|List files (*.lis)|*.lis|Print files (*.prn)|*.prn|All files "
    "(*.*)|*.*";

// What the user had selected and checked, by name, to be set again after a list was refilled.
struct ListMarks {
  explicit ListMarks(const ListBox& list) {
    for (int i = 0; i < list.count(); ++i) {
      marks[list.item(i)] = {list.selected(i), list.checked(i)};
    }
  }
  void restore(ListBox& list, bool newOnesSelected) const {
    for (int i = 0; i < list.count(); ++i) {
      const auto mark = marks.find(list.item(i));
      list.setSelected(i, mark == marks.end() ? newOnesSelected : mark->second.first);
      list.setChecked(i, mark != marks.end() && mark->second.second);
    }
  }
  std::map<std::string, std::pair<bool, bool>> marks;
};

void clearSheet(Worksheet& sheet) {
  sheet = Worksheet();
}

// Formulas that look into sheets which are about to go keep their values.
void freezeForeignFormulas(Worksheet& book) {
  std::vector<std::pair<int, int>> foreign;
  book.cells(1).forEach([&](int row, int column, const Cell& cell) {
    if (cell.kind != ValueKind::Formula) return;
    if (book.FormulaSRC(1, row, column).find('!') != std::string::npos) {
      foreign.emplace_back(row, column);
    }
  });
  for (const auto& [row, column] : foreign) {
    book.ValueSRC(1, row, column, book.ValueSRC(1, row, column));
  }
}

}  // namespace

DataSheets::DataSheets(Form& shell, ImportContext& context)
    : lstI(shell, "lstI"),
      lstSrcF(shell, "lstSrcF"),
      lstSrcD(shell, "lstSrcD"),
      chkUseThes(shell, "chkUseThes", "Use thesaurus"),
      chkOnlyNonX(shell, "chkOnlyNonX", "Only columns without X"),
      chkFILEISMET(shell, "chkFILEISMET", "File name is the method"),
      chkUnIDToUser(shell, "chkUnIDToUser", "Unidentified columns to table"),
      txtUnID(shell, "txtUnID"),
      result(context),
      context_(context) {
  chkUseThes.setChecked(true);
  keep(chkFILEISMET.onChange([this] { context_.methodFromFileName = chkFILEISMET.checked(); }));
  keep(txtUnID.onChange([this] { context_.unidentifiedTable = txtUnID.text(); }));
  txtUnID.setText("USERX");
}

frmDataIN& DataSheets::sheet(int number) {
  if (number < 1 || number > DataSheetCount()) {
    throw Error("There is no data sheet number " + std::to_string(number));
  }
  return *sheets_[static_cast<size_t>(number) - 1];
}

frmDataIN* DataSheets::find(std::string_view name) {
  for (const auto& sheet : sheets_) {
    if (sheet->caption() == name) return sheet.get();
  }
  return nullptr;
}

std::vector<ItemSheet> DataSheets::itemSheets() {
  std::vector<ItemSheet> all;
  for (const auto& sheet : sheets_) all.push_back(sheet->itemSheet());
  return all;
}

frmDataIN& DataSheets::insertSheet(int place, std::string_view caption) {
  closed_.clear();
  auto made = std::make_unique<frmDataIN>(context_, caption);
  frmDataIN& sheet = *made;
  sheet.onClosed = [this](frmDataIN& closing) { removeSheet(closing); };
  sheet.onActivated = [this](frmDataIN& active) { last_ = &active; };
  sheets_.insert(sheets_.begin() + (place - 1), std::move(made));
  renumber();
  last_ = &sheet;
  if (onNewSheet) onNewSheet(sheet);
  return sheet;
}

DataSheetForm* DataSheets::formAt(const Place& place) {
  if (place.file.empty() && place.sheet.empty()) return nullptr;
  const auto shows = [&](const frmDataIN& sheet) {
    const bool sameFile = place.file.empty() || sheet.SourceFile == place.file ||
                          fileNameOf(sheet.SourceFile) == place.file;
    const bool sameSheet =
        place.sheet.empty() || sheet.SourceSheet == place.sheet || sheet.caption() == place.sheet;
    return sameFile && sameSheet;
  };
  for (const auto& sheet : sheets_) {
    if (shows(*sheet)) return sheet.get();
  }
  return place.sheet == result.caption() ? &result : nullptr;
}

frmDataIN* DataSheets::LastSheet() {
  if (last_ == nullptr && !sheets_.empty()) last_ = sheets_.back().get();
  return last_;
}

void DataSheets::renumber() {
  for (int i = 0; i < DataSheetCount(); ++i) sheets_[static_cast<size_t>(i)]->setSheetNumber(i + 1);
}

void DataSheets::removeSheet(frmDataIN& closing) {
  const auto place = std::find_if(sheets_.begin(), sheets_.end(),
                                  [&](const auto& sheet) { return sheet.get() == &closing; });
  if (place == sheets_.end()) return;
  if (last_ == &closing) last_ = nullptr;
  closed_.push_back(std::move(*place));
  sheets_.erase(place);
  closing.setSheetNumber(0);
  renumber();
  TarkastaJaLisaaListaan();
}

frmDataIN& DataSheets::newSheet(std::string_view prefix) {
  const int number = DataSheetCount() + 1;
  frmDataIN& made = insertSheet(number, std::string(prefix) + std::to_string(number));
  TarkastaJaLisaaListaan();
  return made;
}

std::vector<std::string> DataSheets::askFiles() {
  FileRequest request;
  request.filter = openFilter;
  request.folder = lastFolder_.empty() ? context_.session.record.UserPath + "\\data" : lastFolder_;
  request.multiple = true;
  clearSheet(F1Ref);
  const std::vector<std::string> files = context_.session.dialogs().openFiles(request);
  if (!files.empty()) lastFolder_ = folderOf(files.front());
  return files;
}

bool DataSheets::Open() {
  const std::vector<std::string> files = askFiles();
  if (files.empty()) return false;
  openSources(files);
  return true;
}

void DataSheets::ValmistaSource(std::string_view fileList) {
  std::vector<std::string> files = split(fileList, " ");
  std::erase(files, "");
  if (files.size() > 1) {
    const std::string folder = files.front();
    files.erase(files.begin());
    for (std::string& file : files) file.insert(0, folder);
  }
  openSources(files);
}

void DataSheets::openSources(const std::vector<std::string>& files) {
  context_.session.record.SourcesBuilt = false;
  const auto database = std::find_if(files.begin(), files.end(), namesDatabase);
  if (database != files.end()) {
    if (!context_.AvaaDB) throw Error("Databases cannot be opened here: " + *database);
    context_.AvaaDB(*database);
    return;
  }
  // The lists are brought up to date whatever happens to the files.
  struct AtEnd {
    DataSheets& sheets;
    ~AtEnd() { sheets.TarkastaJaLisaaListaan(); }
  };
  const AtEnd refill{*this};
  for (const std::string& file : files) {
    frmDataIN& opened = insertSheet(DataSheetCount() + 1, "");
    try {
      opened.OpenFile(file, "", "", false);
    } catch (...) {
      last_ = nullptr;
      sheets_.pop_back();
      throw;
    }
    if (opened.F1D.NumSheets() > 1) spreadSheets(opened);
    opened.show();
  }
}

void DataSheets::spreadSheets(frmDataIN& first) {
  Worksheet& book = first.F1D;
  const std::string name = first.caption() + " / ";
  for (int sheet = book.NumSheets(); sheet >= 2; --sheet) {
    frmDataIN& made = insertSheet(first.sheetNumber(), name + book.SheetName(sheet));
    made.takeSheet(book, sheet);
    made.SourceFile = first.SourceFile;
    made.SourceSheet = book.SheetName(sheet);
    made.show();
  }
  first.gridF1D.replace([&] {
    freezeForeignFormulas(book);
    book.Sheet(1);
    book.DeleteSheets(2, book.NumSheets() - 1);
  });
  first.setCaption(name + book.SheetName(1));
}

void DataSheets::makeNamesUnique() {
  int clashes = 0;
  for (bool changed = true; changed;) {
    changed = false;
    for (size_t i = 0; i < sheets_.size(); ++i) {
      // The lists know the calculation result by its name.
      const std::string name = sheets_[i]->caption();
      if (name == calculationResult || name == result.caption()) {
        sheets_[i]->setCaption(name + std::to_string(++clashes));
        changed = true;
      }
      for (size_t j = i + 1; j < sheets_.size(); ++j) {
        if (sheets_[j]->caption() != sheets_[i]->caption()) continue;
        sheets_[j]->setCaption(sheets_[j]->caption() + std::to_string(++clashes));
        changed = true;
      }
    }
  }
}

void DataSheets::fillList(ListBox& list, const std::vector<std::string>& names,
                          bool newOnesSelected) {
  const ListMarks before(list);
  list.clear();
  for (const std::string& name : names) list.add(name);
  before.restore(list, newOnesSelected);
}

void DataSheets::TarkastaJaLisaaListaan() {
  makeNamesUnique();
  std::vector<std::string> names;
  for (const auto& sheet : sheets_) names.push_back(sheet->caption());
  // What was just opened is what the user is going to identify.
  fillList(lstI, names, true);
  const std::vector<std::string> tables =
      sourceTables ? sourceTables() : std::vector<std::string>();
  fillList(lstSrcF, tables.empty() ? names : tables, false);
  if (result.F1D.LastRow() > 0) names.push_back(result.caption());
  fillList(lstSrcD, names, false);
}

void DataSheets::convertLimits(frmDataIN& sheet) {
  SheetStructure structure = sheet.structure();
  const int converted = convertBelowDetection({sheet.F1D, structure});
  if (converted == 0) return;
  notice(Severity::Note, "A value below the detection limit was replaced by half of the limit",
         sheet, converted);
}

void DataSheets::treatDecimalCommas(frmDataIN& sheet) {
  SheetStructure structure = sheet.structure();
  const DescribedSheet described{sheet.F1D, structure};
  if (!ConvertDecimalCommas) {
    const DecimalCommas found = findDecimalCommas(described);
    notice(Severity::Warning,
           "A value with a comma, such as \"" + found.example + "\", is text and not a number",
           sheet, found.count);
    return;
  }
  const int converted = convertDecimalCommas(described);
  if (converted == 0) return;
  notice(Severity::Note, "A comma was read as a decimal point", sheet, converted);
}

void DataSheets::notice(Severity severity, std::string_view text, const Form& sheet, int count) {
  Findings found;
  found.add(severity, text, {.sheet = sheet.caption()}, static_cast<size_t>(count));
  context_.session.notice(found);
}

bool DataSheets::IDENTIFY(bool askLog) {
  Session& session = context_.session;
  clearSheet(F1Ref);
  if (chkUnIDToUser.checked() && txtUnID.text().empty()) txtUnID.setText("USERX");
  // By name: events between two sheets may close one and change the list.
  std::vector<std::string> selected;
  for (const int item : lstI.selectedItems()) selected.push_back(lstI.item(item));
  if (selected.empty()) {
    session.dialogs().messageBox("Select data sources!");
    return false;
  }
  JobScope job(session);
  session.progress.bar.setMaximum(static_cast<int>(selected.size()) + 2);
  session.progress.ShowProgress("Identifying...", 1);
  session.log.clear();
  IdentifyRequest request;
  request.useThesaurus = chkUseThes.checked();
  request.unidentifiedToUser = chkUnIDToUser.checked();
  request.onlyNonX = chkOnlyNonX.checked();
  int step = 1;
  bool aborted = false;
  for (const std::string& name : selected) {
    frmDataIN* sheet = find(name);
    if (sheet == nullptr) continue;
    aborted = job.aborted();
    if (aborted) break;
    session.progress.ShowProgress("Identifying " + name, ++step);
    session.log.LisaaLog("Running identify routine for file " + name);
    try {
      sheet->gridF1D.edit("Identify", [&] {
        sheet->AjaTunnista(request);
        sheet->bIdentified = true;
        treatDecimalCommas(*sheet);
        if (ConvertBelowDetection) convertLimits(*sheet);
      });
    } catch (const Error& error) {
      notice(Severity::Error, std::string("The sheet was not identified: ") + error.what(), *sheet);
    }
  }
  if (askLog) {
    session.log.show();
    session.log.activate();
  }
  return !aborted;
}

}  // namespace lodex
