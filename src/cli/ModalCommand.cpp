// lodex modal: how much of which mineral the samples of an assay file or a database hold.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "cli/ConsoleJob.h"
#include "cli/ImportConsole.h"
#include "cli/TextTable.h"
#include "cli/WorkbookFiles.h"
#include "db/Connection.h"
#include "db/MapDatabase.h"
#include "db/OpenDatabase.h"
#include "modal/ResultBook.h"
#include "modal/RetAndCalc.h"
#include "modal/SetUp.h"
#include "modal/StoredAssays.h"

namespace lodex {
namespace {

struct ModalOptions {
  std::string assays;
  std::string database;
  std::string filter;
  std::string setUp;
  std::string out;
  std::string minerals;
  std::string sheet;
  ReadingChoice reading;
  bool allTotal = false;
  bool report = false;
  int digits = -1;  // -1: as the set-up says
};

// The set-up file with what follows from it.
struct LoadedSetUp {
  Worksheet F1OpenSave;
  Worksheet F1CalcOpt;
  ModalLists lists;
  Findings found;  // what its loading noticed
  int digits = 3;
};

LoadedSetUp loadSetUp(const ModalOptions& options) {
  LoadedSetUp setUp;
  setUp.F1OpenSave.Read(options.setUp);
  ValmistaF1CalcOpt(setUp.F1OpenSave, setUp.F1CalcOpt);
  if (setUp.F1CalcOpt.LastRow() == 0) throw Error(options.setUp + " holds no rounds");
  setUp.found = setUp.F1OpenSave.ReadFindings();
  for (const std::string& remark : loadingRemarks(setUp.F1OpenSave, setUp.F1CalcOpt)) {
    setUp.found.warn(remark, {.file = options.setUp});
  }
  collectMinerals(setUp.F1CalcOpt, setUp.lists);
  for (const std::string& label : mineralsInNoRound(setUp.F1OpenSave, setUp.lists)) {
    setUp.found.warn("Mineral " + label + " is in no round", {.file = options.setUp});
  }
  const auto stored = parseInteger(setUp.F1CalcOpt.TextRC(1, setup::Text));
  if (stored && *stored >= 0) setUp.digits = *stored;
  if (options.digits >= 0) setUp.digits = options.digits;
  return setUp;
}

std::string reportOf(const LoadedSetUp& setUp) {
  return setUpReport(setUp.F1CalcOpt,
                     "Total number of rounds = " + std::to_string(roundCount(setUp.F1CalcOpt)));
}

// The file that the assays come from.
const std::string& sourceName(const ModalOptions& options) {
  return options.database.empty() ? options.assays : options.database;
}

// --- The assays ---

// The sheet of that name; without one the first sheet of the file.
frmDataIN& chooseSheet(DataSheets& sheets, const ModalOptions& options, std::ostream& err) {
  if (sheets.DataSheetCount() == 0) throw Error(options.assays + " holds no sheet");
  std::string names;
  for (int number = sheets.DataSheetCount(); number >= 1; --number) {
    frmDataIN& sheet = sheets.sheet(number);
    const auto pieces = split(sheet.caption(), " / ");
    if (!options.sheet.empty() &&
        (equalsNoCase(pieces.back(), options.sheet) || sheet.caption() == options.sheet)) {
      return sheet;
    }
    names += (names.empty() ? "" : ", ") + pieces.back();
  }
  if (!options.sheet.empty()) {
    throw Error(options.assays + " has no sheet " + options.sheet + "; it has " + names);
  }
  // The list has the sheets of a workbook in reverse order.
  frmDataIN& first = sheets.sheet(sheets.DataSheetCount());
  if (sheets.DataSheetCount() > 1) {
    err << "Assays are taken from " << first.caption() << "; --sheet takes another one of " << names
        << '\n';
  }
  return first;
}

AssaySheet sourceOf(const frmDataIN& sheet) {
  return {&sheet.F1D,
          sheet.SystemRows(sysrow::Header),
          sheet.SystemRows(sysrow::Element),
          sheet.SystemRows(sysrow::Method),
          sheet.SystemRows(sysrow::Unit),
          sheet.FirstDataRow(),
          sheet.IDColumn(),
          sheet.caption()};
}

// Prints what the log says of a database that was opened, of an Access file for example.
void printOpening(ImportConsole& console) {
  frmLog& log = console.session().log;
  console.printLines(log.txtErr.text(), "lodex: ");
  log.clear();
}

// Opens the database and finds its assays, afresh every time: it may have got new fields since.
void mapStoredAssays(const ModalOptions& options, ImportConsole& console, MappedDatabase& database,
                     StoredSource& source, Worksheet& F1Ref) {
  Session& session = console.session();
  database.path = options.database;
  if (!MapDatabase(session, database, {true, false, false}).done()) {
    printOpening(console);
    throw Error("Error in opening database " + shownName(options.database));
  }
  printOpening(console);
  source = {&database, options.filter, ""};
  Findings found;
  buildMethodMap(source, console.tables().F1ELoc, F1Ref, found);
  session.notice(found);
}

// --- What is printed ---

void printAmounts(std::ostream& out, const frmResult& result) {
  out << "Modal composition, %\n\n";
  const Worksheet& mode = result.F1MC;
  std::vector<TableRow> rows(1);
  for (int c = 1; c <= mode.MaxCol(); ++c) rows[0].push_back(mode.ColText(c));
  for (int r = 1; r <= mode.LastRow(); ++r) {
    rows.emplace_back();
    for (int c = 1; c <= mode.MaxCol(); ++c) rows.back().push_back(mode.TextRC(r, c));
  }
  printTable(out, rows, TableAlignment::Right);
}

void printResiduals(std::ostream& out, const frmResult& result, int digits) {
  const int decimals = std::max(digits, 3);
  out << "\nResidual assays, %\n\n";
  std::vector<TableRow> rows = {{"SampleNo"}};
  for (const int c : result.equationColumns) rows[0].push_back(result.F1R.ColText(c));
  for (int r = 1; r <= result.F1MC.LastRow(); ++r) {
    rows.push_back({result.F1R.TextRC(r, 1)});
    for (const int c : result.equationColumns) {
      const bool assayed = result.F1R.HasContent(r, c);
      rows.back().push_back(assayed ? FormatRounded(result.F1R.NumberRC(r, c), decimals) : "");
    }
  }
  printTable(out, rows, TableAlignment::Right);
}

// The notes of samples that say more than the set-up's name.
void printNotes(std::ostream& out, const frmResult& result, const std::string& setUpName) {
  out << "\nNotes\n\n";
  std::vector<TableRow> rows = {{"SampleNo", "Note"}};
  for (int r = 1; r <= result.F1N.LastRow(); ++r) {
    const std::string note = result.F1N.TextRC(r, 2);
    if (note != setUpName) rows.push_back({result.F1N.TextRC(r, 1), note});
  }
  if (rows.size() > 1) {
    printTable(out, rows, TableAlignment::Left);
  } else {
    out << "All samples: " << setUpName << '\n';
  }
}

// --- Saving ---

bool fitsXls(const Worksheet& book) {
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    if (book.LastRow(sheet) > 65536 || book.LastCol(sheet) > 256) return false;
  }
  return true;
}

// Writes to the path asked for, else to the current folder, or to the user's data folder where the
// current one cannot be written.
std::string save(const Worksheet& book, const ModalOptions& options, const SessionRecord& record) {
  if (!options.out.empty()) {
    writeByEnding(options.out, book);
    return options.out;
  }
  const std::string file = fileNameOf(sourceName(options));
  const std::string name =
      file.substr(0, file.rfind('.')) + "_modal" + (fitsXls(book) ? ".xls" : ".xlsx");
  try {
    writeByEnding(name, book);
    return name;
  } catch (const FileError&) {
    const auto folder = nativePath(record.UserPath) / "data";
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::string path = pathText(folder / nativePath(name));
    writeByEnding(path, book);
    return path;
  }
}

std::string stemOf(const std::string& path) {
  const std::string name = fileNameOf(path);
  return name.substr(0, name.rfind('.'));
}

// --- The command ---

// True when a set-up asks for assays at all; one of X lines alone does not.
bool wantsAssays(const Worksheet& F1CalcOpt) {
  for (int row = 1; row <= F1CalcOpt.LastRow(); ++row) {
    const std::string item = F1CalcOpt.TextRC(row, setup::Equation);
    if (!item.empty() && equationKind(item) == EquationKind::Assay) return true;
  }
  return false;
}

// Where the assays come from. What it points to must outlive the calculation.
struct AssaySource {
  MappedDatabase samples;
  StoredSource stored;
  Worksheet F1Ref;
};

void useAssays(const ModalOptions& options, CommandContext& context, ImportConsole& console,
               AssaySource& source, ModalRequest& request) {
  Session& session = console.session();
  if (options.database.empty()) {
    console.openOne(options.assays);
    console.identify();
    console.printLines(session.log.txtErr.text(), "lodex: ");
    request.assays = sourceOf(chooseSheet(console.sheets(), options, context.err));
    session.log.clear();
    return;
  }
  mapStoredAssays(options, console, source.samples, source.stored, source.F1Ref);
  request.stored = &source.stored;
  request.F1Ref = &source.F1Ref;
}

void openMinerals(const ModalOptions& options, ImportConsole& console, Connection& minerals) {
  Session& session = console.session();
  const std::string database = options.minerals.empty()
                                   ? session.ExpandPath(session.record.MineralDbPath, "")
                                   : options.minerals;
  if (database.empty()) throw Error("There is no mineral database; name one with --minerals");
  openDatabase(session, minerals, database);
  printOpening(console);
}

void printResults(std::ostream& out, const frmResult& result, const LoadedSetUp& setUp,
                  const std::string& setUpName) {
  printAmounts(out, result);
  printResiduals(out, result, setUp.digits);
  printNotes(out, result, setUpName);
}

void calculate(const ModalOptions& options, CommandContext& context, ImportConsole& console,
               LoadedSetUp& setUp, const std::string& report) {
  Session& session = console.session();
  const taulukot& tables = console.tables();
  Connection minerals;
  openMinerals(options, console, minerals);

  ModalRequest request;
  request.F1CalcOpt = &setUp.F1CalcOpt;
  request.F1ELoc = &tables.F1ELoc;
  request.minerals = &minerals;
  request.allTotal = options.allTotal;
  request.digits = setUp.digits;
  request.setUpName = stemOf(options.setUp);
  AssaySource source;
  useAssays(options, context, console, source, request);
  session.notice(setUp.found);

  frmResult result;
  frmSolve solver(session.dialogs());
  ModalScratch scratch;
  auto job = followProgress(session, context.err);
  const Outcome outcome =
      RetAndCalc(request, ModalMode::Automated, setUp.lists, result, solver, scratch, session);
  job.reset();
  session.notice(outcome.found);
  if (outcome.failed()) throw Error(outcome.reason);
  if (outcome.done() && result.equationColumns.empty() && wantsAssays(setUp.F1CalcOpt)) {
    throw Error("No equation of " + options.setUp + " has an assay in " + sourceName(options));
  }
  if (outcome.aborted() && result.F1MC.LastRow() == 0) {
    throw Error("The calculation was aborted " + outcome.reason + "; nothing is saved");
  }

  // Saved first: a reader of the printed tables may stop before their end.
  const Worksheet book = resultBook(result, setUp.lists, tables.F1ELoc, report,
                                    session.log.txtLog.text(), setUp.digits);
  const std::string saved = save(book, options, session.record);
  printResults(context.out, result, setUp, request.setUpName);
  context.out << '\n' << saved << '\n';
  if (outcome.aborted()) {
    throw Error("The calculation was aborted " + outcome.reason +
                "; samples that were not finished are empty");
  }
}

// Fails early, before any work.
void requireGoodTarget(const ModalOptions& options) {
  static constexpr const char* endings[] = {"xls", "xlsx", "vts"};
  const std::string ending = extensionOf(options.out);
  if (std::find(std::begin(endings), std::end(endings), ending) == std::end(endings)) {
    throw Error(options.out + ": results fill several sheets; the ending must be xls, xlsx or vts");
  }
  requireOtherFile(options.out, {options.assays, options.setUp, options.database});
}

void runModal(const ModalOptions& options, CommandContext& context) {
  if (!options.out.empty()) requireGoodTarget(options);
  ImportConsole console(context, options.reading);
  LoadedSetUp setUp = loadSetUp(options);
  const std::string report = reportOf(setUp);
  if (options.report) {
    context.out << replaceAll(report, "\r\n", "\n");
    return;
  }
  calculate(options, context, console, setUp, report);
}

}  // namespace

void addModalCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<ModalOptions>();
  CLI::App* command =
      app.add_subcommand("modal", "calculate how much of which mineral the samples hold");
  auto* assays = command->add_option("--assays", options->assays, "file of assays, any kind");
  auto* database =
      command->add_option("--db", options->database, "database with the assays")->excludes(assays);
  command->add_option("--filter", options->filter, "stored filter that picks the samples")
      ->needs(database);
  command->add_option("--setup", options->setUp, "mineral quantification set-up (.mmq)")
      ->required();
  command->add_option("--out", options->out,
                      "workbook to save; without it <source>_modal.xls in the current folder");
  command->add_option("--minerals", options->minerals, "the mineral database");
  command->add_option("--sheet", options->sheet, "sheet of the assay file")->needs(assays);
  addReadingOptions(*command, options->reading);
  command->add_flag("--all-total", options->allTotal, "every method dissolves all of a mineral");
  command->add_option("--digits", options->digits, "decimals of the amounts")
      ->check(CLI::Range(0, 22));
  command->add_flag("--report", options->report, "only print the set-up")
      ->excludes(assays)
      ->excludes(database);
  command->callback([options, assays, database, &context] {
    if (!options->report && assays->count() + database->count() == 0) {
      throw CLI::RequiredError("--assays or --db");
    }
    runModal(*options, context);
  });
}

}  // namespace lodex
