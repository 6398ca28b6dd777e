#include "extender_base/VntEulerAngles.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "kestrava/base/SbVec3d.h"

namespace {

constexpr double PI = std::numbers::pi;
constexpr double NOISE = 5e-7; // of the single precision of rotations

int axisAt(VntEulerAngles::Order order, int turn) { return VntEulerAngles::ORDERS[order][turn] - 'X'; }

// Turns by the first quaternion, then by the second.
SbVec4d then(SbVec4d const& first, SbVec4d const& second) {
  SbVec3d const a(second[0], second[1], second[2]), b(first[0], first[1], first[2]);
  SbVec3d const v = a * first[3] + b * second[3] + a.cross(b);
  return SbVec4d(v[0], v[1], v[2], second[3] * first[3] - a.dot(b));
}

} // namespace

SbRotation VntEulerAngles::toRotation(Order order) const {
  SbVec4d all(0, 0, 0, 1);
  for (int turn = 0; turn < 3; ++turn) {
    int const axis = axisAt(order, turn);
    double const half = radians[static_cast<std::size_t>(axis)] / 2;
    SbVec4d one(0, 0, 0, std::cos(half));
    one[axis] = std::sin(half);
    all = then(all, one);
  }
  return SbRotation::fromQuaternion(all);
}

// With i, j, k the axes of the three turns, the images of the axes have these components: image(i)[k] is the
// sine of the middle angle alone, and its other two are those of the last angle, times the middle one's
// cosine.
VntEulerAngles VntEulerAngles::fromRotation(SbRotation const& rotation, Order order,
                                            VntEulerAngles const& near) {
  SbVec4d const q = rotation.getQuaternion();
  SbVec3d const v(q[0], q[1], q[2]);
  auto image = [&](int axis) {
    SbVec3d const p(axis == 0, axis == 1, axis == 2), twice = v.cross(p) * 2.0;
    return p + twice * q[3] + v.cross(twice);
  };
  int const i = axisAt(order, 0), j = axisAt(order, 1), k = axisAt(order, 2);
  double const sign = (i + 1) % 3 == j ? 1 : -1;
  SbVec3d const imageI = image(i), imageJ = image(j), imageK = image(k);
  double const cosine = std::hypot(imageI[i], imageI[j]);
  double first, last = 0;
  if (cosine > 1e-6) {
    first = std::atan2(sign * imageJ[k], imageK[k]);
    last = std::atan2(sign * imageI[j], imageI[i]);
  } else {
    first = std::atan2(-sign * imageK[j], imageJ[j]);
  }
  double const middle = std::atan2(-sign * imageI[k], cosine);
  auto triple = [&](double atFirst, double atMiddle, double atLast) {
    VntEulerAngles angles;
    for (auto [axis, angle] : {std::pair(i, atFirst), std::pair(j, atMiddle), std::pair(k, atLast)}) {
      double const turned = std::remainder(angle, 2 * PI);
      angles.radians[static_cast<std::size_t>(axis)] = std::abs(turned) < NOISE ? 0 : turned;
    }
    return angles;
  };
  auto distance = [&](VntEulerAngles const& angles) {
    double sum = 0;
    for (std::size_t axis = 0; axis < 3; ++axis)
      sum += std::abs(std::remainder(angles.radians[axis] - near.radians[axis], 2 * PI));
    return sum;
  };
  VntEulerAngles const one = triple(first, middle, last), other = triple(first + PI, PI - middle, last + PI);
  return distance(other) < distance(one) - NOISE ? other : one;
}
