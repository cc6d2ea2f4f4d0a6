#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "form/Form.h"
#include "import/frmCResult.h"
#include "import/frmDataIN.h"

namespace lodex {

/// The open data sheets and the part of the shell's stage panel that belongs to them: the lists in
/// which they appear and the options of identification. The controls are made on the shell's form.
class DataSheets {
 public:
  DataSheets(Form& shell, ImportContext& context);

  ListBox lstI;     // sheets for identification
  ListBox lstSrcF;  // sheets that feed calculations
  ListBox lstSrcD;  // sheets to be saved, and the calculation result once there is one
  CheckBox chkUseThes;
  CheckBox chkOnlyNonX;
  CheckBox chkFILEISMET;
  CheckBox chkUnIDToUser;
  TextBox txtUnID;

  frmCResult result;
  Worksheet F1Ref;  // the item sources of the calculations; cleared with every new source

  /// Sheets count from 1; the numbers are dense. Another number throws Error.
  int DataSheetCount() const { return static_cast<int>(sheets_.size()); }
  frmDataIN& sheet(int number);
  /// The first sheet with that window name; null if there is none.
  frmDataIN* find(std::string_view name);
  /// The sheet, or the result, that a place names by file or sheet; null if none is open.
  DataSheetForm* formAt(const Place& place);
  /// The sheet that was worked with last; null if there is none.
  frmDataIN* LastSheet();
  /// All sheets as places to look for items.
  std::vector<ItemSheet> itemSheets();

  /// Called with every new sheet before it gets its content.
  std::function<void(frmDataIN&)> onNewSheet{};
  /// Names that lstSrcF shows in place of the sheets; none while samples come from sheets.
  std::function<std::vector<std::string>()> sourceTables{};

  /// Adds an empty sheet named with the prefix and its running number, as in "New Data 3".
  frmDataIN& newSheet(std::string_view prefix);
  /// Asks for files to open; none when cancelled.
  std::vector<std::string> askFiles();
  /// Asks for files and opens them. False when cancelled.
  bool Open();
  /// Opens what a file dialog returned as text: one path, or a folder and file names between
  /// blanks. A path with a blank in it falls apart here; openSources takes such paths.
  void ValmistaSource(std::string_view fileList);
  /// Opens files, one sheet for each sheet of a workbook, the last one first. If one of them is an
  /// Access database, only that is opened. Throws FileError for a file that cannot be opened;
  /// those before it stay open.
  void openSources(const std::vector<std::string>& files);
  /// Makes the window names unique and fills the lists again, keeping what was selected.
  void TarkastaJaLisaaListaan();
  /// Whether IDENTIFY puts numbers in place of values below a detection limit.
  bool ConvertBelowDetection = false;
  /// Whether it takes a comma in columns of numbers for a decimal point. Otherwise it
  /// warns of such values, which stay text.
  bool ConvertDecimalCommas = false;
  /// Identifies the sheets selected in lstI. `askLog` shows the log at the end. False when none
  /// is selected.
  bool IDENTIFY(bool askLog);

 private:
  frmDataIN& insertSheet(int place, std::string_view caption);
  void spreadSheets(frmDataIN& first);
  void removeSheet(frmDataIN& sheet);
  void renumber();
  void fillList(ListBox& list, const std::vector<std::string>& names, bool newOnesSelected);
  void makeNamesUnique();
  void convertLimits(frmDataIN& sheet);
  void treatDecimalCommas(frmDataIN& sheet);
  void notice(Severity severity, std::string_view text, const Form& sheet, int count = 1);

  ImportContext& context_;
  std::vector<std::unique_ptr<frmDataIN>> sheets_;
  std::vector<std::unique_ptr<frmDataIN>> closed_;  // until their own close() has returned
  frmDataIN* last_ = nullptr;                       // of sheets_
  std::string lastFolder_;
};

}  // namespace lodex
