#pragma once

#include <array>

#include "kestrava/base/SbRotation.h"

/// The angles, in radians, by which one turns about x, y and z, one after the other in some order. The axes
/// stay where they are: the second turn is about the axis as it was before the first.
struct VntEulerAngles {
  /// Names the axes from the first turn to the last.
  enum Order { XYZ, XZY, YXZ, YZX, ZXY, ZYX };
  static constexpr char const* ORDERS[] = {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};

  std::array<double, 3> radians{}; // about x, y, z, whatever the order

  SbRotation toRotation(Order order) const;
  /// The middle angle is at most a quarter turn. Where it is one, only the sum or the difference of the
  /// others counts: the last one is then 0.
  static VntEulerAngles fromRotation(SbRotation const& rotation, Order order);
};
