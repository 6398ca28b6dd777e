#include "tests/vantle/VantleTest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QSettings>
#include <QTest>

#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoSeparator.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

VantleTest::VantleTest() {
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder.filePath("settings"));
}

VantleTest::~VantleTest() {
  if (SoVantleImpl::isRunning()) SoVantleImpl::stop(true);
}

void VantleTest::start(SoNode* scene) {
  int argc = 1;
  char name[] = "vantle";
  char* argv[] = {name, nullptr};
  SoVantleImpl::startStandalone(argc, argv);
  if (scene) viewer()->setScene(scene, true);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(frame()));
}

void VantleTest::startAttached(SoNode* scene) {
  SoVantleImpl::start(scene, nullptr);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(frame()));
}

SoNode* VantleTest::read(std::string const& text) {
  SoInput in;
  in.setBuffer(text);
  SoNode* root = SoDB::readAll(&in);
  EXPECT_TRUE(root) << "can not read the scene of the test: " << in.getErrorText().str();
  return root;
}

QString VantleTest::writeFile(QString const& name, QByteArray const& content) {
  QString const path = m_folder.filePath(name);
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << qPrintable(path);
  return path;
}

SoVantleMainFrame* VantleTest::frame() const { return VntShellImpl::getImplInstance()->getMainFrame(); }
SoCommandManager* VantleTest::commands() const {
  return VntServicesImpl::getImplInstance()->getCommandManager();
}
SoVantleViewer* VantleTest::viewer() const { return SoVantleViewer::getInstance(); }
SoVantleTreeView* VantleTest::tree() const { return viewer()->getTreeView(); }
SoVantleEdition* VantleTest::edition() const { return viewer()->getEdition(); }

bool VantleTest::waitFor(std::function<bool()> const& condition) { return QTest::qWaitFor(condition, 10000); }

BoxAnswer::BoxAnswer(QString title, QString text, QStringList buttons, QString press)
    : m_title(title), m_text(text), m_press(press), m_buttons(buttons) {
  QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
  m_timer.start(5);
}

BoxAnswer::~BoxAnswer() { EXPECT_TRUE(m_shown) << "the box \"" << qPrintable(m_title) << "\" never came"; }

void BoxAnswer::look() {
  auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  if (!box || !box->isVisible()) return;
  m_timer.stop();
  m_shown = true;
  m_seenText = box->text();
  EXPECT_EQ(box->windowTitle(), m_title);
  EXPECT_EQ(m_seenText, m_text.isEmpty() ? m_seenText : m_text);

  QStringList shown;
  QAbstractButton* chosen = nullptr;
  for (QAbstractButton* button : box->buttons()) {
    QString const label = button->text().remove('&');
    shown << label;
    if (label == m_press) chosen = button;
  }
  EXPECT_EQ(shown, m_buttons);
  if (m_press == "Escape" || !chosen) {
    EXPECT_EQ(m_press, "Escape") << "no such button";
    QTest::keyClick(box, Qt::Key_Escape);
    // A box that Escape does not close would stop the whole run.
    if (box->isVisible()) box->done(0);
  } else {
    QTest::mouseClick(chosen, Qt::LeftButton);
  }
}
