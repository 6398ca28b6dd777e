#pragma once

#include "kestrava/engines/SoTypedEngine.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFTrigger.h"

/// Lets values through while it is enabled, or one when it is triggered. `type` may be any type of fields; it
/// makes the fields `input` and `output`.
class SoGate : public SoTypedEngine {
  SO_ENGINE(SoGate, SoTypedEngine)
  SoGate() : SoTypedEngine(EVENTS) {}

  SoSFBool enable{this, "enable", false};
  SoSFTrigger trigger{this, "trigger"};

  /// Null until the type is set.
  SoField* getInput() const { return m_runTimeFields.getLength() > 0 ? m_runTimeFields[0] : nullptr; }
  SoField* getOutput() const { return m_runTimeFields.getLength() > 0 ? m_runTimeFields[1] : nullptr; }

 protected:
  ~SoGate() override = default;
  bool declareFields(SoType fieldType) override;
  void inputChanged(SoField* input) override;
  void evaluate() override;

 private:
  bool m_lets = false; // the value of the input is to pass
};
