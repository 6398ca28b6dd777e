// Every dragger, dragged by simulated events: a handle's point is taken hold of and brought to where it would
// be after a known change, which then is the change that the fields must show.

#include <sstream>

#include "draggers_helpers.h"

using namespace dragger_test;

namespace {

SoPlacement moved(float x, float y, float z) {
  SoPlacement p;
  p.translation = SbVec3f(x, y, z);
  return p;
}
SoPlacement scaled(float x, float y, float z) {
  SoPlacement p;
  p.scaleFactor = SbVec3f(x, y, z);
  return p;
}
SoPlacement turned(SbVec3f const& axis, float angle) {
  SoPlacement p;
  p.rotation = SbRotation(axis, angle);
  return p;
}

struct Case {
  char const* dragger;
  char const* part;
  SbVec3f point; // of the handle, in the dragger's coordinates
  SoPlacement wanted;
  bool shift = false, ctrl = false;
  SoPlacement start{};
};

/// Turned, scaled unevenly and moved.
SoPlacement crooked(float more = 0, SbVec3f const& axis = SbVec3f(0, 0, 1)) {
  SoPlacement p;
  p.translation = SbVec3f(0.2f, -0.1f, 0.1f);
  p.rotation = SbRotation(axis, more) * SbRotation(SbVec3f(0.3f, 1, 0), 0.5f);
  p.scaleFactor = SbVec3f(0.8f, 0.5f, 0.6f);
  return p;
}
SoPlacement enlarged(float factor, SbVec3f const& by) {
  SoPlacement p = scaled(factor, factor, factor);
  p.translation = by;
  return p;
}
SoPlacement facing(float angle, SbVec3f const& at = {}, SbVec3f const& scale = {1, 1, 1}) {
  SoPlacement p = turned(SbVec3f(0, 1, 0), angle);
  p.translation = at;
  p.scaleFactor = scale;
  return p;
}
SoPlacement centered(float x, float y) {
  SoPlacement p;
  p.center = SbVec3f(x, y, 0);
  return p;
}

Case const CASES[] = {
    {"Translate1Dragger", "translator", {0.5f, 0, 0}, moved(1, 0, 0)},
    {"Translate1Dragger", "translator", {-0.5f, 0, 0}, moved(-0.75f, 0, 0)},
    {"Translate2Dragger", "translator", {0, 0.5f, 0}, moved(0.5f, -0.75f, 0)},
    {"Translate2Dragger", "translator", {0, 0.5f, 0}, moved(0, 0.75f, 0), true},
    {"DragPointDragger", "xTranslator", {0.7f, 0, 0}, moved(-0.6f, 0, 0)},
    {"DragPointDragger", "yTranslator", {0, 0.7f, 0}, moved(0, 0.6f, 0)},
    {"DragPointDragger", "xyTranslator", {0.35f, 0.35f, 0}, moved(0.5f, 0.4f, 0)},
    {"DragPointDragger", "xyTranslator", {0.35f, 0.35f, 0}, moved(0.7f, 0, 0), true},
    {"Scale1Dragger", "scaler", {0.8f, 0, 0}, scaled(1.5f, 1, 1)},
    {"Scale1Dragger", "scaler", {-0.8f, 0, 0}, scaled(0.5f, 1, 1)},
    {"Scale2Dragger", "scaler", {1, 1, 0}, scaled(1.4f, 0.6f, 1)},
    {"Scale2Dragger", "scaler", {1, 1, 0}, scaled(1.6f, 1, 1), true},
    {"Scale2UniformDragger", "scaler", {-1, 1, 0}, scaled(1.5f, 1.5f, 1)},
    {"ScaleUniformDragger", "scaler", {1, 1, 1}, scaled(0.5f, 0.5f, 0.5f)},
    {"RotateSphericalDragger", "rotator", {0.3f, 0.2f, 0.9327f}, turned({0, 0.9777f, -0.2097f}, 0.4f)},
    {"RotateCylindricalDragger", "rotator", {0, 0, 1}, turned({0, 1, 0}, 0.7f)},
    {"RotateCylindricalDragger", "rotator", {0, 0, 1}, turned({0, 1, 0}, -0.5f)},
    {"RotateDiscDragger", "rotator", {0, 1, 0}, turned({0, 0, 1}, 1.2f)},
    {"HandleBoxDragger", "translator6", {0.3f, -0.2f, 1}, moved(0.4f, 0.3f, 0)},
    {"HandleBoxDragger", "xScaler", {1, 0, 0}, scaled(1.5f, 1, 1)},
    {"HandleBoxDragger", "scaler", {1, 1, 1}, scaled(0.7f, 0.7f, 0.7f)},
    {"HandleBoxDragger", "scaler", {1, 1, 1}, enlarged(1.4f, {0.4f, 0.4f, 0.4f}), false, true},
    {"TransformBoxDragger", "yRotator", {1, 0, 1}, turned({0, 1, 0}, -0.4f)},
    {"TransformBoxDragger", "zRotator", {1, 1, 0}, crooked(0.6f), false, false, crooked()},
    {"TabBoxDragger", "zScaler", {1, -1, 0}, facing(0.5f, {}, {1.3f, 0.8f, 1}), false, false, facing(0.5f)},
    {"TransformerDragger", "xRotator", {0, 1, 1}, turned({1, 0, 0}, 0.4f)},
    {"TrackballDragger", "rotator", {0.3f, 0.3f, 0.9055f}, turned({0, 0.9491f, -0.3144f}, 0.4f)},
    {"TrackballDragger", "xRotator", {0, 0.7212f, 0.7212f}, turned({1, 0, 0}, 0.5f)},
    {"TrackballDragger", "yRotator", {0.7212f, 0, 0.7212f}, turned({0, 1, 0}, -0.5f)},
    {"CenterballDragger", "xyCenterChanger", {0.09f, 0, 1.06f}, centered(0.3f, 0.2f)},
    {"CenterballDragger", "zRotator", {0.7212f, 0.7212f, 0}, turned({0, 0, 1}, 0.5f)},
    {"JackDragger", "scaler", {1, 0, 0}, scaled(1.4f, 1.4f, 1.4f)},
    {"JackDragger", "yTranslator", {0, 0.5f, 0}, moved(0, -0.4f, 0)},
    {"TabPlaneDragger", "translator", {0.3f, 0.2f, 0}, moved(0.4f, -0.3f, 0)},
    {"TabPlaneDragger", "scaler", {1, 1, 0}, scaled(1.4f, 0.7f, 1)},
    {"TabPlaneDragger", "yScaler", {0, 1, 0}, scaled(1, 1.4f, 1)},
    {"PointLightDragger", "yTranslator", {0, -0.6f, 0}, moved(0, 0.5f, 0)},
    {"DirectionalLightDragger", "rotator", {0, 0, -0.6f}, facing(0.75f), false, false, facing(0.4f)},
    {"ClipPlaneDragger", "zTranslator", {0, 0, 0.3f}, facing(1, {0.42f, 0, 0.27f}), false, false, facing(1)},
};

struct Surroundings {
  char const* what;
  std::string camera, above;
};
Surroundings const SURROUNDINGS[] = {
    {"seen straight", ORTHOGRAPHIC, ""},
    {"seen in perspective",
     "PerspectiveCamera { position 0.6 0.5 7 orientation 0 1 0 0.05 nearDistance 1 farDistance 100 } ", ""},
    {"turned, moved and scaled unevenly", ORTHOGRAPHIC,
     "Transform { translation 0.2 -0.1 3 rotation 0.3 0.8 0.1 0.4 scaleFactor 0.5 0.9 0.7 } "
     "RotationXYZ { axis Z angle 0.5 } "},
    {"the same in perspective",
     "PerspectiveCamera { position 0.6 0.5 7 orientation 0 1 0 0.05 nearDistance 1 farDistance 100 } ",
     "Transform { translation 0.2 -0.1 1 rotation 0.3 0.8 0.1 0.4 scaleFactor 0.5 0.9 0.7 } "
     "RotationXYZ { axis Z angle 0.5 } "},
};

TEST(DraggersDrag, TheHandleStaysUnderThePointer) {
  for (Surroundings const& around : SURROUNDINGS) {
    for (Case const& c : CASES) {
      SCOPED_TRACE(std::string(around.what) + ", " + c.dragger + " by its " + c.part);
      Rig rig(around.above + "DEF d " + c.dragger + " { }", around.camera);
      SoDragger* const dragger = rig.get();
      ASSERT_TRUE(dragger);
      SbMatrix const above = matrixAbove(rig.root, dragger);
      SoPlacement wanted = c.wanted, before = c.start;
      wanted.angle = before.angle = dragger->getPlacement().angle;
      dragger->setPlacement(wanted);
      SbMatrix const after = dragger->getHandleMatrix(SbBox3f());
      dragger->setPlacement(before);
      SbMatrix const handles = dragger->getHandleMatrix(SbBox3f());
      SbVec2s const start = rig.pixelOf((handles * above).multVecMatrix(c.point));
      rig.shift = c.shift;
      rig.ctrl = c.ctrl;
      ASSERT_TRUE(rig.press(start));
      // Not quite the point that was meant: handles are round.
      SbVec3f const grabbed = dragger->getLocalStartingPoint();
      EXPECT_LT((handles.inverse().multVecMatrix(grabbed) - c.point).length(), 0.3f);
      SbVec2s const end = rig.pixelOf((handles.inverse() * after * above).multVecMatrix(grabbed));
      EXPECT_EQ(dragger->getActivePart(), SbName(c.part));
      EXPECT_TRUE(dragger->isActive.getValue());
      if (!c.shift) rig.move(SbVec2s(3, 700)); // out of the window and back
      rig.move(end);
      EXPECT_TRUE(rig.release(end));
      EXPECT_FALSE(dragger->isActive.getValue());
      EXPECT_TRUE(isNear(dragger->getPlacement(), wanted, 0.06f));
      EXPECT_FALSE(rig.move(SbVec2s(10, 10)));
    }
  }
}

TEST(DraggersDrag, PixelsOfOneUnitMoveByOneUnit) {
  Rig rig("DEF d Translate1Dragger { }");
  SbVec2s const from = rig.pixelOf(SbVec3f(0.5f, 0, 0));
  ASSERT_TRUE(rig.drag(from, SbVec2s(static_cast<short>(from[0] + 100), from[1])));
  EXPECT_TRUE(rig.get()->getPlacement().translation.equals(SbVec3f(1, 0, 0), 1e-4f));
  // Where the pointer goes across the axis does not matter.
  ASSERT_TRUE(rig.drag(rig.pixelOf(SbVec3f(1.5f, 0, 0)), rig.pixelOf(SbVec3f(0.5f, 1.7f, 0))));
  EXPECT_TRUE(rig.get()->getPlacement().translation.equals(SbVec3f(0, 0, 0), 1e-4f));
}

TEST(DraggersDrag, AcrossTheViewTheDistanceStays) {
  for (Surroundings const& around : SURROUNDINGS) {
    for (char const* type : {"DragPointDragger", "PointLightDragger", "JackDragger"}) {
      SCOPED_TRACE(std::string(around.what) + ", " + type);
      Rig rig(around.above + "Rotation { rotation 1 1 0 0.7 } DEF d " + type + " { }", around.camera);
      SbMatrix const above = matrixAbove(rig.root, rig.get());
      SbVec2s const start = rig.pixelOf(above.multVecMatrix(SbVec3f()));
      SbVec2s const end(static_cast<short>(start[0] + 60), static_cast<short>(start[1] - 40));
      ASSERT_TRUE(rig.press(start));
      SbVec3f const grabbed = rig.get()->getLocalStartingPoint(), from = above.multVecMatrix(grabbed);
      ASSERT_TRUE(rig.release(end));
      SbVec3f const to = above.multVecMatrix(grabbed + rig.get()->getPlacement().translation);
      SbVec2s const seen = rig.pixelOf(to);
      EXPECT_NEAR(seen[0], end[0], 1);
      EXPECT_NEAR(seen[1], end[1], 1);
      auto const* camera = static_cast<SoCamera const*>((*rig.root->getChildren())[0]);
      EXPECT_NEAR((to - from).dot(camera->getViewVolume(1).getProjectionDirection()), 0, 1e-3f);
    }
  }
}

TEST(DraggersDrag, TheRimOpensTheCone) {
  // Seen from the light, and from the side.
  for (char const* above : {"", "RotationXYZ { axis Y angle 1.5707963 } "}) {
    Rig rig(above + std::string("DEF d SpotLightDragger { }"));
    SbMatrix const matrix = matrixAbove(rig.root, rig.get());
    auto const rim = [&](float angle) {
      return rig.pixelOf(matrix.multVecMatrix(SbVec3f(0, std::sin(angle), -std::cos(angle))));
    };
    ASSERT_TRUE(rig.drag(rim(0.785398f), rim(1.1f)));
    EXPECT_NEAR(rig.get()->getPlacement().angle, 1.1f, 0.03f);
    ASSERT_TRUE(rig.drag(rim(1.1f), rim(0.3f)));
    EXPECT_NEAR(rig.get()->getPlacement().angle, 0.3f, 0.05f);
  }
}

TEST(DraggersDrag, ScalesAlongItsOwnAxesWhateverWasScaledBefore) {
  Rig rig("DEF d HandleBoxDragger { scaleFactor 0.8 0.5 0.6 scaleOrientation 0 0 1 0.4 rotation 0 1 0 0.3 }");
  SbMatrix const before = rig.get()->getMotionMatrix();
  SbVec3f const handle(1, 0, 0);
  ASSERT_TRUE(
      rig.drag(rig.pixelOf(before.multVecMatrix(handle)), rig.pixelOf(before.multVecMatrix(handle * 1.6f))));
  SbMatrix more;
  more.setScale(SbVec3f(1.6f, 1, 1));
  EXPECT_TRUE(rig.get()->getMotionMatrix().equals(more * before, 0.04f));
}

TEST(DraggersDrag, NothingIsScaledAwayOrTurnedInsideOut) {
  Rig rig("DEF d Scale1Dragger { }");
  ASSERT_TRUE(rig.drag(rig.pixelOf(SbVec3f(0.8f, 0, 0)), rig.pixelOf(SbVec3f(-1.5f, 0, 0))));
  float const factor = rig.get()->getPlacement().scaleFactor[0];
  EXPECT_GT(factor, 0);
  EXPECT_LT(factor, 0.01f);
}

} // namespace
