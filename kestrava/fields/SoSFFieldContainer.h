#pragma once

#include "kestrava/fields/SoSField.h"

class SoFieldContainer;

/// Refers to an object with fields that need not be a node, or to none. Holds a reference to it and passes its
/// changes on. As text a node, or NULL: other objects do not stand in files.
class SoSFFieldContainer : public SoSField {
  SO_FIELD(SoSFFieldContainer, SoSField)
  SoSFFieldContainer() = default;
  SoSFFieldContainer(SoFieldContainer* container, char const* name, SoFieldContainer* value = nullptr,
                     FieldType type = NORMAL);
  ~SoSFFieldContainer() override;

  /// May be null.
  SoFieldContainer* getValue() const {
    evaluate();
    return m_value;
  }
  /// Null is allowed; an object that refers to the field's container is not.
  void setValue(SoFieldContainer* value);

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  bool hasValueOf(SoField const& other) const override {
    return getValue() == static_cast<SoSFFieldContainer const&>(other).getValue();
  }
  void takeValueOf(SoField const& other) override { hold(static_cast<SoSFFieldContainer const&>(other).m_value); }
  void takeCopyOf(SoField const& other, SoCopier& copier) override;

 private:
  void hold(SoFieldContainer* value);
  SoFieldContainer* m_value = nullptr;
};
