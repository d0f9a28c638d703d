#include "ormel/color_swatch.h"

#include <QPainter>

#include "qtdevice/painter_device.h"

namespace ormel {

ColorSwatch::ColorSwatch(QWidget* parent) : QPushButton(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColorSwatch::SetColor(Color color) {
  color_ = color;
  setToolTip(ToQColor(color).name());
  update();
}

QSize ColorSwatch::sizeHint() const {
  return {fontMetrics().height() * 3, fontMetrics().height() + 8};
}

void ColorSwatch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor fill = ToQColor(color_);
  QColor frame = palette().color(hasFocus() ? QPalette::Highlight : QPalette::Mid);
  if (!isEnabled()) {
    fill.setAlphaF(0.25F);
    frame.setAlphaF(0.5F);
  }
  painter.setPen(QPen(frame, hasFocus() ? 2.0 : 1.0));
  painter.setBrush(fill);
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
}

}  // namespace ormel
