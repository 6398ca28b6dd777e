// What becomes of models: hierarchy, sharing, looks, cameras and lights.

#include <cmath>

#include "foreign_formats_helpers.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoIndexedLineSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoPointLight.h"
#include "kestrava/nodes/SoPointSet.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShapeHints.h"
#include "kestrava/nodes/SoSpotLight.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/render/SoOffscreenRenderArea.h"

using namespace model_test;

namespace {

class ForeignScene : public ForeignFormats {};

SoVertexProperty const& verticesOf(SoVertexShape const* shape) { return *shape->getVertexProperty(); }

/// The picture of what lies within -2 to 2 in x and y, seen along -z without lights.
SbImage render(SoNode* scene) {
  SoRef<SoOrthographicCamera> const camera(new SoOrthographicCamera);
  camera->position = SbVec3f(0, 0, 10);
  camera->farDistance = 20;
  camera->height = 4;
  SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(100, 100));
  area->setBackgroundColor(SbColorRGBA(0, 0, 0));
  area->setCamera(camera);
  area->setSceneGraph(scene);
  SbImage image;
  EXPECT_TRUE(area->renderToImage(image, SoOffscreenRenderArea::OutputFormat()));
  return image;
}

/// The name of the strongest component at a point: "r", "g", "b", "w" for all of them, "-" for none.
std::string hueAt(SbImage const& image, float x, float y) {
  unsigned char const* p = image.getPixel(static_cast<int>((x + 2) * 25), static_cast<int>((y + 2) * 25));
  if (p[0] < 60 && p[1] < 60 && p[2] < 60) return "-";
  if (p[0] > 200 && p[1] > 200 && p[2] > 200) return "w";
  return p[0] > p[1] && p[0] > p[2] ? "r" : p[1] > p[2] ? "g" : "b";
}

} // namespace

TEST_F(ForeignScene, GltfKeepsHierarchySharingAndPlaces) {
  for (char const* name : {"quads.gltf", "quads.glb"}) {
    SoRef<SoNode> const root = readModel(name);
    ASSERT_TRUE(root);
    EXPECT_EQ(pathsTo<SoIndexedFaceSet>(root).size(), 3u) << "places";
    EXPECT_EQ(nodesOf<SoIndexedFaceSet>(root).size(), 2u) << "one mesh is shared";
    EXPECT_EQ(nodesOf<SoMaterial>(root).size(), 2u);
    for (char const* named : {"world", "left", "right", "sheared", "eye", "lamp"}) {
      EXPECT_EQ(nodesOf<SoSeparator>(root, named).size(), 1u) << named;
    }
    EXPECT_TRUE(hasBounds(root, SbVec3f(-2, 0, 0), SbVec3f(1.5f, 4, 0))) << name;
    SoGetBoundingBoxAction action{SbViewportRegion(100, 100)};
    action.apply(nodesOf<SoSeparator>(root, "right")[0]);
    EXPECT_TRUE(isNear(action.getBoundingBox().getMin(), SbVec3f(-1, 0, 0)));
    EXPECT_TRUE(isNear(action.getBoundingBox().getMax(), SbVec3f(1, 1, 0)));
  }
}

TEST_F(ForeignScene, GltfMaterialsBecomeMaterials) {
  SoRef<SoNode> const root = readModel("quads.gltf");
  ASSERT_TRUE(root);
  auto const* const painted = nodesOf<SoMaterial>(root, "painted").at(0);
  EXPECT_TRUE(isNear(painted->diffuseColor[0], SbVec3f(1, 1, 1)));
  EXPECT_NEAR(painted->emissiveColor[0][0], 0.3492f, 1e-4f) << "0.1 on the scale of images";
  EXPECT_EQ(painted->transparency[0], 0.0f);
  auto const* const glass = nodesOf<SoMaterial>(root, "glass").at(0);
  EXPECT_NEAR(glass->transparency[0], 0.25f, 1e-6f);
  EXPECT_GT(glass->shininess[0], painted->shininess[0]) << "smoother";
  EXPECT_GT(glass->specularColor[0][0], glass->diffuseColor[0][0]) << "a metal";
  EXPECT_NEAR(glass->diffuseColor[0][1] / glass->diffuseColor[0][0], 0.7354f, 1e-4f);

  auto const hints = nodesOf<SoShapeHints>(root);
  ASSERT_EQ(hints.size(), 2u);
  EXPECT_EQ(hints[0]->shapeType.getValue(), SoShapeHints::SOLID) << "one-sided";
  EXPECT_EQ(hints[1]->shapeType.getValue(), SoShapeHints::UNKNOWN_SHAPE_TYPE) << "two-sided";

  // Colours of vertices are factors of the material's.
  auto const& tinted = verticesOf(nodesOf<SoIndexedFaceSet>(root, "tinted").at(0));
  ASSERT_EQ(tinted.orderedRGBA.getNum(), 4);
  EXPECT_EQ(tinted.orderedRGBA[0] & 0xffu, 0xbfu);
  EXPECT_EQ(tinted.orderedRGBA[1] >> 8, 0x005e00u);
  EXPECT_EQ(tinted.materialBinding.getValue(), SoVertexProperty::PER_VERTEX_INDEXED);
}

TEST_F(ForeignScene, TexturesStandUprightWhereverTheyComeFrom) {
  SoRef<SoNode> const fromFile = readModel("quads.gltf"), embedded = readModel("quads.glb");
  ASSERT_TRUE(fromFile && embedded);
  auto const* const file = nodesOf<SoTexture2>(fromFile).at(0);
  auto const* const inside = nodesOf<SoTexture2>(embedded).at(0);
  EXPECT_EQ(file->filename.getValue().str(), "quadrants.png") << "relative to the model";
  EXPECT_EQ(file->wrapS.getValue(), SoTexture2::CLAMP);
  EXPECT_EQ(file->wrapT.getValue(), SoTexture2::REPEAT);
  EXPECT_TRUE(inside->filename.getValue().empty());
  EXPECT_FALSE(file->getImage().isEmpty()) << "found beside the model";
  EXPECT_TRUE(file->getImage() == inside->getImage());

  SoRef<SoNode> const house = readModel("house.obj");
  ASSERT_TRUE(house);
  auto const* const tga = nodesOf<SoTexture2>(house).at(0);
  EXPECT_EQ(tga->filename.getValue().str(), "quadrants.tga") << "the model writes it otherwise";
  EXPECT_TRUE(tga->getImage() == file->getImage());

  for (SoNode* model : {fromFile.get(), embedded.get()}) {
    SoRef<SoNode> const scene = io_test::readText("Separator { LightModel { model BASE_COLOR } }");
    static_cast<SoGroup*>(scene.get())->addChild(nodesOf<SoSeparator>(model, "left").at(0));
    SbImage const picture = render(scene);
    EXPECT_EQ(hueAt(picture, -1.75f, 0.25f) + hueAt(picture, -1.25f, 0.25f), "rg") << "below";
    EXPECT_EQ(hueAt(picture, -1.75f, 0.75f) + hueAt(picture, -1.25f, 0.75f), "bw") << "above";
    EXPECT_EQ(hueAt(picture, -0.5f, 0.5f), "-") << "beside";
  }
}

TEST_F(ForeignScene, CamerasAndLightsFollowTheirNodes) {
  SoRef<SoNode> const root = readModel("quads.gltf");
  ASSERT_TRUE(root);
  auto const eyes = pathsTo<SoPerspectiveCamera>(root);
  auto const flats = pathsTo<SoOrthographicCamera>(root);
  ASSERT_TRUE(eyes.size() == 1 && flats.size() == 1);
  auto const* const eye = static_cast<SoPerspectiveCamera*>(eyes[0]->getTail());
  EXPECT_NEAR(eye->heightAngle.getValue(), 0.6f, 1e-5f);
  EXPECT_NEAR(eye->aspectRatio.getValue(), 1.5f, 1e-5f);
  EXPECT_EQ(eye->nearDistance.getValue(), 0.5f);
  EXPECT_EQ(eye->farDistance.getValue(), 50.0f);
  EXPECT_TRUE(isNear(matrixAt(eyes[0]).multVecMatrix(eye->position.getValue()), SbVec3f(0, 0, 10)));
  auto const* const flat = static_cast<SoOrthographicCamera*>(flats[0]->getTail());
  EXPECT_NEAR(flat->height.getValue(), 4, 1e-5f);
  SbVec3f const ahead = flat->orientation.getValue().multVec(SbVec3f(0, 0, -1));
  EXPECT_TRUE(isNear(matrixAt(flats[0]).multDirMatrix(ahead), SbVec3f(0, -1, 0)));
  EXPECT_EQ(nodesOf<SoSwitch>(root).at(0)->whichChild.getValue(), 0) << "the first camera is seen through";

  auto const suns = pathsTo<SoDirectionalLight>(root);
  auto const spots = pathsTo<SoSpotLight>(root);
  auto const lamps = pathsTo<SoPointLight>(root);
  ASSERT_TRUE(suns.size() == 1 && spots.size() == 1 && lamps.size() == 1);
  auto const* const sun = static_cast<SoDirectionalLight*>(suns[0]->getTail());
  EXPECT_TRUE(isNear(matrixAt(suns[0]).multDirMatrix(sun->direction.getValue()), SbVec3f(0, -1, 0)));
  EXPECT_NEAR(sun->intensity.getValue(), 0.5f, 1e-5f);
  EXPECT_EQ(sun->color.getValue(), SbColor(1, 0.5f, 0.25f));
  auto const* const spot = static_cast<SoSpotLight*>(spots[0]->getTail());
  EXPECT_NEAR(spot->cutOffAngle.getValue(), 0.3f, 1e-5f);
  EXPECT_EQ(spot->intensity.getValue(), 1.0f) << "candelas are more than there is";
  auto const* const lamp = static_cast<SoPointLight*>(lamps[0]->getTail());
  EXPECT_TRUE(isNear(matrixAt(lamps[0]).multVecMatrix(lamp->location.getValue()), SbVec3f(3, 4, 5)));

  // Moving the node moves what stands there: they share the transformation.
  auto const* const node = nodesOf<SoSeparator>(root, "lamp").at(0);
  static_cast<SoTransform*>(node->getChild(0))->translation = SbVec3f(7, 8, 9);
  EXPECT_TRUE(isNear(matrixAt(lamps[0]).multVecMatrix(lamp->location.getValue()), SbVec3f(7, 8, 9)));
}

TEST_F(ForeignScene, ObjKeepsPolygonsLinesAndMaterials) {
  SoRef<SoNode> const root = readModel("house.obj");
  ASSERT_TRUE(root);
  auto const faces = nodesOf<SoIndexedFaceSet>(root);
  ASSERT_EQ(faces.size(), 2u);
  std::vector<std::int32_t> const gable{0, 1, 2, 3, 4, -1};
  auto const given = faces[0]->coordIndex.values();
  EXPECT_EQ(std::vector<std::int32_t>(given.begin(), given.end()), gable);
  EXPECT_EQ(nodesOf<SoShapeHints>(root).at(0)->faceType.getValue(), SoShapeHints::UNKNOWN_FACE_TYPE)
      << "concave";
  EXPECT_EQ(verticesOf(faces[1]).vertex.getNum(), 8) << "corners are shared again";
  auto const lines = nodesOf<SoIndexedLineSet>(root);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0]->coordIndex.getNum(), 4) << "one line of three points";
  ASSERT_EQ(nodesOf<SoMaterial>(root).size(), 2u);
  auto const* const front = nodesOf<SoMaterial>(root, "front").at(0);
  EXPECT_NEAR(front->shininess[0], 0.5f, 1e-6f);
  EXPECT_EQ(front->specularColor[0], SbColor(0.5f, 0.5f, 0.5f));
  auto const* const walls = nodesOf<SoMaterial>(root, "walls").at(0);
  EXPECT_EQ(walls->diffuseColor[0], SbColor(0.9f, 0.6f, 0.3f));
  EXPECT_EQ(walls->specularColor[0], SbColor(0, 0, 0)) << "not lit so";
  EXPECT_NEAR(walls->transparency[0], 0.5f, 1e-6f);
}

TEST_F(ForeignScene, TextAndBinaryFormsAreTheSame) {
  std::pair<char const*, char const*> const pairs[] = {{"corner.stl", "corner-binary.stl"},
                                                       {"square.ply", "square-binary.ply"}};
  for (auto const& [text, binary] : pairs) {
    SoRef<SoNode> const a = readModel(text), b = readModel(binary);
    ASSERT_TRUE(a && b);
    auto const* const left = nodesOf<SoIndexedFaceSet>(a).at(0);
    auto const* const right = nodesOf<SoIndexedFaceSet>(b).at(0);
    EXPECT_TRUE(left->coordIndex.isSame(right->coordIndex)) << text;
    EXPECT_TRUE(verticesOf(left).fieldsAreEqual(verticesOf(right))) << text;
  }
  SoRef<SoNode> const stl = readModel("corner.stl"), ply = readModel("square.ply"),
                      points = readModel("points.ply");
  EXPECT_TRUE(hasBounds(stl, SbVec3f(0, 0, 0), SbVec3f(1, 1, 1)));
  auto const& normals = verticesOf(nodesOf<SoIndexedFaceSet>(stl).at(0)).normal;
  EXPECT_TRUE(isNear(normals[normals.getNum() - 1], SbVec3f(1, 1, 1) * (1 / std::sqrt(3.0f))));
  auto const& square = verticesOf(nodesOf<SoIndexedFaceSet>(ply).at(0));
  EXPECT_EQ(square.orderedRGBA[3], 0xffff00ffu);
  auto const* const cloud = nodesOf<SoPointSet>(points).at(0);
  EXPECT_EQ(verticesOf(cloud).vertex.getNum(), 4);
  EXPECT_EQ(verticesOf(cloud).orderedRGBA[1], 0x00ff00ffu);
}

TEST_F(ForeignScene, AxesAndUnitsOfTheFormatBecomeMetresWithYUp) {
  SoRef<SoNode> const dae = readModel("tower.dae"), fbx = readModel("sail.fbx");
  ASSERT_TRUE(dae && fbx);
  EXPECT_TRUE(hasBounds(dae, SbVec3f(0, 1, -1), SbVec3f(1, 4, 0)));
  EXPECT_TRUE(hasBounds(fbx, SbVec3f(0, 1, -1), SbVec3f(0, 3, 0)));
  EXPECT_EQ(nodesOf<SoIndexedFaceSet>(dae).size(), 1u);
  EXPECT_EQ(pathsTo<SoIndexedFaceSet>(dae).size(), 2u);
  auto const cameras = pathsTo<SoPerspectiveCamera>(dae);
  ASSERT_EQ(cameras.size(), 1u);
  auto const* const camera = static_cast<SoPerspectiveCamera*>(cameras[0]->getTail());
  EXPECT_TRUE(isNear(matrixAt(cameras[0]).multVecMatrix(camera->position.getValue()), SbVec3f(0, 0, 10)));
  EXPECT_NEAR(camera->heightAngle.getValue(), 2 * std::atan(std::tan(3.14159265f / 6) / 2), 1e-4f);
  auto const* const canvas = nodesOf<SoMaterial>(fbx, "canvas").at(0);
  EXPECT_NEAR(canvas->diffuseColor[0][2], 0.8f, 1e-6f);
  EXPECT_NEAR(canvas->shininess[0], 0.125f, 1e-6f);
}
