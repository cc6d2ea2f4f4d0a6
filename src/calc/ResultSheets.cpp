#include "calc/ResultSheets.h"

#include <algorithm>

#include "import/ColumnTypes.h"

namespace lodex {
namespace {

constexpr int valueColumn = 3;
constexpr int typeColumn = 4;

std::string outputName(const MethodBook& method, int row) {
  std::string name = method.book.TextSRC(method.outputSheet, row, 2);
  return name.empty() ? method.book.TextSRC(method.outputSheet, row, 1) : name;
}

bool hasFormulaName(const MethodBook& method, int row) {
  return method.book.HasFormula(method.outputSheet, row, 1) ||
         method.book.HasFormula(method.outputSheet, row, 2);
}

// "Sheet.Field" names a sheet; "D.I.", "Alk. index" and "2.5" do not.
bool splitTarget(const std::string& name, std::string& sheet, std::string& field) {
  const size_t dot = name.find('.');
  if (dot == std::string::npos || dot == 0 || name.find('.', dot + 1) != std::string::npos) {
    return false;
  }
  sheet = name.substr(0, dot);
  field = name.substr(dot + 1);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const bool decimals = isDigit(sheet.back()) && (field.empty() || isDigit(field.front()));
  return !field.empty() && field.front() != ' ' && !decimals;
}

Value resultOf(const Value& output) {
  if (output.kind() == ValueKind::Number) return output;
  if (output.kind() == ValueKind::NumericText) return output.asNumber();
  return output.isEmpty() ? output : Value::text(output.asText());
}

}  // namespace

SheetStructure resultStructure() {
  SheetStructure structure;
  structure.row(sysrow::Header) = resultrow::heading;
  structure.row(sysrow::Table) = resultrow::table;
  structure.row(sysrow::Field) = resultrow::field;
  structure.row(sysrow::Type) = resultrow::type;
  structure.row(sysrow::Indexed) = resultrow::index;
  structure.firstDataRow = resultrow::firstData;
  structure.idColumn = resultIdColumn;
  return structure;
}

ResultSheets::ResultSheets(Worksheet& book, KeyField key) : book_(book), key_(std::move(key)) {
  if (key_.name.empty()) key_.name = "SampleNo";
}

void ResultSheets::reset(const std::vector<std::string>& names) {
  sheets_.clear();
  outputs_.clear();
  book_ = Worksheet();
  book_.SheetName(1, names.empty() ? "SH" : names.front());
  addSheets(names);
}

void ResultSheets::addSheets(const std::vector<std::string>& names) {
  for (const std::string& name : names) sheetNamed(name);
  for (int number = book_.NumSheets(); number >= 1; --number) {
    // A sheet that was narrowed to what it holds has to take rows again.
    book_.Sheet(number);
    book_.MaxRow(maxRows);
    book_.MaxCol(maxColumns);
  }
}

int ResultSheets::sheetNamed(std::string_view name) {
  const int known = book_.SheetNumber(name);
  if (known > 0) return known;
  book_.InsertSheets(book_.NumSheets() + 1, 1);
  book_.SheetName(book_.NumSheets(), name);
  return book_.NumSheets();
}

ResultSheets::Sheet& ResultSheets::sheet(int number) {
  while (sheets_.size() < static_cast<size_t>(number)) {
    const int added = static_cast<int>(sheets_.size()) + 1;
    Sheet made;
    made.lastRow = std::max(book_.LastRow(added), resultrow::firstData - 1);
    made.lastColumn = std::max(book_.LastCol(added), resultIdColumn);
    for (int column = resultIdColumn + 1; column <= made.lastColumn; ++column) {
      made.columns.emplace(book_.TextSRC(added, resultrow::heading, column), column);
    }
    sheets_.push_back(std::move(made));
  }
  return sheets_[static_cast<size_t>(number) - 1];
}

void ResultSheets::startSample(const Value& sampleId) {
  sampleId_ = sampleId;
  for (Sheet& each : sheets_) each.ownRow = each.sharedRow = 0;
}

void ResultSheets::writeSystemRows(int number, const std::string& methodName) {
  for (const auto& [row, systemRow] :
       {std::pair(resultrow::heading, sysrow::Header), std::pair(resultrow::table, sysrow::Table),
        std::pair(resultrow::field, sysrow::Field), std::pair(resultrow::type, sysrow::Type),
        std::pair(resultrow::index, sysrow::Indexed)}) {
    book_.TextSRC(number, row, 1, systemRowCaption(systemRow));
  }
  book_.TextSRC(number, resultrow::heading, resultIdColumn, key_.name);
  book_.TextSRC(number, resultrow::table, resultIdColumn, methodName);
  book_.TextSRC(number, resultrow::field, resultIdColumn, key_.name);
  book_.TextSRC(number, resultrow::type, resultIdColumn, key_.type);
  book_.TextSRC(number, resultrow::index, resultIdColumn, "YES");
}

int ResultSheets::rowFor(int number, bool shared, const std::string& methodName) {
  Sheet& target = sheet(number);
  int& row = shared ? target.sharedRow : target.ownRow;
  if (row > 0) return row;
  if (!book_.HasContent(number, resultrow::field, resultIdColumn)) {
    writeSystemRows(number, methodName);
  }
  book_.ValueSRC(number, target.lastRow + 1, resultIdColumn, sampleId_);
  row = ++target.lastRow;
  return row;
}

int ResultSheets::columnFor(int number, const std::string& field, const MethodBook& method,
                            int outputRow) {
  Sheet& target = sheet(number);
  const auto known = target.columns.find(field);
  if (known != target.columns.end()) return known->second;
  const int column = target.lastColumn + 1;
  book_.TextSRC(number, resultrow::heading, column, field);
  book_.TextSRC(number, resultrow::table, column, method.name());
  book_.TextSRC(number, resultrow::field, column, field);
  book_.TextSRC(number, resultrow::type, column,
                method.book.TextSRC(method.outputSheet, outputRow, typeColumn));
  target.lastColumn = column;
  target.columns.emplace(field, column);
  return column;
}

void ResultSheets::place(const MethodBook& method, Outputs& outputs, Output& output) {
  std::string target;
  std::string field;
  output.sheet = outputs.ownSheet;
  output.shared = splitTarget(output.name, target, field);
  if (output.shared) {
    output.sheet = sheetNamed(target);
    if (output.sheet == outputs.ownSheet) output.shared = false;
  } else {
    field = output.name;
  }
  output.column = columnFor(output.sheet, field, method, output.row);
}

ResultSheets::Outputs& ResultSheets::outputsOf(const MethodBook& method) {
  Outputs& outputs = outputs_[&method];
  if (outputs.planned) return outputs;
  outputs.planned = true;
  outputs.ownSheet = sheetNamed(method.name());
  for (int row = 1; row <= method.book.LastRow(method.outputSheet); ++row) {
    const std::string name = outputName(method, row);
    const bool formula = hasFormulaName(method, row);
    if (formula) outputs.fixedNames = false;
    if (!name.empty() || formula) outputs.rows.push_back({row, name, 0, 0, false});
  }
  return outputs;
}

void ResultSheets::write(const MethodBook& method) {
  Outputs& outputs = outputsOf(method);
  rowFor(outputs.ownSheet, false, method.name());
  for (Output& output : outputs.rows) {
    if (!outputs.fixedNames) {
      const std::string name = outputName(method, output.row);
      if (name != output.name) output = {output.row, name, 0, 0, false};
      if (name.empty()) continue;
    }
    if (output.sheet == 0) place(method, outputs, output);
    const int row = rowFor(output.sheet, output.shared, method.name());
    const Value value = resultOf(method.book.ValueSRC(method.outputSheet, output.row, valueColumn));
    if (value.isEmpty()) continue;
    book_.ValueSRC(output.sheet, row, output.column, value);
  }
}

void ResultSheets::finish() {
  for (int number = 1; number <= book_.NumSheets(); ++number) {
    const Sheet& done = sheet(number);
    if (done.lastRow < resultrow::firstData) continue;
    book_.Sheet(number);
    if (!book_.HasContent(resultrow::type, resultIdColumn)) {
      book_.TextRC(
          resultrow::type, resultIdColumn,
          idColumnType(book_, resultIdColumn, resultrow::firstData, done.lastRow, [](int) {}));
    }
    for (int column = resultIdColumn + 1; column <= done.lastColumn; ++column) {
      if (book_.HasContent(resultrow::type, column)) continue;
      const std::string type = columnType(book_, column, resultrow::firstData, done.lastRow);
      // Whole numbers so far say nothing about the next results.
      book_.TextRC(resultrow::type, column, type.starts_with("TEXT") ? type : "DOUBLE");
    }
  }
  book_.Sheet(1);
}

}  // namespace lodex
