// Vectors, boxes and planes.

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "kestrava/nodes/SoClipPlane.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoTransform.h"
#include "tests/extender_base/EditorTest.h"

namespace {

class VectorTest : public EditorTest {
 public:
  /// A field of a type that no node of the toolkit has.
  void editOwn(char const* type, char const* value) {
    SoRef<SoNode> const scene =
        read(std::string("Separator { Own { fields [ ") + type + " own ] own " + value + " } }");
    ASSERT_TRUE(scene.get());
    edit(static_cast<SoGroup*>(scene.get())->getChild(0), "own");
  }
  QString shown(char const* line) const { return find<QLineEdit>(line)->text(); }
};

TEST_F(VectorTest, EachComponentIsOneStep) {
  auto* const node = new SoTransform;
  edit(node, "translation");
  type(find<QLineEdit>("y"), "1/4");
  EXPECT_EQ(value(), "0 0.25 0");
  type(find<QLineEdit>("z"), "-2");
  EXPECT_EQ(value(), "0 0.25 -2");
  EXPECT_EQ(countSteps(), 2);
  undo();
  EXPECT_EQ(value(), "0 0.25 0");
  EXPECT_TRUE(waitFor([&] { return shown("z") == "0"; }));
  redo();
  EXPECT_EQ(value(), "0 0.25 -2");

  type(find<QLineEdit>("x"), "one");
  EXPECT_FALSE(problem().isEmpty());
  EXPECT_EQ(shown("x"), "one");
  EXPECT_EQ(value(), "0 0.25 -2");
  node->translation.setValue(SbVec3f(7, 8, 9));
  EXPECT_TRUE(waitFor([&] { return note() == "changed to 7 8 9"; }));
  EXPECT_EQ(shown("x"), "one");
  QTest::keyClick(find<QLineEdit>("x"), Qt::Key_Escape);
  EXPECT_TRUE(waitFor([&] { return note().isEmpty(); }));
  EXPECT_EQ(shown("x"), "7");
  EXPECT_EQ(problem(), "");
}

TEST_F(VectorTest, EnteringOneComponentKeepsWhatTheProgramHasMadeOfTheOthers) {
  auto* const node = new SoTransform;
  edit(node, "translation");
  type(find<QLineEdit>("y"), "5", false);
  node->translation = SbVec3f(1, 2, 3);
  ASSERT_TRUE(waitFor([&] { return shown("x") == "1"; }));
  EXPECT_EQ(shown("y"), "5");
  EXPECT_EQ(note(), "changed to 1 2 3");
  node->translation = SbVec3f(4, 2, 3); // not told yet
  QTest::keyClick(find<QLineEdit>("y"), Qt::Key_Tab);
  EXPECT_EQ(value(), "4 5 3");
  EXPECT_EQ(note(), "");
  undo();
  EXPECT_EQ(value(), "4 2 3");
}

TEST_F(VectorTest, SeveralNumbersFillAllComponents) {
  edit(new SoTransform, "translation");
  for (char const* text : {"1 2 3", "(4, 5, -6e1)", "7;8\n9"}) {
    QApplication::clipboard()->setText(text);
    auto* const line = find<QLineEdit>("y");
    line->setFocus();
    QTest::keyClick(line, Qt::Key_End); // into the text that is there
    QTest::keyClick(line, Qt::Key_V, Qt::ControlModifier);
    std::string const wanted = text[0] == '1' ? "1 2 3" : text[0] == '7' ? "7 8 9" : "4 5 -60";
    EXPECT_EQ(value(), wanted);
  }
  EXPECT_EQ(countSteps(), 3);
  QApplication::clipboard()->clear();
  type(find<QLineEdit>("x"), "0.5, 0.5, nan");
  EXPECT_EQ(value(), "0.5 0.5 nan");
  EXPECT_EQ(shown("z"), "nan");
  type(find<QLineEdit>("x"), "2");
  EXPECT_EQ(value(), "2 0.5 nan"); // what is no number survives
  type(find<QLineEdit>("x"), "1/4 (1)-2 sqrt(4)");
  EXPECT_EQ(value(), "0.25 -1 2");
  type(find<QLineEdit>("x"), "1 2 1e99");
  EXPECT_TRUE(problem().startsWith("1e+99 is out of range")) << qPrintable(problem());
  EXPECT_EQ(shown("x"), "1 2 1e99");
  EXPECT_EQ(countSteps(), 6);
}

TEST_F(VectorTest, ADragIsOneStepAndScalesTheOthersWhereAsked) {
  auto* const node = new SoTransform;
  node->scaleFactor = SbVec3f(1, 2, 4);
  edit(node, "scaleFactor");
  QTest::mouseClick(find<QCheckBox>("proportional"), Qt::LeftButton);
  type(find<QLineEdit>("x"), "3");
  EXPECT_EQ(value(), "3 6 12");
  EXPECT_EQ(shown("z"), "12");

  auto* const handle = find<QLineEdit>("y")->findChild<QWidget*>("dragHandle");
  ASSERT_TRUE(handle);
  auto drag = [handle] {
    QTest::mousePress(handle, Qt::LeftButton, {}, QPoint(2, 2));
    for (int x : {20, 40, 60}) QTest::mouseMove(handle, QPoint(x, 2));
  };
  drag();
  EXPECT_GT(node->scaleFactor.getValue()[1], 6); // at once
  EXPECT_FLOAT_EQ(node->scaleFactor.getValue()[2], 2 * node->scaleFactor.getValue()[1]);
  QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(60, 2));
  EXPECT_EQ(countSteps(), 2);
  undo();
  EXPECT_EQ(value(), "3 6 12");
  QCoreApplication::processEvents();
  drag();
  EXPECT_NE(value(), "3 6 12");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_EQ(value(), "3 6 12");
  QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(60, 2));
  EXPECT_EQ(value(), "3 6 12");

  type(find<QLineEdit>("x"), "0");
  type(find<QLineEdit>("x"), "5"); // nothing can be scaled from 0
  EXPECT_EQ(value(), "5 0 0");
}

TEST_F(VectorTest, ADirectionIsNormalized) {
  auto* const light = new SoDirectionalLight;
  light->direction = SbVec3f(0, 3, -4);
  edit(light, "direction");
  EXPECT_EQ(find<QLabel>("length")->text(), "Length 5");
  QTest::mouseClick(find<QPushButton>("normalize"), Qt::LeftButton);
  EXPECT_EQ(value(), "0 0.6 -0.8");
  undo();
  EXPECT_EQ(value(), "0 3 -4");
  light->direction = SbVec3f();
  QTest::mouseClick(find<QPushButton>("normalize"), Qt::LeftButton);
  EXPECT_EQ(problem(), "A vector of length 0 has no direction; it can not be normalized.");
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(VectorTest, OtherVectors) {
  struct Case {
    char const *type, *before, *line, *typed, *after, *wrong;
  };
  for (Case const& c : {Case{"SFVec2f", "1 2", "y", "1e-3", "1 0.001", "1e99"},
                        Case{"SFVec2i32", "1 2", "x", "-2147483648", "-2147483648 2", "2147483648"},
                        Case{"SFVec2s", "1 2", "y", "32767", "1 32767", "32768"},
                        Case{"SFVec2s", "1 2", "x", "-5 6", "-5 6", "5 70000"},
                        Case{"SFVec2s", "1 2", "x", "5 2^3", "5 8", "5 0.5"},
                        Case{"SFVec4f", "1 2 3 4", "w", "0.5", "1 2 3 0.5", "w"},
                        Case{"SFVec2d", "1 2", "y", "1/3", "1 0.3333333333333333", "y"},
                        Case{"SFVec3d", "1 2 3", "z", "0.1+0.2", "1 2 0.30000000000000004", "1e999"},
                        Case{"SFVec3s", "1 2 3", "z", "-32768", "1 2 -32768", "-32769"},
                        Case{"SFVec3i32", "1 2 3", "y", "7 8 9", "7 8 9", "0.5"},
                        Case{"SFVec4d", "1 2 3 4", "x", "1e300", "1e+300 2 3 4", "x"},
                        Case{"SFVec4i32", "1 2 3 4", "w", "2^31-1", "1 2 3 2147483647", "2^31"},
                        Case{"SFColorRGBA", "0 0.5 1 1", "alpha", "1/4", "0 0.5 1 0.25", "opaque"},
                        Case{"SFBox2s", "0 0 2 3", "maxY", "9", "0 0 2 9", "40000"},
                        Case{"SFBox2d", "0 0 2 3", "minX", "0.1", "0.1 0 2 3", "-"},
                        Case{"SFBox2i32", "0 0 2 3", "maxX", "-1", "0 0 -1 3", "2^31"},
                        Case{"SFBox3f", "0 0 0 2 3 4", "maxZ", "0.1", "0 0 0 2 3 0.1", "1e99"},
                        Case{"SFBox3d", "0 0 0 2 3 4", "minY", "-1e99", "0 -1e+99 0 2 3 4", "1e999"},
                        Case{"SFBox3i32", "0 0 0 2 3 4", "minZ", "3", "0 0 3 2 3 4", "3.5"}}) {
    SCOPED_TRACE(c.type);
    editOwn(c.type, c.before);
    type(find<QLineEdit>(c.line), c.typed);
    EXPECT_EQ(value(), c.after);
    undo();
    EXPECT_EQ(value(), c.before);
    redo();
    EXPECT_EQ(value(), c.after);
    type(find<QLineEdit>(c.line), c.wrong);
    EXPECT_FALSE(problem().isEmpty());
    EXPECT_EQ(shown(c.line), c.wrong);
    EXPECT_EQ(value(), c.after);
    QTest::keyClick(find<QLineEdit>(c.line), Qt::Key_Escape);
  }
}

TEST_F(VectorTest, BoxesShowTheirSizeAndWhetherTheyAreEmpty) {
  editOwn("SFBox2f", "0 0 2 3");
  auto* const size = find<QLabel>("size");
  EXPECT_EQ(size->text(), QString::fromUtf8("Size 2 \u00d7 3"));
  type(find<QLineEdit>("minX"), "2.5");
  EXPECT_EQ(value(), "2.5 0 2 3");
  EXPECT_EQ(size->text(), "Empty: the maximum is below the minimum in x");
  QTest::mouseClick(find<QPushButton>("makeEmpty"), Qt::LeftButton);
  EXPECT_EQ(size->text(), "Empty: the maximum is below the minimum in x, y");
  undo();
  EXPECT_EQ(value(), "2.5 0 2 3");
  type(find<QLineEdit>("maxX"), "5 6"); // the corner
  EXPECT_EQ(value(), "2.5 0 5 6");

  editOwn("SFBox3s", "-1 -1 -1 1 1 1");
  type(find<QLineEdit>("maxZ"), "40000");
  EXPECT_FALSE(problem().isEmpty());
  type(find<QLineEdit>("maxZ"), "1 2 3 4 5 6"); // the box
  EXPECT_EQ(value(), "1 2 3 4 5 6");
  EXPECT_EQ(problem(), "");
  undo();
  EXPECT_EQ(value(), "-1 -1 -1 1 1 1");
}

TEST_F(VectorTest, ANormalIsEnteredBitByBitAndStoredWithLengthOne) {
  auto* const clip = new SoClipPlane;
  edit(clip, "plane");
  ASSERT_EQ(value(), "1 0 0 0");
  type(find<QLineEdit>("x"), "0");
  EXPECT_EQ(problem(), "The normal has length 0: it gives the plane no direction.");
  EXPECT_EQ(shown("x"), "0");
  EXPECT_EQ(value(), "1 0 0 0");
  type(find<QLineEdit>("y"), "3"); // mends it
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(value(), "0 1 0 0");
  type(find<QLineEdit>("z"), "4");
  EXPECT_EQ(value(), "0 0.6 0.8 0");
  EXPECT_EQ(shown("y"), "3");
  EXPECT_EQ(find<QLabel>("normalNote")->text(), "The normal was brought to length 1 (from 5): 0 0.6 0.8");
  type(find<QLineEdit>("distance"), "2.5");
  EXPECT_EQ(value(), "0 0.6 0.8 2.5");
  EXPECT_EQ(shown("equation"), "0.6 y + 0.8 z = 2.5");
  EXPECT_EQ(countSteps(), 3);
  undo();
  undo();
  EXPECT_EQ(value(), "0 1 0 0");
  EXPECT_TRUE(waitFor([&] { return shown("equation") == "y = 0"; }));

  type(find<QLineEdit>("x"), "0 0 0");
  EXPECT_FALSE(problem().isEmpty());
  clip->plane = SbPlane(SbVec3f(0, 0, 1), 8);
  EXPECT_TRUE(waitFor([&] { return note() == "changed to 0 0 1 8"; }));
  EXPECT_EQ(shown("y"), "0");
  QTest::keyClick(find<QLineEdit>("x"), Qt::Key_Escape);
  EXPECT_EQ(shown("z"), "1");
  EXPECT_EQ(problem(), "");
}

TEST_F(VectorTest, APlaneIsEnteredAsAnEquation) {
  edit(new SoClipPlane, "plane");
  struct Case {
    char const *typed, *after;
  };
  for (Case const& c : {Case{"3y = 4z + 10", "0 0.6 -0.8 2"}, Case{"-x=1", "-1 0 0 1"},
                        Case{"0 0 2 5", "0 0 1 2.5"}, Case{"1 + 2*Y + 1e1 = 5e-1", "0 1 0 -5.25"}}) {
    SCOPED_TRACE(c.typed);
    type(find<QLineEdit>("equation"), c.typed);
    EXPECT_EQ(value(), c.after);
    EXPECT_EQ(problem(), "");
  }
  EXPECT_EQ(countSteps(), 4);
  for (char const* wrong : {"2x + y", "x = ", "2x3y = 1", "3 = 4", "x - x = 1", "a = 2", "x = y = z"}) {
    type(find<QLineEdit>("equation"), wrong);
    EXPECT_FALSE(problem().isEmpty()) << wrong;
    EXPECT_EQ(shown("equation"), wrong);
  }
  QTest::keyClick(find<QLineEdit>("equation"), Qt::Key_Escape);
  EXPECT_EQ(shown("equation"), "y = -5.25");
  EXPECT_EQ(value(), "0 1 0 -5.25");
}

} // namespace
