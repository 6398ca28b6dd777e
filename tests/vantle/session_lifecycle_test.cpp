// Starting, stopping and starting again.

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QPushButton>
#include <cstdlib>

#include "kestrava/base/SoErrorStack.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoGradientBackground.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleDefaults.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

using SessionTest = VantleTest;

bool nothingIsLeft() {
  return !SoVantleImpl::isRunning() && !VntServicesImpl::isInstance() && !VntShellImpl::isInstance() &&
         !SoVantleViewer::isInstance();
}

TEST_F(SessionTest, StopBeforeStartCreatesNothing) {
  SoVantleImpl::stop(true);
  EXPECT_TRUE(nothingIsLeft());
  EXPECT_FALSE(SoVantleImpl::processEvents());
}

TEST_F(SessionTest, StandaloneShowsTheDefaultScene) {
  start();
  auto* const root = dynamic_cast<SoSeparator*>(viewer()->getScene());
  ASSERT_TRUE(root);
  ASSERT_EQ(root->getNumChildren(), 1);
  EXPECT_TRUE(root->getChild(0)->isOfType(SoGradientBackground::getClassTypeId()));
  EXPECT_EQ(VntServices::getInstance()->getSceneGraph(), root);
  EXPECT_TRUE(VntServices::getInstance()->getSceneManager());
  EXPECT_TRUE(VntServices::getInstance()->getRenderArea());
  EXPECT_EQ(QLocale().decimalPoint(), ".");
}

TEST_F(SessionTest, StartsAgainAfterAStop) {
  SoRef<SoNode> const scene(new SoCube);
  for (int round = 0; round < 3; ++round) {
    if (round == 1)
      startAttached(scene);
    else
      start(scene);
    EXPECT_TRUE(SoVantleImpl::processEvents());
    ASSERT_TRUE(waitFor([&] { return tree()->topLevelItemCount() == 1; }));
    EXPECT_EQ(tree()->firstChild()->getNode(), scene.get());
    SoVantleImpl::stop(true);
    EXPECT_TRUE(nothingIsLeft());
    EXPECT_TRUE(QApplication::instance()) << "the host's application must stay";
    // Whatever the session held of the scene is given back.
    EXPECT_EQ(scene->getRefCount(), 1);
    EXPECT_EQ(scene->getAuditors().getLength(), 0);
  }
}

TEST_F(SessionTest, ASecondStartIsIgnored) {
  SoRef<SoNode> const first(new SoCube), second(new SoCube);
  startAttached(first);
  SoVantleMainFrame* const window = frame();
  SoVantleImpl::start(second.get(), nullptr);
  int argc = 1;
  char name[] = "vantle";
  char* argv[] = {name, nullptr};
  SoVantleImpl::startStandalone(argc, argv);
  EXPECT_EQ(frame(), window);
  EXPECT_EQ(viewer()->getScene(), first.get());
  EXPECT_FALSE(VntServices::getInstance()->isStandaloneApplication());
}

TEST_F(SessionTest, QuitStopsAtTheNextProcessEvents) {
  start();
  frame()->m_quitAction->trigger();
  EXPECT_FALSE(SoVantleImpl::isRunning());
  EXPECT_TRUE(VntShellImpl::isInstance()) << "torn down inside the window's own slot";
  EXPECT_FALSE(SoVantleImpl::processEvents());
  EXPECT_TRUE(nothingIsLeft());
}

TEST_F(SessionTest, AStartRightAfterADeferredStopRunsOn) {
  SoRef<SoNode> const scene(new SoCube);
  startAttached(scene);
  SoVantleImpl::stop(false);
  startAttached(scene);
  EXPECT_TRUE(SoVantleImpl::processEvents());
  EXPECT_EQ(viewer()->getScene(), scene.get());
}

TEST_F(SessionTest, HandlersAndPreferencesOfTheToolkit) {
  SoErrorCB* const before = SoErrorStack::getHandlerCallback();
  SoPreferences::setValue("KSV_DEBUG_STACKERROR", "0");
  start();
  EXPECT_NE(SoErrorStack::getHandlerCallback(), before);
  EXPECT_EQ(SoPreferences::getString("KSV_DEBUG_STACKERROR").str(), "0") << "the user's own value stays";
  EXPECT_EQ(SoPreferences::getString("KSV_STACKWALKER_HTML_OUTPUT").str(), "1");
  SoVantleImpl::stop(true);
  EXPECT_EQ(SoErrorStack::getHandlerCallback(), before);
  SoPreferences::removeValue("KSV_DEBUG_STACKERROR");
}

TEST_F(SessionTest, WhatTheHostSetsMeanwhileStays) {
  auto const hosts = [](SbString const&, void*, SoWWWInline*) {};
  auto const hostsHandler = [](SoError const*, void*) {};
  SoErrorCB* const before = SoErrorStack::getHandlerCallback();
  int mark = 0;
  start();
  SoWWWInline::setFetchURLCallBack(hosts, &mark);
  SoErrorStack::setHandlerCallback(hostsHandler, &mark);
  SoVantleImpl::stop(true);
  EXPECT_EQ(SoWWWInline::getFetchURLCallBack(), +hosts);
  EXPECT_EQ(SoWWWInline::getFetchURLData(), &mark);
  EXPECT_EQ(SoErrorStack::getHandlerCallback(), +hostsHandler);
  SoWWWInline::setFetchURLCallBack(nullptr);
  SoErrorStack::setHandlerCallback(before);
}

TEST_F(SessionTest, TheBuiltInConfigurationIsOneElementALine) {
  start();
  QStringList const lines =
      QString::fromStdString(SoInput::readTextFile("VntMinimal_xml.h").str()).split('\n');
  QStringList editors;
  for (QString const& line : lines.mid(0, lines.size() - 1)) {
    EXPECT_TRUE(line.startsWith('<') && line.endsWith('>') && line.count('<') == 1) << qPrintable(line);
    if (line.startsWith("<controlledExtension ")) editors << line.section('"', 3, 3);
  }
  EXPECT_EQ(lines.last(), "");
  ASSERT_EQ(editors.size(), 39);
  EXPECT_EQ(editors.mid(0, 3), (QStringList{"MFColor", "MField", "MFFloat"}));
  EXPECT_EQ(editors.mid(24, 3), (QStringList{"SFInt32", "SField", "SFMatrix"}));
}

// The handler as the toolkit calls it, in a process of its own where it may exit.
using CriticalErrorTest = SessionTest;

QStringList const BUTTONS{"OK", "Ignore", "Help"};

void failBadly(QString const& press) {
  BoxAnswer const box("Critical error",
                      "The application produced a critical error, click the ignore button to debug the "
                      "application, ok to exit and help to view the callstack.",
                      BUTTONS, press);
  SoErrorStack::post("it broke");
}

TEST_F(CriticalErrorTest, IgnoreGoesOn) {
  start();
  failBadly("Ignore");
  EXPECT_TRUE(SoVantleImpl::isRunning());
}

TEST_F(CriticalErrorTest, OkEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        start();
        failBadly("OK");
      },
      testing::ExitedWithCode(1), "");
}

} // namespace
