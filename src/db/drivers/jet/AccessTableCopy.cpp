#include "db/drivers/jet/AccessTableCopy.h"

#include <cmath>
#include <set>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/drivers/jet/AccessRows.h"
#include "db/drivers/jet/AccessRules.h"
#include "db/drivers/sqlite/SqliteTables.h"

namespace lodex {

namespace {

constexpr int kRecordsPerReport = 2000;
constexpr int kMostDigits = 28;  // of a Numeric
constexpr int kMostCharacters = 255;

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
      if (column.calculated) return {FieldCode::VarText, kMostCharacters};
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

// As opposed to a moment outside the calendar, which comes as its number.
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

// A first attempt assumes that everything holds; what the records disprove (unique keys, required
// fields, numbers that fit a double) is left out of the next one.
class TableCopy {
 public:
  TableCopy(const AccessFile& file, const AccessTable& table,
            const std::map<std::string, AccessProperties>& properties, AccessTarget& target,
            Findings& found)
      : file_(file),
        table_(table),
        properties_(properties),
        target_(target),
        found_(found),
        place_{.sheet = table.name} {
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
    int strangeNumbers = 0;
    int strangeDates = 0;
  };

  void note(const std::string& text) { found_.note(text, place_); }
  void warn(const std::string& text, int count = 1) {
    found_.add(Severity::Warning, text, place_, static_cast<size_t>(count));
  }
  void error(const std::string& text, int count) {
    found_.add(Severity::Error, text, place_, static_cast<size_t>(count));
  }

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
      column.defaultValue = plannedDefault(value);
      if (column.defaultValue.empty()) {
        note("The default of field " + column.name + " works in Access only: " + value);
      }
    }
  }

  // "" for what has no counterpart.
  std::string plannedDefault(const std::string& value) {
    std::string expression;
    try {
      expression = "(" + translatedDefault(value) + ")";
    } catch (const FileError&) {
      throw;
    } catch (const Error&) {
      return {};
    }
    const bool works = target_.hasRecords("SELECT " + expression) &&
                       worksInTable("\"|default|\" DEFAULT " + expression);
    return works ? expression : "";
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
      // It has no counterpart, as one that the engine refuses.
    }
    noteRule(field, "works in Access only", rule);
    return {};
  }

  void noteRule(const std::string& field, const std::string& what, const std::string& rule) {
    note("The rule of " + (field.empty() ? "the table " : "field " + field + " ") + what + ": " +
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

  // What Access demands beyond types and keys must not keep its records from being copied.
  void create() {
    if (target_.tryRun(tableSql())) return;
    note("The defaults and rules of the table could not be kept");
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
    bool keyIsWritten = false;
    for (size_t i = 0; i < columns_.size(); ++i) {
      lines += i ? ", " : "";
      if (isRowNumber(i)) {
        lines += targetQuoted(columns_[i].name) + " INTEGER PRIMARY KEY";
        keyIsWritten = true;
        continue;
      }
      Column column = columns_[i];
      for (size_t part = 0; key && part < key->columns.size(); ++part) {
        if (key->columns[part].place == static_cast<int>(i)) column.required = true;
      }
      lines += definition(column);
    }
    if (key && !keyIsWritten) lines += ", PRIMARY KEY (" + columnList(table_, *key) + ")";
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
    for (Column& column : columns_) column.strangeNumbers = column.strangeDates = 0;
    for (int count = 0; rows.next(); ++count) {
      if (count % kRecordsPerReport == 0) target_.progress();
      for (size_t i = 0; i < columns_.size(); ++i) {
        if (!suits(rows.values()[i], columns_[i])) again = true;
      }
      if (again) continue;
      if (!insertion.add(rows.values())) {
        if (!keyed_) throw FileError("a record of table " + table_.name + " cannot be stored");
        warn("The primary key is empty or not unique in some records, the copy has none");
        keyed_ = false;
        return false;
      }
    }
    if (again || !obeysRules()) return false;
    reportValues(rows);
    return true;
  }

  void reportValues(const AccessRows& rows) {
    error("A page of records could not be read and was left out", rows.damagedPages());
    error("A record could not be read and was left out", rows.damaged());
    for (size_t i = 0; i < columns_.size(); ++i) {
      const Column& column = columns_[i];
      const std::string kind = table_.columns[i].calculated ? "calculated field " : "field ";
      error("A value of " + kind + column.name + " could not be read and is empty here",
            rows.lostValues()[i]);
      warn("A value of " + kind + column.name + " is not a number and is empty here",
           column.strangeNumbers);
      warn("A date of " + kind + column.name +
               " is outside the years 100 to 9999 and was kept as its number",
           column.strangeDates);
    }
    const std::uint32_t known = rows.count() + static_cast<std::uint32_t>(rows.damaged());
    if (known < table_.recordCount && rows.damagedPages() == 0) {
      warn("The table counts " + std::to_string(table_.recordCount) + " records, but only " +
           std::to_string(known) + " were found");
    }
  }

  // False when the value changes what its column can demand.
  bool suits(const AccessValue& value, Column& column) {
    const bool isNumber = value.kind == AccessValue::Number;
    const bool isNothing = isNumber && std::isnan(value.number);
    if (isNothing) ++column.strangeNumbers;
    if (column.required && (isNothing || value.kind == AccessValue::Null)) {
      column.required = false;
      note("Field " + column.name + " is required but empty in some records; here it may be empty");
      return false;
    }
    const bool isNoDate = column.type.code == FieldCode::Date && !looksLikeDate(value);
    if (isNoDate) ++column.strangeDates;
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
      noteRule(field, "is broken by some records and does not hold here", wording);
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
      target_.progress();
      if (keyed_ && &index == primaryKey(table_)) continue;
      const std::string list = columnList(table_, index);
      if (!made.insert(toUpper(list) + (index.unique ? "!" : "")).second) continue;
      const std::string rest = "INDEX " + targetQuoted(table_.name + "|" + index.name) + " ON " +
                               targetQuoted(table_.name) + " (" + list + ")";
      if (index.unique && target_.tryRun("CREATE UNIQUE " + rest)) continue;
      if (index.unique) warn("Index " + index.name + " has equal values, it is not unique here");
      if (!target_.tryRun("CREATE " + rest)) warn("Index " + index.name + " could not be made");
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
  Findings& found_;
  const Place place_;
  std::vector<Column> columns_;
  std::string tableRule_;
  bool keyed_ = true;
};

}  // namespace

std::string fieldsTableSql() {
  return "CREATE TABLE " + targetQuoted(kFieldsTable) +
         " (table_name TEXT COLLATE NOCASE, field_name TEXT COLLATE NOCASE, description TEXT, "
         "caption TEXT, default_value TEXT, rule TEXT, rule_text TEXT)";
}

void copyAccessTable(const AccessFile& file, const AccessTable& table,
                     const std::map<std::string, AccessProperties>& properties,
                     AccessTarget& target, Findings& found) {
  TableCopy(file, table, properties, target, found).run();
}

}  // namespace lodex
