// Textures with depth, computed coordinates, and colours from a palette.

#include <filesystem>

#include "kestrava/base/SbImageWriter.h"
#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTexture3.h"
#include "tests/render/Picture.h"

namespace {

std::string const WHITE = "Material { diffuseColor 1 1 1 } ";
/// The lower slice is red and green, the upper one blue and white.
std::string const SLICES =
    "Texture3 { images DEPTH 2 2 1 3 0xff0000 0x00ff00 0x0000ff 0xffffff wrapR CLAMP wrapS CLAMP wrapT CLAMP "
    "} ";

} // namespace

TEST(SolidTexture, ExplicitCoordinatesChooseSlices) {
  auto at = [](char const* r) {
    std::string const z = r;
    return Picture("Separator { " + UNLIT + WHITE + SLICES + "TextureCoordinate3 { point [0 0 " + z +
                   ", 1 0 " + z + ", 1 1 " + z + ", 0 1 " + z + "] } " + square(1) + "}");
  };
  EXPECT_TRUE(at("0.1").shows(-0.7f, 0, 255, 0, 0));
  EXPECT_TRUE(at("0.1").shows(0.7f, 0, 0, 255, 0));
  EXPECT_TRUE(at("0.9").shows(-0.7f, 0, 0, 0, 255));
  EXPECT_TRUE(at("0.9").shows(0.7f, 0, 255, 255, 255));
  EXPECT_TRUE(at("0.5").shows(-0.9f, 0, 128, 0, 128, 12));
  EXPECT_TRUE(at("5").shows(-0.7f, 0, 0, 0, 255)); // clamped
}

TEST(SolidTexture, ShapesWithoutCoordinatesFillIt) {
  // Seen from the front (the upper slice) and from behind (the lower one).
  for (char const* shape : {"Cube {}", "Sphere {}", "Complexity { value 1 } Cylinder {}",
                            "IndexedFaceSet { vertexProperty VertexProperty { vertex [-1 -1 -1, 1 -1 -1, 1 1 "
                            "-1, -1 1 -1, -1 -1 1, 1 -1 1, 1 1 1, -1 1 1] } "
                            "coordIndex [0 3 2 1 -1 4 5 6 7 -1] }"}) {
    SCOPED_TRACE(shape);
    std::string const scene = UNLIT + WHITE + SLICES + shape;
    Picture const front("Separator { " + scene + " }");
    EXPECT_TRUE(front.shows(-0.6f, 0, 0, 0, 255, 90));
    EXPECT_GT(front.brightness(0.6f, 0), 500);
    Picture const back("Separator { RotationXYZ { axis Y angle 3.14159265 } " + scene + " }");
    EXPECT_TRUE(back.shows(0.6f, 0, 255, 0, 0, 90));
    EXPECT_TRUE(back.shows(-0.6f, 0, 0, 255, 0, 90));
  }
  Picture const turned("Separator { " + UNLIT + WHITE + SLICES +
                       "Texture3Transform { rotation 0 0 1 3.14159265 center 0.5 0.5 0 } Cube {} }");
  EXPECT_TRUE(turned.shows(0.6f, 0, 0, 0, 255));
}

TEST(SolidTexture, SlicesComeFromFiles) {
  std::string const folder = std::filesystem::temp_directory_path().string() + "/";
  auto file = [&](char const* name, SbVec2i32 size, unsigned char red) {
    SbImage::Bytes bytes;
    for (int i = 0; i < size[0] * size[1]; ++i) bytes.insert(bytes.end(), {red, 0, 100});
    EXPECT_EQ(SbImageWriter::write(SbString(folder + name), SbImage(size, 3, bytes)), "");
    return SbString(folder + name);
  };
  SoRef<SoTexture3> const texture(new SoTexture3);
  texture->filenames.setValues(
      {file("slice0.png", {4, 2}, 10), file("slice1.png", {4, 2}, 20), file("slice2.png", {4, 2}, 30)});
  SbImage const image = texture->getImage();
  ASSERT_EQ(image.getSize(), SbVec3i32(4, 2, 3));
  EXPECT_EQ(image.getPixel(3, 1, 2)[0], 30);
  EXPECT_EQ(image.getSharedBytes(), texture->getImage().getSharedBytes());

  static int count;
  count = 0;
  SoReadError::setHandlerCallback([](SoError const*, void*) { ++count; });
  texture->filenames.set1Value(1, file("other.png", {2, 2}, 1));
  EXPECT_TRUE(texture->getImage().isEmpty());
  EXPECT_TRUE(texture->getImage().isEmpty());
  EXPECT_EQ(count, 1);
  texture->filenames.set1Value(1, SbString(folder + "absent.png"));
  EXPECT_TRUE(texture->getImage().isEmpty());
  EXPECT_EQ(count, 2);
  SoReadError::setHandlerCallback(nullptr);
  texture->filenames.deleteValues(0);
  texture->images = SbImage(SbVec2i32(1, 1), 1, {7});
  EXPECT_EQ(texture->getImage().getDepth(), 1);
}

TEST(SolidTexture, FlatAndSolidTexturesStandSideBySide) {
  Picture const picture("Separator { " + UNLIT + WHITE + "Separator { Translation { translation -1 0 0 } " +
                        SLICES + square(0.5f) +
                        "} Separator { Translation { translation 1 0 0 } Texture2 { image 1 1 3 0x00ffff } " +
                        square(0.5f) + "} Translation { translation 0 1.5 0 } " + square(0.3f) + "}");
  EXPECT_TRUE(picture.shows(-1.3f, 0, 128, 0, 128)); // flat: half way between the slices
  EXPECT_TRUE(picture.shows(1, 0, 0, 255, 255));
  EXPECT_TRUE(picture.shows(0, 1.5f, 255, 255, 255));
}

TEST(Texture, AnImageThatIsTooLargeIsShownCoarser) {
  // Left half red, right half green, wider than most systems can do.
  constexpr int WIDTH = 40000;
  SbImage::Bytes bytes;
  for (int x = 0; x < WIDTH; ++x) {
    bool const left = x < WIDTH / 2;
    bytes.insert(bytes.end(), {static_cast<unsigned char>(left ? 255 : 0), static_cast<unsigned char>(left ? 0 : 255), 0});
  }
  SoRef<SoNode> const root = readScene("Separator { " + UNLIT +
                                       WHITE + "DEF wide Texture2 {} TextureCoordinate2 { point [0 0, 1 0, 1 1, 0 1] } " +
                                       square(1) + "}");
  static_cast<SoTexture2*>(SoNode::getByName("wide"))->image = SbImage(SbVec2i32(WIDTH, 1), 3, std::move(bytes));
  int warnings = 0;
  SoDebugError::setHandlerCallback([](SoError const*, void* data) { ++*static_cast<int*>(data); }, &warnings);
  Picture const picture(root);
  SoDebugError::setHandlerCallback(nullptr);
  EXPECT_LE(warnings, 1);
  EXPECT_TRUE(picture.shows(-0.5f, 0, 255, 0, 0));
  EXPECT_TRUE(picture.shows(0.5f, 0, 0, 255, 0));
}

TEST(TextureCoordinates, PlaneAndReflection) {
  std::string const flag = "Texture2 { image 2 1 3 0xff0000 0x0000ff wrapS CLAMP wrapT CLAMP } ";
  Picture const plane(
      "Separator { " + UNLIT + WHITE + flag +
      "TextureCoordinatePlane { directionS 0 2 0 directionT 1 0 0 } Translation { translation 0 -1 0 } "
      "Coordinate3 { point [-1 0 0, 1 0 0, 1 2 0, -1 2 0] } FaceSet { numVertices 4 } }");
  EXPECT_TRUE(plane.shows(0.8f, -0.8f, 255, 0, 0));
  EXPECT_TRUE(plane.shows(-0.8f, 0.8f, 0, 0, 255));
  // A ball mirrors what lies left on its left side, however it is turned.
  for (char const* turn :
       {"", "RotationXYZ { axis Z angle 1.5707963 } ", "RotationXYZ { axis Y angle 2 } "}) {
    Picture const ball("Separator { " + UNLIT + WHITE + flag + "TextureCoordinateEnvironment {} " + turn +
                       "Complexity { value 1 } Sphere {} }");
    EXPECT_TRUE(ball.shows(-0.6f, 0, 255, 0, 0, 20)) << turn;
    EXPECT_TRUE(ball.shows(0.6f, 0, 0, 0, 255, 20)) << turn;
  }
}

TEST(TextureCoordinates, FarAwayPatternsFade) {
  // A fine chequered pattern seen from far must be grey, not noise.
  Picture const picture("Separator { " + UNLIT + WHITE +
                        "Texture2 { image 2 2 1 0x00 0xff 0xff 0x00 } "
                        "TextureCoordinate2 { point [0 0, 173 0, 173 173, 0 173] } " +
                        square(1.8f) + "}");
  for (float x : {-1.3f, -0.41f, 0.2f, 1.1f}) EXPECT_TRUE(picture.shows(x, x * 0.7f, 128, 128, 128, 24));
}

TEST(ColorIndex, TakesColoursFromAPalette) {
  std::string const faces =
      "MaterialBinding { value PER_FACE } Coordinate3 { point [-1 -1 0, 0 -1 0, 1 -1 0, 1 1 0, 0 1 0, -1 1 "
      "0] }"
      " IndexedFaceSet { coordIndex [0 1 4 5 -1 1 2 3 4 -1] } }";
  Picture const standard("Separator { " + UNLIT + "ColorIndex { index [9, 12] } " + faces);
  EXPECT_TRUE(standard.shows(-0.5f, 0, 255, 0, 0));
  EXPECT_TRUE(standard.shows(0.5f, 0, 0, 0, 255));
  Picture const own("Separator { " + UNLIT + "ColorIndex { index [-1, 4] palette [0 1 0, 1 1 0, 1 0 1] } " +
                    faces);
  EXPECT_TRUE(own.shows(-0.5f, 0, 255, 0, 255));
  EXPECT_TRUE(own.shows(0.5f, 0, 255, 255, 0));
}
