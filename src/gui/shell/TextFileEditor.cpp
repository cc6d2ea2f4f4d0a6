#include "gui/shell/TextFileEditor.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHash>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "gui/QtText.h"

namespace lodex {
namespace {

constexpr size_t largest = 1 << 20;  // an ini file is small

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

// The code of Windows where all characters have a place in it, else UTF-8.
std::string toOldCode(const QString& text) {
  QHash<QChar, char> codes;
  for (int code = 1; code < 256; ++code) {
    const char byte = static_cast<char>(code);
    codes.insert(toQt(fromWindows1252({&byte, 1})).front(), byte);
  }
  std::string bytes;
  for (const QChar character : text) {
    const auto code = codes.constFind(character);
    if (code == codes.constEnd()) return fromQt(text);
    bytes += *code;
  }
  return bytes;
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
  if (pathExists(fromQt(path))) load();
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

// Saving what is no text would spoil it.
void TextFileEditor::load() {
  std::string content = readFile(fromQt(path_), largest);
  if (content.find('\0') != std::string::npos) throw FileError(fromQt(path_) + " is no text file");
  hasMark_ = content.starts_with(utf8Mark);
  if (hasMark_) content.erase(0, utf8Mark.size());
  oldCode_ = !isValidUtf8(content);
  if (oldCode_) content = fromWindows1252(content);
  windowsLines_ = content.find("\r\n") != std::string::npos;
  text_->setPlainText(toQt(content));
}

std::string TextFileEditor::content() const {
  QString text = text_->toPlainText();
  if (windowsLines_) text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
  if (oldCode_) return toOldCode(text);
  return (hasMark_ ? std::string(utf8Mark) : std::string()) + fromQt(text);
}

bool TextFileEditor::save() {
  try {
    writeFileWhole(fromQt(path_), content());
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
