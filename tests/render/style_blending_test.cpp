// Transparency of all types, and pictures on transparent ground.

#include <numbers>

#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoRotationXYZ.h"
#include "tests/render/Picture.h"

namespace {

SbImage draw(std::string const& scene, SoGLRenderer::Transparency type, SbColorRGBA const& ground = {0, 0, 0},
             SoOffscreenRenderArea::OutputFormat format = SoOffscreenRenderArea::RGB) {
  return Picture(
             readScene(scene).get(),
             [&](SoOffscreenRenderArea& area) {
               area.getGLRenderAction().setTransparencyType(type);
               area.setBackgroundColor(ground);
             },
             format)
      .image();
}

std::string sheet(char const* colour, float z, char const* transparency = "0.5") {
  return "Separator { Material { diffuseColor " + std::string(colour) + " transparency " + transparency +
         " } " + square(1, z) + "} ";
}

} // namespace

TEST(Blending, TypesOfTransparency) {
  // The nearer sheet, red, stands first in the graph.
  std::string const scene = "Separator { " + UNLIT + sheet("1 0 0", 2) + sheet("0 1 0", 1) + "}";
  struct {
    SoGLRenderer::Transparency type;
    int red, green;
  } const cases[] = {{SoGLRenderer::NONE, 255, 0},
                     {SoGLRenderer::BLEND, 64, 128},
                     {SoGLRenderer::SORTED, 128, 64},
                     {SoGLRenderer::SORTED_TRIANGLES, 128, 64}};
  for (auto const& c : cases)
    EXPECT_TRUE(Picture(draw(scene, c.type)).shows(0.3f, 0.2f, c.red, c.green, 0)) << c.type;
  // Of a screen door half the pixels are open, whichever way one counts.
  SbImage const door = draw(scene, SoGLRenderer::SCREEN_DOOR);
  int red = 0, green = 0;
  for (int y = 40; y < 60; ++y) {
    for (int x = 40; x < 60; ++x) {
      red += door.getPixel(x, y)[0];
      green += door.getPixel(x, y)[1];
    }
  }
  EXPECT_NEAR(red / 400.0, 128, 10);
  EXPECT_LT(green / 400.0, 10); // the same pixels are open in both
}

TEST(Blending, TrianglesThatPassThroughEachOther) {
  // Two crossing sheets of several quads: by shapes one is wholly in front, by triangles each where it is
  // nearer.
  auto strip = [](char const* colour, float slope) {
    std::string text = std::string("Separator { Material { diffuseColor ") + colour +
                       " transparency 0.5 } Coordinate3 { point [";
    for (int i = 0; i <= 10; ++i) {
      float const x = -1 + 0.2f * static_cast<float>(i);
      for (int y : {-1, 1})
        text += std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(slope * x) + ", ";
    }
    return text + "] } QuadMesh { verticesPerRow 2 verticesPerColumn 11 } } ";
  };
  std::string const scene = "Separator { " + UNLIT + strip("1 0 0", 1) + strip("0 1 0", -1) + "}";
  for (float turn : {0.0f, 3.14159265f}) {
    std::string const turned =
        "Separator { RotationXYZ { axis Z angle " + std::to_string(turn) + " } " + scene + "}";
    Picture const picture(draw(turned, SoGLRenderer::SORTED_TRIANGLES));
    EXPECT_TRUE(picture.shows(turn > 0 ? -0.7f : 0.7f, 0.1f, 128, 64, 0)); // red is nearer
    EXPECT_TRUE(picture.shows(turn > 0 ? 0.7f : -0.7f, 0.1f, 64, 128, 0));
  }
}

TEST(Blending, SortedTrianglesThatLooksShareAreDrawnForEach) {
  // The same place twice, in looks that differ in what faces do not show; a corner is nowhere.
  std::string const scene =
      "Separator { " + UNLIT +
      "Material { diffuseColor 1 0 0 transparency 0.5 } Coordinate3 { point [-1 -1 0, 1 -1 0, 1 1 0, -1 1 0, nan 0 0] } "
      "DEF quad IndexedFaceSet { coordIndex [0 1 2 3 -1 0 1 4 -1 1 2 4 -1] } DrawStyle { lineWidth 3 } USE quad }";
  Picture const picture(draw(scene, SoGLRenderer::SORTED_TRIANGLES));
  for (float x : {-0.7f, 0.7f}) EXPECT_TRUE(picture.shows(x, 0.1f, 191, 0, 0)) << x;
}

TEST(Blending, TheOrderFollowsTheViewAndTheScene) {
  SoRef<SoNode> const root = readScene("Separator { " + UNLIT + "DEF turned RotationXYZ { axis Y } " +
                                       sheet("1 0 0", 0.1f) + sheet("0 1 0", -0.1f) + "}");
  auto* const turned = static_cast<SoRotationXYZ*>(SoNode::getByName("turned"));
  SoRef<SoOrthographicCamera> const camera(new SoOrthographicCamera);
  camera->position = SbVec3f(0, 0, 10);
  SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(20, 20));
  area->setSceneGraph(root);
  area->setCamera(camera);
  area->getGLRenderAction().setTransparencyType(SoGLRenderer::SORTED_TRIANGLES);
  auto const redIsInFront = [&] {
    SbImage image;
    EXPECT_TRUE(area->renderToImage(image));
    return image.getPixel(10, 10)[0] > image.getPixel(10, 10)[1];
  };
  EXPECT_TRUE(redIsInFront());
  int const seen = area->getGLRenderAction().getRenderer().getStatistics().rangesSeen;
  EXPECT_TRUE(redIsInFront());
  EXPECT_EQ(area->getGLRenderAction().getRenderer().getStatistics().rangesSeen, seen);
  camera->position = SbVec3f(0, 0, -10);
  camera->orientation = SbRotation(SbVec3f(0, 1, 0), std::numbers::pi_v<float>);
  EXPECT_FALSE(redIsInFront());
  turned->angle = std::numbers::pi_v<float>;
  EXPECT_TRUE(redIsInFront());
}

TEST(Blending, FarSideOfGlassIsSeenThroughTheNearSide) {
  // The far face is green, the near one red; which comes first in the shape must not matter.
  std::string const points =
      "Coordinate3 { point [-1 -1 1, 1 -1 1, 1 1 1, -1 1 1, 1 -1 -1, -1 -1 -1, -1 1 -1, 1 1 -1] } "
      "MaterialBinding { value PER_FACE_INDEXED } ";
  for (char const* faces : {"coordIndex [0 1 2 3 -1 4 5 6 7 -1] materialIndex [0, 1]",
                            "coordIndex [4 5 6 7 -1 0 1 2 3 -1] materialIndex [1, 0]"}) {
    Picture const picture(draw("Separator { " + UNLIT +
                                   "Material { diffuseColor [1 0 0, 0 1 0] transparency 0.5 } " + points +
                                   "IndexedFaceSet { " + faces + " } }",
                               SoGLRenderer::SORTED));
    EXPECT_TRUE(picture.shows(0.2f, 0.1f, 128, 64, 0)) << faces;
  }
}

TEST(Blending, ColoursThatAreNotUsedMakeNothingTransparent) {
  Picture const picture("Separator { " + UNLIT +
                        "Material { diffuseColor [1 0 0, 0 1 0] transparency [0, 0.5] } " + square(1, 1) +
                        "Material { diffuseColor 0 0 1 transparency 0 } " + square(1) + "}");
  EXPECT_TRUE(picture.shows(0, 0, 255, 0, 0));
}

TEST(Blending, PicturesOnTransparentGround) {
  std::string const scene =
      "Separator { " + UNLIT +
      "Translation { translation -1 0 0 } Separator { Material { diffuseColor 1 0 0 transparency 0.5 } " +
      square(0.7f) + "} Translation { translation 2 0 0 } Material { diffuseColor 0 0 1 } " + square(0.7f) +
      "}";
  SbImage const clear =
      draw(scene, SoGLRenderer::SORTED, SbColorRGBA(0, 1, 0, 0), SoOffscreenRenderArea::RGBA);
  auto pixel = [](SbImage const& image, int x) {
    std::vector<int> values(image.getPixel(x, 50), image.getPixel(x, 50) + image.getNumComponents());
    return values;
  };
  EXPECT_EQ(pixel(clear, 50)[3], 0);
  EXPECT_EQ(pixel(clear, 75), (std::vector<int>{0, 0, 255, 255}));
  EXPECT_GT(pixel(clear, 25)[0], 250); // red, not darkened and without green
  EXPECT_LT(pixel(clear, 25)[1], 5);
  EXPECT_NEAR(pixel(clear, 25)[3], 128, 2);
  // Without alpha in the picture the ground is opaque.
  SbImage const flat = draw(scene, SoGLRenderer::SORTED, SbColorRGBA(0, 1, 0, 0));
  EXPECT_EQ(pixel(flat, 50), (std::vector<int>{0, 255, 0}));
  EXPECT_EQ(pixel(flat, 75), (std::vector<int>{0, 0, 255}));
  EXPECT_NEAR(pixel(flat, 25)[0], 128, 2);
  EXPECT_NEAR(pixel(flat, 25)[1], 127, 2);
  // What is not blended is opaque, whatever its material says.
  SbImage const none = draw(scene, SoGLRenderer::NONE, SbColorRGBA(0, 0, 0, 0), SoOffscreenRenderArea::RGBA);
  EXPECT_EQ(pixel(none, 25), (std::vector<int>{255, 0, 0, 255}));
}
