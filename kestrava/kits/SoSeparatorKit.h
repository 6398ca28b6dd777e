#pragma once

#include "kestrava/kits/SoAppearanceKit.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoPickStyle.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTexture2Transform.h"
#include "kestrava/nodes/SoTransform.h"

/// Something with an appearance and a place of its own, and other such things that go with it.
class SoSeparatorKit : public SoBaseKit {
  SO_NODE(SoSeparatorKit, SoBaseKit)

  SoKitPart topSeparator{this,   "topSeparator", SoSeparator::getClassTypeId(), SoSeparator::getClassTypeId(),
                         "this", false};
  SoKitPart pickStyle{this, "pickStyle", SoPickStyle::getClassTypeId(), SoPickStyle::getClassTypeId(),
                      "topSeparator"};
  SoKitPart appearance{this, "appearance", SoAppearanceKit::getClassTypeId(),
                       SoAppearanceKit::getClassTypeId(), "topSeparator"};
  SoKitPart transform{this, "transform", SoTransform::getClassTypeId(), SoTransform::getClassTypeId(),
                      "topSeparator"};
  SoKitPart texture2Transform{this, "texture2Transform", SoTexture2Transform::getClassTypeId(),
                              SoTexture2Transform::getClassTypeId(), "topSeparator"};
  SoKitListPart childList{this, "childList", SoGroup::getClassTypeId(), SoSeparatorKit::getClassTypeId(),
                          "topSeparator"};

 protected:
  ~SoSeparatorKit() override = default;
};
