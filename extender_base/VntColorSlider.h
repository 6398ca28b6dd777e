#pragma once

#include <QGradientStops>

#include "extender_base/VntSlider.h"

/// A slider for one part of a colour, whose groove shows the colours that it would give.
class VntColorSlider : public VntSlider {
  Q_OBJECT
 public:
  using VntSlider::VntSlider;

  void setColors(QGradientStops const& colors);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  QRect handle() const override;

 private:
  QGradientStops m_colors;
};
