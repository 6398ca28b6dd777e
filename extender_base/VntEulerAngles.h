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
  /// Two triples make the same rotation, with a middle angle of at most a quarter turn or of more: this is the
  /// one that is nearer to `near`. Where the middle angle is a quarter turn, only the sum or the difference of
  /// the others counts.
  static VntEulerAngles fromRotation(SbRotation const& rotation, Order order, VntEulerAngles const& near);
};
