// Walks the example road through the real windows and takes a picture of each:
// lodexgeo-screenshots FOLDER [light|dark] [language] [where Geo stands, else beside the program]

#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <iostream>
#include <map>

#include "calc/frmSources.h"
#include "gui/Application.h"
#include "gui/FormWindow.h"
#include "gui/QtServices.h"
#include "gui/QtText.h"
#include "gui/Resources.h"
#include "gui/shell/Appearance.h"
#include "gui/shell/MainWindow.h"

namespace {

using namespace lodex;

// Long enough for what is queued in turns: bindings, layouts, painting.
void settle() {
  QElapsedTimer clock;
  clock.start();
  for (int turn = 0; turn < 12 || clock.elapsed() < 60; ++turn) {
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
}

class Album {
 public:
  explicit Album(QString folder) : folder_(std::move(folder)) { QDir().mkpath(folder_); }

  void take(QWidget& window, const QString& name) {
    settle();
    const int times = ++taken_[name];
    const QString file = times > 1 ? name + QString::number(times) : name;
    window.grab().save(QStringLiteral("%1/%2.png").arg(folder_, file));
  }
  /// All windows beside the main one that can be seen, by their object names.
  void takeOthers(const QWidget& main) {
    settle();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window == &main || !window->isVisible() || !window->isWindow()) continue;
      if (window->windowType() == Qt::ToolTip || window->objectName().isEmpty()) continue;
      take(*window, window->objectName());
      window->close();
    }
  }

 private:
  QString folder_;
  std::map<QString, int> taken_;
};

/// Takes a picture of each dialogue and answers it from a list.
class PictureDialogs : public QtDialogs {
 public:
  explicit PictureDialogs(Album& album) : album_(album) {}

  std::deque<std::vector<std::string>> files;
  std::deque<std::string> targets;
  /// What is done in a form, by its name, before it is closed.
  std::map<std::string, std::function<void(Form&)>> acts;

  Answer messageBox(std::string_view text, MessageButtons buttons, MessageIcon,
                    std::string_view) override {
    std::cerr << "message: " << text << '\n';
    return buttons == MessageButtons::YesNo || buttons == MessageButtons::YesNoCancel ? Answer::Yes
                                                                                      : Answer::Ok;
  }
  std::optional<std::string> inputBox(std::string_view, std::string_view,
                                      std::string_view proposal) override {
    return std::string(proposal);
  }
  std::vector<std::string> openFiles(const FileRequest&) override {
    if (files.empty()) return {};
    auto next = files.front();
    files.pop_front();
    return next;
  }
  std::optional<std::string> saveFile(const FileRequest&) override {
    if (targets.empty()) return std::nullopt;
    auto next = targets.front();
    targets.pop_front();
    return next;
  }
  void showModal(Form& form) override {
    form.show();
    FormWindow window(form);
    window.show();
    settle();
    const auto act = acts.find(form.name());
    if (act != acts.end()) {
      const auto todo = act->second;
      acts.erase(act);
      todo(form);
    }
    album_.take(window, toQt(form.name()));
    if (form.visible()) window.close();
  }

 private:
  Album& album_;
};

class Road {
 public:
  Road(const QString& folder, const QString& appFolder)
      : album_(folder), dialogs_(album_), window_(session_, appFolder) {
    window_.resize(1280, 800);
    examples_ = fromQt(appFolder) + "/Geo/examples/";
  }

  void walk() {
    if (!window_.start()) return;
    window_.showNormal();
    window_.resize(1280, 800);
    shot("start");
    openAndIdentify();
    calculate();
    saveInDatabase();
    otherWindows();
  }

 private:
  MDIMain& shell() { return window_.shell(); }
  void shot(const char* name) { album_.take(window_, QString::fromLatin1(name)); }
  void trigger(const char* name) {
    if (auto* action = window_.findChild<QAction*>(QString::fromLatin1(name))) action->trigger();
    settle();
  }
  // Of the panel with the stages; the sheets have buttons of the same names.
  void press(const char* name) {
    auto* panel = window_.findChild<QWidget*>(QStringLiteral("picCalc"));
    if (auto* button = panel->findChild<QAbstractButton*>(QString::fromLatin1(name))) {
      button->click();
    }
    settle();
  }
  void tickAll(const char* name) {
    auto* list = window_.findChild<QListWidget*>(QString::fromLatin1(name));
    for (int i = 0; list && i < list->count(); ++i) list->item(i)->setCheckState(Qt::Checked);
    settle();
  }
  void tickOnly(const char* name, const QStringList& wanted) {
    auto* list = window_.findChild<QListWidget*>(QString::fromLatin1(name));
    for (int i = 0; list && i < list->count(); ++i) {
      const bool on = wanted.contains(list->item(i)->text());
      list->item(i)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    }
    settle();
  }
  // The window with that title fills the area.
  void maximize(const char* title) {
    for (QMdiSubWindow* sheet : window_.area().subWindowList()) {
      if (!sheet->isVisible() || sheet->windowTitle() != QLatin1String(title)) continue;
      window_.area().setActiveSubWindow(sheet);
      sheet->showMaximized();
    }
    settle();
  }
  void restore() {
    for (QMdiSubWindow* sheet : window_.area().subWindowList()) {
      if (sheet->isVisible()) sheet->showNormal();
    }
    settle();
  }

  void openAndIdentify() {
    dialogs_.files.push_back({examples_ + "gabbros.txt", examples_ + "ore_assays.txt"});
    trigger("mnuOpen");
    shot("opened");
    tickAll("lstI");
    press("cmdIdentify");
    album_.takeOthers(window_);
    shell().stages.SetStage(Stage::Identify);
    shot("identified");
    maximize("ore_assays");
    shot("sheet");
    restore();
  }

  void calculate() {
    shell().stages.SetStage(Stage::Calculate);
    tickAll("lstSrcF");
    tickOnly("lstCalc", {QStringLiteral("CIPW"), QStringLiteral("INDICES")});
    shot("calculate");
    dialogs_.acts["frmSources"] = [](Form& form) {
      auto& sources = dynamic_cast<frmSources&>(form);
      constexpr int iron = 25;
      sources.TarnPD1.setCurrent(iron);
      settle();
      sources.cmdSEdit.click();
      sources.cmdSAdd.click();
    };
    trigger("mnuSources");
    dialogs_.acts["frmSources"] = [](Form& form) {
      auto& sources = dynamic_cast<frmSources&>(form);
      sources.TabStrip1.select(1);
      sources.lstCalc.setCurrent(0);
      settle();
    };
    trigger("mnuSources");
    press("cmdCalculate");
    album_.takeOthers(window_);
    shot("result");
  }

  void saveInDatabase() {
    shell().stages.SetStage(Stage::Save);
    settle();
    const std::string database = fromQt(scratch_.filePath(QStringLiteral("samples.mdb")));
    dialogs_.targets.push_back(database);
    dialogs_.acts["frmDDB"] = [](Form& form) {
      auto& destination = dynamic_cast<frmDDB&>(form);
      destination.Command1.click();
      settle();
      destination.cmdOK.click();
    };
    press("cmdDefine");
    shot("save");
    press("cmdSaveInDBNow");
    album_.takeOthers(window_);
    shot("saved");
    dialogs_.acts["frmDDB"] = [](Form& form) {
      auto& destination = dynamic_cast<frmDDB&>(form);
      destination.lstDTables.setCurrent(0);
      settle();
      destination.lstDFields.setCurrent(0);
      destination.cmdCreateField.click();
    };
    press("cmdDefine");
    dialogs_.files.push_back({database});
    trigger("mnuOpen");
    shell().sourceForm.lstTables.setCurrent(0);
    album_.takeOthers(window_);
    shell().sourceForm.cmdOpenSDB.click();
    trigger("mnuCombine");
    dialogs_.files.push_back({database});
    shell().combineForm.cmdAddDB.click();
    album_.takeOthers(window_);
  }

  void otherWindows() {
    shell().stages.SetStage(Stage::End);
    shot("end");
    Findings found;  // one of each severity
    found.error("Text counts as 0", {.sheet = "gabbros", .row = 14, .column = 4});
    found.warn("The unit is a guess: %", {.sheet = "gabbros", .column = 5});
    found.note("Half of the limit stands for a value below it", {.sheet = "gabbros"});
    session_.notice(found);
    shot("report");
    trigger("mnuReport");
    shell().stages.SetStage(Stage::Identify);
    trigger("mnuThesaurus");
    album_.takeOthers(window_);
    if (frmDataIN* sheet = shell().sheets.find("gabbros")) {
      sheet->cmdSplit.click();
      settle();
    }
    trigger("mnuSingle");
    maximize("Single Sample Calculation");
    shot("single");
    shell().singleSample().cmdCalculate.click();
    shot("singleResult");
    restore();
    dialogs_.selectFromList("Select mineral", {"Chalcopyrite", "Pentlandite", "Pyrrhotite"});
    dialogs_.files.push_back({session_.record.UserIni});
    trigger("mnuEditIni");
    album_.takeOthers(window_);
    trigger("mnuHelp");
    album_.takeOthers(window_);
    trigger("mnuTile");
    shot("tiled");
    FormWindow splash(session_.splash);
    splash.show();
    album_.take(splash, QStringLiteral("frmLoad"));
  }

  Album album_;
  PictureDialogs dialogs_;
  QtEventPump events_;
  QtClipboardText clipboard_;
  Session session_{Services{dialogs_, events_, clipboard_}};
  QTemporaryDir scratch_;
  std::string examples_;
  MainWindow window_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "lodexgeo-screenshots FOLDER [light|dark] [language] [APPFOLDER]\n";
    return 2;
  }
  loadResources();
  Application application(argc, argv);
  application.setLanguage(QString::fromLocal8Bit(argc > 3 ? argv[3] : "en"));
  setAppearance(QString::fromLocal8Bit(argc > 2 ? argv[2] : "light"));
  applyAppearance();
  const QString appFolder =
      argc > 4 ? QString::fromLocal8Bit(argv[4]) : QApplication::applicationDirPath();
  Road(QString::fromLocal8Bit(argv[1]), appFolder).walk();
  return 0;
}
