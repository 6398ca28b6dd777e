// Dragging rows, as far as the move itself.

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPointer>
#include <QStatusBar>
#include <QTest>
#include <QWindow>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoGroup.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/QtText.h"

namespace {

/// The group "b" stands below "a" and below "c".
char const sceneText[] = R"(Separator {
  DEF a Group { DEF b Group { Cube { } } }
  DEF c Switch { USE b Sphere { } }
  IndexedFaceSet { vertexProperty VertexProperty { } }
  ShapeKit { appearance AppearanceKit { material Material { } } }
})";

class DragTest : public VantleTest {
 protected:
  void startTest() {
    start(read(sceneText));
    tree()->expandAll(tree()->firstChild());
    QCoreApplication::processEvents();
  }

  SoTreeViewItem* root() const { return tree()->firstChild(); }
  SoTreeViewItem* row(std::initializer_list<int> way) const {
    SoTreeViewItem* row = root();
    for (int index : way) row = row->child(index);
    return row;
  }
  QPoint centerOf(SoTreeViewItem* row) const {
    tree()->scrollToItem(row);
    return tree()->visualItemRect(row).intersected(tree()->viewport()->rect()).center();
  }
  void press(SoTreeViewItem* row) {
    QTest::mousePress(tree()->viewport(), Qt::LeftButton, {}, centerOf(row));
  }
  void release() { QTest::mouseRelease(tree()->viewport(), Qt::LeftButton, {}, QPoint(5, 5)); }

  /// What a drag says on its way to a row. The three answers of one drop; they agree.
  bool drop(SoTreeViewItem* target, QString const& text = "Vantle/Drop") {
    QPoint const place = target ? centerOf(target) : tree()->viewport()->rect().bottomRight() - QPoint(30, 5);
    QMimeData data;
    data.setText(text);
    QDragEnterEvent enter(place, Qt::MoveAction, &data, Qt::LeftButton, {});
    enter.setAccepted(false);
    QApplication::sendEvent(tree()->viewport(), &enter);
    QDragMoveEvent move(place, Qt::MoveAction, &data, Qt::LeftButton, {});
    move.setAccepted(false);
    QApplication::sendEvent(tree()->viewport(), &move);
    frame()->statusBar()->clearMessage();
    QDropEvent event(place, Qt::MoveAction, &data, Qt::LeftButton, {});
    event.setAccepted(false);
    QApplication::sendEvent(tree()->viewport(), &event);
    EXPECT_EQ(message().empty(), !event.isAccepted());
    EXPECT_TRUE(!enter.isAccepted() || move.isAccepted() == event.isAccepted()) << "the pointer tells otherwise";
    return event.isAccepted();
  }
  std::string message() const { return frame()->statusBar()->currentMessage().toStdString(); }

  QWindow* native() const { return tree()->window()->windowHandle(); }
  QPoint inWindow(SoTreeViewItem* row) const {
    return tree()->viewport()->mapTo(tree()->window(), centerOf(row));
  }
  /// Drags a row as a person does. `act` is done in the drag's own event loop, again and again until it says that it
  /// is done; then the drag ends if it has not yet. True when there was a drag.
  bool drag(SoTreeViewItem* row, std::function<bool(int)> const& act) {
    frame()->statusBar()->clearMessage();
    bool dragged = false, done = false;
    int step = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      dragged = dragged || QGuiApplication::overrideCursor();
      if (!dragged) return;
      if (!done) done = act(step++);
      if (done && step++ > 100) QDrag::cancel();
    });
    QPoint const from = inWindow(row);
    QTest::mousePress(native(), Qt::LeftButton, {}, from);
    timer.start(20);
    QTest::mouseMove(native(), from + QPoint(0, 2));
    QPointer<QWindow> const window = native();
    QTest::mouseMove(native(), from + QPoint(0, QApplication::startDragDistance()));
    timer.stop();
    // Without its window the button is let go over another one: the next test begins with all of them up.
    QWidget other;
    if (!window) other.show();
    QTest::mouseRelease(window ? window.get() : other.windowHandle(), Qt::LeftButton, {}, from);
    return dragged;
  }
};

TEST_F(DragTest, WhereADropIsTaken) {
  startTest();
  SoTreeViewItem* const a = row({0});
  SoTreeViewItem* const bInA = row({0, 0});
  SoTreeViewItem* const c = row({1});
  SoTreeViewItem* const bInC = row({1, 0});
  SoTreeViewItem* const faces = row({2});
  SoTreeViewItem* const kit = row({3});
  struct {
    SoTreeViewItem *dragged, *target;
    bool taken;
  } const cases[] = {
      {a, c, true},
      {bInA, a, true},
      {bInA, root(), true},
      {row({0, 0, 0}), row({1, 1}), true},
      {a, a, false},
      {a, bInA, false},
      {a, bInC, false}, // which is below it at another place
      {a, row({1, 0, 0}), false},
      {bInA, bInC, false}, // the same node
      {faces, faces->rawChild(0), false}, // by a field
      {kit, kit->rawChild(0), false},
      {a, nullptr, false},
      {root(), a, false},
  };
  for (auto const& drag : cases) {
    press(drag.dragged);
    EXPECT_EQ(drop(drag.target), drag.taken) << qPrintable(drag.dragged->text(0)) << " to "
                                             << (drag.target ? qPrintable(drag.target->text(0)) : "nothing");
    release();
  }
}

TEST_F(DragTest, OnlyTheTreesOwnRowsInTheirTime) {
  startTest();
  for (char const* text : {"", "vantle/drop", "Vantle/Drop ", "Vantle/Drop\n"}) {
    press(row({0}));
    EXPECT_FALSE(drop(row({1}), text)) << text;
    release();
  }
  press(row({0}));
  EXPECT_FALSE(drop(row({0})));
  EXPECT_FALSE(drop(row({1}))) << "forgotten with the first drop";
  release();
  press(row({0}));
  release();
  EXPECT_FALSE(drop(row({1}))) << "of a row that was clicked only";
  QTest::mousePress(tree()->viewport(), Qt::LeftButton, {}, tree()->viewport()->rect().bottomRight() - QPoint(30, 5));
  EXPECT_FALSE(drop(row({1})));
  press(row({0}));
  static_cast<SoGroup*>(root()->getNode())->removeChild(0);
  EXPECT_FALSE(drop(row({0}))) << "the row is gone";
  release();
}

TEST_F(DragTest, WithTheMouse) {
  startTest();
  SoTreeViewItem* const a = row({0});
  QPoint const target = inWindow(row({1, 1}));
  auto const dropThere = [&](int step) {
    if (step < 3) QTest::mouseMove(native(), target - QPoint(0, 3 - step));
    if (step == 3) QTest::mouseRelease(native(), Qt::LeftButton, {}, target);
    return step == 3;
  };
  EXPECT_TRUE(drag(a, dropThere));
  EXPECT_EQ(message(), "Moving Group onto Sphere is not available yet.");
  EXPECT_EQ(tree()->currentItem(), a) << "what the pointer came over is not selected";

  // The space bar counts while it is held: before the drag or within it, but not when it was let go.
  QTest::keyPress(tree(), Qt::Key_Space);
  EXPECT_TRUE(drag(a, dropThere));
  EXPECT_EQ(message(), "Moving Group behind Sphere is not available yet.");
  QTest::keyRelease(tree(), Qt::Key_Space);
  EXPECT_TRUE(drag(a, dropThere));
  EXPECT_EQ(message(), "Moving Group onto Sphere is not available yet.");
  EXPECT_TRUE(drag(a, [&](int step) {
    if (step == 1) QTest::keyPress(native(), Qt::Key_Space);
    return dropThere(step);
  }));
  EXPECT_EQ(message(), "Moving Group behind Sphere is not available yet.");
  EXPECT_TRUE(drag(a, [&](int step) {
    if (step == 1) QTest::keyRelease(native(), Qt::Key_Space);
    return dropThere(step);
  }));
  EXPECT_EQ(message(), "Moving Group onto Sphere is not available yet.");

  EXPECT_TRUE(drag(a, [&](int) {
    QTest::keyClick(native(), Qt::Key_Escape);
    return true;
  }));
  EXPECT_EQ(message(), "");
  EXPECT_FALSE(drag(root(), [](int) { return true; })) << "the root row";
}

TEST_F(DragTest, TheGraphChangesMeanwhile) {
  startTest();
  SoRef<SoGroup> const scene(static_cast<SoGroup*>(root()->getNode()));
  // The row.
  EXPECT_TRUE(drag(row({0}), [&](int step) {
    if (step == 0) scene->removeChild(0);
    if (step == 1) QTest::mouseMove(native(), inWindow(row({1})));
    if (step == 2) QTest::mouseRelease(native(), Qt::LeftButton, {}, inWindow(row({1})));
    return step == 2;
  }));
  EXPECT_EQ(message(), "");
  // The target moves below the dragged node: that was not known when the drag began.
  auto* const mover = static_cast<SoGroup*>(row({0})->getNode());
  EXPECT_TRUE(drag(row({0}), [&](int step) {
    SoTreeViewItem* const target = row({1});
    if (step == 0) QTest::mouseMove(native(), inWindow(target));
    if (step == 1) mover->addChild(target->getNode());
    if (step == 2) QTest::mouseRelease(native(), Qt::LeftButton, {}, inWindow(row({1})));
    return step == 2;
  }));
  EXPECT_EQ(message(), "");
  // All of it.
  EXPECT_TRUE(drag(row({1}), [&](int step) {
    if (step == 0) viewer()->setScene(nullptr, true);
    if (step == 1) QTest::mouseRelease(native(), Qt::LeftButton, {}, QPoint(100, 200));
    return step == 1;
  }));
}

TEST_F(DragTest, TheSessionStopsMeanwhile) {
  startTest();
  QPointer<SoVantleTreeView> const view = tree();
  EXPECT_TRUE(drag(row({0}), [&](int) {
    SoVantleImpl::stop(true);
    return true;
  }));
  EXPECT_TRUE(waitFor([] {
    return !VntServicesImpl::isInstance() && !VntShellImpl::isInstance() && !SoVantleViewer::isInstance();
  }));
  EXPECT_FALSE(view);
}

} // namespace
