// Finding values in tables, and references made while computing.
#include <algorithm>

#include "basic/A1.h"
#include "basic/Text.h"
#include "worksheet/formula/Compare.h"
#include "worksheet/formula/FunctionHelp.h"
#include "worksheet/formula/Parser.h"

namespace lodex::formula {
namespace {

// One row or column of a table.
struct Line {
  const Operand* table;
  bool vertical;
  int index;  // of the row or column, from 0
  int length;
  Operand at(Evaluator& ev, int i) const {
    return vertical ? ev.element(*table, i, index) : ev.element(*table, index, i);
  }
};

// Columns may be given whole; their empty end needs no search.
Line lineOf(Evaluator& ev, const Operand& table, bool vertical, int index) {
  Line line{&table, vertical, index,
            vertical ? Evaluator::rowsOf(table) : Evaluator::columnsOf(table)};
  if (table.isArea()) {
    const Area part = ev.used(table.area);
    line.length = std::clamp(vertical ? part.rows() : part.columns(), 0, line.length);
  }
  return line;
}

bool sameKind(const Operand& a, const Operand& b) {
  return (a.isNumber() && b.isNumber()) || (a.isText() && b.isText()) ||
         (a.isBoolean() && b.isBoolean());
}

bool isEqual(const Operand& wanted, const Operand& value, bool pattern) {
  if (wanted.isText() && value.tag == Tag::NumericText)
    return equalsNoCase(wanted.view(), value.view());
  if (!sameKind(wanted, value)) return false;
  if (pattern) return matchesPattern(value.view(), wanted.view());
  return compareValues(wanted, value) == 0;
}

// The position of the first equal value; -1 if none. Text may hold wildcards.
int findExact(Evaluator& ev, const Operand& wanted, const Line& line, bool wildcards) {
  const bool pattern = wildcards && wanted.isText() && hasWildcards(wanted.view());
  if (line.table->isArea() && line.vertical && line.length > 0) {
    // Down the cells of a column, past the empty ones.
    Area column = line.table->area;
    column.column1 = column.column2 = column.column1 + line.index;
    column.row2 = column.row1 + line.length - 1;
    column.lastSheet = column.sheet;
    int found = -1;
    ev.visitCells(column, [&](int row, int, const Operand& value) {
      if (isEqual(wanted, value, pattern)) found = row - column.row1;
      return found < 0;
    });
    return found;
  }
  for (int i = 0; i < line.length; ++i) {
    if (isEqual(wanted, line.at(ev, i), pattern)) return i;
  }
  return -1;
}

// The last position in a descending line before a value falls below the wanted one, or the first
// equal one; -1 if none. Values of another kind are passed over.
int findDescending(Evaluator& ev, const Operand& wanted, const Line& line) {
  int best = -1;
  for (int i = 0; i < line.length; ++i) {
    const Operand value = line.at(ev, i);
    if (!sameKind(wanted, value)) continue;
    const int order = compareValues(value, wanted);
    if (order < 0) break;
    best = i;
    if (order == 0) break;
  }
  return best;
}

// The last position whose value is not above the wanted one, in a line in ascending order; -1 if
// none. Values of another kind are passed over. People look up in unsorted lines too and rely on
// what the search then finds: it halves, and from an equal value only passes over its repetitions.
int findAscending(Evaluator& ev, const Operand& wanted, const Line& line) {
  int low = 0;
  int high = line.length - 1;
  int best = -1;
  while (low <= high) {
    const int middle = low + (high - low) / 2;
    // From the middle on, the next value that can be compared.
    int probe = middle;
    while (probe <= high && !sameKind(wanted, line.at(ev, probe))) ++probe;
    if (probe > high) {
      high = middle - 1;
      continue;
    }
    const int order = compareValues(line.at(ev, probe), wanted);
    if (order == 0) {
      while (probe < high && isEqual(wanted, line.at(ev, probe + 1), false)) ++probe;
      return probe;
    }
    if (order < 0) {
      best = probe;
      low = probe + 1;
    } else {
      high = middle - 1;
    }
  }
  return best;
}

// Empty cells are looked up as 0, and found nowhere else.
Operand wantedValue(const Operand& value) {
  return value.isEmpty() ? Operand(0.0) : value;
}

Operand cellOf(Evaluator& ev, const Operand& table, int row, int column) {
  if (table.isArea()) {
    return Operand(Area{table.area.sheet, table.area.sheet, table.area.row1 + row,
                        table.area.column1 + column, table.area.row1 + row,
                        table.area.column1 + column});
  }
  return ev.element(table, row, column);
}

Operand lookInTable(Evaluator& ev, Arguments a, bool vertical) {
  if (a[1].isError()) return a[1];
  if (a[1].tag == Tag::Areas) return ErrorCode::Value;
  const int size = vertical ? Evaluator::columnsOf(a[1]) : Evaluator::rowsOf(a[1]);
  // A column that is not a number, or an error, counts as one that the table does not have.
  double position = 0;
  Operand error;
  if (!ev.toNumber(a[2], position, error) || !(position < size + 1)) return ErrorCode::Ref;
  if (!(position >= 1)) return ErrorCode::Value;
  const int taken = static_cast<int>(position) - 1;
  const bool sorted = !given(a, 3) ? a.size() < 4 : a[3].number != 0;
  const Operand wanted = wantedValue(a[0]);
  const Line line = lineOf(ev, a[1], vertical, 0);
  const int found = sorted ? findAscending(ev, wanted, line) : findExact(ev, wanted, line, true);
  if (found < 0) return ErrorCode::NotAvailable;
  return vertical ? ev.element(a[1], found, taken) : ev.element(a[1], taken, found);
}

bool isLine(const Operand& operand) {
  return Evaluator::rowsOf(operand) == 1 || Evaluator::columnsOf(operand) == 1;
}

Operand fnMatch(Evaluator& ev, Arguments a) {
  if (a[1].isError()) return a[1];
  if (a[1].tag == Tag::Areas || !isLine(a[1])) return ErrorCode::NotAvailable;
  const double type = numberOr(a, 2, a.size() > 2 ? 0 : 1);
  const bool vertical = Evaluator::columnsOf(a[1]) == 1;
  const Line line = lineOf(ev, a[1], vertical, 0);
  const Operand wanted = wantedValue(a[0]);
  const int found = type == 0  ? findExact(ev, wanted, line, true)
                    : type > 0 ? findAscending(ev, wanted, line)
                               : findDescending(ev, wanted, line);
  return found < 0 ? Operand(ErrorCode::NotAvailable) : Operand(found + 1.0);
}

Operand fnLookup(Evaluator& ev, Arguments a) {
  for (size_t i = 1; i < a.size(); ++i) {
    if (a[i].isError()) return a[i];
    if (a[i].tag == Tag::Areas) return ErrorCode::Value;
  }
  const bool vertical = Evaluator::rowsOf(a[1]) >= Evaluator::columnsOf(a[1]);
  const int found = findAscending(ev, wantedValue(a[0]), lineOf(ev, a[1], vertical, 0));
  if (found < 0) return ErrorCode::NotAvailable;
  if (a.size() < 3) {
    return vertical ? ev.element(a[1], found, Evaluator::columnsOf(a[1]) - 1)
                    : ev.element(a[1], Evaluator::rowsOf(a[1]) - 1, found);
  }
  if (!isLine(a[2])) return ErrorCode::NotAvailable;
  const bool resultVertical =
      Evaluator::columnsOf(a[2]) == 1 && (vertical || Evaluator::rowsOf(a[2]) > 1);
  const int size = resultVertical ? Evaluator::rowsOf(a[2]) : Evaluator::columnsOf(a[2]);
  if (found >= size && !a[2].isArea()) return ErrorCode::NotAvailable;
  if (a[2].isArea()) {
    const int row = a[2].area.row1 + (resultVertical ? found : 0);
    const int column = a[2].area.column1 + (resultVertical ? 0 : found);
    if (row > maxRows || column > maxColumns) return ErrorCode::Ref;
    return ev.cell(a[2].area.sheet, row, column);
  }
  return resultVertical ? ev.element(a[2], found, 0) : ev.element(a[2], 0, found);
}

// XMATCH and XLOOKUP. mode: 0 equal, -1 or the next smaller, 1 or the next larger, 2 wildcards.
int findExtended(Evaluator& ev, const Operand& wanted, const Line& line, int mode, bool fromEnd) {
  const bool pattern = mode == 2 && wanted.isText() && hasWildcards(wanted.view());
  int best = -1;
  Operand bestValue;
  for (int step = 0; step < line.length; ++step) {
    const int i = fromEnd ? line.length - 1 - step : step;
    const Operand value = line.at(ev, i);
    if (isEqual(wanted, value, pattern)) return i;
    if ((mode != -1 && mode != 1) || !sameKind(wanted, value)) continue;
    const int order = compareValues(value, wanted);
    if (order * mode < 0) continue;
    if (best < 0 || compareValues(value, bestValue) * mode < 0) {
      best = i;
      bestValue = value;
    }
  }
  return best;
}

bool extendedModes(Arguments a, size_t first, int& mode, bool& fromEnd) {
  const double match = numberOr(a, first, 0);
  const double search = numberOr(a, first + 1, 1);
  if (match != -1 && match != 0 && match != 1 && match != 2) return false;
  if (search != 1 && search != -1 && search != 2 && search != -2) return false;
  mode = static_cast<int>(match);
  fromEnd = search == -1;
  return true;
}

Operand fnXmatch(Evaluator& ev, Arguments a) {
  int mode = 0;
  bool fromEnd = false;
  if (a[1].isError()) return a[1];
  if (a[1].tag == Tag::Areas || !isLine(a[1]) || !extendedModes(a, 2, mode, fromEnd)) {
    return ErrorCode::Value;
  }
  const Line line = lineOf(ev, a[1], Evaluator::columnsOf(a[1]) == 1, 0);
  const int found = findExtended(ev, wantedValue(a[0]), line, mode, fromEnd);
  return found < 0 ? Operand(ErrorCode::NotAvailable) : Operand(found + 1.0);
}

Operand fnXlookup(Evaluator& ev, Arguments a) {
  int mode = 0;
  bool fromEnd = false;
  for (const size_t i : {size_t(1), size_t(2)}) {
    if (a[i].isError()) return a[i];
    if (a[i].tag == Tag::Areas) return ErrorCode::Value;
  }
  if (!isLine(a[1]) || !extendedModes(a, 4, mode, fromEnd)) return ErrorCode::Value;
  const bool vertical = Evaluator::columnsOf(a[1]) == 1;
  const int length = vertical ? Evaluator::rowsOf(a[1]) : Evaluator::columnsOf(a[1]);
  const int resultLength = vertical ? Evaluator::rowsOf(a[2]) : Evaluator::columnsOf(a[2]);
  if (length != resultLength) return ErrorCode::Value;
  const int found =
      findExtended(ev, wantedValue(a[0]), lineOf(ev, a[1], vertical, 0), mode, fromEnd);
  if (found < 0) return given(a, 3) ? a[3] : Operand(ErrorCode::NotAvailable);
  // A whole row (or column) of the results.
  const int width = vertical ? Evaluator::columnsOf(a[2]) : Evaluator::rowsOf(a[2]);
  if (width == 1) return vertical ? ev.element(a[2], found, 0) : ev.element(a[2], 0, found);
  if (a[2].isArea()) {
    Area area = a[2].area;
    (vertical ? area.row1 : area.column1) += found;
    (vertical ? area.row2 : area.column2) = vertical ? area.row1 : area.column1;
    return Operand(area);
  }
  Array* out = vertical ? ev.newArray(1, width) : ev.newArray(width, 1);
  for (int i = 0; i < width; ++i) {
    out->values[static_cast<size_t>(i)] =
        vertical ? ev.element(a[2], found, i) : ev.element(a[2], i, found);
  }
  return Operand(out);
}

Operand fnIndex(Evaluator& ev, Arguments a) {
  Operand source = a[0];
  if (source.isError()) return source;
  if (source.tag == Tag::Areas) {
    const double which = numberOr(a, 3, 1);
    if (!(which >= 1 && which < static_cast<double>(source.areas->size()) + 1))
      return ErrorCode::Ref;
    source = Operand((*source.areas)[static_cast<size_t>(which) - 1]);
  } else if (numberOr(a, 3, 1) != 1) {
    return ErrorCode::Ref;
  }
  const int rows = Evaluator::rowsOf(source);
  const int columns = Evaluator::columnsOf(source);
  double row = numberOr(a, 1, 0);
  double column = numberOr(a, 2, 0);
  // With one number only, it counts along a single row.
  if (row < 0 || column < 0) return ErrorCode::Value;
  if (a.size() == 2 && columns > 1) {
    if (rows > 1) return ErrorCode::Ref;
    std::swap(row, column);
  }
  if (!(row < rows + 1) || !(column < columns + 1)) return ErrorCode::Ref;
  const int r = static_cast<int>(row);
  const int c = static_cast<int>(column);
  if (r > 0 && c > 0) return cellOf(ev, source, r - 1, c - 1);
  if (r > 0 && columns == 1) return cellOf(ev, source, r - 1, 0);
  if (c > 0 && rows == 1) return cellOf(ev, source, 0, c - 1);
  if (r == 0 && c == 0) return source;
  if (source.isArea()) {
    Area area = source.area;
    if (r > 0) area.row1 = area.row2 = area.row1 + r - 1;
    if (c > 0) area.column1 = area.column2 = area.column1 + c - 1;
    return Operand(area);
  }
  Array* out = ev.newArray(r > 0 ? 1 : rows, c > 0 ? 1 : columns);
  for (int i = 0; i < out->rows; ++i) {
    for (int j = 0; j < out->columns; ++j) {
      out->at(i, j) = ev.element(source, r > 0 ? r - 1 : i, c > 0 ? c - 1 : j);
    }
  }
  return Operand(out);
}

Operand fnOffset(Evaluator&, Arguments a) {
  if (a[0].isError()) return a[0];
  if (!a[0].isArea()) return ErrorCode::Value;
  const Area& from = a[0].area;
  const double rows = std::trunc(numberOr(a, 3, from.rows()));
  const double columns = std::trunc(numberOr(a, 4, from.columns()));
  if (rows == 0 || columns == 0) return ErrorCode::Ref;
  double row = from.row1 + std::floor(a[1].number);
  double column = from.column1 + std::floor(a[2].number);
  // A negative height reaches upwards from the first cell.
  if (rows < 0) row += rows + 1;
  if (columns < 0) column += columns + 1;
  const double lastRow = row + std::abs(rows) - 1;
  const double lastColumn = column + std::abs(columns) - 1;
  if (!(row >= 1 && column >= 1 && lastRow <= maxRows && lastColumn <= maxColumns))
    return ErrorCode::Ref;
  return Operand(Area{from.sheet, from.lastSheet, static_cast<int>(row), static_cast<int>(column),
                      static_cast<int>(lastRow), static_cast<int>(lastColumn)});
}

// "R2C3", "R[-1]C[2]" and the like, from the formula's own place.
bool parseR1C1(std::string_view text, const Place& place, int& row, int& column) {
  size_t pos = 0;
  const auto part = [&](char letter, int own, int& out) {
    if (pos >= text.size() || (text[pos] & ~0x20) != letter) return false;
    ++pos;
    const bool relative = pos < text.size() && text[pos] == '[';
    if (relative) ++pos;
    const bool negative = relative && pos < text.size() && text[pos] == '-';
    if (negative) ++pos;
    int number = 0;
    const size_t digits = pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9' && number <= maxRows) {
      number = number * 10 + (text[pos++] - '0');
    }
    if (relative && (pos >= text.size() || text[pos++] != ']')) return false;
    const bool absolute = !relative && pos > digits;
    out = absolute ? number : own + (negative ? -number : number);
    return true;
  };
  return part('R', place.row, row) && part('C', place.column, column) && pos == text.size() &&
         row >= 1 && row <= maxRows && column >= 1 && column <= maxColumns;
}

Operand areaOfR1C1(Evaluator& ev, std::string_view text) {
  int sheet = ev.place().sheet;
  const size_t mark = text.rfind('!');
  if (mark != std::string_view::npos) {
    std::string name(text.substr(0, mark));
    if (name.size() > 1 && name.front() == '\'' && name.back() == '\'') {
      name = replaceAll(std::string_view(name).substr(1, name.size() - 2), "''", "'");
    }
    sheet = ev.book().SheetNumber(name);
    if (sheet == 0) return ErrorCode::Ref;
    text = text.substr(mark + 1);
  }
  Area area{sheet, sheet, 0, 0, 0, 0};
  const size_t colon = text.find(':');
  if (!parseR1C1(text.substr(0, colon), ev.place(), area.row1, area.column1)) return ErrorCode::Ref;
  area.row2 = area.row1;
  area.column2 = area.column1;
  if (colon != std::string_view::npos &&
      !parseR1C1(text.substr(colon + 1), ev.place(), area.row2, area.column2)) {
    return ErrorCode::Ref;
  }
  if (area.row1 > area.row2) std::swap(area.row1, area.row2);
  if (area.column1 > area.column2) std::swap(area.column1, area.column2);
  return Operand(area);
}

Operand areaOfReference(Evaluator& ev, const Reference& reference) {
  int sheet = ev.place().sheet;
  int lastSheet = sheet;
  if (reference.sheets) {
    if (!reference.sheets->book.empty()) return ErrorCode::Ref;
    sheet = ev.book().SheetNumber(reference.sheets->first);
    lastSheet =
        reference.sheets->last.empty() ? sheet : ev.book().SheetNumber(reference.sheets->last);
  }
  if (sheet == 0 || lastSheet == 0 || reference.kind == ReferenceKind::Dead) return ErrorCode::Ref;
  return Operand(Area{std::min(sheet, lastSheet), std::max(sheet, lastSheet), reference.first.row,
                      reference.first.column, reference.last.row, reference.last.column});
}

Operand fnIndirect(Evaluator& ev, Arguments a) {
  std::string_view text = trimWhite(a[0].view());
  if (given(a, 1) && a[1].number == 0) return areaOfR1C1(ev, text);
  std::string problem;
  auto node = parseFormula(text, problem);
  for (int depth = 0; node && depth < 8; ++depth) {
    if (node->kind == NodeKind::Reference) return areaOfReference(ev, node->reference);
    if (node->kind != NodeKind::Name) break;
    // A name for a reference.
    const DefinedName* found = nullptr;
    for (const DefinedName& name : ev.book().definedNames()) {
      if (equalsNoCase(name.name, node->text) &&
          (name.sheet == 0 || name.sheet == ev.place().sheet)) {
        found = &name;
        if (name.sheet != 0) break;
      }
    }
    if (found == nullptr) break;
    text = found->formula;
    if (text.starts_with('=')) text.remove_prefix(1);
    node = parseFormula(text, problem);
  }
  return ErrorCode::Ref;
}

Operand fnAddress(Evaluator& ev, Arguments a) {
  int row = 0;
  int column = 0;
  int kind = 1;
  if (!wholeBetween(a[0].number, 1, maxRows, row) ||
      !wholeBetween(a[1].number, 1, maxColumns, column)) {
    return ErrorCode::Value;
  }
  if (given(a, 2) && !wholeBetween(a[2].number, 1, 8, kind)) return ErrorCode::Value;
  if (kind > 4) kind -= 4;  // an old way to ask for R1C1 that only the fourth argument decides now
  const bool rowFixed = kind == 1 || kind == 2;
  const bool columnFixed = kind == 1 || kind == 3;
  std::string out;
  if (given(a, 4) && !a[4].view().empty()) {
    SheetPrefix prefix;
    // A workbook in brackets may come before the sheet.
    const std::string_view sheet = a[4].view();
    const size_t close = sheet.starts_with('[') ? sheet.find(']') : std::string_view::npos;
    if (close != std::string_view::npos) prefix.book = sheet.substr(1, close - 1);
    prefix.first = close == std::string_view::npos ? sheet : sheet.substr(close + 1);
    out = prefixText(prefix);
  }
  if (given(a, 3) && a[3].number == 0) {
    out += rowFixed ? "R" + std::to_string(row) : "R[" + std::to_string(row) + "]";
    out += columnFixed ? "C" + std::to_string(column) : "C[" + std::to_string(column) + "]";
  } else {
    out += (columnFixed ? "$" : "") + columnLetters(column);
    out += (rowFixed ? "$" : "") + std::to_string(row);
  }
  return ev.text(out);
}

// ROW and COLUMN of an area are the numbers of its rows, an array where it has several.
Operand placeNumbers(Evaluator& ev, Arguments a, bool rows) {
  if (!given(a, 0)) return static_cast<double>(rows ? ev.place().row : ev.place().column);
  if (a[0].isError()) return a[0];
  if (!a[0].isArea()) return ErrorCode::Value;
  const Area& area = a[0].area;
  const int first = rows ? area.row1 : area.column1;
  const int count = rows ? area.rows() : area.columns();
  if (count == 1) return static_cast<double>(first);
  Array* out = rows ? ev.newArray(count, 1) : ev.newArray(1, count);
  for (int i = 0; i < count; ++i)
    out->values[static_cast<size_t>(i)] = static_cast<double>(first + i);
  return Operand(out);
}

Operand sizeOf(Arguments a, bool rows) {
  if (a[0].isError()) return a[0];
  if (a[0].isScalar()) return 1.0;
  return static_cast<double>(rows ? Evaluator::rowsOf(a[0]) : Evaluator::columnsOf(a[0]));
}

Operand fnAreas(Evaluator&, Arguments a) {
  if (a[0].isArea()) return 1.0;
  if (a[0].tag == Tag::Areas) return static_cast<double>(a[0].areas->size());
  return a[0].isError() ? a[0] : Operand(ErrorCode::Value);
}

Operand fnTranspose(Evaluator& ev, Arguments a) {
  if (a[0].isError()) return a[0];
  const Array* in = ev.asArray(a[0]);
  Array* out = in == nullptr ? nullptr : ev.newArray(in->columns, in->rows);
  if (out == nullptr) return ErrorCode::Num;
  for (int row = 0; row < in->rows; ++row) {
    for (int column = 0; column < in->columns; ++column) out->at(column, row) = in->at(row, column);
  }
  return Operand(out);
}

constexpr FunctionInfo table[] = {
    {"VLOOKUP", 3, 4, 102, "VREB",
     [](Evaluator& ev, Arguments a) { return lookInTable(ev, a, true); }},
    {"HLOOKUP", 3, 4, 101, "VREB",
     [](Evaluator& ev, Arguments a) { return lookInTable(ev, a, false); }},
    {"LOOKUP", 2, 3, 28, "VAA", fnLookup},
    {"MATCH", 2, 3, 64, "VRn", fnMatch},
    {"XMATCH", 2, 4, newer, "VRnn", fnXmatch},
    {"XLOOKUP", 3, 6, newer, "VRRvnn", fnXlookup},
    {"INDEX", 2, 4, 29, "Annn", fnIndex},
    {"OFFSET", 3, 5, 78, "RNNnn", fnOffset, true, true},
    {"INDIRECT", 1, 2, 148, "Tn", fnIndirect, true, true},
    {"ADDRESS", 2, 5, 219, "NNnbt", fnAddress},
    {"ROW", 0, 1, 8, "R", [](Evaluator& ev, Arguments a) { return placeNumbers(ev, a, true); }},
    {"COLUMN", 0, 1, 9, "R", [](Evaluator& ev, Arguments a) { return placeNumbers(ev, a, false); }},
    {"ROWS", 1, 1, 76, "A", [](Evaluator&, Arguments a) { return sizeOf(a, true); }},
    {"COLUMNS", 1, 1, 77, "A", [](Evaluator&, Arguments a) { return sizeOf(a, false); }},
    {"HYPERLINK", 1, 2, 359, "Ev",
     [](Evaluator&, Arguments a) { return a.size() > 1 && !a[1].isMissing() ? a[1] : a[0]; }},
    {"AREAS", 1, 1, 75, "R", fnAreas},
    {"TRANSPOSE", 1, 1, 83, "A", fnTranspose},
};

}  // namespace

FunctionList lookupFunctions() {
  return table;
}

}  // namespace lodex::formula
