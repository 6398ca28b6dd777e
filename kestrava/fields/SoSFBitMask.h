#pragma once

#include "kestrava/fields/SoSFEnum.h"

/// A set of flags, given by their symbols; NONE and ALL stand for no flag and all.
class SoSFBitMask : public SoSFEnum {
  SO_FIELD(SoSFBitMask, SoSFEnum)
  SoSFBitMask() = default;
  using SoSFEnum::SoSFEnum;
  using SoSFEnum::operator=;

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;
};
