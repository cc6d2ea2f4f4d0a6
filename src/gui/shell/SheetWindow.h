#pragma once

#include <QMdiSubWindow>
#include <QPointer>
#include <functional>

#include "form/Form.h"
#include "gui/Binder.h"

namespace lodex {

/// The window of a data sheet, of the calculation results or of single samples, inside the main
/// window.
class SheetWindow : public QMdiSubWindow {
  Q_OBJECT
 public:
  explicit SheetWindow(Form& form, QWidget* parent = nullptr);

  Form* form() const { return form_; }
  /// Asked when the user closes the window; it may refuse by returning false. Without it the form
  /// is hidden.
  std::function<bool()> onClose{};

 Q_SIGNALS:
  void statusText(const QString& text);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void follow();
  void activateLast();

  Form* form_;  // null once the form has ended
  QPointer<Binding> binding_;
  Subscriptions following_;
};

}  // namespace lodex
