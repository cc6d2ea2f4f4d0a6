// The first half of identification: which rows and columns hold the structure.
#include <algorithm>
#include <array>

#include "chem/Headings.h"
#include "import/Identification.h"
#include "import/recognise/ApplyRecognition.h"

namespace lodex {
namespace {

struct CellPlace {
  int row = 0;
  int column = 0;
};

// The first cell, taken row by row, that holds each of the texts. One walk over the cells that
// exist: searching for them one by one would format every number of the sheet each time.
template <size_t Count>
std::array<CellPlace, Count> firstPlaces(const Worksheet& sheet,
                                         const std::array<std::string_view, Count>& texts,
                                         int lastColumn = maxColumns) {
  std::array<CellPlace, Count> places;
  sheet.cells(sheet.Sheet()).forEach([&](int row, int column, const Cell& cell) {
    if (column > lastColumn) return;
    if (cell.kind == ValueKind::Empty || cell.kind == ValueKind::Number) return;
    const Value value = CellStore::valueOf(cell);
    if (!value.isText()) return;
    for (size_t i = 0; i < Count; ++i) {
      if (value.textView() != texts[i]) continue;
      CellPlace& first = places[i];
      const bool earlier = row < first.row || (row == first.row && column < first.column);
      if (first.row == 0 || earlier) first = {row, column};
    }
  });
  return places;
}

std::string addingLine(int systemRow) {
  return "-Adding " + std::string(systemRowCaption(systemRow)) + " row";
}

void addBelowTop(const DescribedSheet& sheet, int systemRow, LogLines& log) {
  log.push_back(addingLine(systemRow));
  const int row = sheet.structure.highestRow() + 1;
  sheet.addSystemRow(systemRow, row);
}

// A bare table gets rows for element, method and unit; headings with a unit are split into them.
void splitHeadings(const DescribedSheet& sheet, LogLines& log) {
  for (const int row : {sysrow::Element, sysrow::Method, sysrow::Unit}) {
    if (!sheet.has(row)) {
      addBelowTop(sheet, row, log);
    } else {
      sheet.setText(row, 1, systemRowCaption(row));
    }
  }
  for (int column = 1; column <= sheet.cells.LastCol(); ++column) {
    std::string element;
    std::string method;
    std::string unit;
    SplitHeading(sheet.text(sysrow::Header, column), element, method, unit, true);
    if (!element.empty()) sheet.setText(sysrow::Element, column, element);
    if (!method.empty()) sheet.setText(sysrow::Method, column, method);
    if (!unit.empty()) sheet.setText(sysrow::Unit, column, unit);
  }
}

// What moved from column 1 to column 2 leaves column 1 to the captions.
void leaveCaptionsInFront(const DescribedSheet& sheet, int top) {
  Worksheet& cells = sheet.cells;
  const int sheetNumber = cells.Sheet();
  for (int row = 1; row <= top; ++row) {
    cells.ValueSRC(sheetNumber, row, 1, cells.ValueRC(row, 2));
    for (int i = 0; i < systemRowCount; ++i) {
      if (sheet.structure.row(i) == row && cells.TextRC(row, 2) == systemRowCaption(i)) {
        cells.TextRC(row, 2, "");
      }
    }
  }
}

// All at once: every insertion moves the whole table.
void addMissingRows(const DescribedSheet& sheet, LogLines& log) {
  SheetStructure& structure = sheet.structure;
  const int first = structure.highestRow() + 1;
  int next = first;
  for (int i = 0; i < systemRowCount; ++i) {
    if (sheet.has(i)) continue;
    log.push_back(addingLine(i));
    structure.row(i) = next++;
  }
  if (next == first) return;
  sheet.cells.InsertRange(first, 1, next - 1, 1, Shift::Rows);
  if (structure.firstDataRow >= first) structure.firstDataRow += next - first;
}

// Captions get a column of their own in front, and `column` (before that) becomes the ID column.
void makeIdColumn(const DescribedSheet& sheet, int column, LogLines& log) {
  Worksheet& cells = sheet.cells;
  log.push_back(column == 1 ? std::string("-Moving first column to ID col = 2")
                            : "-ID col = " + std::to_string(column + 1));
  const int last = cells.LastCol();
  if (last >= maxColumns) {
    log.found.error("The last column was left out to make room for the captions", {.column = last});
    cells.DeleteRange(1, last, 1, last, Shift::Columns);
  }
  cells.InsertRange(1, 1, 1, 1, Shift::Columns);
  if (sheet.structure.mineralColumn > 0) ++sheet.structure.mineralColumn;
  leaveCaptionsInFront(sheet, std::min(sheet.structure.highestRow(), cells.LastRow()));
  const int id = column + 1;
  sheet.structure.idColumn = id;
  if (sheet.text(sysrow::Header, id).empty()) sheet.setText(sysrow::Header, id, "SampleNo");
  if (sheet.has(sysrow::Header)) sheet.setText(sysrow::Element, id, sheet.text(sysrow::Header, id));
}

// Recognises the layout of a sheet without description and writes it into the system rows. Returns
// the column of the identifiers before captions got theirs; 0 when nothing was recognised.
int recogniseLayout(const DescribedSheet& sheet, int headingRow, LogLines& log) {
  const RecognisedTable table = recogniseTable(sheet.cells, headingRow);
  if (table.layout != TableLayout::Rows || table.assayCount() == 0) return 0;
  sheet.structure.rows.fill(0);
  applyRecognition(sheet, table, log);
  return std::max(1, table.idColumn);
}

// In a sheet saved with its description, column 1 holds nothing but captions and the column marked
// as the unique index is the ID column; moving the first one there would lose that.
void findMarkedIdColumn(const DescribedSheet& sheet) {
  for (int row = sheet.structure.highestRow() + 1; row <= sheet.cells.LastRow(); ++row) {
    if (sheet.cells.HasContent(row, 1)) return;
  }
  for (int column = 2; column <= sheet.cells.LastCol(); ++column) {
    if (sheet.text(sysrow::Indexed, column) == "YES") {
      sheet.structure.idColumn = column;
      return;
    }
  }
}

void findMineralColumn(const DescribedSheet& sheet, LogLines& log) {
  const CellPlace place = firstPlaces<1>(sheet.cells, {"Mineral"})[0];
  if (place.row == 0) return;
  log.push_back("Mineral column found: column " + std::to_string(place.column));
  sheet.structure.mineralColumn = place.column;
}

}  // namespace

int findSystemRows(const DescribedSheet& sheet) {
  std::array<std::string_view, systemRowCount> captions;
  for (int i = 0; i < systemRowCount; ++i) captions[static_cast<size_t>(i)] = systemRowCaption(i);
  // In column 1 alone: a column of data may be headed TYPE or LENGTH.
  const auto places = firstPlaces(sheet.cells, captions, 1);
  int known = 0;
  for (int i = 0; i < systemRowCount; ++i) {
    const int row = places[static_cast<size_t>(i)].row;
    if (row == 0) continue;
    sheet.structure.row(i) = row;
    ++known;
  }
  if (known > 1 && sheet.structure.idColumn == 0) findMarkedIdColumn(sheet);
  return known;
}

void autoIdentify(const DescribedSheet& sheet, const ThesaurusIndex* thesaurus,
                  std::string_view fileMethod, LogLines& log, Descriptions descriptions) {
  SheetStructure& structure = sheet.structure;
  sheet.cells.SetSelection(1, 1, 1, 1);
  int known = 0;
  int idColumn = 0;
  // A heading row without any other was set by the user.
  const int chosenHeader =
      sheet.has(sysrow::Header) && !sheet.has(sysrow::Element) ? structure.row(sysrow::Header) : 0;
  if (structure.highestRow() == 0) known = findSystemRows(sheet);
  if (descriptions == Descriptions::Rewrite && (chosenHeader > 0 || !sheet.has(sysrow::Header))) {
    idColumn = recogniseLayout(sheet, chosenHeader, log);
    known = idColumn > 0 ? systemRowCount : std::max(known, chosenHeader > 0 ? 1 : 0);
  }
  if (!sheet.has(sysrow::Header) && known == 0) {
    log.push_back("-First row is set to HEADER");
    structure.row(sysrow::Header) = 1;
    known = 1;
  }
  // The headings of a saved result say what its columns hold, since nobody has put that in rows.
  const bool unread = descriptions == Descriptions::Keep && !sheet.has(sysrow::Element);
  if (sheet.has(sysrow::Header) && (known == 1 || unread)) splitHeadings(sheet, log);
  structure.firstDataRow = std::max(structure.firstDataRow, structure.highestRow() + 1);
  if (structure.idColumn == 0) makeIdColumn(sheet, std::max(1, idColumn), log);
  addMissingRows(sheet, log);
  for (int i = 0; i < systemRowCount; ++i) sheet.setText(i, 1, systemRowCaption(i));
  sheet.setText(sysrow::Indexed, structure.idColumn, "YES");
  if (structure.mineralColumn == 0) findMineralColumn(sheet, log);
  if (looksLikeUnits(sheet.cells, structure.firstDataRow, structure.idColumn)) {
    log.found.warn("The row looks like a row of units: set it as the UNIT row",
                   {.row = structure.firstDataRow});
  }
  if (thesaurus != nullptr && !thesaurus->empty()) {
    applyThesaurus(*thesaurus, sheet, log, descriptions);
  }
  if (fileMethod.empty()) return;
  for (int column = structure.idColumn + 1; column <= sheet.cells.LastCol(); ++column) {
    if (sheet.text(sysrow::Method, column).empty()) {
      sheet.setText(sysrow::Method, column, fileMethod);
    }
  }
}

}  // namespace lodex
