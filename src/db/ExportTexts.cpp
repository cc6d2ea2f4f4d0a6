#include "db/ExportTexts.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <utility>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Connection.h"
#include "db/Export.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kForbiddenInFiles = "\\/:*?\"<>|.#[]!`";
constexpr int kLongestAccessText = 255;
constexpr size_t kMostAccessFields = 255;

std::unique_ptr<Recordset> recordsOf(Connection& connection, const std::string& table) {
  return connection.OpenRecordset("SELECT * FROM " + quoteName(table), CursorKind::ForwardOnly);
}

std::string quotedCsv(const std::string& text) {
  return "\"" + replaceAll(text, "\"", "\"\"") + "\"";
}

// A value as Access reads it from a text, exact to the last digit.
std::string csvText(const FieldValue& value, const FieldType& type) {
  if (isNull(value)) return {};
  if (type.code == FieldCode::Boolean) return fieldNumber(value) != 0 ? "True" : "False";
  if (const auto* number = std::get_if<double>(&value)) {
    if (type.code == FieldCode::Single) return fmt::format("{}", static_cast<float>(*number));
    return exactNumberText(*number);
  }
  if (!std::holds_alternative<std::string>(value)) return fieldText(value);
  const std::string& text = std::get<std::string>(value);
  if (type.isNumber()) return text;
  if (type.code == FieldCode::Date) return text.size() == 10 ? text + " 00:00:00" : text;
  return quotedCsv(text);
}

void writeCsv(Recordset& records, std::ostream& out) {
  const std::vector<Field>& fields = records.Fields();
  for (size_t i = 0; i < fields.size(); ++i) out << (i ? "," : "") << quotedCsv(fields[i].name);
  out << "\r\n";
  for (; !records.Eof(); records.MoveNext()) {
    for (size_t i = 0; i < fields.size(); ++i) {
      out << (i ? "," : "") << csvText(records.Value(static_cast<int>(i)), fields[i].type);
    }
    out << "\r\n";
  }
}

// How the driver for texts of the reading program names a type.
std::string schemaTypeName(const FieldType& type) {
  switch (type.code) {
    case FieldCode::SmallInt:
      return "Short";
    case FieldCode::Integer:
      return "Long";
    case FieldCode::Single:
      return "Single";
    case FieldCode::Double:
    case FieldCode::Numeric:
      return "Double";
    case FieldCode::Currency:
      return "Currency";
    case FieldCode::Date:
      return "DateTime";
    case FieldCode::Boolean:
      return "Bit";
    case FieldCode::Byte:
      return "Byte";
    case FieldCode::Memo:
    case FieldCode::Binary:
      return "Memo";
    case FieldCode::Text:
    case FieldCode::VarText:
      break;
  }
  if (type.size <= 0 || type.size > kLongestAccessText) return "Memo";
  return fmt::format("Text Width {}", type.size);
}

std::string onOneLine(std::string text) {
  for (char& c : text) c = c == '\r' || c == '\n' ? ' ' : c;
  return text;
}

void writeSchema(const std::vector<Field>& fields, const std::string& file, std::ostream& out) {
  out << "[" << file << "]\r\nColNameHeader=True\r\nFormat=CSVDelimited\r\nCharacterSet=65001\r\n"
      << "DecimalSymbol=.\r\nCurrencyDecimalSymbol=.\r\nDateTimeFormat=yyyy-mm-dd hh:nn:ss\r\n"
      << "MaxScanRows=0\r\n";
  for (size_t i = 0; i < fields.size(); ++i) {
    out << "Col" << i + 1 << "=" << quotedCsv(onOneLine(fields[i].name)) << " "
        << schemaTypeName(fields[i].type) << "\r\n";
  }
  out << "\r\n";
}

// --- The script ---

// Fields by table and name.
using FieldSet = std::set<std::pair<std::string, std::string>>;

FieldSet indexedFields(Connection& connection) {
  FieldSet fields;
  const auto rows = connection.OpenSchema(SchemaKind::Indexes);
  for (; !rows->Eof(); rows->MoveNext()) {
    fields.emplace(rows->Text("TABLE_NAME"), rows->Text("COLUMN_NAME"));
  }
  return fields;
}

// A column as a statement declares it. Bytes come as texts, and so does what is too long for a text
// field, unless it is in an index, which takes none of these; a decimal of unknown size would lose
// its fraction.
std::string columnSql(Recordset& columns, const FieldSet& indexed) {
  const auto number = [&](const char* field) {
    return static_cast<int>(fieldNumber(columns.Value(field)));
  };
  FieldType type{static_cast<FieldCode>(number("DATA_TYPE")), number("CHARACTER_MAXIMUM_LENGTH"),
                 number("NUMERIC_PRECISION"), number("NUMERIC_SCALE")};
  if (type.code == FieldCode::Binary || (type.isText() && type.size > kLongestAccessText)) {
    type = {FieldCode::Memo, 0};
  }
  if (type.code == FieldCode::Memo &&
      indexed.contains({columns.Text("TABLE_NAME"), columns.Text("COLUMN_NAME")})) {
    type = {FieldCode::VarText, kLongestAccessText};
  }
  if (type.code == FieldCode::Numeric && type.precision == 0) type = {FieldCode::Double, 0};
  const std::string name = quoteName(columns.Text("COLUMN_NAME"));
  if (number("AUTOINCREMENT") != 0) return name + " COUNTER";
  return name + " " + jetTypeName(type) + (number("IS_NULLABLE") == 0 ? " NOT NULL" : "");
}

void writeTables(Connection& connection, const std::set<std::string>& tables, std::ostream& out) {
  const auto columns = connection.OpenSchema(SchemaKind::Columns);
  const FieldSet indexed = indexedFields(connection);
  std::string open;
  for (; !columns->Eof(); columns->MoveNext()) {
    const std::string table = columns->Text("TABLE_NAME");
    if (!tables.contains(table)) continue;
    if (table != open) {
      out << (open.empty() ? "" : ");\r\n") << "CREATE TABLE " << quoteName(table) << " (";
    } else {
      out << ", ";
    }
    open = table;
    out << columnSql(*columns, indexed);
  }
  if (!open.empty()) out << ");\r\n";
}

// The indexes of all tables; those of a primary key carry its words.
void writeIndexes(Connection& connection, std::ostream& out) {
  std::string open;
  std::string end;
  const auto rows = connection.OpenSchema(SchemaKind::Indexes);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string table = quoteName(rows->Text("TABLE_NAME"));
    const std::string name = quoteName(rows->Text("INDEX_NAME"));
    const std::string column = quoteName(rows->Text("COLUMN_NAME"));
    if (name + table == open) {
      out << ", " << column;
      continue;
    }
    out << end << "CREATE " << (rows->Text("UNIQUE") == "True" ? "UNIQUE " : "") << "INDEX " << name
        << " ON " << table << " (" << column;
    end = rows->Text("PRIMARY_KEY") == "True" ? ") WITH PRIMARY;\r\n" : ");\r\n";
    open = name + table;
  }
  out << end;
}

struct Relationship {
  std::string table, name, parent;
  std::vector<std::string> columns, parentColumns;
};

// Those between exported tables.
std::vector<Relationship> relationships(Connection& connection,
                                        const std::set<std::string>& tables) {
  std::vector<Relationship> links;
  const auto rows = connection.OpenSchema(SchemaKind::ForeignKeys);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string table = rows->Text("FK_TABLE_NAME");
    const std::string name = rows->Text("FK_NAME");
    if (links.empty() || links.back().table != table || links.back().name != name) {
      links.push_back({table, name, rows->Text("PK_TABLE_NAME"), {}, {}});
    }
    links.back().columns.push_back(rows->Text("FK_COLUMN_NAME"));
    // Without its name the primary key is meant.
    const std::string parentColumn = rows->Text("PK_COLUMN_NAME");
    if (!parentColumn.empty()) links.back().parentColumns.push_back(parentColumn);
  }
  std::erase_if(links, [&](const Relationship& link) {
    return std::none_of(tables.begin(), tables.end(),
                        [&](const std::string& table) { return equalsNoCase(table, link.parent); });
  });
  return links;
}

std::vector<std::string> primaryKey(Connection& connection, const std::string& table) {
  std::vector<std::string> columns;
  const auto rows = connection.OpenSchema(SchemaKind::Indexes);
  for (; !rows->Eof(); rows->MoveNext()) {
    const bool isKey = rows->Text("PRIMARY_KEY") == "True";
    if (isKey && equalsNoCase(rows->Text("TABLE_NAME"), table)) {
      columns.push_back(rows->Text("COLUMN_NAME"));
    }
  }
  return columns;
}

// Names the records that a relationship of Access would refuse: those whose fields are filled but
// refer to nothing.
void findOrphans(Connection& connection, const Relationship& link, Findings& found) {
  const std::vector<std::string> parents =
      link.parentColumns.empty() ? primaryKey(connection, link.parent) : link.parentColumns;
  if (parents.size() != link.columns.size()) return;
  std::string fields, matches, filled;
  for (size_t i = 0; i < parents.size(); ++i) {
    const std::string field = "[child]." + quoteName(link.columns[i]);
    fields += (i ? ", " : "") + field;
    matches += (i ? " AND " : "") + field + " = [parent]." + quoteName(parents[i]);
    filled += field + " Is Not Null AND ";
  }
  const auto orphans = connection.OpenRecordset(
      "SELECT " + fields + " FROM " + quoteName(link.table) + " AS [child] LEFT JOIN " +
          quoteName(link.parent) + " AS [parent] ON " + matches + " WHERE " + filled + "[parent]." +
          quoteName(parents.front()) + " Is Null",
      CursorKind::ForwardOnly);
  for (; !orphans->Eof(); orphans->MoveNext()) {
    std::string record;
    for (int i = 0; i < static_cast<int>(parents.size()); ++i) {
      record += (i ? ", " : "") + orphans->Text(i);
    }
    found.warn("A record refers to no record of table " + link.parent +
                   ", so that Access will refuse the relationship " + link.name,
               {.sheet = link.table, .record = record});
  }
}

std::string quotedList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + quoteName(name);
  return list;
}

void writeRelationships(Connection& connection, const std::set<std::string>& tables,
                        std::ostream& out, Findings& found) {
  for (const Relationship& link : relationships(connection, tables)) {
    findOrphans(connection, link, found);
    out << "ALTER TABLE " << quoteName(link.table) << " ADD CONSTRAINT " << quoteName(link.name)
        << " FOREIGN KEY (" << quotedList(link.columns) << ") REFERENCES " << quoteName(link.parent)
        << (link.parentColumns.empty() ? "" : " (" + quotedList(link.parentColumns) + ")")
        << ";\r\n";
  }
}

// A text file of the folder, which must come out whole.
class TextFile {
 public:
  explicit TextFile(const fs::path& path) : path_(path), file_(path, std::ios::binary) {}
  std::ostream& stream() { return file_; }
  void close() {
    file_.close();
    if (!file_) throw FileError(pathText(path_) + " cannot be written");
  }

 private:
  fs::path path_;
  std::ofstream file_;
};

}  // namespace

void exportTexts(Connection& connection, const std::vector<std::string>& tables,
                 std::string_view path, Findings& found) {
  const fs::path folder = nativePath(path);
  std::error_code failed;
  fs::create_directories(folder, failed);
  if (failed) {
    throw FileError("Folder " + pathText(folder) + " cannot be made: " + failed.message());
  }
  const std::vector<std::string> names = exportNames(tables, kForbiddenInFiles, 100);
  TextFile schema(folder / "schema.ini");
  TextFile script(folder / "database.sql");
  const std::set<std::string> known(tables.begin(), tables.end());
  writeTables(connection, known, script.stream());
  // Keys come before the records, so that Access checks these; relationships come after them.
  writeIndexes(connection, script.stream());
  for (size_t i = 0; i < tables.size(); ++i) {
    const auto records = recordsOf(connection, tables[i]);
    if (records->Fields().empty()) continue;
    if (records->Fields().size() > kMostAccessFields) {
      found.warn("The table has more than 255 fields, which Access cannot take",
                 {.sheet = tables[i]});
    }
    writeSchema(records->Fields(), names[i] + ".csv", schema.stream());
    TextFile csv(folder / nativePath(names[i] + ".csv"));
    writeCsv(*records, csv.stream());
    csv.close();
    script.stream() << "INSERT INTO " << quoteName(tables[i])
                    << " SELECT * FROM [Text;HDR=Yes;FMT=Delimited;CharacterSet=65001;DATABASE=.].["
                    << names[i] << "#csv];\r\n";
  }
  writeRelationships(connection, known, script.stream(), found);
  schema.close();
  script.close();
}

}  // namespace lodex
