#pragma once

#include <cstdarg>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoType.h"

class SoError;
/// Called for each error, on the thread that posts it; the error lives only as long as the call.
using SoErrorCB = void(SoError const* error, void* data);

/// What went wrong, for the program to show. Each kind of error has a handler of its own; the default one
/// writes a line to standard error. Handlers may be set from any thread.
class SoError {
 public:
  /// Text as for printf.
  static void post(char const* format, ...) __attribute__((format(printf, 1, 2)));
  /// Null brings the default handler back.
  static void setHandlerCallback(SoErrorCB* callback, void* data = nullptr);
  /// Never null: the default handler when none is set.
  static SoErrorCB* getHandlerCallback();
  static void* getHandlerData();

  static SoType getClassTypeId();
  virtual SoType getTypeId() const { return getClassTypeId(); }
  bool isOfType(SoType type) const { return getTypeId().isDerivedFrom(type); }
  /// The whole message, without a line end.
  SbString const& getDebugString() const { return m_text; }

  virtual ~SoError() = default;

 protected:
  class Channel;
  explicit SoError(SbString text) : m_text(std::move(text)) {}
  void deliver(Channel& channel) const;
  static SbString formatText(char const* format, va_list arguments);

 private:
  static Channel& channel();
  static void writeLine(SoError const* error, void* data);
  SbString m_text;
};

/// A mistake of the program that uses the toolkit.
class SoDebugError : public SoError {
 public:
  enum Severity { ERROR, WARNING, INFO };

  /// `source` names the operation that complains.
  static void post(char const* source, char const* format, ...) __attribute__((format(printf, 2, 3)));
  static void postWarning(char const* source, char const* format, ...) __attribute__((format(printf, 2, 3)));
  static void postInfo(char const* source, char const* format, ...) __attribute__((format(printf, 2, 3)));
  static void setHandlerCallback(SoErrorCB* callback, void* data = nullptr);
  static SoErrorCB* getHandlerCallback();
  static void* getHandlerData();

  static SoType getClassTypeId();
  SoType getTypeId() const override { return getClassTypeId(); }
  Severity getSeverity() const { return m_severity; }

 private:
  SoDebugError(Severity severity, SbString text) : SoError(std::move(text)), m_severity(severity) {}
  static void post(Severity severity, char const* source, char const* format, va_list arguments);
  static Channel& channel();
  Severity m_severity;
};

/// Something in a file that can not be read as it stands.
class SoReadError : public SoError {
 public:
  static void post(char const* format, ...) __attribute__((format(printf, 1, 2)));
  static void setHandlerCallback(SoErrorCB* callback, void* data = nullptr);
  static SoErrorCB* getHandlerCallback();
  static void* getHandlerData();

  static SoType getClassTypeId();
  SoType getTypeId() const override { return getClassTypeId(); }

 private:
  using SoError::SoError;
  static Channel& channel();
};

/// A failure grave enough to say where in the program it came from.
class SoErrorStack : public SoError {
 public:
  /// Takes the call stack of the caller when the preference KSV_DEBUG_STACKERROR is true.
  static void post(char const* format, ...) __attribute__((format(printf, 1, 2)));
  static void setHandlerCallback(SoErrorCB* callback, void* data = nullptr);
  static SoErrorCB* getHandlerCallback();
  static void* getHandlerData();

  static SoType getClassTypeId();
  SoType getTypeId() const override { return getClassTypeId(); }
  /// Plain text, one call a line, the innermost first; empty when no stack was taken.
  SbString const& getStack() const { return m_stack; }

 private:
  SoErrorStack(SbString text, SbString stack) : SoError(std::move(text)), m_stack(std::move(stack)) {}
  static Channel& channel();
  SbString m_stack;
};
