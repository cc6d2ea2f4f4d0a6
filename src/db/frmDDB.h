#pragma once

#include <functional>
#include <string>

#include "db/MapDatabase.h"
#include "form/Form.h"

namespace lodex {

/// The window that chooses the database to save into, and makes tables and fields there.
class frmDDB : public Form {
 public:
  explicit frmDDB(Session& session);

  TextBox txtDDB{*this, "txtDDB"};
  ListBox lstDTables{*this, "lstDTables"};
  ListBox lstDFields{*this, "lstDFields"};
  TextBox txtDParam{*this, "txtDParam"};
  Button Command2{*this, "Command2", "Open database..."};
  Button Command1{*this, "Command1", "New database..."};
  Button cmdSame{*this, "cmdSame", "Same as source"};
  Button cmdCreateTable{*this, "cmdCreateTable", "Create table"};
  Button cmdCreateField{*this, "cmdCreateField", "Create field"};
  Button cmdOK{*this, "cmdOK", "OK"};

  /// The path of the source database while one is in use, else "".
  std::function<std::string()> sourceDatabase{};

  /// Makes a database the destination. When it cannot be mapped the former one stays and false is
  /// returned; `create` makes the file first if it is not there.
  bool openDestination(const std::string& path, bool create);
  /// True once there is a destination.
  bool hasDestination() const { return !txtDDB.text().empty(); }
  /// The destination: its path, connection and map.
  MappedDatabase& destination() { return destination_; }
  Connection& DestinationConnection() { return destination_.connection; }
  const std::string& DestinationPath() const { return destination_.path; }
  /// Shows the tables again after the map was extended.
  void refreshTables();

 private:
  void askExisting();
  void askNew();
  void takeSource();
  void createTable();
  void createField();

  Session& session_;
  MappedDatabase destination_;
};

}  // namespace lodex
