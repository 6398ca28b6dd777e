#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoModule.h"
#include "kestrava/base/SoModuleTool.h"
#include "kestrava/base/SoPreferences.h"

namespace fs = std::filesystem;

namespace {

/// Collects what arrives at the handler of one class of errors, and puts the former handler back.
template <class Error> class Collector {
 public:
  Collector() : m_callback(Error::getHandlerCallback()), m_data(Error::getHandlerData()) {
    Error::setHandlerCallback(&collect, this);
  }
  ~Collector() { Error::setHandlerCallback(m_callback, m_data); }

  std::vector<std::string> texts;
  SbString stack;
  std::thread::id thread;

 private:
  static void collect(SoError const* error, void* data) {
    auto* self = static_cast<Collector*>(data);
    self->texts.push_back(error->getDebugString().str());
    self->thread = std::this_thread::get_id();
    EXPECT_TRUE(error->isOfType(Error::getClassTypeId()));
    EXPECT_TRUE(error->isOfType(SoError::getClassTypeId()));
    if (error->isOfType(SoErrorStack::getClassTypeId())) {
      self->stack = static_cast<SoErrorStack const*>(error)->getStack();
    }
  }
  SoErrorCB* m_callback;
  void* m_data;
};

TEST(SoError, EachClassReachesItsOwnHandler) {
  Collector<SoError> plain;
  Collector<SoDebugError> debug;
  Collector<SoReadError> read;
  Collector<SoErrorStack> stack;
  SoError::post("%d of %s", 3, "plain");
  SoReadError::post("%s", std::string(5000, 'x').c_str());
  SoErrorStack::post("grave");
  EXPECT_EQ(plain.texts, std::vector<std::string>{"3 of plain"});
  EXPECT_EQ(read.texts, std::vector<std::string>{std::string(5000, 'x')});
  EXPECT_EQ(stack.texts, std::vector<std::string>{"grave"});
  EXPECT_FALSE(SoReadError::getClassTypeId().isDerivedFrom(SoDebugError::getClassTypeId()));
  std::thread::id other;
  std::thread([&] {
    SoDebugError::post("Here::there", "%d%%", 50);
    other = std::this_thread::get_id();
  }).join();
  ASSERT_EQ(debug.texts.size(), 1u);
  EXPECT_NE(debug.texts[0].find("Here::there"), std::string::npos);
  EXPECT_NE(debug.texts[0].find("50%"), std::string::npos);
  EXPECT_EQ(debug.thread, other);
}

TEST(SoError, DefaultHandlerWritesOneLine) {
  SoErrorCB* const standard = SoReadError::getHandlerCallback();
  ASSERT_NE(standard, nullptr);
  {
    Collector<SoReadError> read;
    EXPECT_NE(SoReadError::getHandlerCallback(), standard);
  }
  EXPECT_EQ(SoReadError::getHandlerCallback(), standard);
  testing::internal::CaptureStderr();
  SoReadError::post("line 7: no field '%s'", "colour");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "line 7: no field 'colour'\n");
}

TEST(SoError, HandlersMayPostAndChangeHandlers) {
  Collector<SoError> plain;
  SoReadError::setHandlerCallback(
      [](SoError const* error, void*) {
        SoReadError::setHandlerCallback(nullptr);
        SoError::post("again: %s", error->getDebugString().c_str());
      },
      nullptr);
  SoReadError::post("once");
  EXPECT_EQ(plain.texts, std::vector<std::string>{"again: once"});
}

TEST(SoErrorStack, CarriesTheStackOnlyWhenAsked) {
  Collector<SoErrorStack> stack;
  SoPreferences::setValue("KSV_DEBUG_STACKERROR", "0");
  SoErrorStack::post("without");
  EXPECT_TRUE(stack.stack.empty());
  SoPreferences::setValue("KSV_DEBUG_STACKERROR", "1");
  SoErrorStack::post("with");
  SoPreferences::removeValue("KSV_DEBUG_STACKERROR");
  EXPECT_TRUE(stack.stack.str().starts_with("#0 "));
  EXPECT_NE(stack.stack.str().find("testing::"), std::string::npos) << stack.stack.str();
  EXPECT_EQ(stack.stack.str().find("SoErrorStack::post"), std::string::npos);
}

TEST(SoPreferences, ProcessBeforeEnvironmentBeforeDefault) {
  SbString const key("KESTRAVA_TEST_PREFERENCE");
  ::unsetenv(key.c_str());
  EXPECT_FALSE(SoPreferences::hasValue(key));
  EXPECT_EQ(SoPreferences::getString(key, "default"), SbString("default"));
  ::setenv(key.c_str(), "", 1);
  EXPECT_TRUE(SoPreferences::hasValue(key));
  EXPECT_EQ(SoPreferences::getString(key, "default"), SbString());
  ::setenv(key.c_str(), "environment", 1);
  EXPECT_EQ(SoPreferences::getString(key), SbString("environment"));
  SoPreferences::setValue(key, "process");
  EXPECT_EQ(SoPreferences::getString(key), SbString("process"));
  EXPECT_STREQ(::getenv(key.c_str()), "environment");
  EXPECT_EQ(SoPreferences::getSetValue(key), SbString("process"));
  SoPreferences::removeValue(key);
  EXPECT_FALSE(SoPreferences::getSetValue(key));
  EXPECT_EQ(SoPreferences::getString(key), SbString("environment"));
  ::unsetenv(key.c_str());
}

TEST(SoPreferences, ReadsBooleansAndNumbers) {
  SbString const key("KESTRAVA_TEST_PREFERENCE");
  struct {
    char const* text;
    bool ifTrue, ifFalse;
    int integer;
    float real;
  } const cases[] = {
      {"1", true, true, 1, 1},
      {"0", false, false, 0, 0},
      {"TRUE", true, true, -7, -7},
      {"false", false, false, -7, -7},
      {" on ", true, true, -7, -7},
      {"12", true, true, 12, 12},
      {"", true, false, -7, -7},
      {"maybe", true, false, -7, -7},
      {"2.5", true, false, -7, 2.5f},
      {"1e3", true, false, -7, 1000},
      {"99999999999", true, false, -7, 99999999999.f},
  };
  for (auto const& test : cases) {
    SoPreferences::setValue(key, test.text);
    EXPECT_EQ(SoPreferences::getBool(key, true), test.ifTrue) << test.text;
    EXPECT_EQ(SoPreferences::getBool(key, false), test.ifFalse) << test.text;
    EXPECT_EQ(SoPreferences::getInt(key, -7), test.integer) << test.text;
    EXPECT_EQ(SoPreferences::getFloat(key, -7), test.real) << test.text;
  }
  SoPreferences::removeValue(key);
}

TEST(SbFileHelper, PartsOfNames) {
  struct {
    char const *path, *folder, *base, *extension;
  } const cases[] = {
      {"a/b.kv", "a/", "b.kv", "kv"},
      {"b.kv", "./", "b.kv", "kv"},
      {"/b", "/", "b", ""},
      {"/x.y/b", "/x.y/", "b", ""},
      {"a/b.tar.gz", "a/", "b.tar.gz", "gz"},
      {"a/", "a/", "", ""},
      {"", "./", "", ""},
      {"end.", "./", "end.", ""},
  };
  for (auto const& test : cases) {
    EXPECT_EQ(SbFileHelper::getDirName(test.path), SbString(test.folder)) << test.path;
    EXPECT_EQ(SbFileHelper::getBaseName(test.path), SbString(test.base)) << test.path;
    EXPECT_EQ(SbFileHelper::getExtension(test.path), SbString(test.extension)) << test.path;
  }
  EXPECT_EQ(SbFileHelper::toUnixPath("a\\b/c\\"), SbString("a/b/c/"));
  EXPECT_EQ(SbFileHelper::toAbsolutePath("/a/./b/../c"), SbString("/a/c"));
  EXPECT_EQ(SbFileHelper::toAbsolutePath("x/../y").str(), (fs::current_path() / "y").string());
}

TEST(SbFileHelper, ExpandsVariables) {
  ::setenv("KESTRAVA_TEST_A", "/home/a", 1);
  ::unsetenv("KESTRAVA_TEST_NONE");
  SoPreferences::setValue("KESTRAVA_TEST_B", "$KESTRAVA_TEST_A");
  struct {
    char const *text, *expected;
  } const cases[] = {
      {"$KESTRAVA_TEST_A/x", "/home/a/x"},
      {"${KESTRAVA_TEST_A}x", "/home/ax"},
      {"a$KESTRAVA_TEST_NONE/b", "a/b"},
      {"${KESTRAVA_TEST_NONE}", ""},
      {"cost: 5$", "cost: 5$"},
      {"$/a", "$/a"},
      {"${KESTRAVA_TEST_A", "${KESTRAVA_TEST_A"},
      {"${}", "${}"},
      {"plain", "plain"},
      {"$KESTRAVA_TEST_B", "$KESTRAVA_TEST_A"}, // what a value holds is not expanded again
      {"$KESTRAVA_TEST_A$KESTRAVA_TEST_A", "/home/a/home/a"},
  };
  for (auto const& test : cases)
    EXPECT_EQ(SbFileHelper::expandString(test.text), SbString(test.expected)) << test.text;
  SoPreferences::removeValue("KESTRAVA_TEST_B");
}

TEST(SbFileHelper, FilesAndFolders) {
  fs::path const folder = fs::temp_directory_path() / ("kestrava_files_" + std::to_string(::getpid()));
  fs::create_directories(folder);
  std::ofstream(folder / "file") << "x";
  fs::create_symlink("nowhere", folder / "dangling");
  struct {
    char const* name;
    bool exists, readable, accessible;
  } const cases[] = {{"", true, false, true},
                     {"file", true, true, true},
                     {"none", false, false, false},
                     {"dangling", false, false, false}};
  for (auto const& test : cases) {
    SbString const path((folder / test.name).string());
    EXPECT_EQ(SbFileHelper::exists(path), test.exists) << test.name;
    EXPECT_EQ(SbFileHelper::isReadable(path), test.readable) << test.name;
    EXPECT_EQ(SbFileHelper::isAccessible(path), test.accessible) << test.name;
  }
  fs::remove_all(folder);
}

TEST(SoModule, RegisteringAgainReplaces) {
  EXPECT_FALSE(SoModule::find("libkestrava_test.so"));
  SoModule::registerModule("libkestrava_test.so", "1.0", "Linux");
  SoModule::registerModule("libkestrava_test.so", "1.1", "Linux");
  ASSERT_TRUE(SoModule::find("libkestrava_test.so"));
  EXPECT_EQ(SoModule::find("libkestrava_test.so")->version, SbString("1.1"));
  EXPECT_FALSE(SoModuleTool::initModule("kestrava_test_missing"));
  EXPECT_FALSE(SoModuleTool::finishModule("kestrava_test_missing"));
}

TEST(SoDynamicLibManager, FindsLibrariesAndSymbols) {
  SbString const libc = SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&::getpid));
  EXPECT_NE(SbFileHelper::getBaseName(libc).str().find("libc.so"), std::string::npos);
  EXPECT_TRUE(SbFileHelper::isAbsolute(libc));
  EXPECT_TRUE(SbFileHelper::isReadable(
      SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&SoModule::find))));
  EXPECT_TRUE(SoDynamicLibManager::getLibraryFromSymbol(nullptr).empty());

  void* const library = SoDynamicLibManager::open(libc);
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(SoDynamicLibManager::symbol(library, "getpid"), reinterpret_cast<void*>(&::getpid));
  EXPECT_EQ(SoDynamicLibManager::symbol(library, "no_such_function"), nullptr);
  EXPECT_NE(SoDynamicLibManager::getLastError().str().find("no_such_function"), std::string::npos);
  SoDynamicLibManager::close(library);
  EXPECT_EQ(SoDynamicLibManager::open("/no/such/library.so"), nullptr);
  EXPECT_NE(SoDynamicLibManager::getLastError().str().find("/no/such/library.so"), std::string::npos);
}

} // namespace
