#pragma once

#include <QApplication>
#include <QTranslator>

namespace lodex {

/// The Qt application: an exception that no command caught ends in a message, not with the end of
/// the program.
class Application : public QApplication {
  Q_OBJECT
 public:
  Application(int& argc, char** argv);
  bool notify(QObject* receiver, QEvent* event) override;

  /// The language of the captions, such as "fi"; empty for that of the system, "en" for the
  /// original.
  void setLanguage(const QString& language);

  /// Asks for help on a window by the name of its form; any window may, and the main window shows
  /// it.
  static void requestHelp(const QString& formName);

 protected:
  /// Reports an exception that no command caught.
  virtual void tellFailure(const QString& text);

 Q_SIGNALS:
  void helpRequested(const QString& formName);

 private:
  QTranslator captions_;
  QTranslator qtCaptions_;
};

}  // namespace lodex
