#pragma once

#include "kestrava/fields/SoMField.h"
#include "kestrava/fields/SoSFEnum.h"

/// Any number of values of an enumeration.
class SoMFEnum : public SoMFValue<int> {
  SO_FIELD(SoMFEnum, SoMField)
  SoMFEnum() = default;
  SoMFEnum(SoFieldContainer* container, char const* name, int value, std::vector<SoEnumSymbol> const& symbols,
           FieldType type = NORMAL)
      : SoMFValue<int>(container, name, value, type, &symbols) {}
  SoMFEnum& operator=(int value) {
    setValue(value);
    return *this;
  }

  void get1(int index, SbString& text) const override;
  bool set1(int index, char const* text) override;
  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  virtual bool readOne(SoInput& in, int& value) { return SoReadEnum(in, value, getSymbols(), getOpenSymbols()); }
  virtual void writeOne(SoOutput& out, int value) const { SoWriteEnum(out, value, getSymbols()); }
};
