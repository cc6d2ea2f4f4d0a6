#pragma once

#include <memory>
#include <set>
#include <string>

#include "calc/Calculations.h"
#include "calc/DatabaseTables.h"
#include "db/frmDB.h"
#include "import/DataSheets.h"

namespace lodex {

/// Samples from a source database in place of open sheets: while one is in use, lstSrcF lists its
/// tables and the calculations read them.
class SourceDatabase {
 public:
  SourceDatabase(ImportContext& context, frmDB& form, DataSheets& sheets,
                 Calculations& calculations);

  /// Opens a database as the source and shows its window. False when it could not be opened, which
  /// has been reported.
  bool AvaaDB(const std::string& path, const MapRequest& request = {true, true, false});
  /// What was read of the tables is read anew at the next need.
  void forgetTables() { tables_.reset(); }
  /// The open source database; "" when samples come from the sheets.
  std::string pathInUse() const;

 private:
  void sourceChanged();
  SourceSheets selectedTables();
  std::string keyField(const std::string& table, int row) const;

  ImportContext& context_;
  frmDB& form_;
  DataSheets& sheets_;
  Calculations& calculations_;
  struct ReadTables {
    DatabaseTables tables;
    std::set<std::string> names;
  };
  std::unique_ptr<ReadTables> tables_;
  std::string listed_;  // the database whose tables are listed in lstSrcF
  Subscriptions observed_;
};

}  // namespace lodex
