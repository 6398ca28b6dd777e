#include <gtest/gtest.h>

#include "kestrava/base/SbBox2s.h"
#include "kestrava/base/SbBox3f.h"
#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"

namespace {

TEST(SbBox, EmptyBoxesAreNeutral) {
  SbBox3f box;
  EXPECT_TRUE(box.isEmpty());
  EXPECT_EQ(box.getSize(), SbVec3f());
  EXPECT_EQ(box.getCenter(), SbVec3f());
  SbMatrix move;
  move.setTranslate(SbVec3f(1, 2, 3));
  EXPECT_EQ(box.transformed(move), box);
  EXPECT_FALSE(box.contains(SbVec3f()));
  box.extendBy(SbVec3f(1, 2, 3));
  EXPECT_EQ(box, SbBox3f(SbVec3f(1, 2, 3), SbVec3f(1, 2, 3)));
  box.extendBy(SbBox3f());
  box.extendBy(SbBox3f(SbVec3f(0, 5, 0), SbVec3f(9, 4, 9))); // empty in one direction
  EXPECT_EQ(box.getMax(), SbVec3f(1, 2, 3));
  EXPECT_FALSE(box.intersect(SbBox3f()));
  EXPECT_TRUE(box.intersect(SbBox3f(SbVec3f(0, 0, 0), SbVec3f(1, 2, 3))));
  EXPECT_EQ(SbBox2s(SbVec2s(30000, 0), SbVec2s(32767, 1)).getCenter(), SbVec2d(31383.5, 0.5));
}

TEST(SbBox, TransformIsTheBoxAroundTheCorners) {
  SbBox3f const box(SbVec3f(-1, 2, 3), SbVec3f(4, 5, 7));
  SbMatrix affine, perspective;
  affine.setTransform(SbVec3f(1, 2, 3), SbRotation(SbVec3f(1, 2, 3), 1), SbVec3f(1, -2, 3),
                      SbRotation(SbVec3f(0, 1, 1), 2), SbVec3f(1, 0, 0));
  perspective = affine;
  perspective[2][3] = 0.01f;
  for (SbMatrix const& matrix : {affine, perspective}) {
    SbBox3f expected;
    for (int i = 0; i < 8; ++i) {
      SbVec3f const corner((i & 1 ? box.getMax() : box.getMin())[0], (i & 2 ? box.getMax() : box.getMin())[1],
                           (i & 4 ? box.getMax() : box.getMin())[2]);
      expected.extendBy(matrix.multVecMatrix(corner));
    }
    EXPECT_TRUE(box.transformed(matrix).equals(expected, 1e-4f));
  }
}

SbViewVolume placed(SbViewVolume volume) {
  volume.rotateCamera(SbRotation(SbVec3f(0, 1, 0), std::acos(-1.f) / 2)); // now looks along -x
  volume.translateCamera(SbVec3f(10, 0, 0));
  return volume;
}

SbViewVolume perspective() {
  SbViewVolume volume;
  volume.perspective(std::acos(-1.f) / 2, 2, 1, 9);
  return placed(volume);
}

SbViewVolume orthographic() {
  SbViewVolume volume;
  volume.ortho(-4, 2, -1, 3, 1, 9);
  return placed(volume);
}

TEST(SbViewVolume, StandsWhereItIsPut) {
  SbViewVolume const volume = perspective();
  EXPECT_TRUE(volume.getProjectionDirection().equals(SbVec3f(-1, 0, 0), 1e-6f));
  EXPECT_TRUE(volume.getViewUp().equals(SbVec3f(0, 1, 0), 1e-6f));
  EXPECT_TRUE(volume.getSightPoint(4).equals(SbVec3f(6, 0, 0), 1e-5f));
  EXPECT_TRUE(volume.getPlane(4).equals(SbPlane(SbVec3f(1, 0, 0), 6), 1e-5f));
  EXPECT_FLOAT_EQ(volume.getHeight(), 2);
  EXPECT_FLOAT_EQ(volume.getWidth(), 4);
}

// The camera looks along -x from (10, 0, 0): the right of the picture is -z. What is 90 degrees high is as
// high as twice the distance.
TEST(SbViewVolume, ProjectsPoints) {
  struct {
    SbViewVolume volume;
    SbVec3f world, screen;
  } const cases[] = {
      {perspective(), {9, 0, 0}, {0.5f, 0.5f, 0}},
      {perspective(), {1, 0, 0}, {0.5f, 0.5f, 1}},
      {perspective(), {5, 5, 0}, {0.5f, 1, 0.9f}},
      {perspective(), {5, 0, -10}, {1, 0.5f, 0.9f}},
      {perspective(), {8, -1, 2}, {0.25f, 0.25f, 0.5625f}},
      {orthographic(), {9, -1, 4}, {0, 0, 0}},
      {orthographic(), {1, 3, -2}, {1, 1, 1}},
      {orthographic(), {5, 1, 1}, {0.5f, 0.5f, 0.5f}},
      {orthographic(), {11, 1, 1}, {0.5f, 0.5f, -0.25f}},
  };
  for (auto const& [volume, world, expected] : cases) {
    SbVec3f screen;
    ASSERT_TRUE(volume.projectToScreen(world, screen));
    EXPECT_TRUE(screen.equals(expected, 1e-5f)) << screen[0] << ' ' << screen[1] << ' ' << screen[2];
    SbVec3f const clip = volume.getMatrix().multVecMatrix(world);
    EXPECT_TRUE(clip.equals(expected * 2.f - SbVec3f(1, 1, 1), 1e-5f));
    SbLine const ray = volume.projectPointToLine(SbVec2f(expected[0], expected[1]));
    EXPECT_TRUE(ray.getClosestPoint(world).equals(world, 1e-4f));
    EXPECT_NEAR(ray.getPosition()[0], 9, 1e-5f);
  }
  SbVec3f untouched(7, 7, 7);
  EXPECT_FALSE(perspective().projectToScreen(SbVec3f(11, 0, 0), untouched));
  EXPECT_EQ(untouched, SbVec3f(7, 7, 7));
}

TEST(SbViewVolume, CullsExactlyWhatIsOutside) {
  struct {
    SbVec3f center;
    bool seen;
  } const cases[] = {
      {{5, 0, 0}, true},       {{9.4f, 0, 0}, true},  {{9.7f, 0, 0}, false},  {{0.6f, 0, 0}, true},
      {{0.4f, 0, 0}, false},   {{5, 5.9f, 0}, true},  {{5, 6.1f, 0}, false},  {{5, -5.9f, 0}, true},
      {{5, -6.1f, 0}, false},  {{5, 0, 11.4f}, true}, {{5, 0, 11.6f}, false}, {{5, 0, -11.4f}, true},
      {{5, 0, -11.6f}, false}, {{15, 0, 0}, false},
  };
  SbViewVolume far = perspective();
  SbVec3f const away(1e5f, -1e5f, 1e5f);
  far.translateCamera(away);
  for (auto const& [center, seen] : cases) {
    SbVec3f const half(0.5f, 0.5f, 0.5f);
    EXPECT_EQ(perspective().intersect(SbBox3f(center - half, center + half)), seen)
        << center[0] << ' ' << center[1];
    EXPECT_EQ(far.intersect(SbBox3f(center - half + away, center + half + away)), seen) << "far away";
  }
  EXPECT_TRUE(perspective().intersect(SbBox3f(SbVec3f(-99, -99, -99), SbVec3f(99, 99, 99))));
  EXPECT_FALSE(perspective().intersect(SbBox3f()));
  EXPECT_TRUE(orthographic().intersect(SbBox3f(SbVec3f(5, 0, 3), SbVec3f(6, 1, 9))));
  EXPECT_FALSE(orthographic().intersect(SbBox3f(SbVec3f(5, 0, 4.1f), SbVec3f(6, 1, 9))));
}

TEST(SbViewportRegion, PixelsAndPoints) {
  SbViewportRegion region(SbVec2s(200, 100));
  EXPECT_FLOAT_EQ(region.getViewportAspectRatio(), 2);
  region.setViewportPixels(SbVec2s(100, 0), SbVec2s(100, 50));
  EXPECT_TRUE(region.normalize(SbVec2s(149, 24)).equals(SbVec2f(0.495f, 0.49f), 1e-6f));
  EXPECT_FLOAT_EQ(SbViewportRegion(SbVec2s(10, 0)).getViewportAspectRatio(), 1);
}

} // namespace
