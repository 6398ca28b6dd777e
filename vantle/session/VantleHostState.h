#pragma once

#include <QLocale>
#include <QString>
#include <optional>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoWWWInline.h"

/// What a session changes in its process besides its own objects. Made before the changes; destroying it puts
/// everything back that is still as the session set it.
class VantleHostState {
 public:
  VantleHostState();
  ~VantleHostState();
  VantleHostState(VantleHostState const&) = delete;
  VantleHostState& operator=(VantleHostState const&) = delete;

  // The changes, in the order in which a start makes them.
  /// So that errors carry a call stack, as plain text. A value that the user gave to the first one stays.
  void setPreferences();
  /// Numbers have a decimal point, whatever the user's language.
  void setLocale();
  void setErrorHandler(SoErrorCB* handler);

 private:
  std::optional<SbString> m_debugStack, m_stackFormat;
  QLocale m_locale;
  SoErrorCB *m_errorHandler, *m_ownErrorHandler = nullptr;
  void* m_errorData;
  SoWWWInlineFetchURLCB* m_fetch;
  void* m_fetchData;
};
