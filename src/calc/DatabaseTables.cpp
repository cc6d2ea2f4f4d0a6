#include "calc/DatabaseTables.h"

#include "basic/Error.h"
#include "basic/Text.h"
#include "calc/ItemHeading.h"
#include "db/Recordset.h"

namespace lodex {
namespace {

// The system rows of a table; its records follow.
constexpr int systemRows[] = {sysrow::Header, sysrow::Element, sysrow::Method,
                              sysrow::Unit,   sysrow::Field,   sysrow::Type};
constexpr int firstRecordRow = 7;

void describeField(Worksheet& cells, const SheetStructure& structure, int column,
                   const Field& field, const CompoundConverter& converter) {
  const auto set = [&](int systemRow, std::string_view text) {
    cells.TextRC(structure.row(systemRow), column, text);
  };
  set(sysrow::Header, field.name);
  set(sysrow::Field, field.name);
  set(sysrow::Type, field.declared);
  const ItemHeading heading = itemHeading(field.name, SymbolEnd::Loose, converter);
  if (heading.formula.empty() && heading.unitFactor == 0) return;
  set(sysrow::Element, heading.formula.empty() ? heading.form : elementCell(heading));
  set(sysrow::Method, heading.method);
  set(sysrow::Unit, unitCell(heading));
}

Value valueOf(const FieldValue& field) {
  if (isNull(field)) return {};
  if (const auto* text = std::get_if<std::string>(&field)) return Value::stored(*text);
  return fieldNumber(field);
}

}  // namespace

void DatabaseTables::add(Connection& connection, std::string_view table, int number,
                         std::string_view keyField, const CompoundConverter& converter,
                         std::string_view condition) {
  std::string query = "SELECT * FROM " + quoteName(table);
  if (!condition.empty()) query.append(" WHERE ").append(condition);
  const auto records = connection.OpenRecordset(query, CursorKind::ForwardOnly);
  Table made;
  made.name = table;
  made.number = number;
  int row = 0;
  for (const int systemRow : systemRows) made.structure.row(systemRow) = ++row;
  made.structure.firstDataRow = firstRecordRow;

  const int fields = static_cast<int>(records->Fields().size());
  for (int field = 0; field < fields; ++field) {
    const Field& described = records->Fields()[static_cast<size_t>(field)];
    describeField(made.cells, made.structure, field + 2, described, converter);
    if (equalsNoCase(described.name, keyField)) made.structure.idColumn = field + 2;
  }
  for (int record = firstRecordRow; !records->Eof(); records->MoveNext(), ++record) {
    for (int field = 0; field < fields; ++field) {
      made.cells.ValueSRC(1, record, field + 2, valueOf(records->Value(field)));
    }
  }
  tables_.push_back(std::move(made));
}

SourceSheets DatabaseTables::sheets() const {
  SourceSheets sheets;
  for (const Table& table : tables_) {
    sheets.push_back({table.number, table.name, &table.cells, table.structure, true, false});
  }
  return sheets;
}

}  // namespace lodex
