#include "gui/FormLoader.h"

#include <QFile>
#include <QUiLoader>

#include "basic/Error.h"
#include "gui/QtText.h"
#if __has_include("gui/grid/WorksheetView.h")
#include "gui/grid/WorksheetView.h"
#define HAVE_GRID
#endif
#if __has_include("gui/widgets/PeriodicTable.h")
#include "gui/widgets/PeriodicTable.h"
#define HAVE_ELEMENTS
#endif

namespace lodex {
namespace {

class Loader : public QUiLoader {
 public:
  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    QWidget* made = create(className, parent);
    if (!made) return QUiLoader::createWidget(className, parent, name);
    made->setObjectName(name);
    return made;
  }

 private:
  static QWidget* create(const QString& className, QWidget* parent) {
#ifdef HAVE_GRID
    if (className == QLatin1String("WorksheetView")) return new WorksheetView(parent);
#endif
#ifdef HAVE_ELEMENTS
    if (className == QLatin1String("PeriodicTable")) return new PeriodicTable(parent);
#endif
    (void)className, (void)parent;
    return nullptr;
  }
};

}  // namespace

QWidget* loadFormFile(const QString& formName, QWidget* parent) {
  QFile file(QStringLiteral(":/forms/%1.ui").arg(formName));
  if (!file.open(QIODevice::ReadOnly)) throw Error("There is no window for " + fromQt(formName));
  Loader loader;
  QWidget* widget = loader.load(&file, parent);
  if (!widget) {
    throw Error("The window of " + fromQt(formName) +
                " is damaged: " + fromQt(loader.errorString()));
  }
  return widget;
}

}  // namespace lodex
