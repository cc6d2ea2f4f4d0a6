#include "gui/shell/Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

#include "gui/WindowPlaces.h"
#include "gui/widgets/OutlineStyle.h"

namespace lodex {
namespace {

struct Shades {
  QColor window, base, alternate, text, muted, button, highlight, link, frame;
};

const Shades lightShades{QColor(0xf2f4f6), QColor(0xffffff), QColor(0xf5f8fa),
                         QColor(0x1c252d), QColor(0x8a949d), QColor(0xe9edf0),
                         QColor(0x2f7fb8), QColor(0x1f6aa5), QColor(0xb4bec7)};
const Shades darkShades{QColor(0x262b31), QColor(0x1d2126), QColor(0x23282e),
                        QColor(0xe3e8ec), QColor(0x7d8791), QColor(0x343b43),
                        QColor(0x3d8fc9), QColor(0x6bb2e4), QColor(0x4a535d)};

QPalette paletteOf(const Shades& shades) {
  QPalette palette;
  palette.setColor(QPalette::Window, shades.window);
  palette.setColor(QPalette::WindowText, shades.text);
  palette.setColor(QPalette::Base, shades.base);
  palette.setColor(QPalette::AlternateBase, shades.alternate);
  palette.setColor(QPalette::Text, shades.text);
  palette.setColor(QPalette::PlaceholderText, shades.muted);
  palette.setColor(QPalette::Button, shades.button);
  palette.setColor(QPalette::ButtonText, shades.text);
  palette.setColor(QPalette::ToolTipBase, shades.button);
  palette.setColor(QPalette::ToolTipText, shades.text);
  palette.setColor(QPalette::Highlight, shades.highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, shades.link);
  palette.setColor(QPalette::LinkVisited, shades.link);
  palette.setColor(QPalette::Light, shades.window.lighter(112));
  palette.setColor(QPalette::Midlight, shades.window.lighter(105));
  palette.setColor(QPalette::Mid, shades.frame);
  palette.setColor(QPalette::Dark, shades.frame.darker(120));
  palette.setColor(QPalette::Shadow, shades.frame.darker(160));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, shades.muted);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, shades.frame);
  return palette;
}

bool desktopIsDark() {
  const QPalette palette = QApplication::style()->standardPalette();
  return palette.color(QPalette::Window).lightness() < 128;
}

}  // namespace

QString appearance() {
  return remembered(QStringLiteral("looks/appearance"));
}

void setAppearance(const QString& name) {
  remember(QStringLiteral("looks/appearance"), name);
  applyAppearance();
}

void applyAppearance() {
  const QString name = appearance();
  const bool dark = name.isEmpty() ? desktopIsDark() : name == QLatin1String("dark");
  QApplication::setStyle(new OutlineStyle);
  QApplication::setPalette(paletteOf(dark ? darkShades : lightShades));
}

QString chosenLanguage() {
  return remembered(QStringLiteral("looks/language"));
}

void chooseLanguage(const QString& language) {
  remember(QStringLiteral("looks/language"), language);
}

}  // namespace lodex
