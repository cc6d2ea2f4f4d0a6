#include "db/Export.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Limits.h"
#include "basic/Text.h"
#include "db/Connection.h"
#include "db/Dates.h"
#include "db/ExportTexts.h"
#include "db/FieldValues.h"
#include "db/Recordset.h"
#include "worksheet/Worksheet.h"

namespace lodex {

namespace {

constexpr std::string_view kForbiddenInSheets = "\\/:*?[]'";
// What a cell of a workbook holds, in UTF-16 units.
constexpr size_t kLongestCell = 32767;
constexpr size_t kLongestAccessName = 64;

std::vector<std::string> tableNames(Connection& connection) {
  std::vector<std::string> names;
  const auto tables = connection.OpenSchema(SchemaKind::Tables);
  for (; !tables->Eof(); tables->MoveNext()) {
    if (tables->Text("TABLE_TYPE") == "TABLE") names.push_back(tables->Text("TABLE_NAME"));
  }
  return names;
}

// The number under which a workbook knows a date; nothing for one before its calendar.
std::optional<double> workbookDate(const DateTime& date) {
  const std::int64_t day = dayNumber(date);
  constexpr std::int64_t kFirstSureDay = 61;  // 1900-03-01: before it programs differ
  if (day < kFirstSureDay) return std::nullopt;
  const double seconds = date.hour * 3600 + date.minute * 60 + date.second;
  return static_cast<double>(day) + seconds / 86400;
}

// A cell's number has no more digits than a double.
bool fitsCell(const FieldValue& value) {
  constexpr std::int64_t kMost = std::int64_t{1} << 53;
  const auto* whole = std::get_if<std::int64_t>(&value);
  return !whole || (*whole >= -kMost && *whole <= kMost);
}

class WorkbookExport {
 public:
  WorkbookExport(Connection& connection, Findings& found)
      : connection_(connection), found_(found) {}

  void run(const std::vector<std::string>& tables, std::string_view out) {
    const std::vector<std::string> names = exportNames(tables, kForbiddenInSheets, 31);
    if (!tables.empty()) book_.NumSheets(static_cast<int>(tables.size()));
    for (size_t i = 0; i < tables.size(); ++i) {
      const int sheet = static_cast<int>(i) + 1;
      book_.SheetName(sheet, names[i]);
      fill(sheet, tables[i]);
    }
    book_.Sheet(1);
    book_.Write(out, FileType::Xlsx);
  }

 private:
  void fill(int sheet, const std::string& table) {
    const auto records =
        connection_.OpenRecordset("SELECT * FROM " + quoteName(table), CursorKind::ForwardOnly);
    const std::vector<Field>& fields = records->Fields();
    const int count = static_cast<int>(fields.size());
    if (count > maxColumns) throw Error("Table " + table + " has more fields than a sheet can");
    book_.Sheet(sheet);
    book_.FixedRows(1);
    for (int i = 0; i < count; ++i) {
      book_.ValueSRC(sheet, 1, i + 1, Value::text(fields[static_cast<size_t>(i)].name));
    }
    for (int row = 2; !records->Eof(); records->MoveNext(), ++row) {
      if (row > maxRows) throw Error("Table " + table + " has more records than a sheet has rows");
      for (int i = 0; i < count; ++i) {
        setCell(sheet, row, i + 1, records->Value(i), fields[static_cast<size_t>(i)].type);
      }
    }
  }

  void setCell(int sheet, int row, int column, const FieldValue& value, const FieldType& type) {
    if (isNull(value)) return;
    if (type.code == FieldCode::Boolean) {
      return book_.ValueSRC(sheet, row, column, Value::boolean(fieldNumber(value) != 0));
    }
    const auto* text = std::get_if<std::string>(&value);
    if (!text && !fitsCell(value)) {
      return book_.ValueSRC(sheet, row, column, Value::text(fieldText(value)));
    }
    if (!text) {
      const double number = fieldNumber(value);
      return book_.NumberSRC(sheet, row, column,
                             type.code == FieldCode::Single ? enteredSingle(number) : number);
    }
    if (type.code == FieldCode::Date && setDate(sheet, row, column, *text)) return;
    book_.ValueSRC(sheet, row, column,
                   Value::text(cellText(
                       *text, {.sheet = book_.SheetName(sheet), .row = row, .column = column})));
  }

  bool setDate(int sheet, int row, int column, const std::string& text) {
    const auto date = parseDate(text);
    const auto number = date ? workbookDate(*date) : std::nullopt;
    if (!number) return false;
    book_.NumberSRC(sheet, row, column, *number);
    CellFormat format;
    format.numberFormat =
        *number == static_cast<double>(dayNumber(*date)) ? "yyyy-mm-dd" : "yyyy-mm-dd hh:mm:ss";
    book_.setFormat(sheet, row, column, format);
    return true;
  }

  std::string cellText(const std::string& text, const Place& place) {
    if (text.size() <= kLongestCell) return text;
    std::u16string units = toUtf16(text);
    if (units.size() <= kLongestCell) return text;
    found_.error("A text is longer than a cell can be and was cut; a folder takes it whole", place);
    const bool halved = units[kLongestCell - 1] >= 0xD800 && units[kLongestCell - 1] < 0xDC00;
    return fromUtf16(units.substr(0, kLongestCell - (halved ? 1 : 0)));
  }

  Connection& connection_;
  Worksheet book_;
  Findings& found_;
};

bool isAccessName(const std::string& name) {
  return name.find_first_of(".![]`") == std::string::npos && !name.starts_with(' ') &&
         characterCount(name) <= kLongestAccessName;
}

void findAwkwardNames(Connection& connection, Findings& found) {
  std::string last;
  const auto columns = connection.OpenSchema(SchemaKind::Columns);
  for (; !columns->Eof(); columns->MoveNext()) {
    const Place table{.sheet = columns->Text("TABLE_NAME")};
    const std::string name = columns->Text("COLUMN_NAME");
    if (table.sheet != last && !isAccessName(table.sheet)) {
      found.warn("Access cannot take the name of the table", table);
    }
    last = table.sheet;
    if (!isAccessName(name)) found.warn("Access cannot take the name of field " + name, table);
  }
}

// A folder called "results.xls" is not what somebody wants who gives that name.
void requireFolderName(std::string_view out) {
  std::error_code none;
  const std::filesystem::path native = nativePath(out);
  if (std::filesystem::is_directory(native, none)) return;
  constexpr std::array<std::string_view, 16> kFileEndings{
      "xls", "xlsm", "xlsb", "ods", "csv", "accdb",  "txt",     "tsv",
      "mdb", "db",   "json", "xml", "zip", "sqlite", "sqlite3", "sql"};
  const std::string ending = extensionOf(out);
  const bool isFile =
      std::filesystem::exists(native, none) ||
      std::find(kFileEndings.begin(), kFileEndings.end(), ending) != kFileEndings.end();
  if (!isFile) return;
  throw FileError(std::string(out) +
                  " is the name of a file: give that of a folder, or of a workbook (.xlsx)");
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

Findings exportDatabase(Connection& connection, std::string_view out) {
  const std::vector<std::string> tables = tableNames(connection);
  Findings found;
  if (tables.empty()) found.warn("The database has no tables");
  if (extensionOf(out) == "xlsx") {
    WorkbookExport(connection, found).run(tables, out);
    return found;
  }
  requireFolderName(out);
  exportTexts(connection, tables, out, found);
  findAwkwardNames(connection, found);
  return found;
}

}  // namespace lodex
