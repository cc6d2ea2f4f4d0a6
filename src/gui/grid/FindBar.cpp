#include "gui/grid/FindBar.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

namespace lodex {

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      text_(new QLineEdit(this)),
      with_(new QLineEdit(this)),
      replace_(new QPushButton(tr("&Replace"), this)),
      replaceAll_(new QPushButton(tr("Replace &all"), this)),
      matchCase_(new QCheckBox(tr("Match &case"), this)),
      wholeCell_(new QCheckBox(tr("&Whole cells"), this)),
      inFormulas_(new QCheckBox(tr("In &formulas"), this)),
      result_(new QLabel(this)) {
  setObjectName(QStringLiteral("findBar"));
  text_->setObjectName(QStringLiteral("findText"));
  text_->setPlaceholderText(tr("Find"));
  text_->setAccessibleName(tr("Text to find"));
  text_->setClearButtonEnabled(true);
  with_->setObjectName(QStringLiteral("replaceText"));
  with_->setPlaceholderText(tr("Replace with"));
  with_->setAccessibleName(tr("Text to put in its place"));
  replace_->setObjectName(QStringLiteral("replaceOne"));
  replaceAll_->setObjectName(QStringLiteral("replaceAll"));
  // In a dialogue Enter is for its own default button.
  replace_->setAutoDefault(false);
  replaceAll_->setAutoDefault(false);
  matchCase_->setObjectName(QStringLiteral("findMatchCase"));
  wholeCell_->setObjectName(QStringLiteral("findWholeCells"));
  inFormulas_->setObjectName(QStringLiteral("findInFormulas"));
  inFormulas_->setToolTip(tr("Search what was entered instead of what is shown"));
  result_->setObjectName(QStringLiteral("findResult"));

  const auto tool = [this](const char* name, const QString& text, const QString& tip) {
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setText(text);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    return button;
  };
  auto* back = tool("findPrevious", QStringLiteral("\u25B2"), tr("Find previous (Shift+F3)"));
  auto* next = tool("findNext", QStringLiteral("\u25BC"), tr("Find next (F3)"));
  auto* close = tool("findClose", QStringLiteral("\u2715"), tr("Close (Esc)"));

  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(4, 2, 4, 2);
  layout->setVerticalSpacing(2);
  auto* finding = new QHBoxLayout;
  finding->addWidget(back);
  finding->addWidget(next);
  finding->addWidget(matchCase_);
  finding->addWidget(wholeCell_);
  finding->addWidget(inFormulas_);
  finding->addWidget(result_, 1);
  finding->addWidget(close);
  auto* replacing = new QHBoxLayout;
  replacing->addWidget(replace_);
  replacing->addWidget(replaceAll_);
  replacing->addStretch(1);
  layout->addWidget(text_, 0, 0);
  layout->addLayout(finding, 0, 1);
  layout->addWidget(with_, 1, 0);
  layout->addLayout(replacing, 1, 1);
  text_->setMinimumWidth(200);
  layout->setColumnStretch(0, 1);
  layout->setColumnStretch(1, 3);

  connect(text_, &QLineEdit::returnPressed, this, [this] { emit find(false); });
  connect(with_, &QLineEdit::returnPressed, this, &FindBar::replaceOne);
  connect(back, &QToolButton::clicked, this, [this] { emit find(true); });
  connect(next, &QToolButton::clicked, this, [this] { emit find(false); });
  connect(replace_, &QPushButton::clicked, this, &FindBar::replaceOne);
  connect(replaceAll_, &QPushButton::clicked, this, &FindBar::replaceAll);
  connect(close, &QToolButton::clicked, this, &FindBar::closed);
  connect(text_, &QLineEdit::textChanged, this, [this] { showResult(QString()); });
}

void FindBar::open(bool replacing, const QString& text) {
  for (QWidget* part : {static_cast<QWidget*>(with_), static_cast<QWidget*>(replace_),
                        static_cast<QWidget*>(replaceAll_)}) {
    part->setVisible(replacing);
  }
  if (!text.isEmpty()) text_->setText(text);
  show();
  text_->setFocus();
  text_->selectAll();
}

QString FindBar::text() const {
  return text_->text();
}

QString FindBar::replacement() const {
  return with_->text();
}

SearchOptions FindBar::options() const {
  return {matchCase_->isChecked(), wholeCell_->isChecked(), inFormulas_->isChecked(), false};
}

void FindBar::showResult(const QString& result) {
  result_->setText(result);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return emit closed();
  QWidget::keyPressEvent(event);
}

}  // namespace lodex
