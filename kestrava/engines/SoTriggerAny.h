#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFTrigger.h"

/// Triggers its output whenever one of the inputs is triggered.
class SoTriggerAny : public SoEngine {
  SO_ENGINE(SoTriggerAny, SoEngine)

  SoSFTrigger input0{this, "input0"};
  SoSFTrigger input1{this, "input1"};
  SoSFTrigger input2{this, "input2"};
  SoSFTrigger input3{this, "input3"};
  SoSFTrigger input4{this, "input4"};
  SoSFTrigger input5{this, "input5"};
  SoSFTrigger input6{this, "input6"};
  SoSFTrigger input7{this, "input7"};
  SoSFTrigger input8{this, "input8"};
  SoSFTrigger input9{this, "input9"};
  SoSFTrigger output{this, "output", SoField::EVENT_OUT};

 protected:
  ~SoTriggerAny() override = default;
  void evaluate() override;
};
