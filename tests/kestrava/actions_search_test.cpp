#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

/// The found paths as child indices.
std::vector<std::string> found(SoSearchAction const& action) {
  std::vector<std::string> texts;
  for (auto const& path : action.getPaths()) {
    std::string text;
    for (int i = 1; i < path->getLength(); ++i) text += std::to_string(path->getIndex(i));
    texts.push_back(text);
  }
  return texts;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(ActionsSearch, FindsByNodeTypeAndName) {
  SoRef<SoNode> const root = readText(
      "Separator { DEF box Cube {} Switch { DEF box Sphere {} DEF shared Separator { DEF ball Sphere {} } } "
      "Group { USE "
      "shared } USE shared }");
  SoSearchAction action;
  action.apply(root);
  EXPECT_FALSE(action.isFound()) << "nothing was asked for";

  action.setInterest(SoSearchAction::ALL);
  action.setName("box");
  action.apply(root);
  EXPECT_EQ(found(action), Texts{"0"}) << "the switch shows nothing";
  action.setSearchingAll(true);
  action.apply(root);
  EXPECT_EQ(found(action), (Texts{"0", "10"}));
  action.setType(SoType::fromName("Sphere"));
  action.apply(root);
  EXPECT_EQ(found(action), Texts{"10"}) << "name and type";

  action.reset();
  EXPECT_FALSE(action.isFound());
  action.setType(SoType::fromName("Sphere"));
  action.apply(root);
  EXPECT_EQ(found(action), Texts{"200"}) << "the first one, and the switch is not entered again";
  action.setInterest(SoSearchAction::LAST);
  action.apply(root);
  EXPECT_EQ(found(action), Texts{"30"});
  action.setInterest(SoSearchAction::ALL);
  action.setSearchingAll(true);
  action.apply(root);
  EXPECT_EQ(found(action), (Texts{"10", "110", "200", "30"}));
  action.setType(SoType::fromName("Shape"), false);
  action.apply(root);
  EXPECT_FALSE(action.isFound());

  action.reset();
  action.setInterest(SoSearchAction::ALL);
  action.setSearchingAll(true);
  action.setNode(SoNode::getByName("shared"));
  action.apply(root);
  EXPECT_EQ(found(action), (Texts{"11", "20", "3"}));
  SoRef<SoNode> const stranger(new SoCube);
  action.setNode(stranger);
  action.apply(root);
  EXPECT_FALSE(action.isFound());
  action.setNode(root);
  action.apply(root);
  EXPECT_EQ(found(action), Texts{""}) << "the root itself";
}

TEST(ActionsSearch, EntersKitsOnlyWhenAsked) {
  SoRef<SoNode> const root = readText("Separator { ShapeKit { shape DEF inside Cube {} } }");
  SoSearchAction action;
  action.setName("inside");
  bool const before = SoBaseKit::searchingChildren;
  SoBaseKit::setSearchingChildren(false);
  action.apply(root);
  EXPECT_FALSE(action.isFound());
  SoBaseKit::setSearchingChildren(true);
  action.apply(root);
  SoBaseKit::setSearchingChildren(before);
  ASSERT_TRUE(action.isFound());
  EXPECT_EQ(action.getPath()->getLength(), 4) << "root, kit, its top separator, shape";
}

TEST(ActionsSearch, DeepAndSharedGraphsAreSearchedInTime) {
  SoRef<SoNode> const cube(new SoCube);
  cube->setName("leafOfChain");
  SoRef<SoNode> const chain = doublingChain(40, cube, SoGroup::getClassTypeId());
  SoSearchAction action;
  action.setName("leafOfChain");
  action.apply(chain);
  ASSERT_TRUE(action.isFound());
  EXPECT_EQ(action.getPath()->getLength(), 41);
  action.reset();
  action.setType(SoSwitch::getClassTypeId());
  action.setInterest(SoSearchAction::ALL);
  action.apply(chain);
  EXPECT_FALSE(action.isFound());

  SoRef<SoNode> deep(cube);
  for (int i = 0; i < 100000; ++i) {
    auto* group = new SoGroup;
    group->addChild(deep);
    deep = SoRef<SoNode>(group);
  }
  action.reset();
  action.setNode(cube);
  action.apply(deep);
  ASSERT_TRUE(action.isFound());
  EXPECT_EQ(action.getPath()->getLength(), 100001);
}
