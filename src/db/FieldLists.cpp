#include "db/FieldLists.h"

#include "basic/Text.h"
#include "db/Recordset.h"
#include "db/frmAddField.h"

namespace lodex {

void showTables(const DatabaseMap& map, ListBox& tables) {
  tables.clear();
  for (const std::string& table : map.tables()) tables.add(table);
}

void showFields(const DatabaseMap& map, const ListBox& tables, ListBox& fields) {
  fields.clear();
  const int row = map.tableRow(currentText(tables));
  if (row == 0) return;
  for (const std::string& field : map.fields(row)) fields.add(field);
}

void takeField(DatabaseMap& map, std::string_view table, const frmAddField& added) {
  const std::string field = replaceAll(replaceAll(added.txtFName.text(), "[", ""), "]", "");
  map.addField(map.tableRow(table), field);
  if (added.chkPrimary.checked()) map.addKey(table, field);
}

std::string currentText(const ListBox& list) {
  const bool some = list.current() >= 0 && list.current() < list.count();
  return some ? list.item(list.current()) : std::string();
}

std::string fieldProperties(Connection& connection, std::string_view table,
                            std::string_view field) {
  const auto columns = connection.OpenSchema(SchemaKind::Columns);
  for (; !columns->Eof(); columns->MoveNext()) {
    if (!equalsNoCase(columns->Text("TABLE_NAME"), table)) continue;
    if (!equalsNoCase(columns->Text("COLUMN_NAME"), field)) continue;
    std::string lines;
    for (size_t i = 0; i < columns->Fields().size(); ++i) {
      lines += (i > 0 ? "\n" : "") + columns->Fields()[i].name + " :" +
               columns->Text(static_cast<int>(i));
    }
    return lines;
  }
  return {};
}

}  // namespace lodex
