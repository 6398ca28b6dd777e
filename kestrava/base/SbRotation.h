#pragma once

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbVec3f.h"
#include "kestrava/base/SbVec4d.h"

/// A rotation in space, right-handed about an axis through the origin.
///
/// It is kept as axis and angle, because that is how people and files write it and how it has to come back;
/// composing goes through unit quaternions in double. Whoever turns many points asks for the matrix once.
class SbRotation {
 public:
  /// The identity: axis (0, 0, 1), angle 0.
  constexpr SbRotation() = default;
  SbRotation(SbVec3f const& axis, float radians) { setValue(axis, radians); }
  /// The shortest rotation that turns `from` into the direction of `to`; any of them for opposite vectors.
  SbRotation(SbVec3f const& from, SbVec3f const& to);
  /// The rotation of a matrix whose upper 3x3 part is orthonormal; see SbMatrix::getTransform for others.
  explicit SbRotation(SbMatrix const& matrix);
  static constexpr SbRotation identity() { return SbRotation(); }
  /// From x, y, z, w, of any length but zero. The angle is then 0 to pi.
  static SbRotation fromQuaternion(SbVec4d const& xyzw);

  /// The axis gets unit length; the angle stays as it is, negative or beyond a turn. A zero axis, a zero
  /// angle and values that are not finite make the identity.
  void setValue(SbVec3f const& axis, float radians);
  void getValue(SbVec3f& axis, float& radians) const {
    axis = m_axis;
    radians = m_angle;
  }
  /// Unit length.
  SbVec3f const& getAxis() const { return m_axis; }
  /// Radians.
  float getAngle() const { return m_angle; }
  bool isIdentity() const { return m_angle == 0; }
  /// x, y, z, w, unit length.
  SbVec4d getQuaternion() const;
  SbMatrix getMatrix() const;

  SbVec3f multVec(SbVec3f const& v) const;
  SbRotation inverse() const;
  /// First `a`, then `b`, as with matrices.
  friend SbRotation operator*(SbRotation const& a, SbRotation const& b);
  SbRotation& operator*=(SbRotation const& after) { return *this = *this * after; }
  /// Along the shorter arc from `a` (t = 0) to `b` (t = 1), at constant speed.
  static SbRotation slerp(SbRotation const& a, SbRotation const& b, float t);

  /// Same axis and same angle, exactly.
  friend bool operator==(SbRotation const&, SbRotation const&) = default;
  /// True when both turn vectors alike: no component of the quaternions differs by more than `tolerance`.
  bool equals(SbRotation const& other, float tolerance) const;

 private:
  SbVec3f m_axis = {0.f, 0.f, 1.f};
  float m_angle = 0;
};
