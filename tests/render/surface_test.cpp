// What surfaces look like: sides, colours, textures, transparency, lights.

#include "tests/render/Picture.h"

namespace {

std::string const RED = "Material { diffuseColor 1 0 0 } ";
/// Stands in front of everything else, so that colours are lit fully.
std::string const LIT = "DirectionalLight { direction 0 0 -1 } ";
std::string const TURNED = "RotationXYZ { axis Y angle 3.14159265 } ";

/// A quarter each: red and green below, blue and white above.
std::string texture(std::string const& fields = "") {
  return "Texture2 { image 2 2 3 0xff0000 0x00ff00 0x0000ff 0xffffff " + fields + "} ";
}

}  // namespace

TEST(Surface, LitCubeStandsInTheMiddle) {
  Picture const picture("Separator { " + LIT + RED + "Cube {} }");
  EXPECT_TRUE(picture.shows(0, 0, 255, 10, 10));
  EXPECT_TRUE(picture.shows(0.9f, -0.9f, 255, 10, 10));
  EXPECT_TRUE(picture.shows(1.2f, 0, 0, 0, 0));
  EXPECT_TRUE(picture.shows(-1.9f, 1.9f, 0, 0, 0));
  // Where there is no light, one goes with the camera.
  EXPECT_GT(Picture("Separator { " + RED + "Cube {} }").brightness(0, 0), 200);
}

TEST(Surface, BackSidesAreDrawnAndLitUnlessSolid) {
  struct {
    char const* hints;
    bool front, back;
  } const cases[] = {
      {"", true, true},
      {"ShapeHints { vertexOrdering COUNTERCLOCKWISE }", true, true},
      {"ShapeHints { vertexOrdering COUNTERCLOCKWISE shapeType SOLID }", true, false},
      {"ShapeHints { vertexOrdering CLOCKWISE shapeType SOLID }", false, true},
      {"ShapeHints { shapeType SOLID }", true, true},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.hints);
    std::string const shape = std::string(c.hints) + RED + square(1);
    EXPECT_TRUE(Picture("Separator { " + LIT + shape + "}").shows(0, 0, c.front ? 255 : 0, c.front ? 10 : 0, c.front ? 10 : 0));
    Picture const back("Separator { " + LIT + TURNED + shape + "}");
    EXPECT_TRUE(back.shows(0, 0, c.back ? 255 : 0, c.back ? 10 : 0, c.back ? 10 : 0));
  }
}

TEST(Surface, MirroredSolidKeepsItsOutside) {
  Picture const picture(
      "Separator { " + LIT + "ShapeHints { vertexOrdering COUNTERCLOCKWISE shapeType SOLID } Scale { scaleFactor -1 1 1 } " + RED +
      "Cube {} }");
  EXPECT_TRUE(picture.shows(0, 0, 255, 10, 10));
}

TEST(Surface, ColoursFollowTheBinding) {
  std::string const colours = "Material { diffuseColor [1 0 0, 0 1 0, 0 0 1, 1 1 1] } ";
  Picture const vertices("Separator { " + UNLIT + colours + "MaterialBinding { value PER_VERTEX } " + square(1) + "}");
  EXPECT_TRUE(vertices.shows(-0.96f, -0.96f, 255, 0, 0, 20));
  EXPECT_TRUE(vertices.shows(0.96f, -0.96f, 0, 255, 0, 20));
  EXPECT_TRUE(vertices.shows(0.96f, 0.96f, 0, 0, 255, 20));
  EXPECT_TRUE(vertices.shows(-0.96f, 0.96f, 255, 255, 255, 20));

  Picture const faces("Separator { " + UNLIT + colours +
                      "MaterialBinding { value PER_FACE } Coordinate3 { point [-1 -1 0, 0 -1 0, 1 -1 0, 1 1 0, 0 1 0, -1 1 0] }"
                      " IndexedFaceSet { coordIndex [0 1 4 5 -1 1 2 3 4 -1] } }");
  EXPECT_TRUE(faces.shows(-0.5f, 0, 255, 0, 0));
  EXPECT_TRUE(faces.shows(0.5f, 0, 0, 255, 0));

  Picture const packed("Separator { " + UNLIT +
                       "FaceSet { numVertices 4 vertexProperty VertexProperty { vertex [-1 -1 0, 1 -1 0, 1 1 0, -1 1 0]"
                       " orderedRGBA [0xff8000ff] materialBinding OVERALL } } }");
  EXPECT_TRUE(packed.shows(0.3f, 0.2f, 255, 128, 0));
}

TEST(Surface, TexturesStandUpright) {
  std::string const coordinates = "TextureCoordinate2 { point [0 0, 1 0, 1 1, 0 1] } ";
  std::string const white = "Material { diffuseColor 1 1 1 } ";
  Picture const picture("Separator { " + UNLIT + white + coordinates + texture() + square(1) + "}");
  EXPECT_TRUE(picture.shows(-0.5f, -0.5f, 255, 0, 0));
  EXPECT_TRUE(picture.shows(0.5f, -0.5f, 0, 255, 0));
  EXPECT_TRUE(picture.shows(-0.5f, 0.5f, 0, 0, 255));
  EXPECT_TRUE(picture.shows(0.5f, 0.5f, 255, 255, 255));

  // Twice as many: repeated, or the rim drawn out.
  std::string const twice = "TextureCoordinate2 { point [0 0, 2 0, 2 2, 0 2] } ";
  Picture const repeated("Separator { " + UNLIT + white + twice + texture() + square(1) + "}");
  EXPECT_TRUE(repeated.shows(0.25f, 0.25f, 255, 0, 0, 16));
  Picture const clamped("Separator { " + UNLIT + white + twice + texture("wrapS CLAMP wrapT CLAMP") + square(1) + "}");
  EXPECT_TRUE(clamped.shows(0.25f, 0.25f, 255, 255, 255));
  Picture const scaled("Separator { " + UNLIT + white + coordinates + texture() +
                       "Texture2Transform { scaleFactor 2 2 } " + square(1) + "}");
  EXPECT_TRUE(scaled.shows(0.25f, 0.25f, 255, 0, 0, 16));
}

TEST(Surface, TextureModels) {
  std::string const coordinates = "TextureCoordinate2 { point [0 0, 1 0, 1 1, 0 1] } ";
  struct {
    char const* texture;
    int red, green, blue;
  } const cases[] = {
      {"Texture2 { image 1 1 3 0x804020 }", 64, 64, 32},                               // 0.5 1 1 multiplied
      {"Texture2 { image 1 1 4 0xff000080 model DECAL }", 192, 127, 127},              // half covered
      {"Texture2 { image 1 1 1 0x80 model BLEND blendColor 1 0 0 }", 191, 127, 127},   // half way to red
      {"Texture2 { image 1 1 1 0x40 }", 32, 64, 64},                                   // grey
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.texture);
    Picture const picture("Separator { " + UNLIT + "Material { diffuseColor 0.5 1 1 } " + coordinates + c.texture +
                          square(1) + "}");
    EXPECT_TRUE(picture.shows(0, 0, c.red, c.green, c.blue));
  }
}

TEST(Surface, CutOutTexturesLetTheBackgroundThrough) {
  // The left half is there, the right one is not; what lies behind is drawn later.
  Picture const picture("Separator { " + UNLIT + "Separator { Material { diffuseColor 1 1 1 } "
                        "TextureCoordinate2 { point [0 0, 1 0, 1 1, 0 1] } "
                        "Texture2 { image 2 1 4 0x00ff00ff 0x00ff0000 wrapS CLAMP } " + square(1, 1) + "} " +
                        RED + square(1.5f) + "}");
  EXPECT_TRUE(picture.shows(-0.7f, 0, 0, 255, 0));
  EXPECT_TRUE(picture.shows(0.7f, 0, 255, 0, 0));
}

TEST(Surface, TransparentSurfacesAreBlendedFromTheBack) {
  auto sheet = [](char const* colour, float z) {
    return "Separator { Material { diffuseColor " + std::string(colour) + " transparency 0.5 } " + square(1, z) + "} ";
  };
  // The nearer one, red, stands first in the graph; opaque blue comes last and lies behind both.
  Picture const picture("Separator { " + UNLIT + sheet("1 0 0", 2) + sheet("0 1 0", 1) +
                        "Material { diffuseColor 0 0 1 } " + square(0.5f) + "}");
  EXPECT_TRUE(picture.shows(0, 0, 128, 64, 64));
  EXPECT_TRUE(picture.shows(0.8f, 0, 128, 64, 0));
}

TEST(Surface, LightsShineFromWhereTheyAre) {
  struct {
    char const* light;
    float bright[2], dark[2];
  } const cases[] = {
      {"DirectionalLight { direction 1 0 0 }", {-0.9f, 0}, {0.9f, 0}},
      {"DirectionalLight { direction 0 -1 0 }", {0, 0.9f}, {0, -0.9f}},
      {"Separator { Rotation { rotation 0 0 1 1.5707963 } } RotationXYZ { axis Z angle 1.5707963 } DirectionalLight { direction 1 0 0 }",
       {0, -0.9f}, {0, 0.9f}},
      {"PointLight { location 5 0 0 }", {0.9f, 0}, {-0.9f, 0}},
      {"SpotLight { location 0 0 3 direction 0 0 -1 cutOffAngle 0.2 }", {0, 0}, {0.8f, 0}},
      {"SpotLight { location 0 5 1 direction 0 -1 0 }", {0, 0.9f}, {0, -0.9f}},
      {"PointLight { location 0 0 9 on FALSE } DirectionalLight { direction -1 0 0 }", {0.9f, 0}, {-0.9f, 0}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.light);
    Picture const picture(std::string("Separator { ") + c.light + " Sphere {} }");
    EXPECT_GT(picture.brightness(c.bright[0], c.bright[1]), 150);
    EXPECT_LT(picture.brightness(c.dark[0], c.dark[1]), 45);
  }
  // Only what follows a light is lit by it.
  Picture const scoped("Separator { Separator { DirectionalLight { direction 0 0 -1 } Translation { translation -1.8 0 0 } "
                       "Sphere { radius 0.2 } } Sphere {} }");
  EXPECT_GT(scoped.brightness(-1.8f, 0), 150);
  EXPECT_LT(scoped.brightness(0, 0), 45);
}

TEST(Surface, HighlightsLieWhereTheLightIsMirrored) {
  std::string const shiny = "Material { diffuseColor 0 0 0.4 specularColor 1 1 1 shininess 0.5 } Sphere {} }";
  Picture const picture("Separator { DirectionalLight { direction -1 0 -1 } " + shiny);
  // Half way between the light and the eye: 22.5 degrees from the middle.
  EXPECT_GT(picture.brightness(0.38f, 0), 600);
  EXPECT_LT(picture.brightness(-0.38f, 0), 200);
}
