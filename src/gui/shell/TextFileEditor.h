#pragma once

#include <QDialog>
#include <QString>
#include <string>

class QLabel;
class QPlainTextEdit;

namespace lodex {

/// A small editor for ini files, in UTF-8 or Windows-1252. Saving replaces the file as a whole and
/// keeps its encoding and line ends; leaving with unsaved changes asks first.
class TextFileEditor : public QDialog {
  Q_OBJECT
 public:
  /// Throws FileError when the file cannot be read. A file that is not there starts empty.
  explicit TextFileEditor(const QString& path, QWidget* parent = nullptr);

  bool save();
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void load();
  std::string content() const;
  bool mayLeave();

  QString path_;
  QPlainTextEdit* text_;
  bool hasMark_ = false;       // begins with the byte order mark of UTF-8
  bool oldCode_ = false;       // Windows-1252
  bool windowsLines_ = false;  // lines end with CR LF
};

}  // namespace lodex
