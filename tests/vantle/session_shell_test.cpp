// What plug-ins find: shell and services.

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QStatusBar>
#include <QWidget>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/ErrorLog.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vnt/VntExtension.h"

namespace {

using ShellTest = VantleTest;

struct Panel : VntExtension {
  SbString getName() const override { return "Panel"; }
  SbString getInfo() const override {
    return SbString::fromLatin1(
        "Gr\xf6\xdf"
        "e");
  }
  void show() override { ++shown; }
  void hide() override { ++hidden; }
  int shown = 0, hidden = 0;
};

TEST_F(ShellTest, ContextMenusFollowTheTypes) {
  start();
  VntShell* const shell = VntShell::getInstance();
  QMenu derived, second, exact;
  shell->registerContextualMenu(SoGroup::getClassTypeId(), false, &derived);
  shell->registerContextualMenu(SoGroup::getClassTypeId(), false, &second);
  shell->registerContextualMenu(SoGroup::getClassTypeId(), true, &exact);

  QList<QMenu*> const forSeparator = shell->getContextualMenus(SoSeparator::getClassTypeId());
  EXPECT_EQ(forSeparator.size(), 2);
  EXPECT_TRUE(forSeparator.contains(&derived) && forSeparator.contains(&second));
  EXPECT_EQ(shell->getContextualMenus(SoGroup::getClassTypeId()).last(), &exact);
  EXPECT_TRUE(shell->getContextualMenus(SoCube::getClassTypeId()).isEmpty());

  shell->unregisterContextualMenu(&derived);
  shell->unregisterContextualMenu(&derived);
  EXPECT_EQ(shell->getContextualMenus(SoSeparator::getClassTypeId()), QList<QMenu*>{&second});
}

TEST_F(ShellTest, ViewMenuShowsAndHidesAnExtension) {
  start();
  VntShell* const shell = VntShell::getInstance();
  Panel panel;
  qsizetype const before = frame()->getViewMenu()->actions().size();
  shell->registerViewMenu(&panel, 1);
  shell->registerViewMenu(&panel, 0);
  ASSERT_EQ(frame()->getViewMenu()->actions().size(), before + 1);
  QAction* const entry = frame()->getViewMenu()->actions().last();
  EXPECT_EQ(entry->text(), QString::fromUtf8("Größe"));
  EXPECT_TRUE(entry->isChecked());
  entry->trigger();
  EXPECT_EQ(panel.hidden, 1);
  entry->trigger();
  EXPECT_EQ(panel.shown, 1);
  shell->unregisterViewMenu(&panel);
  EXPECT_FALSE(frame()->getViewMenu()->actions().contains(entry));
  shell->unregisterViewMenu(&panel);
}

TEST_F(ShellTest, ForgetsWhatIsDestroyedWhileItIsRegistered) {
  start();
  VntShell* const shell = VntShell::getInstance();
  auto panel = std::make_unique<Panel>();
  auto page = std::make_unique<QWidget>();
  auto menu = std::make_unique<QMenu>();
  shell->registerViewMenu(panel.get(), 1);
  shell->registerPreferencePanel(panel.get(), page.get(), nullptr, nullptr);
  shell->registerContextualMenu(SoGroup::getClassTypeId(), false, menu.get());
  menu.reset();
  EXPECT_TRUE(shell->getContextualMenus(SoGroup::getClassTypeId()).isEmpty());
  page.reset();
  EXPECT_TRUE(VntShellImpl::getImplInstance()->getPreferencePanel().isEmpty());
  QPointer<QAction> const entry = frame()->getViewMenu()->actions().last();
  panel.reset();
  EXPECT_TRUE(entry.isNull());
}

TEST_F(ShellTest, StatusBarShowsLatin1) {
  start();
  VntShell* const shell = VntShell::getInstance();
  shell->showStatusBarMessage("Größe \u4e2d", 0);
  EXPECT_EQ(frame()->statusBar()->currentMessage(), QString::fromUtf8("Größe ?"));
  shell->clearStatusBarMessage();
  EXPECT_EQ(frame()->statusBar()->currentMessage(), "");
  QPointer<QWidget> const widget = new QWidget;
  shell->regiterStatusBarWidget(widget, true, 0);
  EXPECT_TRUE(waitFor([&] { return widget->isVisible(); })); // the bar itself is new
  shell->unregiterStatusBarWidget(widget);
  EXPECT_FALSE(widget->isVisible());
}

TEST_F(ShellTest, TheFirstPreferencePageOfAnExtensionWins) {
  start();
  VntShell* const shell = VntShell::getInstance();
  Panel panel;
  QWidget first, second;
  char const* const text = "1init()";
  shell->registerPreferencePanel(&panel, &first, text, nullptr);
  shell->registerPreferencePanel(&panel, &second, nullptr, nullptr);
  auto const pages = VntShellImpl::getImplInstance()->getPreferencePanel();
  ASSERT_EQ(pages.size(), 1);
  EXPECT_EQ(pages[&panel].page, &first);
  EXPECT_EQ(pages[&panel].initSlot, text);
  shell->unregisterPreferencePanel(&panel);
  EXPECT_TRUE(VntShellImpl::getImplInstance()->getPreferencePanel().isEmpty());
}

TEST_F(ShellTest, ASecondShellIsRefused) {
  start();
  ErrorLog<SoError> errors;
  VntShell* const shell = VntShell::getInstance();
  VntShellImpl::createInstance(0);
  EXPECT_EQ(errors.texts, QStringList{"VntShellImpl::createInstance, instance already exists."});
  EXPECT_EQ(VntShell::getInstance(), shell);
}

TEST_F(ShellTest, ServicesStoreBeforeTheyTell) {
  start();
  VntServices* const services = VntServices::getInstance();
  SoRef<SoNode> const scene(new SoSeparator), node(new SoCube);
  SoNode* seenScene = nullptr;
  SoField* seenField = nullptr;
  QObject::connect(services, &VntServices::sceneGraphChanged, [&] { seenScene = services->getSceneGraph(); });
  QObject::connect(services, &VntServices::selectedFieldChanged,
                   [&] { seenField = services->getSelectedField(); });
  services->setSceneGraph(scene);
  EXPECT_EQ(seenScene, scene.get());
  services->setSelectedField(node->getField(0));
  EXPECT_EQ(seenField, node->getField(0));
  services->setSelectedField(nullptr);
  QSignalSpy nodes(services, &VntServices::selectedNodeChanged);
  services->setSelectedNode(node);
  EXPECT_EQ(nodes.size(), 1);
  EXPECT_EQ(services->getSelectedNode(), node.get());
  services->setSelectedNode(nullptr);
}

} // namespace
