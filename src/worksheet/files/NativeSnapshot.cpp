// The native container, in files (.vts) and in memory: everything that a workbook holds, so that
// reading gives it back exactly.
//
// Layout, numbers little-endian: "LODEXWB1", the CRC-32 of what follows, then title, flags, names,
// formats and sheets. A count or length comes before what it counts; texts are UTF-8.
#include <array>
#include <bit>
#include <cstring>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/NativeSnapshot.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

static_assert(std::endian::native == std::endian::little, "the container is little-endian");

constexpr std::string_view magic = "LODEXWB1";
constexpr size_t headerBytes = magic.size() + sizeof(std::uint32_t);

// Table k holds the remainders of a byte that k further bytes follow, so that eight bytes are taken
// at a time (Kounavis and Berry, A systematic approach to building high performance software-based
// CRC generators, 2005): snapshots of large sheets are taken while their user works.
using CrcTables = std::array<std::array<std::uint32_t, 256>, 8>;

CrcTables crcTables() {
  CrcTables tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ (value & 1 ? 0xEDB88320u : 0);
    tables[0][i] = value;
  }
  for (size_t k = 1; k < tables.size(); ++k) {
    for (size_t i = 0; i < 256; ++i) {
      const std::uint32_t before = tables[k - 1][i];
      tables[k][i] = (before >> 8) ^ tables[0][before & 0xFF];
    }
  }
  return tables;
}

std::uint32_t crc32(std::string_view bytes) {
  static const CrcTables tables = crcTables();
  std::uint32_t sum = ~0u;
  for (; bytes.size() >= tables.size(); bytes.remove_prefix(tables.size())) {
    std::uint64_t eight;
    std::memcpy(&eight, bytes.data(), sizeof eight);
    eight ^= sum;
    sum = 0;
    for (size_t k = tables.size(); k-- > 0; eight >>= 8) sum ^= tables[k][eight & 0xFF];
  }
  for (char c : bytes) sum = (sum >> 8) ^ tables[0][(sum ^ static_cast<unsigned char>(c)) & 0xFF];
  return ~sum;
}

}  // namespace

// --- Output ---

class SnapshotWriter {
 public:
  template <typename T>
  void put(T value) {
    static_assert(std::is_trivially_copyable_v<T>);
    char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    bytes_.append(raw, sizeof(T));
  }

  /// The same bytes as four times put: there may be millions of cells.
  template <typename Content>
  void putCell(int row, int column, std::uint32_t format, Content content) {
    static_assert(sizeof(Content) == 1 && sizeof(int) == sizeof(std::int32_t));
    char raw[3 * sizeof(std::int32_t) + 1];
    std::memcpy(raw, &row, sizeof row);
    std::memcpy(raw + 4, &column, sizeof column);
    std::memcpy(raw + 8, &format, sizeof format);
    raw[12] = static_cast<char>(content);
    bytes_.append(raw, sizeof raw);
  }

  void putText(std::string_view text) {
    put(static_cast<std::uint32_t>(text.size()));
    bytes_ += text;
  }

  void putValue(const Value& value) {
    put(value.kind());
    if (value.isText()) {
      putText(value.textView());
    } else if (value.isError()) {
      put(value.asError());
    } else if (!value.isEmpty()) {
      put(value.asNumber());
    }
  }

  template <typename T, typename PutOne>
  void putMap(const std::map<int, T>& map, PutOne putOne) {
    put(static_cast<std::uint32_t>(map.size()));
    for (const auto& [key, value] : map) {
      put(static_cast<std::int32_t>(key));
      putOne(value);
    }
  }

  std::string finished() {
    const std::uint32_t sum = crc32(std::string_view(bytes_).substr(headerBytes));
    std::memcpy(bytes_.data() + magic.size(), &sum, sizeof sum);
    return std::move(bytes_);
  }

 private:
  std::string bytes_ = std::string(magic) + std::string(headerBytes - magic.size(), '\0');
};

// --- Input ---

class SnapshotReader {
 public:
  explicit SnapshotReader(std::string_view bytes) : rest_(bytes) {}

  template <typename T>
  T get() {
    static_assert(std::is_trivially_copyable_v<T>);
    if (rest_.size() < sizeof(T)) fail();
    T value;
    std::memcpy(&value, rest_.data(), sizeof(T));
    rest_.remove_prefix(sizeof(T));
    return value;
  }

  bool getFlag() { return get<std::uint8_t>() != 0; }

  /// An enumeration up to and including `last`.
  template <typename E>
  E getEnum(E last) {
    const auto raw = static_cast<std::int64_t>(get<std::underlying_type_t<E>>());
    if (raw < 0 || raw > static_cast<std::int64_t>(last)) fail();
    return static_cast<E>(raw);
  }

  /// A number of things of which each takes at least one byte.
  std::uint32_t getCount() {
    const auto count = get<std::uint32_t>();
    if (count > rest_.size()) fail();
    return count;
  }

  int getNumber(int low, int high) {
    const auto number = get<std::int32_t>();
    if (number < low || number > high) fail();
    return number;
  }

  std::string_view getText() {
    const auto size = getCount();
    const std::string_view text = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return text;
  }

  Value getValue() {
    switch (getEnum(ValueKind::Error)) {
      case ValueKind::Number:
        return Value(get<double>());
      case ValueKind::Boolean:
        return Value::boolean(get<double>() != 0);
      case ValueKind::Text:
        return Value::text(getText());
      case ValueKind::NumericText:
        return Value::numericText(SharedText(getText()));
      case ValueKind::Error:
        return Value::error(getEnum(ErrorCode::Circular));
      default:
        return {};
    }
  }

  template <typename T, typename GetOne>
  void getMap(std::map<int, T>& map, GetOne getOne) {
    const auto count = getCount();
    for (std::uint32_t i = 0; i < count; ++i) {
      const int key = get<std::int32_t>();
      map[key] = getOne();
    }
  }

  bool atEnd() const { return rest_.empty(); }
  [[noreturn]] static void fail() { throw FileError("the workbook snapshot is damaged"); }

 private:
  std::string_view rest_;
};

// --- The parts of a workbook ---

namespace {

void putFormat(SnapshotWriter& out, const CellFormat& format) {
  out.putText(format.numberFormat);
  out.putText(format.fontName);
  out.put(format.fontSize);
  for (bool flag : {format.bold, format.italic, format.underline, format.strikeout, format.wrap,
                    format.locked, format.formulaHidden}) {
    out.put(static_cast<std::uint8_t>(flag));
  }
  out.put(format.fontColor);
  out.put(format.pattern);
  out.put(format.patternColor);
  out.put(format.backgroundColor);
  out.put(format.horizontal);
  out.put(format.vertical);
  for (std::uint8_t line :
       {format.borderLeft, format.borderRight, format.borderTop, format.borderBottom}) {
    out.put(line);
  }
}

CellFormat getFormat(SnapshotReader& in) {
  CellFormat format;
  format.numberFormat = in.getText();
  format.fontName = in.getText();
  format.fontSize = in.get<double>();
  for (bool* flag : {&format.bold, &format.italic, &format.underline, &format.strikeout,
                     &format.wrap, &format.locked, &format.formulaHidden}) {
    *flag = in.getFlag();
  }
  format.fontColor = in.get<Color>();
  format.pattern = in.getEnum(FillPattern::Other);
  format.patternColor = in.get<Color>();
  format.backgroundColor = in.get<Color>();
  format.horizontal = in.getEnum(HorizontalAlignment::CenterAcross);
  format.vertical = in.getEnum(VerticalAlignment::Justify);
  for (std::uint8_t* line :
       {&format.borderLeft, &format.borderRight, &format.borderTop, &format.borderBottom}) {
    *line = in.get<std::uint8_t>();
  }
  return format;
}

void putNames(SnapshotWriter& out, const std::vector<DefinedName>& names) {
  out.put(static_cast<std::uint32_t>(names.size()));
  for (const DefinedName& name : names) {
    out.putText(name.name);
    out.putText(name.formula);
    out.put(static_cast<std::int32_t>(name.sheet));
    out.put(static_cast<std::uint8_t>(name.hidden));
  }
}

std::vector<DefinedName> getNames(SnapshotReader& in) {
  std::vector<DefinedName> names;
  const auto count = in.getCount();
  for (std::uint32_t i = 0; i < count; ++i) {
    DefinedName& name = names.emplace_back();
    name.name = in.getText();
    name.formula = in.getText();
    name.sheet = in.get<std::int32_t>();
    name.hidden = in.getFlag();
  }
  return names;
}

// How a cell is stored. Of an array formula's block the first cell holds the formula and the size;
// it comes before the block's other cells.
enum class CellContent : std::uint8_t { Plain, Formula, Array, ArrayPart };

CellContent contentOf(const Cell& cell, int row, int column) {
  if (cell.kind != ValueKind::Formula) return CellContent::Plain;
  const auto& block = cell.formula->array;
  if (!block) return CellContent::Formula;
  return block->row == row && block->column == column ? CellContent::Array : CellContent::ArrayPart;
}

void putCells(SnapshotWriter& out, const CellStore& cells) {
  std::uint64_t count = 0;
  cells.forEach([&](int, int, const Cell&) { ++count; });
  out.put(count);
  cells.forEach([&](int row, int column, const Cell& cell) {
    const CellContent content = contentOf(cell, row, column);
    out.putCell(row, column, cell.format, content);
    if (content == CellContent::Formula || content == CellContent::Array) {
      out.putText(cell.formula->text);
    }
    if (content == CellContent::Array) {
      out.put(static_cast<std::int32_t>(cell.formula->array->rows));
      out.put(static_cast<std::int32_t>(cell.formula->array->columns));
    }
    out.putValue(CellStore::valueOf(cell));
  });
}

void getCells(SnapshotReader& in, Worksheet& book, int sheet, std::uint32_t formatCount) {
  CellStore& cells = book.cellsForReader(sheet);
  const auto count = in.get<std::uint64_t>();
  for (std::uint64_t i = 0; i < count; ++i) {
    const int row = in.getNumber(1, maxRows);
    const int column = in.getNumber(1, maxColumns);
    const auto format = in.get<std::uint32_t>();
    if (format >= formatCount) SnapshotReader::fail();
    const auto content = in.getEnum(CellContent::ArrayPart);
    if (content == CellContent::Plain) {
      cells.set(row, column, in.getValue());
    } else if (content == CellContent::Formula) {
      const std::string_view formula = in.getText();
      book.setFormulaWithValue(sheet, row, column, formula, in.getValue());
    } else {
      if (content == CellContent::Array) {
        const std::string_view formula = in.getText();
        const int rows = in.getNumber(1, maxRows - row + 1);
        const int columns = in.getNumber(1, maxColumns - column + 1);
        book.setArrayFormula(sheet, row, column, row + rows - 1, column + columns - 1, formula);
      }
      book.setCachedValue(sheet, row, column, in.getValue());
    }
    cells.setFormat(row, column, format);
  }
}

}  // namespace

bool looksLikeSnapshot(std::string_view bytes) {
  return bytes.substr(0, magic.size()) == magic;
}

std::string Worksheet::WriteToBlob() const {
  SnapshotWriter out;
  const auto putFlag = [&](bool flag) { out.put(static_cast<std::uint8_t>(flag)); };
  const auto putText = [&](const std::string& text) { out.putText(text); };
  out.putText(title_);
  putFlag(dates1904_);
  for (bool flag :
       {permissions_.AllowInCellEditing, permissions_.AllowDelete, permissions_.AllowMoveRange,
        permissions_.AllowAutoFill, permissions_.AllowFormulas, permissions_.AllowEditHeaders,
        permissions_.AllowDesigner, permissions_.PrintColHeading}) {
    putFlag(flag);
  }
  putNames(out, names_);
  out.put(formats_->size());
  for (std::uint32_t i = 0; i < formats_->size(); ++i) putFormat(out, formats_->at(i));
  out.put(static_cast<std::uint32_t>(sheets_.size()));
  out.put(static_cast<std::int32_t>(current_));
  for (size_t i = 0; i < sheets_.size(); ++i) {
    const SheetData& sheet = *sheets_[i];
    out.putText(sheet.name);
    out.putMap(sheet.columnTexts, putText);
    out.putMap(sheet.rowTexts, putText);
    out.putMap(sheet.widths, [&](double width) { out.put(width); });
    out.putMap(sheet.hiddenColumns, putFlag);
    out.putMap(sheet.hiddenRows, putFlag);
    for (int place : {sheet.selection.row1, sheet.selection.column1, sheet.selection.row2,
                      sheet.selection.column2, sheet.activeRow, sheet.activeColumn, sheet.maxRow,
                      sheet.maxColumn, sheet.fixedRows}) {
      out.put(static_cast<std::int32_t>(place));
    }
    out.put(sheet.visibility);
    putCells(out, sheet.cells);
  }
  return out.finished();
}

void Worksheet::ReadFromBlob(std::string_view blob) {
  if (!looksLikeSnapshot(blob)) throw FileError("this is not a workbook snapshot");
  if (blob.size() < headerBytes) SnapshotReader::fail();
  std::uint32_t sum;
  std::memcpy(&sum, blob.data() + magic.size(), sizeof sum);
  blob.remove_prefix(headerBytes);
  if (crc32(blob) != sum) SnapshotReader::fail();

  SnapshotReader in(blob);
  const auto getText = [&] { return std::string(in.getText()); };
  const auto getFlag = [&] { return in.getFlag(); };
  Worksheet book;
  book.title_ = in.getText();
  book.dates1904_ = in.getFlag();
  for (bool* flag : {&book.permissions_.AllowInCellEditing, &book.permissions_.AllowDelete,
                     &book.permissions_.AllowMoveRange, &book.permissions_.AllowAutoFill,
                     &book.permissions_.AllowFormulas, &book.permissions_.AllowEditHeaders,
                     &book.permissions_.AllowDesigner, &book.permissions_.PrintColHeading}) {
    *flag = in.getFlag();
  }
  std::vector<DefinedName> names = getNames(in);
  // Cells carry indices into this table, so it must come out as it went in: distinct formats, the
  // default first.
  const auto formatCount = in.getCount();
  for (std::uint32_t i = 0; i < formatCount; ++i) {
    if (book.formats_->indexOf(getFormat(in)) != i) SnapshotReader::fail();
  }
  const auto sheetCount = in.getCount();
  if (sheetCount == 0) SnapshotReader::fail();
  const int current = in.getNumber(1, static_cast<int>(sheetCount));
  for (std::uint32_t i = 0; i < sheetCount; ++i) {
    const int number = static_cast<int>(i) + 1;
    if (number > 1) book.InsertSheets(number, 1);
    SheetData& sheet = book.data(number);
    book.SheetName(number, in.getText());
    in.getMap(sheet.columnTexts, getText);
    in.getMap(sheet.rowTexts, getText);
    in.getMap(sheet.widths, [&] { return in.get<double>(); });
    in.getMap(sheet.hiddenColumns, getFlag);
    in.getMap(sheet.hiddenRows, getFlag);
    for (int* place : {&sheet.selection.row1, &sheet.selection.column1, &sheet.selection.row2,
                       &sheet.selection.column2}) {
      *place = in.getNumber(-1, maxRows);
    }
    sheet.activeRow = in.getNumber(1, maxRows);
    sheet.activeColumn = in.getNumber(1, maxColumns);
    const int rows = in.getNumber(1, maxRows);
    const int columns = in.getNumber(1, maxColumns);
    sheet.fixedRows = in.getNumber(0, maxRows);
    sheet.visibility = in.getEnum(SheetVisibility::VeryHidden);
    getCells(in, book, number, formatCount);
    // Set last: cells may lie outside of a narrowed sheet.
    sheet.maxRow = rows;
    sheet.maxColumn = columns;
  }
  if (!in.atEnd()) SnapshotReader::fail();
  book.setDefinedNames(std::move(names));
  book.current_ = current;
  *this = std::move(book);
}

}  // namespace lodex
