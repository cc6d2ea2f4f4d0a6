#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "worksheet/Worksheet.h"

namespace lodex {

class Connection;

/// A field of the map that holds an element: its row and column in F1Key2, from 1, and its
/// reference "[table].[field]".
struct ElementField {
  int row = 0;
  int column = 0;
  std::string reference;

  bool operator==(const ElementField&) const = default;
};

/// Two tables and the fields on which they join.
struct TableLink {
  std::string table1, table2;
  std::string field1, field2;

  bool operator==(const TableLink&) const = default;
};

/// What is known of an open database: its tables and fields, primary keys, the links between
/// tables, and its stored filters. Names of tables are taken with or without square brackets, and
/// all names without regard to case, as databases do. Every list ends at the first empty row.
class DatabaseMap {
 public:
  /// A row per table: its name, then its fields in their order.
  Worksheet F1Key2;
  /// A row per column of a primary key: table, field. Both hold the same rows; one is for looking
  /// up keys, the other for making links.
  Worksheet F1Indx;
  Worksheet F1Avain;
  /// A row per link: first table, second table, field of the first, field of the second.
  Worksheet F1Linkki;
  /// Names of the views that are filters, without their "f_".
  std::vector<std::string> FilterList;

  void clear();

  int tableCount() const;
  std::string table(int row) const { return F1Key2.TextRC(row, 1); }
  std::vector<std::string> tables() const;
  /// The fields in a row of F1Key2.
  std::vector<std::string> fields(int row) const;
  /// The row of a table in F1Key2; 0 if it is not there.
  int tableRow(std::string_view table) const;
  /// The column of a field in that row; 0 if it is not there.
  int fieldColumn(int row, std::string_view field) const;

  /// The first field of a table's primary key; "" if there is none.
  std::string PrimaryKeyField(std::string_view table) const;
  /// Whether a field belongs to a table's primary key.
  bool isKeyField(std::string_view table, std::string_view field) const;

  /// Derives F1Linkki: every key column is linked to itself, and fields of the same name link their
  /// tables. At most `maxLinks` rows; JoinPath then compares the fields themselves.
  void MakeLinks();
  static constexpr int maxLinks = 65000;

  /// How two tables join: one link between them, in the order of the arguments; with `overThird`
  /// else two links over one table between them; empty when no link leads there.
  std::vector<TableLink> JoinPath(std::string_view first, std::string_view second,
                                  bool overThird = false) const;

  /// The fields whose names mean an element, by its atomic number. True when there are any.
  bool FindElementFields(int element, std::vector<ElementField>& found) const;
  /// The same among the fields that row `element` of a source dialogue's F1Ref names, as pairs of
  /// table number and field number.
  bool FindElementFieldsSelected(int element, const Worksheet& F1Ref,
                                 std::vector<ElementField>& found) const;

  /// Adds a table, or a field after the last one of a table. Returns its row or column.
  int addTable(std::string_view table);
  int addField(int row, std::string_view field);
  /// Adds a column of a table's primary key.
  void addKey(std::string_view table, std::string_view field);

 private:
  bool directLink(std::string_view first, std::string_view second, TableLink& link) const;
  std::string reference(int row, int column) const;
};

/// A name without its square brackets.
std::string plainName(std::string_view name);

/// Fills the list of filters from the database's views.
void CollectFilters(Connection& connection, DatabaseMap& map);

}  // namespace lodex
