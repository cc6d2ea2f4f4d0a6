#pragma once

#include <string>
#include <vector>

#include "chem/ReferenceTables.h"
#include "cli/CliSession.h"
#include "import/DataSheets.h"

namespace CLI {
class App;
}

namespace lodex {

/// How analysis files are read and identified.
struct ReadingChoice {
  std::string thesaurus;     // its file; empty: the one of the settings
  bool noThesaurus = false;  // understand only headings with a unit
  int headerRow = 1;         // the rows above it are left out
  bool decimalComma = false;
};

/// The options of a command that fill the choice, which must live as long as the command.
void addReadingOptions(CLI::App& command, ReadingChoice& choice);

/// The import without a screen, as the commands that read analysis files share it: a session, the
/// reference tables, a thesaurus and the list of data sheets.
class ImportConsole {
 public:
  ImportConsole(CommandContext& context, const ReadingChoice& choice);
  ImportConsole(const ImportConsole&) = delete;
  ImportConsole& operator=(const ImportConsole&) = delete;

  /// Opens a file and prints what the log says of it. Throws Error when it cannot be opened or is
  /// neither a workbook nor text.
  void openOne(const std::string& file);
  /// Opens one file after the other; what cannot be opened is reported. Returns how many failed.
  int open(const std::vector<std::string>& files);
  /// Identifies all open sheets. The chosen row becomes the heading, and a row of units below the
  /// headings is joined to them first. Sheets that were identified and saved before keep what their
  /// system rows say of marked columns.
  void identify();
  /// Prints the text of a pane of the log as CliSession does.
  void printLines(std::string_view pane, std::string_view prefix) const {
    console_.printLines(pane, prefix);
  }

  Session& session() { return console_.session(); }
  ImportContext& context() { return import_; }
  DataSheets& sheets() { return sheets_; }
  Form& shell() { return shell_; }
  taulukot& tables() { return tables_; }

 private:
  void joinUnits(frmDataIN& sheet);
  void loadThesaurus();
  void useHeaderRow(frmDataIN& sheet);

  CommandContext& context_;
  const ReadingChoice choice_;
  CliSession console_;
  taulukot tables_;
  frmSynonLib thesaurus_;
  ImportContext import_;
  Form shell_;
  DataSheets sheets_;
};

/// Throws Error when some of the files could not be opened.
void requireAllOpened(int failed, size_t files);

/// A name for a sheet that spreadsheet files accept: at most 31 characters without []:*?/\, and
/// not the name of another sheet.
std::string freeSheetName(const Worksheet& book, int sheet, const std::string& wanted);

}  // namespace lodex
