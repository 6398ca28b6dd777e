#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A box: its sides move, the cubes at its corners scale, the balls on its edges turn.
class SoTransformBoxDragger : public SoTransformDragger {
  SO_NODE(SoTransformBoxDragger, SoTransformDragger)
  SoTransformBoxDragger();

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
  SoKitPart xRotator{this, "xRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart yRotator{this, "yRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};
  SoKitPart zRotator{this, "zRotator", SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(),
                     "this"};

 protected:
  ~SoTransformBoxDragger() override = default;
};
