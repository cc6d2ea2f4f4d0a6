#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>
#include <vector>

#include "form/Controls.h"

namespace lodex {

class ElementCell;

/// The periodic table as a choice: a cell per entry of a list of element symbols, at the element's
/// place; what is not an element (such as "Fe2") is placed above the transition metals. Checked
/// entries are marked, the current one is highlighted. A click makes an entry current; arrow keys
/// move through the table, Home and End go to its ends, a letter jumps to the next symbol that
/// begins with it.
class PeriodicTable : public QWidget {
  Q_OBJECT
 public:
  explicit PeriodicTable(QWidget* parent = nullptr);

  /// Shows the list, which must live until clear() or the end of the table. The table does not
  /// observe it: refresh() after changes.
  void bind(ListBox& list);
  void clear();
  /// Updates cells and marks from the list.
  void refresh();

  /// The cell of an entry, counted from 0, its object name "element" and the symbol; null for an
  /// entry without text.
  QWidget* cell(int index) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void makeCells();
  void placeCells();
  void choose(int index);
  int current() const;
  // All return -1 when there is no such entry.
  int neighbour(QPoint direction) const;
  int firstFrom(int index, int step) const;
  int nextWithLetter(const QString& letter) const;

  ListBox* list_ = nullptr;
  std::vector<ElementCell*> cells_;  // by entry, null for entries without text
};

}  // namespace lodex
