#include "gui/Application.h"

#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>

#include "gui/QtText.h"

namespace lodex {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QStringLiteral("lodexgeo"));
  setApplicationVersion(QStringLiteral(LODEX_VERSION));
  setDesktopFileName(QStringLiteral("lodexgeo"));
  setWindowIcon(QIcon(QStringLiteral(":/icons/lodexgeo.svg")));
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (const std::bad_alloc&) {
    tellFailure(tr("There is not enough memory for this."));
  } catch (const std::exception& failure) {
    tellFailure(toQt(failure.what()));
  }
  return false;
}

void Application::tellFailure(const QString& text) {
  QMessageBox::critical(activeWindow(), QStringLiteral("Lodex Geo"), text);
}

void Application::requestHelp(const QString& formName) {
  if (auto* application = qobject_cast<Application*>(instance())) {
    Q_EMIT application->helpRequested(formName);
  }
}

void Application::setLanguage(const QString& language) {
  const QLocale locale = language.isEmpty() ? QLocale::system() : QLocale(language);
  removeTranslator(&captions_);
  removeTranslator(&qtCaptions_);
  if (captions_.load(locale, QStringLiteral("lodexgeo"), QStringLiteral("_"),
                     QStringLiteral(":/translations"))) {
    installTranslator(&captions_);
  }
  if (qtCaptions_.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    installTranslator(&qtCaptions_);
  }
}

}  // namespace lodex
