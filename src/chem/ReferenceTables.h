#pragma once

#include <string>
#include <string_view>

#include "worksheet/Worksheet.h"

namespace lodex {

/// Columns of F1ELoc, the element location table.
namespace eloc {
enum Column {
  Element = 1,
  Table,
  Form,
  MineralTable,
  MineralField,
  Multiplier,
  Disso,
  DissoFldNo,
  PhaseTable,
  PhaseField,
  Oxide,
  Oxide2,
  MulitEl,
  MultiOx,
  MultiOx2
};
}

/// Sheets of F1Key1, the classification workbook, by number.
namespace key1 {
enum Sheet {
  Thesaurus = 1,
  Multiplier,
  Unit,
  Unit_Multipl,
  METHOD,
  Page,
  Member,
  Mineral,
  listbox
};
}

/// The hidden reference tables, loaded from the text files of the installation. Row 1 of F1El is
/// headings and F1Data has headings in row 1; F1ELoc and the sheets of F1Key1 start with data and
/// carry the headings of their files as column headings. Where a sheet of F1Key1 has a row per
/// item, the item's name is the row heading.
class taulukot {
 public:
  Worksheet F1Data;  // the periodic table: row n + 1 holds item n
  Worksheet F1El;    // valence table
  Worksheet F1ELoc;  // element location table, one row per element or item, from row 1
  Worksheet F1Key1;  // classification workbook of nine sheets

  /// Reads the tables from `folder` (the "reference" folder of the installation). Throws FileError
  /// naming the file that is missing or malformed; the tables then stay as they were.
  void load(std::string_view folder);
};

}  // namespace lodex
