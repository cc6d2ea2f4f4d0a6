#include "import/SaveSheets.h"

#include <algorithm>
#include <ctime>
#include <memory>
#include <optional>
#include <utility>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Headings.h"
#include "db/FieldValues.h"
#include "import/SaveTables.h"

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

// The value that a cell gives its field.
FieldValue valueOf(const SaveColumn& column, const std::string& text) {
  if (text.empty()) return {};
  std::optional<double> number = parseNumber(text);
  if (!number || (!column.multiplier && !column.digits)) return text;
  if (column.multiplier) number = toSingle(*number) * *column.multiplier;
  if (column.digits) number = RoundTo(*number, *column.digits);
  return *number;
}

// A sample's identifier for the key field. A field of numbers takes only what it would not change.
FieldValue keyValue(const std::string& id, const SaveTable& table) {
  const Field& key = table.fields[static_cast<size_t>(table.key)];
  FieldValue value = valueForField(id, key, table.name);
  if (key.type.isNumber() && fieldText(value) != trimBlanks(id)) {
    throw Error("Field [" + key.name + "] of table [" + table.name +
                "] holds numbers and would change this identifier");
  }
  return value;
}

class Saving {
 public:
  Saving(Session& session, MappedDatabase& destination, const SaveRequest& request)
      : session_(session), destination_(destination), request_(request) {}

  SaveOutcome run() {
    start();
    try {
      for (const SheetToSave& sheet : request_.sheets) {
        if (!saveWorkbook(sheet)) break;
      }
    } catch (const Error& failure) {
      result_.outcome.ended = Ended::Failed;
      result_.outcome.reason = failure.what();
      if (!reached_.empty()) result_.outcome.reason += "; nothing was saved after " + reached_;
    }
    end();
    return std::move(result_);
  }

 private:
  void log(const std::string& text, LogKind kind = LogKind::Log) {
    session_.log.LisaaLog(text, kind);
  }
  // Adds to the outcome and tells the user.
  void notice(const Findings& found) {
    result_.outcome.found.append(found);
    session_.notice(found);
  }
  void notice(Severity severity, const std::string& text, const Place& place, size_t count = 1) {
    Findings found;
    found.add(severity, text, place, count);
    notice(found);
  }

  void start() {
    for (const SheetToSave& sheet : request_.sheets) {
      for (int i = 1; i <= sheet.cells->NumSheets(); ++i) total_ += sheet.cells->LastRow(i);
    }
    if (request_.resultOnly) return;
    session_.log.clear();
    log("Saving in " + destination_.path + " started at " + timeText());
    session_.progress.txtInfo.setCaption("Intializing the database ...");
    session_.log.setCaption("*** SAVING IN DATABASE " + destination_.path + " ***");
    session_.log.show();
  }

  void end() {
    notice(nameless_);
    if (!request_.resultOnly && result_.outcome.done()) {
      log("Saving ended at " + timeText());
      log(std::to_string(result_.SaveErrors()) + " errors detected", LogKind::Both);
      session_.log.show();
    }
  }

  // False when the user stops the saving.
  bool saveWorkbook(const SheetToSave& sheet) {
    const Place place{.sheet = sheet.name};
    const SheetStructure& structure = sheet.structure;
    if (structure.row(sysrow::Table) == 0 && structure.row(sysrow::Field) == 0) {
      const Answer answer = session_.dialogs().messageBox(
          "Store data of file " + sheet.name +
              " using default table and fields?\n-Yes = Use default names\n"
              "-No = Don't save data of this file\n-Cancel = Cancel saving",
          MessageButtons::YesNoCancel, MessageIcon::Question);
      if (answer == Answer::No) {
        notice(Severity::Note, "The sheet was not saved, as you chose", place);
        return true;
      }
      if (answer != Answer::Yes) {
        abort("before sheet " + sheet.name);
        return false;
      }
    }
    if (structure.idColumn < 1) {
      notice(Severity::Error, "The sheet has no ID column and was not saved", place);
      return true;
    }
    for (int number = 1; number <= sheet.cells->NumSheets(); ++number) {
      const SaveSource source(sheet, number);
      if (source.lastRow() >= source.firstRow() && !saveSheet(source, place)) return false;
    }
    if (sheet.rowsNotLoaded > 0) {
      notice(Severity::Error, "The row of the file is not loaded and was not saved", place,
             static_cast<size_t>(sheet.rowsNotLoaded));
    }
    return true;
  }

  bool saveSheet(const SaveSource& source, const Place& place) {
    std::vector<SaveTable> tables = tablesOf(source);
    Findings found;
    source.reportHomeless(found);
    if (tables.empty() && !found.hasErrors()) {
      found.error("No column has a table and a field: nothing of the sheet was saved", place);
    }
    notice(found);
    if (tables.empty()) return true;

    // Questions come before the work: nobody else is kept waiting meanwhile.
    const std::vector<std::string> types = typesOf(source);
    key_ = keyOf(source, types[static_cast<size_t>(source.idColumn())]);
    Findings shared;
    reportSharedFields(tables, key_.KeyFieldName, source, shared);
    notice(shared);
    if (!makeTables(session_, destination_, tables, key_, types)) {
      abort("before any row of sheet " + place.sheet);
      return false;
    }
    reportFailures(source, tables);
    return writeRows(source, tables);
  }

  // --- Structure ---

  std::string typeOf(const SaveSource& source, int column) {
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

  // By column.
  std::vector<std::string> typesOf(const SaveSource& source) {
    std::vector<std::string> types(static_cast<size_t>(source.lastColumn()) + 1);
    const int id = source.idColumn();
    types[static_cast<size_t>(id)] =
        source.table(id).empty() ? source.described(sysrow::Type, id) : typeOf(source, id);
    for (const SaveColumn& column : source.columns()) {
      types[static_cast<size_t>(column.column)] = typeOf(source, column.column);
    }
    return types;
  }

  void reportFailures(const SaveSource& source, const std::vector<SaveTable>& tables) {
    const auto report = [&](const std::string& what, const std::string& reason, int column) {
      notice(Severity::Error, what + " could not be made: " + reason,
             source.place(source.systemRow(sysrow::Type), column));
    };
    for (const SaveTable& table : tables) {
      const bool byItsFields = !table.targets.empty() && !table.targets.front().failure.empty();
      if (!table.failure.empty() && !byItsFields) {
        report("Table [" + table.name + "]", table.failure, source.idColumn());
      }
      for (const SaveTarget& target : table.targets) {
        if (target.failure.empty()) continue;
        report("Field [" + target.name + "] of table [" + table.name + "]", target.failure,
               target.columns.front().column);
      }
    }
  }

  // --- Data ---

  bool writeRows(const SaveSource& source, std::vector<SaveTable>& tables) {
    session_.progress.bar.setMaximum(total_);
    openTables(destination_.connection, tables, key_);
    auto work = std::make_unique<Transaction>(destination_.connection);
    const auto makeLasting = [&](int row, const std::string& id) {
      work->commit();
      result_.records += std::exchange(written_, 0);
      if (!id.empty()) reached_ = "sample " + id + ", row " + std::to_string(row);
    };
    int rows = 0;
    std::string last;  // the sample before
    for (int row = source.firstRow(); row <= source.lastRow(); ++row) {
      ++count_;
      if (job_.aborted()) {
        makeLasting(row - 1, last);
        tellAborted();
        return false;
      }
      const std::string id = source.value(row, source.idColumn());
      if (!id.empty()) last = id;
      if (id.empty()) reportNameless(source, row, tables);
      for (SaveTable& table : tables) {
        if (!id.empty()) saveRecord(source, row, id, table);
      }
      if (++rows % kRowsAtOnce != 0) continue;
      makeLasting(row, last);
      openTables(destination_.connection, tables, key_);
      work = std::make_unique<Transaction>(destination_.connection);
    }
    makeLasting(source.lastRow(), last);
    return true;
  }

  void abort(const std::string& where) {
    result_.outcome.ended = Ended::Aborted;
    result_.outcome.reason = where;
  }

  void tellAborted() {
    abort(reached_.empty() ? "before the first sample" : "after " + reached_);
    session_.dialogs().messageBox("Aborted!");
    session_.log.show();
  }

  // Blank rows, and text outside of the columns that are saved, are not a loss.
  void reportNameless(const SaveSource& source, int row, const std::vector<SaveTable>& tables) {
    for (const SaveTable& table : tables) {
      for (const SaveTarget& target : table.targets) {
        for (const SaveColumn& column : target.columns) {
          if (source.value(row, column.column).empty()) continue;
          return nameless_.error("The row has values but no identifier and was not saved",
                                 source.place(row, 0));
        }
      }
    }
  }

  void saveRecord(const SaveSource& source, int row, const std::string& id, SaveTable& table) {
    if (!request_.resultOnly) {
      session_.progress.ShowProgress(
          "Writing row " + std::to_string(count_) + " of " + std::to_string(total_) + " (TABLE=" +
              table.name + ") [Errors: " + std::to_string(result_.SaveErrors()) + "] ...",
          std::max(1, count_));
    }
    const Place place = source.place(row, 0, id);
    if (!table.failure.empty()) {
      return add(Severity::Error,
                 "The record was not saved: there is no table [" + table.name + "]", place);
    }
    try {
      writeRecord(source, row, id, table);
    } catch (const FileError&) {
      throw;
    } catch (const Error& failure) {
      countError(place, table, failure);
    }
  }

  void writeRecord(const SaveSource& source, int row, const std::string& id, SaveTable& table) {
    const std::unique_ptr<Recordset> found = request_.merge ? findSample(id, table) : nullptr;
    Recordset& records = found ? *found : *table.records;
    // Whatever refuses the record, the next one starts afresh.
    struct AtEnd {
      Recordset& records;
      ~AtEnd() { records.CancelUpdate(); }
    } const atEnd{records};
    if (!found) {
      records.AddNew();
      records.SetValue(key_.KeyFieldName, table.key < 0 ? FieldValue(id) : keyValue(id, table));
    }
    for (const SaveTarget& target : table.targets)
      setField(source, row, id, records, target, table);
    if (records.Editing() == EditMode::None) return;
    records.Update();
    ++written_;
  }

  // The record of a sample; null if there is none.
  std::unique_ptr<Recordset> findSample(const std::string& id, const SaveTable& table) {
    if (table.key < 0) return nullptr;
    const Field& key = table.fields[static_cast<size_t>(table.key)];
    auto found = destination_.connection.OpenRecordset(
        "SELECT * FROM " + quoteName(table.name) + " WHERE " + quoteName(key.name) + " = ?",
        CursorKind::Client, {keyValue(id, table)});
    if (found->Eof()) return nullptr;
    log("-Sample " + id + " already exists in table. " +
        (request_.overwrite ? "Overwritind data!" : "Writing in fields where Null value.") +
        table.name);
    return found;
  }

  // The first column with a value gives it; a value that cannot be stored is counted, and the rest
  // of the record goes on.
  void setField(const SaveSource& source, int row, const std::string& id, Recordset& records,
                const SaveTarget& target, const SaveTable& table) {
    const SaveColumn* first = nullptr;
    FieldValue stored;
    bool refused = false;
    for (const SaveColumn& column : target.columns) {
      const std::string text = source.value(row, column.column);
      if (text.empty()) continue;
      if (target.field < 0) {
        add(Severity::Error,
            "The value was not saved: table [" + table.name + "] has no field [" + target.name +
                "]",
            source.place(row, column.column, id));
        continue;
      }
      try {
        const FieldValue value = valueForField(
            valueOf(column, text), table.fields[static_cast<size_t>(target.field)], table.name);
        if (target.field == table.key) {
          reportDiffering(source.place(row, column.column, id), target, text, id, text == id);
        } else if (first == nullptr) {
          first = &column;
          stored = value;
        } else {
          reportDiffering(source.place(row, column.column, id), target, text,
                          source.value(row, first->column), value == stored);
        }
      } catch (const Error& failure) {
        countError(source.place(row, column.column, id), table, failure);
        refused = true;
      }
    }
    if (target.field < 0 || target.field == table.key || (refused && first == nullptr)) return;
    if (!request_.overwrite && !isNull(records.Value(target.field))) return;
    records.SetValue(target.field, stored);
  }

  // Of two columns for one field, the second has something else to say.
  void reportDiffering(const Place& place, const SaveTarget& target, const std::string& text,
                       const std::string& taken, bool isSame) {
    if (isSame) return;
    log("-Sample " + place.record + ": field [" + target.name + "] gets " + taken + ", not " +
        text);
    add(Severity::Error,
        "A value was not saved: an earlier column has another one for field [" + target.name + "]",
        place);
  }

  void countError(const Place& place, const SaveTable& table, const Error& failure) {
    add(Severity::Error, failure.what(), place);
    log(std::to_string(result_.SaveErrors()) + " !ERROR in writing Sample " + place.record +
            " in " + table.name + ". ErrNumber=" + std::to_string(failure.number()) + " " +
            failure.what(),
        LogKind::Both);
  }

  // For findings that have a line of their own in the log.
  void add(Severity severity, const std::string& text, const Place& place) {
    result_.outcome.found.add(severity, text, place);
    session_.found.add(severity, text, place);
  }

  Session& session_;
  JobScope job_{session_};
  MappedDatabase& destination_;
  const SaveRequest& request_;
  SaveOutcome result_;
  TableKey key_;
  std::string reached_;  // the last sample that is lasting
  int total_ = 0;
  int count_ = 0;
  int written_ = 0;  // records of the open transaction
  Findings nameless_;
};

}  // namespace

SaveOutcome saveSheets(Session& session, MappedDatabase& destination, const SaveRequest& request) {
  SaveOutcome outcome = Saving(session, destination, request).run();
  session.progress.txtInfo.setCaption("");
  return outcome;
}

}  // namespace lodex
