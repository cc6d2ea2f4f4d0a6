#include "gui/grid/SortDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>

#include "basic/A1.h"
#include "gui/QtText.h"

namespace lodex {
namespace {

constexpr int mostKeys = 3;
constexpr int longestSample = 30;  // characters

// "B  (-ID-, SampleNo)"
QString columnName(const Worksheet& sheet, int row, int column) {
  QStringList details;
  if (const std::string heading = sheet.ColText(column); !heading.empty()) details << toQt(heading);
  if (const QString first = toQt(sheet.TextRC(row, column)); !first.isEmpty()) {
    details << first.left(longestSample);
  }
  const QString letters = toQt(columnLetters(column));
  return details.isEmpty()
             ? letters
             : QStringLiteral("%1  (%2)").arg(letters, details.join(QStringLiteral(", ")));
}

}  // namespace

SortDialog::SortDialog(const Worksheet& sheet, const CellBlock& block, int column, QWidget* parent)
    : QDialog(parent), heading_(new QCheckBox(tr("The &first row is a heading and stays"), this)) {
  setWindowTitle(tr("Sort"));
  heading_->setObjectName(QStringLiteral("sortHeading"));
  auto* layout = new QGridLayout(this);
  const QString labels[mostKeys] = {tr("Sort by:"), tr("then by:"), tr("then by:")};
  for (int i = 0; i < mostKeys; ++i) {
    auto* columns = new QComboBox(this);
    columns->setObjectName(QStringLiteral("sortColumn%1").arg(i + 1));
    columns->setAccessibleName(labels[i]);
    columns->addItem(tr("(none)"), 0);
    for (int c = block.column1; c <= block.column2; ++c) {
      columns->addItem(columnName(sheet, block.row1, c), c);
    }
    auto* descending = new QCheckBox(tr("Largest first"), this);
    descending->setObjectName(QStringLiteral("sortDescending%1").arg(i + 1));
    layout->addWidget(new QLabel(labels[i], this), i, 0);
    layout->addWidget(columns, i, 1);
    layout->addWidget(descending, i, 2);
    keys_.push_back({columns, descending});
  }
  keys_.front().column->setCurrentIndex(std::max(0, keys_.front().column->findData(column)));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  layout->addWidget(heading_, mostKeys, 0, 1, 3);
  layout->addWidget(buttons, mostKeys + 1, 0, 1, 3);
  layout->setColumnStretch(1, 1);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

std::vector<SortKey> SortDialog::keys() const {
  std::vector<SortKey> keys;
  for (const Key& key : keys_) {
    const int column = key.column->currentData().toInt();
    if (column > 0) keys.push_back({column, key.descending->isChecked()});
  }
  return keys;
}

bool SortDialog::hasHeading() const {
  return heading_->isChecked();
}

}  // namespace lodex
