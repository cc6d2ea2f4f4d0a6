#pragma once

#include <QString>
#include <QWidget>
#include <string>

namespace lodex {

/// Makes the widgets of a form's Designer file, which is compiled in as :/forms/<name>.ui. Custom
/// widgets (WorksheetView, PeriodicTable) are known by their class names, and a widget whose class
/// is the name of another such file is made from that file. Throws Error when there
/// is no such file or it is damaged.
QWidget* loadFormFile(const QString& formName, QWidget* parent = nullptr);

/// The same for a window of a class of its own: the file's outermost widget becomes `window`.
void loadFormInto(QWidget& window, const QString& formName);

/// A caption in the user's language, as the Designer file translates it from which the widget or
/// action was made.
QString translated(const QObject& object, const std::string& text);

}  // namespace lodex
