#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include "form/Dialogs.h"
#include "form/EventPump.h"
#include "worksheet/Clipboard.h"

namespace lodex {

/// Questions to the user. File dialogues start in the folder that is asked for;
/// where there is none, in the folder used last, also in the next session.
class QtDialogs : public Dialogs {
 public:
  /// Questions appear above this window.
  void setParent(QWidget* parent) { parent_ = parent; }

  Answer messageBox(std::string_view text, MessageButtons buttons, MessageIcon icon,
                    std::string_view title) override;
  std::optional<std::string> inputBox(std::string_view prompt, std::string_view title,
                                      std::string_view proposal) override;
  std::vector<std::string> openFiles(const FileRequest& request) override;
  std::optional<std::string> saveFile(const FileRequest& request) override;
  std::optional<int> selectFromList(std::string_view title,
                                    const std::vector<std::string>& items) override;
  void showModal(Form& form) override;

 private:
  QWidget* owner() const;
  QPointer<QWidget> parent_;
};

/// Runs pending events between two units of a long job. Meanwhile the user can only press Abort and
/// answer questions that come up: everything else would work on data that the job is changing.
class QtEventPump : public QObject, public EventPump {
 public:
  QtEventPump();
  void pump() override;
  /// Whether a job is waiting for the events that are running now.
  static bool isPumping() { return pumping_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QElapsedTimer sincePump_;
  QPointer<QWidget> modal_;  // on show when the pump began
  inline static bool pumping_ = false;
};

class QtClipboardText : public Clipboard {
 public:
  std::string text() override;
  void setText(std::string_view text) override;
};

/// "Text files (*.txt)|*.txt|All files (*.*)|*.*" in the form of Qt's file dialogues.
QString qtFileFilter(std::string_view filter);

}  // namespace lodex
