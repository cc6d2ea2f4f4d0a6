#include "shell/MDIMain.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "db/OpenDatabase.h"
#include "db/frmConnect.h"

namespace lodex {
namespace {

constexpr std::string_view windowTitle = "LodexGeo";
constexpr std::string_view filesSection = "Files";
constexpr std::string_view databasesSection = "Session";
constexpr int readyMilliseconds = 5000;
constexpr size_t namesInQuestion = 20;  // more would not fit on the screen

std::string errorText(const Error& error) {
  return "Error " + std::to_string(error.number()) + " " + error.what();
}

}  // namespace

MDIMain::MDIMain(Session& session, ShellServices services)
    : Form("MDIMain", windowTitle),
      thesaurus(session),
      importContext{session, tables, thesaurus},
      sheets(*this, importContext),
      calculations(*this, importContext, sheets),
      sourceForm(session, *this),
      destinationForm(session),
      saving(*this, session, sheets, destinationForm),
      combineForm(session),
      source(importContext, sourceForm, sheets, calculations),
      stages(*this, session, sheets, calculations),
      report(session),
      doors(*this, session),
      session_(session),
      services_(std::move(services)) {
  makeLastFileEntries();
  connectStages();
  connectTools();
  connectMenus();
  describeTools();
  connectDatabases();
  connectReport();
  addWindows(doors, *this);
  doors.bringToFront = [this](Form& form) { bringToFront(form); };
  keep(calculations.cmdGroup.onChange([this] { showSet(calculations.cmdGroup.caption()); }));
  progressLine_ = session_.progress.onChange([this] {
    if (session_.progress.visible() || !services_.startTmrReady) return;
    services_.startTmrReady(readyMilliseconds);
  });
}

MDIMain::~MDIMain() = default;

void MDIMain::connectDatabases() {
  importContext.AvaaDB = [this](const std::string& path) { openDatabase(path); };
  // The window of the source opens databases on its own as well.
  keep(sourceForm.txtDB.onChange([this] { refreshLastFiles(); }));
  sourceForm.onAccepted = [this](const std::string& path) {
    if (!holdsSecret(path)) remember(path, databasesSection);
    SetStage(static_cast<int>(Stage::Calculate));
  };
  destinationForm.sourceDatabase = [this] { return source.pathInUse(); };
  keep(destinationForm.txtDDB.onChange(
      [this] { saving.lblDB.setCaption(fileNameOf(destinationForm.txtDDB.text())); }));
}

void MDIMain::connectReport() {
  report.goTo = [this](const Place& place) { return goTo(place); };
  report.onSummary = [this](const std::string& summary) {
    tbReport.setCaption(summary);
    tbReport.setVisible(!summary.empty());
  };
  tbReport.setVisible(false);
  tbReport.setToolTip("What a command noticed; click to see the report");
  run(tbReport, [this] { report.show(); });
}

bool MDIMain::goTo(const Place& place) {
  DataSheetForm* form = sheets.formAt(place);
  if (form == nullptr) return false;
  if (place.row > 0 || place.column > 0) {
    form->F1D.SetActiveCell(std::clamp(place.row, 1, form->F1D.MaxRow()),
                            std::clamp(place.column, 1, form->F1D.MaxCol()));
    form->gridF1D.refresh();
  }
  form->show();
  bringToFront(*form);
  return true;
}

// --- Start ---

bool MDIMain::Load() {
  SessionRecord& record = session_.record;
  record.FileLoadInProgress = true;
  record.MineralList.clear();
  record.MineralAliases.clear();
  hide();
  watchForms();
  frmLoad& splash = session_.splash;
  splash.LabExe.setCaption(services_.version);
  splash.show();
  if (useOtherInstance()) {
    splash.close();
    return false;
  }
  tellSplash("Reading initials...");
  session_.run([this] { session_.ReadSession(services_.appFolder, true, true); });
  calculations.cmdGroup.setCaption(record.DefaultCGroup);
  tellSplash("Loading...");
  session_.run([this] { tables.load(session_.record.GeoPath + "\\reference"); });
  session_.run([this] { readThesaurus(); });
  calculations.lstCalc.clear();
  session_.run([this] { loadGroup(); });
  showDatabases();
  openMinerals();
  refreshLastFiles();
  splash.close();
  loaded_ = true;
  record.FileLoadInProgress = false;
  show();
  VaiheOn(true);
  OfferRecovery();
  return true;
}

void MDIMain::tellSplash(std::string_view text) {
  session_.splash.labText.setCaption(text);
  session_.pumpEvents();
}

void MDIMain::watchForms() {
  if (!services_.watch) return;
  for (Form* form : doors.windows()) services_.watch(*form);
  services_.watch(session_.splash);
  sheets.onNewSheet = [this](frmDataIN& sheet) { services_.watch(sheet); };
}

bool MDIMain::useOtherInstance() {
  if (!services_.anotherInstanceRuns || !services_.anotherInstanceRuns()) return false;
  const Answer answer = session_.dialogs().messageBox(
      "LodexGeo is already running. Do you want to have several instances of the Tarn running on "
      "your machine?",
      MessageButtons::YesNoCancel, MessageIcon::Question);
  if (answer == Answer::Yes) return false;
  if (services_.activateOther) services_.activateOther();
  return true;
}

void MDIMain::readThesaurus() {
  if (!session_.record.ThesaurusFile.empty()) thesaurus.Aukaise(session_.record.ThesaurusFile);
}

void MDIMain::loadGroup() {
  if (session_.record.CGroupsFolder.empty()) return;
  calculations.AlustaCALC(true);
  calculations.lstCalc.selectAll(true);
}

void MDIMain::showDatabases() {
  tbLodexGeoDB.setCaption(pathText(nativePath(session_.record.SampleDbPath)));
  tbMineralDB.setCaption(pathText(nativePath(session_.record.MineralDbPath)));
}

// A session without mineral database goes on: there is only nothing to look formulas up in.
void MDIMain::openMinerals() {
  const std::string& path = session_.record.MineralDbPath;
  importContext.HaeMinTieto = nullptr;
  try {
    lodex::openDatabase(session_, MineralConnection, path);
  } catch (const Error& error) {
    session_.log.LisaaLog("The mineral database cannot be opened: " + std::string(error.what()),
                          LogKind::Both);
    return;
  }
  minerals_ = std::make_unique<MineralCatalogue>(
      path, ServerIni{session_.record.UserIni, session_.record.MainIni});
  importContext.HaeMinTieto = [this](const std::string& mineral) {
    std::vector<std::string> elements;
    std::vector<std::string> values;
    minerals_->HaeMinTieto(mineral, elements, values);
    std::vector<std::pair<std::string, std::string>> items;
    for (size_t i = 0; i < elements.size(); ++i) items.emplace_back(elements[i], values[i]);
    return items;
  };
}

// --- Copies for recovery ---

void MDIMain::AutosaveNow() {
  if (!autosave_) return;
  std::vector<frmDataIN*> open;
  for (int number = 1; number <= sheets.DataSheetCount(); ++number) {
    open.push_back(&sheets.sheet(number));
  }
  autosave_->save(open);
  if (autosave_->problem().empty()) return;
  session_.log.LisaaLog("Edited sheets are not copied for recovery: " + autosave_->problem(),
                        LogKind::Both, true);
}

void MDIMain::OfferRecovery() {
  // Without a folder of the user's there is no place for copies.
  if (session_.record.UserPath.empty()) return;
  if (!autosave_) autosave_ = std::make_unique<Autosave>(session_.record.UserPath + "/autosave");
  const std::vector<SavedSheet> found = autosave_->leftovers();
  Answer answer = Answer::No;
  if (!found.empty()) {
    std::string question =
        "Lodex Geo did not end as it should. Copies of edited data sheets were kept:\n";
    for (size_t i = 0; i < std::min(found.size(), namesInQuestion); ++i) {
      question += "\n" + found[i].caption;
    }
    if (found.size() > namesInQuestion) {
      question += "\nand " + std::to_string(found.size() - namesInQuestion) + " more";
    }
    answer = session_.dialogs().messageBox(question + "\n\nDo you want to open them?",
                                           MessageButtons::YesNoCancel, MessageIcon::Question,
                                           "Lodex Geo");
  }
  if (answer == Answer::Cancel) return;
  if (answer == Answer::Yes) {
    for (const SavedSheet& saved : found) session_.run([&] { recover(saved); });
    SetStage(static_cast<int>(Stage::Identify));
    AutosaveNow();
    // The old copies stay as long as there are no new ones.
    if (!autosave_->problem().empty()) return;
  }
  autosave_->removeLeftovers();
}

void MDIMain::recover(const SavedSheet& saved) {
  frmDataIN& sheet = sheets.newSheet("");
  try {
    saved.restore(sheet);
  } catch (const Error& error) {
    sheet.close();
    throw Error(saved.caption + " cannot be opened: " + error.what());
  }
  sheet.show();
}

// --- End ---

bool MDIMain::exitAsked(std::string_view question, std::string_view title) {
  if (session_.record.ExitConfirmed) return true;
  const Answer answer = session_.dialogs().messageBox(question, MessageButtons::OkCancel,
                                                      MessageIcon::Question, title);
  session_.record.ExitConfirmed =
      answer == Answer::Ok && (!services_.mayLeave || services_.mayLeave());
  return session_.record.ExitConfirmed;
}

bool MDIMain::QueryUnload() {
  if (!exitAsked("Are you sure to exit Lodex Geo?", "Lodex Geo")) return false;
  unloadForms();
  return true;
}

void MDIMain::close() {
  if (!closed() && QueryUnload()) end();
}

void MDIMain::Exit() {
  if (closed() || !exitAsked("Are you sure to exit LodexGeo?", "Tarn")) return;
  unloadForms();
  end();
}

void MDIMain::unloadForms() {
  if (autosave_) autosave_->clear();
  single_.reset();
  while (sheets.DataSheetCount() > 0) sheets.sheet(sheets.DataSheetCount()).close();
  const std::vector<Form*>& forms = doors.windows();
  for (auto form = forms.rbegin(); form != forms.rend(); ++form) (*form)->close();
}

void MDIMain::end() {
  Form::close();
  if (services_.quit) services_.quit();
}

// --- Opening ---

void MDIMain::Open() {
  session_.record.SourcesBuilt = false;
  const std::vector<std::string> files = sheets.askFiles();
  if (!files.empty()) openPaths(files);
}

void MDIMain::dropFiles(const std::vector<std::string>& paths) {
  if (!paths.empty()) session_.run([&] { openPaths(paths); }, "Open");
}

void MDIMain::openPaths(const std::vector<std::string>& paths) {
  sheets.F1Ref = Worksheet();
  for (const std::string& path : paths) {
    if (!namesDatabase(path)) continue;
    openDatabase(path);
    SetStage(static_cast<int>(Stage::Identify));
    return;
  }
  for (const std::string& path : paths) {
    // One bad file does not keep the others closed.
    session_.run([&] {
      sheets.openSources({path});
      remember(path, filesSection);
    });
  }
  SetStage(static_cast<int>(Stage::Identify));
}

bool MDIMain::openDatabase(const std::string& path, const MapRequest& request) {
  if (!source.AvaaDB(path, request)) return false;
  if (!holdsSecret(path)) remember(path, databasesSection);
  return true;
}

void MDIMain::OpenDatabase() {
  frmConnect dialog(session_);
  session_.dialogs().showModal(dialog);
  if (dialog.ConnectResult().empty()) return;
  openDatabase(dialog.ConnectResult(), {true, dialog.ReadMapFile(), dialog.SaveMapFile()});
}

void MDIMain::changeDatabase() {
  const auto files = session_.dialogs().openFiles({"", "Microsoft Access Database (*.mdb)|*.mdb",
                                                   session_.record.UserPath + "\\data", "", false});
  if (files.empty() || !openDatabase(files.front())) return;
  session_.record.SampleDbPath = files.front();
  showDatabases();
}

frmDataIN& MDIMain::NewSheet() {
  frmDataIN& sheet = sheets.newSheet("New ");
  sheet.show();
  return sheet;
}

void MDIMain::PasteAsSheet() {
  if (session_.clipboard().text().empty()) {
    session_.dialogs().messageBox("There is no text on the clipboard.");
    return;
  }
  frmDataIN& sheet = sheets.newSheet("New Data ");
  sheet.F1D.SetActiveCell(1, 1);
  sheet.gridF1D.edit("Paste", [&] { sheet.F1D.EditPaste(session_.clipboard()); });
  sheet.show();
  sheets.lstI.selectAll(false);
  sheets.lstI.setSelected(sheet.sheetNumber() - 1, true);
  IDENTIFY(false);
  SetStage(static_cast<int>(Stage::Identify));
}

bool MDIMain::CloseSheet(frmDataIN& sheet) {
  if (sheet.Changed && sheet.F1D.LastRow() > 0) {
    const Answer answer = session_.dialogs().messageBox(
        "Do you want to save the changes in " + sheet.caption() + "?", MessageButtons::YesNoCancel,
        MessageIcon::Question, "Lodex Geo");
    if (answer == Answer::Yes) {
      sheet.mnuSaveFile.click();
      // Still changed: the file dialogue was cancelled, or the file could not be written.
      if (sheet.Changed) return false;
    } else if (answer != Answer::No) {
      return false;
    }
  }
  sheet.close();
  return true;
}

void MDIMain::LinkExecute(std::string_view text) {
  constexpr std::string_view start = "file;";
  if (!startsWithNoCase(text, start)) return;
  const std::string path(trimWhite(text.substr(start.size())));
  if (!path.empty()) dropFiles({path});
}

// --- Last files ---

// Where the list cannot be written there is none, which is no reason to stop.
void MDIMain::remember(const std::string& path, std::string_view section) {
  try {
    PushLastFile(session_.record, path, section);
  } catch (const Error& error) {
    session_.log.LisaaLog(error.what(), LogKind::Log, true);
  }
  refreshLastFiles();
}

void MDIMain::refreshLastFiles() {
  const auto fill = [this](std::deque<MenuItem>& entries, std::string_view section) {
    const std::vector<std::string> files = LastFiles(session_.record, section);
    for (size_t i = 0; i < entries.size(); ++i) {
      const bool used = i < files.size();
      // "&" would be taken for the mark of a short cut.
      entries[i].setCaption(
          used ? "&" + std::to_string(i + 1) + " " + replaceAll(files[i], "&", "&&") : "");
      entries[i].setVisible(used);
    }
  };
  fill(mnuLastFile_, filesSection);
  fill(mnuLastDB_, databasesSection);
}

void MDIMain::openLast(std::string_view section, int place) {
  const std::vector<std::string> files = LastFiles(session_.record, section);
  if (place > static_cast<int>(files.size())) return;
  const std::string& path = files[static_cast<size_t>(place) - 1];
  if (section == databasesSection) {
    openDatabase(path);
  } else {
    openPaths({path});
  }
}

void MDIMain::makeLastFileEntries() {
  const auto make = [this](std::deque<MenuItem>& entries, const std::string& name,
                           std::string_view section) {
    for (int place = 1; place <= lastFileCount; ++place) {
      entries.emplace_back(*this, name + std::to_string(place));
      entries.back().setVisible(false);
      session_.setCommand(entries.back(), [this, section, place] { openLast(section, place); });
    }
  };
  make(mnuLastFile_, "mnuLastFile", filesSection);
  make(mnuLastDB_, "mnuLastDB", databasesSection);
}

// --- The work ---

bool MDIMain::IDENTIFY(bool askLog) {
  if (!sheets.IDENTIFY(askLog)) return false;
  if (askLog) SetStage(static_cast<int>(Stage::Save));
  return true;
}

void MDIMain::Calculate() {
  source.forgetTables();
  calculations.Calculate();
}

void MDIMain::SaveInDB() {
  const int stage = stages.stage();
  std::vector<std::string> names;
  for (const int item : sheets.lstSrcD.selectedItems()) names.push_back(sheets.lstSrcD.item(item));
  source.forgetTables();
  const bool finished = saving.SaveInDB(false);
  if (finished && saving.SaveErrors() == 0) {
    // What is in the database is not lost with the sheet. One without database rows may have
    // been left out.
    for (const std::string& name : names) {
      frmDataIN* sheet = sheets.find(name);
      if (sheet != nullptr && sheet->SystemRows(sysrow::Table) > 0) sheet->Changed = false;
    }
  }
  if (stages.stage() != stage) SetStage(stage);
}

frmExcelCalc& MDIMain::singleSample() {
  if (!single_) {
    single_ = std::make_unique<frmExcelCalc>(importContext, calculations);
    if (services_.watch) services_.watch(*single_);
  }
  return *single_;
}

void MDIMain::SingleSample() {
  frmExcelCalc& form = singleSample();
  if (frmDataIN* sheet = sheets.LastSheet(); sheet != nullptr && sheet->F1D.LastRow() > 0) {
    // A row that describes the columns holds no sample.
    form.takeSample(*sheet, std::max(sheet->F1D.Row(), sheet->FirstDataRow()));
  }
  form.show();
  bringToFront(form);
}

void MDIMain::EditIni() {
  FileRequest request;
  request.filter = "Initialization files (*.ini)|*.ini|All files (*.*)|*.*";
  request.folder = session_.record.UserPath + "\\ini";
  request.fileName = "LodexGeo.ini";
  const auto files = session_.dialogs().openFiles(request);
  if (!files.empty() && services_.startEditor) services_.startEditor(files.front());
}

void MDIMain::Help(std::string_view topic) {
  if (!services_.showHelp) return;
  try {
    services_.showHelp(std::string(topic));
  } catch (const Error& error) {
    session_.dialogs().messageBox(
        errorText(error) + "\n(" + services_.appFolder + "\\LodexHelp.exe)", MessageButtons::Ok,
        MessageIcon::Stop);
  }
}

void MDIMain::startViewer() {
  if (!services_.startViewer) return;
  const std::string& database = destinationForm.txtDDB.text();
  try {
    services_.startViewer(services_.appFolder + "\\LodexData.exe", database);
  } catch (const Error& error) {
    session_.dialogs().messageBox("Error " + std::string(error.what()) + " " +
                                  std::to_string(error.number()));
    services_.startViewer("C:\\Lodex5\\LodexData.exe", database);
  }
  close();
}

// --- Timers ---

void MDIMain::tmrReady() {
  Label& text = session_.progress.txtInfo;
  // A job that began meanwhile has its own text there.
  if (!session_.progress.visible() && text.caption() == "Ready!") text.setCaption("");
}

void MDIMain::bringToFront(Form& form) {
  if (services_.bringToFront) services_.bringToFront(form);
}

}  // namespace lodex
