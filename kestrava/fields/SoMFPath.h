#pragma once

#include "kestrava/fields/SoMField.h"
#include "kestrava/fields/SoSFPath.h"

/// Any number of paths; an entry may be null.
class SoMFPath : public SoMField {
  SO_FIELD(SoMFPath, SoMField)
  using ValueType = SoPath*;
  SoMFPath() = default;
  SoMFPath(SoFieldContainer* container, char const* name, FieldType type = NORMAL)
      : SoMField(container, name, type) {}

  int getNumValues() const override {
    evaluate();
    return static_cast<int>(m_values.size());
  }
  SoPath* operator[](int i) const {
    evaluate();
    return m_values[i];
  }
  void setValues(std::vector<SoRef<SoPath>> paths) {
    m_values = std::move(paths);
    valueChanged();
  }

  void get1(int index, SbString& text) const override;
  bool set1(int index, char const* text) override;
  void deleteValues(int start, int count = -1) override;
  void insertSpace(int start, int count) override;
  bool getOne(int index, SoField& single) const override;
  bool readValue(SoInput& in) override { return SoReadList(in, m_values, SoReadPath); }
  void writeValue(SoOutput& out) const override {
    SoWriteCounted(out, static_cast<std::uint32_t>(m_values.size()),
                   [&](std::uint32_t i) { SoWritePath(out, m_values[i]); }, 0);
  }

 protected:
  bool hasValueOf(SoField const& other) const override;
  void takeValueOf(SoField const& other) override { m_values = static_cast<SoMFPath const&>(other).m_values; }
  void appendValuesOf(SoMField const& other) override;
  void takeCopyOf(SoField const& other, SoCopier& copier) override;

 private:
  std::vector<SoRef<SoPath>> m_values;
};
