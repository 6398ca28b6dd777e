#pragma once

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoTransformSeparator.h"

/// A camera with a place of its own.
class SoCameraKit : public SoBaseKit {
  SO_NODE(SoCameraKit, SoBaseKit)

  SoKitPart transformGroup{this,
                           "transformGroup",
                           SoTransformSeparator::getClassTypeId(),
                           SoTransformSeparator::getClassTypeId(),
                           "this",
                           false};
  SoKitPart transform{this, "transform", SoTransform::getClassTypeId(), SoTransform::getClassTypeId(),
                      "transformGroup"};
  SoKitPart camera{this, "camera", SoCamera::getClassTypeId(), SoPerspectiveCamera::getClassTypeId(),
                   "transformGroup"};

 protected:
  ~SoCameraKit() override = default;
};
