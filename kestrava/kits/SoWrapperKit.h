#pragma once

#include "kestrava/kits/SoSeparatorKit.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"

/// Any nodes, wrapped as a kit.
class SoWrapperKit : public SoSeparatorKit {
  SO_NODE(SoWrapperKit, SoSeparatorKit)

  SoKitPart localTransform{this, "localTransform", SoTransform::getClassTypeId(),
                           SoTransform::getClassTypeId(), "topSeparator"};
  SoKitPart contents{this, "contents", SoNode::getClassTypeId(), SoSeparator::getClassTypeId(),
                     "topSeparator"};

 protected:
  ~SoWrapperKit() override = default;
};
