#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "kestrava/base/SbForward.h"

/// N numbers in a row of memory, zero by default: a point, a direction, a size or a colour.
template <class T, int N> struct SbVec {
  static_assert(std::is_arithmetic_v<T> && N >= 2);
  /// Type of lengths and of centres: double for all but float.
  using Real = std::conditional_t<std::is_same_v<T, float>, float, double>;
  /// Type of products: wide enough for sums of squares of integers.
  using Product = std::conditional_t<std::is_integral_v<T>, std::int64_t, T>;

  T v[N] = {};

  constexpr SbVec() = default;
  template <class... A>
  requires(sizeof...(A) == N && (std::is_convertible_v<A, T> && ...)) constexpr SbVec(A... components)
      : v{static_cast<T>(components)...} {}
  /// Reads N components.
  explicit constexpr SbVec(T const* values) { setValue(values); }
  template <class U> explicit constexpr SbVec(SbVec<U, N> const& other) {
    for (int i = 0; i < N; ++i) v[i] = static_cast<T>(other.v[i]);
  }

  constexpr T& operator[](int i) { return v[i]; }
  constexpr T const& operator[](int i) const { return v[i]; }
  constexpr T const* getValue() const { return v; }
  /// Reads N components.
  constexpr void setValue(T const* values) {
    for (int i = 0; i < N; ++i) v[i] = values[i];
  }
  template <class... A>
  requires(sizeof...(A) == N &&
           (std::is_convertible_v<A, T> && ...)) constexpr void setValue(A... components) {
    *this = SbVec(components...);
  }

  constexpr SbVec& operator+=(SbVec const& o) {
    for (int i = 0; i < N; ++i) v[i] = static_cast<T>(v[i] + o.v[i]);
    return *this;
  }
  constexpr SbVec& operator-=(SbVec const& o) {
    for (int i = 0; i < N; ++i) v[i] = static_cast<T>(v[i] - o.v[i]);
    return *this;
  }
  constexpr SbVec& operator*=(T factor) {
    for (T& c : v) c = static_cast<T>(c * factor);
    return *this;
  }
  constexpr SbVec& operator/=(T divisor) {
    for (T& c : v) c = static_cast<T>(c / divisor);
    return *this;
  }
  constexpr SbVec operator-() const {
    SbVec result;
    for (int i = 0; i < N; ++i) result.v[i] = static_cast<T>(-v[i]);
    return result;
  }
  friend constexpr SbVec operator+(SbVec a, SbVec const& b) { return a += b; }
  friend constexpr SbVec operator-(SbVec a, SbVec const& b) { return a -= b; }
  friend constexpr SbVec operator*(SbVec a, T factor) { return a *= factor; }
  friend constexpr SbVec operator*(T factor, SbVec a) { return a *= factor; }
  friend constexpr SbVec operator/(SbVec a, T divisor) { return a /= divisor; }
  friend constexpr bool operator==(SbVec const&, SbVec const&) = default;

  /// True when no component differs by more than `tolerance`; never true for NaN.
  constexpr bool equals(SbVec const& o, Real tolerance) const {
    for (int i = 0; i < N; ++i) {
      Real const difference = static_cast<Real>(v[i]) - static_cast<Real>(o.v[i]);
      if (!(difference <= tolerance && -difference <= tolerance)) return false;
    }
    return true;
  }

  constexpr Product dot(SbVec const& o) const {
    Product sum = 0;
    for (int i = 0; i < N; ++i) sum += static_cast<Product>(v[i]) * static_cast<Product>(o.v[i]);
    return sum;
  }
  constexpr SbVec cross(SbVec const& o) const requires(N == 3) {
    return SbVec(v[1] * o.v[2] - v[2] * o.v[1], v[2] * o.v[0] - v[0] * o.v[2], v[0] * o.v[1] - v[1] * o.v[0]);
  }
  /// Computed in double, so that squares of large floats do not overflow.
  Real length() const {
    double sum = 0;
    for (T c : v) sum += static_cast<double>(c) * static_cast<double>(c);
    return static_cast<Real>(std::sqrt(sum));
  }
  /// Makes the length 1 and answers what it was. A zero vector stays as it is.
  Real normalize() requires std::is_floating_point_v<T> {
    Real const old = length();
    if (old > 0) *this /= old;
    return old;
  }
  SbVec normalized() const requires std::is_floating_point_v<T> {
    SbVec result = *this;
    result.normalize();
    return result;
  }

  /// The smaller of each pair of components.
  static constexpr SbVec min(SbVec a, SbVec const& b) {
    for (int i = 0; i < N; ++i) a.v[i] = b.v[i] < a.v[i] ? b.v[i] : a.v[i];
    return a;
  }
  /// The larger of each pair of components.
  static constexpr SbVec max(SbVec a, SbVec const& b) {
    for (int i = 0; i < N; ++i) a.v[i] = a.v[i] < b.v[i] ? b.v[i] : a.v[i];
    return a;
  }
};
