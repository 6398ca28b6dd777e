// The tree's page in the preferences, and what rows look like for it.

#include <QCheckBox>
#include <QColorDialog>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTest>

#include "kestrava/render/SoHighlightRenderAction.h"
#include "kestrava/render/SoSceneManager.h"
#include "tests/vantle/SceneRows.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vantle/prefs/SoVantlePreferences.h"
#include "vantle/prefs/TreeViewConfig.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

char const sceneText[] = R"(Separator {
  DEF box Cube { }
  IndexedFaceSet { vertexProperty VertexProperty { } }
  ShapeKit { shape Cube { } }
})";

/// A store of its own for each test.
class TreePageTest : public VantleTest {
 protected:
  TreePageTest() { SoVantleConfig::deleteSettingsInterface(); }
  ~TreePageTest() override {
    if (m_hasPalette) QApplication::setPalette(m_palette);
    SoVantleConfig::deleteSettingsInterface();
  }

  /// Opens the preferences and does something there; the dialog is closed afterwards.
  void inDialog(std::function<void()> const& act) {
    QTimer::singleShot(0, frame(), [&] {
      auto* const dialog = qobject_cast<SoVantlePreferences*>(QApplication::activeModalWidget());
      ASSERT_TRUE(dialog);
      m_dialog = dialog;
      act();
      if (m_dialog) press("m_cancelButton");
    });
    commands()->editPreferences();
    EXPECT_FALSE(m_dialog);
  }
  template <class W> W* child(char const* name) const {
    W* const found = m_dialog->findChild<W*>(name);
    EXPECT_TRUE(found) << name;
    return found;
  }
  void press(char const* button) { QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton); }
  void tick(char const* box) { QTest::keyClick(child<QCheckBox>(box), Qt::Key_Space); }
  void chooseElement(QString const& name) {
    auto* const list = child<QListWidget>("m_elementList");
    QListWidgetItem* const item = list->findItems(name, Qt::MatchExactly).value(0);
    ASSERT_TRUE(item) << qPrintable(name);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
  }
  bool isMarked() const {
    auto* const action = VntServicesImpl::getImplInstance()->getSceneManager()->getGLRenderAction();
    return static_cast<SoHighlightRenderAction*>(action)->isVisible();
  }
  static bool isStored(char const* key) { return SoVantleConfig::getSettingsInterface()->contains(key); }
  void setDarkPalette() {
    m_palette = QApplication::palette();
    m_hasPalette = true;
    QPalette dark(QColor(45, 45, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    QApplication::setPalette(dark);
  }

  QPointer<SoVantlePreferences> m_dialog;
  QPalette m_palette;
  bool m_hasPalette = false;
};

TEST_F(TreePageTest, StylesAreSeenOnApply) {
  start(read(sceneText));
  SoTreeViewItem* const box = tree()->firstChild()->child(0);
  SoTreeViewItem* const held = tree()->firstChild()->child(1)->child(0);
  inDialog([&] {
    EXPECT_EQ(child<QListWidget>("m_preferenceList")->item(0)->text(), "Tree View");
    EXPECT_TRUE(child<QWidget>("vantletreeview_preferences")->isVisible());
    QStringList elements;
    auto* const list = child<QListWidget>("m_elementList");
    for (int i = 0; i < list->count(); ++i) elements << list->item(i)->text();
    EXPECT_EQ(elements, QStringList({"Node Type", "Node/Part Name", "Reference Count", "Node From Field"}));
    EXPECT_FALSE(child<QCheckBox>("m_show")->isVisible());

    // Without an edit nothing is stored of the styles, and no row looks different.
    QFont const before = box->font(1);
    press("m_applyButton");
    EXPECT_FALSE(isStored("TreeViewPreferences/Node Type/size"));
    EXPECT_EQ(box->font(1), before);

    chooseElement("Node/Part Name");
    EXPECT_FALSE(child<QCheckBox>("m_italic")->isChecked()) << "the page shows what rows look like";
    tick("m_bold");
    press("m_color");
    auto* const colors = m_dialog->findChild<QColorDialog*>();
    ASSERT_TRUE(colors);
    colors->setCurrentColor(QColor(200, 0, 100));
    colors->accept();
    chooseElement("Node From Field");
    tick("m_show");
    chooseElement("Node/Part Name");
    EXPECT_TRUE(child<QCheckBox>("m_bold")->isChecked());
    EXPECT_EQ(child<QPushButton>("m_color")->text(), "#c80064");
    EXPECT_FALSE(box->font(1).bold()) << "not before it is applied";
    press("m_applyButton");
    EXPECT_TRUE(box->font(1).bold());
    EXPECT_FALSE(box->font(0).bold());
    EXPECT_EQ(box->foreground(1).color(), QColor(200, 0, 100));
    EXPECT_EQ(held->font(0), tree()->normalFont());
    EXPECT_TRUE(isStored("TreeViewPreferences/Node/Part Name/bold"));
    EXPECT_FALSE(isStored("TreeViewPreferences/Reference Count/bold"));

    chooseElement("Reference Count");
    tick("m_underline");
    QTest::keyClick(child<QSpinBox>("m_size"), Qt::Key_Up);
  }); // cancelled
  EXPECT_FALSE(box->font(2).underline());
  inDialog([&] {
    chooseElement("Reference Count");
    EXPECT_FALSE(child<QCheckBox>("m_underline")->isChecked()) << "the page has forgotten it";
    tick("m_underline");
    press("m_okButton");
  });
  EXPECT_TRUE(box->font(2).underline());
  EXPECT_EQ(box->foreground(2).color(), QColor(Qt::blue));
  EXPECT_EQ(box->foreground(0).color(), QColor(Qt::black));
}

TEST_F(TreePageTest, SwitchesWorkAtOnce) {
  start(read(sceneText));
  SoTreeViewItem* const root = tree()->firstChild();
  SoTreeViewItem* shape = nullptr;
  for (SoTreeViewItem* row = root; row; row = SoVantleTreeView::itemBelowInTree(row)) {
    if (row->text(1) == "shape") shape = row;
  }
  ASSERT_TRUE(shape);
  EXPECT_EQ(shape->text(2), QString::number(shape->getRefCount()));
  EXPECT_TRUE(isMarked());
  EXPECT_EQ(tree()->getRowLimit(), 5'000'000);
  inDialog([&] {
    tick("m_highlight");
    tick("m_realCounter");
    child<QSpinBox>("m_rows")->setFocus();
    child<QSpinBox>("m_rows")->selectAll();
    QTest::keyClicks(child<QSpinBox>("m_rows"), "20000");
    press("m_applyButton");
    EXPECT_FALSE(isMarked());
    EXPECT_EQ(shape->text(2), QString::number(shape->getRefCount() - 1));
    EXPECT_EQ(root->child(0)->text(2), QString::number(root->child(0)->getRefCount())) << "it is in no kit";
    EXPECT_EQ(tree()->getRowLimit(), 20000);
  });
  EXPECT_EQ(SoVantleConfig::getSettingsInterface()->value("TreeViewPreferences/MaximumRows").toInt(), 20000);
  EXPECT_FALSE(TreeViewConfig::highlightSelectedNode(SoVantleTreeView::getTreeViewPreferencesPath()));
  // A number that makes no sense counts as none.
  for (int rows : {-1, 0, 999, 2000000000}) {
    TreeViewConfig::setMaximumRows(rows, "/TreeViewPreferences/");
    EXPECT_EQ(TreeViewConfig::maximumRows("/TreeViewPreferences/"), 5'000'000) << rows;
  }
}

TEST_F(TreePageTest, ThePageOutlivesDialogAndMayDieWithTheTree) {
  start(read(sceneText));
  QPointer<QWidget> page;
  inDialog([&] { page = child<QWidget>("vantletreeview_preferences"); });
  ASSERT_TRUE(page);
  EXPECT_EQ(page->parent(), nullptr);
  inDialog([&] {
    EXPECT_EQ(child<QWidget>("vantletreeview_preferences"), page);
    press("m_okButton");
  });
  viewer()->setScene(nullptr, true);
  SoVantleImpl::stop(true);
  EXPECT_FALSE(page);
}

TEST_F(TreePageTest, ReadableOnADarkDesktop) {
  WatchedTree tree(read(sceneText));
  SoTreeViewItem* const box = tree.root()->child(0);
  QString const sheet = tree.view.styleSheet();
  auto const lightness = [&](int column) { return box->foreground(column).color().lightness(); };
  EXPECT_LT(lightness(0), 10);
  setDarkPalette();
  tree.view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&tree.view));
  for (int column : {0, 1, 2}) EXPECT_GE(lightness(column), 180) << column;
  EXPECT_EQ(box->foreground(1).color().hslHue(), QColor(0, 128, 0).hslHue()) << "of the same colour";
  box->setIgnoreFlag(true);
  EXPECT_GE(lightness(0), 160);
  EXPECT_LT(lightness(0), 240) << "and grey";
  EXPECT_NE(tree.view.styleSheet(), sheet);
  QApplication::setPalette(m_palette);
  QCoreApplication::processEvents();
  EXPECT_EQ(tree.view.styleSheet(), sheet);
  EXPECT_EQ(box->foreground(2).color(), QColor(Qt::blue));
}

} // namespace
