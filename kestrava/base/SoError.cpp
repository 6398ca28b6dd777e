#include "kestrava/base/SoError.h"

#include <cstdio>
#include <mutex>

#include "kestrava/base/SoCallStack.h"
#include "kestrava/base/SoPreferences.h"

/// The handler of one class of errors.
class SoError::Channel {
 public:
  using Handler = std::pair<SoErrorCB*, void*>;

  Handler get() {
    std::lock_guard lock(m_mutex);
    return m_handler;
  }
  void set(SoErrorCB* callback, void* data) {
    std::lock_guard lock(m_mutex);
    m_handler = callback ? Handler(callback, data) : Handler(&SoError::writeLine, nullptr);
  }

 private:
  std::mutex m_mutex;
  Handler m_handler{&SoError::writeLine, nullptr};
};

void SoError::deliver(Channel& channel) const {
  // The lock is not held meanwhile: a handler may post, and may set handlers.
  auto const [callback, data] = channel.get();
  callback(this, data);
}

void SoError::writeLine(SoError const* error, void*) {
  // In one piece, so that lines of several threads do not mix.
  std::string line = error->getDebugString().str() + '\n';
  if (error->isOfType(SoErrorStack::getClassTypeId())) {
    line += static_cast<SoErrorStack const*>(error)->getStack().str();
  }
  std::fwrite(line.data(), 1, line.size(), stderr);
}

SbString SoError::formatText(char const* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  int const length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  if (length < 0) return SbString(format);
  std::string text(static_cast<size_t>(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.pop_back();
  return SbString(std::move(text));
}

// Channels are never destroyed: errors are posted until the process ends.
#define SO_ERROR_COMMON(Class, parent)                                                               \
  SoError::Channel& Class::channel() {                                                               \
    static Channel& instance = *new Channel;                                                         \
    return instance;                                                                                 \
  }                                                                                                  \
  void Class::setHandlerCallback(SoErrorCB* callback, void* data) { channel().set(callback, data); } \
  SoErrorCB* Class::getHandlerCallback() { return channel().get().first; }                           \
  void* Class::getHandlerData() { return channel().get().second; }                                   \
  SoType Class::getClassTypeId() {                                                                   \
    static SoType const type = SoType::createType(parent, &#Class[2]);                               \
    return type;                                                                                     \
  }
SO_ERROR_COMMON(SoError, SoType::badType())
SO_ERROR_COMMON(SoDebugError, SoError::getClassTypeId())
SO_ERROR_COMMON(SoReadError, SoError::getClassTypeId())
SO_ERROR_COMMON(SoErrorStack, SoError::getClassTypeId())
#undef SO_ERROR_COMMON

void SoError::post(char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  SoError const error(formatText(format, arguments));
  va_end(arguments);
  error.deliver(channel());
}

void SoReadError::post(char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  SoReadError const error(formatText(format, arguments));
  va_end(arguments);
  error.deliver(channel());
}

void SoErrorStack::post(char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  SbString text = formatText(format, arguments);
  va_end(arguments);
  bool const wanted = SoPreferences::getBool("KSV_DEBUG_STACKERROR", false);
  SoErrorStack const error(std::move(text), wanted ? SoCallStack(__builtin_return_address(0)) : SbString());
  error.deliver(channel());
}

void SoDebugError::post(Severity severity, char const* source, char const* format, va_list arguments) {
  static char const* const KINDS[] = {"error", "warning", "note"};
  std::string text = std::string(KINDS[severity]) + " in " + (source ? source : "?") + ": ";
  SoDebugError const error(severity, SbString(text + formatText(format, arguments).str()));
  error.deliver(channel());
}

void SoDebugError::post(char const* source, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  post(ERROR, source, format, arguments);
  va_end(arguments);
}

void SoDebugError::postWarning(char const* source, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  post(WARNING, source, format, arguments);
  va_end(arguments);
}

void SoDebugError::postInfo(char const* source, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  post(INFO, source, format, arguments);
  va_end(arguments);
}
