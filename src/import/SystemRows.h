#pragma once

#include <array>
#include <string>
#include <string_view>

#include "worksheet/Worksheet.h"

namespace lodex {

/// The system rows of a data sheet in their fixed order. They are above the data and say what
/// each column is.
namespace sysrow {
enum Index {
  Header,
  Element,
  Method,
  Unit,
  Table,
  Field,
  Type,
  Length,
  Digits,
  Indexed,
  Multiplier,
  Identified
};
}
inline constexpr int systemRowCount = 12;

struct SystemRowText {
  std::string_view caption;  // in column 1 of the row
  std::string_view label;    // the row heading
  std::string_view copied;   // the menu entry that copies the row's content
};

/// Captions and labels, in the order of sysrow::Index. The last row is never copied by menu.
inline constexpr std::array<SystemRowText, systemRowCount> systemRowTexts = {{
    {"HEADER", "-Hdr-", "From Header"},
    {"ELEMENT", "-Ele-", "From Element"},
    {"METHOD", "-Met-", "From Method"},
    {"UNIT", "-Uni-", "From Unit"},
    {"TABLE", "-Tab-", "From Table"},
    {"FIELD", "-Fld-", "From Field"},
    {"TYPE", "-Typ-", "From Type"},
    {"LENGTH", "-Len-", "From Length"},
    {"DIGITS", "-Dig-", "From Digits"},
    {"INDEXED", "-Idx-", "From Indexed"},
    {"MULTIPLIER", "-Mul-", "From Multiplied"},
    {"IDENTIFIED", "-Idf-", ""},
}};

inline constexpr std::string_view firstDataRowLabel = "-1-";
inline constexpr std::string_view idColumnLabel = "-ID-";
inline constexpr std::string_view mineralColumnLabel = "-Min-";

constexpr std::string_view systemRowCaption(int index) {
  return systemRowTexts[static_cast<size_t>(index)].caption;
}

/// In the TABLE row: the column is not to be stored.
inline constexpr std::string_view noTable = "*";

/// The rows and columns that describe a data sheet. 0 means that a row or column is absent.
struct SheetStructure {
  std::array<int, systemRowCount> rows{};
  int firstDataRow = 0;
  int idColumn = 0;
  int mineralColumn = 0;

  int& row(int index) { return rows[static_cast<size_t>(index)]; }
  int row(int index) const { return rows[static_cast<size_t>(index)]; }
  /// The highest system row number; 0 when there is no system row.
  int highestRow() const;

  bool operator==(const SheetStructure&) const = default;
};

/// What becomes of the tables, fields and types that a sheet came with.
enum class Descriptions { Rewrite, Keep };

/// A worksheet together with its structure. The operations address the current sheet.
struct DescribedSheet {
  Worksheet& cells;
  SheetStructure& structure;

  /// A cell of a system row; "" where the row is absent or the place lies outside of the sheet.
  std::string text(int systemRow, int column) const;
  /// Sets such a cell; nothing happens where there is no such place.
  void setText(int systemRow, int column, std::string_view text) const;
  bool has(int systemRow) const { return structure.row(systemRow) > 0; }
  bool inside(int row, int column) const;
  /// True for a column with a table, a field and a type, which say where it goes.
  bool isDescribed(int column) const;

  /// Inserts an empty row and moves the numbers of the structure at or below it.
  void insertRow(int row) const;
  /// Adds the system row as a new row at this place and writes its caption in column 1.
  void addSystemRow(int systemRow, int row) const;
};

/// Lets a sheet that was narrowed to its used size grow while it is worked on; the limits return
/// at the end of the scope, moved out to what is used by then.
class WideLimits {
 public:
  explicit WideLimits(Worksheet& sheet);
  ~WideLimits();
  WideLimits(const WideLimits&) = delete;
  WideLimits& operator=(const WideLimits&) = delete;

 private:
  Worksheet& sheet_;
  int number_;
  int rows_;
  int columns_;
};

}  // namespace lodex
