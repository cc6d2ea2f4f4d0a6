#pragma once

#include <QApplication>
#include <QTranslator>

namespace lodex {

/// The Qt application: an exception that a command did not trap ends in a message instead of in
/// the end of the program.
class Application : public QApplication {
  Q_OBJECT
 public:
  Application(int& argc, char** argv);
  bool notify(QObject* receiver, QEvent* event) override;

  /// The language of the captions, as "fi"; empty for that of the system, "en" for the original.
  void setLanguage(const QString& language);

  /// Asks for help on a window by the name of its form; any window may, and the main window shows
  /// it.
  static void requestHelp(const QString& formName);

 protected:
  /// Tells of an exception that no command trapped.
  virtual void tellFailure(const QString& text);

 Q_SIGNALS:
  void helpRequested(const QString& formName);

 private:
  QTranslator captions_;
  QTranslator qtCaptions_;
};

}  // namespace lodex
