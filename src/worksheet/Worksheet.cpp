#include "worksheet/Worksheet.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/NumberFormat.h"
#include "worksheet/formula/Engine.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

bool isTextKind(ValueKind kind) {
  return kind == ValueKind::Text || kind == ValueKind::NumericText;
}

// Text as a user types it: also truth values and errors, and any spelling of a number.
Value typedValue(std::string_view entry) {
  if (entry.empty()) return {};
  if (entry.front() == '\'') return Value::text(entry.substr(1));
  if (const auto number = parseNumber(entry)) return Value(*number);
  if (equalsNoCase(entry, "TRUE")) return Value::boolean(true);
  if (equalsNoCase(entry, "FALSE")) return Value::boolean(false);
  ErrorCode code;
  if (errorFromText(entry, code)) return Value::error(code);
  return Value::text(entry);
}

template <typename T>
T lookUp(const std::map<int, T>& table, int key) {
  const auto hit = table.find(key);
  return hit == table.end() ? T() : hit->second;
}

template <typename T>
void store(std::map<int, T>& table, int key, T value) {
  if (value == T()) {
    table.erase(key);
  } else {
    table[key] = std::move(value);
  }
}

}  // namespace

Worksheet::Worksheet() : formats_(std::make_unique<FormatTable>()) {
  sheets_.push_back(std::make_unique<SheetData>());
  sheets_.back()->name = "Sheet1";
}

Worksheet::~Worksheet() = default;
Worksheet::Worksheet(Worksheet&&) noexcept = default;
Worksheet& Worksheet::operator=(Worksheet&&) noexcept = default;

// --- Access checks ---

const Worksheet::SheetData& Worksheet::data(int sheet) const {
  if (sheet < 1 || sheet > NumSheets()) {
    throw Error("There is no sheet number " + std::to_string(sheet));
  }
  return *sheets_[static_cast<size_t>(sheet) - 1];
}

Worksheet::SheetData& Worksheet::data(int sheet) {
  return const_cast<SheetData&>(std::as_const(*this).data(sheet));
}

const Worksheet::SheetData& Worksheet::checked(int sheet, int row, int column) const {
  const SheetData& s = data(sheet);
  if (row < 1 || column < 1 || row > s.maxRow || column > s.maxColumn) failCell(s, row, column);
  return s;
}

Worksheet::SheetData& Worksheet::checked(int sheet, int row, int column) {
  return const_cast<SheetData&>(std::as_const(*this).checked(sheet, row, column));
}

void Worksheet::failCell(const SheetData& sheet, int row, int column) {
  throw Error("Row " + std::to_string(row) + ", column " + std::to_string(column) +
              " lies outside of sheet " + sheet.name + " (" + std::to_string(sheet.maxRow) +
              " rows, " + std::to_string(sheet.maxColumn) + " columns)");
}

// --- Cells ---

std::string Worksheet::displayed(const Cell& cell) const {
  if (isTextKind(cell.kind)) return std::string(SharedText::viewOf(cell.text));
  if (cell.kind == ValueKind::Empty) return {};
  if (cell.kind == ValueKind::Number && cell.format == 0) return numberText(cell.number);
  return formattedText(CellStore::valueOf(cell), formats_->at(cell.format).numberFormat,
                       dates1904_);
}

std::string Worksheet::TextSRC(int sheet, int row, int column) const {
  return displayed(checked(sheet, row, column).cells.at(row, column));
}

std::string Worksheet::FormattedTextSRC(int sheet, int row, int column) const {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  return formattedText(CellStore::valueOf(cell), formats_->at(cell.format).numberFormat,
                       dates1904_);
}

void Worksheet::TextSRC(int sheet, int row, int column, std::string_view text) {
  setContent(checked(sheet, row, column), sheet, row, column, Value::stored(text));
}

double Worksheet::NumberSRC(int sheet, int row, int column) const {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  if (cell.kind == ValueKind::Number || cell.kind == ValueKind::Empty) return cell.number;
  return CellStore::valueOf(cell).asNumber();
}

void Worksheet::NumberSRC(int sheet, int row, int column, double number) {
  CellStore& cells = checked(sheet, row, column).cells;
  if (engine_) {
    const Cell& before = cells.at(row, column);
    if (before.kind == ValueKind::Number && before.number == number) return;
    engine_->cellChanges(sheet, row, column, before.kind == ValueKind::Formula);
  }
  cells.setNumber(row, column, number);
}

std::string Worksheet::FormulaSRC(int sheet, int row, int column) const {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  return cell.kind == ValueKind::Formula ? cell.formula->text : displayed(cell);
}

void Worksheet::FormulaSRC(int sheet, int row, int column, std::string_view formula) {
  if (!formula.empty() && formula.front() == '=') formula.remove_prefix(1);
  if (formula.empty()) return ValueSRC(sheet, row, column, Value());
  setFormulaWithValue(sheet, row, column, formula, Value());
}

void Worksheet::setFormulaWithValue(int sheet, int row, int column, std::string_view formula,
                                    const Value& cached) {
  CellStore& cells = checked(sheet, row, column).cells;
  formulasChange();
  auto cell = std::make_unique<FormulaCell>();
  cell->text = formula;
  cell->cached = cached;
  cell->valueFromFile = !cached.isEmpty();
  cells.setFormula(row, column, std::move(cell));
}

std::string Worksheet::EntrySRC(int sheet, int row, int column) const {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  if (cell.kind == ValueKind::Formula) return "=" + cell.formula->text;
  if (cell.kind == ValueKind::Number) return exactNumberText(cell.number);
  const std::string text = CellStore::valueOf(cell).asText();
  if (!isTextKind(cell.kind)) return text;
  const bool same = text.front() != '=' && typedValue(text) == Value::text(text);
  return same ? text : "'" + text;
}

void Worksheet::EntrySRC(int sheet, int row, int column, std::string_view entry) {
  if (entry.size() > 1 && entry.front() == '=') {
    FormulaSRC(sheet, row, column, entry.substr(1));
  } else {
    setContent(checked(sheet, row, column), sheet, row, column, typedValue(entry));
  }
}

Value Worksheet::ValueSRC(int sheet, int row, int column) const {
  return checked(sheet, row, column).cells.value(row, column);
}

void Worksheet::ValueSRC(int sheet, int row, int column, const Value& value) {
  setContent(checked(sheet, row, column), sheet, row, column, value);
}

bool Worksheet::HasFormula(int sheet, int row, int column) const {
  return checked(sheet, row, column).cells.at(row, column).kind == ValueKind::Formula;
}

bool Worksheet::HasContent(int sheet, int row, int column) const {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  return isTextKind(cell.kind)             ? cell.text != nullptr
         : cell.kind == ValueKind::Formula ? !displayed(cell).empty()
                                           : cell.kind != ValueKind::Empty;
}

std::string Worksheet::ColText(int column) const {
  return lookUp(data(current_).columnTexts, column);
}
void Worksheet::ColText(int column, std::string_view text) {
  store(data(current_).columnTexts, column, std::string(text));
}
std::string Worksheet::RowText(int row) const {
  return lookUp(data(current_).rowTexts, row);
}
void Worksheet::RowText(int row, std::string_view text) {
  store(data(current_).rowTexts, row, std::string(text));
}

// --- Sheets ---

void Worksheet::NumSheets(int count) {
  if (count < 1) throw Error("A workbook has at least one sheet");
  if (count > NumSheets()) InsertSheets(NumSheets() + 1, count - NumSheets());
  if (count < NumSheets()) DeleteSheets(count + 1, NumSheets() - count);
}

void Worksheet::Sheet(int sheet) {
  data(sheet);
  current_ = sheet;
}

std::string Worksheet::SheetName(int sheet) const {
  return data(sheet).name;
}

void Worksheet::SheetName(int sheet, std::string_view name) {
  if (name.empty()) throw Error("A sheet needs a name");
  const int other = SheetNumber(name);
  if (other != 0 && other != sheet) {
    throw Error("There is already a sheet named " + std::string(name));
  }
  if (data(sheet).name == name) return;
  referencesRename(data(sheet).name, std::string(name));
  data(sheet).name = name;
}

int Worksheet::SheetNumber(std::string_view name) const {
  for (int sheet = 1; sheet <= NumSheets(); ++sheet) {
    if (equalsNoCase(data(sheet).name, name)) return sheet;
  }
  return 0;
}

std::string Worksheet::freeSheetName() const {
  for (int number = NumSheets() + 1;; ++number) {
    std::string name = "Sheet" + std::to_string(number);
    if (SheetNumber(name) == 0) return name;
  }
}

void Worksheet::InsertSheets(int before, int count) {
  if (before < 1 || before > NumSheets() + 1 || count < 0) {
    throw Error("Cannot insert sheets before sheet number " + std::to_string(before));
  }
  formulasChange();
  for (DefinedName& name : names_) {
    if (name.sheet >= before) name.sheet += count;
  }
  for (int i = 0; i < count; ++i) {
    auto sheet = std::make_unique<SheetData>();
    sheet->name = freeSheetName();
    sheets_.insert(sheets_.begin() + (before - 1 + i), std::move(sheet));
  }
  if (before <= current_) current_ += count;
}

void Worksheet::DeleteSheets(int first, int count) {
  if (count <= 0) return;
  data(first);
  data(first + count - 1);
  referencesLoseSheets(first, first + count - 1);
  sheets_.erase(sheets_.begin() + (first - 1), sheets_.begin() + (first - 1 + count));
  if (sheets_.empty()) {
    sheets_.push_back(std::make_unique<SheetData>());
    sheets_.back()->name = "Sheet1";
  }
  if (current_ >= first + count) current_ -= count;
  current_ = std::clamp(current_, 1, NumSheets());
}

SheetVisibility Worksheet::sheetVisibility(int sheet) const {
  return data(sheet).visibility;
}
void Worksheet::sheetVisibility(int sheet, SheetVisibility visibility) {
  data(sheet).visibility = visibility;
}

int Worksheet::LastRow(int sheet) const {
  return data(sheet).cells.lastRow();
}
int Worksheet::LastCol(int sheet) const {
  return data(sheet).cells.lastColumn();
}

void Worksheet::MaxRow(int rows) {
  if (rows < 1 || rows > maxRows)
    throw Error("A sheet cannot have " + std::to_string(rows) + " rows");
  data(current_).maxRow = rows;
}

void Worksheet::MaxCol(int columns) {
  if (columns < 1 || columns > maxColumns) {
    throw Error("A sheet cannot have " + std::to_string(columns) + " columns");
  }
  data(current_).maxColumn = columns;
}

// --- Appearance ---

const CellFormat& Worksheet::formatOf(int sheet, int row, int column) const {
  return formats_->at(checked(sheet, row, column).cells.format(row, column));
}

void Worksheet::setFormat(int sheet, int row, int column, const CellFormat& format) {
  checked(sheet, row, column).cells.setFormat(row, column, formats_->indexOf(format));
}

void Worksheet::changeFormat(int row1, int column1, int row2, int column2,
                             const std::function<void(CellFormat&)>& change) {
  CellStore& cells = checked(current_, row1, column1).cells;
  checked(current_, row2, column2);
  // Most cells of a block share a format: remember what became of the one before.
  std::uint32_t before = UINT32_MAX;
  std::uint32_t after = 0;
  for (int column = column1; column <= column2; ++column) {
    for (int row = row1; row <= row2; ++row) {
      const std::uint32_t index = cells.format(row, column);
      if (index != before) {
        CellFormat format = formats_->at(index);
        change(format);
        before = index;
        after = formats_->indexOf(format);
      }
      cells.setFormat(row, column, after);
    }
  }
}

void Worksheet::NumberFormat(std::string_view format) {
  changeFormat(SelStartRow(), SelStartCol(), SelEndRow(), SelEndCol(),
               [&](CellFormat& cell) { cell.numberFormat = format; });
}

double Worksheet::columnWidth(int sheet, int column) const {
  return lookUp(data(sheet).widths, column);
}
void Worksheet::columnWidth(int sheet, int column, double width) {
  store(data(sheet).widths, column, width);
}
bool Worksheet::columnHidden(int sheet, int column) const {
  return lookUp(data(sheet).hiddenColumns, column);
}
void Worksheet::columnHidden(int sheet, int column, bool hidden) {
  store(data(sheet).hiddenColumns, column, hidden);
}
bool Worksheet::rowHidden(int sheet, int row) const {
  return lookUp(data(sheet).hiddenRows, row);
}
void Worksheet::rowHidden(int sheet, int row, bool hidden) {
  store(data(sheet).hiddenRows, row, hidden);
}

}  // namespace lodex
