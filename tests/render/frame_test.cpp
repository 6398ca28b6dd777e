// What a frame costs and where its result goes.

#include <epoxy/gl.h>

#include <cstdio>
#include <filesystem>

#include "kestrava/base/SbImageReader.h"
#include "kestrava/base/SoCpuBufferObject.h"
#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "kestrava/render/SoHeadlessContext.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "tests/render/Picture.h"

namespace {

/// Counts debug errors instead of printing them.
class ErrorCount {
 public:
  ErrorCount() { SoDebugError::setHandlerCallback([](SoError const*, void* data) { ++*static_cast<int*>(data); }, &m_count); }
  ~ErrorCount() { SoDebugError::setHandlerCallback(nullptr); }
  int get() const { return m_count; }

 private:
  int m_count = 0;
};

SoRef<SoOffscreenRenderArea> areaOf(SoNode* root) {
  SoRef<SoOffscreenRenderArea> area(new SoOffscreenRenderArea);
  area->setSize(SbVec2i32(64, 64));
  area->setSceneGraph(root);
  return area;
}

int rebuilds(SoOffscreenRenderArea& area) {
  SbImage image;
  EXPECT_TRUE(area.renderToImage(image));
  return area.getGLRenderAction().getDrawList().getNumRebuilds();
}

}  // namespace

TEST(Frame, GraphIsWalkedOnlyAfterAChange) {
  SoRef<SoNode> const root = readScene("Separator { DEF move Translation {} Cube {} }");
  auto const area = areaOf(root);
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  area->setCamera(camera);
  EXPECT_EQ(rebuilds(*area), 1);
  EXPECT_EQ(rebuilds(*area), 1);
  camera->position = SbVec3f(0, 3, 9);
  area->setSize(SbVec2i32(80, 40));
  EXPECT_EQ(rebuilds(*area), 1);
  static_cast<SoTranslation*>(SoNode::getByName("move"))->translation = SbVec3f(1, 0, 0);
  EXPECT_EQ(rebuilds(*area), 2);
  EXPECT_EQ(rebuilds(*area), 2);
}

TEST(Frame, LevelsOfDetailFollowTheCamera) {
  SoRef<SoNode> const root = readScene(
      "Separator { LightModel { model BASE_COLOR } LOD { range 8 "
      "Separator { Material { diffuseColor 1 0 0 } Cube {} } Separator { Material { diffuseColor 0 0 1 } Cube {} } } }");
  auto const area = areaOf(root);
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  camera->farDistance = 100;
  area->setCamera(camera);
  for (float distance : {5.0f, 12.0f, 5.0f}) {
    camera->position = SbVec3f(0, 0, distance);
    SbImage image;
    ASSERT_TRUE(area->renderToImage(image));
    EXPECT_EQ(image.getPixel(32, 32)[distance < 8 ? 0 : 2], 255) << distance;
  }
}

TEST(Frame, OneChangeReplacesOnePage) {
  SoRef<SoSeparator> const root(new SoSeparator);
  SoTranslation* last = nullptr;
  for (int i = 0; i < 3000; ++i) {
    auto* const leaf = new SoSeparator;
    last = new SoTranslation;
    last->translation = SbVec3f(static_cast<float>(i % 60), static_cast<float>(i / 60), 0);
    leaf->addChild(last);
    auto* const cube = new SoCube;
    cube->width = 0.5f + 0.0001f * static_cast<float>(i);
    leaf->addChild(cube);
    root->addChild(leaf);
  }
  auto const area = areaOf(root);
  rebuilds(*area);
  auto const& statistics = area->getGLRenderAction().getRenderer().getStatistics();
  int const pages = statistics.pages, made = statistics.pagesMade;
  EXPECT_GE(pages, 4);
  EXPECT_LT(pages, 40);
  EXPECT_EQ(made, pages);
  last->translation = SbVec3f(5, 5, 5);
  rebuilds(*area);
  EXPECT_EQ(statistics.pagesMade, made + 1);
  EXPECT_EQ(statistics.pages, pages);
}

TEST(Frame, OnlyWhatIsInViewIsDrawn) {
  SoRef<SoNode> const root = readScene(
      "Separator { Array { numElements1 40 separation1 1 0 0 numElements2 40 separation2 0 1 0 "
      "Cube { width 0.5 height 0.5 depth 0.5 } } }");
  auto const area = areaOf(root);
  SoRef<SoPerspectiveCamera> const camera(new SoPerspectiveCamera);
  camera->position = SbVec3f(2, 2, 3);
  area->setCamera(camera);
  rebuilds(*area);
  auto const& statistics = area->getGLRenderAction().getRenderer().getStatistics();
  EXPECT_GT(statistics.rangesSeen, 0);
  EXPECT_GT(statistics.rangesCulled, statistics.rangesSeen);
}

TEST(Frame, RayMeetsWhatIsDrawn) {
  SoRef<SoNode> const root = readScene(
      "Separator { DEF far Separator { Translation { translation 0 0 -5 } Cube {} } "
      "DEF near Separator { Transform { rotation 0 1 0 0.7853982 scaleFactor 2 2 2 } Cube {} } "
      "PickStyle { style UNPICKABLE } Translation { translation 0 0 8 } Cube {} }");
  SoDrawList list;
  list.update(root, {});
  SoDrawList::Hit const hit = list.intersect(SbLine(SbVec3f(0.1f, 0.2f, 20), SbVec3f(0.1f, 0.2f, 0)));
  ASSERT_GE(hit.item, 0);
  EXPECT_NEAR(hit.point[2], 2 * std::sqrt(2.0f) - 0.1f, 1e-4f);
  EXPECT_NEAR(hit.normal[0], hit.normal[2], 1e-5f);
  SoRef<SoPath> const path = list.getPath(hit.item);
  ASSERT_EQ(path->getLength(), 3);
  EXPECT_EQ(path->getHead(), root);
  EXPECT_EQ(path->getNode(1)->getName(), SbName("near"));
  EXPECT_EQ(path->getIndex(2), 1);
  EXPECT_LT(list.intersect(SbLine(SbVec3f(0, 9, 20), SbVec3f(0, 9, 0))).item, 0);
}

TEST(Frame, FilesAndBuffers) {
  SoRef<SoNode> const root = readScene("Separator { GradientBackground { color0 1 0 0 color1 0 0 1 } }");
  auto const area = areaOf(root);
  std::string const folder = std::filesystem::temp_directory_path().string() + "/";
  for (char const* name : {"a.PNG", "a.jpg", "a.Jpeg", "a.tiff", "a.ps", "a.rgb"}) {
    EXPECT_TRUE(area->renderToFile(SbString(folder + name))) << name;
    EXPECT_GT(std::filesystem::file_size(folder + name), 150u) << name;
  }
  SbImage image;
  ASSERT_EQ(SbImageReader::read(SbString(folder + "a.PNG"), image), "");
  EXPECT_GT(image.getPixel(3, 1)[0], 240);

  SoRef<SoCpuBufferObject> const buffer(new SoCpuBufferObject);
  ASSERT_TRUE(area->renderToBuffer(buffer));
  ASSERT_EQ(buffer->getSize(), 64u * 64 * 3);
  auto const* const bytes = static_cast<unsigned char const*>(buffer->map());
  EXPECT_GT(bytes[0], 240);                    // red at the bottom, which comes first
  EXPECT_GT(bytes[64 * 64 * 3 - 1], 240);      // blue at the top
  ASSERT_TRUE(area->renderToBuffer(buffer, SoOffscreenRenderArea::RGBA));
  EXPECT_EQ(buffer->getSize(), 64u * 64 * 4);
  EXPECT_EQ(static_cast<unsigned char const*>(buffer->map())[3], 255);

  ErrorCount const errors;
  EXPECT_FALSE(area->renderToFile(SbString(folder + "a.unknown")));
  area->setSize(SbVec2i32(0, 10));
  EXPECT_FALSE(area->renderToImage(image));
  area->setSize(SbVec2i32(100000, 10));
  EXPECT_FALSE(area->renderToImage(image));
  EXPECT_EQ(errors.get(), 3);
}

TEST(Frame, SceneWithoutCameraIsSeenWhole) {
  for (char const* size : {"0.001 0.001 0.001", "1 1 1", "50 10 3"}) {
    SoRef<SoNode> const root = readScene(std::string("Separator { Translation { translation 7 8 9 } Scale { scaleFactor ") +
                                         size + " } Material { emissiveColor 1 1 1 } Sphere {} }");
    auto const area = areaOf(root);
    area->setBackgroundColor(SbColorRGBA(0, 0, 0));
    SbImage image;
    ASSERT_TRUE(area->renderToImage(image));
    EXPECT_EQ(image.getPixel(32, 32)[0], 255) << size;
    for (int i = 0; i < 64; ++i) EXPECT_EQ(image.getPixel(i, 0)[0] + image.getPixel(0, i)[0], 0) << size;
  }
  SbImage image;
  EXPECT_TRUE(areaOf(nullptr)->renderToImage(image));
  EXPECT_TRUE(areaOf(readScene("Separator {}"))->renderToImage(image));
}

TEST(Frame, HostsContextAndStateStay) {
  auto const context = SoHeadlessContext::make();
  ASSERT_TRUE(context);
  SoHeadlessContext::Current const current(*context);
  ASSERT_TRUE(current.succeeded());
  unsigned texture, array;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glGenVertexArrays(1, &array);
  glBindVertexArray(array);
  glEnable(GL_CULL_FACE);
  glCullFace(GL_FRONT);
  glDisable(GL_DEPTH_TEST);
  glDepthMask(GL_FALSE);
  glClearColor(0.25f, 0.5f, 0.75f, 1);
  glBlendFunc(GL_ONE, GL_ONE);
  glViewport(3, 4, 5, 6);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 5000);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 3);
  glEnable(GL_COLOR_LOGIC_OP);
  glLogicOp(GL_CLEAR);
  glEnable(GL_PRIMITIVE_RESTART);
  glPrimitiveRestartIndex(0);
  unsigned upload;
  glGenBuffers(1, &upload);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, upload);
  glBufferData(GL_PIXEL_UNPACK_BUFFER, 1 << 20, nullptr, GL_STATIC_DRAW);

  unsigned framebuffer, renderbuffer;
  glGenFramebuffers(1, &framebuffer);
  glGenRenderbuffers(1, &renderbuffer);
  glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
  glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 64, 64);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);

  SoRef<SoNode> const root = readScene(
      "Separator { LightModel { model BASE_COLOR } Texture2 { image 1 2 3 0xff0000 0xff0000 } Cube {} ClipPlane {} "
      "Cone {} }");
  SoGLRenderAction action(SbViewportRegion(64, 64));
  action.apply(root);
  SbImage image;
  EXPECT_TRUE(areaOf(root)->renderToImage(image));  // its own context comes and goes
  unsigned char middle[4];
  glReadPixels(32, 32, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, middle);
  EXPECT_GT(middle[0], 150);  // the image as it is, whatever the host does with its own
  EXPECT_LT(middle[1], 20);

  int value[4];
  auto get = [&](unsigned name) {
    glGetIntegerv(name, value);
    return static_cast<unsigned>(value[0]);
  };
  EXPECT_EQ(get(GL_TEXTURE_BINDING_2D), texture);
  EXPECT_EQ(get(GL_VERTEX_ARRAY_BINDING), array);
  EXPECT_EQ(get(GL_FRAMEBUFFER_BINDING), framebuffer);
  EXPECT_EQ(get(GL_CULL_FACE_MODE), static_cast<unsigned>(GL_FRONT));
  EXPECT_EQ(get(GL_BLEND_DST_RGB), static_cast<unsigned>(GL_ONE));
  EXPECT_EQ(get(GL_CURRENT_PROGRAM), 0u);
  EXPECT_EQ(get(GL_DEPTH_WRITEMASK), 0u);
  EXPECT_EQ(get(GL_VIEWPORT), 3u);
  EXPECT_EQ(get(GL_UNPACK_ROW_LENGTH), 5000u);
  EXPECT_EQ(get(GL_PIXEL_UNPACK_BUFFER_BINDING), upload);
  EXPECT_TRUE(glIsEnabled(GL_COLOR_LOGIC_OP));
  EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
  EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
  EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
  EXPECT_FALSE(glIsEnabled(GL_CLIP_DISTANCE0));
  EXPECT_EQ(glGetError(), static_cast<unsigned>(GL_NO_ERROR));
  action.releaseGL();
  EXPECT_EQ(glGetError(), static_cast<unsigned>(GL_NO_ERROR));
}

TEST(SceneManager, AsksForOneRedrawAfterManyChanges) {
  SoRef<SoSceneManager> const manager(new SoSceneManager);
  int calls = 0;
  manager->setRenderCallback([](void* data, SoSceneManager*) { ++*static_cast<int*>(data); }, &calls);
  SoRef<SoNode> const root = readScene("Separator { DEF box Cube {} }");
  manager->setSceneGraph(root);
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(calls, 1);
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(calls, 1);
  auto* const cube = static_cast<SoCube*>(SoNode::getByName("box"));
  cube->width = 1;
  cube->height = 1;
  EXPECT_EQ(calls, 1);
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(calls, 2);
  manager->setSceneGraph(nullptr);
  SoSensorManager::processDelayQueue(false);
  cube->width = 3;
  SoSensorManager::processDelayQueue(false);
  EXPECT_EQ(calls, 3);
  manager->setRenderCallback(nullptr);
}

TEST(SceneManager, RenderAreaIsFoundAmongItsAuditors) {
  SoRef<SoGuiRenderArea> const area(new SoGuiRenderArea);
  SoAuditorList const& auditors = area->getSceneManager()->getImpl()->getAuditors();
  ASSERT_EQ(auditors.getLength(), 1);
  EXPECT_EQ(auditors.getKind(0), SoAuditorList::FIELD);
  EXPECT_EQ(static_cast<SoField*>(auditors.getObject(0))->getContainer(), area);
}
