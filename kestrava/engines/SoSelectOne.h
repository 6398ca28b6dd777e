#pragma once

#include "kestrava/engines/SoTypedEngine.h"
#include "kestrava/fields/SoSFInt32.h"

/// Picks one value of many. `type` is a type of fields with many values, such as MFVec3f; it makes the field
/// `input` of that type, and `output` of the one for single values. Where there is no such value the output
/// keeps its last one.
class SoSelectOne : public SoTypedEngine {
  SO_ENGINE(SoSelectOne, SoTypedEngine)

  SoSFInt32 index{this, "index", 0};

  /// Null until the type is set.
  SoField* getInput() const { return m_runTimeFields.getLength() > 0 ? m_runTimeFields[0] : nullptr; }
  SoField* getOutput() const { return m_runTimeFields.getLength() > 0 ? m_runTimeFields[1] : nullptr; }

 protected:
  ~SoSelectOne() override = default;
  bool declareFields(SoType fieldType) override;
  void evaluate() override;
};
