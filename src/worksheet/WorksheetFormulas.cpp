// Formulas of a worksheet: recalculation, and how they follow when cells and sheets move.
#include <algorithm>
#include <unordered_map>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/FormulaShift.h"
#include "worksheet/formula/Engine.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/formula/References.h"

namespace lodex {

using formula::Node;

void Worksheet::setArrayFormula(int sheet, int row1, int column1, int row2, int column2,
                                std::string_view formula) {
  if (row2 < row1 || column2 < column1) throw Error("The block has its ends in the wrong order");
  CellStore& cells = checked(sheet, row1, column1).cells;
  checked(sheet, row2, column2);
  formulasChange();
  if (!formula.empty() && formula.front() == '=') formula.remove_prefix(1);
  const auto block = std::make_shared<const ArrayBlock>(
      ArrayBlock{row1, column1, row2 - row1 + 1, column2 - column1 + 1});
  for (int row = row1; row <= row2; ++row) {
    for (int column = column1; column <= column2; ++column) {
      auto cell = std::make_unique<FormulaCell>();
      cell->text = formula;
      cell->array = block;
      cells.setFormula(row, column, std::move(cell));
    }
  }
}

std::optional<ArrayBlock> Worksheet::arrayBlock(int sheet, int row, int column) const {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  if (cell.kind != ValueKind::Formula || !cell.formula->array) return std::nullopt;
  return *cell.formula->array;
}

void Worksheet::setCachedValue(int sheet, int row, int column, const Value& cached) {
  const Cell& cell = checked(sheet, row, column).cells.at(row, column);
  if (cell.kind != ValueKind::Formula) return;
  formulasChange();
  cell.formula->cached = cached;
  cell.formula->valueFromFile = !cached.isEmpty();
}

// Stores a plain value; the formulas that read the cell learn of it.
void Worksheet::setContent(SheetData& target, int sheet, int row, int column, const Value& value) {
  if (engine_) {
    engine_->cellChanges(sheet, row, column,
                         target.cells.at(row, column).kind == ValueKind::Formula);
  }
  target.cells.set(row, column, value);
}

// Called before formulas, sheets or names change: what the engine has prepared no longer holds.
void Worksheet::formulasChange() {
  if (engine_) engine_->invalidate();
}

// Called before the contents of a block of the current sheet go.
void Worksheet::blockChanges(int row1, int column1, int row2, int column2) {
  if (!engine_) return;
  data(current_).cells.visit(
      row1, column1, row2, column2, [&](int row, int column, const Cell& cell) {
        engine_->cellChanges(current_, row, column, cell.kind == ValueKind::Formula);
        return true;
      });
}

CellStore& Worksheet::cellsForReader(int sheet) {
  formulasChange();
  return data(sheet).cells;
}

void Worksheet::setDefinedNames(std::vector<DefinedName> names) {
  formulasChange();
  names_ = std::move(names);
}

void Worksheet::dates1904(bool from1904) {
  formulasChange();
  dates1904_ = from1904;
}

void Worksheet::Recalc() {
  if (!engine_) engine_ = std::make_unique<FormulaEngine>();
  engine_->recalc(*this);
}

// Some programs write formulas without their values.
void Worksheet::calculateMissing() {
  std::vector<Place> missing;
  for (int sheet = 1; sheet <= NumSheets(); ++sheet) {
    data(sheet).cells.forEach([&](int row, int column, const Cell& cell) {
      if (cell.kind != ValueKind::Formula || cell.formula->valueFromFile) return;
      missing.push_back({"", SheetName(sheet), row, column, ""});
    });
  }
  if (missing.empty()) return;
  if (!engine_) engine_ = std::make_unique<FormulaEngine>();
  engine_->calculateMissing(*this);
  for (const Place& place : missing) {
    const Cell& cell = data(SheetNumber(place.sheet)).cells.at(place.row, place.column);
    if (cell.formula->notComputed) {
      readFindings_.error("the formula has no value in the file and could not be calculated",
                          place);
    } else {
      readFindings_.note("the formula has no value in the file and was calculated", place);
    }
  }
}

RecalcReport Worksheet::recalcReport() const {
  return engine_ ? engine_->report(*this) : RecalcReport();
}

std::string Worksheet::formulaProblem(int sheet, int row, int column) const {
  checked(sheet, row, column);
  return FormulaEngine::problemOf(*this, sheet, row, column);
}

// --- References that follow ---

// Changes the references of all formulas and names, or only of those that name a sheet. `change`
// gets the sheet that a reference without a sheet of its own means (0 in a name) and returns true
// when it has changed the node.
void Worksheet::rewriteFormulas(Rewrite which,
                                const std::function<bool(int ownSheet, Node& node)>& change) {
  formulasChange();
  const auto concerned = [&](const std::string& text) {
    return which == Rewrite::All || text.find('!') != std::string::npos;
  };
  for (int sheet = 1; sheet <= NumSheets(); ++sheet) {
    data(sheet).cells.forEach([&](int, int, const Cell& cell) {
      if (cell.kind != ValueKind::Formula || !concerned(cell.formula->text)) return;
      std::string& text = cell.formula->text;
      text = formula::rewriteFormula(text, [&](Node& node) { return change(sheet, node); });
    });
  }
  for (DefinedName& name : names_) {
    if (!concerned(name.formula)) continue;
    name.formula =
        formula::rewriteFormula(name.formula, [&](Node& node) { return change(0, node); });
  }
}

// Called before rows or columns of the current sheet move.
void Worksheet::referencesFollow(const formula::Movement& movement) {
  const auto& name = data(current_).name;
  rewriteFormulas(Rewrite::All, [&](int ownSheet, Node& node) {
    if (node.kind != formula::NodeKind::Reference) return false;
    const auto& sheets = node.reference.sheets;
    const bool here =
        sheets ? sheets->book.empty() && sheets->last.empty() && equalsNoCase(sheets->first, name)
               : ownSheet == current_;
    return here && formula::move(node.reference, movement);
  });
  moveArrayBlocks(movement);
}

// The blocks of array formulas move and grow with their cells.
void Worksheet::moveArrayBlocks(const formula::Movement& movement) {
  std::unordered_map<const ArrayBlock*, std::shared_ptr<const ArrayBlock>> moved;
  data(current_).cells.forEach([&](int, int, const Cell& cell) {
    if (cell.kind != ValueKind::Formula || !cell.formula->array) return;
    const ArrayBlock& before = *cell.formula->array;
    auto& after = moved[&before];
    if (!after) {
      formula::Reference area;
      area.kind = formula::ReferenceKind::Area;
      area.first = {before.row, before.column, false, false};
      area.last = {before.row + before.rows - 1, before.column + before.columns - 1, false, false};
      after = cell.formula->array;
      if (formula::move(area, movement) && area.kind != formula::ReferenceKind::Dead) {
        after = std::make_shared<const ArrayBlock>(
            ArrayBlock{area.first.row, area.first.column, area.last.row - area.first.row + 1,
                       area.last.column - area.first.column + 1});
      }
    }
    cell.formula->array = after;
  });
}

// Called before a sheet gets another name.
void Worksheet::referencesRename(const std::string& before, const std::string& after) {
  rewriteFormulas(Rewrite::WithSheets, [&](int, Node& node) {
    const auto& sheets = node.reference.sheets;
    if (!sheets || !sheets->book.empty()) return false;
    auto renamed = std::make_shared<formula::SheetPrefix>(*sheets);
    for (std::string* name : {&renamed->first, &renamed->last}) {
      if (!name->empty() && equalsNoCase(*name, before)) *name = after;
    }
    const bool changed = renamed->first != sheets->first || renamed->last != sheets->last;
    node.reference.sheets = std::move(renamed);
    return changed;
  });
}

// Called before the sheets from `first` to `last` go. A reference to one of them is lost; of a
// range of sheets the end draws in.
void Worksheet::referencesLoseSheets(int first, int last) {
  rewriteFormulas(Rewrite::WithSheets, [&](int, Node& node) {
    const auto& sheets = node.reference.sheets;
    if (!sheets || !sheets->book.empty()) return false;
    int from = SheetNumber(sheets->first);
    int to = sheets->last.empty() ? from : SheetNumber(sheets->last);
    const bool fromGoes = from >= first && from <= last;
    const bool toGoes = to >= first && to <= last;
    if (!fromGoes && !toGoes) return false;
    if (fromGoes) from = from <= to ? last + 1 : first - 1;
    if (toGoes) to = SheetNumber(sheets->first) <= to ? first - 1 : last + 1;
    const bool inside =
        (fromGoes && toGoes) || from < 1 || to < 1 || from > NumSheets() || to > NumSheets();
    if (inside) {
      if (node.kind == formula::NodeKind::Name) return false;
      node.reference.kind = formula::ReferenceKind::Dead;
      node.reference.sheets = nullptr;
      return true;
    }
    auto rest = std::make_shared<formula::SheetPrefix>(*sheets);
    rest->first = SheetName(from);
    rest->last = from == to ? "" : SheetName(to);
    node.reference.sheets = std::move(rest);
    return true;
  });
  std::erase_if(names_,
                [&](const DefinedName& name) { return name.sheet >= first && name.sheet <= last; });
  for (DefinedName& name : names_) {
    if (name.sheet > last) name.sheet -= last - first + 1;
  }
}

// A copy of a formula that reads as many rows and columns further on as it has moved.
std::unique_ptr<FormulaCell> Worksheet::movedFormula(const FormulaCell& source, int rows,
                                                     int columns) {
  auto copy = std::make_unique<FormulaCell>(source);
  if (rows == 0 && columns == 0) return copy;
  copy->text = shiftedFormula(source.text, rows, columns);
  if (source.array) {
    ArrayBlock block = *source.array;
    block.row += rows;
    block.column += columns;
    copy->array = std::make_shared<const ArrayBlock>(block);
  }
  return copy;
}

}  // namespace lodex
