#include "worksheet/formula/Engine.h"

#include <cmath>

#include "basic/Error.h"
#include "worksheet/Worksheet.h"
#include "worksheet/formula/Compiler.h"
#include "worksheet/formula/FormulaCopy.h"

namespace lodex {

using formula::Area;
using formula::Code;
using formula::Operand;
using formula::Tag;

namespace {

// A recalculation that changes a file's values by no more than this has confirmed them.
constexpr double sameValue = 1e-9;

bool agrees(const Value& before, const Value& after) {
  if (before.isNumber() && after.isNumber()) {
    const double a = before.asNumber();
    const double b = after.asNumber();
    return a == b || std::abs(a - b) <= sameValue * std::max(std::abs(a), std::abs(b));
  }
  return before == after;
}

}  // namespace

formula::Place FormulaEngine::placeOf(const Entry& entry) const {
  formula::Place place{static_cast<int>(entry.sheet), static_cast<int>(entry.row),
                       static_cast<int>(entry.column)};
  if (entry.cell->array) {
    place.row = entry.cell->array->row;
    place.column = entry.cell->array->column;
  }
  return place;
}

// Visits the cells of an entry: one, or what is left of the block of an array formula.
template <typename Visit>
void FormulaEngine::forBlock(Worksheet& book, const Entry& entry, Visit visit) {
  const int sheet = static_cast<int>(entry.sheet);
  const auto block = entry.cell->array;
  if (!block)
    return visit(static_cast<int>(entry.row), static_cast<int>(entry.column), *entry.cell);
  const CellStore& cells = book.cells(sheet);
  for (int column = block->column; column < block->column + block->columns; ++column) {
    for (int row = block->row; row < block->row + block->rows; ++row) {
      const Cell& cell = cells.at(row, column);
      if (cell.kind == ValueKind::Formula && cell.formula->array == block)
        visit(row, column, *cell.formula);
    }
  }
}

// --- Planning ---

void FormulaEngine::plan(Worksheet& book) {
  if (!evaluator_ || &evaluator_->book() != &book) {
    evaluator_ = std::make_unique<formula::Evaluator>(book);
  }
  codes_.clear();
  changes_.layOut(book);
  collect(book);
  order(book);
  changes_.clear();
  isWaiting_.assign(entries_.size(), false);
  planned_ = true;
}

// Compiles every formula, notes its entry's number in it and marks its cell as not yet ordered.
void FormulaEngine::collect(Worksheet& book) {
  entries_.clear();
  std::unordered_map<const ArrayBlock*, std::uint32_t> blocks;
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    Entry above;
    book.cells(sheet).forEach([&](int row, int column, const Cell& cell) {
      if (cell.kind != ValueKind::Formula) return;
      FormulaCell& formula = *cell.formula;
      changes_.mark(sheet, row, column);
      formula.pass = 0;
      formula.index = static_cast<std::uint32_t>(entries_.size());
      if (formula.array) {
        // One cell of the block computes for all.
        const auto [known, isNew] = blocks.try_emplace(formula.array.get(), formula.index);
        if (!isNew) {
          formula.index = known->second;
          formula.code = nullptr;
          return;
        }
      }
      Entry entry;
      entry.cell = &formula;
      entry.row = static_cast<std::uint64_t>(row) & 0x1FFFFF;
      entry.column = static_cast<std::uint64_t>(column) & 0x7FFF;
      entry.sheet = static_cast<std::uint64_t>(sheet) & 0xFFFFFFF;
      compile(book, entry, above);
      entries_.push_back(entry);
      above = entry;
    });
  }
}

// Equal formulas share their code. Most are copies of the one above, which spares compiling them.
void FormulaEngine::compile(const Worksheet& book, Entry& entry, const Entry& above) {
  FormulaCell& cell = *entry.cell;
  if (above.cell != nullptr && above.column == entry.column && !cell.array && !above.cell->array &&
      formula::isCopyBelow(above.cell->text, cell.text,
                           static_cast<int>(entry.row) - static_cast<int>(above.row))) {
    cell.code = above.cell->code;
    return;
  }
  auto code = formula::compileFormula(cell.text, placeOf(entry), book, cell.array != nullptr);
  auto& shared = codes_[formula::codeKey(*code)];
  if (!shared) shared = std::move(code);
  cell.code = shared.get();
}

struct FormulaEngine::Frame {
  size_t entry = 0;
  size_t reference = 0;  // the one being followed
  bool started = false;
  int sheet = 0, row = 0, column = 0;  // where to search on in it
};

// Depth first: a formula is placed when all it reads is placed. References back into the chain
// being followed are left; evaluation finds out whether they really make a circle.
void FormulaEngine::order(Worksheet& book) {
  std::vector<Entry> ordered;
  ordered.reserve(entries_.size());
  std::vector<Frame> chain;
  const auto take = [&](size_t index) {
    forBlock(book, entries_[index], [&](int row, int column, FormulaCell&) {
      changes_.unmark(static_cast<int>(entries_[index].sheet), row, column);
    });
    Frame frame;
    frame.entry = index;
    chain.push_back(frame);
  };
  for (size_t start = 0; start < entries_.size(); ++start) {
    const Entry& first = entries_[start];
    if (!changes_.isMarked(static_cast<int>(first.sheet), static_cast<int>(first.row),
                           static_cast<int>(first.column))) {
      continue;
    }
    take(start);
    while (!chain.empty()) {
      Frame& frame = chain.back();
      const Entry& entry = entries_[frame.entry];
      const auto& references = entry.cell->code->references;
      if (frame.reference == references.size()) {
        ordered.push_back(entry);
        chain.pop_back();
        continue;
      }
      const formula::Place place = placeOf(entry);
      const Area area = references[frame.reference].at(place.sheet, place.row, place.column);
      if (!frame.started) {
        frame.started = true;
        frame.sheet = area.sheet;
        frame.row = area.row1;
        frame.column = area.column1;
      }
      if (changes_.takeMarked(area, frame.sheet, frame.row, frame.column)) {
        take(book.cells(frame.sheet).at(frame.row, frame.column).formula->index);
      } else if (frame.sheet < area.lastSheet) {
        ++frame.sheet;
        frame.row = area.row1;
        frame.column = area.column1;
      } else {
        ++frame.reference;
        frame.started = false;
      }
    }
  }
  entries_ = std::move(ordered);
  for (size_t i = 0; i < entries_.size(); ++i) {
    forBlock(book, entries_[i],
             [&](int, int, FormulaCell& cell) { cell.index = static_cast<std::uint32_t>(i); });
  }
}

// --- Recalculation ---

void FormulaEngine::startPass(Worksheet& book) {
  if (++pass_ == 0) {
    for (const Entry& entry : entries_) {
      forBlock(book, entry, [](int, int, FormulaCell& cell) { cell.pass = 0; });
    }
    pass_ = 1;
  }
  evaluator_->newPass(book);
}

void FormulaEngine::calculateMissing(Worksheet& book) {
  plan(book);
  startPass(book);
  std::vector<size_t> missing;
  for (size_t i = 0; i < entries_.size(); ++i) {
    bool complete = true;
    size_t cells = 0;
    forBlock(book, entries_[i], [&](int, int, FormulaCell& cell) {
      cells += cell.valueFromFile ? 0 : 1;
      complete = complete && cell.valueFromFile;
    });
    withoutValue_ += cells;
    if (complete) {
      passBy(book, entries_[i]);
    } else {
      missing.push_back(i);
    }
  }
  for (const size_t index : missing) evaluate(book, index);
  // The next recalculation evaluates all.
  invalidate();
}

void FormulaEngine::recalc(Worksheet& book) {
  const bool all = !planned_;
  if (all) plan(book);
  startPass(book);
  for (size_t i = 0; i < entries_.size(); ++i) {
    const Entry& entry = entries_[i];
    if (entry.cell->pass == pass_) continue;
    if (all || entry.cell->code->isVolatile || precedentsChanged(entry)) {
      evaluate(book, i);
    } else {
      passBy(book, entry);
    }
  }
  changes_.clear();
}

bool FormulaEngine::precedentsChanged(const Entry& entry) {
  const formula::Place place = placeOf(entry);
  for (const formula::CompiledReference& reference : entry.cell->code->references) {
    const Area area = reference.at(place.sheet, place.row, place.column);
    if (area.isCell() ? changes_.isMarked(area.sheet, area.row1, area.column1)
                      : changes_.anyMarked(area)) {
      return true;
    }
  }
  return false;
}

void FormulaEngine::passBy(Worksheet& book, const Entry& entry) {
  if (!entry.cell->array) {
    entry.cell->pass = pass_;
    return;
  }
  forBlock(book, entry, [&](int, int, FormulaCell& cell) { cell.pass = pass_; });
}

void FormulaEngine::evaluate(Worksheet& book, size_t index) {
  evaluateNow(book, index);
  while (!waiting_.empty()) evaluateNow(book, waiting_.back());
}

// Evaluates one entry, or puts it and what it needs first on the stack of those that wait.
void FormulaEngine::evaluateNow(Worksheet& book, size_t index) {
  const Entry& entry = entries_[index];
  const bool waited = isWaiting_[index];
  if (entry.cell->pass != pass_) {
    const Operand result = evaluator_->evaluate(*entry.cell->code, placeOf(entry), pass_,
                                                entry.cell->array != nullptr);
    if (const FormulaCell* needed = evaluator_->waitsFor()) {
      if (!waited) {
        waiting_.push_back(index);
        isWaiting_[index] = true;
      }
      const size_t target = needed->index;
      if (isWaiting_[target]) {
        endCircle(book, target);
      } else {
        waiting_.push_back(target);
        isWaiting_[target] = true;
      }
      return;
    }
    store(book, entry, result, evaluator_->unknown() != nullptr);
  }
  if (waited) {
    isWaiting_[index] = false;
    waiting_.pop_back();
  }
}

// All that waits, down to the formula that is waited for, forms a circle.
void FormulaEngine::endCircle(Worksheet& book, size_t from) {
  for (;;) {
    const size_t index = waiting_.back();
    waiting_.pop_back();
    isWaiting_[index] = false;
    store(book, entries_[index], Operand(ErrorCode::Circular), false);
    if (index == from) return;
  }
}

void FormulaEngine::store(Worksheet& book, const Entry& entry, const Operand& result,
                          bool unknown) {
  if (!entry.cell->array && !unknown) {
    entry.cell->notComputed = false;
    return storeValue(entry, *entry.cell, result);
  }
  const formula::Place origin = placeOf(entry);
  forBlock(book, entry, [&](int row, int column, FormulaCell& cell) {
    Entry place = entry;
    place.row = static_cast<std::uint64_t>(row) & 0x1FFFFF;
    place.column = static_cast<std::uint64_t>(column) & 0x7FFF;
    cell.notComputed = unknown;
    if (unknown && cell.valueFromFile) {
      cell.pass = pass_;
      return;
    }
    if (unknown) return storeValue(place, cell, Operand(ErrorCode::Name));
    storeValue(place, cell, evaluator_->element(result, row - origin.row, column - origin.column));
  });
}

void FormulaEngine::storeValue(const Entry& place, FormulaCell& cell, const Operand& result) {
  cell.pass = pass_;
  Value& cached = cell.cached;
  const bool plainNumber = result.tag == Tag::Number || result.tag == Tag::NumericText ||
                           result.tag == Tag::Empty || result.tag == Tag::Missing;
  if (plainNumber && cached.isNumber() && !cell.valueFromFile) {
    if (cached.asNumber() == result.number) return;
    cached.setNumber(result.number);
  } else {
    Value value;
    switch (result.tag) {
      case Tag::Text:
        if (cached.kind() == ValueKind::Text && cached.textView() == result.view()) {
          cell.valueFromFile = false;
          return;
        }
        value = Value::text(result.view());
        break;
      case Tag::Boolean:
        value = Value::boolean(result.number != 0);
        break;
      case Tag::Error:
        value = Value::error(result.code);
        break;
      default:
        value = Value(result.number);
        break;
    }
    if (cell.valueFromFile && !agrees(cached, value)) ++changedFromFile_;
    cell.valueFromFile = false;
    if (cached == value) return;
    cached = std::move(value);
  }
  changes_.mark(static_cast<int>(place.sheet), static_cast<int>(place.row),
                static_cast<int>(place.column));
}

// --- Reporting ---

RecalcReport FormulaEngine::report(const Worksheet& book) const {
  RecalcReport report;
  report.changed = changedFromFile_;
  report.withoutValue = withoutValue_;
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    book.cells(sheet).forEach([&](int row, int column, const Cell& cell) {
      if (cell.kind != ValueKind::Formula) return;
      ++report.formulas;
      if (!cell.formula->notComputed) return;
      ++report.notComputed;
      ++report.problems[problemOf(book, sheet, row, column)];
    });
  }
  return report;
}

std::string FormulaEngine::problemOf(const Worksheet& book, int sheet, int row, int column) {
  const Cell& cell = book.cells(sheet).at(row, column);
  if (cell.kind != ValueKind::Formula || !cell.formula->notComputed) return {};
  const auto code = formula::compileFormula(cell.formula->text, formula::Place{sheet, row, column},
                                            book, cell.formula->array != nullptr);
  for (const formula::Instruction& in : code->instructions) {
    if (in.op == formula::Op::Unknown) return code->texts[in.index];
  }
  return {};
}

}  // namespace lodex
