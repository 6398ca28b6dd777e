// What the dock does with any field, on the plainest editor.

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

#include "kestrava/engines/SoCalculator.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "tests/extender_base/EditorTest.h"
#include "vnt/VntServices.h"

namespace {

using PanelTest = EditorTest;

TEST_F(PanelTest, IgnoredDefaultAndConnectedAreShownAndUndone) {
  auto* const scene = new SoSeparator;
  auto* const sphere = new SoSphere;
  auto* const other = new SoSphere;
  scene->addChild(sphere);
  scene->addChild(other);
  edit(scene, "renderCaching");
  edit(sphere, "radius");
  auto* const ignored = find<QCheckBox>("ignored");
  auto* const reset = find<QPushButton>("reset");
  auto* const cut = find<QPushButton>("disconnect");
  EXPECT_FALSE(reset->isEnabled());
  EXPECT_FALSE(cut->isVisibleTo(panel()));

  QTest::mouseClick(ignored, Qt::LeftButton);
  EXPECT_TRUE(field()->isIgnored());
  undo();
  EXPECT_FALSE(field()->isIgnored());
  EXPECT_FALSE(ignored->isChecked() && !waitFor([&] { return !ignored->isChecked(); }));

  sphere->radius = 3.0f;
  ASSERT_TRUE(waitFor([&] { return reset->isEnabled(); }));
  QTest::mouseClick(reset, Qt::LeftButton);
  EXPECT_EQ(value(), "1");
  EXPECT_TRUE(field()->isDefault());
  undo();
  EXPECT_EQ(value(), "3");
  EXPECT_FALSE(field()->isDefault());

  other->radius = 5.0f;
  field()->connectFrom(&other->radius);
  ASSERT_TRUE(waitFor([&] { return cut->isVisibleTo(panel()); }));
  EXPECT_EQ(find<QLabel>("source")->text(), "follows radius of Sphere");
  EXPECT_FALSE(reset->isEnabled());
  QTest::mouseClick(cut, Qt::LeftButton);
  EXPECT_FALSE(field()->isConnected());
  EXPECT_EQ(value(), "5");
  undo();
  EXPECT_EQ(field()->getConnectedField(), &other->radius);
}

TEST_F(PanelTest, StepsLeaveTheReferenceCountsAlone) {
  auto* const scene = new SoSeparator;
  edit(scene, "renderCaching");
  auto* const sphere = new SoSphere;
  scene->addChild(sphere);
  sphere->radius.connectFrom((new SoCalculator)->getField("oa"));
  VntServices::getInstance()->setSelectedField(&sphere->radius);
  int const count = sphere->getRefCount();
  QTest::mouseClick(find<QPushButton>("disconnect"), Qt::LeftButton);
  QTest::mouseClick(find<QCheckBox>("ignored"), Qt::LeftButton);
  EXPECT_EQ(sphere->getRefCount(), count);
  EXPECT_EQ(countSteps(), 2);
  undo();
  undo();
  EXPECT_TRUE(sphere->radius.isConnected()) << "the engine that only this field has followed";
  redo();
  EXPECT_FALSE(sphere->radius.isConnected());

  scene->removeChild(sphere);
  EXPECT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
  undo();
  redo();
  redo();
}

TEST_F(PanelTest, AFieldThatGoesTakesItsEditorAlong) {
  auto* const scene = new SoSeparator;
  edit(scene, "renderCaching");
  auto sphere = std::make_unique<SoRef<SoSphere>>(new SoSphere);
  VntServices::getInstance()->setSelectedField(&(*sphere)->radius);
  EXPECT_EQ(find<QLabel>("fieldName")->text(), "radius");
  sphere.reset();
  EXPECT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
  QCoreApplication::processEvents();
}

} // namespace
