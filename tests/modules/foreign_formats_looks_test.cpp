// What materials of models become where the formats see things otherwise than the toolkit.

#include "foreign_formats_helpers.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoShapeHints.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTexture2Transform.h"

using namespace model_test;

namespace {

class ForeignLooks : public ForeignFormats {};

/// Two pixels: a red one, mostly clear, and a blue one.
char const* const CLEAR_PNG =
    "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAYAAAD0In+KAAAAEUlEQVQI12P4z8BgzMDw/z8AC/"
    "0DMZ/DPBwAAAAASUVORK5CYII=";

template <class T> std::string bytesOf(std::vector<T> const& values) {
  return std::string(reinterpret_cast<char const*>(values.data()), values.size() * sizeof(T));
}

/// A triangle with texture coordinates and with the rest of a material after its opening brace.
SoRef<SoNode> readTriangle(std::string const& material, std::string const& image = CLEAR_PNG,
                           std::string const& more = "") {
  TemporaryFolder const folder;
  folder.write("triangle.bin", bytesOf<float>({0, 0, 0, 1, 0, 0, 0, 1, 0, /**/ 0, 0, 1, 0, 0, 1}));
  return io_test::readFile(folder.write(
      "triangle.gltf",
      R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
      "buffers":[{"uri":"triangle.bin","byteLength":60}],
      "bufferViews":[{"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":24}],
      "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},
                   {"bufferView":1,"componentType":5126,"count":3,"type":"VEC2"},
                   {"bufferView":1,"componentType":5126,"count":3,"type":"SCALAR","min":[0],"max":[1]}],
      "images":[{"uri":")" +
          image + R"("}],"samplers":[{"wrapS":33648,"wrapT":10497},{"wrapS":33648,"wrapT":33648}],
      "textures":[{"source":0},{"source":0,"sampler":0}],
      "meshes":[{"primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":1},"material":0}]}],
      "materials":[{)" +
          material + "}]" + more + "}"));
}

SoMaterial const& materialOf(SoNode* root) { return *nodesOf<SoMaterial>(root).at(0); }
SoTexture2 const& textureOf(SoNode* root) { return *nodesOf<SoTexture2>(root).at(0); }

} // namespace

TEST_F(ForeignLooks, ClearPixelsCountOnlyWhereTheMaterialBlends) {
  std::string const textured = R"("pbrMetallicRoughness":{"baseColorTexture":{"index":0}})";
  SoRef<SoNode> const opaque = readTriangle(textured);
  SoRef<SoNode> const blended = readTriangle(R"("alphaMode":"BLEND",)" + textured);
  ASSERT_TRUE(opaque && blended);
  EXPECT_EQ(textureOf(blended).getImage().getNumComponents(), 4);
  SbImage const image = textureOf(opaque).getImage();
  ASSERT_EQ(image.getNumComponents(), 3);
  EXPECT_EQ(image.getPixel(0, 0)[0], 255);
  EXPECT_EQ(image.getPixel(1, 0)[2], 255);
}

TEST_F(ForeignLooks, MirroredImagesRepeatInTurns) {
  SoRef<SoNode> const root =
      readTriangle(R"("alphaMode":"BLEND","pbrMetallicRoughness":{"baseColorTexture":{"index":1}})");
  ASSERT_TRUE(root);
  SbImage const image = textureOf(root).getImage();
  ASSERT_EQ(image.getWidth(), 4);
  EXPECT_EQ(image.getHeight(), 1);
  std::string hues;
  for (int x = 0; x < 4; ++x) hues += image.getPixel(x, 0)[0] > 128 ? 'r' : 'b';
  EXPECT_EQ(hues, "rbbr");
  EXPECT_EQ(nodesOf<SoTexture2Transform>(root).at(0)->scaleFactor.getValue(), SbVec2f(0.5f, 1));
}

TEST_F(ForeignLooks, LinearColoursAreBroughtToTheScreensScale) {
  SoRef<SoNode> const root = readTriangle(
      R"("pbrMetallicRoughness":{"metallicFactor":0,"baseColorFactor":[0.2140411,0,1,1]},"emissiveFactor":[0,0.2140411,0])");
  ASSERT_TRUE(root);
  EXPECT_TRUE(isNear(materialOf(root).diffuseColor[0], SbVec3f(0.5f, 0, 1)));
  EXPECT_TRUE(isNear(materialOf(root).emissiveColor[0], SbVec3f(0, 0.5f, 0)));
}

TEST_F(ForeignLooks, WhatGlowsByAnImageDoesNotGlowAllOver) {
  SoRef<SoNode> const root = readTriangle(R"("emissiveFactor":[1,1,1],"emissiveTexture":{"index":0})");
  ASSERT_TRUE(root);
  EXPECT_EQ(materialOf(root).emissiveColor[0], SbColor(0, 0, 0));

  SoRef<SoNode> const sign = readTriangle(
      R"("pbrMetallicRoughness":{"baseColorFactor":[0,0,0,1]},"emissiveFactor":[1,1,1],"emissiveTexture":{"index":0})");
  ASSERT_TRUE(sign);
  EXPECT_TRUE(isNear(materialOf(sign).emissiveColor[0], SbVec3f(1, 1, 1)));
  EXPECT_EQ(textureOf(sign).getImage().getWidth(), 2);
}

TEST_F(ForeignLooks, MetalsKeepTheirColour) {
  SoRef<SoNode> const metal = readTriangle(R"("pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1]})");
  SoRef<SoNode> const mixed = readTriangle(
      R"("pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1],"metallicRoughnessTexture":{"index":0}})");
  ASSERT_TRUE(metal && mixed);
  EXPECT_GE(materialOf(metal).diffuseColor[0][0], 0.49f);
  EXPECT_GT(materialOf(mixed).diffuseColor[0][0], materialOf(metal).diffuseColor[0][0]);
}

TEST_F(ForeignLooks, WhatIsNotShownIsToldOnce) {
  static std::vector<std::string> texts;
  texts.clear();
  SoDebugError::setHandlerCallback(
      [](SoError const* error, void*) { texts.push_back(error->getDebugString().str()); });
  SoRef<SoNode> const root = readTriangle("", CLEAR_PNG, R"(,"animations":[{"channels":[{"sampler":0,
      "target":{"node":0,"path":"translation"}}],"samplers":[{"input":2,"output":0}]}])");
  SoRef<SoNode> const still = readTriangle("");
  SoDebugError::setHandlerCallback(nullptr);
  ASSERT_TRUE(root && still);
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_NE(texts[0].find("triangle.gltf: not shown: 1 animation"), std::string::npos) << texts[0];
}

TEST_F(ForeignLooks, EmbeddedImagesThatCanNotBeReadAreToldWithTheModel) {
  ReadErrors errors;
  SoRef<SoNode> const root = readTriangle(R"("pbrMetallicRoughness":{"baseColorTexture":{"index":0}})",
                                          "data:image/png;base64,bm8gcGljdHVyZQ==");
  ASSERT_TRUE(root);
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_NE(errors.texts[0].find("triangle.gltf: the embedded image"), std::string::npos) << errors.texts[0];
}

TEST_F(ForeignLooks, FacesTurnedAgainstTheirNormalsAreSeenFromWhereTheNormalsPoint) {
  TemporaryFolder const folder;
  auto const facet = [](char const* normal) {
    return std::string("solid s\nfacet normal ") + normal +
           "\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\nendsolid s\n";
  };
  SoRef<SoNode> const front = io_test::readFile(folder.write("front.stl", facet("0 0 1")));
  SoRef<SoNode> const back = io_test::readFile(folder.write("back.stl", facet("0 0 -1")));
  ASSERT_TRUE(front && back);
  EXPECT_EQ(nodesOf<SoShapeHints>(front).at(0)->vertexOrdering.getValue(), SoShapeHints::COUNTERCLOCKWISE);
  EXPECT_EQ(nodesOf<SoShapeHints>(back).at(0)->vertexOrdering.getValue(), SoShapeHints::CLOCKWISE);
}

TEST_F(ForeignLooks, WhatWouldBeInvisibleOrAllHighlightIsShownPlain) {
  TemporaryFolder const folder;
  folder.write("plain.mtl", "newmtl clear\nKd 1 0 0\nKs 1 1 1\nNs 0.2\nd 0\n");
  SoRef<SoNode> const root = io_test::readFile(
      folder.write("plain.obj", "mtllib plain.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl clear\nf 1 2 3\n"));
  ASSERT_TRUE(root);
  EXPECT_EQ(materialOf(root).transparency[0], 0.0f);
  EXPECT_EQ(materialOf(root).specularColor[0], SbColor(0, 0, 0));
}
