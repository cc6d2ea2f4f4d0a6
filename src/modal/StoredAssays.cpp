#include "modal/StoredAssays.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Elements.h"
#include "chem/Headings.h"
#include "chem/ReferenceTables.h"
#include "db/MapDatabase.h"
#include "db/Recordset.h"
#include "modal/frmResult.h"

namespace lodex {
namespace {

constexpr const char* samplesView = "@Samples";
constexpr const char* samplesTable = "Sample";
constexpr int recordsPerPoll = 1024;

bool isUnit(std::string_view text) {
  return text == "%" || equalsNoCase(text, "ppm") || equalsNoCase(text, "ppb");
}

// The field's pieces when there are exactly three with something in the last one.
std::vector<std::string> threePieces(std::string_view field) {
  for (const char* separator : {" ", "_", "/"}) {
    std::vector<std::string> pieces = split(field, separator);
    if (pieces.size() == 3 && !pieces[2].empty()) return pieces;
  }
  return {};
}

std::string fieldOf(std::string_view text) {
  const size_t bar = text.find(" | ");
  return std::string(bar == std::string_view::npos ? text : text.substr(bar + 3));
}

// The fields on which the samples and another table or view join; empty when they do not.
struct Join {
  std::string masterField;
  std::string field;
};

std::optional<Join> joinOf(const DatabaseMap& map, const std::string& master,
                           const std::string& table) {
  // Tables share other names than that of the sample as well, so its key comes first.
  const std::string key = map.PrimaryKeyField(master);
  const int row = map.tableRow(table);
  if (!key.empty() && row > 0) {
    const int column = map.fieldColumn(row, key);
    if (column == 0) return std::nullopt;
    return Join{key, map.F1Key2.TextRC(row, column)};
  }
  const auto path = map.JoinPath(master, table);
  if (path.empty()) return std::nullopt;
  return Join{path[0].field1, path[0].field2};
}

std::vector<std::string> keyFields(const DatabaseMap& map, const std::string& table) {
  std::vector<std::string> fields;
  for (int row = 1; row <= map.F1Indx.LastRow(); ++row) {
    if (equalsNoCase(map.F1Indx.TextRC(row, 1), table)) fields.push_back(map.F1Indx.TextRC(row, 2));
  }
  return fields;
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& other) { return equalsNoCase(other, name); });
}

// A table or view that picks samples, and its field that joins with them.
struct Filter {
  std::string name;
  std::string baseTable;
};

std::optional<Filter> filterOf(const StoredSource& source) {
  if (source.filter.empty()) return std::nullopt;
  Filter filter;
  filter.name = source.filter == "-1" ? source.selection : "f_" + source.filter;
  if (filter.name.empty()) throw Error("There is no selection of samples");
  const auto& known = source.database->map.FilterList;
  if (source.filter != "-1" && !contains(known, source.filter)) {
    throw Error("The database has no filter " + source.filter);
  }
  std::string key;
  ViewBaseTable(*source.database, filter.name, filter.baseTable, key);
  return filter;
}

Join requireFilterJoin(const StoredSource& source, const Filter& filter, const std::string& table) {
  const auto join = joinOf(source.database->map, table, filter.baseTable);
  if (!join) throw Error("Filter " + filter.name + " does not join with table " + table);
  return *join;
}

std::string dotted(const std::string& table, const std::string& field) {
  return quoteName(table) + "." + quoteName(field);
}

std::string innerJoin(const Filter& filter, const Join& join, const std::string& table) {
  return " INNER JOIN " + quoteName(filter.name) + " ON " + dotted(table, join.masterField) + "=" +
         dotted(filter.name, join.field);
}

bool holdsValue(const StoredSource& source, const std::optional<Filter>& filter,
                const std::string& table, const std::string& field) {
  std::string sql;
  if (filter) {
    const Join join = requireFilterJoin(source, *filter, table);
    sql = "SELECT " + dotted(table, field) + " FROM " + quoteName(table) +
          innerJoin(*filter, join, table) + " WHERE " + dotted(table, field) + " Is Not Null";
  } else {
    sql = "SELECT " + quoteName(field) + " FROM " + quoteName(table) + " WHERE " +
          quoteName(field) + " Is Not Null";
  }
  return !source.database->connection.OpenRecordset(sql, CursorKind::ForwardOnly)->Eof();
}

std::string retrievalQuery(const StoredSource& source, const std::optional<Filter>& filter,
                           const std::string& master, const std::string& table, const Join& join) {
  std::string from = quoteName(master);
  // The master table may hold assays itself, and no table joins with itself without another name.
  if (!equalsNoCase(master, table)) {
    from = "(" + from + " LEFT JOIN " + quoteName(table) + " ON " +
           dotted(master, join.masterField) + "=" + dotted(table, join.field) + ")";
  }
  std::string sql =
      "SELECT " + dotted(master, join.field) + "," + quoteName(table) + ".* FROM " + from;
  if (filter) sql += innerJoin(*filter, requireFilterJoin(source, *filter, master), master);
  return sql + " ORDER BY  " + dotted(master, join.masterField);
}

std::optional<double> numberIn(const FieldValue& value) {
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* text = std::get_if<std::string>(&value)) return parseNumber(*text);
  return std::nullopt;
}

// Samples with several records in a table take their rows in order.
class SampleRows {
 public:
  SampleRows(ModalLists& lists, Worksheet& F1Ini) : lists_(lists), F1Ini_(F1Ini) {
    for (size_t i = 0; i < lists.SampleIDs.size(); ++i) {
      rows_[lists.SampleIDs[i]].push_back(static_cast<int>(i) + 1);
    }
    mayAdd_ = lists.SampleIDs.empty();
  }
  // The row of the next record of a sample; 0 when it has had all of its rows.
  int next(const std::string& id, bool isNumber) {
    if (mayAdd_) {
      lists_.SampleIDs.push_back(id);
      const int row = static_cast<int>(lists_.SampleIDs.size());
      if (isNumber) {
        F1Ini_.NumberRC(row, 1, numberOf(id));
      } else {
        F1Ini_.TextRC(row, 1, id);
      }
      return row;
    }
    std::vector<int>& rows = rows_[id];
    size_t& taken = taken_[id];
    return taken < rows.size() ? rows[taken++] : 0;
  }

 private:
  ModalLists& lists_;
  Worksheet& F1Ini_;
  bool mayAdd_ = false;
  std::map<std::string, std::vector<int>> rows_;
  std::map<std::string, size_t> taken_;
};

struct MappedField {
  int elementRow = 0;
  int tableRow = 0;
  int fieldColumn = 0;
};

std::vector<MappedField> fieldsOf(const Worksheet& F1Ref) {
  std::vector<MappedField> fields;
  for (int row = 1; row <= F1Ref.LastRow(); ++row) {
    for (int column = 1; column < F1Ref.LastCol() + 1; column += 2) {
      const int table = static_cast<int>(F1Ref.NumberRC(row, column));
      if (table < 1) break;
      fields.push_back({row, table, static_cast<int>(F1Ref.NumberRC(row, column + 1))});
    }
  }
  std::stable_sort(fields.begin(), fields.end(), [](const MappedField& a, const MappedField& b) {
    return std::pair(a.tableRow, a.fieldColumn) < std::pair(b.tableRow, b.fieldColumn);
  });
  return fields;
}

// Fills the sheets of a result from one table after the other.
class StoredReader {
 public:
  StoredReader(const StoredSource& source, const Worksheet& F1ELoc, ModalLists& lists,
               frmResult& result, const Watch& watch)
      : source_(source),
        map_(source.database->map),
        F1ELoc_(F1ELoc),
        lists_(lists),
        result_(result),
        watch_(watch),
        filter_(filterOf(source)),
        master_(sampleMasterTable(*source.database)) {}

  void nameMethods(const std::vector<MappedField>& fields) {
    for (const MappedField& field : fields) {
      const std::string method = methodOfStored(nameOf(field));
      if (std::find(methods_.begin(), methods_.end(), method) != methods_.end()) continue;
      methods_.push_back(method);
      result_.F1Kirja.ColText(static_cast<int>(methods_.size()), method);
    }
  }

  void read(int tableRow, const std::vector<MappedField>& fields) {
    const std::string table = map_.table(tableRow);
    const auto join = joinOf(map_, master_, table);
    if (!join) {
      watch_.found.error(
          "The table does not join with table " + master_ + ": its assays are left out",
          placeOf(table));
      return;
    }
    const auto records = source_.database->connection.OpenRecordset(
        retrievalQuery(source_, filter_, master_, table, *join), CursorKind::ForwardOnly);
    const std::vector<StoredColumn> columns = placeColumns(records->Fields(), tableRow, fields);
    copyRecords(*records, table, columns);
    lastColumn_ += static_cast<int>(columns.size());
  }

 private:
  struct StoredColumn {
    double factor = 1;
    bool isAssay = false;
  };

  Place placeOf(const std::string& table, const std::string& sample = "") const {
    return {.file = source_.database->path, .sheet = table, .record = sample};
  }
  std::string nameOf(const MappedField& field) const {
    return map_.table(field.tableRow) + " | " +
           map_.F1Key2.TextRC(field.tableRow, field.fieldColumn);
  }

  // Heads the table's columns and enters its assays in F1Kirja.
  std::vector<StoredColumn> placeColumns(const std::vector<Field>& recordFields, int tableRow,
                                         const std::vector<MappedField>& fields) {
    std::vector<StoredColumn> columns(recordFields.size() - 1);
    for (size_t k = 1; k < recordFields.size(); ++k) {
      const int column = lastColumn_ + static_cast<int>(k);
      const std::string& name = recordFields[k].name;
      result_.F1Ini.ColText(column, name);
      for (const MappedField& field : fields) {
        if (field.tableRow != tableRow ||
            !equalsNoCase(map_.F1Key2.TextRC(tableRow, field.fieldColumn), name)) {
          continue;
        }
        const AssayColumn known = describeField(map_.table(tableRow), name, F1ELoc_);
        columns[k - 1] = {known.factor, true};
        if (known.factor != 1) {
          result_.F1Ini.ColText(
              column, name + " as " + F1ELoc_.TextRC(field.elementRow, eloc::MineralField));
        }
        enter(field, column, known.isTotal);
      }
    }
    return columns;
  }

  // Of several fields with the same element and method a total serves, else the first.
  void enter(const MappedField& field, int column, bool isTotal) {
    const auto place = std::find(methods_.begin(), methods_.end(), methodOfStored(nameOf(field)));
    const int method = static_cast<int>(place - methods_.begin()) + 1;
    const int served = static_cast<int>(result_.F1Kirja.NumberRC(field.elementRow, method));
    if (served > 0 && (!isTotal || totals_.count(served) > 0)) {
      watch_.found.note("Assay " + nameOf(field) +
                        " feeds no equation: an earlier field has the same element and method");
      return;
    }
    if (served > 0) {
      watch_.found.note("Assay " + result_.F1Ini.ColText(served) +
                        " feeds no equation: a later field has the total of its element");
    }
    if (isTotal) totals_.insert(column);
    result_.F1Kirja.NumberRC(field.elementRow, method, column);
  }

  void copyRecords(Recordset& records, const std::string& table,
                   const std::vector<StoredColumn>& columns) {
    SampleRows rows(lists_, result_.F1Ini);
    lists_.SampleIDsAreNumbers = records.Fields()[0].type.isNumber();
    for (int read = 0; !records.Eof(); records.MoveNext(), ++read) {
      if (read % recordsPerPoll == 0) watch_.poll();
      const std::string sample = records.Text(0);
      const int row = rows.next(sample, lists_.SampleIDsAreNumbers);
      if (row == 0) {
        watch_.found.error("The table has more records of the sample than others: left out",
                           placeOf(table, sample));
        continue;
      }
      copyRecord(records, placeOf(table, sample), columns, row);
    }
  }

  void copyRecord(const Recordset& records, const Place& place,
                  const std::vector<StoredColumn>& columns, int row) {
    CellStore& cells = result_.F1Ini.cellsForReader(1);
    for (size_t k = 0; k < columns.size(); ++k) {
      const int field = static_cast<int>(k) + 1;
      const FieldValue& value = records.Value(field);
      const auto number = numberIn(value);
      if (number) {
        cells.setNumber(row, lastColumn_ + field, *number * columns[k].factor);
      } else if (columns[k].isAssay && !isNull(value)) {
        watch_.found.warn("Field " + records.Fields()[static_cast<size_t>(field)].name +
                              ": text counts as not assayed",
                          place);
      }
    }
  }

  const StoredSource& source_;
  const DatabaseMap& map_;
  const Worksheet& F1ELoc_;
  ModalLists& lists_;
  frmResult& result_;
  const Watch& watch_;
  std::optional<Filter> filter_;
  std::string master_;
  std::vector<std::string> methods_;
  std::set<int> totals_;  // columns of F1Ini that hold a total
  int lastColumn_ = 1;
};

// The element row that a table of the element location table has for this field; 0 if none.
int locatedRow(std::string_view table, std::string_view field, const Worksheet& F1ELoc) {
  for (int row = 1; row <= F1ELoc.LastRow(); ++row) {
    if (!equalsNoCase(F1ELoc.TextRC(row, eloc::Form), field)) continue;
    if (table.empty() || equalsNoCase(F1ELoc.TextRC(row, eloc::Table), table)) return row;
  }
  return 0;
}

void locate(AssayColumn& column, int row, const Worksheet& F1ELoc) {
  column.elementRow = row;
  const double multiplier = F1ELoc.NumberRC(row, eloc::Multiplier);
  column.factor = multiplier == 0 ? 1 : 1 / multiplier;
}

}  // namespace

std::string MethodOfField(std::string_view text) {
  const auto pieces = threePieces(fieldOf(text));
  return pieces.empty() ? "" : pieces[2];
}

std::string methodOfStored(std::string_view text) {
  const auto pieces = threePieces(fieldOf(text));
  std::string method = pieces.empty() ? "" : pieces[2];
  if (isUnit(method)) method = pieces[1];
  return method.empty() || isUnit(method) ? firstMethod : method;
}

AssayColumn describeField(std::string_view table, std::string_view field, const Worksheet& F1ELoc) {
  AssayColumn column;
  const int own = locatedRow(table, field, F1ELoc);
  if (own > 0) {
    locate(column, own, F1ELoc);
  } else {
    std::string element, method, unit;
    const auto pieces = split(field, "/");
    if (pieces.size() == 2 || pieces.size() == 3) {
      element = pieces[0];
      unit = pieces.back();
    } else {
      SplitHeading(field, element, method, unit, true);
    }
    // One row of a data sheet, so that stored assays are understood as those of a sheet are.
    Worksheet heading;
    heading.TextRC(1, 1, element);
    heading.TextRC(2, 1, unit);
    AssaySheet sheet;
    sheet.sheet = &heading;
    sheet.elementRow = 1;
    sheet.unitRow = 2;
    column = describeColumn(sheet, 1, F1ELoc);
    if (column.elementRow == 0) {
      const int anywhere = locatedRow("", field, F1ELoc);
      if (anywhere > 0) locate(column, anywhere, F1ELoc);
    }
  }
  column.method = methodOfStored(field);
  column.heading = field;
  return column;
}

std::string sampleMasterTable(MappedDatabase& database) {
  std::string base, key;
  ViewBaseTable(database, samplesView, base, key);
  int row = database.map.tableRow(base);
  if (row == 0) row = database.map.tableRow(samplesTable);
  if (row > 0) return database.map.table(row);

  std::string best;
  double most = -1;
  for (const std::string& table : database.map.tables()) {
    if (keyFields(database.map, table).size() != 1) continue;
    const auto count =
        database.connection.OpenRecordset("SELECT Count(*) FROM " + quoteName(table));
    const double records = count->Eof() ? 0 : fieldNumber(count->Value(0));
    if (records <= most) continue;
    most = records;
    best = table;
  }
  if (best.empty()) throw Error("The database has no table of samples with a key");
  return best;
}

void buildMethodMap(const StoredSource& source, const Worksheet& F1ELoc, Worksheet& F1Ref,
                    Findings& found) {
  F1Ref = Worksheet();
  const DatabaseMap& map = source.database->map;
  const std::string master = sampleMasterTable(*source.database);
  const auto filter = filterOf(source);
  std::map<int, int> lastColumn;
  for (int t = 1; t <= map.tableCount(); ++t) {
    const std::string table = map.table(t);
    const auto join = joinOf(map, master, table);
    const auto keys = keyFields(map, table);
    // A key of several fields means several records a sample, such as the compositions of its
    // minerals: those are not assays.
    if (!join || keys.size() > 1) continue;
    int column = 1;
    for (const std::string& field : map.fields(t)) {
      ++column;
      if (contains(keys, field) || equalsNoCase(field, join->field)) continue;
      const AssayColumn known = describeField(table, field, F1ELoc);
      if (known.elementRow == 0) {
        std::string symbol = field;
        if (field.find('/') != std::string::npos && ElementNumber(symbol) > 0) {
          found.note("Assay " + table + " | " + field +
                     " feeds no equation: its element is not known");
        }
        continue;
      }
      if (!holdsValue(source, filter, table, field)) continue;
      int& last = lastColumn[known.elementRow];
      F1Ref.NumberRC(known.elementRow, ++last, t);
      F1Ref.NumberRC(known.elementRow, ++last, column);
    }
  }
}

void retrieveStoredAssays(const StoredSource& source, const Worksheet& F1Ref,
                          const Worksheet& F1ELoc, ModalLists& lists, frmResult& result,
                          const Watch& watch) {
  const std::vector<MappedField> fields = fieldsOf(F1Ref);
  if (fields.empty()) throw Error("The database has no field with an assay of an element");
  lists.SampleIDs.clear();
  result.F1Ini.ColText(1, "SampleNo");
  StoredReader reader(source, F1ELoc, lists, result, watch);
  reader.nameMethods(fields);
  int previous = 0;
  for (const MappedField& field : fields) {
    if (field.tableRow == previous) continue;
    previous = field.tableRow;
    reader.read(previous, fields);
  }
}

}  // namespace lodex
