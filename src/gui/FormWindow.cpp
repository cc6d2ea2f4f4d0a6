#include "gui/FormWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMainWindow>
#include <QShortcut>
#include <QVBoxLayout>

#include "gui/Application.h"
#include "gui/FormLoader.h"
#include "gui/QtText.h"
#include "gui/WindowPlaces.h"
#include "gui/widgets/Mnemonics.h"

namespace lodex {

FormWindow::FormWindow(Form& form, QWidget* parent) : QDialog(parent), form_(&form) {
  setObjectName(toQt(form.name()));
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setWindowFlag(Qt::WindowMinMaxButtonsHint, true);
  QWidget* content = loadFormFile(toQt(form.name()), this);
  content->setWindowFlags(Qt::Widget);  // a QMainWindow would open as a window of its own
  setWindowIcon(QApplication::windowIcon());
  setWindowTitle(content->windowTitle());
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(content);
  resize(content->size());
  binding_ = bindForm(form, *this);
  addMnemonics(*this);
  connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this,
          [this] { Application::requestHelp(objectName()); });
  follow();
  following_ = followForm(
      form, *this, [this] { follow(); }, [this] { form_ = nullptr; });
}

FormWindow* FormWindow::of(const Form& form) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* window = qobject_cast<FormWindow*>(widget);
    if (window && window->form() == &form) return window;
  }
  return nullptr;
}

FormWindow::~FormWindow() {
  if (placed_) rememberPlace(*this);
}

// The form decides on title and end only; who shows the window depends on whether it is modal.
void FormWindow::follow() {
  if (!form_->caption().empty()) {
    setWindowTitle(QCoreApplication::translate(form_->name().c_str(), form_->caption().c_str()));
  }
  if (!form_->visible() && isVisible()) hide();
}

void FormWindow::dismiss() {
  if (dismissing_ || !form_) return;
  dismissing_ = true;
  if (auto* cancel = dynamic_cast<Button*>(form_->control("cmdCancel"))) cancel->click();
  if (form_ && form_->visible()) form_->close();
  dismissing_ = false;
}

void FormWindow::reject() {
  dismiss();
  QDialog::reject();
}

void FormWindow::closeEvent(QCloseEvent* event) {
  dismiss();
  event->accept();
}

// "ownerWidth" and "ownerHeight" of a window file: the part of the owner's size to open with.
void FormWindow::takeShareOfOwner() {
  const QWidget* owner = parentWidget() ? parentWidget()->window() : nullptr;
  const QWidget* content = layout()->itemAt(0)->widget();
  const double wide = content->property("ownerWidth").toDouble();
  const double high = content->property("ownerHeight").toDouble();
  if (!owner || wide <= 0 || high <= 0) return;
  resize(static_cast<int>(owner->width() * wide), static_cast<int>(owner->height() * high));
}

void FormWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && form_) form_->activate();
}

void FormWindow::showEvent(QShowEvent* event) {
  if (!placed_ && !restorePlace(*this)) takeShareOfOwner();
  placed_ = true;
  QDialog::showEvent(event);
}

void FormViews::watch(Form& form) {
  watched_.add(form.onChange([&form, owner = parent_, window = QPointer<FormWindow>()]() mutable {
    if (!form.visible()) return;
    if (!window) window = new FormWindow(form, owner);
    if (!window->isVisible()) window->show();
    window->raise();
  }));
}

}  // namespace lodex
