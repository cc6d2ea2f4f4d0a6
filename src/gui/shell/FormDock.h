#pragma once

#include <QDockWidget>
#include <QMainWindow>

#include "form/Form.h"

namespace lodex {

/// A form that docks at an edge of the main window, below the sheets at first. Edge, size and
/// whether it floats are remembered under the form's name.
class FormDock : public QDockWidget {
  Q_OBJECT
 public:
  FormDock(Form& form, QMainWindow& window);
  ~FormDock() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void follow();
  void restore();
  void remember();

  Form* form_;  // null once the form has ended
  QMainWindow& window_;
  Subscriptions following_;
};

}  // namespace lodex
