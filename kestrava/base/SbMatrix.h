#pragma once

#include "kestrava/base/SbVec3f.h"

class SbRotation;

/// A 4x4 matrix of floats, row by row in memory. Points are row vectors: p' = p * M, so the translation is
/// the last row and `a * b` does `a` first. Identity by default.
struct SbMatrix {
  float m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

  constexpr SbMatrix() = default;
  explicit constexpr SbMatrix(float const (&rows)[4][4]) {
    for (int i = 0; i < 16; ++i) m[i / 4][i % 4] = rows[i / 4][i % 4];
  }
  static constexpr SbMatrix identity() { return SbMatrix(); }

  constexpr float* operator[](int row) { return m[row]; }
  constexpr float const* operator[](int row) const { return m[row]; }
  /// The 16 numbers, row by row.
  constexpr float const* getValue() const { return m[0]; }

  void makeIdentity() { *this = SbMatrix(); }
  void setTranslate(SbVec3f const& translation);
  void setScale(SbVec3f const& factors);
  void setScale(float factor) { setScale(SbVec3f(factor, factor, factor)); }
  void setRotate(SbRotation const& rotation);
  /// Scales about `center` along axes turned by `scaleOrientation`, then rotates about `center`, then
  /// translates.
  void setTransform(SbVec3f const& translation, SbRotation const& rotation, SbVec3f const& scale,
                    SbRotation const& scaleOrientation, SbVec3f const& center);
  /// Finds values for which setTransform gives this matrix. There are several: a mirrored matrix gets three
  /// negated factors, and the order of the factors is free. The last column is not looked at.
  void getTransform(SbVec3f& translation, SbRotation& rotation, SbVec3f& scale, SbRotation& scaleOrientation,
                    SbVec3f const& center = SbVec3f()) const;

  /// this = this * right.
  SbMatrix& multRight(SbMatrix const& right) { return *this = *this * right; }
  /// this = left * this.
  SbMatrix& multLeft(SbMatrix const& left) { return *this = left * *this; }
  friend SbMatrix operator*(SbMatrix const& a, SbMatrix const& b);
  SbMatrix& operator*=(SbMatrix const& right) { return multRight(right); }

  /// A point, divided by w where w is neither 0 nor 1.
  SbVec3f multVecMatrix(SbVec3f const& point) const;
  /// A direction: no translation, no division. Normals take inverse().transpose().
  SbVec3f multDirMatrix(SbVec3f const& direction) const;

  SbMatrix transpose() const;
  /// Determinant of the upper left 3x3 part.
  float det3() const;
  float det4() const;
  /// The identity when there is no inverse; `*exists` then tells which.
  SbMatrix inverse(bool* exists = nullptr) const;
  /// True when the last column is (0, 0, 0, 1) exactly.
  bool isAffine() const { return m[0][3] == 0 && m[1][3] == 0 && m[2][3] == 0 && m[3][3] == 1; }
  bool isIdentity() const { return *this == SbMatrix(); }

  friend constexpr bool operator==(SbMatrix const&, SbMatrix const&) = default;
  bool equals(SbMatrix const& other, float tolerance) const;
};
