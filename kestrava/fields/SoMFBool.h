#pragma once

#include "kestrava/base/SbBasic.h"
#include "kestrava/fields/SoMField.h"

/// Any number of truth values, 0 or 1 in memory.
class SoMFBool : public SoMFValue<SbBool> {
  SO_FIELD(SoMFBool, SoMField)
  SoMFBool() = default;
  SoMFBool(SoFieldContainer* container, char const* name, FieldType type = NORMAL)
      : SoMFValue<SbBool>(container, name, type) {}
  SoMFBool(SoFieldContainer* container, char const* name, SbBool value, FieldType type = NORMAL)
      : SoMFValue<SbBool>(container, name, value, type) {}
  SoMFBool& operator=(bool value) {
    setValue(value);
    return *this;
  }

  void get1(int index, SbString& text) const override {
    text = index >= 0 && index < getNumValues() ? SoValueToText((*this)[index] != 0) : SbString();
  }
  bool set1(int index, char const* text) override {
    bool value = false;
    if (index < 0 || !SoValueFromText(text, value)) return false;
    set1Value(index, value);
    return true;
  }
  bool readValue(SoInput& in) override {
    return SoReadList(in, m_values, [](SoInput& from, SbBool& value) {
      bool truth = false;
      if (!SoReadValue(from, truth)) return false;
      value = truth;
      return true;
    });
  }
  void writeValue(SoOutput& out) const override {
    SoWriteCounted(out, static_cast<std::uint32_t>(m_values.size()),
                   [&](std::uint32_t i) { SoWriteValue(out, m_values[i] != 0); }, 12);
  }

 protected:
  void setNumbers(std::vector<double> const& numbers) override {
    m_values.assign(numbers.size(), FALSE);
    for (std::size_t i = 0; i < numbers.size(); ++i) m_values[i] = numbers[i] != 0;
  }
};
