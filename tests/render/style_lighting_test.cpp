// Light by the numbers, limits of lights and planes, fog, and what a renderer leaves behind.

#include <epoxy/gl.h>

#include <cmath>

#include "kestrava/base/SoError.h"
#include "kestrava/render/SoHeadlessContext.h"
#include "tests/render/Picture.h"

namespace {

std::string const WHITE = "Material { diffuseColor 1 1 1 ambientColor 0 0 0 } ";

class Warnings {
 public:
  Warnings() {
    SoDebugError::setHandlerCallback([](SoError const*, void* data) { ++*static_cast<int*>(data); }, &count);
  }
  ~Warnings() { SoDebugError::setHandlerCallback(nullptr); }
  int count = 0;
};

} // namespace

TEST(Lighting, FollowsTheFormulas) {
  // What falls on the middle of a square, and on a point 1 to the right of it.
  struct {
    char const* light;
    double middle, side;
  } const cases[] = {
      {"DirectionalLight { direction 0 0 -1 intensity 0.5 }", 0.5, 0.5},
      {"DirectionalLight { direction 1 0 -1 }", std::sqrt(0.5), std::sqrt(0.5)},
      {"PointLight { location 0 0 1 }", 1, std::sqrt(0.5)},
      {"Environment { attenuation 0 0 2 } PointLight { location 0 0 1 }", 0.5, std::sqrt(0.5) / 2},
      {"Environment { attenuation 0 1 0 } PointLight { location 0 0 2 }", 0.5,
       2 / std::sqrt(5.0) / std::sqrt(5.0)},
      {"Environment { attenuation 1 0 1 } PointLight { location 0 0 1 }", 0.5, std::sqrt(0.5) / 3},
      {"SpotLight { location 0 0 1 direction 0 0 -1 cutOffAngle 0.9 }", 1, std::sqrt(0.5)},
      {"SpotLight { location 0 0 1 direction 0 0 -1 cutOffAngle 0.7 }", 1, 0},
      // The exponent of the drop is 128 times its rate.
      {"SpotLight { location 0 0 1 direction 0 0 -1 cutOffAngle 0.9 dropOffRate 0.015625 }", 1,
       std::sqrt(0.5) * 0.5},
      {"DirectionalLight { direction 0 0 -1 intensity 0.25 } PointLight { location 0 0 1 intensity 0.5 }",
       0.75, 0.25 + std::sqrt(0.5) / 2},
      {"PointLight { location 0 0 -1 }", 0, 0}, // shines on the side that is not seen
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.light);
    Picture const picture("Separator { Environment { ambientIntensity 0 } " + std::string(c.light) + " " +
                          WHITE + square(1.5f) + "}");
    int const middle = static_cast<int>(std::lround(c.middle * 255));
    int const side = static_cast<int>(std::lround(c.side * 255));
    EXPECT_TRUE(picture.shows(0, 0, middle, middle, middle, 4));
    EXPECT_TRUE(picture.shows(1, 0, side, side, side, 4));
  }
  Picture const ambient(
      "Separator { Environment { ambientIntensity 0.5 ambientColor 1 0.5 0 } DirectionalLight { direction 0 "
      "0 1 } "
      "Material { ambientColor 0.8 0.8 0.8 emissiveColor 0 0 0.2 } " +
      square(1) + "}");
  EXPECT_TRUE(ambient.shows(0, 0, 102, 51, 51, 3));
}

TEST(Lighting, ManyLightsCountAndTooManyAreToldOnce) {
  auto scene = [](int lights) {
    std::string text = "Separator { Environment { ambientIntensity 0 } ";
    for (int i = 0; i < lights; ++i) text += "DirectionalLight { direction 0 0 -1 intensity 0.02 } ";
    return text + WHITE + square(1) + "}";
  };
  for (int count : {9, 20, 32}) {
    int const value = static_cast<int>(std::lround(count * 0.02 * 255));
    EXPECT_TRUE(Picture(scene(count)).shows(0, 0, value, value, value, 3)) << count;
  }
  Warnings const warnings;
  SoRef<SoNode> const root = readScene(scene(40));
  SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
  area->setSceneGraph(root);
  SbImage image;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(area->renderToImage(image));
    root->touch();
  }
  EXPECT_EQ(warnings.count, 1);
}

TEST(Lighting, ManyClipPlanesCutARoundHole) {
  std::string planes;
  for (int i = 0; i < 14; ++i) {
    double const angle = 2 * M_PI * i / 14;
    planes += "ClipPlane { plane " + std::to_string(std::cos(angle)) + " " + std::to_string(std::sin(angle)) +
              " 0 -1 } ";
  }
  for (char const* style : {"", "DrawStyle { style LINES lineWidth 40 } "}) {
    Picture const picture("Separator { " + UNLIT + WHITE + planes + style + square(1.6f) + "}");
    for (int i = 0; i < 28; ++i) {
      auto const x = static_cast<float>(std::cos(2 * M_PI * i / 28)),
                 y = static_cast<float>(std::sin(2 * M_PI * i / 28));
      EXPECT_TRUE(*style || picture.shows(x * 0.9f, y * 0.9f, 255, 255, 255)) << i;
      EXPECT_TRUE(picture.shows(x * 1.15f, y * 1.15f, 0, 0, 0)) << i << style;
    }
  }
}

TEST(Lighting, FogOfEachKind) {
  // The surface lies 10 before the eye, nothing is seen beyond 20.
  struct {
    char const* kind;
    double clear;
  } const cases[] = {{"NONE", 1}, {"HAZE", 0.5}, {"FOG", std::exp(-2.75)}, {"SMOKE", std::exp(-1.375)}};
  for (auto const& c : cases) {
    Picture const picture("Separator { " + UNLIT + WHITE + "Environment { fogType " + c.kind +
                          " fogColor 0 0 0.5 fogVisibility 20 } " + square(1) + "}");
    int const red = static_cast<int>(std::lround(255 * c.clear)),
              blue = static_cast<int>(std::lround(255 * c.clear + 127.5 * (1 - c.clear)));
    EXPECT_TRUE(picture.shows(0, 0, red, red, blue, 3)) << c.kind;
  }
}

TEST(Resources, EverythingIsReleased) {
  auto const context = SoHeadlessContext::make();
  ASSERT_TRUE(context);
  SoHeadlessContext::Current const current(*context);
  ASSERT_TRUE(current.succeeded());
  auto count = [] {
    int objects = 0;
    for (unsigned name = 1; name < 2000; ++name) {
      objects += glIsBuffer(name) + glIsTexture(name) + glIsVertexArray(name) + glIsProgram(name) +
                 glIsShader(name) + glIsSampler(name) + glIsFramebuffer(name) + glIsRenderbuffer(name);
    }
    return objects;
  };
  std::string scene = "Separator { ImageBackground { image 1 1 3 0xff0000 } ";
  for (int i = 0; i < 300; ++i) {
    scene += "Separator { Texture2 { image 1 1 3 " + std::to_string(i * 700) +
             " } Translation { translation " + std::to_string(i % 20) + " " + std::to_string(i / 20) +
             " 0 } Cube {} } ";
  }
  scene +=
      "Material { transparency 0.5 } Texture3 { images DEPTH 2 1 1 1 0x00 0xff } Cube {} ShaderProgram { "
      "shaderObject [ FragmentShader { "
      "sourceType GLSL_PROGRAM sourceProgram \"uniform sampler2D t; void main() { ksFragColor = texture(t, "
      "ksTexCoord.xy); }\" "
      "parameter ShaderParameterSampler2D { name \"t\" texture Texture2 { image 1 1 1 0x80 } } } ] } Array { "
      "numElements1 50 Sphere {} } }";
  SoRef<SoNode> const root = readScene(scene);
  ASSERT_EQ(count(), 0);
  SoGLRenderAction action(SbViewportRegion(64, 64));
  action.setTransparencyType(SoGLRenderer::SORTED_TRIANGLES);
  // A fault that the host left behind, and a window without a size, spoil nothing.
  glEnable(0xffff);
  action.apply(root);
  action.setViewportRegion(SbViewportRegion(0, 0));
  action.apply(root);
  EXPECT_GT(count(), 300);
  action.releaseGL();
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(glGetError(), static_cast<unsigned>(GL_INVALID_ENUM));
  EXPECT_EQ(glGetError(), static_cast<unsigned>(GL_NO_ERROR));
}
