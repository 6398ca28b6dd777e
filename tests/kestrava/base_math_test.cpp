#include <gtest/gtest.h>

#include <numbers>
#include <random>

#include "kestrava/base/SbColorRGBA.h"
#include "kestrava/base/SbLine.h"
#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbPlane.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbSphere.h"
#include "kestrava/base/SbVec2s.h"

namespace {

constexpr float PI = std::numbers::pi_v<float>;

bool isNear(SbVec3f const& a, SbVec3f const& b, float tolerance) { return a.equals(b, tolerance); }
#define EXPECT_NEAR_VEC(a, b, tolerance) EXPECT_PRED3(isNear, a, b, tolerance)

class Random {
 public:
  float number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_engine); }
  SbVec3f vec(float size) { return {number(-size, size), number(-size, size), number(-size, size)}; }
  SbRotation rotation() { return {vec(1), number(-7, 7)}; }

 private:
  std::mt19937 m_engine{4711};
};

// Rodrigues' formula, in double, straight from the textbook.
SbVec3f turned(SbVec3f const& p, SbVec3f axis, float angle) {
  axis.normalize();
  double const c = std::cos(angle), s = std::sin(angle), d = axis.dot(p) * (1 - c);
  SbVec3f const cross = axis.cross(p);
  SbVec3f result;
  for (int i = 0; i < 3; ++i) result[i] = static_cast<float>(p[i] * c + cross[i] * s + axis[i] * d);
  return result;
}

TEST(SbVec, OperationsThatOverflowTheirTypeElsewhere) {
  EXPECT_EQ(SbVec2s(30000, 30000).dot(SbVec2s(30000, 30000)), 1'800'000'000);
  EXPECT_DOUBLE_EQ(SbVec2s(30000, 0).length(), 30000);
  SbVec3f large(3e30f, 0, 4e30f);
  EXPECT_FLOAT_EQ(large.normalize(), 5e30f);
  EXPECT_NEAR_VEC(large, SbVec3f(0.6f, 0, 0.8f), 1e-6f);
  SbVec3f zero;
  EXPECT_EQ(zero.normalize(), 0);
  EXPECT_EQ(zero, SbVec3f(0, 0, 0));
  EXPECT_EQ(SbVec3f(1, 0, 0).cross(SbVec3f(0, 1, 0)), SbVec3f(0, 0, 1));
  EXPECT_FALSE(SbVec3f(NAN, 0, 0).equals(SbVec3f(NAN, 0, 0), 1));
}

TEST(SbColor, PackedValues) {
  EXPECT_EQ(SbColor(1, 0.5f, 0).getPackedValue(), 0xff8000ffu);
  EXPECT_EQ(SbColor(2, -1, NAN).getPackedValue(0.25f), 0xff0000bfu);
  for (std::uint32_t packed : {0x00000000u, 0x01020304u, 0x7f80fefdu, 0xffffffffu}) {
    SbColorRGBA color;
    color.setPackedValue(packed);
    EXPECT_EQ(color.getPackedValue(), packed);
    SbColor opaque;
    float const transparency = opaque.setPackedValue(packed);
    EXPECT_EQ(opaque.getPackedValue(transparency), packed);
  }
}

TEST(SbRotation, KeepsAxisAndAngleAsWritten) {
  for (float angle : {0.1f, 1.57f, -2.f, PI, 2 * PI, 7.f}) {
    SbVec3f axis;
    float radians = 0;
    SbRotation(SbVec3f(0, 2, 0), angle).getValue(axis, radians);
    EXPECT_EQ(axis, SbVec3f(0, 1, 0));
    EXPECT_EQ(radians, angle);
    SbRotation const oblique(SbVec3f(1, 2, -3), angle);
    EXPECT_EQ(SbRotation(oblique.getAxis(), oblique.getAngle()), oblique);
  }
  for (SbRotation const& none : {SbRotation(SbVec3f(), 1), SbRotation(SbVec3f(1, 0, 0), 0), SbRotation(),
                                 SbRotation(SbVec3f(NAN, 0, 0), 1), SbRotation(SbVec3f(1, 0, 0), INFINITY)}) {
    EXPECT_EQ(none.getAxis(), SbVec3f(0, 0, 1));
    EXPECT_EQ(none.getAngle(), 0);
  }
}

TEST(SbRotation, AgreesWithTheFormulaInEveryForm) {
  Random random;
  for (int i = 0; i < 200; ++i) {
    SbVec3f const axis = random.vec(1), p = random.vec(5);
    float const angle = random.number(-7, 7);
    SbRotation const r(axis, angle);
    SbVec3f const expected = turned(p, axis, angle);
    EXPECT_NEAR_VEC(r.multVec(p), expected, 1e-5f);
    EXPECT_NEAR_VEC(r.getMatrix().multVecMatrix(p), expected, 1e-5f);
    EXPECT_NEAR_VEC(SbRotation(r.getMatrix()).multVec(p), expected, 1e-5f);
    EXPECT_NEAR_VEC(SbRotation::fromQuaternion(r.getQuaternion() * 3.0).multVec(p), expected, 1e-5f);
    EXPECT_NEAR_VEC(r.inverse().multVec(expected), p, 1e-5f);
    SbRotation const next = random.rotation();
    EXPECT_NEAR_VEC((r * next).multVec(p), next.multVec(expected), 1e-5f);
    EXPECT_TRUE((r * next).getMatrix().equals(r.getMatrix() * next.getMatrix(), 1e-5f));
    EXPECT_TRUE((r * r.inverse()).equals(SbRotation(), 1e-6f));
  }
}

TEST(SbRotation, HalfTurnsFromTheirMatrix) {
  for (SbVec3f const& axis :
       {SbVec3f(1, 0, 0), SbVec3f(0, 1, 0), SbVec3f(0, 0, 1), SbVec3f(1, 1, 0), SbVec3f(1, -2, 3)}) {
    SbRotation const r(axis, PI);
    EXPECT_TRUE(SbRotation(r.getMatrix()).equals(r, 1e-6f)) << axis[0] << axis[1] << axis[2];
  }
}

TEST(SbRotation, FromOneVectorToAnother) {
  SbVec3f const x(1, 0, 0), y(0, 1, 0), oblique(1, 2, 3);
  struct {
    SbVec3f from, to;
  } const cases[] = {
      {x, y}, {x, x}, {x, -x}, {y, -y}, {oblique, -oblique}, {oblique, y * 7.f}, {x, SbVec3f(-1, 1e-6f, 0)}};
  for (auto const& [from, to] : cases) {
    EXPECT_NEAR_VEC(SbRotation(from, to).multVec(from.normalized()), to.normalized(), 1e-5f);
  }
  EXPECT_TRUE(SbRotation(SbVec3f(), x).isIdentity());
}

TEST(SbRotation, SlerpTakesTheShorterWay) {
  SbRotation const a(SbVec3f(0, 0, 1), 0.2f), b(SbVec3f(0, 0, 1), 1.4f), far(SbVec3f(0, 0, 1), 6.0f);
  EXPECT_TRUE(SbRotation::slerp(a, b, 0.25f).equals(SbRotation(SbVec3f(0, 0, 1), 0.5f), 1e-6f));
  EXPECT_TRUE(SbRotation::slerp(a, far, 1).equals(far, 1e-6f));
  float const middle = (0.2f + 6.0f - 2 * PI) / 2;
  EXPECT_TRUE(SbRotation::slerp(a, far, 0.5f).equals(SbRotation(SbVec3f(0, 0, 1), middle), 1e-6f));
  EXPECT_TRUE(SbRotation::slerp(a, a, 0.5f).equals(a, 1e-6f));
}

TEST(SbMatrix, InverseAndDeterminant) {
  SbMatrix const m({{2, 0, 1, 0.5f}, {0, 3, 0, 0}, {1, 0, 4, 0}, {5, 6, 7, 1}});
  // By hand, along the second row: 3 * det [[2, 1, .5], [1, 4, 0], [5, 7, 1]].
  EXPECT_FLOAT_EQ(m.det4(), 3 * (2 * 4 - 1 * 1 + 0.5f * (7 - 20)));
  EXPECT_FLOAT_EQ(m.det3(), 3 * (8 - 1));
  bool exists = false;
  EXPECT_TRUE((m * m.inverse(&exists)).equals(SbMatrix(), 1e-5f));
  EXPECT_TRUE(exists);
  EXPECT_FALSE(m.isAffine());
  SbMatrix tiny;
  tiny.setScale(SbVec3f(1e-12f, 1, 1e12f));
  EXPECT_TRUE((tiny * tiny.inverse(&exists)).equals(SbMatrix(), 1e-5f));
  EXPECT_TRUE(exists);
  SbMatrix const dependent({{1, 2, 3, 0}, {2, 4, 6, 0}, {0, 1, 0, 0}, {0, 0, 0, 1}});
  EXPECT_EQ(dependent.inverse(&exists), SbMatrix());
  EXPECT_FALSE(exists);
  EXPECT_EQ(dependent.det3(), 0);
}

TEST(SbMatrix, PointsAreRowVectors) {
  SbMatrix translate, scale;
  translate.setTranslate(SbVec3f(1, 2, 3));
  scale.setScale(2);
  EXPECT_EQ((scale * translate).multVecMatrix(SbVec3f(1, 1, 1)), SbVec3f(3, 4, 5));
  EXPECT_EQ((translate * scale).multVecMatrix(SbVec3f(1, 1, 1)), SbVec3f(4, 6, 8));
  EXPECT_EQ(translate.multDirMatrix(SbVec3f(1, 1, 1)), SbVec3f(1, 1, 1));
  EXPECT_EQ(SbMatrix(scale).multRight(translate), scale * translate);
  EXPECT_EQ(SbMatrix(scale).multLeft(translate), translate * scale);
  SbMatrix perspective;
  perspective[2][3] = 1;
  perspective[3][3] = 0;
  EXPECT_EQ(perspective.multVecMatrix(SbVec3f(2, 4, 2)), SbVec3f(1, 2, 1));
}

TEST(SbMatrix, TransformsAreComposedAndTakenApart) {
  Random random;
  for (int i = 0; i < 300; ++i) {
    SbVec3f const t = random.vec(10), center = random.vec(3);
    SbVec3f s = random.vec(4);
    if (i % 7 == 1) s = SbVec3f(2, 2, 2);
    if (i % 7 == 2) s[i % 3] = 0;
    if (i % 7 == 3) s = SbVec3f(0, 0, s[2]);
    if (i % 7 == 4) s[0] *= 1000;
    if (i % 7 == 5) s[1] = s[0];
    if (i % 70 == 6) s = SbVec3f();
    SbRotation const r = random.rotation(), so = random.rotation();
    SbMatrix made;
    made.setTransform(t, r, s, so, center);
    SbVec3f const p = random.vec(5);
    SbVec3f step = so.inverse().multVec(p - center);
    for (int k = 0; k < 3; ++k) step[k] *= s[k];
    float const size = std::max(1.f, s.length());
    EXPECT_NEAR_VEC(made.multVecMatrix(p), r.multVec(so.multVec(step)) + center + t, 2e-5f * size);

    SbVec3f t2, s2;
    SbRotation r2, so2;
    made.getTransform(t2, r2, s2, so2, center);
    SbMatrix again;
    again.setTransform(t2, r2, s2, so2, center);
    EXPECT_TRUE(again.equals(made, 2e-5f * size)) << "case " << i;
    EXPECT_NEAR_VEC(t2, t, 2e-5f * size);
  }
}

TEST(SbMatrix, PlainTransformsComeBackAsTheyWere) {
  SbRotation const r(SbVec3f(1, 2, 3), 0.7f);
  for (SbVec3f const& s : {SbVec3f(1, 1, 1), SbVec3f(3, 2, 1), SbVec3f(2, 2, 5)}) {
    SbMatrix matrix;
    matrix.setTransform(SbVec3f(1, 2, 3), r, s, SbRotation(), SbVec3f());
    SbVec3f t2, s2;
    SbRotation r2, so2;
    matrix.getTransform(t2, r2, s2, so2);
    EXPECT_TRUE(so2.isIdentity());
    EXPECT_NEAR_VEC(s2, s, 1e-5f);
    EXPECT_TRUE(r2.equals(r, 1e-6f));
  }
}

TEST(SbGeometry, PlanesLinesAndSpheres) {
  SbPlane const plane(SbVec3f(1, 0, 2), SbVec3f(3, 0, 2), SbVec3f(1, 4, 2));
  EXPECT_EQ(plane, SbPlane(SbVec3f(0, 0, 5), 2));
  EXPECT_FLOAT_EQ(plane.getDistance(SbVec3f(7, 8, 5)), 3);
  EXPECT_FALSE(plane.isInHalfSpace(SbVec3f()));
  EXPECT_EQ(SbPlane(SbPlane(SbVec3f(1, 2, 3), 4).getNormal(), 4), SbPlane(SbVec3f(1, 2, 3), 4));

  SbVec3f hit;
  EXPECT_TRUE(plane.intersect(SbLine(SbVec3f(0, 0, 10), SbVec3f(8, 0, 6)), hit));
  EXPECT_NEAR_VEC(hit, SbVec3f(16, 0, 2), 1e-4f);
  EXPECT_FALSE(plane.intersect(SbLine(SbVec3f(0, 0, 1), SbVec3f(1, 0, 1)), hit));

  SbMatrix matrix;
  matrix.setTransform(SbVec3f(1, 2, 3), SbRotation(SbVec3f(1, 1, 0), 1), SbVec3f(1, 2, 4), SbRotation(),
                      SbVec3f());
  SbPlane moved = plane;
  moved.transform(matrix);
  for (SbVec3f const& on : {SbVec3f(0, 0, 2), SbVec3f(5, 1, 2), SbVec3f(-3, 8, 2)}) {
    EXPECT_NEAR(moved.getDistance(matrix.multVecMatrix(on)), 0, 1e-4f);
  }
  EXPECT_TRUE(moved.isInHalfSpace(matrix.multVecMatrix(SbVec3f(0, 0, 9))));

  SbVec3f own, others;
  EXPECT_TRUE(SbLine(SbVec3f(), SbVec3f(1, 0, 0))
                  .getClosestPoints(SbLine(SbVec3f(4, 1, 2), SbVec3f(4, 3, 2)), own, others));
  EXPECT_NEAR_VEC(own, SbVec3f(4, 0, 0), 1e-5f);
  EXPECT_NEAR_VEC(others, SbVec3f(4, 0, 2), 1e-5f);

  SbVec3f enter, exit;
  SbSphere const ball{SbVec3f(0, 0, 5), 2};
  EXPECT_TRUE(ball.intersect(SbLine(SbVec3f(), SbVec3f(0, 0, 1)), enter, exit));
  EXPECT_NEAR_VEC(enter, SbVec3f(0, 0, 3), 1e-5f);
  EXPECT_NEAR_VEC(exit, SbVec3f(0, 0, 7), 1e-5f);
  EXPECT_FALSE(ball.intersect(SbLine(SbVec3f(3, 0, 0), SbVec3f(3, 0, 1)), enter, exit));
}

} // namespace
