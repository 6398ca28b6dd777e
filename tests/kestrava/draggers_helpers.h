#pragma once

#include "kestrava/actions/SoGetMatrixAction.h"
#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/draggers/SoDragger.h"
#include "kestrava/events/SoKeyboardEvent.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/nodes/SoCamera.h"
#include "node_helpers.h"

namespace dragger_test {

using namespace node_test;

/// 100 pixels a unit, looking along -z.
inline std::string const ORTHOGRAPHIC =
    "OrthographicCamera { position 0 0 50 height 4 nearDistance 1 farDistance 100 } ";

/// A scene of 400 x 400 pixels below a camera, and a user's left button.
class Rig {
 public:
  explicit Rig(std::string const& scene, std::string const& camera = ORTHOGRAPHIC)
      : root(readText("Separator { " + camera + scene + " }")), m_action(SbViewportRegion(400, 400)) {}

  template <class Node = SoDragger> Node* get(char const* name = "d") {
    return static_cast<Node*>(SoNode::getByName(SbName(name)));
  }
  SbVec2s pixelOf(SbVec3f const& world) const {
    auto const* camera = static_cast<SoCamera const*>((*root->getChildren())[0]);
    SbVec3f screen;
    EXPECT_TRUE(camera->getViewVolume(1).projectToScreen(world, screen));
    return SbVec2s(static_cast<short>(std::lround(screen[0] * 400 - 0.5f)),
                   static_cast<short>(std::lround(screen[1] * 400 - 0.5f)));
  }

  bool press(SbVec2s pixel) { return button(pixel, SoButtonEvent::DOWN); }
  bool release(SbVec2s pixel) { return button(pixel, SoButtonEvent::UP); }
  bool move(SbVec2s pixel) {
    SoLocation2Event event;
    return send(event, pixel);
  }
  bool escape() {
    SoKeyboardEvent event;
    event.key = SoKeyboardEvent::ESCAPE;
    event.state = SoButtonEvent::DOWN;
    return send(event, SbVec2s(1, 1));
  }
  /// False when nothing was under the pointer.
  bool drag(SbVec2s from, SbVec2s to) {
    if (!press(from)) return false;
    for (int i = 1; i <= 4; ++i) {
      move(SbVec2s(static_cast<short>(from[0] + (to[0] - from[0]) * i / 4),
                   static_cast<short>(from[1] + (to[1] - from[1]) * i / 4)));
    }
    return release(to);
  }

  SoRef<SoNode> root;
  bool shift = false, ctrl = false;

 private:
  bool button(SbVec2s pixel, SoButtonEvent::State state) {
    SoMouseButtonEvent event;
    event.button = SoMouseButtonEvent::LEFT;
    event.state = state;
    return send(event, pixel);
  }
  bool send(SoEvent& event, SbVec2s pixel) {
    event.position = pixel;
    event.shiftDown = shift;
    event.ctrlDown = ctrl;
    m_action.setEvent(&event);
    m_action.apply(root);
    return m_action.isHandled();
  }

  SoHandleEventAction m_action;
};

/// From the coordinates that the first place of a node stands in to the root's.
inline SbMatrix matrixAbove(SoNode* root, SoNode* node) {
  SoSearchAction search;
  search.setNode(node);
  search.apply(root);
  SoGetMatrixAction matrix(SbViewportRegion(400, 400));
  if (search.isFound()) matrix.apply(search.getPath());
  EXPECT_TRUE(search.isFound());
  return matrix.getMatrix();
}

inline ::testing::AssertionResult isNear(SoPlacement const& is, SoPlacement const& wanted, float tolerance) {
  auto text = [](SoPlacement const& p) {
    std::ostringstream out;
    for (SbVec3f const& v : {p.translation, p.scaleFactor, p.rotation.getAxis()}) {
      out << v[0] << " " << v[1] << " " << v[2] << ", ";
    }
    out << p.rotation.getAngle() << ", center " << p.center[0] << " " << p.center[1] << " " << p.center[2]
        << ", angle " << p.angle;
    return out.str();
  };
  bool const ok =
      is.translation.equals(wanted.translation, tolerance) &&
      is.scaleFactor.equals(wanted.scaleFactor, tolerance) && is.center.equals(wanted.center, tolerance) &&
      std::abs(is.angle - wanted.angle) <= tolerance &&
      (is.rotation.equals(wanted.rotation, tolerance) ||
       SbRotation::fromQuaternion(-is.rotation.getQuaternion()).equals(wanted.rotation, tolerance));
  if (ok) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "is " << text(is) << ", should be " << text(wanted);
}

} // namespace dragger_test
