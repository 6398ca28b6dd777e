#pragma once

#include "kestrava/fields/SoMField.h"

class SoNode;

/// Refers to any number of nodes; an entry may be null. Holds references and passes changes on.
class SoMFNode : public SoMField {
  SO_FIELD(SoMFNode, SoMField)
  using ValueType = SoNode*;
  SoMFNode() = default;
  SoMFNode(SoFieldContainer* container, char const* name, FieldType type = NORMAL)
      : SoMField(container, name, type) {}
  ~SoMFNode() override;

  int getNumValues() const override {
    evaluate();
    return static_cast<int>(m_values.size());
  }
  SoNode* operator[](int i) const {
    evaluate();
    return m_values[i];
  }
  SoNode* getNode(int i) const { return (*this)[i]; }
  /// First index of a node, -1 when it is not there.
  int findNode(SoNode const* node) const;
  void addNode(SoNode* node) { insertNode(node, getNumValues()); }
  void insertNode(SoNode* node, int index);
  void replaceNode(int index, SoNode* node);
  void removeNode(int index) { deleteValues(index, 1); }
  void setValue(SoNode* node);
  void setValues(std::vector<SoNode*> const& nodes);

  void get1(int index, SbString& text) const override;
  bool set1(int index, char const* text) override;
  void deleteValues(int start, int count = -1) override;
  void insertSpace(int start, int count) override;
  bool getOne(int index, SoField& single) const override;
  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  friend class SoReader;
  bool hasValueOf(SoField const& other) const override;
  void takeValueOf(SoField const& other) override;
  void appendValuesOf(SoMField const& other) override;
  void takeCopyOf(SoField const& other, SoCopier& copier) override;
  /// False, with a debug error, for a node that contains this field's container.
  bool mayHold(SoNode* node) const;
  bool mayHoldAll(std::vector<SoNode*> const& nodes) const;
  void hold(SoNode* node);
  void release(SoNode* node);

 private:
  std::vector<SoNode*> m_values;
};
