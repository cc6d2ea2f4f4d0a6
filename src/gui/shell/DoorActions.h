#pragma once

#include <QMainWindow>

#include "shell/Doors.h"

namespace lodex {

/// Makes the menu entries and tool buttons of all doors that the window's Designer file does not
/// have. Their texts and commands come with the binding of the shell's form.
void addDoorActions(QMainWindow& window, const Doors& doors);

}  // namespace lodex
