#include <chrono>

#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCoordinate3.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoPointSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "node_helpers.h"

using namespace node_test;

TEST(ActionsBounds, AgreeWithWhatIsComputedByHand) {
  float const r = std::sqrt(2.0f);
  struct Case {
    char const* scene;
    SbBox3f bounds;
  };
  Case const cases[] = {
      {"Separator { }", SbBox3f()},
      {"Cube { width 4 height 6 depth 8 }", box(-2, -3, -4, 2, 3, 4)},
      {"Cube { width -4 }", box(-2, -1, -1, 2, 1, 1)},
      {"Sphere { radius 3 }", box(-3, -3, -3, 3, 3, 3)},
      {"Cone { }", box(-1, -1, -1, 1, 1, 1)},
      {"Cone { parts BOTTOM }", box(-1, -1, -1, 1, -1, 1)},
      {"Cylinder { radius 2 height 10 }", box(-2, -5, -2, 2, 5, 2)},
      {"Cylinder { parts TOP }", box(-1, 1, -1, 1, 1, 1)},
      {"Separator { Rotation { rotation 0 1 0 0.785398 } Cube { } }", box(-r, -1, -r, r, 1, r)},
      {"Separator { Translation { translation 1 2 3 } Scale { scaleFactor 2 2 2 } Cube { } }",
       box(-1, 0, 1, 3, 4, 5)},
      {"Separator { Scale { scaleFactor 2 2 2 } Translation { translation 1 2 3 } Cube { } }",
       box(0, 2, 4, 4, 6, 8)},
      {"Separator { RotationXYZ { axis Z angle 1.5707963 } Translation { translation 5 0 0 } Cube { } }",
       box(-1, 4, -1, 1, 6, 1)},
      {"Separator { Transform { translation 1 0 0 center 1 0 0 rotation 0 0 1 3.1415927 } Translation { "
       "translation 1 0 0 } "
       "Cube { } }",
       box(1, -1, -1, 3, 1, 1)},
      {"Separator { MatrixTransform { matrix 1 0 0 0 0 1 0 0 0 0 1 0 7 8 9 1 } Cube { } }",
       box(6, 7, 8, 8, 9, 10)},
      {"Separator { Cube { } Translation { translation 10 0 0 } ResetTransform { whatToReset BBOX } Cube { } "
       "}",
       box(9, -1, -1, 11, 1, 1)},
      {"Separator { Coordinate3 { point [ 0 0 0, 1 2 3, 100 0 0, -4 5 6 ] } IndexedFaceSet { coordIndex [ 0 "
       "1 3 -1 ] } }",
       box(-4, 0, 0, 1, 5, 6)},
      {"Separator { Coordinate3 { point [ 0 0 0, 1 2 3, 100 0 0, -4 5 6 ] } PointSet { startIndex 1 "
       "numPoints 2 } }",
       box(1, 0, 0, 100, 2, 3)},
      {"Separator { Coordinate4 { point [ 0 0 0 1, 4 4 4 2 ] } PointSet { } }", box(0, 0, 0, 2, 2, 2)},
      {"PointSet { vertexProperty VertexProperty { vertex [ 1 1 1, 2 2 2 ] } }", box(1, 1, 1, 2, 2, 2)},
      {"Array { numElements1 3 separation1 10 0 0 Cube { } }", box(-1, -1, -1, 21, 1, 1)},
      {"SeparatorKit { transform Transform { translation 5 0 0 } childList NodeKitListPart { containerNode "
       "Group { "
       "ShapeKit { shape Cube { } } } } }",
       box(4, -1, -1, 6, 1, 1)},
  };
  for (Case const& c : cases) {
    SoRef<SoNode> const root = readText(c.scene);
    ASSERT_TRUE(root) << c.scene;
    EXPECT_TRUE(isNear(boundsOf(root), c.bounds)) << c.scene;
    EXPECT_TRUE(isNear(boundsOf(root), c.bounds)) << "kept bounds: " << c.scene;
  }
}

TEST(ActionsBounds, KeptBoundsFollowEveryChangeThatMatters) {
  SoRef<SoSeparator> const root(new SoSeparator), user(new SoSeparator);
  SoRef<SoCoordinate3> const points(new SoCoordinate3);
  SoRef<SoTranslation> const move(new SoTranslation);
  SoRef<SoCube> const cube(new SoCube);
  root->addChild(points);
  root->addChild(move);
  root->addChild(user);
  user->addChild(cube);
  EXPECT_TRUE(isNear(boundsOf(root), box(-1, -1, -1, 1, 1, 1)));
  cube->width = 10.0f;
  EXPECT_TRUE(isNear(boundsOf(root), box(-5, -1, -1, 5, 1, 1)));
  move->translation = SbVec3f(1, 0, 0);
  EXPECT_TRUE(isNear(boundsOf(root), box(-4, -1, -1, 6, 1, 1)));
  // What is inside depends on coordinates outside: nothing may be kept.
  user->replaceChild(0, new SoPointSet);
  points->point.setValue(SbVec3f(0, 0, 0));
  EXPECT_TRUE(isNear(boundsOf(root), box(1, 0, 0, 1, 0, 0)));
  points->point.setValue(SbVec3f(0, 3, 0));
  EXPECT_TRUE(isNear(boundsOf(root), box(1, 3, 0, 1, 3, 0)));
  // The same below other coordinates.
  SoRef<SoSeparator> const other(new SoSeparator);
  auto* points2 = new SoCoordinate3;
  points2->point.setValue(SbVec3f(7, 7, 7));
  other->addChild(points2);
  other->addChild(user);
  EXPECT_TRUE(isNear(boundsOf(other), box(7, 7, 7, 7, 7, 7)));
}

TEST(ActionsBounds, AreAskedTwiceForNothing) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* inner = new SoSeparator;
  root->addChild(inner);
  for (int i = 0; i < 10; ++i) {
    auto* leaf = new SoSeparator;
    auto* move = new SoTranslation;
    move->translation = SbVec3f(static_cast<float>(i), 0, 0);
    leaf->addChild(move);
    leaf->addChild(new SoCube);
    inner->addChild(leaf);
  }
  // Counts the bounds that are really computed.
  static int computed;
  class CountedCube : public SoCube {
   public:
    SbBox3f getBounds(SoState const& state) const override {
      ++computed;
      return SoCube::getBounds(state);
    }
  };
  inner->addChild(new CountedCube);
  computed = 0;
  SbBox3f const bounds = boundsOf(root);
  EXPECT_EQ(computed, 1);
  EXPECT_TRUE(isNear(boundsOf(root), bounds));
  EXPECT_EQ(computed, 1);
  inner->boundingBoxCaching = SoSeparator::OFF;
  boundsOf(root);
  root->touch();
  boundsOf(root);
  EXPECT_EQ(computed, 3);
}

TEST(ActionsBounds, DeepAndSharedGraphsAreBounded) {
  SoRef<SoNode> const cube(new SoCube);
  for (SoType const type : {SoGroup::getClassTypeId(), SoSeparator::getClassTypeId()}) {
    SoRef<SoNode> const chain = doublingChain(40, cube, type);
    EXPECT_TRUE(isNear(boundsOf(chain), box(-1, -1, -1, 1, 1, 1)));
    SoRef<SoNode> deep(cube);
    for (int i = 0; i < 100000; ++i) {
      auto* group = static_cast<SoGroup*>(static_cast<SoFieldContainer*>(type.createInstance()));
      group->addChild(deep);
      deep = SoRef<SoNode>(group);
    }
    EXPECT_TRUE(isNear(boundsOf(deep), box(-1, -1, -1, 1, 1, 1)));
  }
  // Groups that move what follows are no boxes to be put together.
  SoRef<SoGroup> const step(new SoGroup);
  auto* move = new SoTranslation;
  move->translation = SbVec3f(3, 0, 0);
  step->addChild(move);
  step->addChild(cube);
  SoRef<SoGroup> const root(new SoGroup);
  for (int i = 0; i < 4; ++i) root->addChild(step);
  EXPECT_TRUE(isNear(boundsOf(root), box(2, -1, -1, 13, 1, 1)));
}

TEST(ActionsBounds, CamerasLookAtEverything) {
  SoRef<SoNode> const root =
      readText("Separator { Translation { translation 10 20 30 } Sphere { radius 5 } }");
  for (char const* text :
       {"PerspectiveCamera { }", "OrthographicCamera { }", "PerspectiveCamera { orientation 1 2 3 1 }"}) {
    SoRef<SoNode> const node = readText(text);
    auto* camera = static_cast<SoCamera*>(static_cast<SoGroup*>(node.get())->getChild(0));
    for (auto const& [width, height] : {std::pair{200, 100}, {100, 100}, {100, 300}}) {
      SbViewportRegion const region(static_cast<short>(width), static_cast<short>(height));
      camera->viewAll(root, region);
      SbViewVolume const volume = camera->getViewVolume(region.getViewportAspectRatio());
      SbVec3f screen;
      ASSERT_TRUE(volume.projectToScreen(SbVec3f(10, 20, 30), screen));
      EXPECT_TRUE(screen.equals(SbVec3f(0.5f, 0.5f, screen[2]), 1e-3f)) << text;
      for (int axis = 0; axis < 6; ++axis) {
        SbVec3f point(10, 20, 30);
        point[axis / 2] += axis % 2 ? 5.0f : -5.0f;
        ASSERT_TRUE(volume.projectToScreen(point, screen)) << text;
        for (int k = 0; k < 3; ++k) {
          EXPECT_GE(screen[k], -1e-3f) << text;
          EXPECT_LE(screen[k], 1 + 1e-3f) << text;
        }
      }
    }
    camera->pointAt(SbVec3f(0, 0, 0));
    SbVec3f const toOrigin = -camera->position.getValue().normalized();
    EXPECT_TRUE(camera->getViewVolume().getProjectionDirection().equals(toOrigin, 1e-3f)) << text;
  }
}
