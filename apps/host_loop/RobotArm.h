#pragma once

#include <array>

#include "kestrava/nodes/SoNode.h"

class SoRotation;

/// The scene of this host: an arm with four joints that the program moves.
class RobotArm {
 public:
  RobotArm();
  SoNode* getRoot() const { return m_root; }
  SoNode* getHand() const { return m_hand; }
  /// Puts the joints where they are after so many seconds.
  void pose(double seconds);

 private:
  SoRef<SoNode> m_root;
  SoNode* m_hand = nullptr; // the scene's, as the joints are
  std::array<SoRotation*, 4> m_joints{};
};
