#pragma once

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/nodes/SoNode.h"

/// Draws what follows with a program of its own. Each stage that is not given is the fixed one; without any
/// active stage everything is drawn as usual. A program that does not compile is posted once a change as a
/// debug error; what follows is then drawn as usual.
class SoShaderProgram : public SoNode {
  SO_NODE(SoShaderProgram, SoNode)
  SoMFNode shaderObject{this, "shaderObject"}; ///< vertex, geometry and fragment shaders, one of each

 protected:
  ~SoShaderProgram() override = default;
};
