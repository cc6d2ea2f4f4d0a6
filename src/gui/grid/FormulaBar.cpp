#include "gui/grid/FormulaBar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace lodex {

FormulaBar::FormulaBar(QWidget* parent)
    : QWidget(parent),
      address_(new QLineEdit(this)),
      entry_(new QLineEdit(this)),
      accept_(new QToolButton(this)),
      cancel_(new QToolButton(this)) {
  setObjectName(QStringLiteral("formulaBar"));
  address_->setObjectName(QStringLiteral("cellAddress"));
  address_->setAccessibleName(tr("Cell address"));
  address_->setToolTip(tr("The active cell. Type an address such as B7 or B7:D9 to go there."));
  address_->setFixedWidth(address_->fontMetrics().horizontalAdvance(QStringLiteral("XFD1048576")) +
                          16);
  entry_->setObjectName(QStringLiteral("formulaEdit"));
  entry_->setAccessibleName(tr("Content of the active cell"));
  accept_->setObjectName(QStringLiteral("formulaAccept"));
  accept_->setText(QStringLiteral("\u2713"));
  accept_->setToolTip(tr("Enter (Return)"));
  cancel_->setObjectName(QStringLiteral("formulaCancel"));
  cancel_->setText(QStringLiteral("\u2715"));
  cancel_->setToolTip(tr("Cancel (Esc)"));
  for (QToolButton* button : {accept_, cancel_}) {
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setEnabled(false);
  }
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->setSpacing(2);
  layout->addWidget(address_);
  layout->addWidget(cancel_);
  layout->addWidget(accept_);
  layout->addWidget(entry_, 1);
  entry_->installEventFilter(this);
  address_->installEventFilter(this);
  connect(address_, &QLineEdit::returnPressed, this, [this] {
    const QString text = address_->text();
    address_->setText(shownAddress_);
    emit goTo(text);
  });
  connect(entry_, &QLineEdit::textEdited, this, [this] {
    accept_->setEnabled(true);
    cancel_->setEnabled(true);
  });
  connect(accept_, &QToolButton::clicked, this, [this] { accept(false); });
  connect(cancel_, &QToolButton::clicked, this, &FormulaBar::cancel);
}

void FormulaBar::showCell(const QString& address, const QString& entry, bool editable) {
  shownAddress_ = address;
  shownEntry_ = entry;
  if (!address_->hasFocus()) address_->setText(address);
  entry_->setText(entry);
  entry_->setCursorPosition(0);
  entry_->setReadOnly(!editable);
  accept_->setEnabled(false);
  cancel_->setEnabled(false);
}

void FormulaBar::showTyping(const QString& text) {
  entry_->setText(text);
}

void FormulaBar::accept(bool moveDown) {
  if (entry_->isReadOnly()) return emit left();
  emit entered(entry_->text(), moveDown);
}

void FormulaBar::cancel() {
  entry_->setText(shownEntry_);
  emit left();
}

bool FormulaBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape) {
      address_->setText(shownAddress_);
      cancel();
      return true;
    }
    if (watched == entry_ && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
      accept(true);
      return true;
    }
  }
  // Leaving the line for another cell takes over what was typed, as in the cell itself.
  if (watched == entry_ && event->type() == QEvent::FocusOut && accept_->isEnabled()) {
    accept_->setEnabled(false);
    emit entered(entry_->text(), false);
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace lodex
