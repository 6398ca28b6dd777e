#pragma once

#include <chrono>
#include <compare>

/// A moment or a span of time in seconds; moments count from 1970-01-01 00:00 UTC.
struct SbTime {
  double seconds = 0;

  constexpr SbTime() = default;
  explicit constexpr SbTime(double value) : seconds(value) {}
  /// The clock of the system; it may be set back.
  static SbTime now() {
    return SbTime(std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count());
  }
  constexpr double getValue() const { return seconds; }

  constexpr SbTime& operator+=(SbTime t) { return *this = SbTime(seconds + t.seconds); }
  constexpr SbTime& operator-=(SbTime t) { return *this = SbTime(seconds - t.seconds); }
  friend constexpr SbTime operator+(SbTime a, SbTime b) { return a += b; }
  friend constexpr SbTime operator-(SbTime a, SbTime b) { return a -= b; }
  friend constexpr SbTime operator*(SbTime t, double factor) { return SbTime(t.seconds * factor); }
  friend constexpr double operator/(SbTime a, SbTime b) { return a.seconds / b.seconds; }
  friend constexpr auto operator<=>(SbTime const&, SbTime const&) = default;
};
