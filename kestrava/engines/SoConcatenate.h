#pragma once

#include "kestrava/engines/SoTypedEngine.h"

/// Puts the values of several fields behind one another. `type` is a type of fields with many values, such as
/// MFFloat; it makes the fields `input0` to `input9` and `output`.
class SoConcatenate : public SoTypedEngine {
  SO_ENGINE(SoConcatenate, SoTypedEngine)

  static constexpr int NUM_INPUTS = 10;

  /// Null until the type is set.
  SoField* getInput(int i) const { return m_runTimeFields.getLength() > 0 ? m_runTimeFields[i] : nullptr; }
  SoField* getOutput() const {
    return m_runTimeFields.getLength() > 0 ? m_runTimeFields[NUM_INPUTS] : nullptr;
  }

 protected:
  ~SoConcatenate() override = default;
  bool declareFields(SoType fieldType) override;
  void evaluate() override;
};
