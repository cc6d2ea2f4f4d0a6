#pragma once

#include <memory>
#include <string>
#include <vector>

#include "basic/Limits.h"
#include "worksheet/formula/Functions.h"
#include "worksheet/formula/Operand.h"
#include "worksheet/formula/Parser.h"

namespace lodex::formula {

/// A compiled formula: instructions for a stack of operands. Relative references are kept as
/// distances, so that all copies of a formula share one Code.
enum class Op : std::uint8_t {
  Number,   // number
  Text,     // index into texts
  Boolean,  // number
  Error,    // index is the ErrorCode
  Missing,
  ArrayConstant,  // index into arrays
  CellValue,      // index into references: the value of one cell
  Reference,      // index into references
  Binary,         // operation
  Unary,          // operation
  Call,           // function, count; its parameter letters begin at `index`
  Choose,  // function, count: an argument per segment, from segment `index` on; evaluates some
  Unknown  // index into texts: what could not be understood
};

struct Instruction {
  Op op = Op::Missing;
  Operator operation = Operator::None;
  std::uint8_t count = 0;
  bool overArrays = false;  // areas count as arrays instead of being intersected
  std::uint32_t index = 0;
  union {
    double number = 0;
    const FunctionInfo* function;
  };
};

/// A reference of a formula; distances from the formula's cell where not absolute. Sheet 0 is the
/// formula's own.
struct CompiledReference {
  int sheet = 0, lastSheet = 0;
  int row1 = 0, column1 = 0, row2 = 0, column2 = 0;
  bool row1Absolute = false, column1Absolute = false;
  bool row2Absolute = false, column2Absolute = false;
  bool isCell = false;

  Area at(int ownSheet, int row, int column) const {
    Area area;
    area.sheet = sheet == 0 ? ownSheet : sheet;
    area.lastSheet = sheet == 0 ? ownSheet : lastSheet;
    area.row1 = wrapped(row1Absolute ? row1 : row1 + row, maxRows);
    area.column1 = wrapped(column1Absolute ? column1 : column1 + column, maxColumns);
    area.row2 = isCell ? area.row1 : wrapped(row2Absolute ? row2 : row2 + row, maxRows);
    area.column2 =
        isCell ? area.column1 : wrapped(column2Absolute ? column2 : column2 + column, maxColumns);
    if (area.row1 > area.row2) std::swap(area.row1, area.row2);
    if (area.column1 > area.column2) std::swap(area.column1, area.column2);
    return area;
  }

 private:
  // A name's relative reference runs over the edge of the sheet to its other side.
  static int wrapped(int place, int size) {
    return place < 1 ? place + size : place > size ? place - size : place;
  }
};

/// Instructions from `begin` up to, and without, `end`.
struct Segment {
  std::uint32_t begin = 0, end = 0;
};

struct Code {
  std::vector<Instruction> instructions;
  std::vector<CompiledReference> references;
  std::vector<Segment> segments;
  std::vector<std::string> texts;
  std::string letters;  // the parameter letters of every call, one after the other
  std::vector<std::unique_ptr<Array>> arrays;
  std::vector<std::unique_ptr<std::string>> arrayTexts;  // what the texts in arrays borrow from
  int stackSize = 0;
  bool isVolatile = false;  // evaluated by every recalculation
  bool isDynamic = false;   // may read cells other than its references name
};

}  // namespace lodex::formula
