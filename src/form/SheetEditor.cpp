#include "form/SheetEditor.h"

#include <utility>

#include "basic/Error.h"
#include "form/SheetEditorSteps.h"
#include "worksheet/files/FormulaShift.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex {
namespace {

// A format for whole columns or rows also reaches so many rows and columns after the used ones.
constexpr int formatRoomRows = 256;
constexpr int formatRoomColumns = 32;

// A whole sheet has 17 thousand million cells, more than fit into memory.
constexpr long long mostFilled = 10'000'000;

std::vector<int> layoutOf(const Worksheet& book) {
  std::vector<int> layout;
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    layout.push_back(book.LastRow(sheet));
    layout.push_back(book.LastCol(sheet));
  }
  return layout;
}

}  // namespace

SheetEditor::SheetEditor(Worksheet& sheet, EditHistory& history)
    : sheet_(sheet), history_(history), layout_(layoutOf(sheet)) {
  restores_ = history_.onRestore([this] {
    formulas_.reset();
    recalc();
    layout_ = layoutOf(sheet_);
    restored_ = true;
  });
  // Observers are called once the state beside the cells is restored, too.
  historyChanges_ = history_.onChange([this] {
    if (std::exchange(restored_, false)) notifyChanged(nullptr);
  });
}

SheetEditor::~SheetEditor() = default;

// --- Permissions ---

bool SheetEditor::allows(EditRight right) const {
  if (readOnly_) return false;
  const GridPermissions& permissions = sheet_.permissions();
  switch (right) {
    case EditRight::Enter:
      return permissions.AllowInCellEditing;
    case EditRight::Formulas:
      return permissions.AllowFormulas;
    case EditRight::Delete:
      return permissions.AllowDelete;
    case EditRight::Move:
      return permissions.AllowMoveRange;
    case EditRight::Fill:
      return permissions.AllowAutoFill;
    case EditRight::Headings:
      return permissions.AllowEditHeaders;
    case EditRight::Format:
      return permissions.AllowDesigner;
  }
  return false;
}

void SheetEditor::require(EditRight right) const {
  if (allows(right)) return;
  if (right == EditRight::Formulas && allows(EditRight::Enter)) {
    throw Error("Formulas cannot be entered in this sheet.");
  }
  throw Error("This sheet cannot be changed that way now.");
}

// One cell of an array formula cannot change without the others.
void SheetEditor::requireWholeArrays(const CellBlock& block) const {
  if (formulas_ && !*formulas_) return;
  const int sheet = sheet_.Sheet();
  const bool whole = sheet_.cells(sheet).visit(
      block.row1, block.column1, block.row2, block.column2, [&](int, int, const Cell& cell) {
        if (cell.kind != ValueKind::Formula || !cell.formula->array) return true;
        const ArrayBlock& array = *cell.formula->array;
        return block.contains(CellBlock{array.row, array.column, array.row + array.rows - 1,
                                        array.column + array.columns - 1});
      });
  if (!whole) throw Error("A part of an array formula cannot be changed.");
}

void SheetEditor::requireInside(const CellBlock& block) const {
  if (wholeSheet().contains(block)) return;
  throw Error("This needs " + std::to_string(block.rows()) + " rows and " +
              std::to_string(block.columns()) + " columns; the sheet ends at row " +
              std::to_string(sheet_.MaxRow()) + ", column " + std::to_string(sheet_.MaxCol()) +
              ".");
}

// A block that an edit fills with cells.
void SheetEditor::requireFillable(const CellBlock& block) const {
  requireInside(block);
  requireWholeArrays(block);
  const long long cells = 1LL * block.rows() * block.columns();
  if (cells > mostFilled) {
    throw Error(std::to_string(cells) + " cells are too many to be filled at once.");
  }
}

// --- Bookkeeping ---

void SheetEditor::notifyChanged(const CellBlock* block) {
  layout_ = layoutOf(sheet_);
  observers_.notify(block);
}

void SheetEditor::changedOutside() {
  if (recording_ > 0) return;
  formulas_.reset();
  std::vector<int> layout = layoutOf(sheet_);
  if (layout == layout_) return;
  layout_ = std::move(layout);
  history_.clear();
}

bool SheetEditor::hasFormulas() {
  if (!formulas_) formulas_ = holdsFormulas(sheet_);
  return *formulas_;
}

void SheetEditor::recalc() {
  if (hasFormulas()) sheet_.Recalc();
}

void SheetEditor::editCells(std::string_view name, const std::vector<CellBlock>& blocks,
                            const std::function<void()>& change) {
  if (recording_ > 0) {
    change();
    return;
  }
  std::string extra = history_.extraState();
  auto step = std::make_unique<CellStep>(sheet_, sheet_.Sheet(), blocks);
  try {
    change();
  } catch (...) {
    step->undo();
    throw;
  }
  recalc();
  const CellBlock changed = blocks.size() == 1 ? blocks.front() : wholeSheet();
  history_.push(std::string(name), std::move(step), std::move(extra));
  notifyChanged(&changed);
}

void SheetEditor::editLayout(std::string_view name, const std::function<void()>& change) {
  if (recording_ > 0) {
    change();
    return;
  }
  std::string extra = history_.extraState();
  auto step = std::make_unique<LayoutStep>(sheet_, sheet_.Sheet());
  change();
  history_.push(std::string(name), std::move(step), std::move(extra));
  notifyChanged(nullptr);
}

void SheetEditor::record(std::string_view name, const std::function<void()>& command) {
  if (recording_ > 0) return command();
  std::string extra = history_.extraState();
  auto step = std::make_unique<BookStep>(sheet_);
  const auto finish = [&] {
    --recording_;
    formulas_.reset();
    history_.push(std::string(name), std::move(step), std::move(extra));
    notifyChanged(nullptr);
  };
  ++recording_;
  try {
    command();
    formulas_.reset();
    recalc();
  } catch (...) {
    finish();
    throw;
  }
  finish();
}

// --- The selection ---

CellBlock SheetEditor::wholeSheet() const {
  return {1, 1, sheet_.MaxRow(), sheet_.MaxCol()};
}

CellBlock SheetEditor::selection() const {
  CellBlock block = CellBlock::between(sheet_.SelStartRow(), sheet_.SelStartCol(),
                                       sheet_.SelEndRow(), sheet_.SelEndCol())
                        .cutTo(wholeSheet());
  if (block.empty()) block = {sheet_.Row(), sheet_.Col(), sheet_.Row(), sheet_.Col()};
  return block;
}

CellBlock SheetEditor::usedPart(const CellBlock& block) const {
  return block.cutTo({1, 1, sheet_.LastRow(), sheet_.LastCol()});
}

SelectionSummary SheetEditor::summary(const CellBlock& block) const {
  SelectionSummary summary;
  const auto add = [&summary](double number) {
    ++summary.numbers;
    summary.sum += number;
  };
  sheet_.cells(sheet_.Sheet())
      .visit(block.row1, block.column1, block.row2, block.column2, [&](int, int, const Cell& cell) {
        ++summary.count;
        if (cell.kind == ValueKind::Number) {
          add(cell.number);
        } else if (cell.kind == ValueKind::Formula && cell.formula->cached.isNumber()) {
          add(cell.formula->cached.asNumber());
        }
        return true;
      });
  return summary;
}

// --- Contents ---

void SheetEditor::enterValue(int row, int column, std::string_view entry) {
  sheet_.EntryRC(row, column, entry);
  if (entry.size() > 1 && entry.front() == '=') formulas_ = true;
}

void SheetEditor::enter(int row, int column, std::string_view entry) {
  enterAll({row, column, row, column}, entry);
}

void SheetEditor::enterAll(const CellBlock& block, std::string_view entry) {
  require(EditRight::Enter);
  const bool formula = entry.size() > 1 && entry.front() == '=';
  if (formula) require(EditRight::Formulas);
  requireFillable(block);
  editCells("Typing", {block}, [&] {
    enterValue(block.row1, block.column1, entry);
    if (block.single()) return;
    const Value value = sheet_.ValueRC(block.row1, block.column1);
    const std::string text = sheet_.FormulaRC(block.row1, block.column1);
    for (int row = block.row1; row <= block.row2; ++row) {
      for (int column = block.column1; column <= block.column2; ++column) {
        if (!formula) {
          sheet_.ValueSRC(sheet_.Sheet(), row, column, value);
        } else if (row != block.row1 || column != block.column1) {
          sheet_.FormulaRC(row, column,
                           shiftedFormula(text, row - block.row1, column - block.column1));
        }
      }
    }
  });
}

void SheetEditor::clearContents(const CellBlock& block) {
  require(EditRight::Delete);
  requireWholeArrays(block);
  const CellBlock used = usedPart(block);
  if (used.empty()) return;
  editCells("Delete", {used}, [&] {
    const int sheet = sheet_.Sheet();
    std::vector<CellPlace> places;
    sheet_.cells(sheet).visit(used.row1, used.column1, used.row2, used.column2,
                              [&](int row, int column, const Cell&) {
                                places.push_back({row, column});
                                return true;
                              });
    for (const CellPlace& place : places) {
      sheet_.ValueSRC(sheet, place.row, place.column, Value());
    }
  });
}

void SheetEditor::clearAll(const CellBlock& block) {
  require(EditRight::Delete);
  requireWholeArrays(block);
  editCells("Clear", {block},
            [&] { sheet_.ClearRange(block.row1, block.column1, block.row2, block.column2); });
}

// --- Rows, columns, cells ---

void SheetEditor::moveCells(std::string_view name, const CellBlock& block, Shift shift,
                            Motion motion) {
  require(motion == Motion::Insert ? EditRight::Enter : EditRight::Delete);
  requireInside(block);
  std::string extra = history_.extraState();
  const auto kind =
      motion == Motion::Insert ? MovementStep::Kind::Insert : MovementStep::Kind::Delete;
  auto step = std::make_unique<MovementStep>(sheet_, sheet_.Sheet(), kind, block, shift);
  step->redo();
  if (recording_ > 0) return;
  recalc();
  history_.push(std::string(name), std::move(step), std::move(extra));
  notifyChanged(nullptr);
}

void SheetEditor::moveLines(StructureCommand command, const CellBlock& block) {
  const bool insert =
      command == StructureCommand::InsertRows || command == StructureCommand::InsertColumns;
  const bool rows =
      command == StructureCommand::InsertRows || command == StructureCommand::DeleteRows;
  require(insert ? EditRight::Enter : EditRight::Delete);
  requireInside(block);
  const char* name = insert ? rows ? "Insert rows" : "Insert columns"
                     : rows ? "Delete rows"
                            : "Delete columns";
  if (!structureCommands_) {
    moveCells(name, block, rows ? Shift::Rows : Shift::Columns,
              insert ? Motion::Insert : Motion::Delete);
    return;
  }
  sheet_.SetSelection(block.row1, block.column1, block.row2, block.column2);
  record(name, [&] { structureCommands_(command); });
}

void SheetEditor::insertRows(int first, int last) {
  moveLines(StructureCommand::InsertRows, {first, 1, last, sheet_.MaxCol()});
}

void SheetEditor::deleteRows(int first, int last) {
  moveLines(StructureCommand::DeleteRows, {first, 1, last, sheet_.MaxCol()});
}

void SheetEditor::insertColumns(int first, int last) {
  moveLines(StructureCommand::InsertColumns, {1, first, sheet_.MaxRow(), last});
}

void SheetEditor::deleteColumns(int first, int last) {
  moveLines(StructureCommand::DeleteColumns, {1, first, sheet_.MaxRow(), last});
}

void SheetEditor::insertCells(const CellBlock& block, Shift shift) {
  moveCells("Insert cells", block, shift, Motion::Insert);
}

void SheetEditor::deleteCells(const CellBlock& block, Shift shift) {
  moveCells("Delete cells", block, shift, Motion::Delete);
}

void SheetEditor::sort(const CellBlock& block, const std::vector<SortKey>& keys, bool byRows) {
  require(EditRight::Enter);
  requireWholeArrays(block);
  const CellBlock used = usedPart(block);
  if (used.empty()) return;
  editCells("Sort", {used},
            [&] { sheet_.Sort(used.row1, used.column1, used.row2, used.column2, byRows, keys); });
}

// --- Appearance ---

const CellFormat& SheetEditor::formatAt(int row, int column) const {
  return sheet_.formatOf(sheet_.Sheet(), row, column);
}

CellBlock SheetEditor::formatPart(const CellBlock& block) const {
  CellBlock part = block.cutTo(wholeSheet());
  if (part.row2 == sheet_.MaxRow() && part.row1 == 1) {
    part.row2 = std::min(part.row2, sheet_.LastRow() + formatRoomRows);
  }
  if (part.column2 == sheet_.MaxCol() && part.column1 == 1) {
    part.column2 = std::min(part.column2, sheet_.LastCol() + formatRoomColumns);
  }
  return part;
}

void SheetEditor::changeFormat(const CellBlock& block, std::string_view name,
                               const std::function<void(CellFormat&)>& change) {
  require(EditRight::Format);
  const CellBlock part = formatPart(block);
  if (part.empty()) return;
  editCells(name, {part},
            [&] { sheet_.changeFormat(part.row1, part.column1, part.row2, part.column2, change); });
}

void SheetEditor::setBold(const CellBlock& block, bool on) {
  changeFormat(block, "Bold", [on](CellFormat& format) { format.bold = on; });
}

void SheetEditor::setItalic(const CellBlock& block, bool on) {
  changeFormat(block, "Italic", [on](CellFormat& format) { format.italic = on; });
}

void SheetEditor::setUnderline(const CellBlock& block, bool on) {
  changeFormat(block, "Underline", [on](CellFormat& format) { format.underline = on; });
}

void SheetEditor::setFont(const CellBlock& block, const std::string& name, double points) {
  changeFormat(block, "Font", [&](CellFormat& format) {
    format.fontName = name;
    format.fontSize = points;
  });
}

void SheetEditor::setFontColor(const CellBlock& block, Color color) {
  changeFormat(block, "Text colour", [color](CellFormat& format) { format.fontColor = color; });
}

void SheetEditor::setFill(const CellBlock& block, Color color) {
  changeFormat(block, "Fill", [color](CellFormat& format) {
    format.pattern = color == automaticColor ? FillPattern::None : FillPattern::Solid;
    format.patternColor = color;
    format.backgroundColor = automaticColor;
  });
}

void SheetEditor::setNumberFormat(const CellBlock& block, const std::string& numberFormat) {
  changeFormat(block, "Number format",
               [&](CellFormat& format) { format.numberFormat = numberFormat; });
}

void SheetEditor::setAlignment(const CellBlock& block, HorizontalAlignment alignment) {
  changeFormat(block, "Alignment",
               [alignment](CellFormat& format) { format.horizontal = alignment; });
}

void SheetEditor::setWrap(const CellBlock& block, bool on) {
  changeFormat(block, "Wrap text", [on](CellFormat& format) { format.wrap = on; });
}

void SheetEditor::setBorders(const CellBlock& block, Borders borders) {
  require(EditRight::Format);
  const CellBlock part = formatPart(block);
  if (part.empty()) return;
  const bool all = borders == Borders::All;
  const bool outline = all || borders == Borders::Outline;
  constexpr std::uint8_t thin = 1;
  const int sheet = sheet_.Sheet();
  editCells("Borders", {part}, [&] {
    for (int row = part.row1; row <= part.row2; ++row) {
      for (int column = part.column1; column <= part.column2; ++column) {
        CellFormat format = sheet_.formatOf(sheet, row, column);
        const bool bottom = all || (row == part.row2 && borders != Borders::None);
        const auto line = [](bool drawn, std::uint8_t before) { return drawn ? thin : before; };
        if (borders == Borders::None) {
          format.borderLeft = format.borderRight = format.borderTop = format.borderBottom = 0;
        }
        format.borderLeft = line(all || (outline && column == part.column1), format.borderLeft);
        format.borderRight = line(all || (outline && column == part.column2), format.borderRight);
        format.borderTop = line(all || (outline && row == part.row1), format.borderTop);
        format.borderBottom = line(bottom, format.borderBottom);
        sheet_.setFormat(sheet, row, column, format);
      }
    }
  });
}

void SheetEditor::setColumnWidth(int first, int last, double characters) {
  editLayout("Column width", [&] {
    for (int column = first; column <= last; ++column) {
      sheet_.columnWidth(sheet_.Sheet(), column, characters);
    }
  });
}

void SheetEditor::setColumnWidths(const std::vector<std::pair<int, double>>& widths) {
  editLayout("Column width", [&] {
    for (const auto& [column, characters] : widths) {
      sheet_.columnWidth(sheet_.Sheet(), column, characters);
    }
  });
}

void SheetEditor::hideRows(int first, int last, bool hide) {
  editLayout(hide ? "Hide rows" : "Show rows", [&] {
    for (int row = first; row <= last; ++row) sheet_.rowHidden(sheet_.Sheet(), row, hide);
  });
}

void SheetEditor::hideColumns(int first, int last, bool hide) {
  editLayout(hide ? "Hide columns" : "Show columns", [&] {
    for (int column = first; column <= last; ++column) {
      sheet_.columnHidden(sheet_.Sheet(), column, hide);
    }
  });
}

void SheetEditor::freezeRows(int rows) {
  if (rows < 0 || rows > sheet_.MaxRow()) throw Error("There are no such rows to freeze.");
  editLayout(rows > 0 ? "Freeze rows" : "Unfreeze rows", [&] { sheet_.FixedRows(rows); });
}

void SheetEditor::setColumnHeading(int column, std::string_view text) {
  require(EditRight::Headings);
  std::string extra = history_.extraState();
  auto step = std::make_unique<HeadingStep>(sheet_, sheet_.Sheet(), false, column);
  sheet_.ColText(column, text);
  history_.push("Column heading", std::move(step), std::move(extra));
  notifyChanged(nullptr);
}

void SheetEditor::setRowHeading(int row, std::string_view text) {
  require(EditRight::Headings);
  std::string extra = history_.extraState();
  auto step = std::make_unique<HeadingStep>(sheet_, sheet_.Sheet(), true, row);
  sheet_.RowText(row, text);
  history_.push("Row heading", std::move(step), std::move(extra));
  notifyChanged(nullptr);
}

// --- Sheets ---

void SheetEditor::renameSheet(int sheet, const std::string& name) {
  require(EditRight::Headings);
  if (name == sheet_.SheetName(sheet)) return;
  const int other = sheet_.SheetNumber(name);
  if (name.empty() || (other != 0 && other != sheet)) {
    sheet_.SheetName(sheet, name);  // refuses with its own words
  }
  record("Rename sheet", [&] { sheet_.SheetName(sheet, name); });
}

void SheetEditor::insertSheet(int before) {
  require(EditRight::Enter);
  record("Insert sheet", [&] {
    sheet_.InsertSheets(before, 1);
    sheet_.Sheet(before);
  });
}

void SheetEditor::deleteSheet(int sheet) {
  require(EditRight::Delete);
  if (sheet_.NumSheets() == 1) throw Error("The only sheet of a workbook cannot be deleted.");
  record("Delete sheet", [&] { sheet_.DeleteSheets(sheet, 1); });
}

}  // namespace lodex
