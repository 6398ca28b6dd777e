#pragma once

#include <QMainWindow>
#include <QStatusBar>

#include "kestrava/base/SoPreferences.h"
#include "tests/vantle/ErrorLog.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/VntPluginsManager.h"

/// Sessions with the plug-ins of tests/plugins and configurations written by the test.
class PluginsTest : public VantleTest {
 public:
  PluginsTest() { SoPreferences::setValue("KSV_VANTLE_PLUGIN_PATH", VANTLE_LIB_DIR "/test_plugins"); }
  ~PluginsTest() override {
    SoPreferences::removeValue("KSV_VANTLE_PLUGIN_PATH");
    SoPreferences::removeValue("KSV_VANTLE_CONFIGURATION_FILE");
    VntPluginsManager::releaseInstance();
  }

  /// Modules to load, and what stands in the default profile; without an end of line in either.
  static QByteArray configuration(QByteArrayList const& modules, QByteArray const& profile) {
    QByteArray text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<configuration><plugins>\n";
    for (QByteArray const& module : modules) text += "<loadPlugin file=\"" + module + "\"/>\n";
    return text + "</plugins><profiles default=\"P\"><profile name=\"P\">\n" + profile +
           "\n</profile></profiles></configuration>\n";
  }
  static QByteArray sample(QByteArray const& extension) {
    return "<activeExtension plugin=\"Sample\" extension=\"" + extension + "\"/>";
  }

  void startWith(QByteArray const& configuration) {
    QString const file = writeFile("VntConfiguration.xml", configuration);
    SoPreferences::setValue("KSV_VANTLE_CONFIGURATION_FILE", toSbString(file));
    start();
  }
  QString statusBar() const { return frame()->statusBar()->currentMessage(); }
  QWidget* widget(QString const& name) const { return frame()->findChild<QWidget*>(name); }
};
