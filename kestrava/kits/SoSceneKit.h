#pragma once

#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoCameraKit.h"
#include "kestrava/kits/SoLightKit.h"
#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"

/// A scene: cameras, of which the first is used, lights, and what they show.
class SoSceneKit : public SoBaseKit {
  SO_NODE(SoSceneKit, SoBaseKit)

  SoKitPart topSeparator{this,   "topSeparator", SoSeparator::getClassTypeId(), SoSeparator::getClassTypeId(),
                         "this", false};
  SoKitListPart cameraList{this, "cameraList", SoSwitch::getClassTypeId(), SoCameraKit::getClassTypeId(),
                           "topSeparator"};
  SoKitListPart lightList{this, "lightList", SoGroup::getClassTypeId(), SoLightKit::getClassTypeId(),
                          "topSeparator"};
  SoKitListPart childList{this, "childList", SoGroup::getClassTypeId(), SoSeparatorKit::getClassTypeId(),
                          "topSeparator"};

 protected:
  ~SoSceneKit() override = default;
};
