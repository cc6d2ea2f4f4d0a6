#pragma once

#include <string>

#include "db/frmDDB.h"
#include "import/DataSheets.h"
#include "import/SaveSheets.h"

namespace lodex {

/// The saving stage of the shell's panel: its options, and the saving of the selected sheets into
/// the destination database. The controls are made on the shell's form.
class SavingStage {
 public:
  SavingStage(Form& shell, Session& session, DataSheets& sheets, frmDDB& destination);

  CheckBox chkMerge;      // look samples up by their key
  CheckBox chkOverWrite;  // with merge: values may be replaced
  CheckBox chkAndSave;
  Button cmdDefine;
  Button cmdSaveInDBNow;  // what it does is for the shell to set
  Label lblDB;            // the destination's file name

  /// Saves the sheets selected in lstSrcD, or the calculation result alone and silently. False when
  /// nothing was saved to the end. Throws Error when the database refuses as a whole.
  bool SaveInDB(bool resultOnly);
  /// Of the last saving.
  const Outcome& outcome() const { return outcome_.outcome; }
  int SaveErrors() const { return outcome_.SaveErrors(); }
  int savedRecords() const { return outcome_.records; }

 private:
  void showDestination();
  SaveRequest request(bool resultOnly);

  Session& session_;
  DataSheets& sheets_;
  frmDDB& destination_;
  SaveOutcome outcome_;
};

}  // namespace lodex
