#pragma once

#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoNode.h"

/// Base of the nodes that give each copy of a shape a value of its own: the shader that draws the copies
/// reads it as an input of its vertex stage.
class SoInstanceParameter : public SoNode {
  SO_ABSTRACT_NODE(SoInstanceParameter, SoNode)
  SoSFString name{this, "name"}; ///< of the input

  /// 1 to 4.
  virtual int getNumComponents() const = 0;
  /// The components for the copy of an index; beyond the last value that one. Zeros when there is none.
  virtual void getValue(int index, float* components) const = 0;

 protected:
  SoInstanceParameter() = default;
  ~SoInstanceParameter() override = default;
};
