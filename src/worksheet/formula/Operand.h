#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <vector>

#include "worksheet/Value.h"

/// What formulas compute with. An operand owns nothing: texts, arrays and area lists live in the
/// evaluator, or in the cells read, until the formula is done.
namespace lodex::formula {

struct Array;

/// A block of cells, or the same block on the sheets from `sheet` to `lastSheet`. All inclusive.
struct Area {
  int sheet, lastSheet;
  int row1, column1, row2, column2;
  int rows() const { return row2 - row1 + 1; }
  int columns() const { return column2 - column1 + 1; }
  bool isCell() const { return row1 == row2 && column1 == column2 && sheet == lastSheet; }
};

enum class Tag : std::uint8_t {
  Number,
  Boolean,      // number is 1 or 0
  Error,        // code
  Empty,        // a cell without content
  Missing,      // an argument left out
  NumericText,  // number, and text its spelling
  Text,
  Area,
  Areas,  // a union of areas
  Array
};

struct Operand {
  Tag tag;
  ErrorCode code;
  double number;
  union {
    struct {
      const char* data;
      size_t size;
    } chars;
    formula::Area area;
    const formula::Array* array;
    const std::vector<formula::Area>* areas;
  };

  Operand() : Operand(Tag::Empty, ErrorCode(), 0) {}
  Operand(double value) : Operand(Tag::Number, ErrorCode(), value) {}
  Operand(ErrorCode error) : Operand(Tag::Error, error, 0) {}
  Operand(const formula::Area& block) : tag(Tag::Area), code(), number(0), area(block) {}
  Operand(const formula::Array* values) : tag(Tag::Array), code(), number(0), chars{} {
    array = values;
  }
  Operand(const std::vector<formula::Area>* list) : tag(Tag::Areas), code(), number(0), chars{} {
    areas = list;
  }
  // Most operands are numbers, and copying no more of them than counts is what makes formulas fast.
  Operand(const Operand& other) : Operand(other.tag, other.code, other.number) { copyRest(other); }
  Operand& operator=(const Operand& other) {
    tag = other.tag;
    code = other.code;
    number = other.number;
    copyRest(other);
    return *this;
  }
  static Operand boolean(bool truth) {
    Operand operand(truth ? 1.0 : 0.0);
    operand.tag = Tag::Boolean;
    return operand;
  }
  static Operand missing() {
    Operand operand;
    operand.tag = Tag::Missing;
    return operand;
  }
  /// Borrows the text.
  static Operand text(std::string_view view) {
    Operand operand;
    operand.tag = Tag::Text;
    operand.chars = {view.data(), view.size()};
    return operand;
  }

  /// The characters of a Text or NumericText.
  std::string_view view() const { return {chars.data, chars.size}; }
  bool isNumber() const { return tag == Tag::Number || tag == Tag::NumericText; }
  bool isText() const { return tag == Tag::Text; }
  bool isBoolean() const { return tag == Tag::Boolean; }
  bool isError() const { return tag == Tag::Error; }
  bool isEmpty() const { return tag == Tag::Empty; }
  bool isMissing() const { return tag == Tag::Missing; }
  bool isArea() const { return tag == Tag::Area; }
  bool isArray() const { return tag == Tag::Array; }
  bool isReference() const { return tag == Tag::Area || tag == Tag::Areas; }
  bool isScalar() const { return tag < Tag::Area; }

 private:
  // it.
  Operand(Tag kind, ErrorCode error, double value)
      : tag(kind), code(error), number(value), area{} {}
  void copyRest(const Operand& other) {
    if (tag < Tag::NumericText) return;
    if (tag == Tag::Area)
      area = other.area;
    else if (tag == Tag::Array)
      array = other.array;
    else if (tag == Tag::Areas)
      areas = other.areas;
    else
      chars = other.chars;
  }
};
static_assert(std::is_trivially_destructible_v<Operand>);

/// Values row by row; none of them is an area or an array.
struct Array {
  Array(int rowCount, int columnCount)
      : rows(rowCount),
        columns(columnCount),
        values(static_cast<size_t>(rowCount) * static_cast<size_t>(columnCount)) {}
  int rows;
  int columns;
  std::vector<Operand> values;

  /// Positions count from 0.
  Operand& at(int row, int column) {
    return values[static_cast<size_t>(row) * static_cast<size_t>(columns) +
                  static_cast<size_t>(column)];
  }
  const Operand& at(int row, int column) const { return const_cast<Array*>(this)->at(row, column); }
};

}  // namespace lodex::formula
