#include "gui/BinderLinks.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>

#include "gui/QtText.h"
#include "gui/grid/GridTable.h"
#include "gui/grid/WorksheetView.h"
#include "gui/widgets/Mnemonics.h"
#include "gui/widgets/PeriodicTable.h"

namespace lodex {
namespace {

using Show = std::function<void()>;

// --- Labels ---

Show connectLabel(Label& label, const LinkParts& parts) {
  const auto translated = parts.translated;
  if (auto* text = qobject_cast<QLabel*>(&parts.object)) {
    return [&label, text, translated, shown = std::string()]() mutable {
      if (label.caption() == shown) return;
      shown = label.caption();
      text->setText(translated(shown));
    };
  }
  if (auto* group = qobject_cast<QGroupBox*>(&parts.object)) {
    return [&label, group, translated] {
      if (!label.caption().empty()) group->setTitle(translated(label.caption()));
    };
  }
  return [] {};
}

// --- Text ---

Show connectText(TextBox& box, const LinkParts& parts) {
  if (auto* line = qobject_cast<QLineEdit*>(&parts.object)) {
    const auto take = [&box, line] { box.setText(fromQt(line->text())); };
    if (line->property("commitOnFinish").toBool()) {
      QObject::connect(line, &QLineEdit::editingFinished, &parts.context, take);
    } else {
      QObject::connect(line, &QLineEdit::textEdited, &parts.context, take);
    }
    return [&box, line] {
      const QString text = toQt(box.text());
      if (line->text() != text) line->setText(text);
    };
  }
  if (auto* spin = qobject_cast<QSpinBox*>(&parts.object)) {
    QObject::connect(spin, &QSpinBox::valueChanged, &parts.context,
                     [&box](int value) { box.setNumber(value); });
    return [&box, spin] {
      const QSignalBlocker quiet(spin);
      spin->setValue(box.number());
    };
  }
  if (auto* pane = qobject_cast<QPlainTextEdit*>(&parts.object)) {
    QObject::connect(pane, &QPlainTextEdit::textChanged, &parts.context,
                     [&box, pane] { box.setText(fromQt(pane->toPlainText())); });
    // A log grows at its end: only what is new goes into the widget.
    return [&box, pane, shown = std::string()]() mutable {
      const std::string& text = box.text();
      const QSignalBlocker quiet(pane);
      if (!shown.empty() && text.size() >= shown.size() && text.starts_with(shown)) {
        if (text.size() == shown.size()) return;
        QTextCursor end(pane->document());
        end.movePosition(QTextCursor::End);
        end.insertText(toQt(std::string_view(text).substr(shown.size())));
        pane->verticalScrollBar()->setValue(pane->verticalScrollBar()->maximum());
      } else if (fromQt(pane->toPlainText()) != text) {
        pane->setPlainText(toQt(text));
      }
      shown = text;
    };
  }
  if (auto* label = qobject_cast<QLabel*>(&parts.object)) {
    return [&box, label] { label->setText(toQt(box.text())); };
  }
  return {};
}

// --- Check boxes and options ---

Show connectCheck(CheckBox& box, const LinkParts& parts) {
  const auto translated = parts.translated;
  if (auto* button = qobject_cast<QAbstractButton*>(&parts.object)) {
    QObject::connect(button, &QAbstractButton::toggled, &parts.context,
                     [&box](bool on) { box.setChecked(on); });
    return [&box, button, translated] {
      const QSignalBlocker quiet(button);
      button->setChecked(box.checked());
      if (!box.caption().empty()) showText(*button, translated(box.caption()));
    };
  }
  if (auto* action = qobject_cast<QAction*>(&parts.object)) {
    action->setCheckable(true);
    QObject::connect(action, &QAction::toggled, &parts.context,
                     [&box](bool on) { box.setChecked(on); });
    return [&box, action, translated] {
      // Not blocked: the buttons that show the action follow its signals.
      if (action->isChecked() != box.checked()) action->setChecked(box.checked());
      if (!box.caption().empty()) action->setText(translated(box.caption()));
    };
  }
  if (auto* group = qobject_cast<QGroupBox*>(&parts.object)) {
    QObject::connect(group, &QGroupBox::toggled, &parts.context,
                     [&box](bool on) { box.setChecked(on); });
    return [&box, group, translated] {
      const QSignalBlocker quiet(group);
      group->setChecked(box.checked());
      if (!box.caption().empty()) group->setTitle(translated(box.caption()));
    };
  }
  return {};
}

template <typename Tabs>
Show connectTabs(OptionButtons& options, Tabs& tabs, const LinkParts& parts) {
  QObject::connect(&tabs, &Tabs::currentChanged, &parts.context,
                   [&options](int index) { options.select(index); });
  return [&options, &tabs, translated = parts.translated] {
    const QSignalBlocker quiet(&tabs);
    const auto& captions = options.captions();
    for (int i = 0; i < tabs.count() && i < static_cast<int>(captions.size()); ++i) {
      const std::string& caption = captions[static_cast<size_t>(i)];
      if (!caption.empty()) tabs.setTabText(i, translated(caption));
    }
    tabs.setCurrentIndex(options.selected());
  };
}

Show connectRadioButtons(OptionButtons& options, QWidget& group, const LinkParts& parts) {
  const QList<QRadioButton*> buttons = group.findChildren<QRadioButton*>();
  if (buttons.isEmpty()) return {};
  for (int i = 0; i < buttons.size(); ++i) {
    QObject::connect(buttons[i], &QRadioButton::toggled, &parts.context, [&options, i](bool on) {
      if (on) options.select(i);
    });
  }
  return [&options, buttons, translated = parts.translated] {
    const auto& captions = options.captions();
    for (int i = 0; i < buttons.size() && i < static_cast<int>(captions.size()); ++i) {
      const std::string& caption = captions[static_cast<size_t>(i)];
      if (!caption.empty()) showText(*buttons[i], translated(caption));
    }
    if (options.selected() < buttons.size()) {
      QRadioButton* chosen = buttons[options.selected()];
      const QSignalBlocker quiet(chosen);
      chosen->setChecked(true);
    }
  };
}

Show connectOptions(OptionButtons& options, const LinkParts& parts) {
  if (auto* tabs = qobject_cast<QTabWidget*>(&parts.object)) {
    return connectTabs(options, *tabs, parts);
  }
  if (auto* tabs = qobject_cast<QTabBar*>(&parts.object)) return connectTabs(options, *tabs, parts);
  if (auto* stack = qobject_cast<QStackedWidget*>(&parts.object)) {
    return [&options, stack] { stack->setCurrentIndex(options.selected()); };
  }
  if (auto* combo = qobject_cast<QComboBox*>(&parts.object)) {
    QObject::connect(combo, &QComboBox::activated, &parts.context,
                     [&options](int index) { options.select(index); });
    return [&options, combo, translated = parts.translated] {
      const QSignalBlocker quiet(combo);
      if (combo->count() == 0) {
        for (const std::string& caption : options.captions()) combo->addItem(translated(caption));
      }
      combo->setCurrentIndex(options.selected());
    };
  }
  if (auto* widget = qobject_cast<QWidget*>(&parts.object)) {
    return connectRadioButtons(options, *widget, parts);
  }
  return {};
}

// --- Lists ---

bool takesSeveral(const QListWidget& view) {
  return view.selectionMode() == QAbstractItemView::ExtendedSelection ||
         view.selectionMode() == QAbstractItemView::MultiSelection;
}

void showList(const ListBox& list, QListWidget& view) {
  const QSignalBlocker quiet(&view);
  const bool boxes = view.property("checkBoxes").toBool();
  const bool selectionBoxes = view.property("selectionBoxes").toBool();
  if (list.multiple() && !selectionBoxes) {
    view.setSelectionMode(QAbstractItemView::ExtendedSelection);
  }
  while (view.count() > list.count()) delete view.takeItem(view.count() - 1);
  for (int i = 0; i < list.count(); ++i) {
    const QString text = toQt(list.item(i));
    if (i == view.count()) view.addItem(text);
    QListWidgetItem* item = view.item(i);
    if (item->text() != text) item->setText(text);
    if (boxes || selectionBoxes) {
      const bool on = boxes ? list.checked(i) : list.selected(i);
      item->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    }
  }
  const bool several = takesSeveral(view);
  if (view.currentRow() != list.current()) {
    view.setCurrentRow(list.current(), several ? QItemSelectionModel::NoUpdate
                                               : QItemSelectionModel::ClearAndSelect);
  }
  if (!several) return;
  for (int i = 0; i < list.count(); ++i) view.item(i)->setSelected(list.selected(i));
}

void takeSelection(ListBox& list, const QListWidget& view) {
  for (int i = 0; i < list.count() && i < view.count(); ++i) {
    list.setSelected(i, view.item(i)->isSelected());
  }
}

Show connectListWidget(ListBox& list, QListWidget& view, const LinkParts& parts) {
  QObject* context = &parts.context;
  const auto exists = [&list](int row) { return row >= 0 && row < list.count(); };
  QObject::connect(&view, &QListWidget::currentRowChanged, context, [&list, exists](int row) {
    if (exists(row)) list.setCurrent(row);
  });
  QObject::connect(&view, &QListWidget::itemSelectionChanged, context, [&list, &view] {
    if (takesSeveral(view)) takeSelection(list, view);
  });
  QObject::connect(&view, &QListWidget::itemChanged, context,
                   [&list, &view, exists](QListWidgetItem* item) {
                     const int row = view.row(item);
                     if (!exists(row)) return;
                     const bool on = item->checkState() == Qt::Checked;
                     if (view.property("selectionBoxes").toBool()) {
                       list.setSelected(row, on);
                     } else {
                       list.setChecked(row, on);
                     }
                   });
  QObject::connect(&view, &QListWidget::itemClicked, context,
                   [&list, &view, exists](QListWidgetItem* item) {
                     if (exists(view.row(item))) list.click(view.row(item));
                   });
  QObject::connect(&view, &QListWidget::itemActivated, context,
                   [&list, &view, exists](QListWidgetItem* item) {
                     if (exists(view.row(item))) list.activate(view.row(item));
                   });
  return [&list, &view] { showList(list, view); };
}

void showItems(const ListBox& list, QComboBox& combo) {
  for (int i = 0; i < list.count(); ++i) {
    const QString text = toQt(list.item(i));
    if (i == combo.count()) {
      combo.addItem(text);
    } else if (combo.itemText(i) != text) {
      combo.setItemText(i, text);
    }
  }
  while (combo.count() > list.count()) combo.removeItem(combo.count() - 1);
}

Show connectListCombo(ListBox& list, QComboBox& combo, const LinkParts& parts) {
  QObject::connect(&combo, &QComboBox::activated, &parts.context, [&list](int index) {
    if (index >= 0 && index < list.count()) list.click(index);
  });
  return [&list, &combo] {
    const QSignalBlocker quiet(&combo);
    showItems(list, combo);
    combo.setCurrentIndex(list.current());
  };
}

Show connectList(ListBox& list, const LinkParts& parts) {
  if (auto* view = qobject_cast<QListWidget*>(&parts.object)) {
    return connectListWidget(list, *view, parts);
  }
  if (auto* combo = qobject_cast<QComboBox*>(&parts.object)) {
    return connectListCombo(list, *combo, parts);
  }
  if (auto* elements = qobject_cast<PeriodicTable*>(&parts.object)) {
    elements->bind(list);
    // The list belongs to the form, which may end before its window is gone.
    QObject::connect(&parts.context, &QObject::destroyed, elements,
                     [elements] { elements->clear(); });
    return [elements] { elements->refresh(); };
  }
  return {};
}

Show connectCombo(ComboBox& box, const LinkParts& parts) {
  auto* combo = qobject_cast<QComboBox*>(&parts.object);
  if (!combo) return {};
  QObject::connect(combo, &QComboBox::activated, &parts.context, [&box](int index) {
    if (index < 0 || index >= box.count()) return;
    box.setText(box.item(index));
    box.click(index);
  });
  QObject::connect(combo, &QComboBox::editTextChanged, &parts.context,
                   [&box](const QString& text) { box.setText(fromQt(text)); });
  return [&box, combo] {
    const QSignalBlocker quiet(combo);
    showItems(box, *combo);
    combo->setCurrentIndex(box.current());
    if (combo->isEditable()) {
      if (combo->currentText() != toQt(box.text())) combo->setEditText(toQt(box.text()));
    } else if (!box.text().empty() && combo->currentText() != toQt(box.text())) {
      combo->setCurrentIndex(combo->findText(toQt(box.text())));
    }
  };
}

// --- Buttons ---

// A menu, a short cut or a tool button does not take the focus from the field that is being typed
// in.
void finishTyping() {
  auto* line = qobject_cast<QLineEdit*>(QApplication::focusWidget());
  if (line && line->property("commitOnFinish").toBool()) Q_EMIT line->editingFinished();
}

Show connectMenuItem(MenuItem& item, QAction& action, const LinkParts& parts) {
  QObject::connect(&action, &QAction::triggered, &parts.context, [&item, &action] {
    // The form decides whether the mark changes.
    if (action.isCheckable()) action.setChecked(item.checked());
    finishTyping();
    item.click();
  });
  return [&item, &action, translated = parts.translated] {
    if (!item.caption().empty()) action.setText(translated(item.caption()));
    if (item.checked()) action.setCheckable(true);
    if (action.isCheckable()) action.setChecked(item.checked());
  };
}

Show connectButton(Button& button, const LinkParts& parts) {
  const auto translated = parts.translated;
  if (auto* action = qobject_cast<QAction*>(&parts.object)) {
    if (auto* item = dynamic_cast<MenuItem*>(&button))
      return connectMenuItem(*item, *action, parts);
    QObject::connect(action, &QAction::triggered, &parts.context, [&button] {
      finishTyping();
      button.click();
    });
    return [&button, action, translated] {
      if (!button.caption().empty()) action->setText(translated(button.caption()));
    };
  }
  if (auto* widget = qobject_cast<QAbstractButton*>(&parts.object)) {
    const auto* item = dynamic_cast<const MenuItem*>(&button);
    const auto showMark = [item, widget] {
      if (item && widget->isCheckable()) widget->setChecked(item->checked());
    };
    QObject::connect(widget, &QAbstractButton::clicked, &parts.context, [&button, showMark] {
      showMark();  // the form decides whether the mark changes
      finishTyping();
      button.click();
    });
    return [&button, widget, translated, showMark] {
      showMark();
      if (!button.caption().empty()) showText(*widget, translated(button.caption()));
    };
  }
  return {};
}

// --- Bars and grids ---

Show connectProgress(ProgressBar& bar, const LinkParts& parts) {
  auto* widget = qobject_cast<QProgressBar*>(&parts.object);
  if (!widget) return {};
  return [&bar, widget] {
    widget->setMaximum(bar.maximum());
    widget->setValue(bar.value());
  };
}

// Commands of the form can be undone like what was typed.
void connectHistory(Grid& grid, WorksheetView& view) {
  if (const auto& side = grid.sideState(); side.save) {
    view.history().setExtraState(side.save, side.restore);
  }
  if (grid.structureCommand()) view.editor().setStructureCommands(grid.structureCommand());
  const QPointer<WorksheetView> shown(&view);
  grid.setRecorder({[shown](std::string_view name, const std::function<void()>& change) {
                      if (!shown) return change();
                      shown->finishEditing();
                      shown->editor().record(name, change);
                    },
                    [shown] {
                      if (shown) shown->history().clear();
                    }});
}

Show connectGrid(Grid& grid, const LinkParts& parts) {
  auto* view = qobject_cast<WorksheetView*>(&parts.object);
  if (!view) return {};
  view->setSheet(grid.sheet());
  connectHistory(grid, *view);
  QObject::connect(view, &WorksheetView::cellClicked, &parts.context,
                   [&grid](int row, int column) { grid.click(row, column); });
  QObject::connect(view, &WorksheetView::edited, &parts.context, [&grid] { grid.edited(); });
  // The worksheet belongs to the form, which may end before its window is gone.
  QObject::connect(&parts.context, &QObject::destroyed, view, [view] { view->clear(); });
  return [&grid, view] {
    view->refresh();
    view->setPicking(grid.picking());
  };
}

}  // namespace

std::function<void()> connectWidget(const LinkParts& parts) {
  Control& control = parts.control;
  if (auto* label = dynamic_cast<Label*>(&control)) return connectLabel(*label, parts);
  if (auto* text = dynamic_cast<TextBox*>(&control)) return connectText(*text, parts);
  if (auto* check = dynamic_cast<CheckBox*>(&control)) return connectCheck(*check, parts);
  if (auto* options = dynamic_cast<OptionButtons*>(&control))
    return connectOptions(*options, parts);
  if (auto* combo = dynamic_cast<ComboBox*>(&control)) return connectCombo(*combo, parts);
  if (auto* list = dynamic_cast<ListBox*>(&control)) return connectList(*list, parts);
  if (auto* button = dynamic_cast<Button*>(&control)) return connectButton(*button, parts);
  if (auto* bar = dynamic_cast<ProgressBar*>(&control)) return connectProgress(*bar, parts);
  if (auto* grid = dynamic_cast<Grid*>(&control)) return connectGrid(*grid, parts);
  return {};
}

}  // namespace lodex
