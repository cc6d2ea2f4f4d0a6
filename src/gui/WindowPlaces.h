#pragma once

#include <QString>
#include <QWidget>

/// What the windows remember from one session to the next, in the user's settings: places and
/// sizes, folders of file dialogues, appearance.
namespace lodex {

/// Keeps the window's place and size under its object name.
void rememberPlace(const QWidget& window);
/// Puts the window where it was, if a screen still shows that place. False when none is known.
bool restorePlace(QWidget& window);

QString remembered(const QString& key, const QString& otherwise = {});
void remember(const QString& key, const QString& value);

}  // namespace lodex
