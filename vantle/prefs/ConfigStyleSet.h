#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "vantle/prefs/ConfigStyle.h"

// Styles in the settings, nine keys each: <group>/<name>/family and so on.

/// Writes those of the names.
void SoSaveStyles(QMap<QString, ConfigStyle> const& styles, QStringList const& names, QString const& group);
bool SoIsStyleStored(QString const& name, QString const& group);
/// A style that was never stored keeps its default; one that is stored in part takes size 10, black and
/// upright for what is missing.
QMap<QString, ConfigStyle> SoReadStyles(QMap<QString, ConfigStyle> styles, QString const& group);
