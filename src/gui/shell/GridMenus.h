#pragma once

#include <QMainWindow>

namespace lodex {

class WorksheetView;

/// Puts the commands of a window's grid into its menus: what goes back and forth and searches into
/// "menuEdit", printing into "menuFile", and menus for formats, data and view after them.
void addGridMenus(QMainWindow& window, const WorksheetView& grid);

}  // namespace lodex
