#include "gui/grid/NumberFormatDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
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
      known_(new QListWidget(this)),
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
  for (const auto& [name, code] : formats) {
    auto* item = new QListWidgetItem(name + QStringLiteral("    ") + QLatin1String(code), known_);
    item->setData(Qt::UserRole, QLatin1String(code));
    if (format == code) known_->setCurrentItem(item);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(known_);
  layout->addWidget(format_);
  layout->addWidget(shown_);
  layout->addWidget(buttons);
  connect(known_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
    if (item != nullptr) format_->setText(item->data(Qt::UserRole).toString());
  });
  connect(known_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(format_, &QLineEdit::textChanged, this, &NumberFormatDialog::showSample);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  showSample();
  resize(360, 420);
}

std::string NumberFormatDialog::format() const {
  const std::string text = fromQt(format_->text().trimmed());
  return text.empty() ? "General" : text;
}

void NumberFormatDialog::showSample() {
  shown_->setText(tr("Sample: %1").arg(toQt(formattedText(sample_, format()))));
}

}  // namespace lodex
