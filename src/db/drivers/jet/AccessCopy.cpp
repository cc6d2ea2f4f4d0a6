#include "db/drivers/jet/AccessCopy.h"

#include <algorithm>
#include <map>
#include <numeric>
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
constexpr std::string_view kAccessQueries = "MSysQueries";
// Bits of the flags of a catalogue entry that mark what Access keeps for itself.
constexpr std::uint32_t kSystemFlags = 0x80000002;
enum ObjectType { kTableObject = 1, kOdbcLink = 4, kQueryObject = 5, kLink = 6 };

// Named fields of the records of a table of Access's own; numbers are 0 and texts "" where absent.
class SystemTable {
 public:
  SystemTable(const AccessFile& file, std::uint32_t page, const std::string& name)
      : table_(readAccessTable(file, page, name)), rows_(file, table_) {}
  bool next() { return rows_.next(); }
  const std::string& name() const { return table_.name; }
  bool has(std::string_view column) const { return table_.find(column) >= 0; }
  /// After the last record: how many values, records and pages of them cannot be read.
  int damaged() const {
    const auto& values = rows_.lostValues();
    return std::accumulate(values.begin(), values.end(), rows_.damaged() + rows_.damagedPages());
  }
  bool isShort() const { return rows_.count() < table_.recordCount; }
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

// Reports what could not be read of one of Access's own tables, after its last record.
void reportDamage(const SystemTable& table, const std::string& consequence, Findings& found) {
  const Place place{.sheet = table.name()};
  const auto damaged = static_cast<size_t>(table.damaged());
  found.add(Severity::Error, "A record could not be read: " + consequence, place, damaged);
  if (damaged == 0 && table.isShort()) {
    found.warn("The table has fewer records than it counts: " + consequence, place);
  }
}

std::vector<Object> readCatalog(const AccessFile& file, Findings& found) {
  SystemTable catalog(file, kCatalogPage, "MSysObjects");
  for (const auto* column : {"Id", "Name", "Type", "Flags"}) {
    if (!catalog.has(column)) throw FileError("its list of tables is damaged");
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
  reportDamage(catalog, "tables may be missing", found);
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

FlatTables readFlatTables(const AccessFile& file, const std::vector<Object>& objects,
                          Findings& found) {
  FlatTables result;
  const auto list = tableNamed(objects, "MSysComplexColumns");
  if (list == objects.end()) return result;
  SystemTable source(file, list->page(), list->name);
  while (source.next()) {
    const auto owner = static_cast<std::uint32_t>(source.number("ConceptualTableID"));
    result[{owner, toUpper(source.text("ColumnName"))}] =
        static_cast<std::uint32_t>(source.number("FlatTableID"));
  }
  reportDamage(source, "fields with several values may be missing", found);
  return result;
}

// Copies the tables of a file, one after the other.
class Tables {
 public:
  Tables(const AccessFile& file, const std::vector<Object>& objects, AccessTarget& target,
         Findings& found)
      : file_(file), target_(target), found_(found) {
    for (const Object& object : objects) names_.insert(toUpper(object.name));
    try {
      flatTables_ = readFlatTables(file, objects, found);
    } catch (const FileError& error) {
      found.error("The list of fields with several values cannot be read: " +
                  std::string(error.what()));
    }
  }

  void copy(const Object& object) {
    try {
      AccessTable table = readAccessTable(file_, object.page(), nameInCopy(object.name));
      const Place place{.sheet = table.name};
      if (table.columns.empty()) {
        found_.warn("The table has no fields and was left out", place);
        return;
      }
      const auto properties = propertiesOf(object, place);
      for (const std::string& field : setCalculatedTypes(properties, table)) {
        found_.warn(
            "The type of the calculated field " + field + " is not known; its values may be wrong",
            place);
      }
      copyAccessTable(file_, table, properties, target_, found_);
      for (const AccessColumn& column : table.columns) {
        if (column.type == AccessType::Complex) copySeveralValues(object, column.name, place);
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
    found_.note("The table is called " + other + " in the copy", Place{.sheet = name});
    return other;
  }

  std::string freeName(std::string name) {
    while (!names_.insert(toUpper(name)).second) name += "_";
    return name;
  }

  std::map<std::string, AccessProperties> propertiesOf(const Object& object, const Place& place) {
    const std::string& stored = object.properties;
    try {
      return readAccessProperties(
          file_, {reinterpret_cast<const std::uint8_t*>(stored.data()), stored.size()});
    } catch (const FileError&) {
      found_.error("Descriptions, defaults and rules cannot be read and were left out", place);
      return {};
    }
  }

  // The field itself holds a number that leads to the values in a table of their own.
  void copySeveralValues(const Object& object, const std::string& field, const Place& place) {
    const auto flat = flatTables_.find({object.id, toUpper(field)});
    if (flat == flatTables_.end()) {
      found_.error("The values of field " + field + ", which holds several, were not found", place);
      return;
    }
    const std::string name = freeName(object.name + "_" + field);
    try {
      copyAccessTable(file_, readAccessTable(file_, flat->second & 0xFFFFFF, name), {}, target_,
                      found_);
      found_.note("The values of field " + field + ", which holds several, are in table " + name,
                  place);
    } catch (const FileError& error) {
      target_.tryRun("DROP TABLE IF EXISTS " + targetQuoted(name));
      found_.error(
          "The values of field " + field + ", which holds several, cannot be read: " + error.what(),
          place);
    }
  }

  const AccessFile& file_;
  AccessTarget& target_;
  Findings& found_;
  FlatTables flatTables_;
  std::set<std::string> names_;
};

// The relationships go into a table of the same form.
void copyRelationships(const AccessFile& file, const Object& object, AccessTarget& target,
                       Findings& found) {
  AccessTable table = readAccessTable(file, object.page(), std::string(kRelationshipsTable));
  table.indexes.clear();
  if (!table.columns.empty()) copyAccessTable(file, table, {}, target, found);
}

void copyQueries(const AccessFile& file, const std::vector<Object>& objects, const Object& table,
                 AccessTarget& target, Findings& found) {
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
  reportDamage(source, "saved queries may be missing or wrong", found);
  AccessInsertion insertion(target, kQueriesTable, 3);
  for (const Object& object : objects) {
    if (object.type != kQueryObject || object.name.starts_with("~")) continue;
    const AccessQuery query = buildAccessQuery(object.name, std::move(parts[object.id]));
    insertion.add({textValue(query.name), textValue(query.sql), textValue(query.obstacle)});
  }
}

// Relationships and queries are worth less than the tables: the copy goes on without them.
void copySystemTable(const AccessFile& file, const std::vector<Object>& objects,
                     const Object& table, AccessTarget& target, Findings& found) {
  try {
    if (table.name == kRelationshipsTable) copyRelationships(file, table, target, found);
    if (table.name == kAccessQueries) copyQueries(file, objects, table, target, found);
  } catch (const FileError& error) {
    found.error("The relationships or saved queries cannot be read: " + std::string(error.what()),
                Place{.sheet = table.name});
  }
}

bool isUsersTable(const Object& object) {
  return !object.isSystem && !object.name.starts_with("~") && object.name != kRelationshipsTable &&
         object.name != kAccessQueries;
}

// Access's own tables have names of its own; another one with their mark may be a user's, damaged.
void reportStrangeMark(const Object& object, Findings& found) {
  for (const auto* start : {"MSys", "USys", "f_", "~"}) {
    if (object.name.starts_with(start)) return;
  }
  found.warn("The table is marked as one of Access's own and was left out",
             Place{.sheet = object.name});
}

void keepFindings(const Findings& found, AccessTarget& target) {
  target.run("CREATE TABLE " + targetQuoted(kLeftOutTable) +
             " (severity INTEGER, table_name TEXT, text TEXT, count INTEGER)");
  AccessInsertion insertion(target, kLeftOutTable, 4);
  for (const Finding& finding : found.all()) {
    insertion.add({wholeValue(static_cast<int>(finding.severity)),
                   textValue(finding.places.front().sheet), textValue(finding.text),
                   wholeValue(static_cast<std::int64_t>(finding.count))});
  }
}

}  // namespace

void copyAccessFile(const std::string& source, const std::string& target,
                    const AccessProgress& progress) {
  const AccessFile file(source);
  Findings found;
  const std::vector<Object> objects = readCatalog(file, found);
  progress();
  if (file.endsWithinPage()) {
    found.warn("The Access file does not end with a whole page: it may have been cut short");
  }
  AccessTarget copy(target, progress);
  copy.run("CREATE TABLE " + targetQuoted(kQueriesTable) + " (name TEXT, sql TEXT, obstacle TEXT)");
  copy.run("CREATE TABLE " + targetQuoted(kOriginTable) +
           " (kind INTEGER, stamp TEXT, content TEXT, changes INTEGER)");
  copy.run(fieldsTableSql());
  Tables tables(file, objects, copy, found);
  for (const Object& object : objects) {
    // What else a link says may hold a password.
    if (object.type == kLink || object.type == kOdbcLink) {
      found.warn("The table is in another database" +
                     (object.file.empty() ? "" : ", " + object.file + ",") + " and was left out",
                 Place{.sheet = object.name});
    }
    if (object.type != kTableObject) continue;
    if (isUsersTable(object)) {
      tables.copy(object);
    } else {
      copySystemTable(file, objects, object, copy, found);
      reportStrangeMark(object, found);
    }
  }
  keepFindings(found, copy);
  copy.run("COMMIT");
}

}  // namespace lodex
