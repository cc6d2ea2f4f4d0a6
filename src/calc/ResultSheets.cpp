#include "calc/ResultSheets.h"

#include <algorithm>

#include "import/ColumnTypes.h"

namespace lodex {
namespace {

constexpr int typeColumn = 4;

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

SheetStructure resultStructureFrom(SheetStructure structure) {
  if (structure.row(sysrow::Header) == 0 || structure.idColumn == 0) return resultStructure();
  structure.firstDataRow = std::max(structure.firstDataRow, structure.highestRow() + 1);
  return structure;
}

ResultSheets::ResultSheets(Worksheet& book, KeyField key, const SheetStructure& structure)
    : book_(book), key_(std::move(key)), structure_(structure) {
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
    made.lastRow = std::max(book_.LastRow(added), structure_.firstDataRow - 1);
    made.lastColumn = std::max(book_.LastCol(added), idColumn());
    for (int column = idColumn() + 1; column <= made.lastColumn; ++column) {
      made.columns.emplace(book_.TextSRC(added, structure_.row(sysrow::Header), column), column);
    }
    sheets_.push_back(std::move(made));
  }
  return sheets_[static_cast<size_t>(number) - 1];
}

void ResultSheets::startSample(const Value& sampleId) {
  sampleId_ = sampleId;
  for (Sheet& each : sheets_) each.ownRow = each.sharedRow = 0;
}

void ResultSheets::describe(int number, int systemRow, int column, std::string_view text) {
  const int row = structure_.row(systemRow);
  if (row > 0) book_.TextSRC(number, row, column, text);
}

void ResultSheets::writeSystemRows(int number, const std::string& methodName) {
  for (int systemRow = 0; systemRow < systemRowCount; ++systemRow) {
    describe(number, systemRow, 1, systemRowCaption(systemRow));
  }
  describe(number, sysrow::Header, idColumn(), key_.name);
  describe(number, sysrow::Table, idColumn(), methodName);
  describe(number, sysrow::Field, idColumn(), key_.name);
  describe(number, sysrow::Type, idColumn(), key_.type);
  describe(number, sysrow::Indexed, idColumn(), "YES");
}

int ResultSheets::rowFor(int number, bool shared, const std::string& methodName) {
  Sheet& target = sheet(number);
  int& row = shared ? target.sharedRow : target.ownRow;
  if (row > 0) return row;
  if (target.lastRow < structure_.firstDataRow) writeSystemRows(number, methodName);
  book_.ValueSRC(number, target.lastRow + 1, idColumn(), sampleId_);
  row = ++target.lastRow;
  return row;
}

int ResultSheets::columnFor(int number, const std::string& field, const MethodBook& method,
                            int outputRow) {
  Sheet& target = sheet(number);
  const auto known = target.columns.find(field);
  if (known != target.columns.end()) return known->second;
  const int column = target.lastColumn + 1;
  describe(number, sysrow::Header, column, field);
  describe(number, sysrow::Table, column, method.name());
  describe(number, sysrow::Field, column, field);
  describe(number, sysrow::Type, column,
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
    const std::string name = method.outputName(row);
    const bool formula = hasFormulaName(method, row);
    if (formula) outputs.fixedNames = false;
    if (!name.empty() || formula) outputs.rows.push_back({row, name, 0, 0, false});
  }
  return outputs;
}

void ResultSheets::WriteResults(const MethodBook& method,
                                const std::function<Value(int row)>& valueOf) {
  Outputs& outputs = outputsOf(method);
  rowFor(outputs.ownSheet, false, method.name());
  for (Output& output : outputs.rows) {
    if (!outputs.fixedNames) {
      const std::string name = method.outputName(output.row);
      if (name != output.name) output = {output.row, name, 0, 0, false};
      if (name.empty()) continue;
    }
    if (output.sheet == 0) place(method, outputs, output);
    const int row = rowFor(output.sheet, output.shared, method.name());
    const Value value = resultOf(valueOf(output.row));
    if (value.isEmpty()) continue;
    book_.ValueSRC(output.sheet, row, output.column, value);
  }
}

void ResultSheets::finish() {
  const int typeRow = structure_.row(sysrow::Type);
  const int firstRow = structure_.firstDataRow;
  for (int number = 1; typeRow > 0 && number <= book_.NumSheets(); ++number) {
    const Sheet& done = sheet(number);
    if (done.lastRow < firstRow) continue;
    book_.Sheet(number);
    if (!book_.HasContent(typeRow, idColumn())) {
      book_.TextRC(typeRow, idColumn(),
                   idColumnType(book_, idColumn(), firstRow, done.lastRow, [](int) {}));
    }
    for (int column = idColumn() + 1; column <= done.lastColumn; ++column) {
      if (book_.HasContent(typeRow, column)) continue;
      const std::string type = columnType(book_, column, firstRow, done.lastRow);
      // Whole numbers so far say nothing about the next results.
      book_.TextRC(typeRow, column, type.starts_with("TEXT") ? type : "DOUBLE");
    }
  }
  book_.Sheet(1);
}

}  // namespace lodex
