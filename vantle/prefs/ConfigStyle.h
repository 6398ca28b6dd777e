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
