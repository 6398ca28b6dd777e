#pragma once

#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/nodes/SoCoordinate3.h"
#include "kestrava/nodes/SoCoordinate4.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoMaterialBinding.h"
#include "kestrava/nodes/SoNormal.h"
#include "kestrava/nodes/SoNormalBinding.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/nodes/SoShapeHints.h"
#include "kestrava/nodes/SoTextureCoordinate2.h"
#include "kestrava/nodes/SoTextureCoordinateBinding.h"
#include "kestrava/nodes/SoTextureCoordinateFunction.h"
#include "kestrava/nodes/SoTextureCoordinatePlane.h"
#include "kestrava/nodes/SoTransform.h"

/// A shape with everything that can be said about it.
class SoShapeKit : public SoSeparatorKit {
  SO_NODE(SoShapeKit, SoSeparatorKit)

  SoKitPart materialBinding{this, "materialBinding", SoMaterialBinding::getClassTypeId(),
                            SoMaterialBinding::getClassTypeId(), "topSeparator"};
  SoKitPart normalBinding{this, "normalBinding", SoNormalBinding::getClassTypeId(),
                          SoNormalBinding::getClassTypeId(), "topSeparator"};
  SoKitPart textureCoordinateBinding{this, "textureCoordinateBinding",
                                     SoTextureCoordinateBinding::getClassTypeId(),
                                     SoTextureCoordinateBinding::getClassTypeId(), "topSeparator"};
  SoKitPart shapeHints{this, "shapeHints", SoShapeHints::getClassTypeId(), SoShapeHints::getClassTypeId(),
                       "topSeparator"};
  SoKitPart coordinate3{this, "coordinate3", SoCoordinate3::getClassTypeId(), SoCoordinate3::getClassTypeId(),
                        "topSeparator"};
  SoKitPart coordinate4{this, "coordinate4", SoCoordinate4::getClassTypeId(), SoCoordinate4::getClassTypeId(),
                        "topSeparator"};
  SoKitPart normal{this, "normal", SoNormal::getClassTypeId(), SoNormal::getClassTypeId(), "topSeparator"};
  SoKitPart textureCoordinate2{this, "textureCoordinate2", SoTextureCoordinate2::getClassTypeId(),
                               SoTextureCoordinate2::getClassTypeId(), "topSeparator"};
  SoKitPart textureCoordinateFunction{this, "textureCoordinateFunction",
                                      SoTextureCoordinateFunction::getClassTypeId(),
                                      SoTextureCoordinatePlane::getClassTypeId(), "topSeparator"};
  SoKitPart localTransform{this, "localTransform", SoTransform::getClassTypeId(),
                           SoTransform::getClassTypeId(), "topSeparator"};
  SoKitPart shape{this, "shape", SoShape::getClassTypeId(), SoCube::getClassTypeId(), "topSeparator"};

 protected:
  ~SoShapeKit() override = default;
};
