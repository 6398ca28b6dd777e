#include "kestrava/base/SbMatrix.h"

#include <algorithm>
#include <cmath>

#include "kestrava/base/SbRotation.h"

namespace {

// Gaussian elimination with row scaling in double on [matrix | right side]; false when a pivot vanishes.
// `determinant` gets the determinant in either case.
bool eliminate(double (&rows)[4][8], int size, double& determinant) {
  determinant = 1;
  double scale[4];
  for (int i = 0; i < size; ++i) {
    scale[i] = 0;
    for (int j = 0; j < size; ++j) scale[i] = std::max(scale[i], std::abs(rows[i][j]));
  }
  for (int c = 0; c < size; ++c) {
    int best = c;
    for (int r = c; r < size; ++r) {
      if (std::abs(rows[r][c]) * scale[best] > std::abs(rows[best][c]) * scale[r]) best = r;
    }
    // Rounding leaves something like 1e-16 of a row that depends on others.
    if (!(std::abs(rows[best][c]) > 1e-13 * scale[best])) {
      determinant = 0;
      return false;
    }
    if (best != c) {
      std::swap(rows[best], rows[c]);
      std::swap(scale[best], scale[c]);
      determinant = -determinant;
    }
    double const pivot = rows[c][c];
    determinant *= pivot;
    for (double& value : rows[c]) value /= pivot;
    for (int r = 0; r < size; ++r) {
      double const factor = rows[r][c];
      if (r == c || factor == 0) continue;
      for (int j = 0; j < 8; ++j) rows[r][j] -= factor * rows[c][j];
    }
  }
  return true;
}

double determinantOf(SbMatrix const& matrix, int size) {
  double rows[4][8] = {};
  for (int i = 0; i < size; ++i) std::copy_n(matrix[i], size, rows[i]);
  double determinant = 0;
  eliminate(rows, size, determinant);
  return determinant;
}

} // namespace

void SbMatrix::setTranslate(SbVec3f const& translation) {
  makeIdentity();
  for (int i = 0; i < 3; ++i) m[3][i] = translation[i];
}

void SbMatrix::setScale(SbVec3f const& factors) {
  makeIdentity();
  for (int i = 0; i < 3; ++i) m[i][i] = factors[i];
}

void SbMatrix::setRotate(SbRotation const& rotation) { *this = rotation.getMatrix(); }

SbMatrix operator*(SbMatrix const& a, SbMatrix const& b) {
  SbMatrix result;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      result.m[i][j] =
          a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j] + a.m[i][3] * b.m[3][j];
    }
  }
  return result;
}

SbVec3f SbMatrix::multVecMatrix(SbVec3f const& p) const {
  SbVec3f result = multDirMatrix(p) + SbVec3f(m[3]);
  float const w = p[0] * m[0][3] + p[1] * m[1][3] + p[2] * m[2][3] + m[3][3];
  return w == 1 || w == 0 ? result : result / w;
}

SbVec3f SbMatrix::multDirMatrix(SbVec3f const& d) const {
  return SbVec3f(d[0] * m[0][0] + d[1] * m[1][0] + d[2] * m[2][0],
                 d[0] * m[0][1] + d[1] * m[1][1] + d[2] * m[2][1],
                 d[0] * m[0][2] + d[1] * m[1][2] + d[2] * m[2][2]);
}

SbMatrix SbMatrix::transpose() const {
  SbMatrix result;
  for (int i = 0; i < 16; ++i) result.m[i / 4][i % 4] = m[i % 4][i / 4];
  return result;
}

float SbMatrix::det3() const { return static_cast<float>(determinantOf(*this, 3)); }
float SbMatrix::det4() const { return static_cast<float>(determinantOf(*this, 4)); }

SbMatrix SbMatrix::inverse(bool* exists) const {
  double rows[4][8] = {};
  for (int i = 0; i < 4; ++i) {
    std::copy_n(m[i], 4, rows[i]);
    rows[i][4 + i] = 1;
  }
  double determinant = 0;
  bool const found = eliminate(rows, 4, determinant);
  if (exists) *exists = found;
  SbMatrix result;
  if (found) {
    for (int i = 0; i < 16; ++i) result.m[i / 4][i % 4] = static_cast<float>(rows[i / 4][4 + i % 4]);
  }
  return result;
}

bool SbMatrix::equals(SbMatrix const& other, float tolerance) const {
  return std::equal(m[0], m[0] + 16, other.m[0],
                    [=](float a, float b) { return std::abs(a - b) <= tolerance; });
}
