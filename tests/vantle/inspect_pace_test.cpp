// What the lists of fields do while a host changes its scene in every frame.

#include <QLabel>
#include <QScrollBar>

#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoVantleEdition.h"

namespace {

class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
  int take() { return std::exchange(m_count, 0); }

 private:
  bool eventFilter(QObject*, QEvent* event) override {
    m_count += event->type() == QEvent::Paint;
    return false;
  }
  int m_count = 0;
};

class PaceTest : public VantleTest {
 protected:
  /// A watch with the translations of more nodes than it has room for.
  void watchMany() {
    SoRef<SoSeparator> const scene(new SoSeparator);
    for (int i = 0; i < 200; ++i) scene->addChild(new SoTransform);
    start(scene);
    for (int i = 0; i < 200; ++i) watch()->addField(scene->getChild(i), translation(scene->getChild(i)));
    // Values that are outside on the right would not be painted.
    for (int column = 1; column < SoVantleList::FIELD_VALUE_COLUMN; ++column)
      watch()->setColumnWidth(column, 20);
    m_scene = scene;
  }
  static SoSFVec3f* translation(SoNode* node) { return &static_cast<SoTransform*>(node)->translation; }
  SoSFVec3f* translation(int i) const { return translation(m_scene->getChild(i)); }
  SoFieldWatch* watch() const { return edition()->getFieldWatch(); }
  QString value(int i) const {
    return watch()->getListItemFromField(translation(i))->text(SoVantleList::FIELD_VALUE_COLUMN);
  }
  /// A frame of the host, without its picture.
  void change(int from, int to, float x) {
    for (int i = from; i < to; ++i) translation(i)->setValue(SbVec3f(x, 0, 0));
    SoSensorManager::processDelayQueue(true);
  }
  /// Nothing is painted for some turns of the event loop: a window that has just opened still finds its size.
  static bool settles(PaintCounter& paints) {
    int quiet = 0;
    return waitFor([&] { return (quiet = paints.take() ? 0 : quiet + 1) > 10; });
  }
  SoRef<SoSeparator> m_scene;
};

TEST_F(PaceTest, AListIsPaintedOnceForAllChangesAndForNoneOutOfSight) {
  watchMany();
  watch()->scrollToTop();
  PaintCounter paints(watch()->viewport());
  watch()->viewport()->update();
  ASSERT_TRUE(waitFor([&] { return paints.take() > 0; }));
  ASSERT_TRUE(settles(paints));
  for (int frame = 1; frame <= 5; ++frame) change(0, 200, static_cast<float>(frame));
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.take(), 1);
  EXPECT_EQ(value(0), "5 0 0");
  EXPECT_EQ(value(199), "5 0 0");
  change(150, 200, 6);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.take(), 0) << "these rows are below";
  EXPECT_EQ(value(199), "6 0 0");

  // Where a row is seen now counts, not where it was seen once.
  watch()->scrollToBottom();
  ASSERT_TRUE(waitFor([&] { return paints.take() > 0; }));
  ASSERT_TRUE(settles(paints));
  change(0, 1, 7);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.take(), 0);
  change(199, 200, 7);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.take(), 1);
  // The same value again is nothing to be shown.
  change(199, 200, 7);
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.take(), 0);
}

TEST_F(PaceTest, RowsInTheOrderOfTheirValuesMoveWithThem) {
  watchMany();
  watch()->sortByColumn(SoVantleList::FIELD_VALUE_COLUMN, Qt::DescendingOrder);
  change(120, 121, 9);
  EXPECT_EQ(watch()->indexOfTopLevelItem(watch()->getListItemFromField(translation(120))), 0);
}

TEST_F(PaceTest, ARowThatWasTakenOutMayOutliveItsList) {
  SoRef<SoTransform> const node(new SoTransform);
  auto list = std::make_unique<SoVantleList>();
  list->setNode(node);
  SoFieldItem* const row = list->getListItemFromField(&node->translation);
  list->takeItem(row);
  EXPECT_EQ(list->getListItemFromField(&node->translation), nullptr);
  list.reset();
  node->translation = SbVec3f(1, 2, 3);
  SoSensorManager::processDelayQueue(true);
  delete row;
}

TEST_F(PaceTest, TheShownIdCatchesUp) {
  SoRef<SoSeparator> const scene(new SoSeparator);
  auto* const material = new SoMaterial;
  scene->addChild(material);
  start(scene);
  edition()->setNode(material, nullptr, false);
  for (int i = 0; i < 20; ++i) {
    material->shininess = 0.01f * static_cast<float>(i);
    SoSensorManager::processDelayQueue(true);
  }
  auto const* const label = frame()->findChild<QLabel*>("m_nodeIdLabel");
  EXPECT_TRUE(waitFor([&] { return label->text().endsWith(": " + QString::number(material->getNodeId())); }))
      << qPrintable(label->text());
}

} // namespace
