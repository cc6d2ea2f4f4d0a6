#include "gui/FormLoader.h"

#include <QFile>
#include <QUiLoader>
#include <utility>

#include "basic/Error.h"
#include "gui/QtText.h"
#include "gui/grid/WorksheetView.h"
#include "gui/widgets/PeriodicTable.h"

namespace lodex {
namespace {

class Loader : public QUiLoader {
 public:
  QWidget* outermost = nullptr;  // stands in for the first widget of the file

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    if (outermost) return std::exchange(outermost, nullptr);
    QWidget* made = create(className, parent);
    if (!made) return QUiLoader::createWidget(className, parent, name);
    made->setObjectName(name);
    return made;
  }

 private:
  static QWidget* create(const QString& className, QWidget* parent) {
    if (className == QLatin1String("WorksheetView")) return new WorksheetView(parent);
    if (className == QLatin1String("PeriodicTable")) return new PeriodicTable(parent);
    return nullptr;
  }
};

QWidget* load(Loader& loader, const QString& formName, QWidget* parent) {
  QFile file(QStringLiteral(":/forms/%1.ui").arg(formName));
  if (!file.open(QIODevice::ReadOnly)) throw Error("There is no window for " + fromQt(formName));
  QWidget* widget = loader.load(&file, parent);
  if (!widget) {
    throw Error("The window of " + fromQt(formName) +
                " is damaged: " + fromQt(loader.errorString()));
  }
  return widget;
}

}  // namespace

QWidget* loadFormFile(const QString& formName, QWidget* parent) {
  Loader loader;
  return load(loader, formName, parent);
}

void loadFormInto(QWidget& window, const QString& formName) {
  Loader loader;
  loader.outermost = &window;
  load(loader, formName, nullptr);
}

}  // namespace lodex
