#pragma once

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoLight.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoTransformSeparator.h"

/// A light with a place of its own.
class SoLightKit : public SoBaseKit {
  SO_NODE(SoLightKit, SoBaseKit)

  SoKitPart transformGroup{this,
                           "transformGroup",
                           SoTransformSeparator::getClassTypeId(),
                           SoTransformSeparator::getClassTypeId(),
                           "this",
                           false};
  SoKitPart transform{this, "transform", SoTransform::getClassTypeId(), SoTransform::getClassTypeId(),
                      "transformGroup"};
  SoKitPart light{this, "light", SoLight::getClassTypeId(), SoDirectionalLight::getClassTypeId(),
                  "transformGroup"};

 protected:
  ~SoLightKit() override = default;
};
