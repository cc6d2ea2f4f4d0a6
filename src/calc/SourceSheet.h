#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "import/SystemRows.h"
#include "worksheet/Worksheet.h"

namespace lodex {

/// A described table that samples and their items are read from: a data sheet, or a table of a
/// source database in the same layout. It must outlive whoever reads from it.
struct SourceSheet {
  int number = 0;  // as item sources name it
  std::string caption;
  const Worksheet* cells = nullptr;
  SheetStructure structure;
  bool isTable = false;   // of a database: columns are fields
  bool selected = false;  // its samples are calculated

  /// A cell of a system row; "" where there is none.
  std::string text(int systemRow, int column) const;
  /// Title of a column: its HEADER cell, else its ELEMENT cell.
  std::string heading(int column) const;
  /// True when it has an identifier and data rows to look at.
  bool hasSamples() const;
  bool hasColumn(int column) const { return column > 0 && column <= cells->LastCol(); }
  /// The identifier in a row; "" for a row without sample.
  std::string sampleId(int row) const;
};

using SourceSheets = std::vector<SourceSheet>;

/// The sheet of that number; null if there is none.
const SourceSheet* findSheet(const SourceSheets& sheets, int number);

/// The first row of every sample of a sheet, so that a sample is found without searching.
class SampleRows {
 public:
  explicit SampleRows(const SourceSheet& sheet);

  /// The row of a sample by its exact text or, when it is numeric and not found so, by its number;
  /// 0 if the sheet does not have it.
  int rowOf(const std::string& sampleId) const;

 private:
  std::unordered_map<std::string, int> rows_;
};

}  // namespace lodex
