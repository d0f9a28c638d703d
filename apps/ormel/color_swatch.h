// A button that shows a colour.
#pragma once

#include <QPushButton>

#include "core/types.h"

namespace ormel {

class ColorSwatch : public QPushButton {
 public:
  explicit ColorSwatch(QWidget* parent);

  void SetColor(Color color);
  Color color() const { return color_; }
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Color color_{};
};

}  // namespace ormel
