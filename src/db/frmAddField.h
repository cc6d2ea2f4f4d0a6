#pragma once

#include "db/Connection.h"
#include "form/Form.h"
#include "session/Session.h"

namespace lodex {

/// The dialogue that adds a field to a table.
class frmAddField : public Form {
 public:
  frmAddField(Session& session, Connection& connection, std::string_view table);

  TextBox txtFName{*this, "txtFName", "Field name:"};
  OptionButtons optType{
      *this,
      "optType",
      {"CURRENCY", "BYTE", "MEMO", "SINGLE", "DOUBLE", "LONG", "INTEGER", "TEXT"}};
  TextBox txtLen{*this, "txtLen", "Length:"};  // of a text
  CheckBox chkIndex{*this, "chkIndex", "Indexed"};
  CheckBox chkUnique{*this, "chkUnique", "Unique "};
  CheckBox chkPrimary{*this, "chkPrimary", "Primary field"};
  Button cmdAdd{*this, "cmdAdd", "Add"};
  Button cmdCancel{*this, "cmdCancel", "Cancel"};

  /// True once the field was added.
  bool added() const { return added_; }

 private:
  void add();

  Session& session_;
  Connection& connection_;
  std::string table_;
  bool added_ = false;
};

}  // namespace lodex
