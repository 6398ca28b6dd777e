#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/actions/SoGetMatrixAction.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoLOD.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTransform.h"
#include "node_helpers.h"

using namespace node_test;

namespace {

/// The names of the shapes that are met, each with the x of its place.
std::string shapesMet(SoNode* root, SoPath* along = nullptr) {
  std::string text;
  SoCallbackAction action;
  action.addPreCallback(
      SoShape::getClassTypeId(),
      [](void* data, SoCallbackAction* a, SoNode const* node) {
        auto const x = static_cast<int>(std::lround(a->getModelMatrix()[3][0]));
        *static_cast<std::string*>(data) += node->getName().str() + std::to_string(x) + " ";
        return SoCallbackAction::CONTINUE;
      },
      &text);
  along ? action.apply(along) : action.apply(root);
  return text;
}

} // namespace

TEST(ActionsTraversal, GroupsEnterTheirChildrenInTheRightScope) {
  struct Case {
    char const* scene;
    char const* met;
  };
  char const* const ab = " DEF a Cube {} DEF b Cube {} ";
  Case const cases[] = {
      {"Separator { Group { Translation { translation 1 0 0 } DEF a Cube {} } DEF b Cube {} }", "a1 b1 "},
      {"Separator { Separator { Translation { translation 1 0 0 } DEF a Cube {} } DEF b Cube {} }", "a1 b0 "},
      {"Separator { TransformSeparator { Translation { translation 1 0 0 } DEF a Cube {} } DEF b Cube {} }",
       "a1 b0 "},
      {"Separator { Annotation { Translation { translation 1 0 0 } DEF a Cube {} } DEF b Cube {} }",
       "a1 b0 "},
      {"Switch {%}", ""},
      {"Switch { whichChild 1 %}", "b0 "},
      {"Switch { whichChild -3 %}", "a0 b0 "},
      {"Switch { whichChild 2 %}", ""},
      {"Switch { whichChild -7 %}", ""},
      {"Switch { whichChild -2 %}", ""},
      {"Switch { whichChild 0 Switch { whichChild -2 %} }", "a0 "},
      {"Array { numElements1 3 separation1 2 0 0 DEF a Cube {} }", "a0 a2 a4 "},
      {"Array { numElements1 3 separation1 2 0 0 origin CENTER DEF a Cube {} }", "a-2 a0 a2 "},
      {"Array { numElements1 2 separation1 2 0 0 origin LAST numElements2 2 separation2 10 0 0 DEF a Cube {} "
       "}",
       "a-12 a-10 a-2 a0 "},
      {"Array { numElements1 0 DEF a Cube {} }", ""},
      {"Array { numElements1 2 separation1 5 0 0 Switch { whichChild -2 %} }", "a0 b5 "},
      {"Array { numElements1 2 separation1 5 0 0 Translation { translation 1 0 0 } DEF a Cube {} }",
       "a1 a6 "},
      {"MultipleCopy { matrix [ 1 0 0 0 0 1 0 0 0 0 1 0 3 0 0 1, 1 0 0 0 0 1 0 0 0 0 1 0 7 0 0 1 ] DEF a "
       "Cube {} }",
       "a3 a7 "},
      {"LOD { range [ 5, 50 ] %}", "a0 "},
      {"Separator { PerspectiveCamera { position 0 0 10 } LOD { range [ 5, 50 ] %} }", "b0 "},
      {"Separator { PerspectiveCamera { position 0 0 10 } LOD { range [ 5, 50 ] center 0 0 8 %} }", "a0 "},
      {"Separator { PerspectiveCamera { position 0 0 900 } LOD { range [ 5 ] %} }", "b0 "},
      {"Separator { PerspectiveCamera { position 0 0 10 } Translation { translation 0 0 7 } LOD { range [ 5 "
       "] %} }",
       "a0 "},
      {"LevelOfDetail { screenArea [ 100, 0 ] %}", "a0 "},
      {"Separator { OrthographicCamera { height 4 position 0 0 5 } LevelOfDetail { screenArea [ 2400, 0 ] %} "
       "}",
       "a0 "},
      {"Separator { OrthographicCamera { height 4 position 0 0 5 } LevelOfDetail { screenArea [ 2600, 0 ] %} "
       "}",
       "b0 "},
      {"Separator { Translation { translation 4 0 0 } ResetTransform {} DEF a Cube {} }", "a0 "},
      {"Separator { Units { units CENTIMETERS } Translation { translation 200 0 0 } Units { units METERS } "
       "DEF a Cube {} }",
       "a2 "},
      {"Separator { Translation { translation 4 0 0 ~ } DEF a Cube {} }", "a4 "},
      {"ShapeKit { transform Transform { translation 2 0 0 } shape DEF a Cube {} }", "a2 "},
  };
  for (Case const& c : cases) {
    std::string scene = c.scene;
    if (auto const hole = scene.find('%'); hole != std::string::npos) scene.replace(hole, 1, ab);
    SoRef<SoNode> const root = readText(scene);
    ASSERT_TRUE(root) << scene;
    bool const ignores = scene.find('~') != std::string::npos;
    EXPECT_EQ(shapesMet(root), ignores ? "a0 " : c.met) << scene;
  }
}

TEST(ActionsTraversal, AlongAPathOnlyWhatChangesTheStateIsVisitedBeside) {
  SoRef<SoNode> const root = readText(
      "Separator { Translation { translation 1 0 0 } DEF a Cube {} Group { Translation { translation 1 0 0 } "
      "DEF b Cube {} }"
      " Separator { Translation { translation 10 0 0 } } Group { DEF c Cube {} DEF d Cube {} } DEF e Cube {} "
      "}");
  SoRef<SoPath> const path(new SoPath(root));
  ASSERT_TRUE(path->append(4));
  EXPECT_EQ(shapesMet(nullptr, path), "c2 d2 ") << "everything below the tail";
  ASSERT_TRUE(path->append(1));
  EXPECT_EQ(shapesMet(nullptr, path), "d2 ");
  SoGetMatrixAction matrix;
  matrix.apply(path);
  EXPECT_EQ(matrix.getMatrix()[3][0], 2);
  SoRef<SoPath> const whole(new SoPath(root));
  EXPECT_EQ(shapesMet(nullptr, whole), "a1 b2 c2 d2 e2 ");
}

TEST(ActionsTraversal, TheMatrixOfWhatIsNotShownIsThatOfItsPath) {
  SoRef<SoNode> const root = readText(
      "Separator { Translation { translation 1 0 0 } Switch { whichChild 0 Translation { translation 9 0 0 } LOD { "
      "range [ 5 ] Cube {} Separator { Translation { translation 2 0 0 } Cube {} } } } }");
  SoRef<SoPath> const path(new SoPath(root));
  for (int child : {1, 1, 1, 1}) ASSERT_TRUE(path->append(child));
  SoGetMatrixAction matrix;
  matrix.apply(path);
  EXPECT_EQ(matrix.getMatrix()[3][0], 3);
}

TEST(ActionsTraversal, CallbacksPruneAbortAndSeeThePath) {
  SoRef<SoNode> const root =
      readText("Separator { Group { DEF a Cube {} } Separator { DEF b Cube {} } DEF c Cube {} }");
  using Action = SoCallbackAction;
  struct Log {
    std::string text;
    Action::Response response = Action::CONTINUE;
  };
  auto run = [&](Action::Response onGroup, bool post) {
    Log log{"", onGroup};
    Action action;
    auto atGroup = [](void* data, Action* a, SoNode const*) {
      auto* l = static_cast<Log*>(data);
      l->text += "g" + std::to_string(a->getCurPath().getLength());
      return a->getCurPath().getLength() == 2 ? l->response : Action::CONTINUE;
    };
    auto atCube = [](void* data, Action* a, SoNode const* node) {
      static_cast<Log*>(data)->text += node->getName().str() + std::to_string(a->getCurPath().getLength());
      EXPECT_EQ(a->getCurPath().getTail(), node);
      return Action::CONTINUE;
    };
    post ? action.addPostCallback(SoGroup::getClassTypeId(), atGroup, &log)
         : action.addPreCallback(SoGroup::getClassTypeId(), atGroup, &log);
    action.addPreCallback(SoCube::getClassTypeId(), atCube, &log);
    action.apply(root);
    return log.text;
  };
  EXPECT_EQ(run(Action::CONTINUE, false), "g1g2a3g2b3c2");
  EXPECT_EQ(run(Action::PRUNE, false), "g1g2g2c2");
  EXPECT_EQ(run(Action::ABORT, false), "g1g2");
  EXPECT_EQ(run(Action::CONTINUE, true), "a3g2b3g2c2g1");
}

TEST(ActionsTraversal, OverridesAndIgnoredFieldsReachTheState) {
  SoRef<SoNode> const root = readText(
      "Separator { Material { diffuseColor 1 0 0 override TRUE } Separator { Material { diffuseColor 0 1 0 } "
      "BaseColor "
      "{ rgb 0 0 1 } Cube {} } }");
  SoRef<SoNode> const ignoring = readText(
      "Separator { Material { diffuseColor 1 0 0 shininess 0.7 } Material { diffuseColor 0 1 0 ~ shininess "
      "0.9 } Cube {} }");
  SoRef<SoNode> const base = readText(
      "Separator { BaseColor { rgb 1 0 0 override TRUE } Material { diffuseColor 0 1 0 shininess 0.9 } Cube "
      "{} }");
  struct Seen {
    SbColor diffuse;
    float shininess = 0;
  };
  auto look = [](SoNode* scene) {
    Seen seen;
    SoCallbackAction action;
    action.addPreCallback(
        SoCube::getClassTypeId(),
        [](void* data, SoCallbackAction* a, SoNode const*) {
          auto const& material = a->getState().get<SoMaterialElement>();
          *static_cast<Seen*>(data) = {material.diffuse[0], material.shininess[0]};
          return SoCallbackAction::CONTINUE;
        },
        &seen);
    action.apply(scene);
    return seen;
  };
  EXPECT_EQ(look(root).diffuse, SbColor(1, 0, 0));
  EXPECT_EQ(look(ignoring).diffuse, SbColor(1, 0, 0));
  EXPECT_EQ(look(ignoring).shininess, 0.9f);
  EXPECT_EQ(look(base).diffuse, SbColor(1, 0, 0));
  EXPECT_EQ(look(base).shininess, 0.9f);
}

TEST(ActionsTraversal, ACallbackMayChangeTheGraphItIsIn) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* group = new SoSeparator;
  auto* callback = new SoCallback;
  root->addChild(group);
  group->addChild(callback);
  group->addChild(new SoCube);
  callback->setCallback([](void* data, SoAction*) { static_cast<SoSeparator*>(data)->removeAllChildren(); },
                        root.get());
  SoCallbackAction action;
  action.apply(root);
  EXPECT_EQ(root->getNumChildren(), 0);
}

TEST(ActionsTraversal, AnUnreferencedRootComesBackAlive) {
  auto* cube = new SoCube;
  EXPECT_TRUE(isNear(boundsOf(cube), box(-1, -1, -1, 1, 1, 1)));
  EXPECT_EQ(cube->getRefCount(), 0);
  SoRef<SoNode> const last(cube);
}
