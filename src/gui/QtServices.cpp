#include "gui/QtServices.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>

#include "basic/Files.h"
#include "basic/Text.h"
#include "form/frmSelectFromList.h"
#include "gui/FormWindow.h"
#include "gui/QtText.h"
#include "gui/WindowPlaces.h"

namespace lodex {
namespace {

QMessageBox::Icon iconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::Warning:
      return QMessageBox::Warning;
    case MessageIcon::Stop:
      return QMessageBox::Critical;
    case MessageIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case MessageButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case MessageButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MessageButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

// What closing the box without a button means.
Answer refusal(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::YesNo:
      return Answer::No;
    case MessageButtons::Ok:
      return Answer::Ok;
    default:
      return Answer::Cancel;
  }
}

QString folderKey(const FileRequest& request) {
  QString kind = toQt(request.title.empty() ? request.filter : request.title);
  for (QChar& c : kind) {
    if (!c.isLetterOrNumber()) c = QLatin1Char('_');
  }
  return QStringLiteral("folders/") + kind;
}

// The proposed folder if it exists, else the folder used last.
QString startFolder(const FileRequest& request) {
  if (!request.folder.empty() && pathExists(request.folder)) {
    return toQt(pathText(nativePath(request.folder)));
  }
  return remembered(folderKey(request));
}

// The file that is meant, upper and lower case in its name ignored.
QString nameInFolder(const QString& name, const QString& folder) {
  if (folder.isEmpty() || name.contains(QLatin1Char('*'))) return name;
  const QDir place(folder);
  if (place.exists(name)) return name;
  const QStringList similar = place.entryList({name}, QDir::Files);
  return similar.isEmpty() ? name : similar.front();
}

QFileDialog* fileDialog(const FileRequest& request, QWidget* owner) {
  auto* dialog = new QFileDialog(owner);
  dialog->setObjectName(QStringLiteral("fileDialog"));
  if (!request.title.empty()) dialog->setWindowTitle(toQt(request.title));
  dialog->setNameFilters(qtFileFilter(request.filter).split(QStringLiteral(";;")));
  const QString folder = startFolder(request);
  if (!folder.isEmpty()) dialog->setDirectory(folder);
  if (!request.fileName.empty()) {
    dialog->selectFile(nameInFolder(toQt(pathText(nativePath(request.fileName))), folder));
  }
  return dialog;
}

std::vector<std::string> runFileDialog(QFileDialog& dialog, const FileRequest& request) {
  std::vector<std::string> paths;
  if (dialog.exec() == QDialog::Accepted) {
    for (const QString& path : dialog.selectedFiles()) paths.push_back(fromQt(path));
    remember(folderKey(request), dialog.directory().absolutePath());
  }
  dialog.deleteLater();
  return paths;
}

}  // namespace

QString qtFileFilter(std::string_view filter) {
  QStringList entries;
  const std::vector<std::string> parts = split(std::string(filter), "|");
  for (size_t i = 0; i + 1 < parts.size(); i += 2) {
    QString name = toQt(parts[i]);
    if (const qsizetype patterns = name.indexOf(QLatin1String(" (*")); patterns > 0) {
      name.truncate(patterns);
    }
    QString patterns = toQt(parts[i + 1]).replace(QLatin1Char(';'), QLatin1Char(' '));
    if (patterns == QLatin1String("*.*")) patterns = QStringLiteral("*");
    entries << QStringLiteral("%1 (%2)").arg(name, patterns);
  }
  return entries.join(QStringLiteral(";;"));
}

QWidget* QtDialogs::owner() const {
  QWidget* modal = QApplication::activeModalWidget();
  return modal ? modal : parent_.data();
}

Answer QtDialogs::messageBox(std::string_view text, MessageButtons buttons, MessageIcon icon,
                             std::string_view title) {
  QMessageBox box(iconOf(icon), title.empty() ? QStringLiteral("Lodex Geo") : toQt(title),
                  toQt(text), buttonsOf(buttons), owner());
  box.setTextFormat(Qt::PlainText);
  box.setTextInteractionFlags(Qt::TextSelectableByMouse);
  switch (box.exec()) {
    case QMessageBox::Ok:
      return Answer::Ok;
    case QMessageBox::Yes:
      return Answer::Yes;
    case QMessageBox::No:
      return Answer::No;
    default:
      return refusal(buttons);
  }
}

std::optional<std::string> QtDialogs::inputBox(std::string_view prompt, std::string_view title,
                                               std::string_view proposal) {
  bool accepted = false;
  const QString text = QInputDialog::getText(owner(), toQt(title), toQt(prompt), QLineEdit::Normal,
                                             toQt(proposal), &accepted);
  if (!accepted) return std::nullopt;
  return fromQt(text);
}

std::vector<std::string> QtDialogs::openFiles(const FileRequest& request) {
  QFileDialog* dialog = fileDialog(request, owner());
  dialog->setFileMode(request.multiple ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
  return runFileDialog(*dialog, request);
}

std::optional<std::string> QtDialogs::saveFile(const FileRequest& request) {
  QFileDialog* dialog = fileDialog(request, owner());
  dialog->setFileMode(QFileDialog::AnyFile);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  // A name without an ending gets that of the chosen file type.
  QObject::connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString& filter) {
    const qsizetype dot = filter.indexOf(QLatin1String("(*."));
    dialog->setDefaultSuffix(
        dot < 0
            ? QString()
            : filter.mid(dot + 3).section(QLatin1Char(')'), 0, 0).section(QLatin1Char(' '), 0, 0));
  });
  Q_EMIT dialog->filterSelected(dialog->selectedNameFilter());
  const std::vector<std::string> paths = runFileDialog(*dialog, request);
  if (paths.empty()) return std::nullopt;
  return paths.front();
}

std::optional<int> QtDialogs::selectFromList(std::string_view title,
                                             const std::vector<std::string>& items) {
  frmSelectFromList form(*this, title, items);
  showModal(form);
  return form.index();
}

void QtDialogs::showModal(Form& form) {
  form.show();
  if (FormWindow* own = FormWindow::of(form)) {
    own->hide();  // only a hidden window can become modal
    own->exec();
  } else {
    FormWindow window(form, owner());
    window.setWindowModality(Qt::ApplicationModal);
    window.exec();
  }
  if (form.visible()) form.close();
}

QtEventPump::QtEventPump() {
  sincePump_.start();
}

void QtEventPump::pump() {
  constexpr qint64 betweenPumps = 20;  // milliseconds: jobs pump once per row
  if (pumping_ || sincePump_.elapsed() < betweenPumps) return;
  pumping_ = true;
  modal_ = QApplication::activeModalWidget();
  qApp->installEventFilter(this);
  QCoreApplication::processEvents();
  qApp->removeEventFilter(this);
  pumping_ = false;
  sincePump_.restart();
}

bool QtEventPump::eventFilter(QObject* watched, QEvent* event) {
  // A question that came up meanwhile, for example about a failure, must be answered.
  QWidget* modal = QApplication::activeModalWidget();
  if (modal && modal != modal_) return false;
  if (event->type() == QEvent::Close) event->ignore();
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::Close:
    case QEvent::Drop:
      // Window-system events pass through the window before they reach the button.
      return qobject_cast<QWidget*>(watched) && watched->objectName() != QLatin1String("cmdAbort");
    case QEvent::Shortcut:  // reaches actions, too
      return watched->objectName() != QLatin1String("cmdAbort");
    default:
      return false;
  }
}

std::string QtClipboardText::text() {
  return fromQt(QGuiApplication::clipboard()->text());
}

void QtClipboardText::setText(std::string_view text) {
  QGuiApplication::clipboard()->setText(toQt(text));
}

}  // namespace lodex
