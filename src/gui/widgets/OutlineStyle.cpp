#include "gui/widgets/OutlineStyle.h"

#include <QPainter>
#include <QStyleOption>

namespace lodex {
namespace {

bool isDark(const QStyleOption& option) {
  return option.palette.window().color().lightness() < 128;
}

QRectF frameOf(const QStyleOption& option) {
  return QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

class Pen {
 public:
  Pen(QPainter& painter, const QColor& colour) : painter_(painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
  }
  ~Pen() { painter_.restore(); }
  QPainter* operator->() { return &painter_; }

 private:
  QPainter& painter_;
};

void outlineFrame(const QStyleOption& option, QPainter& painter) {
  if (!isDark(option)) return;
  Pen(painter, option.palette.mid().color())->drawRoundedRect(frameOf(option), 2, 2);
}

// Fusion gives a field with the focus an outline of its own.
void outlineField(const QStyleOption& option, QPainter& painter) {
  if (!(option.state & QStyle::State_HasFocus)) outlineFrame(option, painter);
}

void outlineMark(const QStyleOption& option, QPainter& painter, bool round) {
  if (!isDark(option)) return;
  Pen pen(painter, option.palette.mid().color().lighter(150));
  const QRectF frame = frameOf(option);
  round ? pen->drawEllipse(frame) : pen->drawRoundedRect(frame, 2, 2);
}

}  // namespace

OutlineStyle::OutlineStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void OutlineStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  switch (element) {
    case PE_Frame:
      return outlineFrame(*option, *painter);
    case PE_FrameLineEdit:
      return outlineField(*option, *painter);
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
      return outlineMark(*option, *painter, false);
    case PE_IndicatorRadioButton:
      return outlineMark(*option, *painter, true);
    default:
      return;
  }
}

void OutlineStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  if (control == CC_SpinBox) outlineField(*option, *painter);
}

QPixmap OutlineStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                          const QStyleOption* option) const {
  if (mode != QIcon::Disabled) return QProxyStyle::generatedIconPixmap(mode, pixmap, option);
  QPixmap faded(pixmap.size());
  faded.setDevicePixelRatio(pixmap.devicePixelRatio());
  faded.fill(Qt::transparent);
  QPainter painter(&faded);
  painter.setOpacity(0.35);
  painter.drawPixmap(0, 0, pixmap);
  return faded;
}

}  // namespace lodex
