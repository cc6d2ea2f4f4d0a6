#include "modal/AssaySheet.h"

#include <algorithm>
#include <vector>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Headings.h"
#include "chem/ReferenceTables.h"
#include "modal/frmResult.h"

namespace lodex {
namespace {

std::string cellText(const AssaySheet& source, int row, int column) {
  return row == 0 ? "" : std::string(trimWhite(source.sheet->TextRC(row, column)));
}

int lastSystemRow(const AssaySheet& source) {
  return std::max({source.headerRow, source.elementRow, source.methodRow, source.unitRow});
}

// The samples' rows: those that hold an identifier or any assay.
std::vector<int> sampleRows(const AssaySheet& source, const std::vector<int>& columns) {
  std::vector<int> rows;
  const int first = source.firstDataRow > 0 ? source.firstDataRow : lastSystemRow(source) + 1;
  for (int row = first; row <= source.sheet->LastRow(); ++row) {
    const bool used = source.sheet->HasContent(row, source.idColumn) ||
                      std::any_of(columns.begin(), columns.end(),
                                  [&](int c) { return source.sheet->HasContent(row, c); });
    if (used) rows.push_back(row);
  }
  return rows;
}

// Laboratories also send numbers in cells of text.
bool isNumeric(const Value& value) {
  return value.isNumber() || (value.isText() && isNumericText(value.textView()));
}

bool holdsNumbers(const AssaySheet& source, int column) {
  const int first = source.firstDataRow > 0 ? source.firstDataRow : lastSystemRow(source) + 1;
  for (int row = first; row <= source.sheet->LastRow(); ++row) {
    if (isNumeric(source.sheet->ValueRC(row, column))) return true;
  }
  return false;
}

std::string columnName(const AssayColumn& column, int number) {
  return "column " + std::to_string(number) + " (" + column.heading + ")";
}

// The column's title, and what its converted values are where that is something else.
std::string assayHeading(const AssayColumn& column, const Worksheet& F1ELoc) {
  if (column.factor == 1) return column.heading;
  return column.heading + " as " + F1ELoc.TextRC(column.elementRow, eloc::MineralField);
}

constexpr int rowsPerPoll = 4096;

std::string withPoint(std::string_view text) {
  return replaceAll(trimBlanks(text), ",", ".");
}

void reportText(const Value& value, const Place& place, Findings& found) {
  const bool hasComma = value.isText() && isNumericText(withPoint(value.textView()));
  if (hasComma) {
    found.error("A number with a decimal comma counts as 0: write it with a point", place);
  } else {
    found.warn("Text counts as 0", place);
  }
}

// How many of the copied cells were numbers, and how many were text.
struct CopiedCells {
  int numbers = 0;
  int texts = 0;
};

CopiedCells copyColumn(const AssaySheet& source, int column, double factor,
                       const std::vector<int>& rows, Worksheet& target, int targetColumn,
                       const Watch& watch) {
  CopiedCells copied;
  CellStore& targetCells = target.cellsForReader(1);
  const auto placeOf = [&](int row) {
    return Place{.sheet = source.caption, .row = row, .column = column};
  };
  const auto put = [&](size_t i, double number) {
    targetCells.setNumber(static_cast<int>(i) + 1, targetColumn, number * factor);
    ++copied.numbers;
    if (number < 0) watch.found.warn("Negative value", placeOf(rows[i]));
  };
  const CellStore& cells = source.sheet->cells(source.sheet->Sheet());
  for (size_t i = 0; i < rows.size(); ++i) {
    if (i % rowsPerPoll == 0) watch.poll();
    const Cell& cell = cells.at(rows[i], column);
    if (cell.kind == ValueKind::Number) {
      put(i, cell.number);
      continue;
    }
    const Value value = CellStore::valueOf(cell);
    if (value.isEmpty() || (value.isText() && trimBlanks(value.textView()).empty())) continue;
    if (isNumeric(value)) {
      put(i, value.asNumber());
      continue;
    }
    targetCells.setNumber(static_cast<int>(i) + 1, targetColumn, 0);
    ++copied.texts;
    reportText(value, placeOf(rows[i]), watch.found);
  }
  return copied;
}

// Fills in row and factor of an element or oxide; false when the table has no such name.
bool findElement(const std::string& name, const Worksheet& F1ELoc, AssayColumn& found) {
  static constexpr int names[] = {eloc::Element, eloc::Oxide, eloc::Oxide2};
  static constexpr int factors[] = {eloc::MulitEl, eloc::MultiOx, eloc::MultiOx2};
  for (int row = 1; row <= F1ELoc.LastRow(); ++row) {
    for (int k = 0; k < 3; ++k) {
      if (F1ELoc.TextRC(row, names[k]) != name) continue;
      found.elementRow = row;
      found.factor = F1ELoc.NumberRC(row, factors[k]);
      if (found.factor == 0) found.factor = 1;
      return true;
    }
  }
  return false;
}

int methodNumber(std::vector<std::string>& methods, const std::string& method) {
  const auto hit = std::find(methods.begin(), methods.end(), method);
  if (hit != methods.end()) return static_cast<int>(hit - methods.begin()) + 1;
  methods.push_back(method);
  return static_cast<int>(methods.size());
}

void requireStructure(const AssaySheet& source) {
  if (source.sheet == nullptr) throw Error("There is no data sheet to take the assays from");
  if (source.elementRow == 0) {
    throw Error("The structure of the data sheet is unknown: it has no ELEMENT row");
  }
  if (source.idColumn == 0) {
    throw Error("The structure of the data sheet is unknown: it has no ID column");
  }
}

}  // namespace

AssayColumn describeColumn(const AssaySheet& source, int column, const Worksheet& F1ELoc) {
  AssayColumn found;
  const std::string element = cellText(source, source.elementRow, column);
  found.method = cellText(source, source.methodRow, column);
  found.unit = cellText(source, source.unitRow, column);
  found.heading = cellText(source, source.headerRow, column);
  if (found.heading.empty()) found.heading = element;
  if (element.empty()) return found;

  if (!findElement(element, F1ELoc, found)) {
    found.isTotal = findElement(std::string(withoutTotal(element)), F1ELoc, found);
  }
  if (equalsNoCase(found.unit, "ppm")) found.factor /= 10000;
  if (equalsNoCase(found.unit, "ppb")) found.factor /= 10000000;
  return found;
}

namespace {

// The columns of the sheet that hold assays of known elements.
struct AssayColumns {
  std::vector<int> numbers;
  std::vector<AssayColumn> columns;  // parallel
};

AssayColumns findAssays(const AssaySheet& source, const Worksheet& F1ELoc, Findings& found) {
  AssayColumns assays;
  for (int c = 1; c <= source.sheet->LastCol(); ++c) {
    if (c == source.idColumn || cellText(source, source.elementRow, c) == "ELEMENT") continue;
    AssayColumn column = describeColumn(source, c, F1ELoc);
    if (column.elementRow > 0) {
      assays.numbers.push_back(c);
      assays.columns.push_back(std::move(column));
    } else if (holdsNumbers(source, c)) {
      found.note("Assay " + columnName(column, c) + " feeds no equation: its element is not known",
                 {.sheet = source.caption, .column = c});
    }
  }
  if (assays.numbers.empty()) {
    throw Error("The data sheet has no column with an element that is known");
  }
  return assays;
}

void readSamples(const AssaySheet& source, const std::vector<int>& rows, ModalLists& lists,
                 Worksheet& F1Ini, const Watch& watch) {
  lists.SampleIDs.clear();
  lists.SampleIDsAreNumbers = false;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (i % rowsPerPoll == 0) watch.poll();
    const std::string id = source.sheet->TextRC(rows[i], source.idColumn);
    if (id.empty()) {
      watch.found.warn("The row has no sample identifier",
                       {.sheet = source.caption, .row = rows[i]});
    }
    lists.SampleIDs.push_back(id);
    F1Ini.TextRC(static_cast<int>(i) + 1, 1, id);
  }
  F1Ini.ColText(1, "SampleNo");
}

bool isKnownUnit(const std::string& unit) {
  return unit.empty() || unit == "%" || equalsNoCase(unit, "ppm") || equalsNoCase(unit, "ppb");
}

}  // namespace

std::vector<int> retrieveAssays(const AssaySheet& source, const Worksheet& F1ELoc,
                                ModalLists& lists, frmResult& result, const Watch& watch) {
  requireStructure(source);
  const auto [known, columns] = findAssays(source, F1ELoc, watch.found);
  const std::vector<int> rows = sampleRows(source, known);
  readSamples(source, rows, lists, result.F1Ini, watch);

  std::vector<std::string> methods;
  std::vector<int> onlyText;
  for (size_t k = 0; k < known.size(); ++k) {
    const AssayColumn& column = columns[k];
    const int target = static_cast<int>(k) + 2;
    const std::string name = columnName(column, known[k]);
    const Place place{.sheet = source.caption, .column = known[k]};
    result.F1Ini.ColText(target, assayHeading(column, F1ELoc));
    const int method = methodNumber(methods, column.method.empty() ? firstMethod : column.method);
    const int served = static_cast<int>(result.F1Kirja.NumberRC(column.elementRow, method));
    if (served > 0 && (columns[static_cast<size_t>(served) - 2].isTotal || !column.isTotal)) {
      watch.found.note(
          "Assay " + name + " feeds no equation: an earlier column has the same element and method",
          place);
    } else {
      if (served > 0) {
        const auto part = static_cast<size_t>(served) - 2;
        watch.found.note("Assay " + columnName(columns[part], known[part]) +
                             " feeds no equation: a later column has the total of its element",
                         {.sheet = source.caption, .column = known[part]});
      }
      result.F1Kirja.NumberRC(column.elementRow, method, target);
    }
    if (!isKnownUnit(column.unit)) {
      watch.found.warn(
          "Unit " + column.unit + " of " + name + " is not known: its values are taken as %",
          place);
    }
    const CopiedCells copied =
        copyColumn(source, known[k], column.factor, rows, result.F1Ini, target, watch);
    if (copied.numbers == 0 && copied.texts > 0) onlyText.push_back(target);
  }
  for (size_t k = 0; k < methods.size(); ++k) {
    result.F1Kirja.ColText(static_cast<int>(k) + 1, methods[k]);
  }
  return onlyText;
}

}  // namespace lodex
