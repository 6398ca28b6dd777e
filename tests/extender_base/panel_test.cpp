// What the dock does with any field, on the plainest editor.

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <stdexcept>

#include "kestrava/engines/SoCalculator.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "tests/extender_base/EditorTest.h"
#include "tests/vantle/ErrorLog.h"
#include "vnt/VntFieldEdit.h"
#include "vnt/VntFieldEditor.h"
#include "vnt/VntPluginsManager.h"
#include "vantle/session/SoVantleImpl.h"
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

  // What the history still holds when the session ends leaves nothing in the host's scene.
  SoRef<SoSphere> const other(new SoSphere);
  scene->addChild(other);
  VntServices::getInstance()->setSelectedField(&other->radius);
  QTest::mouseClick(find<QCheckBox>("ignored"), Qt::LeftButton);
  EXPECT_TRUE(other->radius.isWatched());

  scene->removeChild(sphere);
  undo();
  redo();
  redo();
  SoVantleImpl::stop(true);
  EXPECT_FALSE(other->radius.isWatched());
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

/// One that a plug-in brings and that never comes to anything.
struct FailingEditor : VntFieldEditor {
  SbString getName() const override { return "SFFloat"; }
  SbString getInfo() const override { return "Failing"; }
  QWidget* createEditor(VntFieldEdit*, QWidget*) override { throw std::runtime_error("no editor today"); }
};

TEST_F(PanelTest, AnEditorThatThrowsIsToldAndTheNextOneTaken) {
  static FailingEditor failing; // the panel knows it until the session ends
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  VntExtension* const dock = VntPluginsManager::getInstance()->getExtension("VntDefaults", "Field Editor");
  ASSERT_TRUE(dock->addControlled(&failing));
  VntServices::getInstance()->setSelectedField(nullptr);
  ErrorLog<SoDebugError> errors;
  VntServices::getInstance()->setSelectedField(&sphere->radius);
  ASSERT_EQ(errors.texts.size(), 1);
  EXPECT_TRUE(errors.texts[0].contains("createEditor() failed: no editor today"))
      << qPrintable(errors.texts[0]);
  EXPECT_TRUE(find<QLineEdit>("number")) << "the editor that was there before";
}

TEST_F(PanelTest, AnEditorCanNotSetWhatIsConnectedOrOfAnotherType) {
  auto* const sphere = new SoSphere;
  edit(sphere, "radius");
  VntFieldEdit edit(&sphere->radius);
  QSignalSpy const problems(&edit, &VntFieldEdit::failed);
  EXPECT_FALSE(edit.preview(SoSFBool()));
  EXPECT_FALSE(edit.isPreviewing()) << "nothing that a later value could be replaced by";

  auto const other = SoRef<SoSphere>(new SoSphere);
  sphere->radius.connectFrom(&other->radius);
  EXPECT_FALSE(edit.setText("4"));
  EXPECT_EQ(value(), "1");
  EXPECT_EQ(countSteps(), 0);
  ASSERT_EQ(problems.size(), 2);
  EXPECT_EQ(problems[1][0].toString(), "The field follows radius; disconnect it first.");
}

} // namespace
