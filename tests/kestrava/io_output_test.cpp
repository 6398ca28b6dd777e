// Where files are read from and written to.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "tests/kestrava/io_helpers.h"

namespace {

using namespace io_test;

bool writeFile(std::string const& path, SoNode* root, bool compressed = false) {
  SoWriteAction action;
  action.getOutput()->setCompression(compressed);
  if (!action.getOutput()->openFile(SbString(path))) return false;
  action.apply(root);
  return action.getOutput()->closeFile();
}

std::size_t countFiles(std::string const& folder) {
  auto const files = std::filesystem::directory_iterator(folder);
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(SceneWriting, ReplacesTheOldFileOnlyWhenComplete) {
  TemporaryFolder const folder;
  SoRef<SoNode> const root(new SoCube);
  std::string const path = folder.write("scene.kv", "old");
  chmod(path.c_str(), 0640);
  {
    SoWriteAction action;
    ASSERT_TRUE(action.getOutput()->openFile(SbString(path)));
    action.apply(root.get());
    EXPECT_EQ(fileText(path), "old");
  }
  EXPECT_EQ(fileText(path), "old") << "never closed, never there";
  EXPECT_EQ(countFiles(folder.path), 1u);
  ASSERT_TRUE(writeFile(path, root.get()));
  EXPECT_EQ(fileText(path), "#Kestrava V1.0 ascii\n\nCube { }\n");
  struct stat status {};
  stat(path.c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
  std::filesystem::create_symlink(path, folder / "link.kv");
  ASSERT_TRUE(writeFile(folder / "link.kv", SoRef<SoNode>(new SoSeparator).get()));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.kv"));
  EXPECT_EQ(fileText(path), "#Kestrava V1.0 ascii\n\nSeparator { }\n");
  EXPECT_EQ(countFiles(folder.path), 2u);
}

TEST(SceneWriting, FailuresSayWhy) {
  TemporaryFolder const folder;
  SoOutput out;
  std::string const nowhere = folder / "no/such/folder.kv";
  EXPECT_FALSE(out.openFile(SbString(nowhere)));
  EXPECT_EQ(out.getErrorText().str(), nowhere + ": can not be written: No such file or directory");
  EXPECT_FALSE(out.openFile(SbString(folder.path)));
  EXPECT_EQ(out.getErrorText().str(), folder.path + ": can not be written: Is a directory");
  // A full device.
  std::string text = HEADER;
  for (int i = 0; i < 50'000; ++i) text += "Cube { }\n";
  SoRef<SoNode> const many = readText(text);
  for (bool compressed : {false, true}) {
    SoWriteAction action(&out);
    out.setCompression(compressed);
    ASSERT_TRUE(out.openFile("/dev/full"));
    action.apply(many.get());
    EXPECT_FALSE(out.closeFile());
    EXPECT_EQ(out.getErrorText().str(), "/dev/full: can not be written: No space left on device");
  }
}

TEST(SceneWriting, CompressedFilesAreTheSameBytesEachTime) {
  TemporaryFolder const folder;
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += "Cube { width " + std::to_string(i) + " }\n";
  SoRef<SoNode> const root = readText(text);
  ASSERT_TRUE(writeFile(folder / "a.kvz", root.get(), true));
  ASSERT_TRUE(writeFile(folder / "b.kvz", root.get(), true));
  std::string const packed = fileText(folder / "a.kvz");
  EXPECT_EQ(packed, fileText(folder / "b.kvz"));
  EXPECT_TRUE(packed.starts_with("\x1f\x8b"));
  EXPECT_LT(packed.size(), text.size() / 3);
  SoRef<SoNode> const back = readFile(folder / "a.kvz");
  EXPECT_EQ(writeText(back.get()), writeText(root.get()));
}

TEST(SceneReading, FilesAreFoundByName) {
  TemporaryFolder const folder;
  ReadErrors const errors;
  folder.write("searched.kv", HEADER + std::string("Cube { }"));
  SoInput in;
  EXPECT_FALSE(in.openFile("searched.kv", true));
  SoInput::removeDirectory("/never/added");
  SoInput::addDirectoryLast(SbString(folder.path));
  SoInput::addDirectoryLast(SbString(folder.path + "/"));
  ASSERT_TRUE(in.openFile("searched.kv"));
  EXPECT_EQ(in.getCurFileName().str(), folder / "searched.kv");
  EXPECT_EQ(in.getHeader().str(), "#Kestrava V1.0 ascii");
  in.closeFile();
  EXPECT_TRUE(in.getCurFileName().empty());
  EXPECT_TRUE(in.getHeader().empty());
  SoInput::removeDirectory(SbString(folder.path));
  EXPECT_FALSE(in.openFile("searched.kv", true)) << "one entry however often it was added";

  setenv("KESTRAVA_IO_TEST", folder.path.c_str(), 1);
  EXPECT_TRUE(in.openFile("$KESTRAVA_IO_TEST/searched.kv"));
  EXPECT_FALSE(in.openFile("$KESTRAVA_IO_TEST/searched.kv", true, false));

  for (char const* text : {"first", "second"}) {
    SoInput::addInMemoryTextFile("io_test.txt", text);
    EXPECT_EQ(SoInput::readTextFile("io_test.txt").str(), text);
  }
  SoInput::addInMemoryTextFile("io_test.kv", "#Kestrava V1.0 ascii\r\nSeparator { }\r\n");
  SoRef<SoNode> const root = readFile("io_test.kv");
  EXPECT_TRUE(root);
  EXPECT_EQ(SoInput::readTextFile("io_test_missing.txt").str(), "");
  EXPECT_TRUE(errors.texts.empty());
}

TEST(DatabaseLock, IsRecursiveAndKeepsThreadsApart) {
  SoDB::writelock();
  SoDB::writelock();
  SoDB::readlock();
  std::atomic<int> step{0};
  std::thread reader([&] {
    SoDB::readlock();
    step = 1;
    SoDB::readlock();
    SoDB::readunlock();
    SoDB::readunlock();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(step, 0);
  SoDB::readunlock();
  SoDB::writeunlock();
  EXPECT_EQ(step, 0);
  SoDB::writeunlock();
  reader.join();
  EXPECT_EQ(step, 1);

  // A reader goes on reading although a writer waits, and gets the write lock when it is alone.
  SoDB::readlock();
  std::thread writer([&] {
    SoDB::writelock();
    step = 2;
    SoDB::writeunlock();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  SoDB::readlock();
  EXPECT_EQ(step, 1);
  SoDB::readunlock();
  SoDB::readunlock();
  writer.join();
  SoDB::readlock();
  SoDB::writelock();
  SoDB::writeunlock();
  SoDB::readunlock();
  EXPECT_EQ(step, 2);
}

}  // namespace
