#include "gui/shell/SheetWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <algorithm>

#include "gui/FormLoader.h"
#include "gui/QtText.h"
#include "gui/grid/WorksheetView.h"
#include "gui/shell/GridMenus.h"

namespace lodex {

SheetWindow::SheetWindow(Form& form, QWidget* parent) : QMdiSubWindow(parent), form_(&form) {
  QWidget* content = loadFormFile(toQt(form.name()));
  content->setWindowFlags(Qt::Widget);
  setWidget(content);
  setWindowIcon(QIcon(QStringLiteral(":/icons/mnuNew.svg")));
  binding_ = bindForm(form, *this);
  if (auto* grid = content->findChild<WorksheetView*>()) {
    connect(grid, &WorksheetView::statusText, this, &SheetWindow::statusText);
    if (auto* window = qobject_cast<QMainWindow*>(content)) addGridMenus(*window, *grid);
  }
  follow();
  following_ = followForm(
      form, *this, [this] { follow(); }, [this] { form_ = nullptr; });
  connect(this, &QMdiSubWindow::aboutToActivate, this, [this] {
    if (form_) form_->activate();
  });
}

void SheetWindow::follow() {
  setWindowTitle(toQt(form_->caption()));
  if (form_->visible() == isVisible()) return;
  if (form_->closed()) {
    hide();
    deleteLater();
  } else {
    setVisible(form_->visible());
    widget()->setVisible(form_->visible());
  }
  if (isHidden()) activateLast();
}

// The area leaves all windows inactive when the one in front is hidden.
void SheetWindow::activateLast() {
  QMdiArea* area = mdiArea();
  if (!area || (area->activeSubWindow() && area->activeSubWindow() != this)) return;
  const QList<QMdiSubWindow*> windows = area->subWindowList(QMdiArea::ActivationHistoryOrder);
  const auto last = std::find_if(windows.rbegin(), windows.rend(),
                                 [](const QMdiSubWindow* window) { return !window->isHidden(); });
  if (last != windows.rend()) area->setActiveSubWindow(*last);
}

void SheetWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form says when its window goes
  if (!form_) return;
  if (onClose) {
    onClose();
  } else {
    form_->hide();
  }
}

}  // namespace lodex
