#include "gui/grid/NumberFormatDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "gui/QtText.h"
#include "worksheet/NumberFormat.h"

namespace lodex {
namespace {

// Shown for a cell without a number.
constexpr double sampleNumber = 1234.5678;

}  // namespace

NumberFormatDialog::NumberFormatDialog(const Value& sample, const std::string& format,
                                       QWidget* parent)
    : QDialog(parent),
      sample_(sample.isNumber() ? sample : Value(sampleNumber)),
      known_(new QTreeWidget(this)),
      format_(new QLineEdit(toQt(format), this)),
      shown_(new QLabel(this)) {
  setWindowTitle(tr("Number format"));
  known_->setObjectName(QStringLiteral("knownFormats"));
  format_->setObjectName(QStringLiteral("formatText"));
  format_->setAccessibleName(tr("Format"));
  const std::pair<QString, const char*> formats[] = {
      {tr("General"), "General"},
      {tr("Whole numbers"), "0"},
      {tr("One decimal"), "0.0"},
      {tr("Two decimals"), "0.00"},
      {tr("Three decimals"), "0.000"},
      {tr("Four decimals"), "0.0000"},
      {tr("Thousands, two decimals"), "#,##0.00"},
      {tr("Negative numbers red"), "0.00;[Red]-0.00"},
      {tr("Percent"), "0.00%"},
      {tr("Powers of ten"), "0.00E+00"},
      {tr("Date"), "yyyy-mm-dd"},
      {tr("Date and time"), "yyyy-mm-dd hh:mm"},
      {tr("Text"), "@"},
  };
  known_->setHeaderLabels({tr("Numbers as"), tr("Format"), tr("Sample")});
  known_->setRootIsDecorated(false);
  for (const auto& [name, code] : formats) {
    auto* item = new QTreeWidgetItem(
        known_, {name, QString::fromLatin1(code), toQt(formattedText(sample_, code))});
    if (format == code) known_->setCurrentItem(item);
  }
  for (int column = 0; column < 3; ++column) known_->resizeColumnToContents(column);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(known_);
  layout->addWidget(format_);
  layout->addWidget(shown_);
  layout->addWidget(buttons);
  connect(known_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (item != nullptr) format_->setText(item->text(1));
  });
  connect(known_, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(format_, &QLineEdit::textChanged, this, &NumberFormatDialog::showSample);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  showSample();
  resize(460, 420);
}

std::string NumberFormatDialog::format() const {
  const std::string text = fromQt(format_->text().trimmed());
  return text.empty() ? "General" : text;
}

void NumberFormatDialog::showSample() {
  shown_->setText(tr("Sample: %1").arg(toQt(formattedText(sample_, format()))));
}

}  // namespace lodex
