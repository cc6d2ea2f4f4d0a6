#include "db/drivers/jet/AccessCopy.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/drivers/jet/AccessProperties.h"
#include "db/drivers/jet/AccessQueries.h"
#include "db/drivers/jet/AccessRows.h"
#include "db/drivers/jet/AccessTableCopy.h"
#include "db/drivers/jet/AccessTarget.h"

namespace lodex {

namespace {

constexpr std::uint32_t kCatalogPage = 2;
// Bits of the flags of a catalogue entry that mark what Access keeps for itself.
constexpr std::uint32_t kSystemFlags = 0x80000002;
enum ObjectType { kTableObject = 1, kOdbcLink = 4, kQueryObject = 5, kLink = 6 };

// Named fields of the records of a table of Access's own; numbers are 0 and texts "" where absent.
class SystemTable {
 public:
  SystemTable(const AccessFile& file, std::uint32_t page, const std::string& name)
      : table_(readAccessTable(file, page, name)), rows_(file, table_) {}
  bool next() { return rows_.next(); }
  const AccessTable& table() const { return table_; }
  const std::vector<AccessValue>& values() const { return rows_.values(); }
  /// Records, or whole pages of them, that were left out because they are damaged.
  int damaged() const { return rows_.damaged() + rows_.damagedPages(); }
  std::int64_t number(std::string_view column) const {
    const AccessValue* value = find(column);
    return value && value->kind == AccessValue::Whole ? value->whole : 0;
  }
  std::string text(std::string_view column) const {
    const AccessValue* value = find(column);
    const bool is =
        value && (value->kind == AccessValue::Text || value->kind == AccessValue::Binary);
    return is ? value->bytes : "";
  }

 private:
  const AccessValue* find(std::string_view column) const {
    const int place = table_.find(column);
    return place < 0 ? nullptr : &rows_.values()[static_cast<size_t>(place)];
  }
  AccessTable table_;
  AccessRows rows_;
};

struct Object {
  std::string name;
  std::int64_t type = 0;
  std::uint32_t id = 0;
  bool isSystem = false;
  std::string properties = {};  // of a table, as stored
  std::string file = {};        // of a linked table, as Access names it
  std::uint32_t page() const { return id & 0xFFFFFF; }
};

std::vector<Object> readCatalog(const AccessFile& file, AccessCopyReport& report) {
  SystemTable catalog(file, kCatalogPage, "MSysObjects");
  for (const auto* column : {"Id", "Name", "Type", "Flags"}) {
    if (catalog.table().find(column) < 0) throw FileError("its list of tables is damaged");
  }
  std::vector<Object> objects;
  while (catalog.next()) {
    Object object;
    object.name = catalog.text("Name");
    object.type = catalog.number("Type");
    object.id = static_cast<std::uint32_t>(catalog.number("Id"));
    object.isSystem = (static_cast<std::uint32_t>(catalog.number("Flags")) & kSystemFlags) != 0;
    if (object.type == kTableObject) object.properties = catalog.text("LvProp");
    if (object.type == kLink) object.file = catalog.text("Database");
    objects.push_back(std::move(object));
  }
  // The list holds itself too.
  const bool listsItself = std::any_of(objects.begin(), objects.end(), [](const Object& object) {
    return object.type == kTableObject && object.page() == kCatalogPage;
  });
  if (!listsItself) throw FileError("its list of tables is damaged");
  if (catalog.damaged() > 0) {
    report.warning("The list of tables is damaged at " + std::to_string(catalog.damaged()) +
                   " places: tables may be missing");
  }
  return objects;
}

std::vector<Object>::const_iterator tableNamed(const std::vector<Object>& objects,
                                               std::string_view name) {
  return std::find_if(objects.begin(), objects.end(), [&](const Object& object) {
    return object.type == kTableObject && equalsNoCase(object.name, name);
  });
}

// Which table holds the values of a field that takes several, by the field's table and its name.
using FlatTables = std::map<std::pair<std::uint32_t, std::string>, std::uint32_t>;

FlatTables readFlatTables(const AccessFile& file, const std::vector<Object>& objects) {
  FlatTables result;
  const auto list = tableNamed(objects, "MSysComplexColumns");
  if (list == objects.end()) return result;
  SystemTable source(file, list->page(), list->name);
  while (source.next()) {
    const auto owner = static_cast<std::uint32_t>(source.number("ConceptualTableID"));
    result[{owner, toUpper(source.text("ColumnName"))}] =
        static_cast<std::uint32_t>(source.number("FlatTableID"));
  }
  return result;
}

// Copies the tables of a file, one after the other.
class Tables {
 public:
  Tables(const AccessFile& file, const std::vector<Object>& objects, AccessTarget& target,
         AccessCopyReport& report)
      : file_(file), target_(target), report_(report) {
    for (const Object& object : objects) names_.insert(toUpper(object.name));
    try {
      flatTables_ = readFlatTables(file, objects);
    } catch (const FileError&) {
      report.warning("Fields with several values cannot be followed");
    }
  }

  void copy(const Object& object) {
    try {
      const AccessTable table = readAccessTable(file_, object.page(), nameInCopy(object.name));
      if (table.columns.empty()) {
        report_.warning("Table " + object.name + " has no fields and was left out");
        return;
      }
      copyAccessTable(file_, table, propertiesOf(object), target_, report_);
      for (const AccessColumn& column : table.columns) {
        if (column.type == AccessType::Complex) copySeveralValues(object, column.name);
      }
    } catch (const FileError& error) {
      throw FileError("table " + object.name + ": " + error.what());
    }
  }

 private:
  // Some names are the engine's own.
  std::string nameInCopy(const std::string& name) {
    if (!startsWithNoCase(name, "sqlite_")) return name;
    const std::string other = freeName("_" + name);
    report_.warning("Table " + name + " is called " + other + " here");
    return other;
  }

  std::string freeName(std::string name) {
    while (!names_.insert(toUpper(name)).second) name += "_";
    return name;
  }

  std::map<std::string, AccessProperties> propertiesOf(const Object& object) {
    const std::string& stored = object.properties;
    try {
      return readAccessProperties(
          file_, {reinterpret_cast<const std::uint8_t*>(stored.data()), stored.size()});
    } catch (const FileError&) {
      report_.warning("Table " + object.name + ": descriptions, defaults and rules are damaged");
      return {};
    }
  }

  // The field itself holds a number for which the values stand in a table of their own.
  void copySeveralValues(const Object& object, const std::string& field) {
    const std::string what = "Table " + object.name + ": the values of field " + field;
    const auto flat = flatTables_.find({object.id, toUpper(field)});
    if (flat == flatTables_.end()) {
      report_.warning(what + ", which holds several, were not found");
      return;
    }
    const std::string name = freeName(object.name + "_" + field);
    try {
      copyAccessTable(file_, readAccessTable(file_, flat->second & 0xFFFFFF, name), {}, target_,
                      report_);
      report_.warning(what + ", which holds several, stand in table " + name);
    } catch (const FileError& error) {
      target_.tryRun("DROP TABLE IF EXISTS " + targetQuoted(name));
      report_.warning(what + " cannot be read: " + error.what());
    }
  }

  const AccessFile& file_;
  AccessTarget& target_;
  AccessCopyReport& report_;
  FlatTables flatTables_;
  std::set<std::string> names_;
};

// The relationships go into a table of the same form.
void copyRelationships(const AccessFile& file, const Object& object, AccessTarget& target,
                       AccessCopyReport& report) {
  AccessTable table = readAccessTable(file, object.page(), std::string(kRelationshipsTable));
  table.indexes.clear();
  if (!table.columns.empty()) copyAccessTable(file, table, {}, target, report);
}

void copyQueries(const AccessFile& file, const std::vector<Object>& objects, const Object& table,
                 AccessTarget& target) {
  std::map<std::uint32_t, std::vector<AccessQueryPart>> parts;
  SystemTable source(file, table.page(), table.name);
  while (source.next()) {
    AccessQueryPart part;
    part.attribute = static_cast<int>(source.number("Attribute"));
    part.flag = static_cast<int>(source.number("Flag"));
    part.expression = source.text("Expression");
    part.name1 = source.text("Name1");
    part.name2 = source.text("Name2");
    part.order = source.text("Order");
    parts[static_cast<std::uint32_t>(source.number("ObjectId"))].push_back(std::move(part));
  }
  AccessInsertion insertion(target, kQueriesTable, 3);
  for (const Object& object : objects) {
    if (object.type != kQueryObject || object.name.starts_with("~")) continue;
    const AccessQuery query = buildAccessQuery(object.name, std::move(parts[object.id]));
    insertion.add({textValue(query.name), textValue(query.sql), textValue(query.obstacle)});
  }
}

// Relationships and queries are worth less than the tables: the copy goes on without them.
void copySystemTable(const AccessFile& file, const std::vector<Object>& objects,
                     const Object& table, AccessTarget& target, AccessCopyReport& report) {
  try {
    if (table.name == "MSysRelationships") copyRelationships(file, table, target, report);
    if (table.name == "MSysQueries") copyQueries(file, objects, table, target);
  } catch (const FileError& error) {
    report.warning("The relationships or saved queries cannot be read: " +
                   std::string(error.what()));
  }
}

}  // namespace

void copyAccessFile(const std::string& source, const std::string& target,
                    AccessCopyReport& report) {
  const AccessFile file(source);
  const std::vector<Object> objects = readCatalog(file, report);
  report.progress();
  if (file.endsWithinPage()) {
    report.warning("The Access file does not end with a whole page: it may have been cut short");
  }
  AccessTarget copy(target, report);
  copy.run("CREATE TABLE " + targetQuoted(kQueriesTable) + " (name TEXT, sql TEXT, obstacle TEXT)");
  copy.run(fieldsTableSql());
  Tables tables(file, objects, copy, report);
  for (const Object& object : objects) {
    // What else a link says may hold a password.
    if (object.type == kLink || object.type == kOdbcLink) {
      report.warning("Table " + object.name + " lies in another database" +
                     (object.file.empty() ? "" : ", " + object.file + ",") + " and was left out");
    }
    if (object.type != kTableObject) continue;
    const bool isUsers = !object.isSystem && !object.name.starts_with("~");
    if (isUsers && !object.name.starts_with("MSys")) {
      tables.copy(object);
    } else {
      copySystemTable(file, objects, object, copy, report);
    }
  }
  copy.run("COMMIT");
}

}  // namespace lodex
