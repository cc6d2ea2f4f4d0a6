#pragma once

#include <vector>

#include "import/SystemRows.h"

/// Editing of rows and columns that keeps the numbers of the structure, the cross-reference F1Ref
/// and the identification marks right. Rows and columns count from 1, ends are inclusive.
namespace lodex {

/// Where F1Ref places an item: sheet number (0 for formula items, which keep only the column)
/// and column.
struct ItemReference {
  int sheet = 0;
  int column = 0;
};

/// The references of an item; entries without a column are left out.
std::vector<ItemReference> referencesOf(const Worksheet& F1Ref, int item);
void setReferences(Worksheet& F1Ref, int item, const std::vector<ItemReference>& references);
/// Gives every reference to an element the sheet number.
void renumberReferences(Worksheet& F1Ref, int sheetNumber);

/// Inserts whole rows before `row`; system rows and first data row at or below it move down.
void insertRows(const DescribedSheet& sheet, int row, int count);

/// Deletes whole rows. System rows below the block move up; one inside it keeps its number, which
/// its user must then correct. The first data row moves only if it lies below the block.
void deleteRows(const DescribedSheet& sheet, int row1, int row2);

/// Inserts whole columns before `column`. ID column, mineral column and references move along.
void insertColumns(const DescribedSheet& sheet, Worksheet& F1Ref, int column, int count);

/// Deletes whole columns and the references to them; the columns after them move left.
void deleteColumns(const DescribedSheet& sheet, Worksheet& F1Ref, int column1, int column2);

/// Writes the marks "X(<symbol>)<k>/<n>" of the IDENTIFIED row again from F1Ref.
void redrawMarks(const DescribedSheet& sheet, const Worksheet& F1Ref, const Worksheet& F1Data);

/// Exchanges rows and columns of the current sheet. Values arrive as text enters a cell; dates keep
/// the text that they show. Throws Error when there are more rows than a sheet has columns.
void transpose(Worksheet& sheet);

/// Copies the content of a system row into another row, from the first column after the ID column
/// on.
void copySystemRow(const DescribedSheet& sheet, int systemRow, int toRow);

}  // namespace lodex
