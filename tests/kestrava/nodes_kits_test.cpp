#include <set>

#include "kestrava/draggers/SoDragger.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/kits/SoSceneKit.h"
#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/kits/SoWrapperKit.h"
#include "kestrava/nodes/SoClipPlaneManip.h"
#include "kestrava/nodes/SoColorIndex.h"
#include "kestrava/nodes/SoDirectionalLightManip.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTransformManip.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

SoNode* makeNode(char const* type) {
  return static_cast<SoNode*>(static_cast<SoFieldContainer*>(SoType::fromName(type).createInstance()));
}

/// The direct parts that are there, in the order of their fields.
std::vector<SoNode*> directParts(SoBaseKit const* kit) {
  std::vector<SoNode*> parts;
  SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
  for (int i = 1; i < catalog.getNumEntries(); ++i) {
    auto* field = static_cast<SoSFNode*>(kit->getField(catalog.getName(i)));
    if (catalog.getParentPartNumber(i) == 0 && field->getValue()) parts.push_back(field->getValue());
  }
  return parts;
}

TEST(NodesKits, APartMayNotCloseACircleWithTheOthers) {
  SoRef<SoWrapperKit> const kit(new SoWrapperKit);
  kit->getPart("transform", true);
  SoNode* const top = static_cast<SoSFNode*>(kit->getField("topSeparator"))->getValue();
  ASSERT_NE(top, nullptr);
  SoRef<SoGroup> const holder(new SoGroup);
  holder->addChild(top);
  DebugErrors errors;
  auto* const outer = new SoSeparator;
  outer->addChild(holder);
  EXPECT_FALSE(kit->setPart("contents", outer)) << "the group of the kit that it would stand below is in it";
  EXPECT_EQ(kit->getPart("contents", false), nullptr);

  auto* const contents = new SoSeparator;
  SoRef<SoSeparator> const below(new SoSeparator);
  contents->addChild(below);
  ASSERT_TRUE(kit->setPart("contents", contents));
  static_cast<SoSFNode*>(kit->getField("topSeparator"))->setValue(below);
  EXPECT_FALSE(SoNode::closesCircle(contents, below) && SoNode::closesCircle(below, contents));
  EXPECT_EQ(errors.texts.size(), 2u);
}

} // namespace

TEST(NodesKits, CatalogsListPartsInTheOrderOfTheirFields) {
  for (char const* type :
       {"AppearanceKit", "ShapeKit", "SeparatorKit", "WrapperKit", "CameraKit", "LightKit", "SceneKit"}) {
    SoRef<SoNode> const node(makeNode(type));
    auto* kit = static_cast<SoBaseKit*>(node.get());
    SoNodekitCatalog const& catalog = kit->getNodekitCatalog();
    EXPECT_EQ(catalog.getName(0), SbName("this"));
    EXPECT_EQ(catalog.getType(0), kit->getTypeId());
    EXPECT_EQ(catalog.getNumEntries(), kit->getNumFields() + 1) << type;
    bool deeper = false;
    for (int i = 1; i < catalog.getNumEntries(); ++i) {
      SoField const* field = kit->getField(i - 1);
      EXPECT_EQ(field->getName(), catalog.getName(i)) << type;
      EXPECT_EQ(field->getTypeId().getName(), SbName("SFNode"));
      EXPECT_EQ(catalog.getPartNumber(catalog.getName(i)), i);
      EXPECT_EQ(catalog.getParentName(i), catalog.getName(catalog.getParentPartNumber(i)));
      EXPECT_LT(catalog.getParentPartNumber(i), i);
      EXPECT_TRUE(catalog.getDefaultType(i).isDerivedFrom(catalog.getType(i))) << catalog.getName(i).str();
      EXPECT_TRUE(catalog.getDefaultType(i).canCreateInstance()) << catalog.getName(i).str();
      deeper = deeper || catalog.getParentPartNumber(i) != 0;
      EXPECT_EQ(catalog.getParentPartNumber(i) != 0, deeper) << "direct parts come first in " << type;
    }
    EXPECT_EQ(catalog.getPartNumber("SoBufferObject"), -1);
    EXPECT_EQ(catalog.getParentPartNumber(SbName("SoBufferObject")), 0);
    EXPECT_FALSE(catalog.isPublic(99));
  }
}

TEST(NodesKits, PartsAreMadeSetAndRefusedByName) {
  SoRef<SoShapeKit> const kit(new SoShapeKit);
  EXPECT_EQ(kit->getPart("appearance.material", false), nullptr);
  SoNode* const material = kit->getPart("appearance.material", true);
  ASSERT_TRUE(material && material->isOfType(SoMaterial::getClassTypeId()));
  EXPECT_EQ(kit->getPart("appearance.material", true), material);
  EXPECT_EQ(kit->getPartString(material), SbString("appearance.material"));
  EXPECT_EQ(kit->getPartString(kit->topSeparator.getValue()), SbString("topSeparator"));
  EXPECT_EQ(kit->getPartString(kit), SbString());

  SoRef<SoSphere> const sphere(new SoSphere);
  EXPECT_TRUE(kit->setPart("shape", sphere));
  EXPECT_EQ(kit->shape.getValue(), sphere.get());
  EXPECT_EQ(kit->getPartString(sphere), SbString("shape"));
  EXPECT_TRUE(isNear(boundsOf(kit), box(-1, -1, -1, 1, 1, 1)));
  static_cast<SoNode*>(kit->getPart("transform", true))->set("translation 5 0 0");
  EXPECT_TRUE(isNear(boundsOf(kit), box(4, -1, -1, 6, 1, 1)));

  DebugErrors errors;
  EXPECT_FALSE(kit->setPart("shape", material)) << "wrong type";
  EXPECT_FALSE(kit->setPart("topSeparator", nullptr)) << "not public";
  EXPECT_FALSE(kit->setPart("nonsense", sphere));
  EXPECT_FALSE(kit->setPart("", sphere));
  EXPECT_FALSE(kit->setPart("childList[x]", kit));
  EXPECT_FALSE(kit->setPart("childList[0]", kit)) << "it would contain itself";
  EXPECT_EQ(errors.texts.size(), 6u);
  EXPECT_EQ(kit->getPart("topSeparator", true), nullptr);
  EXPECT_EQ(kit->shape.getValue(), sphere.get());
  kit->shape.setValue(material);
  EXPECT_EQ(errors.texts.size(), 7u) << "the field refuses too";
  EXPECT_EQ(kit->shape.getValue(), nullptr);
  EXPECT_TRUE(kit->setPart("shape", nullptr));
  EXPECT_TRUE(boundsOf(kit).isEmpty());
}

TEST(NodesKits, TheChildListIsTheDirectPartsInFieldOrder) {
  SoRef<SoNode> const read = readText(
      "AppearanceKit { texture2 Texture2 { } material Material { } } ShapeKit { shape Cube { } appearance "
      "AppearanceKit { "
      "material DEF shiny Material { } } transform Transform { translation 1 0 0 } }");
  auto* group = static_cast<SoGroup*>(read.get());
  for (int i = 0; i < 2; ++i) {
    auto* kit = static_cast<SoBaseKit*>(group->getChild(i));
    SoChildList const& children = *kit->getChildren();
    EXPECT_EQ(std::vector<SoNode*>(children.begin(), children.end()), directParts(kit));
  }
  auto* shape = static_cast<SoShapeKit*>(group->getChild(1));
  auto* top = static_cast<SoGroup*>(shape->topSeparator.getValue());
  ASSERT_TRUE(top);
  ASSERT_EQ(top->getNumChildren(), 3);
  EXPECT_EQ(top->getChild(0), shape->appearance.getValue());
  EXPECT_EQ(top->getChild(1), shape->transform.getValue());
  EXPECT_EQ(top->getChild(2), shape->shape.getValue());

  // A change of a part is one change of the kit's field for those above.
  Listener listener(read);
  shape->setPart("pickStyle", makeNode("PickStyle"));
  auto const calls = listener.take();
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].field, &shape->pickStyle);
  EXPECT_EQ(top->getChild(0), shape->pickStyle.getValue());
  // What a kit has made for itself is not written; what was read comes back.
  std::string const text = io_test::writeText(read);
  EXPECT_EQ(text.find("topSeparator"), std::string::npos);
  SoRef<SoNode> const again = readText(std::string_view(text).substr(text.find('\n')));
  ASSERT_TRUE(again) << text;
  EXPECT_EQ(io_test::writeText(again), text);
  EXPECT_TRUE(isNear(boundsOf(again), box(0, -1, -1, 2, 1, 1)));
}

TEST(NodesKits, ListPartsHoldWhatFitsInAGroupOfTheirOwn) {
  SoRef<SoSceneKit> const scene(new SoSceneKit);
  SoNode* const part = scene->getPart("childList", true);
  ASSERT_TRUE(part && part->isOfType(SoNodeKitListPart::getClassTypeId()));
  EXPECT_FALSE(part->isOfType(SoGroup::getClassTypeId()));
  auto* list = static_cast<SoNodeKitListPart*>(part);
  SoRef<SoShapeKit> const a(new SoShapeKit), b(new SoShapeKit);
  EXPECT_TRUE(list->insertChild(a, 0));
  EXPECT_TRUE(list->insertChild(b, 0));
  EXPECT_EQ(list->findChild(a), 1);
  EXPECT_EQ(scene->getPartString(a), SbString("childList[1]"));
  EXPECT_EQ(scene->getPart("childList[1]", false), a.get());
  SoNode* const material = scene->getPart("childList[0].appearance.material", true);
  EXPECT_EQ(material, b->getPart("appearance.material", false));
  EXPECT_EQ(scene->getPartString(material), SbString("childList[0].appearance.material"));
  EXPECT_EQ(list->getChildren()->getLength(), 1);
  EXPECT_EQ((*list->getChildren())[0], list->containerNode.getValue());

  DebugErrors errors;
  SoRef<SoNode> const cube(makeNode("Cube"));
  EXPECT_FALSE(list->insertChild(cube, 0));
  EXPECT_FALSE(list->insertChild(nullptr, 0));
  EXPECT_FALSE(list->insertChild(SoRef<SoShapeKit>(new SoShapeKit), 3));
  EXPECT_FALSE(list->removeChild(2));
  EXPECT_FALSE(list->removeChild(-1));
  EXPECT_EQ(errors.texts.size(), 5u);
  EXPECT_TRUE(scene->setPart("childList[0]", nullptr));
  EXPECT_EQ(list->getNumChildren(), 1);
  EXPECT_TRUE(scene->setPart("childList[1]", b));
  EXPECT_EQ(list->findChild(b), 1);

  // The first camera is the one that is used.
  EXPECT_TRUE(scene->setPart("cameraList[0]", makeNode("CameraKit")));
  auto* cameras = static_cast<SoNodeKitListPart*>(scene->cameraList.getValue());
  ASSERT_TRUE(cameras->getContainer()->isOfType(SoSwitch::getClassTypeId()));
  EXPECT_EQ(static_cast<SoSwitch*>(cameras->getContainer())->whichChild.getValue(), 0);
}

TEST(NodesTypes, StandWhereTheirUsersExpectThem) {
  struct Case {
    char const* type;
    char const* base;
    bool derives;
  };
  Case const cases[] = {
      {"Separator", "Group", true},
      {"Selection", "Separator", true},
      {"Switch", "Group", true},
      {"Switch", "Separator", false},
      {"File", "Group", false},
      {"WWWInline", "Group", false},
      {"BaseKit", "Group", false},
      {"NodeKitListPart", "Group", false},
      {"NodeKitListPart", "BaseKit", false},
      {"Transformation", "Group", false},
      {"TransformManip", "Transformation", true},
      {"DirectionalLightManip", "DirectionalLight", true},
      {"PointLightManip", "Light", true},
      {"SpotLightManip", "SpotLight", true},
      {"ClipPlaneManip", "Light", false},
      {"Callback", "Transformation", false},
      {"GradientBackground", "Background", true},
      {"TextureCoordinatePlane", "TextureCoordinateFunction", true},
      {"Dragger", "BaseKit", true},
  };
  for (Case const& c : cases) {
    SoType const type = SoType::fromName(c.type), base = SoType::fromName(c.base);
    ASSERT_FALSE(type.isBad()) << c.type;
    EXPECT_EQ(type.isDerivedFrom(base), c.derives) << c.type << ", " << c.base;
  }
  // Every type that can be made answers with its own fields, named once, all at their defaults.
  int made = 0;
  for (int i = 1; i < SoType::getNumTypes(); ++i) {
    SoType const type = SoType::fromIndex(i);
    if (!type.isDerivedFrom(SoNode::getClassTypeId()) || !type.canCreateInstance()) continue;
    SoRef<SoNode> const node(static_cast<SoNode*>(static_cast<SoFieldContainer*>(type.createInstance())));
    ASSERT_EQ(node->getTypeId(), type);
    ++made;
    std::set<std::string> names;
    for (int f = 0; f < node->getNumFields(); ++f) {
      EXPECT_TRUE(names.insert(node->getField(f)->getName().str()).second) << type.getName().str();
      EXPECT_EQ(node->getField(f)->getContainer(), node.get()) << type.getName().str();
    }
    SoRef<SoNode> const other(static_cast<SoNode*>(static_cast<SoFieldContainer*>(type.createInstance())));
    for (int f = 0; f < node->getNumFields(); ++f) {
      bool const holdsNode = node->getField(f)->isOfType(SoSFNode::getClassTypeId());
      EXPECT_TRUE(holdsNode || node->getField(f)->isSame(*other->getField(f))) << type.getName().str();
    }
    EXPECT_TRUE(boundsOf(node).isEmpty() || node->isOfType(SoType::fromName("Shape")) ||
                node->isOfType(SoType::fromName("Dragger")))
        << type.getName().str();
  }
  EXPECT_GT(made, 70);
}
