// What the window says about the tree: the status line, tool tips, paths.

#include <QClipboard>
#include <QElapsedTimer>
#include <QStatusBar>
#include <QTest>
#include <QTextDocument>

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoTreeStatus.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

class StatusTest : public VantleTest {
 protected:
  SoTreeStatus* label() const { return frame()->findChild<SoTreeStatus*>(); }
  bool comesToSay(QString const& text) const { return comesToSay(*label(), text); }
  static bool comesToSay(SoTreeStatus const& label, QString const& text) {
    bool const said = waitFor([&] { return label.text() == text; });
    if (!said) ADD_FAILURE() << "the label says \"" << qPrintable(label.text()) << '"';
    return said;
  }
  /// A chain of groups, each of which holds the next twice.
  static SoRef<SoSeparator> doublings(int count) {
    SoRef<SoSeparator> top(new SoSeparator);
    for (int i = 0; i < count; ++i) {
      SoRef<SoSeparator> const above(new SoSeparator);
      above->addChild(top);
      above->addChild(top);
      top = above;
    }
    return top;
  }
};

TEST_F(StatusTest, NodesPlacesAndWhatIsSelected) {
  start(read("Separator { DEF g Group { Cube { } Sphere { } } Switch { USE g } Cone { } }"));
  SoTreeViewItem* const root = tree()->firstChild();
  EXPECT_TRUE(comesToSay("6 nodes, 9 places; selected 6 nodes, 9 places"));
  tree()->setCurrentItem(root->child(1));
  EXPECT_TRUE(comesToSay("6 nodes, 9 places; selected 4 nodes, 4 places"));
  static_cast<SoGroup*>(root->child(0)->getNode())->addChild(root->child(2)->getNode());
  EXPECT_TRUE(comesToSay("6 nodes, 11 places; selected 5 nodes, 5 places"));
  tree()->setCurrentItem(root->child(2));
  EXPECT_TRUE(comesToSay("6 nodes, 11 places; selected 1 node, 1 place"));
  static_cast<SoGroup*>(root->getNode())->removeChild(1);
  EXPECT_TRUE(comesToSay("5 nodes, 6 places; selected 1 node, 1 place"));
  viewer()->setScene(nullptr, true);
  EXPECT_TRUE(comesToSay("No scene"));
  EXPECT_EQ(SoTreeStatus::grouped(1073741824), "1,073,741,824");
}

// Without a 3D view, which would draw all of it.
TEST_F(StatusTest, ChangesArePutOff) {
  QStatusBar bar;
  SoRef<SoSeparator> const scene(new SoSeparator);
  WatchedTree tree(scene);
  SoTreeStatus const label(&tree.view, &bar);
  QString const first = "1 node, 1 place; selected 1 node, 1 place";
  ASSERT_TRUE(comesToSay(label, first));
  for (int i = 0; i < 10000; ++i) scene->addChild(new SoCube);
  EXPECT_EQ(label.text(), first);
  EXPECT_TRUE(comesToSay(label, "10,001 nodes, 10,001 places; selected 10,001 nodes, 10,001 places"));

  // While the scene changes all the time, the text does so four times a second at most.
  int changes = 0;
  QString last = label.text();
  QElapsedTimer time;
  time.start();
  waitFor([&] {
    scene->addChild(new SoCube);
    if (last != label.text()) ++changes;
    last = label.text();
    return time.elapsed() > 1100;
  });
  EXPECT_GE(changes, 1);
  EXPECT_LE(changes, 5);
}

TEST_F(StatusTest, LargeAndUnbuiltParts) {
  QStatusBar bar;
  WatchedTree tree;
  SoTreeStatus label(&tree.view, &bar);
  EXPECT_TRUE(comesToSay(label, "No scene"));
  SoRef<SoSeparator> const scene(new SoSeparator);
  scene->addChild(doublings(18)); // 524,287 rows
  tree.selection->addChild(scene);
  EXPECT_TRUE(comesToSay(label, "20 nodes, 524,288 places; selected 20 nodes, 524,288 places"));
  tree.view.setCurrentItem(tree.root()->child(0));
  EXPECT_TRUE(comesToSay(label, "20 nodes, 524,288 places; selected over 500,000 places"));
  tree.view.setCurrentItem(tree.root()->child(0)->child(1));
  EXPECT_TRUE(comesToSay(label, "20 nodes, 524,288 places; selected 18 nodes, 262,143 places"));

  tree.selection->removeAllChildren();
  tree.view.setRowLimit(1000);
  tree.selection->addChild(doublings(29));
  ASSERT_TRUE(waitFor([&] { return label.text().endsWith(" places not built"); }));
  auto const rest = [&] {
    int const rows = tree.view.getReferencedNodeManager()->rowCount();
    return ", " + SoTreeStatus::grouped((1 << 30) - 1 - rows) + " places not built";
  };
  EXPECT_TRUE(label.text().endsWith(rest())) << qPrintable(label.text());
  SoTreeViewItem* unbuilt = tree.root();
  while (!unbuilt->isUnbuilt()) unbuilt = SoVantleTreeView::itemBelowInTree(unbuilt);
  QString const before = label.text();
  unbuilt->setExpanded(true);
  EXPECT_TRUE(waitFor([&] { return label.text() != before; }));
  EXPECT_TRUE(label.text().endsWith(rest())) << qPrintable(label.text());
}

TEST_F(StatusTest, GivesItsRoomToMessages) {
  start(read("Separator { Cube { } }"));
  ASSERT_TRUE(comesToSay("2 nodes, 2 places; selected 2 nodes, 2 places"));
  EXPECT_EQ(label()->minimumSizeHint().width(), 0);
  frame()->setWindowState(Qt::WindowNoState);
  frame()->resize(800, 600);
  ASSERT_TRUE(
      waitFor([&] { return frame()->width() == 800 && label()->width() >= label()->sizeHint().width(); }));
  frame()->statusBar()->showMessage("short");
  EXPECT_EQ(label()->maximumWidth(), QWIDGETSIZE_MAX);
  QString const message = QString("a long message, ").repeated(6);
  frame()->statusBar()->showMessage(message);
  int const needed = frame()->statusBar()->fontMetrics().horizontalAdvance(message);
  EXPECT_TRUE(waitFor([&] { return label()->width() == 0 || label()->x() >= needed; }));
  frame()->statusBar()->clearMessage();
  EXPECT_TRUE(waitFor([&] { return label()->width() >= label()->sizeHint().width(); }));
}

/// As the tool tip shows it.
QStringList toolTipLines(SoTreeViewItem const* row) {
  QTextDocument document;
  document.setHtml(row->toolTip(0));
  return document.toPlainText().split('\n');
}

using PathTextTest = StatusTest;

TEST_F(PathTextTest, StepsOfAllKinds) {
  WatchedTree tree(read(R"(DEF top Separator {
    PointLight { }
    IndexedFaceSet { vertexProperty VertexProperty { } }
    DEF "a<b>b" Group { Texture2 { filename "no such <i>file</i>.png" } }
  })"));
  SoTreeViewItem* const root = tree.root();
  EXPECT_EQ(SoVantleTreeView::pathText(root), "Separator \"top\"");
  SoTreeViewItem* const held = root->child(1)->child(0);
  EXPECT_EQ(SoVantleTreeView::pathText(held),
            "Separator \"top\" / IndexedFaceSet [1] / VertexProperty .vertexProperty");
  EXPECT_EQ(toolTipLines(held), QStringList({"Separator \"top\"", "IndexedFaceSet: child 1",
                                             "VertexProperty: field vertexProperty"}));
  SoTreeViewItem* const texture = root->child(2)->child(0);
  EXPECT_EQ(toolTipLines(texture).last(), "File: no such <i>file</i>.png")
      << "what looks like markup is none";
  EXPECT_EQ(toolTipLines(root->child(2))[1], "Group " + ('"' + root->child(2)->text(1) + '"') + ": child 2");
  EXPECT_EQ(SoVantleTreeView::pathText(nullptr), "");

  // The place is the present one, and of ignored rows there is none.
  static_cast<SoGroup*>(root->getNode())->insertChild(new SoCube, 0);
  EXPECT_EQ(SoVantleTreeView::pathText(texture->parent()).section('/', 1).right(3), "[3]");
  texture->parent()->setIgnoreFlag(true);
  EXPECT_TRUE(SoVantleTreeView::pathText(texture->parent()).endsWith("(ignored)"));
}

TEST_F(PathTextTest, PartsOfAKitAndManyValues) {
  WatchedTree tree(
      read("Separator { ShapeKit { appearance AppearanceKit { material Material { } } shape Cube { } } }"));
  SoTreeViewItem* const kit = tree.root()->child(0);
  QStringList paths;
  for (SoTreeViewItem* row = kit; row; row = SoVantleTreeView::itemBelowInTree(row)) {
    paths << SoVantleTreeView::pathText(row);
    if (row->baseKitPart()) {
      EXPECT_TRUE(toolTipLines(row).last().contains("part " + row->text(1)))
          << qPrintable(toolTipLines(row).last());
    }
  }
  EXPECT_EQ(paths.size(), QSet<QString>(paths.begin(), paths.end()).size()) << "no two places have one path";
  EXPECT_TRUE(paths[1].startsWith("Separator / ShapeKit [0] / ")) << qPrintable(paths[1]);

  WatchedTree shader(
      read("Separator { FragmentShader { parameter [ ShaderParameter1f { }, ShaderParameter1f { } ] } }"));
  SoTreeViewItem* const second = shader.view.lastItem();
  EXPECT_EQ(SoVantleTreeView::pathText(second),
            "Separator / FragmentShader [0] / ShaderParameter1f .parameter[1]");
  EXPECT_EQ(toolTipLines(second).last(), "ShaderParameter1f: value 1 of field parameter");
}

TEST_F(PathTextTest, DeepPlacesAndLongNames) {
  SoRef<SoGroup> const scene(new SoSeparator);
  SoGroup* last = scene;
  for (int i = 0; i < 3000; ++i) {
    auto* const below = new SoSeparator;
    last->addChild(below);
    last = below;
  }
  last->setName(SbName(std::string(1000, 'x')));
  WatchedTree tree(scene);
  QStringList const lines = toolTipLines(tree.view.lastItem());
  EXPECT_EQ(lines.filter("levels").size(), 1);
  EXPECT_EQ(lines[4], "... 2982 levels ...");
  EXPECT_LT(lines.size(), 40);
  for (QString const& line : lines) EXPECT_LT(line.size(), 110);
  EXPECT_EQ(lines.join("").count('x'), 1000 + 59) << "the name is there in full";
  EXPECT_EQ(SoVantleTreeView::pathText(tree.view.lastItem()).count(" / "), 3000);
  EXPECT_LE(tree.view.columnWidth(1), 400);
}

TEST_F(PathTextTest, CopiedByKey) {
  start(read("Separator { DEF box Cube { } }"));
  tree()->setCurrentItem(tree()->firstChild()->child(0));
  frame()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(frame()));
  tree()->setFocus();
  QTest::keyClick(tree(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "Separator / Cube \"box\" [0]");
  EXPECT_EQ(frame()->statusBar()->currentMessage(), "The path of Cube is on the clipboard");
}

} // namespace
