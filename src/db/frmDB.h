#pragma once

#include <functional>
#include <string>

#include "db/MapDatabase.h"
#include "form/Form.h"

namespace lodex {

/// The window of the source database: its tables, fields and filters, and the element sources that
/// it offers.
class frmDB : public Form {
 public:
  /// `shell` is the main window, whose caption names the open database.
  frmDB(Session& session, Form& shell);

  TextBox txtDB{*this, "txtDB"};
  ListBox lstTables{*this, "lstTables"};
  ListBox lstFields{*this, "lstFields"};
  TextBox txtParam{*this, "txtParam"};  // what the database says of the selected field
  TextBox txtKeyTable{*this, "txtKeyTable"};
  CheckBox chkFilterOn{*this, "chkFilterOn", "Filter"};
  ComboBox cmbFilter{*this, "cmbFilter"};
  Button cmdOpenSDB{*this, "cmdOpenSDB", "Open..."};
  Button cmdDefineKeyTable{*this, "cmdDefineKeyTable", "Define key table"};
  Button cmdOK{*this, "cmdOK", "OK"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  /// Row n belongs to the element of atomic number n, 1 to 92: pairs of the row and the column in
  /// F1Key2 of the fields that hold it, in columns 1 and 2, 3 and 4, and so on.
  Worksheet F1Ref;

  /// Samples come from the database and not from open sheets.
  bool SourceDbInUse = false;
  MappedDatabase& source() { return source_; }
  Connection& SampleConnection() { return source_.connection; }

  /// Opens a source database and prepares its elements. False when it could not be opened.
  bool AvaaDB(const std::string& path, const MapRequest& request = {true, true, false});
  /// Opens it without preparing anything; a path of two characters or fewer does nothing.
  bool OpenDBFromMDI(const std::string& path, const MapRequest& request = {true, true, false});

  /// Takes the lines of a macro while one is recorded: "OPENDB " and the path.
  std::function<void(const std::string&)> onMacroLine{};
  /// Called when a database was opened: forms with a list of tables fill it again.
  std::function<void(const DatabaseMap&)> onOpened{};
  /// Called by OK with the path, where the window serves the list of sources.
  std::function<void(const std::string&)> onAccepted{};

  void show() override;
  void close() override;

 private:
  void askDatabase();
  void askKeyTable();
  void accept();
  void fillFilters();
  void pairElements();

  Session& session_;
  Form& shell_;
  MappedDatabase source_;
};

}  // namespace lodex
