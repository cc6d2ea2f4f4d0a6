#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "import/DataSheetForm.h"
#include "import/TextLines.h"
#include "worksheet/SampleTable.h"

namespace lodex {

/// The window of one foreign analysis table.
class frmDataIN : public DataSheetForm {
 public:
  explicit frmDataIN(ImportContext& context, std::string_view caption = {});

  /// Raw cells of a text file, with the rows that the grid does not show. Empty for files that did
  /// not come through the text reader.
  SampleTable AD;
  std::string TextSeparator;
  std::string SourceFile;   // the file that was opened; "" for a sheet without one
  std::string SourceSheet;  // its sheet that is shown here
  /// Why the sheet shows the lines of a file that is neither a workbook nor text; "" otherwise.
  std::string NotReadable;
  MenuItem mnuRenameWindow{*this, "mnuRenameWindow", "Rename Window..."};
  MenuItem mnuLoadAllRows{*this, "mnuLoadAllRows", "Load all rows"};
  MenuItem mnuAlwaysLoadAllRows{*this, "mnuAlwaysLoadAllRows", "Always load all rows"};

  /// Rows of a text file that the grid shows unless the user, the settings or a command ask for
  /// all.
  static constexpr int gridRows = 16000;
  /// Rows of the text file that the sheet does not hold.
  int RowsNotLoaded() const;
  /// Fills the sheet again with every row of its text file and forgets its structure. Asks first
  /// where something was identified or edited.
  void LoadAllRows();

  /// Loads a file and names the window after it. Kind "ASCII" reads it as text; otherwise it is
  /// read by its content, and what no reader knows as text. `separator` is the column separator of
  /// a text file; empty asks for it. With `identify` the structure is found as well. An empty path
  /// does nothing; a file that cannot be opened throws FileError and changes nothing.
  void OpenFile(std::string_view path, std::string_view kind, std::string_view separator,
                bool identify);
  /// The text reader of OpenFile, for bytes in any encoding.
  void readText(std::string_view bytes, std::string_view separator);

  /// Copies the contents and formats of another sheet's current sheet into this empty one.
  void takeSheet(const Worksheet& source, int sheet);

  void RenameWindow();
  void Parse() override;
  /// Closes the window and removes it from the list of data sheets.
  void close() override;
  std::function<void(frmDataIN&)> onClosed;
  /// The user works with this window now.
  void activate() override {
    if (onActivated) onActivated(*this);
  }
  std::function<void(frmDataIN&)> onActivated;

 private:
  void forgetSource() override;
  void readCells(std::string_view path, std::string_view kind, std::string_view separator);
  TextSplit askedSplit(std::string_view text, std::string_view separator);
  void notice(Findings found);
  void fillFrom(std::string_view text, const TextSplit& split);
  void fillGrid(int rows);
  void setLoadedRows(int rows);
  void offerAllRows();

  int loadedRows_ = 0;  // of AD
};

}  // namespace lodex
