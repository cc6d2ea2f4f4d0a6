#include "gui/grid/GridActions.h"

#include <QAction>
#include <QColorDialog>
#include <QCoreApplication>
#include <QFontDialog>
#include <QInputDialog>
#include <QMenu>

#include "basic/A1.h"
#include "basic/Error.h"
#include "gui/QtText.h"
#include "gui/grid/GridCursor.h"
#include "gui/grid/GridPaint.h"
#include "gui/grid/GridPrint.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/NumberFormatDialog.h"
#include "gui/grid/SortDialog.h"
#include "gui/grid/WorksheetView.h"

namespace lodex {
namespace {

constexpr int zoomStep = 10;

// The names that edits have in a history, for translators.
[[maybe_unused]] const char* const editNames[] = {
    QT_TRANSLATE_NOOP("EditHistory", "Typing"),
    QT_TRANSLATE_NOOP("EditHistory", "Delete"),
    QT_TRANSLATE_NOOP("EditHistory", "Clear"),
    QT_TRANSLATE_NOOP("EditHistory", "Cut"),
    QT_TRANSLATE_NOOP("EditHistory", "Paste"),
    QT_TRANSLATE_NOOP("EditHistory", "Paste values"),
    QT_TRANSLATE_NOOP("EditHistory", "Move"),
    QT_TRANSLATE_NOOP("EditHistory", "Fill"),
    QT_TRANSLATE_NOOP("EditHistory", "Fill down"),
    QT_TRANSLATE_NOOP("EditHistory", "Fill right"),
    QT_TRANSLATE_NOOP("EditHistory", "Sort"),
    QT_TRANSLATE_NOOP("EditHistory", "Replace"),
    QT_TRANSLATE_NOOP("EditHistory", "Replace all"),
    QT_TRANSLATE_NOOP("EditHistory", "Insert rows"),
    QT_TRANSLATE_NOOP("EditHistory", "Delete rows"),
    QT_TRANSLATE_NOOP("EditHistory", "Insert columns"),
    QT_TRANSLATE_NOOP("EditHistory", "Delete columns"),
    QT_TRANSLATE_NOOP("EditHistory", "Insert cells"),
    QT_TRANSLATE_NOOP("EditHistory", "Delete cells"),
    QT_TRANSLATE_NOOP("EditHistory", "Bold"),
    QT_TRANSLATE_NOOP("EditHistory", "Italic"),
    QT_TRANSLATE_NOOP("EditHistory", "Underline"),
    QT_TRANSLATE_NOOP("EditHistory", "Font"),
    QT_TRANSLATE_NOOP("EditHistory", "Text colour"),
    QT_TRANSLATE_NOOP("EditHistory", "Number format"),
    QT_TRANSLATE_NOOP("EditHistory", "Alignment"),
    QT_TRANSLATE_NOOP("EditHistory", "Wrap text"),
    QT_TRANSLATE_NOOP("EditHistory", "Borders"),
    QT_TRANSLATE_NOOP("EditHistory", "Column width"),
    QT_TRANSLATE_NOOP("EditHistory", "Hide rows"),
    QT_TRANSLATE_NOOP("EditHistory", "Show rows"),
    QT_TRANSLATE_NOOP("EditHistory", "Hide columns"),
    QT_TRANSLATE_NOOP("EditHistory", "Show columns"),
    QT_TRANSLATE_NOOP("EditHistory", "Freeze rows"),
    QT_TRANSLATE_NOOP("EditHistory", "Unfreeze rows"),
    QT_TRANSLATE_NOOP("EditHistory", "Column heading"),
    QT_TRANSLATE_NOOP("EditHistory", "Row heading"),
    QT_TRANSLATE_NOOP("EditHistory", "Rename sheet"),
    QT_TRANSLATE_NOOP("EditHistory", "Insert sheet"),
    QT_TRANSLATE_NOOP("EditHistory", "Delete sheet"),
};

QString editName(const std::string& name) {
  return QCoreApplication::translate("EditHistory", name.c_str()).toLower();
}

QList<QKeySequence> keys(std::initializer_list<QKeySequence> sequences) {
  return {sequences};
}

}  // namespace

GridActions::GridActions(WorksheetView& view) : QObject(&view), view_(view) {
  addEditing();
  addLines();
  addFormats();
  addViewing();
}

// --- Access to the view ---

SheetEditor& GridActions::editor() const {
  return view_.editor();
}
GridTable& GridActions::table() const {
  return view_.table();
}
GridCursor& GridActions::cursor() const {
  return view_.table().cursor();
}
CellBlock GridActions::block() const {
  return cursor().block();
}

QAction* GridActions::named(const QString& name) const {
  for (QAction* action : actions_) {
    if (action->objectName() == name) return action;
  }
  return nullptr;
}

QAction* GridActions::add(const char* name, const QString& text, const QString& tip,
                          const QList<QKeySequence>& shortCuts, std::function<void()> command) {
  auto* action = new QAction(text, this);
  action->setObjectName(QLatin1String(name));
  QString toolTip = tip;
  if (!shortCuts.isEmpty() && !shortCuts.front().isEmpty()) {
    toolTip += QStringLiteral(" (%1)").arg(shortCuts.front().toString(QKeySequence::NativeText));
  }
  action->setToolTip(toolTip);
  action->setStatusTip(tip);
  action->setShortcuts(shortCuts);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  connect(action, &QAction::triggered, this,
          [this, command = std::move(command)] { run(command); });
  view_.addAction(action);
  actions_.append(action);
  return action;
}

// Commands work on what the user sees, what is being typed included.
void GridActions::run(const std::function<void()>& command) {
  if (!view_.hasSheet()) return;
  view_.finishEditing();
  table().attempt(command);
  update();
}

// --- The commands ---

void GridActions::addEditing() {
  add("actUndo", tr("&Undo"), tr("Take the last change back"), keys({QKeySequence::Undo}),
      [this] { editor().undo(); });
  add("actRedo", tr("&Redo"), tr("Make the change again that was taken back"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)}),
      [this] { editor().redo(); });
  add("actCut", tr("Cu&t"), tr("Move the selection to the clipboard"), keys({QKeySequence::Cut}),
      [this] { copy(true); });
  add("actCopy", tr("&Copy"), tr("Copy the selection to the clipboard"), keys({QKeySequence::Copy}),
      [this] { copy(false); });
  add("actPaste", tr("&Paste"), tr("Paste the clipboard at the active cell"),
      keys({QKeySequence::Paste}), [this] { paste(PasteKind::All); });
  add("actPasteValues", tr("Paste &values"), tr("Paste without formulas and formats"),
      keys({QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_V)}), [this] { paste(PasteKind::Values); });
  add("actClear", tr("Clear co&ntents"), tr("Empty the selected cells and keep their formats"), {},
      [this] { editor().clearContents(block()); });
  add("actClearAll", tr("Clear &all"), tr("Empty the selected cells and take their formats away"),
      {}, [this] { editor().clearAll(block()); });
  add("actFillDown", tr("Fill &down"), tr("Copy the first row of the selection over the others"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_D)}), [this] { editor().fillDown(block()); });
  add("actFillRight", tr("Fill &right"),
      tr("Copy the first column of the selection over the others"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_R)}), [this] { editor().fillRight(block()); });
  add("actSelectAll", tr("Select &all"), tr("Select the whole sheet"),
      keys({QKeySequence::SelectAll}), [this] { cursor().selectAll(); });
  add("actFind", tr("&Find..."), tr("Find a text in the sheet"), keys({QKeySequence::Find}),
      [this] { view_.openFind(false); });
  add("actReplace", tr("R&eplace..."), tr("Find a text and put another one in its place"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_H)}), [this] { view_.openFind(true); });
  add("actFindNext", tr("Find &next"), tr("Go to the next cell with the text"),
      keys({QKeySequence(Qt::Key_F3)}), [this] { view_.findNext(false); });
  add("actFindPrevious", tr("Find pre&vious"), tr("Go to the cell before with the text"),
      keys({QKeySequence(Qt::SHIFT | Qt::Key_F3)}), [this] { view_.findNext(true); });
}

void GridActions::addLines() {
  add("actInsert", tr("&Insert..."), tr("Insert cells, or as many rows or columns as are selected"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)}),
      [this] { insertOrDelete(true); });
  add("actDelete", tr("&Delete..."), tr("Delete the selected cells, rows or columns"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_Minus)}), [this] { insertOrDelete(false); });
  add("actInsertRows", tr("Insert &rows"), tr("Insert rows above the selection"), {},
      [this] { editor().insertRows(block().row1, block().row2); });
  add("actDeleteRows", tr("Delete r&ows"), tr("Delete the selected rows"), {},
      [this] { editor().deleteRows(block().row1, block().row2); });
  add("actInsertColumns", tr("Insert &columns"), tr("Insert columns left of the selection"), {},
      [this] { editor().insertColumns(block().column1, block().column2); });
  add("actDeleteColumns", tr("Delete co&lumns"), tr("Delete the selected columns"), {},
      [this] { editor().deleteColumns(block().column1, block().column2); });
  add("actSortAscending", tr("Sort &ascending"),
      tr("Sort the selected rows by the column of the active cell"), {}, [this] { sort(false); });
  add("actSortDescending", tr("Sort &descending"),
      tr("Sort the selected rows by the column of the active cell, largest first"), {},
      [this] { sort(true); });
  add("actSort", tr("&Sort..."), tr("Sort the selected rows by up to three columns"), {},
      [this] { chooseSort(); });
  add("actColumnWidth", tr("Column &width..."), tr("Set the width of the selected columns"), {},
      [this] { chooseColumnWidth(); });
  add("actFitColumns", tr("&Fit columns"), tr("Make the selected columns as wide as their texts"),
      {}, [this] {
        std::vector<std::pair<int, double>> widths;
        const CellBlock used = editor().usedPart({1, block().column1, 1, block().column2});
        for (int column = used.column1; column <= used.column2; ++column) {
          widths.emplace_back(column, table().fittingWidth(column));
        }
        editor().setColumnWidths(widths);
      });
  add("actHideRows", tr("&Hide rows"), tr("Hide the selected rows"), {},
      [this] { editor().hideRows(block().row1, block().row2, true); });
  add("actShowRows", tr("&Show rows"), tr("Show hidden rows within the selection"), {},
      [this] { editor().hideRows(block().row1, block().row2, false); });
  add("actHideColumns", tr("H&ide columns"), tr("Hide the selected columns"), {},
      [this] { editor().hideColumns(block().column1, block().column2, true); });
  add("actShowColumns", tr("Sh&ow columns"), tr("Show hidden columns within the selection"), {},
      [this] { editor().hideColumns(block().column1, block().column2, false); });
  add("actFreeze", tr("Freeze rows &above"), tr("Keep the rows above the active cell at the top"),
      {}, [this] { editor().freezeRows(cursor().active().row - 1); });
  add("actUnfreeze", tr("&Unfreeze rows"), tr("Let all rows scroll"), {},
      [this] { editor().freezeRows(0); });
}

void GridActions::addFormats() {
  const auto toggled = [this](bool CellFormat::*flag) {
    const CellPlace place = cursor().active();
    return !(editor().formatAt(place.row, place.column).*flag);
  };
  const auto checkable = [](QAction* action) { action->setCheckable(true); };
  checkable(add("actBold", tr("&Bold"), tr("Bold text"), keys({QKeySequence::Bold}),
                [=, this] { editor().setBold(block(), toggled(&CellFormat::bold)); }));
  checkable(add("actItalic", tr("&Italic"), tr("Italic text"), keys({QKeySequence::Italic}),
                [=, this] { editor().setItalic(block(), toggled(&CellFormat::italic)); }));
  checkable(add("actUnderline", tr("&Underline"), tr("Underlined text"),
                keys({QKeySequence::Underline}),
                [=, this] { editor().setUnderline(block(), toggled(&CellFormat::underline)); }));
  checkable(add("actWrap", tr("&Wrap text"), tr("Break long texts into lines"), {},
                [=, this] { editor().setWrap(block(), toggled(&CellFormat::wrap)); }));
  add("actFont", tr("&Font..."), tr("Choose font and size"), {}, [this] { chooseFont(); });
  add("actTextColor", tr("Text &colour..."), tr("Choose the colour of the text"), {},
      [this] { chooseColor(false); });
  add("actFill", tr("Fi&ll..."), tr("Choose the colour behind the text"), {},
      [this] { chooseColor(true); });
  add("actNoFill", tr("N&o fill"), tr("Take the colour behind the text away"), {},
      [this] { editor().setFill(block(), automaticColor); });
  add("actNumberFormat", tr("&Number format..."), tr("Choose how numbers are shown"), {},
      [this] { chooseNumberFormat(); });
  const auto border = [this](const char* name, const QString& text, const QString& tip,
                             Borders borders) {
    add(name, text, tip, {}, [this, borders] { editor().setBorders(block(), borders); });
  };
  border("actBorderOutline", tr("Lines &around"), tr("Lines around the selection"),
         Borders::Outline);
  border("actBorderAll", tr("Lines around &each cell"), tr("Lines around every selected cell"),
         Borders::All);
  border("actBorderBottom", tr("Line &below"), tr("A line below the selection"), Borders::Bottom);
  border("actBorderNone", tr("&No lines"), tr("Take the lines of the selected cells away"),
         Borders::None);
  const auto align = [this](const char* name, const QString& text, const QString& tip,
                            HorizontalAlignment alignment) {
    add(name, text, tip, {}, [this, alignment] { editor().setAlignment(block(), alignment); });
  };
  align("actAlignGeneral", tr("Align by con&tent"), tr("Texts left, numbers right"),
        HorizontalAlignment::General);
  align("actAlignLeft", tr("Align l&eft"), tr("Align at the left edge"), HorizontalAlignment::Left);
  align("actAlignCenter", tr("Cent&re"), tr("Centre in the cell"), HorizontalAlignment::Center);
  align("actAlignRight", tr("Align ri&ght"), tr("Align at the right edge"),
        HorizontalAlignment::Right);
}

void GridActions::addViewing() {
  add("actZoomIn", tr("Zoom &in"), tr("Show cells larger"),
      keys({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Plus)}),
      [this] { view_.setZoom(view_.zoom() + zoomStep); });
  add("actZoomOut", tr("Zoom &out"), tr("Show cells smaller"),
      keys({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Minus)}),
      [this] { view_.setZoom(view_.zoom() - zoomStep); });
  add("actZoomReset", tr("&Zoom 100 %"), tr("Show cells in their natural size"),
      keys({QKeySequence(Qt::CTRL | Qt::Key_0)}), [this] { view_.setZoom(100); });
  add("actPrint", tr("&Print..."), tr("Print the sheet"), keys({QKeySequence::Print}),
      [this] { printSheet(view_, view_.editor().sheet(), printing_); });
  add("actPageSetup", tr("Page &set-up..."), tr("Choose paper, margins and orientation"), {},
      [this] { setUpPage(view_, printing_); });
  add("actPrintFitWidth", tr("Fit columns to the pa&ge"),
      tr("Print all columns side by side, smaller where needed"), {},
      [this] { printing_.fitWidth = !printing_.fitWidth; })
      ->setCheckable(true);
  add("actPrintPreview", tr("Print pre&view..."), tr("Show the pages as they will be printed"), {},
      [this] { previewSheet(view_, view_.editor().sheet(), printing_); });
}

void GridActions::copy(bool cut) {
  clipboard_.describe(editor().sheet(), editor().usedPart(block()));
  if (cut) {
    editor().cut(block(), clipboard_);
  } else {
    editor().copy(block(), clipboard_);
    table().markCopied(editor().usedPart(block()));
  }
}

void GridActions::paste(PasteKind kind) {
  const CellBlock written = editor().paste(block(), clipboard_, kind);
  cursor().select(written, {written.row1, written.column1});
}

void GridActions::insertOrDelete(bool insert) {
  const CellBlock cells = block();
  int choice;
  if (cursor().wholeRows()) {
    choice = 2;
  } else if (cursor().wholeColumns()) {
    choice = 3;
  } else {
    const QStringList choices =
        insert ? QStringList{tr("Cells, moving others down"), tr("Cells, moving others right"),
                             tr("Whole rows"), tr("Whole columns")}
               : QStringList{tr("Cells, moving others up"), tr("Cells, moving others left"),
                             tr("Whole rows"), tr("Whole columns")};
    bool ok = false;
    const QString chosen =
        QInputDialog::getItem(&view_, insert ? tr("Insert") : tr("Delete"),
                              insert ? tr("Insert:") : tr("Delete:"), choices, 0, false, &ok);
    if (!ok) return;
    choice = static_cast<int>(choices.indexOf(chosen));
  }
  if (choice < 2) {
    const Shift shift = choice == 0 ? Shift::Down : Shift::Right;
    if (insert) {
      editor().insertCells(cells, shift);
    } else {
      editor().deleteCells(cells, shift);
    }
  } else if (choice == 2) {
    if (insert) {
      editor().insertRows(cells.row1, cells.row2);
    } else {
      editor().deleteRows(cells.row1, cells.row2);
    }
  } else if (insert) {
    editor().insertColumns(cells.column1, cells.column2);
  } else {
    editor().deleteColumns(cells.column1, cells.column2);
  }
}

// A selection of one row means the sheet below the frozen rows.
CellBlock GridActions::sortBlock() const {
  const CellBlock cells = block();
  if (cells.rows() > 1) return editor().usedPart(cells);
  const int first = editor().sheet().FixedRows() + 1;
  return editor().usedPart(editor().wholeSheet()).cutTo({first, 1, maxRows, maxColumns});
}

void GridActions::sort(bool descending) {
  const CellBlock cells = sortBlock();
  if (!cells.empty()) editor().sort(cells, {{cursor().active().column, descending}});
}

void GridActions::chooseSort() {
  CellBlock cells = sortBlock();
  if (cells.empty()) return;
  SortDialog dialog(editor().sheet(), cells, cursor().active().column, &view_);
  if (dialog.exec() != QDialog::Accepted || dialog.keys().empty()) return;
  if (dialog.hasHeading()) ++cells.row1;
  if (!cells.empty()) editor().sort(cells, dialog.keys());
}

void GridActions::chooseFont() {
  const CellPlace place = cursor().active();
  const CellFormat& now = editor().formatAt(place.row, place.column);
  QFont start(toQt(now.fontName));
  start.setPointSizeF(now.fontSize);
  start.setBold(now.bold);
  start.setItalic(now.italic);
  bool ok = false;
  const QFont font = QFontDialog::getFont(&ok, start, &view_, tr("Font"));
  if (!ok) return;
  editor().changeFormat(block(), "Font", [&](CellFormat& cell) {
    cell.fontName = fromQt(font.family());
    cell.fontSize = font.pointSizeF();
    cell.bold = font.bold();
    cell.italic = font.italic();
    cell.underline = font.underline();
    cell.strikeout = font.strikeOut();
  });
}

void GridActions::chooseColor(bool fill) {
  const CellPlace place = cursor().active();
  const CellFormat& now = editor().formatAt(place.row, place.column);
  const Color start = fill ? now.patternColor : now.fontColor;
  const QColor chosen =
      QColorDialog::getColor(start == automaticColor ? QColor(fill ? Qt::white : Qt::black)
                                                     : QColor::fromRgb(static_cast<QRgb>(start)),
                             &view_, fill ? tr("Fill") : tr("Text colour"));
  if (!chosen.isValid()) return;
  const Color color = static_cast<Color>(chosen.rgb() & 0xFFFFFF);
  if (fill) {
    editor().setFill(block(), color);
  } else {
    editor().setFontColor(block(), color);
  }
}

void GridActions::chooseNumberFormat() {
  const CellPlace place = cursor().active();
  NumberFormatDialog dialog(editor().sheet().ValueRC(place.row, place.column),
                            editor().formatAt(place.row, place.column).numberFormat, &view_);
  if (dialog.exec() == QDialog::Accepted) editor().setNumberFormat(block(), dialog.format());
}

void GridActions::chooseColumnWidth() {
  const Worksheet& sheet = editor().sheet();
  const int column = cursor().active().column;
  const double now = sheet.columnWidth(sheet.Sheet(), column);
  bool ok = false;
  const double width =
      QInputDialog::getDouble(&view_, tr("Column width"), tr("Width in characters:"),
                              now > 0 ? now : usualColumnWidth, 0.25, 255, 2, &ok);
  if (ok) editor().setColumnWidth(block().column1, block().column2, width);
}

void GridActions::renameSheet(int sheet) {
  if (!editor().allows(EditRight::Headings)) return;
  bool ok = false;
  const QString name =
      QInputDialog::getText(&view_, tr("Rename sheet"), tr("Name:"), QLineEdit::Normal,
                            toQt(editor().sheet().SheetName(sheet)), &ok);
  if (ok) run([&] { editor().renameSheet(sheet, fromQt(name)); });
}

// --- States and menus ---

void GridActions::enable(const char* name, bool enabled) {
  named(QLatin1String(name))->setEnabled(enabled);
}

void GridActions::update() {
  const bool sheet = view_.hasSheet();
  const auto allows = [&](EditRight right) { return sheet && editor().allows(right); };
  const bool enter = allows(EditRight::Enter);
  const bool erase = allows(EditRight::Delete);
  const bool fill = allows(EditRight::Fill);
  const bool format = allows(EditRight::Format);
  for (QAction* action : actions_) action->setEnabled(sheet);
  for (const char* name :
       {"actPaste", "actPasteValues", "actReplace", "actInsert", "actInsertRows",
        "actInsertColumns", "actSortAscending", "actSortDescending", "actSort"}) {
    enable(name, enter);
  }
  for (const char* name :
       {"actCut", "actClear", "actClearAll", "actDelete", "actDeleteRows", "actDeleteColumns"}) {
    enable(name, erase);
  }
  for (const char* name : {"actFillDown", "actFillRight"}) enable(name, fill);
  for (const char* name : {"actBold", "actItalic", "actUnderline", "actWrap", "actFont",
                           "actTextColor", "actFill", "actNoFill", "actNumberFormat",
                           "actAlignGeneral", "actAlignLeft", "actAlignCenter", "actAlignRight"}) {
    enable(name, format);
  }
  const EditHistory& history = view_.history();
  const bool mayUndo = sheet && !editor().readOnly();
  QAction* undo = named(QStringLiteral("actUndo"));
  undo->setEnabled(mayUndo && history.canUndo());
  undo->setText(history.canUndo() ? tr("&Undo %1").arg(editName(history.undoText())) : tr("&Undo"));
  QAction* redo = named(QStringLiteral("actRedo"));
  redo->setEnabled(mayUndo && history.canRedo());
  redo->setText(history.canRedo() ? tr("&Redo %1").arg(editName(history.redoText())) : tr("&Redo"));
  if (!sheet) return;
  enable("actUnfreeze", editor().sheet().FixedRows() > 0);
  const CellPlace place = cursor().active();
  enable("actFreeze", place.row > 1);
  if (!editor().wholeSheet().contains(place.row, place.column)) return;
  const CellFormat& cell = editor().formatAt(place.row, place.column);
  named(QStringLiteral("actBold"))->setChecked(cell.bold);
  named(QStringLiteral("actItalic"))->setChecked(cell.italic);
  named(QStringLiteral("actUnderline"))->setChecked(cell.underline);
  named(QStringLiteral("actWrap"))->setChecked(cell.wrap);
}

void GridActions::addAll(QMenu& menu, std::initializer_list<const char*> names) const {
  for (const char* name : names) {
    if (*name == '\0') {
      menu.addSeparator();
    } else {
      menu.addAction(named(QLatin1String(name)));
    }
  }
}

void GridActions::fillFillMenu(QMenu& menu) const {
  addAll(menu, {"actFillDown", "actFillRight"});
}

void GridActions::fillSortMenu(QMenu& menu) const {
  addAll(menu, {"actSortAscending", "actSortDescending", "actSort"});
}

void GridActions::fillFormatMenu(QMenu& menu) const {
  addAll(menu, {"actNumberFormat", "actFont", "actBold", "actItalic", "actUnderline", "",
                "actTextColor", "actFill", "actNoFill", "", "actAlignGeneral", "actAlignLeft",
                "actAlignCenter", "actAlignRight", "actWrap"});
  addAll(*menu.addMenu(tr("Line&s")),
         {"actBorderOutline", "actBorderAll", "actBorderBottom", "actBorderNone"});
}

void GridActions::fillViewMenu(QMenu& menu) const {
  addAll(menu, {"actFreeze", "actUnfreeze", "", "actZoomIn", "actZoomOut", "actZoomReset"});
}

void GridActions::fillPrintMenu(QMenu& menu) const {
  addAll(menu, {"actPageSetup", "actPrintFitWidth", "actPrintPreview", "actPrint"});
}

void GridActions::fillContextMenu(QMenu& menu, int row, int column) {
  update();
  addAll(menu, {"actCut", "actCopy", "actPaste", "actPasteValues", ""});
  if (row == 0) {
    addAll(menu, {"actInsertColumns", "actDeleteColumns", "actClear", "", "actColumnWidth",
                  "actFitColumns", "actHideColumns", "actShowColumns", ""});
  } else if (column == 0) {
    addAll(menu, {"actInsertRows", "actDeleteRows", "actClear", "", "actHideRows", "actShowRows",
                  "actFreeze", "actUnfreeze", ""});
  } else {
    addAll(menu, {"actInsert", "actDelete", "actClear", "actClearAll", ""});
    fillFillMenu(*menu.addMenu(tr("Fi&ll")));
  }
  fillSortMenu(*menu.addMenu(tr("&Sort")));
  fillFormatMenu(*menu.addMenu(tr("F&ormat")));
  QMenu* viewing = menu.addMenu(tr("&View"));
  fillViewMenu(*viewing);
  viewing->addSeparator();
  fillPrintMenu(*viewing);
  menu.addSeparator();
  addAll(menu, {"actFind", "actReplace", "actSelectAll"});
}

void GridActions::fillTabMenu(QMenu& menu, int sheet) {
  const auto item = [&](const QString& text, EditRight right, std::function<void()> command) {
    QAction* action = menu.addAction(text);
    action->setEnabled(editor().allows(right));
    connect(action, &QAction::triggered, this,
            [this, command = std::move(command)] { run(command); });
    return action;
  };
  connect(menu.addAction(tr("&Rename...")), &QAction::triggered, this,
          [this, sheet] { renameSheet(sheet); });
  menu.actions().constLast()->setEnabled(editor().allows(EditRight::Headings));
  item(tr("&Insert sheet"), EditRight::Enter, [this, sheet] { editor().insertSheet(sheet); });
  item(tr("&Delete sheet"), EditRight::Delete, [this, sheet] {
    editor().deleteSheet(sheet);
  })->setEnabled(editor().allows(EditRight::Delete) && editor().sheet().NumSheets() > 1);
}

}  // namespace lodex
