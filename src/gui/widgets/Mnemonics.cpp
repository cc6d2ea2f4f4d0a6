#include "gui/widgets/Mnemonics.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>

namespace lodex {
namespace {

QChar letterOf(const QString& text) {
  for (qsizetype i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != QLatin1Char('&')) continue;
    if (text[i + 1] != QLatin1Char('&')) return text[i + 1].toLower();
    ++i;
  }
  return {};
}

// The place in the text of the letter to mark; -1 when all its letters are taken.
qsizetype freeLetter(const QString& text, const QSet<QChar>& taken) {
  for (const bool startsOnly : {true, false}) {
    for (qsizetype i = 0; i < text.size(); ++i) {
      const bool starts = i == 0 || !text[i - 1].isLetterOrNumber();
      const QChar letter = text[i].toLower();
      if ((!startsOnly || starts) && letter.isLetter() && !taken.contains(letter)) return i;
    }
  }
  return -1;
}

template <typename Widget>
void mark(Widget& widget, QSet<QChar>& taken) {
  const QString text = widget.text();
  if (!letterOf(text).isNull()) return;
  const qsizetype place = freeLetter(text, taken);
  if (place < 0) return;
  taken.insert(text[place].toLower());
  widget.setText(QString(text).insert(place, QLatin1Char('&')));
}

bool wantsLetter(const QAbstractButton& button) {
  const QString text = button.text();
  const bool standard = qobject_cast<const QPushButton*>(&button) ||
                        qobject_cast<const QCheckBox*>(&button) ||
                        qobject_cast<const QRadioButton*>(&button);
  if (text.isEmpty() || !standard) return false;
  return text != QLatin1String("OK") && button.objectName() != QLatin1String("cmdCancel");
}

}  // namespace

QString withoutMnemonic(const QString& text) {
  QString plain;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] == QLatin1Char('&') && i + 1 < text.size()) ++i;
    plain += text[i];
  }
  return plain;
}

void addMnemonics(QWidget& window) {
  const auto buttons = window.findChildren<QAbstractButton*>();
  const auto labels = window.findChildren<QLabel*>();
  QSet<QChar> taken;
  for (const QMenuBar* bar : window.findChildren<QMenuBar*>()) {
    for (const QAction* menu : bar->actions()) taken.insert(letterOf(menu->text()));
  }
  for (const QAbstractButton* button : buttons) taken.insert(letterOf(button->text()));
  for (const QLabel* label : labels) {
    if (label->buddy()) taken.insert(letterOf(label->text()));
  }
  for (QAbstractButton* button : buttons) {
    if (wantsLetter(*button)) mark(*button, taken);
  }
  for (QLabel* label : labels) {
    if (label->buddy() && !label->text().isEmpty()) mark(*label, taken);
  }
}

}  // namespace lodex
