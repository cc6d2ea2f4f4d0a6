#include "shell/Doors.h"

#include <algorithm>

namespace lodex {

MenuItem& Doors::addCommand(const MenuEntry& entry, const std::function<void()>& command) {
  MenuItem& control = offers_.emplace_back(shell_, entry).control;
  control.setToolTip(entry.hint);
  control.setEnabled(static_cast<bool>(command));
  if (command) session_.setCommand(control, command);
  return control;
}

void Doors::addWindow(const MenuEntry& entry, Form& form) {
  windows_.push_back(&form);
  addCommand(entry, [this, &form] {
    form.show();
    if (bringToFront) bringToFront(form);
  });
}

void Doors::addWindow(const MenuEntry& entry, std::unique_ptr<Form> form) {
  addWindow(entry, *form);
  owned_.push_back(std::move(form));
}

void Doors::addDock(const MenuEntry& entry, Form& form) {
  windows_.push_back(&form);
  docks_.push_back(&form);
  MenuItem& control = addCommand(entry, [&form] { form.visible() ? form.hide() : form.show(); });
  observed_.add(form.onChange([&form, &control] { control.setChecked(form.visible()); }));
}

bool Doors::isDock(const Form& form) const {
  return std::find(docks_.begin(), docks_.end(), &form) != docks_.end();
}

}  // namespace lodex
