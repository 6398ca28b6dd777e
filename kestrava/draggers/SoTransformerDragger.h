#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A box: its sides move, the cubes at its corners and on its sides scale, the balls on its edges turn about
/// an axis, those on its spikes freely.
class SoTransformerDragger : public SoTransformDragger {
  SO_NODE(SoTransformerDragger, SoTransformDragger)
  SoTransformerDragger();

  SoKitPart translator1{this, "translator1", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart translator2{this, "translator2", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart translator3{this, "translator3", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart translator4{this, "translator4", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart translator5{this, "translator5", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart translator6{this, "translator6", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                        "this"};
  SoKitPart scaler{this, "scaler", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this"};
  SoKitPart xScaler{this, "xScaler", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};
  SoKitPart yScaler{this, "yScaler", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};
  SoKitPart zScaler{this, "zScaler", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};
  SoKitPart xRotator{this, "xRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart yRotator{this, "yRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart zRotator{this, "zRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart rotator{this, "rotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                    "this"};

 protected:
  ~SoTransformerDragger() override = default;
};
