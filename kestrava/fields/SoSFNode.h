#pragma once

#include "kestrava/fields/SoSField.h"

class SoNode;

/// Refers to one node, or to none. Holds a reference to it and passes its changes on.
class SoSFNode : public SoSField {
  SO_FIELD(SoSFNode, SoSField)
  using ValueType = SoNode*;
  SoSFNode() = default;
  SoSFNode(SoFieldContainer* container, char const* name, SoNode* value = nullptr, FieldType type = NORMAL);
  ~SoSFNode() override;

  /// May be null.
  SoNode* getValue() const {
    evaluate();
    return m_value;
  }
  /// Null is allowed. A node that contains the field's container is refused with a debug error.
  void setValue(SoNode* node);
  SoSFNode& operator=(SoNode* node) {
    setValue(node);
    return *this;
  }

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  friend class SoReader;
  bool hasValueOf(SoField const& other) const override;
  void takeValueOf(SoField const& other) override;
  void takeCopyOf(SoField const& other, SoCopier& copier) override;
  void hold(SoNode* node);

 private:
  SoNode* m_value = nullptr;
};
