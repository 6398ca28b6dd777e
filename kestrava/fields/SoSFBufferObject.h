#pragma once

#include "kestrava/base/SoBufferObject.h"
#include "kestrava/fields/SoSField.h"

/// Refers to a buffer, or to none. As text NULL, or the number of bytes and hexadecimal numbers of four bytes;
/// what is read lies in main memory.
class SoSFBufferObject : public SoSField {
  SO_FIELD(SoSFBufferObject, SoSField)
  SoSFBufferObject() = default;
  SoSFBufferObject(SoFieldContainer* container, char const* name, FieldType type = NORMAL)
      : SoSField(container, name, type) {}

  /// Null when none is set.
  SoBufferObject* getValue() const {
    evaluate();
    return m_value;
  }
  void setValue(SoBufferObject* buffer) {
    m_value = SoRef<SoBufferObject>(buffer);
    valueChanged();
  }

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  bool hasValueOf(SoField const& other) const override {
    return getValue() == static_cast<SoSFBufferObject const&>(other).getValue();
  }
  void takeValueOf(SoField const& other) override { m_value = static_cast<SoSFBufferObject const&>(other).m_value; }

 private:
  SoRef<SoBufferObject> m_value;
};
