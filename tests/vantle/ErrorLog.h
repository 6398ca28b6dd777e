#pragma once

#include <QStringList>

#include "kestrava/base/SoError.h"
#include "vnt/QtText.h"

/// The errors that the toolkit is told while this lives.
template <class Error> class ErrorLog {
 public:
  ErrorLog() { Error::setHandlerCallback(take, this); }
  ~ErrorLog() { Error::setHandlerCallback(nullptr); }
  ErrorLog(ErrorLog const&) = delete;
  ErrorLog& operator=(ErrorLog const&) = delete;

  QStringList texts;

 private:
  static void take(SoError const* error, void* self) {
    static_cast<ErrorLog*>(self)->texts << toQString(error->getDebugString());
  }
};
