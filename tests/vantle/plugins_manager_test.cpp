// Loading plug-ins: what is refused and how that is told, and that everything else goes on.

#include <QDir>
#include <QDockWidget>

#include "tests/vantle/PluginsTest.h"
#include "vantle/session/SoVantleImpl.h"
#include "vnt/VntPluginLibrary.h"
#include "vnt/VntShell.h"

namespace {

constexpr char LIBRARIES[] = VANTLE_LIB_DIR "/test_plugins";

/// A copy of a plug-in whose metadata say that it was built with another Qt.
void writeForQt(int major, QString const& file) {
  QFile in(QString(LIBRARIES) + "/libsample.so");
  ASSERT_TRUE(in.open(QIODevice::ReadOnly));
  QByteArray bytes = in.readAll();
  // A note of the ELF file, or a section of its own in builds of Qt without notes; the names are equally
  // long.
  QByteArray const mark = bytes.contains("qt-project!") ? QByteArray("qt-project!", 12) : "QTMETADATA !";
  qsizetype const at = bytes.indexOf(mark);
  ASSERT_GT(at, 0);
  // Behind the mark: version of the format, then Qt's major number.
  ASSERT_EQ(bytes[at + mark.size() + 1], QT_VERSION_MAJOR);
  bytes[at + mark.size() + 1] = static_cast<char>(major);
  QFile out(file);
  ASSERT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size());
}

TEST_F(PluginsTest, RefusesBeforeAnyCodeOfTheLibraryRuns) {
  SoPreferences::setValue("KSV_VANTLE_PLUGIN_PATH",
                          toSbString(folder() + ":" + LIBRARIES + ":" + folder() + "/more"));
  QFile::copy(QString(LIBRARIES) + "/libsample.so", folder() + "/libsecond.so");
  writeForQt(5, folder() + "/libolder_qt.so");
  writeFile("libtext.so", "no library at all");
  QDir(folder()).mkdir("libfolder.so");
  struct Case {
    char const* module;
    QString complaint;
  } const cases[] = {
      {"no_such", "there is no libno_such.so (looked in " + folder() + ", " + LIBRARIES},
      {"text", "libtext.so is no plug-in"},
      {"folder", "libfolder.so can not be read"},
      {"no_plugin", "libno_plugin.so is no plug-in"},
      {"foreign", "libforeign.so is a plug-in for something else (org.example.Codec)"},
      {"old_interface", "libold_interface.so is made for version 0 of the framework, this is 1"},
      {"older_qt", "libolder_qt.so is made for Qt 5."},
      {"nameless", "libnameless.so has no \"name\" in its metadata"},
      {"barren", "libbarren.so has no \"extensions\" in its metadata"},
      {"throwing", "libthrowing.so failed: out of order"},
      {"second", "is passed over: \"Sample\" is loaded already"},
      {"../test_plugins/sample", "a plug-in is named without folder"},
      {LIBRARIES, "a plug-in is named without folder"},
  };
  unsetenv("VNT_TEST_RAN");
  for (Case const& c : cases) {
    QString const file = writeFile("c.xml", configuration({"sample", c.module}, ""));
    ErrorLog<SoDebugError> errors;
    EXPECT_TRUE(VntPluginsManager::getInstance()->read(toSbString(file), true));
    EXPECT_EQ(errors.texts.size(), 1) << c.module << "\n" << qPrintable(errors.texts.join("\n"));
    EXPECT_TRUE(errors.texts.value(0).contains(c.complaint)) << qPrintable(errors.texts.value(0));
    EXPECT_TRUE(errors.texts.value(0).contains(c.module)) << qPrintable(errors.texts.value(0));
    EXPECT_FALSE(getenv("VNT_TEST_RAN")) << c.module;
    ASSERT_EQ(VntPluginsManager::getInstance()->getPlugins().size(), 1u) << c.module;
    VntPluginsManager::releaseInstance();
  }
}

TEST_F(PluginsTest, LooksOnlyIntoPluginFolders) {
  QString const before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(LIBRARIES));
  struct Case {
    char const* path;
    int complaints;
    bool found;
  } const cases[] = {
      {"", 0, false}, {"::", 0, false}, {".", 1, false}, {"./:..", 2, false}, {LIBRARIES, 0, true}};
  for (Case const& c : cases) {
    SoPreferences::setValue("KSV_VANTLE_PLUGIN_PATH", c.path);
    QString const file = writeFile("c.xml", configuration({"sample"}, ""));
    ErrorLog<SoDebugError> errors;
    VntPluginsManager::getInstance()->read(toSbString(file), true);
    EXPECT_EQ(errors.texts.size(), c.complaints + !c.found) << c.path << qPrintable(errors.texts.join("\n"));
    EXPECT_EQ(!VntPluginsManager::getInstance()->getPlugins().empty(), c.found) << c.path;
    VntPluginsManager::releaseInstance();
  }
  QDir::setCurrent(before);
}

TEST_F(PluginsTest, SaysWhatIsWrongWithAConfiguration) {
  struct Case {
    QByteArray text;
    bool isFile, isRead;
    QStringList complaints;
  } const cases[] = {
      {"<configuration><plugins>", false, false, {"built-in configuration:1:"}},
      {"<configuration>\n<plugins>\n<loadPlugin>\n</plugins></configuration>", true, false, {"c.xml:4: "}},
      {"<other/>", true, false, {"the root element is \"other\""}},
      {"", true, false, {"c.xml:1: "}},
      {"<configuration/>", true, true, {}},
      {"<configuration><later><thing/></later></configuration>", true, true, {}},
      {"<configuration><plugins><loadPlugin/></plugins><profiles default=\"P\"><profile name=\"P\">"
       "<activeExtension plugin=\"X\" extension=\"Y\"/></profile></profiles></configuration>",
       true,
       true,
       {"no attribute \"file\""}},
      {configuration({"no_such"}, ""), false, true, {}},
      {configuration({"barren"}, ""), false, true, {"no \"extensions\""}},
      // What only follows from a module that is missing is not told again.
      {configuration({"no_such"},
                     "<activeExtension plugin=\"X\" extension=\"Y\"><controlledExtension plugin=\"X\" "
                     "extension=\"Z\"/></activeExtension>"),
       true,
       true,
       {"libno_such.so"}},
      {configuration({"sample"}, "<activeExtension plugin=\"Simple\" extension=\"Good\"/>"),
       true,
       true,
       {"c.xml:5: there is no plug-in \"Simple\""}},
      {configuration({"sample"}, sample("Better")),
       true,
       true,
       {"c.xml:5: plug-in \"Sample\" has no extension \"Better\""}},
      {configuration({"sample"}, sample("Missing")), true, true, {"names the extension \"Missing\""}},
      {configuration({"sample"}, "<activeExtension plugin=\"Sample\"/>"),
       true,
       true,
       {"no attribute \"extension\""}},
      {configuration({"sample"}, "<controlledExtension plugin=\"Sample\" extension=\"Part\"/>"),
       true,
       true,
       {"c.xml:5: extension \"Part\" is controlled by nobody"}},
      {"<configuration><profiles default=\"Q\"><profile name=\"P\"/></profiles></configuration>",
       true,
       true,
       {"there is no profile \"Q\""}},
  };
  for (Case const& c : cases) {
    QString const file = writeFile("c.xml", c.text);
    SbString const source = c.isFile ? toSbString(file) : SbString(c.text.toStdString());
    ErrorLog<SoDebugError> errors;
    EXPECT_EQ(VntPluginsManager::getInstance()->read(source, c.isFile), c.isRead) << c.text.constData();
    EXPECT_EQ(errors.texts.size(), c.complaints.size()) << qPrintable(errors.texts.join("\n"));
    for (qsizetype i = 0; i < c.complaints.size(); ++i) {
      EXPECT_TRUE(errors.texts.value(i).contains(c.complaints[i])) << qPrintable(errors.texts.value(i));
    }
    VntPluginsManager::releaseInstance();
  }
  ErrorLog<SoDebugError> errors;
  EXPECT_FALSE(VntPluginsManager::getInstance()->read(toSbString(folder() + "/none.xml"), true));
  EXPECT_EQ(errors.texts.size(), 1);
  EXPECT_TRUE(errors.texts.value(0).contains("none.xml"));
}

TEST_F(PluginsTest, ProblemsStandTogetherInTheStatusBarAndTheRestWorks) {
  ErrorLog<SoDebugError> errors;
  startWith(
      configuration({"no_such", "sample"}, sample("Thrower") + sample("Better") +
                                               "<activeExtension plugin=\"Sample\" extension=\"Good\">"
                                               "<controlledExtension plugin=\"Sample\" extension=\"Part\"/>"
                                               "</activeExtension>"));
  EXPECT_EQ(errors.texts.size(), 3) << qPrintable(errors.texts.join("\n"));
  QString const shown = statusBar();
  EXPECT_TRUE(shown.startsWith("3 problems with plug-ins: ")) << qPrintable(shown);
  for (char const* part :
       {"libno_such.so", "activating extension \"Thrower\" failed: no luck today", "\"Better\""}) {
    EXPECT_TRUE(shown.contains(part)) << part << "\n" << qPrintable(shown);
  }
  // What the one that failed had registered before is out of the window, the others are in it.
  EXPECT_FALSE(widget("Thrower dock") && widget("Thrower dock")->isVisible());
  ASSERT_TRUE(widget("Good dock"));
  EXPECT_TRUE(widget("Good dock")->isVisible());
  EXPECT_EQ(widget("Good dock")->windowTitle(), "Good dock with part");
  EXPECT_TRUE(VntPluginsManager::getInstance()->getExtension("Sample", "Good"));
  EXPECT_FALSE(VntPluginsManager::getInstance()->getExtension("Sample", "Better"));
  EXPECT_FALSE(VntPluginsManager::getInstance()->getExtension("Other", "Good"));
}

TEST_F(PluginsTest, AFaultyConfigurationLeavesTheFieldEditors) {
  SoPreferences::removeValue("KSV_VANTLE_PLUGIN_PATH");
  struct Case {
    QString file;
    QByteArray text;
    char const* told;
  } const cases[] = {{"faulty.xml", "<configuration>\n<plugins>", "faulty.xml:2: "},
                     {"none.xml", "", "none.xml: No such file"}};
  for (Case const& c : cases) {
    QString const file = c.text.isEmpty() ? folder() + '/' + c.file : writeFile(c.file, c.text);
    SoPreferences::setValue("KSV_VANTLE_CONFIGURATION_FILE", toSbString(file));
    ErrorLog<SoDebugError> errors;
    start();
    EXPECT_EQ(errors.texts.size(), 1) << qPrintable(errors.texts.join("\n"));
    EXPECT_TRUE(statusBar().startsWith(c.told)) << qPrintable(statusBar());
    EXPECT_TRUE(VntPluginsManager::getInstance()->getExtension("VntDefaults", "Field Editor")) << c.told;
    SoVantleImpl::stop(true);
  }
}

TEST_F(PluginsTest, AnExtensionThatCanNotBeControlledIsTold) {
  ErrorLog<SoDebugError> errors;
  startWith(configuration({"sample"},
                          "<activeExtension plugin=\"Sample\" extension=\"Good\">"
                          "<controlledExtension plugin=\"Sample\" extension=\"Sulky\"/>"
                          "</activeExtension>"));
  ASSERT_EQ(errors.texts.size(), 1) << qPrintable(errors.texts.join("\n"));
  EXPECT_TRUE(errors.texts[0].contains(":5: extension \"Sulky\" can not be controlled by \"Good\""));
  EXPECT_TRUE(statusBar().contains("\"Sulky\" can not be controlled"));
}

} // namespace
