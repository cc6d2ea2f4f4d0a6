// lodex save: identified analyses into a database.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "cli/ConsoleJob.h"
#include "cli/ImportConsole.h"
#include "import/SaveInDB.h"

namespace lodex {
namespace {

struct SaveOptions {
  std::vector<std::string> files;
  std::string database;
  ReadingChoice reading;
  bool merge = false;
  bool overwrite = false;
  bool showLog = false;
};

void runSave(const SaveOptions& options, CommandContext& context) {
  ImportConsole console(context, options.reading);
  const int failed = console.open(options.files);
  // Half of the files is not what was asked for.
  requireAllOpened(failed, options.files.size());
  console.identify();
  console.printLines(console.session().log.txtErr.text(), "lodex: ");

  frmDDB destination(console.session());
  console.session().log.clear();
  const bool opened = destination.openDestination(options.database, true);
  console.printLines(console.session().log.txtErr.text(), "lodex: ");
  if (!opened) throw Error("Error in opening database " + shownName(options.database));
  DataSheets& sheets = console.sheets();
  SavingStage stage(console.shell(), console.session(), sheets, destination);
  stage.chkMerge.setChecked(options.merge || options.overwrite);
  stage.chkOverWrite.setChecked(options.overwrite);
  sheets.lstSrcD.selectAll(true);
  auto job = followProgress(console.session(), context.err);
  const bool finished = stage.SaveInDB(false);
  job.reset();

  const frmLog& log = console.session().log;
  if (options.showLog) context.out << replaceAll(log.txtLog.text(), "\r\n", "\n") << '\n';
  context.err << stage.savedRecords() << " records written in " << options.database << '\n';
  if (!finished) {
    throw Error("saving was stopped " + stage.outcome().reason +
                "; what was written until then stays");
  }
  if (stage.SaveErrors() > 0) {
    throw Error(std::to_string(stage.SaveErrors()) + " values or records were not saved");
  }
}

}  // namespace

void addSaveCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<SaveOptions>();
  CLI::App* command =
      app.add_subcommand("save", "identify analysis files and save them in a database");
  command->add_option("FILES", options->files, "workbooks and text files")->required();
  command
      ->add_option(
          "--db", options->database,
          "database file, made if it is missing; or NAME.ORA or a connection text for a server")
      ->required();
  command->add_flag("--merge", options->merge,
                    "look samples up by their key; fill fields that are empty");
  command->add_flag("--overwrite", options->overwrite, "merge, and replace values that are there");
  addReadingOptions(*command, options->reading);
  command->add_flag("--log", options->showLog, "print the log of the saving");
  command->callback([options, &context] { runSave(*options, context); });
}

}  // namespace lodex
