#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbImageWriter.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "node_helpers.h"

using namespace node_test;
using io_test::HEADER;
using io_test::TemporaryFolder;

namespace {

/// Writes down what a selection tells.
struct SelectionLog {
  explicit SelectionLog(SoSelection* selection) {
    selection->addSelectionCallback([](void* d, SoPath* p) { note(d, "+", p); }, this);
    selection->addDeselectionCallback([](void* d, SoPath* p) { note(d, "-", p); }, this);
    selection->addChangeCallback(changed, this);
  }
  static void note(void* data, char const* what, SoPath* path) {
    static_cast<SelectionLog*>(data)->text += what + path->getTail()->getName().str();
  }
  static void changed(void* data, SoSelection*) { static_cast<SelectionLog*>(data)->text += "!"; }
  std::string take() { return std::exchange(text, ""); }
  std::string text;
};

} // namespace

TEST(NodesSelection, PoliciesDecideWhatAPickDoes) {
  SoRef<SoSelection> const selection(new SoSelection);
  SoRef<SoPath> paths[2];
  char const* const names[] = {"selA", "selB"};
  for (int i = 0; i < 2; ++i) {
    auto* cube = new SoCube;
    cube->setName(names[i]);
    selection->addChild(cube);
    paths[i] = SoRef<SoPath>(new SoPath(selection));
    paths[i]->append(i);
  }
  SelectionLog log(selection);
  struct Step {
    int policy;
    int pick; // -1: nothing
    bool shift;
    char const* told;
    int selected;
  };
  EXPECT_EQ(SoSelection::policies().front().value, SoSelection::SINGLE);
  Step const steps[] = {
      {SoSelection::SINGLE, 0, false, "+selA!", 1},
      {SoSelection::SINGLE, 0, false, "", 1},
      {SoSelection::SINGLE, 1, true, "-selA+selB!", 1},
      {SoSelection::SINGLE, -1, false, "-selB!", 0},
      {SoSelection::SINGLE, -1, false, "", 0},
      {SoSelection::TOGGLE, 0, false, "+selA!", 1},
      {SoSelection::TOGGLE, 1, false, "+selB!", 2},
      {SoSelection::TOGGLE, 0, false, "-selA!", 1},
      {SoSelection::TOGGLE, -1, false, "", 1},
      {SoSelection::SHIFT, 0, true, "+selA!", 2},
      {SoSelection::SHIFT, 0, false, "-selA-selB+selA!", 1},
      {SoSelection::SHIFT, -1, true, "", 1},
      {SoSelection::SHIFT, -1, false, "-selA!", 0},
  };
  for (Step const& s : steps) {
    selection->policy = s.policy;
    selection->invoke(s.pick < 0 ? nullptr : paths[s.pick].get(), s.shift);
    std::string const where = "policy " + std::to_string(s.policy) + ", pick " + std::to_string(s.pick);
    EXPECT_EQ(log.take(), s.told) << where;
    EXPECT_EQ(selection->getNumSelected(), s.selected) << where;
  }
}

TEST(NodesSelection, ProgramsSelectWhateverThePolicy) {
  SoRef<SoGroup> const above(new SoGroup);
  auto* selection = new SoSelection;
  above->addChild(selection);
  auto* cube = new SoCube;
  cube->setName("selCube");
  selection->addChild(cube);
  selection->addChild(cube);
  SelectionLog log(selection);
  selection->policy = SoSelection::SINGLE;

  SoRef<SoPath> const longer(new SoPath(above)), second(new SoPath(selection)), self(new SoPath(selection));
  longer->append(0);
  longer->append(0);
  second->append(1);
  selection->select(longer);
  EXPECT_EQ(selection->getPath(0)->getHead(), selection) << "what comes before is cut off";
  EXPECT_FALSE(selection->isSelected(second)) << "the same node at another place";
  selection->select(second);
  selection->select(second);
  selection->select(self);
  EXPECT_EQ(selection->getNumSelected(), 3);
  EXPECT_EQ(log.take(), "+selCube!+selCube!+!");
  selection->toggle(longer);
  EXPECT_TRUE(selection->isSelected(second));
  selection->deselect(longer);
  selection->deselect(7);
  EXPECT_EQ(log.take(), "-selCube!");
  selection->deselectAll();
  EXPECT_EQ(log.take(), "--selCube!");
  selection->deselectAll();
  EXPECT_EQ(log.take(), "");

  DebugErrors errors;
  SoRef<SoPath> const stranger(new SoPath(cube));
  selection->select(stranger);
  selection->select(nullptr);
  EXPECT_EQ(errors.texts.size(), 2u);
  selection->removeChangeCallback(SelectionLog::changed, &log);
  selection->select(second);
  EXPECT_EQ(log.take(), "+selCube");
}

TEST(NodesSelection, ASelectionWithSelectedPathsIsReleased) {
  auto* cube = new SoCube;
  cube->ref();
  {
    SoRef<SoSelection> const selection(new SoSelection);
    selection->addChild(cube);
    SoRef<SoPath> const path(new SoPath(selection));
    path->append(0);
    selection->select(path);
  }
  EXPECT_EQ(cube->getRefCount(), 1);
  cube->unref();
}

TEST(NodesFile, TellsOfTheNameFirstAndThenOfNewChildren) {
  TemporaryFolder const folder;
  std::string const one = folder.write("one.kv", std::string(HEADER) + "Separator { Cube { width 8 } }");
  std::string const two = folder.write("two.kv", std::string(HEADER) + "Separator { Sphere { } Cube { } }");
  SoRef<SoGroup> const root(new SoGroup);
  auto* file = new SoFile;
  root->addChild(file);
  Listener listener(root);
  for (std::string const& name : {one, two}) {
    SbBox3f const before = boundsOf(root);
    file->name = SbString(name);
    auto const calls = listener.take();
    ASSERT_EQ(calls.size(), 2u);
    for (auto const& call : calls) {
      EXPECT_EQ(call.type, 0);
      EXPECT_EQ(call.node, file);
      EXPECT_EQ(call.path, std::vector<int>{0});
    }
    EXPECT_EQ(calls[0].field, &file->name);
    EXPECT_EQ(calls[0].childrenThen, before.isEmpty() ? 0 : 1) << "the old children still";
    EXPECT_EQ(calls[1].field, nullptr);
    EXPECT_FALSE(boundsOf(root) == before);
    EXPECT_EQ(file->getFullName().str(), name);
  }
  ASSERT_EQ(file->getChildren()->getLength(), 1);
  file->name = SbString();
  EXPECT_EQ(listener.take().size(), 2u);
  EXPECT_EQ(file->getChildren()->getLength(), 0);
  // The node may go while the name is told.
  SoNodeSensor killer([](void* data, SoSensor*) { static_cast<SoGroup*>(data)->removeAllChildren(); },
                      root.get());
  killer.setPriority(0);
  killer.attach(file);
  file->name = SbString(one);
  EXPECT_EQ(root->getNumChildren(), 0);
}

TEST(NodesFile, FaultsArePostedOnceAndNameBothFiles) {
  TemporaryFolder const folder;
  auto inside = [&](std::string const& text) {
    return std::string(HEADER) + "Separator { Cube { } File { name \"" + text + "\" } }";
  };
  folder.write("broken.kv", std::string(HEADER) + "Separator { Cub { } }");
  folder.write("circleB.kv", inside(folder / "circleA.kv"));
  std::pair<char const*, std::string> const cases[] = {
      {"missing.kv", folder / "missing.kv"},
      {"broken.kv", folder / "broken.kv"},
      {"self.kv", folder / "self.kv"},
      {"circleA.kv", folder / "circleB.kv"},
  };
  for (auto const& [name, included] : cases) {
    bool const isCircle = std::string(name) == "self.kv" || std::string(name) == "circleA.kv";
    std::string const outer = folder.write(isCircle ? name : std::string("outer-") + name, inside(included));
    ReadErrors errors;
    SoRef<SoNode> const root = io_test::readFile(outer);
    ASSERT_TRUE(root) << name;
    ASSERT_EQ(errors.texts.size(), 1u) << name;
    for (std::string const& part :
         {isCircle && included != outer ? folder / "circleB.kv" : outer, std::string(name)}) {
      EXPECT_NE(errors.texts[0].find(part), std::string::npos) << errors.texts[0];
    }
    SoSearchAction search;
    search.setType(SoFile::getClassTypeId());
    search.apply(root);
    ASSERT_TRUE(search.isFound()) << "the node stays";
    if (!(isCircle && included != outer)) {
      EXPECT_EQ(search.getPath()->getTail()->getChildren()->getLength(), 0) << name;
    }
    EXPECT_TRUE(isNear(boundsOf(root), box(-1, -1, -1, 1, 1, 1))) << name;
  }
}

TEST(NodesInline, IsFetchedOnDemandAndShowsItsStandInUntilThen) {
  SoRef<SoWWWInline> const node(new SoWWWInline);
  node->name = SbString("somewhere");
  node->alternateRep = new SoCube;
  EXPECT_TRUE(isNear(boundsOf(node), box(-1, -1, -1, 1, 1, 1)));
  EXPECT_EQ(node->getChildren()->getLength(), 1) << "internal";
  EXPECT_FALSE(node->hasChildData());

  node->requestChildrenFromURL();
  EXPECT_FALSE(node->isURLDataRequested()) << "nobody fetches";
  static std::string asked;
  int data = 0;
  SoWWWInline::setFetchURLCallBack(
      [](SbString const& url, void* d, SoWWWInline* inlined) {
        asked += url.str();
        ++*static_cast<int*>(d);
        auto* sphere = new SoSphere;
        sphere->radius = 5.0f;
        inlined->setChildData(sphere);
      },
      &data);
  Listener listener(node);
  node->requestChildrenFromURL();
  SoWWWInline::setFetchURLCallBack(nullptr);
  EXPECT_EQ(asked, "somewhere");
  EXPECT_EQ(data, 1);
  auto const calls = listener.take();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].type, 0);
  EXPECT_EQ(calls[0].field, nullptr);
  EXPECT_TRUE(node->hasChildData());
  EXPECT_EQ((*node->getChildren())[1], node->getChildData());
  EXPECT_TRUE(isNear(boundsOf(node), box(-5, -5, -5, 5, 5, 5)));
  node->setChildData(nullptr);
  EXPECT_FALSE(node->hasChildData());
}

TEST(NodesTexture, FilesAreReadOnceSharedAndReadAgainWhenTheyChange) {
  TemporaryFolder const folder;
  std::string const path = folder / "dot.png";
  ASSERT_TRUE(SbImageWriter::write(path, SbImage(SbVec2i32(1, 1), 3, {255, 0, 0})).empty());
  SoRef<SoTexture2> const a(new SoTexture2), b(new SoTexture2);
  a->filename = SbString(path);
  b->filename = SbString(path);
  SbImage const image = a->getImage();
  ASSERT_FALSE(image.isEmpty());
  EXPECT_EQ(image.getBytes(), b->getImage().getBytes());
  ReadErrors errors;
  a->filename = SbString(folder / "none.png");
  EXPECT_TRUE(a->getImage().isEmpty());
  EXPECT_TRUE(a->getImage().isEmpty());
  EXPECT_EQ(errors.texts.size(), 1u);
  a->filename = SbString();
  a->image = SbImage(SbVec2i32(1, 1), 1, {7});
  EXPECT_EQ(a->getImage().getNumComponents(), 1);
}
