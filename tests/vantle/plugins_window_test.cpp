// What plug-ins put into the window, and what becomes of it when they go.

#include <QAction>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>

#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/PluginsTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

QAction* entryOf(QMenu* menu, QString const& text) {
  for (QAction* action : menu->actions()) {
    if (action->text() == text) return action;
  }
  return nullptr;
}

class PluginsWindowTest : public PluginsTest {
 public:
  QAction* viewEntry(QString const& extension) const {
    return entryOf(frame()->getViewMenu(), extension + " info");
  }
  bool hasMenu(QString const& title) const {
    for (QAction const* action : frame()->menuBar()->actions()) {
      if (action->text() == title) return true;
    }
    return false;
  }
  /// How many of the things of an extension the user can reach.
  int reachable(QString const& extension) const {
    int count = 0;
    for (char const* kind : {" dock", " bar", " label"}) {
      QWidget const* const found = widget(extension + kind);
      count += found && found->isVisible();
    }
    auto* const shell = VntShellImpl::getImplInstance();
    return count + (viewEntry(extension) != nullptr) + hasMenu(extension + " menu") +
           static_cast<int>(shell->getContextualMenus(SoSeparator::getClassTypeId()).size()) +
           static_cast<int>(shell->getPreferencePanel().size());
  }
};
constexpr int EVERYTHING = 7;

TEST_F(PluginsWindowTest, WhatAPluginForgetsIsTakenOutAndReported) {
  struct Case {
    char const* extension;
    bool isReported;
  } const cases[] = {{"Good", false}, {"Forgetful", true}, {"Deleter", true}};
  for (Case const& c : cases) {
    QString const name = c.extension;
    ErrorLog<SoDebugError> errors;
    startWith(configuration({"sample"}, sample(c.extension)));
    EXPECT_EQ(reachable(name), EVERYTHING) << c.extension;
    VntPluginsManager::releaseInstance();
    EXPECT_EQ(reachable(name), 0) << c.extension;
    EXPECT_EQ(errors.texts.size(), c.isReported) << qPrintable(errors.texts.join("\n"));
    if (c.isReported) {
      for (QString const what :
           {"plug-in \"Sample\" has gone", "the dock \"%1 dock\"", "the tool bar \"%1 bar\"",
            "the menu \"%1 menu\"", "the contextual menu \"%1 context\"", "the view menu's entry \"%1 info\"",
            "the preference page \"%1 info\"", "the status bar's widget \"%1 label\""}) {
        QString const wanted = what.contains('%') ? what.arg(name) : what;
        EXPECT_TRUE(errors.texts.value(0).contains(wanted))
            << qPrintable(wanted + "\n" + errors.texts.value(0));
      }
    }
    SoVantleImpl::stop(true);
    EXPECT_EQ(errors.texts.size(), c.isReported) << qPrintable(errors.texts.join("\n"));
  }
}

TEST_F(PluginsWindowTest, WhatTheHostRegisteredGoesAtTheEnd) {
  ErrorLog<SoDebugError> errors;
  startWith("<configuration/>");
  VntShell* const shell = VntShell::getInstance();
  auto* const gone = new QDockWidget("Gone");
  shell->registerDock(gone, Qt::LeftDockWidgetArea);
  delete gone;
  QMenu menu("Left");
  shell->registerMenu(&menu);
  SoVantleImpl::stop(true);
  ASSERT_EQ(errors.texts.size(), 1) << qPrintable(errors.texts.join("\n"));
  EXPECT_TRUE(errors.texts[0].contains("a plug-in has gone without unregistering the menu \"Left\""));
}

TEST_F(PluginsWindowTest, ViewEntryAndDockFollowEachOther) {
  ErrorLog<SoDebugError> errors;
  startWith(configuration({"sample"}, sample("Good") + sample("Sulky")));
  QAction* const entry = viewEntry("Good");
  auto* const dock = qobject_cast<QDockWidget*>(widget("Good dock"));
  ASSERT_TRUE(entry && dock);
  entry->trigger();
  EXPECT_FALSE(dock->isVisible());
  entry->trigger();
  EXPECT_TRUE(dock->isVisible());
  dock->close();
  EXPECT_FALSE(entry->isChecked());
  // A hidden window hides its docks, but does not close them.
  dock->show();
  frame()->hide();
  EXPECT_TRUE(entry->isChecked());
  frame()->show();

  viewEntry("Sulky")->trigger();
  ASSERT_EQ(errors.texts.size(), 1);
  EXPECT_TRUE(errors.texts[0].contains("plug-in \"Sample\": hide() failed")) << qPrintable(errors.texts[0]);
  EXPECT_TRUE(statusBar().contains("hide() failed"));
}

TEST_F(PluginsWindowTest, TheStoredLayoutHoldsForPlugins) {
  QByteArray const text = configuration({"sample"}, sample("Good") + sample("Sulky"));
  startWith(text);
  auto const dock = [this](char const* name) { return qobject_cast<QDockWidget*>(widget(name)); };
  auto const bar = [this] { return qobject_cast<QToolBar*>(widget("Good bar")); };
  frame()->addDockWidget(Qt::BottomDockWidgetArea, dock("Good dock"));
  dock("Sulky dock")->close();
  frame()->addToolBar(Qt::BottomToolBarArea, bar());
  commands()->exitApp();
  SoVantleImpl::processEvents();

  startWith(text);
  EXPECT_EQ(frame()->dockWidgetArea(dock("Good dock")), Qt::BottomDockWidgetArea);
  EXPECT_TRUE(dock("Good dock")->isVisible() && viewEntry("Good")->isChecked());
  EXPECT_FALSE(dock("Sulky dock")->isVisible() || viewEntry("Sulky")->isChecked());
  EXPECT_EQ(frame()->toolBarArea(bar()), Qt::BottomToolBarArea);
}

TEST_F(PluginsWindowTest, RegistersTwiceAndUnregistersWhatIsNotThere) {
  startWith("<configuration/>");
  VntShell* const shell = VntShell::getInstance();
  QDockWidget* const inspectors = frame()->findChild<QDockWidget*>("dockNodeOverview");
  shell->unregisterDock(inspectors);
  EXPECT_TRUE(inspectors->isVisible());
  shell->unregisterMenu(frame()->getFileMenu());
  EXPECT_TRUE(hasMenu("File"));
  shell->unregisterToolBar(frame()->getEditToolbar());
  EXPECT_TRUE(frame()->getEditToolbar()->isVisible());
  shell->unregiterStatusBarWidget(nullptr);
  shell->unregisterDock(nullptr);

  QMenu menu("Twice");
  shell->registerMenu(&menu);
  shell->registerMenu(&menu);
  shell->unregisterMenu(&menu);
  EXPECT_FALSE(hasMenu("Twice"));

  // Two without names are stored apart.
  auto* const first = new QDockWidget("Same");
  auto* const second = new QDockWidget("Same");
  for (QDockWidget* dock : {first, second}) shell->registerDock(dock, Qt::LeftDockWidgetArea);
  shell->registerDock(first, Qt::RightDockWidgetArea);
  EXPECT_EQ(first->objectName(), "Same");
  EXPECT_EQ(second->objectName(), "Same 2");
  EXPECT_EQ(frame()->dockWidgetArea(first), Qt::RightDockWidgetArea);
  EXPECT_TRUE(waitFor([&] { return first->isVisible(); }));
  for (QDockWidget* dock : {first, second}) shell->unregisterDock(dock);
  EXPECT_FALSE(first->isVisible());
}

} // namespace
