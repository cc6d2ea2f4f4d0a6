#include "shell/SourceDatabase.h"

#include <optional>
#include <string_view>

namespace lodex {
namespace {

constexpr std::string_view usualKeyField = "SampleNo";

}  // namespace

SourceDatabase::SourceDatabase(ImportContext& context, frmDB& form, DataSheets& sheets,
                               Calculations& calculations)
    : context_(context), form_(form), sheets_(sheets), calculations_(calculations) {
  observed_.add(form_.onChange([this] { sourceChanged(); }));
  observed_.add(form_.txtDB.onChange([this] { sourceChanged(); }));
  form_.onOpened = [this](const DatabaseMap&) {
    forgetTables();
    listed_.clear();
  };
  sheets_.sourceTables = [this] {
    return pathInUse().empty() ? std::vector<std::string>() : form_.source().map.tables();
  };
}

std::string SourceDatabase::pathInUse() const {
  const bool inUse = form_.SourceDbInUse && form_.source().connection.IsOpen();
  return inUse ? form_.source().path : std::string();
}

bool SourceDatabase::AvaaDB(const std::string& path, const MapRequest& request) {
  const bool opened = form_.AvaaDB(path, request);
  sourceChanged();
  if (opened) form_.show();
  return opened;
}

// Whenever a database begins or ends to be the source, the list and the calculations follow.
void SourceDatabase::sourceChanged() {
  const std::string inUse = pathInUse();
  if (inUse == listed_) return;
  listed_ = inUse;
  forgetTables();
  context_.session.record.SourcesBuilt = false;
  if (inUse.empty()) {
    calculations_.databaseTables = nullptr;
  } else {
    calculations_.databaseTables = [this] { return selectedTables(); };
  }
  sheets_.TarkastaJaLisaaListaan();
}

// The key of the key table, else the table's own, else the usual one.
std::string SourceDatabase::keyField(const std::string& table, int row) const {
  const DatabaseMap& map = form_.source().map;
  for (const std::string& keyed : {form_.txtKeyTable.text(), table}) {
    const std::string key = keyed.empty() ? std::string() : map.PrimaryKeyField(keyed);
    if (!key.empty() && map.fieldColumn(row, key) > 0) return key;
  }
  return std::string(usualKeyField);
}

// Only what is selected is read: a database may hold millions of records in other tables.
SourceSheets SourceDatabase::selectedTables() {
  if (!tables_) tables_ = std::make_unique<ReadTables>();
  MappedDatabase& database = form_.source();
  Session& session = context_.session;
  std::optional<JobScope> reading;
  // By name: events between two tables may change the list.
  std::vector<std::string> selected;
  for (const int item : sheets_.lstSrcF.selectedItems()) {
    selected.push_back(sheets_.lstSrcF.item(item));
  }
  for (const std::string& table : selected) {
    const int row = database.map.tableRow(table);
    if (row == 0 || tables_->names.contains(table)) continue;
    if (!reading) reading.emplace(session, Abort::NotOffered);
    session.progress.ShowProgress("Reading table " + table + "...", 1);
    session.pumpEvents();
    const std::string key = keyField(table, row);
    tables_->tables.add(database.connection, table, row, key, context_.converter);
    tables_->names.insert(table);
  }
  return tables_->tables.sheets();
}

}  // namespace lodex
