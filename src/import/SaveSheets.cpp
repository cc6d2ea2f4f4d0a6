#include "import/SaveSheets.h"

#include <algorithm>
#include <ctime>
#include <memory>
#include <optional>

#include "basic/A1.h"
#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Headings.h"
#include "db/FieldValues.h"
#include "db/Recordset.h"
#include "db/SchemaOperations.h"

namespace lodex {

namespace {

constexpr const char* kStandardType = "TEXT (25)";
// Rows that become lasting together. One by one, every row would wait for the disk.
constexpr int kRowsAtOnce = 500;

std::string timeText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

// One sheet of a workbook with its description.
class Source {
 public:
  Source(const SheetToSave& saved, int sheet) : saved_(saved), sheet_(sheet) {}

  int idColumn() const { return saved_.structure.idColumn; }
  int firstRow() const {
    return std::max({1, saved_.structure.firstDataRow, saved_.structure.highestRow() + 1});
  }
  int lastRow() const { return saved_.cells->LastRow(sheet_); }
  int lastColumn() const { return saved_.cells->LastCol(sheet_); }
  std::string text(int row, int column) const { return saved_.cells->TextSRC(sheet_, row, column); }

  bool has(int systemRow) const { return saved_.structure.row(systemRow) > 0; }
  std::string described(int systemRow, int column) const {
    return has(systemRow) ? text(saved_.structure.row(systemRow), column) : std::string();
  }
  std::string table(int column) const {
    if (!has(sysrow::Table)) return saved_.cells->SheetName(sheet_);
    const std::string name = described(sysrow::Table, column);
    return column == idColumn() && name == systemRowCaption(sysrow::Table) ? "USER" : name;
  }
  std::string field(int column) const {
    const std::string name =
        has(sysrow::Field) ? described(sysrow::Field, column) : heading(column);
    const bool unnamed = name.empty() || name == systemRowCaption(sysrow::Field);
    return column == idColumn() && unnamed ? "SampleNo" : name;
  }

 private:
  // What a column is called where nobody named its field.
  std::string heading(int column) const {
    const std::string title = described(sysrow::Header, column);
    if (!title.empty() || has(sysrow::Header)) return title;
    const std::string text = saved_.cells->ColText(column);
    return text.empty() || text.starts_with('-') ? columnLetters(column) : text;
  }

  const SheetToSave& saved_;
  int sheet_;
};

// A column of the sheet that goes into one table.
struct Target {
  int column = 0;
  int field = -1;  // in the records; -1 if the table lacks it
  std::string name;
  std::optional<double> multiplier;
  std::optional<int> digits;
};

struct TargetTable {
  std::string name;
  std::unique_ptr<Recordset> records;
  std::vector<Field> fields;
  int key = -1;
  std::vector<Target> targets;
};

class Saving {
 public:
  Saving(Session& session, MappedDatabase& destination, const SaveRequest& request)
      : session_(session), destination_(destination), request_(request) {}

  SaveOutcome run() {
    start();
    for (const SheetToSave& sheet : request_.sheets) {
      if (!saveWorkbook(sheet)) {
        outcome_.finished = false;
        session_.progress.ShowProgress("", 0);
        return outcome_;
      }
    }
    end();
    return outcome_;
  }

 private:
  void log(const std::string& text, LogKind kind = LogKind::Log) {
    session_.log.LisaaLog(text, kind);
  }

  void start() {
    for (const SheetToSave& sheet : request_.sheets) {
      for (int i = 1; i <= sheet.cells->NumSheets(); ++i) total_ += sheet.cells->LastRow(i);
    }
    session_.progress.bar.setMaximum(total_);
    session_.progress.ShowStop(true);
    if (request_.resultOnly) return;
    session_.log.clear();
    log("Saving in " + destination_.path + " started at " + timeText());
    session_.progress.txtInfo.setCaption("Intializing the database ...");
    session_.log.setCaption("*** SAVING IN DATABASE " + destination_.path + " ***");
    session_.log.show();
  }

  void end() {
    if (!request_.resultOnly) {
      log("Saving ended at " + timeText());
      log(std::to_string(outcome_.SaveErrors) + " errors detected", LogKind::Both);
      session_.log.show();
    }
    session_.progress.ShowProgress("", 0);
    session_.progress.txtInfo.setCaption("");
  }

  // False when the user stops the saving.
  bool saveWorkbook(const SheetToSave& sheet) {
    const SheetStructure& structure = sheet.structure;
    if (structure.row(sysrow::Table) == 0 && structure.row(sysrow::Field) == 0) {
      const Answer answer = session_.dialogs().messageBox(
          "Store data of file " + sheet.name +
              " using default table and fields?\n-Yes = Use default names\n"
              "-No = Don't save data of this file\n-Cancel = Cancel saving",
          MessageButtons::YesNoCancel, MessageIcon::Question);
      if (answer == Answer::No) return true;
      if (answer != Answer::Yes) return false;
    }
    if (structure.idColumn < 1) {
      ++outcome_.SaveErrors;
      log("!ERROR " + sheet.name + " has no ID column and was not saved", LogKind::Both);
      return true;
    }
    for (int number = 1; number <= sheet.cells->NumSheets(); ++number) {
      const Source source(sheet, number);
      if (source.lastRow() == 0) continue;
      const std::vector<std::string> tables = prepareTables(source);
      if (!writeRows(source, tables)) return false;
    }
    return true;
  }

  // --- Structure ---

  std::string typeOf(const Source& source, int column) {
    if (!source.has(sysrow::Type)) {
      const auto answer = session_.dialogs().inputBox(
          "Field type for [" + source.table(column) + "].[" + source.field(column) + "]",
          "Field type", kStandardType);
      return answer && !answer->empty() ? *answer : kStandardType;
    }
    const std::string type = source.described(sysrow::Type, column);
    if (type != "TEXT") return type;
    const auto length = parseInteger(source.described(sysrow::Length, column));
    return length ? "TEXT(" + std::to_string(*length) + ")" : kStandardType;
  }

  // By column. Questions come before the work: nobody else is kept waiting meanwhile.
  std::vector<std::string> typesOf(const Source& source) {
    std::vector<std::string> types(static_cast<size_t>(source.lastColumn()) + 1);
    for (int column = source.idColumn(); column <= source.lastColumn(); ++column) {
      if (source.table(column).empty() || source.field(column).empty()) continue;
      types[static_cast<size_t>(column)] = typeOf(source, column);
    }
    return types;
  }

  bool ensureField(const std::string& table, const std::string& field, const std::string& type,
                   bool isKey) {
    return CheckAndAddField(session_, destination_.connection, destination_.map, key_, table, field,
                            type, isKey);
  }

  // Makes the tables and fields of a sheet; returns the tables in the order of the columns.
  std::vector<std::string> prepareTables(const Source& source) {
    std::vector<std::string> tables;
    const std::vector<std::string> types = typesOf(source);
    Transaction work(destination_.connection);
    key_ = {};
    for (int column = source.idColumn(); column <= source.lastColumn(); ++column) {
      const std::string table = source.table(column);
      const std::string field = source.field(column);
      const bool isId = column == source.idColumn();
      if (table.empty() || field.empty()) {
        if (isId) key_ = keyOf(field, source.described(sysrow::Type, column));
        continue;
      }
      const std::string& type = types[static_cast<size_t>(column)];
      if (isId) key_ = keyOf(field, type);
      if (!ensureField(table, field, type, isId)) continue;
      const auto known = std::find_if(tables.begin(), tables.end(), [&](const std::string& other) {
        return equalsNoCase(other, table);
      });
      if (known != tables.end()) continue;
      tables.push_back(table);
      if (!equalsNoCase(field, key_.KeyFieldName)) {
        ensureField(table, key_.KeyFieldName, key_.KeyFieldType, true);
      }
    }
    work.commit();
    return tables;
  }

  static TableKey keyOf(const std::string& field, std::string type) {
    stripTypeMarkers(type);
    if (type.empty() || type == systemRowCaption(sysrow::Type)) type = "TEXT (50)";
    return {field, type};
  }

  // --- Data ---

  TargetTable targetTable(const Source& source, const std::string& name) {
    TargetTable table;
    table.name = name;
    table.records = openEmpty(name);
    table.fields = table.records->Fields();
    table.key = table.records->FieldIndex(key_.KeyFieldName);
    for (int column = source.idColumn() + 1; column <= source.lastColumn(); ++column) {
      if (!equalsNoCase(source.table(column), name)) continue;
      Target target;
      target.column = column;
      target.name = source.field(column);
      if (target.name.empty()) continue;
      target.field = table.records->FieldIndex(target.name);
      target.multiplier = parseNumber(source.described(sysrow::Multiplier, column));
      target.digits = parseInteger(source.described(sysrow::Digits, column));
      table.targets.push_back(std::move(target));
    }
    return table;
  }

  std::unique_ptr<Recordset> openEmpty(const std::string& table) {
    return destination_.connection.OpenRecordset("SELECT * FROM " + quoteName(table) +
                                                 " WHERE 1 = 0");
  }

  bool writeRows(const Source& source, const std::vector<std::string>& names) {
    std::vector<TargetTable> tables;
    for (const std::string& name : names) tables.push_back(targetTable(source, name));
    auto work = std::make_unique<Transaction>(destination_.connection);
    int rows = 0;
    bool goOn = true;
    for (int row = source.firstRow(); goOn && row <= source.lastRow(); ++row) {
      ++count_;
      goOn = !stopped();
      if (!goOn) break;
      const std::string id = source.text(row, source.idColumn());
      for (TargetTable& table : tables) {
        if (!id.empty()) writeRecord(source, row, id, table);
      }
      if (++rows % kRowsAtOnce != 0) continue;
      work->commit();
      // New records stay in memory as long as their recordset is open.
      for (TargetTable& table : tables) table.records = openEmpty(table.name);
      work = std::make_unique<Transaction>(destination_.connection);
    }
    work->commit();
    if (!goOn) tellAborted();
    return goOn;
  }

  bool stopped() {
    session_.pumpEvents();
    if (!session_.progress.AbortFlag) return false;
    session_.progress.AbortFlag = false;
    return true;
  }

  void tellAborted() {
    session_.dialogs().messageBox("Aborted!");
    log("!! Aborted !!");
    session_.progress.txtInfo.setCaption("");
    session_.log.show();
  }

  void writeRecord(const Source& source, int row, const std::string& id, TargetTable& table) {
    if (!request_.resultOnly) {
      session_.progress.ShowProgress(
          "Writing row " + std::to_string(count_) + " of " + std::to_string(total_) + " (TABLE=" +
              table.name + ") [Errors: " + std::to_string(outcome_.SaveErrors) + "] ...",
          std::max(1, count_));
    }
    std::unique_ptr<Recordset> found;
    Recordset* records = nullptr;
    try {
      found = request_.merge ? findSample(id, table) : nullptr;
      records = found ? found.get() : table.records.get();
      if (!found) {
        records->AddNew();
        records->SetValue(key_.KeyFieldName, id);
      }
    } catch (const Error& failure) {
      if (records) records->CancelUpdate();
      return countError(id, table, failure);
    }
    for (const Target& target : table.targets) {
      try {
        setField(*records, target, source.text(row, target.column), table);
      } catch (const Error& failure) {
        countError(id, table, failure);
      }
    }
    try {
      const bool isEdited = records->Editing() != EditMode::None;
      records->Update();
      if (isEdited) ++outcome_.records;
    } catch (const Error& failure) {
      records->CancelUpdate();
      countError(id, table, failure);
    }
  }

  // The record of a sample; null if there is none.
  std::unique_ptr<Recordset> findSample(const std::string& id, const TargetTable& table) {
    if (table.key < 0) return nullptr;
    const Field& key = table.fields[static_cast<size_t>(table.key)];
    auto found = destination_.connection.OpenRecordset(
        "SELECT * FROM " + quoteName(table.name) + " WHERE " + quoteName(key.name) + " = ?",
        CursorKind::Client, {valueForField(id, key, table.name)});
    if (found->Eof()) return nullptr;
    log("-Sample " + id + " already exists in table. " +
        (request_.overwrite ? "Overwritind data!" : "Writing in fields where Null value.") +
        table.name);
    return found;
  }

  void setField(Recordset& records, const Target& target, const std::string& text,
                const TargetTable& table) {
    if (target.field < 0) {
      throw Error("Table [" + table.name + "] has no field [" + target.name + "]");
    }
    if (!request_.overwrite && !isNull(records.Value(target.field))) return;
    const FieldValue value = valueOf(target, text);
    const Field& field = table.fields[static_cast<size_t>(target.field)];
    records.SetValue(target.field, valueForField(value, field, table.name));
  }

  static FieldValue valueOf(const Target& target, const std::string& text) {
    if (text.empty()) return {};
    std::optional<double> number = parseNumber(text);
    if (!number || (!target.multiplier && !target.digits)) return text;
    if (target.multiplier) number = toSingle(*number) * *target.multiplier;
    if (target.digits) number = RoundTo(*number, *target.digits);
    return *number;
  }

  void countError(const std::string& id, const TargetTable& table, const Error& failure) {
    ++outcome_.SaveErrors;
    log(std::to_string(outcome_.SaveErrors) + " !ERROR in writing Sample " + id + " in " +
            table.name + ". ErrNumber=" + std::to_string(failure.number()) + " " + failure.what(),
        LogKind::Both);
  }

  Session& session_;
  MappedDatabase& destination_;
  const SaveRequest& request_;
  SaveOutcome outcome_;
  TableKey key_;
  int total_ = 0;
  int count_ = 0;
};

}  // namespace

SaveOutcome saveSheets(Session& session, MappedDatabase& destination, const SaveRequest& request) {
  return Saving(session, destination, request).run();
}

}  // namespace lodex
