#include "worksheet/files/xls/SheetWriter.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/files/xls/FormulaDecoder.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex::biff {
namespace {

constexpr int maxRowsOfXls = 65536, maxColumnsOfXls = 256;
constexpr int rowsPerBlock = 32;  // the records of so many rows stand before their cells

// A number that fits into 30 bits, as a whole number, a hundredfold of one, or a double's head.
std::optional<std::uint32_t> asRk(double number) {
  const auto whole = [](double value) {
    return value == std::floor(value) && value >= -536870912.0 && value <= 536870911.0 &&
           !(value == 0 && std::signbit(value));
  };
  const auto packed = [](double value) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(value)) << 2 | 2;
  };
  if (whole(number)) return packed(number);
  const auto bits = std::bit_cast<std::uint64_t>(number);
  if ((bits & 0x3FFFFFFFFull) == 0) return static_cast<std::uint32_t>(bits >> 32);
  const double hundredfold = number * 100;
  if (whole(hundredfold) && hundredfold / 100 == number) return packed(hundredfold) | 1;
  return {};
}

// Text such as "12.50" that a number with as many decimals shows the same way.
bool isPlainDecimal(std::string_view text, size_t& decimals) {
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  const size_t point = text.find('.');
  if (point == std::string_view::npos || point == 0 || point + 1 == text.size()) return false;
  if (text.size() - 1 > 15 || (text.front() == '0' && point > 1)) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (i != point && (text[i] < '0' || text[i] > '9')) return false;
  }
  decimals = text.size() - point - 1;
  return true;
}

class SheetWriter {
 public:
  SheetWriter(WriteContext& file, int sheet)
      : file_(file), book_(file.worksheet), cells_(book_.cells(sheet)), sheet_(sheet) {}

  std::string run() {
    checkSize();
    writeBof(out_, 0x0010);
    columns();
    out_.begin(idDimensions);
    out_.u32(0);
    out_.u32(static_cast<std::uint32_t>(lastRow_));
    out_.u16(0);
    out_.u16(static_cast<unsigned>(lastColumn_));
    out_.u16(0);
    for (int row = 1; row <= lastRow_; row += rowsPerBlock) {
      const int end = std::min(row + rowsPerBlock - 1, lastRow_);
      for (int r = row; r <= end; ++r) rowRecord(r);
      for (int r = row; r <= end; ++r) rowCells(r);
    }
    window();
    out_.begin(idEof);
    return out_.finish();
  }

 private:
  void checkSize();
  void checkLength(int row, int column, const Value& value) const;
  void columns();
  void rowRecord(int row);
  void rowCells(int row);
  void window();
  void cellHead(std::uint16_t id, int row, int column, unsigned style);
  void cell(int row, int column, const Cell& cell);
  void number(int row, int column, double number, unsigned style);
  void error(int row, int column, ErrorCode code, unsigned style);
  void text(int row, int column, const Cell& cell);
  void value(int row, int column, const Value& value, std::uint32_t format);
  void formula(int row, int column, const Cell& cell);
  void formulaRecord(int row, int column, unsigned style, const std::string& code,
                     const std::string& extra, const Value& cached);
  bool arrayFormula(int row, int column, const FormulaCell& formula, unsigned style);
  void textResult(const Value& cached);

  WriteContext& file_;
  const Worksheet& book_;
  const CellStore& cells_;
  int sheet_;
  int lastRow_ = 0, lastColumn_ = 0;
  RecordWriter out_;
  std::set<const ArrayBlock*> writtenBlocks_;
};

void SheetWriter::checkSize() {
  if (cells_.lastRow() > maxRowsOfXls || cells_.lastColumn() > maxColumnsOfXls) {
    throw FileError("Sheet " + book_.SheetName(sheet_) + " has " +
                    std::to_string(cells_.lastRow()) + " rows and " +
                    std::to_string(cells_.lastColumn()) +
                    " columns; an .xls file holds 65536 rows and 256 columns");
  }
  cells_.forEach([&](int row, int column, const Cell& cell) {
    if (cell.kind != ValueKind::Number && cell.kind != ValueKind::Empty) {
      checkLength(row, column, CellStore::valueOf(cell));
    }
    if (row > maxRowsOfXls || column > maxColumnsOfXls) return;  // a format without content
    lastRow_ = std::max(lastRow_, row);
    lastColumn_ = std::max(lastColumn_, column);
  });
  for (const auto& [row, hidden] : book_.hiddenRows(sheet_)) {
    if (hidden && row <= maxRowsOfXls) lastRow_ = std::max(lastRow_, row);
  }
}

void SheetWriter::checkLength(int row, int column, const Value& value) const {
  if (!value.isText() || value.textView().size() <= maxCellText) return;
  if (toUtf16(value.textView()).size() <= maxCellText) return;
  throw FileError("Cell " + cellAddress(row, column) + " of sheet " + book_.SheetName(sheet_) +
                  " holds a longer text than an .xls file can");
}

void SheetWriter::columns() {
  std::set<int> special;
  for (const auto& entry : book_.columnWidths(sheet_)) special.insert(entry.first);
  for (const auto& entry : book_.hiddenColumns(sheet_)) special.insert(entry.first);
  for (int column : special) {
    if (column < 1 || column > maxColumnsOfXls) continue;
    const double width = book_.columnWidth(sheet_, column);
    out_.begin(idColInfo);
    out_.u16(static_cast<unsigned>(column - 1));
    out_.u16(static_cast<unsigned>(column - 1));
    out_.u16(static_cast<unsigned>(
        std::lround(std::clamp(width > 0 ? width : 9.140625, 0.0, 255.0) * 256)));
    out_.u16(StyleWriter::defaultStyle);
    out_.u16(book_.columnHidden(sheet_, column) ? 1 : 0);
    out_.u16(0);
  }
}

void SheetWriter::rowRecord(int row) {
  const bool hidden = book_.rowHidden(sheet_, row);
  if (!hidden && cells_.usedInRow(row) == 0) return;
  out_.begin(idRow3);
  out_.u16(static_cast<unsigned>(row - 1));
  out_.u16(0);
  out_.u16(static_cast<unsigned>(lastColumn_));
  out_.u16(0x00FF);
  out_.u32(0);
  out_.u32(0x000F0100u | (hidden ? 0x20u : 0u));
}

void SheetWriter::rowCells(int row) {
  for (int column = 1; column <= lastColumn_; ++column) {
    const Cell& here = cells_.at(row, column);
    if (here.kind != ValueKind::Empty || here.format != 0) cell(row, column, here);
  }
}

void SheetWriter::window() {
  const int frozen = book_.frozenRows(sheet_);
  const bool isCurrent = sheet_ == book_.Sheet();
  out_.begin(idWindow23);
  out_.u16(0x00B6u | (frozen > 0 ? 0x0108u : 0u) | (isCurrent ? 0x0600u : 0u));
  out_.u16(0);
  out_.u16(0);
  out_.u32(64);
  out_.u16(0);
  out_.u16(0);
  out_.u32(0);
  if (frozen <= 0) return;
  const auto rows = static_cast<unsigned>(std::min(frozen, maxRowsOfXls - 1));
  out_.begin(idPane);
  out_.u16(0);
  out_.u16(rows);
  out_.u16(rows);
  out_.u16(0);
  out_.u16(2);
}

// --- Cells ---

void SheetWriter::cellHead(std::uint16_t id, int row, int column, unsigned style) {
  out_.begin(id);
  out_.u16(static_cast<unsigned>(row - 1));
  out_.u16(static_cast<unsigned>(column - 1));
  out_.u16(style);
}

void SheetWriter::cell(int row, int column, const Cell& cell) {
  switch (cell.kind) {
    case ValueKind::Number:
      number(row, column, cell.number, file_.styles.styleOf(cell.format));
      break;
    case ValueKind::Text:
    case ValueKind::NumericText:
      text(row, column, cell);
      break;
    case ValueKind::Formula:
      formula(row, column, cell);
      break;
    case ValueKind::Empty:
      cellHead(idBlank3, row, column, file_.styles.styleOf(cell.format));
      break;
    default:
      value(row, column, CellStore::valueOf(cell), cell.format);
      break;
  }
}

void SheetWriter::number(int row, int column, double number, unsigned style) {
  if (!std::isfinite(number)) {
    error(row, column, ErrorCode::Num, style);
    return;
  }
  if (const auto rk = asRk(number)) {
    cellHead(idRk, row, column, style);
    out_.u32(*rk);
  } else {
    cellHead(idNumber3, row, column, style);
    out_.f64(number);
  }
}

void SheetWriter::error(int row, int column, ErrorCode code, unsigned style) {
  cellHead(idBoolErr3, row, column, style);
  out_.u8(codeOfError(code));
  out_.u8(1);
}

void SheetWriter::text(int row, int column, const Cell& cell) {
  const std::string_view content = SharedText::viewOf(cell.text);
  const std::string& ownFormat = book_.formats().at(cell.format).numberFormat;
  size_t decimals = 0;
  if (cell.kind == ValueKind::NumericText && ownFormat != "@" &&
      isPlainDecimal(content, decimals)) {
    const double value = numberOf(content);
    const bool general = ownFormat.empty() || ownFormat == "General";
    const std::string zeros = general ? "0." + std::string(decimals, '0') : std::string();
    if (value != 0 || content.front() != '-') {
      number(row, column, value, file_.styles.styleOf(cell.format, zeros));
      return;
    }
  }
  const bool mark = cell.kind == ValueKind::Text && isNumericText(content);
  cellHead(idLabelSst, row, column, file_.styles.styleOf(cell.format, {}, mark));
  out_.u32(file_.texts.indexOf(content));
}

void SheetWriter::value(int row, int column, const Value& value, std::uint32_t format) {
  const unsigned style = file_.styles.styleOf(format);
  switch (value.kind()) {
    case ValueKind::Number:
      number(row, column, value.asNumber(), style);
      break;
    case ValueKind::Boolean:
      cellHead(idBoolErr3, row, column, style);
      out_.u8(value.asBoolean() ? 1 : 0);
      out_.u8(0);
      break;
    case ValueKind::Error:
      error(row, column, value.asError(), style);
      break;
    case ValueKind::Text:
    case ValueKind::NumericText:
      cellHead(idLabelSst, row, column, style);
      out_.u32(file_.texts.indexOf(value.textView()));
      break;
    default:
      cellHead(idBlank3, row, column, style);
      break;
  }
}

// --- Formulas ---

void SheetWriter::formula(int row, int column, const Cell& cell) {
  const FormulaCell& formula = *cell.formula;
  const unsigned style = file_.styles.styleOf(cell.format);
  if (formula.array && arrayFormula(row, column, formula, style)) return;
  const auto encoded = formula.array
                           ? std::nullopt
                           : encodeFormula(file_.links, formula.text, sheet_, FormulaUse::Cell);
  if (!encoded) {
    value(row, column, formula.cached, cell.format);
    return;
  }
  formulaRecord(row, column, style, encoded->code, encoded->extra, formula.cached);
  textResult(formula.cached);
}

void SheetWriter::formulaRecord(int row, int column, unsigned style, const std::string& code,
                                const std::string& extra, const Value& cached) {
  const auto special = [&](unsigned kind, unsigned content) {
    out_.u16(kind);
    out_.u32(content);
    out_.u16(0xFFFF);
  };
  cellHead(idFormula, row, column, style);
  switch (cached.kind()) {
    case ValueKind::Number:
      if (std::isfinite(cached.asNumber())) {
        out_.f64(cached.asNumber());
      } else {
        special(2, codeOfError(ErrorCode::Num));
      }
      break;
    case ValueKind::Text:
    case ValueKind::NumericText:
      special(cached.textView().empty() ? 3 : 0, 0);
      break;
    case ValueKind::Boolean:
      special(1, cached.asBoolean() ? 1 : 0);
      break;
    case ValueKind::Error:
      special(2, codeOfError(cached.asError()));
      break;
    default:
      special(3, 0);
      break;
  }
  // Never computed: to be computed when the file is opened.
  out_.u16(cached.isEmpty() ? 0x0002 : 0);
  out_.u32(0);
  out_.u16(static_cast<unsigned>(code.size()));
  out_.raw(code);
  out_.raw(extra);
}

void SheetWriter::textResult(const Value& cached) {
  if (!cached.isText() || cached.textView().empty()) return;
  out_.begin(idString3);
  writeContinuedText(out_, cached.textView());
}

// The cells of a block point to its first one, which the formula follows. False when the
// formula cannot be encoded.
bool SheetWriter::arrayFormula(int row, int column, const FormulaCell& formula, unsigned style) {
  const ArrayBlock& block = *formula.array;
  if (block.row < 1 || block.column < 1 || block.row + block.rows - 1 > maxRowsOfXls ||
      block.column + block.columns - 1 > maxColumnsOfXls) {
    return false;
  }
  const bool isFirst = row == block.row && column == block.column;
  std::optional<EncodedFormula> encoded;
  if (isFirst) {
    encoded = encodeFormula(file_.links, formula.text, sheet_, FormulaUse::Array);
    if (!encoded) return false;
    writtenBlocks_.insert(&block);
  } else if (writtenBlocks_.count(&block) == 0) {
    return false;
  }
  std::string entry{'\1'};
  for (int number : {block.row - 1, block.column - 1}) {
    entry.push_back(static_cast<char>(number & 0xFF));
    entry.push_back(static_cast<char>(number >> 8));
  }
  formulaRecord(row, column, style, entry, {}, formula.cached);
  if (isFirst) {
    out_.begin(idArray3);
    out_.u16(static_cast<unsigned>(block.row - 1));
    out_.u16(static_cast<unsigned>(block.row + block.rows - 2));
    out_.u8(static_cast<unsigned>(block.column - 1));
    out_.u8(static_cast<unsigned>(block.column + block.columns - 2));
    out_.u16(0);
    out_.u32(0);
    out_.u16(static_cast<unsigned>(encoded->code.size()));
    out_.raw(encoded->code);
    out_.raw(encoded->extra);
  }
  textResult(formula.cached);
  return true;
}

}  // namespace

void writeBof(RecordWriter& out, unsigned type) {
  out.begin(idBof5);
  out.u16(0x0600);
  out.u16(type);
  out.u16(0x0DBB);
  out.u16(0x07CC);
  out.u32(0x41);
  out.u32(0x06);
}

std::string sheetRecords(WriteContext& file, int sheet) {
  return SheetWriter(file, sheet).run();
}

}  // namespace lodex::biff
