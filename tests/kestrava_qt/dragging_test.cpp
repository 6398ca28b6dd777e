// Draggers and manipulators in a viewer, dragged by a user's mouse over the widget.

#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>
#include <cmath>
#include <sstream>

#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/draggers/SoDragger.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoClipPlaneManip.h"
#include "kestrava/nodes/SoDirectionalLightManip.h"
#include "kestrava/nodes/SoHandleBoxManip.h"
#include "kestrava/nodes/SoPointLightManip.h"
#include "kestrava/nodes/SoSpotLightManip.h"
#include "kestrava/nodes/SoTransformManip.h"
#include "kestrava_qt/SoQtExaminerViewer.h"

namespace {

SbBox3f const AROUND(SbVec3f(-0.6f, -0.6f, -0.6f), SbVec3f(0.6f, 0.6f, 0.6f));
char const* const CUBE = "Cube { width 1.2 height 1.2 depth 1.2 }";

/// A view of 100 pixels a unit along -z, while picking.
class Dragging : public testing::Test {
 protected:
  void SetUp() override {
    m_window.resize(500, 440);
    m_viewer = std::make_unique<SoQtExaminerViewer>(&m_window, "Dragging");
    m_viewer->getWidget()->setGeometry(0, 0, 500, 440);
    m_window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
  }
  void show(std::string const& scene) {
    float const height = static_cast<float>(view()->height()) / 100;
    std::string const text = "Separator { OrthographicCamera { position 0 0 50 height " +
                             std::to_string(height) + " nearDistance 1 farDistance 100 } " + scene + " }";
    SoInput input;
    input.setBuffer(text);
    m_root = SoRef<SoNode>(SoDB::readAll(&input));
    ASSERT_TRUE(m_root) << text;
    m_viewer->setSceneGraph(m_root);
    m_viewer->setViewing(false);
    view()->grab(); // one frame, so that the region is known
  }
  QWidget* view() { return m_viewer->getViewWidget(); }
  SoNode* node() { return SoNode::getByName(SbName("d")); }
  SoDragger* dragger() {
    SoNode* const found = node();
    if (!found || found->isOfType(SoDragger::getClassTypeId())) return static_cast<SoDragger*>(found);
    return static_cast<SoDragger*>((*found->getChildren())[0]);
  }
  QPointF placeOf(SbVec3f const& world) {
    SbVec3f screen;
    float const aspect = static_cast<float>(view()->width()) / static_cast<float>(view()->height());
    EXPECT_TRUE(m_viewer->getCamera()->getViewVolume(aspect).projectToScreen(world, screen));
    return QPointF(screen[0] * static_cast<float>(view()->width()),
                   (1 - screen[1]) * static_cast<float>(view()->height()));
  }
  void mouse(QEvent::Type type, QPointF const& at, Qt::MouseButton button, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, view()->mapToGlobal(at), button, buttons, m_keys);
    QApplication::sendEvent(view(), &event);
  }
  void hover(QPointF const& at) { mouse(QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton); }
  void press(QPointF const& at) { mouse(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton); }
  void move(QPointF const& at) { mouse(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton); }
  void release(QPointF const& at) { mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton); }
  int lookOf(char const* part) {
    auto const* field = static_cast<SoSFNode const*>(dragger()->getField(SbName(part)));
    return static_cast<SoDraggerHandle*>(field->getValue())->look.getValue();
  }

  QWidget m_window;
  std::unique_ptr<SoQtExaminerViewer> m_viewer;
  SoRef<SoNode> m_root;
  Qt::KeyboardModifiers m_keys;
};

SbRotation about(SbVec3f const& axis, float degrees) { return SbRotation(axis, degrees * 3.14159265f / 180); }
SoPlacement at(SbVec3f const& translation) {
  SoPlacement p;
  p.translation = translation;
  return p;
}
SoPlacement scaled(SbVec3f const& factor) {
  SoPlacement p;
  p.scaleFactor = factor;
  return p;
}
SoPlacement turned(SbVec3f const& axis, float degrees) {
  SoPlacement p;
  p.rotation = about(axis, degrees);
  return p;
}
SoPlacement turned(SbVec3f const& from, SbVec3f const& to) {
  SoPlacement p;
  p.rotation = SbRotation(from, to);
  return p;
}
SoPlacement centred(SbVec3f const& center) {
  SoPlacement p;
  p.center = center;
  return p;
}
SoPlacement open(float angle) {
  SoPlacement p;
  p.angle = angle;
  return p;
}

float distance(SbRotation const& a, SbRotation const& b) { return std::abs((a.inverse() * b).getAngle()); }
/// The largest difference of two placements, in units and radians.
float distance(SoPlacement const& a, SoPlacement const& b) {
  float const turn = distance(a.rotation, b.rotation);
  return std::max({(a.translation - b.translation).length(), (a.scaleFactor - b.scaleFactor).length(),
                   (a.center - b.center).length(), std::min(turn, 6.2831853f - turn),
                   std::abs(a.angle - b.angle)});
}
std::string inWords(SoPlacement const& p) {
  std::ostringstream out;
  auto const add = [&out](char const* what, SbVec3f const& v) {
    out << what << " " << v[0] << " " << v[1] << " " << v[2] << ", ";
  };
  add("translation", p.translation);
  add("scale", p.scaleFactor);
  add("axis", p.rotation.getAxis());
  add("center", p.center);
  out << "turned by " << p.rotation.getAngle() << ", angle " << p.angle;
  return out.str();
}

struct Case {
  char const* type;
  char const* part;
  SbVec3f point; // of the handle, in the handles' space
  SbVec2f by;    // hundreds of pixels, to the right and up
  SoPlacement wanted;
  float yaw = 0; // radians; the way is then along the turned x and y axes
};

SbVec3f const X(1, 0, 0), Y(0, 1, 0), Z(0, 0, 1);

float const SIN = 0.5f, COS = 0.8660254f;
SbVec3f const BALL_FROM(0.5f, 0.5f, 0.7071f), BALL_TO(0.7071f, 0.5f, 0.5f);

Case const DRAGGERS[] = {
    {"Translate1Dragger", "translator", {0.6f, 0, 0}, {0.7f, 0.3f}, at({0.7f, 0, 0})},
    {"Translate2Dragger", "translator", {0, 0.6f, 0}, {-0.4f, 0.5f}, at({-0.4f, 0.5f, 0})},
    {"DragPointDragger", "point", {0.08f, -0.04f, 0.08f}, {0.5f, -0.3f}, at({0.5f, -0.3f, 0})},
    {"DragPointDragger", "xTranslator", {0.7f, 0, 0}, {-0.6f, 0.2f}, at({-0.6f, 0, 0})},
    {"DragPointDragger", "yTranslator", {0, 0.7f, 0}, {0.2f, 0.6f}, at({0, 0.6f, 0})},
    {"DragPointDragger", "xyTranslator", {0.35f, 0.35f, 0}, {0.3f, 0.4f}, at({0.3f, 0.4f, 0})},
    {"Scale1Dragger", "scaler", {1, 0, 0}, {0.5f, 0}, scaled({1.5f, 1, 1})},
    {"Scale1Dragger", "scaler", {-1, 0, 0}, {0.5f, 0}, scaled({0.5f, 1, 1})},
    {"Scale2Dragger", "scaler", {1, 1, 0}, {0.5f, -0.25f}, scaled({1.5f, 0.75f, 1})},
    {"Scale2UniformDragger", "scaler", {-1, 1, 0}, {-0.5f, 0.5f}, scaled({1.5f, 1.5f, 1})},
    {"ScaleUniformDragger", "scaler", {1, -1, 1}, {-0.4f, 0.4f}, scaled({0.6f, 0.6f, 0.6f})},
    {"RotateDiscDragger", "rotator", {1, 0, 0}, {COS - 1, SIN}, turned(Z, 30)},
    {"RotateCylindricalDragger", "rotator", {0, 0, 1}, {SIN, 0}, turned(Y, 30)},
    {"RotateSphericalDragger", "rotator", {0, 0, 1}, {0, SIN}, turned(X, -30)},
    {"HandleBoxDragger", "translator6", {0.3f, -0.2f, 1}, {0.4f, 0.3f}, at({0.4f, 0.3f, 0})},
    {"HandleBoxDragger", "xScaler", {1, 0, 0}, {0.5f, 0.2f}, scaled({1.5f, 1, 1})},
    {"HandleBoxDragger", "scaler", {1, 1, 1}, {-0.3f, -0.3f}, scaled({0.7f, 0.7f, 0.7f})},
    {"TransformBoxDragger", "xRotator", {0, 1, 1}, {0, -1}, turned(X, 45)},
    {"TransformBoxDragger", "zRotator", {1, 1, 0}, {-1, 0.4142f}, turned(Z, 45), 0.6f},
    {"TabBoxDragger", "zScaler", {1, -1, 0}, {0.3f, 0.2f}, scaled({1.3f, 0.8f, 1}), 0.6f},
    {"TransformerDragger", "yScaler", {0, 1, 0}, {0, 0.4f}, scaled({1, 1.4f, 1}), 0.6f},
    {"TransformerDragger", "rotator", {0, 0, 1.4f}, {0.7f, 0}, turned(Y, 30)},
    {"TrackballDragger", "rotator", BALL_FROM, {0.2071f, 0}, turned(BALL_FROM, BALL_TO)},
    {"TrackballDragger", "yRotator", {0.7f, 0, 0.7416f}, {-0.7f, 0}, turned(Y, -43.3f)},
    {"TrackballDragger", "zRotator", {0.7212f, 0.7212f, 0}, {-0.7212f, 0.2988f}, turned(Z, 45)},
    {"CenterballDragger", "xyCenterChanger", {0.09f, 0, 1.06f}, {0.3f, 0.2f}, centred({0.3f, 0.2f, 0})},
    {"CenterballDragger", "zRotator", {0.7212f, 0.7212f, 0}, {-0.7212f, 0.2988f}, turned(Z, 45)},
    {"JackDragger", "xTranslator", {0.5f, 0, 0}, {0.4f, 0.1f}, at({0.4f, 0, 0})},
    {"JackDragger", "point", {0.08f, -0.05f, 0.05f}, {0.4f, 0.1f}, at({0.4f, 0.1f, 0})},
    {"JackDragger", "scaler", {0, 1, 0}, {0, 0.4f}, scaled({1.4f, 1.4f, 1.4f})},
    {"JackDragger", "rotator", {-1, 0, 0}, {0, 0.3f}, turned({-1, 0, 0}, {-0.9538f, 0.3f, -0.018f}), 1.2f},
    {"TabPlaneDragger", "translator", {0.3f, 0.2f, 0}, {0.4f, -0.3f}, at({0.4f, -0.3f, 0})},
    {"TabPlaneDragger", "scaler", {1, 1, 0}, {0.4f, -0.3f}, scaled({1.4f, 0.7f, 1})},
    {"TabPlaneDragger", "xScaler", {-1, 0, 0}, {-0.4f, 0}, scaled({1.4f, 1, 1})},
    {"PointLightDragger", "point", {0.14f, -0.14f, 0.14f}, {-0.4f, 0.4f}, at({-0.4f, 0.4f, 0})},
    {"PointLightDragger", "yTranslator", {0, -0.6f, 0}, {0.1f, 0.5f}, at({0, 0.5f, 0})},
    {"DirectionalLightDragger", "point", {0, 0, 0.1f}, {0.3f, 0.2f}, at({0.3f, 0.2f, 0})},
    {"SpotLightDragger", "beam", {0, 0.7071f, -0.7071f}, {0, 0.1589f}, open(1.0472f)},
    {"SpotLightDragger", "point", {0, 0, 0.1f}, {0.3f, 0.2f}, at({0.3f, 0.2f, 0})},
    {"ClipPlaneDragger", "translator", {1, 0.4f, 0}, {0.3f, 0.2f}, at({0.3f, 0.2f, 0})},
};

Case const MANIPS[] = {
    {"HandleBoxManip", "xScaler", {1, 0, 0}, {0.306f, 0.1f}, scaled({1.5f, 1, 1})},
    {"HandleBoxManip", "translator6", {0.3f, -0.2f, 1}, {0.4f, 0.3f}, at({0.4f, 0.3f, 0})},
    {"TabBoxManip", "zScaler", {1, -1, 0}, {0.1836f, 0.1224f}, scaled({1.3f, 0.8f, 1}), 0.6f},
    {"TransformBoxManip", "zRotator", {1, 1, 0}, {-0.612f, 0.2535f}, turned(Z, 45), 0.6f},
    {"TransformerManip", "scaler", {1, 1, 1}, {0.306f, 0.306f}, scaled({1.5f, 1.5f, 1.5f})},
    {"TransformerManip", "rotator", {0, 0, 1.4f}, {0.4284f, 0}, turned(Y, 30)},
    {"TrackballManip", "yRotator", {0.7212f, 0, 0.7212f}, {-0.7495f, 0}, turned(Y, -45)},
    {"CenterballManip", "zRotator", {0.7212f, 0.7212f, 0}, {-0.7495f, 0.3104f}, turned(Z, 45)},
    {"CenterballManip", "xyCenterChanger", {0.09f, 0, 1.06f}, {0.3f, 0.2f}, centred({0.3f, 0.2f, 0})},
    {"JackManip", "yTranslator", {0, 0.8f, 0}, {0, 0.4f}, at({0, 0.4f, 0})},
    {"JackManip", "scaler", {1, 0, 0}, {0.5196f, 0}, scaled({1.5f, 1.5f, 1.5f})},
};

TEST_F(Dragging, EachHandleFollowsThePointerSteadily) {
  std::vector<Case> cases(std::begin(DRAGGERS), std::end(DRAGGERS));
  cases.insert(cases.end(), std::begin(MANIPS), std::end(MANIPS));
  for (Case const& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " by its " + c.part);
    bool const isManip = std::string(c.type).find("Manip") != std::string::npos;
    SbRotation const yaw(Y, c.yaw);
    show("RotationXYZ { axis Y angle " + std::to_string(c.yaw) + " } DEF d " + c.type + " { }" +
         (isManip ? CUBE : ""));
    ASSERT_TRUE(dragger());
    SoPlacement const before = dragger()->getPlacement();
    SoPlacement wanted = c.wanted;
    if (wanted.angle == 0) wanted.angle = before.angle;
    SbMatrix const handles = dragger()->getHandleMatrix(isManip ? AROUND : SbBox3f());
    SbVec3f const start = handles.multVecMatrix(c.point);
    QPointF const from = placeOf(yaw.multVec(start));
    QPointF const by = placeOf(yaw.multVec(start + SbVec3f(c.by[0], c.by[1], 0))) - from;
    hover(from);
    EXPECT_EQ(lookOf(c.part), SoDraggerHandle::POINTED_AT);
    press(from);
    ASSERT_EQ(dragger()->getActivePart(), SbName(c.part));
    EXPECT_TRUE(dragger()->isActive.getValue());
    EXPECT_EQ(lookOf(c.part), SoDraggerHandle::ACTIVE);
    move(from);
    EXPECT_EQ(distance(dragger()->getPlacement(), before), 0) << "nothing moves before the pointer does";
    SoPlacement last = before;
    int const steps = 10;
    float const whole = distance(before, wanted);
    for (int i = 1; i <= steps; ++i) {
      move(from + by * i / steps);
      SoPlacement const now = dragger()->getPlacement();
      EXPECT_LT(distance(last, now), whole * 3 / steps) << "a jump at step " << i << " to " << inWords(now);
      last = now;
    }
    // Out of the window and back.
    move(QPointF(-300, 1000));
    EXPECT_TRUE(dragger()->isActive.getValue());
    release(from + by);
    SoPlacement const now = dragger()->getPlacement();
    EXPECT_LT(distance(now, wanted), 0.05f) << inWords(now) << ", should be " << inWords(wanted);
    EXPECT_FALSE(dragger()->isActive.getValue());
    int const released = lookOf(c.part);
    hover(from + by);
    EXPECT_EQ(lookOf(c.part), released) << "the look tells what is under the pointer at once";
    hover(QPointF(1, 1));
    EXPECT_EQ(lookOf(c.part), SoDraggerHandle::NORMAL);
    EXPECT_EQ(distance(dragger()->getPlacement(), now), 0);
    if (!isManip) continue;
    auto const* moved = static_cast<SoTransform*>(node());
    SoPlacement const field = {moved->translation.getValue(), moved->rotation.getValue(),
                               moved->scaleFactor.getValue(), moved->scaleOrientation.getValue(),
                               moved->center.getValue()};
    EXPECT_EQ(distance(field, now), 0);
  }
}

TEST_F(Dragging, LightsAndPlanesFollowTheirHandles) {
  struct LightCase {
    char const* scene;
    SbVec3f from;
    SbVec2f by;
    char const* field;
    SbVec3f wanted;
  };
  LightCase const cases[] = {
      {"PointLightManip { location 0 1 1", {0.04f, 0.96f, 1}, {0.3f, 0.2f}, "location", {0.3f, 1.2f, 1}},
      {"PointLightManip { location 0 1 1", {-0.2f, 1, 1}, {0.3f, 0.2f}, "location", {0.3f, 1, 1}},
      {"SpotLightManip { location 0 1 1", {0, 1, 1}, {0.3f, 0.2f}, "location", {0.3f, 1.2f, 1}},
      {"SpotLightManip { location 0 1 1 direction 1 0 0",
       {0.32f, 1, 1},
       {-0.32f, 0.32f},
       "direction",
       {0, 1, 0}},
      {"DirectionalLightManip { direction 1 0 0",
       {0.175f, 1.0157f, 0},
       {-0.175f, 0.175f},
       "direction",
       {0, 1, 0}},
      {"ClipPlaneManip { plane 1 0 0 0.1", {0.76f, 0, 0}, {0.4f, 0.2f}, "plane", {0.5f, 0, 0}},
  };
  for (LightCase const& c : cases) {
    SCOPED_TRACE(std::string(c.scene) + " }: " + c.field);
    show(std::string("DEF d ") + c.scene + " }" + CUBE);
    QPointF const from = placeOf(c.from), by = QPointF(c.by[0], -c.by[1]) * 100;
    press(from);
    ASSERT_TRUE(dragger()->isActive.getValue());
    for (int i = 1; i <= 5; ++i) move(from + by * i / 5);
    release(from + by);
    SoField const* const field = node()->getField(SbName(c.field));
    SbVec3f is;
    if (auto const* plane = dynamic_cast<SoSFPlane const*>(field)) {
      is = plane->getValue().getNormal() * plane->getValue().getDistanceFromOrigin();
    } else {
      is = static_cast<SoSFVec3f const*>(field)->getValue();
    }
    // Arrows are thick: they turn about the place where they are seen.
    EXPECT_LT((is - c.wanted).length(), 0.12f) << is[0] << " " << is[1] << " " << is[2];
  }
}

TEST_F(Dragging, NothingStaysLitWhenThePointerIsElsewhere) {
  show("DEF d HandleBoxDragger { }");
  QPointF const at = placeOf(SbVec3f(0.3f, 0.2f, 1));
  hover(at);
  ASSERT_EQ(lookOf("translator6"), SoDraggerHandle::POINTED_AT);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(view(), &leave);
  EXPECT_EQ(lookOf("translator6"), SoDraggerHandle::NORMAL);
  hover(at);
  ASSERT_EQ(lookOf("translator6"), SoDraggerHandle::POINTED_AT);
  m_viewer->setViewing(true);
  EXPECT_EQ(lookOf("translator6"), SoDraggerHandle::NORMAL);
  // A drag that ends outside.
  m_viewer->setViewing(false);
  press(at);
  QApplication::sendEvent(view(), &leave);
  EXPECT_TRUE(dragger()->isActive.getValue());
  release(QPointF(-50, 20));
  EXPECT_EQ(lookOf("translator6"), SoDraggerHandle::NORMAL);
  EXPECT_LT(dragger()->getPlacement().translation[0], -2);
}

TEST_F(Dragging, EscapePutsBackAndStaysWithPicking) {
  QSignalSpy picks(m_viewer.get(), &SoQtExaminerViewer::picked);
  show(std::string("DEF d HandleBoxManip { translation 0.1 0 0 }") + CUBE);
  SoPlacement const before = dragger()->getPlacement();
  QPointF const from = placeOf(SbVec3f(0.3f, 0.2f, 0.612f));
  press(from);
  move(from + QPointF(60, 20));
  EXPECT_GT(distance(dragger()->getPlacement(), before), 0.5f);
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_Escape);
  EXPECT_EQ(distance(dragger()->getPlacement(), before), 0);
  EXPECT_FALSE(m_viewer->isViewing());
  // The button is still down; nothing follows it any more.
  move(from + QPointF(80, 20));
  release(from + QPointF(80, 20));
  EXPECT_EQ(distance(dragger()->getPlacement(), before), 0);
  EXPECT_EQ(picks.count(), 0);
  QTest::keyClick(m_viewer->getWidget(), Qt::Key_Escape);
  EXPECT_TRUE(m_viewer->isViewing());
}

TEST_F(Dragging, AManipulatorComesAndGoesAroundADrag) {
  show(std::string("DEF place Transform { translation 0.2 0 0 } ") + CUBE);
  SoRef<SoNode> const original(SoNode::getByName(SbName("place")));
  SoSearchAction search;
  search.setNode(original);
  search.apply(m_root);
  SoRef<SoPath> const path(search.getPath()->copy());
  SoRef<SoHandleBoxManip> const manip(new SoHandleBoxManip);
  ASSERT_TRUE(manip->replaceNode(path));
  manip->setName(SbName("d"));
  QPointF const from = placeOf(SbVec3f(0.5f, 0.2f, 0.612f));
  press(from);
  move(from + QPointF(30, -20));
  release(from + QPointF(60, -40));
  auto* const plain = new SoTransform;
  ASSERT_TRUE(manip->replaceManip(path, plain));
  EXPECT_EQ(path->getTail(), plain);
  EXPECT_LT((plain->translation.getValue() - SbVec3f(0.8f, 0.4f, 0)).length(), 0.02f);
  // No handle is left.
  press(from + QPointF(60, -40));
  release(from + QPointF(90, -40));
  EXPECT_LT((plain->translation.getValue() - SbVec3f(0.8f, 0.4f, 0)).length(), 0.02f);

  // Taken out in the middle of a drag.
  ASSERT_TRUE(manip->replaceNode(path));
  press(from + QPointF(60, -40));
  ASSERT_TRUE(manip->getDragger()->isActive.getValue());
  move(from + QPointF(110, -40));
  ASSERT_TRUE(manip->replaceManip(path, nullptr));
  move(from + QPointF(200, -40));
  EXPECT_FALSE(manip->getDragger()->isActive.getValue());
  EXPECT_EQ(m_viewer->getSceneManager()->getGrabber(), nullptr);
  release(from + QPointF(200, -40));
  auto const* left = static_cast<SoTransform*>(path->getTail());
  EXPECT_LT((left->translation.getValue() - SbVec3f(1.3f, 0.4f, 0)).length(), 0.02f);
}

TEST_F(Dragging, SceneAndViewerMayGoInTheMiddleOfADrag) {
  std::string const scene = std::string("DEF d HandleBoxManip { }") + CUBE;
  for (bool const viewerGoes : {false, true}) {
    show(scene);
    SoRef<SoDragger> const kept(dragger());
    QPointF const from = placeOf(SbVec3f(0.3f, 0.2f, 0.612f));
    press(from);
    move(from + QPointF(20, 0));
    ASSERT_TRUE(kept->isActive.getValue());
    m_root.reset();
    if (viewerGoes) {
      m_viewer.reset();
    } else {
      m_viewer->setSceneGraph(nullptr);
      EXPECT_FALSE(kept->isActive.getValue());
      move(from + QPointF(40, 0));
      release(from + QPointF(40, 0));
    }
    EXPECT_LT((kept->getPlacement().translation - SbVec3f(0.2f, 0, 0)).length(), 0.02f);
  }
}

} // namespace
