// Finding and refusing the inspector's library. Once one is loaded it stays, so that is done in a process of
// its own.

#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <filesystem>

#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoLibVantle.h"
#include "kestrava/base/SoPreferences.h"

namespace {

class LoaderTest : public ::testing::Test {
 protected:
  ~LoaderTest() override { SoPreferences::removeValue("KSV_VANTLE_LIBRARY"); }

  static std::string fake(std::string const& name) { return VANTLE_LIB_DIR "/fakes/lib" + name + ".so"; }

  /// Why the loader does not take a library.
  static std::string refusal(SbString const& library) {
    SoPreferences::setValue("KSV_VANTLE_LIBRARY", library);
    EXPECT_FALSE(SoLibVantle::isAvailable()) << library.str();
    return SoLibVantle::getLastError().str();
  }
};

TEST_F(LoaderTest, SaysForEachLibraryWhyItIsRefused) {
  SbString const libc = SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&::getpid));
  struct {
    SbString library;
    std::vector<std::string> reasons;
  } const cases[] = {
      {"/no/such/inspector.so", {"/no/such/inspector.so (named by KSV_VANTLE_LIBRARY): no such file"}},
      {"/tmp", {"/tmp (named by KSV_VANTLE_LIBRARY): "}},
      {libc, {"not the inspector"}},
      {fake("fake_without_version"), {"not the inspector"}},
      {fake("fake_other_version"), {"version 0.0.7", "the toolkit, which is "}},
      {fake("fake_without_stop"), {"not complete", "_stop"}},
  };
  for (auto const& test : cases) {
    std::string const said = refusal(test.library);
    for (std::string const& reason : test.reasons) EXPECT_NE(said.find(reason), std::string::npos) << said;
  }
}

TEST_F(LoaderTest, WithoutALibraryAStartFailsAloudAndTheRestDoesNothing) {
  SoPreferences::setValue("KSV_VANTLE_LIBRARY", fake("fake_other_version"));
  static std::string posted;
  posted.clear();
  SoErrorCB* const former = SoDebugError::getHandlerCallback();
  SoDebugError::setHandlerCallback(
      [](SoError const* error, void*) { posted += error->getDebugString().str(); });
  SoLibVantle* const inspector = SoLibVantle::instance();
  EXPECT_FALSE(inspector->startNode(nullptr));
  EXPECT_FALSE(inspector->startSceneManager(nullptr));
  EXPECT_FALSE(inspector->startRenderArea(nullptr));
  char* arguments[] = {nullptr};
  EXPECT_FALSE(inspector->startStandalone(0, arguments));
  SoDebugError::setHandlerCallback(former);
  for (char const* operation : {"startNode", "startSceneManager", "startRenderArea", "startStandalone"}) {
    EXPECT_NE(posted.find(std::string("SoLibVantle::") + operation + ": "), std::string::npos) << posted;
  }
  inspector->stop();
  EXPECT_FALSE(inspector->processEvents());
  EXPECT_FALSE(inspector->isRunning());
}

// A program without Qt asks whether there is an inspector: it gets an answer and no Qt application.
TEST_F(LoaderTest, TheInspectorIsFoundBesideTheToolkit) {
  if (!std::filesystem::exists(VANTLE_LIB_DIR "/libqor_vantle.so")) GTEST_SKIP() << "not built";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        std::string const locale = std::setlocale(LC_ALL, nullptr);
        bool const found = SoLibVantle::isAvailable();
        if (!found) std::fprintf(stderr, "%s\n", SoLibVantle::getLastError().c_str());
        bool const quiet = !SoLibVantle::instance()->isRunning() &&
                           !SoLibVantle::instance()->processEvents() &&
                           locale == std::setlocale(LC_ALL, nullptr);
        SoLibVantle::instance()->stop();
        std::exit(found && quiet && SoLibVantle::getLastError().empty() ? 0 : 3);
      },
      testing::ExitedWithCode(0), "");
}

} // namespace
