#include "import/SaveInDB.h"

#include "basic/Error.h"
#include "basic/Files.h"

namespace lodex {

namespace {

SheetToSave sheetToSave(const DataSheetForm& form, std::string_view name) {
  return {std::string(name), &form.F1D, form.structure(), 0};
}

}  // namespace

SavingStage::SavingStage(Form& shell, Session& session, DataSheets& sheets, frmDDB& destination)
    : chkMerge(shell, "chkMerge", "Merge"),
      chkOverWrite(shell, "chkOverWrite", "Overwrite"),
      chkAndSave(shell, "chkAndSave", "Save in database"),
      cmdDefine(shell, "cmdDefine", "Define..."),
      cmdSaveInDBNow(shell, "cmdSaveInDBNow", "Save in database now"),
      lblDB(shell, "lblDB"),
      session_(session),
      sheets_(sheets),
      destination_(destination) {
  keep(chkMerge.onChange([this] {
    if (!chkMerge.checked()) chkOverWrite.setChecked(false);
  }));
  keep(chkAndSave.onChange([this] {
    if (!chkAndSave.checked() || destination_.hasDestination()) return;
    showDestination();
    if (!destination_.hasDestination()) chkAndSave.setChecked(false);
  }));
  session_.setCommand(cmdDefine, [this] { showDestination(); });
}

void SavingStage::showDestination() {
  session_.dialogs().showModal(destination_);
  lblDB.setCaption(fileNameOf(destination_.txtDDB.text()));
}

SaveRequest SavingStage::request(bool resultOnly) {
  SaveRequest request;
  request.merge = chkMerge.checked();
  request.overwrite = request.merge && chkOverWrite.checked();
  request.resultOnly = resultOnly;
  if (resultOnly) {
    request.sheets.push_back(sheetToSave(sheets_.result, calculationResult));
    return request;
  }
  for (const int place : sheets_.lstSrcD.selectedItems()) {
    const std::string& name = sheets_.lstSrcD.item(place);
    if (name == calculationResult) {
      request.sheets.push_back(sheetToSave(sheets_.result, name));
    } else if (const frmDataIN* sheet = sheets_.find(name)) {
      request.sheets.push_back(sheetToSave(*sheet, name));
      request.sheets.back().rowsNotLoaded = sheet->RowsNotLoaded();
    }
  }
  return request;
}

bool SavingStage::SaveInDB(bool resultOnly) {
  if (!destination_.hasDestination()) {
    if (resultOnly) return false;
    showDestination();
    session_.dialogs().messageBox("Define database");
    return false;
  }
  outcome_ = saveSheets(session_, destination_.destination(), request(resultOnly));
  destination_.refreshTables();
  if (outcome().failed()) throw Error(outcome().reason);
  return outcome().done();
}

}  // namespace lodex
