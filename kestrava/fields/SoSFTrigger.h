#pragma once

#include "kestrava/fields/SoSField.h"

/// A field without a value: setting it tells followers and sensors that something is to happen.
class SoSFTrigger : public SoSField {
  SO_FIELD(SoSFTrigger, SoSField)
  SoSFTrigger() = default;
  SoSFTrigger(SoFieldContainer* container, char const* name, FieldType type = NORMAL)
      : SoSField(container, name, type) {}

  void setValue() { valueChanged(); }
  bool readValue(SoInput&) override { return true; }
  void writeValue(SoOutput&) const override {}

 protected:
  bool hasValueOf(SoField const&) const override { return true; }
  void takeValueOf(SoField const&) override {}
};
