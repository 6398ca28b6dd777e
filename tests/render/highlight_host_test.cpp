// The mark over a picture that somebody else's action draws.

#include <epoxy/gl.h>

#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/render/SoHeadlessContext.h"
#include "kestrava/render/SoHighlightRenderAction.h"
#include "kestrava/render/SoSceneManager.h"
#include "tests/render/Picture.h"

namespace {

/// A host's scene of a square on the left and one on the right, in the host's scene manager; a selection
/// beside the host's graph holds the scene as its child.
class HostView : public ::testing::Test {
 protected:
  HostView()
      : m_scene(static_cast<SoGroup*>(
            readScene("Separator { " + UNLIT +
                      "BaseColor { rgb 0 0 1 } Separator { Translation { translation -1 0 0 } " +
                      square(0.5f) + "} Separator { Translation { translation 1 0 0 } " + square(0.5f) +
                      "} }")
                .release())) {
    SoRef<SoOrthographicCamera> camera(new SoOrthographicCamera);
    camera->position = SbVec3f(0, 0, 10);
    camera->farDistance = 20;
    camera->height = 4;
    m_selection->addChild(m_scene);
    m_manager->setSceneGraph(m_scene);
    m_manager->setCamera(camera);
    m_manager->setBackgroundColorRGBA(SbColorRGBA(0, 0, 0));
    m_area->setSize(SbVec2i32(100, 100));
    m_area->setSceneManager(m_manager);
  }
  void selectLeft() {
    SoRef<SoPath> const path(new SoPath(m_selection));
    for (int index : {0, 2}) ASSERT_TRUE(path->append(index));
    m_selection->select(path);
  }
  Picture draw() {
    SbImage image;
    EXPECT_TRUE(m_area->renderToImage(image));
    return Picture(image);
  }
  static int countMarked(Picture const& picture, float x0, float x1) {
    int count = 0;
    for (float x = x0; x < x1; x += 0.04f) {
      for (float y = -2; y < 2; y += 0.04f) count += bool(picture.shows(x, y, 255, 140, 0, 12));
    }
    return count;
  }
  SoSceneManagerImpl& impl() { return *m_manager->getImpl(); }

  SoRef<SoGroup> m_scene;
  SoRef<SoSelection> m_selection{new SoSelection};
  SoRef<SoSceneManager> m_manager{new SoSceneManager};
  SoRef<SoOffscreenRenderArea> m_area{new SoOffscreenRenderArea};
};

TEST_F(HostView, IsMarkedInEachStyleAndOnlyWhileTheManagerIs) {
  selectLeft();
  Picture const plain = draw();
  EXPECT_EQ(countMarked(plain, -2, 2), 0);
  SoGLRenderAction* const hostAction = m_manager->getGLRenderAction();
  SoLineHighlightRenderAction lines;
  SoBoxHighlightRenderAction box;
  SoHaloHighlightRenderAction halo;
  for (SoHighlightRenderAction* action :
       std::initializer_list<SoHighlightRenderAction*>{&lines, &box, &halo}) {
    std::string const style = action->getTypeId().getName().str();
    impl().setHighlight(action, m_selection);
    EXPECT_EQ(draw().image(), plain.image()) << style << " without a mark";
    impl().setOwnVantle(1);
    Picture const marked = draw();
    EXPECT_GT(countMarked(marked, -2, 0), 20) << style;
    EXPECT_EQ(countMarked(marked, 0.2f, 2), 0) << style;
    EXPECT_TRUE(marked.shows(-1.2f, 0, 0, 0, 255)) << style << " covers the shape";
    action->setVisible(false);
    EXPECT_EQ(draw().image(), plain.image()) << style << ", invisible";
    action->setVisible(true);
    EXPECT_EQ(draw().image(), marked.image()) << style << ", the second time";
    impl().setOwnVantle(0);
    EXPECT_EQ(draw().image(), plain.image()) << style << ", the mark taken back";
  }
  EXPECT_EQ(m_manager->getGLRenderAction(), hostAction);
  impl().setHighlight(nullptr, nullptr);
}

TEST_F(HostView, FollowsTheHostsCameraSceneAndAction) {
  selectLeft();
  SoBoxHighlightRenderAction box;
  impl().setHighlight(&box, m_selection);
  impl().setOwnVantle(1);
  draw();
  // The camera moves: the mark stays around the square.
  static_cast<SoOrthographicCamera*>(m_manager->getCamera())->position = SbVec3f(-2, 0, 10);
  Picture const moved = draw();
  EXPECT_GT(countMarked(moved, 0, 2), 20);
  EXPECT_EQ(countMarked(moved, -2, 0), 0);
  static_cast<SoOrthographicCamera*>(m_manager->getCamera())->position = SbVec3f(0, 0, 10);
  // An action of the host's own stays, and the mark comes over it.
  SoGLRenderAction own;
  m_manager->setGLRenderAction(&own);
  EXPECT_GT(countMarked(draw(), -2, 0), 20);
  EXPECT_EQ(m_manager->getGLRenderAction(), &own);
  // Another scene has nothing to do with the selection.
  m_manager->setSceneGraph(
      readScene("Separator { " + UNLIT + "BaseColor { rgb 0 1 0 } " + square(0.2f) + "}"));
  EXPECT_EQ(countMarked(draw(), -2, 2), 0);
  m_manager->setSceneGraph(m_scene);
  // A selected node that goes takes its mark with it.
  m_scene->removeChild(2);
  EXPECT_EQ(countMarked(draw(), -2, 2), 0);
  impl().setHighlight(nullptr, nullptr);
  m_area->setSceneManager(nullptr);
}

TEST_F(HostView, HidesAHaloUnlessItIsAlwaysVisible) {
  m_scene->addChild(readScene("Separator { " + UNLIT + "BaseColor { rgb 0 1 0 } " + square(1.9f, 1) + "}"));
  selectLeft();
  SoHaloHighlightRenderAction halo;
  impl().setHighlight(&halo, m_selection);
  impl().setOwnVantle(1);
  EXPECT_EQ(countMarked(draw(), -2, 2), 0);
  halo.setHaloAlwaysVisible(true);
  EXPECT_GT(countMarked(draw(), -2, 0), 20);
  impl().setHighlight(nullptr, nullptr);
}

/// A framebuffer of the test's own in a context of its own, as a host has.
class HostContext {
 public:
  explicit HostContext(unsigned depthFormat) : m_context(SoHeadlessContext::make()), m_current(*m_context) {
    glGenFramebuffers(1, &m_framebuffer);
    glGenRenderbuffers(2, m_buffers);
    glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
    unsigned const formats[] = {GL_RGBA8, depthFormat};
    unsigned const depth =
        depthFormat == GL_DEPTH24_STENCIL8 ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT;
    unsigned const places[] = {GL_COLOR_ATTACHMENT0, depth};
    for (int i : {0, 1}) {
      glBindRenderbuffer(GL_RENDERBUFFER, m_buffers[i]);
      glRenderbufferStorage(GL_RENDERBUFFER, formats[i], 100, 100);
      glFramebufferRenderbuffer(GL_FRAMEBUFFER, places[i], GL_RENDERBUFFER, m_buffers[i]);
    }
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), unsigned(GL_FRAMEBUFFER_COMPLETE));
  }
  ~HostContext() {
    glDeleteFramebuffers(1, &m_framebuffer);
    glDeleteRenderbuffers(2, m_buffers);
  }
  Picture picture() const {
    SbImage::Bytes bytes(3 * 100 * 100);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, 100, 100, GL_RGB, GL_UNSIGNED_BYTE, bytes.data());
    return Picture(SbImage(SbVec2i32(100, 100), 3, std::move(bytes)));
  }

 private:
  std::unique_ptr<SoHeadlessContext> m_context;
  SoHeadlessContext::Current m_current;
  unsigned m_framebuffer = 0, m_buffers[2] = {};
};

TEST_F(HostView, LeavesOpenGLAsTheHostHasIt) {
  selectLeft();
  m_area->setSceneManager(nullptr);
  HostContext const host(GL_DEPTH24_STENCIL8);
  struct {
    unsigned name;
    int value;
  } const states[] = {{GL_STENCIL_FUNC, GL_NOTEQUAL},
                      {GL_STENCIL_REF, 3},
                      {GL_STENCIL_VALUE_MASK, 0x0f},
                      {GL_STENCIL_BACK_FUNC, GL_LESS},
                      {GL_STENCIL_BACK_REF, 5},
                      {GL_STENCIL_WRITEMASK, 0x3c},
                      {GL_STENCIL_PASS_DEPTH_PASS, GL_INCR},
                      {GL_STENCIL_FAIL, GL_ZERO},
                      {GL_STENCIL_CLEAR_VALUE, 7},
                      {GL_DEPTH_FUNC, GL_GREATER},
                      {GL_STENCIL_TEST, 1},
                      {GL_SCISSOR_TEST, 1},
                      {GL_POLYGON_MODE, GL_LINE},
                      {GL_CURRENT_PROGRAM, 0},
                      {GL_VERTEX_ARRAY_BINDING, 0},
                      {GL_ARRAY_BUFFER_BINDING, 0}};
  glStencilFuncSeparate(GL_FRONT, GL_NOTEQUAL, 3, 0x0f);
  glStencilFuncSeparate(GL_BACK, GL_LESS, 5, 0x0f);
  glStencilMask(0x3c);
  glStencilOp(GL_ZERO, GL_KEEP, GL_INCR);
  glClearStencil(7);
  glDepthFunc(GL_GREATER);
  glEnable(GL_STENCIL_TEST);
  glEnable(GL_SCISSOR_TEST);
  glScissor(0, 0, 10, 10);
  glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  SoHaloHighlightRenderAction halo;
  SoLineHighlightRenderAction lines;
  impl().setOwnVantle(1);
  for (SoHighlightRenderAction* action : std::initializer_list<SoHighlightRenderAction*>{&halo, &lines}) {
    impl().setHighlight(action, m_selection);
    m_manager->render();
    EXPECT_GT(countMarked(host.picture(), -2, 0), 20) << "whatever the host's state is";
    for (auto const& state : states) {
      int values[4] = {};
      glGetIntegerv(state.name, values);
      EXPECT_EQ(values[0], state.value) << std::hex << "0x" << state.name;
    }
    EXPECT_EQ(glGetError(), unsigned(GL_NO_ERROR));
  }
  // The mark's objects go with the others, and when the mark goes while the context is not current, then
  // later.
  impl().setHighlight(nullptr, nullptr);
  m_manager->render();
  for (unsigned name = 1; name < 64; ++name) {
    // Buffers and vertex arrays of the mark alone would be left: the manager's own are released below.
    if (name == 1) m_manager->releaseGL();
    EXPECT_FALSE(glIsProgram(name)) << name;
    EXPECT_FALSE(glIsBuffer(name)) << name;
    EXPECT_FALSE(glIsVertexArray(name)) << name;
  }
}

TEST_F(HostView, AHaloNeedsNoStencilBuffer) {
  selectLeft();
  m_area->setSceneManager(nullptr);
  HostContext const host(GL_DEPTH_COMPONENT24);
  SoHaloHighlightRenderAction halo;
  impl().setOwnVantle(1);
  impl().setHighlight(&halo, m_selection);
  m_manager->render();
  Picture const marked = host.picture();
  EXPECT_GT(countMarked(marked, -2, 0), 20);
  EXPECT_TRUE(marked.shows(-1.2f, 0, 0, 0, 255)) << "the shape is covered";
  EXPECT_EQ(countMarked(marked, 0.2f, 2), 0);
  impl().setHighlight(nullptr, nullptr);
  m_manager->releaseGL();
}

} // namespace
