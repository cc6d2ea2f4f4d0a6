#pragma once

#include <QDialog>
#include <QPointer>

#include "form/Form.h"
#include "gui/Binder.h"

namespace lodex {

/// The dialogue that shows a form: its Designer file, bound by control names. Closing the window or
/// pressing Esc clicks `cmdCancel` where the form has one, else closes the form. Place and size are
/// remembered under the form's name.
class FormWindow : public QDialog {
  Q_OBJECT
 public:
  explicit FormWindow(Form& form, QWidget* parent = nullptr);
  ~FormWindow() override;

  Form* form() const { return form_; }
  /// The window that a form has already, shown or hidden; null if it has none.
  static FormWindow* of(const Form& form);
  Binding* binding() const { return binding_; }

  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void follow();
  void dismiss();
  void takeShareOfOwner();

  Form* form_;  // null once the form has ended
  QPointer<Binding> binding_;
  Subscriptions following_;
  bool placed_ = false;
  bool dismissing_ = false;
};

/// Shows windows for forms that are not modal. A window stays until its form ends.
class FormViews {
 public:
  /// `parent` keeps the windows above itself; it may be null.
  explicit FormViews(QWidget* parent) : parent_(parent) {}

  /// From now on, until the views end, the form has a window whenever it is shown.
  void watch(Form& form);

 private:
  QWidget* parent_;
  Subscriptions watched_;
};

}  // namespace lodex
