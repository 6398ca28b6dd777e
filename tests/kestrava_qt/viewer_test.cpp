// The examiner viewer as a user meets it, with an OpenGL widget and with the painted image.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>
#include <cmath>
#include <optional>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/sensors/SoIdleSensor.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "kestrava_qt/SoQt.h"
#include "kestrava_qt/SoQtCanvas.h"
#include "kestrava_qt/SoQtExaminerViewer.h"

namespace {

/// What of a picture is not black: its extent in pixels, from the upper left corner.
struct Extent {
  QRect box;
  double red = 0;  // mean of the pixels in the box that are not black
};

Extent extentOf(QImage const& image) {
  Extent extent;
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      QRgb const pixel = image.pixel(x, y);
      if (qRed(pixel) + qGreen(pixel) + qBlue(pixel) < 40) continue;
      extent.box |= QRect(x, y, 1, 1);
      extent.red += qRed(pixel);
      ++count;
    }
  }
  if (count) extent.red /= count;
  return extent;
}

double distance(SbVec3f const& a, SbVec3f const& b) { return (a - b).length(); }

/// A window with a viewer, in one of the two ways to show a picture.
class Viewer : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    bool const usesOpenGL = GetParam();
    if (!usesOpenGL) SoPreferences::setValue("KSV_VIEWER_OFFSCREEN", "1");
    if (usesOpenGL && !SoQtCanvas::usesOpenGL()) GTEST_SKIP() << "no OpenGL on this platform";
    ASSERT_EQ(SoQtCanvas::usesOpenGL(), usesOpenGL);
    m_window = std::make_unique<QWidget>();
    m_window->resize(400, 300);
    m_viewer = std::make_unique<SoQtExaminerViewer>(m_window.get(), "Examiner");
    m_viewer->setBackgroundColor(SbColor(0, 0, 0));
    resize(400, 300);
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
  }
  void TearDown() override {
    m_viewer.reset();
    m_window.reset();
    SoPreferences::removeValue("KSV_VIEWER_OFFSCREEN");
  }
  void resize(int width, int height) {
    m_window->resize(width, height);
    m_viewer->getWidget()->setGeometry(0, 0, width, height);
    QTest::qWait(0);
  }
  void show(char const* scene) {
    SoInput in;
    in.setBuffer(scene);
    m_viewer->setSceneGraph(SoDB::readAll(&in));
    ASSERT_TRUE(m_viewer->getSceneGraph());
  }
  /// The same seen from straight in front, so that directions on the screen are those of the scene.
  void showFromFront(char const* scene) {
    show(scene);
    m_viewer->setCamera(new SoPerspectiveCamera);
    m_viewer->viewAll();
    m_viewer->saveHomePosition();
  }
  QWidget* view() { return m_viewer->getViewWidget(); }
  Extent extent() { return extentOf(view()->grab().toImage()); }
  void drag(Qt::MouseButton button, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mousePress(view(), button, modifiers, from);
    for (int i = 1; i <= 5; ++i) {
      QPoint const at = from + (to - from) * i / 5;
      QMouseEvent move(QEvent::MouseMove, at, view()->mapToGlobal(at), Qt::NoButton, button, modifiers);
      QApplication::sendEvent(view(), &move);
    }
    QTest::mouseRelease(view(), button, modifiers, to);
  }
  QPoint middle() { return view()->rect().center(); }

  std::unique_ptr<QWidget> m_window;
  std::unique_ptr<SoQtExaminerViewer> m_viewer;
};

char const* const BALL = "Separator { Translation { translation 30 40 50 } Material { diffuseColor 1 1 1 } Sphere { radius 3 } }";

}  // namespace

INSTANTIATE_TEST_SUITE_P(, Viewer, testing::Bool(), [](auto const& way) { return way.param ? "OpenGL" : "Image"; });

TEST_P(Viewer, ShowsTheWholeSceneAndNoDistortion) {
  show(BALL);
  for (QSize size : {QSize(400, 300), QSize(300, 420), QSize(700, 200)}) {
    resize(size.width(), size.height());
    Extent const seen = extent();
    QRect const all = view()->rect();
    ASSERT_FALSE(seen.box.isNull());
    EXPECT_NEAR(seen.box.width(), seen.box.height(), 3);
    EXPECT_GT(seen.box.height(), std::min(all.width(), all.height()) / 2);
    EXPECT_TRUE(all.adjusted(1, 1, -1, -1).contains(seen.box));
    EXPECT_LT((seen.box.center() - all.center()).manhattanLength(), 6);
  }
  // The window around it has the picture, too.
  EXPECT_GT(qRed(m_window->grab().toImage().pixel(view()->mapTo(m_window.get(), middle()))), 150);
}

TEST_P(Viewer, EmptyScenesAndNoneAreShown) {
  m_viewer->viewAll();
  EXPECT_TRUE(extent().box.isNull());
  show("Separator {}");
  m_viewer->viewAll();
  EXPECT_TRUE(extent().box.isNull());
  show("Separator { Cube {} }");
  m_viewer->viewAll();
  EXPECT_FALSE(extent().box.isNull());
}

TEST_P(Viewer, LeftDragTurnsAboutTheMiddle) {
  showFromFront("Separator { ShapeHints { vertexOrdering COUNTERCLOCKWISE } Material { diffuseColor 1 1 1 } Cube { depth 0.2 } }");
  Extent const before = extent();
  SbVec3f const eye = m_viewer->getCamera()->position.getValue();
  drag(Qt::LeftButton, middle(), middle() + QPoint(60, 0));
  Extent const after = extent();
  EXPECT_LT(after.box.width(), before.box.width() * 0.93);
  EXPECT_LT((after.box.center() - before.box.center()).manhattanLength(), 14);
  // To the right: the eye goes to the left, at the same distance.
  SbVec3f const now = m_viewer->getCamera()->position.getValue();
  EXPECT_LT(now[0], eye[0] - 0.5f);
  EXPECT_NEAR(now.length(), eye.length(), 1e-3);
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_Home);
  EXPECT_LT(distance(m_viewer->getCamera()->position.getValue(), eye), 1e-5);
  // The rim may be less smooth while the view moves.
  EXPECT_TRUE(before.box.adjusted(-2, -2, 2, 2).contains(extent().box));
  EXPECT_TRUE(extent().box.adjusted(-2, -2, 2, 2).contains(before.box));
}

TEST_P(Viewer, DragsMoveAndWheelEnlargesAtThePointer) {
  showFromFront(BALL);
  QPoint const start = extent().box.center();
  drag(Qt::MiddleButton, middle(), middle() + QPoint(40, -30));
  EXPECT_LT((extent().box.center() - start - QPoint(40, -30)).manhattanLength(), 8);
  drag(Qt::LeftButton, middle(), middle() - QPoint(40, -30), Qt::ShiftModifier);
  EXPECT_LT((extent().box.center() - start).manhattanLength(), 8);

  Extent const before = extent();
  // What lies at the left end of the ball stays there.
  QPoint const at(before.box.left(), before.box.center().y());
  QWheelEvent wheel(at, view()->mapToGlobal(at), QPoint(), QPoint(0, -240), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(view(), &wheel);
  Extent const after = extent();
  EXPECT_LT(after.box.width(), before.box.width() * 0.85);
  EXPECT_NEAR(after.box.left(), before.box.left(), 6);

  drag(Qt::RightButton, middle(), middle() + QPoint(0, -60));
  EXPECT_GT(extent().box.width(), after.box.width() * 1.2);
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_V);
  EXPECT_LT((extent().box.center() - start).manhattanLength(), 8);
}

TEST_P(Viewer, ProjectionsShowTheSameSize) {
  showFromFront(BALL);
  Extent const before = extent();
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_P);
  EXPECT_TRUE(m_viewer->getCamera()->isOfType(SoOrthographicCamera::getClassTypeId()));
  EXPECT_NEAR(extent().box.width(), before.box.width(), before.box.width() * 0.15);
  drag(Qt::RightButton, middle(), middle() + QPoint(0, 40));
  EXPECT_LT(extent().box.width(), before.box.width() * 0.8);
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_P);
  EXPECT_FALSE(m_viewer->getCamera()->isOfType(SoOrthographicCamera::getClassTypeId()));
  EXPECT_LT(extent().box.width(), before.box.width() * 0.85);
}

TEST_P(Viewer, EscapeLetsClicksPick) {
  show(BALL);
  extent();  // one frame, so that the region is known
  QSignalSpy picks(m_viewer.get(), &SoQtExaminerViewer::picked);
  std::optional<SbVec2s> position;
  QObject::connect(m_viewer.get(), &SoQtExaminerViewer::picked,
                   [&](SbVec2s at, SbViewportRegion const& region) {
                     position = at;
                     EXPECT_EQ(region.getWindowSize()[1], std::lround(view()->height() * view()->devicePixelRatioF()));
                   });
  QTest::mouseClick(view(), Qt::LeftButton, {}, QPoint(20, 30));
  EXPECT_EQ(picks.count(), 0);
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_Escape);
  EXPECT_FALSE(m_viewer->isViewing());
  EXPECT_EQ(view()->cursor().shape(), Qt::ArrowCursor);
  SbVec3f const eye = m_viewer->getCamera()->position.getValue();
  drag(Qt::LeftButton, middle(), middle() + QPoint(50, 20));
  EXPECT_EQ(picks.count(), 0);
  EXPECT_EQ(m_viewer->getCamera()->position.getValue(), eye);
  QTest::mouseClick(view(), Qt::LeftButton, {}, QPoint(20, 30));
  ASSERT_TRUE(position);
  EXPECT_EQ((*position)[0], std::lround(20 * view()->devicePixelRatioF()));
  EXPECT_EQ((*position)[1], std::lround((view()->height() - 30) * view()->devicePixelRatioF()) - 1);
  QTest::mouseClick(m_viewer->getWidget()->findChild<QAbstractButton*>("viewButton"), Qt::LeftButton);
  EXPECT_TRUE(m_viewer->isViewing());
}

TEST_P(Viewer, SeekGoesToThePointThatIsClicked) {
  showFromFront("Separator { Material { diffuseColor 1 1 1 } Translation { translation -2 0 0 } Cube {} "
       "Translation { translation 4 0 0 } Material { diffuseColor 1 0 0 } Cube {} }");
  Extent const before = extent();
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_S);
  EXPECT_EQ(view()->cursor().shape(), Qt::CrossCursor);
  QTest::mouseClick(view(), Qt::LeftButton, {}, QPoint(before.box.right() - before.box.width() / 8, middle().y()));
  EXPECT_FALSE(m_viewer->isSeeking());
  EXPECT_TRUE(QTest::qWaitFor([this] { return std::abs(m_viewer->getCamera()->position.getValue()[0] - 2) < 0.6f; }));
  QTest::qWait(350);
  QRgb const pixel = view()->grab().toImage().pixel(middle());
  EXPECT_GT(qRed(pixel), 150);
  EXPECT_LT(qGreen(pixel), 60);
}

TEST_P(Viewer, StartsAtTheScenesCameraWithoutTouchingIt) {
  show("Separator { DEF eye PerspectiveCamera { position 0 0 20 focalDistance 20 } Material { diffuseColor 1 1 1 } Cube {} }");
  auto* const camera = static_cast<SoCamera*>(SoNode::getByName("eye"));
  EXPECT_EQ(m_viewer->getCamera()->position.getValue(), SbVec3f(0, 0, 20));
  std::uint64_t const id = m_viewer->getSceneGraph()->getNodeId();
  int const small = extent().box.width();
  drag(Qt::LeftButton, middle(), middle() + QPoint(60, 0));
  m_viewer->viewAll();
  EXPECT_GT(extent().box.width(), small);
  EXPECT_EQ(camera->position.getValue(), SbVec3f(0, 0, 20));
  EXPECT_EQ(m_viewer->getSceneGraph()->getNodeId(), id);
}

TEST_P(Viewer, DrawsAfterChangesAndOnlyThen) {
  show("Separator { Material { diffuseColor 1 1 1 } DEF crate Cube {} }");
  struct PaintCount : QObject {
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
      paints += event->type() == QEvent::Paint;
      return false;
    }
  } counter;
  view()->installEventFilter(&counter);
  ASSERT_TRUE(QTest::qWaitFor([&] { return counter.paints > 0; }));
  QTest::qWait(400);
  int const settled = counter.paints;
  QTest::qWait(200);
  EXPECT_EQ(counter.paints, settled);
  SoDrawList const& list = m_viewer->getSceneManager()->getGLRenderAction()->getDrawList();
  int const rebuilds = list.getNumRebuilds();
  drag(Qt::LeftButton, middle(), middle() + QPoint(30, 30));
  EXPECT_TRUE(QTest::qWaitFor([&] { return counter.paints > settled; }));
  EXPECT_EQ(list.getNumRebuilds(), rebuilds);
  int const turned = counter.paints;
  static_cast<SoCube*>(SoNode::getByName("crate"))->width = 1;
  EXPECT_TRUE(QTest::qWaitFor([&] { return counter.paints > turned; }));
  EXPECT_EQ(list.getNumRebuilds(), rebuilds + 1);
  view()->removeEventFilter(&counter);
}

TEST_P(Viewer, SurvivesItsWindowAndMovesToAnother) {
  show(BALL);
  extent();
  QWidget other;
  m_viewer->getWidget()->setParent(&other);
  other.resize(300, 300);
  other.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
  EXPECT_FALSE(extent().box.isNull());
  m_viewer->getWidget()->setParent(m_window.get());
  m_window.reset();
  EXPECT_EQ(m_viewer->getWidget(), nullptr);
  m_viewer->getSceneManager()->scheduleRedraw();
  QTest::qWait(20);
}

TEST(QtBinding, IdleSensorThatAlwaysWaitsLeavesTheProcessorAlone) {
  SoQt::init(nullptr);
  struct Data {
    int calls = 0;
  } data;
  SoIdleSensor sensor(
      [](void* d, SoSensor* s) {
        ++static_cast<Data*>(d)->calls;
        s->schedule();
      },
      &data);
  sensor.schedule();
  QTest::qWait(500);
  EXPECT_GE(data.calls, 5);
  EXPECT_LE(data.calls, 30);
  sensor.unschedule();
  SoQt::finish();
  // Without the binding nothing is worked off; with it again, it is.
  SoOneShotSensor once([](void* d, SoSensor*) { static_cast<Data*>(d)->calls = 1000; }, &data);
  once.schedule();
  QTest::qWait(30);
  EXPECT_NE(data.calls, 1000);
  SoQt::init(nullptr);
  EXPECT_TRUE(QTest::qWaitFor([&] { return data.calls == 1000; }));
}
