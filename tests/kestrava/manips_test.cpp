// Manipulators: what they do to the scene, how they take and leave a node's place, what dragging them
// changes.

#include "draggers_helpers.h"
#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/draggers/SoSpotLightDragger.h"
#include "kestrava/draggers/SoTranslate1Dragger.h"
#include "kestrava/kits/SoShapeKit.h"
#include "kestrava/nodes/SoClipPlaneManip.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoDirectionalLightManip.h"
#include "kestrava/nodes/SoHandleBoxManip.h"
#include "kestrava/nodes/SoPointLightManip.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSpotLightManip.h"
#include "kestrava/nodes/SoTrackballManip.h"
#include "kestrava/nodes/SoTransformBoxManip.h"

using namespace dragger_test;

namespace {

/// To the first node of a type.
SoRef<SoPath> pathTo(SoNode* root, SoType type) {
  SoSearchAction search;
  search.setType(type);
  search.apply(root);
  return SoRef<SoPath>(search.isFound() ? search.getPath()->copy() : nullptr);
}

/// The traversal state as the first cube sees it.
struct Seen {
  SbMatrix matrix;
  SbPlane plane;
  SoLightElement::Light light;
  size_t lights = 0, planes = 0;
};
Seen seenByCube(SoNode* root) {
  Seen seen;
  SoCallbackAction action;
  action.addPreCallback(
      SoCube::getClassTypeId(),
      [](void* data, SoCallbackAction* visiting, SoNode const*) {
        auto& s = *static_cast<Seen*>(data);
        SoState& state = visiting->getState();
        s.matrix = state.get<SoModelMatrixElement>().matrix;
        auto const& lights = state.get<SoLightElement>().lights;
        auto const& planes = state.get<SoClipPlaneElement>().planes;
        s.lights = lights.size();
        s.planes = planes.size();
        if (s.lights > 0) s.light = lights.back();
        if (s.planes > 0) s.plane = planes.back();
        EXPECT_EQ(state.get<SoMaterialElement>().diffuse.first, SbColor(1, 0, 0));
        EXPECT_FALSE(state.get<SoLightModelElement>().lit);
        return SoCallbackAction::ABORT;
      },
      &seen);
  action.apply(root);
  return seen;
}

std::string const BEFORE = "BaseColor { rgb 1 0 0 } LightModel { model BASE_COLOR } ";
std::string const MOVED =
    " { translation 1 0.5 0 rotation 0 0 1 0.3 scaleFactor 2 1 0.5 scaleOrientation 0 1 0 0.2 center 0 0.1 0 "
    "} ";

TEST(Manips, DoWhatThePlainNodeDoes) {
  struct Case {
    std::string manip, plain, fields;
  };
  std::vector<Case> cases = {
      {"DirectionalLightManip", "DirectionalLight", " { direction 1 2 -1 intensity 0.5 } "},
      {"PointLightManip", "PointLight", " { location 1 2 3 color 1 0 0 } "},
      {"SpotLightManip", "SpotLight",
       " { location 1 2 3 direction 0 -1 0 cutOffAngle 0.4 dropOffRate 0.2 } "},
      {"ClipPlaneManip", "ClipPlane", " { plane 0 1 1 0.3 } "},
  };
  for (char const* kind :
       {"HandleBox", "Trackball", "Centerball", "TransformBox", "Jack", "TabBox", "Transformer"})
    cases.push_back({kind + std::string("Manip"), "Transform", MOVED});
  for (Case const& c : cases) {
    SCOPED_TRACE(c.manip);
    auto const scene = [&](std::string const& node) {
      return readText("Separator { " + BEFORE + "Scale { scaleFactor 2 2 2 } " + node + c.fields +
                      "Cube { } }");
    };
    SoRef<SoNode> const with(scene(c.manip)), without(scene(c.plain));
    ASSERT_TRUE(with && without);
    Seen const a = seenByCube(with), b = seenByCube(without);
    EXPECT_TRUE(a.matrix == b.matrix);
    EXPECT_EQ(a.lights, b.lights);
    EXPECT_EQ(a.planes, b.planes);
    EXPECT_TRUE(a.light.position == b.light.position && a.light.direction == b.light.direction &&
                a.light.cutOffAngle == b.light.cutOffAngle && a.plane == b.plane);
    EXPECT_TRUE(isNear(boundsOf(with), boundsOf(without), 0));
    // Files hold the plain node's fields, and they come back.
    std::string const text = io_test::writeText(with);
    EXPECT_EQ(text.find("Dragger"), std::string::npos) << text;
    EXPECT_EQ(io_test::writeText(SoRef<SoNode>(readText(text))), text);
    EXPECT_FALSE(pathTo(with, SoDragger::getClassTypeId())); // searches pass it by
  }
}

TEST(Manips, TakeAPlaceAndLeaveIt) {
  Rig rig(BEFORE + "DEF t Transform" + MOVED +
          "Cube { } Separator { Translation { translation 0 0 0 = t.translation } DEF s Transform { center 1 "
          "1 1 = "
          "t.center } }");
  SbMatrix const before = seenByCube(rig.root).matrix;
  auto* const plain = rig.get<SoTransform>("t");
  auto* const follower = static_cast<SoTransform*>(SoNode::getByName("s"));
  SoRef<SoPath> const path(pathTo(rig.root, SoTransform::getClassTypeId()));
  SoRef<SoTransform> const kept(plain);
  SoRef<SoHandleBoxManip> const manip(new SoHandleBoxManip);
  ASSERT_TRUE(manip->replaceNode(path));
  EXPECT_EQ(path->getTail(), manip.get());
  EXPECT_EQ(static_cast<SoGroup*>(rig.root.get())->findChild(plain), -1);
  EXPECT_TRUE(seenByCube(rig.root).matrix == before);
  EXPECT_EQ(follower->center.getConnectedField(), &manip->center);
  EXPECT_TRUE(manip->getDragger()->getPlacement().translation.equals(SbVec3f(1, 0.5f, 0), 0));

  // Both ways: the field moves the dragger, the dragger the field.
  manip->translation = SbVec3f(-1, 0, 0);
  EXPECT_TRUE(manip->getDragger()->getPlacement().translation.equals(SbVec3f(-1, 0, 0), 0));
  SoPlacement wanted = manip->getDragger()->getPlacement();
  wanted.translation = SbVec3f(0, 0, 2);
  wanted.scaleFactor = SbVec3f(1, 1, 3);
  manip->getDragger()->setPlacement(wanted);
  EXPECT_TRUE(manip->translation.getValue().equals(wanted.translation, 0));
  EXPECT_TRUE(manip->scaleFactor.getValue().equals(wanted.scaleFactor, 0));
  SbMatrix const moved = seenByCube(rig.root).matrix;

  ASSERT_TRUE(manip->replaceManip(path, nullptr));
  EXPECT_EQ(path->getTail()->getTypeId(), SoTransform::getClassTypeId());
  EXPECT_TRUE(seenByCube(rig.root).matrix == moved);
  EXPECT_EQ(follower->center.getConnectedField(), &static_cast<SoTransform*>(path->getTail())->center);

  // What can not be is refused, and nothing is lost.
  DebugErrors errors;
  SoRef<SoPath> const cube(pathTo(rig.root, SoCube::getClassTypeId()));
  EXPECT_FALSE(manip->replaceNode(cube));
  EXPECT_FALSE(manip->replaceNode(nullptr));
  EXPECT_FALSE(manip->replaceNode(SoRef<SoPath>(new SoPath(path->getTail()))));
  EXPECT_FALSE(manip->replaceManip(path, nullptr));
  EXPECT_EQ(errors.texts.size(), 4u);
  EXPECT_TRUE(seenByCube(rig.root).matrix == moved);
}

TEST(Manips, TakeThePlaceOfAPartOfAKit) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* kit = new SoShapeKit;
  root->addChild(kit);
  static_cast<SoTransform*>(kit->getPart("transform", true))->translation = SbVec3f(1, 2, 3);
  SoBaseKit::setSearchingChildren(true);
  SoRef<SoPath> const path(pathTo(root, SoTransform::getClassTypeId()));
  SoBaseKit::setSearchingChildren(false);
  SoRef<SoTrackballManip> const manip(new SoTrackballManip);
  ASSERT_TRUE(manip->replaceNode(path));
  EXPECT_EQ(kit->getPart("transform", false), manip.get());
  EXPECT_EQ(path->getTail(), manip.get());
  EXPECT_TRUE(manip->translation.getValue().equals(SbVec3f(1, 2, 3), 0));
  ASSERT_TRUE(manip->replaceManip(path, nullptr));
  EXPECT_TRUE(static_cast<SoTransform*>(kit->getPart("transform", false))
                  ->translation.getValue()
                  .equals(SbVec3f(1, 2, 3), 0));
}

TEST(Manips, AreDraggedAroundWhatTheyMove) {
  Rig rig(
      "DEF d HandleBoxManip { translation 0.2 0.1 0 } Separator { Translation { translation 0.3 0 0 } Cube { "
      "width "
      "2 height 1 depth 1 } }");
  auto* const manip = rig.get<SoTransform>();
  SbVec3f const middle(0.5f, 0.1f, 0), corner(1.02f, 0.51f, 0.51f);
  ASSERT_TRUE(rig.drag(rig.pixelOf(middle + corner), rig.pixelOf(middle + corner * 1.5f)));
  EXPECT_TRUE(manip->scaleFactor.getValue().equals(SbVec3f(1.5f, 1.5f, 1.5f), 0.02f));
  // It grows about the middle of the box.
  EXPECT_TRUE(isNear(boundsOf(rig.root), box(-1, -0.65f, -0.75f, 2, 0.85f, 0.75f), 0.03f));
  // A side moves it.
  ASSERT_TRUE(
      rig.drag(rig.pixelOf(middle + SbVec3f(0.4f, 0.2f, 0)), rig.pixelOf(middle + SbVec3f(0.4f, -0.3f, 0))));
  EXPECT_TRUE(isNear(boundsOf(rig.root), box(-1, -1.15f, -0.75f, 2, 0.35f, 0.75f), 0.03f));
}

TEST(Manips, TurnAboutTheMiddleOfWhatTheyMove) {
  Rig rig(
      "Rotation { rotation 0 1 0 0.5 } DEF d TransformBoxManip { } Translation { translation 0.5 0.2 0 } "
      "Cube { width 1 height 1 depth 1 }");
  SbMatrix const above = matrixAbove(rig.root, rig.get<SoNode>());
  SbVec3f const middle(0.5f, 0.2f, 0), edge(0.51f, 0.51f, 0);
  SbRotation const turn(SbVec3f(0, 0, 1), 0.785398f);
  ASSERT_TRUE(rig.drag(rig.pixelOf(above.multVecMatrix(middle + edge)),
                       rig.pixelOf(above.multVecMatrix(middle + turn.multVec(edge)))));
  EXPECT_TRUE(rig.get<SoTransform>()->rotation.getValue().equals(turn, 0.03f));
  EXPECT_TRUE(boundsOf(rig.root).getCenter().equals(above.multVecMatrix(middle), 0.02f));
}

TEST(Manips, LightsAndPlanesAreDragged) {
  {
    Rig rig("DEF d PointLightManip { location 0.5 0 0 }");
    ASSERT_TRUE(rig.drag(rig.pixelOf(SbVec3f(0.65f, 0.13f, 0)), rig.pixelOf(SbVec3f(-0.35f, 1.13f, 0))));
    EXPECT_TRUE(rig.get<SoPointLight>()->location.getValue().equals(SbVec3f(-0.5f, 1, 0), 1e-3f));
    rig.get<SoPointLight>()->location = SbVec3f(0, -1, 0);
    EXPECT_TRUE(rig.press(rig.pixelOf(SbVec3f(0, -1, 0))));
  }
  {
    Rig rig("DEF d DirectionalLightManip { direction 1 0 0 }");
    ASSERT_TRUE(rig.drag(rig.pixelOf(SbVec3f(1.1f, 0, 0)), rig.pixelOf(SbVec3f(0, 1.1f, 0))));
    EXPECT_TRUE(rig.get<SoDirectionalLight>()->direction.getValue().equals(SbVec3f(0, 1, 0), 0.1f));
  }
  {
    Rig rig("DEF d SpotLightManip { location 0 0 0 direction 1 0 0 cutOffAngle 0.5 }");
    auto const rim = [&](float angle) { return rig.pixelOf(SbVec3f(std::cos(angle), std::sin(angle), 0)); };
    ASSERT_TRUE(rig.drag(rim(0.5f), rim(0.9f)));
    EXPECT_NEAR(rig.get<SoSpotLight>()->cutOffAngle.getValue(), 0.9f, 0.03f);
    EXPECT_TRUE(rig.get<SoSpotLight>()->direction.getValue().equals(SbVec3f(1, 0, 0), 0));
  }
  {
    Rig rig("DEF d ClipPlaneManip { plane 1 0 0 0.5 }");
    ASSERT_TRUE(rig.drag(rig.pixelOf(SbVec3f(0.8f, 0, 0)), rig.pixelOf(SbVec3f(0.2f, 0, 0))));
    SbPlane const plane = rig.get<SoClipPlane>()->plane.getValue();
    EXPECT_TRUE(plane.equals(SbPlane(SbVec3f(1, 0, 0), -0.1f), 1e-3f));
  }
}

TEST(Manips, ACopyHasADraggerOfItsOwn) {
  SoRef<SoSpotLightManip> manip(new SoSpotLightManip);
  manip->location = SbVec3f(1, 2, 3);
  SoRef<SoSpotLightManip> const copy(static_cast<SoSpotLightManip*>(manip->copy(false)));
  ASSERT_TRUE(copy && copy->getDragger());
  EXPECT_NE(copy->getDragger(), manip->getDragger());
  SoPlacement placement = copy->getDragger()->getPlacement();
  EXPECT_TRUE(placement.translation.equals(SbVec3f(1, 2, 3), 0));
  manip.reset();
  placement.translation = SbVec3f(4, 5, 6);
  placement.angle = 0.3f;
  copy->getDragger()->setPlacement(placement);
  EXPECT_TRUE(copy->location.getValue().equals(SbVec3f(4, 5, 6), 0));
  EXPECT_FLOAT_EQ(copy->cutOffAngle.getValue(), 0.3f);
  // The cone has followed.
  auto* const dragger = static_cast<SoSpotLightDragger*>(copy->getDragger());
  EXPECT_LT(boundsOf(dragger->beam.getValue()).getMax()[0], 0.4f);
}

TEST(Manips, TakeAnyDragger) {
  Rig rig("DEF d JackManip { translation 0.5 0 0 } Cube { }");
  auto* const manip = rig.get<SoTransformManip>();
  SoRef<SoTranslate1Dragger> const dragger(new SoTranslate1Dragger);
  ASSERT_TRUE(manip->setDragger(dragger));
  EXPECT_TRUE(dragger->translation.getValue().equals(SbVec3f(0.5f, 0, 0), 0));
  dragger->translation = SbVec3f(2, 0, 0);
  EXPECT_TRUE(manip->translation.getValue().equals(SbVec3f(2, 0, 0), 0));
  SoRef<SoTrackballManip> other(new SoTrackballManip);
  DebugErrors errors;
  EXPECT_FALSE(other->setDragger(dragger));
  EXPECT_EQ(errors.texts.size(), 1u);
  EXPECT_TRUE(manip->setDragger(nullptr));
  EXPECT_EQ(manip->getDragger(), nullptr);
  EXPECT_TRUE(other->setDragger(dragger));
  other.reset();
  dragger->translation = SbVec3f(3, 0, 0); // nobody follows any more
}

} // namespace
