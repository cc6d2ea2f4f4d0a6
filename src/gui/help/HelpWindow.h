#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QTreeWidget>
#include <functional>

#include "gui/help/HelpBrowser.h"
#include "gui/help/HelpPages.h"

namespace lodex {

/// The guide inside the program: contents and search at the left, the page at the right.
///
/// Object names for tests: "contents", "search", "hits", "page", "findText", "findCount" and the
/// actions "back", "next", "home", "zoomIn", "zoomOut", "print", "find".
class HelpWindow : public QMainWindow {
  Q_OBJECT
 public:
  /// `folder` contains the pages; it may be empty.
  explicit HelpWindow(const QString& folder, QWidget* parent = nullptr);

  /// Shows the page and heading for a window, by the name of its form; the home page when there is
  /// none. Brings the window to the front.
  void showTopic(const QString& formName);

  const HelpPages& pages() const { return pages_; }

  /// Opens an address outside of the guide, after the user agreed; the desktop's browser unless
  /// replaced.
  std::function<void(const QUrl& address)> openOutside;
  /// Whether the user wants to leave the program for an address; asks in a box unless replaced.
  std::function<bool(const QUrl& address)> askOutside;

 protected:
  void hideEvent(QHideEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void makeToolBar();
  QWidget* makeSide();
  QWidget* makeFindBar();
  void fillContents();
  void leaveGuide(const QUrl& address);
  void showWhere(const QUrl& address);
  void searchAll(const QString& words);
  void openHit(QListWidgetItem* item);
  void findNext(bool backward);
  void zoom(int steps);
  void print();

  HelpPages pages_;
  HelpBrowser* browser_;
  QTreeWidget* contents_ = nullptr;
  QLineEdit* search_ = nullptr;
  QListWidget* hits_ = nullptr;
  QWidget* findBar_ = nullptr;
  QLineEdit* findText_ = nullptr;
  QLabel* findCount_ = nullptr;
  int zoomSteps_ = 0;
  bool placed_ = false;
};

}  // namespace lodex
