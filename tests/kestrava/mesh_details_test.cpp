#include <map>
#include <numbers>
#include <set>

#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoDrawList.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

/// What the last shape of a scene shows.
SoMesh shownMesh(std::string const& scene, SbViewportRegion const& region = SbViewportRegion(100, 100)) {
  SoMesh mesh;
  SoRef<SoNode> const root = readText(scene);
  EXPECT_TRUE(root) << scene;
  SoCallbackAction action(region);
  action.addPreCallback(
      SoShape::getClassTypeId(),
      [](void* data, SoCallbackAction* a, SoNode const* node) {
        auto& shown = *static_cast<SoMesh*>(data);
        shown = SoMesh();
        static_cast<SoShape const*>(node)->buildShownMesh(a->getState(), shown);
        return SoCallbackAction::CONTINUE;
      },
      &mesh);
  action.apply(root);
  return mesh;
}

struct Corners {
  std::vector<SoPrimitiveVertex> triangles, lines, points;
};

Corners cornersOf(std::string const& scene) {
  Corners corners;
  SoRef<SoNode> const root = readText(scene);
  EXPECT_TRUE(root) << scene;
  SoCallbackAction action;
  SoType const shapes = SoShape::getClassTypeId();
  action.addTriangleCallback(
      shapes,
      [](void* data, SoCallbackAction*, auto const& a, auto const& b, auto const& c) {
        static_cast<Corners*>(data)->triangles.insert(static_cast<Corners*>(data)->triangles.end(),
                                                      {a, b, c});
      },
      &corners);
  action.addLineSegmentCallback(
      shapes,
      [](void* data, SoCallbackAction*, auto const& a, auto const& b) {
        static_cast<Corners*>(data)->lines.insert(static_cast<Corners*>(data)->lines.end(), {a, b});
      },
      &corners);
  action.addPointCallback(
      shapes,
      [](void* data, SoCallbackAction*, auto const& a) { static_cast<Corners*>(data)->points.push_back(a); },
      &corners);
  action.apply(root);
  return corners;
}

int trianglesAt(float distance, std::string const& shape) {
  std::string const camera =
      "PerspectiveCamera { position 0 0 " + std::to_string(distance) + " farDistance 9000 } ";
  return shownMesh("Separator { " + camera + "Complexity { type SCREEN_SPACE } " + shape + " }")
      .getNumTriangles();
}

TEST(MeshDetails, RoundShapesAreAsFineAsTheyAreLargeOnTheScreen) {
  for (std::string const shape :
       {"Sphere {}", "Cone {}", "Cylinder {}", "Font { size 1 } AsciiText { string \"o\" }"}) {
    int const near = trianglesAt(3, shape), middle = trianglesAt(12, shape), far = trianglesAt(200, shape);
    EXPECT_GT(near, middle) << shape;
    EXPECT_GE(middle, far) << shape;
    EXPECT_GT(far, 0) << shape;
  }
  EXPECT_GT(trianglesAt(10, "Scale { scaleFactor 4 4 4 } Sphere {}"), trianglesAt(10, "Sphere {}"));
  EXPECT_EQ(trianglesAt(3, "Cube {}"), 12);
}

TEST(MeshDetails, AListIsMadeAnewOnlyWhenAShapeHasToBecomeFinerOrCoarser) {
  SoRef<SoNode> const root = readText("Separator { Complexity { type SCREEN_SPACE } Sphere {} }");
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  SoDrawList list;
  auto const trianglesFrom = [&](float distance) {
    camera->position = SbVec3f(0, 0, distance);
    list.update(root, {SbViewportRegion(500, 500), camera, camera->getViewVolume(1)});
    return list.getItems().at(0).mesh->mesh.getNumTriangles();
  };
  int const near = trianglesFrom(4);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(trianglesFrom(4 + 0.001f * static_cast<float>(i)), near);
  EXPECT_EQ(list.getNumRebuilds(), 1);
  EXPECT_LT(trianglesFrom(400), near);
  EXPECT_EQ(list.getNumRebuilds(), 2);
  EXPECT_EQ(trianglesFrom(4), near);
}

TEST(MeshDetails, AmongManyShapesASmallMoveMakesNothingAnew) {
  std::string text = "Separator { Complexity { type SCREEN_SPACE } ";
  for (int i = 0; i < 500; ++i) text += "Translation { translation 0 0 -0.1 } Sphere {} ";
  SoRef<SoNode> const root = readText(text + "}");
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  SoDrawList list;
  for (int i = 0; i < 100; ++i) {
    camera->position = SbVec3f(0, 0, 8 - 0.01f * static_cast<float>(i));
    list.update(root, {SbViewportRegion(500, 500), camera, camera->getViewVolume(1)});
  }
  EXPECT_LE(list.getNumRebuilds(), 3);
}

TEST(MeshDetails, BoxesStandForAllShapesWhereTheComplexityAsksForThem) {
  std::string const points = "Coordinate3 { point [ 1 2 3, 2 4 6, 0 3 4 ] } ";
  char const* const shapes[] = {"Sphere {}",
                                "Cone {}",
                                "FaceSet {}",
                                "LineSet {}",
                                "PointSet {}",
                                "AsciiText { string \"Q\" }",
                                "Text3 { string \"Q\" parts ALL }"};
  for (std::string const shape : shapes) {
    SbBox3f const bounds = shownMesh("Separator { " + points + shape + " }").getBounds();
    SoMesh const box = shownMesh(
        "Separator { MaterialBinding { value PER_VERTEX_INDEXED } Complexity { type BOUNDING_BOX } " +
        points + shape + " }");
    EXPECT_EQ(box.getNumTriangles(), 12) << shape;
    EXPECT_TRUE(isNear(box.getBounds(), bounds)) << shape;
    EXPECT_TRUE(box.lines.empty() && box.points.empty() && box.materials.empty()) << shape;
  }
  EXPECT_EQ(shownMesh("Separator { Complexity { type BOUNDING_BOX } FaceSet {} }").getNumTriangles(), 0);
}

TEST(MeshDetails, PrimitivesHaveTexturesUprightOnEveryPart) {
  struct Case {
    char const* shape;
    int part;
    SbVec3f point;
    float s, t;
  };
  // As seen from outside; tops and bottoms as when the shape is tipped towards the viewer.
  Case const cases[] = {
      {"Cube {}", 0, {1, 1, 1}, 1, 1},           {"Cube {}", 3, {1, 1, 1}, 0, 1},
      {"Cube {}", 4, {1, 1, 1}, 1, 0},           {"Cube {}", 5, {1, -1, 1}, 1, 1},
      {"Cylinder {}", 0, {0, 1, 1}, 0.5f, 1},    {"Cylinder {}", 1, {0, 1, 1}, 0.5f, 0},
      {"Cylinder {}", 2, {0, -1, 1}, 0.5f, 1},   {"Cone {}", 0, {0, -1, 1}, 0.5f, 0},
      {"Cone {}", 1, {1, -1, 0}, 1, 0.5f},       {"Sphere {}", 0, {0, 0, 1}, 0.5f, 0.5f},
      {"Sphere {}", 0, {-1, 0, 0}, 0.25f, 0.5f},
  };
  for (Case const& c : cases) {
    SoMesh const mesh = shownMesh(std::string("Separator { Texture2 { image 1 1 1 0xff } ") + c.shape + " }");
    bool found = false;
    for (size_t i = 0; i < mesh.triangles.size() && !found; ++i) {
      std::uint32_t const v = mesh.triangles[i];
      if (mesh.faces[i / 3] != c.part || (mesh.positions[v] - c.point).length() > 1e-4f) continue;
      found = true;
      EXPECT_NEAR(mesh.texCoords.at(v)[0], c.s, 1e-4f) << c.shape << " " << c.part;
      EXPECT_NEAR(mesh.texCoords.at(v)[1], c.t, 1e-4f) << c.shape << " " << c.part;
    }
    EXPECT_TRUE(found) << c.shape << " " << c.part;
  }
}

TEST(MeshDetails, SolidTextHasPartsWithNormalsAndTexturesOfTheirOwn) {
  std::string const before =
      "Separator { Font { size 2 } Texture2 { image 1 1 1 0xff } MaterialBinding { value PER_PART } ";
  SoMesh const mesh = shownMesh(before + "Text3 { string \"Oo\" parts ALL } }");
  ASSERT_GT(mesh.getNumTriangles(), 0) << "there is no font";
  std::map<int, int> triangles;
  std::set<float> depths[3];
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    int const part = mesh.faces[i / 3];
    std::uint32_t const v = mesh.triangles[i];
    ++triangles[part];
    EXPECT_EQ(mesh.materials[v], part);
    depths[part].insert(mesh.positions[v][2]);
    EXPECT_FLOAT_EQ(mesh.normals[v][2], part == 0 ? 1.0f : part == 2 ? -1.0f : 0.0f);
    SbVec3f const& st = mesh.texCoords[v];
    EXPECT_GE(st[0], -1e-4f);
    EXPECT_GE(st[1], -1e-4f);
    EXPECT_TRUE(part != 1 || std::abs(st[1] + mesh.positions[v][2] / 2) < 1e-5f);
  }
  EXPECT_EQ(triangles[0], triangles[2]);
  EXPECT_EQ(depths[0], std::set<float>{0});
  EXPECT_EQ(depths[1], (std::set<float>{-1, 0}));
  EXPECT_EQ(depths[2], std::set<float>{-1});

  // The wall of a round letter is smooth: where two pieces meet their normals are the same.
  std::map<std::pair<float, float>, std::set<std::pair<float, float>>> normals;
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    std::uint32_t const v = mesh.triangles[i];
    if (mesh.faces[i / 3] != 1) continue;
    auto const rounded = [](float x) { return std::round(x * 1000); };
    normals[{rounded(mesh.positions[v][0]), rounded(mesh.positions[v][1])}].insert(
        {rounded(mesh.normals[v][0]), rounded(mesh.normals[v][1])});
  }
  int sharp = 0;
  for (auto const& [place, here] : normals) sharp += here.size() > 1;
  EXPECT_LE(sharp, static_cast<int>(normals.size()) / 8);
  EXPECT_EQ(shownMesh(before + "Text3 { string \"Oo\" parts SIDES } }").getNumTriangles(), triangles[1] / 3);
}

TEST(MeshDetails, CallbacksGetColoursAndIndices) {
  std::string const points = "Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] } ";
  Corners const faces = cornersOf(
      "Separator { Material { diffuseColor [ 1 0 0, 0 1 0 ] transparency [ 0, 0.5 ] } "
      "MaterialBinding { value PER_FACE } " +
      points + "IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 0, 2, 3 ] } }");
  ASSERT_EQ(faces.triangles.size(), 6u);
  EXPECT_EQ(faces.triangles[0].color, SbColorRGBA(1, 0, 0, 1));
  EXPECT_EQ(faces.triangles[5].color, SbColorRGBA(0, 1, 0, 0.5f));
  EXPECT_EQ(faces.triangles[5].coordIndex, 3);
  Corners const own = cornersOf("Separator { BaseColor { rgb 1 1 1 } " + points +
                                "LineSet { vertexProperty VertexProperty { orderedRGBA [ 0xff0000ff, "
                                "0x0000ff80 ] materialBinding PER_VERTEX } } "
                                "PointSet {} Sphere {} }");
  ASSERT_EQ(own.lines.size(), 6u);
  EXPECT_EQ(own.lines[0].color, SbColorRGBA(1, 0, 0, 1));
  EXPECT_NEAR(own.lines[1].color[3], 0.5f, 0.01f);
  ASSERT_EQ(own.points.size(), 4u);
  EXPECT_EQ(own.points[3].color, SbColorRGBA(1, 1, 1, 1)) << "the property served its shape alone";
  EXPECT_EQ(own.triangles.at(0).coordIndex, -1);

  SbMatrix flat;
  flat.setScale(SbVec3f(1, 4, 1));
  SoPrimitiveVertex slanted;
  slanted.normal = SbVec3f(1, 1, 0).normalized();
  EXPECT_NEAR(slanted.transformed(flat).normal[0], 4 / std::sqrt(17.0f), 1e-5f)
      << "across the stretched surface";
}

TEST(MeshDetails, HomogeneousCoordinatesAreThoseOfTheirQuotients) {
  struct Case {
    char const *shape, *materials;
  };
  Case const cases[] = {
      {"QuadMesh { verticesPerRow 3 verticesPerColumn 2 }", "PER_PART"},
      {"QuadMesh { verticesPerRow 3 verticesPerColumn 2 }", "PER_VERTEX"},
      {"TriangleStripSet { numVertices [ 3, 3 ] }", "PER_FACE"},
      {"IndexedFaceSet { coordIndex [ 0, 1, 4, 3, -1, 1, 2, 5, 4 ] }", "PER_VERTEX_INDEXED"},
      {"IndexedLineSet { coordIndex [ 0, 1, 4, -1, 2, 5 ] }", "PER_PART"},
  };
  for (Case const& c : cases) {
    std::string const before =
        std::string("Separator { ShapeHints { creaseAngle 0.5 } MaterialBinding { value ") + c.materials +
        " } ";
    SoMesh const plain = shownMesh(
        before + "Coordinate3 { point [ 0 0 0, 1 0 0, 2 0 2, 0 1 0, 1 1 0, 2 1 2 ] } " + c.shape + " }");
    SoMesh const divided = shownMesh(
        before + "Coordinate4 { point [ 0 0 0 1, 2 0 0 2, 1 0 1 0.5, 0 -1 0 -1, 1 1 0 1, 8 4 8 4 ] } " +
        c.shape + " }");
    ASSERT_FALSE(plain.positions.empty());
    EXPECT_EQ(divided.positions, plain.positions) << c.shape;
    EXPECT_EQ(divided.triangles, plain.triangles) << c.shape;
    EXPECT_EQ(divided.lines, plain.lines) << c.shape;
    EXPECT_EQ(divided.normals, plain.normals) << c.shape;
    EXPECT_EQ(divided.materials, plain.materials) << c.shape;
  }
}

} // namespace
