// The undo history.

#include <QAction>
#include <QStatusBar>

#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/VntServicesImpl.h"
#include "vnt/VntCommand.h"

namespace {

class HistoryTest : public VantleTest {
 public:
  struct Command : VntCommand {
    Command(QStringList& log, QString name) : log(log), name(name) {}
    ~Command() override { log << "~" + name; }
    void execute() override { log << name; }
    void undo() override {
      log << "undo " + name;
      if (onUndo) onUndo();
    }
    void redo() override { log << "redo " + name; }
    QStringList& log;
    using VntCommand::setText;
    QString name;
    std::function<void()> onUndo;
  };

  Command* push(QString const& name) {
    auto* const command = new Command(log, name);
    VntServices::getInstance()->execute(command);
    return command;
  }
  /// What was called since the last time.
  QString takeLog() {
    QString const text = log.join(' ');
    log.clear();
    return text;
  }
  void expectActions(bool undo, bool redo) {
    EXPECT_EQ(frame()->m_undoAction->isEnabled(), undo);
    EXPECT_EQ(frame()->m_redoAction->isEnabled(), redo);
  }

  QStringList log;
};

TEST_F(HistoryTest, UndoRedoAndTheDroppedTail) {
  start();
  commands()->undo();
  commands()->redo();
  expectActions(false, false);
  EXPECT_FALSE(commands()->isChanged());

  push("a");
  push("b");
  EXPECT_EQ(takeLog(), "a b");
  expectActions(true, false);
  frame()->m_undoAction->trigger();
  expectActions(true, true);
  push("c");
  EXPECT_EQ(takeLog(), "undo b ~b c");
  expectActions(true, false);

  frame()->m_undoAction->trigger();
  frame()->m_undoAction->trigger();
  expectActions(false, true);
  EXPECT_TRUE(commands()->isChanged()) << "undoing does not make it the file again";
  frame()->m_redoAction->trigger();
  frame()->m_redoAction->trigger();
  expectActions(true, false);
  commands()->redo();
  EXPECT_EQ(takeLog(), "undo c undo a redo a redo c");
}

TEST_F(HistoryTest, TheActionsSayWhatTheyWouldDo) {
  start();
  push("a")->setText("Set width of Cube");
  push("b")->setText("Set string of Text2 <b>");
  push("c");
  QString const undo = frame()->m_undoAction->text();
  EXPECT_EQ(frame()->m_undoAction->toolTip(), "Undo") << "the command does not say what it does";
  commands()->undo();
  EXPECT_EQ(frame()->statusBar()->currentMessage(), "");
  EXPECT_EQ(frame()->m_undoAction->toolTip(), "<qt>Undo: Set string of Text2 &lt;b&gt;</qt>");
  EXPECT_EQ(frame()->m_redoAction->toolTip(), "Redo");
  commands()->undo();
  EXPECT_EQ(frame()->statusBar()->currentMessage(), "Undone: Set string of Text2 <b>");
  EXPECT_EQ(frame()->m_undoAction->toolTip(), "Undo: Set width of Cube");
  EXPECT_EQ(frame()->m_undoAction->statusTip(), "Undo: Set width of Cube");
  EXPECT_EQ(frame()->m_redoAction->statusTip(), "Redo: Set string of Text2 <b>");
  commands()->redo();
  EXPECT_EQ(frame()->statusBar()->currentMessage(), "Redone: Set string of Text2 <b>");
  EXPECT_EQ(frame()->m_undoAction->text(), undo);
  commands()->clearUndoCommands();
  EXPECT_EQ(frame()->m_undoAction->toolTip(), "Undo");
  EXPECT_EQ(frame()->m_redoAction->statusTip(), "");
}

TEST_F(HistoryTest, ACommandThatStandsTwiceIsDestroyedOnce) {
  start();
  Command* const twice = push("a");
  commands()->addCommand(twice);
  commands()->undo();
  commands()->undo();
  EXPECT_EQ(takeLog(), "a a undo a undo a");
  push("b");
  EXPECT_EQ(takeLog(), "~a b");
}

TEST_F(HistoryTest, AClearWaitsForTheRunningCommand) {
  start();
  std::unique_ptr<Command> const command(push("a"));
  command->onUndo = [&] {
    commands()->clearUndoCommands();
    EXPECT_TRUE(commands()->isChanged());
    commands()->processClearUndoCommand();
  };
  takeLog();
  commands()->undo();
  EXPECT_EQ(takeLog(), "undo a") << "a clear destroys nothing";
  EXPECT_FALSE(commands()->isChanged());
  expectActions(false, false);
  commands()->redo();
  EXPECT_EQ(takeLog(), "");
}

TEST_F(HistoryTest, ANewSceneEmptiesIt) {
  start();
  std::unique_ptr<Command> const command(push("a"));
  VntServices::getInstance()->setSceneGraph(nullptr);
  expectActions(false, false);
  EXPECT_FALSE(commands()->isChanged());
}

} // namespace
