#include "calc/frmSources.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "calc/frmDefineItem.h"
#include "calc/frmSelectElements.h"

namespace lodex {
namespace {

std::string withEnding(const std::string& path) {
  return extensionOf(path).empty() ? path + ".xls" : path;
}

FileType kindOf(const std::string& path) {
  return extensionOf(path) == "xlsx" ? FileType::Xlsx : FileType::Excel;
}

}  // namespace

frmSources::frmSources(Session& session, const taulukot& tables, SourcesCaller caller)
    : Form("frmSources", "Lodex Geo - Calculation Options"),
      session_(session),
      caller_(std::move(caller)) {
  F1Ref.CopyAll(caller_.F1Ref);
  for (int row = 2; row <= sourceRows + 1; ++row) {
    const bool known = row <= tables.F1Data.LastRow(1);
    TarnPD1.add(known ? tables.F1Data.TextSRC(1, row, 2) : "");
  }
  for (const std::string& name : caller_.items) lstItem.add(name);
  for (const std::string& name : caller_.group.MethodListOrder()) lstCalc.add(name);
  cmdRoutine.setCaption(session.record.CurrentCGroup);
  fraRoutine.setVisible(false);
  txtSrcList.setVisible(false);
  cmdOK2.setVisible(false);
  chkAskRefs.setVisible(caller_.chkAskRefs != nullptr);
  if (caller_.chkAskRefs != nullptr) chkAskRefs.setChecked(caller_.chkAskRefs->checked());
  connectControls();
  if (lstItem.count() > 0) lstItem.setCurrent(0);
}

void frmSources::connectControls() {
  keep(lstItem.onChange([this] {
    if (lstItem.current() == shownItem_) return;
    useChecked();
    shownItem_ = lstItem.current();
    Paivita();
  }));
  keep(TarnPD1.onChange([this] {
    if (TarnPD1.current() == shownElement_) return;
    useChecked();
    shownElement_ = TarnPD1.current();
    showSources();
  }));
  keep(lstCalc.onChange([this] {
    if (lstCalc.current() == shownMethod_) return;
    shownMethod_ = lstCalc.current();
    session_.run([this] { readMethod(); });
  }));
  keep(TabStrip1.onChange([this] {
    fraSources.setVisible(TabStrip1.selected() == 0);
    fraRoutine.setVisible(TabStrip1.selected() == 1);
  }));
  keep(chkAskRefs.onChange([this] {
    if (caller_.chkAskRefs != nullptr) caller_.chkAskRefs->setChecked(chkAskRefs.checked());
  }));
  const auto on = [this](Button& button, void (frmSources::*command)()) {
    session_.setCommand(button, [this, command] { (this->*command)(); });
  };
  on(cmdGet, &frmSources::reset);
  on(cmdList, &frmSources::list);
  on(cmdSAdd, &frmSources::add);
  on(cmdSEdit, &frmSources::edit);
  on(cmdSDel, &frmSources::remove);
  on(cmdMethods, &frmSources::chooseMethods);
  on(cmdOK, &frmSources::accept);
  on(cmdSave, &frmSources::save);
  on(cmdSaveAs, &frmSources::saveAs);
  session_.setCommand(cmdApply, [this] { apply(); });
  cmdCancel.setCommand([this] { close(); });
  cmdOK2.setCommand([this] {
    txtSrcList.setVisible(false);
    cmdOK2.setVisible(false);
  });
}

std::string frmSources::item() const {
  return lstItem.current() < 0 ? std::string(allItems) : lstItem.item(lstItem.current());
}

std::string frmSources::symbol() const {
  return TarnPD1.current() < 0 ? std::string() : TarnPD1.item(TarnPD1.current());
}

// --- Sources ---

void frmSources::Paivita() {
  const std::string name = item();
  mapSheet_ = F1Ref.SheetNumber(name);
  if (mapSheet_ == 0 && name == allItems) {
    mapSheet_ = 1;
    F1Ref.SheetName(1, name);
  } else if (mapSheet_ == 0) {
    const int common = mapSheetOf(F1Ref, allItems);
    F1Ref.InsertSheets(F1Ref.NumSheets() + 1, 1);
    mapSheet_ = F1Ref.NumSheets();
    F1Ref.SheetName(mapSheet_, name);
    for (int row = 1; row <= sourceRows; ++row) {
      if (!isDecided(F1Ref, common, row)) continue;
      setSources(F1Ref, mapSheet_, row, sourcesOf(F1Ref, common, row));
    }
  }
  F1Ref.Sheet(mapSheet_);
  showElements();
  showSources();
}

void frmSources::showElements() {
  for (int row = 1; row <= sourceRows; ++row) {
    TarnPD1.setChecked(row - 1, !sourcesOf(F1Ref, mapSheet_, row).empty());
  }
}

void frmSources::showSources() {
  lstEls.clear();
  if (TarnPD1.current() < 0) return;
  for (const ItemSource& source : sources()) lstEls.add(sourceText(caller_.sheets, source), true);
}

void frmSources::setSourcesOfElement(const std::vector<ItemSource>& sources) {
  setSources(F1Ref, mapSheet_, element(), sources);
  showElements();
  showSources();
}

// Drops the sources that were unchecked in the list on show.
void frmSources::useChecked() {
  if (shownElement_ < 0) return;
  const int shown = shownElement_ + 1;
  const std::vector<ItemSource> offered = sourcesOf(F1Ref, mapSheet_, shown);
  std::vector<ItemSource> used;
  for (size_t i = 0; i < offered.size(); ++i) {
    const int entry = static_cast<int>(i);
    if (entry >= lstEls.count() || lstEls.checked(entry)) used.push_back(offered[i]);
  }
  if (used.size() == offered.size()) return;
  setSources(F1Ref, mapSheet_, shown, used);
  showElements();
}

void frmSources::reset() {
  Worksheet& map = caller_.F1Ref;
  if (map.NumSheets() > 1) map.DeleteSheets(2, map.NumSheets() - 1);
  map.Sheet(1);
  if (map.LastRow() > 0) map.ClearRange(1, 1, map.LastRow() + 1, map.LastCol() + 1);
  if (caller_.rebuild) caller_.rebuild();
  F1Ref.CopyAll(map);
  Paivita();
}

void frmSources::list() {
  useChecked();
  std::string text = item();
  for (int row = 1; row <= sourceRows; ++row) {
    const std::vector<ItemSource> found = sourcesOf(F1Ref, mapSheet_, row);
    if (found.empty()) continue;
    text += "\r\n" + TarnPD1.item(row - 1);
    for (const ItemSource& source : found) text += "\r\n  " + sourceText(caller_.sheets, source);
  }
  txtSrcList.setText(text);
  txtSrcList.setVisible(true);
  cmdOK2.setVisible(true);
}

void frmSources::add() {
  if (TarnPD1.current() < 0) {
    session_.dialogs().messageBox("Select item");
    return;
  }
  useChecked();
  frmDefineItem dialog(item() + " " + symbol(), caller_.sheets);
  session_.dialogs().showModal(dialog);
  if (!dialog.answer()) return;
  std::vector<ItemSource> all = sources();
  all.push_back(*dialog.answer());
  setSourcesOfElement(all);
}

void frmSources::edit() {
  if (TarnPD1.current() < 0) return;
  useChecked();
  const std::vector<ItemSource> offered = sources();
  std::vector<std::string> texts;
  for (const ItemSource& source : offered) texts.push_back(sourceText(caller_.sheets, source));
  const auto chosen = askElements(session_.dialogs(), "Source for " + symbol(), texts);
  if (chosen) setSourcesOfElement(chosenSources(offered, *chosen));
}

void frmSources::remove() {
  const int selected = lstEls.current();
  if (TarnPD1.current() < 0 || selected < 0) return;
  lstEls.setChecked(selected, false);
  useChecked();
  showSources();
}

void frmSources::chooseMethods() {
  if (TarnPD1.current() < 0) return;
  useChecked();
  const std::vector<ItemSource> offered = sources();
  std::vector<std::string> methods;
  std::vector<std::string> methodOf;
  for (const ItemSource& source : offered) {
    const SourceSheet* sheet = findSheet(caller_.sheets, source.sheet);
    methodOf.push_back(sheet == nullptr ? "" : sheet->text(sysrow::Method, source.column));
    const bool known = std::find(methods.begin(), methods.end(), methodOf.back()) != methods.end();
    if (!known) methods.push_back(methodOf.back());
  }
  const auto chosen = askElements(session_.dialogs(), "Methods for " + symbol(), methods);
  if (!chosen) return;
  std::vector<ItemSource> ordered;
  for (const int position : *chosen) {
    if (position < 1 || position > static_cast<int>(methods.size())) continue;
    const std::string& method = methods[static_cast<size_t>(position) - 1];
    for (size_t i = 0; i < offered.size(); ++i) {
      if (methodOf[i] == method) ordered.push_back(offered[i]);
    }
  }
  setSourcesOfElement(ordered);
}

void frmSources::accept() {
  useChecked();
  caller_.F1Ref.CopyAll(F1Ref);
  if (caller_.accepted) caller_.accepted();
  caller_.form.show();
  close();
}

// --- Method workbooks ---

void frmSources::readMethod() {
  if (lstCalc.current() < 0) return;
  editedMethod_ = 0;
  const int number = caller_.group.MethodIndex(lstCalc.item(lstCalc.current()));
  if (number == 0) return;
  E.Read(caller_.group.method(number).path);
  editedMethod_ = number;
  gridE.refresh();
}

// Returns the number of the method that took the workbook over; 0 if none was read.
int frmSources::apply() {
  if (editedMethod_ > 0) caller_.group.replaceBook(editedMethod_, E);
  return editedMethod_;
}

void frmSources::save() {
  const int number = apply();
  if (number == 0) return;
  const std::string& path = caller_.group.method(number).path;
  E.Write(path, kindOf(path));
}

void frmSources::saveAs() {
  if (apply() == 0) return;
  FileRequest request;
  request.title = "Save Calculation Method file";
  request.filter = "Microsoft excel files (*.xls)|*.xls|All files (*.*)|*.*";
  request.folder = caller_.group.folder();
  request.fileName = "*.xls";
  const auto path = session_.dialogs().saveFile(request);
  if (path) E.Write(withEnding(*path), kindOf(withEnding(*path)));
}

}  // namespace lodex
