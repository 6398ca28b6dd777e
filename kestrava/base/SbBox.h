#pragma once

#include <concepts>
#include <limits>

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbVec.h"

/// A box along the axes, its faces included; empty by default. A box whose maximum is below its minimum in
/// any direction is empty, however it was made.
template <class T, int N> class SbBox {
 public:
  using Vec = SbVec<T, N>;
  using Real = typename Vec::Real;

  constexpr SbBox() { makeEmpty(); }
  constexpr SbBox(Vec const& min, Vec const& max) : m_min(min), m_max(max) {}

  constexpr Vec const& getMin() const { return m_min; }
  constexpr Vec const& getMax() const { return m_max; }
  constexpr void setBounds(Vec const& min, Vec const& max) { *this = SbBox(min, max); }
  constexpr void makeEmpty() {
    for (int i = 0; i < N; ++i) {
      m_min[i] = std::numeric_limits<T>::max();
      m_max[i] = std::numeric_limits<T>::lowest();
    }
  }
  constexpr bool isEmpty() const {
    for (int i = 0; i < N; ++i) {
      if (!(m_min[i] <= m_max[i])) return true;
    }
    return false;
  }

  constexpr void extendBy(Vec const& point) {
    m_min = Vec::min(m_min, point);
    m_max = Vec::max(m_max, point);
  }
  /// An empty box adds nothing.
  constexpr void extendBy(SbBox const& box) {
    if (box.isEmpty()) return;
    if (isEmpty()) *this = box;
    extendBy(box.m_min);
    extendBy(box.m_max);
  }

  /// Zero for an empty box.
  constexpr SbVec<Real, N> getCenter() const {
    using RealVec = SbVec<Real, N>;
    return isEmpty() ? RealVec() : RealVec(m_min) / Real(2) + RealVec(m_max) / Real(2);
  }
  /// Maximum less minimum, zero for an empty box.
  constexpr Vec getSize() const { return isEmpty() ? Vec() : m_max - m_min; }
  constexpr bool contains(Vec const& point) const {
    for (int i = 0; i < N; ++i) {
      if (!(m_min[i] <= point[i] && point[i] <= m_max[i])) return false;
    }
    return true;
  }
  /// True when the boxes have a point in common.
  constexpr bool intersect(SbBox const& box) const {
    return !SbBox(Vec::max(m_min, box.m_min), Vec::min(m_max, box.m_max)).isEmpty();
  }

  /// Becomes the smallest box around its image under `matrix`; an empty box stays empty.
  void transform(SbMatrix const& matrix) requires(N == 3 && std::same_as<T, float>);
  SbBox transformed(SbMatrix const& matrix) const requires(N == 3 && std::same_as<T, float>) {
    SbBox result = *this;
    result.transform(matrix);
    return result;
  }

  friend constexpr bool operator==(SbBox const&, SbBox const&) = default;
  constexpr bool equals(SbBox const& other, Real tolerance) const {
    return m_min.equals(other.m_min, tolerance) && m_max.equals(other.m_max, tolerance);
  }

 private:
  Vec m_min, m_max;
};

template <class T, int N>
void SbBox<T, N>::transform(SbMatrix const& matrix) requires(N == 3 && std::same_as<T, float>) {
  if (isEmpty()) return;
  SbBox const box = *this;
  if (matrix.isAffine()) {
    // Each term of the sum takes its least and its greatest value independently of the others.
    m_min = m_max = Vec(matrix[3]);
    for (int i = 0; i < 3; ++i) {
      Vec const a = Vec(matrix[i]) * box.m_min[i], b = Vec(matrix[i]) * box.m_max[i];
      m_min += Vec::min(a, b);
      m_max += Vec::max(a, b);
    }
    return;
  }
  makeEmpty();
  for (int corner = 0; corner < 8; ++corner) {
    extendBy(matrix.multVecMatrix(Vec(corner & 1 ? box.m_max[0] : box.m_min[0],
                                      corner & 2 ? box.m_max[1] : box.m_min[1],
                                      corner & 4 ? box.m_max[2] : box.m_min[2])));
  }
}
