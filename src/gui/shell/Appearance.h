#pragma once

#include <QString>

namespace lodex {

/// The looks of the program: "light", "dark", or "" for what the desktop prefers. Remembered.
QString appearance();
void setAppearance(const QString& name);
/// Gives the running application its style and palette.
void applyAppearance();

/// The language of the captions, "" for that of the system. Remembered; it applies from the next
/// start on.
QString chosenLanguage();
void chooseLanguage(const QString& language);

}  // namespace lodex
