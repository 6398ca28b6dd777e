#pragma once

#include "kestrava/base/SbColor.h"
#include "kestrava/fields/SoMFColor.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/nodes/SoNode.h"

/// The surface properties of what follows. Where a shape has several, its material binding chooses among
/// the values.
class SoMaterial : public SoNode {
  SO_NODE(SoMaterial, SoNode)
  SoMFColor ambientColor{this, "ambientColor", SbColor(0.2f, 0.2f, 0.2f)};
  SoMFColor diffuseColor{this, "diffuseColor", SbColor(0.8f, 0.8f, 0.8f)};
  SoMFColor specularColor{this, "specularColor", SbColor(0, 0, 0)};
  SoMFColor emissiveColor{this, "emissiveColor", SbColor(0, 0, 0)};
  SoMFFloat shininess{this, "shininess", 0.2f};       ///< 0 to 1
  SoMFFloat transparency{this, "transparency", 0.0f}; ///< 0 opaque, 1 invisible
  SoSFBool override_{this, "override", false};        ///< what this node sets can not be changed further down

 protected:
  ~SoMaterial() override = default;
};
