#include "kestrava/base/SbRotation.h"

#include <cmath>
#include <numbers>

#include "kestrava/base/SbVec3d.h"

namespace {

SbVec3d vectorPart(SbVec4d const& q) { return SbVec3d(q[0], q[1], q[2]); }

SbVec4d makeQuaternion(SbVec3d const& v, double w) { return SbVec4d(v[0], v[1], v[2], w); }

// The Hamilton product: turns by `b` first.
SbVec4d product(SbVec4d const& a, SbVec4d const& b) {
  SbVec3d const va = vectorPart(a), vb = vectorPart(b);
  return makeQuaternion(va * b[3] + vb * a[3] + va.cross(vb), a[3] * b[3] - va.dot(vb));
}

} // namespace

SbRotation::SbRotation(SbVec3f const& from, SbVec3f const& to) {
  SbVec3d a(from), b(to);
  if (a.normalize() == 0 || b.normalize() == 0) return;
  SbVec3d const axis = a.cross(b);
  double const cosine = a.dot(b);
  if (axis.length() > 1e-9) {
    *this = fromQuaternion(makeQuaternion(axis, 1 + cosine));
  } else if (cosine < 0) {
    SbVec3d const helper = std::abs(a[0]) < 0.5 ? SbVec3d(1, 0, 0) : SbVec3d(0, 1, 0);
    setValue(SbVec3f(a.cross(helper).normalized()), std::numbers::pi_v<float>);
  }
}

SbRotation::SbRotation(SbMatrix const& matrix) {
  auto m = [&](int row, int column) { return static_cast<double>(matrix[row][column]); };
  double const trace = m(0, 0) + m(1, 1) + m(2, 2);
  SbVec4d q;
  // The largest component is computed by the root, the others from it: no division by something small.
  if (trace > 0) {
    q = SbVec4d(m(1, 2) - m(2, 1), m(2, 0) - m(0, 2), m(0, 1) - m(1, 0), 1 + trace);
  } else {
    int const i = m(0, 0) >= m(1, 1) ? (m(0, 0) >= m(2, 2) ? 0 : 2) : (m(1, 1) >= m(2, 2) ? 1 : 2);
    int const j = (i + 1) % 3, k = (i + 2) % 3;
    q[i] = 1 + m(i, i) - m(j, j) - m(k, k);
    q[j] = m(i, j) + m(j, i);
    q[k] = m(i, k) + m(k, i);
    q[3] = m(j, k) - m(k, j);
  }
  *this = fromQuaternion(q);
}

SbRotation SbRotation::fromQuaternion(SbVec4d const& xyzw) {
  double const sign = xyzw[3] < 0 ? -1 : 1;
  SbVec3d axis = vectorPart(xyzw) * sign;
  double const sine = axis.normalize();
  return SbRotation(SbVec3f(axis), static_cast<float>(2 * std::atan2(sine, xyzw[3] * sign)));
}

void SbRotation::setValue(SbVec3f const& axis, float radians) {
  *this = SbRotation();
  float const length = axis.length();
  if (!(length > 0) || !std::isfinite(length) || !std::isfinite(radians) || radians == 0) return;
  // An axis that is a unit vector but for rounding stays bit for bit, so that what was written reads back.
  m_axis = std::abs(length - 1) <= 1e-6f ? axis : axis / length;
  m_angle = radians;
}

SbVec4d SbRotation::getQuaternion() const {
  double const half = 0.5 * m_angle;
  return makeQuaternion(SbVec3d(m_axis).normalized() * std::sin(half), std::cos(half));
}

SbMatrix SbRotation::getMatrix() const {
  SbMatrix matrix;
  if (isIdentity()) return matrix;
  SbVec3d const a = SbVec3d(m_axis).normalized();
  double const s = std::sin(static_cast<double>(m_angle)), c = std::cos(static_cast<double>(m_angle));
  for (int i = 0; i < 3; ++i) {
    int const j = (i + 1) % 3, k = (i + 2) % 3;
    matrix[i][i] = static_cast<float>(a[i] * a[i] * (1 - c) + c);
    matrix[i][j] = static_cast<float>(a[i] * a[j] * (1 - c) + a[k] * s);
    matrix[i][k] = static_cast<float>(a[i] * a[k] * (1 - c) - a[j] * s);
  }
  return matrix;
}

SbVec3f SbRotation::multVec(SbVec3f const& v) const {
  if (isIdentity()) return v;
  SbVec4d const q = getQuaternion();
  SbVec3d const u = vectorPart(q), p(v);
  SbVec3d const twice = u.cross(p) * 2.0;
  return SbVec3f(p + twice * q[3] + u.cross(twice));
}

SbRotation SbRotation::inverse() const {
  SbRotation result = *this;
  result.m_angle = isIdentity() ? 0 : -m_angle;
  return result;
}

SbRotation operator*(SbRotation const& a, SbRotation const& b) {
  if (a.isIdentity()) return b;
  if (b.isIdentity()) return a;
  return SbRotation::fromQuaternion(product(b.getQuaternion(), a.getQuaternion()));
}

SbRotation SbRotation::slerp(SbRotation const& a, SbRotation const& b, float t) {
  SbVec4d const from = a.getQuaternion();
  SbVec4d to = b.getQuaternion();
  double cosine = from.dot(to);
  if (cosine < 0) {
    to = -to;
    cosine = -cosine;
  }
  double wa = 1.0 - t, wb = t;
  if (cosine < 0.999999) {
    double const angle = std::acos(cosine), sine = std::sin(angle);
    wa = std::sin(wa * angle) / sine;
    wb = std::sin(wb * angle) / sine;
  }
  return fromQuaternion(from * wa + to * wb);
}

bool SbRotation::equals(SbRotation const& other, float tolerance) const {
  SbVec4d const a = getQuaternion(), b = other.getQuaternion();
  return a.equals(b, tolerance) || a.equals(-b, tolerance);
}
