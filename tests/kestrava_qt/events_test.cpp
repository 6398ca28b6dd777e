// What a user does in a view, as the nodes of the scene hear of it.

#include <gtest/gtest.h>

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>
#include <functional>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/events/SoKeyboardEvent.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/events/SoMouseWheelEvent.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava_qt/SoQtEventFeeder.h"
#include "kestrava_qt/SoQtExaminerViewer.h"

namespace {

TEST(QtEvents, KeysSayWhatIsPressedAndWhatItTypes) {
  QWidget view;
  struct Case {
    char const* what;
    int key;
    Qt::KeyboardModifiers modifiers;
    QString text;
    int wantedKey;
    char const* wantedText;
  };
  Case const cases[] = {
      {"a letter", Qt::Key_A, {}, "a", 'A', "a"},
      {"with Shift", Qt::Key_A, Qt::ShiftModifier, "A", 'A', "A"},
      {"with Ctrl", Qt::Key_A, Qt::ControlModifier, QString(QChar(1)), 'A', ""},
      {"with Alt", Qt::Key_A, Qt::AltModifier, "a", 'A', "a"},
      {"a digit", Qt::Key_7, {}, "7", '7', "7"},
      {"a digit of the keypad", Qt::Key_7, Qt::KeypadModifier, "7", '7', "7"},
      {"the keypad without NumLock", Qt::Key_Home, Qt::KeypadModifier, "", SoKeyboardEvent::HOME, ""},
      {"Enter of the keypad", Qt::Key_Enter, Qt::KeypadModifier, "\r", SoKeyboardEvent::RETURN, ""},
      {"a sign", Qt::Key_BraceLeft, {}, "{", '{', "{"},
      {"space", Qt::Key_Space, {}, " ", SoKeyboardEvent::SPACE, " "},
      {"backspace", Qt::Key_Backspace, {}, "\b", SoKeyboardEvent::BACKSPACE, ""},
      {"delete", Qt::Key_Delete, {}, QString(QChar(127)), SoKeyboardEvent::DELETE, ""},
      {"tab backwards", Qt::Key_Backtab, Qt::ShiftModifier, "", SoKeyboardEvent::TAB, ""},
      {"an arrow", Qt::Key_Down, {}, "", SoKeyboardEvent::DOWN_ARROW, ""},
      {"F1", Qt::Key_F1, {}, "", SoKeyboardEvent::F1, ""},
      {"F12", Qt::Key_F12, {}, "", SoKeyboardEvent::F12, ""},
      {"F13 has no name", Qt::Key_F13, {}, "", SoKeyboardEvent::OTHER, ""},
      {"a modifier", Qt::Key_Shift, Qt::ShiftModifier, "", SoKeyboardEvent::SHIFT, ""},
      {"a letter with an accent",
       Qt::Key_Adiaeresis,
       {},
       QString(QChar(0xe4)),
       SoKeyboardEvent::OTHER,
       "\xc3\xa4"},
      {"a dead key", Qt::Key_Dead_Acute, {}, "", SoKeyboardEvent::OTHER, ""},
      {"beyond the first plane",
       0,
       {},
       QString::fromUtf8("\xf0\x9f\x98\x80"),
       SoKeyboardEvent::OTHER,
       "\xf0\x9f\x98\x80"},
  };
  for (Case const& c : cases) {
    auto const made =
        SoQtEventFeeder::convert(QKeyEvent(QEvent::KeyPress, c.key, c.modifiers, c.text), view, {3, 4});
    ASSERT_TRUE(made && made->isOfType(SoKeyboardEvent::getClassTypeId())) << c.what;
    auto const& event = static_cast<SoKeyboardEvent const&>(*made);
    EXPECT_EQ(event.key, c.wantedKey) << c.what;
    EXPECT_EQ(event.text.str(), c.wantedText) << c.what;
    EXPECT_EQ(event.state, SoButtonEvent::DOWN) << c.what;
    EXPECT_EQ(event.shiftDown, c.modifiers.testFlag(Qt::ShiftModifier)) << c.what;
    EXPECT_EQ(event.ctrlDown, c.modifiers.testFlag(Qt::ControlModifier)) << c.what;
    EXPECT_EQ(event.altDown, c.modifiers.testFlag(Qt::AltModifier)) << c.what;
    EXPECT_EQ(event.position, SbVec2s(3, 4)) << c.what;
  }
  // A key that is held repeats its press alone.
  EXPECT_TRUE(SoQtEventFeeder::convert(QKeyEvent(QEvent::KeyPress, Qt::Key_A, {}, "a", true), view));
  EXPECT_FALSE(SoQtEventFeeder::convert(QKeyEvent(QEvent::KeyRelease, Qt::Key_A, {}, "a", true), view));
  EXPECT_TRUE(SoQtEventFeeder::convert(QKeyEvent(QEvent::KeyRelease, Qt::Key_A, {}, "a"), view));
}

TEST(QtEvents, TheMouseIsToldInPixelsFromTheLowerLeft) {
  QWidget view;
  view.resize(200, 100);
  qreal const ratio = view.devicePixelRatioF();
  SbVec2s const at(static_cast<short>(30 * ratio), static_cast<short>(90 * ratio - 1));
  QMouseEvent const press(QEvent::MouseButtonPress, QPointF(30, 10), QPointF(), Qt::RightButton,
                          Qt::RightButton, Qt::ShiftModifier);
  auto made = SoQtEventFeeder::convert(press, view);
  ASSERT_TRUE(made);
  EXPECT_TRUE(SoMouseButtonEvent::isPress(*made, SoMouseButtonEvent::RIGHT));
  EXPECT_EQ(made->position, at);
  EXPECT_TRUE(made->shiftDown);
  EXPECT_NEAR(made->time.getValue(), SbTime::now().getValue(), 5);
  QMouseEvent const second(QEvent::MouseButtonDblClick, QPointF(30, 10), QPointF(), Qt::LeftButton,
                           Qt::LeftButton, {});
  made = SoQtEventFeeder::convert(second, view);
  EXPECT_TRUE(made && SoMouseButtonEvent::isPress(*made, SoMouseButtonEvent::LEFT));
  QMouseEvent const back(QEvent::MouseButtonPress, QPointF(30, 10), QPointF(), Qt::BackButton, Qt::BackButton,
                         {});
  EXPECT_FALSE(SoQtEventFeeder::convert(back, view));
  QMouseEvent const far(QEvent::MouseMove, QPointF(1e6, 1e6), QPointF(), Qt::NoButton, Qt::LeftButton, {});
  made = SoQtEventFeeder::convert(far, view);
  ASSERT_TRUE(made && made->isOfType(SoLocation2Event::getClassTypeId()));
  EXPECT_EQ(made->position, SbVec2s(32767, -32768));
  auto wheel = [&](QPoint turned, Qt::KeyboardModifiers modifiers) {
    return SoQtEventFeeder::convert(QWheelEvent(QPointF(30, 10), QPointF(), QPoint(), turned, Qt::NoButton,
                                                modifiers, Qt::NoScrollPhase, false),
                                    view);
  };
  made = wheel(QPoint(0, -240), {});
  ASSERT_TRUE(made && made->isOfType(SoMouseWheelEvent::getClassTypeId()));
  EXPECT_EQ(static_cast<SoMouseWheelEvent const&>(*made).delta, -240);
  EXPECT_EQ(made->position, at);
  made = wheel(QPoint(120, 0), Qt::AltModifier);
  ASSERT_TRUE(made);
  EXPECT_EQ(static_cast<SoMouseWheelEvent const&>(*made).delta, 120);
  EXPECT_FALSE(wheel(QPoint(120, 0), {})) << "sideways";
  EXPECT_FALSE(SoQtEventFeeder::convert(QEvent(QEvent::Enter), view));
}

/// A view of a cube in the middle below a node that listens.
template <class View> class Scene : public testing::Test {
 protected:
  void SetUp() override {
    m_root->addChild(m_listener);
    m_root->addChild(m_cube);
    m_listener->addEventCallback(SoEvent::getClassTypeId(), heard, this);
    m_window.resize(300, 300);
    m_view = std::make_unique<View>(&m_window, "Scene");
    m_view->getWidget()->setGeometry(0, 0, 300, 300);
    m_view->setSceneGraph(m_root);
    m_window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    view()->grab(); // one frame, so that the region is known
  }
  QWidget* view() { return m_view->getViewWidget(); }
  QPoint middle() { return view()->rect().center(); }
  void move(QPoint at, Qt::MouseButtons buttons) {
    QMouseEvent event(QEvent::MouseMove, at, view()->mapToGlobal(at), Qt::NoButton, buttons, {});
    QApplication::sendEvent(view(), &event);
  }
  std::string take() { return std::exchange(m_log, {}); }

  static void heard(void* data, SoEventCallback* node) {
    auto* const self = static_cast<Scene*>(data);
    SoEvent const& event = *node->getEvent();
    bool handles = self->m_handles;
    if (SoMouseButtonEvent::isPress(event, SoMouseButtonEvent::LEFT)) {
      self->m_log += 'd';
      if (self->m_grabs && node->getAction()->getPickedPoint()) {
        node->grabEvents();
        handles = true;
      }
    } else if (SoMouseButtonEvent::isRelease(event, SoMouseButtonEvent::LEFT)) {
      self->m_log += 'u';
      if (node->getAction()->getGrabber() == node) {
        if (!self->m_holdsOn) node->releaseEvents();
        handles = true;
      }
    } else if (event.isOfType(SoLocation2Event::getClassTypeId())) {
      self->m_log += 'm';
    } else if (event.isOfType(SoMouseWheelEvent::getClassTypeId())) {
      self->m_log += 'w';
    } else if (event.isOfType(SoKeyboardEvent::getClassTypeId())) {
      auto const& key = static_cast<SoKeyboardEvent const&>(event);
      self->m_log += key.state == SoButtonEvent::DOWN ? "k" : "r";
    }
    if (handles) node->setHandled();
  }

  SoRef<SoSelection> m_root{new SoSelection};
  SoRef<SoEventCallback> m_listener{new SoEventCallback};
  SoRef<SoCube> m_cube{new SoCube};
  QWidget m_window;
  std::unique_ptr<View> m_view;
  std::string m_log;
  bool m_handles = false, m_grabs = false, m_holdsOn = false;
};

using Examiner = Scene<SoQtExaminerViewer>;
using Area = Scene<SoQtRenderArea>;

TEST_F(Examiner, TheSceneComesFirstWhilePickingOnly) {
  QSignalSpy picks(m_view.get(), &SoQtExaminerViewer::picked);
  m_root->setTakingClicks(false);
  QTest::mouseClick(view(), Qt::LeftButton, {}, middle());
  move(middle(), {});
  EXPECT_EQ(take(), "");
  m_view->setViewing(false);
  QTest::mouseClick(view(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(take(), "du");
  EXPECT_EQ(picks.count(), 1) << "what nobody handles is a pick";
  move(middle() + QPoint(5, 5), {});
  EXPECT_EQ(take(), "m") << "without a button";
  SbVec3f const eye = m_view->getCamera()->position.getValue();
  QWheelEvent wheel(middle(), view()->mapToGlobal(middle()), QPoint(), QPoint(0, 120), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(view(), &wheel);
  EXPECT_EQ(take(), "w");

  m_handles = true;
  QTest::mouseClick(view(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(picks.count(), 1) << "handled";
  take();
  QTest::keyClick(m_view->getWidget(), Qt::Key_Escape);
  EXPECT_EQ(take(), "kr");
  EXPECT_FALSE(m_view->isViewing()) << "the scene wanted the key";
  m_view->setReportingAllClicks(true);
  QTest::mouseClick(view(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(picks.count(), 2);
  m_handles = false;
  QTest::keyClick(m_view->getWidget(), Qt::Key_Escape);
  EXPECT_TRUE(m_view->isViewing());
  EXPECT_EQ(m_view->getCamera()->position.getValue(), eye);
}

TEST_F(Examiner, AClickSelectsAndIsNoPickThen) {
  QSignalSpy picks(m_view.get(), &SoQtExaminerViewer::picked);
  m_root->policy = SoSelection::SINGLE;
  m_view->setViewing(false);
  QTest::mouseClick(view(), Qt::LeftButton, {}, middle());
  ASSERT_EQ(m_root->getNumSelected(), 1);
  EXPECT_EQ(m_root->getPath(0)->getTail(), m_cube);
  EXPECT_EQ(picks.count(), 0);
  QTest::mouseClick(view(), Qt::LeftButton, {}, QPoint(2, 2));
  EXPECT_EQ(m_root->getNumSelected(), 0);
  EXPECT_EQ(picks.count(), 1);
}

TEST_F(Examiner, ADragGoesOnOutsideAndEndsWithPicking) {
  m_grabs = true;
  m_view->setViewing(false);
  SoSceneManager* const manager = m_view->getSceneManager();
  QTest::mousePress(view(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(manager->getGrabber(), m_listener);
  move(QPoint(-500, 2000), Qt::LeftButton);
  EXPECT_EQ(take(), "dm");
  QTest::mouseRelease(view(), Qt::LeftButton, {}, QPoint(-500, 2000));
  EXPECT_EQ(take(), "u");
  EXPECT_EQ(manager->getGrabber(), nullptr);

  for (bool const holdsOn : {false, true}) {
    m_holdsOn = holdsOn;
    QTest::mousePress(view(), Qt::LeftButton, {}, middle());
    QTest::keyClick(m_view->getWidget(), Qt::Key_Escape);
    EXPECT_TRUE(m_view->isViewing());
    EXPECT_EQ(manager->getGrabber(), nullptr) << "also when the node holds on";
    EXPECT_EQ(take(), "dkum") << "and that the pointer is over nothing now";
    QTest::mouseRelease(view(), Qt::LeftButton, {}, middle());
    EXPECT_EQ(take(), "");
    m_view->setViewing(false);
  }
  // A release that went elsewhere is made up for; another scene ends a drag, too.
  m_holdsOn = false;
  QTest::mousePress(view(), Qt::LeftButton, {}, middle());
  take();
  move(middle() + QPoint(9, 9), {});
  EXPECT_EQ(take(), "um");
  EXPECT_EQ(manager->getGrabber(), nullptr);
  QTest::mousePress(view(), Qt::LeftButton, {}, middle());
  take();
  m_view->setSceneGraph(new SoCube);
  EXPECT_EQ(take(), "u");
  EXPECT_EQ(manager->getGrabber(), nullptr);
}

TEST_F(Examiner, MayGoWhileItsSceneHandlesAnEvent) {
  m_view->setViewing(false);
  using Owner = std::unique_ptr<SoQtExaminerViewer>;
  m_listener->addEventCallback(
      SoMouseButtonEvent::getClassTypeId(),
      [](void* data, SoEventCallback*) { static_cast<Owner*>(data)->reset(); }, &m_view);
  QPointer<QWidget> const shown = view();
  QMouseEvent press(QEvent::MouseButtonPress, middle(), shown->mapToGlobal(middle()), Qt::LeftButton,
                    Qt::LeftButton, {});
  QApplication::sendEvent(shown, &press);
  EXPECT_FALSE(shown);
  EXPECT_FALSE(m_view);
}

TEST_F(Area, ShowsAndFeedsWithoutMovingACamera) {
  EXPECT_GT(qGray(view()->grab().toImage().pixel(middle())), 0);
  m_view->setBackgroundColor(SbColor(1, 0, 0));
  EXPECT_EQ(qRed(view()->grab().toImage().pixel(2, 2)), 255);
  QTest::mouseClick(view(), Qt::LeftButton, {}, middle());
  EXPECT_EQ(take(), "du");
  EXPECT_EQ(m_root->getNumSelected(), 1) << "also when the scene has no camera of its own";
  move(middle(), {});
  QTest::keyClick(m_view->getWidget(), Qt::Key_X);
  EXPECT_EQ(take(), "mkr");
  EXPECT_EQ(m_view->getRenderArea()->getSceneManager(), m_view->getSceneManager());
}

} // namespace
