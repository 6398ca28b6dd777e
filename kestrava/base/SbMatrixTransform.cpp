#include <algorithm>
#include <cmath>
#include <utility>

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbVec3d.h"

namespace {

// Turns the rows of a matrix by rotations, which `axes` takes part in, until each is orthogonal to the others
// (Hestenes' one-sided Jacobi). Rows that are orthogonal but for the rounding of floats are left alone: equal
// factors would otherwise get axes out of the noise.
void makeOrthogonal(SbVec3d (&rows)[3], SbVec3d (&axes)[3]) {
  auto cosine = [&](int p, int q) {
    double const lengths = rows[p].length() * rows[q].length();
    return lengths > 0 ? std::abs(rows[p].dot(rows[q])) / lengths : 0;
  };
  for (int sweep = 0; sweep < 30; ++sweep) {
    double const limit = sweep == 0 ? 1e-6 : 1e-14;
    if (cosine(0, 1) <= limit && cosine(0, 2) <= limit && cosine(1, 2) <= limit) return;
    for (auto [p, q] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)}) {
      double const product = rows[p].dot(rows[q]);
      if (product == 0) continue;
      double const theta = (rows[q].dot(rows[q]) - rows[p].dot(rows[p])) / (2 * product);
      double const t = (theta < 0 ? -1 : 1) / (std::abs(theta) + std::sqrt(theta * theta + 1));
      double const c = 1 / std::sqrt(t * t + 1), s = t * c;
      for (auto* vectors : {&rows, &axes}) {
        SbVec3d const x = (*vectors)[p], y = (*vectors)[q];
        (*vectors)[p] = x * c - y * s;
        (*vectors)[q] = x * s + y * c;
      }
    }
  }
}

SbVec3d anyPerpendicular(SbVec3d const& v) {
  return v.cross(std::abs(v[0]) < 0.5 ? SbVec3d(1, 0, 0) : SbVec3d(0, 1, 0)).normalized();
}

// Gives the directions that a factor of zero has lost: any that complete the others to an orthonormal frame.
void completeFrame(SbVec3d (&frame)[3], bool const (&known)[3]) {
  int const count = known[0] + known[1] + known[2];
  if (count == 3) return;
  int const first = known[0] ? 0 : known[1] ? 1 : known[2] ? 2 : 0;
  int const j = (first + 1) % 3, k = (first + 2) % 3;
  if (count == 0) frame[first] = SbVec3d(first == 0, first == 1, first == 2);
  if (known[j] && count == 2) {
    frame[k] = frame[first].cross(frame[j]);
  } else {
    if (count < 2) frame[k] = anyPerpendicular(frame[first]);
    frame[j] = frame[k].cross(frame[first]);
  }
}

SbRotation rotationFromRows(SbVec3d const (&rows)[3]) {
  SbMatrix matrix;
  for (int i = 0; i < 9; ++i) matrix[i / 3][i % 3] = static_cast<float>(rows[i / 3][i % 3]);
  return SbRotation(matrix);
}

} // namespace

void SbMatrix::setTransform(SbVec3f const& translation, SbRotation const& rotation, SbVec3f const& scale,
                            SbRotation const& scaleOrientation, SbVec3f const& center) {
  SbMatrix part;
  setScale(scale);
  if (!scaleOrientation.isIdentity()) {
    part.setRotate(scaleOrientation);
    *this = part.transpose() * *this * part;
  }
  if (!rotation.isIdentity()) multRight(rotation.getMatrix());
  SbVec3f const last = translation + center - multDirMatrix(center);
  for (int i = 0; i < 3; ++i) m[3][i] = last[i];
}

// The upper part A is split into a symmetric stretch along axes u_i by s_i, followed by a rotation R:
// u_i * A = s_i * (u_i * R), so the rows of U * R are the directions of u_i * A.
void SbMatrix::getTransform(SbVec3f& translation, SbRotation& rotation, SbVec3f& scale,
                            SbRotation& scaleOrientation, SbVec3f const& center) const {
  translation = SbVec3f(m[3]) + multDirMatrix(center) - center;

  SbVec3d turned[3], u[3];
  for (int i = 0; i < 3; ++i) {
    turned[i] = SbVec3d(SbVec3f(m[i]));
    u[i][i] = 1;
  }
  makeOrthogonal(turned, u);
  double lengths[3];
  for (int i = 0; i < 3; ++i) lengths[i] = turned[i].normalize();
  double const largest = *std::max_element(lengths, lengths + 3);
  bool known[3];
  for (int i = 0; i < 3; ++i) known[i] = lengths[i] > 1e-7 * largest;
  completeFrame(turned, known);

  double sign = 1;
  if (turned[0].cross(turned[1]).dot(turned[2]) < 0) {
    sign = -1;
    for (SbVec3d& direction : turned) direction = -direction;
  }
  for (int i = 0; i < 3; ++i) scale[i] = static_cast<float>(sign * lengths[i]);

  scaleOrientation = rotationFromRows(u);
  SbVec3d turn[3]; // transpose(U) * turned
  for (int i = 0; i < 3; ++i) turn[i] = turned[0] * u[0][i] + turned[1] * u[1][i] + turned[2] * u[2][i];
  rotation = rotationFromRows(turn);
}
