#pragma once

#include <QByteArray>
#include <QString>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"

// The toolkit's texts and Qt's; both ways without loss.

inline QString toQString(SbString const& text) { return QString::fromUtf8(text.c_str(), text.getLength()); }

inline SbString toSbString(QString const& text) {
  QByteArray const bytes = text.toUtf8();
  return SbString(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}
