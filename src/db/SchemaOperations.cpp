#include "db/SchemaOperations.h"

#include <algorithm>
#include <array>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {

namespace {

struct TypeOfCode {
  std::string_view code;
  std::string_view type;
};
constexpr std::array kTypes{
    TypeOfCode{"4", "SINGLE"}, TypeOfCode{"17", "BOOLEAN"},     TypeOfCode{"5", "DOUBLE"},
    TypeOfCode{"3", "LONG"},   TypeOfCode{"130", "TEXT (50)"},  TypeOfCode{"202", "TEXT (250)"},
    TypeOfCode{"203", "MEMO"}, TypeOfCode{"205", "TEXT (255)"}, TypeOfCode{"7", "DATE"},
};

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// A command as it is shown and logged, and as it is run: index and field names are bare in the
// first, but in brackets in the second, so that any name will do.
struct Command {
  std::string shown;
  std::string run;
  std::string type = {};  // of a field; it comes from outside
};

Command addColumn(std::string_view table, std::string_view field, const std::string& type) {
  const std::string sql =
      "ALTER TABLE " + quoteName(table) + " ADD COLUMN " + quoteName(field) + " " + type;
  return {sql, sql, type};
}

Command createIndex(std::string_view table, const std::string& field, bool unique, bool primary) {
  const std::string start = unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
  const std::string on = " ON " + quoteName(table) + " (";
  const std::string end = primary ? ") WITH PRIMARY" : ")";
  return {start + field + on + field + end, start + quoteName(field) + on + quoteName(field) + end};
}

Command createTable(std::string_view table) {
  const std::string sql = "CREATE TABLE " + quoteName(table);
  return {sql, sql};
}

std::string failureLine(const std::string& command, const Error& failure) {
  return "!ERROR in executing command " + command + " " + std::to_string(failure.number()) + " " +
         failure.what();
}

// The commands of one request, one after the other, with the last one known for the log.
class Commands {
 public:
  Commands(Session& session, Connection& connection, bool log)
      : session_(session), connection_(connection), log_(log) {}

  void check(const Command& command) {
    last_ = command.shown;
    if (!command.type.empty()) requireFieldType(command.type);
  }
  void run(const Command& command) {
    check(command);
    connection_.Execute(command.run);
    if (log_) session_.log.LisaaLog("  -EXECUTED: " + command.shown, LogKind::Log);
  }
  void failed(const Error& failure) const {
    session_.log.LisaaLog(failureLine(last_, failure), LogKind::Log);
  }

 private:
  Session& session_;
  Connection& connection_;
  bool log_;
  std::string last_;
};

int makeTable(Commands& commands, DatabaseMap& map, const TableKey& key, const std::string& table) {
  std::string type = key.KeyFieldType;
  stripTypeMarkers(type);
  if (type.empty()) type = "TEXT (50)";
  const Command column = addColumn(table, key.KeyFieldName, type);
  commands.check(column);
  commands.run(createTable(table));
  const int row = map.addTable(table);
  commands.run(column);
  map.addField(row, key.KeyFieldName);
  commands.run(createIndex(table, key.KeyFieldName, true, true));
  map.addKey(table, key.KeyFieldName);
  return row;
}

}  // namespace

std::string sqlTypeOf(std::string_view codeOrType) {
  for (const TypeOfCode& known : kTypes) {
    if (known.code == codeOrType) return std::string(known.type);
  }
  return isNumericText(codeOrType) ? "TEXT (255)" : std::string(codeOrType);
}

bool stripTypeMarkers(std::string& type) {
  bool any = false;
  for (const char* marker : {"(I,U)", "(U,I)", "(I)", "(U)"}) {
    const std::string without = replaceAll(type, marker, "");
    any = any || without != type;
    type = without;
  }
  type = std::string(trimBlanks(type));
  return any;
}

void requireFieldType(std::string_view type) {
  std::string_view rest = trimBlanks(type);
  const auto word = std::find_if_not(rest.begin(), rest.end(), isLetter);
  bool fits = word != rest.begin();
  rest.remove_prefix(static_cast<size_t>(word - rest.begin()));
  // After the word: more words, or a size such as "(50)" or "(10,2)".
  int open = 0;
  for (const char c : rest) {
    open += c == '(' ? 1 : c == ')' ? -1 : 0;
    const bool allowed =
        c == '(' || c == ')' || c == ' ' || (open == 0 ? isLetter(c) : isDigit(c) || c == ',');
    fits = fits && allowed && (open == 0 || open == 1);
  }
  if (!fits || open != 0 || !isFieldType(type)) {
    throw Error("\"" + std::string(type) + "\" is not a field type");
  }
}

bool AddField(Session& session, Connection& connection, const NewField& request, bool ask,
              bool log) {
  const std::string field = replaceAll(replaceAll(request.field, "[", ""), "]", "");
  const std::string table = plainName(request.table);
  Commands commands(session, connection, log);
  try {
    const Command column = addColumn(table, field, sqlTypeOf(request.type));
    commands.check(column);
    if (ask) {
      const std::string question = "You are creating field [" + field + "] in table [" + table +
                                   "] using command \n" + column.shown + "\nAre you sure?";
      if (session.dialogs().messageBox(question, MessageButtons::YesNo, MessageIcon::Question) !=
          Answer::Yes) {
        return false;
      }
    }
    Transaction work(connection);
    commands.run(column);
    if (request.unique || request.primary) {
      commands.run(createIndex(table, field, true, request.primary));
    } else if (request.indexed) {
      commands.run(createIndex(table, field, false, false));
    }
    work.commit();
    return true;
  } catch (const Error& failure) {
    commands.failed(failure);
    return false;
  }
}

bool CheckAndAddField(Session& session, Connection& connection, DatabaseMap& map,
                      const TableKey& key, const std::string& table, const std::string& field,
                      std::string type, bool& isKey, std::string* reason) {
  if (table == "TABLE" || table == "*") return false;
  // A field that is only to be indexed may hold a value twice.
  const bool plainIndex = !isKey && type.find("(I)") != std::string::npos;
  isKey = stripTypeMarkers(type) || isKey;
  if (type.empty()) type = "TEXT (50)";
  Commands commands(session, connection, true);
  try {
    int row = map.tableRow(table);
    if (row == 0) row = makeTable(commands, map, key, table);
    if (field.empty() || map.fieldColumn(row, field) > 0) return true;
    commands.run(addColumn(table, field, type));
    map.addField(row, field);
    if (!isKey) return true;
    // A table has one primary key; a later key field is unique without being it.
    const bool primary = !plainIndex && map.PrimaryKeyField(table).empty();
    commands.run(createIndex(table, field, !plainIndex, primary));
    if (primary) map.addKey(table, field);
    return true;
  } catch (const FileError& failure) {
    commands.failed(failure);
    throw;
  } catch (const Error& failure) {
    commands.failed(failure);
    if (reason) *reason = failure.what();
    return false;
  }
}

void MakeUserTables(std::string_view databasePath, bool createCalc, std::string_view keyType) {
  constexpr const char* key = "SampleNo";
  const std::string type = keyType.empty() ? "TEXT (50)" : sqlTypeOf(keyType);
  requireFieldType(type);
  Connection connection;
  connection.Open(ConnectionString(databasePath, "", ""));
  Transaction work(connection);
  for (const char* table : {"UserCalc", "UserGroups"}) {
    const bool isCalc = std::string_view(table) == "UserCalc";
    if (isCalc && !createCalc) continue;
    connection.Execute(createTable(table).run);
    connection.Execute(addColumn(table, key, type).run);
    if (!isCalc) continue;
    connection.Execute("CREATE UNIQUE INDEX [PrimaryKey] ON [UserCalc] (" + quoteName(key) +
                       ") WITH PRIMARY");
  }
  work.commit();
}

}  // namespace lodex
