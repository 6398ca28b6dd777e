#include "kestrava/base/SbString.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr char32_t REPLACEMENT = 0xfffd;

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xc0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3f));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xe0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
    out += static_cast<char>(0x80 | (c & 0x3f));
  } else {
    out += static_cast<char>(0xf0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3f));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
    out += static_cast<char>(0x80 | (c & 0x3f));
  }
}

/// Decodes the character at `i` and moves `i` behind it; a bad byte is one U+FFFD.
char32_t nextUtf8(std::string_view text, size_t& i) {
  auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
  unsigned char const first = byte(i++);
  if (first < 0x80) return first;
  int const more = first >= 0xf0 && first < 0xf5 ? 3 : first >= 0xe0 ? 2 : first >= 0xc2 ? 1 : 0;
  if (more == 0 || first >= 0xf5) return REPLACEMENT;
  char32_t c = first & (0x3f >> more);
  for (int k = 0; k < more; ++k) {
    if (i + k >= text.size() || (byte(i + k) & 0xc0) != 0x80) return REPLACEMENT;
    c = (c << 6) | (byte(i + k) & 0x3f);
  }
  static constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
  if (c < smallest[more] || c > 0x10ffff || (c >= 0xd800 && c < 0xe000)) return REPLACEMENT;
  i += more;
  return c;
}

}  // namespace

SbString::SbString(std::u16string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (c >= 0xd800 && c < 0xdc00 && i + 1 < text.size() && (text[i + 1] & 0xfc00) == 0xdc00) {
      c = 0x10000 + ((c - 0xd800) << 10) + (text[++i] - 0xdc00);
    } else if (c >= 0xd800 && c < 0xe000) {
      c = REPLACEMENT;
    }
    appendUtf8(m_text, c);
  }
}

SbString SbString::lower() const {
  SbString result(*this);
  for (char& c : result.m_text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

std::u16string SbString::toUtf16() const {
  std::u16string out;
  out.reserve(m_text.size());
  for (size_t i = 0; i < m_text.size();) {
    char32_t const c = nextUtf8(m_text, i);
    if (c < 0x10000) {
      out += static_cast<char16_t>(c);
    } else {
      out += static_cast<char16_t>(0xd800 + ((c - 0x10000) >> 10));
      out += static_cast<char16_t>(0xdc00 + ((c - 0x10000) & 0x3ff));
    }
  }
  return out;
}

std::string SbString::toLatin1() const {
  std::string out;
  for (size_t i = 0; i < m_text.size();) {
    char32_t const c = nextUtf8(m_text, i);
    out += c < 0x100 ? static_cast<char>(c) : '?';
  }
  return out;
}

SbString SbString::fromLatin1(std::string_view bytes) {
  SbString result;
  for (char c : bytes) appendUtf8(result.m_text, static_cast<unsigned char>(c));
  return result;
}

SbString SbString::format(char const* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  int const length = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  SbString result;
  if (length > 0) {
    result.m_text.resize(length);
    std::vsnprintf(result.m_text.data(), length + 1, format, again);
  }
  va_end(again);
  return result;
}
