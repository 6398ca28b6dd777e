#include <random>

#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/render/SoDrawList.h"
#include "kestrava/render/SoSceneManager.h"
#include "tests/render/Picture.h"

namespace {

/// 100 x 100 pixels that show -2 to 2 in x and y, looking along -z from z = 10.
std::string const CAMERA = "OrthographicCamera { position 0 0 10 height 4 nearDistance 1 farDistance 20 } ";

std::vector<SoPickedPoint> pickAt(SoNode* root, short x, short y, bool all = true) {
  SoRayPickAction pick(SbViewportRegion(100, 100));
  pick.setPoint(SbVec2s(x, y));
  pick.setPickAll(all);
  pick.apply(root);
  return pick.getPickedPoints();
}

SbName nameOf(SoPickedPoint const& point) { return point.getPath()->getTail()->getName(); }

TEST(PickScene, WhatIsDrawnIsMet) {
  struct Case {
    char const* what;
    std::string scene;
    std::vector<std::string> wanted; // names of the shapes that are met, nearest first
  };
  Case const cases[] = {
      {"what is drawn on top comes first",
       "DEF near Cube {} Annotation { Translation { translation 0 0 -3 } DEF top Cube {} }",
       {"top", "top", "near", "near"}},
      {"a clip plane cuts hits, not shapes",
       "Separator { ClipPlane { plane 0 0 -1 -0.5 } DEF cut Cube {} } DEF whole Sphere { radius 0.2 }",
       {"whole", "whole", "cut"}},
      {"culled backs are passed by",
       "ShapeHints { vertexOrdering COUNTERCLOCKWISE shapeType SOLID } DEF cube Cube {}",
       {"cube"}},
      {"so they are in a mirror",
       "ShapeHints { vertexOrdering COUNTERCLOCKWISE shapeType SOLID } Scale { scaleFactor 1 1 -1 } DEF cube "
       "Cube {}",
       {"cube"}},
      {"a box stands for a shape",
       "Separator { PickStyle { style BOUNDING_BOX } Translation { translation 0.9 0.9 0 } DEF ball Sphere "
       "{} } ",
       {"ball"}},
      {"of levels of detail the one that is shown",
       "LOD { range 5 center 0 0 0 DEF fine Cube {} DEF coarse Sphere { radius 0.5 } }",
       {"coarse", "coarse"}},
      {"of a switch what it shows", "Switch { whichChild 1 DEF off Cube {} DEF on Sphere {} }", {"on", "on"}},
      {"boxes where the complexity asks for them",
       "Complexity { type BOUNDING_BOX } Translation { translation 0.95 0.95 0 } DEF ball Sphere {}",
       {"ball", "ball"}},
      {"what is nothing does no harm",
       "Scale { scaleFactor 0 0 0 } Cube {} FaceSet {} IndexedFaceSet { coordIndex [ 0, 1, -1 ] } PointSet "
       "{}",
       {}},
  };
  for (Case const& c : cases) {
    SoRef<SoNode> const root = readScene("Separator { " + CAMERA + c.scene + " }");
    std::vector<std::string> names;
    for (SoPickedPoint const& point : pickAt(root, 50, 50)) names.push_back(nameOf(point).str());
    EXPECT_EQ(names, c.wanted) << c.what;
    auto const first = pickAt(root, 50, 50, false);
    ASSERT_EQ(first.size(), c.wanted.empty() ? 0u : 1u) << c.what;
    if (first.empty()) continue;
    EXPECT_EQ(nameOf(first[0]).str(), c.wanted[0]) << c.what;
  }
}

TEST(PickScene, CoordinatesThatAreNoNumbersHideNothing) {
  SoRef<SoNode> const root = readScene(
      "Separator { " + CAMERA +
      "Coordinate3 { point [ nan nan nan, 0 0 0, 1 0 0, -1 -1 0, 1 -1 0, 0 1 0, inf 0 0 ] } "
      "DEF faces IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 6, 1, 2, -1, 3, 4, 5, -1 ] } "
      "DEF lines IndexedLineSet { coordIndex [ 0, 1, -1, 6, 1, -1, 3, 4, -1 ] } DEF points PointSet {} }");
  auto const met = pickAt(root, 50, 45);
  ASSERT_FALSE(met.empty());
  EXPECT_EQ(nameOf(met[0]), SbName("faces"));
  EXPECT_EQ(met[0].getFaceIndex(), 2);
  auto const line = pickAt(root, 50, 24, false);
  ASSERT_EQ(line.size(), 1u);
  EXPECT_EQ(line[0].getDetail().lineIndex, 2);
}

TEST(PickScene, HugeCoordinatesAreMet) {
  // Sums of three of these are no numbers any more.
  SoRef<SoNode> const root = readScene(
      "Separator { Coordinate3 { point [ 1.5e38 1.5e38 1.5e38, 1.6e38 1.5e38 1.5e38, 1.5e38 1.6e38 1.5e38 ] } "
      "DEF huge FaceSet {} }");
  SoRayPickAction pick(SbViewportRegion(100, 100));
  pick.setRay(SbVec3f(1.51e38f, 1.51e38f, 1.6e38f), SbVec3f(0, 0, -1));
  pick.apply(root);
  ASSERT_TRUE(pick.getPickedPoint());
  EXPECT_EQ(nameOf(*pick.getPickedPoint()), SbName("huge"));
}

TEST(PickScene, ACallbackMayTakeAwayWhatTheListHasSeen) {
  SoRef<SoSeparator> const root(static_cast<SoSeparator*>(
      readScene("Separator { " + CAMERA + "Separator { DEF gone Cube {} } Callback {} DEF stays Sphere {} }").get()));
  static_cast<SoCallback*>(root->getChild(2))->setCallback([](void* data, SoAction*) {
    auto* const group = static_cast<SoSeparator*>(data);
    if (group->getNumChildren() == 4) group->removeChild(1);
  }, root.get());
  for (int i = 0; i < 2; ++i) {
    auto const met = pickAt(root, 50, 50);
    ASSERT_FALSE(met.empty());
    // The list may be one change behind, never at what is no more.
    EXPECT_TRUE(nameOf(met.back()) == SbName("gone") || nameOf(met.back()) == SbName("stays"));
  }
  SoDrawList list;
  list.update(root, {SbViewportRegion(100, 100), nullptr, {}});
  ASSERT_EQ(list.getItems().size(), 1u);
  EXPECT_EQ(list.getPath(0)->getTail()->getName(), SbName("stays"));
}

TEST(PickScene, TellsWhereInTheDataAHitComesFrom) {
  SoRef<SoNode> const root = readScene(
      "Separator { " + CAMERA +
      "Texture2 { image 1 1 1 0xff } "
      "MaterialBinding { value PER_FACE } Coordinate3 { point [ 9 9 9, -1 -1 0, 1 -1 0, 1 1 0, -1 1 0, -1 "
      "1.5 0, 1 1.5 0 ] } "
      "TextureCoordinate2 { point [ 0 0, 1 0, 1 1, 0 1, 0 1, 1 1 ] } "
      "DEF faces IndexedFaceSet { coordIndex [ 4, 3, 6, 5, -1, 1, 2, 3, 4, -1 ] textureCoordIndex [ 3, 2, 2, "
      "3, -1, 0, 1, 2, 3, -1 ] } "
      "Translation { translation 0 0 3 } DEF lines IndexedLineSet { coordIndex [ 1, 2, -1, 2, 3, 4, -1 ] } "
      "DEF points PointSet { startIndex 3 } }");
  auto const face = pickAt(root, 37, 62, false);
  ASSERT_EQ(face.size(), 1u);
  SoPickDetail const& detail = face[0].getDetail();
  EXPECT_EQ(detail.kind, SoPickDetail::FACE);
  EXPECT_EQ(detail.faceIndex, 1);
  EXPECT_EQ(face[0].getMaterialIndex(), 1);
  EXPECT_NEAR(face[0].getTextureCoords()[0], 0.25f, 1e-3f);
  EXPECT_NEAR(face[0].getTextureCoords()[1], 0.75f, 1e-3f);
  ASSERT_EQ(detail.numCorners, 3);
  SbVec3f sum;
  for (auto const& corner : detail.corners) {
    EXPECT_GE(corner.coordIndex, 1);
    EXPECT_LE(corner.coordIndex, 4);
    sum += corner.point * corner.weight;
  }
  EXPECT_LT((sum - face[0].getPoint()).length(), 1e-5f);

  auto const line = pickAt(root, 73, 50, false); // the second line's first segment, in front of the faces
  ASSERT_EQ(line.size(), 1u);
  EXPECT_EQ(line[0].getDetail().kind, SoPickDetail::LINE);
  EXPECT_EQ(line[0].getDetail().lineIndex, 1);
  EXPECT_EQ(line[0].getDetail().partIndex, 1);
  EXPECT_EQ(line[0].getDetail().corners[1].coordIndex, 3);
  EXPECT_NEAR(line[0].getDetail().corners[1].weight, 0.51f, 1e-3f);

  auto const points = pickAt(root, 25, 87);
  ASSERT_FALSE(points.empty());
  EXPECT_EQ(nameOf(points[0]), SbName("points"));
  EXPECT_EQ(points[0].getDetail().pointIndex, 2);
  EXPECT_EQ(points[0].getDetail().corners[0].coordIndex, 5);
}

TEST(PickScene, StripsGridsAndPrimitivesTellTheirParts) {
  struct Case {
    char const* shape;
    short x, y;
    int face, part;
  };
  std::string const points =
      "Coordinate3 { point [ -1.5 -1.5 0, 0 -1.5 0, 1.5 -1.5 0, -1.5 0 0, 0 0 0, 1.5 0 0, -1.5 1.5 0, 0 1.5 "
      "0, 1.5 1.5 0 ] } ";
  Case const cases[] = {
      {"QuadMesh { verticesPerRow 3 verticesPerColumn 3 }", 70, 70, 3, 1},
      {"QuadMesh { verticesPerRow 3 verticesPerColumn 3 }", 30, 70, 2, 1},
      {"IndexedTriangleStripSet { coordIndex [ 0, 1, 3, 4, -1, 4, 5, 7, 8 ] }", 60, 60, 2, 1},
      {"Transform { rotation 1 0 0 1.5707963 } Cube {}", 50, 50, 4, 4},
      {"Transform { rotation 1 0 0 1.5707963 } Cylinder {}", 50, 50, 1, 1},
      {"Cone {}", 50, 40, 0, 0},
  };
  for (Case const& c : cases) {
    SoRef<SoNode> const root = readScene("Separator { " + CAMERA + points + c.shape + " }");
    auto const met = pickAt(root, c.x, c.y, false);
    ASSERT_EQ(met.size(), 1u) << c.shape;
    EXPECT_EQ(met[0].getFaceIndex(), c.face) << c.shape;
    EXPECT_EQ(met[0].getDetail().partIndex, c.part) << c.shape;
  }
}

TEST(PickScene, BacksAndNormals) {
  SoRef<SoNode> const root = readScene("Separator { " + CAMERA + "ShapeHints { creaseAngle 3 } Sphere {} }");
  auto const met = pickAt(root, 60, 50);
  ASSERT_EQ(met.size(), 2u);
  EXPECT_FALSE(met[0].isFromBehind());
  EXPECT_TRUE(met[1].isFromBehind());
  // Interpolated, so nearer to the true one than those of the facets are.
  EXPECT_NEAR(met[0].getNormal()[0], 0.42f, 4e-3f);
  EXPECT_NEAR(met[1].getNormal()[2], -0.9075f, 4e-3f) << "to the front side, away from the eye";
}

TEST(PickScene, PathsLeadThroughArraysAndInstances) {
  SoRef<SoNode> const root = readScene("Separator { " + CAMERA +
                                       "DEF outer Group { Array { numElements1 3 separation1 1.3 0 0 origin "
                                       "CENTER DEF ball Sphere { radius 0.4 } } } "
                                       "Separator { Translation { translation 0 1.2 0 } USE ball } }");
  auto const right = pickAt(root, 82, 50, false), up = pickAt(root, 50, 80, false);
  ASSERT_EQ(right.size(), 1u);
  ASSERT_EQ(up.size(), 1u);
  EXPECT_EQ(right[0].getPath()->getLength(), 4);
  EXPECT_EQ(right[0].getPath()->getNode(1)->getName(), SbName("outer"));
  EXPECT_GT(right[0].getPoint()[0], 0.9f);
  EXPECT_EQ(up[0].getPath()->getLength(), 3);
  EXPECT_EQ(up[0].getPath()->getIndex(1), 2);

  SoRef<SoNode> const kit = readScene("Separator { " + CAMERA + "ShapeKit { shape DEF part Cube {} } }");
  auto const inKit = pickAt(kit, 50, 50, false);
  ASSERT_EQ(inKit.size(), 1u);
  EXPECT_EQ(nameOf(inKit[0]), SbName("part"));
  EXPECT_TRUE(inKit[0].getPath()->getNode(1)->getTypeId().getName() == "ShapeKit");

  // Along a path only what is at its end.
  SoRayPickAction pick(SbViewportRegion(100, 100));
  pick.setRay(SbVec3f(0, 1.2f, 9), SbVec3f(0, 0, -1));
  SoRef<SoPath> const first(right[0].getPath()->copy(0, 2));
  pick.apply(first.get());
  EXPECT_FALSE(pick.getPickedPoint());
  pick.apply(up[0].getPath());
  EXPECT_TRUE(pick.getPickedPoint());
}

TEST(PickScene, LinesAndPointsAreMetAsTheyAreSeen) {
  // A long line away from the eye: what comes nearest to the pixel is not what comes nearest to the ray.
  SoRef<SoNode> const root = readScene(
      "Separator { Coordinate3 { point [ 0.3 0 5, 0.3 0 -900, 0 0 50 ] } DEF line LineSet { numVertices 2 } "
      "DEF point PointSet { startIndex 2 } }");
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  camera->position = SbVec3f(0, 0, 10);
  SoRayPickAction pick(SbViewportRegion(1000, 1000));
  pick.setCamera(camera);
  pick.setPoint(SbVec2s(503, 500));
  pick.apply(root);
  ASSERT_TRUE(pick.getPickedPoint()) << "the line, far away; the point lies behind the eye";
  EXPECT_EQ(nameOf(*pick.getPickedPoint()), SbName("line"));
  EXPECT_LT(pick.getPickedPoint()->getPoint()[2], -50);
  pick.setPoint(SbVec2s(572, 500));
  pick.setRadius(3);
  pick.apply(root);
  EXPECT_TRUE(pick.getPickedPoint()) << "the line, near";
  pick.setPoint(SbVec2s(572, 510));
  pick.apply(root);
  EXPECT_FALSE(pick.getPickedPoint());

  pick.setRay(SbVec3f(0, 5, 0), SbVec3f(0, -1, 0));
  pick.apply(root);
  EXPECT_FALSE(pick.getPickedPoint()) << "a ray has no radius unless it is given one";
  pick.setRayRadius(0.31f);
  pick.apply(root);
  EXPECT_TRUE(pick.getPickedPoint());
}

// Everything against a walk over all triangles.
TEST(PickScene, FindsInManyShapesWhatASearchOfAllFinds) {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> place(-5, 5);
  std::string scene = "Separator { ";
  for (int i = 0; i < 300; ++i) {
    auto number = [&] { return std::to_string(place(random)) + " "; };
    char const* const shapes[] = {"Sphere { radius 0.4 }", "Cube {}", "Cone {}", "Cylinder { parts SIDES }"};
    scene += "Separator { Transform { translation " + number() + number() + number() + "rotation " +
             number() + number() + number() + number() + " scaleFactor 0.5 " + number() + " 0.7 } " +
             shapes[i % 4] + " } ";
  }
  SoRef<SoNode> const root = readScene(scene + "}");
  SoDrawList list;
  list.update(root, {});
  SoRayPickAction pick(SbViewportRegion(100, 100));
  int met = 0;
  for (int i = 0; i < 500; ++i) {
    SbVec3f const start(place(random), place(random), place(random));
    SbLine const ray(start, SbVec3f(place(random), place(random), place(random)));
    std::vector<float> wanted;
    for (auto const& item : list.getItems()) {
      SbMatrix const toShape = item.matrix.inverse();
      SoMeshIntersector::Ray const local{toShape.multVecMatrix(start),
                                         toShape.multDirMatrix(ray.getDirection())};
      for (std::uint32_t t = 0; t < static_cast<std::uint32_t>(item.mesh->mesh.getNumTriangles()); ++t) {
        SoMeshIntersector::Hit hit{t, 0, 0, 0};
        if (SoMeshIntersector::meet(item.mesh->mesh, local, hit)) wanted.push_back(hit.distance);
      }
    }
    std::sort(wanted.begin(), wanted.end());
    pick.setRay(start, ray.getDirection());
    pick.setPickAll(true);
    pick.apply(root);
    ASSERT_EQ(pick.getPickedPoints().size(), wanted.size()) << "ray " << i;
    for (size_t k = 0; k < wanted.size(); ++k) EXPECT_NEAR(pick.getPickedPoints()[k].getDistance(), wanted[k], 1e-4f);
    pick.setPickAll(false);
    pick.apply(root);
    ASSERT_EQ(pick.getPickedPoints().size(), wanted.empty() ? 0u : 1u);
    if (wanted.empty()) continue;
    EXPECT_NEAR(pick.getPickedPoint()->getDistance(), wanted[0], 1e-4f);
    ++met;
  }
  EXPECT_GT(met, 100) << "the rays tell nothing";
  EXPECT_EQ(list.getNumRebuilds(), 1) << "the list that was there served";
}

TEST(PickScene, APreparedListServesAndIsBroughtUpToDate) {
  SoRef<SoSeparator> const root(static_cast<SoSeparator*>(
      readScene(
          "Separator { Translation {} Cube {} LOD { range 4 center 0 0 0 Sphere { radius 1.5 } Cube {} } }")
          .get()));
  SoRef<SoSceneManager> const manager(new SoSceneManager);
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  camera->position = SbVec3f(0, 0, 3);
  manager->setSceneGraph(root);
  manager->setCamera(camera);
  manager->setViewportRegion(SbViewportRegion(100, 100));
  SoGLRenderAction* const action = manager->getGLRenderAction();
  manager->setUp(*action);
  action->prepare(root);
  int const before = action->getDrawList().getNumRebuilds();

  SoRayPickAction pick(SbViewportRegion(100, 100));
  pick.setCamera(camera);
  pick.setPoint(SbVec2s(50, 50));
  auto const distance = [&] {
    pick.apply(root);
    return pick.getPickedPoint() ? pick.getPickedPoint()->getDistance() : -1;
  };
  EXPECT_NEAR(distance(), 1.5f, 0.05f);
  EXPECT_EQ(action->getDrawList().getNumRebuilds(), before) << "the manager's list served";
  static_cast<SoTranslation*>(root->getChild(0))->translation = SbVec3f(0, 0, -1);
  EXPECT_NEAR(distance(), 2.5f, 0.05f);
  EXPECT_EQ(action->getDrawList().getNumRebuilds(), before + 1);
  manager->setUp(*action);
  action->prepare(root);
  EXPECT_EQ(action->getDrawList().getNumRebuilds(), before + 1) << "the next frame finds it done";

  // Another view shows another level: the manager's list does not fit, and stays.
  SoRef<SoPerspectiveCamera> const far(new SoPerspectiveCamera);
  far->position = SbVec3f(0, 0, 9);
  pick.setCamera(far);
  EXPECT_NEAR(distance(), 9, 0.05f);
  EXPECT_EQ(action->getDrawList().getNumRebuilds(), before + 1);
}

TEST(PickScene, AGraphOfMorePlacesThanAnybodyCanDraw) {
  SoRef<SoNode> below(new SoCube);
  for (int i = 0; i < 30; ++i) {
    auto* const above = new SoGroup;
    above->addChild(below);
    above->addChild(below);
    below = SoRef<SoNode>(above);
  }
  SoDrawList list;
  SoDrawList::View view;
  view.region = SbViewportRegion(100, 100);
  list.update(below, view);
  EXPECT_EQ(list.getItems().size(), 1'000'000u);
  // Without anything to draw it comes to an end as well.
  SoRef<SoNode> empty(new SoGroup);
  for (int i = 0; i < 30; ++i) {
    auto* const above = new SoGroup;
    above->addChild(empty);
    above->addChild(empty);
    empty = SoRef<SoNode>(above);
  }
  list.update(empty, view);
  EXPECT_TRUE(list.getItems().empty());
}

} // namespace
