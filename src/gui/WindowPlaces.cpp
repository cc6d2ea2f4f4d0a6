#include "gui/WindowPlaces.h"

#include <QSettings>

namespace lodex {
namespace {

QSettings settings() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("LodexGeo"),
                   QStringLiteral("windows"));
}

QString placeKey(const QWidget& window) {
  return QStringLiteral("places/") + window.objectName();
}

}  // namespace

void rememberPlace(const QWidget& window) {
  settings().setValue(placeKey(window), window.saveGeometry());
}

bool restorePlace(QWidget& window) {
  return window.restoreGeometry(settings().value(placeKey(window)).toByteArray());
}

QString remembered(const QString& key, const QString& otherwise) {
  return settings().value(key, otherwise).toString();
}

void remember(const QString& key, const QString& value) {
  settings().setValue(key, value);
}

}  // namespace lodex
