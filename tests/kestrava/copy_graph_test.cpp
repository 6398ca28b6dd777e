// Deep copies of graphs.

#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoEventCallback.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoUnknownNode.h"
#include "kestrava/nodes/SoVertexProperty.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "node_helpers.h"

using namespace node_test;

namespace copy_graph_test {

template <class T> SoRef<T> copyOf(T* node) {
  SoNode* const copy = node->copy();
  EXPECT_EQ(copy->getRefCount(), 0);
  EXPECT_EQ(copy->getTypeId(), node->getTypeId());
  return SoRef<T>(static_cast<T*>(copy));
}

/// A node that holds another one and a way through the graph.
class Pointer : public SoNode {
  SO_NODE(Pointer, SoNode)
  SoSFNode node{this, "node"};
  SoMFNode nodes{this, "nodes"};
  SoSFPath path{this, "path"};

 protected:
  ~Pointer() override = default;
};

/// Has no factory.
class OneOfAKind : public SoNode {
  SO_ABSTRACT_NODE(OneOfAKind, SoNode)
  explicit OneOfAKind(int) {}

 protected:
  ~OneOfAKind() override = default;
};

} // namespace copy_graph_test

using namespace copy_graph_test;

TEST(CopyGraph, IsTheSameTextAndSharesNothing) {
  char const text[] =
      "DEF top Separator { renderCaching ON ~\n"
      "  DEF wheel Separator { Material { diffuseColor [ 1 0 0, 0 1 0 ] override TRUE } Cube { width 3 } }\n"
      "  USE wheel Group { USE wheel }\n"
      "  IndexedFaceSet { coordIndex [ 0, 1, 2, -1 ] vertexProperty VertexProperty { vertex [ 0 0 0, 1 0 0, "
      "0 1 0 ] } }\n"
      "  Gizmo { fields [ SFFloat size, MFNode parts, SFEnum mode ] size 4 mode FAST parts [ USE wheel, Cube "
      "{ } ]\n"
      "    Sphere { } }\n"
      "}\n";
  SoRef<SoNode> const root(readText(text));
  ASSERT_TRUE(root);
  static_cast<SoGroup*>(root.get())->getChild(0)->setNetName("wheel.1");
  SoRef<SoNode> copy = copyOf(root.get());
  EXPECT_EQ(io_test::writeText(copy), io_test::writeText(root));
  auto* const group = static_cast<SoGroup*>(copy.get());
  EXPECT_EQ(group->getChild(0), group->getChild(1));
  EXPECT_EQ(group->getChild(0), static_cast<SoGroup*>(group->getChild(2))->getChild(0));
  EXPECT_NE(group->getChild(0), static_cast<SoGroup*>(root.get())->getChild(0));
  EXPECT_EQ(group->getChild(0)->getName().str(), "wheel");
  EXPECT_EQ(group->getChild(0)->getNetName().str(), "wheel.1");
  auto* const unknown = static_cast<SoGroup*>(group->getChild(4));
  EXPECT_EQ(static_cast<SoMFNode*>(unknown->getField(SbName("parts")))->getNode(0), group->getChild(0));

  // One knows nothing of the other.
  std::string const before = io_test::writeText(root);
  Listener listener(root);
  static_cast<SoGroup*>(group->getChild(0))->removeAllChildren();
  group->set("renderCaching OFF");
  copy.reset();
  EXPECT_TRUE(listener.take().empty());
  EXPECT_EQ(io_test::writeText(root), before);
}

TEST(CopyGraph, FlagsOfFieldsComeAlong) {
  SoRef<SoCube> const cube(new SoCube);
  cube->width = 2.f; // the default value, but set
  cube->height.setIgnored(true);
  SoRef<SoCube> const copy = copyOf(cube.get());
  EXPECT_FALSE(copy->width.isDefault());
  EXPECT_TRUE(copy->depth.isDefault());
  EXPECT_TRUE(copy->height.isIgnored());
  EXPECT_NE(copy->getNodeId(), cube->getNodeId());
  EXPECT_TRUE(copy->fieldsAreEqual(*cube));
}

TEST(CopyGraph, DepthAndSharingCostNoMoreThanTheNodes) {
  constexpr int DEPTH = 30'000;
  SoRef<SoNode> root(new SoCube);
  for (int i = 0; i < DEPTH; ++i) {
    auto* group = new SoGroup;
    group->addChild(root);
    root = SoRef<SoNode>(group);
  }
  SoRef<SoNode> deep = copyOf(root.get());
  int depth = 0;
  for (SoNode* node = deep; node->getChildren(); node = (*node->getChildren())[0]) ++depth;
  EXPECT_EQ(depth, DEPTH);

  SoRef<SoNode> const chain = doublingChain(40, new SoCube, SoGroup::getClassTypeId());
  SoRef<SoNode> const copy = copyOf(chain.get());
  int levels = 0;
  for (SoNode* node = copy; node->getChildren(); node = (*node->getChildren())[0]) {
    ASSERT_EQ(node->getChildren()->getLength(), 2);
    ASSERT_EQ((*node->getChildren())[0], (*node->getChildren())[1]);
    ++levels;
  }
  EXPECT_EQ(levels, 40);
}

TEST(CopyGraph, FieldsAndPathsLeadIntoTheCopy) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* pointer = new Pointer;
  auto* cube = new SoCube;
  root->addChild(pointer);
  root->addChild(cube);
  SoRef<SoCube> const outside(new SoCube);
  pointer->node.setValue(cube);
  pointer->nodes.setValues({cube, nullptr, outside});
  SoRef<SoPath> const path(new SoPath(root));
  path->append(1);
  pointer->path.setValue(path);
  // The path in the copy holds its head.
  SoRef<SoSeparator> const copy(static_cast<SoSeparator*>(root->copy()));
  auto* const copied = static_cast<Pointer*>(copy->getChild(0));
  EXPECT_EQ(copied->node.getValue(), copy->getChild(1));
  EXPECT_EQ(copied->nodes[0], copy->getChild(1));
  EXPECT_EQ(copied->nodes[1], nullptr);
  EXPECT_NE(copied->nodes[2], outside.get()) << "what fields refer to is copied too";
  SoPath* const way = copied->path.getValue();
  ASSERT_EQ(way->getLength(), 2);
  EXPECT_EQ(way->getHead(), copy.get());
  EXPECT_EQ(way->getTail(), copy->getChild(1));
  EXPECT_EQ(way->getIndex(1), 1);

  // A path that begins outside stays what it is.
  SoRef<Pointer> const alone = copyOf(pointer);
  EXPECT_EQ(alone->path.getValue(), path.get());
  EXPECT_NE(alone->node.getValue(), cube);
  pointer->path.setValue(nullptr);
  copied->path.setValue(nullptr);
}

TEST(CopyGraph, KitsKeepTheirPartsInPlace) {
  SoRef<SoSeparatorKit> const kit(new SoSeparatorKit);
  ASSERT_TRUE(kit->setPart("transform", new SoTransform));
  auto* entry = new SoShapeKit;
  ASSERT_TRUE(kit->setPart("childList[0]", entry));
  ASSERT_TRUE(entry->setPart("shape", new SoCube));
  SoRef<SoSeparatorKit> const copy = copyOf(kit.get());
  EXPECT_EQ(io_test::writeText(copy), io_test::writeText(kit));
  ASSERT_NE(copy->getPart("childList[0].shape", false), nullptr);
  EXPECT_NE(copy->getPart("childList[0].shape", false), kit->getPart("childList[0].shape", false));
  EXPECT_EQ(copy->getPartString(copy->getPart("transform", false)).str(), "transform");
  ASSERT_EQ(copy->getChildren()->getLength(), kit->getChildren()->getLength());
  for (int i = 0; i < kit->getChildren()->getLength(); ++i) {
    SoNode* const child = (*kit->getChildren())[i];
    EXPECT_EQ(copy->getPartString((*copy->getChildren())[i]).str(), kit->getPartString(child).str());
  }
  EXPECT_TRUE(isNear(boundsOf(copy), boundsOf(kit)));
  // It is a kit like any: parts come and go, and lists know what they take.
  EXPECT_TRUE(copy->setPart("transform", nullptr));
  EXPECT_NE(kit->getPart("transform", false), nullptr);
  DebugErrors errors;
  auto* list = static_cast<SoNodeKitListPart*>(copy->getPart("childList", false));
  ASSERT_TRUE(list);
  SoRef<SoCube> const wrong(new SoCube);
  EXPECT_FALSE(list->addChild(wrong));
}

TEST(CopyGraph, HiddenChildrenOfFilesAndInlines) {
  SoInput::addInMemoryTextFile("included_copy.kv", "#Kestrava V1.0 ascii\nSeparator { Cube { width 6 } }\n");
  SoRef<SoFile> const file(new SoFile);
  file->name = SbString("included_copy.kv");
  ASSERT_EQ(file->getChildren()->getLength(), 1);
  SoRef<SoFile> const copy = copyOf(file.get());
  ASSERT_EQ(copy->getChildren()->getLength(), 1);
  EXPECT_NE((*copy->getChildren())[0], (*file->getChildren())[0]);
  EXPECT_EQ(copy->getFullName().str(), file->getFullName().str());
  EXPECT_TRUE(isNear(boundsOf(copy), box(-3, -1, -1, 3, 1, 1)));

  SoRef<SoWWWInline> const page(new SoWWWInline);
  page->alternateRep.setValue(new SoCube);
  page->setChildData(new SoSeparator);
  SoRef<SoWWWInline> const pageCopy = copyOf(page.get());
  ASSERT_TRUE(pageCopy->hasChildData());
  EXPECT_NE(pageCopy->getChildData(), page->getChildData());
  auto* standIn = static_cast<SoGroup*>((*pageCopy->getChildren())[0]);
  ASSERT_EQ(standIn->getNumChildren(), 1);
  EXPECT_EQ(standIn->getChild(0), pageCopy->alternateRep.getValue());
  pageCopy->alternateRep.setValue(nullptr);
  EXPECT_EQ(standIn->getNumChildren(), 0);
}

TEST(CopyGraph, WhatNodesHoldBesidesFields) {
  SoRef<SoSelection> const selection(new SoSelection);
  auto* cube = new SoCube;
  auto* callback = new SoCallback;
  auto* events = new SoEventCallback;
  for (SoNode* node : std::initializer_list<SoNode*>{cube, callback, events}) selection->addChild(node);
  int data = 0;
  callback->setCallback([](void*, SoAction*) {}, &data);
  events->addEventCallback(
      SoType::fromName("Event"), [](void*, SoEventCallback*) {}, &data);
  SoRef<SoPath> const path(new SoPath(selection));
  path->append(0);
  selection->select(path);
  SoRef<SoCube> gone(new SoCube);
  selection->addChild(gone);
  SoRef<SoPath> lost(new SoPath(selection));
  lost->append(3);
  selection->select(lost);
  selection->removeChild(3);
  lost.reset();
  gone.reset();

  SoRef<SoSelection> const copy = copyOf(selection.get());
  ASSERT_EQ(copy->getNumSelected(), 1);
  EXPECT_EQ(copy->getPath(0)->getTail(), copy->getChild(0));
  EXPECT_EQ(static_cast<SoCallback*>(copy->getChild(1))->getCallback(), callback->getCallback());
  EXPECT_EQ(static_cast<SoCallback*>(copy->getChild(1))->getData(), &data);
  EXPECT_EQ(static_cast<SoEventCallback*>(copy->getChild(2))->getEventCallbacks().size(), 1u);
}

TEST(CopyGraph, ANodeThatCanNotBeMadeIsShared) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* single = new OneOfAKind(1);
  root->addChild(single);
  root->addChild(new SoCube);
  DebugErrors errors;
  SoRef<SoSeparator> const copy = copyOf(root.get());
  ASSERT_EQ(copy->getNumChildren(), 2);
  EXPECT_EQ(copy->getChild(0), single);
  EXPECT_EQ(errors.texts.size(), 1u);
}

TEST(CopyGraph, EveryNodeTypeIsCopied) {
  int count = 0;
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoNode::getClassTypeId()) || !type.canCreateInstance()) continue;
    SCOPED_TRACE(type.getName().str());
    SoRef<SoNode> const node(SoNode::create(type));
    SoRef<SoNode> copy(node->copy(true));
    ASSERT_EQ(copy->getTypeId(), type);
    EXPECT_EQ(io_test::writeText(copy), io_test::writeText(node));
    ASSERT_EQ(copy->getChildren() ? copy->getChildren()->getLength() : -1,
              node->getChildren() ? node->getChildren()->getLength() : -1);
    for (int k = 0; k < node->getNumFields(); ++k) {
      EXPECT_EQ(copy->getField(k)->isDefault(), node->getField(k)->isDefault());
      EXPECT_EQ(copy->getField(k)->isConnected(), node->getField(k)->isConnected());
    }
    ++count;
  }
  EXPECT_GT(count, 60);
}
