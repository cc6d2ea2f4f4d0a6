// Copying, pasting and moving cells in a SheetEditor.
#include "basic/Error.h"
#include "basic/Text.h"
#include "form/SheetEditor.h"
#include "form/SheetEditorClip.h"
#include "form/SheetEditorSteps.h"
#include "worksheet/files/TextReader.h"
#include "worksheet/files/TextWriter.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/formula/References.h"

namespace lodex {
namespace {

// Clipboards change line ends on their way.
std::string withoutReturns(std::string_view text) {
  return replaceAll(text, "\r", "");
}

std::string tabText(const Worksheet& sheet, const CellBlock& block) {
  std::string text;
  for (int row = block.row1; row <= block.row2; ++row) {
    for (int column = block.column1; column <= block.column2; ++column) {
      if (column > block.column1) text += '\t';
      appendField(text, sheet.TextRC(row, column), '\t');
    }
    text += "\r\n";
  }
  return text;
}

// The block that pasting rows x columns at `at` writes: all of it when it is a whole multiple.
CellBlock pasteTarget(const CellBlock& at, int rows, int columns) {
  if (at.rows() % rows == 0 && at.columns() % columns == 0) return at;
  return {at.row1, at.column1, at.row1 + rows - 1, at.column1 + columns - 1};
}

bool anyFormula(const Worksheet& book, const CellBlock& block) {
  return !book.cells(book.Sheet())
              .visit(block.row1, block.column1, block.row2, block.column2,
                     [](int, int, const Cell& cell) { return cell.kind != ValueKind::Formula; });
}

// Gives the formulas of copied cells their text as it was, where copying has moved references.
void keepFormulaTexts(Worksheet& sheet, const CellBlock& target, const CopiedCells& copied) {
  const int down = target.row1 - copied.block.row1;
  const int right = target.column1 - copied.block.column1;
  copied.cells.cells(1).visit(copied.block.row1, copied.block.column1, copied.block.row2,
                              copied.block.column2, [&](int row, int column, const Cell& cell) {
                                if (cell.kind == ValueKind::Formula && !cell.formula->array) {
                                  sheet.FormulaRC(row + down, column + right, cell.formula->text);
                                }
                                return true;
                              });
}

// Points references into a block that moves to its new place.
bool follow(formula::Reference& reference, const CellBlock& block, int down, int right) {
  const bool area = reference.kind == formula::ReferenceKind::Area;
  if (!area && reference.kind != formula::ReferenceKind::Cell) return false;
  const formula::CellRef& last = area ? reference.last : reference.first;
  if (!block.contains(reference.first.row, reference.first.column) ||
      !block.contains(last.row, last.column)) {
    return false;
  }
  for (formula::CellRef* end : {&reference.first, &reference.last}) {
    end->row += down;
    end->column += right;
  }
  return true;
}

void referencesFollow(Worksheet& book, const CellBlock& block, int down, int right) {
  const int here = book.Sheet();
  const std::string name = book.SheetName(here);
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    std::vector<std::pair<CellPlace, std::string>> changed;
    book.cells(sheet).visit(1, 1, maxRows, maxColumns, [&](int row, int column, const Cell& cell) {
      if (cell.kind != ValueKind::Formula || cell.formula->array) return true;
      std::string text = formula::rewriteFormula(cell.formula->text, [&](formula::Node& node) {
        if (node.kind != formula::NodeKind::Reference) return false;
        const auto& sheets = node.reference.sheets;
        const bool meant = sheets ? sheets->book.empty() && sheets->last.empty() &&
                                        equalsNoCase(sheets->first, name)
                                  : sheet == here;
        return meant && follow(node.reference, block, down, right);
      });
      if (text != cell.formula->text) changed.push_back({{row, column}, std::move(text)});
      return true;
    });
    for (const auto& [place, text] : changed) {
      book.setFormulaWithValue(sheet, place.row, place.column, text,
                               book.ValueSRC(sheet, place.row, place.column));
    }
  }
}

}  // namespace

CopiedCells& CopiedCells::last() {
  static CopiedCells copied;
  return copied;
}

void CopiedCells::keep(const Worksheet& book, const CellBlock& from, std::string_view text,
                       bool isCut) {
  cells = Worksheet();
  cells.CopyRange(from.row1, from.column1, from.row2, from.column2, book, from.row1, from.column1,
                  from.row2, from.column2);
  block = from;
  cut = isCut;
  text_ = withoutReturns(text);
}

bool CopiedCells::standFor(std::string_view clipboardText) const {
  return !text_.empty() && withoutReturns(clipboardText) == text_;
}

void SheetEditor::copy(const CellBlock& block, Clipboard& clipboard) const {
  const CellBlock used = usedPart(block);
  if (used.empty()) return clipboard.setText("");
  const std::string text = tabText(sheet_, used);
  CopiedCells::last().keep(sheet_, used, text, false);
  clipboard.setText(text);
}

void SheetEditor::cut(const CellBlock& block, Clipboard& clipboard) {
  require(EditRight::Delete);
  requireWholeArrays(block);
  const CellBlock used = usedPart(block);
  if (used.empty()) return;
  copy(used, clipboard);
  CopiedCells::last().cut = true;
  editCells("Cut", {used},
            [&] { sheet_.ClearRange(used.row1, used.column1, used.row2, used.column2); });
}

CellBlock SheetEditor::paste(const CellBlock& at, Clipboard& clipboard, PasteKind kind) {
  require(EditRight::Enter);
  const std::string text = clipboard.text();
  CopiedCells& copied = CopiedCells::last();
  if (!copied.standFor(text)) return pasteText(at, text, kind);
  const CellBlock from = copied.block;
  const CellBlock target = pasteTarget(at, from.rows(), from.columns());
  requireFillable(target);
  if (anyFormula(copied.cells, from) && !allows(EditRight::Formulas)) kind = PasteKind::Values;
  editCells(kind == PasteKind::All ? "Paste" : "Paste values", {target}, [&] {
    if (kind == PasteKind::All) {
      sheet_.CopyRange(target.row1, target.column1, target.row2, target.column2, copied.cells,
                       from.row1, from.column1, from.row2, from.column2);
      if (copied.cut) keepFormulaTexts(sheet_, target, copied);
      formulas_.reset();
      return;
    }
    for (int row = 0; row < target.rows(); ++row) {
      for (int column = 0; column < target.columns(); ++column) {
        sheet_.ValueSRC(sheet_.Sheet(), target.row1 + row, target.column1 + column,
                        copied.cells.ValueRC(from.row1 + row % from.rows(),
                                             from.column1 + column % from.columns()));
      }
    }
  });
  copied.cut = false;
  return target;
}

CellBlock SheetEditor::pasteText(const CellBlock& at, std::string_view text, PasteKind kind) {
  std::vector<std::vector<std::string>> lines;
  size_t columns = 0;
  splitCells(text, '\t', [&](int row, int column, std::string_view piece) {
    if (row > maxRows || column > maxColumns) throw Error("The clipboard holds too many cells.");
    lines.resize(std::max(lines.size(), static_cast<size_t>(row)));
    lines.back().emplace_back(piece);
    columns = std::max(columns, lines.back().size());
  });
  if (lines.empty()) return at;
  const CellBlock target =
      pasteTarget(at, static_cast<int>(lines.size()), static_cast<int>(columns));
  requireFillable(target);
  const bool formulas = kind == PasteKind::All && allows(EditRight::Formulas);
  editCells(kind == PasteKind::All ? "Paste" : "Paste values", {target}, [&] {
    for (int row = 0; row < target.rows(); ++row) {
      const auto& line = lines[static_cast<size_t>(row) % lines.size()];
      for (int column = 0; column < target.columns(); ++column) {
        const size_t piece = static_cast<size_t>(column) % columns;
        if (piece >= line.size()) continue;
        if (formulas && line[piece].size() > 1 && line[piece].front() == '=') {
          enterValue(target.row1 + row, target.column1 + column, line[piece]);
        } else {
          sheet_.TextRC(target.row1 + row, target.column1 + column, line[piece]);
        }
      }
    }
  });
  return target;
}

void SheetEditor::moveRange(const CellBlock& block, int row, int column) {
  require(EditRight::Move);
  const CellBlock target{row, column, row + block.rows() - 1, column + block.columns() - 1};
  if (target == block) return;
  requireWholeArrays(block);
  requireFillable(target);
  const auto moveCellsOver = [&] {
    if (hasFormulas()) {
      referencesFollow(sheet_, block, target.row1 - block.row1, target.column1 - block.column1);
    }
    CopiedCells moved;
    moved.keep(sheet_, block, "", true);
    sheet_.ClearRange(block.row1, block.column1, block.row2, block.column2);
    sheet_.CopyRange(target.row1, target.column1, target.row2, target.column2, moved.cells,
                     block.row1, block.column1, block.row2, block.column2);
    keepFormulaTexts(sheet_, target, moved);
  };
  if (hasFormulas()) {
    record("Move", moveCellsOver);
  } else {
    editCells("Move", {block, target}, moveCellsOver);
  }
}

}  // namespace lodex
