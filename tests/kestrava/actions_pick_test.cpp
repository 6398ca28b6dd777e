#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

/// 100 x 100 pixels that show -2 to 2 in x and y, looking along -z from z = 10.
char const* const CAMERA = "OrthographicCamera { position 0 0 10 height 4 nearDistance 1 farDistance 20 } ";


std::string pathText(SoPath const* path) {
  std::string text;
  for (int i = 1; i < path->getLength(); ++i) {
    text += (i > 1 ? "/" : "") + path->getNode(i)->getTypeId().getName().str();
  }
  return text;
}

TEST(ActionsPick, TheNearestShapeUnderThePixel) {
  struct Case {
    char const* what;
    char const* scene;
    short x, y;
    char const* path;  // empty: nothing is met
    SbVec3f point, normal;
  };
  Case const cases[] = {
      {"the front of a cube", "Cube { }", 50, 50, "Cube", {0.02f, 0.02f, 1}, {0, 0, 1}},
      {"beside it", "Cube { }", 90, 50, "", {}, {}},
      {"the nearer of two, whichever comes first",
       "Separator { Translation { translation 0 0 3 } Sphere { radius 0.5 } } Cube { }", 50, 50, "Separator/Sphere",
       {0.02f, 0.02f, 3.4992f}, {0.04f, 0.04f, 0.9984f}},
      {"moved, turned and stretched",
       "Transform { translation 1 0 0 rotation 0 0 1 1.5707963 scaleFactor 0.5 0.25 3 } Cube { }", 75, 50, "Cube",
       {1.02f, 0.02f, 3}, {0, 0, 1}},
      {"a mirrored cube", "Scale { scaleFactor 1 1 -1 } Cube { }", 50, 50, "Cube", {0.02f, 0.02f, 1}, {0, 0, 1}},
      {"what can not be picked is passed by",
       "Separator { PickStyle { style UNPICKABLE } Translation { translation 0 0 3 } Cube { } } Cube { }", 50, 50,
       "Cube", {0.02f, 0.02f, 1}, {0, 0, 1}},
      {"so is what is not drawn", "DrawStyle { style INVISIBLE } Cube { }", 50, 50, "", {}, {}},
      {"a flattened shape", "Scale { scaleFactor 1 1 0 } Cube { }", 50, 50, "", {}, {}},
      {"behind the far plane", "Translation { translation 0 0 -30 } Cube { }", 50, 50, "", {}, {}},
      {"a line, four pixels off", "Coordinate3 { point [ -1 0.2 0, 1 0.2 0 ] } LineSet { }", 50, 50, "LineSet",
       {0.02f, 0.2f, 0}, {0, 0, 0}},
      {"a line, ten pixels off", "Coordinate3 { point [ -1 0.4 0, 1 0.4 0 ] } LineSet { }", 50, 50, "", {}, {}},
      {"a point", "Coordinate3 { point [ 0.1 0 0 ] } PointSet { }", 50, 50, "PointSet", {0.1f, 0, 0}, {0, 0, 0}},
  };
  for (Case const& c : cases) {
    SoRef<SoNode> const root(readText(std::string("Separator { ") + CAMERA + c.scene + " }"));
    ASSERT_TRUE(root) << c.what;
    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setPoint(SbVec2s(c.x, c.y));
    pick.apply(root);
    SoPickedPoint const* const point = pick.getPickedPoint();
    ASSERT_EQ(point != nullptr, *c.path != 0) << c.what;
    if (!point) continue;
    EXPECT_EQ(pathText(point->getPath()), c.path) << c.what;
    EXPECT_LT((point->getPoint() - c.point).length(), 5e-3f) << c.what << " z " << point->getPoint()[2];
    EXPECT_LT((point->getNormal() - c.normal).length(), 0.1f) << c.what;
  }
}

TEST(ActionsPick, AllHitsInOrderAndRaysOfTheCaller) {
  SoRef<SoNode> const root(readText("Separator { Separator { Translation { translation 5 0 0 } Cube { } } Cube { } }"));
  SoRayPickAction pick(SbViewportRegion(100, 100));
  pick.setPickAll(true);
  pick.setRay(SbVec3f(-9, 0.1f, 0.2f), SbVec3f(2, 0, 0));
  pick.apply(root);
  std::vector<float> distances;
  for (SoPickedPoint const& point : pick.getPickedPoints()) distances.push_back(point.getDistance());
  ASSERT_EQ(distances.size(), 4u);
  float const wanted[] = {8, 10, 13, 15};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(distances[i], wanted[i], 1e-4f);
  EXPECT_EQ(pick.getPickedPoints()[2].getPath()->getLength(), 3);

  // What lies behind the start is not met.
  pick.setRay(SbVec3f(9, 0, 0), SbVec3f(1, 0, 0));
  pick.apply(root);
  EXPECT_FALSE(pick.getPickedPoint());
}

TEST(ActionsPick, ACameraOutsideOfTheGraphStandsForThoseInside) {
  SoRef<SoNode> const root(readText("Separator { PerspectiveCamera { position 0 50 0 } Cube { } }"));
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  camera->position = SbVec3f(10, 0, 0);
  camera->farDistance = 2;  // of no account
  camera->pointAt(SbVec3f(0, 0, 0));
  SoRayPickAction pick(SbViewportRegion(101, 101));
  pick.setPoint(SbVec2s(50, 50));
  pick.apply(root);
  EXPECT_FALSE(pick.getPickedPoint());
  pick.setCamera(camera);
  pick.apply(root);
  ASSERT_TRUE(pick.getPickedPoint());
  EXPECT_LT((pick.getPickedPoint()->getPoint() - SbVec3f(1, 0, 0)).length(), 1e-3f);

  // Without any camera there is nothing to look through.
  SoRef<SoNode> const bare(readText("Separator { Cube { } }"));
  pick.setCamera(nullptr);
  pick.apply(bare);
  EXPECT_FALSE(pick.getPickedPoint());
}

}  // namespace
