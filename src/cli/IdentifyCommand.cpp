// lodex identify: what foreign tables hold.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>
#include <ostream>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "cli/ImportConsole.h"
#include "cli/TextTable.h"

namespace lodex {
namespace {

struct IdentifyOptions {
  std::vector<std::string> files;
  std::string out;
  ReadingChoice reading;
  bool methodFromFile = false;
  bool showLog = false;
};

FileType kindOf(const std::string& path) {
  const std::string ending = extensionOf(path);
  if (ending == "txt" || ending == "tsv") return FileType::Text;
  if (ending == "xls") return FileType::Excel;
  if (ending == "xlsx") return FileType::Xlsx;
  throw Error(path + ": save as .txt, .xls or .xlsx");
}

// --- The table of columns ---

void printSheet(std::ostream& out, frmDataIN& sheet) {
  constexpr std::array<int, 8> shownRows = {sysrow::Header, sysrow::Element,   sysrow::Method,
                                            sysrow::Unit,   sysrow::Table,     sysrow::Field,
                                            sysrow::Type,   sysrow::Identified};
  SheetStructure structure = sheet.structure();
  const DescribedSheet described{sheet.F1D, structure};
  const int dataRows = std::max(0, sheet.F1D.LastRow() - structure.firstDataRow + 1);
  out << "Sheet " << sheet.caption() << ": " << dataRows << " data rows, first data row "
      << structure.firstDataRow << ", ID column "
      << (structure.idColumn > 0 ? columnLetters(structure.idColumn) : "none");
  if (structure.mineralColumn > 0) {
    out << ", mineral column " << columnLetters(structure.mineralColumn);
  }
  out << "\n\n";
  std::vector<TableRow> rows = {{"Column"}};
  for (const int row : shownRows) {
    std::string title(systemRowCaption(row));
    rows[0].push_back(title.substr(0, 1) + toLower(title.substr(1)));
  }
  rows[0].back() = "Mark";
  for (int column = std::max(1, structure.idColumn); column <= sheet.F1D.LastCol(); ++column) {
    rows.push_back({columnLetters(column)});
    for (const int row : shownRows) {
      rows.back().push_back(described.text(row, column));
    }
  }
  printTable(out, rows, TableAlignment::Left);
  out << '\n';
}

// --- Saving ---

void saveSheets(DataSheets& sheets, const std::string& path, FileType kind) {
  if (kind == FileType::Text) {
    sheets.sheet(1).F1D.Write(path, kind);
    return;
  }
  Worksheet book;
  book.dates1904(sheets.sheet(1).F1D.dates1904());
  for (int number = 1; number <= sheets.DataSheetCount(); ++number) {
    const Worksheet& from = sheets.sheet(number).F1D;
    if (number > 1) book.InsertSheets(number, 1);
    book.SheetName(number, freeSheetName(book, number, sheets.sheet(number).caption()));
    book.Sheet(number);
    if (from.LastRow() > 0) {
      book.CopyRange(1, 1, from.LastRow(), from.LastCol(), from, 1, 1, from.LastRow(),
                     from.LastCol());
    }
    book.FixedRows(from.FixedRows());
  }
  book.Sheet(1);
  book.Write(path, kind);
}

// --- The command ---

void runIdentify(const IdentifyOptions& options, CommandContext& context) {
  const FileType kind = options.out.empty() ? FileType::Unknown : kindOf(options.out);
  ImportConsole console(context, options.reading);
  DataSheets& sheets = console.sheets();
  sheets.chkFILEISMET.setChecked(options.methodFromFile);

  const int failed = console.open(options.files);
  if (kind == FileType::Text && sheets.DataSheetCount() > 1) {
    throw Error(options.out + ": a text file holds one sheet; save " +
                std::to_string(sheets.DataSheetCount()) + " sheets as .xls or .xlsx");
  }
  if (sheets.DataSheetCount() > 0) {
    console.identify();
    for (int number = 1; number <= sheets.DataSheetCount(); ++number) {
      printSheet(context.out, sheets.sheet(number));
    }
    const frmLog& log = console.session().log;
    if (options.showLog) {
      context.out << "Log\n\n" << replaceAll(log.txtLog.text(), "\r\n", "\n") << '\n';
    }
    console.printLines(log.txtErr.text(), "lodex: ");
    if (!options.out.empty()) saveSheets(sheets, options.out, kind);
  }
  requireAllOpened(failed, options.files.size());
}

}  // namespace

void addIdentifyCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<IdentifyOptions>();
  CLI::App* command =
      app.add_subcommand("identify", "find out what the columns of analysis files are");
  command->add_option("FILES", options->files, "workbooks and text files")->required();
  command->add_option("--out", options->out,
                      "save the described sheets (.txt for one sheet, .xls, .xlsx)");
  addReadingOptions(*command, options->reading);
  command->add_flag("--method-from-file", options->methodFromFile,
                    "the name of the file is the method of columns without one");
  command->add_flag("--log", options->showLog, "print the log of the identification");
  command->callback([options, &context] { runIdentify(*options, context); });
}

}  // namespace lodex
