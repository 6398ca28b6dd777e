#include <chrono>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoMesh.h"
#include "kestrava/render/SoMeshBuilder.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

struct Built {
  SoMesh mesh;
  std::uint64_t key = 0;
  SbBox3f bounds;
};

/// The mesh of the last shape of a scene, in the state that it is met in.
Built build(std::string const& scene) {
  Built built;
  SoRef<SoNode> const root = readText(scene);
  EXPECT_TRUE(root) << scene;
  SoCallbackAction action;
  action.addPreCallback(
      SoShape::getClassTypeId(),
      [](void* data, SoCallbackAction* a, SoNode const* node) {
        auto const* shape = static_cast<SoShape const*>(node);
        Built b;
        shape->buildMesh(a->getState(), b.mesh);
        b.key = shape->getMeshKey(a->getState());
        b.bounds = shape->getBounds(a->getState());
        *static_cast<Built*>(data) = std::move(b);
        return SoCallbackAction::CONTINUE;
      },
      &built);
  action.apply(root);
  return built;
}

SbVec3f crossOf(SoMesh const& mesh, int triangle) {
  auto at = [&](int k) { return mesh.positions[mesh.triangles[static_cast<size_t>(3 * triangle + k)]]; };
  return (at(1) - at(0)).cross(at(2) - at(0));
}

double volumeOf(SoMesh const& mesh) {
  double volume = 0;
  for (int t = 0; t < mesh.getNumTriangles(); ++t) {
    volume += mesh.positions[mesh.triangles[static_cast<size_t>(3 * t)]].dot(crossOf(mesh, t)) / 6.0;
  }
  return volume;
}

/// Arrays of one length, indices in range, unit normals on the side that the triangles face.
void expectSound(SoMesh const& mesh, char const* what) {
  size_t const n = mesh.positions.size();
  for (size_t size :
       {mesh.normals.size(), mesh.texCoords.size(), mesh.materials.size(), mesh.coordIndices.size()}) {
    EXPECT_TRUE(size == 0 || size == n) << what;
  }
  EXPECT_EQ(mesh.faces.size() * 3, mesh.triangles.size()) << what;
  for (auto const* indices : {&mesh.triangles, &mesh.lines, &mesh.points}) {
    for (std::uint32_t const i : *indices) ASSERT_LT(i, n) << what;
  }
  for (SbVec3f const& normal : mesh.normals) EXPECT_NEAR(normal.length(), 1, 1e-4) << what;
  if (mesh.normals.empty()) return;
  for (int t = 0; t < mesh.getNumTriangles(); ++t) {
    SbVec3f const cross = crossOf(mesh, t);
    if (cross.length() < 1e-6f) continue;
    for (int k = 0; k < 3; ++k) {
      EXPECT_GT(mesh.normals[mesh.triangles[static_cast<size_t>(3 * t + k)]].dot(cross), 0)
          << what << ", triangle " << t;
    }
  }
}

/// Every edge is run along once in each direction: nothing is open, nothing is turned inside out.
bool isClosed(SoMesh const& mesh) {
  std::map<std::pair<int, int>, int> edges;
  auto number = [&, places = std::map<std::array<long, 3>, int>()](std::uint32_t i) mutable {
    std::array<long, 3> place;
    for (int k = 0; k < 3; ++k) place[k] = std::lround(mesh.positions[i][k] * 1e4);
    return places.try_emplace(place, static_cast<int>(places.size())).first->second;
  };
  for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
    for (size_t k = 0; k < 3; ++k) {
      int const a = number(mesh.triangles[t + k]), b = number(mesh.triangles[t + (k + 1) % 3]);
      ++edges[{a, b}];
    }
  }
  for (auto const& [edge, count] : edges) {
    auto const back = edges.find({edge.second, edge.first});
    if (count != 1 || back == edges.end()) return false;
  }
  return true;
}

char const* const CUBE_POINTS =
    "Coordinate3 { point [ -1 -1 1, 1 -1 1, 1 1 1, -1 1 1, -1 -1 -1, 1 -1 -1, 1 1 -1, -1 1 -1 ] } ";
char const* const CUBE_INDEX = "[ 0 1 2 3 -1 5 4 7 6 -1 4 0 3 7 -1 1 5 6 2 -1 3 2 6 7 -1 4 5 1 0 -1 ]";

} // namespace

TEST(MeshShapes, PrimitivesAreClosedAndFaceOutwards) {
  struct Case {
    char const* shape;
    double volume;
    double tolerance;
  };
  double const pi = 3.14159265;
  Case const cases[] = {
      {"Cube { width 2 height 3 depth 4 }", 24, 1e-4},
      {"Sphere { radius 2 }", 4.0 / 3 * pi * 8, 1.0},
      {"Cone { bottomRadius 2 height 3 }", pi * 4, 0.3},
      {"Cylinder { radius 2 height 3 }", pi * 12, 0.7},
      {"Cube { width -2 }", 8, 1e-4},
  };
  for (Case const& c : cases) {
    Built const coarse = build(std::string("Separator { Complexity { value 0 } ") + c.shape + " }");
    Built const normal = build(c.shape);
    Built const fine = build(std::string("Separator { Complexity { value 1 } ") + c.shape + " }");
    for (Built const* b : {&coarse, &normal, &fine}) {
      expectSound(b->mesh, c.shape);
      EXPECT_TRUE(isClosed(b->mesh)) << c.shape;
      EXPECT_TRUE(isNear(b->mesh.getBounds(), b->bounds)) << c.shape;
    }
    EXPECT_NEAR(volumeOf(normal.mesh), c.volume, c.tolerance) << c.shape;
    EXPECT_LE(std::abs(volumeOf(fine.mesh) - c.volume), std::abs(volumeOf(coarse.mesh) - c.volume) + 1e-6)
        << c.shape;
    EXPECT_NE(coarse.key, fine.key) << c.shape;
  }
  EXPECT_EQ(build("Cube { }").mesh.getNumTriangles(), 12);
  // Parts are independent of each other.
  EXPECT_EQ(build("Cylinder { parts NONE }").mesh.getNumTriangles(), 0);
  int const top = build("Cylinder { parts TOP }").mesh.getNumTriangles();
  int const ends = build("Cylinder { parts ( TOP | BOTTOM ) }").mesh.getNumTriangles();
  EXPECT_EQ(ends, 2 * top);
  EXPECT_GT(build("Cone { parts SIDES }").mesh.getNumTriangles(), 0);
}

TEST(MeshShapes, FaceSetsHaveNMinusTwoTrianglesAFace) {
  std::string const scene =
      std::string("Separator { ") + CUBE_POINTS + "IndexedFaceSet { coordIndex " + CUBE_INDEX + " } }";
  Built const cube = build(scene);
  EXPECT_EQ(cube.mesh.getNumTriangles(), 12);
  expectSound(cube.mesh, "indexed cube");
  EXPECT_TRUE(isClosed(cube.mesh));
  EXPECT_NEAR(volumeOf(cube.mesh), 8, 1e-5);
  EXPECT_EQ(cube.mesh.positions.size(), 24u) << "flat normals: three vertices a corner";

  // Clockwise faces come out counterclockwise.
  std::string const clockwise = "Separator { ShapeHints { vertexOrdering CLOCKWISE } " + scene + " }";
  Built const turned = build(clockwise);
  expectSound(turned.mesh, "clockwise");
  EXPECT_NEAR(volumeOf(turned.mesh), -8, 1e-5);
  EXPECT_NE(turned.key, cube.key);

  // A pentagon and a triangle; a face of two corners is none.
  Built const runs = build(
      "Separator { Coordinate3 { point [ 0 0 0, 2 0 0, 3 1 0, 1 2 0, -1 1 0, 0 0 1, 1 0 1, 0 1 1 ] } FaceSet "
      "{ "
      "numVertices [ 5, 3 ] } }");
  EXPECT_EQ(runs.mesh.getNumTriangles(), 4);
  EXPECT_EQ(runs.mesh.faces, (std::vector<std::int32_t>{0, 0, 0, 1}));
  EXPECT_EQ(build("Separator { Coordinate3 { point [ 0 0 0, 1 0 0 ] } FaceSet { } }").mesh.getNumTriangles(),
            0);
}

TEST(MeshShapes, ConcaveFacesAreFilledExactly) {
  struct Case {
    char const* points;
    int corners;
    double area;
  };
  Case const cases[] = {
      {"0 0 0, 4 0 0, 4 4 0, 2 1 0, 0 4 0", 5, 10},                                     // a notch from above
      {"0 0 0, 3 0 0, 3 1 0, 1 1 0, 1 3 0, 0 3 0", 6, 5},                               // an L
      {"0 0 0, 0 5 0, 5 5 0, 5 4 0, 1 4 0, 1 3 0, 4 3 0, 4 2 0, 1 2 0, 1 0 0", 10, 12}, // an F, clockwise
      {"0 0 0, 0 0 4, 0 4 4, 0 1 2, 0 4 0", 5, 10},                                     // standing upright
      {"0 0 0, 2 0 0, 4 0 0, 4 4 0, 2 1 0, 0 4 0", 6, 10}, // with a straight corner
  };
  for (Case const& c : cases) {
    Built const face =
        build(std::string("Separator { ShapeHints { faceType UNKNOWN_FACE_TYPE } Coordinate3 { point [ ") +
              c.points + " ] } FaceSet { } }");
    EXPECT_EQ(face.mesh.getNumTriangles(), c.corners - 2) << c.points;
    double area = 0;
    for (int t = 0; t < face.mesh.getNumTriangles(); ++t) {
      area += crossOf(face.mesh, t).length() / 2;
      EXPECT_GE(crossOf(face.mesh, t).dot(face.mesh.normals[0]), -1e-6) << c.points;
    }
    EXPECT_NEAR(area, c.area, 1e-4) << c.points;
  }
  // Polygons that cut themselves, that are all one point, or that hold values that are no numbers, still end.
  for (char const* points : {"0 0 0, 1 1 0, 1 0 0, 0 1 0", "1 1 1, 1 1 1, 1 1 1, 1 1 1, 1 1 1",
                             "nan 0 0, 1 inf 0, 0 1 0, 2 2 -inf"}) {
    Built const face =
        build(std::string("Separator { ShapeHints { faceType UNKNOWN_FACE_TYPE creaseAngle 1 } Coordinate3 { "
                          "point [ ") +
              points + " ] } FaceSet { } }");
    EXPECT_GE(face.mesh.getNumTriangles(), 2) << points;
  }
  // A comb with very many teeth ends in time.
  std::vector<SbVec3f> comb;
  for (int i = 0; i < 3000; ++i) comb.emplace_back(static_cast<float>(i), i % 2 ? 5.0f : 1.0f, 0.0f);
  comb.emplace_back(3000.0f, -1.0f, 0.0f);
  comb.emplace_back(0.0f, -1.0f, 0.0f);
  std::vector<int> triangles;
  SoTriangulate(comb, false, triangles);
  EXPECT_EQ(triangles.size(), 3 * (comb.size() - 2));
  // So does one that cuts itself everywhere, where hardly any corner can be cut off.
  std::mt19937 random(1);
  std::uniform_real_distribution<float> place;
  std::vector<SbVec3f> tangle;
  for (int i = 0; i < 10000; ++i) tangle.emplace_back(place(random), place(random), 0.0f);
  triangles.clear();
  auto const start = std::chrono::steady_clock::now();
  SoTriangulate(tangle, false, triangles);
  EXPECT_EQ(triangles.size(), 3 * (tangle.size() - 2));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(25));
}

TEST(MeshShapes, CreaseAngleDecidesWhereNormalsAreSmooth) {
  std::string const rest = std::string(CUBE_POINTS) + "IndexedFaceSet { coordIndex " + CUBE_INDEX + " } }";
  EXPECT_EQ(build("Separator { ShapeHints { creaseAngle 1.5 } " + rest).mesh.positions.size(), 24u);
  Built const smooth = build("Separator { ShapeHints { creaseAngle 1.6 } " + rest);
  EXPECT_EQ(smooth.mesh.positions.size(), 8u);
  float const third = 1 / std::sqrt(3.0f);
  for (size_t i = 0; i < 8; ++i) {
    EXPECT_TRUE(smooth.mesh.normals[i].equals(smooth.mesh.positions[i] * third, 1e-4f));
  }
  // Faces that repeat their coordinates are one surface all the same.
  Built const repeated = build(
      "Separator { ShapeHints { creaseAngle 1 } Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 0 0, 1 1 0, 0 1 "
      "0.5 ] } "
      "FaceSet { numVertices [ 3, 3 ] } }");
  ASSERT_EQ(repeated.mesh.positions.size(), 6u);
  for (auto [a, b] : {std::pair{0, 3}, {2, 4}}) {
    auto normalAt = [&](int coord) {
      auto const& all = repeated.mesh.coordIndices;
      return repeated.mesh
          .normals[static_cast<size_t>(std::find(all.begin(), all.end(), coord) - all.begin())];
    };
    EXPECT_TRUE(normalAt(a).equals(normalAt(b), 1e-6f));
  }
}

TEST(MeshShapes, BindingsSpreadMaterialsOverTheRightPlaces) {
  // Two triangles that share an edge, two strips, a line of three points and one of two.
  std::string const points = "Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0, 2 0 0 ] } ";
  std::string const faces = "IndexedFaceSet { coordIndex [ 0 1 2 -1 0 2 3 -1 ] ";
  std::string const lines = "IndexedLineSet { coordIndex [ 0 1 2 -1 3 4 -1 ] ";
  std::string const strips = "IndexedTriangleStripSet { coordIndex [ 0 1 3 2 -1 1 4 2 -1 ] ";
  struct Case {
    std::string shape;
    char const* binding;
    std::vector<int> materials; // of the corners, in the order of the triangles or lines
  };
  Case const cases[] = {
      {faces + "}", "OVERALL", {}},
      {faces + "}", "PER_FACE", {0, 0, 0, 1, 1, 1}},
      {faces + "}", "PER_PART", {0, 0, 0, 1, 1, 1}},
      {faces + "materialIndex [ 7, 5 ] }", "PER_FACE_INDEXED", {7, 7, 7, 5, 5, 5}},
      {faces + "}", "PER_VERTEX", {0, 1, 2, 3, 4, 5}},
      {faces + "}", "PER_VERTEX_INDEXED", {0, 1, 2, 0, 2, 3}},
      {faces + "materialIndex [ 9 8 7 -1 6 5 4 -1 ] }", "PER_VERTEX_INDEXED", {9, 8, 7, 6, 5, 4}},
      {faces + "materialIndex [ -1 ] }", "PER_VERTEX_INDEXED", {0, 1, 2, 0, 2, 3}},
      {lines + "}", "PER_PART", {0, 0, 1, 1, 2, 2}},
      {lines + "materialIndex [ 4 5 6 ] }", "PER_PART_INDEXED", {4, 4, 5, 5, 6, 6}},
      {lines + "}", "PER_FACE", {0, 0, 0, 0, 1, 1}},
      {lines + "}", "PER_VERTEX", {0, 1, 1, 2, 3, 4}},
      {lines + "}", "PER_VERTEX_INDEXED", {0, 1, 1, 2, 3, 4}},
      {strips + "}", "PER_PART", {0, 0, 0, 0, 0, 0, 1, 1, 1}},
      {strips + "}", "PER_FACE", {0, 0, 0, 1, 1, 1, 2, 2, 2}},
      {strips + "}", "PER_VERTEX", {0, 1, 2, 2, 1, 3, 4, 5, 6}},
      {"PointSet { }", "PER_VERTEX", {0, 1, 2, 3, 4}},
      {"LineSet { numVertices [ 2, 3 ] startIndex 0 }", "PER_PART", {0, 0, 1, 1, 2, 2}},
      {"QuadMesh { verticesPerRow 2 verticesPerColumn 2 vertexProperty VertexProperty { vertex [ 0 0 0, 1 0 "
       "0, 0 1 0, 1 1 0 ] } }",
       "PER_FACE",
       {0, 0, 0, 0, 0, 0}},
      {"TriangleStripSet { numVertices 4 }", "PER_VERTEX", {0, 1, 2, 2, 1, 3}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.shape + c.binding);
    Built const b =
        build("Separator { " + points + "MaterialBinding { value " + c.binding + " } " + c.shape + " }");
    std::vector<int> materials;
    for (auto const* indices : {&b.mesh.triangles, &b.mesh.lines, &b.mesh.points}) {
      for (std::uint32_t const i : *indices) {
        if (!b.mesh.materials.empty()) materials.push_back(b.mesh.materials[i]);
      }
    }
    EXPECT_EQ(materials, c.materials);
    expectSound(b.mesh, c.binding);
  }
  // Cube parts: front, back, left, right, top, bottom.
  Built const cube = build("Separator { MaterialBinding { value PER_PART } Cube { } }");
  SbVec3f const sides[6] = {{0, 0, 1}, {0, 0, -1}, {-1, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -1, 0}};
  for (size_t i = 0; i < cube.mesh.positions.size(); ++i) {
    EXPECT_EQ(cube.mesh.normals[i], sides[cube.mesh.materials[i]]);
  }
}

TEST(MeshShapes, GivenNormalsAreBoundAndTooFewAreComputed) {
  std::string const points = "Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] } ";
  std::string const faces = "IndexedFaceSet { coordIndex [ 0 1 2 -1 0 2 3 -1 ] normalIndex [ 1, 0 ] } }";
  std::string const normals = "Normal { vector [ 0 0 1, 0 0.6 0.8 ] } ";
  auto normalsOf = [](Built const& b) {
    std::vector<float> y;
    for (std::uint32_t const i : b.mesh.triangles) y.push_back(b.mesh.normals[i][1]);
    return y;
  };
  using List = std::vector<float>;
  EXPECT_EQ(normalsOf(build("Separator { " + points + normals + "NormalBinding { value PER_FACE } " + faces)),
            (List{0, 0, 0, 0.6f, 0.6f, 0.6f}));
  EXPECT_EQ(normalsOf(build("Separator { " + points + normals + "NormalBinding { value PER_FACE_INDEXED } " +
                            faces)),
            (List{0.6f, 0.6f, 0.6f, 0, 0, 0}));
  EXPECT_EQ(normalsOf(build("Separator { " + points + normals + "NormalBinding { value OVERALL } " + faces)),
            (List(6, 0)));
  DebugErrors errors;
  Built const few = build("Separator { " + points + normals + "NormalBinding { value PER_VERTEX } " + faces);
  EXPECT_EQ(normalsOf(few), List(6, 0));
  EXPECT_EQ(errors.texts.size(), 1u);
  // Lines and points are lit only by normals that are given.
  EXPECT_TRUE(build("Separator { " + points + "LineSet { } }").mesh.normals.empty());
  EXPECT_EQ(build("Separator { " + points + "Normal { vector [ 0 0 1, 0 0 1, 0 0 1, 0 0 1 ] } PointSet { } }")
                .mesh.normals.size(),
            4u);
}

TEST(MeshShapes, BadIndicesLeaveOutWhatIsConcernedAndAreToldOnce) {
  struct Case {
    char const* shape;
    int triangles, lines, points;
  };
  std::string const points = "Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] } ";
  Case const cases[] = {
      {"IndexedFaceSet { coordIndex [ 0 1 9 -1 0 1 2 -1 0 -5 2 3 -1 0 2 3 ] }", 2, 0, 0},
      {"IndexedFaceSet { coordIndex [ 2147483647 -2147483648 0 ] }", 0, 0, 0},
      {"IndexedLineSet { coordIndex [ 0 1 99 -1 2 3 ] }", 0, 1, 0},
      {"IndexedTriangleStripSet { coordIndex [ 0 1 2 3 -1 0 1 2 7 ] }", 2, 0, 0},
      {"FaceSet { numVertices [ 3, 3 ] }", 1, 0, 0},
      {"FaceSet { startIndex -3 }", 0, 0, 0},
      {"FaceSet { numVertices [ 2147483647 ] startIndex 2 }", 0, 0, 0},
      {"PointSet { numPoints 1000000000 }", 0, 0, 4},
      {"PointSet { numPoints 2 startIndex 2147483647 }", 0, 0, 0},
      {"QuadMesh { verticesPerRow 2 verticesPerColumn 2147483647 vertexProperty VertexProperty { vertex [ 0 "
       "0 0, 1 0 0, 0 1 0, 1 1 "
       "0 ] } }",
       2, 0, 0},
  };
  for (Case const& c : cases) {
    DebugErrors errors;
    Built const b = build("Separator { " + points + c.shape + " }");
    EXPECT_EQ(b.mesh.getNumTriangles(), c.triangles) << c.shape;
    EXPECT_EQ(b.mesh.getNumLines(), c.lines) << c.shape;
    EXPECT_EQ(b.mesh.getNumPoints(), c.points) << c.shape;
    EXPECT_EQ(errors.texts.size(), 1u) << c.shape;
    expectSound(b.mesh, c.shape);
  }
  DebugErrors errors;
  EXPECT_EQ(build("IndexedFaceSet { }").mesh.getNumTriangles(), 0);
  EXPECT_EQ(build("FaceSet { }").mesh.getNumTriangles(), 0);
  EXPECT_TRUE(errors.texts.empty()) << "nothing is no fault";
}

TEST(MeshShapes, AVertexPropertyServesItsShapeAlone) {
  std::string const outer = "Coordinate3 { point [ 0 0 0, 9 0 0, 0 9 0 ] } ";
  Built const own = build(
      "Separator { " + outer +
      "FaceSet { vertexProperty VertexProperty { vertex [ 0 0 0, 1 0 0, 0 1 0 ] "
      "normal [ 0 1 0 ] normalBinding OVERALL orderedRGBA [ 0xff0000ff 0xff00ff 0xffff ] materialBinding "
      "PER_VERTEX } } }");
  EXPECT_TRUE(isNear(own.bounds, box(0, 0, 0, 1, 1, 0)));
  EXPECT_EQ(own.mesh.normals.at(0), SbVec3f(0, 1, 0));
  EXPECT_EQ(own.mesh.materials, (std::vector<std::int32_t>{0, 1, 2}));
  Built const after = build("Separator { " + outer +
                            "FaceSet { vertexProperty VertexProperty { vertex [ 0 0 0, 1 0 0, 0 1 0 ] } } "
                            "FaceSet { } }");
  EXPECT_TRUE(isNear(after.bounds, box(0, 0, 0, 9, 9, 0)));
  Built const empty = build("Separator { " + outer + "FaceSet { vertexProperty VertexProperty { } } }");
  EXPECT_TRUE(isNear(empty.bounds, box(0, 0, 0, 9, 9, 0)));
}

TEST(MeshShapes, TextureCoordinatesOnlyWithATextureAndAcrossTheLongestSides) {
  std::string const texture = "Texture2 { image 1 1 1 0xff } ";
  std::string const face = "Coordinate3 { point [ 1 10 5, 1 14 5, 1 14 7, 1 10 7 ] } FaceSet { ";
  EXPECT_TRUE(build("Separator { " + face + "} }").mesh.texCoords.empty());
  EXPECT_TRUE(build("Cube { }").mesh.texCoords.empty());
  EXPECT_EQ(build("Separator { " + texture + "Cube { } }").mesh.texCoords.size(), 24u);

  auto at = [](Built const& b, SbVec3f const& point) {
    for (size_t i = 0; i < b.mesh.positions.size(); ++i) {
      if (b.mesh.positions[i] == point) return b.mesh.texCoords.at(i);
    }
    return SbVec3f(-1, -1, -1);
  };
  Built const automatic = build("Separator { " + texture + face + "} }");
  EXPECT_EQ(at(automatic, SbVec3f(1, 10, 5)), SbVec3f(0, 0, 0));
  EXPECT_EQ(at(automatic, SbVec3f(1, 14, 7)), SbVec3f(1, 0.5f, 0)) << "the shorter side keeps the proportion";
  Built const plane = build("Separator { " + texture +
                            "TextureCoordinatePlane { directionS 0 2 0 directionT 0 0 1 } " + face + "} }");
  EXPECT_EQ(at(plane, SbVec3f(1, 14, 7)), SbVec3f(7, 7, 0));
  Built const given =
      build("Separator { " + texture + "TextureCoordinate2 { point [ 0 0, 1 0, 1 1, 0 1 ] } " + face + "} }");
  EXPECT_EQ(at(given, SbVec3f(1, 14, 7)), SbVec3f(1, 1, 0));
  EXPECT_NE(given.key, automatic.key);
  DebugErrors errors;
  Built const few =
      build("Separator { " + texture + "TextureCoordinate2 { point [ 0 0, 1 0 ] } " + face + "} }");
  EXPECT_EQ(at(few, SbVec3f(1, 14, 7)), SbVec3f(1, 0.5f, 0));
  EXPECT_EQ(errors.texts.size(), 1u);
}

TEST(MeshShapes, TextsStandWhereTheirJustificationPutsThem) {
  Built const left = build("Separator { Font { size 2 } AsciiText { string [ \"HH\", \"H\" ] } }");
  ASSERT_GT(left.mesh.getNumTriangles(), 0) << "there is no font";
  expectSound(left.mesh, "text");
  SbBox3f const bounds = left.mesh.getBounds();
  EXPECT_GE(bounds.getMin()[0], 0);
  EXPECT_NEAR(bounds.getMin()[1], -2, 0.01) << "the second line stands one height lower";
  EXPECT_GT(bounds.getMax()[1], 1);
  EXPECT_LT(bounds.getMax()[1], 2);
  SbBox3f const right =
      build("Separator { Font { size 2 } AsciiText { string \"HH\" justification RIGHT } }").mesh.getBounds();
  EXPECT_LE(right.getMax()[0], 0);
  SbBox3f const center =
      build("Separator { Font { size 2 } AsciiText { string \"HH\" justification CENTER } }")
          .mesh.getBounds();
  EXPECT_NEAR(center.getCenter()[0], 0, 0.05);
  SbBox3f const wide =
      build("Separator { Font { size 2 } AsciiText { string \"HH\" width 50 } }").mesh.getBounds();
  EXPECT_NEAR(wide.getMax()[0], 50, 5);
  // Letters with holes, curves, accents and from beyond the basic plane.
  Built const solid =
      build("Separator { Font { size 2 } Text3 { string \"B8\xc3\xa4\xf0\x9f\x98\x80\" parts ALL } }");
  expectSound(solid.mesh, "solid text");
  EXPECT_GT(volumeOf(solid.mesh), 0);
  EXPECT_EQ(build("Text3 { string \"\" }").mesh.getNumTriangles(), 0);
}
