#include "gui/widgets/AccessibleNames.h"

#include <QAbstractButton>
#include <QLabel>

#include "gui/widgets/Mnemonics.h"

namespace lodex {

void addAccessibleNames(QWidget& root) {
  // Lists and tables do not look for their label on their own.
  for (const QLabel* label : root.findChildren<QLabel*>()) {
    QWidget* input = label->buddy();
    if (!input || !input->accessibleName().isEmpty()) continue;
    QString name = withoutMnemonic(label->text());
    if (name.endsWith(QLatin1Char(':'))) name.chop(1);
    input->setAccessibleName(name);
  }
  for (QWidget* input : root.findChildren<QWidget*>()) {
    const bool speaks = qobject_cast<QAbstractButton*>(input) || !input->accessibleName().isEmpty();
    if (speaks || !(input->focusPolicy() & Qt::TabFocus)) continue;
    input->setAccessibleName(input->toolTip());
  }
}

}  // namespace lodex
