#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Formula text to syntax tree and back. The tree knows nothing of a workbook: sheets and names
/// appear in it as they were written.
namespace lodex::formula {

/// One end of a reference. Rows and columns count from 1; `Absolute` means a "$".
struct CellRef {
  int row = 1;
  int column = 1;
  bool rowAbsolute = false;
  bool columnAbsolute = false;
  bool operator==(const CellRef&) const = default;
};

/// What comes before the "!" of a reference or a name.
struct SheetPrefix {
  std::string book;   // of "[Book1.xls]Sheet1!A1", brackets left off, with its path; "" mostly
  std::string first;  // "" only when a book comes alone ("[1]!Name")
  std::string last;   // of the 3-D range "Sheet1:Sheet3!A1"; "" for a single sheet
};

/// Cell: `first` holds. Area: `first` is top left, `last` bottom right, in this order whatever was
/// written. Rows ("3:5") and Columns ("A:C"): areas over the whole width or height of a sheet,
/// whose other ends are filled in (1 to the largest column or row). Dead: "#REF!", with its prefix
/// if any.
enum class ReferenceKind : std::uint8_t { Cell, Area, Rows, Columns, Dead };

struct Reference {
  ReferenceKind kind = ReferenceKind::Cell;
  CellRef first;
  CellRef last;
  std::shared_ptr<const SheetPrefix> sheets;  // null when the reference stays on its own sheet
};

enum class Operator : std::uint8_t {
  None,
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  Concatenate,
  Equal,
  NotEqual,
  Less,
  LessEqual,
  Greater,
  GreaterEqual,
  Range,
  Union,
  Intersection,  // binary, over references: ":", "," and blank
  Plus,
  Minus,   // unary, before the operand
  Percent  // unary, after the operand
};

enum class NodeKind : std::uint8_t {
  Number,      // number
  Text,        // text
  Boolean,     // number is 1 or 0
  Error,       // number is the ErrorCode
  Missing,     // an argument left out, as in IF(A1,,2)
  Array,       // children: constants row by row, `columns` in each row
  Reference,   // reference
  Name,        // text; reference.sheets is its prefix
  Function,    // text: name in upper case; children: arguments
  Unary,       // op, one child
  Binary,      // op, two children
  Parentheses  // one child; kept so that text and file tokens stay as they were written
};

struct Node {
  NodeKind kind = NodeKind::Missing;
  Operator op = Operator::None;
  int columns = 0;          // Array
  std::uint32_t begin = 0;  // where a Reference or a Name is in the text: from byte `begin` up
  std::uint32_t end = 0;    // to, and without, byte `end`
  double number = 0;
  std::string text;
  Reference reference;
  std::vector<Node> children;
};

/// Reads a formula without its leading "=". Arguments may be separated by "," or ";", array
/// constants have "," between columns and ";" between rows, numbers a decimal point. Nothing is
/// returned when the text is not a formula; `problem` then says why, with the position.
std::optional<Node> parseFormula(std::string_view text, std::string& problem);

/// The text of a formula, without "=", with "," between arguments.
std::string formulaText(const Node& node);

/// A reference as text, its sheets quoted where they must be: "'Data 1'!$A$1:B7".
std::string referenceText(const Reference& reference);

/// "Sheet1!", "'Data 1:Data 3'!" or "'[Book.xls]Sheet1'!".
std::string prefixText(const SheetPrefix& prefix);

}  // namespace lodex::formula
