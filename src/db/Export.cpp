#include "db/Export.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Connection.h"
#include "db/Recordset.h"
#include "worksheet/Limits.h"
#include "worksheet/Worksheet.h"

namespace lodex {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kForbiddenInFiles = "\\/:*?\"<>|.#[]!`";
constexpr std::string_view kForbiddenInSheets = "\\/:*?[]'";

std::vector<std::string> tableNames(Connection& connection) {
  std::vector<std::string> names;
  const auto tables = connection.OpenSchema(SchemaKind::Tables);
  for (; !tables->Eof(); tables->MoveNext()) {
    if (tables->Text("TABLE_TYPE") == "TABLE") names.push_back(tables->Text("TABLE_NAME"));
  }
  return names;
}

std::unique_ptr<Recordset> recordsOf(Connection& connection, const std::string& table) {
  return connection.OpenRecordset("SELECT * FROM " + quoteName(table), CursorKind::ForwardOnly);
}

// A name between brackets, as Access takes it.
std::string bracketed(const std::string& name) {
  return "[" + name + "]";
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

struct TypeNames {
  std::string schema;  // as schema.ini names it
  std::string sql;     // as the Jet dialect does
};

TypeNames namesOf(const FieldType& type) {
  switch (type.code) {
    case FieldCode::SmallInt:
      return {"Short", "SHORT"};
    case FieldCode::Integer:
      return {"Long", "LONG"};
    case FieldCode::Single:
      return {"Single", "SINGLE"};
    case FieldCode::Double:
      return {"Double", "DOUBLE"};
    case FieldCode::Currency:
      return {"Currency", "CURRENCY"};
    case FieldCode::Numeric:
      return {"Double", "DOUBLE"};
    case FieldCode::Date:
      return {"DateTime", "DATETIME"};
    case FieldCode::Boolean:
      return {"Bit", "BIT"};
    case FieldCode::Byte:
      return {"Byte", "BYTE"};
    case FieldCode::Memo:
    case FieldCode::Binary:
      return {"Memo", "MEMO"};
    case FieldCode::Text:
    case FieldCode::VarText:
      break;
  }
  if (type.size <= 0 || type.size > 255) return {"Memo", "MEMO"};
  return {fmt::format("Text Width {}", type.size), fmt::format("TEXT({})", type.size)};
}

void writeSchema(const std::vector<Field>& fields, const std::string& file, std::ostream& out) {
  out << "[" << file << "]\r\nColNameHeader=True\r\nFormat=CSVDelimited\r\nCharacterSet=65001\r\n"
      << "DecimalSymbol=.\r\nDateTimeFormat=yyyy-mm-dd hh:nn:ss\r\nMaxScanRows=0\r\n";
  for (size_t i = 0; i < fields.size(); ++i) {
    out << "Col" << i + 1 << "=" << quotedCsv(fields[i].name) << " "
        << namesOf(fields[i].type).schema << "\r\n";
  }
  out << "\r\n";
}

void writeCreation(const std::string& table, const std::vector<Field>& fields, std::ostream& out) {
  out << "CREATE TABLE " << bracketed(table) << " (";
  for (size_t i = 0; i < fields.size(); ++i) {
    out << (i ? ", " : "") << bracketed(fields[i].name) << " " << namesOf(fields[i].type).sql;
  }
  out << ");\r\n";
}

// The indexes of all tables; those of a primary key carry its words.
void writeIndexes(Connection& connection, std::ostream& out) {
  struct Index {
    std::string table, name, columns;
    bool unique, primary;
  };
  std::vector<Index> indexes;
  const auto rows = connection.OpenSchema(SchemaKind::Indexes);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string table = rows->Text("TABLE_NAME");
    const std::string name = rows->Text("INDEX_NAME");
    const std::string column = bracketed(rows->Text("COLUMN_NAME"));
    if (!indexes.empty() && indexes.back().table == table && indexes.back().name == name) {
      indexes.back().columns += ", " + column;
    } else {
      indexes.push_back({table, name, column, rows->Text("UNIQUE") == "True",
                         rows->Text("PRIMARY_KEY") == "True"});
    }
  }
  for (const Index& index : indexes) {
    std::string name = index.name;
    if (name.starts_with(index.table + "|")) name = name.substr(index.table.size() + 1);
    out << "CREATE " << (index.unique ? "UNIQUE " : "") << "INDEX " << bracketed(name) << " ON "
        << bracketed(index.table) << " (" << index.columns << ")"
        << (index.primary ? " WITH PRIMARY" : "") << ";\r\n";
  }
}

void writeRelationships(Connection& connection, const std::set<std::string>& tables,
                        std::ostream& out) {
  struct Link {
    std::string table, columns, parent, parentColumns;
  };
  std::unique_ptr<Recordset> rows;
  try {
    rows = connection.OpenRecordset("SELECT * FROM [MSysRelationships]");
  } catch (const Error&) {
    return;  // only databases that came from Access keep them
  }
  rows->Sort("szRelationship, icolumn");
  std::map<std::string, Link> links;
  for (; !rows->Eof(); rows->MoveNext()) {
    Link& link = links[rows->Text("szRelationship")];
    const bool isFirst = link.table.empty();
    link.table = rows->Text("szObject");
    link.parent = rows->Text("szReferencedObject");
    link.columns += (isFirst ? "" : ", ") + bracketed(rows->Text("szColumn"));
    link.parentColumns += (isFirst ? "" : ", ") + bracketed(rows->Text("szReferencedColumn"));
  }
  for (const auto& [name, link] : links) {
    if (!tables.contains(link.table) || !tables.contains(link.parent)) continue;
    out << "ALTER TABLE " << bracketed(link.table) << " ADD CONSTRAINT " << bracketed(name)
        << " FOREIGN KEY (" << link.columns << ") REFERENCES " << bracketed(link.parent) << " ("
        << link.parentColumns << ");\r\n";
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

void exportTexts(Connection& connection, const std::vector<std::string>& tables,
                 const fs::path& folder) {
  std::error_code failed;
  fs::create_directories(folder, failed);
  if (failed)
    throw FileError("Folder " + pathText(folder) + " cannot be made: " + failed.message());
  const std::vector<std::string> names = exportNames(tables, kForbiddenInFiles, 100);
  TextFile schema(folder / "schema.ini");
  TextFile script(folder / "database.sql");
  std::string fillings;
  for (size_t i = 0; i < tables.size(); ++i) {
    const auto records = recordsOf(connection, tables[i]);
    writeSchema(records->Fields(), names[i] + ".csv", schema.stream());
    writeCreation(tables[i], records->Fields(), script.stream());
    fillings += "INSERT INTO " + bracketed(tables[i]) +
                " SELECT * FROM [Text;HDR=Yes;FMT=Delimited;CharacterSet=65001;DATABASE=" +
                pathText(fs::absolute(folder)) + "].[" + names[i] + "#csv];\r\n";
    TextFile csv(folder / nativePath(names[i] + ".csv"));
    writeCsv(*records, csv.stream());
    csv.close();
  }
  // Keys come before the records, so that Access checks these, relationships behind them.
  writeIndexes(connection, script.stream());
  script.stream() << fillings;
  writeRelationships(connection, {tables.begin(), tables.end()}, script.stream());
  schema.close();
  script.close();
}

void fillSheet(Worksheet& book, int sheet, Recordset& records, const std::string& table) {
  const std::vector<Field>& fields = records.Fields();
  for (size_t i = 0; i < fields.size(); ++i) {
    book.TextSRC(sheet, 1, static_cast<int>(i) + 1, fields[i].name);
  }
  for (int row = 2; !records.Eof(); records.MoveNext(), ++row) {
    if (row > maxRows) throw Error("Table " + table + " has more records than a sheet has rows");
    for (int i = 0; i < static_cast<int>(fields.size()); ++i) {
      const FieldValue& value = records.Value(i);
      if (isNull(value)) continue;
      const bool isNumber = !std::holds_alternative<std::string>(value);
      if (isNumber && fields[static_cast<size_t>(i)].type.code != FieldCode::Boolean) {
        book.NumberSRC(sheet, row, i + 1, fieldNumber(value));
      } else {
        book.TextSRC(sheet, row, i + 1, records.Text(i));
      }
    }
  }
}

void exportWorkbook(Connection& connection, const std::vector<std::string>& tables,
                    std::string_view out) {
  const std::vector<std::string> names = exportNames(tables, kForbiddenInSheets, 31);
  Worksheet book;
  if (!tables.empty()) book.NumSheets(static_cast<int>(tables.size()));
  for (size_t i = 0; i < tables.size(); ++i) {
    const int sheet = static_cast<int>(i) + 1;
    book.SheetName(sheet, names[i]);
    fillSheet(book, sheet, *recordsOf(connection, tables[i]), tables[i]);
  }
  book.Write(out, FileType::Xlsx);
}

}  // namespace

std::vector<std::string> exportNames(const std::vector<std::string>& tables,
                                     std::string_view forbidden, size_t most) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const std::string& table : tables) {
    std::u32string plain;
    for (const char32_t letter : decodeUtf8(table)) {
      const bool isFine =
          letter >= 32 &&
          (letter > 127 || forbidden.find(static_cast<char>(letter)) == std::string_view::npos);
      plain += isFine ? letter : U'_';
    }
    std::string name = encodeUtf8(plain.substr(0, most));
    for (int number = 2; !taken.insert(toUpper(name)).second; ++number) {
      const std::string mark = "_" + std::to_string(number);
      name = encodeUtf8(plain.substr(0, most - mark.size())) + mark;
    }
    names.push_back(name);
  }
  return names;
}

std::vector<std::string> exportDatabase(Connection& connection, std::string_view out) {
  const std::vector<std::string> tables = tableNames(connection);
  std::vector<std::string> remarks;
  if (tables.empty()) remarks.push_back("The database has no tables");
  if (extensionOf(out) == "xlsx") {
    exportWorkbook(connection, tables, out);
    return remarks;
  }
  exportTexts(connection, tables, nativePath(out));
  for (const std::string& table : tables) {
    if (table.find_first_of("]") != std::string::npos) {
      remarks.push_back("Table " + table + " has a name that Access cannot take");
    }
  }
  return remarks;
}

}  // namespace lodex
