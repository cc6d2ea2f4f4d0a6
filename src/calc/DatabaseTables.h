#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "calc/SourceSheet.h"
#include "chem/CompoundConverter.h"
#include "db/Connection.h"

namespace lodex {

/// Tables of a source database in the layout of data sheets, so that a calculation reads them like
/// any other sheet. A field has the column after its place in the table, as in the database
/// map: the first field is column 2. Its name gives element, method and unit.
class DatabaseTables {
 public:
  /// Reads a table. `number` is its place in the map, `keyField` the field of the sample
  /// identifier; without one its samples are not found. `condition` is an SQL condition that picks
  /// records, empty for all. Throws Error when the table cannot be read or does not fit into a
  /// sheet.
  void add(Connection& connection, std::string_view table, int number, std::string_view keyField,
           const CompoundConverter& converter, std::string_view condition = {});

  /// The tables, none of them selected. They live as long as this object and stay valid when
  /// tables are added.
  SourceSheets sheets() const;

 private:
  struct Table {
    std::string name;
    int number = 0;
    Worksheet cells;
    SheetStructure structure;
  };
  std::deque<Table> tables_;
};

}  // namespace lodex
