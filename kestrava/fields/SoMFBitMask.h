#pragma once

#include "kestrava/fields/SoMFEnum.h"

/// Any number of sets of flags.
class SoMFBitMask : public SoMFEnum {
  SO_FIELD(SoMFBitMask, SoMFEnum)
  SoMFBitMask() = default;
  using SoMFEnum::SoMFEnum;
  using SoMFEnum::operator=;

 protected:
  bool readOne(SoInput& in, int& value) override { return SoReadBitMask(in, value, getSymbols(), getOpenSymbols()); }
  void writeOne(SoOutput& out, int value) const override { SoWriteBitMask(out, value, getSymbols(), getOpenSymbols()); }
};
