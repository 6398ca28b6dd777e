// Tables of values: each type of field, by keys, mouse and clipboard.

#include <QColorDialog>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <cmath>

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/nodes/SoCoordinate3.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSphere.h"
#include "tests/extender_base/TableTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/VntServices.h"

namespace {

struct TypeCase {
  char const* type;
  char const* value; // of two rows
  int columns;
  int row, column; // of the cell that is edited
  char const* entered;
  char const* changed; // the field's value then
  char const* wrong;   // can not be entered there
  char const* why;     // part of what is then said
};

void PrintTo(TypeCase const& test, std::ostream* out) { *out << test.type; }

class TableTypeTest : public TableTest, public ::testing::WithParamInterface<TypeCase> {};

TEST_P(TableTypeTest, ACellIsEditedUndoneAndRefused) {
  TypeCase const& test = GetParam();
  editOwn(test.type, test.value);
  std::string const before = value();
  ASSERT_EQ(table()->model()->rowCount(), 2);
  ASSERT_EQ(table()->model()->columnCount(), test.columns);
  QString const shown = cell(test.row, test.column);

  typeCell(test.row, test.column, test.entered);
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(value(), test.changed);
  EXPECT_EQ(countSteps(), 1);
  undo();
  EXPECT_EQ(value(), before);
  EXPECT_EQ(cell(test.row, test.column), shown);
  redo();
  EXPECT_EQ(value(), test.changed);
  ASSERT_TRUE(waitFor([this] { return !openLine(); }));

  if (!test.wrong) return;
  typeCell(test.row, test.column, test.wrong);
  EXPECT_TRUE(problem().contains(QLatin1String(test.why))) << problem().toStdString();
  EXPECT_TRUE(problem().startsWith(QStringLiteral("Row %1").arg(test.row))) << problem().toStdString();
  ASSERT_TRUE(openLine());
  EXPECT_EQ(openLine()->text(), test.wrong);
  EXPECT_EQ(value(), test.changed);
  QTest::keyClick(openLine(), Qt::Key_Escape);
  EXPECT_TRUE(waitFor([this] { return !openLine(); }));
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(value(), test.changed);
  EXPECT_EQ(countSteps(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    AllTypes, TableTypeTest,
    ::testing::Values(
        TypeCase{"MFColor", "[ 1 0 0, 0 1 0 ]", 4, 1, 3, "#0000ff", "[ 1 0 0, 0 0 1 ]", "#12", "no colour"},
        TypeCase{"MFFloat", "[ 1, nan ]", 1, 1, 0, "1/4", "[ 1, 0.25 ]", "1e39", "too large"},
        TypeCase{"MFInt32", "[ 1, -7 ]", 1, 0, 0, "2*3", "[ 6, -7 ]", "1.5", "whole"},
        TypeCase{"MFMatrix", "[ 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1, 1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1 ]", 16, 1,
                 12, "sqrt(16)",
                 "[\n  1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1,\n  1 0 0 0 0 1 0 0 0 0 1 0 4 2 3 1\n]", "4,",
                 "\",\""},
        TypeCase{"MFPlane", "[ 1 0 0 5, 0 1 0 6 ]", 4, 1, 3, "-2", "[ 1 0 0 5, 0 1 0 -2 ]", "x", "x"},
        TypeCase{"MFRotation", "[ 0 0 1 0, 1 0 0 2 ]", 4, 1, 3, "0.5", "[ 0 0 1 0, 1 0 0 0.5 ]", "inf",
                 "finite"},
        TypeCase{"MFShort", "[ 1, 2 ]", 1, 1, 0, "-32768", "[ 1, -32768 ]", "32768", "range"},
        TypeCase{"MFString", "[ \"a\", \"b c\" ]", 1, 1, 0, "a \"b\"", "[\n  \"a\",\n  \"a \\\"b\\\"\"\n]",
                 nullptr, nullptr},
        TypeCase{"MFUInt32", "[ 1, 2 ]", 1, 1, 0, "4294967295", "[ 1, 4294967295 ]", "-1", "range"},
        TypeCase{"MFUShort", "[ 1, 2 ]", 1, 1, 0, "0xff", "[ 1, 255 ]", "65536", "range"},
        TypeCase{"MFVec2f", "[ 1 2, 3 4 ]", 2, 0, 1, "2.5", "[ 1 2.5, 3 4 ]", "1/0", "zero"},
        TypeCase{"MFVec2i32", "[ 1 2, 3 4 ]", 2, 1, 0, "9", "[ 1 2, 9 4 ]", "3000000000", "range"},
        TypeCase{"MFVec2s", "[ 1 2, 3 4 ]", 2, 1, 1, "-9", "[ 1 2, 3 -9 ]", "40000", "range"},
        TypeCase{"MFVec3f", "[ 1 2 3, 4 5 6 ]", 3, 1, 2, "-inf", "[ 1 2 3, 4 5 -inf ]", "2+", "missing"},
        TypeCase{"MFVec4f", "[ 1 2 3 4, 5 6 7 8 ]", 4, 0, 3, "9", "[ 1 2 3 9, 5 6 7 8 ]", "1 2", "missing"},
        TypeCase{"MFBool", "[ TRUE, TRUE ]", 1, 1, 0, "FALSE", "[ TRUE, FALSE ]", "maybe", "maybe"}),
    [](auto const& test) { return test.param.type; });

TEST_F(TableTest, NodesKeepTheirIdentityInAFieldOfAnyType) {
  SoRef<SoNode> const scene =
      read("Separator { Own { fields [ MFNode own ] own [ Cube { }, Sphere { }, NULL ] } }");
  SoNode* const node = static_cast<SoGroup*>(scene.get())->getChild(0);
  edit(node, "own");
  auto& nodes = *static_cast<SoMFNode*>(field());
  SoNode *const cube = nodes[0], *const sphere = nodes[1];
  ASSERT_TRUE(cube && sphere);
  selectRow(0);
  press(Qt::Key_Down, Qt::AltModifier);
  EXPECT_TRUE(nodes.getNum() == 3 && nodes[0] == sphere && nodes[1] == cube);
  press(Qt::Key_Delete);
  EXPECT_TRUE(nodes.getNum() == 2 && nodes[0] == sphere && !nodes[1]);
  undo();
  EXPECT_TRUE(nodes.getNum() == 3 && nodes[0] == sphere && nodes[1] == cube && !nodes[2]);
  undo();
  EXPECT_TRUE(nodes[0] == cube && nodes[1] == sphere);
  undo();
  redo();
  EXPECT_TRUE(nodes[0] == sphere && nodes[1] == cube);
}

TEST_F(TableTest, ManyNodesAreTurnedRoundInNoTime) {
  editOwn("MFNode", "[ ]");
  auto& nodes = *static_cast<SoMFNode*>(field());
  std::vector<SoNode*> cubes(5000);
  for (SoNode*& cube : cubes) cube = new SoCube;
  nodes.setValues(cubes);
  ASSERT_TRUE(waitFor([this] { return table()->model()->rowCount() == 5000; }));
  QElapsedTimer timer;
  timer.start();
  trigger("reverse");
  EXPECT_LT(timer.elapsed(), 2000);
  EXPECT_TRUE(nodes[0] == cubes.back() && nodes[4999] == cubes.front());
  undo();
  EXPECT_TRUE(nodes[0] == cubes.front() && nodes[4999] == cubes.back());
}

TEST_F(TableTest, AConnectedFieldCanBeReadAndCopied) {
  auto* const source = new SoCoordinate3;
  auto* const node = new SoCoordinate3;
  source->point.setValues({SbVec3f(1, 2, 3), SbVec3f(4, 5, 6)});
  node->point.connectFrom(&source->point);
  auto* const scene = new SoSeparator;
  scene->addChild(source);
  scene->addChild(node);
  edit(scene, "renderCaching");
  VntServices::getInstance()->setSelectedField(&node->point);
  EXPECT_TRUE(table()->isEnabled() && table()->verticalScrollBar()->isEnabled());
  select(0, 0, 1, 1);
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(clipboard(), "1\t2\n4\t5\n");
  for (Qt::Key key : {Qt::Key_Delete, Qt::Key_Insert, Qt::Key_Return, Qt::Key_5}) press(key);
  press(Qt::Key_V, Qt::ControlModifier);
  QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {},
                     table()->visualRect(table()->currentIndex()).center());
  EXPECT_FALSE(openLine());
  EXPECT_FALSE(find<QLineEdit>("applyExpression")->isEnabled());
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(countSteps(), 0);
  source->point.set1Value(1, SbVec3f(7, 8, 9));
  EXPECT_TRUE(waitFor([this] { return cell(1, 0) == "7"; }));
  QTest::mouseClick(find<QPushButton>("disconnect"), Qt::LeftButton);
  ASSERT_TRUE(waitFor([this] { return find<QLineEdit>("applyExpression")->isEnabled(); }));
  typeCell(0, 0, "5");
  EXPECT_EQ(node->point[0], SbVec3f(5, 2, 3));
}

/// With room for the editor of the current value below the table, and for the chart above it.
class RoomyTableTest : public TableTest {
 public:
  void editTall(char const* type, char const* value) {
    editOwn(type, value);
    makeRoom();
    find<QAction>("showRow")->setChecked(true);
    ASSERT_TRUE(waitFor([this] { return row()->isVisible(); }));
  }
  void makeRoom() {
    auto* const dock = frame()->findChild<QDockWidget*>("dockFieldEditor");
    dock->setFloating(true);
    dock->resize(500, 900);
    dock->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dock));
  }
  QGroupBox* row() const { return find<QGroupBox>("tableRow"); }
};

TEST_F(RoomyTableTest, AColorOfManyIsEditedAsTheOnlyOneIs) {
  editTall("MFColor", "[ 1 0 0, 0 1 0 ]");
  goTo(1, 0);
  EXPECT_EQ(row()->title(), "Value 1");
  EXPECT_EQ(find<QLineEdit>("colorText")->text(), "#00ff00");
  type(find<QLineEdit>("colorText"), "blue");
  EXPECT_EQ(value(), "[ 1 0 0, 0 0 1 ]");
  EXPECT_EQ(countSteps(), 1);
  type(find<QLineEdit>("colorText"), "blew");
  EXPECT_TRUE(problem().contains("\"blew\" is no colour")) << problem().toStdString();
  QTest::keyClick(find<QLineEdit>("colorText"), Qt::Key_Escape);
  EXPECT_EQ(find<QLineEdit>("colorText")->text(), "#0000ff");

  // Steps are shown at once, and are one step in the end or none.
  auto* const green = find<QLineEdit>("green");
  green->setFocus();
  for (int i = 0; i < 5; ++i) QTest::keyClick(green, Qt::Key_Up);
  EXPECT_EQ(value(), "[ 1 0 0, 0 0.05 1 ]");
  QTest::keyClick(green, Qt::Key_Escape);
  EXPECT_EQ(value(), "[ 1 0 0, 0 0 1 ]");
  for (int i = 0; i < 5; ++i) QTest::keyClick(green, Qt::Key_Up);
  QTest::keyClick(green, Qt::Key_Return);
  EXPECT_EQ(value(), "[ 1 0 0, 0 0.05 1 ]");
  EXPECT_EQ(countSteps(), 2);
  EXPECT_EQ(cell(1, 1), "0.05");
  undo();
  undo();
  EXPECT_EQ(value(), "[ 1 0 0, 0 1 0 ]");
  EXPECT_TRUE(waitFor([this] { return find<QLineEdit>("colorText")->text() == "#00ff00"; }));

  // What is typed for one value is none of the next one's, nor of another field's.
  type(find<QLineEdit>("colorText"), "white", false);
  VntServices::getInstance()->setSelectedField(nullptr);
  VntServices::getInstance()->setSelectedField(field());
  EXPECT_EQ(value(), "[ 1 0 0, 0 1 0 ]");
  ASSERT_TRUE(waitFor([this] { return row()->isVisible(); }));
  type(find<QLineEdit>("colorText"), "white", false);
  goTo(1, 0);
  EXPECT_EQ(find<QLineEdit>("colorText")->text(), "#00ff00");
  EXPECT_EQ(value(), "[ 1 0 0, 0 1 0 ]");
}

TEST_F(RoomyTableTest, TheProgramTakesTheValuesAway) {
  editTall("MFRotation", "[ 0 0 1 0, 1 0 0 2 ]");
  goTo(1, 0);
  static_cast<SoMField*>(field())->deleteValues(0);
  EXPECT_TRUE(waitFor([this] { return row()->title() == "No value"; }));
  undo();
  press(Qt::Key_Insert);
  EXPECT_TRUE(waitFor([this] { return row()->title() == "Value 0"; }));
  EXPECT_EQ(countSteps(), 1);
}

TEST_F(RoomyTableTest, FoldsWhereThereIsNoRoom) {
  editTall("MFColor", "1 0 0");
  EXPECT_FALSE(find<QWidget>("chart")->isVisible()); // of one value there is nothing to see
  auto* const dock = frame()->findChild<QDockWidget*>("dockFieldEditor");
  dock->resize(400, 320);
  EXPECT_TRUE(waitFor([this] { return !row()->isVisible(); }));
  dock->resize(400, 800);
  EXPECT_TRUE(waitFor([this] { return row()->isVisible(); }));
  find<QAction>("showRow")->trigger();
  EXPECT_FALSE(row()->isVisible());
  find<QAction>("showRow")->trigger();
  EXPECT_TRUE(row()->isVisible());
}

TEST_F(TableTest, WhatHasUnitLengthSaysWhyItStays) {
  editOwn("MFRotation", "[ 0 0 1 0, 0 0 1 1 ]");
  typeCell(0, 0, "1");
  EXPECT_TRUE(problem().contains("no axis")) << problem().toStdString();
  QTest::keyClick(openLine(), Qt::Key_Escape);
  typeCell(1, 2, "0");
  EXPECT_TRUE(problem().contains("must not be zero")) << problem().toStdString();
  QTest::keyClick(openLine(), Qt::Key_Escape);
  EXPECT_EQ(countSteps(), 0);
  setClipboard("0\t3\t0\t2\n");
  goTo(1, 0);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(value(), "[ 0 0 1 0, 0 1 0 2 ]");
}

TEST_F(TableTest, RowsAreInsertedDeletedMovedAndDuplicated) {
  editOwn("MFInt32", "[ 1, 2, 3, 4 ]");
  select(1, 0, 2, 0);
  press(Qt::Key_Insert);
  EXPECT_EQ(value(), "[ 1, 0, 0, 2, 3, 4 ]");
  EXPECT_TRUE(step().contains("Insert 2 values into own of")) << step().toStdString();
  // The new ones are selected.
  press(Qt::Key_Delete);
  EXPECT_EQ(value(), "[ 1, 2, 3, 4 ]");
  select(1, 0, 2, 0);
  press(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(value(), "[ 1, 4, 2, 3 ]");
  press(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(value(), "[ 1, 4, 2, 3 ]");
  press(Qt::Key_Up, Qt::AltModifier);
  press(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(value(), "[ 2, 3, 1, 4 ]");
  press(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(value(), "[ 2, 3, 2, 3, 1, 4 ]");
  EXPECT_EQ(countSteps(), 6);
  while (countSteps() > 0) undo();
  EXPECT_EQ(value(), "[ 1, 2, 3, 4 ]");

  table()->selectAll();
  press(Qt::Key_Delete);
  EXPECT_EQ(value(), "[ ]");
  EXPECT_EQ(find<QLabel>("summary")->text(), "0 values");
  press(Qt::Key_Insert, Qt::ShiftModifier);
  EXPECT_EQ(value(), "0");
}

TEST_F(TableTest, SortingIsStableAndKeepsToTheSelection) {
  editOwn("MFVec2f", "[ 3 1, nan 2, 1 3, 3 4, 2 5 ]");
  goTo(0, 0);
  trigger("sortAscending");
  EXPECT_EQ(value(), "[\n  1 3, 2 5, 3 1, 3 4, nan 2\n]");
  trigger("sortDescending");
  EXPECT_EQ(value(), "[\n  3 1, 3 4, 2 5, 1 3, nan 2\n]");
  select(1, 1, 3, 1);
  trigger("sortAscending");
  EXPECT_EQ(value(), "[\n  3 1, 1 3, 3 4, 2 5, nan 2\n]");
  trigger("reverse");
  EXPECT_EQ(value(), "[\n  3 1, 2 5, 3 4, 1 3, nan 2\n]");
  EXPECT_EQ(countSteps(), 4);
  for (int i = 0; i < 4; ++i) undo();
  EXPECT_EQ(value(), "[\n  3 1, nan 2, 1 3, 3 4, 2 5\n]");
}

TEST_F(TableTest, ARangeIsChangedByAnExpression) {
  editOwn("MFVec3f", "[ 1 2 3, 4 5 6, 7 8 9 ]");
  select(0, 1, 1, 2);
  type(find<QLineEdit>("applyExpression"), "v*2 + i");
  EXPECT_EQ(value(), "[ 1 4 6, 4 11 13, 7 8 9 ]");
  EXPECT_EQ(countSteps(), 1);
  type(find<QLineEdit>("applyExpression"), "1/(v-11)");
  EXPECT_TRUE(problem().startsWith("Row 1, y:")) << problem().toStdString();
  EXPECT_EQ(find<QLineEdit>("applyExpression")->text(), "1/(v-11)");
  EXPECT_EQ(value(), "[ 1 4 6, 4 11 13, 7 8 9 ]");
  undo();
  EXPECT_EQ(value(), "[ 1 2 3, 4 5 6, 7 8 9 ]");

  select(0, 0, 2, 0);
  trigger("fillDown");
  EXPECT_EQ(value(), "[ 1 2 3, 1 5 6, 1 8 9 ]");
  typeCell(2, 0, "2");
  select(0, 0, 2, 0);
  trigger("ramp");
  EXPECT_EQ(value(), "[ 1 2 3, 1.5 5 6, 2 8 9 ]");
}

TEST_F(TableTest, CellsGoToASpreadsheetAndComeBack) {
  editOwn("MFVec3f", "[ 1 2 3, 4 5 6 ]");
  select(0, 1, 1, 2);
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(clipboard(), "2\t3\n5\t6\n");
  goTo(1, 0);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(value(), "[ 1 2 3, 2 3 6, 5 6 0 ]");
  EXPECT_EQ(countSteps(), 1);
  undo();
  EXPECT_EQ(value(), "[ 1 2 3, 4 5 6 ]");

  struct {
    char const* text;
    char const* problem;
  } const faults[] = {{"1\t2\t3\n4\tfive\t6\n", "Pasted row 2, column 2:"},
                      {"1 2 3 4", "Pasted row 1, column 4:"},
                      {"1e99", "Pasted row 1, column 1:"}};
  for (auto const& fault : faults) {
    goTo(0, 0);
    setClipboard(fault.text);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(problem().startsWith(QLatin1String(fault.problem))) << problem().toStdString();
    EXPECT_EQ(value(), "[ 1 2 3, 4 5 6 ]");
  }
  for (char const* text : {"9, 8, 7\r\n6; 5 max(1, 4)", "[ 9 8 7, 6 5 4 ]"}) {
    setClipboard(text);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(value(), "[ 9 8 7, 6 5 4 ]");
    EXPECT_EQ(problem(), "");
    undo();
  }
  table()->selectAll();
  press(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(clipboard(), "1\t2\t3\n4\t5\t6\n");
  EXPECT_EQ(value(), "[ ]");
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(value(), "[ 1 2 3, 4 5 6 ]");
}

TEST_F(TableTest, TextsAreQuotedWhereASpreadsheetNeedsIt) {
  editOwn("MFString", "[ \"a\tb\", \"\\\"c\\\"\", \"d, e\" ]");
  std::string const before = value();
  table()->selectAll();
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(clipboard(), "\"a\tb\"\n\"\"\"c\"\"\"\nd, e\n");
  press(Qt::Key_X, Qt::ControlModifier);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(value(), before);
  type(find<QLineEdit>("applyExpression"), "all");
  EXPECT_EQ(value(), "[\n  \"all\",\n  \"all\",\n  \"all\"\n]");
}

TEST_F(TableTest, TheProgramsChangesAreShownButNotOverTyping) {
  auto* const node = new SoCoordinate3;
  node->point.setValues({SbVec3f(1, 2, 3), SbVec3f(4, 5, 6)});
  edit(node, "point");
  select(0, 0, 1, 1);
  node->point.set1Value(5, SbVec3f(0, 0, 9));
  ASSERT_TRUE(waitFor([&] { return table()->model()->rowCount() == 6; }));
  EXPECT_EQ(cell(5, 2), "9");
  EXPECT_EQ(table()->selectionModel()->selectedIndexes().size(), 4);

  typeCell(0, 0, "77", false);
  node->point.set1Value(1, SbVec3f(-4, 5, 6));
  ASSERT_TRUE(waitFor([&] { return cell(1, 0) == "-4"; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(note(), "");
  node->point.set1Value(0, SbVec3f(0.5f, 2, 3));
  ASSERT_TRUE(waitFor([&] { return note() == "changed to 0.5"; })) << note().toStdString();
  EXPECT_EQ(openLine()->text(), "77");
  QTest::keyClick(openLine(), Qt::Key_Return);
  EXPECT_EQ(node->point[0], SbVec3f(77, 2, 3));
  EXPECT_TRUE(waitFor([&] { return note().isEmpty(); }));

  // The rows of a cell that is open go: nothing is left of it, and nothing is set.
  typeCell(5, 1, "8", false);
  node->point.setNum(2);
  ASSERT_TRUE(waitFor([&] { return table()->model()->rowCount() == 2 && !openLine(); }));
  EXPECT_EQ(node->point.getNum(), 2);
  EXPECT_EQ(countSteps(), 1);
  // What the step was about is there, then no more.
  undo();
  EXPECT_EQ(node->point[0], SbVec3f(0.5f, 2, 3));
  node->point.setNum(0);
  redo();
  undo();
  EXPECT_EQ(node->point.getNum(), 0);
}

TEST_F(TableTest, ACellStepsByTheWheelInOneUndoableStep) {
  auto* const node = new SoCoordinate3;
  node->point.setValues({SbVec3f(1, 2, 3), SbVec3f(4, 5, 6)});
  edit(node, "point");
  table()->setFocus();
  goTo(1, 0);
  press(Qt::Key_Return);
  ASSERT_TRUE(waitFor([this] { return openLine() && openLine()->hasFocus(); }));
  for (int i = 0; i < 3; ++i) QTest::keyClick(openLine(), Qt::Key_Up);
  EXPECT_NEAR(node->point[1][0], 4.3f, 1e-5f);
  QTest::keyClick(openLine(), Qt::Key_Escape);
  EXPECT_EQ(node->point[1][0], 4);
  EXPECT_EQ(countSteps(), 0);
  QTest::keyClick(openLine(), Qt::Key_Up);
  QTest::keyClick(openLine(), Qt::Key_Up);
  QTest::keyClick(openLine(), Qt::Key_Return);
  EXPECT_NEAR(node->point[1][0], 4.2f, 1e-5f);
  EXPECT_EQ(countSteps(), 1);
  undo();
  EXPECT_EQ(node->point[1], SbVec3f(4, 5, 6));
}

TEST_F(TableTest, TheFieldGoesWhileACellIsOpen) {
  edit(new SoSeparator, "renderCaching");
  auto points = std::make_unique<SoRef<SoCoordinate3>>(new SoCoordinate3);
  VntServices::getInstance()->setSelectedField(&(*points)->point);
  typeCell(0, 1, "5", false);
  points.reset();
  QCoreApplication::processEvents();
  EXPECT_EQ(find<QLabel>("fieldName")->text(), "No field is selected");
  EXPECT_EQ(countSteps(), 0);

  // Another field is selected: what is typed belonged to the first one.
  SoRef<SoCoordinate3> const other(new SoCoordinate3);
  VntServices::getInstance()->setSelectedField(&other->point);
  typeCell(0, 1, "5", false);
  VntServices::getInstance()->setSelectedField(nullptr);
  QCoreApplication::processEvents();
  EXPECT_EQ(other->point[0], SbVec3f(0, 0, 0));
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(TableTest, TabGoesFromCellToCellAndTheDefaultComesBack) {
  edit(new SoCoordinate3, "point");
  ASSERT_TRUE(field()->isDefault());
  trigger("insertSeveral");
  auto* const dialog = panel()->findChild<QInputDialog*>();
  ASSERT_TRUE(dialog);
  dialog->setIntValue(2);
  dialog->accept();
  EXPECT_EQ(value(), "[ 0 0 0, 0 0 0, 0 0 0 ]");
  EXPECT_FALSE(field()->isDefault());
  typeCell(1, 0, "1", false);
  for (char const* next : {"2", "3"}) {
    QPointer<QWidget> const last = openLine();
    QTest::keyClick(openLine(), Qt::Key_Tab);
    ASSERT_TRUE(waitFor([&] { return !last && openLine() && openLine()->hasFocus(); }));
    type(openLine(), next, false);
  }
  QTest::keyClick(openLine(), Qt::Key_Return);
  EXPECT_EQ(value(), "[ 0 0 0, 1 2 3, 0 0 0 ]");
  EXPECT_EQ(table()->currentIndex().row(), 2);
  EXPECT_EQ(countSteps(), 4);
  for (int i = 0; i < 4; ++i) undo();
  EXPECT_EQ(value(), "0 0 0");
  EXPECT_TRUE(field()->isDefault());
}

TEST_F(TableTest, AColorIsChosenInTheDialogOfThePlatform) {
  editOwn("MFColor", "[ 1 0 0, 0.1 0.2 0.3 ]");
  std::string const before = value();
  for (bool const accepts : {false, true}) {
    QPoint const swatch = table()->visualRect(table()->model()->index(1, 3)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, swatch);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, swatch);
    auto* const dialog = panel()->findChild<QColorDialog*>();
    ASSERT_TRUE(dialog && waitFor([&] { return dialog->isVisible(); }));
    dialog->setCurrentColor(Qt::blue);
    dialog->setCurrentColor(Qt::green);
    EXPECT_EQ(value(), "[ 1 0 0, 0 1 0 ]");
    EXPECT_EQ(countSteps(), 0);
    if (accepts)
      dialog->accept();
    else
      dialog->reject();
    EXPECT_EQ(value(), accepts ? "[ 1 0 0, 0 1 0 ]" : before);
    EXPECT_EQ(countSteps(), accepts ? 1 : 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  undo();
  EXPECT_EQ(value(), before);
}

TEST_F(RoomyTableTest, TheChartShowsWhereTheValuesAre) {
  auto* const node = new SoCoordinate3;
  std::vector<SbVec3f> points(1001);
  for (int i = 0; i <= 1000; ++i) points[i] = SbVec3f(static_cast<float>(i), 0, -1);
  points[3][1] = std::nanf("");
  node->point.setValues(points);
  edit(node, "point");
  makeRoom();
  auto* const chart = find<QWidget>("chart");
  find<QAction>("showChart")->setChecked(true); // whatever was wanted for the last field
  ASSERT_TRUE(waitFor([&] { return chart->isVisible(); }));
  ASSERT_TRUE(waitFor([&] { return find<QLabel>("summary")->text().contains("x 0 to 1000"); }));
  EXPECT_EQ(find<QLabel>("summary")->text(), "1,001 values, x 0 to 1000, y 0 to 0, z -1 to -1, 1 not finite");
  QTest::mouseClick(chart, Qt::LeftButton, {}, QPoint(chart->width() / 2, chart->height() / 2));
  EXPECT_NEAR(table()->currentIndex().row(), 500, 5);
  EXPECT_TRUE(waitFor([this] { return table()->hasFocus(); }));
  EXPECT_TRUE(table()->viewport()->rect().intersects(table()->visualRect(table()->currentIndex())));
  find<QAction>("showChart")->trigger();
  EXPECT_FALSE(chart->isVisible());
  find<QAction>("showChart")->trigger();
  EXPECT_TRUE(chart->isVisible());
}

} // namespace
