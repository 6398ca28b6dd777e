#pragma once

#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoTextureCoordinateFunction.h"

/// Projects the texture along a direction.
class SoTextureCoordinatePlane : public SoTextureCoordinateFunction {
  SO_NODE(SoTextureCoordinatePlane, SoTextureCoordinateFunction)
  SoSFVec3f directionS{this, "directionS", SbVec3f(1, 0, 0)}; ///< its length is that of one image
  SoSFVec3f directionT{this, "directionT", SbVec3f(0, 1, 0)}; ///< its length is that of one image

 protected:
  ~SoTextureCoordinatePlane() override = default;
};
