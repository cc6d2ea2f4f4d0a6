#include "worksheet/files/xls/SheetReader.h"

#include <algorithm>
#include <limits>

#include "basic/Error.h"
#include "basic/Numbers.h"

namespace lodex::biff {
namespace {

constexpr int maxColumnsOfXls = 256;

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

constexpr std::uint16_t idRowBlockEnd = 0x00D7;

// The records of the cells and of their rows, which follow one another without others in between.
bool isCellRecord(std::uint16_t id) {
  switch (id) {
    case idNumber3:
    case idRk:
    case idMulRk:
    case idMulBlank:
    case idLabelSst:
    case idLabel2:
    case idLabel3:
    case idRString:
    case idBlank2:
    case idBlank3:
    case idInteger2:
    case idNumber2:
    case idBoolErr2:
    case idBoolErr3:
    case idFormula:
    case idFormula3:
    case idFormula4:
    case idRow2:
    case idRow3:
    case idRowBlockEnd:
      return true;
    default:
      return false;
  }
}

// Records that may come between them.
bool goesWithCells(std::uint16_t id) {
  return id == idString2 || id == idString3 || id == idSharedFormula || isArrayRecord(id) ||
         isTableRecord(id) || id == idContinue || id == idIxfe2;
}

// Whether a sheet may have such a record at all, roughly.
bool isKnownRecord(std::uint16_t id, int version) {
  if (id < 0x0006) return version < 5;
  if (id <= 0x01C5 || (id >= 0x0800 && id <= 0x08FF) || (id >= 0x1000 && id <= 0x10FF)) return true;
  constexpr std::uint16_t others[] = {
      idDimensions, idBlank3,  idNumber3,  idLabel3, idBoolErr3,    idString3,
      idRow3,       0x020B,    idName3,    idArray3, idExternName3, 0x0225,
      idFont3,      0x0236,    idWindow23, idXf3,    idRk,          idStyle,
      idFormula4,   idFormat4, 0x0418,     0x043C,   idXf4,         idSharedFormula};
  return std::find(std::begin(others), std::end(others), id) != std::end(others);
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
      version_(file.links.version) {}

void SheetReader::read(RecordStream& records) {
  Record next;
  int embedded = 0;  // charts are inside with a BOF and EOF of their own
  while (records.next(next)) {
    if (isBof(next.id)) {
      ++embedded;
    } else if (next.id == idEof) {
      if (embedded-- == 0) return finish(records, true);
    } else if (embedded == 0) {
      record(next, records);
    }
  }
  finish(records, false);
}

void SheetReader::finish(const RecordStream& records, bool complete) {
  const std::uint16_t next = records.peek();
  if (!complete) {
    reportAfterLast(Severity::Error, "the sheet ends early; what follows is missing");
  } else if (isCellRecord(next)) {
    reportAfterLast(Severity::Error, "further cells come after the end of the sheet");
  } else if (strangerInTable_ && strangerIsCell_) {
    reportAfterLast(Severity::Error, "a damaged record comes after the cells; a cell is missing");
  } else if (next != 0xFFFF && next != 0 && next != idSheetHeader4 && next != idEof &&
             !isBof(next)) {
    reportAfterLast(Severity::Warning, "unknown data comes after the end of the sheet");
  } else if (records.isDamaged()) {
    reportAfterLast(Severity::Error, "the sheet has a damaged record; cells may be missing");
  }
}

void SheetReader::report(Severity severity, std::string_view text, const Place& at) {
  file_.out.findingsForReader().add(
      severity, text,
      {.sheet = file_.out.SheetName(sheet_), .row = at.row + 1, .column = at.column + 1});
}

// Whether a record that is not one of a cell begins as that of the next one would.
bool SheetReader::looksLikeNextCell(const Record& record) const {
  ByteReader in(record.data);
  const int row = in.u16();
  const int column = in.u16();
  in.u16();  // style
  return in.ok() && column < maxColumnsOfXls &&
         ((row == last_.row && column > last_.column) || row == last_.row + 1);
}

// In the row of the cell read last: what comes next is damaged.
void SheetReader::reportAfterLast(Severity severity, std::string_view text) {
  lodex::Place where{.sheet = file_.out.SheetName(sheet_)};
  if (hasCells_) where.row = last_.row + 1;
  file_.out.findingsForReader().add(severity, text, where);
}

// A cell whose record lost its number leaves a stranger among the cells.
void SheetReader::watch(const Record& record) {
  const std::uint16_t id = record.data.empty() && record.id == 0 ? 0xFFFF : record.id;
  if (!isKnownRecord(id, version_)) {
    reportAfterLast(Severity::Warning,
                    "a record of an unknown type was skipped; it may have been a cell");
  }
  if (!hasCells_ || goesWithCells(id)) return;
  if (!isCellRecord(id)) {
    if (!strangerInTable_) strangerIsCell_ = looksLikeNextCell(record);
    strangerInTable_ = true;
  } else if (strangerInTable_) {
    strangerInTable_ = false;
    reportAfterLast(Severity::Error, "a damaged record is among the cells; a cell may be missing");
  }
}

void SheetReader::record(const Record& record, RecordStream& records) {
  if (strangerInTable_ || !isCellRecord(record.id)) watch(record);
  switch (record.id) {
    case idNumber3: {
      ByteReader in(record.data);
      const Place at = place(in);
      const double number = in.f64();
      if (usableWhole(at, in)) setNumber(at, number);
      break;
    }
    case idRk: {
      ByteReader in(record.data);
      const Place at = place(in);
      const double number = numberOfRk(in.u32());
      if (usableWhole(at, in)) setNumber(at, number);
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
      if (!usableWhole(at, in)) break;
      if (index < file_.texts.size()) {
        setText(at, file_.texts[index]);
      } else {
        report(Severity::Error, "the text of the cell is missing from the file", at);
      }
      break;
    }
    case idLabel2:
    case idLabel3:
    case idRString:
      label(record, records);
      break;
    case idBlank3: {
      const Place at = place(in);
      if (usableWhole(at, in)) setBlank(at);
      break;
    }
    case idBlank2: {
      const Place at = oldPlace(in);
      if (usableWhole(at, in)) setBlank(at);
      break;
    }
    case idInteger2: {
      const Place at = oldPlace(in);
      const double number = in.u16();
      if (usableWhole(at, in)) setNumber(at, number);
      break;
    }
    case idNumber2: {
      const Place at = oldPlace(in);
      const double number = in.f64();
      if (usableWhole(at, in)) setNumber(at, number);
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
    case idString2:
    case idString3:
      reportAfterLast(Severity::Error, "a text is there without its formula; a cell is missing");
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

// False for a cell that its damaged record does not give.
bool SheetReader::usable(const Place& at, const ByteReader& in) {
  if (!in.ok() || at.column >= maxColumnsOfXls) {
    reportAfterLast(Severity::Error, "a damaged record is among the cells; a cell is missing");
    return false;
  }
  file_.budget.follow(cells_);
  hasCells_ = true;
  last_ = at;
  if (cells_.at(at.row + 1, at.column + 1).kind != ValueKind::Empty) {
    report(Severity::Warning, "a second value for the cell replaces the first", at);
  }
  return true;
}

// The same for a record that ends with the cell's value. One that goes on has swallowed others.
bool SheetReader::usableWhole(const Place& at, const ByteReader& in) {
  if (in.ok() && in.left() > 0) {
    reportAfterLast(Severity::Error, "a damaged record is among the cells; a cell may be missing");
  }
  return usable(at, in);
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
  file_.budget.showText(text.view().size());
  const bool spelledNumber = file_.writtenHere && !at.textMark && isNumericText(text.view());
  setValue(at, spelledNumber ? Value::numericText(std::move(text)) : Value::text(std::move(text)));
}

void SheetReader::setBlank(const Place& at) {
  if (at.format == 0) return;
  file_.budget.follow(cells_);
  cells_.setFormat(at.row + 1, at.column + 1, at.format);
}

void SheetReader::mulRk(ByteReader in) {
  Place at;
  at.row = in.u16();
  at.column = in.u16();
  while (in.left() >= 8) {
    at.format = styles_.formatOf(in.u16());
    const double number = numberOfRk(in.u32());
    if (usable(at, in)) setNumber(at, number);
    ++at.column;
  }
  checkRunEnd(at, in);
}

void SheetReader::mulBlank(ByteReader in) {
  Place at;
  at.row = in.u16();
  at.column = in.u16();
  for (; in.left() >= 4; ++at.column) {
    at.format = styles_.formatOf(in.u16());
    if (at.format != 0 && at.column < maxColumnsOfXls) setBlank(at);
  }
  checkRunEnd(at, in);
}

// The last two bytes of a run of cells repeat its last column; `end` is the one after it.
void SheetReader::checkRunEnd(const Place& end, ByteReader in) {
  const int last = in.u16();
  if (!in.ok() || in.left() > 0 || last != end.column - 1) {
    reportAfterLast(Severity::Error, "a damaged record is among the cells; a cell may be missing");
  }
}

void SheetReader::label(const Record& record, RecordStream& records) {
  ByteReader in(record.data);
  const bool old = record.id == idLabel2;
  const Place at = old ? oldPlace(in) : place(in);
  std::string text;
  bool complete = true;
  if (old || version_ < 8) {
    text = readByteText(in, old ? LengthBytes::One : LengthBytes::Two, file_.links.codePage);
    complete = in.ok() && (in.left() == 0 || record.id == idRString);
  } else {
    std::vector<std::string_view> parts = records.withContinuations(record);
    parts[0] = in.rest();
    text = readContinuedText(parts, complete);
    complete = complete || record.id == idRString;  // which goes on with the looks of its letters
  }
  if (record.data.size() < 4 || !usable(at, ByteReader({}))) return;
  if (!complete) report(Severity::Error, "the text of the cell is damaged", at);
  file_.budget.takeText(text);
  setText(at, SharedText(text));
}

void SheetReader::boolErr(const Place& at, ByteReader in) {
  const unsigned value = in.u8();
  const bool isError = in.u8() != 0;
  if (!usableWhole(at, in)) return;
  setValue(at, isError ? Value::error(errorOfCode(value)) : Value::boolean(value != 0));
}

// --- Formulas ---

std::string SheetReader::stringRecord(const Record& record, RecordStream& records, bool& complete) {
  ByteReader in(record.data);
  if (version_ >= 8) return readContinuedText(records.withContinuations(record), complete);
  std::string text =
      readByteText(in, version_ == 2 ? LengthBytes::One : LengthBytes::Two, file_.links.codePage);
  complete = in.ok() && in.left() == 0;
  return text;
}

void SheetReader::formula(const Record& record, RecordStream& records) {
  ByteReader in(record.data);
  const Place at = version_ == 2 ? oldPlace(in) : place(in);
  const std::string_view result = in.bytes(8);
  const unsigned flags = version_ == 2 ? in.u8() : in.u16();
  if (version_ >= 5) in.skip(4);
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

  // Programs that cannot calculate leave zeros or empty texts, and most ask for a calculation.
  const bool isEmptyText = cached.isText() && !awaitsText;
  const bool calculateOnLoad = (flags & 0x0002) != 0;
  if (calculateOnLoad && (isEmptyText || cached == Value(0.0))) cached = Value();
  file_.hasResults = file_.hasResults || !(isEmptyText || cached.isEmpty());

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
    if (!awaitsText) break;
    bool complete = true;
    cached = Value::text(stringRecord(further, records, complete));
    if (!complete) report(Severity::Error, "the text of the cell is damaged", at);
    awaitsText = false;
    break;
  }
  if (awaitsText) report(Severity::Error, "the text of the formula's value is missing", at);
  setFormula(at, code, in.rest(), cached);
  if (isEmptyText) file_.noValue.push_back({sheet_, at.row + 1, at.column + 1});
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
  bool understood = false;
  if (isEntryToken(file_.links, code, entry)) {
    understood = setSharedFormula(at, entry, cached);
  } else if (const auto text = decodeFormula(file_.links, code, extra, {at.row, at.column})) {
    storeFormula(at, *text, cached);
    understood = true;
  }
  if (understood) return;
  setValue(at, cached);
  report(cached.isEmpty() ? Severity::Error : Severity::Warning,
         "the formula cannot be read; its last value is kept", at);
}

bool SheetReader::setSharedFormula(const Place& at, FormulaBase entry, const Value& cached) {
  const auto hit = sharedAt_.find({entry.row, entry.column});
  if (hit == sharedAt_.end()) return false;
  const SharedFormula& formula = shared_[hit->second];
  if (formula.isArray) {
    const bool inside = at.row >= formula.row1 && at.row <= formula.row2 &&
                        at.column >= formula.column1 && at.column <= formula.column2;
    if (inside) storeFormula(at, formula.text, cached, formula.block);
    return inside;
  }
  const auto text = decodeFormula(file_.links, formula.code, formula.extra, {at.row, at.column});
  if (text) storeFormula(at, *text, cached);
  return text.has_value();
}

void SheetReader::storeFormula(const Place& at, const std::string& text, const Value& cached,
                               std::shared_ptr<const ArrayBlock> block) {
  file_.budget.takeFormulas(1, text.size());
  if (cached.isText()) file_.budget.showText(cached.textView().size());
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
