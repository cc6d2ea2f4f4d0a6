#include "gui/FormLoader.h"

#include <QCoreApplication>
#include <QFile>
#include <QUiLoader>
#include <utility>

#include "basic/Error.h"
#include "gui/QtText.h"
#include "gui/grid/WorksheetView.h"
#include "gui/widgets/PeriodicTable.h"

namespace lodex {
namespace {

constexpr const char* contextProperty = "translationContext";

QWidget* loadFile(QUiLoader& loader, const QString& formName, QWidget* parent);

QString fileOf(const QString& name) {
  return QStringLiteral(":/forms/%1.ui").arg(name);
}

class Loader : public QUiLoader {
 public:
  QWidget* outermost = nullptr;  // takes the place of the first widget of the file

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
    if (!QFile::exists(fileOf(className))) return nullptr;
    Loader nested;
    return loadFile(nested, className, parent);
  }
};

QWidget* loadFile(QUiLoader& loader, const QString& formName, QWidget* parent) {
  QFile file(fileOf(formName));
  if (!file.open(QIODevice::ReadOnly)) throw Error("There is no window for " + fromQt(formName));
  QWidget* widget = loader.load(&file, parent);
  if (!widget) {
    throw Error("The window of " + fromQt(formName) +
                " is damaged: " + fromQt(loader.errorString()));
  }
  widget->setProperty(contextProperty, formName);
  return widget;
}

}  // namespace

QWidget* loadFormFile(const QString& formName, QWidget* parent) {
  Loader loader;
  return loadFile(loader, formName, parent);
}

void loadFormInto(QWidget& window, const QString& formName) {
  Loader loader;
  loader.outermost = &window;
  loadFile(loader, formName, nullptr);
}

QString translated(const QObject& object, const std::string& text) {
  for (const QObject* place = &object; place; place = place->parent()) {
    const QByteArray context = place->property(contextProperty).toByteArray();
    if (!context.isEmpty()) return QCoreApplication::translate(context, text.c_str());
  }
  return toQt(text);
}

}  // namespace lodex
