#pragma once

#include <limits>
#include <type_traits>

#include "kestrava/base/SbTime.h"
#include "kestrava/base/SbVec.h"

/// The numbers that a value is made of, for conversions between fields: `COUNT` of them, 0 for other values.
template <class T> struct SoNumbers {
 private:
  template <class U, int N> static constexpr int countOf(SbVec<U, N> const*) { return N; }
  static constexpr int countOf(void const*) { return 0; }

 public:
  static constexpr bool IS_SINGLE = std::is_arithmetic_v<T> || std::is_same_v<T, SbTime>;
  static constexpr int COUNT = IS_SINGLE ? 1 : countOf(static_cast<T const*>(nullptr));

  /// The number as a component: integers lose the fraction and stop at the ends of their range.
  template <class C> static C toComponent(double number) {
    if constexpr (std::is_same_v<C, bool>) {
      return number != 0;
    } else if constexpr (std::is_integral_v<C>) {
      using Limits = std::numeric_limits<C>;
      if (!(number > static_cast<double>(Limits::min()))) return number == number ? Limits::min() : C{};
      return number < static_cast<double>(Limits::max()) ? static_cast<C>(number) : Limits::max();
    } else {
      return static_cast<C>(number);
    }
  }

  /// Writes COUNT numbers.
  static void get(T const& value, double* numbers) {
    if constexpr (std::is_same_v<T, SbTime>) {
      numbers[0] = value.seconds;
    } else if constexpr (IS_SINGLE) {
      numbers[0] = static_cast<double>(value);
    } else {
      for (int i = 0; i < COUNT; ++i) numbers[i] = static_cast<double>(value[i]);
    }
  }
  static T make(double const* numbers) {
    T value{};
    if constexpr (std::is_same_v<T, SbTime>) {
      value.seconds = numbers[0];
    } else if constexpr (IS_SINGLE) {
      value = toComponent<T>(numbers[0]);
    } else {
      for (int i = 0; i < COUNT; ++i) value[i] = toComponent<std::decay_t<decltype(value[i])>>(numbers[i]);
    }
    return value;
  }
};
