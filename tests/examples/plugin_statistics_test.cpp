// The example of a plug-in in the installed inspector: everything it registers is there, and counts right.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>

#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoLibVantle.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/ErrorLog.h"
#include "vnt/VntServices.h"
#include "vnt/VntShell.h"

namespace {

// The group's faces use the points outside of it; the cube stands in two places.
constexpr char SCENE[] =
    "#Kestrava V1.0 ascii\n"
    "Separator {\n"
    "  DEF shared Separator { Cube { } }\n"
    "  USE shared\n"
    "  Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] }\n"
    "  DEF faces Group { IndexedFaceSet { coordIndex [ 0, 1, 2, -1, 0, 2, 3, -1 ] } }\n"
    "}\n";
constexpr int CUBE_TRIANGLES = 12;

class StatisticsTest : public testing::Test {
 public:
  StatisticsTest() {
    SoPreferences::setValue("KSV_VANTLE_CONFIGURATION_FILE",
                            VANTLE_SOURCE_DIR "/examples/plugin_statistics/VntConfiguration.xml");
    SoPreferences::setValue("KSV_VANTLE_PLUGIN_PATH", VANTLE_OUTSIDE_DIR "/build");
    QFile file(m_folder.filePath("scene.kv"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(SCENE) > 0);
  }
  ~StatisticsTest() override {
    SoLibVantle::instance()->stop();
    EXPECT_EQ(errors.texts, QStringList());
  }

  void start() {
    static char program[] = "vantle";
    static std::string scene;
    scene = m_folder.filePath("scene.kv").toStdString();
    static char* arguments[] = {program, nullptr, nullptr};
    arguments[1] = scene.data();
    ASSERT_TRUE(SoLibVantle::instance()->startStandalone(2, arguments))
        << SoLibVantle::getLastError().c_str();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (auto* const found = qobject_cast<QMainWindow*>(window)) m_frame = found;
    }
    ASSERT_TRUE(m_frame && QTest::qWaitForWindowExposed(m_frame));
  }

  template <class T> T* find(char const* name) const { return m_frame->findChild<T*>(name); }
  QMainWindow* frame() const { return m_frame; }
  QAction* menuEntry(QString const& menu, QString const& text) const {
    for (QAction const* title : m_frame->menuBar()->actions()) {
      if (title->text() != menu) continue;
      for (QAction* entry : title->menu()->actions()) {
        if (entry->text() == text) return entry;
      }
    }
    return nullptr;
  }
  /// A row of the table as "nodes places triangles"; empty when there is none of that type.
  QString row(char const* type) const {
    auto const* const table = find<QTreeWidget>("statisticsTable");
    for (QTreeWidgetItem const* item : table->findItems(type, Qt::MatchExactly)) {
      return item->text(1) + ' ' + item->text(2) + ' ' + item->text(3);
    }
    return QString();
  }
  QString summary() const { return find<QLabel>("statisticsSummary")->text(); }
  static bool waitFor(std::function<bool()> const& condition) { return QTest::qWaitFor(condition, 10000); }

  ErrorLog<SoDebugError> errors;

 private:
  QTemporaryDir m_folder;
  QMainWindow* m_frame = nullptr;
};

TEST_F(StatisticsTest, CountsTheSelectedNodeAndFollowsChanges) {
  start();
#ifndef __SANITIZE_ADDRESS__
  SbString const toolkit =
      SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&SoLibVantle::isAvailable));
  ASSERT_EQ(toolkit.str().find(VANTLE_OUTSIDE_DIR "/prefix/"), 0u) << toolkit.c_str();
#endif
  auto* const dock = find<QDockWidget>("dockStatistics");
  ASSERT_TRUE(dock && dock->isVisible());
  VntServices* const services = VntServices::getInstance();
  auto* const root = static_cast<SoSeparator*>(services->getSceneGraph());
  services->setSelectedNode(root);
  EXPECT_EQ(row("Separator"), "2 3 ");
  EXPECT_EQ(row("Cube"), "1 2 24");
  EXPECT_EQ(row("IndexedFaceSet"), "1 1 2");
  EXPECT_EQ(row("Coordinate3"), "1 1 ");
  EXPECT_TRUE(summary().startsWith("Nodes: 6 (places: 8)\nTriangles: 26 (of shared shapes once: 14)\n"))
      << qPrintable(summary());

  // Coordinates from outside of what is counted.
  services->setSelectedNode(SoNode::getByName("faces"));
  EXPECT_EQ(find<QLabel>("statisticsTitle")->text(), "Group \"faces\"");
  EXPECT_EQ(row("IndexedFaceSet"), "1 1 2");
  EXPECT_EQ(row("Cube"), "");

  services->setSelectedNode(root);
  static_cast<SoGroup*>(SoNode::getByName("shared"))->addChild(new SoCube);
  EXPECT_TRUE(waitFor([this] { return row("Cube") == "2 4 48"; })) << qPrintable(row("Cube"));

  // Nobody sees it: nothing is counted.
  QAction* const entry = menuEntry("&View", "Statistics");
  ASSERT_TRUE(entry && entry->isChecked());
  entry->trigger();
  EXPECT_FALSE(dock->isVisible());
  root->addChild(new SoCube);
  QCoreApplication::processEvents();
  EXPECT_EQ(row("Cube"), "2 4 48");
  entry->trigger();
  EXPECT_EQ(row("Cube"), "3 5 60");

  services->setSceneGraph(new SoSeparator);
  EXPECT_TRUE(summary().startsWith("Nodes: 1 (places: 1)\n")) << qPrintable(summary());
  // The node goes while it is shown.
  SoRef<SoNode> node(new SoCube);
  services->setSelectedNode(node);
  EXPECT_EQ(row("Cube"), "1 1 12");
  node.reset();
  EXPECT_EQ(find<QLabel>("statisticsTitle")->text(), "No node is selected");
  EXPECT_EQ(find<QTreeWidget>("statisticsTable")->topLevelItemCount(), 0);
}

TEST_F(StatisticsTest, ToolBarAndContextMenu) {
  start();
  VntServices* const services = VntServices::getInstance();
  auto* const bar = find<QToolBar>("statisticsToolBar");
  ASSERT_TRUE(bar && bar->isVisible());
  QList<QAction*> const actions = bar->actions();
  ASSERT_EQ(actions.size(), 3);
  for (QAction const* action : actions) EXPECT_FALSE(action->icon().isNull()) << qPrintable(action->text());
  auto const press = [bar](QAction* action) {
    QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
  };

  services->setSelectedNode(SoNode::getByName("faces"));
  press(actions[0]);
  EXPECT_EQ(row("Cube"), "1 2 24");
  press(actions[2]);
  services->setSelectedNode(SoNode::getByName("shared"));
  EXPECT_EQ(row("IndexedFaceSet"), "1 1 2");
  press(actions[2]);
  EXPECT_EQ(row("IndexedFaceSet"), "");

  // A right click on the row of a group, with the dock closed.
  auto* const dock = find<QDockWidget>("dockStatistics");
  dock->close();
  EXPECT_FALSE(menuEntry("&View", "Statistics")->isChecked());
  QTreeWidget* tree = nullptr;
  for (QTreeWidget* each : frame()->findChildren<QTreeWidget*>()) {
    if (each->inherits("SoVantleTreeView")) tree = each;
  }
  ASSERT_TRUE(tree);
  QStringList seen;
  auto const rightClick = [&](char const* text) {
    QTreeWidgetItem* const item = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    ASSERT_TRUE(item) << text;
    tree->scrollToItem(item);
    QPoint const pos = tree->visualItemRect(item).center();
    QTest::mouseClick(tree->viewport(), Qt::RightButton, Qt::NoModifier, pos);
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!menu) return;
      answer.stop();
      for (QAction* action : menu->actions()) {
        for (QAction* entry : action->menu() ? action->menu()->actions() : QList<QAction*>()) {
          seen << entry->text();
          if (entry->text() == "Statistics of This Group") entry->trigger();
        }
      }
      menu->close();
    });
    answer.start(5);
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, tree->viewport()->mapToGlobal(pos));
    QCoreApplication::sendEvent(tree->viewport(), &event);
  };
  rightClick("Group");
  EXPECT_EQ(seen, QStringList("Statistics of This Group"));
  EXPECT_TRUE(dock->isVisible());
  EXPECT_EQ(find<QLabel>("statisticsTitle")->text(), "Group \"faces\"");
  seen.clear();
  rightClick("Coordinate3");
  EXPECT_EQ(seen, QStringList());
}

TEST_F(StatisticsTest, PreferencesHoldInTheNextSession) {
  start();
  VntServices::getInstance()->setSelectedNode(VntServices::getInstance()->getSceneGraph());
  ASSERT_EQ(row("Cube"), "1 2 24");
  QTimer answer;
  bool shown = false;
  QObject::connect(&answer, &QTimer::timeout, [&] {
    auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog) return;
    answer.stop();
    auto* const list = dialog->findChild<QListWidget*>("m_preferenceList");
    QListWidgetItem* const title = list->findItems("Statistics", Qt::MatchExactly).value(0);
    auto* const once = dialog->findChild<QCheckBox*>("countedOnce");
    auto* const places = dialog->findChild<QCheckBox*>("ShowPlaces");
    if (title && once && places) {
      list->setCurrentItem(title);
      shown = once->isVisible() && !once->isChecked() && places->isChecked();
      QTest::keyClick(once, Qt::Key_Space);
      QTest::keyClick(places, Qt::Key_Space);
    }
    QTest::mouseClick(dialog->findChild<QPushButton*>("m_okButton"), Qt::LeftButton);
    if (dialog->isVisible()) dialog->reject();
  });
  answer.start(5);
  menuEntry("&Edit", "&Preferences...")->trigger();
  EXPECT_TRUE(shown);
  EXPECT_EQ(row("Cube"), "1 2 " + QString::number(CUBE_TRIANGLES));
  EXPECT_TRUE(find<QTreeWidget>("statisticsTable")->isColumnHidden(2));
  SoLibVantle::instance()->stop();

  start();
  VntServices::getInstance()->setSelectedNode(VntServices::getInstance()->getSceneGraph());
  EXPECT_EQ(row("Cube"), "1 2 " + QString::number(CUBE_TRIANGLES));
  EXPECT_TRUE(find<QTreeWidget>("statisticsTable")->isColumnHidden(2));
}

} // namespace
