#include "gui/shell/FormDock.h"

#include <QCloseEvent>
#include <QCoreApplication>

#include "gui/Binder.h"
#include "gui/FormLoader.h"
#include "gui/QtText.h"
#include "gui/WindowPlaces.h"
#include "gui/widgets/Mnemonics.h"

namespace lodex {
namespace {

QString placeKey(const QDockWidget& dock) {
  return QStringLiteral("docks/") + dock.objectName();
}

}  // namespace

FormDock::FormDock(Form& form, QMainWindow& window)
    : QDockWidget(&window), form_(&form), window_(window) {
  setObjectName(toQt(form.name()));
  QWidget* content = loadFormFile(toQt(form.name()), this);
  setWindowTitle(content->windowTitle());
  setWidget(content);
  bindForm(form, *content);
  addMnemonics(*content);
  restore();
  following_ = followForm(
      form, *this, [this] { follow(); }, [this] { form_ = nullptr; });
  follow();
}

FormDock::~FormDock() {
  remember();
}

void FormDock::follow() {
  setVisible(form_->visible());
  if (form_->visible()) raise();
}

void FormDock::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form says when its window goes
  if (form_) form_->hide();
}

// As edge, width, height: two numbers that hold for every screen.
void FormDock::remember() {
  lodex::remember(
      placeKey(*this),
      QStringLiteral("%1,%2,%3").arg(window_.dockWidgetArea(this)).arg(width()).arg(height()));
  if (isFloating()) rememberPlace(*this);
}

void FormDock::restore() {
  const QStringList place = remembered(placeKey(*this)).split(QLatin1Char(','));
  const bool known = place.size() == 3;
  const int area = known ? place[0].toInt() : Qt::BottomDockWidgetArea;
  const bool docked = area != Qt::NoDockWidgetArea;
  window_.addDockWidget(docked ? static_cast<Qt::DockWidgetArea>(area) : Qt::BottomDockWidgetArea,
                        this);
  setFloating(!docked);
  if (!docked) {
    restorePlace(*this);
  } else if (known) {
    window_.resizeDocks({this}, {place[1].toInt()}, Qt::Horizontal);
    window_.resizeDocks({this}, {place[2].toInt()}, Qt::Vertical);
  }
}

}  // namespace lodex
