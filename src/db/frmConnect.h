#pragma once

#include <string>

#include "form/Form.h"
#include "session/Session.h"

namespace lodex {

/// The dialogue that picks a database: by drive, folder and file, by a file dialogue, or from the
/// last ten.
class frmConnect : public Form {
 public:
  explicit frmConnect(Session& session);

  ListBox ListDBTypes{*this, "ListDBTypes", "Database type:"};
  ListBox Drive1{*this, "Drive1", "Drive:"};         // where folders begin
  ListBox Dir1{*this, "Dir1", "Folders:"};           // ".." and the folders of the folder on show
  TextBox txtFolder{*this, "txtFolder", "Folder:"};  // the folder on show
  TextBox txtPattern{*this, "txtPattern", "Pattern:"};  // the mask of the files on show
  ListBox lstFiles{*this, "lstFiles", "Files:"};
  TextBox txtFile{*this, "txtFile", "File name:"};
  ListBox lstLast{*this, "lstLast", "Last databases:"};
  TextBox txtInUse{*this, "txtInUse", "Databases in use:"};
  CheckBox chkMapE{*this, "chkMapE", "Map database"};
  CheckBox chkMapLast{*this, "chkMapLast", "Map database"};
  Button Command2{*this, "Command2", "Open"};
  Button cmdBrowse{*this, "cmdBrowse", "Browse..."};
  Button cmdOpenLast{*this, "cmdOpenLast", "Open"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};
  Button cmdCanc{*this, "cmdCanc", "Cancel"};
  Button cmdLinkDone{*this, "cmdLinkDone", "Close"};

  /// The known kinds of databases: what is shown and the ending of their files, to the first empty
  /// row.
  Worksheet F1FTypes;

  /// The chosen path; "" when cancelled.
  const std::string& ConnectResult() const { return result_; }
  /// Take the stored map, or map afresh and store the map.
  bool ReadMapFile() const { return !mapAfresh_; }
  bool SaveMapFile() const { return mapAfresh_; }

  /// A double click on a file and on a database of the list of last ones.
  void openFile();
  void openLast();

 private:
  void showFolder();
  void fillFiles();
  void changeFolder();
  void chooseType();
  void browse();
  void take(const std::string& path, bool mapAfresh);

  Session& session_;
  std::string result_;
  bool mapAfresh_ = false;
};

}  // namespace lodex
