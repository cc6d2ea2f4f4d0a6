#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <string>

#include "form/Controls.h"

namespace lodex {

/// What a connection works on. `context` ends with the binding, and so do Qt's connections.
struct LinkParts {
  Control& control;
  QObject& object;
  QObject& context;
  std::function<QString(const std::string&)> translated;
};

/// Connects what the user does in the widget, and returns the function that shows the control's
/// state in it. Empty when this kind of widget cannot show this kind of control.
std::function<void()> connectWidget(const LinkParts& parts);

}  // namespace lodex
