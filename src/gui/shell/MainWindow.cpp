#include "gui/shell/MainWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

#include "basic/Error.h"
#include "basic/Files.h"
#include "gui/Application.h"
#include "gui/FormLoader.h"
#include "gui/QtServices.h"
#include "gui/QtText.h"
#include "gui/WindowPlaces.h"
#include "gui/help/HelpWindow.h"
#include "gui/shell/Appearance.h"
#include "gui/shell/DoorActions.h"
#include "gui/shell/FormDock.h"
#include "gui/shell/SheetWindow.h"
#include "gui/shell/SingleInstance.h"
#include "gui/shell/TextFileEditor.h"
#include "import/DataSheetForm.h"

namespace lodex {
namespace {

constexpr int noteStays = 5000;           // milliseconds
constexpr int betweenCopies = 30 * 1000;  // milliseconds
constexpr int betweenTries = 300;         // milliseconds

const QString raiseText = QStringLiteral("raise");

constexpr int cascadeStep = 28;  // pixels between the windows of new data sheets
constexpr int cascadeSteps = 5;

// The lists of the stage panel and the entries of their pop-up menus.
const std::pair<const char*, QStringList> popUps[] = {
    {"lstCalc",
     {"mnuSelectAll1", "mnuDeselectAll1", "", "mnuSelectRock", "mnuSelectMineral", "",
      "mnuSaveSelectionAsDefault", "mnuLoadAll"}},
    {"lstSrcF", {"mnuSelectAllF", "mnuDeselectAllF"}},
    {"lstSrcD", {"mnuSelectAllDB", "mnuDeselectAllDB"}},
    {"lstI", {"mnuSelectAllID", "mnuDeselectAllID", "", "mnuRemove"}},
};

// A button of the status line; of a path it shows the file.
QToolButton* statusButton(QAction& action) {
  constexpr int widest = 260;
  auto* button = new QToolButton;
  button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  button->setAutoRaise(true);
  const auto follow = [button, &action] {
    button->setIcon(action.icon());
    const QString name = toQt(fileNameOf(fromQt(action.iconText())));
    button->setText(button->fontMetrics().elidedText(name, Qt::ElideMiddle, widest));
    const bool isPath = action.iconText() != name;
    button->setToolTip(isPath ? action.toolTip() + QLatin1Char('\n') + action.iconText()
                              : action.toolTip());
    button->setEnabled(action.isEnabled());
    button->setVisible(action.isVisible());
  };
  follow();
  QObject::connect(&action, &QAction::changed, button, follow);
  QObject::connect(button, &QToolButton::clicked, &action, &QAction::trigger);
  return button;
}

}  // namespace

MainWindow::MainWindow(Session& session, const QString& appFolder, SingleInstance* instance)
    : session_(session), instance_(instance), views_(this) {
  loadFormInto(*this, QStringLiteral("MDIMain"));
  area_ = findChild<QMdiArea*>(QStringLiteral("mdiArea"));
  setCentralWidget(area_);
  setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  buildToolBar();
  buildStatusBar();
  shell_ = std::make_unique<MDIMain>(session, services(appFolder));
  addDoorActions(*this, shell_->doors);
  bindForm(*shell_, *this);
  bindForm(session.progress, *statusBar());
  buildPopUps();
  buildLooks();
  followShell();
  followProgress();
  connect(&ready_, &QTimer::timeout, this, [this] { shell_->tmrReady(); });
  ready_.setSingleShot(true);
  if (auto* application = qobject_cast<Application*>(QCoreApplication::instance())) {
    connect(application, &Application::helpRequested, this, &MainWindow::showHelp);
  }
  if (instance_) {
    connect(instance_, &SingleInstance::received, this, &MainWindow::takeText);
    connect(&tries_, &QTimer::timeout, this, &MainWindow::openReceived);
    tries_.setSingleShot(true);
  }
  connect(&autosave_, &QTimer::timeout, this, [this] {
    if (!isWorking()) shell_->AutosaveNow();
  });
}

MainWindow::~MainWindow() {
  // The windows go before what they show.
  for (FormDock* dock : findChildren<FormDock*>()) delete dock;
  for (QMdiSubWindow* window : area_->subWindowList()) delete window;
  delete help_;
}

ShellServices MainWindow::services(const QString& appFolder) {
  ShellServices services;
  services.appFolder = fromQt(appFolder);
  services.version = fromQt(QApplication::applicationVersion());
  if (instance_) {
    services.anotherInstanceRuns = [this] { return instance_->otherRuns(); };
    services.activateOther = [] { SingleInstance::send(raiseText); };
  }
  services.watch = [this](Form& form) { watch(form); };
  services.startEditor = [this](const std::string& path) { openEditor(toQt(path)); };
  services.showHelp = [this](const std::string& topic) {
    showHelp(topic == shell_->name() ? topicInFront() : toQt(topic));
  };
  services.arrange = [this](Arrangement arrangement) { arrange(arrangement); };
  services.bringToFront = [this](Form& form) { bringToFront(form); };
  services.startTmrReady = [this](int milliseconds) { ready_.start(milliseconds); };
  services.mayLeave = [this] { return closeEditors(); };
  services.quit = [this] {
    quitting_ = true;
    rememberPlace(*this);
    close();
    QApplication::quit();
  };
  return services;
}

// What the tool bar contains besides buttons.
void MainWindow::buildToolBar() {
  auto* bar = findChild<QToolBar*>(QStringLiteral("tbMain"));
  const auto addCombo = [&](const char* name, const QString& hint, int characters) {
    auto* combo = new QComboBox(bar);
    combo->setPlaceholderText(hint);
    combo->setObjectName(QString::fromLatin1(name));
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(characters);
    bar->addWidget(combo);
  };
  bar->addSeparator();
  addCombo("cmbSets", tr("Group"), 10);
  auto* set = new QLabel(bar);
  set->setObjectName(QStringLiteral("lblSet"));
  set->setMargin(4);
  bar->addWidget(set);
  addCombo("cmbRoutines", tr("Method"), 16);
  for (QToolButton* button : findChildren<QToolButton*>()) {
    const QString action = button->property("defaultAction").toString();
    if (!action.isEmpty()) button->setDefaultAction(findChild<QAction*>(action));
  }
}

void MainWindow::buildStatusBar() {
  auto* info = new QLabel(statusBar());
  info->setObjectName(QStringLiteral("txtInfo"));
  auto* bar = new QProgressBar(statusBar());
  bar->setObjectName(QStringLiteral("bar"));
  bar->setMaximumWidth(240);
  bar->setTextVisible(false);
  auto* abort = new QPushButton(QIcon(QStringLiteral(":/icons/abort.svg")), {}, statusBar());
  abort->setObjectName(QStringLiteral("cmdAbort"));
  auto* abortKey = new QShortcut(Qt::Key_Escape, abort);
  abortKey->setContext(Qt::ApplicationShortcut);
  abortKey->setObjectName(abort->objectName());
  connect(abortKey, &QShortcut::activated, abort, &QPushButton::click);
  statusBar()->addWidget(info, 1);
  statusBar()->addWidget(bar);
  statusBar()->addWidget(abort);
  selectionInfo_ = new QLabel(statusBar());
  selectionInfo_->setObjectName(QStringLiteral("selectionInfo"));
  statusBar()->addPermanentWidget(selectionInfo_);
  for (const char* name : {"tbReport", "tbLodexGeoDB", "tbMineralDB", "btChange"}) {
    statusBar()->addPermanentWidget(statusButton(*findChild<QAction*>(QString::fromLatin1(name))));
  }
}

void MainWindow::buildPopUps() {
  for (const auto& [list, entries] : popUps) {
    auto* view = findChild<QListWidget*>(QString::fromLatin1(list));
    auto* menu = new QMenu(view);
    for (const QString& entry : entries) {
      if (entry.isEmpty()) {
        menu->addSeparator();
      } else {
        menu->addAction(findChild<QAction*>(entry));
      }
    }
    connect(view, &QWidget::customContextMenuRequested, menu,
            [view, menu](const QPoint& place) { menu->popup(view->mapToGlobal(place)); });
  }
  auto* windows = findChild<QMenu*>(QStringLiteral("menuWindows"));
  connect(windows, &QMenu::aboutToShow, this, &MainWindow::listWindows);
}

void MainWindow::listWindows() {
  auto* menu = findChild<QMenu*>(QStringLiteral("menuWindows"));
  menu->clear();
  for (QMdiSubWindow* window : area_->subWindowList()) {
    if (window->isHidden()) continue;
    QAction* entry = menu->addAction(window->windowTitle());
    entry->setCheckable(true);
    entry->setChecked(window == area_->activeSubWindow());
    connect(entry, &QAction::triggered, window,
            [this, window] { area_->setActiveSubWindow(window); });
  }
  if (menu->isEmpty()) menu->addAction(tr("No data sheets"))->setEnabled(false);
}

void MainWindow::buildLooks() {
  const auto choices = [this](const std::vector<std::pair<const char*, QString>>& entries,
                              const QString& chosen, auto choose) {
    auto* group = new QActionGroup(this);
    for (const auto& [name, value] : entries) {
      auto* action = findChild<QAction*>(QString::fromLatin1(name));
      action->setActionGroup(group);
      action->setChecked(value == chosen);
      connect(action, &QAction::triggered, this, [choose, value = value] { choose(value); });
    }
  };
  choices({{"actPaletteSystem", {}},
           {"actPaletteLight", QStringLiteral("light")},
           {"actPaletteDark", QStringLiteral("dark")}},
          appearance(), [](const QString& name) { setAppearance(name); });
  choices({{"actLanguageSystem", {}},
           {"actLanguageEnglish", QStringLiteral("en")},
           {"actLanguageFinnish", QStringLiteral("fi")}},
          chosenLanguage(), [this](const QString& language) {
            chooseLanguage(language);
            statusBar()->showMessage(tr("The language changes on the next start."), noteStays);
          });
}

bool MainWindow::start() {
  if (!shell_->Load()) return false;
  if (instance_) instance_->listen();
  autosave_.start(betweenCopies);
  return true;
}

void MainWindow::followShell() {
  const auto show = [this] {
    if (!shell_->caption().empty()) setWindowTitle(toQt(shell_->caption()));
    if (shell_->visible() == isVisible()) return;
    if (!shell_->visible()) {
      hide();
    } else if (restorePlace(*this)) {
      QMainWindow::show();
    } else {
      showMaximized();
    }
  };
  observed_.add(shell_->onChange(show));
}

void MainWindow::followProgress() {
  auto* bar = findChild<QProgressBar*>(QStringLiteral("bar"));
  bar->hide();
  observed_.add(session_.progress.onChange([this, bar] {
    const bool running = session_.progress.visible();
    if (running != bar->isHidden()) return;
    bar->setVisible(running);
    if (running) {
      ready_.stop();
      statusBar()->clearMessage();
      QApplication::setOverrideCursor(Qt::BusyCursor);
    } else {
      QApplication::restoreOverrideCursor();
    }
  }));
}

void MainWindow::watch(Form& form) {
  if (form.name() == "frmLoad") return showSplash(form);
  if (shell_->doors.isDock(form)) return watchDock(form);
  if (!dynamic_cast<DataSheetForm*>(&form)) return views_.watch(form);
  observed_.add(form.onChange([this, &form, window = QPointer<SheetWindow>()]() mutable {
    if (window || !form.visible()) return;
    window = new SheetWindow(form);
    if (auto* sheet = dynamic_cast<frmDataIN*>(&form)) {
      window->onClose = [this, sheet] { return shell_->CloseSheet(*sheet); };
    }
    connect(window, &SheetWindow::statusText, selectionInfo_, &QLabel::setText);
    area_->addSubWindow(window);
    placeNew(*window);
    window->show();
  }));
}

void MainWindow::watchDock(Form& form) {
  observed_.add(form.onChange([this, &form, dock = QPointer<FormDock>()]() mutable {
    if (form.visible() && !dock) dock = new FormDock(form, *this);
  }));
}

// New windows step down from the corner, and all of them fit.
void MainWindow::placeNew(QMdiSubWindow& window) {
  const int step = newWindows_++ % cascadeSteps;
  const QSize room = area_->viewport()->size();
  const int margin = cascadeStep * (cascadeSteps - 1);
  window.setGeometry(step * cascadeStep, step * cascadeStep, std::max(400, room.width() - margin),
                     std::max(300, room.height() - margin));
}

void MainWindow::showSplash(Form& form) {
  observed_.add(form.onChange([&form, splash = QPointer<QWidget>()]() mutable {
    if (form.visible() && !splash) {
      splash = loadFormFile(toQt(form.name()));
      splash->setWindowFlags(Qt::SplashScreen);
      bindForm(form, *splash);
      splash->move(QGuiApplication::primaryScreen()->availableGeometry().center() -
                   splash->rect().center());
      splash->show();
    }
    if (!form.visible() && splash) delete splash;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  }));
  // Start-up holds the thread: each word is painted at once.
  for (Control* control : form.controls()) {
    observed_.add(control->onChange(
        [] { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); }));
  }
}

SheetWindow* MainWindow::windowOf(const Form& form) const {
  for (QMdiSubWindow* window : area_->subWindowList()) {
    auto* sheet = qobject_cast<SheetWindow*>(window);
    if (sheet && sheet->form() == &form) return sheet;
  }
  return nullptr;
}

void MainWindow::bringToFront(Form& form) {
  if (SheetWindow* window = windowOf(form)) {
    area_->setActiveSubWindow(window);
    return;
  }
  if (&form == shell_.get()) {
    raise();
    activateWindow();
    return;
  }
  if (FormWindow* window = FormWindow::of(form)) {
    window->raise();
    window->activateWindow();
  }
}

void MainWindow::arrange(Arrangement arrangement) {
  switch (arrangement) {
    case Arrangement::Cascade:
      return area_->cascadeSubWindows();
    case Arrangement::TileHorizontally:
      return tile(Qt::Horizontal);
    case Arrangement::TileVertically:
      return tile(Qt::Vertical);
  }
}

// One above the other (horizontally) or side by side; with many windows in two or more columns.
void MainWindow::tile(Qt::Orientation orientation) {
  constexpr int inOneLine = 3;
  QList<QMdiSubWindow*> shown;
  for (QMdiSubWindow* window : area_->subWindowList()) {
    if (!window->isHidden() && !window->isMinimized()) shown.append(window);
  }
  if (shown.size() > inOneLine) return area_->tileSubWindows();
  const QSize room = area_->viewport()->size();
  for (qsizetype i = 0; i < shown.size(); ++i) {
    const int place = static_cast<int>(i), count = static_cast<int>(shown.size());
    shown[i]->showNormal();
    if (orientation == Qt::Horizontal) {
      const int height = room.height() / count;
      shown[i]->setGeometry(0, place * height, room.width(), height);
    } else {
      const int width = room.width() / count;
      shown[i]->setGeometry(place * width, 0, width, room.height());
    }
  }
}

bool MainWindow::isWorking() const {
  return session_.progress.visible() || QtEventPump::isPumping();
}

void MainWindow::takeText(const QString& text) {
  if (QWidget* question = QApplication::activeModalWidget()) {
    question->raise();
    question->activateWindow();
  } else {
    bringToFront(*shell_);
  }
  if (text == raiseText) return;
  received_.append(text);
  if (!tries_.isActive()) openReceived();
}

// A file that opens under a running job or an open question would change what these work on.
void MainWindow::openReceived() {
  while (!received_.isEmpty()) {
    if (isWorking() || QApplication::activeModalWidget()) return tries_.start(betweenTries);
    shell_->LinkExecute(fromQt(received_.takeFirst()));
  }
}

void MainWindow::openEditor(const QString& path) {
  auto* editor = new TextFileEditor(path, this);
  editor->show();
}

// Each asks about its changes; false when the user wants to keep one.
bool MainWindow::closeEditors() {
  for (auto* editor : findChildren<TextFileEditor*>()) {
    if (editor->isVisible() && !editor->close()) return false;
  }
  return true;
}

// Help on the main window is help on the data sheet in front, if there is one.
QString MainWindow::topicInFront() const {
  auto* sheet = qobject_cast<SheetWindow*>(area_->activeSubWindow());
  return sheet && sheet->isVisible() && sheet->form() ? toQt(sheet->form()->name())
                                                      : toQt(shell_->name());
}

void MainWindow::showHelp(const QString& topic) {
  if (!help_)
    help_ = new HelpWindow(toQt(pathText(nativePath(session_.record.HelpPath) / "guide")));
  // A dialogue lets only its own windows take input.
  if (QWidget* dialog = QApplication::activeModalWidget()) help_->setParent(dialog, Qt::Window);
  qobject_cast<HelpWindow*>(help_.data())->showTopic(topic);
}

bool MainWindow::event(QEvent* event) {
  if (event->type() == QEvent::PaletteChange && area_) {
    area_->setBackground(palette().brush(QPalette::Dark));
  }
  // A hint would cover the progress and its Abort button.
  if (event->type() == QEvent::StatusTip && session_.progress.visible()) return true;
  return QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (quitting_) return event->accept();
  event->ignore();
  shell_->close();  // asks, and ends the program after a yes
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls() && !isWorking()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  std::vector<std::string> paths;
  for (const QUrl& url : event->mimeData()->urls()) {
    if (url.isLocalFile()) paths.push_back(fromQt(url.toLocalFile()));
  }
  event->acceptProposedAction();
  // After the drop has ended, so that the other program does not wait for our questions.
  QTimer::singleShot(0, this, [this, paths] { shell_->dropFiles(paths); });
}

}  // namespace lodex
