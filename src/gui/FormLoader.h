#pragma once

#include <QString>
#include <QWidget>

namespace lodex {

/// Makes the widgets of a form's Designer file, which is compiled in as :/forms/<name>.ui. Custom
/// widgets (WorksheetView, PeriodicTable) are known by their class names. Throws Error when there
/// is no such file or it is damaged.
QWidget* loadFormFile(const QString& formName, QWidget* parent = nullptr);

/// The same for a window of a class of its own: the file's outermost widget becomes `window`.
void loadFormInto(QWidget& window, const QString& formName);

}  // namespace lodex
