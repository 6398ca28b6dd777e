#pragma once

#include <QIcon>

/// The pictures on the viewer's buttons, drawn in a colour of the palette.
namespace SoQtViewerIcons {

enum Icon { VIEW, PICK, HOME, SET_HOME, VIEW_ALL, SEEK, PERSPECTIVE, ORTHOGRAPHIC };
QIcon make(Icon icon, QColor const& color);

}  // namespace SoQtViewerIcons
