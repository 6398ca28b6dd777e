// What the inspector's library shows to the world.

#include <gtest/gtest.h>

#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QString>

namespace {

QSet<QString> exportedNames(bool& hasNames) {
  QProcess nm;
  nm.start("nm", {"-D", "--defined-only", "--format=posix", VANTLE_LIB_DIR "/libqor_vantle.so"});
  hasNames = nm.waitForFinished() && nm.exitCode() == 0;
  QSet<QString> names;
  for (QByteArray const& line : nm.readAllStandardOutput().split('\n')) {
    QList<QByteArray> const parts = line.split(' ');
    if (parts.size() < 2) continue;
    QString const name = QString::fromLatin1(parts[0]);
    // Weak ones are what a compiler that does not optimise leaves of other people's templates.
    if (!QByteArray("WVu").contains(parts[1]) || name.contains("Vantle")) names << name;
  }
  return names;
}

TEST(SessionExports, TheEntryPointsAndWhatPlugInsUse) {
  bool hasNames;
  QSet<QString> names = exportedNames(hasNames);
  if (!hasNames) GTEST_SKIP() << "no nm, or the library is not built";
  for (char const* entry :
       {"_startNode", "_startSceneManager", "_startRenderArea", "_startStandalone", "_stop", "_isRunning",
        "_processEvents", "_setPickAction", "_setSceneGraph", "_toolkitVersion"}) {
    EXPECT_TRUE(names.remove(entry)) << entry;
  }
  EXPECT_TRUE(names.remove("_ZN12SoVantleImpl15startStandaloneERiPPc"));
  EXPECT_TRUE(names.remove("_ZN12SoVantleImpl13processEventsEv"));
  // The types of the toolkit's classes are known from their headers; each is one in the whole process.
  static QRegularExpression const type("getClass(TypeId|FieldData)");
  static QRegularExpression const category("^_ZN11VntNodeInfo(C[12]|[0-9])");
  static QRegularExpression const sanitizer("asan|ubsan|lsan|sanitizer");
  int categories = 0;
  for (QString const& name : names) {
    if (category.match(name).hasMatch()) {
      ++categories;
    } else if (!type.match(name).hasMatch() && !sanitizer.match(name).hasMatch()) {
      ADD_FAILURE() << "exported without need: " << qPrintable(name);
    }
  }
  EXPECT_EQ(categories, 9);
}

} // namespace
