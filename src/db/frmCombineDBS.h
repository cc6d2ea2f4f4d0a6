#pragma once

#include <functional>
#include <string>

#include "db/MapDatabase.h"
#include "form/Form.h"

namespace lodex {

/// The window that merges several databases into one, and edits the structure of the chosen source.
class frmCombineDBS : public Form {
 public:
  explicit frmCombineDBS(Session& session);

  ListBox lstSDB{*this, "lstSDB", "Source databases:"};
  TextBox txtDDB{*this, "txtDDB", "Destination database:"};
  ListBox lstTables{*this, "lstTables", "Tables in selected database:"};
  ListBox lstFld{*this, "lstFld", "Fields in selected table:"};
  TextBox lstProp{*this, "lstProp", "Properties of selected field:"};
  Button cmdAddDB{*this, "cmdAddDB", "Add source"};
  Button cmdRemoveDB{*this, "cmdRemoveDB", "Remove source"};
  Button cmdOpen{*this, "cmdOpen", "Open"};
  Button cmdNew{*this, "cmdNew", "New"};
  Button cmdCombine{*this, "cmdCombine", "Combine (=Save) !"};
  Button cmdAddTable{*this, "cmdAddTable", "Add table"};
  Button cmdRemoveTable{*this, "cmdRemoveTable", "Remove table"};
  Button cmdAddField{*this, "cmdAddField", "Add field"};
  Button cmdRemoveFld{*this, "cmdRemoveFld", "Remove field"};

  /// Reads the structure of the chosen source and fills the lists.
  void AvaaLista();

 private:
  void addSource();
  void removeSource();
  void openDestination();
  void newDestination();
  void combine();
  void addTable();
  void addField();
  /// Runs a statement on the chosen source if the user agrees, and shows what it changed.
  void executeIfSure(const std::string& statement);

  Session& session_;
  MappedDatabase chosen_;
};

}  // namespace lodex
