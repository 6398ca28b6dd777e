#pragma once

#include "kestrava/draggers/SoTransformDragger.h"

/// A box: its sides move, the cubes at its corners scale in all directions alike, those on its sides along
/// one axis.
class SoHandleBoxDragger : public SoTransformDragger {
  SO_NODE(SoHandleBoxDragger, SoTransformDragger)
  SoHandleBoxDragger();

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

 protected:
  ~SoHandleBoxDragger() override = default;
};
