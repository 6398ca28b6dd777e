// The inspector beside a host that draws its scene itself.

#include <QTest>
#include <QWindow>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "kestrava/render/SoOffscreenRenderArea.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

constexpr int LEFT = 2, RIGHT = 3; // children of the host's root

/// A host with a scene of two cubes, left and right, below a selection of its own, and a render area for it.
class HostTest : public VantleTest {
 protected:
  HostTest()
      : m_root(read("Selection { LightModel { model BASE_COLOR } BaseColor { rgb 0 0 1 } "
                    "Separator { Translation { translation -1 0 0 } Cube { width 0.8 height 0.8 } } "
                    "Separator { Translation { translation 1 0 0 } Cube { width 0.8 height 0.8 } } }")) {
    SoRef<SoOrthographicCamera> camera(new SoOrthographicCamera);
    camera->position = SbVec3f(0, 0, 10);
    camera->farDistance = 20;
    camera->height = 4;
    manager()->setSceneGraph(m_root);
    manager()->setCamera(camera);
    manager()->setGLRenderAction(&m_action);
    m_picture->setSize(SbVec2i32(100, 100));
    m_picture->setSceneManager(manager());
  }
  ~HostTest() override {
    SoPreferences::removeValue("VANTLE_HIGHLIGHTING_MODE");
    if (m_picture) m_picture->setSceneManager(nullptr);
  }
  SoSceneManager* manager() const { return m_area->getSceneManager(); }
  SbImage draw() {
    SbImage image;
    EXPECT_TRUE(m_picture->renderToImage(image));
    return image;
  }
  /// Pixels of the mark's colour in the left and the right half.
  std::pair<int, int> countMarked() {
    SbImage const image = draw();
    int counts[2] = {};
    for (int i = 0; i < 100 * 100; ++i) {
      unsigned char const* const pixel = image.getBytes() + 3 * i;
      counts[i % 100 / 50] += pixel[0] > 240 && pixel[1] > 120 && pixel[1] < 160 && pixel[2] < 20;
    }
    return {counts[0], counts[1]};
  }
  /// The row of a child of the root.
  SoTreeViewItem* row(int index) const {
    SoRef<SoPath> const path(new SoPath(m_root));
    path->append(index);
    return tree()->getItemFromPath(path, 1);
  }
  void makeCurrent(int index) {
    ASSERT_TRUE(row(index));
    tree()->setCurrentItem(row(index));
  }

  SoGLRenderAction m_action;
  SoRef<SoNode> m_root;
  SoRef<SoGuiRenderArea> m_area{new SoGuiRenderArea};
  SoRef<SoOffscreenRenderArea> m_picture{new SoOffscreenRenderArea};
};

TEST_F(HostTest, SeesItsPictureMarkedWhileTheInspectorRuns) {
  SbImage const before = draw();
  int const references = m_root->getRefCount();
  for (char const* style : {"LINE", "BOX", "HALO"}) {
    SoPreferences::setValue("VANTLE_HIGHLIGHTING_MODE", style);
    SoVantleImpl::start(m_area);
    EXPECT_EQ(draw(), before) << style << ": nothing is current";
    makeCurrent(LEFT);
    auto marked = countMarked();
    EXPECT_GT(marked.first, 15) << style;
    EXPECT_EQ(marked.second, 0) << style;
    makeCurrent(RIGHT);
    marked = countMarked();
    EXPECT_EQ(marked.first, 0) << style;
    EXPECT_GT(marked.second, 15) << style;
    EXPECT_EQ(manager()->getGLRenderAction(), &m_action) << "the host's own";
    EXPECT_EQ(static_cast<SoSelection*>(m_root.get())->getNumSelected(), 0) << "the host's own";
    SoVantleImpl::stop(true);
    EXPECT_EQ(draw(), before) << style << ": stopped";
    EXPECT_EQ(manager()->getImpl()->getOwnVantle(), 0);
    EXPECT_EQ(m_root->getRefCount(), references);
  }
}

TEST_F(HostTest, PicksInItsOwnView) {
  SoVantleImpl::start(m_area);
  SoVantleImpl::setPickAction(SbViewportRegion(100, 100), SbVec2s(75, 50));
  ASSERT_TRUE(tree()->currentItem());
  EXPECT_EQ(tree()->currentItem()->parent(), row(RIGHT));
  EXPECT_GT(countMarked().second, 15);
}

bool showsNothing(SoVantleViewer* viewer) {
  return !viewer->getScene() && viewer->getTreeView()->topLevelItemCount() == 0 &&
         !VntServices::getInstance()->getSceneGraph() && !VntServices::getInstance()->getSelectedNode();
}

TEST_F(HostTest, MayTakeItsViewDownFirst) {
  SoVantleImpl::start(m_area);
  makeCurrent(LEFT);
  countMarked();
  SoNode* const root = m_root;
  m_picture->setSceneManager(nullptr);
  m_picture.reset();
  m_area.reset();
  EXPECT_EQ(VntServices::getInstance()->getSceneManager(), nullptr);
  EXPECT_EQ(VntServices::getInstance()->getRenderArea(), nullptr);
  EXPECT_TRUE(showsNothing(viewer()));
  EXPECT_EQ(root->getRefCount(), 1);
  SoVantleImpl::setPickAction(SbViewportRegion(100, 100), SbVec2s(75, 50));
  EXPECT_TRUE(SoVantleImpl::isRunning());
  SoVantleImpl::stop(true);
}

TEST_F(HostTest, MayTakeTheAreaDownThatTheSessionWasStartedOn) {
  SoRef<SoSceneManager> const held(manager());
  for (bool startedOnArea : {true, false}) {
    SoRef<SoGuiRenderArea> area(new SoGuiRenderArea);
    area->sceneManager.setValue(held);
    if (startedOnArea) {
      SoVantleImpl::start(area.get());
    } else {
      m_area->sceneManager.setValue(nullptr); // one view less to be found
      SoVantleImpl::start(held.get(), nullptr);
    }
    EXPECT_EQ(VntServices::getInstance()->getRenderArea(), area.get());
    area.reset();
    EXPECT_EQ(VntServices::getInstance()->getRenderArea(), nullptr);
    EXPECT_EQ(VntServices::getInstance()->getSceneManager(), held.get());
    EXPECT_EQ(showsNothing(viewer()), startedOnArea) << "a scene manager may have another view some time";
    SoVantleImpl::stop(true);
  }
}

TEST_F(HostTest, MayLetGoOfItsScene) {
  SoRef<SoSeparator> root(new SoSeparator);
  root->addChild(new SoCube);
  SoRef<SoNode> const child(root->getChild(0));
  startAttached(root);
  tree()->setCurrentItem(tree()->firstChild());
  VntServices::getInstance()->setSelectedNode(root);
  root.reset();
  EXPECT_TRUE(waitFor([this] { return showsNothing(viewer()); }));
  EXPECT_EQ(child->getRefCount(), 1) << "the root is gone";
  EXPECT_TRUE(frame()->isVisible());
  // One that the host never held belongs to the inspector.
  SoVantleImpl::stop(true);
  startAttached(new SoSeparator);
  bool looked = false;
  QTimer::singleShot(500, [&] { looked = true; });
  EXPECT_TRUE(waitFor([&] { return looked; }));
  EXPECT_TRUE(viewer()->getScene());
}

TEST_F(HostTest, MayDestroyWhatIsSelected) {
  startAttached(m_root);
  SoRef<SoCube> cube(new SoCube);
  VntServices* const services = VntServices::getInstance();
  services->setSelectedNode(cube);
  services->setSelectedField(&cube->width);
  int heard = 0;
  QObject::connect(services, &VntServices::selectedNodeChanged, [&](SoFieldContainer* node) { heard += !node; });
  QObject::connect(services, &VntServices::selectedFieldChanged, [&](SoField* field) { heard += !field; });
  cube.reset();
  EXPECT_EQ(services->getSelectedNode(), nullptr);
  EXPECT_EQ(services->getSelectedField(), nullptr);
  EXPECT_GE(heard, 2);
}

TEST_F(HostTest, MayDestroyTheWindowThatTheFrameWasMadeOver) {
  auto host = std::make_unique<QWindow>();
  host->resize(300, 200);
  host->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(host.get()));
  SoVantleImpl::start(m_root, reinterpret_cast<void*>(host->winId()));
  ASSERT_TRUE(QTest::qWaitForWindowExposed(frame()));
  host.reset();
  QCoreApplication::processEvents();
  EXPECT_TRUE(SoVantleImpl::isRunning());
  EXPECT_EQ(tree()->firstChild()->getNode(), m_root.get());
  makeCurrent(RIGHT);
  SoVantleImpl::stop(true);
}

} // namespace
