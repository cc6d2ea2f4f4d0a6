#include "gui/grid/GridTable.h"

#include <QEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <cmath>

#include "basic/Error.h"
#include "gui/QtText.h"
#include "gui/grid/GridDelegate.h"
#include "gui/grid/GridHeader.h"

namespace lodex {
namespace {

constexpr int maxFitted = 5000;     // cells of a column whose widths are measured
constexpr int maxMeasured = 20000;  // cells whose heights are measured
constexpr double widestFit = 60;    // characters
constexpr int mostAutomatic = 500;  // columns that find their width themselves
constexpr int minZoom = 50;
constexpr int maxZoom = 300;

// Also scrolls beyond the bar's present range.
void scrollBarTo(QScrollBar& bar, int value) {
  bar.setMaximum(std::max(bar.maximum(), value));
  bar.setValue(value);
}

// Scrolls as little as makes a section visible between two pixels of the viewport.
void bringIntoView(QScrollBar& bar, int at, int size, int start, int end) {
  int value = bar.value();
  if (at + size - value > end) value = at + size - end;
  if (at - value < start) value = at - start;
  scrollBarTo(bar, value);
}

// A header that draws nothing does not count the places of a million sections after each change.
class QuietHeader {
 public:
  explicit QuietHeader(QHeaderView& header) : header_(header) { header_.setUpdatesEnabled(false); }
  ~QuietHeader() { header_.setUpdatesEnabled(true); }
  QuietHeader(const QuietHeader&) = delete;
  QuietHeader& operator=(const QuietHeader&) = delete;

 private:
  QHeaderView& header_;
};

}  // namespace

GridTable::GridTable(WorksheetModel& model, GridCursor& cursor, QWidget* parent)
    : QTableView(parent),
      model_(model),
      cursor_(cursor),
      delegate_(new GridDelegate(*this)),
      columns_(new GridHeader(Qt::Horizontal, *this)),
      rows_(new GridHeader(Qt::Vertical, *this)) {
  setObjectName(QStringLiteral("cells"));
  setAccessibleName(tr("Worksheet cells"));
  setHorizontalHeader(columns_);
  setVerticalHeader(rows_);
  setModel(&model_);
  setItemDelegate(delegate_);
  setEditTriggers(NoEditTriggers);
  setSelectionMode(ContiguousSelection);
  setHorizontalScrollMode(ScrollPerPixel);
  setVerticalScrollMode(ScrollPerPixel);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setWordWrap(false);
  setShowGrid(false);
  setFrameShape(QFrame::NoFrame);
  setAutoScroll(false);
  viewport()->setMouseTracking(true);
  cursor_.setSelectionModel(selectionModel());
  connectHeaders();
  for (QScrollBar* bar : {horizontalScrollBar(), verticalScrollBar()}) {
    connect(bar, &QScrollBar::valueChanged, this, &GridTable::extendScrollRange);
    connect(bar, &QScrollBar::sliderReleased, this, &GridTable::extendScrollRange);
  }
  connect(&cursor_, &GridCursor::changed, this, [this] {
    viewport()->update();
    columns_->viewport()->update();
    rows_->viewport()->update();
  });
  connect(&model_, &WorksheetModel::refused, this, &GridTable::refused);
}

void GridTable::connectHeaders() {
  connect(columns_, &GridHeader::pressed, this, [this](int index, Qt::KeyboardModifiers modifiers) {
    const bool extend = (modifiers & Qt::ShiftModifier) != 0;
    setFocus();
    cursor_.selectColumns(extend ? cursor_.active().column : index, index);
    emit cellPressed(0, index);
  });
  connect(rows_, &GridHeader::pressed, this, [this](int index, Qt::KeyboardModifiers modifiers) {
    const bool extend = (modifiers & Qt::ShiftModifier) != 0;
    setFocus();
    cursor_.selectRows(extend ? cursor_.active().row : index, index);
    emit cellPressed(index, 0);
  });
  connect(columns_, &GridHeader::draggedOver, this, [this](int index) {
    cursor_.selectColumns(cursor_.active().column, index);
    showColumn(index);
  });
  connect(rows_, &GridHeader::draggedOver, this, [this](int index) {
    cursor_.selectRows(cursor_.active().row, index);
    showRow(index);
  });
  connect(columns_, &GridHeader::doubleClicked, this,
          [this](int index) { emit headingEditRequested(Qt::Horizontal, index); });
  connect(rows_, &GridHeader::doubleClicked, this,
          [this](int index) { emit headingEditRequested(Qt::Vertical, index); });
  connect(columns_, &GridHeader::widthDragged, this, &GridTable::columnDragged);
  connect(columns_, &GridHeader::fitRequested, this, &GridTable::fitColumn);
  for (GridHeader* header : {columns_, rows_}) {
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this, [this, header](const QPoint& pos) {
      const bool columns = header == columns_;
      const int index = columns ? header->logicalIndexAt(pos.x()) + 1 : rowAtY(pos.y());
      if (index < 1) return;
      const CellBlock block = cursor_.block();
      const bool selected =
          columns ? cursor_.wholeColumns() && block.column1 <= index && index <= block.column2
                  : cursor_.wholeRows() && block.row1 <= index && index <= block.row2;
      if (!selected && columns) cursor_.selectColumns(index, index);
      if (!selected && !columns) cursor_.selectRows(index, index);
      emit menuRequested(header->mapToGlobal(pos), columns ? 0 : index, columns ? index : 0);
    });
  }
}

// --- Layout ---

double GridTable::pixelsPerPoint() const {
  return logicalDpiY() / 72.0 * zoom_ / 100.0;
}

QFont GridTable::headingFont() const {
  QFont heading = font();
  heading.setPixelSize(std::max(6, qRound(9 * pixelsPerPoint())));
  return heading;
}

void GridTable::setZoom(int percent) {
  percent = std::clamp(percent, minZoom, maxZoom);
  if (percent == zoom_) return;
  const double down = static_cast<double>(verticalScrollBar()->value()) / zoom_;
  const double right = static_cast<double>(horizontalScrollBar()->value()) / zoom_;
  zoom_ = percent;
  readLayout();
  scrollBarTo(*verticalScrollBar(), qRound(down * percent));
  scrollBarTo(*horizontalScrollBar(), qRound(right * percent));
}

int GridTable::widthInPixels(double characters) const {
  return lodex::widthInPixels(characters, pixelsPerPoint());
}

double GridTable::widthInCharacters(int pixels) const {
  const QFontMetricsF metrics(cellFont(CellFormat(), pixelsPerPoint()));
  const double digit = metrics.horizontalAdvance(QLatin1Char('0'));
  const double characters = (pixels - 2 * cellPadding(pixelsPerPoint()) - 1) / digit;
  return std::max(0.25, std::round(characters * 100) / 100);
}

void GridTable::readLayout() {
  if (editor() == nullptr) {
    model_.sheetChanged();
    return;
  }
  // A sheet of another size starts at its top, unless it is put back.
  const int down = verticalScrollBar()->value();
  const int right = horizontalScrollBar()->value();
  model_.sheetChanged();
  const Worksheet& sheet = editor()->sheet();
  const int current = sheet.Sheet();
  const int rowHeight = neededHeight(CellFormat(), QString(), 0, pixelsPerPoint()) + 2;
  if (rows_->defaultSectionSize() != rowHeight) {
    rows_->setDefaultSectionSize(rowHeight);
    tallRows_.clear();
  }
  const int columnWidth = widthInPixels(usualColumnWidth);
  if (columns_->defaultSectionSize() != columnWidth) columns_->setDefaultSectionSize(columnWidth);
  setHiddenSections(*columns_, sheet.hiddenColumns(current), hiddenColumns_);
  setHiddenSections(*rows_, sheet.hiddenRows(current), hiddenRows_);
  readWidths();
  readHeights(1, rows_->count());
  columns_->setFixedHeight(QFontMetrics(headingFont()).height() + 7);
  rows_->setFixedWidth(headingWidth());
  updateGeometries();
  scrollBarTo(*verticalScrollBar(), down);
  scrollBarTo(*horizontalScrollBar(), right);
  viewport()->update();
  columns_->viewport()->update();
  rows_->viewport()->update();
}

void GridTable::readWidths() {
  const QuietHeader quiet(*columns_);
  for (const int column : wideColumns_) {
    if (column <= columns_->count()) {
      columns_->resizeSection(column - 1, columns_->defaultSectionSize());
    }
  }
  wideColumns_.clear();
  const Worksheet& sheet = editor()->sheet();
  const auto show = [&](int column) {
    columns_->resizeSection(column - 1, shownColumnWidth(sheet, column, pixelsPerPoint()));
    wideColumns_.push_back(column);
  };
  const int automatic = std::min({sheet.LastCol(), columns_->count(), mostAutomatic});
  for (int column = 1; column <= automatic; ++column) show(column);
  for (const auto& [column, width] : sheet.columnWidths(sheet.Sheet())) {
    if (column > automatic && column <= columns_->count()) show(column);
  }
}

void GridTable::setHiddenSections(QHeaderView& header, const std::map<int, bool>& hidden,
                                  std::vector<int>& before) {
  const QuietHeader quiet(header);
  for (const int index : before) {
    if (index <= header.count() && !hidden.contains(index))
      header.setSectionHidden(index - 1, false);
  }
  before.clear();
  for (const auto& [index, isHidden] : hidden) {
    if (!isHidden || index > header.count()) continue;
    if (!header.isSectionHidden(index - 1)) header.setSectionHidden(index - 1, true);
    before.push_back(index);
  }
}

// Rows grow with large fonts and wrapped text. Few sheets have any, so the formats are asked first.
void GridTable::readHeights(int firstRow, int lastRow) {
  const QuietHeader quiet(*rows_);
  const int defaultHeight = rows_->defaultSectionSize();
  for (auto row = tallRows_.lower_bound(firstRow); row != tallRows_.end() && *row <= lastRow;) {
    if (*row <= rows_->count()) rows_->resizeSection(*row - 1, defaultHeight);
    row = tallRows_.erase(row);
  }
  const Worksheet& sheet = editor()->sheet();
  const FormatTable& formats = sheet.formats();
  std::vector<bool> tall(formats.size());
  for (std::uint32_t i = 0; i < formats.size(); ++i) {
    tall[i] = formats.at(i).wrap ||
              neededHeight(formats.at(i), QString(), 0, pixelsPerPoint()) + 2 > defaultHeight;
  }
  if (std::find(tall.begin(), tall.end(), true) == tall.end()) return;
  std::map<int, int> heights;
  int measured = 0;
  sheet.cells(sheet.Sheet())
      .visit(firstRow, 1, std::min(lastRow, rows_->count()), columns_->count(),
             [&](int row, int column, const Cell& cell) {
               if (!tall[cell.format]) return true;
               const int height =
                   neededHeight(formats.at(cell.format), toQt(sheet.TextRC(row, column)),
                                columns_->sectionSize(column - 1), pixelsPerPoint()) +
                   2;
               int& best = heights[row];
               best = std::max(best, height);
               return ++measured < maxMeasured;
             });
  for (const auto& [row, height] : heights) {
    if (height <= defaultHeight) continue;
    rows_->resizeSection(row - 1, height);
    tallRows_.insert(row);
  }
}

void GridTable::cellsChanged(const CellBlock& block) {
  readHeights(block.row1, block.row2);
  extendScrollRange();
  viewport()->update();
}

// Wide enough for the largest number and for the headings of the sheet's first rows.
int GridTable::headingWidth() const {
  const Worksheet& sheet = editor()->sheet();
  QFont marked = headingFont();
  marked.setBold(true);
  const QFontMetrics metrics(marked);
  const int shown = std::min(sheet.MaxRow(), std::max(sheet.LastRow() * 2, 9999));
  int width = metrics.horizontalAdvance(QString::number(shown));
  constexpr int searched = 200;
  for (int row = 1; row <= std::min(sheet.MaxRow(), searched); ++row) {
    const std::string text = sheet.RowText(row);
    if (!text.empty()) width = std::max(width, metrics.horizontalAdvance(toQt(text)));
  }
  return width + 14;
}

double GridTable::fittingWidth(int column) const {
  const Worksheet& sheet = editor()->sheet();
  const CellStore& store = sheet.cells(sheet.Sheet());
  double widest = QFontMetricsF(headingFont())
                      .horizontalAdvance(model_.headerData(column - 1, Qt::Horizontal).toString());
  int measured = 0;
  store.visit(1, column, sheet.MaxRow(), column, [&](int row, int, const Cell& cell) {
    const CellFormat& format = sheet.formats().at(cell.format);
    if (format.wrap) return true;
    const QFontMetricsF metrics(cellFont(format, pixelsPerPoint()));
    widest = std::max(widest, metrics.horizontalAdvance(toQt(sheet.TextRC(row, column))));
    return ++measured < maxFitted;
  });
  const int pixels = static_cast<int>(std::ceil(widest)) + 2 * cellPadding(pixelsPerPoint()) + 3;
  return std::min(widestFit, widthInCharacters(pixels));
}

// Several selected columns get their widths together.
void GridTable::columnDragged(int column) {
  const double width = widthInCharacters(columns_->sectionSize(column - 1));
  const CellBlock block = cursor_.block();
  const bool several = cursor_.wholeColumns() && column >= block.column1 && column <= block.column2;
  attempt([&] {
    editor()->setColumnWidth(several ? block.column1 : column, several ? block.column2 : column,
                             width);
  });
}

void GridTable::fitColumn(int column) {
  const CellBlock block = cursor_.block();
  const bool several = cursor_.wholeColumns() && column >= block.column1 && column <= block.column2;
  std::vector<std::pair<int, double>> widths;
  const int first = several ? block.column1 : column;
  const int last =
      several ? std::min(block.column2, std::max(column, editor()->sheet().LastCol())) : column;
  for (int c = first; c <= last; ++c) widths.emplace_back(c, fittingWidth(c));
  attempt([&] { editor()->setColumnWidths(widths); });
}

// --- Frozen rows and scrolling ---

int GridTable::frozenHeight() const {
  if (editor() == nullptr) return 0;
  const int rows = std::min(editor()->sheet().FixedRows(), rows_->count());
  if (rows == 0) return 0;
  const int height = rows_->sectionPosition(rows - 1) + rows_->sectionSize(rows - 1);
  // Some of the other rows must remain visible, so frozen ones are left out.
  const int room = std::max(0, viewport()->height() - 3 * rows_->defaultSectionSize());
  if (height <= room) return height;
  const int first = rows_->visualIndexAt(room - rows_->offset());
  return first < 0 ? 0 : rows_->sectionPosition(first);
}

int GridTable::rowAtY(int y) const {
  if (y < frozenHeight()) return rows_->logicalIndexAt(y - rows_->offset()) + 1;
  return rows_->logicalIndexAt(y) + 1;
}

CellPlace GridTable::cellAt(const QPoint& pos) const {
  const int x = std::clamp(pos.x(), 0, std::max(0, viewport()->width() - 1));
  const int y = std::clamp(pos.y(), 0, std::max(0, viewport()->height() - 1));
  int row = rowAtY(y);
  int column = columns_->logicalIndexAt(x) + 1;
  if (row < 1) row = rows_->count();
  if (column < 1) column = columns_->count();
  return {row, column};
}

QModelIndex GridTable::indexAt(const QPoint& pos) const {
  const int row = rowAtY(pos.y());
  const int column = columns_->logicalIndexAt(pos.x()) + 1;
  return row < 1 || column < 1 ? QModelIndex() : model_.index(row - 1, column - 1);
}

QRect GridTable::visualRect(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  const int row = index.row();
  const int height = rows_->sectionSize(row);
  const bool frozen = rows_->sectionPosition(row) + height <= frozenHeight();
  const int y = rows_->sectionPosition(row) - (frozen ? 0 : rows_->offset());
  return {columns_->sectionViewportPosition(index.column()), y,
          columns_->sectionSize(index.column()), height};
}

void GridTable::scrollTo(const QModelIndex& index, ScrollHint) {
  if (index.isValid()) showCell({index.row() + 1, index.column() + 1});
}

void GridTable::showCell(CellPlace place) {
  showRow(place.row);
  showColumn(place.column);
}

void GridTable::showRow(int row) {
  if (row < 1 || row > rows_->count()) return;
  const int frozen = frozenHeight();
  const int at = rows_->sectionPosition(row - 1);
  const int size = rows_->sectionSize(row - 1);
  if (at + size > frozen)
    bringIntoView(*verticalScrollBar(), at, size, frozen, viewport()->height());
}

void GridTable::showColumn(int column) {
  if (column < 1 || column > columns_->count()) return;
  bringIntoView(*horizontalScrollBar(), columns_->sectionPosition(column - 1),
                columns_->sectionSize(column - 1), 0, viewport()->width());
}

void GridTable::updateGeometries() {
  QTableView::updateGeometries();
  extendScrollRange();
}

// The scroll bars cover the used part and some room after what is shown, not over a million
// empty rows: otherwise the slightest move of the slider would jump out of the data.
void GridTable::extendScrollRange() {
  if (editor() == nullptr) return;
  const auto extend = [](QScrollBar* bar, const QHeaderView& header, int used, int page) {
    if (bar->isSliderDown()) return;
    const int all = std::max(0, header.length() - page);
    used = std::min(used, header.count());
    const int usedLength =
        used == 0 ? 0 : header.sectionPosition(used - 1) + header.sectionSize(used - 1);
    const int wanted = std::max(usedLength - page / 2, bar->value() + page / 2);
    bar->setRange(0, std::min(all, wanted));
    bar->setPageStep(page);
    bar->setSingleStep(header.defaultSectionSize());
  };
  const Worksheet& sheet = editor()->sheet();
  extend(verticalScrollBar(), *rows_, sheet.LastRow(), viewport()->height());
  extend(horizontalScrollBar(), *columns_, sheet.LastCol(), viewport()->width());
}

void GridTable::scrollContentsBy(int dx, int dy) {
  QTableView::scrollContentsBy(dx, dy);
  // The frozen rows stay where they are.
  viewport()->update();
  rows_->viewport()->update();
}

void GridTable::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  extendScrollRange();
}

void GridTable::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) readLayout();
}

void GridTable::selectAll() {
  cursor_.selectAll();
}

// --- Editing ---

bool GridTable::attempt(const std::function<void()>& edit) {
  try {
    edit();
    return true;
  } catch (const Error& error) {
    emit refused(toQt(error.what()));
    return false;
  }
}

bool GridTable::editing() const {
  return delegate_->editor() != nullptr;
}

void GridTable::editActive(std::optional<QString> text) {
  if (editor() == nullptr || editing()) return;
  const CellPlace place = cursor_.active();
  if (!editor()->allows(EditRight::Enter)) return;
  showCell(place);
  delegate_->startWith(std::move(text));
  edit(model_.index(place.row - 1, place.column - 1));
  if (QLineEdit* line = delegate_->editor()) {
    line->deselect();
    line->end(false);
  }
}

void GridTable::commitEditor() {
  QLineEdit* line = delegate_->editor();
  if (line == nullptr) return;
  commitData(line);
  closeEditor(line, QAbstractItemDelegate::NoHint);
}

void GridTable::setPicking(bool picking) {
  picking_ = picking;
  if (picking) {
    viewport()->setCursor(Qt::CrossCursor);
  } else {
    viewport()->unsetCursor();
  }
}

void GridTable::markCopied(std::optional<CellBlock> block) {
  copied_ = block;
  if (copied_) copiedSheet_ = editor()->sheet().Sheet();
  viewport()->update();
}

void GridTable::enterAll(const QString& text) {
  attempt([&] { editor()->enterAll(cursor_.block(), fromQt(text)); });
}

void GridTable::stepOn(Direction direction) {
  cursor_.step(direction);
  showCell(cursor_.active());
  setFocus();
}

void GridTable::editorTextChanged(const QString& text) {
  // A click into the cells must not end a formula: it may point at what the formula reads.
  setFocusPolicy(text.startsWith(QLatin1Char('=')) ? Qt::NoFocus : Qt::StrongFocus);
  if (QLineEdit* line = delegate_->editor()) {
    const CellPlace place = cursor_.active();
    QStyleOptionViewItem option;
    const QModelIndex index = model_.index(place.row - 1, place.column - 1);
    option.rect = visualRect(index);
    delegate_->updateEditorGeometry(line, option, index);
  }
  emit editorText(text, true);
}

void GridTable::editorClosed() {
  setFocusPolicy(Qt::StrongFocus);
  pointStart_ = pointEnd_ = -1;
  emit editorText(QString(), false);
  viewport()->update();
}

}  // namespace lodex
