#include "vantle/session/VantleHostState.h"

#include "kestrava/base/SoPreferences.h"

namespace {

constexpr char DEBUG_STACK[] = "KSV_DEBUG_STACKERROR";
constexpr char STACK_FORMAT[] = "KSV_STACKWALKER_HTML_OUTPUT";
constexpr char ON[] = "1"; // what the session sets

void putBack(char const* key, std::optional<SbString> const& former) {
  if (SoPreferences::getSetValue(key) != SbString(ON)) return;
  if (former)
    SoPreferences::setValue(key, *former);
  else
    SoPreferences::removeValue(key);
}

} // namespace

VantleHostState::VantleHostState()
    : m_debugStack(SoPreferences::getSetValue(DEBUG_STACK)),
      m_stackFormat(SoPreferences::getSetValue(STACK_FORMAT)),
      m_errorHandler(SoErrorStack::getHandlerCallback()),
      m_errorData(SoErrorStack::getHandlerData()),
      m_fetch(SoWWWInline::getFetchURLCallBack()),
      m_fetchData(SoWWWInline::getFetchURLData()) {}

VantleHostState::~VantleHostState() {
  // The main frame, which has the place meanwhile, leaves it empty.
  if (!SoWWWInline::getFetchURLCallBack()) SoWWWInline::setFetchURLCallBack(m_fetch, m_fetchData);
  if (m_ownErrorHandler && SoErrorStack::getHandlerCallback() == m_ownErrorHandler) {
    SoErrorStack::setHandlerCallback(m_errorHandler, m_errorData);
  }
  if (QLocale() == QLocale(QLocale::C)) QLocale::setDefault(m_locale);
  putBack(STACK_FORMAT, m_stackFormat);
  putBack(DEBUG_STACK, m_debugStack);
}

void VantleHostState::setPreferences() {
  if (!SoPreferences::hasValue(DEBUG_STACK)) SoPreferences::setValue(DEBUG_STACK, ON);
  SoPreferences::setValue(STACK_FORMAT, ON);
}

void VantleHostState::setLocale() { QLocale::setDefault(QLocale(QLocale::C)); }

void VantleHostState::setErrorHandler(SoErrorCB* handler) {
  m_ownErrorHandler = handler;
  SoErrorStack::setHandlerCallback(handler);
}
