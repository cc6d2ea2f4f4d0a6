// lodex calc: runs the methods of a calculation group over the samples of analysis files.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "calc/CalculationRun.h"
#include "calc/Calculations.h"
#include "calc/frmSelectElements.h"
#include "chem/Headings.h"
#include "cli/CalculationGroups.h"
#include "cli/ConsoleJob.h"
#include "cli/ImportConsole.h"
#include "cli/StoredSamples.h"
#include "cli/WorkbookFiles.h"
#include "import/SheetPaint.h"
#include "worksheet/files/TextWriter.h"

namespace lodex {
namespace {

struct CalcOptions {
  std::vector<std::string> files;
  StoredSamplesChoice stored;  // in place of files
  std::string group;
  std::vector<std::string> methods;
  std::string out;
  ReadingChoice reading;
  bool askRefs = false;
};

bool isTextFile(const std::string& path) {
  const std::string ending = extensionOf(path);
  return ending == "txt" || ending == "tsv" || ending == "csv";
}

// Fails early, before any work.
void requireGoodTarget(const std::string& path) {
  const std::string folder = folderOf(path);
  if (!folder.empty() && !pathExists(folder)) throw Error("There is no folder " + folder);
  const std::string ending = extensionOf(path);
  if (path.empty() || ending == "xls" || ending == "xlsx" || isTextFile(path)) return;
  throw Error(path + ": save results as .xls, .xlsx or, those of one method, .txt or .csv");
}

std::vector<std::string> chosenMethods(const CalcOptions& options, const CalculationGroup& group) {
  const std::vector<std::string> all = group.MethodListOrder();
  if (all.empty()) throw Error("There is no method workbook in " + group.folder());
  if (options.methods.empty()) return all;
  std::vector<std::string> chosen;
  for (const std::string& name : options.methods) {
    const int number = group.MethodIndex(name);
    if (number == 0) {
      throw Error("There is no method " + name + " in " + group.folder() +
                  "; there are: " + join(all, ", "));
    }
    chosen.push_back(group.method(number).name());
  }
  // As if they had been selected in the list.
  std::vector<std::string> inListOrder;
  for (const std::string& name : all) {
    if (std::find(chosen.begin(), chosen.end(), name) != chosen.end()) inListOrder.push_back(name);
  }
  return inListOrder;
}

std::optional<std::vector<int>> askOnConsole(Dialogs& dialogs, const std::string& caption,
                                             const std::vector<std::string>& offers) {
  std::string prompt = caption + " (numbers between commas, the best first; 0 for none)";
  std::vector<std::string> all;
  for (const std::string& offer : offers) {
    all.push_back(std::to_string(all.size() + 1));
    prompt += "\n  " + all.back() + " = " + offer;
  }
  const auto answer = dialogs.inputBox(prompt, caption, join(all, ","));
  if (!answer) return std::nullopt;
  for (const std::string& number : SplitText(*answer, ",")) {
    const auto position = parseInteger(number);
    if (position && *position >= 0 && *position <= static_cast<int>(offers.size())) continue;
    throw Error(caption + ": \"" + *answer + "\" is not a choice among " + join(all, ", "));
  }
  return chosenPositions(*answer);
}

// Rows of an .xls file below the system rows.
constexpr int mostXlsSamples = 65536 - resultrow::firstData + 1;

void requireNoDatabase(const std::vector<std::string>& files) {
  static constexpr const char* endings[] = {"mdb", "accdb", "db", "sqlite"};
  for (const std::string& file : files) {
    if (std::find(std::begin(endings), std::end(endings), extensionOf(file)) == std::end(endings)) {
      continue;
    }
    throw Error(file + " is a database: samples are taken from one by --db " + file);
  }
}

// Opens and identifies the files. Returns how many could not be opened.
int openFiles(const CalcOptions& options, ImportConsole& console) {
  if (options.files.empty()) return 0;
  const int failed = console.open(options.files);
  if (console.sheets().DataSheetCount() == 0) requireAllOpened(failed, options.files.size());
  console.identify();
  console.printLines(console.session().log.txtErr.text(), "lodex: ");
  console.session().log.clear();
  return failed;
}

CalculationOutcome calculate(const CalculationRequest& asked, int mostSamples, Session& session,
                             std::ostream& err) {
  // Made with the first sample: before that an interrupt simply ends the program.
  std::optional<ConsoleJob> job;
  CalculationRequest request = asked;
  request.log = [&](std::string_view line, LogKind kind) { session.log.LisaaLog(line, kind); };
  request.nextSample = [&](std::string_view text, int sample, int samples) {
    if (samples > mostSamples) {
      throw Error(std::to_string(samples) + " samples do not fit into an .xls file; save as .xlsx");
    }
    if (!job) job.emplace(err);
    job->show(text, sample, samples);
    session.pumpEvents();
    return !session.progress.AbortFlag;
  };
  const CalculationOutcome outcome = runCalculation(request);
  session.found.append(outcome.outcome.found);
  return outcome;
}

void save(const std::string& path, Worksheet& results) {
  if (isTextFile(path) && results.NumSheets() > 1) {
    throw Error(path + ": a text file holds one sheet; save " +
                std::to_string(results.NumSheets()) + " sheets as .xls or .xlsx");
  }
  for (int sheet = 1; sheet <= results.NumSheets(); ++sheet) {
    results.SheetName(sheet, freeSheetName(results, sheet, results.SheetName(sheet)));
  }
  SheetStructure structure = resultStructure();
  paintStructure(results, structure, true, false);
  writeByEnding(path, results);
}

void print(std::ostream& out, Worksheet& results) {
  for (int sheet = 1; sheet <= results.NumSheets(); ++sheet) {
    results.Sheet(sheet);
    if (results.NumSheets() > 1) out << "Sheet " << results.SheetName(sheet) << '\n';
    out << replaceAll(writeText(results, '\t'), "\r\n", "\n") << '\n';
  }
}

std::string counted(int count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string countLine(const CalculationOutcome& outcome, const Worksheet& results) {
  return counted(outcome.samples, "sample") + " found, " + std::to_string(outcome.calculated) +
         " calculated, " + counted(results.NumSheets(), "result sheet") + ", " +
         counted(outcome.ErrorCount, "error");
}

void fillSources(const CalcOptions& options, ImportConsole& console, const SourceSheets& sheets) {
  SourceRequest sources;
  if (options.askRefs) {
    sources.ask = [&](const std::string& caption, const std::vector<std::string>& offers) {
      return askOnConsole(console.session().dialogs(), caption, offers);
    };
  }
  buildSources(console.sheets().F1Ref, sheets, console.context().converter, sources);
}

void runCalc(const CalcOptions& options, CommandContext& context) {
  requireGoodTarget(options.out);
  requireOtherFile(options.out, options.files);
  requireNoDatabase(options.files);
  ImportConsole console(context, options.reading);
  Session& session = console.session();
  CalculationGroup group;
  loadGroup(group, options.group, session.record);
  context.found.append(group.found());
  const std::vector<std::string> methods = chosenMethods(options, group);
  for (int method = 1; method <= group.count(); ++method) {
    requireOtherFile(options.out, {group.method(method).path});
  }

  const int failed = openFiles(options, console);
  DatabaseTables tables;
  if (!options.stored.database.empty()) loadStoredSamples(console, options.stored, tables);
  SourceSheets sheets =
      options.files.empty() ? tables.sheets() : openSourceSheets(console.sheets());
  for (SourceSheet& sheet : sheets) sheet.selected = true;

  fillSources(options, console, sheets);

  Worksheet results;
  const CalculationRequest request{
      group, methods, sheets, console.sheets().F1Ref, console.context().converter, results};
  const int mostSamples = extensionOf(options.out) == "xls" ? mostXlsSamples : maxRows;
  const CalculationOutcome outcome = calculate(request, mostSamples, session, context.err);
  context.err << countLine(outcome, results) << '\n';
  if (outcome.samples == 0) throw Error("There are no samples in what was opened");
  if (options.out.empty()) {
    print(context.out, results);
  } else {
    save(options.out, results);
  }
  if (outcome.outcome.aborted()) {
    throw Error("The calculation was aborted " + outcome.outcome.reason + "; these are kept");
  }
  requireAllOpened(failed, options.files.size());
}

}  // namespace

void addCalcCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<CalcOptions>();
  CLI::App* command =
      app.add_subcommand("calc", "run the methods of a calculation group over analysis files");
  auto* files = command->add_option("FILES", options->files, "workbooks and text files");
  auto* database =
      command->add_option("--db", options->stored.database, "database with the samples")
          ->excludes(files);
  command
      ->add_option("--table", options->stored.tables,
                   "table of the database, may be repeated; without it all that know the samples")
      ->needs(database)
      ->allow_extra_args(false);
  command->add_option("--filter", options->stored.filter, "stored filter that picks the samples")
      ->needs(database);
  command->add_option("--group", options->group, "calculation group, or a folder of workbooks")
      ->required();
  command->add_option("--method", options->methods,
                      "method of the group, may be repeated; without it all of them");
  command->add_flag("--ask-refs", options->askRefs,
                    "ask where an item has several columns to come from");
  command->add_option(
      "--out", options->out,
      "save the results (.xls, .xlsx; .txt or .csv for one method) instead of printing");
  addReadingOptions(*command, options->reading);
  // Several values would swallow the files that follow.
  command->get_option("--method")->allow_extra_args(false);
  command->callback([options, files, database, &context] {
    if (files->count() + database->count() == 0) throw CLI::RequiredError("FILES or --db");
    runCalc(*options, context);
  });
}

}  // namespace lodex
