#pragma once

#include <QObject>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "form/Form.h"

namespace lodex {

/// Keeps a form's controls and the widgets of a window in step. A control is bound to every widget
/// or action below the root whose object name is the control's name, in any case.
///
///   Label          QLabel (text), QGroupBox (title), any other widget (visible and enabled only)
///   TextBox        QLineEdit, QPlainTextEdit, QSpinBox, QLabel
///   CheckBox       QCheckBox and other checkable buttons, QAction, checkable QGroupBox
///   OptionButtons  QTabWidget, QTabBar, QStackedWidget, QComboBox, or a widget with QRadioButtons
///   ListBox        QListWidget, QComboBox, PeriodicTable
///   ComboBox       QComboBox
///   Button         QAbstractButton, QAction; a MenuItem also its check mark
///   ProgressBar    QProgressBar
///   Grid           WorksheetView
///
/// What the user does reaches the control at once. What the form does reaches the widgets with the
/// next turn of the event loop, so that filling a list of thousands paints once. A control's
/// caption is shown, translated, where it has one; otherwise the window's own text stays. The
/// caption of a text box or list goes to the QLabel named after it with "Caption" appended.
///
/// Dynamic properties of widgets: "checkBoxes" gives a QListWidget a box per item for its check,
/// "selectionBoxes" one for its selection mark, so that a click on the text does not change the
/// mark; "commitOnFinish" lets a QLineEdit hand over its text at Enter or when left instead of with
/// each key.
class Binding : public QObject {
 public:
  /// The binding belongs to the root and ends with it, or with the form.
  Binding(Form& form, QWidget& root);
  ~Binding() override;

  /// Controls for which there is no widget.
  const QStringList& missing() const { return missing_; }
  /// Brings all widgets up to date now.
  void flush();

  struct Link;  // one control and one widget

 private:
  void bindControl(Control& control, const QList<QObject*>& objects);
  void bindCaption(Control& control, const QList<QObject*>& objects);
  void add(Control& control, QObject& object);
  QString captionFor(const QObject& object, const std::string& text) const;
  void changed(Link& link);

  Form& form_;
  std::vector<std::unique_ptr<Link>> links_;
  QStringList missing_;
  bool flushQueued_ = false;
  Subscriptions observed_;
};

/// Binds a form to a window; the binding is a child of the root.
Binding* bindForm(Form& form, QWidget& root);

/// Calls `changed` after show, hide, close and a new caption of the form, and `ended` at its end,
/// which is the window's end as well. The window keeps the result.
Subscriptions followForm(Form& form, QWidget& window, std::function<void()> changed,
                         std::function<void()> ended);

}  // namespace lodex
