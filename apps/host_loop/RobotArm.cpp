#include "apps/host_loop/RobotArm.h"

#include <cmath>

#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoRotation.h"

namespace {

constexpr char SCENE[] = R"scene(
DEF workshop Separator {
  GradientBackground { color0 0.55 0.62 0.68 color1 0.9 0.92 0.93 }
  DEF camera PerspectiveCamera {
    position 5.2 5 8.4 orientation -0.516 0.838 0.178 0.645 nearDistance 1 farDistance 40 focalDistance 10 heightAngle 0.72
  }
  DEF window DirectionalLight { direction -0.6 -0.9 -0.5 intensity 0.9 }
  DEF lamp DirectionalLight { direction 0.8 -0.1 -0.4 intensity 0.35 color 1 0.9 0.8 }
  Complexity { value 0.8 }
  DEF floor Separator {
    Material { diffuseColor 0.42 0.46 0.5 specularColor 0 0 0 }
    Translation { translation 0 -0.1 0 }
    Cylinder { radius 2.9 height 0.2 }
  }
  DEF steel Material { diffuseColor 0.4 0.43 0.47 specularColor 0.8 0.8 0.85 shininess 0.6 }
  DEF foot Cylinder { radius 0.95 height 0.36 }
  DEF turntable Rotation { }
  DEF orange Material { diffuseColor 0.9 0.4 0.08 specularColor 0.6 0.5 0.4 shininess 0.5 }
  Translation { translation 0 0.5 0 }
  DEF hub Cylinder { radius 0.62 height 0.7 }
  Translation { translation 0 0.55 0 }
  DEF shoulder Rotation { }
  DEF upperArm Separator {
    Separator { USE steel RotationXYZ { axis X angle 1.5708 } Cylinder { radius 0.4 height 0.95 } }
    USE orange
    Translation { translation 0 1.05 0 }
    Cube { width 0.5 height 1.9 depth 0.55 }
  }
  Translation { translation 0 2.1 0 }
  DEF elbow Rotation { }
  DEF forearm Separator {
    Separator { USE steel RotationXYZ { axis X angle 1.5708 } Cylinder { radius 0.32 height 0.8 } }
    USE orange
    Translation { translation 0 0.9 0 }
    Cylinder { radius 0.22 height 1.6 }
  }
  Translation { translation 0 1.8 0 }
  DEF wrist Rotation { }
  DEF hand Separator {
    USE steel
    Sphere { radius 0.3 }
    Translation { translation 0 0.36 0 }
    Cube { width 0.85 height 0.14 depth 0.3 }
    Translation { translation -0.34 0.27 0 }
    DEF finger Cube { width 0.12 height 0.5 depth 0.22 }
    Translation { translation 0.68 0 0 }
    USE finger
  }
}
)scene";

} // namespace

RobotArm::RobotArm() {
  SoInput in;
  in.setBuffer(SCENE);
  m_root = SoRef<SoNode>(SoDB::readAll(&in));
  std::size_t next = 0;
  for (char const* name : {"turntable", "shoulder", "elbow", "wrist"}) {
    m_joints[next++] = static_cast<SoRotation*>(SoBase::getNamedBase(name, SoRotation::getClassTypeId()));
  }
  m_hand = static_cast<SoNode*>(SoBase::getNamedBase("hand", SoNode::getClassTypeId()));
  pose(0);
}

void RobotArm::pose(double seconds) {
  auto turn = [this](int joint, SbVec3f const& axis, double angle) {
    m_joints[static_cast<std::size_t>(joint)]->rotation = SbRotation(axis, static_cast<float>(angle));
  };
  turn(0, SbVec3f(0, 1, 0), 1.1 * std::sin(0.5 * seconds));
  turn(1, SbVec3f(0, 0, 1), -0.45 + 0.35 * std::sin(0.8 * seconds));
  turn(2, SbVec3f(0, 0, 1), -1.1 + 0.5 * std::sin(0.8 * seconds + 1.2));
  turn(3, SbVec3f(0, 0, 1), -0.7 + 0.4 * std::sin(1.6 * seconds));
}
