#include "gui/help/HelpWindow.h"

#include <QAction>
#include <QDesktopServices>
#include <QKeySequence>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "gui/WindowPlaces.h"

namespace lodex {

namespace {

constexpr int addressRole = Qt::UserRole;
constexpr int smallestZoom = -4, largestZoom = 12;

QIcon icon(const char* name) {
  return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

QAction* makeAction(QToolBar& bar, const char* name, const QString& text, const QString& hint) {
  QAction* action = bar.addAction(icon(name), text);
  action->setObjectName(QLatin1String(name));
  action->setToolTip(hint);
  return action;
}

}  // namespace

HelpWindow::HelpWindow(const QString& folder, QWidget* parent)
    : QMainWindow(parent), pages_(folder), browser_(new HelpBrowser(pages_)) {
  setObjectName(QStringLiteral("HelpWindow"));
  setWindowTitle(tr("Help"));
  openOutside = [](const QUrl& address) { QDesktopServices::openUrl(address); };
  askOutside = [this](const QUrl& address) {
    return QMessageBox::question(this, windowTitle(),
                                 tr("Open %1 in the browser?").arg(address.toDisplayString())) ==
           QMessageBox::Yes;
  };

  browser_->setObjectName(QStringLiteral("page"));
  browser_->setAccessibleName(tr("Page"));
  connect(browser_, &HelpBrowser::outsideLink, this, &HelpWindow::leaveGuide);
  connect(browser_, &QTextBrowser::sourceChanged, this, &HelpWindow::showWhere);

  auto* right = new QWidget;
  auto* column = new QVBoxLayout(right);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(browser_, 1);
  column->addWidget(makeFindBar());

  auto* splitter = new QSplitter;
  splitter->addWidget(makeSide());
  splitter->addWidget(right);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({260, 740});
  splitter->setChildrenCollapsible(false);
  setCentralWidget(splitter);
  makeToolBar();
  fillContents();
  resize(1000, 720);
  zoom(remembered(QStringLiteral("HelpWindow/zoom")).toInt());
}

void HelpWindow::makeToolBar() {
  QToolBar* bar = addToolBar(tr("Help"));
  bar->setObjectName(QStringLiteral("helpTools"));
  bar->setMovable(false);
  bar->setIconSize({20, 20});

  QAction* back = makeAction(*bar, "back", tr("Back"), tr("The page before"));
  back->setShortcuts({QKeySequence(Qt::ALT | Qt::Key_Left), QKeySequence(Qt::Key_Back)});
  back->setEnabled(false);
  connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);

  QAction* forward =
      makeAction(*bar, "next", tr("Forward"), tr("The page from which you went back"));
  forward->setShortcuts({QKeySequence(Qt::ALT | Qt::Key_Right), QKeySequence(Qt::Key_Forward)});
  forward->setEnabled(false);
  connect(forward, &QAction::triggered, browser_, &QTextBrowser::forward);
  connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);

  QAction* home = makeAction(*bar, "home", tr("Home"), tr("The first page of the guide"));
  home->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Home));
  connect(home, &QAction::triggered, this, [this] { browser_->open(pages_.home()); });
  bar->addSeparator();

  QAction* find = makeAction(*bar, "find", tr("Find"), tr("Find a text in this page (Ctrl+F)"));
  find->setShortcut(QKeySequence::Find);
  connect(find, &QAction::triggered, this, [this] {
    findBar_->show();
    findText_->setFocus();
    findText_->selectAll();
  });
  QAction* larger = makeAction(*bar, "zoomIn", tr("Larger"), tr("Larger letters (Ctrl++)"));
  larger->setShortcuts(
      {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)});
  connect(larger, &QAction::triggered, this, [this] { zoom(1); });
  QAction* smaller = makeAction(*bar, "zoomOut", tr("Smaller"), tr("Smaller letters (Ctrl+-)"));
  smaller->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Minus));
  connect(smaller, &QAction::triggered, this, [this] { zoom(-1); });
  QAction* paper = makeAction(*bar, "print", tr("Print..."), tr("Print this page (Ctrl+P)"));
  paper->setShortcut(QKeySequence::Print);
  connect(paper, &QAction::triggered, this, &HelpWindow::print);
}

QWidget* HelpWindow::makeSide() {
  search_ = new QLineEdit;
  search_->setObjectName(QStringLiteral("search"));
  search_->setPlaceholderText(tr("Search all pages"));
  search_->setToolTip(tr("Lists the sections that contain all of the words"));
  search_->setClearButtonEnabled(true);
  connect(search_, &QLineEdit::textChanged, this, &HelpWindow::searchAll);
  connect(search_, &QLineEdit::returnPressed, this, [this] {
    if (hits_->count() > 0) openHit(hits_->item(0));
  });

  contents_ = new QTreeWidget;
  contents_->setObjectName(QStringLiteral("contents"));
  contents_->setAccessibleName(tr("Contents"));
  contents_->setHeaderHidden(true);
  connect(contents_, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* item) { browser_->open(item->data(0, addressRole).toUrl()); });
  connect(contents_, &QTreeWidget::itemActivated, this,
          [this](QTreeWidgetItem* item) { browser_->open(item->data(0, addressRole).toUrl()); });

  hits_ = new QListWidget;
  hits_->setObjectName(QStringLiteral("hits"));
  hits_->setAccessibleName(tr("Sections found"));
  hits_->setWordWrap(true);
  hits_->setAlternatingRowColors(true);
  hits_->hide();
  connect(hits_, &QListWidget::itemClicked, this, &HelpWindow::openHit);
  connect(hits_, &QListWidget::itemActivated, this, &HelpWindow::openHit);

  auto* side = new QWidget;
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(6, 6, 0, 6);
  column->addWidget(search_);
  column->addWidget(contents_, 1);
  column->addWidget(hits_, 1);
  return side;
}

QWidget* HelpWindow::makeFindBar() {
  findText_ = new QLineEdit;
  findText_->setObjectName(QStringLiteral("findText"));
  findText_->setPlaceholderText(tr("Find in this page"));
  findText_->setClearButtonEnabled(true);
  findText_->setMaximumWidth(280);
  findCount_ = new QLabel;
  findCount_->setObjectName(QStringLiteral("findCount"));
  connect(findText_, &QLineEdit::textChanged, this, [this](const QString& text) {
    const int count = browser_->mark(text);
    findCount_->setText(text.isEmpty() ? QString()
                        : count == 0   ? tr("not found")
                                       : tr("%n found", nullptr, count));
  });
  connect(findText_, &QLineEdit::returnPressed, this, [this] { findNext(false); });

  auto button = [this](const char* name, const QString& hint) {
    auto* made = new QToolButton;
    made->setIcon(icon(name));
    made->setAutoRaise(true);
    made->setToolTip(hint);
    return made;
  };
  QToolButton* previous = button("up", tr("The place before (Shift+F3)"));
  connect(previous, &QToolButton::clicked, this, [this] { findNext(true); });
  QToolButton* following = button("down", tr("The next place (F3)"));
  connect(following, &QToolButton::clicked, this, [this] { findNext(false); });
  connect(new QShortcut(QKeySequence(Qt::Key_F3), this), &QShortcut::activated, this,
          [this] { findNext(false); });
  connect(new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3), this), &QShortcut::activated, this,
          [this] { findNext(true); });
  connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, [this] {
    if (findBar_->isHidden()) {
      close();
    } else {
      findText_->clear();
      findBar_->hide();
    }
  });

  findBar_ = new QWidget;
  auto* row = new QHBoxLayout(findBar_);
  row->setContentsMargins(8, 4, 8, 4);
  row->addWidget(findText_);
  row->addWidget(previous);
  row->addWidget(following);
  row->addWidget(findCount_);
  row->addStretch(1);
  findBar_->hide();
  return findBar_;
}

void HelpWindow::fillContents() {
  for (const HelpPage& page : pages_.pages()) {
    auto* top = new QTreeWidgetItem(contents_, {page.title});
    top->setData(0, addressRole, pages_.url(page.file, {}));
    for (const HelpSection& section : page.sections) {
      if (section.level != 2) continue;
      auto* item = new QTreeWidgetItem(top, {section.heading});
      item->setData(0, addressRole, pages_.url(page.file, section.heading));
    }
  }
}

void HelpWindow::showTopic(const QString& formName) {
  showNormal();  // first, since headings are found by the laid-out page
  browser_->open(pages_.topic(formName));
  raise();
  activateWindow();
}

void HelpWindow::leaveGuide(const QUrl& address) {
  const QString scheme = address.scheme();
  const bool known = scheme == QLatin1String("https") || scheme == QLatin1String("http") ||
                     scheme == QLatin1String("mailto");
  if (!known) {
    statusBar()->showMessage(tr("%1 is no page of the guide").arg(address.toDisplayString()), 8000);
  } else if (askOutside(address)) {
    openOutside(address);
  }
}

// Follows the page in the list of contents.
void HelpWindow::showWhere(const QUrl& address) {
  const QString file = pages_.fileOf(address);
  for (int i = 0; i < contents_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* item = contents_->topLevelItem(i);
    if (pages_.fileOf(item->data(0, addressRole).toUrl()) != file) continue;
    item->setExpanded(true);
    QTreeWidgetItem* current = item;
    for (int k = 0; k < item->childCount(); ++k) {
      const QUrl heading = item->child(k)->data(0, addressRole).toUrl();
      if (heading.fragment() == address.fragment()) current = item->child(k);
    }
    contents_->setCurrentItem(current);
    setWindowTitle(tr("Help: %1").arg(item->text(0)));
    return;
  }
  contents_->setCurrentItem(nullptr);
  setWindowTitle(tr("Help"));
}

void HelpWindow::searchAll(const QString& words) {
  const bool searching = words.simplified().size() > 1;
  contents_->setVisible(!searching);
  hits_->setVisible(searching);
  hits_->clear();
  if (!searching) {
    browser_->mark({});
    return;
  }
  for (const HelpHit& hit : pages_.search(words)) {
    const bool named = !hit.heading.isEmpty() && hit.heading != hit.title;
    const QString where = named ? hit.title + QStringLiteral(": ") + hit.heading : hit.title;
    auto* item = new QListWidgetItem(where + QLatin1Char('\n') + hit.excerpt, hits_);
    item->setData(addressRole, pages_.url(hit.file, hit.heading));
  }
  if (hits_->count() == 0) {
    auto* none = new QListWidgetItem(tr("No section contains all of these words."), hits_);
    none->setFlags(Qt::NoItemFlags);
  }
}

void HelpWindow::openHit(QListWidgetItem* item) {
  const QUrl address = item->data(addressRole).toUrl();
  if (address.isEmpty()) return;
  browser_->open(address);
  browser_->mark(search_->text().simplified().section(QLatin1Char(' '), 0, 0));
}

void HelpWindow::findNext(bool backward) {
  if (findBar_->isHidden()) findBar_->show();
  if (findText_->text().isEmpty()) {
    findText_->setFocus();
  } else {
    browser_->findAround(findText_->text(), backward);
  }
}

void HelpWindow::zoom(int steps) {
  const int wanted = std::clamp(zoomSteps_ + steps, smallestZoom, largestZoom);
  browser_->zoomIn(wanted - zoomSteps_);
  zoomSteps_ = wanted;
}

void HelpWindow::print() {
  QPrinter printer(QPrinter::HighResolution);
  QPrintDialog dialog(&printer, this);
  if (dialog.exec() == QDialog::Accepted) browser_->print(&printer);
}

void HelpWindow::showEvent(QShowEvent* event) {
  if (!placed_) restorePlace(*this);
  placed_ = true;
  QMainWindow::showEvent(event);
}

void HelpWindow::hideEvent(QHideEvent* event) {
  rememberPlace(*this);
  remember(QStringLiteral("HelpWindow/zoom"), QString::number(zoomSteps_));
  QMainWindow::hideEvent(event);
}

}  // namespace lodex
