// Searching and replacing in a SheetEditor.
#include "basic/Error.h"
#include "basic/Text.h"
#include "form/SheetEditor.h"
#include "form/SheetEditorSteps.h"

namespace lodex {
namespace {

bool matches(std::string_view cell, std::string_view text, const SearchOptions& options) {
  if (options.wholeCell) return options.matchCase ? cell == text : equalsNoCase(cell, text);
  return options.matchCase ? cell.find(text) != std::string_view::npos
                           : findNoCase(cell, text) != std::string_view::npos;
}

std::string replaced(std::string_view cell, std::string_view text, std::string_view with,
                     const SearchOptions& options) {
  if (options.wholeCell) return std::string(with);
  if (options.matchCase) return replaceAll(cell, text, with);
  std::string out;
  size_t from = 0;
  for (size_t hit; (hit = findNoCase(cell, text, from)) != std::string_view::npos;
       from = hit + text.size()) {
    out.append(cell, from, hit - from);
    out += with;
  }
  return out.append(cell, from);
}

// Avoids writing out millions of numbers when no number can contain the text.
bool canStandInNumber(std::string_view text) {
  return text.find_first_not_of("0123456789.+-Ee") == std::string_view::npos;
}

}  // namespace

bool SheetEditor::holdsText(int row, int column, std::string_view text,
                            const SearchOptions& options) const {
  const Cell& cell = sheet_.cells(sheet_.Sheet()).at(row, column);
  if (cell.kind == ValueKind::Empty) return false;
  if (cell.kind == ValueKind::Text || cell.kind == ValueKind::NumericText) {
    return matches(SharedText::viewOf(cell.text), text, options);
  }
  if (cell.kind == ValueKind::Number && (cell.format == 0 || options.inFormulas) &&
      !canStandInNumber(text)) {
    return false;
  }
  return matches(options.inFormulas ? sheet_.EntryRC(row, column) : sheet_.TextRC(row, column),
                 text, options);
}

std::optional<CellPlace> SheetEditor::findNext(std::string_view text, CellPlace from,
                                               const SearchOptions& options) const {
  const int rows = std::min(sheet_.LastRow(), sheet_.MaxRow());
  const int columns = std::min(sheet_.LastCol(), sheet_.MaxCol());
  if (text.empty() || rows == 0) return std::nullopt;
  const CellStore& cells = sheet_.cells(sheet_.Sheet());
  const int step = options.backwards ? -1 : 1;
  int row = from.row;
  int column = from.column + step;
  if (row < 1 || row > rows) {
    row = options.backwards ? rows : 1;
    column = options.backwards ? columns : 1;
  }
  // One row more than there are: the first one is searched in two parts.
  for (int searched = 0; searched <= rows; ++searched) {
    for (; cells.usedInRow(row) > 0 && column >= 1 && column <= columns; column += step) {
      if (holdsText(row, column, text, options)) return CellPlace{row, column};
    }
    row += step;
    if (row < 1) row = rows;
    if (row > rows) row = 1;
    column = options.backwards ? columns : 1;
  }
  return std::nullopt;
}

// Formulas are replaced in as they are entered, everything else as it is shown: a replaced number
// keeps the digits that its format hides only where they are not concerned.
void SheetEditor::replaceIn(CellPlace place, std::string_view text, std::string_view with,
                            const SearchOptions& options) {
  const bool formula = sheet_.HasFormula(sheet_.Sheet(), place.row, place.column);
  const Value value = sheet_.ValueRC(place.row, place.column);
  if (!formula && value.isText()) {
    sheet_.TextRC(place.row, place.column, replaced(value.textView(), text, with, options));
    return;
  }
  enterValue(place.row, place.column,
             replaced(sheet_.EntryRC(place.row, place.column), text, with, options));
}

bool SheetEditor::replace(std::string_view text, std::string_view with, CellPlace place,
                          const SearchOptions& options) {
  require(EditRight::Enter);
  if (text.empty() || !holdsText(place.row, place.column, text, options)) return false;
  const CellBlock block{place.row, place.column, place.row, place.column};
  requireWholeArrays(block);
  editCells("Replace", {block}, [&] { replaceIn(place, text, with, options); });
  return true;
}

int SheetEditor::replaceAll(std::string_view text, std::string_view with,
                            const SearchOptions& options) {
  require(EditRight::Enter);
  if (text.empty()) return 0;
  std::vector<CellBlock> hits;
  const CellBlock used = usedPart(wholeSheet());
  sheet_.cells(sheet_.Sheet())
      .visit(1, 1, std::max(used.row2, 1), std::max(used.column2, 1),
             [&](int row, int column, const Cell&) {
               if (holdsText(row, column, text, options))
                 hits.push_back({row, column, row, column});
               return true;
             });
  if (hits.empty()) return 0;
  for (const CellBlock& hit : hits) requireWholeArrays(hit);
  editCells("Replace all", hits, [&] {
    for (const CellBlock& hit : hits) replaceIn({hit.row1, hit.column1}, text, with, options);
  });
  return static_cast<int>(hits.size());
}

}  // namespace lodex
