#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>
#include <algorithm>
#include <string_view>

#include "gui/Application.h"
#include "gui/QtServices.h"
#include "gui/QtText.h"
#include "gui/Resources.h"
#include "gui/shell/Appearance.h"
#include "gui/shell/MainWindow.h"
#include "gui/shell/SingleInstance.h"

namespace {

// Options that only print a text need no screen.
bool asksForText(int argc, char** argv) {
  return std::any_of(argv, argv + argc, [](const std::string_view argument) {
    return argument == "-h" || argument == "--help" || argument == "-v" || argument == "--version";
  });
}

}  // namespace

int main(int argc, char** argv) {
  using namespace lodex;
  if (asksForText(argc, argv)) qputenv("QT_QPA_PLATFORM", "offscreen");
  loadResources();
  Application application(argc, argv);
  application.setLanguage(chosenLanguage());
  applyAppearance();
  QCommandLineParser arguments;
  arguments.setApplicationDescription(
      QStringLiteral("Lodex Geo: from chemical assays to mineralogy"));
  arguments.addHelpOption();
  arguments.addVersionOption();
  arguments.addPositionalArgument(QStringLiteral("files"), QStringLiteral("analysis files to open"),
                                  QStringLiteral("[files...]"));
  arguments.process(application);

  std::vector<std::string> files;
  for (const QString& file : arguments.positionalArguments()) {
    const QString path = QFileInfo(file).absoluteFilePath();
    const bool taken = SingleInstance::send(QStringLiteral("file;") + path);
    if (!taken) files.push_back(fromQt(path));
  }
  // The running program opens them.
  if (files.empty() && !arguments.positionalArguments().isEmpty()) return 0;

  SingleInstance instance;
  QtDialogs dialogs;
  QtEventPump events;
  QtClipboardText clipboard;
  Session session(Services{dialogs, events, clipboard});
  MainWindow window(session, QApplication::applicationDirPath(), &instance);
  dialogs.setParent(&window);
  if (!window.start()) return 0;
  if (!files.empty()) {
    QTimer::singleShot(0, &window, [&] { window.shell().dropFiles(files); });
  }
  return QApplication::exec();
}
