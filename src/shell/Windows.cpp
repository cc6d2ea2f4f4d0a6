// What the subsystems bring to the main window, one line each: a window with the entry that shows
// it, or a command. See Doors.h for the columns.
#include "shell/MDIMain.h"

namespace lodex {

void addWindows(Doors& doors, MDIMain& main) {
  Session& session = main.session();
  using enum Menu;
  doors.addWindow({"mnuLog", "&Log", "Show the log", Window}, session.log);
  doors.addDock({"mnuReport", "Re&port", "Show what the commands noticed, with the places", Window,
                 "Ctrl+Shift+R", "mnuLog"},
                main.report);
  doors.addWindow(
      {"mnuThesaurus", "&Thesaurus", "Edit the rules for what laboratories write", Calculation},
      main.thesaurus);
  doors.addWindow(
      {"mnuSourceDB", "&Source database", "Tables and fields of the source database", Database},
      main.sourceForm);
  doors.addWindow({"mnuDestinationDB", "&Destination database",
                   "Choose the database to save in; make tables and fields", Database},
                  main.destinationForm);
  doors.addWindow(
      {"mnuCombine", "&Combine databases", "Merge several databases into one", Database},
      main.combineForm);
  doors.addWindow({"mnuResult", "Calculation &result", "Show the calculation result", Window},
                  main.sheets.result);

  // Announced, but not there yet.
  doors.addCommand(
      {"tbModal", "Modal composition", "Modal composition (not available yet)", Calculation},
      nullptr);
  doors.addCommand({"tbMinerals", "Minerals", "Mineral catalogue (not available yet)", Calculation},
                   nullptr);
  doors.addCommand({"tbMLA", "Liberation", "Mineral liberation (not available yet)", Calculation},
                   nullptr);
  doors.addCommand(
      {"butAuto", "Automatic", "Automated modal calculation (not available yet)", Calculation},
      nullptr);
}

}  // namespace lodex
