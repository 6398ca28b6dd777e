// Settings and the states that own the shared actions.

#include <QAction>
#include <QSettings>
#include <QTest>

#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/FieldWatchConfig.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vantle/prefs/SoVantleState.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/prefs/TreeViewConfig.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

/// A store of its own for each test.
class SettingsTest : public VantleTest {
 protected:
  SettingsTest() { SoVantleConfig::deleteSettingsInterface(); }
  ~SettingsTest() override { SoVantleConfig::deleteSettingsInterface(); }
};

QString const group = "/NodeOverviewPreferences/";

TEST_F(SettingsTest, DefaultsOfAnEmptyStore) {
  EXPECT_EQ(SoVantleConfig::getSettingsInterface()->applicationName(), "VantleViewer");
  EXPECT_TRUE(TreeViewConfig::highlightSelectedNode("/TreeViewPreferences/"));
  EXPECT_FALSE(TreeViewConfig::showRealNodekitsCounter("/TreeViewPreferences/"));
  EXPECT_FALSE(NodeOverviewConfig::showCatalogPart(group));
  int const widths[] = {20, 20, 0, 0, -1, -1, -1, -1, -1};
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(NodeOverviewConfig::listColumnWidth(i, group), widths[i]) << i;
    EXPECT_EQ(FieldWatchConfig::listColumnWidth(i, "/FieldWatchPreferences/"), widths[i]) << i;
  }
  EXPECT_EQ(SoVantleConfig::generalSetting("titleFixedHeight"), 20);
  EXPECT_EQ(SoVantleConfig::generalSetting("menuMaximumWidth"), 110);
  EXPECT_EQ(SoVantleConfig::generalSetting("FieldWatchHeight"), 0);
  EXPECT_EQ(SoVantleConfig::generalSetting("nothing"), 0);
  bool found = true;
  EXPECT_EQ(SoVantleConfig::readEntry("/a", "b", &found), "b");
  EXPECT_FALSE(found);
}

TEST_F(SettingsTest, EntriesComeBackFromTheFile) {
  EXPECT_TRUE(SoVantleConfig::writeEntry("/g//bool", true));
  EXPECT_TRUE(SoVantleConfig::writeEntry("/g/int", -7));
  EXPECT_TRUE(SoVantleConfig::writeEntry("/g/double", 2.5));
  EXPECT_TRUE(SoVantleConfig::writeEntry("/g/text", "a, b"));
  EXPECT_TRUE(SoVantleConfig::writeEntry("/g/list", QList<QString>{"x", "y z"}));
  TreeViewConfig::setSelectedNodeHighlighting(false, "/TreeViewPreferences/");
  NodeOverviewConfig::setListColumnWidth(3, 120, group);
  TreeViewConfig::setRefreshingTime(500, "/TreeViewPreferences/");
  TreeViewConfig::setDoubleBuffering(false, "/TreeViewPreferences/");
  SoVantleConfig::deleteSettingsInterface();

  bool found = false;
  EXPECT_TRUE(SoVantleConfig::readBoolEntry("/g/bool", false, &found));
  EXPECT_TRUE(found);
  EXPECT_EQ(SoVantleConfig::readNumEntry("/g/int"), -7);
  EXPECT_EQ(SoVantleConfig::readDoubleEntry("/g/double"), 2.5);
  EXPECT_EQ(SoVantleConfig::readEntry("/g/text"), "a, b");
  EXPECT_EQ(SoVantleConfig::readListEntry("/g/list"), QList<QString>({"x", "y z"}));
  EXPECT_FALSE(TreeViewConfig::highlightSelectedNode("/TreeViewPreferences/"));
  EXPECT_TRUE(SoVantleConfig::getSettingsInterface()->contains("TreeViewPreferences/HighlightSelectedNode"));
  EXPECT_EQ(NodeOverviewConfig::listColumnWidth(3, group), 120);
  EXPECT_TRUE(SoVantleConfig::getSettingsInterface()->contains("NodeOverviewPreferences/ListColumnWidth/3"));
  EXPECT_EQ(TreeViewConfig::refreshingTime("/TreeViewPreferences/"), 100);
  EXPECT_TRUE(TreeViewConfig::isDoubleBuffering("/TreeViewPreferences/"));
}

TEST_F(SettingsTest, Styles) {
  QString const tree = "/TreeViewPreferences/";
  auto styles = TreeViewConfig::readStyles(tree);
  EXPECT_EQ(styles, TreeViewConfig::defaultStyles()) << "nothing stored";
  EXPECT_EQ(styles.keys(),
            QStringList({"Node From Field", "Node Type", "Node/Part Name", "Reference Count"}));
  EXPECT_TRUE(styles["Node/Part Name"].font.italic());
  EXPECT_EQ(styles["Node/Part Name"].color, QColor(Qt::darkGreen));
  EXPECT_EQ(styles["Node From Field"].font.family(), "Times New Roman");
  EXPECT_EQ(NodeOverviewConfig::defaultStyles()["Changed Value"].color, QColor(Qt::red));

  styles["Node/Part Name"].font.setBold(true);
  styles["Node/Part Name"].font.setUnderline(true);
  styles["Node/Part Name"].color = QColor(1, 2, 3);
  styles["Node From Field"].show = false;
  styles["Node Type"].font.setPointSize(17);
  TreeViewConfig::saveStyles(styles, tree);
  SoVantleConfig::deleteSettingsInterface();
  auto const back = TreeViewConfig::readStyles(tree);
  for (QString const& name : styles.keys()) {
    QFont const was = styles[name].font, is = back[name].font;
    EXPECT_EQ(is.family(), was.family()) << qPrintable(name);
    EXPECT_EQ(is.pointSize(), was.pointSize()) << qPrintable(name);
    EXPECT_EQ(is.weight(), was.bold() ? 700 : 400) << qPrintable(name);
    EXPECT_EQ(is.italic(), was.italic()) << qPrintable(name);
    EXPECT_EQ(is.underline(), was.underline()) << qPrintable(name);
    EXPECT_EQ(back[name].color, styles[name].color) << qPrintable(name);
    EXPECT_EQ(back[name].show, styles[name].show) << qPrintable(name);
  }
  EXPECT_TRUE(SoVantleConfig::getSettingsInterface()->contains("TreeViewPreferences/Node/Part Name/family"));

  // Stored in part: what is missing has fixed defaults.
  SoVantleConfig::writeEntry("/other/Default Value/red", 9);
  ConfigStyle const part = NodeOverviewConfig::readStyles("/other")["Default Value"];
  EXPECT_EQ(part.font.pointSize(), 10);
  EXPECT_EQ(part.color, QColor(9, 0, 0));
  EXPECT_TRUE(part.show);
}

TEST_F(SettingsTest, TheFieldNodeFontIsTheTreesStyle) {
  auto styles = TreeViewConfig::defaultStyles();
  styles["Node From Field"].show = false;
  TreeViewConfig::saveStyles(styles, SoVantleTreeView::getTreeViewPreferencesPath());
  SoVantleTreeView tree;
  EXPECT_FALSE(tree.isFieldNodeFontOn());
}

struct Recorder : SoVantleState {
  explicit Recorder(QStringList* calls, QString name) : m_calls(calls), m_name(name) {}
  void activate() override { *m_calls << m_name + "+"; }
  void desactivate() override { *m_calls << m_name + "-"; }
  void createContextPopupMenu(QContextMenuEvent*) override {}
  QStringList* m_calls;
  QString m_name;
};

std::string output(std::function<void()> const& action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

TEST(StateManagerTest, OneStateAtATime) {
  QStringList calls;
  Recorder a(&calls, "a"), b(&calls, "b");
  std::string const source = "[E] SoVantleStateManager::setCurrentState: Error ";
  SoVantleStateManager::init();
  EXPECT_EQ(output([] { SoVantleStateManager::setCurrentState("a"); }), source + "wrapper not found\n");
  SoVantleStateManager::stateRegister("a", &a);
  SoVantleStateManager::stateRegister("b", &b);
  SoVantleStateManager::stateRegister("none", nullptr);
  for (char const* name : {"a", "a", "b", "a"}) SoVantleStateManager::setCurrentState(name);
  EXPECT_EQ(calls, QStringList({"a+", "a-", "b+", "b-", "a+"}));
  EXPECT_EQ(SoVantleStateManager::currentStateId(), "a");

  EXPECT_EQ(output([] { SoVantleStateManager::setCurrentState("none"); }), source + "state not found\n");
  EXPECT_EQ(SoVantleStateManager::currentStateId(), "");
  EXPECT_EQ(calls.last(), "a-");

  // The newest registration of a name counts.
  SoVantleStateManager::stateRegister("a", &b);
  SoVantleStateManager::setCurrentState("a");
  EXPECT_EQ(calls.last(), "b+");
  SoVantleStateManager::stateUnregister(&b);
  EXPECT_EQ(output([] { SoVantleStateManager::setCurrentState("b"); }),
            source + "state is NULL\n" + source + "state not found\n");
  SoVantleStateManager::finish();

  SoVantleStateManager::stateRegister("a", &a);
  SoVantleStateManager::setCurrentState("a");
  SoVantleStateManager::finish();
  EXPECT_EQ(SoVantleStateManager::currentStateId(), "");
}

TEST_F(SettingsTest, TheActionsFollowTheFocus) {
  start(read("Separator { DEF m Material { } Group { USE m Cube { } } Cube { } }"));
  QAction* const deletes = frame()->m_deleteAction;
  // Without a window manager no window is active, and none of its widgets is told of the focus.
  auto const focus = [](QWidget* panel) {
    QFocusEvent event(QEvent::FocusIn);
    QCoreApplication::sendEvent(panel, &event);
    return SoVantleStateManager::currentStateId();
  };
  EXPECT_EQ(focus(tree()), "TreeViewState");
  SoTreeViewItem* const root = tree()->firstChild();
  struct {
    SoTreeViewItem* row;
    bool ignores;
  } const cases[] = {{root->child(0), true}, {root->child(2), true}, {root, false}};
  for (auto const& c : cases) {
    tree()->setCurrentItem(c.row);
    // A selected path holds its nodes, which counts.
    bool const references = c.row->getRefCount() > 1;
    EXPECT_EQ(frame()->m_showAllReferencesAction->isEnabled(), references) << qPrintable(c.row->text(0));
    EXPECT_FALSE(frame()->m_hideAllReferencesAction->isEnabled());
    EXPECT_EQ(frame()->m_ignoreEnableAction->isEnabled(), c.ignores) << qPrintable(c.row->text(0));
    EXPECT_TRUE(deletes->isEnabled());
  }
  EXPECT_EQ(focus(edition()->getFieldWatch()), "FieldWatchState");
  EXPECT_FALSE(deletes->isEnabled()) << "the watch is empty";
  EXPECT_EQ(focus(tree()), "TreeViewState");
  EXPECT_TRUE(deletes->isEnabled());
}

} // namespace
