#include "db/frmAddField.h"

#include "db/SchemaOperations.h"

namespace lodex {

frmAddField::frmAddField(Session& session, Connection& connection, std::string_view table)
    : Form("frmAddField", "Add Field"), session_(session), connection_(connection), table_(table) {
  optType.select(static_cast<int>(optType.captions().size()) - 1);
  txtLen.setText("50");
  // Only a text has a length.
  keep(optType.onChange([this] {
    txtLen.setEnabled(optType.captions()[static_cast<size_t>(optType.selected())] == "TEXT");
  }));
  session_.setCommand(cmdAdd, [this] { add(); });
  cmdCancel.setCommand([this] { close(); });
}

void frmAddField::add() {
  const std::string name = txtFName.text();
  if (name.empty()) {
    session_.dialogs().messageBox("Give name for the field.", MessageButtons::Ok,
                                  MessageIcon::Information);
    return;
  }
  std::string type = optType.captions()[static_cast<size_t>(optType.selected())];
  if (type == "TEXT") type += " (" + txtLen.text() + ")";
  const NewField field{
      table_, name, type, chkUnique.checked(), chkIndex.checked(), chkPrimary.checked()};
  if (!AddField(session_, connection_, field, true, true)) return;
  added_ = true;
  session_.dialogs().messageBox("Field " + name + " is being added!", MessageButtons::Ok,
                                MessageIcon::None, "Tarn");
  close();
}

}  // namespace lodex
