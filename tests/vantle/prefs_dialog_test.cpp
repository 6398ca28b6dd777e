#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>

#include "tests/vantle/RecordingPage.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/prefs/SoVantlePreferences.h"
#include "vnt/VntExtension.h"
#include "vnt/VntShell.h"

namespace {

QPushButton* button(QDialog& dialog, char const* name) { return dialog.findChild<QPushButton*>(name); }

TEST(PreferencesDialog, PagesReadAtOnceWriteOnOkAndApplyAndSurvive) {
  RecordingPage full, mute;
  {
    SoVantlePreferences dialog({{&full, "Full", &full, SLOT(readSettings()), SLOT(writeSettings())},
                                {&mute, "Mute", &mute, nullptr, nullptr}});
    EXPECT_EQ(full.log, "r");
    auto* const list = dialog.findChild<QListWidget*>("m_preferenceList");
    auto* const stack = dialog.findChild<QStackedWidget*>("m_widgetStack");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(stack->currentWidget(), &full);
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(stack->currentWidget(), &mute);

    QTest::keyClick(&dialog, Qt::Key_A, Qt::AltModifier);
    EXPECT_TRUE(VantleTest::waitFor([&] { return full.log == "rw"; }));
    QTest::mouseClick(button(dialog, "m_okButton"), Qt::LeftButton);
    EXPECT_EQ(full.log, "rww");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    dialog.show();
    QTest::mouseClick(button(dialog, "m_cancelButton"), Qt::LeftButton);
    dialog.emitInitSignal(0);
    EXPECT_EQ(full.log, "rwwr");
    EXPECT_EQ(mute.log, "");
  }
  EXPECT_EQ(full.parent(), nullptr);
  EXPECT_EQ(mute.parent(), nullptr);
}

TEST(PreferencesDialog, MayBeEmpty) {
  SoVantlePreferences dialog({});
  EXPECT_EQ(dialog.findChild<QListWidget*>("m_preferenceList")->count(), 0);
  EXPECT_EQ(dialog.findChild<QStackedWidget*>("m_widgetStack")->count(), 0);
}

struct NamedExtension : VntExtension {
  SbString getName() const override { return "Test"; }
  SbString getInfo() const override { return "Test Page"; }
};

using PreferencesCommand = VantleTest;

TEST_F(PreferencesCommand, ShowsThePagesOfExtensions) {
  start();
  NamedExtension extension;
  RecordingPage page;
  VntShell::getInstance()->registerPreferencePanel(&extension, &page, SLOT(readSettings()),
                                                   SLOT(writeSettings()));
  QTimer answer;
  QObject::connect(&answer, &QTimer::timeout, &answer, [&] {
    auto* const dialog = qobject_cast<SoVantlePreferences*>(QApplication::activeModalWidget());
    if (!dialog) return;
    answer.stop();
    auto* const list = dialog->findChild<QListWidget*>("m_preferenceList");
    EXPECT_EQ(list->item(list->count() - 1)->text(), "Test Page");
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_TRUE(page.isVisible());
    QTest::mouseClick(button(*dialog, "m_okButton"), Qt::LeftButton);
  });
  answer.start(5);
  commands()->editPreferences();
  EXPECT_EQ(page.log, "rw");
  VntShell::getInstance()->unregisterPreferencePanel(&extension);
}

} // namespace
