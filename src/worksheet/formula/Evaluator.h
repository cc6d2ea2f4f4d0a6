#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "worksheet/CellStore.h"
#include "worksheet/Worksheet.h"
#include "worksheet/formula/Code.h"
#include "worksheet/formula/FormulaCell.h"
#include "worksheet/formula/Operand.h"

namespace lodex::formula {

/// The cell that holds a formula; sheet, row and column from 1.
struct Place {
  int sheet = 1, row = 1, column = 1;
};

/// Runs compiled formulas and gives function routines what they need. Results stay valid until the
/// next call of `evaluate`.
class Evaluator {
 public:
  explicit Evaluator(const Worksheet& book) : book_(&book) {}

  /// The value of a formula at a place: one value, or for an array formula an array.
  /// `pass` is the number of this recalculation: a formula cell of another pass is not up to date.
  Operand evaluate(const Code& code, const Place& place, std::uint32_t pass, bool arrayFormula);

  /// Set by `evaluate` when it met a cell that is not up to date; its result then means nothing.
  FormulaCell* waitsFor() const { return waitsFor_; }
  /// Set by `evaluate` when it met something that cannot be computed; null if not.
  const std::string* unknown() const { return unknown_; }

  // --- For function routines ---

  const Worksheet& book() const { return *book_; }
  const Place& place() const { return place_; }
  bool dates1904() const { return book_->dates1904(); }
  /// Seconds since 1970-01-01 in local time; the same throughout one recalculation.
  double localTime();
  void newPass(const Worksheet& book);

  /// The value of a cell.
  Operand cell(int sheet, int row, int column) { return fromCell(store(sheet).at(row, column)); }
  const CellStore& store(int sheet) const { return *stores_[static_cast<size_t>(sheet)]; }
  Operand fromCell(const Cell& cell) {
    switch (cell.kind) {
      case ValueKind::Number:
        return Operand(cell.number);
      case ValueKind::Empty:
        return Operand();
      case ValueKind::Formula:
        if (cell.formula->pass == pass_ && cell.formula->cached.isNumber()) {
          return Operand(cell.formula->cached.storedNumber());
        }
        return fromFormula(*cell.formula);
      default:
        return fromOther(cell);
    }
  }

  /// One value of an operand: a cell's value, the intersection with the formula's row or column,
  /// the first element of an array.
  Operand single(const Operand& operand);
  /// The element of an operand at a position from 0; a single value is the same everywhere.
  Operand element(const Operand& operand, int row, int column);
  /// Rows and columns of an operand; 1 x 1 for a single value. A union has the size of its first.
  static int rowsOf(const Operand& operand) {
    return operand.isScalar() ? 1 : operand.isArea() ? operand.area.rows() : rowsOfOther(operand);
  }
  static int columnsOf(const Operand& operand) {
    return operand.isScalar() ? 1
           : operand.isArea() ? operand.area.columns()
                              : columnsOfOther(operand);
  }
  /// An operand as an array: cells read, a single value as 1 x 1. Null when it is too large.
  const Array* asArray(const Operand& operand);

  /// A text, an array or a list that lives until the formula is done.
  Operand text(std::string text);
  Array* newArray(int rows, int columns);
  Operand newAreas(std::vector<Area> areas);

  /// Conversions of a single value. They return false and leave an error in `error` on failure.
  bool toNumber(const Operand& value, double& number, Operand& error) const;
  bool toBoolean(const Operand& value, bool& truth, Operand& error) const;
  std::string toText(const Operand& value) const;
  /// The text without a copy where there is one already.
  std::string_view toView(const Operand& value);

  /// Visits the cells with content of an area, column by column, as visit(row, column, operand);
  /// stops when it returns false, and then returns false.
  template <typename Visit>
  bool visitCells(const Area& area, Visit visit) {
    for (int sheet = area.sheet; sheet <= area.lastSheet; ++sheet) {
      const bool all = store(sheet).visit(area.row1, area.column1, area.row2, area.column2,
                                          [&](int row, int column, const Cell& cell) {
                                            return visit(row, column, fromCell(cell));
                                          });
      if (!all) return false;
    }
    return true;
  }

  /// Visits all values of an operand: of areas the cells with content, row by row where there are
  /// several columns. visit(value, fromCells) returns false to stop.
  template <typename Visit>
  bool visitValues(const Operand& operand, Visit visit) {
    switch (operand.tag) {
      case Tag::Area:
        return visitArea(operand.area, visit);
      case Tag::Areas:
        for (const Area& area : *operand.areas) {
          if (!visitArea(area, visit)) return false;
        }
        return true;
      case Tag::Array:
        for (const Operand& value : operand.array->values) {
          if (!visit(value, true)) return false;
        }
        return true;
      default:
        return visit(operand, false);
    }
  }

  /// Cuts an area to the used part of its sheets; it may become empty (row2 < row1).
  Area used(const Area& area) const;

 private:
  template <typename Visit>
  bool visitArea(const Area& area, Visit& visit) {
    const auto visitOne = [&](int, int, const Operand& value) { return visit(value, true); };
    if (area.column1 == area.column2) return visitCells(area, visitOne);
    for (int sheet = area.sheet; sheet <= area.lastSheet; ++sheet) {
      Area part = area;
      part.sheet = part.lastSheet = sheet;
      part = used(part);
      // A sheet with a few cells far apart is not walked row by row.
      if (static_cast<double>(part.rows()) * part.columns() > farApart) {
        if (!visitCells(part, visitOne)) return false;
        continue;
      }
      const CellStore& cells = store(sheet);
      for (int row = part.row1; row <= part.row2; ++row) {
        for (int column = part.column1; column <= part.column2; ++column) {
          const Cell& cell = cells.at(row, column);
          if (cell.kind != ValueKind::Empty && !visit(fromCell(cell), true)) return false;
        }
      }
    }
    return true;
  }

  static constexpr double farApart = 4e6;
  static int rowsOfOther(const Operand& operand);
  static int columnsOfOther(const Operand& operand);
  Operand fromFormula(FormulaCell& formula);
  Operand fromOther(const Cell& cell);
  void run(const Code& code, Segment segment, Operand* stack);
  Operand segment(const Code& code, const Instruction& instruction, int index, Operand* stack);
  Operand choose(const Code& code, const Instruction& instruction, Operand* stack);
  Operand chooseIf(const Code& code, const Instruction& instruction, Operand* stack);
  Operand chooseIndex(const Code& code, const Instruction& instruction, Operand* stack);
  Operand chooseIfError(const Code& code, const Instruction& instruction, Operand* stack);
  Operand chooseIfs(const Code& code, const Instruction& instruction, Operand* stack);
  Operand chooseSwitch(const Code& code, const Instruction& instruction, Operand* stack);
  template <typename Choose>
  Operand chooseByElement(const Operand& condition, Choose elementFor);
  Operand binary(const Instruction& instruction, const Operand& left, const Operand& right);
  Operand binarySingle(Operator op, const Operand& left, const Operand& right);
  Operand unary(const Instruction& instruction, const Operand& operand);
  Operand unarySingle(Operator op, const Operand& operand);
  Operand combineReferences(Operator op, const Operand& left, const Operand& right);
  Operand call(const Code& code, const Instruction& instruction, Operand* arguments);
  Operand callByElement(const Instruction& instruction, const char* letters, Operand* arguments,
                        int rows, int columns);
  bool convert(char letter, Operand& argument, Operand& error);
  static bool needsElements(const Operand& operand, bool overArrays) {
    return operand.isArray() || (overArrays && operand.isArea() && !operand.area.isCell());
  }

  const Worksheet* book_;
  std::vector<const CellStore*> stores_;  // by sheet number
  Place place_;
  std::uint32_t pass_ = 0;
  FormulaCell* waitsFor_ = nullptr;
  const std::string* unknown_ = nullptr;
  double localTime_ = 0;
  std::vector<Operand> stack_;
  std::deque<std::string> texts_;
  std::vector<std::unique_ptr<Array>> arrays_;
  std::vector<std::unique_ptr<std::vector<Area>>> areaLists_;
};

}  // namespace lodex::formula
