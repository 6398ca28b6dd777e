// Scene files: opening, the recent ones, unsaved changes, saving, dropping.

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/vantle/VantleTest.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vnt/QtText.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/VntCommand.h"

namespace {

class FilesTest : public VantleTest {
 public:
  QString scene(QString const& name, QByteArray const& body = "Separator { Cube { } }") {
    return writeFile(name, "#Kestrava V1.0 ascii\n" + body + "\n");
  }
  QString rootChildType() const {
    auto const* const root = dynamic_cast<SoGroup*>(viewer()->getScene());
    return root && root->getNumChildren() ? toQString(root->getChild(0)->getTypeId().getName().toString())
                                          : "";
  }
  /// As if the user had edited something.
  void change() {
    struct Edit : VntCommand {
      void execute() override {}
      void undo() override {}
      void redo() override {}
    };
    static Edit edit;
    commands()->addCommand(&edit);
  }
  QStringList recentEntries() const {
    QStringList texts;
    for (QAction* action : frame()->getRecentFilesMenu()->actions()) {
      if (action->isVisible()) texts << action->text();
    }
    return texts;
  }
};

TEST_F(FilesTest, OpeningAFile) {
  start();
  change();
  QString const name = scene("a&b.kv", "Separator { Cone { } }");
  viewer()->fileLoad(name);
  EXPECT_EQ(rootChildType(), "Cone");
  EXPECT_EQ(viewer()->getFileName(), name);
  EXPECT_EQ(frame()->windowTitle(), "Vantle -- " + name);
  EXPECT_TRUE(frame()->m_reloadAction->isEnabled());
  EXPECT_FALSE(commands()->isChanged());
  EXPECT_EQ(recentEntries(), QStringList{"&1 " + QString(name).replace('&', "&&")});
  ASSERT_EQ(tree()->topLevelItemCount(), 1);
  EXPECT_EQ(tree()->firstChild()->getNode(), viewer()->getScene());

  scene("a&b.kv", "Separator { Sphere { } }");
  frame()->m_reloadAction->trigger();
  EXPECT_EQ(rootChildType(), "Sphere");

  commands()->closeFile();
  EXPECT_EQ(frame()->windowTitle(), "Vantle");
  EXPECT_EQ(rootChildType(), "");
  EXPECT_FALSE(frame()->m_reloadAction->isEnabled());
  EXPECT_EQ(viewer()->getFileName(), "");
}

TEST_F(FilesTest, AFaultyFileLeavesEverythingAsItWas) {
  start();
  QString const good = scene("good.kv");
  viewer()->fileLoad(good);
  SoNode* const before = viewer()->getScene();
  QString const bad = scene("bad.kv", "Separator {\n  Cube { width }\n  Cone { height ? }\n}");
  {
    BoxAnswer box("VantleReadFile", "", {"OK"}, "OK");
    viewer()->fileLoad(bad);
    EXPECT_TRUE(box.text().contains(bad + ":3")) << qPrintable(box.text());
  }
  {
    BoxAnswer box("VantleReadFile", "", {"OK"}, "OK");
    viewer()->fileLoad(folder() + "/none.kv");
    EXPECT_TRUE(box.text().contains("none.kv")) << qPrintable(box.text());
  }
  EXPECT_EQ(viewer()->getScene(), before);
  EXPECT_EQ(viewer()->getFileName(), good);
  EXPECT_EQ(frame()->windowTitle(), "Vantle -- " + good);
  EXPECT_EQ(viewer()->getRecentFiles(), QList<QString>{good});
}

TEST_F(FilesTest, RecentFilesAreNineLatestFirst) {
  start();
  QStringList names;
  for (int i = 0; i < 10; ++i) {
    names.prepend(scene(QString::number(i) + ".kv"));
    viewer()->fileLoad(names.first());
  }
  names.removeLast();
  EXPECT_EQ(viewer()->getRecentFiles(), names);
  viewer()->fileLoad(names[4]);
  names.move(4, 0);
  EXPECT_EQ(viewer()->getRecentFiles(), names);
  EXPECT_EQ(recentEntries().value(8), "&9 " + names[8]);

  frame()->getRecentFilesMenu()->actions().at(8)->trigger();
  EXPECT_EQ(viewer()->getFileName(), names[8]);
  names.move(8, 0);

  QFile::remove(names[1]);
  {
    BoxAnswer box("Vantle -- Load File", "Can't load '" + names[1] + "'. \n This file doesn't exist anymore.",
                  {"OK"}, "OK");
    viewer()->fileLoadRecent(1);
  }
  EXPECT_EQ(viewer()->getRecentFiles(), names) << "the entry stays";

  // The list is there again on the next start.
  frame()->m_quitAction->trigger();
  SoVantleImpl::processEvents();
  start();
  EXPECT_EQ(viewer()->getRecentFiles(), names);
  EXPECT_EQ(recentEntries().size(), 9);
}

TEST_F(FilesTest, UnsavedChanges) {
  start();
  QString const name = scene("a.kv");
  struct Case {
    char const* press;
    bool goesOn, isSaved;
  } const cases[] = {
      {"Yes", true, true}, {"No", true, false}, {"Escape", true, false}, {"Cancel", false, false}};
  for (Case const& c : cases) {
    scene("a.kv");
    viewer()->fileLoad(name);
    static_cast<SoGroup*>(viewer()->getScene())->addChild(new SoCube);
    change();
    BoxAnswer box("Vantle -- Unsaved Changes", "Save changes to " + name, {"Yes", "No", "Cancel"}, c.press);
    EXPECT_EQ(viewer()->okToClear(), c.goesOn) << c.press;
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count("Cube"), c.isSaved ? 2 : 1) << c.press;
  }
  EXPECT_FALSE(viewer()->getFileName().isEmpty());
}

TEST_F(FilesTest, WritingAFile) {
  start(read("Separator { Cube { width 3 } }"));
  using enum SoVantleViewer::WriteFileType;
  struct Case {
    char const* name;
    SoVantleViewer::WriteFileType type;
    bool isCompressed;
  } const cases[] = {{"a.kv", ASCII, false}, {"b.kv", BINARY, false}, {"c.KVZ", ASCII, true},
                     {"d.kv.gz", ASCII, true}, {"e.kvz", BINARY, true}};
  for (Case const& c : cases) {
    QString const name = folder() + "/" + c.name;
    SbString const path = toSbString(name);
    ASSERT_TRUE(viewer()->fileWrite(viewer()->getScene(), path, c.type, false)) << c.name;
    EXPECT_EQ(viewer()->checkHeaderType(path), c.type) << c.name;
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.read(2) == "\x1f\x8b", c.isCompressed) << c.name;
    viewer()->fileLoad(name);
    auto* const cube = dynamic_cast<SoCube*>(static_cast<SoGroup*>(viewer()->getScene())->getChild(0));
    ASSERT_TRUE(cube) << c.name;
    EXPECT_EQ(cube->width.getValue(), 3.0f);
    viewer()->fileSave();
    EXPECT_EQ(viewer()->checkHeaderType(path), c.type) << c.name << " keeps its form";
  }
  // The type of a file that is written over follows from its header.
  EXPECT_TRUE(viewer()->fileWrite(viewer()->getScene(), toSbString(folder() + "/a.kv"),
                                  SoVantleViewer::FROM_HEADER, false));
  SbString const noScene = toSbString(writeFile("text.kv", "no scene"));
  EXPECT_FALSE(viewer()->fileWrite(viewer()->getScene(), noScene, SoVantleViewer::FROM_HEADER, false));
  EXPECT_FALSE(viewer()->fileWrite(nullptr, noScene, SoVantleViewer::ASCII, false));
}

TEST_F(FilesTest, SavingClearsTheHistoryAndAFailedSaveTheName) {
  start();
  QString const name = scene("a.kv");
  viewer()->fileLoad(name);
  change();
  frame()->m_saveAction->trigger();
  EXPECT_FALSE(commands()->isChanged());
  EXPECT_EQ(viewer()->getFileName(), name);

  writeFile("a.kv", "no scene at all");
  viewer()->fileSave();
  EXPECT_EQ(viewer()->getFileName(), "");

  QString const impossible = folder() + "/no/such/folder.kv";
  BoxAnswer box("File Error Dialog", "Error creating file: " + impossible, {"OK"}, "OK");
  EXPECT_FALSE(
      viewer()->fileWrite(viewer()->getScene(), toSbString(impossible), SoVantleViewer::ASCII, false));
}

TEST_F(FilesTest, ADropLoadsTheFirstFile) {
  start();
  QString const first = scene("first.kv", "Separator { Cone { } }"), second = scene("second.kv");
  auto const drop = [&](QList<QUrl> const& urls) {
    QMimeData data;
    if (!urls.isEmpty()) data.setUrls(urls);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    QApplication::sendEvent(frame(), &enter);
    QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(frame(), &event);
    return enter.isAccepted();
  };
  EXPECT_FALSE(drop({}));
  EXPECT_TRUE(drop({QUrl::fromLocalFile(folder() + "/none.kv")}))
      << "a file that is not there is passed over";
  EXPECT_EQ(viewer()->getFileName(), "");
  EXPECT_TRUE(drop({QUrl::fromLocalFile(first), QUrl::fromLocalFile(second)}));
  EXPECT_EQ(viewer()->getRecentFiles(), QList<QString>{first});
  EXPECT_EQ(rootChildType(), "Cone");
}

TEST_F(FilesTest, NoScene) {
  start(read("Separator { Cube { } }"));
  ASSERT_EQ(tree()->topLevelItemCount(), 1);
  viewer()->setScene(nullptr, true);
  EXPECT_EQ(tree()->topLevelItemCount(), 0);
  EXPECT_FALSE(viewer()->getScene());
}

} // namespace
