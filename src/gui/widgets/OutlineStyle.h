#pragma once

#include <QProxyStyle>

namespace lodex {

/// Fusion, with visible outlines of input fields, lists and boxes to check on a dark palette, where
/// Fusion draws them darker than the dark that surrounds them. The outline has the palette's Mid
/// colour. Icons of what cannot be used fade; Fusion would make them lighter, which on a dark
/// palette looks more usable than the others.
class OutlineStyle : public QProxyStyle {
 public:
  OutlineStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override;
  QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                              const QStyleOption* option) const override;
};

}  // namespace lodex
