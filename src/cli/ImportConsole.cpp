#include "cli/ImportConsole.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {
namespace {

std::string thesaurusPath(const ReadingChoice& choice, const SessionRecord& record) {
  if (!choice.thesaurus.empty()) return choice.thesaurus;
  if (!record.ThesaurusFile.empty()) return record.ThesaurusFile;
  for (const char* name : {"\\ini\\SynonLib.txt", "\\ini\\DefSynonLib.txt"}) {
    if (FileExists(record.GeoPath + name)) return record.GeoPath + name;
  }
  return {};
}

bool wasIdentified(frmDataIN& sheet) {
  SheetStructure found;
  return findSystemRows({sheet.F1D, found}) > 1 && found.row(sysrow::Identified) > 0;
}

}  // namespace

void addReadingOptions(CLI::App& command, ReadingChoice& choice) {
  auto* thesaurus = command.add_option("--thesaurus", choice.thesaurus, "thesaurus file");
  command.add_flag("--no-thesaurus", choice.noThesaurus, "understand only headings with a unit")
      ->excludes(thesaurus);
  command.add_option("--header-row", choice.headerRow, "row of the headings, from 1")
      ->check(CLI::PositiveNumber);
  command.add_flag("--decimal-comma", choice.decimalComma,
                   "in columns of numbers a comma is a decimal point");
}

ImportConsole::ImportConsole(CommandContext& context, const ReadingChoice& choice)
    : context_(context),
      choice_(choice),
      console_(context),
      thesaurus_(console_.session()),
      import_{console_.session(), tables_, thesaurus_},
      shell_("MDIMain"),
      sheets_(shell_, import_) {
  tables_.load(session().record.GeoPath + "\\reference");
  loadThesaurus();
  sheets_.chkUseThes.setChecked(!choice.noThesaurus);
  sheets_.ConvertDecimalCommas = choice.decimalComma;
  sheets_.chkUnIDToUser.setChecked(true);
  import_.loadAllRows = true;
}

void ImportConsole::loadThesaurus() {
  if (choice_.noThesaurus) return;
  const std::string path = thesaurusPath(choice_, session().record);
  if (path.empty()) {
    context_.err << "lodex: there is no thesaurus; only headings with a unit are understood\n";
    return;
  }
  thesaurus_.Aukaise(path);
}

void ImportConsole::openOne(const std::string& file) {
  session().log.clear();
  sheets_.openSources({file});
  if (sheets_.DataSheetCount() == 0) return;
  // A user at a window sees at once that the lines are rubbish; a script does not.
  frmDataIN& opened = sheets_.sheet(sheets_.DataSheetCount());
  if (!opened.NotReadable.empty()) {
    const std::string reason = opened.NotReadable;
    opened.close();
    throw FileError(reason);
  }
  printLines(session().log.txtLog.text(), "");
}

int ImportConsole::open(const std::vector<std::string>& files) {
  int failed = 0;
  for (const std::string& file : files) {
    try {
      openOne(file);
    } catch (const Error& failure) {
      context_.err << "lodex: " << failure.what() << '\n';
      ++failed;
    }
  }
  return failed;
}

void ImportConsole::useHeaderRow(frmDataIN& sheet) {
  const int row = choice_.headerRow;
  if (row <= 1) return;
  if (row > sheet.F1D.LastRow()) {
    throw Error(sheet.caption() + " has no row " + std::to_string(row) + " for headings");
  }
  sheet.F1D.DeleteRange(1, 1, row - 1, 1, Shift::Rows);
  // What the user says wins over what the cells look like.
  sheet.txtH(sysrow::Header).setText("1");
  context_.err << "lodex: " << sheet.caption() << ": row " << row
               << " is the heading; the rows above it are left out\n";
}

// In the heading each unit does what it does in a heading that was written with its unit.
void ImportConsole::joinUnits(frmDataIN& sheet) {
  Worksheet& cells = sheet.F1D;
  SheetStructure found;
  if (sheet.structure().highestRow() > 0 || findSystemRows({cells, found}) > 0) return;
  if (!looksLikeUnits(cells, 2, 1)) return;
  for (int column = 2; column <= cells.LastCol(); ++column) {
    const std::string text(trimWhite(cells.TextRC(2, column)));
    const std::string known = unitOfWord(text);
    const std::string heading(trimWhite(cells.TextRC(1, column)));
    if (text.empty() || heading.ends_with(text)) continue;
    cells.TextRC(1, column, heading + " " + (known.empty() ? text : known));
  }
  cells.DeleteRange(2, 1, 2, 1, Shift::Rows);
  context_.err << "lodex: " << sheet.caption()
               << ": row 2 holds units; they are joined to the headings\n";
}

void ImportConsole::identify() {
  if (sheets_.DataSheetCount() == 0) return;
  std::vector<bool> identifiedBefore;  // by number, from 0
  for (int number = 1; number <= sheets_.DataSheetCount(); ++number) {
    useHeaderRow(sheets_.sheet(number));
    joinUnits(sheets_.sheet(number));
    identifiedBefore.push_back(wasIdentified(sheets_.sheet(number)));
  }
  frmLog& log = session().log;
  std::vector<std::string> logged;
  std::vector<std::string> errors;
  const bool useThesaurus = sheets_.chkUseThes.checked();
  for (const bool before : {false, true}) {
    for (int i = 0; i < sheets_.lstI.count(); ++i) {
      sheets_.lstI.setSelected(i, identifiedBefore[static_cast<size_t>(i)] == before);
    }
    if (sheets_.lstI.selectedItems().empty()) continue;
    // Of a sheet that was identified and saved, the rows may have been corrected since.
    sheets_.chkOnlyNonX.setChecked(before);
    sheets_.chkUseThes.setChecked(useThesaurus && !before);
    sheets_.IDENTIFY(false);
    if (!log.txtLog.text().empty()) logged.push_back(log.txtLog.text());
    if (!log.txtErr.text().empty()) errors.push_back(log.txtErr.text());
  }
  log.txtLog.setText(join(logged, "\r\n"));
  log.txtErr.setText(join(errors, "\r\n"));
  sheets_.chkOnlyNonX.setChecked(false);
  sheets_.chkUseThes.setChecked(useThesaurus);
}

void requireAllOpened(int failed, size_t files) {
  if (failed == 0) return;
  throw Error(std::to_string(failed) + " of " + std::to_string(files) +
              " files could not be opened");
}

std::string freeSheetName(const Worksheet& book, int sheet, const std::string& wanted) {
  constexpr size_t longest = 31;
  std::u32string name = decodeUtf8(wanted);
  for (char32_t& c : name) {
    if (std::u32string_view(U"[]:*?/\\").find(c) != std::u32string_view::npos) c = U'_';
  }
  if (name.empty()) name = U"Sheet";
  for (int number = 1;; ++number) {
    const std::u32string tail =
        number == 1 ? std::u32string() : decodeUtf8("_" + std::to_string(number));
    const std::string candidate = encodeUtf8(name.substr(0, longest - tail.size()) + tail);
    const int holder = book.SheetNumber(candidate);
    if (holder == 0 || holder == sheet) return candidate;
  }
}

}  // namespace lodex
