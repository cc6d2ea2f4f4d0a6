#include "gui/shell/TextFileEditor.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "basic/Error.h"
#include "basic/Files.h"
#include "gui/QtText.h"

namespace lodex {
namespace {

constexpr size_t largest = 1 << 20;  // an ini file is small

// Saving what is no text would spoil it.
QString textOf(const std::string& path) {
  const std::string content = readFile(path, largest);
  if (content.find('\0') != std::string::npos) throw FileError(path + " is no text file");
  return toQt(content);
}

}  // namespace

TextFileEditor::TextFileEditor(const QString& path, QWidget* parent)
    : QDialog(parent), path_(path), text_(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("TextFileEditor"));
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(QFileInfo(path).fileName() + QStringLiteral("[*]"));
  resize(680, 520);
  text_->setObjectName(QStringLiteral("text"));
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  if (pathExists(fromQt(path))) text_->setPlainText(textOf(fromQt(path)));
  text_->document()->setModified(false);
  auto* note = new QLabel(tr("%1\nChanges take effect on the next start.")
                              .arg(toQt(pathText(nativePath(fromQt(path))))),
                          this);
  note->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Save)->setShortcut(QKeySequence::Save);
  buttons->button(QDialogButtonBox::Save)->setEnabled(false);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(note);
  layout->addWidget(text_);
  layout->addWidget(buttons);
  connect(buttons->button(QDialogButtonBox::Save), &QPushButton::clicked, this,
          &TextFileEditor::save);
  connect(buttons, &QDialogButtonBox::rejected, this, &TextFileEditor::reject);
  connect(text_->document(), &QTextDocument::modificationChanged, this,
          [this, buttons](bool changed) {
            setWindowModified(changed);
            buttons->button(QDialogButtonBox::Save)->setEnabled(changed);
          });
}

bool TextFileEditor::save() {
  try {
    writeFileWhole(fromQt(path_), fromQt(text_->toPlainText()));
  } catch (const Error& failure) {
    QMessageBox::critical(this, windowTitle(), toQt(failure.what()));
    return false;
  }
  text_->document()->setModified(false);
  return true;
}

bool TextFileEditor::mayLeave() {
  if (!text_->document()->isModified()) return true;
  const auto answer =
      QMessageBox::question(this, QFileInfo(path_).fileName(), tr("Save the changes?"),
                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
  if (answer == QMessageBox::Save) return save();
  return answer == QMessageBox::Discard;
}

void TextFileEditor::reject() {
  if (mayLeave()) QDialog::reject();
}

void TextFileEditor::closeEvent(QCloseEvent* event) {
  event->setAccepted(mayLeave());
}

}  // namespace lodex
