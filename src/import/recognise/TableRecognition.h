#pragma once

#include <string>
#include <vector>

#include "basic/Findings.h"
#include "worksheet/Worksheet.h"

/// Finds out how a laboratory laid out a table, from what stands in its cells: element symbols and
/// oxides, units, method codes, limits, sample names. Nothing is written here.
namespace lodex {

enum class TableLayout {
  Unknown,     // no heading row with analytes
  Rows,        // samples down, analytes across
  Transposed,  // analytes down, samples across
  Long,        // one result per row: sample, analyte, value
};

enum class ColumnRole { Other, Identifier, Assay, Uncertainty };

struct RecognisedColumn {
  ColumnRole role = ColumnRole::Other;
  std::string heading;  // as written in the heading row, or in the row that names the samples
  std::string element;
  std::string method;
  std::string unit;      // "%", "ppm", "ppb"; "" when unknown
  std::string unitText;  // as written
  std::string lowerLimit;
  std::string upperLimit;
  std::string how;  // "heading", "heading and row of units" ...
};

/// Rows below the samples that are none, and samples that are marked.
enum class SectionKind { QualityControl, SecondTable, Statistics, Notes };

struct TableSection {
  SectionKind kind = SectionKind::Notes;
  int firstRow = 0;
  int lastRow = 0;
  std::vector<std::string> names;  // of its rows: what stands in the identifier column
};

/// Rows and columns count from 1; 0 is absent.
struct RecognisedTable {
  TableLayout layout = TableLayout::Unknown;
  int headingRow = 0;
  int methodRow = 0;
  int unitRow = 0;
  int lowerLimitRow = 0;
  int upperLimitRow = 0;
  int sampleRow = 0;  // a row that names the columns of samples, where it is not the heading row
  int firstDataRow = 0;
  int lastDataRow = 0;
  int idColumn = 0;
  std::vector<RecognisedColumn> columns;  // column c at c - 1
  std::vector<TableSection> sections;
  std::vector<int> controlRows;  // among the samples: standards, blanks, repeats by their names
  int samples = 0;               // rows with an identifier, firstDataRow to lastDataRow

  /// Of a table with one result per row: its columns.
  struct LongColumns {
    int sample = 0, analyte = 0, value = 0, unit = 0, method = 0, qualifier = 0;
  } longColumns;

  int assayCount() const;
};

/// Recognises the current sheet. `headingRow` above 0 is the user's choice of the heading row.
RecognisedTable recogniseTable(const Worksheet& sheet, int headingRow = 0);

}  // namespace lodex
