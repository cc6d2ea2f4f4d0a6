#pragma once

#include <QString>
#include <QWidget>

namespace lodex {

/// Gives the buttons, check boxes, options and labels of inputs of a window a letter for the Alt
/// key where their texts have none, no letter twice in the window; first letters of words are
/// preferred. OK and Cancel have Enter and Esc. In every language the letters come from the text
/// on show.
void addMnemonics(QWidget& window);

/// The text without the "&" that marks its letter; "&&" means "&".
QString withoutMnemonic(const QString& text);

/// Shows a text on a button, label or action, keeping the letter where the text is the same.
template <typename Widget>
void showText(Widget& widget, const QString& text) {
  if (withoutMnemonic(widget.text()) != withoutMnemonic(text)) widget.setText(text);
}

}  // namespace lodex
