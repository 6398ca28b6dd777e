#pragma once

#include <array>
#include <cfloat>
#include <charconv>
#include <cstdint>
#include <cstring>

// Numbers as they stand in nearly every file, read without a call. What does not fit here (many digits, rare
// forms, faults) is left to SoInput, which is exact about all of it.

namespace SoNumberText {

enum CharacterClass : unsigned char {
  SPACE = 1,       // separates tokens
  END_WORD = 2,    // ends a string or name without quotes
  END_NUMBER = 4,  // ends a number
  IDENTIFIER = 8,  // stands in symbols
};

inline constexpr std::array<unsigned char, 256> CLASSES = [] {
  std::array<unsigned char, 256> table{};
  for (char c : {' ', '\t', '\r', '\n', ','}) table[static_cast<unsigned char>(c)] = SPACE | END_WORD | END_NUMBER;
  for (char c : {'"', '{', '}', '[', ']', '#'}) table[static_cast<unsigned char>(c)] = END_WORD | END_NUMBER;
  for (char c : {'~', '=', '(', ')', '|'}) table[static_cast<unsigned char>(c)] = END_NUMBER;
  for (int c = '0'; c <= '9'; ++c) table[c] = IDENTIFIER;
  for (int c = 'a'; c <= 'z'; ++c) table[c] = table[c - 'a' + 'A'] = IDENTIFIER;
  table['_'] = IDENTIFIER;
  return table;
}();

inline bool is(char c, CharacterClass what) { return CLASSES[static_cast<unsigned char>(c)] & what; }
inline bool isDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

inline constexpr double POWERS[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Reads a real whose digits and power of ten are both exact in a double, so that one operation rounds it
/// correctly. Answers where it ends, null when it is not such a one or is not followed by what ends a number.
inline char const* parseReal(char const* p, char const* end, double& value) {
  bool const negative = p < end && *p == '-';
  if (negative) ++p;
  std::uint64_t digits = 0;
  char const* const first = p;
  while (p < end && isDigit(*p)) digits = digits * 10 + static_cast<unsigned char>(*p++ - '0');
  int count = static_cast<int>(p - first);
  int exponent = 0;
  if (p < end && *p == '.') {
    char const* const fraction = ++p;
    while (p < end && isDigit(*p)) digits = digits * 10 + static_cast<unsigned char>(*p++ - '0');
    exponent = -static_cast<int>(p - fraction);
    count -= exponent;
  }
  if (count == 0 || count > 19 || digits >> 53) return nullptr;
  if (p < end && (*p | 0x20) == 'e') {
    ++p;
    bool const down = p < end && *p == '-';
    if (p < end && (*p == '-' || *p == '+')) ++p;
    char const* const power = p;
    int given = 0;
    while (p < end && isDigit(*p) && p - power < 4) given = given * 10 + (*p++ - '0');
    if (p == power) return nullptr;
    exponent += down ? -given : given;
  }
  if (p == end || !is(*p, END_NUMBER) || exponent < -22 || exponent > 22) return nullptr;
  value = static_cast<double>(digits);
  if (exponent < 0) {
    value /= POWERS[-exponent];
  } else {
    value *= POWERS[exponent];
  }
  if (negative) value = -value;
  return p;
}

inline char const* parseReal(char const* p, char const* end, float& value) {
  double wide = 0;
  p = parseReal(p, end, wide);
  if (!p) return nullptr;
  // Rounding twice goes wrong only where the first result lies halfway between two floats.
  std::uint64_t bits = 0;
  std::memcpy(&bits, &wide, sizeof bits);
  constexpr std::uint64_t DROPPED = (std::uint64_t{1} << 29) - 1, HALF = std::uint64_t{1} << 28;
  if ((bits & DROPPED) == HALF) return nullptr;
  double const magnitude = wide < 0 ? -wide : wide;
  if (magnitude != 0 && (magnitude < FLT_MIN || magnitude > FLT_MAX)) return nullptr;
  value = static_cast<float>(wide);
  return p;
}

/// Reads a decimal integer of at most nine digits; null for anything else.
inline char const* parseInteger(char const* p, char const* end, std::int32_t& value) {
  bool const negative = p < end && *p == '-';
  if (negative) ++p;
  char const* const first = p;
  std::int32_t digits = 0;
  while (p < end && isDigit(*p) && p - first < 9) digits = digits * 10 + (*p++ - '0');
  if (p == first || p == end || !is(*p, END_NUMBER) || (*first == '0' && p - first > 1)) return nullptr;
  value = negative ? -digits : digits;
  return p;
}

}  // namespace SoNumberText
