// lodex calc: runs the methods of a calculation group over the samples of analysis files.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "calc/CalculationRun.h"
#include "calc/Calculations.h"
#include "calc/frmSelectElements.h"
#include "cli/CalculationGroups.h"
#include "cli/ImportConsole.h"
#include "cli/WorkbookFiles.h"
#include "worksheet/files/TextWriter.h"

namespace lodex {
namespace {

struct CalcOptions {
  std::vector<std::string> files;
  std::string group;
  std::vector<std::string> methods;
  std::string out;
  std::string thesaurus;
  bool noThesaurus = false;
  bool askRefs = false;
};

void checkEnding(const std::string& path) {
  const std::string ending = extensionOf(path);
  if (path.empty() || ending == "xls" || ending == "xlsx" || ending == "txt" || ending == "tsv") {
    return;
  }
  throw Error(path + ": save results as .xls, .xlsx or, those of one method, .txt");
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
  std::string prompt = caption;
  std::vector<std::string> all;
  for (const std::string& offer : offers) {
    all.push_back(std::to_string(all.size() + 1));
    prompt += "\n  " + all.back() + " = " + offer;
  }
  const auto answer = dialogs.inputBox(prompt, caption, join(all, ","));
  return answer ? chosenPositions(*answer) : std::nullopt;
}

SourceSheets samplesOf(ImportConsole& console) {
  SourceSheets sheets = openSourceSheets(console.sheets());
  for (SourceSheet& sheet : sheets) sheet.selected = true;
  return sheets;
}

void save(const std::string& path, Worksheet& results) {
  const std::string ending = extensionOf(path);
  if ((ending == "txt" || ending == "tsv") && results.NumSheets() > 1) {
    throw Error(path + ": a text file holds one sheet; save " +
                std::to_string(results.NumSheets()) + " sheets as .xls or .xlsx");
  }
  for (int sheet = 1; sheet <= results.NumSheets(); ++sheet) {
    results.SheetName(sheet, freeSheetName(results, sheet, results.SheetName(sheet)));
  }
  writeByEnding(path, results);
}

void print(std::ostream& out, Worksheet& results) {
  for (int sheet = 1; sheet <= results.NumSheets(); ++sheet) {
    results.Sheet(sheet);
    if (results.NumSheets() > 1) out << "Sheet " << results.SheetName(sheet) << '\n';
    out << replaceAll(writeText(results, '\t'), "\r\n", "\n") << '\n';
  }
}

std::string countLine(const CalculationOutcome& outcome, const Worksheet& results) {
  return std::to_string(outcome.samples) + " samples found, " + std::to_string(outcome.calculated) +
         " calculated, " + std::to_string(results.NumSheets()) + " result sheets, " +
         std::to_string(outcome.errors) + " errors";
}

void runCalc(const CalcOptions& options, CommandContext& context) {
  checkEnding(options.out);
  ImportConsole console(context, {options.thesaurus, options.noThesaurus});
  Session& session = console.session();
  CalculationGroup group;
  loadGroup(group, options.group, session.record);
  for (const std::string& problem : group.problems()) context.err << "lodex: " << problem << '\n';
  const std::vector<std::string> methods = chosenMethods(options, group);

  const int failed = console.open(options.files);
  console.identify();
  console.printLines(session.log.txtErr.text(), "lodex: ");
  session.log.clear();

  const SourceSheets sheets = samplesOf(console);
  const CompoundConverter& converter = console.context().converter;
  Worksheet& F1Ref = console.sheets().F1Ref;
  SourceRequest sources;
  if (options.askRefs) {
    sources.ask = [&](const std::string& caption, const std::vector<std::string>& offers) {
      return askOnConsole(session.dialogs(), caption, offers);
    };
  }
  buildSources(F1Ref, sheets, converter, sources);
  Worksheet results;
  CalculationRequest request{group, methods, sheets, F1Ref, converter, results};
  request.log = [&](std::string_view line, LogKind kind) { session.log.LisaaLog(line, kind); };
  const CalculationOutcome outcome = runCalculation(request);

  console.printLines(session.log.txtErr.text(), "lodex:");
  context.err << countLine(outcome, results) << '\n';
  if (outcome.samples == 0) throw Error("There are no samples in what was opened");
  if (options.out.empty()) {
    print(context.out, results);
  } else {
    save(options.out, results);
  }
  requireAllOpened(failed, options.files.size());
}

}  // namespace

void addCalcCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<CalcOptions>();
  CLI::App* command =
      app.add_subcommand("calc", "run the methods of a calculation group over analysis files");
  command->add_option("FILES", options->files, "workbooks and text files")->required();
  command->add_option("--group", options->group, "calculation group, or a folder of workbooks")
      ->required();
  command->add_option("--method", options->methods,
                      "method of the group, may be repeated; all unless told");
  command->add_flag("--ask-refs", options->askRefs,
                    "ask where an item has several columns to come from");
  command->add_option("--out", options->out,
                      "save the results (.xls, .xlsx, .txt for one method) instead of printing");
  auto* thesaurus = command->add_option("--thesaurus", options->thesaurus, "thesaurus file");
  command->add_flag("--no-thesaurus", options->noThesaurus, "understand only headings with a unit")
      ->excludes(thesaurus);
  // Several values would swallow the files that follow.
  command->get_option("--method")->allow_extra_args(false);
  command->callback([options, &context] { runCalc(*options, context); });
}

}  // namespace lodex
