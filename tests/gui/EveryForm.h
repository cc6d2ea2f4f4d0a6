#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "calc/frmDefineItem.h"
#include "calc/frmSelectElements.h"
#include "calc/frmSources.h"
#include "db/frmAddField.h"
#include "db/frmConnect.h"
#include "form/frmSelectFromList.h"
#include "import/frmSplitDialog.h"
#include "shell/MDIMain.h"

namespace lodex {

/// One of every form: the windows that the main window registers, a data sheet, and the dialogues,
/// which need something to ask about.
class EveryForm {
 public:
  explicit EveryForm(Session& session) : main(session, {}) {
    main.tables.load(LODEX_SOURCE_DIR "/data/reference");
    forms = main.doors.windows();
    frmDataIN& sheet = main.sheets.newSheet("New Data ");
    sheet.F1D.EntryRC(1, 1, "HEADER");
    sheet.F1D.EntryRC(1, 2, "Sample");
    sheet.F1D.EntryRC(2, 2, "A1");
    sheet.txtH(sysrow::Header).setText("1");
    forms.insert(forms.end(), {&sheet, &main.singleSample(), &session.splash});
    add<frmConnect>(session);
    add<frmAddField>(session, connection, "ANALYSES");
    add<frmSplitDialog>("a;b", TextSplit{";", false, false});
    add<frmSources>(session, main.tables,
                    SourcesCaller{main,
                                  {"-ALL-", "CIPW"},
                                  main.sheets.F1Ref,
                                  {},
                                  {},
                                  {},
                                  main.calculations.group,
                                  &main.calculations.chkAskRefs});
    add<frmSelectElements>("Source for Fe", std::vector<std::string>{"a", "b"});
    add<frmDefineItem>("-ALL- Fe", noSheets);
    add<frmSelectFromList>(session.dialogs(), "Select", std::vector<std::string>{"a"});
  }

  MDIMain main;
  std::vector<Form*> forms;  // all but the main one

 private:
  template <typename FormType, typename... Arguments>
  void add(Arguments&&... arguments) {
    owned_.push_back(std::make_unique<FormType>(std::forward<Arguments>(arguments)...));
    forms.push_back(owned_.back().get());
  }

  Connection connection;
  SourceSheets noSheets;
  std::deque<std::unique_ptr<Form>> owned_;
};

}  // namespace lodex
