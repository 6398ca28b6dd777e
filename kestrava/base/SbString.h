#pragma once

#include <string>
#include <string_view>

#include "kestrava/base/SbBasic.h"

/// A text in UTF-8. Usable before and after main(); copies are deep.
class SbString {
 public:
  SbString() = default;
  /// A null pointer makes an empty text.
  SbString(char const* text) : m_text(text ? text : "") {}
  SbString(std::string text) : m_text(std::move(text)) {}
  SbString(std::string_view text) : m_text(text) {}
  /// Unpaired surrogates become U+FFFD.
  explicit SbString(std::u16string_view text);

  std::string const& str() const { return m_text; }
  char const* c_str() const { return m_text.c_str(); }
  int getLength() const { return static_cast<int>(m_text.size()); }
  bool empty() const { return m_text.empty(); }

  SbString& operator+=(std::string_view text) {
    m_text += text;
    return *this;
  }
  /// A copy with the ASCII letters A to Z in lower case.
  SbString lower() const;

  /// Invalid UTF-8 becomes U+FFFD.
  std::u16string toUtf16() const;
  /// One byte a character; characters above U+00FF become '?'.
  std::string toLatin1() const;
  static SbString fromLatin1(std::string_view bytes);
  /// printf-like.
  static SbString format(char const* format, ...) __attribute__((format(printf, 1, 2)));

  friend bool operator==(SbString const&, SbString const&) = default;
  friend auto operator<=>(SbString const& a, SbString const& b) { return a.m_text <=> b.m_text; }
  friend SbString operator+(SbString a, std::string_view b) { return a += b; }

 private:
  std::string m_text;
};
