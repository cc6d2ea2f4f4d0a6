#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Findings.h"
#include "basic/Limits.h"
#include "worksheet/CellFormat.h"
#include "worksheet/CellStore.h"
#include "worksheet/Clipboard.h"
#include "worksheet/Value.h"
#include "worksheet/formula/RecalcReport.h"

namespace lodex {

class FormulaEngine;
struct ArrayBlock;
struct FormulaCell;

namespace formula {
struct Movement;
struct Node;
}  // namespace formula

/// Kinds of workbook files. The numbers 3 and 4 are the ones that set-ups and callers store.
enum class FileType { Unknown = 0, Text = 3, Excel = 4, Native = 5, Xlsx = 6, Ods = 7 };

/// What InsertRange and DeleteRange move: whole rows or whole columns, or only the cells of the
/// block's columns (Down) or rows (Right).
enum class Shift { Right = 1, Down = 2, Rows = 3, Columns = 4 };

struct FindOptions {
  bool wholeCell = true;
  bool matchCase = true;
  bool lastHit = false;  // report the last hit of the block instead of the first
};

/// `found` is the number of hits, 0 for none; row and column are those of the first (or last) one,
/// taken row by row.
struct FindResult {
  int found = 0;
  int row = 0;
  int column = 0;
};

/// A key of Sort: a column of the sheet when rows are sorted, a row when columns are.
struct SortKey {
  int index = 0;
  bool descending = false;
};

/// A name for a formula. `sheet` is 0 for a name of the whole workbook.
struct DefinedName {
  std::string name;
  std::string formula;  // without "="
  int sheet = 0;
  bool hidden = false;
};

enum class SheetVisibility { Visible, Hidden, VeryHidden };

/// What a user may do in the grid that shows a worksheet.
struct GridPermissions {
  bool AllowInCellEditing = true;
  bool AllowDelete = true;
  bool AllowMoveRange = true;
  bool AllowAutoFill = true;
  bool AllowFormulas = true;
  bool AllowEditHeaders = true;
  bool AllowDesigner = true;
  bool PrintColHeading = true;
};

/// A workbook: numbered sheets of cells that hold text, numbers or formulas. Sheets, rows and
/// columns count from 1; there is always at least one sheet, and operations without a sheet number
/// address the current one. A row or column that is 0, or beyond MaxRow or MaxCol, throws Error,
/// and so does a sheet number that does not exist.
class Worksheet {
 public:
  Worksheet();
  ~Worksheet();
  Worksheet(Worksheet&&) noexcept;
  Worksheet& operator=(Worksheet&&) noexcept;
  Worksheet(const Worksheet&) = delete;
  Worksheet& operator=(const Worksheet&) = delete;

  // --- Cells ---

  /// The cell's text as displayed under its format; "" exactly for an empty cell. Setting stores
  /// text; text that is a number in its usual spelling is stored as that number, any other numeric
  /// text keeps its spelling and answers to NumberRC. Setting "" empties the cell.
  std::string TextRC(int row, int column) const { return TextSRC(current_, row, column); }
  void TextRC(int row, int column, std::string_view text) { TextSRC(current_, row, column, text); }

  /// The cell's number; 0 for an empty cell and for text that holds no number.
  double NumberRC(int row, int column) const { return NumberSRC(current_, row, column); }
  void NumberRC(int row, int column, double number) { NumberSRC(current_, row, column, number); }

  /// The formula without its "="; a cell without formula reads as its text.
  std::string FormulaRC(int row, int column) const { return FormulaSRC(current_, row, column); }
  void FormulaRC(int row, int column, std::string_view formula) {
    FormulaSRC(current_, row, column, formula);
  }

  /// The cell as it would be typed: "=" and the formula, or the plain text of the value. Setting
  /// takes "=..." as a formula, numbers, TRUE and FALSE, error texts, and anything else as text; a
  /// leading "'" makes text of what follows.
  std::string EntryRC(int row, int column) const { return EntrySRC(current_, row, column); }
  void EntryRC(int row, int column, std::string_view entry) {
    EntrySRC(current_, row, column, entry);
  }

  std::string TextSRC(int sheet, int row, int column) const;
  void TextSRC(int sheet, int row, int column, std::string_view text);
  double NumberSRC(int sheet, int row, int column) const;
  void NumberSRC(int sheet, int row, int column, double number);
  std::string FormulaSRC(int sheet, int row, int column) const;
  void FormulaSRC(int sheet, int row, int column, std::string_view formula);
  std::string EntrySRC(int sheet, int row, int column) const;
  void EntrySRC(int sheet, int row, int column, std::string_view entry);
  /// The text as displayed under the cell's format.
  std::string FormattedTextSRC(int sheet, int row, int column) const;

  /// The typed content, a formula's cached value, and whether there is a formula.
  Value ValueSRC(int sheet, int row, int column) const;
  void ValueSRC(int sheet, int row, int column, const Value& value);
  Value ValueRC(int row, int column) const { return ValueSRC(current_, row, column); }
  bool HasFormula(int sheet, int row, int column) const;
  /// True when the displayed text would not be "".
  bool HasContent(int sheet, int row, int column) const;
  bool HasContent(int row, int column) const { return HasContent(current_, row, column); }

  /// A formula together with the value that a file cached for it.
  void setFormulaWithValue(int sheet, int row, int column, std::string_view formula,
                           const Value& cached);

  /// One formula over a block of cells, each of which shows its own element of the result. A value
  /// that a file cached for a cell of the block is given afterwards by setCachedValue.
  void setArrayFormula(int sheet, int row1, int column1, int row2, int column2,
                       std::string_view formula);
  /// The block of the array formula that the cell belongs to; nothing for other cells.
  std::optional<ArrayBlock> arrayBlock(int sheet, int row, int column) const;
  /// Gives a formula cell the value that a file cached for it; other cells stay as they are.
  void setCachedValue(int sheet, int row, int column, const Value& cached);

  /// Heading texts of columns and rows; "" where none was set.
  std::string ColText(int column) const;
  void ColText(int column, std::string_view text);
  std::string RowText(int row) const;
  void RowText(int row, std::string_view text);

  // --- Sheets ---

  int NumSheets() const { return static_cast<int>(sheets_.size()); }
  /// Adds empty sheets at the end or removes the last ones.
  void NumSheets(int count);
  int Sheet() const { return current_; }
  void Sheet(int sheet);
  std::string SheetName(int sheet) const;
  /// Names are unique without regard to case; a clash or an empty name throws Error.
  void SheetName(int sheet, std::string_view name);
  /// The sheet of that name without regard to case; 0 if there is none.
  int SheetNumber(std::string_view name) const;
  void InsertSheets(int before, int count);
  /// Removes sheets; removing all leaves one empty "Sheet1".
  void DeleteSheets(int first, int count);
  SheetVisibility sheetVisibility(int sheet) const;
  void sheetVisibility(int sheet, SheetVisibility visibility);

  /// Last used row and column of the current sheet, 0 when it is empty; constant time.
  int LastRow() const { return LastRow(current_); }
  int LastCol() const { return LastCol(current_); }
  int LastRow(int sheet) const;
  int LastCol(int sheet) const;
  /// The addressable size of the current sheet.
  int MaxRow() const { return data(current_).maxRow; }
  int MaxCol() const { return data(current_).maxColumn; }
  void MaxRow(int rows);
  void MaxCol(int columns);

  const std::string& Title() const { return title_; }
  void Title(std::string_view title) { title_ = title; }
  /// The handle that CopyRange takes as its source.
  const Worksheet& SS() const { return *this; }

  // --- Ranges and selection ---

  /// Clears contents and formats of a block; ends beyond the sheet are cut.
  void ClearRange(int row1, int column1, int row2, int column2, int type = 1);
  void DeleteRange(int row1, int column1, int row2, int column2, Shift shift);
  void InsertRange(int row1, int column1, int row2, int column2, Shift shift);
  /// Copies a block with formats over the target; a smaller source repeats to fill a target that is
  /// a whole multiple of it. Source and target may overlap.
  void CopyRange(int row1, int column1, int row2, int column2, const Worksheet& source,
                 int sourceRow1, int sourceColumn1, int sourceRow2, int sourceColumn2);
  void SetSelection(int row1, int column1, int row2, int column2);
  int SelStartRow() const { return data(current_).selection.row1; }
  int SelStartCol() const { return data(current_).selection.column1; }
  int SelEndRow() const { return data(current_).selection.row2; }
  int SelEndCol() const { return data(current_).selection.column2; }
  void SelStartRow(int row) { data(current_).selection.row1 = row; }
  void SelStartCol(int column) { data(current_).selection.column1 = column; }
  void SelEndRow(int row) { data(current_).selection.row2 = row; }
  void SelEndCol(int column) { data(current_).selection.column2 = column; }
  int Row() const { return data(current_).activeRow; }
  int Col() const { return data(current_).activeColumn; }
  void SetActiveCell(int row, int column);
  void ShowActiveCell() {}

  FindResult Find(std::string_view text, int sheet, int row1, int column1, int row2, int column2,
                  FindOptions options = {}) const;
  /// Sorts a block of the current sheet in place, stable, by up to three keys: numbers before text
  /// (without case) before truth values before errors, empty cells last.
  void Sort(int row1, int column1, int row2, int column2, bool byRows,
            const std::vector<SortKey>& keys);

  /// The selection as tab text; cut also clears it.
  void EditCopy(Clipboard& clipboard) const;
  void EditCut(Clipboard& clipboard);
  /// Tab text to the active cell and beyond, each piece as if typed.
  void EditPaste(Clipboard& clipboard);
  /// The same, but every piece is plain text or number, never a formula.
  void EditPasteValues(Clipboard& clipboard);

  /// Makes this workbook a copy of another one, all sheets.
  void CopyAll(const Worksheet& source);

  // --- Files ---

  /// Loads a file into the whole workbook and returns its type, detected from its content. Formulas
  /// for which the file has no value are calculated. Throws FileError and keeps the former content
  /// when the file is missing, damaged or of no known type. Where the rest of a damaged file is
  /// worth having, what could not be read is an Error in ReadFindings.
  FileType Read(std::string_view path);
  /// What the last Read noticed, in places that name file, sheet, row and column.
  const Findings& ReadFindings() const { return readFindings_; }
  /// Writes the workbook, or for Text the current sheet; the file is replaced as a whole.
  void Write(std::string_view path, FileType type) const;
  /// A snapshot of the workbook in memory and back.
  std::string WriteToBlob() const;
  void ReadFromBlob(std::string_view blob);

  // --- Formulas ---

  /// Brings every formula of the workbook up to date. The first call evaluates all of them, later
  /// ones what depends on a change. A formula that cannot be computed (a function nobody knows, a
  /// reference to another workbook) keeps the value that its file gave, else shows an error value.
  void Recalc();
  /// What recalculating this workbook has found.
  RecalcReport recalcReport() const;
  /// Why the last Recalc could not compute a cell; "" when it could.
  std::string formulaProblem(int sheet, int row, int column) const;
  const std::vector<DefinedName>& definedNames() const { return names_; }
  void setDefinedNames(std::vector<DefinedName> names);

  // --- Appearance ---

  const CellFormat& formatOf(int sheet, int row, int column) const;
  void setFormat(int sheet, int row, int column, const CellFormat& format);
  /// Changes the formats of a block of the current sheet, cells without content included.
  void changeFormat(int row1, int column1, int row2, int column2,
                    const std::function<void(CellFormat&)>& change);
  /// The number format of the selection.
  void NumberFormat(std::string_view format);

  /// Widths in characters; 0 where the default holds. A hidden column keeps its width.
  double columnWidth(int sheet, int column) const;
  void columnWidth(int sheet, int column, double width);
  bool columnHidden(int sheet, int column) const;
  void columnHidden(int sheet, int column, bool hidden);
  bool rowHidden(int sheet, int row) const;
  void rowHidden(int sheet, int row, bool hidden);
  /// Rows frozen at the top of the current sheet.
  int FixedRows() const { return frozenRows(current_); }
  int frozenRows(int sheet) const { return data(sheet).fixedRows; }
  void FixedRows(int rows) { data(current_).fixedRows = rows; }

  GridPermissions& permissions() { return permissions_; }
  const GridPermissions& permissions() const { return permissions_; }
  /// True for workbooks whose dates count from 1904.
  bool dates1904() const { return dates1904_; }
  void dates1904(bool from1904);

  // --- For file readers and writers and the formula engine ---

  Findings& findingsForReader() { return readFindings_; }
  /// Calculates the formulas for which the file has no value, and notes each.
  void calculateMissing();
  const CellStore& cells(int sheet) const { return data(sheet).cells; }
  /// Fetch it anew after a Recalc: the formulas learn of a change only through this call.
  CellStore& cellsForReader(int sheet);
  FormatTable& formats() { return *formats_; }
  const FormatTable& formats() const { return *formats_; }
  const std::map<int, double>& columnWidths(int sheet) const { return data(sheet).widths; }
  const std::map<int, bool>& hiddenColumns(int sheet) const { return data(sheet).hiddenColumns; }
  const std::map<int, bool>& hiddenRows(int sheet) const { return data(sheet).hiddenRows; }

 private:
  struct Selection {
    int row1 = 1, column1 = 1, row2 = 1, column2 = 1;
  };
  struct SheetData {
    std::string name;
    CellStore cells;
    std::map<int, std::string> columnTexts;
    std::map<int, std::string> rowTexts;
    std::map<int, double> widths;
    std::map<int, bool> hiddenColumns;
    std::map<int, bool> hiddenRows;
    Selection selection;
    int activeRow = 1, activeColumn = 1;
    int maxRow = maxRows, maxColumn = maxColumns;
    int fixedRows = 0;
    SheetVisibility visibility = SheetVisibility::Visible;
  };

  SheetData& data(int sheet);
  const SheetData& data(int sheet) const;
  SheetData& checked(int sheet, int row, int column);
  const SheetData& checked(int sheet, int row, int column) const;
  [[noreturn]] static void failCell(const SheetData& sheet, int row, int column);
  static void shiftHeadings(SheetData& sheet, bool rows, int at, int by);
  std::string freeSheetName() const;
  std::string displayed(const Cell& cell) const;
  void setContent(SheetData& target, int sheet, int row, int column, const Value& value);
  void formulasChange();
  void blockChanges(int row1, int column1, int row2, int column2);
  enum class Rewrite { All, WithSheets };
  void rewriteFormulas(Rewrite which,
                       const std::function<bool(int ownSheet, formula::Node& node)>& change);
  void referencesFollow(const formula::Movement& movement);
  void referencesRename(const std::string& before, const std::string& after);
  void referencesLoseSheets(int first, int last);
  void moveArrayBlocks(const formula::Movement& movement);
  static std::unique_ptr<FormulaCell> movedFormula(const FormulaCell& source, int rows,
                                                   int columns);
  void enterBlock(std::string_view tabText, bool formulas);
  void copyCell(int sheet, int row, int column, const Worksheet& source, int sourceSheet,
                int sourceRow, int sourceColumn, int rowsMoved, int columnsMoved);

  std::vector<std::unique_ptr<SheetData>> sheets_;
  std::unique_ptr<FormatTable> formats_;
  std::vector<DefinedName> names_;
  std::unique_ptr<FormulaEngine> engine_;  // from the first Recalc on
  Findings readFindings_;
  GridPermissions permissions_;
  std::string title_;
  int current_ = 1;
  bool dates1904_ = false;
};

}  // namespace lodex
