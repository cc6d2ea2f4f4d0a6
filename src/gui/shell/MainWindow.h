#pragma once

#include <QMainWindow>
#include <QTimer>
#include <memory>

#include "gui/FormWindow.h"
#include "shell/MDIMain.h"

class QLabel;
class QMdiArea;
class QMdiSubWindow;

namespace lodex {

class HelpWindow;
class SheetWindow;
class SingleInstance;

/// The main window on the screen: menus, tool bar, the panel of the stages, the windows of the data
/// sheets and the status line. What they do is MDIMain's.
class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  /// `appFolder` is where the installation folder "Geo" is. The session and the instance, which
  /// may be null, must outlive the window.
  MainWindow(Session& session, const QString& appFolder, SingleInstance* instance = nullptr);
  ~MainWindow() override;

  /// Reads the settings and shows the window; false when another process of the program took over.
  bool start();
  MDIMain& shell() { return *shell_; }
  QMdiArea& area() { return *area_; }
  /// The window that shows a data sheet or another form of its kind; null if it has none.
  SheetWindow* windowOf(const Form& form) const;

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  ShellServices services(const QString& appFolder);
  void buildToolBar();
  void buildStatusBar();
  void buildPopUps();
  void buildLooks();
  void watch(Form& form);
  void watchDock(Form& form);
  void placeNew(QMdiSubWindow& window);
  void showSplash(Form& form);
  void arrange(Arrangement arrangement);
  void tile(Qt::Orientation orientation);
  void bringToFront(Form& form);
  void takeText(const QString& text);
  void openReceived();
  void openEditor(const QString& path);
  bool closeEditors();
  QString topicInFront() const;
  bool isWorking() const;
  void showHelp(const QString& topic);
  void listWindows();
  void followProgress();
  void followShell();

  Session& session_;
  SingleInstance* instance_;
  QMdiArea* area_ = nullptr;
  QLabel* selectionInfo_ = nullptr;
  QTimer ready_;
  QTimer autosave_;
  QTimer tries_;
  QStringList received_;  // from other processes, not opened yet
  FormViews views_;
  std::unique_ptr<MDIMain> shell_;
  QPointer<QWidget> help_;
  int newWindows_ = 0;
  bool quitting_ = false;
  Subscriptions observed_;  // ends first
};

}  // namespace lodex
