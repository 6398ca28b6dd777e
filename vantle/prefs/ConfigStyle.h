#pragma once

#include <QColor>
#include <QFont>

/// How one kind of text is shown.
struct ConfigStyle {
  QFont font; ///< family, point size, bold, italic and underline count
  QColor color;
  bool show = true;

  friend bool operator==(ConfigStyle const&, ConfigStyle const&) = default;
};

/// The colour itself, or on a dark background a light variant of a dark one.
inline QColor SoReadableColor(QColor const& color, QColor const& background) {
  if (background.lightness() >= 128 || qGray(color.rgb()) >= 140) return color;
  return QColor::fromHsl(color.hslHue(), color.hslSaturation(), qMax(180, 255 - color.lightness()));
}
