#pragma once

#include <QTemporaryDir>
#include <deque>
#include <memory>

#include "calc/Calculations.h"
#include "calc/frmDefineItem.h"
#include "calc/frmExcelCalc.h"
#include "calc/frmSelectElements.h"
#include "calc/frmSources.h"
#include "db/frmAddField.h"
#include "db/frmCombineDBS.h"
#include "db/frmConnect.h"
#include "db/frmDB.h"
#include "db/frmDDB.h"
#include "form/frmSelectFromList.h"
#include "gui/FormWindow.h"
#include "gui/GuiFixture.h"
#include "import/frmSplitDialog.h"

namespace lodex {

/// What the forms of databases, data sheets and calculations work with, in a folder of its own.
class FormsTest : public GuiTest {
 protected:
  FormsTest() {
    session.record.UserPath = fromQt(folder.path());
    session.record.GeoPath = session.record.UserPath;
    session.record.BasePath = session.record.UserPath;
  }

  static const taulukot& shippedTables() {
    static const taulukot tables = [] {
      taulukot loaded;
      loaded.load(LODEX_SOURCE_DIR "/data/reference");
      return loaded;
    }();
    return tables;
  }

  /// A data sheet with HEADER, ELEMENT and UNIT in its first rows and two samples.
  frmDataIN& addSheet() {
    frmDataIN& sheet = sheets.newSheet("New Data ");
    const char* rows[5][3] = {{"HEADER", "Sample", "iron"},
                              {"ELEMENT", "", "Fe"},
                              {"UNIT", "", "%"},
                              {"", "A1", "12.5"},
                              {"", "A2", "8.1"}};
    for (int row = 0; row < 5; ++row) {
      for (int column = 0; column < 3; ++column) {
        sheet.F1D.EntryRC(row + 1, column + 1, rows[row][column]);
      }
    }
    sheet.txtH(sysrow::Header).setText("1");
    sheet.txtFDR.setText("4");
    return sheet;
  }

  SourcesCaller sourcesCaller() {
    return {shell, {"-ALL-", "CIPW"}, sheets.F1Ref, {}, {}, {}, calculations.group, &askRefs};
  }

  QTemporaryDir folder;
  frmSynonLib thesaurus{session};
  ImportContext context{session, shippedTables(), thesaurus};
  Form shell{"MDIMain"};
  DataSheets sheets{shell, context};
  Calculations calculations{shell, context, sheets};
  CheckBox askRefs{shell, "chkAskRefs"};
  Connection connection;
};

}  // namespace lodex
