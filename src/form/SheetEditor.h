#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "form/Controls.h"
#include "form/EditHistory.h"
#include "form/SheetEditorBlock.h"
#include "worksheet/Clipboard.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// What an edit does, as the permissions of a grid know it.
enum class EditRight { Enter, Formulas, Delete, Move, Fill, Headings, Format };

enum class PasteKind { All, Values };

/// Thin lines around a block, around each of its cells, below its last row, or none.
enum class Borders { None, Outline, All, Bottom };

struct SearchOptions {
  bool matchCase = false;
  bool wholeCell = false;
  bool inFormulas = false;  // search what is entered instead of what is shown
  bool backwards = false;
};

struct CellPlace {
  int row = 0, column = 0;
  bool operator==(const CellPlace&) const = default;
};

/// Number of cells with content and what their numbers come to.
struct SelectionSummary {
  long long count = 0;
  long long numbers = 0;
  double sum = 0;
  double average() const { return numbers == 0 ? 0 : sum / static_cast<double>(numbers); }
};

/// Every edit that a user can make in a grid. Edits concern the current sheet, obey the grid's
/// permissions, go into the history and leave formulas up to date. An edit that may not be made or
/// does not fit the sheet throws Error and changes nothing.
class SheetEditor {
 public:
  /// Both must outlive the editor.
  SheetEditor(Worksheet& sheet, EditHistory& history);
  ~SheetEditor();
  SheetEditor(const SheetEditor&) = delete;
  SheetEditor& operator=(const SheetEditor&) = delete;

  Worksheet& sheet() { return sheet_; }
  const Worksheet& sheet() const { return sheet_; }
  EditHistory& history() { return history_; }

  /// Refuses all edits, whatever the sheet permits.
  void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
  bool readOnly() const { return readOnly_; }
  bool allows(EditRight right) const;

  /// Called after every change with the block concerned; null when sheets, rows, columns, widths or
  /// headings may have changed too.
  Subscription onChange(std::function<void(const CellBlock*)> observer) {
    return observers_.add(std::move(observer));
  }
  /// The owner's own way to insert and delete rows and columns, for sheets whose rows mean more
  /// than their cells: it acts on the worksheet's selection, and what it does is recorded as a
  /// whole.
  void setStructureCommands(std::function<void(StructureCommand)> commands) {
    structureCommands_ = std::move(commands);
  }

  /// The worksheet was changed by others than this editor. Steps of the history that no longer fit
  /// the sheet's layout are dropped.
  void changedOutside();

  // --- The selection ---

  /// The worksheet's selection within the sheet.
  CellBlock selection() const;
  /// The part of a block that lies within the used rows and columns; may be empty.
  CellBlock usedPart(const CellBlock& block) const;
  CellBlock wholeSheet() const;
  /// Takes time for the stored cells of the selection only.
  SelectionSummary summary(const CellBlock& block) const;

  // --- Contents ---

  /// A text as typed. A formula where none are allowed is refused.
  void enter(int row, int column, std::string_view entry);
  /// The same text into all cells of a block; relative references follow.
  void enterAll(const CellBlock& block, std::string_view entry);
  /// Empties the cells and leaves their formats.
  void clearContents(const CellBlock& block);
  /// Empties the cells and takes their formats away.
  void clearAll(const CellBlock& block);

  void copy(const CellBlock& block, Clipboard& clipboard) const;
  void cut(const CellBlock& block, Clipboard& clipboard);
  /// Pastes at the block: cells copied by an editor with formulas and formats, texts of other
  /// programs as tab text. A larger block that is a multiple of what is pasted is filled with it.
  /// Returns the block written.
  CellBlock paste(const CellBlock& block, Clipboard& clipboard, PasteKind kind = PasteKind::All);

  /// Repeats the first row (or column) of a block over the rest of it.
  void fillDown(const CellBlock& block);
  void fillRight(const CellBlock& block);
  /// Continues the cells of `source` over `target`, which contains it and is larger in one
  /// direction: numbers as a linear series, texts that end in a number by counting on, single
  /// numbers, other texts and formulas by repetition. `turned` counts a single number on and
  /// repeats what would be a series.
  void fillSeries(const CellBlock& source, const CellBlock& target, bool turned = false);

  /// Moves cells so that the first one comes to a place. Formulas keep what they read, and those
  /// that read the moved cells follow.
  void moveRange(const CellBlock& block, int row, int column);

  // --- Rows, columns, cells ---

  void insertRows(int first, int last);
  void deleteRows(int first, int last);
  void insertColumns(int first, int last);
  void deleteColumns(int first, int last);
  /// Moves only the block's own columns (Down) or rows (Right).
  void insertCells(const CellBlock& block, Shift shift);
  void deleteCells(const CellBlock& block, Shift shift);

  void sort(const CellBlock& block, const std::vector<SortKey>& keys, bool byRows = true);

  // --- Search ---

  /// The next cell in reading order after (or before) a place, going on from the other end of the
  /// sheet; the place itself comes last.
  std::optional<CellPlace> findNext(std::string_view text, CellPlace from,
                                    const SearchOptions& options) const;
  /// Replaces in one cell if it holds the text; returns true when it did.
  bool replace(std::string_view text, std::string_view with, CellPlace place,
               const SearchOptions& options);
  /// Replaces in the whole sheet; returns the number of cells changed.
  int replaceAll(std::string_view text, std::string_view with, const SearchOptions& options);

  // --- Appearance ---

  /// Changes the formats of a block. Of whole rows and columns only those in use and some
  /// after them are changed.
  void changeFormat(const CellBlock& block, std::string_view name,
                    const std::function<void(CellFormat&)>& change);
  const CellFormat& formatAt(int row, int column) const;
  void setBold(const CellBlock& block, bool on);
  void setItalic(const CellBlock& block, bool on);
  void setUnderline(const CellBlock& block, bool on);
  void setFont(const CellBlock& block, const std::string& name, double points);
  void setFontColor(const CellBlock& block, Color color);
  /// `automaticColor` takes the fill away.
  void setFill(const CellBlock& block, Color color);
  void setNumberFormat(const CellBlock& block, const std::string& format);
  void setAlignment(const CellBlock& block, HorizontalAlignment alignment);
  void setWrap(const CellBlock& block, bool on);
  void setBorders(const CellBlock& block, Borders borders);

  /// Widths in characters; 0 restores the default.
  void setColumnWidth(int first, int last, double characters);
  void setColumnWidths(const std::vector<std::pair<int, double>>& widths);
  void hideRows(int first, int last, bool hide);
  void hideColumns(int first, int last, bool hide);
  /// Rows that stay at the top; 0 for none.
  void freezeRows(int rows);
  void setColumnHeading(int column, std::string_view text);
  void setRowHeading(int row, std::string_view text);

  // --- Sheets ---

  void renameSheet(int sheet, const std::string& name);
  void insertSheet(int before);
  void deleteSheet(int sheet);

  // --- Commands of others ---

  /// Runs a command that may change anything in the workbook and makes one step of it. What was
  /// changed before an exception can be undone, too. Within another recorded command it just runs.
  void record(std::string_view name, const std::function<void()>& command);

  void undo() { history_.undo(); }
  void redo() { history_.redo(); }

 private:
  void require(EditRight right) const;
  void requireWholeArrays(const CellBlock& block) const;
  void requireInside(const CellBlock& block) const;
  void requireFillable(const CellBlock& block) const;
  bool hasFormulas();
  void recalc();
  void notifyChanged(const CellBlock* block);
  CellBlock formatPart(const CellBlock& block) const;
  void editCells(std::string_view name, const std::vector<CellBlock>& blocks,
                 const std::function<void()>& change);
  void editLayout(std::string_view name, const std::function<void()>& change);
  enum class Motion { Insert, Delete };
  void moveCells(std::string_view name, const CellBlock& block, Shift shift, Motion motion);
  void moveLines(StructureCommand command, const CellBlock& block);
  void enterValue(int row, int column, std::string_view entry);
  CellBlock pasteText(const CellBlock& block, std::string_view text, PasteKind kind);
  bool holdsText(int row, int column, std::string_view text, const SearchOptions& options) const;
  void replaceIn(CellPlace place, std::string_view text, std::string_view with,
                 const SearchOptions& options);

  Worksheet& sheet_;
  EditHistory& history_;
  bool readOnly_ = false;
  bool restored_ = false;  // by an undo or redo that observers do not know of yet
  int recording_ = 0;
  std::optional<bool> formulas_;  // whether the workbook has any; empty when that is unknown
  std::vector<int> layout_;       // sizes of the sheets after the last change of this editor
  Observers<const CellBlock*> observers_;
  std::function<void(StructureCommand)> structureCommands_;
  Subscription restores_;
  Subscription historyChanges_;
};

}  // namespace lodex
