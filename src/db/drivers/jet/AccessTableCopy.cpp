#include "db/drivers/jet/AccessTableCopy.h"

#include <cmath>
#include <set>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/drivers/jet/AccessCopy.h"
#include "db/drivers/jet/AccessRows.h"
#include "db/drivers/jet/AccessRules.h"
#include "db/drivers/sqlite/SqliteTables.h"

namespace lodex {

namespace {

constexpr int kRecordsPerReport = 2000;
constexpr int kMostDigits = 28;  // of a Numeric

FieldType fieldType(const AccessFile& file, const AccessColumn& column) {
  switch (column.type) {
    case AccessType::Boolean:
      return {FieldCode::Boolean};
    case AccessType::Byte:
      return {FieldCode::Byte};
    case AccessType::Integer:
      return {FieldCode::SmallInt};
    case AccessType::LongInteger:
    case AccessType::Complex:
      return {FieldCode::Integer};
    case AccessType::BigInteger:
      return {FieldCode::Numeric};
    case AccessType::Numeric: {
      const bool isKnown =
          !column.calculated && column.precision <= kMostDigits && column.scale <= column.precision;
      if (!isKnown) return {FieldCode::Numeric};
      return {FieldCode::Numeric, 0, column.precision, column.scale};
    }
    case AccessType::Currency:
      return {FieldCode::Currency};
    case AccessType::Single:
      return {FieldCode::Single};
    case AccessType::Double:
      return {FieldCode::Double};
    case AccessType::Date:
    case AccessType::ExtendedDate:
      return {FieldCode::Date};
    case AccessType::Memo:
      return {FieldCode::Memo};
    case AccessType::Guid:
      return {FieldCode::VarText, 38};
    case AccessType::Text:
      return {FieldCode::VarText, file.isJet3() ? column.size : column.size / 2};
    case AccessType::Binary:
    case AccessType::Ole:
      break;
  }
  return {FieldCode::Binary};
}

// A declaration that takes every value as it comes.
std::string looseDeclaration(FieldType type) {
  const std::string declaration = columnDeclaration(type);
  // Without an affinity, texts of many digits and a negative zero stay what they are.
  if (declaration.find(" REAL") != std::string::npos) {
    return replaceAll(declaration, " REAL", " BLOB");
  }
  return type.isNumber() ? declaration.substr(0, declaration.find(' ')) + " BLOB" : declaration;
}

// As opposed to a moment beyond the calendar, which comes as its number.
bool looksLikeDate(const AccessValue& value) {
  const std::string& text = value.bytes;
  return value.kind != AccessValue::Text || (text.size() >= 10 && text[4] == '-' && text[7] == '-');
}

const AccessIndex* primaryKey(const AccessTable& table) {
  for (const AccessIndex& index : table.indexes) {
    if (index.primary) return &index;
  }
  return nullptr;
}

std::string columnList(const AccessTable& table, const AccessIndex& index) {
  std::string list;
  for (const auto& column : index.columns) {
    list += list.empty() ? "" : ", ";
    list += targetQuoted(table.columns[static_cast<size_t>(column.place)].name);
    if (column.descending) list += " DESC";
  }
  return list;
}

// A first attempt takes all for granted; what the records disprove (unique keys, required fields,
// numbers that fit a double) is left out of the next one.
class TableCopy {
 public:
  TableCopy(const AccessFile& file, const AccessTable& table,
            const std::map<std::string, AccessProperties>& properties, AccessTarget& target,
            AccessCopyReport& report)
      : file_(file), table_(table), properties_(properties), target_(target), report_(report) {
    for (const AccessColumn& column : table.columns) {
      Column plan{column.name, fieldType(file, column), &of(column.name)};
      plan.required = propertyOf(*plan.properties, "Required") == "Yes";
      plan.counter = column.counter;
      // Whole numbers of 64 bits would not pass through a double.
      if (column.type == AccessType::BigInteger) plan.declaration = "DECIMAL INT(19,0)";
      columns_.push_back(std::move(plan));
    }
  }

  void run() {
    planDefaults();
    planRules();
    keepProperties();
    while (!attempt()) target_.run("DROP TABLE " + targetQuoted(table_.name));
    createIndexes();
    numberCounters();
    if (damagedPages_) {
      warn(std::to_string(damagedPages_) + " damaged pages were left out, with their records");
    }
    if (damaged_) warn(std::to_string(damaged_) + " damaged records were left out");
    if (lostMemos_) warn(std::to_string(lostMemos_) + " damaged memos or objects were left empty");
    if (strangeNumbers_) {
      warn(std::to_string(strangeNumbers_) + " values that are no numbers were left empty");
    }
    if (strangeDates_) {
      warn(std::to_string(strangeDates_) + " dates beyond the calendar were kept as numbers");
    }
  }

 private:
  struct Column {
    std::string name;
    FieldType type;
    const AccessProperties* properties;
    bool required = false;
    bool counter = false;
    std::string declaration = {};  // where it is not that of the type
    bool loose = false;  // some values would not stay what they are, or break the type's demands
    std::string defaultValue = {};
    std::string rule = {};  // as a condition of the target
  };

  void warn(const std::string& text) { report_.warning("Table " + table_.name + ": " + text); }

  const AccessProperties& of(const std::string& field) const {
    static const AccessProperties none;
    const auto found = properties_.find(field);
    return found == properties_.end() ? none : found->second;
  }

  // --- What the properties demand ---

  void planDefaults() {
    for (Column& column : columns_) {
      const std::string& value = propertyOf(*column.properties, "DefaultValue");
      if (value.empty() || column.counter) continue;
      try {
        column.defaultValue = "(" + translatedDefault(value) + ")";
      } catch (const Error&) {
        // It stays empty.
      }
      const bool works = !column.defaultValue.empty() &&
                         target_.hasRecords("SELECT " + column.defaultValue) &&
                         worksInTable("\"|default|\" DEFAULT " + column.defaultValue);
      if (!works) {
        column.defaultValue.clear();
        warn("the default of field " + column.name + " works in Access only: " + value);
      }
    }
  }

  void planRules() {
    for (Column& column : columns_) {
      const std::string& rule = propertyOf(*column.properties, "ValidationRule");
      if (!rule.empty()) column.rule = plannedRule(column.name, rule);
    }
    const std::string& rule = propertyOf(of(""), "ValidationRule");
    if (!rule.empty()) tableRule_ = plannedRule("", rule);
  }

  std::string plannedRule(const std::string& field, const std::string& rule) {
    try {
      std::string condition = translatedRule(field, rule);
      if (worksInTable("CHECK (" + condition + ")")) return condition;
    } catch (const FileError&) {
      throw;
    } catch (const Error&) {
      // It has no counterpart.
    }
    warnOfRule(field, "works in Access only", rule);
    return {};
  }

  void warnOfRule(const std::string& field, const std::string& what, const std::string& rule) {
    warn("the rule of " + (field.empty() ? "the table " : "field " + field + " ") + what + ": " +
         rule);
  }

  // Only the engine knows which fields and functions the definition of a table may name.
  bool worksInTable(const std::string& definition) {
    std::string names;
    for (const Column& column : columns_) names += targetQuoted(column.name) + ", ";
    const bool works = target_.tryRun("CREATE TABLE temp.\"|trial|\" (" + names + definition + ")");
    if (works) target_.run("DROP TABLE temp.\"|trial|\"");
    return works;
  }

  void keepProperties() {
    AccessInsertion insertion(target_, kFieldsTable, 7);
    const auto keep = [&](const std::string& field, const AccessProperties& properties) {
      std::vector<AccessValue> values{textValue(table_.name), textValue(field)};
      bool any = false;
      for (const auto* name :
           {"Description", "Caption", "DefaultValue", "ValidationRule", "ValidationText"}) {
        const std::string& value = propertyOf(properties, name);
        values.push_back(value.empty() ? AccessValue() : textValue(value));
        any = any || !value.empty();
      }
      if (any) insertion.add(values);
    };
    keep("", of(""));
    for (const Column& column : columns_) keep(column.name, *column.properties);
  }

  // --- The table ---

  bool isRowNumber(size_t place) const {
    const AccessIndex* key = primaryKey(table_);
    return keyed_ && key && key->columns.size() == 1 &&
           key->columns[0].place == static_cast<int>(place) && table_.columns[place].counter;
  }

  static std::string check(const std::string& condition, const std::string& text,
                           const std::string& otherwise) {
    return " CONSTRAINT " + targetQuoted(text.empty() ? otherwise : text) + " CHECK (" + condition +
           ")";
  }

  std::string definition(const Column& column) const {
    JetColumn stored{column.name, column.type};
    stored.required = column.required;
    stored.defaultValue = column.defaultValue;
    std::string sql;
    if (!column.loose && column.declaration.empty()) {
      sql = addedColumn(table_.name, stored).definition;
    } else {
      sql = targetQuoted(column.name) + " " +
            (column.declaration.empty() ? looseDeclaration(column.type) : column.declaration);
      if (column.required) sql += " NOT NULL";
      if (!column.defaultValue.empty()) sql += " DEFAULT " + column.defaultValue;
    }
    if (column.rule.empty()) return sql;
    return sql + check(column.rule, propertyOf(*column.properties, "ValidationText"),
                       "field [" + column.name + "] of table [" + table_.name + "] takes " +
                           propertyOf(*column.properties, "ValidationRule"));
  }

  // What Access says beyond types and keys must not keep its records from coming over.
  void create() {
    if (target_.tryRun(tableSql())) return;
    warn("its defaults and rules could not be taken over");
    tableRule_.clear();
    for (Column& column : columns_) {
      column.rule.clear();
      column.defaultValue.clear();
    }
    target_.run(tableSql());
  }

  std::string tableSql() const {
    const AccessIndex* key = keyed_ ? primaryKey(table_) : nullptr;
    std::string lines;
    bool keyStands = false;
    for (size_t i = 0; i < columns_.size(); ++i) {
      lines += i ? ", " : "";
      if (isRowNumber(i)) {
        lines += targetQuoted(columns_[i].name) + " INTEGER PRIMARY KEY";
        keyStands = true;
        continue;
      }
      Column column = columns_[i];
      for (size_t part = 0; key && part < key->columns.size(); ++part) {
        if (key->columns[part].place == static_cast<int>(i)) column.required = true;
      }
      lines += definition(column);
    }
    if (key && !keyStands) lines += ", PRIMARY KEY (" + columnList(table_, *key) + ")";
    if (!tableRule_.empty()) {
      lines += "," +
               check(tableRule_, propertyOf(of(""), "ValidationText"),
                     "table [" + table_.name + "] demands " + propertyOf(of(""), "ValidationRule"));
    }
    return "CREATE TABLE " + targetQuoted(table_.name) + " (" + lines + ")";
  }

  // False when it must be done again with other declarations.
  bool attempt() {
    create();
    AccessInsertion insertion(target_, table_.name, columns_.size());
    AccessRows rows(file_, table_);
    bool again = false;
    strangeNumbers_ = 0;
    strangeDates_ = 0;
    for (int count = 0; rows.next(); ++count) {
      if (count % kRecordsPerReport == 0) report_.progress();
      for (size_t i = 0; i < columns_.size(); ++i) {
        if (!suits(rows.values()[i], columns_[i])) again = true;
      }
      if (again) continue;
      if (!insertion.add(rows.values())) {
        if (!keyed_) throw FileError("a record of table " + table_.name + " cannot be stored");
        warn("its primary key is not unique, it was brought in without it");
        keyed_ = false;
        return false;
      }
    }
    damagedPages_ = rows.damagedPages();
    damaged_ = rows.damaged();
    lostMemos_ = rows.lostMemos();
    return !again && obeysRules();
  }

  // False when the value changes what its column can demand.
  bool suits(const AccessValue& value, Column& column) {
    const bool isNumber = value.kind == AccessValue::Number;
    const bool isNothing = isNumber && std::isnan(value.number);
    if (isNothing) ++strangeNumbers_;
    if (column.required && (isNothing || value.kind == AccessValue::Null)) {
      column.required = false;
      warn("field " + column.name + " is required but empty in some records; here it may be empty");
      return false;
    }
    const bool isNoDate = column.type.code == FieldCode::Date && !looksLikeDate(value);
    if (isNoDate) ++strangeDates_;
    if (column.loose) return true;
    const bool isTooLong = value.kind == AccessValue::Text && column.type.size > 0 &&
                           value.bytes.size() > static_cast<size_t>(column.type.size) &&
                           characterCount(value.bytes) > static_cast<size_t>(column.type.size);
    const bool isEndless = isNumber && std::isinf(value.number);
    column.loose = value.exact || isTooLong || isEndless || isNoDate;
    return !column.loose;
  }

  // Rules came with their table, maybe later than some of its records.
  bool obeysRules() {
    bool obeyed = true;
    const auto test = [&](const std::string& field, std::string& rule, const std::string& wording) {
      if (rule.empty() || !target_.hasRecords("SELECT 1 FROM " + targetQuoted(table_.name) +
                                              " WHERE NOT (" + rule + ") LIMIT 1")) {
        return;
      }
      warnOfRule(field, "is broken by some records and does not hold here", wording);
      rule.clear();
      obeyed = false;
    };
    for (Column& column : columns_) {
      test(column.name, column.rule, propertyOf(*column.properties, "ValidationRule"));
    }
    test("", tableRule_, propertyOf(of(""), "ValidationRule"));
    return obeyed;
  }

  void createIndexes() {
    std::set<std::string> made;
    for (const AccessIndex& index : table_.indexes) {
      report_.progress();
      if (keyed_ && &index == primaryKey(table_)) continue;
      const std::string list = columnList(table_, index);
      if (!made.insert(toUpper(list) + (index.unique ? "!" : "")).second) continue;
      const std::string rest = "INDEX " + targetQuoted(table_.name + "|" + index.name) + " ON " +
                               targetQuoted(table_.name) + " (" + list + ")";
      if (index.unique && target_.tryRun("CREATE UNIQUE " + rest)) continue;
      if (index.unique) warn("index " + index.name + " holds equal values, it is not unique here");
      if (!target_.tryRun("CREATE " + rest)) warn("index " + index.name + " could not be made");
    }
  }

  // Counters that are not the key by themselves take the next free number.
  void numberCounters() {
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (!columns_[i].counter || isRowNumber(i)) continue;
      target_.run(counterTrigger(table_.name, columns_[i].name));
    }
  }

  const AccessFile& file_;
  const AccessTable& table_;
  const std::map<std::string, AccessProperties>& properties_;
  AccessTarget& target_;
  AccessCopyReport& report_;
  std::vector<Column> columns_;
  std::string tableRule_;
  bool keyed_ = true;
  int damagedPages_ = 0;
  int damaged_ = 0;
  int lostMemos_ = 0;
  int strangeNumbers_ = 0;
  int strangeDates_ = 0;
};

}  // namespace

std::string fieldsTableSql() {
  return "CREATE TABLE " + targetQuoted(kFieldsTable) +
         " (table_name TEXT COLLATE NOCASE, field_name TEXT COLLATE NOCASE, description TEXT, "
         "caption TEXT, default_value TEXT, rule TEXT, rule_text TEXT)";
}

void copyAccessTable(const AccessFile& file, const AccessTable& table,
                     const std::map<std::string, AccessProperties>& properties,
                     AccessTarget& target, AccessCopyReport& report) {
  TableCopy(file, table, properties, target, report).run();
}

}  // namespace lodex
