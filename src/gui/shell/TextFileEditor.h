#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QPlainTextEdit;

namespace lodex {

/// A small editor for ini files. Saving replaces the file as a whole; leaving with unsaved changes
/// asks first.
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
  bool mayLeave();

  QString path_;
  QPlainTextEdit* text_;
};

}  // namespace lodex
