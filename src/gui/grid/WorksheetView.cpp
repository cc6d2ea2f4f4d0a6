#include "gui/grid/WorksheetView.h"

#include <QAction>
#include <QHeaderView>
#include <QInputDialog>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QTabBar>
#include <QToolTip>
#include <QVBoxLayout>

#include "basic/A1.h"
#include "basic/Text.h"
#include "gui/QtText.h"
#include "gui/grid/FindBar.h"
#include "gui/grid/FormulaBar.h"
#include "gui/grid/GridActions.h"
#include "gui/grid/GridCursor.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/WorksheetModel.h"

namespace lodex {
namespace {

constexpr int selectionDelay = 60;  // milliseconds until a selection is summed up
constexpr int zoomStep = 10;

QString addressOf(const CellPlace& place) {
  return toQt(cellAddress(place.row, place.column));
}

}  // namespace

WorksheetView::WorksheetView(QWidget* parent)
    : QWidget(parent),
      history_(std::make_unique<EditHistory>()),
      editor_(std::make_unique<SheetEditor>(none_, *history_)),
      model_(new WorksheetModel(this)),
      cursor_(new GridCursor(this)),
      table_(new GridTable(*model_, *cursor_, this)),
      formulaBar_(new FormulaBar(this)),
      findBar_(new FindBar(this)),
      tabs_(new QTabBar(this)),
      actions_(new GridActions(*this)) {
  editor_->setReadOnly(true);
  tabs_->setObjectName(QStringLiteral("sheetTabs"));
  tabs_->setAccessibleName(tr("Sheets"));
  tabs_->setShape(QTabBar::RoundedSouth);
  tabs_->setDocumentMode(true);
  tabs_->setDrawBase(false);
  tabs_->setExpanding(false);
  tabs_->setUsesScrollButtons(true);
  tabs_->setContextMenuPolicy(Qt::CustomContextMenu);
  tabs_->setFocusPolicy(Qt::NoFocus);
  tabs_->hide();
  findBar_->hide();
  setFocusProxy(table_);
  buildLayout();
  connectTable();
  connectBars();
  selectionTimer_.setSingleShot(true);
  selectionTimer_.setInterval(selectionDelay);
  connect(&selectionTimer_, &QTimer::timeout, this, &WorksheetView::tellSelection);
}

WorksheetView::~WorksheetView() {
  // The parts are notified of changes until they are gone.
  table_->disconnect(this);
  cursor_->disconnect(this);
  model_->setEditor(nullptr);
}

void WorksheetView::buildLayout() {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(formulaBar_);
  layout->addWidget(table_, 1);
  layout->addWidget(tabs_);
  layout->addWidget(findBar_);
}

void WorksheetView::connectTable() {
  connect(cursor_, &GridCursor::changed, this, [this] {
    showFormula();
    selectionTimer_.start();
    actions_->update();
  });
  connect(table_, &GridTable::cellPressed, this, &WorksheetView::cellClicked);
  connect(table_, &GridTable::menuRequested, this, &WorksheetView::showMenu);
  connect(table_, &GridTable::zoomRequested, this,
          [this](int steps) { setZoom(zoom() + steps * zoomStep); });
  connect(table_, &GridTable::sheetRequested, this, [this](int step) {
    const int tab = tabs_->currentIndex() + step;
    if (tab >= 0 && tab < tabs_->count()) tabs_->setCurrentIndex(tab);
  });
  connect(table_, &GridTable::headingEditRequested, this, &WorksheetView::editHeading);
  connect(table_, &GridTable::refused, this, [this](const QString& reason) {
    const CellPlace place = cursor_->active();
    const QRect cell = table_->visualRect(model_->index(place.row - 1, place.column - 1));
    QToolTip::showText(table_->viewport()->mapToGlobal(cell.bottomLeft()), reason, table_);
    emit refused(reason);
  });
  connect(table_, &GridTable::editorText, this, [this](const QString& text, bool open) {
    if (open) {
      formulaBar_->showTyping(text);
    } else {
      showFormula();
    }
  });
}

void WorksheetView::connectBars() {
  connect(formulaBar_, &FormulaBar::entered, this, &WorksheetView::enterFromBar);
  connect(formulaBar_, &FormulaBar::goTo, this, &WorksheetView::goTo);
  connect(formulaBar_, &FormulaBar::left, this, [this] { table_->setFocus(); });
  connect(findBar_, &FindBar::find, this, &WorksheetView::findNext);
  connect(findBar_, &FindBar::replaceOne, this, &WorksheetView::replaceOne);
  connect(findBar_, &FindBar::replaceAll, this, &WorksheetView::replaceAllHits);
  connect(findBar_, &FindBar::closed, this, [this] {
    findBar_->hide();
    table_->setFocus();
  });
  connect(tabs_, &QTabBar::currentChanged, this, [this](int tab) {
    if (!fillingTabs_ && tab >= 0) showSheet(tabs_->tabData(tab).toInt());
  });
  connect(tabs_, &QWidget::customContextMenuRequested, this, &WorksheetView::showTabMenu);
  connect(tabs_, &QTabBar::tabBarDoubleClicked, this, [this](int tab) {
    if (tab >= 0) actions_->renameSheet(tabs_->tabData(tab).toInt());
  });
}

// --- The worksheet ---

void WorksheetView::attach(Worksheet& sheet) {
  // What was shown may be gone already: an open editor is closed with its model.
  cursor_->setEditor(nullptr);
  model_->setEditor(nullptr);
  table_->markCopied(std::nullopt);
  editor_.reset();
  history_ = std::make_unique<EditHistory>();
  editor_ = std::make_unique<SheetEditor>(sheet, *history_);
  editor_->setReadOnly(readOnly_ || shown_ == nullptr);
  keep(editor_->onChange([this](const CellBlock* block) { afterEdit(block); }));
  keep(history_->onChange([this] { actions_->update(); }));
  if (shown_ == nullptr) return;
  model_->setEditor(editor_.get());
  cursor_->setEditor(editor_.get());
}

void WorksheetView::setSheet(Worksheet& sheet) {
  if (shown_ != &sheet) {
    if (hasSheet()) finishEditing();
    shown_ = &sheet;
    attach(sheet);
  }
  refresh();
}

void WorksheetView::clear() {
  shown_ = nullptr;
  attach(none_);
  refresh();
}

void WorksheetView::refresh() {
  editor_->changedOutside();
  table_->readLayout();
  cursor_->readSheet();
  if (hasSheet() && isVisible()) table_->showCell(cursor_->active());
  showTabs();
  showFormula();
  actions_->update();
  selectionTimer_.start();
}

void WorksheetView::afterEdit(const CellBlock* block) {
  table_->markCopied(std::nullopt);
  if (block == nullptr) {
    table_->readLayout();
    showTabs();
  } else {
    model_->cellsChanged(*block);
    table_->cellsChanged(*block);
  }
  cursor_->readSheet();
  showFormula();
  actions_->update();
  selectionTimer_.start();
  emit edited();
}

void WorksheetView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (hasSheet()) table_->showCell(cursor_->active());
}

void WorksheetView::setPicking(bool picking) {
  table_->setPicking(picking);
}

void WorksheetView::finishEditing() {
  if (table_->editing()) table_->commitEditor();
}

void WorksheetView::select(const CellBlock& block) {
  if (!hasSheet()) return;
  cursor_->select(block, {block.row1, block.column1});
  table_->showCell({block.row1, block.column1});
}

void WorksheetView::showSheet(int sheet) {
  if (!hasSheet() || sheet < 1 || sheet > shown_->NumSheets()) return;
  finishEditing();
  if (shown_->Sheet() != sheet) shown_->Sheet(sheet);
  table_->readLayout();
  cursor_->readSheet();
  table_->showCell(cursor_->active());
  showTabs();
  showFormula();
  selectionTimer_.start();
  emit sheetShown(sheet);
}

void WorksheetView::showTabs() {
  fillingTabs_ = true;
  while (tabs_->count() > 0) tabs_->removeTab(tabs_->count() - 1);
  for (int sheet = 1; hasSheet() && sheet <= shown_->NumSheets(); ++sheet) {
    if (shown_->sheetVisibility(sheet) != SheetVisibility::Visible && sheet != shown_->Sheet()) {
      continue;
    }
    // A "&" in a name is no short cut.
    const QString name =
        toQt(shown_->SheetName(sheet)).replace(QLatin1Char('&'), QLatin1String("&&"));
    const int tab = tabs_->addTab(name);
    tabs_->setTabData(tab, sheet);
    if (sheet == shown_->Sheet()) tabs_->setCurrentIndex(tab);
  }
  fillingTabs_ = false;
  tabs_->setVisible(showSheetTabs_ && hasSheet() && shown_->NumSheets() > 1);
}

void WorksheetView::showFormula() {
  if (!hasSheet()) {
    formulaBar_->showCell(QString(), QString(), false);
    return;
  }
  const CellPlace place = cursor_->active();
  const bool inside = place.row <= shown_->MaxRow() && place.column <= shown_->MaxCol();
  formulaBar_->showCell(addressOf(place),
                        inside ? toQt(shown_->EntryRC(place.row, place.column)) : QString(),
                        editor_->allows(EditRight::Enter));
}

void WorksheetView::tellSelection() {
  if (!hasSheet()) return emit statusText(QString());
  const SelectionSummary summary = editor_->summary(cursor_->block());
  const QLocale locale = QLocale::c();
  QString text;
  if (!cursor_->block().single() && summary.count > 0) {
    if (summary.numbers > 0) {
      text = tr("Sum %1   Average %2   Count %3")
                 .arg(locale.toString(summary.sum, 'g', 10),
                      locale.toString(summary.average(), 'g', 8), QString::number(summary.count));
    } else {
      text = tr("Count %1").arg(summary.count);
    }
  }
  emit statusText(text);
}

// --- Formula bar, find bar ---

void WorksheetView::enterFromBar(const QString& text, bool moveDown) {
  const CellPlace place = cursor_->active();
  if (!hasSheet()) return;
  table_->attempt([&] {
    if (fromQt(text) == shown_->EntryRC(place.row, place.column)) return;
    editor_->enter(place.row, place.column, fromQt(text));
  });
  if (moveDown) table_->stepOn(Direction::Down);
  showFormula();
}

void WorksheetView::goTo(const QString& address) {
  CellBlock block;
  const std::vector<std::string> ends = split(fromQt(address.trimmed()), ":");
  const bool known = hasSheet() && ends.size() <= 2 &&
                     parseCellAddress(ends.front(), block.row1, block.column1) &&
                     parseCellAddress(ends.back(), block.row2, block.column2);
  if (known) {
    select(CellBlock::between(block.row1, block.column1, block.row2, block.column2));
  }
  table_->setFocus();
}

void WorksheetView::openFind(bool replacing) {
  finishEditing();
  const CellPlace place = cursor_->active();
  const bool useCell = hasSheet() && cursor_->block().single();
  findBar_->open(replacing, useCell ? toQt(shown_->TextRC(place.row, place.column)) : QString());
}

void WorksheetView::findNext(bool backwards) {
  if (!hasSheet()) return;
  if (findBar_->text().isEmpty()) return openFind(false);
  SearchOptions options = findBar_->options();
  options.backwards = backwards;
  const auto hit = editor_->findNext(fromQt(findBar_->text()), cursor_->active(), options);
  if (!hit) return findBar_->showResult(tr("Not found"));
  findBar_->showResult(QString());
  cursor_->moveTo(*hit);
  table_->showCell(*hit);
}

void WorksheetView::replaceOne() {
  if (!hasSheet()) return;
  table_->attempt([this] {
    editor_->replace(fromQt(findBar_->text()), fromQt(findBar_->replacement()), cursor_->active(),
                     findBar_->options());
  });
  findNext(false);
}

void WorksheetView::replaceAllHits() {
  if (!hasSheet()) return;
  table_->attempt([this] {
    const int cells = editor_->replaceAll(fromQt(findBar_->text()), fromQt(findBar_->replacement()),
                                          findBar_->options());
    findBar_->showResult(cells == 0 ? tr("Not found") : tr("%n cell(s) changed", nullptr, cells));
  });
}

// --- Headings, menus, properties ---

void WorksheetView::editHeading(Qt::Orientation orientation, int index) {
  if (!editor_->allows(EditRight::Headings)) return;
  const bool column = orientation == Qt::Horizontal;
  bool ok = false;
  const QString now = toQt(column ? shown_->ColText(index) : shown_->RowText(index));
  const QString text = QInputDialog::getText(
      this, tr("Heading"), column ? tr("Heading of the column:") : tr("Heading of the row:"),
      QLineEdit::Normal, now, &ok);
  if (!ok) return;
  table_->attempt([&] {
    if (column) {
      editor_->setColumnHeading(index, fromQt(text));
    } else {
      editor_->setRowHeading(index, fromQt(text));
    }
  });
}

void WorksheetView::showMenu(const QPoint& global, int row, int column) {
  QMenu menu(this);
  actions_->fillContextMenu(menu, row, column);
  menu.exec(global);
}

void WorksheetView::showTabMenu(const QPoint& pos) {
  const int tab = tabs_->tabAt(pos);
  if (tab < 0) return;
  QMenu menu(this);
  actions_->fillTabMenu(menu, tabs_->tabData(tab).toInt());
  menu.exec(tabs_->mapToGlobal(pos));
}

QAction* WorksheetView::gridAction(const QString& name) const {
  return actions_->named(name);
}

void WorksheetView::setShowFormulaBar(bool show) {
  showFormulaBar_ = show;
  formulaBar_->setVisible(show);
}

void WorksheetView::setShowSheetTabs(bool show) {
  showSheetTabs_ = show;
  showTabs();
}

void WorksheetView::setShowHeaders(bool show) {
  showHeaders_ = show;
  table_->horizontalHeader()->setVisible(show);
  table_->verticalHeader()->setVisible(show);
}

void WorksheetView::setReadOnly(bool readOnly) {
  readOnly_ = readOnly;
  editor_->setReadOnly(readOnly_ || shown_ == nullptr);
  showFormula();
  actions_->update();
}

int WorksheetView::zoom() const {
  return table_->zoom();
}

void WorksheetView::setZoom(int percent) {
  finishEditing();
  table_->setZoom(percent);
}

}  // namespace lodex
