// "lodex cells": every cell of a workbook as tab text.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <ostream>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Numbers.h"
#include "cli/Commands.h"
#include "worksheet/Worksheet.h"

namespace lodex {
namespace {

struct CellsOptions {
  std::string file;
  std::string sheet;
  bool formulas = false;
};

// Tabs and line ends inside a value would look like those between values.
std::string escaped(std::string_view text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\\':
        out += "\\\\";
        break;
      default:
        out += c;
    }
  }
  return out;
}

char kindLetter(const Value& value) {
  return value.isNumber() ? 'n' : value.isBoolean() ? 'b' : value.isError() ? 'e' : 't';
}

void printSheet(const Worksheet& book, int sheet, bool formulas, std::ostream& out) {
  const std::string name = escaped(book.SheetName(sheet));
  book.cells(sheet).forEachByRow([&](int row, int column, const Cell& cell) {
    const bool isFormula = cell.kind == ValueKind::Formula;
    const Value value = CellStore::valueOf(cell);
    if (value.isEmpty() && !(isFormula && formulas)) return;
    const std::string text =
        value.isNumber() ? exactNumberText(value.asNumber()) : escaped(value.asText());
    out << name << '\t' << cellAddress(row, column) << '\t' << kindLetter(value) << '\t' << text;
    if (formulas) {
      out << '\t';
      if (isFormula) out << '=' << escaped(book.FormulaSRC(sheet, row, column));
    }
    out << '\n';
  });
}

// A sheet by name, or else by number.
int sheetOf(const Worksheet& book, const std::string& text) {
  const int named = book.SheetNumber(text);
  if (named > 0) return named;
  const auto number = parseInteger(text);
  if (number && *number >= 1 && *number <= book.NumSheets()) return *number;
  throw Error("The file has no sheet " + text);
}

}  // namespace

void addCellsCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<CellsOptions>();
  CLI::App* command =
      app.add_subcommand("cells", "list every cell: sheet, address, kind (n, t, b, e), value");
  command->add_option("FILE", options->file, "a workbook or text file")->required();
  command->add_option("--sheet", options->sheet, "only this sheet, by name or number");
  command->add_flag("--formulas", options->formulas, "add a column with the formulas");
  command->callback([options, &context] {
    Worksheet book;
    book.Read(options->file);
    context.found.append(book.ReadFindings());
    const int only = options->sheet.empty() ? 0 : sheetOf(book, options->sheet);
    for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
      if (only == 0 || only == sheet) printSheet(book, sheet, options->formulas, context.out);
    }
  });
}

}  // namespace lodex
