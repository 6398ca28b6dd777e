#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <memory>

class QMessageBox;
class SoCommandManager;
class SoNode;
class SoVantleEdition;
class SoVantleMainFrame;
class SoVantleTreeView;
class SoVantleViewer;

/// How GoogleTest shows texts.
inline void PrintTo(QString const& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

/// One session a test, with settings of its own that start empty. The Qt application is the test program's,
/// as a host's would be.
class VantleTest : public ::testing::Test {
 public:
  VantleTest();
  /// Stops the session when it still runs.
  ~VantleTest() override;

  /// Starts as the program does, shows the window and waits until it is there. Null: the default scene.
  void start(SoNode* scene = nullptr);
  /// Starts as a host does, which has its own view.
  void startAttached(SoNode* scene);
  /// Reads a scene from text, without header; the test fails when it can not be read.
  static SoNode* read(std::string const& text);
  /// A new file in the test's own folder.
  QString writeFile(QString const& name, QByteArray const& content);
  QString folder() const { return m_folder.path(); }

  SoVantleMainFrame* frame() const;
  SoCommandManager* commands() const;
  SoVantleViewer* viewer() const;
  SoVantleTreeView* tree() const;
  SoVantleEdition* edition() const;

  /// Handles events until the condition holds; false after ten seconds.
  static bool waitFor(std::function<bool()> const& condition);

 private:
  QTemporaryDir m_folder;
};

/// Answers the message box that the code under test is about to open, and checks what it shows:
///
///     BoxAnswer box("VantleReadFile", "...", {"OK"}, "OK");
///     viewer()->fileLoad(name);
///     EXPECT_TRUE(box.wasShown());
class BoxAnswer {
 public:
  /// `text` empty: any text. `press` is one of the buttons (without mnemonic), or "Escape".
  BoxAnswer(QString title, QString text, QStringList buttons, QString press);
  /// Fails the test when the box never came.
  ~BoxAnswer();
  bool wasShown() const { return m_shown; }
  /// What the box said.
  QString const& text() const { return m_seenText; }

 private:
  void look();
  QTimer m_timer;
  QString m_title, m_text, m_press, m_seenText;
  QStringList m_buttons;
  bool m_shown = false;
};
