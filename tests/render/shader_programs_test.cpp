// Shader programs that a scene brings along.

#include <algorithm>

#include "kestrava/base/SoError.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoFragmentShader.h"
#include "kestrava/nodes/SoShaderParameter3f.h"
#include "kestrava/nodes/SoShaderProgram.h"
#include "tests/render/Picture.h"

namespace {

/// Keeps error texts of one kind instead of printing them.
template <class Error> class Errors {
 public:
  Errors() {
    Error::setHandlerCallback(
        [](SoError const* error, void* data) {
          static_cast<Errors*>(data)->texts.push_back(error->getDebugString().str());
        },
        this);
  }
  ~Errors() { Error::setHandlerCallback(nullptr); }
  bool mentions(char const* word) const {
    return std::any_of(texts.begin(), texts.end(),
                       [&](auto const& t) { return t.find(word) != std::string::npos; });
  }
  std::vector<std::string> texts;
};

std::string stage(char const* kind, std::string const& source, std::string const& parameters = "") {
  return std::string(kind) + "Shader { sourceType GLSL_PROGRAM sourceProgram \"" + source + "\" parameter [" +
         parameters + "] } ";
}
std::string program(std::string const& stages, char const* name = "") {
  return std::string(name) + "ShaderProgram { shaderObject [" + stages + "] } ";
}

std::string const RED_FRAGMENT = "void main() { ksFragColor = vec4(1.0, 0.0, 0.0, 1.0); }";
std::string const WHITE = "Material { diffuseColor 1 1 1 } ";

} // namespace

TEST(Shaders, EachStageWorksAloneAndTogether) {
  std::string const shift = "void main() { ksTransform(ksPosition + vec3(1.0, 0.0, 0.0), ksNormal); }";
  std::string const pass =
      "out float half_; void main() { half_ = ksPosition.x * 0.5 + 0.5; ksTransform(ksPosition, ksNormal); }";
  std::string const take = "in float half_; void main() { ksFragColor = vec4(half_, 0.0, 0.0, 1.0); }";
  std::string const scene = "Separator { " + UNLIT + "Separator { ";
  std::string const rest =
      WHITE + square(0.5f) + "} Translation { translation 0 -1.5 0 } " + WHITE + square(0.2f) + "}";

  Picture const vertex(scene + program(stage("Vertex", shift)) + rest);
  EXPECT_TRUE(vertex.shows(1, 0, 255, 255, 255));
  EXPECT_TRUE(vertex.shows(0, 0, 0, 0, 0));
  EXPECT_TRUE(vertex.shows(0, -1.5f, 255, 255, 255)); // the program ends with the separator

  Picture const fragment(scene + program(stage("Fragment", RED_FRAGMENT)) + rest);
  EXPECT_TRUE(fragment.shows(0, 0, 255, 0, 0));
  EXPECT_TRUE(fragment.shows(0, -1.5f, 255, 255, 255));

  Picture const both(scene + program(stage("Vertex", pass) + stage("Fragment", take)) + rest);
  EXPECT_TRUE(both.shows(-0.4f, 0, 78, 0, 0, 12));
  EXPECT_TRUE(both.shows(0.4f, 0, 178, 0, 0, 12));

  // A geometry stage: every triangle becomes a smaller one around its middle.
  std::string const shrink =
      "layout(triangles) in; layout(triangle_strip, max_vertices = 3) out; void main() { "
      "vec4 c = (gl_in[0].gl_Position + gl_in[1].gl_Position + gl_in[2].gl_Position) / 3.0; "
      "for (int i = 0; i < 3; ++i) { ksCopyCorner(i); gl_Position = mix(c, gl_in[i].gl_Position, 0.5); "
      "EmitVertex(); } }";
  Picture const geometry(scene + program(stage("Geometry", shrink)) + WHITE + square(1.5f) + "} }");
  EXPECT_TRUE(geometry.shows(0.5f, -0.5f, 255, 255, 255));
  EXPECT_TRUE(geometry.shows(-1.4f, 1.4f, 0, 0, 0));
  EXPECT_TRUE(geometry.shows(0, 0, 0, 0, 0));

  Picture const none(scene +
                     program("FragmentShader { isActive FALSE sourceType GLSL_PROGRAM sourceProgram \"" +
                             RED_FRAGMENT + "\" } ") +
                     rest);
  EXPECT_TRUE(none.shows(0, 0, 255, 255, 255));
}

TEST(Shaders, FixedFunctionsGiveTheFixedPicture) {
  // A program that asks for what the fixed stages do must not be told from them.
  std::string const shader = program(
      stage("Vertex", "void main() { ksTransform(ksPosition, ksNormal); }") +
      stage("Fragment", "void main() { vec4 c = ksTextured(ksLit(ksColor)); ksFragColor = ksFogged(c); }"));
  std::string const before =
      "Separator { PointLight { location 2 2 4 } DirectionalLight { direction 0 0 -1 intensity 0.3 } "
      "ClipPlane { plane 0 1 0 -0.8 } Environment { fogType HAZE fogColor 0 0.2 0 fogVisibility 30 } ";
  std::string after =
      "Texture2 { image 2 2 3 0xff8080 0x80ff80 0x8080ff 0xffffff wrapS CLAMP wrapT CLAMP } "
      "Material { diffuseColor 0.8 0.7 0.6 ambientColor 0.5 0.5 0.5 } ";
  for (int i = 0; i < 6; ++i) {
    after += "Separator { Transform { translation " + std::to_string(i % 3 - 1.0) + " " +
             std::to_string(i / 3 - 0.5) + " 0 rotation 1 1 0 " + std::to_string(i) + " scaleFactor " +
             (i == 4 ? "-0.5" : "0.5") + " 0.4 0.3 } " + (i % 2 ? "Sphere {}" : "Cube {}") + " } ";
  }
  Picture const fixed(before + after + "}"), own(before + shader + after + "}");
  int different = 0;
  for (size_t i = 0; i < fixed.image().getNumBytes(); ++i) {
    different += std::abs(fixed.image().getBytes()[i] - own.image().getBytes()[i]) > 3;
  }
  EXPECT_LT(different, 60); // edges of the clipping plane are not smoothed
  EXPECT_GT(own.brightness(0, 0.5f), 100);
}

TEST(Shaders, ParametersReachTheirVariables) {
  struct {
    char const* declaration;
    char const* parameter;
    char const* expression; // of type float; 1 when the value has arrived
  } const cases[] = {
      {"float v", "ShaderParameter1f { value 0.5", "v * 2.0"},
      {"vec2 v", "ShaderParameter2f { value 0.25 0.75", "v.x + v.y"},
      {"vec3 v", "ShaderParameter3f { value 0.2 0.3 0.5", "dot(v, vec3(1.0))"},
      {"vec4 v", "ShaderParameter4f { value 4 3 2 1", "dot(v, vec4(0.0, 0.0, 0.0, 1.0))"},
      {"int v", "ShaderParameter1i { value -7", "float(v + 8)"},
      {"uint v", "ShaderParameter1i { value 3", "float(v) / 3.0"},
      {"bool v", "ShaderParameter1i { value 1", "v ? 1.0 : 0.0"},
      {"ivec2 v", "ShaderParameter2i { value 3 4", "float(v.y - v.x)"},
      {"ivec3 v", "ShaderParameter3i { value 1 2 3", "float(v.z - v.y)"},
      {"ivec4 v", "ShaderParameter4i { value 1 2 3 4", "float(v.w - v.z)"},
      {"float v[3]", "ShaderParameterArray1f { value [1, 2, 3]", "v[2] - v[1]"},
      {"vec2 v[2]", "ShaderParameterArray2f { value [1 2, 3 4]", "v[1].y - v[1].x"},
      {"vec3 v[2]", "ShaderParameterArray3f { value [1 2 3, 4 5 6]", "v[1].z - v[1].y"},
      {"vec4 v[2]", "ShaderParameterArray4f { value [1 2 3 4, 5 6 7 8, 9 9 9 9]", "v[1].w - v[1].z"},
      {"int v[2]", "ShaderParameterArray1i { value [5, 6]", "float(v[1] - v[0])"},
      {"mat4 v", "ShaderParameterMatrix { value 1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1",
       "(v * vec4(0.0, 0.0, 0.0, 1.0)).x - 4.0"},
      {"mat3 v", "ShaderParameterMatrix { value 1 2 3 0 4 5 6 0 7 8 9 0 0 0 0 1", "v[2][1] - v[2][0]"},
      {"mat4 v[2]",
       "ShaderParameterMatrixArray { value [1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1, 3 0 0 0 0 4 0 0 0 0 1 0 0 0 0 "
       "1]",
       "v[1][1][1] - v[1][0][0]"},
      {"sampler2D v", "ShaderParameterSampler2D { texture Texture2 { image 1 1 3 0xff0000 }",
       "texture(v, vec2(0.5)).r"},
      {"sampler3D v", "ShaderParameterSampler3D { texture Texture3 { images DEPTH 1 1 1 3 0xff0000 }",
       "texture(v, vec3(0.5)).r"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.declaration);
    Errors<SoDebugError> errors;
    std::string const source =
        "uniform " + std::string(c.declaration) + "; void main() { float e = " + c.expression +
        "; ksFragColor = vec4(abs(e - 1.0) < 0.001 ? vec3(0.0, 1.0, 0.0) : vec3(1.0, 0.0, 0.0), 1.0); }";
    Picture const picture("Separator { " +
                          program(stage("Fragment", source, std::string(c.parameter) + " name \"v\" }")) +
                          square(1) + "}");
    EXPECT_TRUE(picture.shows(0, 0, 0, 255, 0));
    EXPECT_TRUE(errors.texts.empty()) << errors.texts[0];
  }
}

TEST(Shaders, SamplerWithoutTextureReadsThatOfTheScene) {
  std::string const source =
      "uniform sampler2D v; void main() { ksFragColor = vec4(texture(v, ksTexCoord.xy).bgr, 1.0); }";
  Picture const picture("Separator { " +
                        program(stage("Fragment", source, "ShaderParameterSampler2D { name \"v\" }")) +
                        "Texture2 { image 2 1 3 0xff0000 0x00ff00 wrapS CLAMP } TextureCoordinate2 { point "
                        "[0 0, 1 0, 1 1, 0 1] } " +
                        square(1) + "}");
  EXPECT_TRUE(picture.shows(-0.8f, 0, 0, 0, 255));
  EXPECT_TRUE(picture.shows(0.8f, 0, 0, 255, 0));
}

TEST(Shaders, NodesWithTheSameTextDoNotSeeEachOthersValues) {
  std::string const source =
      "uniform float v = 0.2; uniform vec3 a[2]; uniform mat3 m = mat3(0.4); uniform sampler2D t; uniform bool b; "
      "void main() { ksFragColor = vec4(b ? 0.0 : v, a[1].x + m[1][1], texture(t, vec2(0.5)).b, 1.0); }";
  std::string const all =
      "ShaderParameter1f { name \"v\" value 1 } ShaderParameterArray3f { name \"a\" value [0 0 0, 0.6 0 0] } "
      "ShaderParameterMatrix { name \"m\" value 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 } ShaderParameter1i { name \"b\" } "
      "ShaderParameterSampler2D { name \"t\" texture Texture2 { image 1 1 3 0x0000ff } }";
  auto const shape = [&](float x, std::string const& parameters) {
    return "Separator { Translation { translation " + std::to_string(x) + " 0 0 } " +
           program(stage("Fragment", source, parameters)) + square(0.5f) + "} ";
  };
  Picture const picture("Separator { " + shape(-1, all) + shape(1, "") + "}");
  EXPECT_TRUE(picture.shows(-1, 0, 255, 153, 255));
  EXPECT_TRUE(picture.shows(1, 0, 51, 102, 0));
}

TEST(Shaders, PartsOfArraysAndNamesLikeTheToolkits) {
  std::string const source =
      "uniform float v[4]; uniform float ksGlow; uniform sampler2D t[2]; void main() { "
      "ksFragColor = vec4(v[0] + v[1] * 0.1, v[2] + v[3], ksGlow * texture(t[0], vec2(0.5)).g * texture(t[1], "
      "vec2(0.5)).b, 1.0); }";
  std::string const parameters =
      "ShaderParameter1f { name \"v[1]\" value 4 } ShaderParameterArray1f { name \"v[2]\" value [0.5, 0.3, 7, 8] } "
      "ShaderParameter1f { name \"v[4]\" value 9 } ShaderParameter1f { name \"v[]\" value 9 } "
      "ShaderParameter1f { name \"v[-1]\" value 9 } ShaderParameter1f { name \"ksGlow\" value 1 } "
      "ShaderParameterSampler2D { name \"t[0]\" texture Texture2 { image 1 1 3 0x00ff00 } } "
      "ShaderParameterSampler2D { name \"t[1]\" texture Texture2 { image 1 1 3 0x0000ff } }";
  Errors<SoDebugError> errors;
  Picture const picture("Separator { " + program(stage("Fragment", source, parameters)) + square(1) + "}");
  EXPECT_TRUE(picture.shows(0, 0, 102, 204, 255));
  EXPECT_TRUE(errors.texts.empty()) << errors.texts[0];
}

TEST(Shaders, FaultsAreToldOnceAndTheShapeIsDrawnAsUsual) {
  SoRef<SoNode> const root =
      readScene("Separator { " + UNLIT +
                program(stage("Fragment", "\nvoid main() {\n  ksFragColor = nonsense;\n}"), "DEF wrong ") +
                "Material { diffuseColor 0 0 1 } " + square(1) +
                "DEF box Cube { width 0.1 } DrawStyle { lineWidth 4 } LineSet { numVertices 4 } }");
  SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(50, 50));
  area->setSceneGraph(root);
  Errors<SoDebugError> errors;
  SbImage image;
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(area->renderToImage(image));
  root->touch();
  ASSERT_TRUE(area->renderToImage(image));
  EXPECT_EQ(image.getPixel(25, 25)[2], 255);
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_TRUE(errors.mentions("wrong") && errors.mentions("nonsense") && errors.mentions("3"))
      << errors.texts[0];
  // Mended, it is drawn; broken again, it is told again.
  auto* const node = static_cast<SoShaderProgram*>(SoNode::getByName("wrong"));
  auto* const shader = static_cast<SoFragmentShader*>(node->shaderObject[0]);
  SbString const broken = shader->sourceProgram.getValue();
  shader->sourceProgram = SbString(RED_FRAGMENT);
  ASSERT_TRUE(area->renderToImage(image));
  EXPECT_EQ(image.getPixel(25, 25)[0], 255);
  EXPECT_EQ(errors.texts.size(), 1u);
  shader->sourceProgram = broken;
  ASSERT_TRUE(area->renderToImage(image));
  EXPECT_EQ(errors.texts.size(), 2u);
}

TEST(Shaders, OddProgramsAreToldAndHarmless) {
  struct {
    std::string objects;
    char const* told; // null: nothing
  } const cases[] = {
      {stage("Vertex", "out vec3 a; void main() { a = ksPosition; ksTransform(ksPosition, ksNormal); }") +
           stage("Fragment", "in vec2 a; void main() { ksFragColor = vec4(a, 0.0, 1.0); }"),
       "fit"},
      {stage("Fragment", "#version 110\nvoid main() { gl_FragColor = vec4(1.0); }"), "compile"},
      {stage("Fragment", "uniform int v; void main() { ksFragColor = vec4(0.0, 0.0, float(v + 1), 1.0); }",
             "ShaderParameter1f { name \"v\" value 3 }"),
       "'v'"},
      {stage("Fragment", "void main() { ksFragColor = vec4(0.0, 0.0, 1.0, 1.0); }",
             "ShaderParameter1f { name \"absent\" }"),
       nullptr},
      {stage("Fragment", "void main() { ksFragColor = vec4(0.0, 0.0, 1.0, 1.0); }", "Cube {}"), "parameter"},
      {"Cube {}", "Cube"},
      {stage("Fragment", RED_FRAGMENT) + stage("Fragment", RED_FRAGMENT), "two"},
      {stage("Geometry", "layout(lines) in; layout(points, max_vertices = 1) out; void main() {}"),
       "primitive"},
      {stage("Fragment", "out vec4 mine; void main() { mine = vec4(0.0, 0.0, 1.0, 1.0); }"), nullptr},
      {stage("Fragment",
             "#version 330\n#extension GL_ARB_shading_language_420pack : enable\nvoid main() { ksFragColor = "
             "vec4(0.0, 0.0, 1.0, 1.0); }"),
       nullptr},
      {"", nullptr},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.objects);
    Errors<SoDebugError> errors;
    Picture const picture("Separator { " + UNLIT + program(c.objects) + "Material { diffuseColor 0 0 1 } " +
                          square(1) + "}");
    EXPECT_GT(picture.brightness(0, 0), 200);
    EXPECT_EQ(errors.texts.size(), c.told ? 1u : 0u) << (errors.texts.empty() ? "" : errors.texts[0]);
    EXPECT_TRUE(!c.told || errors.mentions(c.told)) << (errors.texts.empty() ? "" : errors.texts[0]);
  }
}

TEST(Shaders, FilesAreReadAndMissed) {
  SoInput::addInMemoryTextFile("shaders_test_red.frag", SbString(RED_FRAGMENT));
  SoRef<SoNode> const root = readScene(
      "Separator { " + UNLIT +
      "ShaderProgram { shaderObject DEF stage FragmentShader { sourceProgram \"shaders_test_red.frag\" } } " +
      WHITE + square(1) + "}");
  EXPECT_TRUE(Picture(root).shows(0, 0, 255, 0, 0));
  auto* const shader = static_cast<SoFragmentShader*>(SoNode::getByName("stage"));
  Errors<SoReadError> errors;
  shader->sourceProgram = SbString("shaders_test_absent.frag");
  EXPECT_TRUE(Picture(root).shows(0, 0, 255, 255, 255));
  EXPECT_TRUE(Picture(root).shows(0, 0, 255, 255, 255));
  ASSERT_EQ(errors.texts.size(), 1u);
  EXPECT_TRUE(errors.mentions("shaders_test_absent.frag"));
  SoInput::addInMemoryTextFile("shaders_test_absent.frag",
                               "void main() { ksFragColor = vec4(0.0, 1.0, 0.0, 1.0); }");
  shader->reload();
  EXPECT_TRUE(Picture(root).shows(0, 0, 0, 255, 0));
}

TEST(Shaders, ParametersChangeWithoutCompilingAndProgramsAreShared) {
  std::string const source = "uniform vec3 tint; void main() { ksFragColor = vec4(tint, 1.0); }";
  std::string scene =
      "Separator { " +
      program(stage("Fragment", source, "DEF tint ShaderParameter3f { name \"tint\" value 1 0 0 }")) +
      square(1);
  for (int i = 0; i < 300; ++i) {
    scene += "Separator { Translation { translation 0 0 -2 } Cube { width " + std::to_string(1 + i * 0.001) +
             " } } ";
  }
  SoRef<SoNode> const root = readScene(scene + "}");
  SoRef<SoOffscreenRenderArea> const area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(50, 50));
  area->setSceneGraph(root);
  SbImage image;
  ASSERT_TRUE(area->renderToImage(image));
  EXPECT_EQ(image.getPixel(25, 25)[0], 255);
  auto const& statistics = area->getGLRenderAction().getRenderer().getStatistics();
  EXPECT_LT(statistics.drawCalls, 5); // many shapes under one program are few pages
  int const programs = statistics.programsMade, pages = statistics.pagesMade;
  static_cast<SoShaderParameter3f*>(SoNode::getByName("tint"))->value = SbVec3f(0, 1, 0);
  ASSERT_TRUE(area->renderToImage(image));
  EXPECT_EQ(image.getPixel(25, 25)[0], 0);
  EXPECT_EQ(image.getPixel(25, 25)[1], 255);
  EXPECT_EQ(statistics.programsMade, programs);
  EXPECT_EQ(statistics.pagesMade, pages);
}

TEST(Shaders, CopiesHaveValuesOfTheirOwn) {
  std::string const matrices =
      "1 0 0 0 0 1 0 0 0 0 1 0 -1.2 0 0 1, 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1, 1 0 0 0 0 1 0 0 0 0 1 0 1.2 0 0 "
      "1";
  std::string const shader =
      program(stage("Vertex",
                    "in vec3 tint; in float lift; out vec3 t; void main() { t = tint; "
                    "ksTransform(ksPosition + vec3(0.0, lift, 0.0), ksNormal); }") +
              stage("Fragment", "in vec3 t; void main() { ksFragColor = vec4(t, 1.0); }"));
  std::string const copies =
      "MultipleCopy { matrix [" + matrices +
      "] instanceParameter [InstanceParameter3f { name \"tint\" value [1 0 0, 0 1 0, 0 0 1] }, "
      "InstanceParameter1f { name \"lift\" value [0.5, 0] }] ";
  // A fine mesh is drawn in places, a coarse one merged; a cube stands without parameters.
  for (char const* shape :
       {"Cube { width 0.5 height 0.5 depth 0.5 }", "Complexity { value 1 } Sphere { radius 0.25 }"}) {
    SCOPED_TRACE(shape);
    std::string many;
    for (int i = 0; i < 8; ++i) many += copies + shape + " } ";
    Picture const picture("Separator { " + shader + many +
                          "Translation { translation 0 -1.5 0 } Cube { width 0.3 height 0.3 depth 0.3 } }");
    EXPECT_TRUE(picture.shows(-1.2f, 0.5f, 255, 0, 0));
    EXPECT_TRUE(picture.shows(0, 0, 0, 255, 0));
    EXPECT_TRUE(picture.shows(1.2f, 0, 0, 0, 255));
    EXPECT_TRUE(picture.shows(0, -1.5f, 0, 0, 0));
  }
}
