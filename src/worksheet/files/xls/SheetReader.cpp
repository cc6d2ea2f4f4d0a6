#include "worksheet/files/xls/SheetReader.h"

#include <algorithm>
#include <limits>

#include "basic/Error.h"
#include "basic/Numbers.h"

namespace lodex::biff {
namespace {

constexpr int maxColumnsOfXls = 256;
constexpr int maxRowsOfXls = 65536;

// Cells are kept in blocks of so many rows of a column; a scattered one takes a block.
constexpr int blockRows = 64;
constexpr size_t blockBytes = blockRows * sizeof(Cell);

double numberOfIeeeHighBits(std::uint32_t high) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(high) << 32);
}

// Zero-length numbers and the like would upset whoever computes with them.
bool isFinite(double number) {
  return number <= std::numeric_limits<double>::max() &&
         number >= -std::numeric_limits<double>::max();
}

bool isArrayRecord(std::uint16_t id) {
  return id == idArray2 || id == idArray3;
}

bool isTableRecord(std::uint16_t id) {
  return id == 0x0036 || id == 0x0037 || id == 0x0236;
}

}  // namespace

double numberOfRk(std::uint32_t rk) {
  const double number = rk & 2 ? static_cast<double>(static_cast<std::int32_t>(rk) >> 2)
                               : numberOfIeeeHighBits(rk & ~std::uint32_t{3});
  return rk & 1 ? number / 100 : number;
}

SheetReader::SheetReader(FileContext& file, Styles& styles, int sheet)
    : file_(file),
      styles_(styles),
      cells_(file.out.cellsForReader(sheet)),
      sheet_(sheet),
      version_(file.links.version),
      touched_(static_cast<size_t>(maxColumnsOfXls * (maxRowsOfXls / blockRows))) {}

bool SheetReader::read(RecordStream& records) {
  Record next;
  int embedded = 0;  // charts stand inside with a BOF and EOF of their own
  while (records.next(next)) {
    if (isBof(next.id)) {
      ++embedded;
    } else if (next.id == idEof) {
      if (embedded-- == 0) return true;
    } else if (embedded == 0) {
      record(next, records);
    }
  }
  return false;
}

void SheetReader::record(const Record& record, RecordStream& records) {
  switch (record.id) {
    case idNumber3: {
      ByteReader in(record.data);
      const Place at = place(in);
      const double number = in.f64();
      if (usable(at, in)) setNumber(at, number);
      break;
    }
    case idRk: {
      ByteReader in(record.data);
      const Place at = place(in);
      const double number = numberOfRk(in.u32());
      if (usable(at, in)) setNumber(at, number);
      break;
    }
    case idRow3:
      rowRecord(ByteReader(record.data));
      break;
    case idRow2:
      oldRowRecord(ByteReader(record.data));
      break;
    case idColInfo:
      columnInfo(ByteReader(record.data));
      break;
    case idColWidth2:
      columnWidth(ByteReader(record.data));
      break;
    case idIxfe2:
      ixfe_ = ByteReader(record.data).u16();
      break;
    case idWindow22:
    case idWindow23:
      window(record);
      break;
    case idPane:
      pane(ByteReader(record.data));
      break;
    case idExternSheet:
      if (version_ < 8) file_.links.addExternSheet(record.data);
      break;
    case idExternName:
    case idExternName3:
      if (version_ < 8) file_.links.addExternName(record.data);
      break;
    default:
      cellRecord(record, records);
      break;
  }
}

void SheetReader::cellRecord(const Record& record, RecordStream& records) {
  ByteReader in(record.data);
  switch (record.id) {
    case idMulRk:
      mulRk(in);
      break;
    case idMulBlank:
      mulBlank(in);
      break;
    case idLabelSst: {
      const Place at = place(in);
      const size_t index = in.u32();
      if (usable(at, in) && index < file_.texts.size()) setText(at, file_.texts[index]);
      break;
    }
    case idLabel2:
    case idLabel3:
    case idRString:
      label(record, records);
      break;
    case idBlank3: {
      const Place at = place(in);
      if (usable(at, in)) setBlank(at);
      break;
    }
    case idBlank2: {
      const Place at = oldPlace(in);
      if (usable(at, in)) setBlank(at);
      break;
    }
    case idInteger2: {
      const Place at = oldPlace(in);
      const double number = in.u16();
      if (usable(at, in)) setNumber(at, number);
      break;
    }
    case idNumber2: {
      const Place at = oldPlace(in);
      const double number = in.f64();
      if (usable(at, in)) setNumber(at, number);
      break;
    }
    case idBoolErr3: {
      const Place at = place(in);
      boolErr(at, in);
      break;
    }
    case idBoolErr2: {
      const Place at = oldPlace(in);
      boolErr(at, in);
      break;
    }
    case idFormula:
    case idFormula3:
    case idFormula4:
      formula(record, records);
      break;
    case idSharedFormula:
    case idArray2:
    case idArray3:
      // Out of its place, but still of use to the cells that follow.
      sharedFormula(record, {-1, -1});
      break;
    default:
      break;
  }
}

// --- Cells ---

SheetReader::Place SheetReader::place(ByteReader& in) {
  Place at;
  at.row = in.u16();
  at.column = in.u16();
  const unsigned xf = in.u16();
  at.format = styles_.formatOf(xf);
  at.textMark = styles_.hasTextMark(xf);
  return at;
}

SheetReader::Place SheetReader::oldPlace(ByteReader& in) {
  Place at;
  at.row = in.u16();
  at.column = in.u16();
  at.format = styles_.formatOfAttributes(in.bytes(3), ixfe_);
  return at;
}

bool SheetReader::usable(const Place& at, const ByteReader& in) {
  if (!in.ok() || at.column >= maxColumnsOfXls) return false;
  countMemory(at);
  hasCells_ = true;
  return true;
}

// A small file may scatter cells so that they fill the memory; no honest one does.
void SheetReader::countMemory(const Place& at) {
  const auto block = static_cast<size_t>(at.row / blockRows * maxColumnsOfXls + at.column);
  if (touched_[block]) return;
  touched_[block] = true;
  file_.cellBytes += blockBytes;
  if (file_.cellBytes > file_.maxCellBytes) {
    throw FileError("The file is damaged: its cells are scattered beyond reason");
  }
}

void SheetReader::setNumber(const Place& at, double number) {
  if (!isFinite(number)) {
    setValue(at, Value::error(ErrorCode::Num));
    return;
  }
  cells_.setNumber(at.row + 1, at.column + 1, number);
  if (at.format != 0) cells_.setFormat(at.row + 1, at.column + 1, at.format);
}

void SheetReader::setValue(const Place& at, const Value& value) {
  cells_.set(at.row + 1, at.column + 1, value);
  cells_.setFormat(at.row + 1, at.column + 1, at.format);
}

void SheetReader::setText(const Place& at, SharedText text) {
  const bool spelledNumber = file_.writtenHere && !at.textMark && isNumericText(text.view());
  setValue(at, spelledNumber ? Value::numericText(std::move(text)) : Value::text(std::move(text)));
}

void SheetReader::setBlank(const Place& at) {
  if (at.format != 0) cells_.setFormat(at.row + 1, at.column + 1, at.format);
}

void SheetReader::mulRk(ByteReader in) {
  Place at;
  at.row = in.u16();
  at.column = in.u16();
  while (in.left() >= 8) {  // the last two bytes repeat the last column
    at.format = styles_.formatOf(in.u16());
    const double number = numberOfRk(in.u32());
    if (usable(at, in)) setNumber(at, number);
    ++at.column;
  }
}

void SheetReader::mulBlank(ByteReader in) {
  Place at;
  at.row = in.u16();
  at.column = in.u16();
  for (; in.left() >= 4; ++at.column) {
    at.format = styles_.formatOf(in.u16());
    if (at.format != 0 && usable(at, in)) setBlank(at);
  }
}

void SheetReader::label(const Record& record, RecordStream& records) {
  ByteReader in(record.data);
  const bool old = record.id == idLabel2;
  const Place at = old ? oldPlace(in) : place(in);
  std::string text;
  if (old || version_ < 8) {
    text = readByteText(in, old ? LengthBytes::One : LengthBytes::Two, file_.links.codePage);
  } else {
    std::vector<std::string_view> parts = records.withContinuations(record);
    parts[0] = in.rest();
    text = readContinuedText(parts);
  }
  // A text cut by the end of the file is still worth having.
  if (usable(at, ByteReader({}))) setText(at, SharedText(text));
}

void SheetReader::boolErr(const Place& at, ByteReader in) {
  const unsigned value = in.u8();
  const bool isError = in.u8() != 0;
  if (!usable(at, in)) return;
  setValue(at, isError ? Value::error(errorOfCode(value)) : Value::boolean(value != 0));
}

// --- Formulas ---

std::string SheetReader::stringRecord(const Record& record, RecordStream& records) {
  ByteReader in(record.data);
  if (version_ >= 8) return readContinuedText(records.withContinuations(record));
  return readByteText(in, version_ == 2 ? LengthBytes::One : LengthBytes::Two,
                      file_.links.codePage);
}

void SheetReader::formula(const Record& record, RecordStream& records) {
  ByteReader in(record.data);
  const Place at = version_ == 2 ? oldPlace(in) : place(in);
  const std::string_view result = in.bytes(8);
  in.skip(version_ == 2 ? 1 : version_ >= 5 ? 6 : 2);
  const std::string_view code = in.bytes(version_ == 2 ? in.u8() : in.u16());
  if (!usable(at, in)) return;

  Value cached;
  bool awaitsText = false;
  ByteReader value(result);
  if (result[6] == '\xFF' && result[7] == '\xFF') {
    const unsigned kind = value.u8();
    value.skip(1);
    const unsigned content = value.u8();
    awaitsText = kind == 0;
    if (kind == 1) cached = Value::boolean(content != 0);
    if (kind == 2) cached = Value::error(errorOfCode(content));
    if (kind == 0 || kind == 3) cached = Value::text("");
  } else {
    const double number = value.f64();
    cached = isFinite(number) ? Value(number) : Value::error(ErrorCode::Num);
  }

  // Programs that cannot compute leave empty texts.
  const bool isEmptyText = cached.isText() && !awaitsText;
  file_.hasFormulas = true;
  file_.hasResults = file_.hasResults || !isEmptyText;

  FormulaBase entry{at.row, at.column};
  isEntryToken(file_.links, code, entry);
  for (;;) {
    const std::uint16_t next = records.peek();
    const bool isText = next == idString3 || next == idString2;
    const bool isShared = next == idSharedFormula || isArrayRecord(next);
    if (!isText && !isShared && !isTableRecord(next)) break;
    Record further;
    if (!records.next(further)) break;
    if (isShared) sharedFormula(further, entry);
    if (!isText) continue;
    if (awaitsText) cached = Value::text(stringRecord(further, records));
    break;
  }
  setFormula(at, code, in.rest(), cached);
}

// `entry` is the cell to which the tokens of the cells point that share the formula.
void SheetReader::sharedFormula(const Record& record, FormulaBase entry) {
  ByteReader in(record.data);
  SharedFormula formula;
  formula.row1 = in.u16();
  formula.row2 = in.u16();
  formula.column1 = in.u8();
  formula.column2 = in.u8();
  formula.isArray = record.id != idSharedFormula;
  if (formula.isArray) {
    in.skip(version_ == 2 ? 1 : version_ >= 5 ? 6 : 2);
  } else {
    in.skip(2);
  }
  formula.code = in.bytes(version_ == 2 ? in.u8() : in.u16());
  formula.extra = in.rest();
  if (!in.ok() || formula.row2 < formula.row1 || formula.column2 < formula.column1) return;
  if (formula.isArray) {
    const auto text =
        decodeFormula(file_.links, formula.code, formula.extra, {formula.row1, formula.column1});
    if (!text) return;
    formula.text = *text;
    ArrayBlock block;
    block.row = formula.row1 + 1;
    block.column = formula.column1 + 1;
    block.rows = formula.row2 - formula.row1 + 1;
    block.columns = formula.column2 - formula.column1 + 1;
    formula.block = std::make_shared<const ArrayBlock>(block);
  }
  sharedAt_[{formula.row1, formula.column1}] = shared_.size();
  if (entry.row >= 0) sharedAt_[{entry.row, entry.column}] = shared_.size();
  shared_.push_back(std::move(formula));
}

void SheetReader::setFormula(const Place& at, std::string_view code, std::string_view extra,
                             const Value& cached) {
  FormulaBase entry;
  if (isEntryToken(file_.links, code, entry)) {
    if (!setSharedFormula(at, entry, cached)) setValue(at, cached);
    return;
  }
  const auto text = decodeFormula(file_.links, code, extra, {at.row, at.column});
  if (text) {
    store(at, *text, cached);
  } else {
    setValue(at, cached);
  }
}

bool SheetReader::setSharedFormula(const Place& at, FormulaBase entry, const Value& cached) {
  const auto hit = sharedAt_.find({entry.row, entry.column});
  if (hit == sharedAt_.end()) return false;
  const SharedFormula& formula = shared_[hit->second];
  if (formula.isArray) {
    const bool inside = at.row >= formula.row1 && at.row <= formula.row2 &&
                        at.column >= formula.column1 && at.column <= formula.column2;
    if (inside) store(at, formula.text, cached, formula.block);
    return inside;
  }
  const auto text = decodeFormula(file_.links, formula.code, formula.extra, {at.row, at.column});
  if (text) store(at, *text, cached);
  return text.has_value();
}

void SheetReader::store(const Place& at, const std::string& text, const Value& cached,
                        std::shared_ptr<const ArrayBlock> block) {
  file_.formulaBytes += text.size();
  if (file_.formulaBytes > file_.maxFormulaBytes) {
    throw FileError("The file is damaged: its formulas are larger than they can be");
  }
  file_.out.setFormulaWithValue(sheet_, at.row + 1, at.column + 1, text, cached);
  cells_.setFormat(at.row + 1, at.column + 1, at.format);
  if (block) cells_.at(at.row + 1, at.column + 1).formula->array = std::move(block);
}

// --- Rows, columns, window ---

void SheetReader::rowRecord(ByteReader in) {
  const int row = in.u16();
  in.skip(10);
  const unsigned flags = in.u16();
  if (in.ok() && (flags & 0x20) != 0) file_.out.rowHidden(sheet_, row + 1, true);
}

void SheetReader::oldRowRecord(ByteReader in) {
  const int row = in.u16();
  in.skip(4);
  const unsigned height = in.u16();
  if (in.ok() && (height & 0x7FFF) == 0) file_.out.rowHidden(sheet_, row + 1, true);
}

void SheetReader::setColumns(int first, int last, double width, bool hidden) {
  for (int column = first; column <= std::min(last, maxColumnsOfXls - 1); ++column) {
    if (width > 0) file_.out.columnWidth(sheet_, column + 1, width);
    if (hidden) file_.out.columnHidden(sheet_, column + 1, true);
  }
}

void SheetReader::columnInfo(ByteReader in) {
  const int first = in.u16();
  const int last = in.u16();
  const double width = in.u16() / 256.0;
  in.skip(2);
  const bool hidden = (in.u16() & 1) != 0;
  if (in.ok()) setColumns(first, last, width, hidden);
}

void SheetReader::columnWidth(ByteReader in) {
  const int first = in.u8();
  const int last = in.u8();
  const double width = in.u16() / 256.0;
  if (in.ok()) setColumns(first, last, width, width == 0);
}

void SheetReader::window(const Record& record) {
  ByteReader in(record.data);
  if (record.id == idWindow22) {
    in.skip(3);
    frozen_ = in.u8() != 0;
  } else {
    frozen_ = (in.u16() & 0x08) != 0;
  }
}

void SheetReader::pane(ByteReader in) {
  in.skip(2);
  const int rows = in.u16();
  if (!frozen_ || !in.ok() || rows == 0) return;
  const int before = file_.out.Sheet();
  file_.out.Sheet(sheet_);
  file_.out.FixedRows(rows);
  file_.out.Sheet(before);
}

}  // namespace lodex::biff
